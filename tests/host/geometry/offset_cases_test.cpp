// Offsets whose answers are worked out by hand: corners of every kind, what vanishes and what falls apart,
// open paths, hostile input. Knows the contract of the offset only.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "host/geometry/offset.h"
#include "host/geometry/offset_reckoning.h"

namespace tarnex {
namespace {

using reckoning::Outline;
using ::testing::ElementsAre;

constexpr double kFine = 1e-11;              // mm, on parts of some 10 mm
const double kQuarter = std::sqrt(2.0) - 1;  // bulge of 90 degrees: tan(90°/4)

MATCHER_P3(Vertex, x, y, bulge, "") {
  *result_listener << "(" << arg.point.x << ", " << arg.point.y << "; " << arg.bulge << ")";
  return std::abs(arg.point.x - x) < kFine && std::abs(arg.point.y - y) < kFine &&
         std::abs(arg.bulge - bulge) < kFine;
}

std::vector<PolylineCurve> offset(const Outline& path, double distance) {
  const auto curves = offsetCurves(path, distance);
  EXPECT_TRUE(curves.has_value()) << "declined";
  return curves.value_or(std::vector<PolylineCurve>{});
}

const Outline kSquare{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}};

TEST(OffsetCases, SquareInwardsAndOutwardsKeepsItsCorners) {
  const auto in = offset(kSquare, 1);  // counter-clockwise: left is inside
  ASSERT_EQ(in.size(), 1u);
  EXPECT_TRUE(in[0].closed);
  EXPECT_THAT(in[0].vertices,
              ElementsAre(Vertex(1, 1, 0), Vertex(9, 1, 0), Vertex(9, 9, 0), Vertex(1, 9, 0)));
  const auto out = offset(kSquare, -3);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_THAT(out[0].vertices,
              ElementsAre(Vertex(-3, -3, 0), Vertex(13, -3, 0), Vertex(13, 13, 0), Vertex(-3, 13, 0)));
}

TEST(OffsetCases, NothingIsLeftOfTheSquareAtHalfItsWidth) {
  for (const double d : {5.0, 5.1, 40.0}) EXPECT_TRUE(offset(kSquare, d).empty()) << d;
  EXPECT_NEAR(reckoning::signedArea(offset(kSquare, 4.999).at(0)), 0.002 * 0.002, 1e-12);
}

TEST(OffsetCases, ArcsStayArcsAndACircleOfTwoHalvesVanishesAtItsRadius) {
  const Outline slot{{{0, 0}, 0}, {{10, 0}, 1}, {{10, 4}, 0}, {{0, 4}, 1}, {{0, 0}, 0}};
  EXPECT_THAT(offset(slot, 0.5).at(0).vertices,
              ElementsAre(Vertex(0, 0.5, 0), Vertex(10, 0.5, 1), Vertex(10, 3.5, 0), Vertex(0, 3.5, 1)));
  const Outline circle{{{-3, 0}, 1}, {{3, 0}, 1}, {{-3, 0}, 0}};
  EXPECT_THAT(offset(circle, 1).at(0).vertices, ElementsAre(Vertex(-2, 0, 1), Vertex(2, 0, 1)));
  EXPECT_THAT(offset(circle, -1).at(0).vertices, ElementsAre(Vertex(-4, 0, 1), Vertex(4, 0, 1)));
  EXPECT_TRUE(offset(circle, 3).empty());
}

TEST(OffsetCases, MitresHaveNoLimit) {
  // Tip of 2·atan(1/100): outwards by 1 it moves by 1 / sin(atan(0.01)) = sqrt(10001).
  const Outline wedge{
      {{0, 0}, 0}, {{-100, -1}, 0}, {{-100, 1}, 0}, {{0, 0}, 0}};  // clockwise: outside is left
  EXPECT_THAT(offset(wedge, 1).at(0).vertices[0], Vertex(std::sqrt(10001.0), 0, 0));
}

TEST(OffsetCases, LineAndArcAreExtendedToWhereLineAndCircleMeet) {
  // Half disc of radius 5 over the x axis. Outwards by 1: the circle of radius 6 meets y = -1 at x =
  // ±sqrt(35).
  const Outline half{{{-5, 0}, 0}, {{5, 0}, 1}, {{-5, 0}, 0}};
  const auto out = offset(half, -1);
  const double x = std::sqrt(35.0), sweep = kPi + 2 * std::asin(1.0 / 6);
  EXPECT_THAT(out.at(0).vertices, ElementsAre(Vertex(-x, -1, 0), Vertex(x, -1, std::tan(sweep / 4))));
  // Inwards: the circle of radius 4 meets y = 1 at x = ±sqrt(15).
  const double less = kPi - 2 * std::asin(1.0 / 4);
  EXPECT_THAT(offset(half, 1).at(0).vertices,
              ElementsAre(Vertex(-std::sqrt(15.0), 1, 0), Vertex(std::sqrt(15.0), 1, std::tan(less / 4))));
}

TEST(OffsetCases, NeighboursThatNeverMeetAreJoinedAboutTheVertex) {
  // Two hollow quarter circles of radius 10 about (±10, 10) end in cusps at (0, 10) and (±10, 0). Outwards by
  // 1 their radius is 9, and circles 20 apart don't meet, nor does either meet the line y = -1: half circles
  // join them.
  const Outline cusps{{{-10, 0}, 0}, {{10, 0}, -kQuarter}, {{0, 10}, -kQuarter}, {{-10, 0}, 0}};
  EXPECT_THAT(offset(cusps, -1).at(0).vertices,
              ElementsAre(Vertex(-10, 1, 1), Vertex(-10, -1, 0), Vertex(10, -1, 1), Vertex(10, 1, -kQuarter),
                          Vertex(1, 10, 1), Vertex(-1, 10, -kQuarter)));
}

TEST(OffsetCases, AnArcWhoseRadiusIsTheDistanceVanishesAndItsNeighboursMeet) {
  // A 10 square with one corner rounded by radius 1: inwards by 1 that arc is a point.
  const Outline filleted{{{5, 0}, 0},  {{9, 0}, kQuarter}, {{10, 1}, 0}, {{10, 10}, 0},
                         {{0, 10}, 0}, {{0, 0}, 0},        {{5, 0}, 0}};
  EXPECT_THAT(
      offset(filleted, 1).at(0).vertices,
      ElementsAre(Vertex(5, 1, 0), Vertex(9, 1, 0), Vertex(9, 9, 0), Vertex(1, 9, 0), Vertex(1, 1, 0)));
}

// Two 10 squares, 6 apart, joined by a neck 2 high; the path starts in the right one.
const Outline kDumbbell{{{26, 0}, 0},  {{26, 10}, 0}, {{16, 10}, 0}, {{16, 6}, 0}, {{10, 6}, 0},
                        {{10, 10}, 0}, {{0, 10}, 0},  {{0, 0}, 0},   {{10, 0}, 0}, {{10, 4}, 0},
                        {{16, 4}, 0},  {{16, 0}, 0},  {{26, 0}, 0}};

TEST(OffsetCases, ARegionThatFallsApartGivesItsPartsTheNearestToTheStartFirst) {
  for (const double d : {1.0, 1.5}) {  // 1: the neck closes exactly
    const auto parts = offset(kDumbbell, d);
    ASSERT_EQ(parts.size(), 2u) << d;
    EXPECT_THAT(parts[0].vertices[0], Vertex(26 - d, d, 0));
    const double side = 10 - 2 * d;
    EXPECT_NEAR(reckoning::signedArea(parts[0]), side * side, 1e-9);
    EXPECT_NEAR(reckoning::signedArea(parts[1]), side * side, 1e-9);
  }
  EXPECT_EQ(offset(kDumbbell, 0.999).size(), 1u);
}

TEST(OffsetCases, AMouthThatClosesOutwardsLeavesAPocket) {
  // A ring 20 outside, 12 inside, with a mouth 2 wide in its right wall: outwards by 1.5 the mouth closes.
  const Outline c{{{0, 0}, 0},   {{20, 0}, 0}, {{20, 9}, 0},  {{16, 9}, 0},  {{16, 4}, 0},
                  {{4, 4}, 0},   {{4, 16}, 0}, {{16, 16}, 0}, {{16, 11}, 0}, {{20, 11}, 0},
                  {{20, 20}, 0}, {{0, 20}, 0}, {{0, 0}, 0}};
  const auto parts = offset(c, -1.5);
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_NEAR(reckoning::signedArea(parts[0]), 23.0 * 23, 1e-9);
  EXPECT_NEAR(reckoning::signedArea(parts[1]), -9.0 * 9,
              1e-9);  // runs the path's way: clockwise round the pocket
}

TEST(OffsetCases, AStartThatIsCutAwayMovesToTheNearestPlaceLeft) {
  // A slit 1 wide goes into the square from above; the path starts at its bottom. Inwards means round it.
  const Outline slit{{{5.5, 4}, 0}, {{5.5, 10}, 0}, {{10, 10}, 0}, {{10, 0}, 0}, {{0, 0}, 0},
                     {{0, 10}, 0},  {{4.5, 10}, 0}, {{4.5, 4}, 0}, {{5.5, 4}, 0}};
  // Clockwise, so the inside is right; into the slit is left, where 0.6 leaves only the outer square.
  const auto out = offset(slit, 0.6);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_NEAR(reckoning::signedArea(out[0]), -11.2 * 11.2, 1e-9);
  // (5.5, 4) is nearest to the lower side, y = -0.6, at (5.5, -0.6).
  EXPECT_THAT(out[0].vertices[0], Vertex(5.5, -0.6, 0));
}

TEST(OffsetCases, ASlitAndAWhiskerWithoutWidthHaveTwoSides) {
  // The path goes into the square from (5, 10) to (5, 5) and comes back on the same line. Inside, the wire
  // goes round it: 8 by 8 less 2 wide, 4 deep and a half disc of radius 1. Outside it isn't there.
  const Outline slit{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{5, 10}, 0},
                     {{5, 5}, 0}, {{5, 10}, 0}, {{0, 10}, 0},  {{0, 0}, 0}};
  EXPECT_NEAR(reckoning::signedArea(offset(slit, 1).at(0)), 64 - 8 - kPi / 2, 1e-9);
  EXPECT_NEAR(reckoning::signedArea(offset(slit, -1).at(0)), 144, 1e-9);
  Outline whisker = slit;
  whisker[4].point.y = 15;  // the same on the outside: 12 by 12 and 2 wide, 4 high and a half disc
  EXPECT_NEAR(reckoning::signedArea(offset(whisker, 1).at(0)), 64, 1e-9);
  EXPECT_NEAR(reckoning::signedArea(offset(whisker, -1).at(0)), 144 + 8 + kPi / 2, 1e-9);
}

