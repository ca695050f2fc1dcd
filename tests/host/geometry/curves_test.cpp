// One curve: ends, lengths, boxes, parameters, pieces; worked out by hand.
// Knows no pairs; properties over random curves stand beside it.
#include "host/geometry/curves.h"

#include <gtest/gtest.h>

namespace tarnex {
namespace {

constexpr double kNear = 1e-12;
const double kQuarter = std::sqrt(2.0) - 1;  // bulge of a quarter circle, tan(90°/4)

void expectNear(AcGePoint2d a, AcGePoint2d b, double tolerance = kNear) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
}

// A stadium, counter-clockwise: two lines of 20 and two half circles of radius 5.
PolylineCurve stadium() {
  return {{{{0, 0}, 0}, {{20, 0}, 1}, {{20, 10}, 0}, {{0, 10}, 1}}, true};
}

TEST(Curves, EndsLengthAndBox) {
  const Curve line = LineCurve{{1, 2}, {4, 6}};
  EXPECT_EQ(length(line), 5);
  EXPECT_EQ(extents(line), (Extents2d{{1, 2}, {4, 6}}));
  // Three quarters of a circle, clockwise from the top (0,3) over the right and the bottom to (-3,0).
  const Curve arc = ArcCurve{{0, 0}, 3, kPi / 2, -3 * kPi / 2};
  expectNear(startPoint(arc), {0, 3});
  expectNear(endPoint(arc), {-3, 0});
  EXPECT_NEAR(length(arc), 4.5 * kPi, kNear);
  expectNear(extents(arc).low, {-3, -3});
  expectNear(extents(arc).high, {3, 3});
  const Curve ring = stadium();
  EXPECT_TRUE(isClosed(ring));
  EXPECT_NEAR(length(ring), 40 + 10 * kPi, kNear);
  expectNear(extents(ring).low, {-5, 0});
  expectNear(extents(ring).high, {25, 10});
  expectNear(endPoint(ring), {0, 0});
  const Curve ray = RayCurve{{1, 1}, {0, 1}};
  EXPECT_EQ(length(ray), std::numeric_limits<double>::infinity());
  expectNear(endPoint(ray), {1, 1});
  expectNear(*pointAtDist(ray, 7), {1, 8});
}

TEST(Curves, EllipseBoxAndLength) {
  // Half axes 5 and 3, turned by 30°: x reach² = 25 cos² + 9 sin² = 21, y reach² = 25 sin² + 9 cos² = 13.
  const AcGeVector2d major{5 * std::cos(kPi / 6), 5 * std::sin(kPi / 6)};
  const Curve whole = EllipseCurve{{1, 1}, major, 0.6, 0.3, 2 * kPi};
  EXPECT_NEAR(extents(whole).high.x, 1 + std::sqrt(21), kNear);
  EXPECT_NEAR(extents(whole).low.y, 1 - std::sqrt(13), kNear);
  // Circumference 4 a E(e), e = 0.8: E = 1.2763499431699064 (tables of the complete elliptic integral).
  EXPECT_NEAR(length(whole), 20 * 1.2763499431699064, 1e-10);
  // The half above the major axis, clockwise from the left end, without turning.
  const Curve half = EllipseCurve{{0, 0}, {5, 0}, 0.6, kPi, -kPi};
  expectNear(startPoint(half), {-5, 0});
  expectNear(*pointAtDist(half, length(half) / 2), {0, 3}, 1e-9);
  expectNear(extents(half).low, {-5, 0});
  EXPECT_NEAR(length(half), 10 * 1.2763499431699064, 1e-10);
}

TEST(Curves, RationalQuadraticIsTheCircle) {
  // Quarter circle of radius 2 as a NURBS of degree 2 with weights 1, cos 45°, 1.
  const Curve quarter = NurbsCurve{2, {{2, 0}, {2, 2}, {0, 2}}, {1, std::sqrt(0.5), 1}, {0, 0, 0, 1, 1, 1}};
  ASSERT_TRUE(isValid(quarter));
  EXPECT_NEAR(length(quarter), kPi, 1e-12);
  expectNear(pointAtParam(quarter, 0.5), {std::sqrt(2), std::sqrt(2)});
  expectNear(*pointAtDist(quarter, kPi / 3), {std::sqrt(3), 1}, 1e-11);
  EXPECT_NEAR(*distAtPoint(quarter, {1, std::sqrt(3)}), 2 * kPi / 3, 1e-11);
  EXPECT_FALSE(distAtPoint(quarter, {1, 1}));
}

TEST(Curves, CubicOverTwoIntervals) {
  // Uniform knots 0..7, degree 3, range 3..4: at 3 the point is (P0 + 4 P1 + P2) / 6, its slope (P2 - P0)
  // / 2.
  const NurbsCurve loose{3, {{0, 0}, {6, 6}, {12, 0}, {18, 6}}, {}, {0, 1, 2, 3, 4, 5, 6, 7}};
  EXPECT_EQ(startParam(loose), 3);
  EXPECT_EQ(endParam(loose), 4);
  expectNear(startPoint(loose), {6, 4});
  EXPECT_NEAR(tangentAtParam(loose, 3).x, 6, kNear);
  EXPECT_NEAR(tangentAtParam(loose, 3).y, 0, kNear);
  // y = x² / 4 over [-4, 4] as a parabola: its lowest point is no control point.
  const Curve bowl = NurbsCurve{2, {{-4, 4}, {0, -4}, {4, 4}}, {}, {0, 0, 0, 1, 1, 1}};
  expectNear(extents(bowl).low, {-4, 0});
  const Closest low = closestPoint(bowl, {0, -3});
  expectNear(low.point, {0, 0}, 1e-9);
  EXPECT_NEAR(low.distance, 3, kNear);
  // From (0, 5): x² + (x²/4 - 5)² is least at x² = 12, where the distance is 4.
  EXPECT_NEAR(closestPoint(bowl, {0.0, 5}).distance, 4, kNear);
}

TEST(Curves, ParametersOfAPolyline) {
  const Curve open =
      PolylineCurve{{{{0, 0}, 0}, {{4, 0}, 1}, {{4, 6}, 0}}, false};  // line, half circle radius 3
  EXPECT_EQ(endParam(open), 2);
  expectNear(pointAtParam(open, 0.5), {2, 0});
  expectNear(pointAtParam(open, 1.5), {7, 3});
  expectNear(pointAtParam(open, -0.5), {-2, 0});  // extended
  EXPECT_NEAR(distAtParam(open, 1.5), 4 + 1.5 * kPi, kNear);
  EXPECT_NEAR(tangentAtParam(open, 1).x, 3 * kPi, kNear);  // at a vertex: of the span that starts there
  EXPECT_NEAR(*paramAtDist(open, 4 + 1.5 * kPi), 1.5, kNear);
  EXPECT_FALSE(pointAtDist(open, -0.001));
  EXPECT_FALSE(pointAtDist(open, 4 + 3 * kPi + 0.001));
  expectNear(*pointAtDist(open, length(open) + 1e-13), {4, 6});
  EXPECT_FALSE(pointAtDist(open, std::nan("")));
}

TEST(Curves, ClosestPointsWithAndWithoutExtension) {
  const Curve line = LineCurve{{0, 0}, {10, 0}};
  expectNear(closestPoint(line, {13, 4}).point, {10, 0});
  expectNear(closestPoint(line, {13, 4}, true).point, {13, 0});
  EXPECT_NEAR(closestPoint(line, {-3, 4}, true).param, -3, kNear);
  const Curve arc = ArcCurve{{0, 0}, 5, 0, kPi / 2};
  expectNear(closestPoint(arc, {6, 8}).point, {3, 4});
  expectNear(closestPoint(arc, {-6, -1}).point, {0, 5});
  expectNear(closestPoint(arc, {-6, 0}, true).point, {-5, 0});
  expectNear(closestPoint(arc, {0, 0}).point, {5, 0});  // all are as near: the start
  const Curve open = PolylineCurve{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}}, false};
  expectNear(closestPoint(open, {-3, 4}).point, {0, 0});
  expectNear(closestPoint(open, {-3, 4}, true).point, {-3, 0});
  expectNear(closestPoint(open, {12, 99}, true).point, {10, 99});
  // The first span is a half circle about (0,5) over the right; its extension over the left lies before the
  // start.
  const Curve bow = PolylineCurve{{{{0, 0}, 1}, {{0, 10}, 0}, {{-9, 10}, 0}}, false};
  const Closest before = closestPoint(bow, {-6, 4}, true);
  EXPECT_NEAR(before.distance, std::hypot(6, 1) - 5, kNear);
  EXPECT_LT(before.param, 0);
  expectNear(pointAtParam(bow, before.param), before.point);
  expectNear(closestPoint(stadium(), {-9, 5}, true).point, {-5, 5});
}

