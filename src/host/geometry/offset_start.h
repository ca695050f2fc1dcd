// Where the curves of a trimmed offset begin, and which comes first. Internal to the offset.
#pragma once

#include <vector>

#include "host/geometry/offset_raw.h"

namespace tarnex::offsets {

// Closed curves are turned so that they begin at the offset of the path's first vertex (`ideal`) if they pass
// it, at their place nearest to that vertex (the origin) otherwise; then all are sorted, the nearest first.
// Places within `snap` mm are one.
void beginNearStart(std::vector<PolylineCurve>& curves, Vec ideal, double snap);

}  // namespace tarnex::offsets
