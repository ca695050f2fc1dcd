// What hangs on a path's segments, put right after its vertices were moved.
// Knows the path alone.
#include "contour/geometrylibrary.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// The span that holds p and whose index is nearest to `from`; -1 for none. The span back to the threading
// point counts.
int spanHolding(const PolylineCurve& c, AcGePoint2d p, int from) {
  const int n = static_cast<int>(c.vertices.size());
  int best = -1;
  for (int i = 0; i < n; ++i) {
    const BulgeVertex &a = c.vertices[static_cast<std::size_t>(i)],
                      &b = c.vertices[static_cast<std::size_t>((i + 1) % n)];
    if (a.point == b.point || !isPointOnSpan(a.point, b.point, a.bulge, p)) continue;
    if (best < 0 || std::abs(i - from) < std::abs(best - from)) best = i;
  }
  return best;
}

}  // namespace

void CToolPath::setSegmentTaperAt(int vertex, double degrees) {
  if (vertex < 0 || vertex >= numVerts()) return;
  assertWriteEnabled();
  aSegTaper_.resize(static_cast<std::size_t>(numVerts()), 0.0);
  aSegTaper_[static_cast<std::size_t>(vertex)] = degrees;
  if (degrees != 0) dTaper_ = 0;
}

void CToolPath::settleBreak() {
  if (nBreakSeg_ < 0 || numVerts() < 3) return;
  assertWriteEnabled();
  const PolylineCurve& c = polyline();
  int at = spanHolding(c, ptBreak_, nBreakSeg_);
  if (at < 0) {
    PolylineCurve cut = c;
    cut.vertices.erase(cut.vertices.begin());
    const Closest nearest = closestPoint(cut, ptBreak_);
    const AcGeVector2d by = nearest.point - ptBreak_;
    ptBreak_ = nearest.point;
    ptBreakExit_ = ptBreakExit_ + by;
    at = std::clamp(1 + static_cast<int>(nearest.param), 1, numVerts() - 2);
  }
  nBreakSeg_ = at;
  const AcGePoint2d a = getPointAt(at), b = getPointAt((at + 1) % numVerts());
  const double bulge = getBulgeAt(at);
  dBreakBulgeA_ = dBreakBulgeB_ = 0;
  if (bulge == 0 || bulge == kMarkedBulge || a == b) return;
  const AcGePoint2d centre = bulgeToCircle(a, b, bulge).centre;
  const double turn = bulge > 0 ? 1 : -1;
  dBreakBulgeA_ = std::tan(sweepAngle(centre, a, ptBreak_, turn) / 4);
  dBreakBulgeB_ = std::tan(sweepAngle(centre, ptBreak_, b, turn) / 4);
}

}  // namespace tarnex
