// Lines and arcs in their frames: evaluation, feet, distances and boxes.
// An arc is walked by the angle from its middle, which stays exact however flat it is.
#include "host/geometry/element.h"

namespace tarnex::kernel {

bool Element::wholeCircle() const {
  return arc && (openStart || openEnd || halfSweep >= kPi - kFullTurnSlack / 2);
}

Element lineElement(AcGePoint2d start, AcGePoint2d end) {
  Element e;
  e.start = e.origin = start;
  e.end = end;
  const AcGeVector2d chord = end - start;
  e.length = std::sqrt(chord.dotProduct(chord));
  if (e.length > 0) e.along = chord * (1 / e.length);
  return e;
}

Element rayElement(const RayCurve& ray) {
  Element e;
  e.start = e.origin = ray.start;
  e.end = ray.start + ray.direction;
  e.along = ray.direction;
  e.length = 1;
  e.openEnd = true;
  return e;
}

Element arcElement(const ArcCurve& arc) {
  Element e;
  const double endAngle = arc.startAngle + arc.sweep, middle = arc.startAngle + arc.sweep / 2;
  e.arc = true;
  e.start = acutPolar(arc.centre, arc.startAngle, arc.radius);
  e.end = acutPolar(arc.centre, endAngle, arc.radius);
  e.origin = arc.centre;
  e.outward = {std::cos(middle), std::sin(middle)};
  e.along = arc.sweep < 0 ? -e.outward.perpVector() : e.outward.perpVector();
  e.radius = arc.radius;
  e.originPower = -arc.radius * arc.radius;
  e.chordAngle = kPi / 2;
  e.halfSweep = std::min(std::abs(arc.sweep) / 2, kPi);
  e.length = 2 * e.halfSweep * e.radius;
  if (e.halfSweep >= kPi - kFullTurnSlack / 2) e.end = e.start;
  return e;
}

Element spanElement(AcGePoint2d start, AcGePoint2d end, double bulge) {
  Element e = lineElement(start, end);
  const double half = e.length / 2, size = std::abs(bulge);
  // An arc that stands off its chord by less than the chord's own rounding is the chord.
  if (half * size <= roundoff(half) || !(e.length > 0)) return e;
  e.arc = true;
  e.origin = midpoint(start, end);
  e.outward = bulge > 0 ? -e.along.perpVector() : e.along.perpVector();
  e.radius = half * (1 / size + size) / 2;
  e.depth = half * (1 / size - size) / 2;
  e.originPower = -half * half;
  e.chordAngle = e.halfSweep = 2 * std::atan(size);
  e.length = 2 * e.halfSweep * e.radius;
  return e;
}

namespace {

// Angle from the arc's middle to p, in (-π, π], growing with travel.
double angleFromMiddle(const Element& e, AcGePoint2d p) {
  const AcGeVector2d q = p - e.origin;
  return std::atan2(q.dotProduct(e.along), e.depth + q.dotProduct(e.outward));
}

// (|p - centre|² - radius²) / 2 radius, without the large numbers of a flat arc.
double powerOf(const Element& e, AcGeVector2d q) {
  return (q.dotProduct(q) + e.originPower) / (2 * e.radius) + q.dotProduct(e.outward) * (e.depth / e.radius);
}

}  // namespace

double fractionAt(const Element& e, AcGePoint2d p) {
  if (!(e.length > 0)) return 0;
  if (!e.arc) return (p - e.start).dotProduct(e.along) / e.length;
  return 0.5 + angleFromMiddle(e, p) / (2 * e.halfSweep);
}

AcGePoint2d pointAt(const Element& e, double fraction) {
  if (fraction == 0 || !(e.length > 0)) return e.start;
  if (fraction == 1) return e.end;
  if (!e.arc) {
    if (fraction > 0.5) return e.end + e.along * ((fraction - 1) * e.length);
    return e.start + e.along * (fraction * e.length);
  }
  const double angle = (2 * fraction - 1) * e.halfSweep;
  const double height =
      2 * e.radius * std::sin((e.chordAngle + angle) / 2) * std::sin((e.chordAngle - angle) / 2);
  return e.origin + e.along * (e.radius * std::sin(angle)) + e.outward * height;
}

AcGeVector2d directionAt(const Element& e, double fraction) {
  if (!e.arc) return e.along;
  const double angle = (2 * fraction - 1) * e.halfSweep;
  return e.along * std::cos(angle) - e.outward * std::sin(angle);
}

double signedDistance(const Element& e, AcGePoint2d p) {
  const AcGeVector2d q = p - e.origin;
  if (!(e.length > 0)) return q.length();
  if (!e.arc) return e.along.crossProduct(q);
  const double power = powerOf(e, q);
  return 2 * power / (1 + std::sqrt(std::max(0.0, 1 + 2 * power / e.radius)));
}

AcGeVector2d normalAt(const Element& e, AcGePoint2d p) {
  if (!e.arc) return e.along.perpVector();
  return ((p - e.origin) * (1 / e.radius) + e.outward * (e.depth / e.radius)).normal();
}

bool reaches(const Element& e, double fraction, double slack) {
  if (e.wholeCircle()) return true;
  return (e.openStart || fraction >= -slack) && (e.openEnd || fraction <= 1 + slack);
}

double unwound(const Element& e, double fraction) {
  if (!e.arc) return fraction;
  const double turn = kPi / e.halfSweep;
  if (e.openStart && !e.openEnd && fraction > 1) return fraction - turn;
  if (e.openEnd && !e.openStart && fraction < 0) return fraction + turn;
  return fraction;
}

double closestFraction(const Element& e, AcGePoint2d p) {
  const double fraction = fractionAt(e, p);
  if (!e.arc) {
    if (fraction < 0 && !e.openStart) return 0;
    return fraction > 1 && !e.openEnd ? 1 : fraction;
  }
  if (p == centreOf(e)) return 0;
  if (e.openStart || e.openEnd) return unwound(e, fraction);
  if (fraction >= 0 && fraction <= 1) return fraction;
  const AcGeVector2d toStart = p - e.start, toEnd = p - e.end;
  return toStart.dotProduct(toStart) <= toEnd.dotProduct(toEnd) ? 0 : 1;
}

Extents2d extentsOf(const Element& e) {
  Extents2d box;
  box.add(e.start);
  box.add(e.end);
  if (!e.arc) return box;
  // A direction belongs to the arc when it lies as near to the middle as the ends do.
  const bool aboutCentre = e.depth == 0 && e.chordAngle == kPi / 2;
  const double ends = e.wholeCircle() ? -2 : aboutCentre ? std::cos(e.halfSweep) : e.depth / e.radius;
  for (const AcGeVector2d axis : {AcGeVector2d{1, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
    if (axis.dotProduct(e.outward) < ends) continue;
    // About its centre the extreme is exact; a chord frame goes the stable way.
    if (aboutCentre) {
      box.add(e.origin + axis * e.radius);
    } else {
      const double angle = std::atan2(axis.dotProduct(e.along), axis.dotProduct(e.outward));
      box.add(pointAt(e, 0.5 + angle / (2 * e.halfSweep)));
    }
  }
  return box;
}

AcGePoint2d centreOf(const Element& e) {
  return e.origin - e.outward * e.depth;
}

double sizeOf(const Element& e) {
  const double ends = std::max(sizeOf(e.start), sizeOf(e.end));
  // Points of an arc about its centre carry the rounding of the radius.
  return e.arc && e.depth == 0 ? std::max({ends, sizeOf(e.origin), e.radius}) : ends;
}

}  // namespace tarnex::kernel