TEST(OffsetCases, WhereNothingCollapsesNoVertexIsAdded) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    const Outline o = reckoning::randomOutline(random);  // features of 0.05 mm and more
    for (const double d : {1e-4, -1e-4}) {
      const auto curves = offset(o, d);
      ASSERT_EQ(curves.size(), 1u) << seed;
      ASSERT_EQ(curves[0].vertices.size(), o.size() - 1) << seed;
      for (std::size_t i = 0; i < curves[0].vertices.size(); ++i) {
        const BulgeVertex& v = curves[0].vertices[i];
        EXPECT_EQ(v.bulge == 0, o[i].bulge == 0) << seed;  // arcs stay arcs
        EXPECT_LT(v.point.distanceTo(o[i].point), 0.05) << seed;
      }
    }
  }
}

TEST(OffsetCases, OpenPathsKeepTheirEndsSquare) {
  const Outline bend{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}};
  const auto left = offset(bend, 1);
  ASSERT_EQ(left.size(), 1u);
  EXPECT_FALSE(left[0].closed);
  EXPECT_THAT(left[0].vertices, ElementsAre(Vertex(0, 1, 0), Vertex(9, 1, 0), Vertex(9, 10, 0)));
  EXPECT_THAT(offset(bend, -1).at(0).vertices,
              ElementsAre(Vertex(0, -1, 0), Vertex(11, -1, 0), Vertex(11, 10, 0)));
  const Outline one{{{0, 0}, 1}, {{4, 0}, 0}};  // half circle about (2, 0)
  EXPECT_THAT(offset(one, 0.5).at(0).vertices, ElementsAre(Vertex(0.5, 0, 1), Vertex(3.5, 0, 0)));
}

