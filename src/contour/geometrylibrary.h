// The plane-geometry operations on spans and polylines on which contour and path code stands. Their
// tolerances and tie-breaks decide how the whole program answers whether a point lies on a contour or inside
// it. Stateless; knows no entities but as curves.
#pragma once

#include <optional>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

inline constexpr double kSamePoint =
    0.001;  // mm: two points are one, a polyline closes, an arc's end is reached
inline constexpr double kNegligibleArea = 0.001;  // mm²: a contour without a direction

struct SpanCircle {
  AcGePoint2d centre;
  double radius = 0;  // mm, above 0
};
// Circle of the span; bulge must not be 0.
[[nodiscard]] SpanCircle bulgeToCircle(AcGePoint2d start, AcGePoint2d end, double bulge);
// Bulge of the arc from a to b about centre, with the sign and the major or minor character of the old bulge.
[[nodiscard]] double bulgeFromCircle(AcGePoint2d a, AcGePoint2d centre, AcGePoint2d b, double oldBulge);
// Signed angle swept from a to b about centre; direction above 0 counter-clockwise, below 0 clockwise, 0 as
// it comes.
[[nodiscard]] double sweepAngle(AcGePoint2d centre, AcGePoint2d a, AcGePoint2d b, double direction);
// Within 0.001 mm of the span; the angle test of an arc has no tolerance.
[[nodiscard]] bool isPointOnSpan(AcGePoint2d start, AcGePoint2d end, double bulge, AcGePoint2d p);
// The span's signed contribution to the enclosed area, mm².
[[nodiscard]] double spanArea(AcGePoint2d start, AcGePoint2d end, double bulge);
[[nodiscard]] double triangleArea(AcGePoint2d a, AcGePoint2d b, AcGePoint2d c);
// 1 counter-clockwise, -1 clockwise, 0 when the area is negligible. Open polylines count their closing span
// too.
[[nodiscard]] int polylineOrientation(const PolylineCurve& c);
// 1 inside, -1 outside, 0 within 0.001 mm of the contour, or where it encloses nothing. By winding, so that
// points beyond sharp corners are right too.
[[nodiscard]] int pointInPolyline(const PolylineCurve& c, AcGePoint2d p);
// The span that holds the point's projection (at a shared vertex the earlier one); side 1 for a point in the
// span's second half, -1 in its first.
struct SpanAt {
  int index = 0;
  int side = 1;
};
[[nodiscard]] std::optional<SpanAt> findSpanAt(const PolylineCurve& c, AcGePoint2d p);
// mm to the closest point, found with extension on.
[[nodiscard]] double distanceToCurve(const Curve& c, AcGePoint2d p);
[[nodiscard]] double spanLength(AcGePoint2d start, AcGePoint2d end, double bulge);
// Length and first moments of length, for a centroid.
struct SpanMoments {
  double length = 0, mx = 0, my = 0;
};
[[nodiscard]] SpanMoments spanMoments(AcGePoint2d start, AcGePoint2d end, double bulge);
// The point `distance` mm along the span and the bulges of both parts; nothing beyond the span's end.
struct AlongSpan {
  AcGePoint2d point;
  double bulgeBefore = 0, bulgeAfter = 0;
};
[[nodiscard]] std::optional<AlongSpan> pointAlongSpan(AcGePoint2d start, AcGePoint2d end, double bulge,
                                                      double distance);
// Direction (radians) of the span's normal at one end, towards side 1 or -1.
[[nodiscard]] double spanNormalAngle(AcGePoint2d start, AcGePoint2d end, double bulge, int side, bool atEnd);
void reversePolyline(PolylineCurve& c);
// 0 x ascending, 1 y ascending, 2 x then y within runs of x, 3 y then x within runs of y.
void sortPoints(std::vector<AcGePoint2d>& points, int mode);
// A point well inside the polyline (T) and its nearest contour point (Q). The fallback, the centroid of the
// contour's length, can lie outside a concave contour.
struct ThreadPoint {
  AcGePoint2d thread, contour;
};
[[nodiscard]] ThreadPoint findThreadPoint(const PolylineCurve& c);
// As acutAngle and acutPolar, in degrees.
[[nodiscard]] double angleDegrees(AcGePoint2d a, AcGePoint2d b);
[[nodiscard]] AcGePoint2d polarDegrees(AcGePoint2d p, double degrees, double distance);
// False when x, y and z each differ by less than 0.001.
[[nodiscard]] bool pointDiffers(const AcGePoint3d& a, const AcGePoint3d& b);

// Angle in the closed walk order used by isPointOnSpan: p lies on the way from s to e in the bulge's
// direction.
[[nodiscard]] bool angleWithinArc(double s, double e, double p, double bulge);

}  // namespace tarnex
