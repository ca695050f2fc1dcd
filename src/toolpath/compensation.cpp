// Compensation: from the drawn contour to the path that the wire's centre walks.
// Knows lines, arcs and bulges; lead-ins are only copied, and NC formats are above it.
#include "host/geometry/offset.h"
#include "toolpath/offsetspans.h"
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

OffsetPath offsetOf(const OwnOffsetInput& from) {
  const auto& path = from.path;
  OffsetPath result;
  result.vertices.reserve(path.size() + 1);
  result.bulges.reserve(path.size() + 1);
  result.vertices.push_back(path[0].point);
  result.bulges.push_back(0);
  if (takeHostOffset(path, from.side * from.distance, result)) return result;
  result.ownMethod = true;
  static_cast<PathCurve&>(result) = ownOffset(from);
  return result;
}

}  // namespace

// Out-and-back steps go with the corner that they stand at: the wire can't run beside them.
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
  if (!hasSteps(path))
    return offsetOf({path, side, distance, nSide_ * nDirection_, dOffset_, contour_.bClosed});
  const SteplessPath contour = withoutSteps(path);
  result = offsetOf({contour.vertices, side, distance, nSide_ * nDirection_, dOffset_, contour_.bClosed});
  restoreSteps(contour, side * distance, result);
  return result;
}

OffsetPath CToolPath::wireCentrePath() const {
  return computeOffset(nSide_, nDirection_ * (dOffset_ - nSide_ * dClearance_));
}

OffsetPath CToolPath::realContour() const {
  return computeOffset(nDirection_, -dClearance_);
}

}  // namespace tarnex
