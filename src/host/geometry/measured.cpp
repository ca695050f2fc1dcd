// Lengths and Bézier pieces of a NURBS kept for many questions.
// Other curves answer for themselves.
#include "host/geometry/measured.h"

#include <algorithm>

#include "host/geometry/kernel.h"
#include "host/geometry/smooth.h"

namespace tarnex {

struct MeasuredCurve::Spline {
  std::vector<double> breaks;   // parameters between the polynomial pieces
  std::vector<double> lengths;  // from the start to each of them, mm
  std::vector<kernel::Bezier> pieces;
};

MeasuredCurve::MeasuredCurve(Curve curve) : curve_(std::move(curve)) {
  const auto* nurbs = std::get_if<NurbsCurve>(&curve_);
  if (!nurbs || !isValid(curve_)) return;
  auto spline = std::make_unique<Spline>();
  spline->breaks = kernel::breaksOf(*nurbs);
  spline->pieces = kernel::piecesOf(*nurbs);
  spline->lengths.push_back(0);
  for (std::size_t i = 0; i + 1 < spline->breaks.size(); ++i) {
    const double piece = kernel::stretchLength(*nurbs, spline->breaks[i], spline->breaks[i + 1]);
    spline->lengths.push_back(spline->lengths.back() + piece);
  }
  spline_ = std::move(spline);
}

MeasuredCurve::MeasuredCurve(MeasuredCurve&&) noexcept = default;
MeasuredCurve& MeasuredCurve::operator=(MeasuredCurve&&) noexcept = default;
MeasuredCurve::~MeasuredCurve() = default;

Curve MeasuredCurve::curve() const {
  return curve_;
}

double MeasuredCurve::length() const {
  return spline_ ? spline_->lengths.back() : tarnex::length(curve_);
}

double MeasuredCurve::distAtParam(double param) const {
  if (!spline_) return tarnex::distAtParam(curve_, param);
  const auto& breaks = spline_->breaks;
  if (!(param > breaks.front())) return 0;
  if (param >= breaks.back()) return length();
  const auto i = static_cast<std::size_t>(std::ranges::upper_bound(breaks, param) - breaks.begin()) - 1;
  return spline_->lengths[i] + kernel::stretchLength(std::get<NurbsCurve>(curve_), breaks[i], param);
}

std::optional<double> MeasuredCurve::paramAtDist(double distance) const {
  if (!spline_) return tarnex::paramAtDist(curve_, distance);
  const auto &breaks = spline_->breaks, &lengths = spline_->lengths;
  const double slack = kernel::contactTolerance(length());
  if (!(distance >= -slack && distance <= length() + slack)) return std::nullopt;
  if (distance <= 0) return breaks.front();
  if (distance >= length()) return breaks.back();
  const auto i = static_cast<std::size_t>(std::ranges::upper_bound(lengths, distance) - lengths.begin()) - 1;
  return kernel::stretchParam(std::get<NurbsCurve>(curve_), breaks[i], breaks[i + 1], distance - lengths[i]);
}

std::optional<AcGePoint2d> MeasuredCurve::pointAtDist(double distance) const {
  const auto param = paramAtDist(distance);
  if (!param) return std::nullopt;
  return *param == endParam(curve_) ? endPoint(curve_) : pointAtParam(curve_, *param);
}

Closest MeasuredCurve::closestPoint(AcGePoint2d p) const {
  if (!spline_) return tarnex::closestPoint(curve_, p);
  const AcGePoint2d start = spline_->pieces.front().control.front();
  Closest best{start, spline_->breaks.front(), start.distanceTo(p)};
  kernel::improveClosest(spline_->pieces, p, best);
  return best;
}

std::optional<double> MeasuredCurve::distAtPoint(AcGePoint2d p, double tolerance) const {
  const Closest near = closestPoint(p);
  if (!(near.distance <= tolerance)) return std::nullopt;
  return distAtParam(near.param);
}

}  // namespace tarnex
