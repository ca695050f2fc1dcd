// Forms as prompts.
// Knows no form.
#include "host/editor/terminalframe.h"

#include "host/editor/answers.h"
#include "host/editor/reader.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

std::string rangeText(const FormField& field) {
  return shortestNumber(field.low) + " to " + shortestNumber(field.high);
}

std::optional<FieldValue> parseChoice(const FormField& field, const std::string& text, std::string& why) {
  for (const auto& [value, caption] : field.choices)
    if (equalIgnoringCase(fieldText(value), text) || equalIgnoringCase(caption, text)) return value;
  if (const auto n = parseReal(text))  // 1 and 1.0 are the same choice
    for (const auto& [value, caption] : field.choices)
      if (const auto v = parseReal(fieldText(value)); v && *v == *n) return value;
  why = "is none of the choices";
  return std::nullopt;
}

std::optional<FieldValue> parseYesNo(const std::string& text, std::string& why) {
  for (const char* yes : {"y", "yes", "1", "on"})
    if (equalIgnoringCase(text, yes)) return FieldValue(1LL);
  for (const char* no : {"n", "no", "0", "off"})
    if (equalIgnoringCase(text, no)) return FieldValue(0LL);
  why = "is neither yes nor no";
  return std::nullopt;
}

std::optional<FieldValue> parseFieldNumber(const FormField& field, const std::string& text,
                                           std::string& why) {
  const bool whole = field.kind == FieldKind::kInteger;
  const auto n = whole ? parseInt(text) : std::nullopt;
  const auto r = whole ? std::nullopt : parseReal(text);
  if (!n && !r) {
    why = whole ? "is no whole number" : "is no number";
    return std::nullopt;
  }
  const double v = n ? *n : *r;
  if (v < field.low || v > field.high) {
    why = "is outside " + rangeText(field);
    return std::nullopt;
  }
  std::optional<FieldValue> value(std::in_place);
  if (n)
    value->emplace<long long>(*n);
  else
    value->emplace<double>(*r);
  return value;
}

std::optional<FieldValue> parseKind(const FormField& field, const std::string& given, std::string& why) {
  const std::string text(trimmed(given));
  switch (field.kind) {
    case FieldKind::kInteger:
    case FieldKind::kReal:
      return parseFieldNumber(field, text, why);
    case FieldKind::kYesNo:
      return parseYesNo(text, why);
    case FieldKind::kChoice:
      return parseChoice(field, text, why);
    default:
      break;
  }
  if (static_cast<double>(text.size()) > field.high) {
    why = "is longer than " + shortestNumber(field.high) + " bytes";
    return std::nullopt;
  }
  return FieldValue(text);
}

}  // namespace

std::string fieldText(const FieldValue& value) {
  if (const auto* n = std::get_if<long long>(&value)) return std::to_string(*n);
  if (const auto* r = std::get_if<double>(&value)) return shortestNumber(*r);
  return std::get<std::string>(value);
}

std::optional<FieldValue> parseField(const FormField& field, const std::string& given, std::string& why) {
  auto value = parseKind(field, given, why);
  if (!value || !field.check) return value;
  why = field.check(*value);
  return why.empty() ? value : std::nullopt;
}

void TerminalFrame::fail(const std::string& why) {
  editor_.print(state_.placePrefix() + why + "\n");
  state_.lineJustEnded = true;
}

bool TerminalFrame::takePresets(Form& form) {
  bool allFit = true;
  for (auto& field : form.fields) {
    const auto set = editor_.presetOf(field.name);
    if (!set) continue;
    std::string why;
    if (auto value = parseField(field, *set, why)) {
      field.value = std::move(*value);
    } else {
      fail(form.name + ": " + field.name + ": \"" + *set + "\" " + why + ".");
      allFit = false;
    }
  }
  return allFit;
}

bool TerminalFrame::show(Form& form) {
  Form shown = form;
  const bool asks = editor_.intVar("CMDDIA") != 0;
  if (!takePresets(shown) && !asks) {
    editor_.commandFailed();
    return false;
  }
  if (asks && !askAll(shown)) return false;
  form = std::move(shown);
  return true;
}

bool TerminalFrame::askAll(Form& form) {
  editor_.print("\n" + form.title + "  (Enter keeps a value, = all that follow, NAME=VALUE sets another)\n");
  state_.lineJustEnded = true;
  for (auto& field : form.fields) {
    const Asked asked = askField(form, field);
    if (asked == Asked::kCancelled) return false;
    if (asked == Asked::kRestStands) break;
  }
  return true;
}

std::string TerminalFrame::question(const FormField& field) const {
  std::string text;
  for (const auto& [value, caption] : field.choices)
    text += "    " + fieldText(value) + "  " + caption + "\n";
  text += field.name + "  " + field.caption;
  if (field.kind == FieldKind::kYesNo) text += " [y/n]";
  const bool yes = field.value == FieldValue(1LL);
  return text + " <" + (field.kind == FieldKind::kYesNo ? (yes ? "y" : "n") : fieldText(field.value)) + ">: ";
}

TerminalFrame::Asked TerminalFrame::askField(Form& form, FormField& field) {
  for (;;) {
    const std::string prompt = question(field);
    const bool text = field.kind == FieldKind::kText || field.kind == FieldKind::kFile;
    const Question asked{prompt, {}, text ? Extent::kWholeLine : Extent::kWord, false};
    const Reading reading = readAnswer(state_, asked, editor_.journal);
    if (reading.kind != Reading::Kind::kText) return Asked::kCancelled;
    const std::string answer(trimmed(reading.text));
    if (answer.empty()) return Asked::kOn;
    if (answer == "=") return Asked::kRestStands;
    if (setNamed(form, answer)) continue;
    std::string why;
    if (auto value = parseField(field, answer, why)) {
      field.value = std::move(*value);
      return Asked::kOn;
    }
    fail("\"" + answer + "\" " + why + ".");
    if (!state_.personAnswers) editor_.commandFailed();
  }
}

// True when the answer is NAME=VALUE of one of the form's fields; the value is set, or told why not.
bool TerminalFrame::setNamed(Form& form, const std::string& answer) {
  const auto equals = answer.find('=');
  if (equals == std::string::npos) return false;
  FormField* other = form.field(std::string(trimmed(answer.substr(0, equals))));
  if (!other) return false;
  std::string why;
  const std::string text = answer.substr(equals + 1);
  if (auto value = parseField(*other, text, why)) {
    other->value = std::move(*value);
  } else {
    fail(other->name + ": \"" + text + "\" " + why + ".");
    if (!state_.personAnswers) editor_.commandFailed();
  }
  return true;
}

std::string TerminalFrame::text(int catalogueNumber) const {
  return state_.frameText ? state_.frameText(catalogueNumber) : std::string();
}

int TerminalFrame::language() const {
  return state_.frameLanguage;
}

void TerminalFrame::alert(const std::string& message) {
  editor_.messageBox(message, MB_ICONSTOP);
  if (!state_.personAnswers) editor_.commandFailed();
}

std::string TerminalFrame::installFolder() const {
  return state_.frameFolder ? state_.frameFolder() : std::string();
}

}  // namespace tarnex
