// The mark on a corner arc.
// Knows the path alone; what is said about a refusal is the command's matter.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "toolpath/toolpath.h"

namespace tarnex {

bool CToolPath::isCorner(int i) const {
  const auto arc = [&](int k) { return isArcBulge(getBulgeAt(k)); };
  return i + 1 < numVerts() && arc(i) && !arc(i + 1) && (i == 0 || !arc(i - 1));
}

CToolPath::CornerMark CToolPath::markCorner(AcGePoint2d pick, bool on) {
  const auto& v = polyline().vertices;
  const auto isArc = [&](std::size_t i) { return isArcBulge(v[i].bulge); };
  if (!on && hasFlag(kAllCornersR)) setFlag(kAllCornersR, false);
  std::size_t i = 0;
  while (i + 1 < v.size() &&
         (v[i].point == v[i + 1].point || !isPointOnSpan(v[i].point, v[i + 1].point, v[i].bulge, pick)))
    ++i;
  if (i + 1 >= v.size()) return CornerMark::kNoSegment;
  if (!isArc(i)) return CornerMark::kStraight;
  // The writers draw the two straight spans out to where they meet.
  if (isArc(i + 1)) return CornerMark::kNextIsArc;
  if (i > 0 && isArc(i - 1)) return CornerMark::kPreviousIsArc;
  if (hasFlag(kAllCornersR)) setFlag(kAllCornersR, false);
  const int vertex = static_cast<int>(i);
  if (!on)
    removeCodeAt(vertex);
  else if (std::find(aCodeVertex_.begin(), aCodeVertex_.end(), vertex) == aCodeVertex_.end())
    setCodeAt(vertex, kCornerMark);
  return CornerMark::kDone;
}

}  // namespace tarnex