TEST(Curves, SpansAsCurves) {
  const Curve quarter = spanCurve({5, 0}, {0, 5}, kQuarter);
  const auto* arc = std::get_if<ArcCurve>(&quarter);
  ASSERT_TRUE(arc);
  expectNear(arc->centre, {0, 0});
  EXPECT_NEAR(arc->radius, 5, kNear);
  EXPECT_NEAR(arc->sweep, kPi / 2, kNear);
  // Clockwise by 270°: the centre lies left of the chord, the bulge is -tan(67.5°) = -(1 + √2).
  const Curve major = spanCurve({5, 0}, {0, 5}, -(1 + std::sqrt(2)));
  expectNear(std::get<ArcCurve>(major).centre, {0, 0});
  EXPECT_NEAR(std::get<ArcCurve>(major).sweep, -1.5 * kPi, kNear);
  EXPECT_TRUE(std::holds_alternative<LineCurve>(spanCurve({0, 0}, {9, 0}, 0)));
  EXPECT_TRUE(std::holds_alternative<LineCurve>(spanCurve({3, 3}, {3, 3}, 1)));
  EXPECT_EQ(exploded(stadium()).size(), 4u);
  EXPECT_NEAR(bulgeOfSweep(kPi / 2), kQuarter, kNear);
}

