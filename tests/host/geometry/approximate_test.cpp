// Ellipses as arcs and NURBS through points.
// Knows no conversions of the drawing.
#include <gtest/gtest.h>

#include "host/geometry/curves.h"
#include "sample_curves.h"

namespace tarnex {
namespace {

// Direction in which span i leaves its start or reaches its end.
AcGeVector2d directionAt(const PolylineCurve& c, std::size_t i, bool atEnd) {
  const AcGePoint2d a = c.vertices[i].point, b = c.vertices[(i + 1) % c.vertices.size()].point;
  const double turn = 2 * std::atan(c.vertices[i].bulge) * (atEnd ? 1 : -1);  // half the sweep from the chord
  const AcGeVector2d chord = (b - a).normal();
  return {chord.x * std::cos(turn) - chord.y * std::sin(turn),
          chord.x * std::sin(turn) + chord.y * std::cos(turn)};
}

TEST(EllipseAsArcs, FitsAndIsSmoothForAllRatios) {
  const AcGePoint2d centre{7, -3};
  const AcGeVector2d major{30, 40};  // half axis 50
  const AcGeVector2d unit = major.normal();
  for (const double ratio : {1.0, 0.999, 0.9, 0.7, 0.5, 0.3, 0.2, 0.1, 0.05, 0.02, 0.01, 0.001}) {
    const PolylineCurve arcs = ellipseAsArcs(centre, major, ratio);
    ASSERT_TRUE(isValid(arcs) && arcs.closed) << ratio;
    const double minor = 50 * ratio;
    const std::size_t n = arcs.vertices.size();
    ASSERT_EQ(n % 4, 0u);
    ASSERT_LE(n, ratio == 1 ? 8u : ratio >= 0.4 ? 32u : 100u) << ratio;
    const AcGePoint2d ends[] = {centre + major, centre + major.perpVector() * ratio, centre - major,
                                centre - major.perpVector() * ratio};
    const AcGeVector2d along[] = {unit.perpVector(), -unit, -unit.perpVector(), unit};
    for (std::size_t k = 0; k < 4; ++k) {
      ASSERT_LT(arcs.vertices[k * n / 4].point.distanceTo(ends[k]), 1e-12) << ratio;
      ASSERT_LT((directionAt(arcs, k * n / 4, false) - along[k]).length(), 1e-9) << ratio;
    }
    const Curve ellipse = EllipseCurve{centre, major, ratio, 0, 2 * kPi};
    for (std::size_t i = 0; i < n; ++i) {
      ASSERT_GT(arcs.vertices[i].bulge, 0) << ratio;
      ASSERT_LT((directionAt(arcs, i, true) - directionAt(arcs, (i + 1) % n, false)).length(), 1e-9) << ratio;
      for (int k = 0; k < 40; ++k) {
        const AcGePoint2d p = pointAtParam(arcs, static_cast<double>(i) + k / 40.0);
        ASSERT_LT(closestPoint(ellipse, p).distance, 0.001 * minor) << ratio << " span " << i;
      }
    }
  }
}

TEST(EllipseAsArcs, RefusesWhatIsNoEllipse) {
  for (const double ratio : {0.0, -0.5, 1.5, std::nan("")}) {
    EXPECT_TRUE(ellipseAsArcs({0, 0}, {1, 0}, ratio).vertices.empty()) << ratio;
  }
  EXPECT_TRUE(ellipseAsArcs({0, 0}, {0, 0}, 0.5).vertices.empty());
}

TEST(NurbsThrough, StraightAndParabola) {
  const std::vector<AcGePoint2d> two{{0, 0}, {3, 4}};
  const auto line = nurbsThrough(two, {}, {});
  ASSERT_TRUE(line && isValid(*line));
  EXPECT_NEAR(length(*line), 5, 1e-12);
  EXPECT_NEAR(pointAtParam(*line, 2.5).x, 1.5, 1e-12);
  EXPECT_FALSE(nurbsThrough(std::vector<AcGePoint2d>{{1, 1}, {1, 1}}, {}, {}));
  EXPECT_FALSE(nurbsThrough(std::vector<AcGePoint2d>{{1, 1}, {std::nan(""), 1}}, {}, {}));
  EXPECT_FALSE(nurbsThrough({}, {}, {}));
  // Natural ends, symmetric about x = 1: y'' is zero at both ends, so by hand y = 3/2 s - s³/2 in s = t / √2
  // up to the middle, and its slope per t at the start is 3/2 / √2.
  const std::vector<AcGePoint2d> roof{{0, 0}, {1, 1}, {2, 0}};
  const auto bow = nurbsThrough(roof, {}, {});
  EXPECT_NEAR(tangentAtParam(*bow, 0).y, 1.5 / std::sqrt(2), 1e-12);
  EXPECT_NEAR(pointAtParam(*bow, std::sqrt(0.5)).y, 0.75 - 0.0625, 1e-12);
}

TEST(NurbsThrough, PassesItsPointsWithTwoContinuousDerivatives) {
  sample::Source source(31);
  for (int i = 0; i < sample::rounds(60); ++i) {
    std::vector<AcGePoint2d> points;
    for (int k = source.integer(3, 9); k > 0; --k) points.push_back(source.point(10));
    const bool close = source.coin();
    if (close) points.push_back(points.front());
    std::optional<AcGeVector2d> start, end;
    if (!close && source.coin()) start = AcGeVector2d{3, 4};
    if (!close && source.coin()) end = AcGeVector2d{0, -2};
    const auto c = nurbsThrough(points, start, end);
    ASSERT_TRUE(c && isValid(*c));
    double t = 0;
    for (std::size_t k = 0; k < points.size(); ++k) {
      if (k > 0) t += points[k - 1].distanceTo(points[k]);
      ASSERT_LT(pointAtParam(*c, t).distanceTo(points[k]), 1e-10) << i;
    }
    ASSERT_NEAR(endParam(*c), t, 1e-12);
    if (start) {
      ASSERT_NEAR((tangentAtParam(*c, 0) - AcGeVector2d{0.6, 0.8}).length(), 0, 1e-10);
    }
    if (end) {
      ASSERT_NEAR((tangentAtParam(*c, t) - AcGeVector2d{0, -1}).length(), 0, 1e-10);
    }
    const double h = 1e-5;
    const auto bend = [&](double from, double to) {
      return (tangentAtParam(*c, to) - tangentAtParam(*c, from)) * (1 / (to - from));
    };
    double knot = 0;
    for (std::size_t k = 1; k + 1 < points.size(); ++k) {
      knot += points[k - 1].distanceTo(points[k]);
      const AcGeVector2d before = bend(knot - h, knot), after = bend(knot, knot + h);
      ASSERT_NEAR((before - after).length(), 0, 1e-3 * (1 + before.length())) << i;
    }
    if (close) {
      ASSERT_NEAR((tangentAtParam(*c, 0) - tangentAtParam(*c, t)).length(), 0, 1e-9) << i;
      ASSERT_NEAR((bend(0, h) - bend(t - h, t)).length(), 0, 1e-3 * (1 + bend(0, h).length())) << i;
    } else if (!start) {
      ASSERT_NEAR(bend(0, h).length(), 0, 1e-3) << i;
    }
  }
}

}  // namespace
}  // namespace tarnex
