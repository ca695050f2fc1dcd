// Random curves from fixed seeds, and what tests measure them with by sampling.
// Knows no test.
#pragma once

#include <cmath>
#include <cstdlib>
#include <random>

#include "host/geometry/curves.h"

namespace tarnex::sample {

// Rounds of a random test: few in the suite, many when TARNEX_LONG is set.
inline int rounds(int few) {
  return std::getenv("TARNEX_LONG") ? few * 50 : few;
}

class Source {
 public:
  explicit Source(unsigned seed) : engine_(seed) {}
  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  int integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  bool coin() { return integer(0, 1) == 1; }
  AcGePoint2d point(double size) { return {between(-size, size), between(-size, size)}; }

  ArcCurve arc(double size) {
    const double sweep = coin() ? between(0.1, 6.2) : integer(0, 3) == 0 ? 2 * kPi : between(0.1, 3);
    return {point(size), between(size / 10, size), between(0, 7), coin() ? sweep : -sweep};
  }
  EllipseCurve ellipse(double size) {
    const ArcCurve a = arc(size);
    return {a.centre, point(size) - AcGePoint2d{}, std::exp(between(-3, 0)), a.startAngle, a.sweep};
  }
  NurbsCurve nurbs(double size) {
    NurbsCurve c;
    c.degree = integer(1, 5);
    const int n = c.degree + 1 + integer(0, 5);
    const bool rational = coin();
    for (int i = 0; i < n; ++i) c.control.push_back(point(size));
    if (n > 3 && coin()) c.control.back() = c.control.front();
    for (int i = 0; i < n && rational; ++i) c.weights.push_back(between(0.3, 3));
    double knot = between(-2, 2);
    for (int i = 0; i < n + c.degree + 1; ++i) {
      c.knots.push_back(knot);
      if (i >= c.degree && i < n) knot += between(0.2, 2);
    }
    return c;
  }
  PolylineCurve polyline(double size, int vertices) {
    PolylineCurve c;
    c.closed = coin();
    for (int i = 0; i < vertices; ++i) c.vertices.push_back({point(size), coin() ? 0 : bulge()});
    return c;
  }
  double bulge() {
    const double magnitude = std::exp(between(-5, 1.5));
    return coin() ? magnitude : -magnitude;
  }
  Curve any(double size) {
    switch (integer(0, 4)) {
      case 0:
        return LineCurve{point(size), point(size)};
      case 1:
        return arc(size);
      case 2:
        return ellipse(size);
      case 3:
        return nurbs(size);
      default:
        return polyline(size, integer(2, 6));
    }
  }

 private:
  std::mt19937 engine_;
};

inline AcGePoint2d at(const Curve& c, double part) {
  return pointAtParam(c, startParam(c) + (endParam(c) - startParam(c)) * part);
}

}  // namespace tarnex::sample
