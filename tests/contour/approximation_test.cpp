// Splines as chords and ellipses as arcs: how near they stay, where they begin and end, what the commands
// say. Knows the drawing; no chain.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "contour/approximation.h"
#include "host/geometry/measured.h"
#include "support/modulefixture.h"

namespace tarnex {
namespace {

using testing::HasSubstr;

class Approximation : public ModuleFixture {
 protected:
  PolylineCurve chordsOf(const AcDbSpline& spline) {
    return polylineOf(session, splineToPolyline(session.ed, spline));
  }
};

NurbsCurve through(const std::vector<AcGePoint2d>& points) {
  return nurbsThrough(points, std::nullopt, std::nullopt).value();
}

TEST_F(Approximation, AStraightSplineOfFourFitPointsHasFourVertices) {
  const std::vector<AcGePoint2d> fit{{0, 0}, {10, 0}, {25, 0}, {30, 0}};
  const auto c = chordsOf(AcDbSpline(through(fit), fit));
  EXPECT_FALSE(c.closed);
  EXPECT_TRUE(sameVertices(c, {{{0, 0}, 0}, {{10, 0}, 0}, {{25, 0}, 0}, {{30, 0}, 0}}, 1e-6));
}

TEST_F(Approximation, LayerColourAndProgress) {
  const std::vector<AcGePoint2d> fit{{0, 0}, {10, 5}, {20, 0}};
  AcDbSpline spline(through(fit), fit);
  spline.setColorIndex(6);
  (void)chordsOf(spline);
  EXPECT_EQ(session.last<AcDbPolyline>()->colorIndex(), 6);
  EXPECT_THAT(session.out,
              HasSubstr("\rWorking...- \rWorking...\\ \rWorking...| \rWorking.../ \rWorking...- "));
  EXPECT_THAT(session.out, testing::EndsWith("\rWorking...ok  "));
}

TEST_F(Approximation, WithoutAControlPointThereIsNone) {
  EXPECT_TRUE(splineToPolyline(session.ed, AcDbSpline(NurbsCurve{})).isNull());
  EXPECT_TRUE(session.all().empty());
}

// Both ways: the chords keep to the spline, and no part of the spline is left out.
void expectNear(const NurbsCurve& spline, const PolylineCurve& chords, int round) {
  ASSERT_GE(chords.vertices.size(), 2u) << round;
  const Curve c = spline, p = chords;
  const MeasuredCurve measured(c);
  const double total = measured.length();
  EXPECT_NEAR(chords.vertices.front().point.distanceTo(startPoint(c)), 0, 0.01) << round;
  EXPECT_NEAR(chords.vertices.back().point.distanceTo(endPoint(c)), 0, 1e-6) << round;
  EXPECT_NEAR(length(p), total, 0.02 + total * 0.01) << round;
  double away = 0;
  for (int i = 0; i <= 200; ++i)
    away =
        std::max(away, closestPoint(p, measured.pointAtDist(total * i / 200).value_or(endPoint(c))).distance);
  EXPECT_LT(away, 0.015) << round;
  for (std::size_t i = 0; i + 1 < chords.vertices.size(); ++i) {
    const AcGePoint2d a = chords.vertices[i].point, b = chords.vertices[i + 1].point;
    for (int k = 0; k <= 4; ++k)
      ASSERT_LT(measured.closestPoint(a + (b - a) * (k * 0.25)).distance, 0.01001) << round;
  }
}

TEST_F(Approximation, RandomSplinesAreFollowedFromEndToEnd) {
  std::mt19937 rng(3);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (int round = 0; round < 8; ++round) {
    NurbsCurve c;
    std::vector<AcGePoint2d> points;
    const int n = 4 + round % 4;
    for (int i = 0; i < n; ++i) points.push_back({8.0 * i + 3 * unit(rng), 8 * unit(rng)});
    if (round % 2) {
      const auto fit = points;
      c = through(fit);
      expectNear(c, chordsOf(AcDbSpline(c, fit)), round);
    } else {
      c.control = points;
      c.knots.assign(4, 0);
      for (int i = 1; i < n - 3; ++i) c.knots.push_back(i);
      c.knots.insert(c.knots.end(), 4, n - 3);
      expectNear(c, chordsOf(AcDbSpline(c)), round);
    }
  }
}

TEST_F(Approximation, ClosedAndLoopingSplinesLoseNothing) {
  const std::vector<AcGePoint2d> ring{{10, 0}, {0, 10}, {-10, 0}, {0, -10}, {10, 0}};
  const auto closed = through(ring);
  expectNear(closed, chordsOf(AcDbSpline(closed, ring)), 0);
  // One Bézier span that crosses itself.
  const NurbsCurve loop{3, {{0, 0}, {30, 20}, {-20, 20}, {10, 0}}, {}, {0, 0, 0, 0, 1, 1, 1, 1}};
  expectNear(loop, chordsOf(AcDbSpline(loop)), 1);
  // A teardrop: it ends where it began.
  const NurbsCurve drop{3, {{0, 0}, {20, 20}, {-20, 20}, {0, 0}}, {}, {0, 0, 0, 0, 1, 1, 1, 1}};
  expectNear(drop, chordsOf(AcDbSpline(drop)), 2);
}

// ---- ellipses

TEST_F(Approximation, AFullEllipseBecomesAClosedPolylineThroughItsAxisEnds) {
  const AcDbObjectId id =
      session.add(std::make_unique<AcDbEllipse>(AcGePoint3d{5, 5, 0}, AcGeVector2d{0, 10}, 0.5, 0, 2 * kPi));
  (void)session.ed.acedSetVar("PELLIPSE", 0LL);
  const auto made = ellipseToPolyline(session.ed, id);
  const auto c = polylineOf(session, made);
  EXPECT_TRUE(c.closed);
  EXPECT_FALSE(stands(id));
  for (AcGePoint2d end : {AcGePoint2d{5, 15}, {5, -5}, {10, 5}, {0, 5}})
    EXPECT_NEAR(closestPoint(c, end).distance, 0, 1e-9);
  EXPECT_EQ(session.all().size(), 1u);
  EXPECT_EQ(session.ed.intVar("PELLIPSE"), 0);
}

TEST_F(Approximation, AnEllipticArcKeepsTheSideOfItsMiddle) {
  const double ratio = 0.6;
  for (int round = 0; round < 24; ++round) {
    const double from = round * kPi / 12 + 0.1, sweep = 0.4 + round % 6;
    const AcGeVector2d major{8 * std::cos(0.3 * round), 8 * std::sin(0.3 * round)};
    const Curve ellipse = EllipseCurve{{1, 2}, major, ratio, from, sweep};
    const AcDbObjectId id = session.add(std::make_unique<AcDbEllipse>(
        AcGePoint3d{1, 2, 0}, major, ratio, from, std::fmod(from + sweep, 2 * kPi)));
    const auto c = polylineOf(session, ellipseToPolyline(session.ed, id));
    ASSERT_FALSE(c.closed) << round;
    ASSERT_GE(c.vertices.size(), 2u) << round;
    EXPECT_NEAR(length(c), length(ellipse), 0.02 * length(ellipse)) << round;
    for (int k = 0; k <= 20; ++k)
      EXPECT_LT(closestPoint(c, pointAtDist(ellipse, length(ellipse) * k / 20).value_or(endPoint(ellipse)))
                    .distance,
                0.01)
          << round;
    const AcGePoint2d first = c.vertices.front().point, last = c.vertices.back().point;
    const AcGePoint2d s = startPoint(ellipse), e = endPoint(ellipse);
    EXPECT_LT(std::min(first.distanceTo(s) + last.distanceTo(e), first.distanceTo(e) + last.distanceTo(s)),
              1e-6)
        << round;
    EXPECT_EQ(session.all().size(), static_cast<std::size_t>(round) + 1);
  }
}

TEST_F(Approximation, CommandsCountWhatTheyConvert) {
  const auto command = [&](void (*run)(Module&)) {
    session.out.clear();
    session.answers({"all", ""});
    run(*module);
    return session.out;
  };
  session.line({0, 0}, {1, 0});
  EXPECT_THAT(command(s2p), testing::EndsWith("\n *** 0 OK!"));
  EXPECT_THAT(command(e2p), testing::EndsWith("\n *** 0 OK!"));
  const std::vector<AcGePoint2d> fit{{0, 0}, {10, 0}};
  const AcDbObjectId spline = session.add(std::make_unique<AcDbSpline>(through(fit), fit));
  const AcDbObjectId ellipse =
      session.add(std::make_unique<AcDbEllipse>(AcGePoint3d{}, AcGeVector2d{10, 0}, 0.5, 0, 2 * kPi));
  EXPECT_THAT(command(s2p), testing::EndsWith("\n *** 1 OK!"));
  EXPECT_THAT(command(e2p), testing::EndsWith("\n *** 1 OK!"));
  EXPECT_FALSE(stands(spline) || stands(ellipse));
  EXPECT_EQ(session.all().size(), 3u);
}

}  // namespace
}  // namespace tarnex
