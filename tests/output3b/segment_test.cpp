// One span as one block: tables worked out by hand, and random spans through the reader of finished programs.
// Knows one span; no program.
#include "output3b/segment.h"

#include <gtest/gtest.h>

#include <random>

#include "exchange/walk3b.h"

namespace tarnex {
namespace {

TEST(Segment, LinesInAllQuadrants) {
  struct Row {
    double dx, dy;
    const char* block;
  };
  for (const Row& r :
       {Row{10, 0, "B      0 B      0 B  10000 GX  L1 ;"}, Row{0, 10, "B      0 B      0 B  10000 GY  L2 ;"},
        Row{-10, 0, "B      0 B      0 B  10000 GX  L3 ;"}, Row{0, -5, "B      0 B      0 B   5000 GY  L4 ;"},
        Row{3, 4, "B   3000 B   4000 B   4000 GY  L1 ;"}, Row{-4, 3, "B   4000 B   3000 B   4000 GX  L2 ;"},
        Row{-3, -4, "B   3000 B   4000 B   4000 GY  L3 ;"}, Row{4, -3, "B   4000 B   3000 B   4000 GX  L4 ;"},
        // On the diagonals the sign of the product decides.
        Row{1, 1, "B   1000 B   1000 B   1000 GY  L1 ;"}, Row{-1, 1, "B   1000 B   1000 B   1000 GX  L2 ;"},
        Row{-1, -1, "B   1000 B   1000 B   1000 GY  L3 ;"}, Row{1, -1, "B   1000 B   1000 B   1000 GX  L4 ;"},
        // Less than half a micrometre aside is on the axis.
        Row{10, 0.0004, "B      0 B      0 B  10000 GX  L1 ;"},
        Row{10, -0.0004, "B      0 B      0 B  10000 GX  L1 ;"},
        Row{-10, 0.0004, "B      0 B      0 B  10000 GX  L3 ;"},
        Row{0.0004, -3, "B      0 B      0 B   3000 GY  L4 ;"},
        Row{10, 0.0006, "B  10000 B      1 B  10000 GX  L1 ;"},
        // Counts wider than their column.
        Row{1234.5674, -1, "B 1234567 B   1000 B 1234567 GX  L4 ;"},
        Row{0.001, 0, "B      0 B      0 B      1 GX  L1 ;"}, Row{0.00099, 0, ""}})
    EXPECT_EQ(encodeSegment({0, 0}, {r.dx, r.dy}, 0), r.block) << r.dx << "," << r.dy;
}

// About (5,-3), radius 10, from one angle to another in degrees.
std::string arc(double from, double to, bool counterClockwise) {
  const AcGePoint2d c{5, -3};
  double sweep = counterClockwise ? to - from : from - to;
  if (sweep <= 0) sweep += 360;
  const double bulge = std::tan(sweep * kPi / 720) * (counterClockwise ? 1 : -1);
  return encodeSegment(acutPolar(c, from * kPi / 180, 10), acutPolar(c, to * kPi / 180, 10), bulge);
}

TEST(Segment, ArcsCounterClockwise) {
  EXPECT_EQ(arc(0, 90, true), "B  10000 B      0 B  10000 GX NR1 ;");
  EXPECT_EQ(arc(90, 180, true), "B      0 B  10000 B  10000 GY NR2 ;");
  EXPECT_EQ(arc(180, 270, true), "B  10000 B      0 B  10000 GX NR3 ;");
  EXPECT_EQ(arc(270, 360, true), "B      0 B  10000 B  10000 GY NR4 ;");
  EXPECT_EQ(arc(0, 180, true), "B  10000 B      0 B  20000 GY NR1 ;");
  EXPECT_EQ(arc(0, 270, true), "B  10000 B      0 B  30000 GX NR1 ;");  // x: 10 + 10 + 10
  // 10 cos 30 = 8.660; y from 5 up to 10 and down to 5.
  EXPECT_EQ(arc(30, 150, true), "B   8660 B   5000 B  10000 GY NR1 ;");
  // Over angle 0: 10 sin 10 = 1.7365 below and above.
  EXPECT_EQ(arc(350, 10, true), "B   9848 B   1736 B   3473 GY NR4 ;");
  // From 30 round to 20, all quadrants and a bit: y 5+10+10+10 and 3.4202, ends at |x| above |y|.
  EXPECT_EQ(arc(30, 20, true), "B   8660 B   5000 B  38420 GY NR1 ;");
}

TEST(Segment, ArcsClockwise) {
  EXPECT_EQ(arc(90, 0, false), "B      0 B  10000 B  10000 GY SR1 ;");
  EXPECT_EQ(arc(180, 90, false), "B  10000 B      0 B  10000 GX SR2 ;");
  EXPECT_EQ(arc(270, 180, false), "B      0 B  10000 B  10000 GY SR3 ;");
  EXPECT_EQ(arc(0, 270, false), "B  10000 B      0 B  10000 GX SR4 ;");
  EXPECT_EQ(arc(180, 0, false), "B  10000 B      0 B  20000 GY SR2 ;");
  EXPECT_EQ(arc(150, 30, false), "B   8660 B   5000 B  10000 GY SR2 ;");
  EXPECT_EQ(arc(10, 350, false), "B   9848 B   1736 B   3473 GY SR1 ;");
  EXPECT_EQ(arc(20, 30, false), "B   9397 B   3420 B  38420 GY SR1 ;");
}

TEST(Segment, StartsBesideAnAxis) {
  // Within 0.1 degrees the word is that of the quadrant ahead: 10 cos 89.95 = 0.0087.
  EXPECT_EQ(arc(89.95, 150, true), "B      9 B  10000 B   5000 GY NR2 ;");
  EXPECT_EQ(arc(89.85, 150, true), "B     26 B  10000 B   5000 GY NR1 ;");
  EXPECT_EQ(arc(90.05, 30, false), "B      9 B  10000 B   5000 GY SR1 ;");
  EXPECT_EQ(arc(90.15, 30, false), "B     26 B  10000 B   5000 GY SR2 ;");
  // Snapped within 0.01.
  EXPECT_EQ(arc(89.995, 150, true), "B      1 B  10000 B   5000 GY NR2 ;");
  EXPECT_EQ(arc(359.95, 60, true), "B  10000 B      9 B   5000 GX NR1 ;");  // x: 10 - 5
  EXPECT_EQ(arc(0.05, 300, false), "B  10000 B      9 B   5000 GX SR4 ;");
}

TEST(Segment, ShortOnesAreLeftOutWhateverTheirBulge) {
  EXPECT_EQ(encodeSegment({0, 0}, {0.0005, 0}, 0.9), "");
  EXPECT_EQ(encodeSegment({3, 3}, {3, 3}, 1), "");
  EXPECT_EQ(encodeSegment({0, 0}, {std::nan(""), 0}, 0), "");
}

TEST(Segment, CoordinatesFollowTheBlock) {
  const AcGePoint2d origin{1, 2};
  EXPECT_EQ(encodeSegment({1.5, 2}, {11.5, 2}, 0, &origin),
            "B      0 B      0 B  10000 GX  L1 ;   0.5000 ,   0.0000");
  EXPECT_EQ(encodeSegment({10, 0}, {-10, 0.25}, 1, &origin).substr(35), "   9.0000 ,  -2.0000 R=-10 0.25");
}

TEST(Segment, NumbersWithThreeDecimals) {
  for (auto [v, text] : {std::pair{0.0, "0."},
                         {0.0004, "0."},
                         {-0.0004, "0."},
                         {12.0, "12."},
                         {12.5, "12.5"},
                         {-3.25, "-3.25"},
                         {-7.0, "-7."},
                         {0.1239, "0.124"},
                         {12.0004, "12."}})
    EXPECT_EQ(formatFixed3(v), text) << v;
}

// ---- read back

void readBack(AcGePoint2d start, AcGePoint2d end, double bulge, const std::string& what) {
  const std::string block = encodeSegment(start, end, bulge);
  const auto program = truth::readProgram("\nN   1: " + block);
  ASSERT_EQ(program.lines.size(), 1u) << block;
  ASSERT_EQ(program.lines[0].kind, truth::LineKind::kMove) << block;
  const auto walked = truth::walkMove(program.lines[0].move);
  const AcGeVector2d wanted = end - start;
  const auto off = [&](const truth::Stroke& s) {
    const auto p = truth::at(s, 1);
    return std::hypot(p.x - wanted.x, p.y - wanted.y);
  };
  double error = off(walked.stroke);
  if (walked.otherSide) error = std::min(error, off(*walked.otherSide));
  const double allowed = walked.endRounding + 1e-6 + 1e-9 * start.distanceTo(end);
  EXPECT_LE(error, allowed) << what << ": " << block;
  EXPECT_LT(allowed, 0.1 + 0.01 * start.distanceTo(end)) << what << ": " << block;
}

TEST(Segment, RandomLinesAreReadBackToTheirEnd) {
  std::mt19937 rng(1);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (int round = 0; round < 4000; ++round) {
    const double size = std::pow(10, 3 * unit(rng));
    const AcGePoint2d a{unit(rng) * 100, unit(rng) * 100};
    const AcGePoint2d b{a.x + size * unit(rng), a.y + (round % 5 ? size * unit(rng) : 0)};
    if (a.distanceTo(b) >= 0.002) readBack(a, b, 0, "line " + std::to_string(round));
  }
}

TEST(Segment, RandomArcsAreReadBackToTheirEnd) {
  std::mt19937 rng(2);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int round = 0; round < 6000; ++round) {
    const double radius = std::pow(10, -0.3 + 3.3 * unit(rng));
    double from = 360 * unit(rng), sweep = 359 * unit(rng);
    // A third starts beside an axis, a third is short.
    if (round % 3 == 0)
      from = 90 * static_cast<int>(4 * unit(rng)) + std::pow(10, -4 * unit(rng)) * (unit(rng) - 0.5);
    if (round % 2 == 0) sweep = std::pow(10, -3 + 4 * unit(rng));
    const double direction = unit(rng) < 0.5 ? 1 : -1;
    const AcGePoint2d c{20 * unit(rng), 20 * unit(rng)};
    const AcGePoint2d a = acutPolar(c, from * kPi / 180, radius),
                      b = acutPolar(c, (from + direction * sweep) * kPi / 180, radius);
    if (a.distanceTo(b) < 0.02) continue;
    readBack(a, b, direction * std::tan(sweep * kPi / 720),
             "radius " + std::to_string(radius) + " from " + std::to_string(from) + " by " +
                 std::to_string(direction * sweep));
  }
}

TEST(Segment, ATinyArcOfALargeCircleNeverBecomesTheWholeCircle) {
  // Starts and ends that are snapped to an axis lie on either side of the other end: in degrees, radius 2000.
  for (double at : {0.0, 90.0, 180.0, 270.0})
    for (auto [from, to] :
         {std::pair{-0.007, -0.002}, {0.002, 0.007}, {-0.0008, 0.0008}, {0.0002, 0.0009}, {-0.004, 0.0004}}) {
      const double a = (at + from) * kPi / 180, b = (at + to) * kPi / 180, bulge = std::tan((b - a) / 4);
      const AcGePoint2d p = acutPolar({0, 0}, a, 2000), q = acutPolar({0, 0}, b, 2000);
      for (const std::string& block : {encodeSegment(p, q, bulge), encodeSegment(q, p, -bulge)}) {
        const long count = std::strtol(block.c_str() + block.rfind('B') + 1, nullptr, 10);
        EXPECT_LE(count, std::lround(p.distanceTo(q) * 1000) + 1)
            << at << ": " << from << " to " << to << ": " << block;
      }
    }
}

// An arc of 14 mm with its centre 2.7 km away: no count reaches it, and it leaves its chord by 9 nm.
TEST(Segment, AnArcFlatterThanCountsReachIsALine) {
  EXPECT_EQ(encodeSegment({0, 0}, {14, 3}, -1.3e-6), encodeSegment({0, 0}, {14, 3}, 0));
  EXPECT_NE(encodeSegment({0, 0}, {14, 3}, -2e-6), encodeSegment({0, 0}, {14, 3}, 0));
}

}  // namespace
}  // namespace tarnex
