// Auto fix at corners, kind by kind.
// Vertices are worked out by hand; the working stands beside them.
#include "pathcmd/autofixtest.h"

namespace tarnex {

namespace {

class AutoFixCorners : public AutoFixTest {
 protected:
  static constexpr double kRoot2 = 1.4142135623730951;
  // The same path fixed in the world and in a mirror, with a spike's direction mirrored too.
  void expectFixed(const Walked& contour, AutoFixSettings record, const Extents2d& window,
                   const Walked& wanted) {
    const AcGePoint2d entry = midpoint(contour[0].point, contour[1].point), thread{entry.x, entry.y + 2};
    CToolPath& path = enter(contour, thread, entry);
    EXPECT_TRUE(fixCorners(path, record, window).changed);
    EXPECT_TRUE(sameWalk(&path, wanted)) << "kind " << record.nKind;
    closePath();
    CToolPath& image = enter(mirrored(contour), mirrored(thread), mirrored(entry), -1);
    record.dSpikeAngle = 180 - record.dSpikeAngle;
    fixCorners(image, record, {{-window.high.x, window.low.y}, {-window.low.x, window.high.y}});
    EXPECT_TRUE(sameWalk(&image, mirrored(wanted))) << "kind " << record.nKind << ", mirrored";
    closePath();
  }
  // The path without its lead-in is told: that is (5, 2), (5, 0).
  static Walked walk(Walked rest) {
    rest.insert(rest.begin(), {{{5, 2}, 0}, {{5, 0}, 0}});
    rest.push_back({{5, 0}, 0});
    return rest;
  }
};

// Width 0.4: the notch leaves the sides 0.2·√2 before and behind a right corner. Depth 0.5 along the bisector
// is 0.25·√2 in x and in y.
TEST_F(AutoFixCorners, NotchAndRoundTellsTheTurnsApart) {
  const double d = 0.2 * kRoot2, e = 0.25 * kRoot2;
  const Extents2d two{{6, 0},
                      {10, 4}};  // corners (10, 0), with the path, and (6, 4), against it: on its edges
  expectFixed(kL, sizes(FixKind::kNotchAndRound), two,
              walk({{{10 - d, 0}, 0},
                    {{10 - d + e, -e}, 0},
                    {{10 + e, d - e}, 0},
                    {{10, d}, 0},
                    {{10, 10}, 0},
                    {{6, 10}, 0},
                    {{6, 4.2}, -kQuarter},  // radius 0.2: tangents of 0.2 at a right corner
                    {{5.8, 4}, 0},
                    {{0, 4}, 0},
                    {{0, 0}, 0}}));
}

TEST_F(AutoFixCorners, RoundAllTakesAnotherRadiusForEachTurn) {
  const Extents2d two{{6, 0}, {10, 4}};
  expectFixed(kL, sizes(FixKind::kRoundAll), two,
              walk({{{9.6, 0}, kQuarter},
                    {{10, 0.4}, 0},
                    {{10, 10}, 0},
                    {{6, 10}, 0},
                    {{6, 4.2}, -kQuarter},
                    {{5.8, 4}, 0},
                    {{0, 4}, 0},
                    {{0, 0}, 0}}));
}

// Reach 0.5, radius 0.4: the centre lies 0.1 past the corner, 0.1/√2 in x and in y. Where the circle meets a
// side, (0.1/√2)² + (h + 0.1/√2)² = 0.4². Round its far side from the lower to the right side are three
// quarters, and at each end the angle whose sine is (0.1/√2)/0.4.
TEST_F(AutoFixCorners, ReliefCircleRunsRoundItsFarSide) {
  const double c = 0.1 / kRoot2, h = std::sqrt(0.16 - c * c) - c;
  const double bulge = std::tan((1.5 * kPi + 2 * std::asin(c / 0.4)) / 4);
  EXPECT_NEAR(h, 0.32299, 1e-5);
  const Extents2d two{{6, 0}, {10, 4}};
  expectFixed(kL, sizes(FixKind::kReliefCircle), two,
              walk({{{10 - h, 0}, bulge},
                    {{10, h}, 0},
                    {{10, 10}, 0},
                    {{6, 10}, 0},
                    {{6, 4.2}, -kQuarter},
                    {{5.8, 4}, 0},
                    {{0, 4}, 0},
                    {{0, 0}, 0}}));
}

TEST_F(AutoFixCorners, SpikeGoesOutAndBack) {
  const double e = 0.1 * kRoot2;
  AutoFixSettings record = sizes(FixKind::kSpike);
  expectFixed(kL, record, {{6, 4}, {6, 4}},
              walk({{{10, 0}, 0},
                    {{10, 10}, 0},
                    {{6, 10}, 0},
                    {{6, 4}, kMarkedBulge},
                    {{6 + e, 4 + e}, kMarkedBulge},
                    {{6, 4}, 0},
                    {{0, 4}, 0},
                    {{0, 0}, 0}}));
}

TEST_F(AutoFixCorners, EarRunsPastTheCornerOnBothSides) {
  expectFixed(kL, sizes(FixKind::kEar), {{6, 0}, {10, 4}},
              walk({{{10.2, 0}, 0},
                    {{10.2, -0.2}, 0},
                    {{10, -0.2}, 0},
                    {{10, 10}, 0},
                    {{6, 10}, 0},
                    {{6, 3.8}, 0},
                    {{6.2, 3.8}, 0},
                    {{6.2, 4}, 0},
                    {{0, 4}, 0},
                    {{0, 0}, 0}}));
}

// The right side is an arc outward. Corners keep to its chord, and it keeps its bulge.
TEST_F(AutoFixCorners, BetweenALineAndAnArcChordsCount) {
  const Walked bowed{{{0, 0}, 0}, {{10, 0}, 0.2}, {{10, 10}, 0}, {{0, 10}, 0}};
  const Extents2d right{{10, 0}, {10, 10}};
  const double d = 0.2 * kRoot2, e = 0.25 * kRoot2;
  expectFixed(bowed, sizes(FixKind::kNotchAndRound), right,
              walk({{{10 - d, 0}, 0},
                    {{10 - d + e, -e}, 0},
                    {{10 + e, d - e}, 0},
                    {{10, d}, 0.2},
                    {{10, 10 - d}, 0},
                    {{10 + e, 10 - d + e}, 0},
                    {{10 - d + e, 10 + e}, 0},
                    {{10 - d, 10}, 0},
                    {{0, 10}, 0},
                    {{0, 0}, 0}}));
  const double c = 0.1 / kRoot2, h = std::sqrt(0.16 - c * c) - c;
  const double bulge = std::tan((1.5 * kPi + 2 * std::asin(c / 0.4)) / 4);
  expectFixed(bowed, sizes(FixKind::kReliefCircle), {{10, 0}, {10, 0}},
              walk({{{10 - h, 0}, bulge}, {{10, h}, 0.2}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}}));
  expectFixed(
      bowed, sizes(FixKind::kEar), {{10, 0}, {10, 0}},
      walk({{{10.2, 0}, 0}, {{10.2, -0.2}, 0}, {{10, -0.2}, 0.2}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}}));
  CToolPath& path = enter(bowed, {5, 2}, {5, 0});
  EXPECT_FALSE(fixCorners(path, sizes(FixKind::kRoundAll), right).changed) << "both spans must be straight";
}

