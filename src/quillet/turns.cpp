// Rings inside a contour by the kernel's offset.
// Knows closed walks alone.
#include "quillet/turns.h"

#include <algorithm>
#include <set>

#include "contour/geometrylibrary.h"
#include "host/geometry/offset.h"

namespace tarnex {

namespace {

constexpr int kDeepest = 4000;     // turns; a plate of metres at a common step
constexpr double kFarPart = 0.75;  // of a step
using Rings = std::vector<PolylineCurve>;

// Spans shorter than this are what rounding leaves where a corner closes; they go, since an offset of them
// can't be told from one that crosses itself.
constexpr double kNoSpan = 1e-6;  // mm

PolylineCurve withoutNoSpans(const PolylineCurve& ring) {
  PolylineCurve kept{{}, true};
  const std::size_t n = ring.vertices.size();
  for (std::size_t i = 0; i < n; ++i)
    if (ring.vertices[i].point.distanceTo(ring.vertices[(i + 1) % n].point) > kNoSpan)
      kept.vertices.push_back(ring.vertices[i]);
  return kept;
}

// The offset, or one a little nearer where that is declined: at just the distance at which a ring falls apart
// or vanishes its result can't be vouched for.
std::optional<Rings> offsetAbout(std::span<const BulgeVertex> walk, double distance) {
  for (double part : {1.0, 0.9993, 0.997, 0.99})
    if (auto curves = offsetCurves(walk, distance * part)) return curves;
  return std::nullopt;
}

// The rings about `distance` inside a counter-clockwise one, none farther; none where nothing is left.
// Nothing: declined.
std::optional<Rings> ringsInside(const PolylineCurve& ring, double distance) {
  std::vector<BulgeVertex> walk = ring.vertices;
  walk.push_back({walk.front().point, 0});
  const auto curves = offsetAbout(walk, distance);
  if (!curves) return std::nullopt;
  Rings rings;
  for (const PolylineCurve& curve : *curves) {
    PolylineCurve inner = withoutNoSpans(curve);
    if (curve.closed && inner.vertices.size() >= 2 && signedArea(inner.vertices) > 0 &&
        length(inner) > kSamePoint)
      rings.push_back(std::move(inner));
  }
  return rings;
}

bool inRing(const PolylineCurve& inner, const PolylineCurve& outer) {
  return insideClosedWalk(outer.vertices, inner.vertices.front().point);
}

// Some place of the ring lies farther than `limit` from all of the curves: looked at in eight places of
// each span.
bool anyFar(const PolylineCurve& ring, const std::vector<Curve>& curves, double limit) {
  const Curve walk = ring;
  constexpr std::size_t kPlaces = 8;  // of a span
  for (std::size_t i = 0; i < kPlaces * ring.vertices.size(); ++i) {
    const AcGePoint2d p = pointAtParam(walk, static_cast<double>(i) / kPlaces);
    const auto near = [&](const Curve& c) { return closestPoint(c, p).distance <= limit; };
    if (std::none_of(curves.begin(), curves.end(), near)) return true;
  }
  return false;
}

class TurnBuilder {
 public:
  explicit TurnBuilder(double step) : step_(step) {}

  std::optional<std::vector<Turn>> build(PolylineCurve outermost) {
    add(std::move(outermost), -1, true);
    for (std::size_t i = 0; i < turns_.size(); ++i)
      if (!fill(static_cast<int>(i))) return std::nullopt;
    return std::move(turns_);
  }

 private:
  int add(PolylineCurve ring, int parent, bool wholeStep) {
    const int index = static_cast<int>(turns_.size());
    vertices_ += ring.vertices.size() + 1;
    Turn turn;
    turn.curve = ring;
    turn.ring = std::move(ring);
    turn.parent = parent;
    turn.wholeStep = wholeStep;
    if (parent >= 0) {
      turn.depth = turns_[static_cast<std::size_t>(parent)].depth + 1;
      turns_[static_cast<std::size_t>(parent)].inside.push_back(index);
    }
    turns_.push_back(std::move(turn));
    return index;
  }

  // The turns next inside turn i. False: declined, or too many.
  bool fill(int i) {
    const PolylineCurve ring = turns_[static_cast<std::size_t>(i)].ring;
    if (vertices_ > kMostGuideVertices || turns_[static_cast<std::size_t>(i)].depth > kDeepest) return false;
    if (filled_.contains(i))
      return turns_[static_cast<std::size_t>(i)].inside.empty() ? addLast(i, ring) : true;
    auto whole = ringsInside(ring, step_);
    const auto half = ringsInside(ring, step_ / 2);
    if (!whole || !half) return false;
    if (half->empty()) return addLast(i, ring);
    for (const PolylineCurve& between : *half) {
      std::vector<Curve> curves;
      std::vector<std::size_t> own;
      for (std::size_t k = 0; k < whole->size(); ++k)
        if (inRing((*whole)[k], between)) {
          own.push_back(k);
          curves.emplace_back((*whole)[k]);
        }
      const bool needed = anyFar(between, curves, kFarPart * step_);
      const int parent = needed ? add(between, i, false) : i;
      if (needed) filled_.insert(parent);
      for (std::size_t k : own) add((*whole)[k], parent, !needed);
    }
    return true;
  }

  // Offsets run past hollow corners, so the middle of a star may be far from its last ring where half a step
  // leaves nothing: a quarter then.
  bool addLast(int i, const PolylineCurve& ring) {
    const auto last = ringsInside(ring, step_ / 4);
    if (!last) return false;
    for (const PolylineCurve& inner : *last) {
      AcGeVector2d sum;
      for (const BulgeVertex& v : inner.vertices) sum = sum + (v.point - ring.vertices[0].point);
      const AcGePoint2d middle =
          ring.vertices[0].point + sum * (1.0 / static_cast<double>(inner.vertices.size()));
      if (closestPoint(turns_[static_cast<std::size_t>(i)].curve, middle).distance <= kFarPart * step_)
        continue;
      filled_.insert(add(inner, i, false));
    }
    return true;
  }

  const double step_;
  std::vector<Turn> turns_;
  std::set<int> filled_;  // half-step turns: what stands inside them came with them
  std::size_t vertices_ = 0;
};

}  // namespace

std::optional<std::vector<Turn>> turnsInside(const PolylineCurve& contour, double first, double step) {
  // A neck that a whole step closes may still let half a step through.
  for (double distance : {first, first - step / 2}) {
    auto outermost = ringsInside(contour, distance);
    if (!outermost) return std::nullopt;
    if (outermost->size() == 1) return TurnBuilder(step).build(std::move(outermost->front()));
  }
  return std::nullopt;
}

}  // namespace tarnex
