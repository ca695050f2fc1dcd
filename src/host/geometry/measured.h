// One curve that is asked many times, as a walk along a spline does: lengths and pieces are reckoned once.
// Gives the answers of the operations on curves; knows no others.
#pragma once

#include <memory>

#include "host/geometry/curves.h"

namespace tarnex {

class MeasuredCurve {
 public:
  explicit MeasuredCurve(Curve curve);
  MeasuredCurve(MeasuredCurve&&) noexcept;
  MeasuredCurve& operator=(MeasuredCurve&&) noexcept;
  ~MeasuredCurve();

  [[nodiscard]] Curve curve() const;
  [[nodiscard]] double length() const;
  [[nodiscard]] double distAtParam(double param) const;
  [[nodiscard]] std::optional<double> paramAtDist(double distance) const;
  [[nodiscard]] std::optional<AcGePoint2d> pointAtDist(double distance) const;
  [[nodiscard]] Closest closestPoint(AcGePoint2d p) const;  // without extension
  [[nodiscard]] std::optional<double> distAtPoint(AcGePoint2d p, double tolerance = 1e-6) const;

 private:
  struct Spline;
  Curve curve_;
  std::unique_ptr<const Spline> spline_;  // of a sound NURBS; other curves are quick to ask
};

}  // namespace tarnex
