// Finds what is wrong with the contours and wire paths of a drawing that is open in a session.
// Knows the surveys that see it; nothing of how it is told.
#include "apps/tarnex/markfinder.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "apps/tarnex/markopen.h"
#include "contour/geometrylibrary.h"
#include "contour/selfcrossing.h"
#include "host/platform/format.h"
#include "output3b/segment.h"
#include "pathcmd/paths.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

std::string at(AcGePoint2d p) {
  return formatted("%.3f,%.3f", p.x, p.y);
}

MarkKind kindOf(WireTrouble trouble) {
  switch (trouble) {
    case WireTrouble::kRadiusBelowOffset:
      return MarkKind::kTightRadius;
    case WireTrouble::kVanished:
      return MarkKind::kVanishes;
    case WireTrouble::kFallsApart:
      return MarkKind::kFallsApart;
    case WireTrouble::kOwnMethod:
      return MarkKind::kOwnMethod;
    case WireTrouble::kCutsNeighbour:
      return MarkKind::kWireOverlap;
    case WireTrouble::kSharpCorner:
      return MarkKind::kSharpCorner;
    case WireTrouble::kLeadInCrosses:
      return MarkKind::kLeadIn;
  }
  return MarkKind::kOwnMethod;
}

// What tells one contour from another that isn't drawn over it.
using Likeness = std::vector<std::int64_t>;
Likeness likenessOf(const SurveyedContour& c) {
  Likeness key;
  for (double v : {c.box.low.x, c.box.low.y, c.box.high.x, c.box.high.y, c.length, std::sqrt(c.area)})
    key.push_back(static_cast<std::int64_t>(std::clamp(std::round(v / (2 * kSamePoint)), -9e15, 9e15)));
  return key;
}

// The drawn contour of a path, without its lead-in.
SurveyedContour contourOf(const CToolPath& path, AcDbObjectId id) {
  SurveyedContour c;
  const auto& v = path.polyline().vertices;
  PolylineCurve shape{{v.begin() + 1, v.end() - 1}, true};
  if (path.hasFlag(kOpenPath)) shape = {{v.begin() + 1, v.end()}, false};
  if (auto found = surveyedContour(id, shape)) return *found;
  c.id = id;
  c.shape = std::move(shape);
  c.box = extents(c.shape);
  c.length = length(c.shape);
  return c;
}

class MarkFinder {
 public:
  MarkFinder(Session& session, JobSteps& steps, std::optional<double> gap)
      : session_(session), steps_(steps), gap_(gap) {}

  FoundMarks run() {
    std::vector<std::string> said;
    steps_.takeBlocksApart(said);
    const LooseSurvey loose = surveyLoose(session_.drawing(), steps_.shown(), gap_.value_or(kSamePoint));
    const auto doubled = findLooseMarks(session_.drawing(), loose, found_.findings);
    steps_.joinLooseCurves(loose, gap_);
    ContourSurvey survey = steps_.survey(loose);
    found_.openChains = survey.open.size();
    findOpenMarks(session_.drawing(), std::move(survey.open), doubled, found_.findings);
    contours_ = std::move(survey.contours);
    if (!doubled.empty()) std::erase_if(contours_, isThereAndBack);
    found_.contours = contours_.size();
    const bool withPaths = steps_.hasPaths();
    if (withPaths) addPathContours();
    sound_.assign(contours_.size(), true);
    findDoubled();
    findContacts();
    if (!withPaths) makePlainPaths();
    findWireTroubles(!withPaths);
    return std::move(found_);
  }

 private:
  std::string layerOf(AcDbObjectId id) {
    const auto* entity = session_.drawing().peek<AcDbEntity>(id);
    return entity ? session_.drawing().layerName(entity->layerId()) : std::string{};
  }

  void add(MarkKind kind, AcDbObjectId id, std::vector<AcGePoint2d> places, double value, double limit,
           std::string text) {
    found_.findings.push_back({kind, layerOf(id), std::move(places), value, limit, std::move(text)});
  }

