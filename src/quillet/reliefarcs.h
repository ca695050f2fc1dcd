// Corner relief of a drawn contour: an arc in place of each corner that would keep a fillet.
// Knows polylines; a control moves its wire beside what comes out.
#pragma once

#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

struct ReliefRadii {
  double straight = 0, arc = 0;  // mm: at corners between two straight spans, at those of an arc; 0 none
};

// The closed contour with its corners relieved; `turn` as cornerStep has it. `flags`: 1 for each vertex that
// was added, 0 for the contour's own, which all stay and in their order.
[[nodiscard]] PolylineCurve withReliefArcs(const PolylineCurve& contour, int turn, const ReliefRadii& radii,
                                           std::vector<int>& flags);

}  // namespace tarnex
