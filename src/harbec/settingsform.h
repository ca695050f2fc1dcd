// A form over fields of the settings: from its table of rows, through the frame, back into the file.
// Knows no particular form.
#pragma once

#include <span>
#include <string>

#include "frame/settings.h"
#include "host/editor/form.h"
#include "host/platform/format.h"

namespace tarnex {

struct ChoiceRow {
  int value;
  int caption;  // catalogue number
};

// One field of the settings in a form.
struct FieldRow {
  const char* name;  // of the settings field
  int caption;       // catalogue number
  FieldKind kind;
  double low = 0, high = 1;  // numbers: the range, both ends allowed
  std::span<const ChoiceRow> choices = {};
};

struct FormTable {
  const char* name;  // of the entry point
  int title;         // catalogue number
  std::span<const FieldRow> rows;
};

class SettingsForm {
 public:
  // Reads the settings of the frame's install folder and fills the form from them. A switch that stands at
  // something else than 0 is on.
  SettingsForm(DialogFrame& frame, const FormTable& table);

  // Shows the form. True: confirmed and within range, and the values are in `settings`. A value outside is
  // told through the frame and counts as a cancel, also one that stood in the file and wasn't touched.
  [[nodiscard]] bool ask();
  // Writes `settings`; a failure is told through the frame.
  [[nodiscard]] bool save();

  Form form;
  WireCutSettings settings;

 private:
  [[nodiscard]] bool fits(const FormField& field);
  [[nodiscard]] bool fitsChoices(const FormField& field);
  [[nodiscard]] bool fitsRange(const FormField& field);
  void refuse(int message, const char* otherwise, std::initializer_list<FormatArg> args);

  DialogFrame& frame_;
};

// The whole of a plain form: 1 when it was confirmed and the file holds it, else 0.
[[nodiscard]] int askAndSave(DialogFrame* frame, const FormTable& table);

// A text of the catalogue without line ends around it; `otherwise` when there is none.
[[nodiscard]] std::string textOr(const DialogFrame& frame, int number, const std::string& otherwise);

}  // namespace tarnex
