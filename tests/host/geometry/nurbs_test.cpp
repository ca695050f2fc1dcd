// NURBS that real files hold: cusps, folds, repeated points, knots of any kind; and many questions to one of
// them.
#include <gtest/gtest.h>

#include "host/geometry/measured.h"
#include "sample_curves.h"

namespace tarnex {
namespace {

constexpr auto kNone = Extend::kOnBothOperands;

TEST(Nurbs, DegenerateShapesAreOrdinaryInput) {
  const NurbsCurve dot{2, {{1, 1}, {1, 1}, {1, 1}}, {}, {0, 0, 0, 1, 1, 1}};
  EXPECT_EQ(length(dot), 0);
  EXPECT_EQ(closestPoint(dot, {4, 5}).distance, 5);
  EXPECT_EQ(intersect(dot, LineCurve{{0, 0}, {2, 2}}, kNone).size(), 1u);
  EXPECT_EQ(intersect(dot, dot, kNone).size(), 1u);
  // The cusp (t², t³) about t = 0.5: B(t) has control points (1,-1), (-1,1), (-1,-1), (1,1) for t' = 2t - 1.
  const NurbsCurve cusp{3, {{1, -1}, {-1.0 / 3, 1}, {-1.0 / 3, -1}, {1, 1}}, {}, {0, 0, 0, 0, 1, 1, 1, 1}};
  EXPECT_NEAR(pointAtParam(cusp, 0.75).x, 0.25, 1e-15);
  EXPECT_NEAR(pointAtParam(cusp, 0.75).y, 0.125, 1e-15);
  // Each half is ((4 + 9)^(3/2) - 8) / 27 long.
  EXPECT_NEAR(length(cusp), 2 * (13 * std::sqrt(13) - 8) / 27, 1e-9);
  EXPECT_NEAR(extents(cusp).low.x, 0, 1e-12);
  EXPECT_NEAR(closestPoint(cusp, {-1, 0}).distance, 1, 1e-12);
  const auto hits = intersect(cusp, LineCurve{{0.25, -2}, {0.25, 2}}, kNone);
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_NEAR(hits[0].y, -0.125, 1e-12);
  const auto turned = std::get<NurbsCurve>(*transformed(cusp, AcGeMatrix3d::rotation(kPi / 2, {0, 0})));
  // (t², t³) = (-s³, s²): at the cusps, and where t⁵ = 1, which is the end (1,1).
  EXPECT_EQ(intersect(cusp, turned, kNone).size(), 2u);
  // A straight one that runs back over itself, from 0 over its farthest x = 1.5 and home.
  const NurbsCurve fold{2, {{0, 0}, {3, 0}, {0, 0}}, {}, {0, 0, 0, 1, 1, 1}};
  EXPECT_NEAR(length(fold), 3, 1e-12);
  EXPECT_NEAR(extents(fold).high.x, 1.5, 1e-12);
  EXPECT_EQ(intersect(fold, LineCurve{{1, -1}, {1, 1}}, kNone).size(), 1u);
}

TEST(Nurbs, SplitKeepsKnotsAndWeights) {
  const NurbsCurve c{3,
                     {{0, 0}, {1, 2}, {3, 3}, {4, 0}, {6, 1}, {7, 4}},
                     {1, 2, 1, 3, 1, 1},
                     {0, 0, 0, 0, 1, 3, 4, 4, 4, 4}};
  const auto pieces = split(c, {2});
  ASSERT_EQ(pieces.size(), 2u);
  const auto& first = std::get<NurbsCurve>(pieces[0]);
  EXPECT_EQ(first.knots, (std::vector<double>{0, 0, 0, 0, 1, 2, 2, 2, 2}));
  EXPECT_EQ(first.control.size(), 5u);
  for (const double u : {0.0, 0.4, 1.0, 1.7, 2.0}) {
    EXPECT_LT(pointAtParam(first, u).distanceTo(pointAtParam(c, u)), 1e-13);
  }
  EXPECT_LT(pointAtParam(pieces[1], 3.5).distanceTo(pointAtParam(c, 3.5)), 1e-13);
}

TEST(Nurbs, PartsOfOneSplineCoincideWithIt) {
  sample::Source source(41);
  for (int i = 0; i < sample::rounds(20); ++i) {
    std::vector<AcGePoint2d> points;
    for (int k = 0; k < 8; ++k) points.push_back({k * 3.0, source.between(-2, 2)});
    const Curve c = *nurbsThrough(points, {}, {});
    const double whole = endParam(c);
    const Curve part = split(c, {whole * 0.21, whole * 0.67})[1];
    const auto found = intersect(c, part, kNone);
    ASSERT_EQ(found.size(), 2u) << i;
    EXPECT_LT(found[0].distanceTo(startPoint(part)), 1e-9);
    EXPECT_LT(found[1].distanceTo(endPoint(part)), 1e-9);
  }
}

TEST(Nurbs, CurvesThatRunSideBySide) {
  // Waves of equal shape, one shifted sideways by ever less: they meet once at every crest and every trough.
  for (const double shift : {1.0, 1e-3, 1e-6}) {
    std::vector<AcGePoint2d> first, second;
    for (int k = 0; k <= 40; ++k) {
      first.push_back(
          {k * 0.5, 2 * std::sin(k * kPi / 4)});  // crests at k = 2, 6, 10, ... to 38: ten of both kinds
      second.push_back({k * 0.5 + shift, first.back().y});
    }
    const Curve a = *nurbsThrough(first, {}, {}), b = *nurbsThrough(second, {}, {});
    EXPECT_EQ(intersect(a, b, kNone).size(), 10u) << shift;
    const auto lifted = *transformed(a, AcGeMatrix3d::translation({0, shift * 1e-2, 0}));
    EXPECT_EQ(intersect(a, lifted, kNone).size(), 0u) << shift;
  }
}

TEST(Nurbs, MeasuredCurveAnswersTheSame) {
  sample::Source source(42);
  for (int i = 0; i < sample::rounds(50); ++i) {
    const Curve c = source.any(10);
    const MeasuredCurve measured(c);
    EXPECT_EQ(measured.curve(), c);
    EXPECT_NEAR(measured.length(), length(c), 1e-10);
    for (int k = 0; k < 5; ++k) {
      const double d = source.between(-1, 1.2) * measured.length();
      const auto point = measured.pointAtDist(d), expected = pointAtDist(c, d);
      ASSERT_EQ(point.has_value(), expected.has_value()) << i;
      if (!point) continue;
      EXPECT_LT(point->distanceTo(*expected), 1e-8) << i;
      EXPECT_NEAR(*measured.distAtPoint(*point), *distAtPoint(c, *point), 1e-8) << i;
    }
    const AcGePoint2d p = source.point(15);
    EXPECT_EQ(measured.closestPoint(p).distance, closestPoint(c, p).distance);
  }
}

}  // namespace
}  // namespace tarnex
