// How a contour becomes the polyline of a path: threading point, entry point, then once around.
// Knows the contour and its split at the entry; where T and Q lie is decided above.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// Bulges of both parts of a span that is split at q.
struct Split {
  double before = 0, after = 0;
};
Split splitSpan(AcGePoint2d start, AcGePoint2d end, double bulge, AcGePoint2d q) {
  if (bulge == 0) return {};
  const AcGePoint2d c = bulgeToCircle(start, end, bulge).centre;
  const double direction = bulge > 0 ? 1 : -1;
  return {std::tan(sweepAngle(c, start, q, direction) / 4), std::tan(sweepAngle(c, q, end, direction) / 4)};
}

// A wire that starts on the drawn contour would already have cut into the part by its own radius.
bool hasLeadIn(const CToolPath::Making& m) {
  return m.thread.distanceTo(m.entry) > kSamePoint;
}

}  // namespace

void CToolPath::take(const Making& m) {
  nSide_ = m.nSide;
  nDirection_ = m.nDirection;
  dOffset_ = m.dOffset;
  dClearance_ = m.dClearance;
  nFlags_ = kContourPath;
}

bool CToolPath::initCircle(const Making& m, AcGePoint2d centre, double radius, int arcs) {
  constexpr int kMostArcs = 1000;
  if (arcs < 1 || arcs > kMostArcs || !(radius > 0) || !hasLeadIn(m)) return false;
  assertWriteEnabled();
  take(m);
  contour_.bCircle = true;
  contour_.dRadius = radius;
  contour_.ptCenter = centre;
  arcs = std::max(arcs, 2);  // a bulge can't hold a whole turn
  const double step = 2 * kPi / arcs;
  const double bulge = m.nDirection * std::tan(step / 4);
  const double a0 = acutAngle(centre, m.entry);
  PolylineCurve c;
  c.vertices.push_back({m.thread, 0});
  for (int k = 0; k < arcs; ++k)
    c.vertices.push_back({acutPolar(centre, a0 + k * m.nDirection * step, radius), bulge});
  c.vertices.push_back({c.vertices[1].point, 0});
  aSegTaper_.assign(c.vertices.size(), 0.0);
  setPolyline(std::move(c));
  return true;
}

bool CToolPath::initContour(const Making& m, const PolylineCurve& contour, int spanIndex) {
  const auto& v = contour.vertices;
  const std::size_t n = v.size(), i = static_cast<std::size_t>(spanIndex);
  constexpr std::size_t kMostVertices = 32767 - 3;  // counts are stored in 16 bits
  if (n < 2 || i >= n || n > kMostVertices || !hasLeadIn(m)) return false;
  assertWriteEnabled();
  take(m);
  contour_.bCircle = false;
  contour_.bClosed = true;
  contour_.aContour.clear();
  contour_.aContour.reserve(n);
  for (const auto& x : v) contour_.aContour.push_back({x.point.x, x.point.y, x.bulge});
  const Split split = splitSpan(v[i].point, v[(i + 1) % n].point, v[i].bulge, m.entry);
  std::vector<BulgeVertex> path;
  path.reserve(n + 3);
  path.push_back({m.thread, 0});
  path.push_back({m.entry, split.after});
  path.insert(path.end(), v.begin() + static_cast<std::ptrdiff_t>(i) + 1, v.end());
  path.insert(path.end(), v.begin(), v.begin() + static_cast<std::ptrdiff_t>(i));
  path.push_back({v[i].point, split.before});
  path.push_back({m.entry, 0});
  // Of two vertices that are one, the earlier goes.
  std::vector<BulgeVertex> kept;
  kept.reserve(path.size());
  for (const auto& vertex : path) {
    if (!kept.empty() && kept.back().point.distanceTo(vertex.point) <= kSamePoint) kept.pop_back();
    kept.push_back(vertex);
  }
  aSegTaper_.assign(kept.size(), 0.0);
  setPolyline({std::move(kept), false});
  return true;
}

bool CToolPath::initOpen(const OpenMaking& m, const PolylineCurve& curve) {
  constexpr std::size_t kMostVertices = 32767 - 1;  // counts are stored in 16 bits
  if (curve.vertices.size() < 2 || curve.vertices.size() > kMostVertices) return false;
  std::vector<BulgeVertex> kept{{m.thread, 0}};
  for (const auto& vertex : curve.vertices) {
    if (kept.back().point.distanceTo(vertex.point) <= kSamePoint)
      kept.back().bulge = vertex.bulge;
    else
      kept.push_back(vertex);
  }
  if (kept.size() < 2) return false;
  kept.back().bulge = 0;
  assertWriteEnabled();
  nSide_ = 1;
  nDirection_ = m.nDirection;
  dOffset_ = m.dOffset;
  dClearance_ = 0;
  nFlags_ = kOpenPath;
  bHasStyle_ = m.job;
  ptPrevEnd_ = m.thread;
  contour_ = {};
  contour_.bClosed = false;
  for (const auto& v : curve.vertices) contour_.aContour.push_back({v.point.x, v.point.y, v.bulge});
  aSegTaper_.assign(kept.size(), 0.0);
  setPolyline({std::move(kept), false});
  const AcGePoint2d entry = getPointAt(1);
  if (m.job) leaveSideways(m.dOvercutExit > 0 ? m.dOvercutExit : m.thread.distanceTo(entry) / 2);
  return true;
}

void CToolPath::leaveSideways(double exit) {
  const int last = numVerts() - 1;
  const AcGePoint2d a = getPointAt(last - 1), e = getPointAt(last);
  const double bulge = getBulgeAt(last - 1);
  dOvercutExit_ = exit;
  ptBreak_ = e;
  if (bulge == 0) {
    ptBreakExit_ = acutPolar(e, acutAngle(a, e) + nDirection_ * kPi / 2, exit);
    return;
  }
  const auto circle = bulgeToCircle(a, e, bulge);
  const double out = bulge > 0 ? -nDirection_ * exit : nDirection_ * exit;
  ptBreakExit_ = acutPolar(circle.centre, acutAngle(circle.centre, e), circle.radius + out);
}

}  // namespace tarnex
