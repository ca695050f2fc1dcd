// The order in which what lies inside a contour is cut before it.
// Knows the source contours of paths.
#include <algorithm>

#include "contour/survey.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

std::optional<SurveyedContour> contourOf(const AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* path = drawing.peek<CToolPath>(id);
  if (!path || path->hasFlag(kOpenPath)) return std::nullopt;
  const PathContour& source = path->contour();
  PolylineCurve shape;
  shape.closed = true;
  if (source.bCircle) {
    const AcGeVector2d out{source.dRadius, 0};
    shape.vertices = {{source.ptCenter + out, 1}, {source.ptCenter - out, 1}};
  }
  for (const auto& v : source.aContour) shape.vertices.push_back({v.flat(), v.z});
  return surveyedContour(id, std::move(shape));
}

}  // namespace

std::vector<AcDbObjectId> insideFirst(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& order) {
  std::vector<SurveyedContour> contours;
  for (AcDbObjectId id : order)
    if (auto contour = contourOf(drawing, id)) contours.push_back(std::move(*contour));
  nestContours(contours);
  std::vector<std::vector<std::size_t>> inside(contours.size());
  for (std::size_t i = 0; i < contours.size(); ++i)
    if (contours[i].parent >= 0) inside[static_cast<std::size_t>(contours[i].parent)].push_back(i);
  std::vector<AcDbObjectId> sorted;
  std::vector<bool> placed(contours.size(), false);
  // A contour waits on the stack until all that lies inside it has been placed.
  const auto place = [&](std::size_t first) {
    std::vector<std::pair<std::size_t, std::size_t>> stack{{first, 0}};
    while (!stack.empty()) {
      auto& [at, next] = stack.back();
      if (next < inside[at].size()) {
        const std::size_t child = inside[at][next++];
        if (!placed[child]) stack.emplace_back(child, 0);
        continue;
      }
      if (!placed[at]) sorted.push_back(contours[at].id);
      placed[at] = true;
      stack.pop_back();
    }
  };
  std::size_t k = 0;
  for (AcDbObjectId id : order) {
    if (k < contours.size() && contours[k].id == id) {
      if (!placed[k]) place(k);
      ++k;
    } else {
      sorted.push_back(id);
    }
  }
  return sorted;
}

}  // namespace tarnex