// Two arcs meet at (10, 0): kinds that need a line leave it, the relief circle doesn't.
TEST_F(AutoFixCorners, BetweenTwoArcs) {
  const Walked arcs{{{0, 0}, 0.2}, {{10, 0}, 0.2}, {{10, 10}, 0}, {{0, 10}, 0}};
  for (const FixKind kind :
       {FixKind::kNotchAndRound, FixKind::kRoundAll, FixKind::kEar, FixKind::kReliefCircle}) {
    CToolPath& path = enter(arcs, {0, 5}, {5, -1});
    EXPECT_EQ(fixCorners(path, sizes(kind), {{10, 0}, {10, 0}}).changed, kind == FixKind::kReliefCircle);
    closePath();
  }
}

TEST_F(AutoFixCorners, SmoothJointsStayAndKindTwoNamesThem) {
  const Walked rounded{{{0, 0}, 0}, {{8, 0}, kQuarter}, {{10, 2}, 0}, {{10, 10}, 0}, {{0, 10}, 0}};
  for (const Walked& contour : {rounded, mirrored(rounded)}) {
    const int direction = contour[1].point.x > 0 ? 1 : -1;
    const AcGePoint2d entry{4.0 * direction, 0}, thread{4.0 * direction, 2};
    CToolPath& path = enter(contour, thread, entry, direction);
    const auto fixed = fixCorners(path, sizes(FixKind::kRoundAll), everything());
    EXPECT_EQ(fixed.smooth, (std::vector<int>{2, 3}));
    EXPECT_EQ(path.numVerts(), 8 + 3);
    closePath();
    for (const FixKind kind :
         {FixKind::kNotchAndRound, FixKind::kReliefCircle, FixKind::kSpike, FixKind::kEar}) {
      CToolPath& other = enter(contour, thread, entry, direction);
      const auto silent = fixCorners(other, sizes(kind), {{-10, 0}, {10, 2}});
      EXPECT_TRUE(silent.smooth.empty());
      EXPECT_EQ(silent.changed, true) << "the corner at the origin";
      EXPECT_EQ(other.getPointAt(2), contour[1].point);
      EXPECT_EQ(other.getPointAt(3), contour[2].point);
      closePath();
    }
  }
}

