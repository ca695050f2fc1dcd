// What goes wrong between paths before a machine finds out.
// It only looks.
#include "pathcmd/wiresurvey.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "contour/geometrylibrary.h"
#include "host/geometry/offset.h"
#include "pathcmd/spanfinder.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

constexpr double kTouching = 0.001;  // mm; rounding of a program adds up to less

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

// Inside lies left of a counter-clockwise walk.
double leftOffset(const PolylineCurve& contour, bool hole, double offset) {
  return hole == (signedArea(contour.vertices) > 0) ? offset : -offset;
}

// As tightArcs, for a wire `toTheLeft` mm left of the contour.
std::vector<TightArc> tightArcsBeside(const PolylineCurve& contour, double toTheLeft) {
  std::vector<TightArc> tight;
  const auto& v = contour.vertices;
  for (std::size_t i = 0; i < v.size(); ++i) {
    const AcGePoint2d end = v[(i + 1) % v.size()].point;
    if (v[i].bulge == 0 || v[i].point == end || v[i].bulge * toTheLeft <= 0) continue;
    const double radius = bulgeToCircle(v[i].point, end, v[i].bulge).radius;
    if (radius < std::abs(toTheLeft)) tight.push_back({radius, v[i].point});
  }
  return tight;
}

// The smallest of them; radius 0: none.
TightArc smallestTightArc(const PolylineCurve& contour, double toTheLeft) {
  TightArc tight;
  for (const TightArc& arc : tightArcsBeside(contour, toTheLeft))
    if (tight.radius == 0 || arc.radius < tight.radius) tight = arc;
  return tight;
}

// Unit directions of travel at both ends of a span: the chord's turned by half the sweep, whose tangent is
// the bulge twice over.
struct Headings {
  AcGeVector2d atStart, atEnd;
};
Headings headingsOf(AcGePoint2d start, AcGePoint2d end, double bulge) {
  const AcGeVector2d chord = (end - start).normal();
  if (bulge == 0) return {chord, chord};
  const double square = bulge * bulge, size = 1 / (1 + square);
  const AcGeVector2d ahead = chord * (1 - square), aside = chord.perpVector() * (2 * bulge);
  return {(ahead - aside) * size, (ahead + aside) * size};
}

struct SharpCorner {
  double reach = 0;  // mm from the corner to where the wire turns; 0 none
  AcGePoint2d at;
};

// The corner round whose outside the wire runs farthest out, when that is more than a few offsets.
SharpCorner sharpestCorner(const PolylineCurve& contour, double toTheLeft) {
  constexpr double kFarOut = 6;  // offsets; a corner of 20 degrees
  SharpCorner sharp;
  const auto& v = contour.vertices;
  const double offset = std::abs(toTheLeft);
  Headings before = headingsOf(v.back().point, v.front().point, v.back().bulge);
  for (std::size_t i = 0; i < v.size(); ++i) {
    const AcGePoint2d previous = v[i > 0 ? i - 1 : v.size() - 1].point, here = v[i].point;
    const AcGePoint2d after = v[i + 1 < v.size() ? i + 1 : 0].point;
    const AcGeVector2d in = before.atEnd;
    before = headingsOf(here, after, v[i].bulge);
    if (previous == here || here == after) continue;
    const AcGeVector2d out = before.atStart;
    if (in.crossProduct(out) * toTheLeft >= 0) continue;
    const double halfTurnCosine = std::sqrt(std::max(0.0, (1 + in.dotProduct(out)) / 2));
    const double reach = offset / std::max(halfTurnCosine, 1e-9);
    if (reach > kFarOut * offset && reach > sharp.reach) sharp = {reach, here};
  }
  return sharp;
}

class Survey {
 public:
  Survey(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& ids, WirePaths& wires,
         const WireOffset& offset)
      : wirePaths_(wires), offset_(offset) {
    for (AcDbObjectId id : ids)
      if (const auto* path = drawing.peek<CToolPath>(id); path && path->numVerts() >= 3)
        paths_.push_back(path);
  }

  WireSurvey run() {
    contours_.build(paths_);
    for (std::uint32_t i = 0; i < paths_.size(); ++i) {
      fate(i);
      neighbours(i);
      leadIn(i);
    }
    return {std::move(warnings_), cutLength_};
  }

