// Ellipses and their arcs: what they answer.
// Knows no NURBS; shares the Bézier pieces with them.
#include <algorithm>

#include "host/geometry/kernel.h"
#include "host/geometry/smooth.h"

namespace tarnex::kernel {

namespace {

AcGeVector2d minorOf(const EllipseCurve& c) {
  return c.major.perpVector() * c.ratio;
}

auto speedOf(const EllipseCurve& c) {
  const double a = c.major.length(), b = a * c.ratio;
  return [a, b](double t) { return std::hypot(a * std::sin(t), b * std::cos(t)); };
}

}  // namespace

bool valid(const EllipseCurve& c) {
  return sane(c.centre) && sane(c.major.x) && sane(c.major.y) && c.major.length() > 0 && c.ratio > 0 &&
         c.ratio <= 1 && sane(c.startParam) && std::abs(c.sweep) <= 2 * kPi + kFullTurnSlack;
}

bool closed(const EllipseCurve& c) {
  return std::abs(c.sweep) >= 2 * kPi - kFullTurnSlack;
}
double paramFrom(const EllipseCurve& c) {
  return c.startParam;
}
double paramTo(const EllipseCurve& c) {
  return c.startParam + c.sweep;
}

AcGePoint2d at(const EllipseCurve& c, double param) {
  return c.centre + c.major * std::cos(param) + minorOf(c) * std::sin(param);
}

AcGeVector2d slope(const EllipseCurve& c, double param) {
  return c.major * -std::sin(param) + minorOf(c) * std::cos(param);
}

std::vector<Bezier> piecesOf(const EllipseCurve& c) {
  std::vector<Bezier> pieces;
  const int count = std::max(1, static_cast<int>(std::ceil(std::abs(c.sweep) / (kPi / 2) - 1e-9)));
  for (int i = 0; i < count; ++i) {
    const double from = c.startParam + c.sweep * i / count, to = c.startParam + c.sweep * (i + 1) / count;
    const double middle = (from + to) / 2, weight = std::cos((to - from) / 2);
    // The tangents of the two ends meet at the middle's direction, 1 / cos(half) out.
    const AcGePoint2d corner =
        c.centre + c.major * (std::cos(middle) / weight) + minorOf(c) * (std::sin(middle) / weight);
    pieces.push_back({{at(c, from), corner, at(c, to)}, {1, weight, 1}, true, true, from, to});
  }
  return pieces;
}

Extents2d box(const EllipseCurve& c) {
  Extents2d box;
  box.add(at(c, paramFrom(c)));
  box.add(at(c, paramTo(c)));
  const AcGeVector2d minor = minorOf(c);
  const double size = std::abs(c.sweep);
  for (const double t : {std::atan2(minor.x, c.major.x), std::atan2(minor.y, c.major.y)}) {
    for (const double extreme : {t, t + kPi}) {
      const double offset = normalizedAngle(c.sweep < 0 ? c.startParam - extreme : extreme - c.startParam);
      if (offset <= size) box.add(at(c, extreme));
    }
  }
  return box;
}

double distTo(const EllipseCurve& c, double param) {
  const double sign = c.sweep < 0 ? -1 : 1;
  // By quarter turns, so that the halving meets one hump of the speed at a time.
  double sum = 0, from = c.startParam;
  while (std::abs(param - from) > kPi / 2 && std::abs(param - from) < 100) {
    const double next = from + (param > from ? kPi / 2 : -kPi / 2);
    sum += arcLength(speedOf(c), from, next);
    from = next;
  }
  return sign * (sum + arcLength(speedOf(c), from, param));
}

double paramOf(const EllipseCurve& c, double distance) {
  return paramAtLength(speedOf(c), c.startParam, paramTo(c), distance);
}

EllipseCurve wholeOf(const EllipseCurve& c) {
  if (closed(c)) return c;
  EllipseCurve whole = c;
  whole.sweep = c.sweep < 0 ? -2 * kPi : 2 * kPi;
  whole.startParam = c.startParam - (whole.sweep - c.sweep) / 2;
  return whole;
}

Closest closest(const EllipseCurve& c, AcGePoint2d p, bool extend) {
  const EllipseCurve whole = extend ? wholeOf(c) : c;
  const AcGePoint2d start = at(c, c.startParam);
  Closest best{start, c.startParam, start.distanceTo(p)};
  improveClosest(piecesOf(whole), p, best);
  return best;
}

Curve backwards(const EllipseCurve& c) {
  EllipseCurve back = c;
  back.startParam = paramTo(c);
  back.sweep = -c.sweep;
  return back;
}

std::optional<Curve> moved(const EllipseCurve& c, const AcGeMatrix3d& m) {
  const bool mirrored = m.determinant2d() < 0;
  EllipseCurve image = c;
  image.centre = m.apply(c.centre);
  if (mirrored) {
    image.startParam = -c.startParam;
    image.sweep = -c.sweep;
  }
  if (m.uniformScale()) {
    image.major = m.apply(c.major);
    return image.major.length() > 0 ? std::optional<Curve>(image) : std::nullopt;
  }
  // The images of the half axes are conjugate; the new axes lie where |cos t u + sin t v| is largest and
  // least.
  const AcGeVector2d u = m.apply(c.major), v = m.apply(minorOf(c));
  const double turn = std::atan2(2 * u.dotProduct(v), u.dotProduct(u) - v.dotProduct(v)) / 2;
  image.major = u * std::cos(turn) + v * std::sin(turn);
  const AcGeVector2d minor = v * std::cos(turn) - u * std::sin(turn);
  image.ratio = std::min(1.0, minor.length() / image.major.length());
  if (!(image.ratio > 0)) return std::nullopt;
  image.startParam = normalizedAngle(mirrored ? turn - c.startParam : c.startParam - turn);
  return image;
}

Curve piece(const EllipseCurve& c, double from, double to) {
  EllipseCurve part = c;
  part.startParam = from;
  part.sweep = to - from;
  if (closed(c)) {
    if (c.sweep > 0 && part.sweep <= 0) part.sweep += 2 * kPi;
    if (c.sweep < 0 && part.sweep >= 0) part.sweep -= 2 * kPi;
  }
  return part;
}

}  // namespace tarnex::kernel
