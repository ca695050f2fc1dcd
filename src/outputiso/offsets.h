// Offset numbers: the table that a program's head lists them in, and the numbers that the program gives out
// itself. Both count the passes of a style alike, so that a block's number stands in the table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machining/machinepost.h"
#include "machining/processstyle.h"

namespace tarnex {

// Pass records of the style that have an offset of their own: its passes and, with numbers given out and
// holes whose post calls for a tab record, the one behind them as far as the style has one.
[[nodiscard]] int passesWithOffset(const MachinePost& post, const ProcessStyle& style, int nSide);

// Numbers those passes "001", "002" ... from `next` on, which afterwards is the first number still free.
void numberOffsets(const MachinePost& post, ProcessStyle& style, int nSide, int& next);

// Their lines of the table, "H001=0.150", each with its line feed; in posts with whole numbers the offset is
// in micrometres. With numbers given out they are counted from `next` on as above, otherwise they are the
// passes' own. `nSide` is that of the first path of the style.
[[nodiscard]] std::string offsetLines(const MachinePost& post, const ProcessStyle& style, int nSide,
                                      int& next);

// A pass whose offset isn't what the table says under its number.
struct OffsetMismatch {
  std::string sCode, own, listed;  // the offsets as the table prints them; listed empty: not in it
};
// Of all passes of a path with this style, and of the record of its tab.
[[nodiscard]] std::vector<OffsetMismatch> offsetMismatches(const MachinePost& post, std::string_view table,
                                                           const ProcessStyle& style, int nSide);

}  // namespace tarnex