 private:
  void warn(WireTrouble trouble, std::uint32_t path, int other, AcGePoint2d at, double value, double limit) {
    const int number = paths_[path]->nPathNo();
    for (auto w = warnings_.rbegin(); w != warnings_.rend() && w->path == number; ++w)
      if (w->other == other && w->trouble == trouble) return;
    warnings_.push_back({trouble, number, other, at, value, limit});
  }

  double wireOffset(const CToolPath& p) const {
    return offset_ ? offset_(p) : p.dOffset() - p.nSide() * p.dClearance();
  }

  // The wire's centre path, and what the offset did to the contour.
  void fate(std::uint32_t i) {
    const CToolPath& p = *paths_[i];
    const double offset = wireOffset(p);
    tool_ = offset_ ? p.computeOffset(p.nSide(), p.nDirection() * offset) : wirePaths_.take(p);
    addLength(p);
    if (p.hasFlag(kOpenPath)) return;
    PolylineCurve contour{{p.polyline().vertices.begin() + 1, p.polyline().vertices.end() - 1}, true};
    const bool hole = p.nSide() == kInnerHole;
    const double toTheLeft = leftOffset(contour, hole, offset);
    if (const auto small = smallestTightArc(contour, toTheLeft); small.radius > 0)
      warn(WireTrouble::kRadiusBelowOffset, i, 0, small.at, small.radius, offset);
    if (const auto sharp = sharpestCorner(contour, toTheLeft); sharp.reach > 0)
      warn(WireTrouble::kSharpCorner, i, 0, sharp.at, sharp.reach, offset);
    // The host's offset tells by itself what became of the contour.
    const OffsetFate f = tool_.ownMethod ? fateUnderOffset(contour, hole, offset)
                                         : OffsetFate{false, tool_.pieces, p.getPointAt(1)};
    if (f.vanished) warn(WireTrouble::kVanished, i, 0, f.at, 0, offset);
    if (f.pieces > 1) warn(WireTrouble::kFallsApart, i, 0, f.at, f.pieces, offset);
    if (tool_.ownMethod && !f.vanished) warn(WireTrouble::kOwnMethod, i, 0, p.getPointAt(1), 0, offset);
  }

  void addLength(const CToolPath& p) {
    const auto& v = tool_.vertices;
    for (std::size_t k = 0; k + 1 < v.size(); ++k)
      if (v[k] != v[k + 1]) cutLength_ += spanLength(v[k], v[k + 1], tool_.bulges[k]);
    if (!v.empty() && !p.hasFlag(kOpenPath)) cutLength_ += v.back().distanceTo(v.front());
  }

  void neighbours(std::uint32_t i) {
    const CToolPath& p = *paths_[i];
    const double offset = wireOffset(p);
    wires_.clear();
    for (std::size_t k = 1; k + 1 < tool_.vertices.size(); ++k)
      wires_.push_back({tool_.vertices[k], tool_.vertices[k + 1], tool_.bulges[k], i});
    const double reach = std::abs(offset) - kTouching;
    if (reach < 0) return;
    const bool few = lookAround(i, reach);
    for (const OwnedSpan& wire : wires_) {
      if (few)
        nearestOf(around_, wire, reach, WireTrouble::kCutsNeighbour, offset);
      else
        nearest(wire, reach, WireTrouble::kCutsNeighbour, offset);
    }
  }

  // Contour spans of other paths around the whole wire of path i. False when they are so many that each span
  // of the wire had better ask for itself.
  bool lookAround(std::uint32_t i, double reach) {
    constexpr std::size_t kFew = 64;
    Extents2d all;
    for (const OwnedSpan& wire : wires_) all.add(boxOf(wire));
    return contours_.find(all.grown(reach), i, kFew, around_);
  }

  // Points at which the line meets the path's own contour, along the contour.
  template <class Each>
  static void ownHits(const CToolPath& p, const LineCurve& line, const Each& each) {
    const Extents2d box = boxOf({line.start, line.end}).grown(kTouching);
    const auto& v = p.polyline().vertices;
    for (std::size_t k = 1; k + 1 < v.size(); ++k) {
      const OwnedSpan span{v[k].point, v[k + 1].point, v[k].bulge};
      if (span.start == span.end || !box.overlaps(boxOf(span))) continue;
      for (AcGePoint2d hit :
           intersect(spanCurve(span.start, span.end, span.bulge), line, Extend::kOnBothOperands))
        each(hit);
    }
  }

