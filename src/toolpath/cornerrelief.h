// The corners at which a wire leaves a fillet in the part, and how far it must step out there to take it
// away. Knows one corner; who asks decides the radius, and what becomes of the step.
#pragma once

#include <optional>
#include <vector>

#include "host/geometry/curves.h"
#include "toolpath/toolpath.h"

namespace tarnex {

// A corner of a wire path: the span that comes into it, the corner with the bulge of the span that leaves it,
// and where that span ends.
struct WireCorner {
  BulgeVertex before;
  BulgeVertex at;
  AcGePoint2d after;
};

struct CornerStep {
  AcGePoint2d tip;    // the wire goes there from the corner and straight back
  double length = 0;  // mm
};

// The step along the corner's outer bisector, radius / sin(Δ/2) - radius long, Δ being the angle between the
// spans (of arcs: their tangents). Nothing where the path goes straight on or turns right back, where the
// corner turns away from the part, or where the spans are so short that they enclose no area. `turn` is the
// path's direction times its side: 1 when corners to the left leave the fillet (a hole cut counter-clockwise,
// a shape cut clockwise), -1 for those to the right.
[[nodiscard]] std::optional<CornerStep> cornerStep(const WireCorner& corner, int turn, double radius);

// What the corner relief routine made of a closed contour; one flag per vertex, not 0 for those that it
// added.
struct RelievedContour {
  std::vector<BulgeVertex> vertices;
  std::vector<int> flags;
};
struct ReliefArguments {
  double lengthA = 0, lengthB = 0;  // mm
  int nSide = 1;
};
// Puts the contour into the drawing for the routine, and takes both polylines away again. Nothing when the
// routine declined or left no polyline: the caller goes on without relief.
[[nodiscard]] std::optional<RelievedContour> relieveContour(AcDbDatabase& drawing, const CornerRelief& relief,
                                                            const PolylineCurve& contour,
                                                            const ReliefArguments& arguments);
// Newest entity of model space; null when there is none.
[[nodiscard]] AcDbObjectId newestEntity(const AcDbDatabase& drawing);

}  // namespace tarnex
