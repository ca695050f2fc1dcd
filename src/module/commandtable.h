// The 71 commands in registration order. Every other room knows its own commands; this table alone knows all.
#pragma once

#include <span>

#include "frame/module.h"

namespace tarnex {

inline constexpr const char* kCommandGroup = "QV";
inline constexpr int kFirstRoleText = 21000;  // catalogue number of row n is this plus n

struct CommandRow {
  const char* globalName;
  const char* localName;
  int flags;             // 0 modal, 1 transparent, 3 transparent and takes the pick set
  void (*run)(Module&);  // null: not built yet
};

[[nodiscard]] std::span<const CommandRow> commandTable();

}  // namespace tarnex