  void leadIn(std::uint32_t i) {
    const CToolPath& p = *paths_[i];
    const AcGePoint2d t = p.getPointAt(0), q = p.getPointAt(1);
    const auto crossed = [&](AcGePoint2d hit) {
      warn(WireTrouble::kLeadInCrosses, i, p.nPathNo(), hit, 0, 0);
    };
    ownHits(p, {t, q}, [&](AcGePoint2d hit) {
      if (hit.distanceTo(q) > kTouching) crossed(hit);
    });
    // Where the span under Q has vanished the wire goes in elsewhere, and on its way meets nothing either.
    if (tool_.vertices.size() > 1 && std::abs(wireOffset(p)) > kTouching)
      ownHits(p, {t, tool_.vertices[1]}, crossed);
    nearest({p.getPointAt(0), p.getPointAt(1), 0, i}, 0, WireTrouble::kLeadInCrosses, 0);
  }

  // Contour spans of other paths that come within `reach` of the span.
  void nearest(const OwnedSpan& span, double reach, WireTrouble trouble, double limit) {
    if (reach < 0) return;
    constexpr auto kAll = std::numeric_limits<std::size_t>::max();
    (void)contours_.find(boxOf(span).grown(reach), span.path, kAll, found_);
    for (const BoxedSpan& other : found_) compare(span, other.span, reach, trouble, limit);
  }

  void nearestOf(const std::vector<BoxedSpan>& others, const OwnedSpan& span, double reach,
                 WireTrouble trouble, double limit) {
    if (others.empty()) return;
    const Extents2d box = boxOf(span).grown(reach);
    for (const BoxedSpan& other : others)
      if (box.overlaps(other.box)) compare(span, other.span, reach, trouble, limit);
  }

  void compare(const OwnedSpan& span, const OwnedSpan& other, double reach, WireTrouble trouble,
               double limit) {
    AcGePoint2d at;
    const double distance = spanDistance(span, other, at);
    if (distance < reach || (reach == 0 && distance == 0))
      warn(trouble, span.path, paths_[other.path]->nPathNo(), at, distance, limit);
  }

  WirePaths& wirePaths_;
  const WireOffset& offset_;
  std::vector<const CToolPath*> paths_;
  SpanFinder contours_;
  OffsetPath tool_;
  std::vector<OwnedSpan> wires_;
  std::vector<BoxedSpan> around_, found_;
  std::vector<WireWarning> warnings_;
  double cutLength_ = 0;
};

}  // namespace

OffsetFate fateUnderOffset(const PolylineCurve& contour, bool hole, double offset) {
  OffsetFate fate;
  if (contour.vertices.empty()) return fate;
  fate.at = contour.vertices.front().point;
  auto walk = contour.vertices;
  const double toTheLeft = leftOffset(contour, hole, offset);
  walk.push_back({walk.front().point, 0});
  if (const auto curves = offsetCurves(walk, toTheLeft)) {
    fate.vanished = curves->empty();
    fate.pieces = std::max<int>(static_cast<int>(curves->size()), 1);
  }
  return fate;
}

bool vanishesUnderOffset(const PolylineCurve& contour, bool hole, double offset) {
  // What lies within d of a curve of length L covers 2 L d + π d² at most. Twice that, for a contour that
  // goes round something twice.
  const double d = std::abs(offset);
  if (std::abs(signedArea(contour.vertices)) > 4 * d * (length(contour) + 2 * d)) return false;
  return fateUnderOffset(contour, hole, offset).vanished;
}

std::vector<TightArc> tightArcs(const PolylineCurve& contour, bool hole, double offset) {
  return tightArcsBeside(contour, leftOffset(contour, hole, offset));
}

WireSurvey surveyWires(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& paths,
                       WirePaths& known) {
  known.follow(drawing);
  return Survey(drawing, paths, known, {}).run();
}

WireSurvey surveyWires(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& paths,
                       const WireOffset& offset) {
  WirePaths none;
  return Survey(drawing, paths, none, offset).run();
}

}  // namespace tarnex
