// Shows forms as prompts, for terminals and scripts.
// Knows no form.
#pragma once

#include <optional>
#include <string>

#include "host/editor/editor.h"
#include "host/editor/form.h"
#include "host/editor/state.h"

namespace tarnex {

// With CMDDIA 1 every field is asked for, what stands (or was set ahead) in angle brackets: Enter keeps it,
// `=` keeps it and all that follow, NAME=VALUE sets another field, ^C leaves the form. With CMDDIA 0 the form
// is confirmed with what stands and what was set ahead; a value set ahead that doesn't fit its field is told
// and cancels the form.
class TerminalFrame : public DialogFrame {
 public:
  TerminalFrame(AcEditor& editor, EditorState& state) : editor_(editor), state_(state) {}
  bool show(Form& form) override;
  [[nodiscard]] std::string text(int catalogueNumber) const override;
  [[nodiscard]] std::string installFolder() const override;
  [[nodiscard]] int language() const override;
  void alert(const std::string& message) override;

 private:
  [[nodiscard]] bool takePresets(Form& form);
  [[nodiscard]] bool askAll(Form& form);
  enum class Asked { kOn, kRestStands, kCancelled };
  [[nodiscard]] Asked askField(Form& form, FormField& field);
  [[nodiscard]] bool setNamed(Form& form, const std::string& answer);
  [[nodiscard]] std::string question(const FormField& field) const;
  void fail(const std::string& why);
  AcEditor& editor_;
  EditorState& state_;
};

// The text as a value of the field; nothing when it doesn't fit, `why` then says so.
[[nodiscard]] std::optional<FieldValue> parseField(const FormField& field, const std::string& text,
                                                   std::string& why);
[[nodiscard]] std::string fieldText(const FieldValue& value);

}  // namespace tarnex
