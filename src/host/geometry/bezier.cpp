// Rational Bézier pieces: evaluation, exact boxes and closest points by the roots of polynomials.
// Knows no curves as a whole.
#include <algorithm>

#include "host/geometry/element.h"
#include "host/geometry/smooth.h"

namespace tarnex::kernel {

PointAndSlope evaluate(const Bezier& b, double u) {
  const std::size_t n = b.control.size() - 1;
  const AcGePoint2d origin = b.control[u > 0.5 ? n : 0];
  const Homogeneous h = homogeneous(b, origin);
  const double x = valueAt(h.x, u), y = valueAt(h.y, u), w = valueAt(h.w, u);
  const double dx = valueAt(derivativeOf(h.x), u), dy = valueAt(derivativeOf(h.y), u);
  const double dw = b.rational ? valueAt(derivativeOf(h.w), u) : 0;
  return {{origin.x + x / w, origin.y + y / w}, {(dx - x / w * dw) / w, (dy - y / w * dw) / w}};
}

double hostParam(const Bezier& b, double u) {
  if (u <= 0) return b.from;
  if (u >= 1) return b.to;
  if (!b.byAngle) return b.from + (b.to - b.from) * u;
  // The piece is the image of a piece of the unit circle about its middle angle.
  const double half = (b.to - b.from) / 2, v = 1 - u;
  const double x = (v * v + u * u) * std::cos(half) + 2 * u * v, y = (u - v) * std::sin(half);
  return (b.from + b.to) / 2 + std::atan2(y, x);
}

Extents2d hullOf(const Bezier& b) {
  Extents2d box;
  for (const AcGePoint2d& p : b.control) box.add(p);
  return box;
}

Homogeneous homogeneous(const Bezier& b, AcGePoint2d origin) {
  const std::size_t n = b.control.size();
  Homogeneous h{Bernstein(n), Bernstein(n), b.weights};
  for (std::size_t i = 0; i < n; ++i) {
    h.x[i] = (b.control[i].x - origin.x) * b.weights[i];
    h.y[i] = (b.control[i].y - origin.y) * b.weights[i];
  }
  return h;
}

namespace {

// Numerator of the derivative of f / w.
Bernstein quotientSlope(const Bernstein& f, const Bernstein& w) {
  return sum(product(derivativeOf(f), w), 1, product(f, derivativeOf(w)), -1);
}

}  // namespace

void addExtents(const Bezier& b, Extents2d& box) {
  box.add(b.control.front());
  box.add(b.control.back());
  if (b.control.size() < 3 || box.contains(hullOf(b))) return;
  const Homogeneous h = homogeneous(b, b.control.front());
  for (const Bernstein* f : {&h.x, &h.y}) {
    const Bernstein slope = b.rational ? quotientSlope(*f, h.w) : derivativeOf(*f);
    for (const double u : rootsOf(slope, 0)) box.add(evaluate(b, u).point);
  }
}

void improveClosest(std::span<const Bezier> pieces, AcGePoint2d p, Closest& best) {
  const auto offer = [&](AcGePoint2d point, double param) {
    const double distance = point.distanceTo(p);
    if (distance < best.distance) best = {point, param, distance};
  };
  for (const Bezier& b : pieces) offer(b.control.front(), b.from);
  if (!pieces.empty()) offer(pieces.back().control.back(), pieces.back().to);
  for (const Bezier& b : pieces) {
    const Extents2d hull = hullOf(b);
    const double dx = std::max({hull.low.x - p.x, 0.0, p.x - hull.high.x});
    const double dy = std::max({hull.low.y - p.y, 0.0, p.y - hull.high.y});
    if (std::hypot(dx, dy) >= best.distance) continue;
    // Squared distance is (x² + y²) / w² about p; its derivative is zero at every nearest or farthest point.
    const Homogeneous h = homogeneous(b, p);
    const Bernstein square = sum(product(h.x, h.x), 1, product(h.y, h.y), 1);
    const Bernstein slope =
        b.rational ? sum(product(derivativeOf(square), h.w), 1, product(square, derivativeOf(h.w)), -2)
                   : derivativeOf(square);
    for (const double u : rootsOf(slope, 0)) offer(evaluate(b, u).point, hostParam(b, u));
  }
}

}  // namespace tarnex::kernel
