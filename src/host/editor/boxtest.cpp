// Boxes against outlines.
// Knows no view and no selection.
#include "host/editor/boxtest.h"

#include <algorithm>
#include <cmath>

namespace tarnex {

namespace {

double distanceToBox(const Extents2d& box, AcGePoint2d p) {
  if (box.empty()) return std::numeric_limits<double>::infinity();
  const double dx = std::max({box.low.x - p.x, 0.0, p.x - box.high.x});
  const double dy = std::max({box.low.y - p.y, 0.0, p.y - box.high.y});
  return std::hypot(dx, dy);
}

// A box without height or width is a line, one without either a point.
bool touchesFlatBox(const Curve& c, const Extents2d& box) {
  if (box.low == box.high)
    return closestPoint(c, box.low).distance <= roundoff(std::max(std::abs(box.low.x), std::abs(box.low.y)));
  return !intersect(c, LineCurve{box.low, box.high}, Extend::kOnBothOperands).empty();
}

bool touches(const Curve& c, const Extents2d& box) {
  if (box.contains(startPoint(c)) || box.contains(endPoint(c))) return true;
  if (!std::holds_alternative<RayCurve>(c)) {
    const Extents2d extent = extents(c);
    if (!extent.overlaps(box)) return false;
    if (box.contains(extent)) return true;
  }
  if (box.low.x == box.high.x || box.low.y == box.high.y) return touchesFlatBox(c, box);
  const PolylineCurve border{{{box.low}, {{box.high.x, box.low.y}}, {box.high}, {{box.low.x, box.high.y}}},
                             true};
  return !intersect(c, border, Extend::kOnBothOperands).empty();
}

}  // namespace

Extents2d boxOf(AcGePoint2d a, AcGePoint2d b) {
  Extents2d box;
  box.add(a);
  box.add(b);
  return box;
}

bool touchesBox(const AcDbEntity& entity, const Extents2d& box) {
  const Extents2d extent = entity.getGeomExtents();
  if (!extent.empty() && box.contains(extent)) return true;
  const auto curves = entity.outline();
  if (curves.empty()) return extent.overlaps(box);
  return std::any_of(curves.begin(), curves.end(), [&](const Curve& c) { return touches(c, box); });
}

bool insideBox(const AcDbEntity& entity, const Extents2d& box) {
  const Extents2d extent = entity.getGeomExtents();
  return !extent.empty() && box.contains(extent) && !entity.isKindOf(AcDbRay::desc());
}

double distanceTo(const AcDbEntity& entity, AcGePoint2d p) {
  const auto curves = entity.outline();
  if (curves.empty()) return distanceToBox(entity.getGeomExtents(), p);
  double best = std::numeric_limits<double>::infinity();
  for (const auto& c : curves) best = std::min(best, closestPoint(c, p).distance);
  return best;
}

}  // namespace tarnex
