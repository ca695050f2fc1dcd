// The plane operations on spans and polylines, worked out by hand, and inside against a ray's parity.
// Knows values alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "contour/geometrylibrary.h"

namespace tarnex {
namespace {

const double kQuarter = std::tan(kPi / 8), kThreeQuarters = std::tan(3 * kPi / 8);

PolylineCurve closedOf(std::vector<AcGePoint2d> points) {
  PolylineCurve c;
  c.closed = true;
  for (auto p : points) c.vertices.push_back({p, 0});
  return c;
}
const PolylineCurve kSquare = closedOf({{0, 0}, {10, 0}, {10, 10}, {0, 10}});

TEST(SpanCircle, CentreAndRadiusForAllTurns) {
  struct Row {
    AcGePoint2d a, b;
    double bulge;
    AcGePoint2d centre;
    double radius;
  };
  for (const Row& r :
       {Row{{0, 0}, {4, 0}, 1, {2, 0}, 2}, Row{{0, 0}, {4, 0}, -1, {2, 0}, 2},
        Row{{10, 0}, {0, 10}, kQuarter, {0, 0}, 10}, Row{{0, 10}, {10, 0}, -kQuarter, {0, 0}, 10},
        Row{{10, 0}, {0, 10}, -kThreeQuarters, {0, 0}, 10},
        Row{{10, 0}, {0, 10}, kThreeQuarters, {10, 10}, 10}}) {
    const auto c = bulgeToCircle(r.a, r.b, r.bulge);
    EXPECT_NEAR(c.centre.distanceTo(r.centre), 0, 1e-9) << r.bulge;
    EXPECT_NEAR(c.radius, r.radius, 1e-9) << r.bulge;
  }
}

TEST(SpanCircle, NewBulgeKeepsSignAndSizeOfTurn) {
  const AcGePoint2d a{10, 0}, c{0, 0}, b{0, 10};
  EXPECT_NEAR(bulgeFromCircle(a, c, b, 0.3), kQuarter, 1e-12);
  EXPECT_NEAR(bulgeFromCircle(a, c, b, -0.3), -kQuarter, 1e-12);
  EXPECT_NEAR(bulgeFromCircle(a, c, b, 2), kThreeQuarters, 1e-12);  // 4 atan 2 = 254 degrees: the major arc
  EXPECT_NEAR(bulgeFromCircle(a, c, b, -2), -kThreeQuarters, 1e-12);
  EXPECT_EQ(bulgeFromCircle({5, 0}, c, {-5, 0}, 0.3), 1);  // a diameter
  EXPECT_EQ(bulgeFromCircle({5, 0}, c, {-5, 0}, -3), -1);
}

TEST(SpanCircle, SweepFollowsTheDirection) {
  const AcGePoint2d c{0, 0}, a{1, 0}, b{0, -1};
  EXPECT_DOUBLE_EQ(sweepAngle(c, a, b, 1), 1.5 * kPi);
  EXPECT_DOUBLE_EQ(sweepAngle(c, a, b, -1), -0.5 * kPi);
  EXPECT_DOUBLE_EQ(sweepAngle(c, b, a, 1), 0.5 * kPi);
  EXPECT_DOUBLE_EQ(sweepAngle(c, b, a, 0), -1.5 * kPi);
}

TEST(PointOnSpan, LinesBySummedDistances) {
  const auto on = [](double x, double y) { return isPointOnSpan({0, 0}, {10, 0}, 0, {x, y}); };
  EXPECT_TRUE(on(10.0004, 0));   // 10.0004 + 0.0004 - 10 = 0.0008
  EXPECT_FALSE(on(10.0006, 0));  // 0.0012
  EXPECT_TRUE(on(5, 0.07));      // 2 * 5.00049 - 10 = 0.00098
  EXPECT_FALSE(on(5, 0.072));    // 0.00104
}

TEST(PointOnSpan, ArcsByRadiusAndAngle) {
  const auto quarter = [](AcGePoint2d p) { return isPointOnSpan({10, 0}, {0, 10}, kQuarter, p); };
  EXPECT_TRUE(quarter({10, 0}));
  EXPECT_TRUE(quarter({10.0009, 0}));
  EXPECT_FALSE(quarter({10.0011, 0}));
  EXPECT_FALSE(quarter({10, -1e-6}));  // the angle has no tolerance
  EXPECT_FALSE(quarter({-10, 0}));
  const double h = 10 * std::sqrt(0.5);
  for (double turn : {1.0, -1.0}) {  // over angle 0, both ways
    EXPECT_TRUE(isPointOnSpan({h, -turn * h}, {h, turn * h}, turn * kQuarter, {10, 0}));
    EXPECT_FALSE(isPointOnSpan({h, -turn * h}, {h, turn * h}, turn * kQuarter, {-10, 0}));
  }
}

TEST(SpanSums, AreaLengthAndMoments) {
  EXPECT_DOUBLE_EQ(spanArea({1, 0}, {0, 1}, 0), 0.5);
  EXPECT_NEAR(spanArea({1, 0}, {-1, 0}, 1), kPi / 2, 1e-12);
  EXPECT_NEAR(spanArea({-1, 0}, {1, 0}, -1), -kPi / 2, 1e-12);
  EXPECT_DOUBLE_EQ(triangleArea({0, 0}, {4, 0}, {0, 3}), 6);
  EXPECT_DOUBLE_EQ(triangleArea({0, 0}, {0, 3}, {4, 0}), -6);
  EXPECT_NEAR(spanLength({10, 0}, {0, 10}, -kThreeQuarters), 15 * kPi, 1e-9);
  // A half circle's centroid lies 2r/π from the centre: My = π * 2/π.
  const auto half = spanMoments({1, 0}, {-1, 0}, 1);
  EXPECT_NEAR(half.length, kPi, 1e-12);
  EXPECT_NEAR(half.mx, 0, 1e-12);
  EXPECT_NEAR(half.my, 2, 1e-12);
  const auto below = spanMoments({1, 0}, {-1, 0}, -1);
  EXPECT_NEAR(below.my, -2, 1e-12);
  const auto line = spanMoments({0, 0}, {4, 3}, 0);
  EXPECT_DOUBLE_EQ(line.mx, 10);
  EXPECT_DOUBLE_EQ(line.my, 7.5);
}

TEST(SpanSums, OrientationHasADeadZoneAndHoldsFarOut) {
  const auto sliver = [](double h, double at) {
    return polylineOrientation(closedOf({{at, at}, {at + 1, at}, {at + 1, at + h}, {at, at + h}}));
  };
  EXPECT_EQ(sliver(1, 0), 1);
  EXPECT_EQ(sliver(-1, 0), -1);
  EXPECT_EQ(sliver(0.0009, 0), 0);
  EXPECT_EQ(sliver(0.0011, 0), 1);
  EXPECT_EQ(sliver(0.0011, 1e6), 1);
  EXPECT_EQ(sliver(0.0009, -1e6), 0);
  EXPECT_EQ(polylineOrientation({{{{0, 0}, -1}, {{4, 0}, -1}}, true}), -1);
  EXPECT_EQ(polylineOrientation({{{{0, 0}, 0}, {{4, 0}, 0}, {{4, 4}, 0}}, false}),
            1);  // the closing span counts
}

TEST(AlongSpan, SplitsLinesAndArcs) {
  const auto line = pointAlongSpan({0, 0}, {6, 8}, 0, 5);
  ASSERT_TRUE(line);
  EXPECT_NEAR(line->point.distanceTo({3, 4}), 0, 1e-12);
  EXPECT_FALSE(pointAlongSpan({0, 0}, {6, 8}, 0, 10.001));
  for (double turn : {1.0, -1.0}) {
    const AcGePoint2d a = turn > 0 ? AcGePoint2d{10, 0} : AcGePoint2d{0, 10}, b{a.y, a.x};
    const auto third = pointAlongSpan(a, b, turn * kQuarter, 10 * kPi / 6);
    ASSERT_TRUE(third);
    EXPECT_NEAR(third->point.distanceTo(acutPolar({0, 0}, turn > 0 ? kPi / 6 : kPi / 3, 10)), 0, 1e-9);
    EXPECT_NEAR(third->bulgeBefore, turn * std::tan(kPi / 24), 1e-12);
    EXPECT_NEAR(third->bulgeAfter, turn * std::tan(kPi / 12), 1e-9);
    EXPECT_FALSE(pointAlongSpan(a, b, turn * kQuarter, 5 * kPi + 0.001));
  }
}

TEST(AlongSpan, NormalsTowardsASide) {
  EXPECT_NEAR(spanNormalAngle({0, 0}, {10, 0}, 0, 1, false), 1.5 * kPi, 1e-12);
  EXPECT_NEAR(spanNormalAngle({0, 0}, {10, 0}, 0, -1, true), 0.5 * kPi, 1e-12);
  EXPECT_NEAR(spanNormalAngle({0, 0}, {-10, 0}, 0, 1, false), 0.5 * kPi, 1e-12);  // 2.5 π less a turn
  EXPECT_NEAR(spanNormalAngle({10, 0}, {0, 10}, kQuarter, 1, false), 0, 1e-12);
  EXPECT_NEAR(spanNormalAngle({10, 0}, {0, 10}, kQuarter, 1, true), kPi / 2, 1e-12);
  EXPECT_NEAR(spanNormalAngle({10, 0}, {0, 10}, kQuarter, -1, true), 1.5 * kPi, 1e-12);
}

TEST(WholePolyline, ReversedKeepsTheClosingSpanInPlace) {
  PolylineCurve c{{{{0, 0}, 1}, {{10, 0}, 0}, {{10, 10}, 0.5}}, true};
  const PolylineCurve before = c;
  reversePolyline(c);
  const PolylineCurve wanted{{{{10, 10}, 0}, {{10, 0}, -1}, {{0, 0}, -0.5}}, true};
  EXPECT_EQ(c, wanted);
  reversePolyline(c);
  EXPECT_EQ(c, before);
}

TEST(WholePolyline, PickedSpanAndItsHalf) {
  struct Row {
    AcGePoint2d pick;
    int index, side;
  };
  for (const Row& r : {Row{{2, -1}, 0, -1}, Row{{8, -1}, 0, 1}, Row{{5, -3}, 0, 1}, Row{{10, 0}, 0, 1},
                       Row{{0, 0}, 0, -1}, Row{{10, 10}, 1, 1}, Row{{-2, 3}, 3, 1}}) {
    const auto at = findSpanAt(kSquare, r.pick);
    ASSERT_TRUE(at);
    EXPECT_EQ(at->index, r.index) << r.pick.x << "," << r.pick.y;
    EXPECT_EQ(at->side, r.side) << r.pick.x << "," << r.pick.y;
  }
}

TEST(WholePolyline, SortsInRuns) {
  using Points = std::vector<AcGePoint2d>;
  const Points points{{1.0005, 5}, {2, 0}, {1, 9}, {1.0009, 1}, {1.002, 0}};
  const auto sorted = [&](int mode) {
    Points p = points;
    sortPoints(p, mode);
    return p;
  };
  EXPECT_EQ(sorted(0), (Points{{1, 9}, {1.0005, 5}, {1.0009, 1}, {1.002, 0}, {2, 0}}));
  EXPECT_EQ(sorted(2), (Points{{1.0009, 1}, {1.0005, 5}, {1, 9}, {1.002, 0}, {2, 0}}));
  EXPECT_EQ(sorted(3), (Points{{1.002, 0}, {2, 0}, {1.0009, 1}, {1.0005, 5}, {1, 9}}));
}

TEST(WholePolyline, InsideOutsideAndOn) {
  EXPECT_EQ(pointInPolyline(kSquare, {5, 4}), 1);
  EXPECT_EQ(pointInPolyline(kSquare, {5, -1}), -1);
  EXPECT_EQ(pointInPolyline(kSquare, {5, 0}), 0);
  EXPECT_EQ(pointInPolyline(kSquare, {10, 10}), 0);
  EXPECT_EQ(pointInPolyline({{{{-5, 0}, 1}, {{5, 0}, 1}}, true}, {0, 4.9}), 1);
  EXPECT_EQ(pointInPolyline({{{{-5, 0}, -1}, {{5, 0}, -1}}, true}, {0, 5.1}), -1);
  // Beyond the tip of a needle the nearest point is the tip, and its two sides disagree.
  for (double y : {0.5, -0.5}) {
    EXPECT_EQ(pointInPolyline(closedOf({{0, 1}, {10, 0}, {0, -1}}), {12, y}), -1);
    EXPECT_EQ(pointInPolyline(closedOf({{0, -1}, {10, 0}, {0, 1}}), {12, y}), -1);
    // A notch of that shape: beyond its tip lies the plate.
    EXPECT_EQ(
        pointInPolyline(closedOf({{0, 1}, {10, 0}, {0, -1}, {0, -9}, {20, -9}, {20, 9}, {0, 9}}), {12, y}),
        1);
  }
}

TEST(WholePolyline, InsideAgreesWithAParityOnRandomStars) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> unit(0, 1);
  int judged = 0;
  for (int n = 0; n < 300; ++n) {
    std::vector<AcGePoint2d> points;
    const int corners = 3 + static_cast<int>(unit(rng) * 9);
    for (int i = 0; i < corners; ++i)
      points.push_back(acutPolar({0, 0}, 2 * kPi * i / corners, 1 + 9 * unit(rng)));
    if (n % 2) std::reverse(points.begin(), points.end());
    const auto c = closedOf(points);
    for (int k = 0; k < 20; ++k) {
      const AcGePoint2d p{24 * unit(rng) - 12, 24 * unit(rng) - 12};
      if (distanceToCurve(c, p) < 0.05) continue;
      bool inside = false;
      for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGePoint2d a = points[i], b = points[(i + 1) % points.size()];
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * (p.y - a.y) / (b.y - a.y))
          inside = !inside;
      }
      ASSERT_EQ(pointInPolyline(c, p), inside ? 1 : -1) << "star " << n << " at " << p.x << "," << p.y;
      ++judged;
    }
  }
  EXPECT_GT(judged, 5000);
}

