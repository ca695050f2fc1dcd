// Where an outer shape's tab begins when the span before its entry is too short for it: a point that answers
// the question of GA. Knows one path; prompts are the job's.
#pragma once

#include "toolpath/toolpath.h"

namespace tarnex {

struct TabWish {
  double length = 5;  // mm before the entry point, measured along the contour
  double exit = 0;    // mm of the move away from the break; 0 or less: half the lead-in
  double stop = 0;    // mm before the tab's end where the machine stops, also where it is cut backward
};
// A point of the closed path where a tab begins: a small part's tab is a third of it at most. On a straight
// span, with room for exit and stop, where one between half and twice the length back has it; else wherever
// the length falls.
[[nodiscard]] AcGePoint2d tabBreakOf(const CToolPath& path, const TabWish& wish);

}  // namespace tarnex