// From the entry to (10, 0) are 5 mm: a tangent of just that is too long, as is a radius of it.
TEST_F(AutoFixCorners, SpansMustBeLongerThanWhatIsTakenOfThem) {
  const auto rounded = [&](double with, double against) {
    AutoFixSettings record = sizes(FixKind::kRoundAll);
    record.dRound2With = with;
    record.dRound2Against = against;
    CToolPath& path = square();
    const bool changed = fixCorners(path, record, {{10, 0}, {10, 0}}).changed;
    closePath();
    return changed;
  };
  EXPECT_TRUE(rounded(4.999, 0.2));
  EXPECT_FALSE(rounded(5, 0.2));
  EXPECT_FALSE(rounded(0, 0.2));
  EXPECT_FALSE(rounded(0.4, 5)) << "one size is tested for both turns";
  const auto notched = [&](double width) {
    AutoFixSettings record = sizes(FixKind::kNotchAndRound);
    record.dNotchWidth = width;
    CToolPath& path = square();
    const bool changed = fixCorners(path, record, {{10, 0}, {10, 0}}).changed;
    closePath();
    return changed;
  };
  EXPECT_TRUE(notched(4.999));  // the notch then takes 4.999/√2 of each side
  EXPECT_FALSE(notched(5));
  AutoFixSettings circle = sizes(FixKind::kReliefCircle);
  circle.dCircleReach = 8;
  circle.dCircleRadius = 7.2;  // meets the right side 6.6 up, but not the 5 mm of the lower one
  CToolPath& path = square();
  EXPECT_FALSE(fixCorners(path, circle, {{10, 0}, {10, 0}}).changed);
}

TEST_F(AutoFixCorners, EachCornerOnceAndNeverTheEntry) {
  for (const auto& [kind, added] : {std::pair(FixKind::kNotchAndRound, 3),
                                    {FixKind::kRoundAll, 1},
                                    {FixKind::kReliefCircle, 1},
                                    {FixKind::kSpike, 2},
                                    {FixKind::kEar, 2}}) {
    CToolPath& path = square();
    EXPECT_TRUE(fixCorners(path, sizes(kind), everything()).changed);
    EXPECT_EQ(path.numVerts(), 7 + 4 * added);
    EXPECT_EQ(path.getPointAt(0), (AcGePoint2d{5, 4}));
    EXPECT_EQ(path.getPointAt(1), (AcGePoint2d{5, 0}));
    EXPECT_EQ(path.getPointAt(path.numVerts() - 1), (AcGePoint2d{5, 0}));
    EXPECT_EQ(fixCorners(path, sizes(kind), {{20, 20}, {30, 30}}).changed, false);
    closePath();
  }
}

