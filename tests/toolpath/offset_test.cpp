// The wire beside a path: the choice between both roads, and the own method worked out by hand.
// Knows compensation; no NC format.
#include <gtest/gtest.h>

#include <random>

#include "drawlog.h"
#include "support/modulefixture.h"
#include "toolpath/ownoffset.h"

namespace tarnex {
namespace {

const double k90 = std::tan(kPi / 8);
using Vertices = std::vector<BulgeVertex>;

PolylineCurve curveOf(const PathCurve& c) {
  PolylineCurve p;
  EXPECT_EQ(c.vertices.size(), c.bulges.size());
  for (std::size_t i = 0; i < std::min(c.vertices.size(), c.bulges.size()); ++i)
    p.vertices.push_back({c.vertices[i], c.bulges[i]});
  return p;
}

PolylineCurve own(const Vertices& path, double distance, int side = 1, bool closed = true) {
  return curveOf(ownOffset({path, side, distance, 1, 0.1, closed}));
}

TEST(Offset, OfNothingIsThePathItself) {
  for (const auto& path : {squareHole(), roundHole(1)}) {
    const auto c = path->computeOffset(1, 0.0);
    EXPECT_FALSE(c.ownMethod);
    EXPECT_EQ(curveOf(c).vertices, path->polyline().vertices);
  }
}

TEST(Offset, ARectangleInsideByTheHostsRoad) {
  const auto c = squareHole()->wireCentrePath();
  EXPECT_FALSE(c.ownMethod);
  EXPECT_TRUE(sameVertices(
      curveOf(c),
      {{{10, 10}, 0}, {{19, 10}, 0}, {{19, 19}, 0}, {{1, 19}, 0}, {{1, 1}, 0}, {{19, 1}, 0}, {{19, 10}, 0}}));
}

TEST(Offset, ClearanceTurnsTheWireTowardsThePart) {
  auto hole = squareHole();
  ASSERT_TRUE(hole->setClearance(0.25));  // a hole grows, so the wire runs 1 - 0.25 inside
  EXPECT_NEAR(hole->wireCentrePath().vertices[2].distanceTo({19.25, 19.25}), 0, 1e-9);
  EXPECT_NEAR(hole->realContour().vertices[2].distanceTo({20.25, 20.25}), 0, 1e-9);
  auto punch = squarePunch();
  ASSERT_TRUE(punch->setClearance(-0.25));  // a punch shrinks: 1 - 0.25 outside
  EXPECT_NEAR(punch->wireCentrePath().vertices[2].distanceTo({-0.75, 20.75}), 0, 1e-9);
  EXPECT_NEAR(punch->realContour().vertices[2].distanceTo({0.25, 19.75}), 0, 1e-9);
}

// ---- the own method

TEST(OwnOffset, TheEntryLiesOnTheLeadInDrawnOut) {
  // Entered in the middle of an edge, aslant: the compensated entry is where x = 19 cuts the lead-in.
  const Vertices path{{{10, 5}, 0}, {{20, 10}, 0}, {{20, 20}, 0}, {{0, 20}, 0},
                      {{0, 0}, 0},  {{20, 0}, 0},  {{20, 10}, 0}};
  EXPECT_TRUE(sameVertices(own(path, 1), {{{10, 5}, 0},
                                          {{19, 9.5}, 0},
                                          {{19, 19}, 0},
                                          {{1, 19}, 0},
                                          {{1, 1}, 0},
                                          {{19, 1}, 0},
                                          {{19, 9.5}, 0}}));
}

TEST(OwnOffset, AnEntryAtACornerIsThatCornersOwn) {
  const Vertices path{{{15, 10}, 0}, {{20, 20}, 0}, {{0, 20}, 0}, {{0, 0}, 0}, {{20, 0}, 0}, {{20, 20}, 0}};
  EXPECT_TRUE(sameVertices(
      own(path, 1), {{{15, 10}, 0}, {{19, 19}, 0}, {{1, 19}, 0}, {{1, 1}, 0}, {{19, 1}, 0}, {{19, 19}, 0}}));
}

TEST(OwnOffset, ConcentricArcsKeepTheirRays) {
  const auto hole = roundHole(1)->polyline().vertices;
  EXPECT_TRUE(
      sameVertices(own(hole, 1),
                   {{{0, 0}, 0}, {{9, 0}, k90}, {{0, 9}, k90}, {{-9, 0}, k90}, {{0, -9}, k90}, {{9, 0}, 0}}));
  const Vertices outside{{{15, 0}, 0}, {{10, 0}, -1}, {{-10, 0}, -1}, {{10, 0}, 0}};
  EXPECT_TRUE(sameVertices(own(outside, 1), {{{15, 0}, 0}, {{11, 0}, -1}, {{-11, 0}, -1}, {{11, 0}, 0}}));
}

Vertices roundedHole(double r) {
  return {{{10, 10}, 0}, {{20, 10}, 0}, {{20, 20 - r}, k90}, {{20 - r, 20}, 0},
          {{0, 20}, 0},  {{0, 0}, 0},   {{20, 0}, 0},        {{20, 10}, 0}};
}

TEST(OwnOffset, AnInnerArcVanishesAtItsRadius) {
  EXPECT_TRUE(sameVertices(own(roundedHole(0.5), 0.5), {{{10, 10}, 0},
                                                        {{19.5, 10}, 0},
                                                        {{19.5, 19.5}, 0},
                                                        {{0.5, 19.5}, 0},
                                                        {{0.5, 0.5}, 0},
                                                        {{19.5, 0.5}, 0},
                                                        {{19.5, 10}, 0}}));
  // A radius of 0.0011 is left: an arc of a quarter between tangents at (19.5,19.4989) and (19.4989,19.5).
  const auto kept = own(roundedHole(0.5011), 0.5);
  int arcs = 0;
  for (std::size_t i = 0; i + 1 < kept.vertices.size(); ++i) {
    if (kept.vertices[i].bulge == 0) continue;
    ++arcs;
    EXPECT_NEAR(kept.vertices[i].point.distanceTo({19.5, 19.4989}), 0, 1e-4);
    EXPECT_NEAR(kept.vertices[i + 1].point.distanceTo({19.4989, 19.5}), 0, 1e-4);
  }
  EXPECT_EQ(arcs, 1);
}

TEST(OwnOffset, ElementsThatPassEachOtherAreRounded) {
  // A sharp turn right onto an arc that turns left: heading -150 degrees, centre M = 4 at -60 degrees from P.
  const AcGePoint2d p{0, 0}, m = acutPolar(p, -kPi / 3, 4);
  const Vertices path{{{-20, 0}, 0}, {{-10, 0}, 0}, {p, k90}, {acutPolar(m, 7 * kPi / 6, 4), 0}};
  // Left by 1: y = 1 stays 4.46 from M, whose circle has radius 3. About P from 90 to -60 degrees: 150
  // clockwise.
  EXPECT_TRUE(sameVertices(own(path, 1, 1, false), {{{-20, 0}, 0},
                                                    {{-10, 1}, 0},
                                                    {{0, 1}, -std::tan(150 * kPi / 720)},
                                                    {acutPolar(p, -kPi / 3, 1), k90},
                                                    {acutPolar(m, 7 * kPi / 6, 3), 0}}));
}

TEST(OwnOffset, NearlyStraightJointsGetNoIntersection) {
  // Headings 0, then `turn` and -turn, and over the full turn: each start is taken as it stands, square
  // above.
  for (double turn : {0.0004, -0.0004}) {
    const AcGePoint2d a{-10, 0}, b = acutPolar(a, turn, 10), c = acutPolar(b, -turn, 10);
    const Vertices path{{{-20, 0}, 0}, {a, 0}, {b, 0}, {c, 0}};
    const auto up = kPi / 2;
    EXPECT_TRUE(sameVertices(own(path, 1, 1, false), {{{-20, 0}, 0},
                                                      {acutPolar(a, up + turn, 1), 0},
                                                      {acutPolar(b, up - turn, 1), 0},
                                                      {acutPolar(c, up - turn, 1), 0}}))
        << turn;
  }
  // 0.0011 is a corner: both are drawn out to their meeting on the bisector.
  const double turn = 0.0011;
  const AcGePoint2d a{-10, 0}, b{0, 0}, c = acutPolar(b, turn, 10);
  const auto got = own({{{-20, 0}, 0}, {a, 0}, {b, 0}, {c, 0}}, 1, 1, false);
  ASSERT_EQ(got.vertices.size(), 4u);
  EXPECT_NEAR(got.vertices[2].point.distanceTo({-std::tan(turn / 2), 1}), 0, 1e-9);
}

TEST(OwnOffset, AWholeCircleStaysOne) {
  // Two arcs of 350 and 10 degrees; after trimming the long one is whole within 0.04 rad of a turn or not.
  const double a = kPi / 36;
  const Vertices path{{{0, 0}, 0},
                      {{10, 0}, std::tan((2 * kPi - a) / 4)},
                      {acutPolar({0, 0}, -a, 10), std::tan(a / 4)},
                      {{10, 0}, 0}};
  const auto got = own(path, 1);
  ASSERT_EQ(got.vertices.size(), 4u);
  EXPECT_NEAR(got.vertices[1].bulge, std::tan((2 * kPi - a) / 4), 1e-6);
  const double b = 0.039;
  const Vertices nearly{{{0, 0}, 0},
                        {{10, 0}, std::tan((2 * kPi - b) / 4)},
                        {acutPolar({0, 0}, -b, 10), std::tan(b / 4)},
                        {{10, 0}, 0}};
  EXPECT_EQ(own(nearly, 1).vertices[1].bulge, 1);
}

TEST(OwnOffset, ListsStayInStepWhenEverythingVanishes) {
  const Vertices circle{{{0, 0}, 0}, {{1, 0}, 1}, {{-1, 0}, 1}, {{1, 0}, 0}};
  EXPECT_EQ(own(circle, 1).vertices.size(), 1u);
  EXPECT_EQ(own(circle, 5, 1, false).vertices.size(), 2u);
}

TEST(OwnOffset, AgreesWithTheHostsRoadOnConvexContours) {
  std::mt19937 rng(8);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int round = 0; round < 200; ++round) {
    const double w = 10 + 40 * unit(rng), h = 10 + 40 * unit(rng), r = 1 + 3 * unit(rng);
    Vertices contour{{{r, 0}, 0},     {{w - r, 0}, k90}, {{w, r}, 0},     {{w, h - r}, k90},
                     {{w - r, h}, 0}, {{r, h}, k90},     {{0, h - r}, 0}, {{0, r}, k90}};
    const bool inside = round % 2 == 0;
    const AcGePoint2d q{w / 2, 0}, t{w / 2, inside ? 2.0 : -2.0};
    CToolPath path;
    const double offset = 0.05 + 0.9 * unit(rng);
    ASSERT_TRUE(path.initContour({t, q, inside ? 1 : -1, 1, offset, 0}, {contour, true}, 0));
    ASSERT_EQ(path.transformBy(AcGeMatrix3d::rotation(6.3 * unit(rng), {3, 3})), ErrorStatus::eOk);
    const auto host = path.wireCentrePath();
    ASSERT_FALSE(host.ownMethod) << round;
    const auto& v = path.polyline().vertices;
    EXPECT_TRUE(sameVertices(curveOf(ownOffset({v, path.nSide(), path.nDirection() * offset,
                                                path.nSide() * path.nDirection(), offset, true})),
                             curveOf(host).vertices, 1e-6))
        << round;
  }
}

}  // namespace
}  // namespace tarnex
