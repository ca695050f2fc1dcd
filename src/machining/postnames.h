// What a post's slots and rows are called in its source: names in place of numbers.
// Knows names and the moments they stand for; no file.
#pragma once

#include <span>
#include <string>

namespace tarnex {

struct SlotName {
  int slot;
  const char* name;
  const char* about;  // a comment for the one who writes a post
};

[[nodiscard]] std::span<const SlotName> parameterNames();  // of MachinePost::param and paramOn
[[nodiscard]] std::span<const SlotName> switchNames();     // of the switches that the writers look at
[[nodiscard]] std::span<const SlotName> wordNames();       // of MachinePost::word

// The rows of one kind of figure and cut type: which moment each row is written at.
struct RowSet {
  int base;  // added to the numbers
  const char* name;
  const char* about;
  std::span<const SlotName> rows;
};
[[nodiscard]] std::span<const RowSet> rowSets();  // bases 0, 40, 80, 120
inline constexpr int kRowsOfASet = 40;

}  // namespace tarnex
