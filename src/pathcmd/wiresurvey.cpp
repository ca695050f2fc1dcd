// What goes wrong between paths before a machine finds out.
// It only looks.
#include "pathcmd/wiresurvey.h"

#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"
#include "host/database/boxtree.h"
#include "host/geometry/offset.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

constexpr double kTouching = 0.001;  // mm; rounding of a program adds up to less

// A span with what it belongs to.
struct OwnedSpan {
  AcGePoint2d start, end;
  double bulge;
  std::uint32_t path;  // index of the path
};

Extents2d boxOf(const OwnedSpan& s) {
  return extents(spanCurve(s.start, s.end, s.bulge));
}

// Least distance of two spans: their ends to each other, or 0 where they cross.
double spanDistance(const OwnedSpan& a, const OwnedSpan& b, AcGePoint2d& at) {
  const Curve ca = spanCurve(a.start, a.end, a.bulge), cb = spanCurve(b.start, b.end, b.bulge);
  if (const auto hits = intersect(ca, cb, Extend::kOnBothOperands); !hits.empty()) {
    at = hits.front();
    return 0;
  }
  double best = 1e300;
  const auto offer = [&](const Curve& c, AcGePoint2d p) {
    if (const auto near = closestPoint(c, p); near.distance < best) {
      best = near.distance;
      at = p;
    }
  };
  offer(ca, b.start);
  offer(ca, b.end);
  offer(cb, a.start);
  offer(cb, a.end);
  return best;
}

class Survey {
 public:
  Survey(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& ids) {
    for (AcDbObjectId id : ids)
      if (const auto* path = drawing.peek<CToolPath>(id); path && path->numVerts() >= 3)
        paths_.push_back(path);
  }

  std::vector<WireWarning> run() {
    collect();
    for (std::uint32_t i = 0; i < paths_.size(); ++i) {
      fate(i);
      neighbours(i);
      leadIn(i);
    }
    return std::move(warnings_);
  }

 private:
  // Contour spans of all paths in one tree.
  void collect() {
    std::vector<BoxTree::Item> boxes;
    for (std::uint32_t i = 0; i < paths_.size(); ++i) {
      const auto& v = paths_[i]->polyline().vertices;
      for (std::size_t k = 1; k + 1 < v.size(); ++k) {
        spans_.push_back({v[k].point, v[k + 1].point, v[k].bulge, i});
        boxes.push_back({boxOf(spans_.back()), static_cast<std::uint32_t>(spans_.size() - 1)});
      }
    }
    tree_.build(std::move(boxes));
  }

  void warn(WireTrouble trouble, std::uint32_t path, int other, AcGePoint2d at, double value, double limit) {
    const int number = paths_[path]->nPathNo();
    for (auto w = warnings_.rbegin(); w != warnings_.rend() && w->path == number; ++w)
      if (w->other == other && w->trouble == trouble) return;
    warnings_.push_back({trouble, number, other, at, value, limit});
  }

  static double wireOffset(const CToolPath& p) { return p.dOffset() - p.nSide() * p.dClearance(); }

  void fate(std::uint32_t i) {
    const CToolPath& p = *paths_[i];
    if (p.hasFlag(kOpenPath)) return;
    PolylineCurve contour{{p.polyline().vertices.begin() + 1, p.polyline().vertices.end() - 1}, true};
    const double offset = wireOffset(p);
    const OffsetFate f = fateUnderOffset(contour, p.nSide() == kInnerHole, offset);
    if (f.vanished) warn(WireTrouble::kVanished, i, 0, f.at, 0, offset);
    if (f.pieces > 1) warn(WireTrouble::kFallsApart, i, 0, f.at, f.pieces, offset);
    if (f.smallestRadius > 0) warn(WireTrouble::kRadiusBelowOffset, i, 0, f.at, f.smallestRadius, offset);
    tool_ = p.wireCentrePath();
    if (tool_.ownMethod && !f.vanished) warn(WireTrouble::kOwnMethod, i, 0, p.getPointAt(1), 0, offset);
  }

  void neighbours(std::uint32_t i) {
    const CToolPath& p = *paths_[i];
    const double offset = wireOffset(p);
    for (std::size_t k = 1; k + 1 < tool_.vertices.size(); ++k) {
      const OwnedSpan wire{tool_.vertices[k], tool_.vertices[k + 1], tool_.bulges[k], i};
      nearest(wire, std::abs(offset) - kTouching, WireTrouble::kCutsNeighbour, offset);
    }
  }

  void leadIn(std::uint32_t i) {
    const CToolPath& p = *paths_[i];
    const AcGePoint2d t = p.getPointAt(0), q = p.getPointAt(1);
    PolylineCurve contour{{p.polyline().vertices.begin() + 1, p.polyline().vertices.end()}, false};
    for (AcGePoint2d hit : intersect(contour, LineCurve{t, q}, Extend::kOnBothOperands))
      if (hit.distanceTo(q) > kTouching) {
        warn(WireTrouble::kLeadInCrosses, i, p.nPathNo(), hit, 0, 0);
        break;
      }
    nearest({p.getPointAt(0), p.getPointAt(1), 0, i}, 0, WireTrouble::kLeadInCrosses, 0);
  }

  // Contour spans of other paths that come within `reach` of the span.
  void nearest(const OwnedSpan& span, double reach, WireTrouble trouble, double limit) {
    if (reach < 0) return;
    found_.clear();
    tree_.query(boxOf(span).grown(reach), found_);
    for (std::uint32_t k : found_) {
      if (spans_[k].path == span.path) continue;
      AcGePoint2d at;
      const double distance = spanDistance(span, spans_[k], at);
      if (distance < reach || (reach == 0 && distance == 0))
        warn(trouble, span.path, paths_[spans_[k].path]->nPathNo(), at, distance, limit);
    }
  }

  std::vector<const CToolPath*> paths_;
  std::vector<OwnedSpan> spans_;
  BoxTree tree_;
  OffsetPath tool_;
  std::vector<std::uint32_t> found_;
  std::vector<WireWarning> warnings_;
};

}  // namespace

OffsetFate fateUnderOffset(const PolylineCurve& contour, bool hole, double offset) {
  OffsetFate fate;
  if (contour.vertices.empty()) return fate;
  fate.at = contour.vertices.front().point;
  auto walk = contour.vertices;
  const bool counterClockwise = signedArea(walk) > 0;
  // Inside lies left of a counter-clockwise walk.
  const double toTheLeft = hole == counterClockwise ? offset : -offset;
  walk.push_back({walk.front().point, 0});
  if (const auto curves = offsetCurves(walk, toTheLeft)) {
    fate.vanished = curves->empty();
    fate.pieces = std::max<int>(static_cast<int>(curves->size()), 1);
  }
  for (std::size_t i = 0; i + 1 < walk.size(); ++i) {
    if (walk[i].bulge == 0 || walk[i].point == walk[i + 1].point || walk[i].bulge * toTheLeft <= 0) continue;
    const double radius = bulgeToCircle(walk[i].point, walk[i + 1].point, walk[i].bulge).radius;
    if (radius >= std::abs(offset) || (fate.smallestRadius > 0 && radius >= fate.smallestRadius)) continue;
    fate.smallestRadius = radius;
    fate.at = walk[i].point;
  }
  return fate;
}

std::vector<WireWarning> surveyWires(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& paths) {
  return Survey(drawing, paths).run();
}

}  // namespace tarnex
