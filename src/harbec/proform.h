// The parts of the job's form.
// Knows no frame in particular.
#pragma once

#include <string>
#include <vector>

#include "harbec/settingsform.h"
#include "machining/joblayout.h"

namespace tarnex {

// A form whose fields are put together for each call.
class FreeForm : public FormFrame {
 public:
  FreeForm(DialogFrame& frame, int title) : FormFrame(frame, {"ProStyleDlg", title, {}}), texts_(frame) {}

  FormField& add(const std::string& name, int caption, FieldKind kind, FieldValue value);
  FormField& real(const std::string& name, int caption, double value, double low, double high);
  FormField& whole(const std::string& name, int caption, long long value, double low, double high);
  FormField& choice(const std::string& name, int caption, long long value, std::span<const ChoiceRow> rows);
  // What stands and isn't among the choices stays one; without choices the value is typed.
  void keepStanding(FormField& field, FieldKind typed);
  [[nodiscard]] bool confirmed() { return show(); }

  [[nodiscard]] double realOf(const std::string& name);
  [[nodiscard]] int wholeOf(const std::string& name);
  [[nodiscard]] std::string textOf(const std::string& name);
  [[nodiscard]] std::string text(int number, const std::string& otherwise) const {
    return textOr(texts_, number, otherwise);
  }

 private:
  DialogFrame& texts_;
};

// The style that stands as nStyleNow, head and passes. False: cancelled, `job` may have changed.
[[nodiscard]] bool askStyle(DialogFrame& frame, JobLayout& job);

}  // namespace tarnex
