// A form over fields of a record: from its table of rows, through the frame, back into the record's file.
// Knows no particular form.
#include "harbec/settingsform.h"

#include <limits>

namespace tarnex {

namespace {

// Catalogue numbers.
constexpr int kOutOfRange = 20004, kNoChoice = 20006, kTooLong = 20007;

long long whole(const std::string& text) {
  long long n = 0;
  (void)parseInteger(text, n);
  return n;
}

// The name goes along: by it a value is set ahead.
std::string label(const FormField& field) {
  return field.caption == field.name ? field.name : field.name + " (" + field.caption + ")";
}

}  // namespace

std::string textOr(const DialogFrame& frame, int number, const std::string& otherwise) {
  const std::string text = frame.text(number);
  const auto first = text.find_first_not_of('\n');
  if (first == std::string::npos) return otherwise;
  return text.substr(first, text.find_last_not_of('\n') - first + 1);
}

FieldValue formValue(const std::string& text, FieldKind kind) {
  double real = std::numeric_limits<double>::quiet_NaN();  // what is no number is out of every range
  switch (kind) {
    case FieldKind::kInteger:
    case FieldKind::kChoice:
      return whole(text);
    case FieldKind::kYesNo:
      return whole(text) != 0 ? 1LL : 0LL;
    case FieldKind::kReal:
      (void)parseNumber(text, real);
      return real;
    default:
      return text;
  }
}

std::string recordText(const FieldValue& value) {
  if (const auto* n = std::get_if<long long>(&value)) return std::to_string(*n);
  if (const auto* r = std::get_if<double>(&value)) return shortestNumber(*r);
  return std::get<std::string>(value);
}

FormFrame::FormFrame(DialogFrame& frame, const FormTable& table) : frame_(frame), table_(table) {
  form.name = table.name;
  form.title = textOr(frame, table.title, table.name);
  for (const FieldRow& row : table.rows) {
    FormField field{row.name, textOr(frame, row.caption, row.name), row.kind, {}, row.low, row.high, {}};
    for (const ChoiceRow& choice : row.choices)
      field.choices.emplace_back(FieldValue(static_cast<long long>(choice.value)),
                                 textOr(frame, choice.caption, std::to_string(choice.value)));
    form.fields.push_back(std::move(field));
  }
}

bool FormFrame::show() {
  if (!frame_.show(form)) return false;
  for (const auto& field : form.fields)
    if (!fits(field)) return false;
  return true;
}

void FormFrame::notWritten(const std::string& cause) {
  frame_.alert(textOr(frame_, table_.notWritten, table_.name) + "\n" + cause);
}

int askAndSave(DialogFrame* frame, const FormTable& table) {
  if (!frame) return 0;
  SettingsForm settings(*frame, table);
  return settings.ask() && settings.save() ? 1 : 0;
}

bool FormFrame::fits(const FormField& field) {
  if (const std::string why = field.check ? field.check(field.value) : ""; !why.empty()) {
    frame_.alert(label(field) + ": \"" + recordText(field.value) + "\" " + why);
    return false;
  }
  return field.kind == FieldKind::kChoice ? fitsChoices(field) : fitsRange(field);
}

bool FormFrame::fitsChoices(const FormField& field) {
  const std::string name = label(field);
  std::string all;
  for (const auto& [value, caption] : field.choices) {
    if (value == field.value) return true;
    all += (all.empty() ? "" : ", ") + recordText(value);
  }
  refuse(kNoChoice, "%s: %s", {std::string_view(name), std::string_view(all)});
  return false;
}

bool FormFrame::fitsRange(const FormField& field) {
  const std::string name = label(field);
  double number = 0;
  if (const auto* text = std::get_if<std::string>(&field.value)) {
    if (static_cast<double>(text->size()) <= field.high) return true;
    refuse(kTooLong, "%s: %d", {std::string_view(name), static_cast<long long>(field.high)});
    return false;
  }
  if (const auto* n = std::get_if<long long>(&field.value)) number = static_cast<double>(*n);
  if (const auto* r = std::get_if<double>(&field.value)) number = *r;
  if (number >= field.low && number <= field.high) return true;
  refuse(kOutOfRange, "%s: %g - %g", {std::string_view(name), field.low, field.high});
  return false;
}

void FormFrame::refuse(int message, const char* otherwise, std::initializer_list<FormatArg> args) {
  frame_.alert(formatChecked(textOr(frame_, message, otherwise), args));
}

}  // namespace tarnex