  // What joining makes of a curve drawn twice; that has been told.
  static bool isThereAndBack(const SurveyedContour& c) {
    return c.shape.vertices.size() == 2 && c.area <= kNegligibleArea;
  }

  static AcGePoint2d startOf(const SurveyedContour& c) { return c.shape.vertices.front().point; }

  std::vector<AcDbObjectId> pathIds() {
    auto& state = session_.module().state<PathState>();
    rebuildPathList(session_.module());
    std::vector<AcDbObjectId> ids = state.PathList;
    std::erase_if(ids, [&](AcDbObjectId id) {
      const auto* path = session_.drawing().peek<CToolPath>(id);
      return !path || path->numVerts() < 3 || !session_.drawing().isShown(*path);
    });
    return ids;
  }

  void addPathContours() {
    for (AcDbObjectId id : pathIds())
      contours_.push_back(contourOf(*session_.drawing().peek<CToolPath>(id), id));
  }

  // ---- contours among each other

  // Of contours over each other the first one stands for all.
  void findDoubled() {
    std::map<Likeness, std::vector<std::size_t>> alike;
    for (std::size_t i = 0; i < contours_.size(); ++i) alike[likenessOf(contours_[i])].push_back(i);
    for (const auto& [key, members] : alike) {
      if (members.size() < 2) continue;
      for (std::size_t k = 1; k < members.size(); ++k) sound_[members[k]] = false;
      const auto& c = contours_[members.front()];
      add(MarkKind::kDoubled, c.id, {startOf(c)}, static_cast<double>(members.size()), 0,
          formatted("a closed contour of %.3f mm is drawn %zu times", c.length, members.size()));
    }
  }

  void findContacts() {
    std::vector<PolylineCurve> shapes;
    std::vector<std::size_t> index;
    for (std::size_t i = 0; i < contours_.size(); ++i)
      if (sound_[i]) {
        shapes.push_back(contours_[i].shape);
        index.push_back(i);
      }
    const ContactSurvey survey = contourContacts(shapes);
    found_.complete = survey.complete;
    const auto& all = survey.contacts;
    for (std::size_t i = 0; i < all.size();) {
      std::vector<AcGePoint2d> places;
      const ContourContact first = all[i];
      for (; i < all.size() && all[i].first == first.first && all[i].second == first.second; ++i)
        places.push_back(all[i].at);
      tellContact(index[first.first], index[first.second], std::move(places));
    }
  }

  void tellContact(std::size_t a, std::size_t b, std::vector<AcGePoint2d> places) {
    const auto &first = contours_[a], &second = contours_[b];
    sound_[a] = sound_[b] = false;
    if (a == b) {
      for (AcGePoint2d p : places)
        add(MarkKind::kSelfCrossing, first.id, {p}, 0, 0,
            formatted("the contour from %s crosses or touches itself", at(startOf(first)).c_str()));
      return;
    }
    const std::size_t count = places.size();
    add(MarkKind::kCrossing, first.id, std::move(places), static_cast<double>(count), 0,
        formatted("the contours from %s and from %s cross or touch%s", at(startOf(first)).c_str(),
                  at(startOf(second)).c_str(), count > 1 ? formatted(" at %zu places", count).c_str() : ""));
  }

  // ---- wires

  double offset() { return session_.module().settings.dOffset; }

  // The paths of the job, for what can have one.
  void makePlainPaths() {
    std::vector<const SurveyedContour*> holes, outer;
    for (std::size_t i = 0; i < contours_.size(); ++i) {
      const auto& c = contours_[i];
      const bool hole = c.depth % 2 == 1;
      if (!sound_[i]) continue;
      const double extent = std::max(c.box.high.x - c.box.low.x, c.box.high.y - c.box.low.y);
      if (!(c.area > kNegligibleArea) || !(extent <= kLargestExtent)) {
        add(MarkKind::kNoShape, c.id, {startOf(c)}, c.area, 0,
            c.area > kNegligibleArea ? "larger than the counts of a program" : "encloses nothing");
        continue;
      }
      if (hole && vanishesUnderOffset(c.shape, true, offset())) {
        add(MarkKind::kVanishes, c.id, {startOf(c)}, 0, offset(),
            formatted("a hole too small for a wire offset of %.3f mm", offset()));
        continue;
      }
      findTightRadii(c.id, c.shape, hole, offset());
      (hole ? holes : outer).push_back(&c);
    }
    steps_.makePaths({"BP", kInnerHole, {}, {}}, holes);
    steps_.makePaths({"BP", kOuterShape, {}, {}}, outer);
  }

