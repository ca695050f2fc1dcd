// Points that the endless lines, whole circles and ellipses under two pieces share.
// Knows one pair at a time, and nothing of where the pieces end.
#include "host/geometry/pieces.h"

namespace tarnex::kernel {

namespace {

using Points = std::vector<AcGePoint2d>;

// Two steps of Newton's method on both distances; what the large radius of a flat arc has rounded away comes
// back.
AcGePoint2d settled(const Element& a, const Element& b, AcGePoint2d p) {
  constexpr double kSteep = 1e-3;  // sine of the angle below which a step could lead away
  for (int i = 0; i < 2; ++i) {
    const AcGeVector2d m = normalAt(a, p), n = normalAt(b, p);
    const double sine = m.crossProduct(n);
    if (std::abs(sine) < kSteep) return p;
    const double da = signedDistance(a, p), db = signedDistance(b, p);
    p = p - AcGeVector2d{da * n.y - db * m.y, db * m.x - da * n.x} * (1 / sine);
  }
  return p;
}

Points linesCross(const Element& a, const Element& b) {
  const double sine = a.along.crossProduct(b.along);
  const double size = std::max(sizeOf(a), sizeOf(b));
  if (std::abs(sine) <= roundoff(size) * (1 / a.length + 1 / b.length) + roundoff(1)) return {};
  const double along = (b.start - a.start).crossProduct(b.along) / sine;
  const AcGePoint2d p = a.start + a.along * along;
  return sane(p) ? Points{settled(a, b, p)} : Points{};
}

Points lineCrossesCircle(const Element& line, const Element& circle, double tolerance) {
  const AcGePoint2d foot = line.start + line.along * (centreOf(circle) - line.start).dotProduct(line.along);
  const double gap = -signedDistance(circle, foot);  // how deep the line cuts in
  if (!(gap >= -tolerance)) return {};
  if (gap <= tolerance) return {foot};
  const AcGeVector2d half = line.along * std::sqrt(gap * (2 * circle.radius - gap));
  return {settled(line, circle, foot - half), settled(line, circle, foot + half)};
}

Points circlesCross(const Element& a, const Element& b, double tolerance) {
  const bool swap = a.radius > b.radius;
  const Element &small = swap ? b : a, &large = swap ? a : b;
  const AcGePoint2d centre = centreOf(small);
  const double off = signedDistance(large, centre);  // of the small centre from the large circle
  const double apart = large.radius + off;           // of the centres
  const double blur =
      1 + a.radius / a.length + b.radius / b.length;  // short arcs leave their centres uncertain
  if (apart + (large.radius - small.radius) <= tolerance * blur) return {};
  const double gap = small.radius - std::abs(off);
  if (!(gap >= -tolerance) || !(apart > 0)) return {};
  const AcGeVector2d towards = -normalAt(large, centre);
  if (gap <= tolerance) return {centre + towards * (off > 0 ? small.radius : -small.radius)};
  const double square = small.radius * small.radius;
  const double along = (off * (2 * large.radius + off) + square) / (2 * apart);
  const double height = std::sqrt(std::max(0.0, (small.radius - along) * (small.radius + along)));
  const AcGePoint2d foot = centre + towards * along;
  const AcGeVector2d side = towards.perpVector() * height;
  return {settled(a, b, foot - side), settled(a, b, foot + side)};
}

double leastWeight(const Bezier& b) {
  double least = b.weights.front();
  for (const double w : b.weights) least = std::min(least, w);
  return least;
}

Points pointsAt(const Bezier& b, const std::vector<double>& params) {
  Points points;
  for (const double u : params) points.push_back(evaluate(b, u).point);
  return points;
}

}  // namespace

Points crossings(const Element& a, const Element& b, double tolerance) {
  if (!(a.length > 0) || !(b.length > 0)) return {};  // points: their ends are all there is
  if (!a.arc && !b.arc) return linesCross(a, b);
  if (!a.arc) return lineCrossesCircle(a, b, tolerance);
  if (!b.arc) return lineCrossesCircle(b, a, tolerance);
  return circlesCross(a, b, tolerance);
}

// The piece's polynomials put into the equation of the line or circle give a polynomial whose roots are the
// points.
Points crossings(const Bezier& a, const Element& b, double tolerance) {
  if (!(b.length > 0)) return {};
  const Homogeneous h = homogeneous(a, b.origin);
  const double weight = leastWeight(a);
  if (!b.arc) return pointsAt(a, rootsOf(sum(h.y, b.along.x, h.x, -b.along.y), tolerance * weight));
  const Bernstein square = sum(product(h.x, h.x), 1, product(h.y, h.y), 1);
  const Bernstein outward = product(sum(h.x, b.outward.x, h.y, b.outward.y), h.w);
  const Bernstein power = sum(square, 1 / (2 * b.radius), product(h.w, h.w), b.originPower / (2 * b.radius));
  return pointsAt(a, rootsOf(sum(power, 1, outward, b.depth / b.radius), tolerance * weight * weight));
}

Points crossings(const Bezier& a, const EllipseCurve& b, double tolerance) {
  const Homogeneous h = homogeneous(a, b.centre);
  const double size = b.major.length();
  const AcGeVector2d axis = b.major * (1 / size);
  // In the frame where the ellipse is a circle of the size of the major axis; there distances only grow.
  const Bernstein x = sum(h.x, axis.x, h.y, axis.y), y = sum(h.y, axis.x / b.ratio, h.x, -axis.y / b.ratio);
  const Bernstein square = sum(product(x, x), 1 / (2 * size), product(y, y), 1 / (2 * size));
  const double weight = leastWeight(a);
  const double zero = std::max(tolerance, roundoff(size) / b.ratio);
  return pointsAt(a, rootsOf(sum(square, 1, product(h.w, h.w), -size / 2), zero * weight * weight));
}

}  // namespace tarnex::kernel
