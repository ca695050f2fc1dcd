// The system variables: one table of names, kinds, ranges and where each lives.
// Knows no prompt.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/editor/state.h"

namespace tarnex {

struct SysVarRow {
  std::string_view name;
  SysVar initial;                                      // its kind is the variable's
  double low = 0, high = 0;                            // of numbers, both ends allowed
  SysVar (*get)(const EditorState&) = nullptr;         // none: kept in EditorState::variables
  bool (*set)(EditorState&, const SysVar&) = nullptr;  // of a live one; none: read-only
  std::string_view meaning;
};

[[nodiscard]] const std::vector<SysVarRow>& sysVarRows();          // sorted by name
[[nodiscard]] const SysVarRow* findSysVar(std::string_view name);  // ignoring case
[[nodiscard]] SysVar sysVarValue(const EditorState& state, const SysVarRow& row);
[[nodiscard]] bool isReadOnly(const SysVarRow& row);
// False: read-only, another kind (a whole number serves for a real one), out of range, or no such layer or
// colour.
[[nodiscard]] bool setSysVar(EditorState& state, const SysVarRow& row, const SysVar& value);
// A typed value in the variable's kind; nothing when it isn't one.
[[nodiscard]] std::optional<SysVar> parseSysVar(const SysVarRow& row, std::string_view text);
[[nodiscard]] std::string sysVarText(const SysVar& value);

}  // namespace tarnex