TEST_F(AutoFixCorners, SpikesAreMadeOnce) {
  CToolPath& path = enter(kL, {5, 2}, {5, 0});
  EXPECT_EQ(fixCorners(path, sizes(FixKind::kSpike), {{10, 0}, {10, 10}}).spikeTips.size(), 2u);
  const PolylineCurve two = path.polyline();
  EXPECT_FALSE(fixCorners(path, sizes(FixKind::kSpike), {{10, 0}, {10, 10}}).changed);
  EXPECT_EQ(path.polyline(), two);
  EXPECT_EQ(fixCorners(path, sizes(FixKind::kSpike), everything()).spikeTips.size(), 4u) << "the others";
  EXPECT_FALSE(fixCorners(path, sizes(FixKind::kSpike), everything()).changed);
}

TEST_F(AutoFixCorners, WhatHangsOnThePathGoesAlong) {
  CToolPath& path = square();
  const auto source = path.contour();
  path.setSegmentTaperAt(2, 1.5);  // right side
  path.setCodeAt(2, "corner");
  path.setCodeAt(5, "last");
  fixCorners(path, sizes(FixKind::kNotchAndRound), {{10, 0}, {10, 0}});
  ASSERT_EQ(path.numVerts(), 10);
  EXPECT_EQ(path.aSegTaper(), (std::vector<double>{0, 0, 0, 0, 0, 1.5, 0, 0, 0, 0}));
  EXPECT_EQ(path.getCodeAt(5), "corner");
  EXPECT_EQ(path.getCodeAt(8), "last");
  EXPECT_EQ(path.contour(), source);
}

TEST_F(AutoFixCorners, HostileSizesAndShapesDoNoHarm) {
  const double nan = std::nan("");
  for (const double size : {0.0, -1.0, nan, 1e300, HUGE_VAL, 1e-300})
    for (int kind = 0; kind <= 8; ++kind) {
      AutoFixSettings record = sizes(static_cast<FixKind>(kind));
      for (double AutoFixSettings::*field :
           {&AutoFixSettings::dRound1, &AutoFixSettings::dNotchDepth, &AutoFixSettings::dNotchWidth,
            &AutoFixSettings::dRound2Against, &AutoFixSettings::dRound2With, &AutoFixSettings::dRound3,
            &AutoFixSettings::dCircleReach, &AutoFixSettings::dCircleRadius, &AutoFixSettings::dSpikeLen,
            &AutoFixSettings::dSpikeAngle, &AutoFixSettings::dEarLen, &AutoFixSettings::dEntryDepth,
            &AutoFixSettings::dEntryWidth})
        record.*field = size;
      // Corners of 180 degrees, and an arc that is almost a whole circle.
      CToolPath& path =
          enter({{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{10, 5}, 1e6}, {{10.01, 5}, 0}, {{0, 10}, 0}},
                {5, 4}, {5, 0});
      fixCorners(path, record, everything());
      EXPECT_FALSE(isPocket(record)) << size;
      for (const auto& v : path.polyline().vertices)
        EXPECT_TRUE(std::isfinite(v.point.x) && std::isfinite(v.point.y) && std::isfinite(v.bulge)) << size;
      closePath();
    }
}

TEST_F(AutoFixCorners, APathHoldsNoMoreVerticesThanItsRecordCounts) {
  Walked zigzag{{{-10, 0}, 0}};
  for (int i = 0; i < 16000; ++i) zigzag.push_back({{i * 1.0, i % 2 * 1.0}, 0});
  zigzag.push_back({{16000, 500}, 0});
  CToolPath& path = enter(zigzag, {-5, 4}, {-5, 0});
  const auto fixed = fixCorners(path, sizes(FixKind::kEar), everything());
  EXPECT_TRUE(fixed.full);
  EXPECT_TRUE(fixed.changed);
  EXPECT_LE(path.numVerts(), 32767);
  EXPECT_GE(path.numVerts(), 32766);
}

}  // namespace

}  // namespace tarnex
