// A spline as chords: walked by arc length from one defining point to the next, each stretch cut into the
// longest chords that pass the test. Knows the spline alone.
#include "contour/approximation.h"
#include "contour/hosthelpers.h"
#include "host/geometry/measured.h"

namespace tarnex {

namespace {

constexpr double kChordDeviation = 0.01;  // mm, passes when met exactly
constexpr int kMostTries = 799;           // for each pair of defining points
constexpr int kStations = 10;

class SplineWalk {
 public:
  SplineWalk(AcEditor& editor, const AcDbSpline& spline)
      : editor_(editor), spline_(spline), curve_(spline.geometry()), length_(curve_.length()) {}

  PolylineCurve run(AcGePoint2d first) {
    // The first control point of a spline that isn't clamped lies off the curve; the wire starts on it.
    const bool onCurve = curve_.closestPoint(first).distance <= kChordDeviation;
    out_.vertices.push_back({onCurve ? first : startPoint(curve_.curve()), 0});
    const int n = spline_.hasFitData() ? spline_.numFitPoints() : spline_.numControlPoints();
    for (int k = 1; k < n; ++k) {
      const auto p0 = definingPoint(k - 1), p1 = definingPoint(k);
      if (!p0 || !p1) break;
      const Closest from = curve_.closestPoint(*p0), to = curve_.closestPoint(*p1);
      const double d1 = k == n - 1 ? length_ : curve_.distAtParam(to.param);
      stretch(from.point, curve_.distAtParam(from.param), d1);
    }
    return std::move(out_);
  }

 private:
  std::optional<AcGePoint2d> definingPoint(int i) const {
    const auto p = spline_.hasFitData() ? spline_.getFitPointAt(i) : spline_.getControlPointAt(i);
    return p ? std::optional(p->flat()) : std::nullopt;
  }

  void stretch(AcGePoint2d p0, double d0, double d1) {
    const double full = d1 - d0;
    double step = full;
    for (int tries = 0; tries < kMostTries; ++tries) {
      const double at = std::clamp(d0 + step, 0.0, length_);
      const AcGePoint2d c = pointAt(at);
      if (!chordPasses(c, p0)) {
        step *= 0.5;
        continue;
      }
      spin();
      addVertex(c, at);
      d0 += step;
      if (d0 >= d1 || std::abs(d0 - d1) < 0.001) return;
      p0 = c;
      step = full;
    }
  }

  // A try may reach past d1, and the next stretch starts at its own defining point: a vertex that would run
  // back along the curve is left out, since a wire must not.
  void addVertex(AcGePoint2d c, double at) {
    if (out_.vertices.size() > 1 && !(at > reached_)) return;
    out_.vertices.push_back({c, 0});
    reached_ = at;
  }

  bool chordPasses(AcGePoint2d c, AcGePoint2d p0) const {
    const AcGeVector2d along = p0 - c;
    for (int i = 0; i < kStations; ++i) {
      const AcGePoint2d station = c + along * (i * 0.1);
      if (curve_.closestPoint(station).distance > kChordDeviation) return false;
    }
    return true;
  }

  AcGePoint2d pointAt(double dist) const {
    const auto p = curve_.pointAtDist(dist);
    return p ? *p : endPoint(curve_.curve());
  }

  void spin() {
    constexpr char kSpinner[] = {'-', '\\', '|', '/'};
    editor_.acutPrintf("\rWorking...%c ", kSpinner[spinner_++ % 4]);
  }

  AcEditor& editor_;
  const AcDbSpline& spline_;
  MeasuredCurve curve_;
  double length_;
  PolylineCurve out_;
  double reached_ = 0;  // mm along the spline of the last vertex
  unsigned spinner_ = 0;
};

}  // namespace

AcDbObjectId splineToPolyline(AcEditor& editor, const AcDbSpline& spline) {
  editor.print("\n");
  const auto first = spline.getControlPointAt(0);
  if (!first) return {};
  auto polyline = std::make_unique<AcDbPolyline>(SplineWalk(editor, spline).run(first->flat()));
  const AcDbObjectId id =
      appendToModelSpace(editor.database(), std::move(polyline), spline.layerId(), spline.colorIndex(), "");
  editor.print("\rWorking...ok  ");
  return id;
}

}  // namespace tarnex
