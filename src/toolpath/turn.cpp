// A path turned about, entered from the other side, or with one vertex more: what hangs on its vertices and
// spans goes along. Knows the path alone.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// The span between the same vertices run the other way. A marked one is straight, and keeps its mark.
double turnedBulge(double bulge) {
  return bulge == kMarkedBulge ? bulge : 0 - bulge;  // no negative zero
}

AcGePoint2d beyond(AcGePoint2d p, AcGePoint2d through) {
  return acutPolar(through, acutAngle(through, p) + kPi, through.distanceTo(p));
}

}  // namespace

void CToolPath::addVertexAt(int index, AcGePoint2d p, double bulge) {
  index = std::clamp(index, 0, numVerts());
  moveBreakFor(index, p);
  AcDbPolyline::addVertexAt(index, p, bulge, -1, -1);
  const auto at = std::min(static_cast<std::size_t>(index), aSegTaper_.size());
  aSegTaper_.insert(aSegTaper_.begin() + static_cast<std::ptrdiff_t>(at), 0.0);
  for (int& vertex : aCodeVertex_)
    if (vertex >= index) ++vertex;
}

// Of a span that p splits, the break stays in the half where it lies.
void CToolPath::moveBreakFor(int index, AcGePoint2d p) {
  if (nBreakSeg_ < 0 || nBreakSeg_ >= numVerts() || index > nBreakSeg_ + 1) return;
  assertWriteEnabled();
  if (index <= nBreakSeg_) {
    ++nBreakSeg_;
    return;
  }
  const AcGePoint2d a = getPointAt(nBreakSeg_), b = getPointAt((nBreakSeg_ + 1) % numVerts());
  const double bulge = getBulgeAt(nBreakSeg_);
  if (!isArcBulge(bulge) || a == b) {
    if ((ptBreak_ - a).dotProduct(b - a) > (p - a).dotProduct(b - a)) ++nBreakSeg_;
    return;
  }
  const AcGePoint2d c = bulgeToCircle(a, b, bulge).centre;
  const double turn = bulge > 0 ? 1 : -1;
  if (turn * (sweepAngle(c, a, ptBreak_, turn) - sweepAngle(c, a, p, turn)) > 0) {
    ++nBreakSeg_;
    dBreakBulgeA_ = std::tan(sweepAngle(c, p, ptBreak_, turn) / 4);
  } else {
    dBreakBulgeB_ = std::tan(sweepAngle(c, ptBreak_, p, turn) / 4);
  }
}

bool CToolPath::reverse() {
  if (!contour_.bClosed && !contour_.bCircle) return false;
  assertWriteEnabled();
  PolylineCurve c = polyline();
  const auto old = c.vertices;
  const std::size_t n = old.size();
  auto oldTaper = aSegTaper_;
  oldTaper.resize(n, 0.0);  // a stored path may lack some
  aSegTaper_.resize(n, 0.0);
  for (std::size_t j = 1; j < n; ++j) {
    c.vertices[j].point = old[n - j].point;
    c.vertices[j].bulge = turnedBulge(old[n - 1 - j].bulge);
    aSegTaper_[j] = oldTaper[n - 1 - j];
  }
  reverseCodes(static_cast<int>(n));
  setPolyline(std::move(c));
  reverseBreak(static_cast<int>(n));
  if (hasFlag(kFourAxis)) reverseUpper(n);
  nDirection_ = -nDirection_;
  return true;
}

// The threading point keeps its code, and what stands at no vertex stays there. A corner's mark stands for
// the arc, and goes to where that now starts.
void CToolPath::reverseCodes(int n) {
  auto turned = aCodeVertex_;
  for (std::size_t k = 0; k < turned.size(); ++k) {
    const int vertex = aCodeVertex_[k];
    if (vertex <= 0 || vertex >= n) continue;
    const bool ofArc = aCodeText_[k] == kCornerMark && isCorner(vertex) && getCodeAt(vertex + 1).empty();
    turned[k] = n - vertex - (ofArc ? 1 : 0);
  }
  aCodeVertex_ = std::move(turned);
}

// The spans to and from the threading point keep their places.
void CToolPath::reverseBreak(int n) {
  if (nBreakSeg_ < 1 || nBreakSeg_ > n - 2) return;
  nBreakSeg_ = n - 1 - nBreakSeg_;
  const auto turn = [](double& a, double& b) {
    std::swap(a, b);
    a = turnedBulge(a);
    b = turnedBulge(b);
  };
  turn(dBreakBulgeA_, dBreakBulgeB_);
  turn(dBreakUpperBulgeA_, dBreakUpperBulgeB_);
}

// Partners stay partners.
void CToolPath::reverseUpper(std::size_t n) {
  if (upper_.vertices.size() != n || upper_.bulges.size() != n) return;
  const PathCurve old = upper_;
  const auto oldMark = aSyncMark_;
  for (std::size_t j = 1; j < n; ++j) {
    upper_.vertices[j] = old.vertices[n - j];
    upper_.bulges[j] = turnedBulge(old.bulges[n - 1 - j]);
    if (oldMark.size() == n) aSyncMark_[j] = oldMark[n - j];
  }
}

bool CToolPath::flipSide() {
  if ((!contour_.bClosed && !contour_.bCircle) || numVerts() < 2) return false;
  assertWriteEnabled();
  setPointAt(0, beyond(getPointAt(0), getPointAt(1)));
  if (nBreakSeg_ >= 0) ptBreakExit_ = beyond(ptBreakExit_, ptBreak_);
  if (hasFlag(kFourAxis)) {
    if (upper_.vertices.size() >= 2) upper_.vertices[0] = beyond(upper_.vertices[0], upper_.vertices[1]);
    if (nBreakSeg_ >= 0) ptBreakUpperExit_ = beyond(ptBreakUpperExit_, ptBreakUpper_);
  }
  nSide_ = -nSide_;
  return true;
}

}  // namespace tarnex
