// Offset numbers: the table that a program's head lists them in, and the numbers that the program gives out
// itself. Both count the passes of a style alike, so that a block's number stands in the table.
#pragma once

#include <string>

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

}  // namespace tarnex