TEST(Curves, FlatAndNearlyFullSpans) {
  // Sagitta = chord / 2 * bulge, wherever the drawing lies.
  for (const double at : {0.0, 1e6}) {
    const Curve flat = PolylineCurve{{{{at, at}, 1e-6}, {{at + 100, at}, 0}}, false};
    EXPECT_NEAR(pointAtParam(flat, 0.5).y, at - 5e-5, 1e-9);
    EXPECT_NEAR(length(flat), 100, 1e-9);
    EXPECT_NEAR(extents(flat).low.y, at - 5e-5, 1e-9);
    EXPECT_NEAR(closestPoint(flat, {at + 50, at - 1}).distance, 1 - 5e-5, 1e-9);
    // Bulge 1e6 on a chord of 1 µm: nearly a full circle of radius 0.25 * 0.001 * (1e6 + 1e-6) = 250 about
    // (at + 0.0005, at - 250), open by 1 µm.
    const Curve full = PolylineCurve{{{{at, at}, 1e6}, {{at + 0.001, at}, 0}}, false};
    const double tolerance = at == 0 ? 1e-6 : 1e-3;  // the chord itself is rounded to 1e-10 of 1 µm
    EXPECT_NEAR(length(full), 500 * kPi - 0.001, tolerance);
    EXPECT_NEAR(extents(full).low.y, at - 500, tolerance);
    EXPECT_NEAR(closestPoint(full, {at, at - 250}).distance, 250 - 0.0005, tolerance);
  }
}

