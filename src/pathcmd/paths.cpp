// What orders paths, and what they are drawn with.
// Knows path entities, and nothing of how they were made.
#include "pathcmd/paths.h"

#include <algorithm>
#include <limits>

#include "pathcmd/exchangesort.h"
#include "pathcmd/nearestfirst.h"

namespace tarnex {

namespace {

constexpr double kSameLength = 0.001;  // mm

const CToolPath* pathAt(AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* path = drawing.peek<CToolPath>(id);
  return path && path->numVerts() > 0 ? path : nullptr;
}

std::optional<AcGePoint2d> startOf(AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* path = pathAt(drawing, id);
  return path ? std::optional(path->getPointAt(0)) : std::nullopt;
}

struct Measured {
  AcDbObjectId id;
  NearestFirst::Member member;
};

// Stands in for a path that can't be looked at: it keeps its place and is never the nearest.
constexpr AcGePoint2d kNowhere{std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::quiet_NaN()};

}  // namespace

PathDisplay pathDisplay(Module& module) {
  followPaths(module);
  PathDisplay display;
  display.settings = &module.settings;
  display.bOrderMode = module.bOrderMode;
  display.bShowMatchLines = module.bShowMatchLines;
  display.ptOrigin = module.drawing().ucsorg;
  display.pathCount = static_cast<int>(module.state<PathState>().PathList.size());
  readTransitChains(module.drawing(), display);
  return display;
}

void undoLastPath(AcDbDatabase& drawing, PathState& state) {
  if (state.PathList.empty()) return;
  std::vector<std::unique_ptr<AcDbEntity>> sources;
  if (auto path = drawing.open<CToolPath>(state.PathList.back(), OpenMode::kForWrite)) {
    state.lastEnd = path->getPrevEnd();
    sources = path->restoredContour();
    path->erase();
  }
  for (auto& source : sources) drawing.appendAcDbEntity(drawing.modelSpace(), std::move(source));
  state.PathList.pop_back();
  --state.nextPathNo;
}

void sortNearest(AcDbDatabase& drawing, PathState& state, int first, int last) {
  const auto size = static_cast<int>(state.PathList.size());
  const int begin = std::clamp(first, 0, size), end = std::clamp(last + 1, begin, size);
  const std::vector<AcDbObjectId> ids(state.PathList.begin() + begin, state.PathList.begin() + end);
  std::vector<NearestFirst::Member> starts;
  for (AcDbObjectId id : ids) starts.push_back({startOf(drawing, id).value_or(kNowhere)});
  NearestFirst row(starts);
  row.runAll();
  for (std::size_t i = 0; i < ids.size(); ++i)
    state.PathList[static_cast<std::size_t>(begin) + i] = ids[row.origin(i)];
  renumberAll(drawing, state);
}

void sortByLength(AcDbDatabase& drawing, PathState& state) {
  std::vector<Measured> paths;
  for (AcDbObjectId id : state.PathList)
    if (const auto* path = pathAt(drawing, id))
      paths.push_back({id, {path->getPointAt(0), path->contourLength()}});
  exchangeSort(paths, [](const Measured& a, const Measured& b) { return a.member.length < b.member.length; });
  std::vector<NearestFirst::Member> members;
  for (const Measured& path : paths) members.push_back(path.member);
  NearestFirst row(members, kSameLength);
  row.runAll();
  state.PathList.clear();
  for (std::size_t i = 0; i < row.size(); ++i) state.PathList.push_back(paths[row.origin(i)].id);
  renumberAll(drawing, state);
}

}  // namespace tarnex
