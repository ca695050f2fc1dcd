// Dialogs as data: a form is a list of fields, a frame shows it. The same form serves a terminal, a script
// and a window.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace tarnex {

enum class FieldKind { kInteger, kReal, kText, kYesNo, kChoice, kFile };

using FieldValue = std::variant<long long, double, std::string>;

struct FormField {
  std::string name;     // `dOffset`: by it a value is set ahead and a script names it
  std::string caption;  // in the user's language
  FieldKind kind = FieldKind::kReal;
  FieldValue value;  // in: what stands; out: what the user chose
  double low = -1e9,
         high = 1e9;  // range of numbers, both ends allowed; for texts the longest length in bytes
  std::vector<std::pair<FieldValue, std::string>> choices;  // kChoice: value and caption
  // Why a value that the kind allows isn't taken, as the rest of a sentence about it ("must not hold a
  // blank"); empty: it is taken.
  std::function<std::string(const FieldValue&)> check = {};
};

struct Form {
  std::string name;  // the entry point: "SetDlg"
  std::string title;
  std::vector<FormField> fields;
  [[nodiscard]] FormField* field(const std::string& fieldName) {
    for (auto& f : fields)
      if (f.name == fieldName) return &f;
    return nullptr;
  }
};

// The host's main frame, as a dialog library sees it. Loadable modules get a pointer to one.
class DialogFrame {
 public:
  virtual ~DialogFrame() = default;
  // True: confirmed, the values are in the form. False: cancelled, the form's values don't count.
  virtual bool show(Form& form) = 0;
  [[nodiscard]] virtual std::string text(int catalogueNumber) const = 0;
  [[nodiscard]] virtual std::string installFolder() const = 0;  // as a path of the system
  // 1 English, 2 Simplified Chinese, 3 Traditional Chinese, or another number; 0 when the frame isn't told.
  [[nodiscard]] virtual int language() const { return 0; }
  // Why a confirmed form wasn't taken: the user reads it and acknowledges it.
  virtual void alert(const std::string& message) { (void)message; }
  virtual void focus() {}  // takes the keyboard; a terminal has it already
};

}  // namespace tarnex
