// The chain under construction: spans in travel order, grown at its free end, gaps closed by trimming.
// Knows lines, arcs and polylines; the drawing only where the chain takes from it.
#include <algorithm>
#include <cmath>

#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"

namespace tarnex {

namespace {

constexpr double kGapWorthClosing = 0.000001;  // mm; a smaller one is left as it is
constexpr double kParallel = 0.0001;           // rad between the directions of two lines

// bulges[i] belongs to the span from vertices[i] to vertices[i + 1]; while the chain is open there is one
// fewer.
struct ChainBuffer {
  std::vector<AcGePoint2d> vertices;
  std::vector<double> bulges;
  bool closed = false;

  void turnAbout() {
    std::reverse(vertices.begin(), vertices.end());
    std::reverse(bulges.begin(), bulges.end());
    for (double& b : bulges) b = -b;
  }
};

// An arc always runs counter-clockwise here; its bulge is never negative.
double bulgeOfArc(const AcDbArc& arc) {
  double included = arc.endAngle() - arc.startAngle();
  if (included < 0) included += 2 * kPi;
  return std::tan(included / 4);
}

// A curve as the spans it brings into a chain, from its start; `spans` is used again from curve to curve.
// False for what joins no chain.
bool takeSpans(const AcDbEntity& entity, PolylineCurve& spans) {
  if (entity.isKindOf(AcDbLine::desc())) {
    const auto& line = static_cast<const AcDbLine&>(entity);
    spans.vertices.assign({{line.getStartPoint().flat(), 0}, {line.getEndPoint().flat(), 0}});
    spans.closed = false;
    return true;
  }
  if (entity.isKindOf(AcDbArc::desc())) {
    const auto& arc = static_cast<const AcDbArc&>(entity);
    spans.vertices.assign({{arc.getStartPoint().flat(), bulgeOfArc(arc)}, {arc.getEndPoint().flat(), 0}});
    spans.closed = false;
    return true;
  }
  if (!entity.isKindOf(AcDbPolyline::desc())) return false;
  spans = static_cast<const AcDbPolyline&>(entity).polyline();
  return !spans.vertices.empty();
}

struct IncomingSpan {
  AcGePoint2d near, far;
  double bulge;   // in the curve's own direction, not that of travel
  int direction;  // 1 the curve runs with the chain, -1 against it
};

Curve incomingCurve(const IncomingSpan& in) {
  return in.direction > 0 ? spanCurve(in.near, in.far, in.bulge) : spanCurve(in.far, in.near, in.bulge);
}

AcGePoint2d centreOf(const IncomingSpan& in) {
  return in.direction > 0 ? bulgeToCircle(in.near, in.far, in.bulge).centre
                          : bulgeToCircle(in.far, in.near, in.bulge).centre;
}

// Where two extended curves meet, of the first two points the one nearer the chain's end.
std::optional<AcGePoint2d> meeting(const Curve& incoming, const Curve& last, AcGePoint2d tail) {
  const auto points = intersect(incoming, last, Extend::kExtendBoth);
  if (points.empty()) return std::nullopt;
  if (points.size() > 1 && points[1].distanceTo(tail) < points[0].distanceTo(tail)) return points[1];
  return points[0];
}

// The common point of two lines must not turn either of them about.
bool keepsDirections(AcGePoint2d prev, AcGePoint2d tail, AcGePoint2d p, const IncomingSpan& in) {
  return (tail - prev).dotProduct(p - prev) > 0 && (in.far - in.near).dotProduct(in.far - p) > 0;
}

// Moves the chain's end and the incoming span's start to their common point.
AcGePoint2d closeGap(ChainBuffer& chain, IncomingSpan& in) {
  const AcGePoint2d tail = chain.vertices.back(), prev = chain.vertices[chain.vertices.size() - 2];
  double& lastBulge = chain.bulges.back();
  if (prev == tail || in.near == in.far) return tail;
  const Curve last = spanCurve(prev, tail, lastBulge);
  const Curve incoming = incomingCurve(in);
  const bool lastIsLine = lastBulge == 0, incomingIsLine = in.bulge == 0;
  if (lastIsLine && incomingIsLine) {
    double turn = std::abs(acutAngle(prev, tail) - acutAngle(in.near, in.far));
    turn = std::min(turn, 2 * kPi - turn);
    if (!(turn > kParallel) || std::abs(turn - kPi) <= kParallel) return tail;
    const auto p = meeting(incoming, last, tail);
    return p && keepsDirections(prev, tail, *p, in) ? *p : tail;
  }
  auto p = meeting(incoming, last, tail);
  if (lastIsLine) {
    const AcGePoint2d centre = centreOf(in);
    if (!p) p = closestPoint(last, centre, true).point;
    in.bulge = bulgeFromCircle(*p, centre, in.far, in.bulge);
    return *p;
  }
  const AcGePoint2d lastCentre = bulgeToCircle(prev, tail, lastBulge).centre;
  if (incomingIsLine) {
    if (!p) p = closestPoint(incoming, lastCentre, true).point;
  } else {
    if (!p) p = tail;
    in.bulge = bulgeFromCircle(*p, centreOf(in), in.far, in.bulge);
  }
  lastBulge = bulgeFromCircle(prev, lastCentre, *p, lastBulge);
  return *p;
}

// Joins one curve to the chain's free end.
void append(ChainBuffer& chain, const PolylineCurve& curve, double tolerance) {
  const auto& v = curve.vertices;
  const std::size_t n = v.size();
  const AcGePoint2d tail = chain.vertices.back();
  const bool forward = tail.distanceTo(v.front().point) <= tolerance;
  IncomingSpan in{};
  if (n == 1)
    in = {v[0].point, v[0].point, 0, 1};
  else if (forward)
    in = {v[0].point, v[1].point, v[0].bulge, 1};
  else
    in = {v[n - 1].point, v[n - 2].point, v[n - 2].bulge, -1};
  if (!chain.bulges.empty() && tail.distanceTo(in.near) > kGapWorthClosing)
    chain.vertices.back() = closeGap(chain, in);
  chain.bulges.push_back(in.direction * in.bulge);
  if (forward) {
    for (std::size_t i = 1; i + 1 < n; ++i) {
      chain.vertices.push_back(v[i].point);
      chain.bulges.push_back(v[i].bulge);
    }
  } else {
    for (std::size_t i = n - 1; i-- > 1;) {
      chain.vertices.push_back(v[i].point);
      chain.bulges.push_back(-v[i - 1].bulge);
    }
  }
  const AcGePoint2d far = forward ? v[n - 1].point : v[0].point;
  if (far.distanceTo(chain.vertices.front()) <= tolerance)
    chain.closed = true;
  else
    chain.vertices.push_back(far);
}

// Takes curves from the drawing as a chain grows.
class Taker {
 public:
  Taker(AcDbDatabase& drawing, ChainCandidates& candidates, double tolerance)
      : drawing_(drawing), candidates_(candidates), tolerance_(tolerance) {}