TEST(Curves, SplitPieces) {
  const auto halves = split(LineCurve{{0, 0}, {10, 0}}, {4, -1, 4, 99, 0, 10});
  ASSERT_EQ(halves.size(), 2u);
  EXPECT_EQ(std::get<LineCurve>(halves[0]), (LineCurve{{0, 0}, {4, 0}}));
  const auto around = split(ArcCurve{{0, 0}, 2, 0, 2 * kPi}, {kPi / 2});
  ASSERT_EQ(around.size(), 1u);
  expectNear(startPoint(around[0]), {0, 2});
  EXPECT_NEAR(std::get<ArcCurve>(around[0]).sweep, 2 * kPi, kNear);
  const auto clockwise = split(ArcCurve{{0, 0}, 2, kPi, -kPi}, {kPi / 4, 3 * kPi / 4});
  ASSERT_EQ(clockwise.size(), 3u);
  expectNear(startPoint(clockwise[1]), {-std::sqrt(2), std::sqrt(2)});
  EXPECT_NEAR(std::get<ArcCurve>(clockwise[1]).sweep, -kPi / 2, kNear);
  // The stadium at the middle of its first line and of its first arc: the second piece runs over the start.
  const auto two = split(stadium(), {1.5, 0.5});
  ASSERT_EQ(two.size(), 2u);
  const auto& first = std::get<PolylineCurve>(two[0]);
  ASSERT_EQ(first.vertices.size(), 3u);
  expectNear(first.vertices[0].point, {10, 0});
  EXPECT_NEAR(first.vertices[1].bulge, kQuarter, kNear);
  expectNear(first.vertices[2].point, {25, 5});
  EXPECT_FALSE(first.closed);
  expectNear(endPoint(two[1]), {10, 0});
  EXPECT_EQ(std::get<PolylineCurve>(two[1]).vertices.size(), 5u);
  // Start and end of a closed curve are one place, where the piece begins and ends.
  EXPECT_EQ(split(stadium(), {0, 4}).size(), 1u);
  EXPECT_FALSE(std::get<PolylineCurve>(split(stadium(), {4})[0]).closed);
  EXPECT_EQ(split(RayCurve{{0, 0}, {1, 0}}, {3}).size(), 2u);
}

TEST(Curves, ReversedPolylineKeepsItsShape) {
  const PolylineCurve path{{{{0, 0}, 0}, {{4, 0}, 0.5}, {{4, 6}, -0.25}, {{0, 6}, 0}}, false};
  const Curve turned = reversed(path);
  const auto& back = std::get<PolylineCurve>(turned);
  EXPECT_EQ(back.vertices[0], (BulgeVertex{{0, 6}, 0.25}));
  EXPECT_EQ(back.vertices[1], (BulgeVertex{{4, 6}, -0.5}));
  EXPECT_EQ(back.vertices[2], (BulgeVertex{{4, 0}, 0}));
  EXPECT_EQ(reversed(back), Curve(path));
}

TEST(Curves, TransformedKinds) {
  const auto mirror = AcGeMatrix3d::mirroring({0, 0}, {0, 1});
  const auto ring = std::get<PolylineCurve>(*transformed(stadium(), mirror));
  EXPECT_EQ(ring.vertices[1].bulge, -1);
  const auto arc = std::get<ArcCurve>(*transformed(ArcCurve{{1, 0}, 2, 0, kPi / 2}, mirror));
  expectNear(arc.centre, {-1, 0});
  EXPECT_NEAR(arc.startAngle, kPi, kNear);
  EXPECT_NEAR(arc.sweep, -kPi / 2, kNear);
  const auto flat = AcGeMatrix3d::scaling(1, 0.5, 1);
  EXPECT_FALSE(transformed(stadium(), flat));
  const auto oval = std::get<EllipseCurve>(*transformed(ArcCurve{{0, 0}, 2, 0, kPi}, flat));
  EXPECT_NEAR(oval.ratio, 0.5, kNear);
  EXPECT_NEAR(oval.major.length(), 2, kNear);
  EXPECT_FALSE(transformed(ArcCurve{{0, 0}, 2, 0, kPi}, AcGeMatrix3d::scaling(0, 0, 0)));
  EXPECT_FALSE(transformed(LineCurve{{1e50, 0}, {0, 0}}, AcGeMatrix3d::scaling(1e50, 1, 1)));
}

