// The lists that the ISO writers work from: the polyline, or its form after corner relief.
// Knows the relief routine by its contract alone.
#include <algorithm>
#include <functional>

#include "contour/geometrylibrary.h"
#include "frame/settings.h"
#include "toolpath/cornerrelief.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// A marked bulge counts as straight; a marked vertex on top of the next one goes.
bool keepVertex(BulgeVertex& v, const AcGePoint2d* next) {
  if (v.bulge != kMarkedBulge) return true;
  v.bulge = 0;
  return !next || !(v.point.distanceTo(*next) <= kSamePoint);
}

void addTo(OutputLists& lists, const BulgeVertex& v, double taper, int pathVertex) {
  lists.vertices.push_back(v.point);
  lists.bulges.push_back(v.bulge);
  lists.taper.push_back(taper);
  lists.pathVertex.push_back(pathVertex);
}

constexpr int kKindWithoutRelief = 4;

void addKept(OutputLists& lists, const std::vector<BulgeVertex>& vertices,
             const std::function<double(std::size_t)>& taper,
             const std::function<int(std::size_t)>& pathVertex) {
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    BulgeVertex v = vertices[i];
    if (keepVertex(v, i + 1 < vertices.size() ? &vertices[i + 1].point : nullptr))
      addTo(lists, v, taper(i), pathVertex(i));
  }
}

}  // namespace

OutputLists CToolPath::prepareOutput(const WireCutSettings& settings, const CornerRelief& relief) const {
  OutputLists lists;
  const auto& path = polyline().vertices;
  const bool wanted = relief && database() && path.size() >= 3 && nCode_ % 100 != kKindWithoutRelief &&
                      !hasSegTaper() && !hasFlag(kFourAxis) && !hasFlag(kOpenPath) &&
                      (settings.dIsoFixA != 0.0 || settings.dIsoFixB != 0.0);
  std::optional<RelievedContour> relieved;
  if (wanted)
    relieved = relieveContour(*database(), relief, {{path.begin() + 1, path.end() - 1}, true},
                              {settings.dIsoFixB, settings.dIsoFixA, nSide_});
  if (!relieved) {
    addKept(
        lists, path,
        [&](std::size_t i) { return hasFlag(kFourAxis) || i >= aSegTaper_.size() ? 0.0 : aSegTaper_[i]; },
        [](std::size_t i) { return static_cast<int>(i); });
    return lists;
  }
  addTo(lists, path[0], aSegTaper_.empty() ? 0.0 : aSegTaper_[0], 0);
  int own = 0;
  const auto& flags = relieved->flags;
  addKept(
      lists, relieved->vertices, [](std::size_t) { return 0.0; },
      [&](std::size_t i) { return i < flags.size() && flags[i] != 0 ? -1 : ++own; });
  // Each corner has two vertices more.
  lists.relievedCorners = static_cast<int>(std::ranges::count_if(flags, [](int f) { return f != 0; })) / 2;
  if (lists.vertices.size() > 1) addTo(lists, {lists.vertices[1], 0}, 0.0, static_cast<int>(path.size()) - 1);
  return lists;
}

}  // namespace tarnex
