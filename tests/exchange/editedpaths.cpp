// Random paths through their own operations.
// Knows no program and no judge but for the shapes of its contours.
#include "editedpaths.h"

#include "contour/geometrylibrary.h"
#include "maker3b.h"

namespace tarnex::truth::test {

// A polygon about `at` with a few of its edges bent, some of them nearly flat.
PolylineCurve EditedPaths::starShaped(AcGePoint2d at) {
  PolylineCurve c{{}, true};
  const std::size_t n = 3 + below(12);
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = 2 * kPi * (static_cast<double>(i) + real(-0.2, 0.2)) / static_cast<double>(n);
    const double bulge = oneIn(3) ? (oneIn(4) ? real(-0.01, 0.01) : real(-0.15, 0.25)) : 0;
    c.vertices.push_back({acutPolar(at, angle, real(8, 20)), bulge});
  }
  return c;
}

PolylineCurve EditedPaths::contour(AcGePoint2d at) {
  if (oneIn(2)) return starShaped(at);
  return randomSample(rng_, {at.x, at.y}).figure.contour;
}

std::unique_ptr<CToolPath> EditedPaths::plain(AcGePoint2d at) {
  CToolPath::Making making;
  making.nSide = oneIn(2) ? kInnerHole : kOuterShape;
  making.nDirection = oneIn(2) ? kCounterClockwise : kClockwise;
  making.dOffset = oneIn(3) ? real(0.3, 0.9) : real(0.05, 0.2);
  if (oneIn(3)) making.dClearance = making.nSide * real(0, 0.8) * making.dOffset;
  PolylineCurve c = contour(at);
  auto path = std::make_unique<CToolPath>();
  if (c.vertices.size() < 3) {  // a circle
    const double radius = real(3, 15), angle = real(0, 6);
    making.entry = acutPolar(at, angle, radius);
    making.thread = acutPolar(making.entry, angle, making.nSide * -2.0);
    return path->initCircle(making, at, radius, 1 + static_cast<int>(below(4))) ? std::move(path) : nullptr;
  }
  if (making.nDirection == kClockwise) reversePolyline(c);
  const std::size_t span = below(c.vertices.size());
  const BulgeVertex &a = c.vertices[span], &b = c.vertices[(span + 1) % c.vertices.size()];
  const double length = spanLength(a.point, b.point, a.bulge);
  const auto along = pointAlongSpan(a.point, b.point, a.bulge, length * (oneIn(4) ? 0 : real(0.2, 0.8)));
  making.entry = along ? along->point : a.point;
  const double normal = acutAngle(a.point, b.point) + making.nSide * making.nDirection * kPi / 2;
  const double lead = real(1.5, 2.5) + 2 * making.dOffset;
  making.thread = acutPolar(making.entry, normal + real(-0.3, 0.3), lead);
  const AcGePoint2d other = making.entry + (making.entry - making.thread);
  for (AcGePoint2d p : {making.thread, other})
    if (distanceToCurve(c, p) < 0.6 * lead) return nullptr;
  if (pointInPolyline(c, making.thread) != making.nSide || pointInPolyline(c, other) == making.nSide)
    return nullptr;
  return path->initContour(making, c, static_cast<int>(span)) ? std::move(path) : nullptr;
}

void EditedPaths::hang(CToolPath& path) {
  const auto& v = path.polyline().vertices;
  if (oneIn(4)) path.setTaper(real(-2, 2));
  if (oneIn(2))
    for (std::size_t k = 1 + below(4); k > 0; --k) {
      const std::size_t i = 1 + below(v.size() - 2);
      const auto middle = pointAlongSpan(v[i].point, v[i + 1].point, v[i].bulge,
                                         spanLength(v[i].point, v[i + 1].point, v[i].bulge) / 2);
      if (middle) (void)path.setSegmentTaper(middle->point, oneIn(5) ? 0 : real(-2, 2));
    }
  const char* const texts[] = {"R", "M1|M2", "T84", "G41 D1|", "A||B"};
  for (std::size_t k = below(4); k > 0; --k)
    path.setCodeAt(static_cast<int>(below(v.size())), texts[below(std::size(texts))]);
}

// As the command puts them in: the tip and then the root in front of the corner.
void EditedPaths::addSteps(CToolPath& path) {
  for (std::size_t k = below(4); k > 0; --k) {
    const auto& v = path.polyline().vertices;
    if (v.size() < 5) return;
    const std::size_t i = 2 + below(v.size() - 3);
    bool near = false;
    for (std::size_t j = i > 2 ? i - 3 : 0; j < std::min(i + 3, v.size()); ++j)
      near = near || v[j].bulge == kMarkedBulge;
    if (near) continue;
    const AcGePoint2d root = v[i].point,
                      tip = acutPolar(root, real(0, 6.28), oneIn(6) ? 0.02 : real(0.1, 0.4));
    path.addVertexAt(static_cast<int>(i), tip, kMarkedBulge);
    path.addVertexAt(static_cast<int>(i), root, kMarkedBulge);
  }
}

void EditedPaths::turn(CToolPath& path) {
  if (oneIn(2)) (void)path.reverse();
  if (oneIn(3)) (void)path.flipSide();
  if (oneIn(3)) (void)path.transformBy(AcGeMatrix3d::rotation(real(0, 6), {50, 20}));
  if (oneIn(3)) (void)path.transformBy(AcGeMatrix3d::mirroring({30, 10}, {32, 17}));
}

std::unique_ptr<CToolPath> EditedPaths::path(AcGePoint2d at) {
  std::unique_ptr<CToolPath> made;
  while (!made) made = plain(at);
  if (oneIn(3)) turn(*made);
  hang(*made);
  if (oneIn(2)) addSteps(*made);
  turn(*made);
  return made;
}

}  // namespace tarnex::truth::test
