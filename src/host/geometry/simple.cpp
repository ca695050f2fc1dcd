// Lines, rays and arcs: what each of them answers.
// Knows no polylines.
#include <algorithm>

#include "host/geometry/kernel.h"

namespace tarnex::kernel {

// ---- lines

bool valid(const LineCurve& c) {
  return sane(c.start) && sane(c.end);
}
bool closed(const LineCurve&) {
  return false;
}
double paramFrom(const LineCurve&) {
  return 0;
}
double paramTo(const LineCurve& c) {
  return c.start.distanceTo(c.end);
}

AcGePoint2d at(const LineCurve& c, double param) {
  const double size = paramTo(c);
  return size > 0 ? pointAt(lineElement(c.start, c.end), param / size) : c.start;
}

AcGeVector2d slope(const LineCurve& c, double) {
  return (c.end - c.start).normal();
}

Extents2d box(const LineCurve& c) {
  Extents2d box;
  box.add(c.start);
  box.add(c.end);
  return box;
}

double distTo(const LineCurve&, double param) {
  return param;
}
double paramOf(const LineCurve&, double distance) {
  return distance;
}

Closest closest(const LineCurve& c, AcGePoint2d p, bool extend) {
  Element e = lineElement(c.start, c.end);
  e.openStart = e.openEnd = extend;
  const double fraction = closestFraction(e, p);
  const AcGePoint2d foot = pointAt(e, fraction);
  return {foot, fraction * e.length, foot.distanceTo(p)};
}

Curve backwards(const LineCurve& c) {
  return LineCurve{c.end, c.start};
}

std::optional<Curve> moved(const LineCurve& c, const AcGeMatrix3d& m) {
  return LineCurve{m.apply(c.start), m.apply(c.end)};
}

Curve piece(const LineCurve& c, double from, double to) {
  return LineCurve{at(c, from), at(c, to)};
}

// ---- rays

bool valid(const RayCurve& c) {
  constexpr double kUnit = 1e-9;  // how far a unit vector's length may be off
  return sane(c.start) && std::abs(c.direction.length() - 1) <= kUnit;
}
bool closed(const RayCurve&) {
  return false;
}
double paramFrom(const RayCurve&) {
  return 0;
}
double paramTo(const RayCurve&) {
  return std::numeric_limits<double>::infinity();
}
AcGePoint2d at(const RayCurve& c, double param) {
  return std::isfinite(param) ? c.start + c.direction * param : c.start;
}
AcGeVector2d slope(const RayCurve& c, double) {
  return c.direction;
}

Extents2d box(const RayCurve& c) {
  Extents2d box;
  box.add(c.start);
  return box;
}

double distTo(const RayCurve&, double param) {
  return param;
}
double paramOf(const RayCurve&, double distance) {
  return distance;
}

Closest closest(const RayCurve& c, AcGePoint2d p, bool extend) {
  const double along = (p - c.start).dotProduct(c.direction);
  const double param = extend ? along : std::max(along, 0.0);
  const AcGePoint2d foot = at(c, param);
  return {foot, param, foot.distanceTo(p)};
}

// A ray has no far end to start from, so it turns about its start.
Curve backwards(const RayCurve& c) {
  return RayCurve{c.start, -c.direction};
}

std::optional<Curve> moved(const RayCurve& c, const AcGeMatrix3d& m) {
  const AcGeVector2d direction = m.apply(c.direction).normal();
  if (direction == AcGeVector2d{}) return std::nullopt;
  return RayCurve{m.apply(c.start), direction};
}

Curve piece(const RayCurve& c, double from, double to) {
  if (!std::isfinite(to)) return RayCurve{at(c, from), c.direction};
  return LineCurve{at(c, from), at(c, to)};
}

// ---- arcs

bool valid(const ArcCurve& c) {
  return sane(c.centre) && sane(c.radius) && c.radius > 0 && sane(c.startAngle) &&
         std::abs(c.sweep) <= 2 * kPi + kFullTurnSlack;
}

bool closed(const ArcCurve& c) {
  return std::abs(c.sweep) >= 2 * kPi - kFullTurnSlack;
}
double paramFrom(const ArcCurve& c) {
  return c.startAngle;
}
double paramTo(const ArcCurve& c) {
  return c.startAngle + c.sweep;
}
AcGePoint2d at(const ArcCurve& c, double param) {
  return acutPolar(c.centre, param, c.radius);
}

AcGeVector2d slope(const ArcCurve& c, double param) {
  return {-c.radius * std::sin(param), c.radius * std::cos(param)};
}

Extents2d box(const ArcCurve& c) {
  return extentsOf(arcElement(c));
}

double distTo(const ArcCurve& c, double param) {
  const double angle = param - c.startAngle;
  return c.radius * (c.sweep < 0 ? -angle : angle);
}

double paramOf(const ArcCurve& c, double distance) {
  const double angle = distance / c.radius;
  return c.startAngle + (c.sweep < 0 ? -angle : angle);
}

Closest closest(const ArcCurve& c, AcGePoint2d p, bool extend) {
  Element e = arcElement(c);
  e.openStart = e.openEnd = extend;
  const double fraction = closestFraction(e, p);
  const AcGeVector2d out = p - c.centre;
  const double size = std::sqrt(out.dotProduct(out));
  AcGePoint2d foot = fraction == 0 ? e.start : fraction == 1 ? e.end : pointAt(e, fraction);
  if (fraction != 0 && fraction != 1 && size > 0) foot = c.centre + out * (c.radius / size);
  return {foot, c.startAngle + fraction * c.sweep, foot.distanceTo(p)};
}

Curve backwards(const ArcCurve& c) {
  return ArcCurve{c.centre, c.radius, c.startAngle + c.sweep, -c.sweep};
}

std::optional<Curve> moved(const ArcCurve& c, const AcGeMatrix3d& m) {
  const auto scale = m.uniformScale();
  if (!scale) return moved(EllipseCurve{c.centre, {c.radius, 0}, 1, c.startAngle, c.sweep}, m);
  const double radius = c.radius * *scale;
  if (!(radius > 0)) return std::nullopt;
  const double xAxis = m.apply(AcGeVector2d{1, 0}).angle();  // where angle 0 comes to lie
  const bool mirrored = m.determinant2d() < 0;
  const double start = normalizedAngle(mirrored ? xAxis - c.startAngle : xAxis + c.startAngle);
  return ArcCurve{m.apply(c.centre), radius, start, mirrored ? -c.sweep : c.sweep};
}

Curve piece(const ArcCurve& c, double from, double to) {
  double sweep = to - from;
  if (closed(c)) {
    if (c.sweep > 0 && sweep <= 0) sweep += 2 * kPi;
    if (c.sweep < 0 && sweep >= 0) sweep -= 2 * kPi;
  }
  return ArcCurve{c.centre, c.radius, from, sweep};
}

}  // namespace tarnex::kernel
