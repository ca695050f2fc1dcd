// A path as the host sees it: drawing, snap points, grips; and the chains of points around the paths. What a
// drawing consists of stands in pathdrawing.
#include "toolpath/display.h"

#include "frame/drawingvars.h"
#include "toolpath/pathdrawing.h"

namespace tarnex {

namespace {

// Of a four-axis path's marks: the vertex belongs to the lower contour, the upper point to the upper one.
constexpr int kLowerMatch = 1, kUpperMatch = 2;

}  // namespace

void CToolPath::worldDraw(AcGiWorldDraw& draw) const {
  PathDrawing(*this, draw).run();
}

void CToolPath::getOsnapPoints(OsnapMode mode, AcGePoint3d pick, AcGePoint3d last,
                               std::vector<AcGePoint3d>& out) const {
  if (!hasFlag(kFourAxis) || mode != OsnapMode::kOsModeEnd) {
    CToolPathBase::getOsnapPoints(mode, pick, last, out);
    return;
  }
  const auto marked = [&](std::size_t i, int match) {
    return i < aSyncMark_.size() && (static_cast<int>(aSyncMark_[i]) & match) != 0;
  };
  for (std::size_t i = 0; i < polyline().vertices.size(); ++i)
    if (marked(i, kLowerMatch)) out.push_back(solid(polyline().vertices[i].point));
  for (std::size_t i = 1; i < upper_.vertices.size(); ++i)
    if (marked(i, kUpperMatch)) out.push_back(solid(upper_.vertices[i], dHeight_));
}

void CToolPath::getGripPoints(std::vector<AcGePoint3d>& out) const {
  CToolPathBase::getGripPoints(out);
  if (!hasFlag(kFourAxis)) return;
  for (const AcGePoint2d p : upper_.vertices) out.push_back(solid(p));
}

// The two contours of a four-axis path are matched vertex by vertex; its grips stay where they are.
ErrorStatus CToolPath::moveGripPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) {
  return hasFlag(kFourAxis) ? ErrorStatus::eOk : CToolPathBase::moveGripPointsAt(indices, offset);
}
ErrorStatus CToolPath::moveStretchPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) {
  return hasFlag(kFourAxis) ? ErrorStatus::eOk : CToolPathBase::moveStretchPointsAt(indices, offset);
}

void readTransitChains(AcDbDatabase& drawing, PathDisplay& display) {
  constexpr int kHighestStart = 100;
  const DrawingVars vars(drawing);
  const auto point = [&](const char* key, int k) { return vars.getPoint(key + std::to_string(k)); };
  display.startChain.clear();
  display.endChain.clear();
  int k = kHighestStart;
  while (k >= 0 && !point("STARTPOINT", k)) --k;
  for (; k >= 0; --k) {
    const auto p = point("STARTPOINT", k);
    if (!p) break;
    display.startChain.push_back(p->flat());
  }
  for (int j = 0;; ++j) {
    const auto p = point("ENDPOINT", j);
    if (!p) break;
    display.endChain.push_back(p->flat());
  }
}

}  // namespace tarnex