TEST(WholePolyline, ThreadingPoint) {
  const auto wide = findThreadPoint(closedOf({{0, 0}, {40, 0}, {40, 20}, {0, 20}}));
  EXPECT_NEAR(wide.thread.distanceTo({20, 10}), 0, 1e-9);
  EXPECT_NEAR(wide.thread.distanceTo(wide.contour), 10, 1e-9);
  // Narrower than 2 mm: the centroid.
  const auto narrow = findThreadPoint(closedOf({{0, 0}, {10, 0}, {10, 1.9}, {0, 1.9}}));
  EXPECT_NEAR(narrow.thread.distanceTo({5, 0.95}), 0, 1e-9);
  // An L: its centroid lies in the notch, the scan stays in the material.
  const auto l = closedOf({{0, 0}, {50, 0}, {50, 8}, {8, 8}, {8, 50}, {0, 50}});
  const auto t = findThreadPoint(l);
  EXPECT_EQ(pointInPolyline(l, t.thread), 1);
  EXPECT_GT(t.thread.distanceTo(t.contour), 3.5);
}

TEST(Points, DegreesAndDifference) {
  EXPECT_NEAR(angleDegrees({1, 1}, {1, 0}), 270, 1e-12);
  EXPECT_NEAR(polarDegrees({1, 1}, 180, 2).distanceTo({-1, 1}), 0, 1e-12);
  EXPECT_FALSE(pointDiffers({0, 0, 0}, {0.0009, -0.0009, 0.0009}));
  EXPECT_TRUE(pointDiffers({0, 0, 0}, {0, 0, 0.0011}));
}

}  // namespace
}  // namespace tarnex
