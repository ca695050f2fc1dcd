// What differs between two programs, line by line.
// Knows text; which program is which, its caller knows.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnex {

struct ProgramDiff {
  std::size_t removed = 0, added = 0;  // lines
  std::size_t changed = 0;             // of each place the larger of its removed and added ones
  // A unified diff with three lines of context. Empty when nothing has changed. In place of very many
  // changes, which are then taken as one place, the first lines that differ.
  std::string text;
  bool isShortened = false;
};

// The fewest lines that make `before` into `after`. Dates and times as V18 and V19 print them don't count as
// a change. Beyond kMostChangedLines the work would grow with their square: then all between the first and
// the last line that differ is taken as changed.
inline constexpr int kMostChangedLines = 2000;
[[nodiscard]] ProgramDiff compareProgram(std::string_view before, std::string_view after);

}  // namespace tarnex
