// Auto fix at corners: what each kind makes of one.
// Knows the corner alone; which corners are fixed is decided by the walk.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "pathcmd/autofix.h"

namespace tarnex {

namespace {

constexpr double kSameHeading = 0.001;  // rad

bool isStraight(double bulge) {
  return bulge == 0 || bulge == kMarkedBulge;
}

double headingAt(AcGePoint2d start, AcGePoint2d end, double bulge, AcGePoint2d at) {
  double heading = acutAngle(start, end);
  if (!isStraight(bulge))
    heading = normalizedAngle(acutAngle(bulgeToCircle(start, end, bulge).centre, at) +
                              (bulge >= 0 ? kPi / 2 : -kPi / 2));
  return heading < kSameHeading || 2 * kPi - heading < kSameHeading ? 0 : heading;
}

bool hasStraightSpan(const FixCorner& c) {
  return isStraight(c.bulgeIn) || isStraight(c.bulgeOut);
}

bool spansExceed(const FixCorner& c, double d) {
  return c.p.distanceTo(c.a) > d && c.p.distanceTo(c.b) > d;
}

// A rounding of this radius between the two rays of the corner.
std::optional<CornerChange> rounding(const FixCorner& c, double radius) {
  const double t = radius / std::tan(c.angle / 2);
  if (!spansExceed(c, t)) return std::nullopt;
  const double bulge = std::tan((kPi - c.angle) / 4);
  return CornerChange{{{c.p - (c.p - c.a).normal() * t, -c.side * bulge}}, c.p + (c.b - c.p).normal() * t};
}

std::optional<CornerChange> roundAgainst(const FixCorner& c, double radius) {
  if (!(radius > 0) || !spansExceed(c, radius)) return std::nullopt;
  return rounding(c, radius);
}

// Mirror image of p in the line through a and b, which are apart.
AcGePoint2d mirrored(AcGePoint2d p, AcGePoint2d a, AcGePoint2d b) {
  const AcGeVector2d along = (b - a).normal();
  const AcGeVector2d from = p - a;
  return a + (2 * along.dotProduct(from) * along - from);
}

std::optional<CornerChange> notch(const FixCorner& c, double width, double depth) {
  if (!(width > 0) || !(depth > 0) || !spansExceed(c, width)) return std::nullopt;
  const double d = width / 2 / std::sin(c.angle / 2);
  if (!spansExceed(c, d)) return std::nullopt;
  const AcGePoint2d p1 = c.p - (c.p - c.a).normal() * d, p2 = c.p + (c.b - c.p).normal() * d;
  const AcGePoint2d x = acutPolar(p2, acutAngle(c.p, c.b) - kPi - c.side * c.angle / 2, depth);
  const AcGePoint2d y = mirrored(x, c.p, midpoint(p1, p2));
  return CornerChange{{{p1, 0}, {y, 0}, {x, 0}}, p2};
}

// The first point of the circle on the line, well within both of its ends.
std::optional<AcGePoint2d> meeting(const ArcCurve& circle, AcGePoint2d from, AcGePoint2d to) {
  const auto points = intersect(circle, LineCurve{from, to}, Extend::kOnBothOperands);
  if (points.empty()) return std::nullopt;
  const AcGePoint2d p = points.front();
  if (p.distanceTo(from) <= kSamePoint || p.distanceTo(to) <= kSamePoint) return std::nullopt;
  return p;
}

// By the law of cosines, in the triangle of the corner.
double cornerAngle(const FixCorner& c) {
  const double in = c.p.distanceTo(c.a), out = c.p.distanceTo(c.b), across = c.a.distanceTo(c.b);
  return std::acos(std::clamp((in * in + out * out - across * across) / (2 * in * out), -1.0, 1.0));
}

std::optional<CornerChange> circleAt(const FixCorner& c, double reach, double radius) {
  // Within these the corner lies in the circle, which so meets each span once.
  if (!(reach > 0 && reach < 2 * radius)) return std::nullopt;
  const AcGePoint2d centre =
      acutPolar(c.p, acutAngle(c.a, c.p) + c.side * cornerAngle(c) / 2, reach - radius);
  const ArcCurve circle{centre, radius, 0, 2 * kPi};
  const auto out = meeting(circle, c.p, c.b), in = meeting(circle, c.a, c.p);
  if (!out || !in) return std::nullopt;
  double sweep = acutAngle(centre, *out) - acutAngle(centre, *in);
  if (c.side > 0 && sweep > 0) sweep -= 2 * kPi;
  if (c.side < 0 && sweep < 0) sweep += 2 * kPi;
  return CornerChange{{{*in, std::tan(sweep / 4)}}, *out};
}

}  // namespace

FixCorner fixCornerAt(const PolylineCurve& path, int vertex, int nDirection) {
  const auto at = [&](int i) -> const BulgeVertex& { return path.vertices[static_cast<std::size_t>(i)]; };
  FixCorner c{at(vertex - 1).point, at(vertex).point, at(vertex + 1).point, at(vertex - 1).bulge,
              at(vertex).bulge};
  c.angle = std::abs(acutAngle(c.p, c.a) - acutAngle(c.p, c.b));
  if (c.angle > kPi) c.angle = 2 * kPi - c.angle;
  c.side = polylineOrientation({{{c.b, 0}, {c.p, 0}, {c.a, 0}}, true});
  c.turn = c.side * nDirection;
  return c;
}

bool isSmoothJoin(const FixCorner& c) {
  return std::abs(headingAt(c.a, c.p, c.bulgeIn, c.p) - headingAt(c.p, c.b, c.bulgeOut, c.p)) <= kSameHeading;
}

std::optional<CornerChange> notchAndRound(const FixCorner& c, const AutoFixSettings& sizes) {
  if (!hasStraightSpan(c) || isSmoothJoin(c) || c.turn == 0) return std::nullopt;
  return c.turn > 0 ? roundAgainst(c, sizes.dRound1) : notch(c, sizes.dNotchWidth, sizes.dNotchDepth);
}

std::optional<CornerChange> roundAll(const FixCorner& c, const AutoFixSettings& sizes) {
  if (isSmoothJoin(c) || !isStraight(c.bulgeIn) || !isStraight(c.bulgeOut) || c.turn == 0)
    return std::nullopt;
  const double radius = c.turn > 0 ? sizes.dRound2Against : sizes.dRound2With;
  // One size is the test of both turns.
  if (!(radius > 0) || !spansExceed(c, sizes.dRound2Against)) return std::nullopt;
  return rounding(c, radius);
}

std::optional<CornerChange> reliefCircle(const FixCorner& c, const AutoFixSettings& sizes) {
  if (isSmoothJoin(c) || c.turn == 0) return std::nullopt;
  return c.turn > 0 ? roundAgainst(c, sizes.dRound3) : circleAt(c, sizes.dCircleReach, sizes.dCircleRadius);
}

std::optional<CornerChange> spike(const FixCorner& c, const AutoFixSettings& sizes) {
  if (isSmoothJoin(c) || !(sizes.dSpikeLen > 0)) return std::nullopt;
  const double direction = kPi * sizes.dSpikeAngle * 0.005555555555555556;
  const AcGePoint2d tip = acutPolar(c.p, direction, sizes.dSpikeLen);
  return CornerChange{{{c.p, kMarkedBulge}, {tip, kMarkedBulge}}, c.p};
}

std::optional<CornerChange> ear(const FixCorner& c, const AutoFixSettings& sizes) {
  if (!hasStraightSpan(c) || isSmoothJoin(c) || !(sizes.dEarLen > 0)) return std::nullopt;
  const AcGeVector2d u = (c.p - c.a).normal() * sizes.dEarLen, v = (c.p - c.b).normal() * sizes.dEarLen;
  return CornerChange{{{c.p + u, 0}, {c.p + u + v, 0}}, c.p + v};
}

}  // namespace tarnex
