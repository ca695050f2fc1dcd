// Object snap on the outlines of entities.
// Knows no prompt.
#include "host/editor/osnap.h"

#include <algorithm>
#include <cmath>

#include "host/editor/answers.h"
#include "host/editor/boxtest.h"
#include "host/editor/ucs.h"

namespace tarnex {

namespace {

constexpr double kOnCurve = 1e-6;  // mm; a typed point this near to a curve was meant to lie on it

struct Target {
  AcGePoint2d point, from;  // world
  Extents2d box;
};

struct Hit {
  const AcDbEntity* entity;
  double distance;
};

// What the target touches, nearest first.
std::vector<Hit> hitsIn(EditorState& state, const Target& target) {
  std::vector<Hit> hits;
  for (const auto id : state.nearby.candidates(*state.drawing, target.box)) {
    const auto* entity = state.drawing->peek<AcDbEntity>(id);
    if (!entity || !state.drawing->isShown(*entity) || !touchesBox(*entity, target.box)) continue;
    hits.push_back({entity, distanceTo(*entity, target.point)});
  }
  std::stable_sort(hits.begin(), hits.end(),
                   [](const Hit& a, const Hit& b) { return a.distance < b.distance; });
  return hits;
}

std::optional<AcGePoint2d> nearerOf(std::optional<AcGePoint2d> a, AcGePoint2d b, AcGePoint2d to) {
  return a && to.distanceTo(*a) <= to.distanceTo(b) ? *a : b;
}

std::optional<AcGePoint2d> crossing(const std::vector<Hit>& hits, const Target& target) {
  std::optional<AcGePoint2d> best;
  for (std::size_t i = 0; i < hits.size(); ++i)
    for (std::size_t j = i + 1; j < hits.size(); ++j) {
      std::vector<AcGePoint3d> points;
      (void)hits[i].entity->intersectWith(*hits[j].entity, Extend::kOnBothOperands, points);
      for (const auto& p : points)
        if (target.box.contains(p.flat())) best = nearerOf(best, p.flat(), target.point);
    }
  return best;
}

std::optional<AcGePoint2d> pointFor(OsnapMode mode, const std::vector<Hit>& hits, const Target& target) {
  if (mode == OsnapMode::kOsModeInt) return crossing(hits, target);
  for (const auto& hit : hits) {
    std::vector<AcGePoint3d> points;
    hit.entity->getOsnapPoints(mode, solid(target.point), solid(target.from), points);
    std::optional<AcGePoint2d> best;
    for (const auto& p : points) best = nearerOf(best, p.flat(), target.point);
    if (best) return best;
  }
  return std::nullopt;
}

std::optional<AcGePoint2d> snapped(EditorState& state, const Target& target,
                                   const std::vector<OsnapMode>& modes) {
  const auto hits = hitsIn(state, target);
  if (modes.size() == 1) return pointFor(modes[0], hits, target);
  std::optional<AcGePoint2d> best;
  for (const auto mode : modes) {
    if (mode == OsnapMode::kOsModeNear) continue;
    if (const auto p = pointFor(mode, hits, target); p && target.box.contains(*p))
      best = nearerOf(best, *p, target.point);
  }
  if (!best && std::find(modes.begin(), modes.end(), OsnapMode::kOsModeNear) != modes.end())
    best = pointFor(OsnapMode::kOsModeNear, hits, target);
  return best;
}

Target targetAt(const EditorState& state, const AcGePoint3d& p, const AcGePoint3d& from) {
  const auto at = ucsToWorld(*state.drawing, p).flat();
  const double half = halfPixels(state, state.integer("APERTURE"));
  return {at, ucsToWorld(*state.drawing, from).flat(), boxOf(at, at).grown(half)};
}

}  // namespace

double halfPixels(const EditorState& state, int pixels) {
  return pixels * state.view.height * 0.006666666666666667 * 0.5;
}

std::optional<AcGePoint3d> snapTo(EditorState& state, const AcGePoint3d& p,
                                  const std::vector<OsnapMode>& modes, const AcGePoint3d& from) {
  const auto found = snapped(state, targetAt(state, p, from), modes);
  if (!found) return std::nullopt;
  return worldToUcs(*state.drawing, solid(*found, state.drawing->ucsorg.z));
}

AcGePoint3d runningSnap(AcEditor& editor, EditorState& state, const AcGePoint3d& p, const AcGePoint3d* base) {
  const int bits = editor.intVar("OSMODE");
  std::vector<OsnapMode> modes;
  for (const auto mode :
       {OsnapMode::kOsModeEnd, OsnapMode::kOsModeMid, OsnapMode::kOsModeCen, OsnapMode::kOsModeNode,
        OsnapMode::kOsModeQuad, OsnapMode::kOsModeInt, OsnapMode::kOsModePerp, OsnapMode::kOsModeNear})
    if (bits & static_cast<int>(mode)) modes.push_back(mode);
  if (modes.empty()) return p;
  // Several modes, so that none reaches beyond the target.
  modes.push_back(modes.back());
  const Target target = targetAt(state, p, base ? *base : state.lastPoint);
  const auto hits = hitsIn(state, target);
  if (!hits.empty() && hits[0].distance <= kOnCurve) return p;
  return snapTo(state, p, modes, base ? *base : state.lastPoint).value_or(p);
}

std::optional<AcGePoint3d> AcEditor::acedOsnap(const AcGePoint3d& p, std::string_view mode) {
  struct Row {
    std::string_view word;
    OsnapMode mode;
  };
  static constexpr Row kRows[] = {{"end", OsnapMode::kOsModeEnd},   {"mid", OsnapMode::kOsModeMid},
                                  {"cen", OsnapMode::kOsModeCen},   {"quad", OsnapMode::kOsModeQuad},
                                  {"int", OsnapMode::kOsModeInt},   {"perp", OsnapMode::kOsModePerp},
                                  {"near", OsnapMode::kOsModeNear}, {"node", OsnapMode::kOsModeNode}};
  std::vector<OsnapMode> modes;
  for (std::string_view rest = mode; !rest.empty();) {
    const auto comma = rest.find(',');
    for (const auto& row : kRows)
      if (equalIgnoringCase(trimmed(rest.substr(0, comma)), row.word)) modes.push_back(row.mode);
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
  }
  if (modes.empty()) return std::nullopt;
  return snapTo(*state_, p, modes, state_->lastPoint);
}

}  // namespace tarnex