  void findTightRadii(AcDbObjectId id, const PolylineCurve& shape, bool hole, double offset) {
    for (const TightArc& arc : tightArcs(shape, hole, offset))
      add(MarkKind::kTightRadius, id, {arc.at}, arc.radius, offset,
          formatted("radius %.3f mm is below the wire offset of %.3f mm", arc.radius, offset));
  }

  void findWireTroubles(bool plain) {
    const auto ids = pathIds();
    if (!plain) found_.paths = ids.size();
    std::map<int, AcDbObjectId> byNumber;
    for (AcDbObjectId id : ids) {
      const auto& path = *session_.drawing().peek<CToolPath>(id);
      byNumber.emplace(path.nPathNo(), id);
      if (plain || path.hasFlag(kOpenPath)) continue;
      findTightRadii(id, contourOf(path, id).shape, path.nSide() == kInnerHole,
                     path.dOffset() - path.nSide() * path.dClearance());
    }
    std::set<std::pair<int, int>> told;  // of a pair that comes too near to each other once
    for (const WireWarning& w : surveyWires(session_.drawing(), ids).warnings) {
      if (w.trouble == WireTrouble::kRadiusBelowOffset) continue;
      if (w.trouble == WireTrouble::kCutsNeighbour && !told.insert(std::minmax(w.path, w.other)).second)
        continue;
      const auto path = byNumber.find(w.path);
      const AcDbObjectId id = path == byNumber.end() ? AcDbObjectId{} : path->second;
      add(kindOf(w.trouble), id, {w.at}, w.value, w.limit, wireText(w, plain, byNumber));
      if (w.trouble == WireTrouble::kOwnMethod) findWireCrossings(id);
    }
  }

  // A plain drawing has no path numbers yet: its contours are told by a point of theirs.
  std::string wireText(const WireWarning& w, bool plain, const std::map<int, AcDbObjectId>& byNumber) {
    std::string text = sentenceOf(w);
    if (const auto end = text.find(": "); plain && end != std::string::npos) text.erase(0, end + 2);
    if (!plain || w.other == 0) return text;
    const auto other = byNumber.find(w.other);
    const std::string word = formatted("path %d", w.other);
    const auto where = text.find(word);
    if (where != std::string::npos && other != byNumber.end())
      text.replace(where, word.size(),
                   "the contour at " + at(session_.drawing().peek<CToolPath>(other->second)->getPointAt(1)));
    return text;
  }

  void findWireCrossings(AcDbObjectId id) {
    const auto* path = session_.drawing().peek<CToolPath>(id);
    if (!path) return;
    const OffsetPath wire = path->wireCentrePath();
    PolylineCurve walk;
    for (std::size_t k = 1; k < wire.vertices.size(); ++k)
      walk.vertices.push_back({wire.vertices[k], k < wire.bulges.size() ? wire.bulges[k] : 0});
    for (AcGePoint2d p : selfCrossings(walk))
      add(MarkKind::kWireOverlap, id, {p}, 0, 0, "the wire's own path crosses or touches itself");
  }

  Session& session_;
  JobSteps& steps_;
  std::optional<double> gap_;
  std::vector<SurveyedContour> contours_;
  std::vector<bool> sound_;  // no other lies over it, none crosses it
  FoundMarks found_;
};

}  // namespace

FoundMarks findMarks(Session& session, JobSteps& steps, std::optional<double> gap) {
  return MarkFinder(session, steps, gap).run();
}

}  // namespace tarnex
