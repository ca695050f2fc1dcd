// The order in which what lies inside a contour is cut before it.
// Knows the source contours of paths.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "contour/survey.h"
#include "host/database/boxtree.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

const CToolPath* closedPath(const AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* path = drawing.peek<CToolPath>(id);
  return path && !path->hasFlag(kOpenPath) ? path : nullptr;
}

// How far a contour reaches, measured fast: its vertices, and a box that nothing of it leaves.
struct Reach {
  Extents2d vertices, most;
};

Reach reachOf(const PathContour& source) {
  Reach reach;
  double out = source.bCircle ? source.dRadius : 0;  // beyond the vertices, at most
  if (source.bCircle) reach.vertices.add(source.ptCenter);
  const auto& v = source.aContour;
  for (std::size_t i = 0; i < v.size(); ++i) {
    reach.vertices.add(v[i].flat());
    if (v[i].z == 0) continue;
    const double half = v[i].flat().distanceTo(v[(i + 1) % v.size()].flat()) / 2;
    out = std::max(out, half * std::abs(v[i].z));
  }
  const auto& [low, high] = reach.vertices;
  const double size = std::max({std::abs(low.x), std::abs(low.y), std::abs(high.x), std::abs(high.y), out});
  reach.most = reach.vertices.grown(out + 16 * roundoff(size));
  return reach;
}

// Whether some contour that comes earlier may have a later one inside it. No for sure where it says no: most
// orders that there are need no mending, and nobody has to find out how the contours lie in each other.
bool mayNeedMending(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& order) {
  std::vector<Reach> reaches;
  std::vector<BoxTree::Item> boxes;
  for (AcDbObjectId id : order) {
    const auto* path = closedPath(drawing, id);
    if (!path) continue;
    const Reach reach = reachOf(path->contour());
    if (reach.vertices.empty()) continue;
    reaches.push_back(reach);
    boxes.push_back({reaches.back().most, static_cast<std::uint32_t>(boxes.size())});
  }
  BoxTree tree;
  tree.build(std::move(boxes));
  std::vector<std::uint32_t> around;
  for (std::size_t i = 0; i < reaches.size(); ++i) {
    around.clear();
    tree.query(reaches[i].vertices, around);
    for (std::uint32_t k : around)
      if (k < i && reaches[k].most.contains(reaches[i].vertices)) return true;
  }
  return false;
}

std::optional<SurveyedContour> contourOf(const AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* path = closedPath(drawing, id);
  if (!path) return std::nullopt;
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
  if (!mayNeedMending(drawing, order)) return order;
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
