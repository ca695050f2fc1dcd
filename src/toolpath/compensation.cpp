// Compensation: from the drawn contour to the path that the wire's centre walks.
// Knows lines, arcs and bulges; lead-ins are only copied, and NC formats are above it.
#include "host/geometry/offset.h"
#include "toolpath/ownoffset.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// The host's offset of the contour without its lead-in, when it is one curve of at most as many vertices as
// the path.
bool takeHostOffset(const std::vector<BulgeVertex>& path, double toTheLeft, OffsetPath& out) {
  const auto curves = offsetCurves(std::span(path).subspan(1), toTheLeft);
  if (!curves || curves->empty() || curves->front().vertices.size() > path.size()) return false;
  const PolylineCurve& first = curves->front();
  out.pieces = static_cast<int>(curves->size());
  for (const auto& v : first.vertices) {
    out.vertices.push_back(v.point);
    out.bulges.push_back(v.bulge);
  }
  if (first.closed) {
    out.vertices.push_back(first.vertices.front().point);
    out.bulges.push_back(0);
  }
  return true;
}

}  // namespace

OffsetPath CToolPath::computeOffset(int side, double distance) const {
  const auto& path = polyline().vertices;
  OffsetPath result;
  if (distance == 0.0 || path.size() < 3) {
    for (const auto& v : path) {
      result.vertices.push_back(v.point);
      result.bulges.push_back(v.bulge);
    }
    return result;
  }
  result.vertices.reserve(path.size() + 1);
  result.bulges.reserve(path.size() + 1);
  result.vertices.push_back(path[0].point);
  result.bulges.push_back(0);
  if (takeHostOffset(path, side * distance, result)) return result;
  result.ownMethod = true;
  static_cast<PathCurve&>(result) =
      ownOffset({path, side, distance, nSide_ * nDirection_, dOffset_, contour_.bClosed});
  return result;
}

OffsetPath CToolPath::wireCentrePath() const {
  return computeOffset(nSide_, nDirection_ * (dOffset_ - nSide_ * dClearance_));
}

OffsetPath CToolPath::realContour() const {
  return computeOffset(nDirection_, -dClearance_);
}

}  // namespace tarnex
