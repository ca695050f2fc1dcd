// One corner of a wire path and the step that clears it.
// Knows one corner; who asks decides the radius, and what becomes of the step.
#include "toolpath/cornerrelief.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"

namespace tarnex {

namespace {

constexpr double kNoCorner = 0.001;  // rad from straight on, or from turning right back

// The point that stands for the direction of a span at the corner v: its other end, or of an arc the point on
// the tangent a radius away, ahead (1) or behind (-1).
AcGePoint2d directionPoint(AcGePoint2d start, AcGePoint2d end, double bulge, AcGePoint2d v, int sign) {
  if (bulge == 0) return sign < 0 ? start : end;
  const auto circle = bulgeToCircle(start, end, bulge);
  const double tangent = acutAngle(circle.centre, v) + (bulge > 0 ? kPi / 2 : -kPi / 2);
  return acutPolar(v, tangent, sign * circle.radius);
}

}  // namespace

std::optional<CornerStep> cornerStep(const WireCorner& corner, int turn, double radius) {
  const AcGePoint2d v = corner.at.point;
  if (!(radius > 0) || corner.before.point == v || corner.after == v) return std::nullopt;
  const AcGePoint2d a = directionPoint(corner.before.point, v, corner.before.bulge, v, -1);
  const AcGePoint2d d = directionPoint(v, corner.after, corner.at.bulge, v, 1);
  double delta = std::abs(acutAngle(v, a) - acutAngle(v, d));
  if (delta > kPi) delta = 2 * kPi - delta;
  if (std::abs(delta - kPi) <= kNoCorner || delta <= kNoCorner) return std::nullopt;
  const int side = polylineOrientation({{{a, 0}, {v, 0}, {d, 0}}, true});
  if (side * turn <= 0) return std::nullopt;
  const double length = radius / std::sin(delta / 2) - radius;
  return CornerStep{acutPolar(v, acutAngle(v, d) - kPi + side * delta / 2, length), length};
}

AcDbObjectId newestEntity(const AcDbDatabase& drawing) {
  const auto* space = drawing.peek<AcDbBlockTableRecord>(drawing.modelSpace());
  if (!space) return {};
  const auto& ids = space->entities();
  const auto stands = [&](AcDbObjectId id) { return drawing.peek<AcDbEntity>(id) != nullptr; };
  const auto last = std::find_if(ids.rbegin(), ids.rend(), stands);
  return last == ids.rend() ? AcDbObjectId{} : *last;
}

std::optional<RelievedContour> relieveContour(AcDbDatabase& drawing, const CornerRelief& relief,
                                              const PolylineCurve& contour,
                                              const ReliefArguments& arguments) {
  const AcDbObjectId source =
      appendToModelSpace(drawing, std::make_unique<AcDbPolyline>(contour), {}, kColorByLayer, "");
  RelievedContour result;
  const bool made = relief(source, arguments.lengthA, arguments.lengthB, arguments.nSide, result.flags);
  SelectionSet temporary{source};
  const AcDbObjectId left = newestEntity(drawing);
  const auto* polyline = made && left > source ? drawing.peek<AcDbPolyline>(left) : nullptr;
  if (polyline) {
    result.vertices = polyline->polyline().vertices;
    temporary.push_back(left);
  }
  eraseList(drawing, temporary);
  return polyline ? std::optional(std::move(result)) : std::nullopt;
}

}  // namespace tarnex