  // The first candidate, in order, that touches the chain's end and can be changed; it is erased and taken.
  const PolylineCurve* touching(AcGePoint2d tail) {
    const AcDbObjectId taken = candidates_.firstTouching(tail, tolerance_, [this](AcDbObjectId id) {
      auto entity = drawing_.open<AcDbEntity>(id, OpenMode::kForWrite);
      if (!entity || !takeSpans(*entity, spans_)) return false;
      entity->erase();
      return true;
    });
    candidates_.remove(taken);
    return taken.isNull() ? nullptr : &spans_;
  }

 private:
  AcDbDatabase& drawing_;
  ChainCandidates& candidates_;
  const double tolerance_;
  PolylineCurve spans_;
};

void grow(AcDbDatabase& drawing, ChainCandidates& candidates, ChainBuffer& chain, double tolerance) {
  Taker taker(drawing, candidates, tolerance);
  for (int pass = 0; pass < 2 && !chain.closed; ++pass) {
    while (!chain.closed) {
      const PolylineCurve* curve = taker.touching(chain.vertices.back());
      if (!curve) break;
      append(chain, *curve, tolerance);
    }
    if (pass == 0 && !chain.closed) chain.turnAbout();
  }
}

bool endsMeet(const PolylineCurve& c) {
  return c.vertices.front().point.distanceTo(c.vertices.back().point) <= kSamePoint;
}

}  // namespace

void removeCoincidentVertices(AcDbPolyline& polyline) {
  if (polyline.numVerts() < 2) return;
  AcGePoint2d before = polyline.getPointAt(0);
  for (int i = 1; i < polyline.numVerts(); ++i) {
    const AcGePoint2d read = polyline.getPointAt(i);
    if (before.distanceTo(read) < kSamePoint) polyline.removeVertexAt(--i);
    before = read;
  }
}

std::optional<AcDbObjectId> joinCurves(AcEditor& editor, AcDbObjectId seed, ChainCandidates& candidates,
                                       double tolerance) {
  AcDbDatabase& drawing = editor.database();
  ChainBuffer chain;
  constexpr std::size_t kMostlyEnough = 32;  // vertices
  chain.vertices.reserve(kMostlyEnough);
  chain.bulges.reserve(kMostlyEnough);
  AcDbObjectId layer;
  int color = kColorByLayer;
  {
    auto entity = drawing.open<AcDbEntity>(seed, OpenMode::kForWrite);
    if (!entity) return std::nullopt;
    PolylineCurve spans;
    if (!takeSpans(*entity, spans)) return std::nullopt;
    if (spans.closed) return seed;
    if (auto* polyline = dynamic_cast<AcDbPolyline*>(entity.get()); polyline && endsMeet(spans)) {
      polyline->setElevation(0);
      polyline->setClosed(true);
      return seed;
    }
    layer = entity->layerId();
    color = entity->colorIndex();
    for (const auto& v : spans.vertices) {
      chain.vertices.push_back(v.point);
      chain.bulges.push_back(v.bulge);
    }
    chain.bulges.pop_back();
    entity->erase();
  }
  candidates.remove(seed);
  grow(drawing, candidates, chain, tolerance);
  if (!chain.closed) chain.bulges.push_back(0);
  PolylineCurve joined;
  joined.closed = chain.closed;
  joined.vertices.reserve(chain.vertices.size());
  for (std::size_t i = 0; i < chain.vertices.size(); ++i)
    joined.vertices.push_back({chain.vertices[i], chain.bulges[i]});
  return appendToModelSpace(drawing, std::make_unique<AcDbPolyline>(std::move(joined)), layer, color, "");
}

}  // namespace tarnex
