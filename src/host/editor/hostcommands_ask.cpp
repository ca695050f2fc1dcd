// Commands that tell and set: help, list, setvar, set.
// Knows no application.
#include "host/editor/answers.h"
#include "host/editor/hostcommands.h"
#include "host/editor/sysvars.h"

namespace tarnex {

namespace {

void helpLine(AcEditor& editor, const Command& c) {
  std::string names = c.globalName;
  if (!c.localName.empty() && c.localName != c.globalName) names += " (" + c.localName + ")";
  if (names.size() < 16) names.resize(16, ' ');
  editor.print(names + " " + (c.run ? c.help : "not built yet" + (c.help.empty() ? "" : ": " + c.help)) +
               "\n");
}

std::string describe(AcEditor& editor, const SysVarRow& row) {
  std::string text(row.name);
  if (text.size() < 10) text.resize(10, ' ');
  const auto value = editor.acedGetVar(row.name);
  text += " " + (value ? sysVarText(*value) : std::string());
  if (text.size() < 32) text.resize(32, ' ');
  return text + " " + std::string(row.meaning) + (isReadOnly(row) ? " (read-only)" : "");
}

void listVariables(AcEditor& editor, std::string_view pattern) {
  for (const auto& row : sysVarRows())
    if (pattern.empty() || equalIgnoringCase(pattern, "*") || equalIgnoringCase(pattern, row.name))
      editor.print(describe(editor, row) + "\n");
}

std::vector<std::string> linesOf(const AcEditor& editor, const AcDbEntity& entity) {
  std::vector<std::string> lines;
  for (const auto& hook : editor.listHooks)
    if (hook(entity, lines)) return lines;
  entity.list(lines);
  return lines;
}

void fail(AcEditor& editor, const std::string& why) {
  editor.print(why + "\n");
  editor.commandFailed();
}

std::string rangeOf(const SysVarRow& row) {
  if (std::holds_alternative<std::string>(row.initial) || std::holds_alternative<AcGePoint3d>(row.initial))
    return "";
  return ", " + sysVarText(row.low) + " to " + sysVarText(row.high);
}

}  // namespace

void helpCommand(AcEditor& editor) {
  const auto name = editor.acedGetString(false, "Command, or Enter for all: ");
  if (!name) return;
  if (const Command* one = name.value.empty() ? nullptr : editor.findCommand(name.value))
    return helpLine(editor, *one);
  if (!name.value.empty()) return fail(editor, "There is no command \"" + name.value + "\".");
  for (const auto& c : editor.commands()) helpLine(editor, c);
}

void listCommand(AcEditor& editor) {
  const auto set = editor.acedSSGet("");
  if (!set) return;
  auto& db = editor.database();
  for (const auto id : set.value) {
    const auto* entity = db.peek<AcDbEntity>(id);
    if (!entity) continue;
    for (const auto& line : linesOf(editor, *entity)) editor.print(line + "\n");
  }
}

void setvarCommand(AcEditor& editor) {
  const auto name = editor.acedGetString(false, "Enter variable name or ?: ");
  if (!name || name.value.empty()) return;
  if (name.value == "?") return listVariables(editor, "*");
  const SysVarRow* row = findSysVar(trimmed(name.value));
  if (!row) return fail(editor, "There is no variable \"" + name.value + "\"; ? lists them.");
  if (isReadOnly(*row)) return listVariables(editor, row->name);
  const auto standing = sysVarText(*editor.acedGetVar(row->name));
  const auto text =
      editor.acedGetString(true, "Enter new value for " + std::string(row->name) + " <" + standing + ">: ");
  if (!text || trimmed(text.value).empty()) return;
  const auto value = parseSysVar(*row, text.value);
  if (!value || !editor.acedSetVar(row->name, *value))
    fail(editor, std::string(row->name) + " can't be \"" + text.value + "\" (" + std::string(row->meaning) +
                     rangeOf(*row) + ").");
}

void setCommand(AcEditor& editor) {
  const auto name = editor.acedGetString(false, "Name of the value: ");
  if (!name || trimmed(name.value).empty()) return;
  const std::string field(trimmed(name.value));
  const auto text = editor.acedGetString(true, "Value: ");
  if (!text) return;
  const std::string value(trimmed(text.value));
  for (const auto& hook : editor.setHooks) {
    std::string error;
    const bool known = hook(field, value, error);
    if (!error.empty()) return fail(editor, field + ": " + error);
    if (known) break;
  }
  editor.preset(field, value);
}

}  // namespace tarnex
