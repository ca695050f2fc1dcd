// From where a drawing is looked at, and what its shapes become in the picture.
// Knows parallel projection; paper and files are the painters'.
#pragma once

#include <optional>

#include "host/display/displaylist.h"

namespace tarnex {

class Projection {
 public:
  Projection() = default;  // from above: x to the right, y up
  // `toEye` points from the drawing to the eye, of any length, as VIEWDIR has it. z stands upright in the
  // picture; seen along z, y does. What is parallel to the picture keeps its length. Nothing for (0,0,0) and
  // for numbers that aren't finite.
  static std::optional<Projection> from(const AcGeVector3d& toEye);
  // From (-1,-1,1): x runs up to the right, y up to the left; lengths along x, y and z shrink alike, to
  // sqrt(2/3).
  static Projection isometric();

  [[nodiscard]] bool isPlan() const {
    return right_ == AcGeVector3d{1, 0, 0} && up_ == AcGeVector3d{0, 1, 0};
  }
  [[nodiscard]] AcGePoint2d at(const AcGePoint3d& p) const {
    return {right_.x * p.x + right_.y * p.y + right_.z * p.z, up_.x * p.x + up_.y * p.y + up_.z * p.z};
  }

 private:
  AcGeVector3d right_{1, 0, 0}, up_{0, 1, 0};
};

// The plane z = height + slope . (p - about) that an arc lies in.
struct ArcPlane {
  AcGePoint2d about;
  double height = 0;   // mm
  AcGeVector2d slope;  // mm per mm
};
// The one through three points; level at the first one's height when they stand in a line in plan.
[[nodiscard]] ArcPlane planeThrough(const DrawnArc& arc);

// The curve above `arc` (its plan) in the plane as it is seen. Nothing when it is seen edge on, as a line.
[[nodiscard]] std::optional<EllipseCurve> seenArc(const Projection& view, const ArcCurve& arc,
                                                  const ArcPlane& plane);
// The corners of that line: its ends and where it turns back.
[[nodiscard]] std::vector<AcGePoint2d> seenOnEdge(const Projection& view, const ArcCurve& arc,
                                                  const ArcPlane& plane);

// A text stands upright where its position is seen; in plan it is as drawn.
[[nodiscard]] DrawnText seenText(const Projection& view, const DrawnText& text);

[[nodiscard]] Extents2d seenExtents(const Projection& view, const DrawnShape& shape);
// Of everything listed; what runs out of the list's own extents (a ray) counts where it is inside.
[[nodiscard]] Extents2d seenExtents(const Projection& view, const DisplayList& list);
// Of the part of the drawing that lies over a window in plan, from its lowest to its highest z.
[[nodiscard]] Extents2d seenWindow(const Projection& view, const DisplayList& list, const Extents2d& window);

}  // namespace tarnex
