// When curves lie over each other: the rules case by case.
// Knows values alone.
#include "aids/foldrules.h"

#include <gtest/gtest.h>

namespace tarnex {
namespace {

constexpr auto kKeep = FoldOutcome::kKeep, kAbsorb = FoldOutcome::kAbsorb, kDrop = FoldOutcome::kDrop;

FoldArc arc(double from, double to, double radius = 10, AcGePoint2d centre = {0, 0}) {
  return foldArc(centre, radius, from * kPi / 180, to * kPi / 180);
}

TEST(FoldLines, CanonicalOrderAndSignature) {
  struct Row {
    AcGePoint2d a, b, s0;
    double k, offset;
  };
  for (const Row& r :
       {Row{{10, 5}, {0, 0}, {0, 0}, 0.5, 0}, Row{{0, 1}, {10, 6}, {0, 1}, 0.5, 1},
        Row{{10, 9}, {10, 2}, {10, 2}, 10, 99999.0}, Row{{10, 2}, {10.0009, 9}, {10, 2}, 10, 99999.0},
        Row{{10.0009, 9}, {10, 2}, {10, 2}, 10, 99999.0}, Row{{3, 3}, {3, 3}, {3, 3}, 3, 99999.0}}) {
    const auto l = foldLine(r.a, r.b);
    EXPECT_EQ(l.s0, r.s0);
    EXPECT_NEAR(l.k, r.k, 1e-9);
    EXPECT_NEAR(l.b, r.offset, 1e-9);
  }
}

TEST(FoldLines, EveryWayToOverlap) {
  struct Row {
    double from, to;  // of the other, along the base from 0 to 10
    FoldOutcome outcome;
    double s0, s1;
    bool merged;
  };
  for (const Row& r :
       {Row{0, 10, kAbsorb, 0, 10, false}, Row{2, 8, kAbsorb, 0, 10, false}, Row{5, 15, kAbsorb, 0, 15, true},
        Row{-5, 5, kAbsorb, -5, 10, true}, Row{-5, 15, kAbsorb, -5, 15, true},
        Row{10, 20, kAbsorb, 0, 20, true}, Row{-9, 0, kAbsorb, -9, 10, true},
        Row{10.002, 20, kKeep, 0, 10, false}, Row{-9, -0.002, kKeep, 0, 10, false}})
    for (int way = 0; way < 3; ++way) {  // level, vertical, aslant
      const AcGeVector2d along = way == 0   ? AcGeVector2d{1, 0}
                                 : way == 1 ? AcGeVector2d{0, 1}
                                            : AcGeVector2d{0.8, 0.6};
      const auto at = [&](double t) { return AcGePoint2d{3, 4} + along * t; };
      FoldBase base{foldLine(at(10), at(0))};
      EXPECT_EQ(fold(base, foldLine(at(r.from), at(r.to))), r.outcome) << r.from << " to " << r.to;
      const auto& s = std::get<FoldLine>(base.shape);
      EXPECT_NEAR(s.s0.distanceTo(at(r.s0)), 0, 1e-9) << r.from << " to " << r.to;
      EXPECT_NEAR(s.s1.distanceTo(at(r.s1)), 0, 1e-9) << r.from << " to " << r.to;
      EXPECT_EQ(base.merged, r.merged) << r.from << " to " << r.to;
    }
}

TEST(FoldLines, OtherLinesAndOtherKindsAreKept) {
  FoldBase base{foldLine({0, 0}, {10, 0})};
  EXPECT_EQ(fold(base, foldLine({0, 0.0011}, {10, 0.0011})), kKeep);
  EXPECT_EQ(fold(base, foldLine({0, 0.0009}, {10, 0.0009})), kAbsorb);
  EXPECT_EQ(fold(base, foldLine({0, 0}, {10, 0.011})), kKeep);
  EXPECT_EQ(fold(base, foldLine({0, 0}, {0, 10})), kKeep);
  EXPECT_EQ(fold(base, arc(0, 90)), kKeep);
  EXPECT_EQ(fold(base, FoldCircle{{0, 0}, 10}), kKeep);
}

TEST(FoldArcs, AnglesAreNormalised) {
  EXPECT_EQ(arc(0, 90).a0, 2 * kPi);
  EXPECT_EQ(foldArc({}, 1, 0.0009, 1).a0, 2 * kPi);
  EXPECT_EQ(foldArc({}, 1, 0.0011, 1).a0, 0.0011);
  EXPECT_EQ(foldArc({}, 1, 2 * kPi - 0.0009, 1).a0, 2 * kPi);
  EXPECT_EQ(foldArc({}, 1, 1, 2 * kPi - 0.0009).a1, 0);
  EXPECT_EQ(foldArc({}, 1, 1, 0.0005).a1, 0);
}

TEST(FoldArcs, EveryWayToOverlap) {
  struct Row {
    double base0, base1, other0, other1;
    FoldOutcome outcome;
    double a0, a1;
    bool merged;
  };
  for (const Row& r :
       {Row{30, 90, 30, 90, kAbsorb, 30, 90, true},    // drawn twice
        Row{30, 90, 40, 80, kAbsorb, 30, 90, true},    // inside
        Row{30, 90, 60, 120, kAbsorb, 30, 120, true},  // on at the end
        Row{30, 90, 10, 60, kAbsorb, 10, 90, true},    // before the start
        Row{30, 90, 10, 120, kAbsorb, 10, 120, true},  // all around it
        Row{30, 90, 90, 120, kAbsorb, 30, 120, true},  // end to end
        Row{30, 90, 100, 120, kKeep, 30, 90, false},   // apart
        Row{350, 10, 5, 30, kAbsorb, 350, 30, true},   // over the zero line
        Row{350, 10, 340, 355, kAbsorb, 340, 10, true},
        Row{0, 90, 45, 120, kAbsorb, 360, 120, true},  // a start at 0 counts as a turn
        Row{270, 360, 180, 300, kAbsorb, 180, 0, true},
        Row{30, 90, 90, 30, kDrop, 30, 90, false},  // a whole circle together
        Row{0, 180, 180, 360, kDrop, 360, 180, false},
        Row{30, 90, 80, 40, kDrop, 30, 90, false},     // the same, with overlaps at both ends:
        Row{30, 350, 340, 40, kDrop, 30, 350, false},  // absorbing either would open the circle
        Row{0, 90, 45, 360, kDrop, 360, 90, false}}) {
    FoldBase base{arc(r.base0, r.base1)};
    const std::string what =
        std::to_string(r.base0) + ".." + std::to_string(r.base1) + " and " + std::to_string(r.other0);
    EXPECT_EQ(fold(base, arc(r.other0, r.other1)), r.outcome) << what;
    EXPECT_NEAR(std::get<FoldArc>(base.shape).a0, r.a0 * kPi / 180, 1e-9) << what;
    EXPECT_NEAR(std::get<FoldArc>(base.shape).a1, r.a1 * kPi / 180, 1e-9) << what;
    EXPECT_EQ(base.merged, r.merged) << what;
    EXPECT_FALSE(base.gaveWay);
  }
}

TEST(FoldArcs, CentreAndRadiusToAThousandth) {
  for (auto [x, y, r, outcome] : {std::tuple{0.0009, 0.0009, 10.0009, kAbsorb},
                                  {0.0011, 0.0, 10.0, kKeep},
                                  {0.0, 0.0011, 10.0, kKeep},
                                  {0.0, 0.0, 10.0011, kKeep}}) {
    FoldBase base{arc(30, 90)};
    EXPECT_EQ(fold(base, arc(30, 90, r, {x, y})), outcome);
    FoldBase circle{FoldCircle{{0, 0}, 10}};
    EXPECT_EQ(fold(circle, arc(30, 90, r, {x, y})), outcome);
    EXPECT_EQ(fold(circle, FoldCircle{{x, y}, r}), outcome);
    EXPECT_FALSE(circle.merged);
  }
}

TEST(FoldArcs, AnArcGivesWayToACircle) {
  FoldBase base{arc(30, 90)};
  EXPECT_EQ(fold(base, FoldCircle{{0, 0}, 11}), kKeep);
  EXPECT_FALSE(base.gaveWay);
  EXPECT_EQ(fold(base, FoldCircle{{0, 0}, 10}), kDrop);
  EXPECT_TRUE(base.gaveWay);
  EXPECT_EQ(fold(base, arc(100, 120)), kAbsorb);  // it counts as the circle from now on
  EXPECT_EQ(fold(base, foldLine({0, 0}, {10, 0})), kKeep);
}

}  // namespace
}  // namespace tarnex
