// What keeps loose curves from closing: gaps, free ends, branch points, curves over each other.
// Knows what the surveys tell; joins nothing.
#pragma once

#include "apps/tarnex/marks.h"
#include "contour/survey.h"

namespace tarnex {

// Branch points and doubled curves, each place once. A branch that is there only because curves lie over each
// other isn't told. Returns start and end of the curves that lie over another.
std::vector<LineCurve> findLooseMarks(const AcDbDatabase& drawing, const LooseSurvey& loose,
                                      std::vector<Finding>& findings);

// Two free ends are a gap when each is clearly the nearest to the other, they are at most 2 mm apart and at
// most a fifth of the shorter chain's length; a chain with a free end that is in no gap is told as open. What
// is left over of doubled curves isn't told again.
void findOpenMarks(const AcDbDatabase& drawing, std::vector<OpenChain> open,
                   const std::vector<LineCurve>& doubled, std::vector<Finding>& findings);

}  // namespace tarnex
