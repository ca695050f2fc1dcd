// Single edges of paths and polylines: the geometry of shifting one and of cutting a step into one.
// Knows no prompts.
#include "pathcmd/edges.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "pathcmd/pathchange.h"

namespace tarnex {

namespace {

constexpr double kSameHeading = 0.001;  // rad

bool isStraight(double bulge) {
  return bulge == 0 || bulge == kMarkedBulge;
}

// One end of an edge: the vertices that slide, and along what.
struct SlidingEnd {
  std::vector<int> moving;
  AcGeVector2d guide;
};

// The spans of a path, those before the first and behind the last included by wrapping.
struct Walk {
  const std::vector<BulgeVertex>& v;
  [[nodiscard]] int count() const { return static_cast<int>(v.size()); }
  [[nodiscard]] AcGePoint2d at(int i) const { return v[static_cast<std::size_t>(i % count())].point; }
  [[nodiscard]] bool straight(int i) const { return isStraight(v[static_cast<std::size_t>(i)].bulge); }
  [[nodiscard]] AcGeVector2d along(int i) const { return at(i + 1) - at(i); }
};

SlidingEnd startOf(const Walk& w, int edge) {
  if (w.straight(edge - 1)) return {{edge}, w.along(edge - 1)};
  if (edge >= 2 && w.straight(edge - 2)) return {{edge - 1, edge}, w.along(edge - 2)};
  return {};
}

SlidingEnd endOf(const Walk& w, int edge) {
  if (w.straight(edge + 1)) return {{edge + 1}, w.along(edge + 1)};
  if (edge + 2 < w.count() && w.straight(edge + 2)) return {{edge + 1, edge + 2}, w.along(edge + 2)};
  return {};
}

int edgeUnder(const Walk& w, AcGePoint2d pick) {
  for (int i = 1; i + 1 < w.count(); ++i)
    if (w.at(i) != w.at(i + 1) &&
        isPointOnSpan(w.at(i), w.at(i + 1), w.v[static_cast<std::size_t>(i)].bulge, pick))
      return i;
  return -1;
}

bool isParallel(AcGeVector2d a, AcGeVector2d b) {
  return std::abs(std::sin(a.angleTo(b))) < kSameHeading;
}

bool runsAlongX(AcGeVector2d v) {
  const double angle = v.angle();
  return angle <= kSameHeading || std::abs(angle - kPi) <= kSameHeading || 2 * kPi - angle <= kSameHeading;
}

// The way that the vertices of an end go; side 1: to the right of the edge, -1: to its left.
AcGeVector2d slide(const SlidingEnd& end, AcGeVector2d edge, double side, double distance) {
  const double turn = end.guide.crossProduct(edge) > 0 ? 1 : -1;
  const double length =
      runsAlongX(end.guide) ? distance : std::abs(distance / std::sin(kPi - end.guide.angleTo(edge)));
  return end.guide.normal() * (length * turn * side);
}

}  // namespace

ShiftedEdge shiftEdge(CToolPath& path, AcGePoint2d pick, AcGePoint2d towards, double distance) {
  const PolylineCurve old = path.polyline();
  const Walk w{old.vertices};
  const int n = w.count(), edge = edgeUnder(w, pick);
  if (edge < 0) return {};
  const AcGePoint2d a = w.at(edge), b = w.at(edge + 1);
  ShiftedEdge result{EdgeShift::kNothing, a, b};
  if (!w.straight(edge)) return {EdgeShift::kArc, a, b};
  std::vector<SlidingEnd> ends;
  for (auto& end : {startOf(w, edge), endOf(w, edge)})
    if (end.guide.length() > 0) ends.push_back(end);
  distance = std::abs(distance);
  if (ends.empty() || distance == 0) return result;
  if (n + 2 > kMostPathVertices) return {EdgeShift::kFull, a, b};
  for (const auto& end : ends)
    if (isParallel(end.guide, b - a)) return {EdgeShift::kParallel, a, b};
  const double side = triangleArea(a, towards, b) < 0 ? -1 : 1;
  const bool closed = !path.hasFlag(kOpenPath) && w.at(1).distanceTo(w.at(n - 1)) <= kSamePoint;
  std::optional<AcGePoint2d> beforeLast;
  bool entryMoved = false;
  for (const auto& end : ends) {
    const AcGeVector2d by = slide(end, b - a, side, distance);
    for (const int i : end.moving) {
      if (closed && i == n - 1) {
        beforeLast = w.at(i) + by;
        continue;
      }
      path.setPointAt(i, w.at(i) + by);
      entryMoved = entryMoved || i == 1;
    }
  }
  if (beforeLast) path.addVertexAt(n - 1, *beforeLast, 0);
  if (closed && entryMoved) path.addVertexAt(path.numVerts(), path.getPointAt(1), 0);
  path.settleBreak();
  result.outcome = EdgeShift::kDone;
  return result;
}

namespace {

struct StepSpan {
  AcGePoint2d start, end;
  double bulge = 0;
};

// 1: the step goes to the left of the span, -1: to its right, 0: that can't be told. Inside and outside
// decide, and where there is neither, the side of the span itself.
int sideOf(const PolylineCurve& polyline, const StepSpan& s, AcGePoint2d towards) {
  if (const int inside = pointInPolyline(polyline, towards) * polylineOrientation(polyline)) return inside;
  double left = triangleArea(s.start, s.end, towards);
  if (!isStraight(s.bulge)) {
    const SpanCircle circle = bulgeToCircle(s.start, s.end, s.bulge);
    left = (circle.radius - towards.distanceTo(circle.centre)) * s.bulge;
  }
  return left > 0 ? 1 : left < 0 ? -1 : 0;
}

void straightStep(const StepSpan& s, const Step& step, int side, StepVertices& out) {
  const AcGeVector2d along = (s.end - s.start).normal();
  const auto projected = [&](AcGePoint2d p) { return s.start + along * along.dotProduct(p - s.start); };
  AcGePoint2d a = projected(step.a), b = projected(step.b);
  if (s.start.distanceTo(a) > s.start.distanceTo(b)) std::swap(a, b);
  const AcGeVector2d across = along.perpVector() * (side * step.height);
  out.bulge = 0;
  out.inserted = {{a, 0}, {a + across, 0}, {b + across, 0}, {b, 0}};
}

// False: the step would reach the centre.
bool arcStep(const StepSpan& s, const Step& step, int side, StepVertices& out) {
  const SpanCircle circle = bulgeToCircle(s.start, s.end, s.bulge);
  const AcGePoint2d c = circle.centre;
  const double radius = circle.radius, turn = s.bulge > 0 ? 1 : -1;
  const double stepRadius = radius - turn * side * step.height;  // to the left of a left turn is inward
  if (!(stepRadius > kSamePoint)) return false;
  const auto swept = [&](AcGePoint2d p) {  // rounding at the start must not make a whole turn
    return p.distanceTo(s.start) <= kSamePoint ? 0 : std::abs(sweepAngle(c, s.start, p, turn));
  };
  double a = acutAngle(c, step.a), b = acutAngle(c, step.b);
  if (swept(step.a) > swept(step.b)) std::swap(a, b);
  const AcGePoint2d pa = acutPolar(c, a, radius), pb = acutPolar(c, b, radius);
  const auto bulge = [&](AcGePoint2d from, AcGePoint2d to) {
    return std::tan(sweepAngle(c, from, to, turn) / 4);
  };
  out.bulge = bulge(s.start, pa);
  out.inserted = {{pa, 0},
                  {acutPolar(c, a, stepRadius), bulge(pa, pb)},
                  {acutPolar(c, b, stepRadius), 0},
                  {pb, bulge(pb, s.end)}};
  return true;
}

// An end of the step that is an end of the span needs no vertex of its own.
void dropRepeated(const StepSpan& s, StepVertices& out) {
  out.rest = out.inserted.back().point.distanceTo(s.end) > kSamePoint;
  if (!out.rest) out.inserted.pop_back();
  if (out.inserted.front().point.distanceTo(s.start) > kSamePoint) return;
  out.bulge = 0;
  out.inserted.erase(out.inserted.begin());
}

}  // namespace

StepVertices stepIn(const PolylineCurve& polyline, const Step& step, int first, int last) {
  StepVertices out;
  const auto& v = polyline.vertices;
  for (int i = first; i <= last; ++i) {
    const BulgeVertex& from = v[static_cast<std::size_t>(i)];
    const StepSpan s{from.point, v[static_cast<std::size_t>(i + 1) % v.size()].point, from.bulge};
    if (s.start == s.end || !isPointOnSpan(s.start, s.end, s.bulge, step.a) ||
        !isPointOnSpan(s.start, s.end, s.bulge, step.b))
      continue;
    out.vertex = i;
    out.outcome = StepCut::kNoStep;
    const int side = sideOf(polyline, s, step.towards);
    if (side == 0 || step.a.distanceTo(step.b) <= kSamePoint) return out;
    if (isStraight(s.bulge))
      straightStep(s, step, side, out);
    else if (!arcStep(s, step, side, out))
      return out;
    dropRepeated(s, out);
    out.outcome = StepCut::kDone;
    return out;
  }
  return out;
}

StepCut cutStep(AcDbPolyline& polyline, const Step& step) {
  auto* path = polyline.isKindOf(CToolPath::desc()) ? static_cast<CToolPath*>(&polyline) : nullptr;
  const int spans = static_cast<int>(polyline.polyline().spanCount());
  const StepVertices cut = stepIn(polyline.polyline(), step, path ? 1 : 0, spans - 1);
  if (cut.outcome != StepCut::kDone) return cut.outcome;
  if (path && path->numVerts() + 4 > kMostPathVertices) return StepCut::kFull;
  if (!path) {
    for (std::size_t k = 0; k < cut.inserted.size(); ++k)
      polyline.addVertexAt(cut.vertex + 1 + static_cast<int>(k), cut.inserted[k].point, cut.inserted[k].bulge,
                           -1, -1);
    polyline.setBulgeAt(cut.vertex, cut.bulge);
    return cut.outcome;
  }
  const auto tapers = path->aSegTaper();
  for (std::size_t k = 0; k < cut.inserted.size(); ++k)
    path->addVertexAt(cut.vertex + 1 + static_cast<int>(k), cut.inserted[k].point, cut.inserted[k].bulge);
  path->setBulgeAt(cut.vertex, cut.bulge);
  // What is left of the span behind the step is still the segment that the taper was given to.
  const auto at = static_cast<std::size_t>(cut.vertex);
  if (cut.rest && at < tapers.size() && tapers[at] != 0)
    path->setSegmentTaperAt(cut.vertex + static_cast<int>(cut.inserted.size()), tapers[at]);
  path->settleBreak();
  return cut.outcome;
}

}  // namespace tarnex
