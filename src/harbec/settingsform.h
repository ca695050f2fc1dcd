// A form over fields of a record: from its table of rows, through the frame, back into the record's file.
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

// One field of the record in a form.
struct FieldRow {
  const char* name;  // of the record's field
  int caption;       // catalogue number
  FieldKind kind;
  double low = 0, high = 1;  // numbers: the range, both ends allowed
  std::span<const ChoiceRow> choices = {};
};

struct FormTable {
  const char* name;  // of the entry point
  int title;         // catalogue number
  std::span<const FieldRow> rows;
  int notWritten = 3;  // catalogue number: the record's file can't be written
};

// What any form needs, whatever record is behind it.
class FormFrame {
 public:
  FormFrame(DialogFrame& frame, const FormTable& table);
  Form form;

 protected:
  // Shows the form. True: confirmed and within range. A value outside is told through the frame and counts as
  // a cancel, also one that stood in the file and wasn't touched.
  [[nodiscard]] bool show();
  void alert(const std::string& message) { frame_.alert(message); }
  void notWritten(const std::string& cause);

 private:
  [[nodiscard]] bool fits(const FormField& field);
  [[nodiscard]] bool fitsChoices(const FormField& field);
  [[nodiscard]] bool fitsRange(const FormField& field);
  void refuse(int message, const char* otherwise, std::initializer_list<FormatArg> args);

  DialogFrame& frame_;
  const FormTable table_;
};

// A value as the form holds it, from a record's text, and back. A switch that stands at something else than 0
// is on.
[[nodiscard]] FieldValue formValue(const std::string& text, FieldKind kind);
[[nodiscard]] std::string recordText(const FieldValue& value);

// A form over fields of a record of the install folder: one with load, save, textOf and setFromText.
template <class Record>
class RecordForm : public FormFrame {
 public:
  // Reads the record and fills the form from it.
  RecordForm(DialogFrame& frame, const FormTable& table)
      : FormFrame(frame, table), settings(frame.installFolder()) {
    settings.load();
    for (FormField& field : form.fields)
      field.value = formValue(settings.textOf(field.name).value_or(""), field.kind);
  }

  // Shows the form. True: confirmed and within range, and the values are in `settings`.
  [[nodiscard]] bool ask() {
    if (!show()) return false;
    for (const FormField& field : form.fields) {
      std::string error;
      if (settings.textOf(field.name) && !settings.setFromText(field.name, recordText(field.value), error)) {
        alert(error);
        return false;
      }
    }
    return true;
  }
  // Writes `settings`; a failure is told through the frame.
  [[nodiscard]] bool save() {
    std::string cause;
    if (settings.save(&cause)) return true;
    notWritten(cause);
    return false;
  }

  Record settings;
};

using SettingsForm = RecordForm<WireCutSettings>;

// The whole of a plain form over the settings: 1 when it was confirmed and the file holds it, else 0.
[[nodiscard]] int askAndSave(DialogFrame* frame, const FormTable& table);

// A text of the catalogue without line ends around it; `otherwise` when there is none.
[[nodiscard]] std::string textOr(const DialogFrame& frame, int number, const std::string& otherwise);

}  // namespace tarnex