TEST(OffsetCases, OfAnOpenPathWhatIsTooNearToAnyPartOfItIsCutAway) {
  // A channel 2 wide, 10 deep, on the left of a path that goes down, along and up: at 1.5 no wire gets in.
  const Outline channel{{{-10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}, {{2, 0}, 0}, {{2, 10}, 0}, {{12, 10}, 0}};
  const auto over = offset(channel, 1.5);
  ASSERT_EQ(over.size(), 1u);
  EXPECT_THAT(over[0].vertices.front(), Vertex(-10, 11.5, 0));
  EXPECT_THAT(over[0].vertices.back(), Vertex(12, 11.5, 0));
  for (const auto& p : reckoning::samples(over[0], 5))
    EXPECT_GE(reckoning::distanceTo(channel, p), 1.5 - kFine);
  // A hook whose end comes back over its start: the wire stops where that end is 1 away.
  const Outline hook{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 1.5}, 0}, {{5, 1.5}, 0}};
  for (const auto& c : offset(hook, 1))
    for (const auto& p : reckoning::samples(c, 5)) EXPECT_GE(reckoning::distanceTo(hook, p), 1 - kFine);
}

TEST(OffsetCases, ReversingThePathSwapsTheSides) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    std::mt19937 random(seed);
    const Outline o = reckoning::randomOutline(random);
    const double d = 0.01 * double(1 + seed * 3);
    const auto a = offset(o, d), b = offset(reckoning::reversedOutline(o), -d);
    ASSERT_EQ(a.size(), b.size()) << seed;
    for (std::size_t i = 0; i < a.size(); ++i) {
      EXPECT_EQ(a[i].vertices.size(), b[i].vertices.size()) << seed;
      EXPECT_NEAR(reckoning::signedArea(a[i]), -reckoning::signedArea(b[i]), 1e-9) << seed;
    }
  }
}

