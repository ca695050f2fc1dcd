// A stretch of a straight line or of a circle in a frame of its own, so that nearly flat arcs keep their
// precision. Internal to the kernel: knows no polylines and no other curves.
#pragma once

#include <algorithm>

#include "host/geometry/curves.h"

namespace tarnex::kernel {

// Frame: a line's origin is its start. A circle's is its centre or, for an arc given by chord and bulge, the
// middle of the chord, `depth` mm from the centre towards the arc's middle. So no number is as large as a
// flat arc's radius.
struct Element {
  bool arc = false;
  AcGePoint2d start, end;
  AcGePoint2d origin;
  AcGeVector2d along;                       // unit: direction of a line, of travel in an arc's middle
  AcGeVector2d outward;                     // arc: unit, from the centre to the arc's middle
  double length = 0;                        // mm; 0 is a point
  double radius = 0;                        // arc
  double depth = 0;                         // arc, mm, below 0 for more than a half circle
  double originPower = 0;                   // arc: |origin - centre|² - radius², mm²
  double chordAngle = 0;                    // arc: radians from its middle to where `outward` coordinate is 0
  double halfSweep = 0;                     // arc: radians, above 0
  bool openStart = false, openEnd = false;  // runs on beyond that end; an arc then is its whole circle
  [[nodiscard]] bool wholeCircle() const;
};

// Every size stays below this, so that fourth powers can't overflow.
inline constexpr double kLargest = 1e60;
// A sweep this near to a full turn is one, radians.
inline constexpr double kFullTurnSlack = 1e-12;

[[nodiscard]] inline bool sane(double v) {
  return std::abs(v) <= kLargest;
}  // false for nan
[[nodiscard]] inline bool sane(AcGePoint2d p) {
  return sane(p.x) && sane(p.y);
}
[[nodiscard]] inline double sizeOf(AcGePoint2d p) {
  return std::max(std::abs(p.x), std::abs(p.y));
}

// How far two computed points on curves of this size may lie apart and still be one, mm. The floor is far
// below what any drawing means and above what a few trigonometric steps add up to on small parts.
[[nodiscard]] inline double contactTolerance(double size) {
  return std::max(16 * roundoff(size), 1e-10);
}

[[nodiscard]] Element lineElement(AcGePoint2d start, AcGePoint2d end);
[[nodiscard]] Element rayElement(const RayCurve& ray);  // of length 1, open at its end
[[nodiscard]] Element arcElement(const ArcCurve& arc);
[[nodiscard]] Element spanElement(AcGePoint2d start, AcGePoint2d end, double bulge);

// Fraction 0 at the start, 1 at the end; beyond the ends it runs on. Of a point that lies off the element:
// that of its foot. An arc's fraction belongs to angles up to half a turn from its middle.
[[nodiscard]] double fractionAt(const Element& e, AcGePoint2d p);
[[nodiscard]] AcGePoint2d pointAt(const Element& e, double fraction);
[[nodiscard]] AcGeVector2d directionAt(const Element& e, double fraction);  // unit, of travel

// Distance from the endless line (above 0 left) or the whole circle (above 0 outside), mm.
[[nodiscard]] double signedDistance(const Element& e, AcGePoint2d p);
// Unit normal of the line or circle at p, the way the signed distance grows.
[[nodiscard]] AcGeVector2d normalAt(const Element& e, AcGePoint2d p);
// Whether a fraction belongs to the element, open ends included; `slack` is a fraction too.
[[nodiscard]] bool reaches(const Element& e, double fraction, double slack);
// An arc that is open at one end only counts all the rest of its circle beyond that end.
[[nodiscard]] double unwound(const Element& e, double fraction);
[[nodiscard]] double closestFraction(const Element& e, AcGePoint2d p);
[[nodiscard]] Extents2d extentsOf(const Element& e);  // without the open ends
[[nodiscard]] AcGePoint2d centreOf(const Element& e);
[[nodiscard]] double sizeOf(const Element& e);

}  // namespace tarnex::kernel
