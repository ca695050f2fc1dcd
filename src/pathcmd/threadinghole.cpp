// A small circle inside the contour as its ready-made threading hole.
// Knows circles and the contour's spans.
#include "contour/geometrylibrary.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

// Pick: the span under Q stays; Q moves to the place on it that is nearest to the hole.
bool enterPickedSpan(const PolylineCurve& contour, AcGePoint2d t, EntryPoints& points) {
  const AcGePoint2d u = closestPoint(contour, points.entry).point;
  for (std::size_t i = 0; i < contour.spanCount(); ++i) {
    const Curve span = spanCurve(contour, i);
    if (!(closestPoint(span, u).distance < kSamePoint)) continue;
    points.entry = closestPoint(span, t).point;
    points.spanIndex = static_cast<int>(i);
    return true;
  }
  return false;
}

// Where a span is entered from t; nothing when no place of the span faces it.
std::optional<AcGePoint2d> footOnSpan(const PolylineCurve& contour, std::size_t i, AcGePoint2d t) {
  const auto& v = contour.vertices;
  const AcGePoint2d a = v[i].point, b = v[(i + 1) % v.size()].point;
  const double bulge = v[i].bulge;
  if (bulge == 0) return closestPoint(LineCurve{a, b}, t, true).point;
  const auto circle = bulgeToCircle(a, b, bulge);
  if (circle.centre.distanceTo(t) <= kSamePoint) {
    for (int quarter = 0; quarter < 4; ++quarter) {
      const AcGePoint2d p = acutPolar(circle.centre, quarter * kPi / 2, circle.radius);
      if (isPointOnSpan(a, b, bulge, p)) return p;
    }
    return std::nullopt;
  }
  return acutPolar(circle.centre, acutAngle(circle.centre, t), circle.radius);
}

// Batch: the nearest foot on any span that isn't one of its ends.
bool enterNearestSpan(const PolylineCurve& contour, AcGePoint2d t, EntryPoints& points) {
  double best = 1000000;
  bool found = false;
  for (std::size_t i = 0; i < contour.spanCount(); ++i) {
    const auto& v = contour.vertices;
    const AcGePoint2d a = v[i].point, b = v[(i + 1) % v.size()].point;
    if (a == b) continue;
    const auto f = footOnSpan(contour, i, t);
    if (!f || !isPointOnSpan(a, b, v[i].bulge, *f)) continue;
    if (!(f->distanceTo(t) < best)) continue;
    if (!(f->distanceTo(a) > kSamePoint && f->distanceTo(b) > kSamePoint)) continue;
    best = f->distanceTo(t);
    points.entry = *f;
    points.spanIndex = static_cast<int>(i);
    found = true;
  }
  return found;
}

}  // namespace

bool findThreadingHole(Module& module, MakeMode mode, const PolylineCurve& contour, EntryPoints& points) {
  const Extents2d box = extents(contour);
  AcEditor::SelectArgs args;
  args.first = solid(box.low);
  args.second = solid(box.high);
  for (AcDbObjectId id : module.editor.acedSSGet("C", args).value) {
    const auto* circle = module.drawing().peek<AcDbCircle>(id);
    if (!circle || circle->radius() > module.settings.dSmallHoleRadius) continue;
    const AcGePoint2d t = circle->center().flat();
    if (pointInPolyline(contour, t) != 1) continue;
    const bool taken =
        mode == MakeMode::kPick ? enterPickedSpan(contour, t, points) : enterNearestSpan(contour, t, points);
    if (!taken) continue;
    points.thread = t;
    return true;
  }
  return false;
}

}  // namespace tarnex