TEST(OffsetCases, DeclinesWhatHasNoAnswer) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(offsetCurves({}, 1));
  EXPECT_FALSE(offsetCurves(Outline{{{1, 1}, 0}}, 1));
  EXPECT_FALSE(offsetCurves(Outline{{{1, 1}, 0}, {{1, 1}, 0}, {{1, 1}, 0}}, 1));
  EXPECT_FALSE(offsetCurves(kSquare, nan));
  for (const double bad : {nan, inf}) {
    Outline o = kSquare;
    o[2].point.y = bad;
    EXPECT_FALSE(offsetCurves(o, 1));
    o = kSquare;
    o[2].bulge = bad;
    EXPECT_FALSE(offsetCurves(o, 1));
  }
  const Outline eight{{{0, 0}, 0}, {{10, 10}, 0}, {{10, 0}, 0}, {{0, 10}, 0}, {{0, 0}, 0}};
  EXPECT_FALSE(offsetCurves(eight, 0.5));
}

TEST(OffsetCases, HostileNumbersNeitherCrashNorGiveNonsense) {
  std::mt19937 random(7);
  for (const double big : {1e9, 1e30, 1e154, 1e300, 1e-30, 1e-300})
    for (int i = 0; i < 40; ++i) {
      Outline o = reckoning::randomOutline(random);
      o[random() % o.size()].bulge = i % 2 == 0 ? big : -big;
      if (i % 3 == 0) o[random() % o.size()].point.x = big;
      for (const double d : {0.1, -0.1, big, 1 / big}) {
        const auto curves = offsetCurves(o, d);
        if (!curves) continue;
        for (const auto& c : *curves)
          for (const auto& v : c.vertices)
            ASSERT_TRUE(std::isfinite(v.point.x) && std::isfinite(v.point.y) && std::isfinite(v.bulge));
      }
    }
}

TEST(OffsetCases, RepeatedVerticesAndDistanceZeroChangeNothing) {
  Outline doubled;
  for (const auto& v : kSquare) doubled.push_back({v.point, 0.7}), doubled.push_back(v);
  EXPECT_EQ(offset(doubled, 1), offset(kSquare, 1));
  EXPECT_THAT(offset(kSquare, 0).at(0).vertices,
              ElementsAre(Vertex(0, 0, 0), Vertex(10, 0, 0), Vertex(10, 10, 0), Vertex(0, 10, 0)));
}

}  // namespace
}  // namespace tarnex
