// Plane geometry of spans and polylines.
// Stateless; knows no entities.
#include "contour/geometrylibrary.h"

#include <algorithm>

namespace tarnex {

namespace {

double signOf(double bulge) {
  return bulge > 0 ? 1.0 : -1.0;
}

// The closed walk: span i runs to vertex (i + 1) mod n, also in an open polyline.
struct WalkSpan {
  AcGePoint2d start, end;
  double bulge;
};
WalkSpan walkSpan(const PolylineCurve& c, std::size_t i) {
  const auto& v = c.vertices;
  return {v[i].point, v[(i + 1) % v.size()].point, v[i].bulge};
}

// The radius of bulgeToCircle, without its centre.
double spanRadius(AcGePoint2d start, AcGePoint2d end, double bulge) {
  const double chord = start.distanceTo(end);
  if (std::abs(bulge - 1) <= 0.000001) return chord / 2;
  return chord / 2 / std::sin(2 * std::atan(std::abs(bulge)));
}

}  // namespace

SpanCircle bulgeToCircle(AcGePoint2d start, AcGePoint2d end, double bulge) {
  const double chord = start.distanceTo(end);
  if (std::abs(bulge - 1) <= 0.000001) return {midpoint(start, end), chord / 2};
  const double half = 2 * std::atan(std::abs(bulge));
  const double radius = chord / 2 / std::sin(half);
  return {acutPolar(start, acutAngle(start, end) + signOf(bulge) * (kPi / 2 - half), radius), radius};
}

double bulgeFromCircle(AcGePoint2d a, AcGePoint2d centre, AcGePoint2d b, double oldBulge) {
  const double s = signOf(oldBulge);
  const double d1 = centre.distanceTo(a), d2 = centre.distanceTo(b), d3 = a.distanceTo(b);
  if (std::abs(d1 + d2 - d3) <= 0.0001) return s;
  const double cosine = (d1 * d1 + d2 * d2 - d3 * d3) / d1 / d2 * 0.5;
  const double central = std::acos(std::clamp(cosine, -1.0, 1.0));
  const bool minor = 4 * std::atan(std::abs(oldBulge)) - kPi < 0.000001;
  return std::tan((minor ? central : 2 * kPi - central) / 4) * s;
}

double sweepAngle(AcGePoint2d centre, AcGePoint2d a, AcGePoint2d b, double direction) {
  double delta = acutAngle(centre, b) - acutAngle(centre, a);
  if (direction > 0 && delta < 0) delta += 2 * kPi;
  if (direction < 0 && delta > 0) delta -= 2 * kPi;
  return delta;
}

bool angleWithinArc(double s, double e, double p, double bulge) {
  if (!(bulge > 0)) std::swap(s, e);
  if (s < e) return s <= p && p <= e;
  if (e < s) return s <= p || p <= e;
  return false;
}

bool isPointOnSpan(AcGePoint2d start, AcGePoint2d end, double bulge, AcGePoint2d p) {
  if (bulge == 0)
    return std::abs(start.distanceTo(p) + p.distanceTo(end) - start.distanceTo(end)) < kSamePoint;
  const auto circle = bulgeToCircle(start, end, bulge);
  if (!(std::abs(p.distanceTo(circle.centre) - circle.radius) < kSamePoint)) return false;
  return angleWithinArc(acutAngle(circle.centre, start), acutAngle(circle.centre, end),
                        acutAngle(circle.centre, p), bulge);
}

double spanArea(AcGePoint2d start, AcGePoint2d end, double bulge) {
  const double straight = start.x * end.y - end.x * start.y;
  if (bulge == 0) return straight / 2;
  const double theta = 4 * std::atan(bulge);
  const double radius = spanRadius(start, end, bulge);
  return (straight + (theta - std::sin(theta)) * radius * radius) / 2;
}

double triangleArea(AcGePoint2d a, AcGePoint2d b, AcGePoint2d c) {
  return spanArea(a, b, 0) + spanArea(b, c, 0) + spanArea(c, a, 0);
}

namespace {

// Area of the closed walk, taken about its first vertex so that a contour far from the origin keeps its
// digits.
double walkArea(const PolylineCurve& c) {
  if (c.vertices.empty()) return 0;
  const AcGeVector2d shift = c.vertices.front().point - AcGePoint2d{};
  double area = 0;
  for (std::size_t i = 0; i < c.vertices.size(); ++i) {
    const auto s = walkSpan(c, i);
    if (s.start == s.end) continue;
    area += spanArea(s.start - shift, s.end - shift, s.bulge);
  }
  return area;
}

}  // namespace

int polylineOrientation(const PolylineCurve& c) {
  const double area = walkArea(c);
  if (std::abs(area) <= kNegligibleArea) return 0;
  return area > 0 ? 1 : -1;
}

// The side of the nearest span would say the same, but for points beyond a sharp corner, where its two spans
// disagree, and near a vertex, where a span is too short to decide. The winding doesn't waver.
int pointInPolyline(const PolylineCurve& c, AcGePoint2d p) {
  if (c.vertices.empty() || walkArea(c) == 0 || closestPoint(c, p).distance <= kSamePoint) return 0;
  return insideClosedWalk(c.vertices, p) ? 1 : -1;
}

std::optional<SpanAt> findSpanAt(const PolylineCurve& c, AcGePoint2d p) {
  if (c.vertices.empty()) return std::nullopt;
  const AcGePoint2d q = closestPoint(c, p).point;
  for (std::size_t i = 0; i < c.vertices.size(); ++i) {
    const auto s = walkSpan(c, i);
    if (s.start == s.end || !isPointOnSpan(s.start, s.end, s.bulge, q)) continue;
    return SpanAt{static_cast<int>(i), q.distanceTo(s.end) <= s.start.distanceTo(q) ? 1 : -1};
  }
  return std::nullopt;
}

double distanceToCurve(const Curve& c, AcGePoint2d p) {
  return closestPoint(c, p, true).distance;
}

double spanLength(AcGePoint2d start, AcGePoint2d end, double bulge) {
  if (bulge == 0) return start.distanceTo(end);
  return spanRadius(start, end, bulge) * 4 * std::atan(std::abs(bulge));
}

SpanMoments spanMoments(AcGePoint2d start, AcGePoint2d end, double bulge) {
  if (bulge == 0) {
    const double length = start.distanceTo(end);
    return {length, (start.x + end.x) * length / 2, (start.y + end.y) * length / 2};
  }
  const auto circle = bulgeToCircle(start, end, bulge);
  const double alpha = 2 * std::atan(bulge);
  const double rho = std::abs(circle.radius / alpha * std::sin(alpha));
  const double length = std::abs(2 * alpha * circle.radius);
  const AcGePoint2d g = acutPolar(circle.centre, acutAngle(circle.centre, start) + alpha, rho);
  return {length, g.x * length, g.y * length};
}

std::optional<AlongSpan> pointAlongSpan(AcGePoint2d start, AcGePoint2d end, double bulge, double distance) {
  if (bulge == 0) {
    if (distance > start.distanceTo(end)) return std::nullopt;
    return AlongSpan{start + (end - start).normal() * distance, 0, 0};
  }
  const auto circle = bulgeToCircle(start, end, bulge);
  if (distance > std::abs(4 * std::atan(bulge) * circle.radius)) return std::nullopt;
  const double beta = distance / circle.radius * signOf(bulge);
  AlongSpan along;
  along.point = acutPolar(circle.centre, acutAngle(circle.centre, start) + beta, circle.radius);
  along.bulgeBefore = std::tan(beta / 4);
  along.bulgeAfter = std::tan(sweepAngle(circle.centre, along.point, end, signOf(bulge)) / 4);
  return along;
}

double spanNormalAngle(AcGePoint2d start, AcGePoint2d end, double bulge, int side, bool atEnd) {
  double angle = 0;
  if (bulge == 0) {
    angle = acutAngle(start, end) + (side * 0.5 + 1) * kPi;
  } else {
    const AcGePoint2d centre = bulgeToCircle(start, end, bulge).centre;
    const AcGePoint2d base = atEnd ? end : start;
    angle = side * bulge >= 0 ? acutAngle(centre, base) : acutAngle(base, centre);
  }
  return angle - 2 * kPi >= 0.001 ? angle - 2 * kPi : angle;
}

void reversePolyline(PolylineCurve& c) {
  const auto old = c.vertices;
  const std::size_t n = old.size();
  for (std::size_t i = 0; i < n; ++i) {
    c.vertices[i].point = old[n - 1 - i].point;
    c.vertices[i].bulge = -old[(2 * n - 2 - i) % n].bulge;
  }
}

void sortPoints(std::vector<AcGePoint2d>& points, int mode) {
  const bool byX = mode == 0 || mode == 2;
  const auto first = [byX](AcGePoint2d p) { return byX ? p.x : p.y; };
  const auto second = [byX](AcGePoint2d p) { return byX ? p.y : p.x; };
  std::stable_sort(points.begin(), points.end(),
                   [&](AcGePoint2d a, AcGePoint2d b) { return first(a) < first(b); });
  if (mode < 2) return;
  for (auto run = points.begin(); run != points.end();) {
    const double head = first(*run);
    auto end = std::find_if(run, points.end(),
                            [&](AcGePoint2d p) { return !(std::abs(first(p) - head) < kSamePoint); });
    std::stable_sort(run, end, [&](AcGePoint2d a, AcGePoint2d b) { return second(a) < second(b); });
    run = end;
  }
}

double angleDegrees(AcGePoint2d a, AcGePoint2d b) {
  return acutAngle(a, b) * 180 / kPi;
}

AcGePoint2d polarDegrees(AcGePoint2d p, double degrees, double distance) {
  return acutPolar(p, kPi * degrees * 0.005555555555555556, distance);
}

bool pointDiffers(const AcGePoint3d& a, const AcGePoint3d& b) {
  return !(std::abs(a.x - b.x) < 0.001 && std::abs(a.y - b.y) < 0.001 && std::abs(a.z - b.z) < 0.001);
}

}  // namespace tarnex
