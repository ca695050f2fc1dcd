// What orders paths, and what they are drawn with.
// Knows path entities, and nothing of how they were made.
#include "pathcmd/paths.h"

#include <algorithm>

#include "pathcmd/exchangesort.h"

namespace tarnex {

namespace {

constexpr double kFarAway = 99999.0;   // mm; no path farther than this is the nearest
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
  double length;  // mm
  AcGePoint2d start;
};

// The walk among paths of one length. Where each path stands is kept beside an index by length, so that a
// step looks at the paths of that length alone; they are looked at in the order of their places, as a scan
// would.
class EqualLengthWalk {
 public:
  explicit EqualLengthWalk(std::vector<Measured>& paths)
      : paths_(paths), place_(paths.size()), item_(paths.size()) {
    for (std::size_t i = 0; i < paths.size(); ++i) place_[i] = item_[i] = i;
    for (const auto& p : paths) lengths_.push_back(p.length);
  }

  // Among the paths from place `from` on that are as long as `length`, the nearest to p comes to place `to`.
  void bringNearest(std::size_t from, std::size_t to, double length, AcGePoint2d p, double best) {
    collect(from, length);
    for (std::size_t j : places_) {
      const double distance = paths_[j].start.distanceTo(p);
      if (!(distance < best)) continue;
      best = distance;
      exchange(j, to);
    }
  }

 private:
  void collect(std::size_t from, double length) {
    places_.clear();
    // A little wider than the tolerance; the exact test follows.
    auto at = std::lower_bound(lengths_.begin(), lengths_.end(), length - 2 * kSameLength);
    for (; at != lengths_.end() && *at <= length + 2 * kSameLength; ++at) {
      const std::size_t j = place_[static_cast<std::size_t>(at - lengths_.begin())];
      if (j >= from && !(std::abs(*at - length) > kSameLength)) places_.push_back(j);
    }
    std::sort(places_.begin(), places_.end());
  }

  void exchange(std::size_t a, std::size_t b) {
    std::swap(paths_[a], paths_[b]);
    std::swap(item_[a], item_[b]);
    place_[item_[a]] = a;
    place_[item_[b]] = b;
  }

  std::vector<Measured>& paths_;
  std::vector<double> lengths_;            // ascending, by item
  std::vector<std::size_t> place_, item_;  // of an item; at a place
  std::vector<std::size_t> places_;
};

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
  auto& list = state.PathList;
  const auto end = std::min(static_cast<std::size_t>(std::max(last + 1, 0)), list.size());
  std::vector<std::optional<AcGePoint2d>> starts;
  for (AcDbObjectId id : list) starts.push_back(startOf(drawing, id));
  for (std::size_t i = static_cast<std::size_t>(std::max(first, 0)); i + 1 < end; ++i) {
    if (!starts[i]) continue;
    double best = kFarAway;
    for (std::size_t j = i + 1; j < end; ++j) {
      if (!starts[j]) continue;
      const double distance = starts[i]->distanceTo(*starts[j]);
      if (!(distance < best)) continue;
      best = distance;
      std::swap(list[i + 1], list[j]);
      std::swap(starts[i + 1], starts[j]);
    }
  }
  renumberAll(drawing, state);
}

void sortByLength(AcDbDatabase& drawing, PathState& state) {
  std::vector<Measured> paths;
  for (AcDbObjectId id : state.PathList)
    if (const auto* path = pathAt(drawing, id))
      paths.push_back({id, path->contourLength(), path->getPointAt(0)});
  exchangeSort(paths, [](const Measured& a, const Measured& b) { return a.length < b.length; });
  EqualLengthWalk walk(paths);
  for (std::size_t i = 0; i + 1 < paths.size(); ++i) {
    const AcGePoint2d p = paths[i].start;
    double length = paths[i].length;
    if (std::abs(paths[i + 1].length - length) > kSameLength) {
      length = paths[i + 1].length;
      walk.bringNearest(i + 2, i + 1, length, p, p.distanceTo(paths[i + 1].start));
    }
    walk.bringNearest(i + 1, i + 1, length, p, kFarAway);
  }
  state.PathList.clear();
  for (const auto& path : paths) state.PathList.push_back(path.id);
  renumberAll(drawing, state);
}

}  // namespace tarnex
