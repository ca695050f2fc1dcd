// Ellipses and NURBS as chains of rational Bézier pieces, and arc length by quadrature.
// Internal to the kernel: knows no lines, arcs and polylines.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/geometry/bernstein.h"
#include "host/geometry/curves.h"

namespace tarnex::kernel {

// A rational Bézier curve on [0, 1] that is exactly the stretch of its host curve between two host
// parameters.
struct Bezier {
  std::vector<AcGePoint2d> control;
  std::vector<double> weights;  // one per control point, above 0
  bool rational = false;        // weights differ
  bool byAngle = false;         // of an ellipse: host parameters are angles
  double from = 0, to = 1;      // host parameters at 0 and 1
};

[[nodiscard]] std::vector<Bezier> piecesOf(const NurbsCurve& c);
[[nodiscard]] std::vector<Bezier> piecesOf(const EllipseCurve& c);

struct PointAndSlope {
  AcGePoint2d point;
  AcGeVector2d slope;
};
[[nodiscard]] PointAndSlope evaluate(const Bezier& b, double u);  // slope by u
[[nodiscard]] double hostParam(const Bezier& b, double u);
[[nodiscard]] Extents2d hullOf(const Bezier& b);

// x, y and w as polynomials, the points taken from `origin`: the curve is (x / w, y / w).
struct Homogeneous {
  Bernstein x, y, w;
};
[[nodiscard]] Homogeneous homogeneous(const Bezier& b, AcGePoint2d origin);

// Exact box, by the roots of the derivative of each coordinate.
void addExtents(const Bezier& b, Extents2d& box);

// Closest point of the pieces to p, in host parameters; `best` is what must be beaten.
void improveClosest(std::span<const Bezier> pieces, AcGePoint2d p, Closest& best);

// The part of a NURBS between two of its parameters, from < to, with its own inner knots.
[[nodiscard]] NurbsCurve partOf(const NurbsCurve& c, double from, double to);
// Parameters between which the curve is one polynomial piece: the distinct knots of its range.
[[nodiscard]] std::vector<double> breaksOf(const NurbsCurve& c);
// Length between two parameters of one polynomial piece, mm, and the parameter at a length from the first.
[[nodiscard]] double stretchLength(const NurbsCurve& c, double from, double to);
[[nodiscard]] double stretchParam(const NurbsCurve& c, double from, double to, double distance);

// ∫ speed over [from, to] by Gauss' rule on halves until the halves agree with the whole.
template <class Speed>
double quadrature(const Speed& speed, double from, double to, double whole, int depth);
template <class Speed>
double arcLength(const Speed& speed, double from, double to);
// The parameter at which the arc length from `from` reaches `distance`, at most `to`.
template <class Speed>
double paramAtLength(const Speed& speed, double from, double to, double distance);

// ---- definitions

struct GaussNode {
  double at, weight;
};
// Roots of the Legendre polynomial of degree 12, above 0; they stand for those below too.
inline constexpr GaussNode kGauss[] = {
    {0.12523340851146894, 0.24914704581340277}, {0.36783149899818018, 0.23349253653835480},
    {0.58731795428661748, 0.20316742672306590}, {0.76990267419430469, 0.16007832854334622},
    {0.90411725637047491, 0.10693932599531843}, {0.98156063424671924, 0.04717533638651183}};

template <class Speed>
double gauss(const Speed& speed, double from, double to) {
  const double middle = (from + to) / 2, half = (to - from) / 2;
  double sum = 0;
  for (const GaussNode& n : kGauss)
    sum += n.weight * (speed(middle - half * n.at) + speed(middle + half * n.at));
  return sum * half;
}

template <class Speed>
double quadrature(const Speed& speed, double from, double to, double whole, int depth) {
  constexpr double kAgree = 1e-13;  // of the stretch's own length
  const double middle = (from + to) / 2;
  const double left = gauss(speed, from, middle), right = gauss(speed, middle, to);
  if (depth == 0 || !(std::abs(left + right - whole) > kAgree * std::abs(whole))) return left + right;
  return quadrature(speed, from, middle, left, depth - 1) + quadrature(speed, middle, to, right, depth - 1);
}

template <class Speed>
double arcLength(const Speed& speed, double from, double to) {
  constexpr int kDepth = 14;  // a cusp is met to 2^-14 of the stretch, where hardly any length is left
  return quadrature(speed, from, to, gauss(speed, from, to), kDepth);
}

template <class Speed>
double paramAtLength(const Speed& speed, double from, double to, double distance) {
  double low = from, high = to, done = 0, at = from;  // `done` mm lie before `at`
  double next = (from + to) / 2;
  for (int i = 0; i < 60; ++i) {
    done += arcLength(speed, at, next) * (to > from ? 1 : -1);
    at = next;
    (done < distance ? low : high) = at;
    const double rate = speed(at);
    next = at + (distance - done) / (to > from ? rate : -rate);
    const bool inside = to > from ? next > low && next < high : next < low && next > high;
    if (!inside) next = (low + high) / 2;
    if (std::abs(next - at) <= 1e-15 * std::abs(to - from)) break;
  }
  return next;
}

}  // namespace tarnex::kernel