TEST(Curves, AreaAndInside) {
  const auto ring = stadium().vertices;
  EXPECT_NEAR(signedArea(ring), 200 + 25 * kPi, 1e-11);
  const auto back = std::get<PolylineCurve>(reversed(stadium())).vertices;
  EXPECT_NEAR(signedArea(back), -200 - 25 * kPi, 1e-11);
  // Chord 2 and bulge b enclose (θ - sin θ) / 2 r²; by series in b that is
  // 4/3 (b + b³/5 - b⁵/35 ...) with θ = 4 atan b.
  const BulgeVertex thin[] = {{{0, 0}, 0.001}, {{2, 0}, 0}};
  EXPECT_NEAR(signedArea(thin), 4.0 / 3 * (1e-3 + 1e-9 / 5 - 1e-15 / 35), 1e-18);
  for (const auto* walk : {&ring, &back}) {
    for (const AcGePoint2d in : {AcGePoint2d{-4.9, 5}, {24.9, 5}, {10, 5}, {0, 5}, {20, 0.1}, {22, 9}}) {
      EXPECT_TRUE(insideClosedWalk(*walk, in)) << in.x << ',' << in.y;
    }
    for (const AcGePoint2d out :
         {AcGePoint2d{-5.1, 5}, {24.9, 0.5}, {-4, 9}, {30, 10}, {-9, 0}, {10, 10.1}}) {
      EXPECT_FALSE(insideClosedWalk(*walk, out)) << out.x << ',' << out.y;
    }
  }
  // A circle of two halves about (1,0), then the same with a bite: bulge -1 cuts a half disc out.
  const BulgeVertex disc[] = {{{0, 0}, 1}, {{2, 0}, 1}};
  EXPECT_TRUE(insideClosedWalk(disc, {1, 0}));
  const BulgeVertex moon[] = {{{0, 0}, 1}, {{2, 0}, -0.5}};
  EXPECT_FALSE(insideClosedWalk(moon, {1, 0}));
  EXPECT_TRUE(insideClosedWalk(moon, {1, -0.9}));
}

TEST(Curves, HostileNumbersAreRefusedAndDoNoHarm) {
  const double nan = std::nan(""), huge = 1e300;
  NurbsCurve torn{2, {{0, 0}, {1, 1}, {2, 0}, {3, 1}, {4, 0}, {5, 0}}, {}, {0, 0, 0, 1, 1, 1, 2, 2, 2}};
  NurbsCurve falling{1, {{0, 0}, {1, 1}, {2, 2}}, {}, {0, 0, 2, 1, 1}};
  NurbsCurve weightless{1, {{0, 0}, {1, 1}}, {1, 0}, {0, 0, 1, 1}};
  const Curve bad[] = {LineCurve{{nan, 0}, {1, 1}},
                       LineCurve{{0, 0}, {huge, 1}},
                       RayCurve{{0, 0}, {0, 0}},
                       ArcCurve{{0, 0}, 0, 0, 1},
                       ArcCurve{{0, 0}, 1, nan, 1},
                       ArcCurve{{0, 0}, 1, 0, 7},
                       EllipseCurve{{0, 0}, {0, 0}, 0.5, 0, 1},
                       EllipseCurve{{0, 0}, {1, 0}, 1.5, 0, 1},
                       PolylineCurve{},
                       PolylineCurve{{{{0, 0}, huge}, {{1, nan}, 0}}, true},
                       torn,
                       falling,
                       weightless,
                       NurbsCurve{0, {}, {}, {}},
                       NurbsCurve{3, {{0, 0}}, {}, {0, 1}}};
  for (std::size_t i = 0; i < std::size(bad); ++i) EXPECT_FALSE(isValid(bad[i])) << i;
  for (const Curve& c : bad) {
    for (const double param : {0.0, nan, huge, -huge}) {
      (void)pointAtParam(c, param);
      (void)tangentAtParam(c, param);
      (void)distAtParam(c, param);
      (void)pointAtDist(c, param);
      (void)closestPoint(c, {param, 0}, true);
      (void)split(c, {param, 0.5});
    }
    (void)extents(c);
    (void)reversed(c);
    (void)transformed(c, AcGeMatrix3d::scaling(1, 2, 3));
    EXPECT_TRUE(intersect(c, LineCurve{{0, 0}, {1, 1}}, Extend::kExtendBoth).empty());
  }
  // Of valid curves any number may be asked.
  const Curve good[] = {LineCurve{{0, 0}, {0, 0}}, stadium(), ArcCurve{{0, 0}, 1, 0, 1},
                        EllipseCurve{{0, 0}, {1, 0}, 0.5, 0, 1}, PolylineCurve{{{{1, 1}, 0}}, true}};
  for (const Curve& c : good) {
    EXPECT_TRUE(isValid(c));
    for (const double param : {nan, huge, -huge}) {
      (void)pointAtParam(c, param);
      (void)distAtParam(c, param);
      EXPECT_FALSE(pointAtDist(c, param));
      (void)closestPoint(c, {param, param}, true);
      (void)split(c, {param, nan});
    }
  }
}

}  // namespace
}  // namespace tarnex
