// The search for a threading point inside a contour: a scan of twenty stations, not a medial axis.
// Knows the polyline alone.
#include "contour/geometrylibrary.h"

namespace tarnex {

namespace {

// What the scan has found so far.
struct Scan {
  const PolylineCurve& contour;
  Extents2d box;
  ThreadPoint found;
  double best = 0;
  bool refined = false;

  std::vector<AcGePoint2d> hits(AcGePoint2d from, AcGePoint2d to, int sortMode) const {
    auto points = intersect(LineCurve{from, to}, contour, Extend::kOnBothOperands);
    sortPoints(points, sortMode);
    return points;
  }

  bool nearVertex(AcGePoint2d p) const {
    for (const auto& v : contour.vertices)
      if (v.point.distanceTo(p) <= kSamePoint) return true;
    return false;
  }

  // The middle of the horizontal chord through m, when it lies farther from the contour than m.
  AcGePoint2d centred(AcGePoint2d m) {
    const auto across = hits({box.low.x, m.y}, {box.high.x, m.y}, 0);
    for (std::size_t k = 0; k + 1 < across.size(); k += 2) {
      if (!(across[k].x < m.x && m.x < across[k + 1].x)) continue;
      const AcGePoint2d middle = midpoint(across[k], across[k + 1]);
      const AcGePoint2d moved{middle.x, m.y};
      if (distanceToCurve(contour, moved) > distanceToCurve(contour, m)) {
        refined = true;
        return moved;
      }
    }
    return m;
  }

  void offer(AcGePoint2d m) {
    if (!(distanceToCurve(contour, m) > best)) return;
    const AcGePoint2d c = closestPoint(contour, m).point;
    if (nearVertex(c)) return;
    found = {m, c};
    best = m.distanceTo(c);
  }

  void station(double x) {
    const auto up = hits({x, box.low.y}, {x, box.high.y}, 1);
    for (std::size_t k = 0; k + 1 < up.size(); k += 2) offer(centred({x, (up[k].y + up[k + 1].y) / 2}));
  }
};

ThreadPoint lengthCentroid(const PolylineCurve& c) {
  SpanMoments sum;
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const auto& a = c.vertices[i];
    const auto& b = c.vertices[(i + 1) % c.vertices.size()];
    if (a.point == b.point) continue;
    const auto m = spanMoments(a.point, b.point, a.bulge);
    sum = {sum.length + m.length, sum.mx + m.mx, sum.my + m.my};
  }
  const AcGePoint2d t =
      sum.length > 0 ? AcGePoint2d{sum.mx / sum.length, sum.my / sum.length} : c.vertices.front().point;
  return {t, closestPoint(c, t).point};
}

}  // namespace

ThreadPoint findThreadPoint(const PolylineCurve& c) {
  if (c.vertices.empty()) return {};
  Scan scan{c, extents(c), {}};
  for (int i = 0; i < 20; ++i) scan.station(scan.box.low.x + (scan.box.high.x - scan.box.low.x) * i * 0.05);
  if (scan.refined && scan.found.thread.distanceTo(scan.found.contour) > 1.0) return scan.found;
  return lengthCentroid(c);
}

}  // namespace tarnex
