// The judge's reader and what it takes a block to do: forms of the format, blocks by hand, and how honest the
// rounding is.
#include <gtest/gtest.h>

#include <random>

#include "exchange/walk3b.h"
#include "maker3b.h"

namespace tarnex::truth::test {
namespace {

const double pi = std::acos(-1.0);

Line3b only(const std::string& row, const std::vector<std::string>& codes = {}) {
  const ProgramLines p = readProgram(row, codes);
  EXPECT_EQ(p.lines.size(), 1u) << row;
  return p.lines.empty() ? Line3b{} : p.lines[0];
}

TEST(Reader3b, TakesEveryFormOfABlock) {
  const char* rows[] = {"N   7: B   1200 B    300 B   1200 GX  L4 ;",
                        "N   7: B   1200 B    300 B   1200 GX  L4 ",               // a corner step
                        "N   7: B   1200 B    300 B   1200 B   1237 GX DD  L4 ;",  // taper marks
                        "N   7: B   1200 B    300 B   1200 GX  L4 ;   1.0000 ,  -2.5000",
                        "n7:B1200B300B1200GXL4",
                        "  N   7: b 1200 b 300 b 1200 gx l4 ; R=5 7\r"};
  for (const char* row : rows) {
    const Line3b l = only(row);
    ASSERT_EQ(l.kind, LineKind::kMove) << row << " " << l.text;
    EXPECT_EQ(l.number, 7);
    EXPECT_EQ(l.move.bx, 1200);
    EXPECT_EQ(l.move.by, 300);
    EXPECT_EQ(l.move.bj, 1200);
    EXPECT_EQ(l.move.axis, 'X');
    EXPECT_EQ(l.move.kind, 'L');
    EXPECT_EQ(l.move.quadrant, 4);
  }
  EXPECT_EQ(only(rows[2]).move.taperCount, 1237);
  ASSERT_TRUE(only(rows[3]).move.printed);
  EXPECT_EQ(only(rows[3]).move.printed->y, -2.5);
  EXPECT_EQ(only("N    : DD").text, "DD");
  EXPECT_EQ(only("N   3: R", {"R"}).kind, LineKind::kCode);
  EXPECT_EQ(only("N   3: B0B0B1GXL1", {"B0B0B1GXL1"}).kind, LineKind::kMove);
  const ProgramLines p =
      readProgram("//    Start Point  =       1.5 ,      -2. ;     X    ,     Y\n\n//x\nN   1: BBB5GXL1");
  ASSERT_TRUE(p.startPoint);
  EXPECT_EQ(p.startPoint->y, -2);
  ASSERT_EQ(p.lines.size(), 1u);
  EXPECT_EQ(p.lines[0].line, 4);
}

TEST(Reader3b, SaysWhatItCantRead) {
  const char* rows[] = {"hello",
                        "N   1 B0B0B5GXL1",
                        "N   1: ",
                        "N   1: R",
                        "N   1: B 1 B 2 GX L1 ;",
                        "N   1: B 1 B -2 B 2 GY L1 ;",
                        "N   1: B 1 B 2 B 1000000000000 GY L1 ;",
                        "N99999999999999999999: B0B0B5GXL1",
                        "N   1: B 0 B 0 B 5 GZ L1 ;",
                        "N   1: B 0 B 0 B 5 GX L5 ;",
                        "N   1: B 0 B 0 B 5 GX N1 ;",
                        "N   1: B 0 B 0 B 5 GX L1 B"};
  for (const char* row : rows) {
    const Line3b l = only(row);
    EXPECT_EQ(l.kind, LineKind::kUnreadable) << row;
    EXPECT_FALSE(l.text.empty()) << row;
  }
}

Walked walk(const std::string& body) {
  return walkMove(only("N   1: " + body).move);
}

TEST(Walk3b, BlocksByHand) {
  struct Case {
    const char* block;
    double x, y, sweep;  // end from the start, mm; sweep in quarter turns, 0 for a line
  };
  const Case cases[] = {
      {"B0B0B10000GXL1", 10, 0, 0},
      {"B0B0B5000GYL4", 0, -5, 0},
      {"B0B0B5000GYL2", 0, 5, 0},
      {"B0B0B5000GXL3", -5, 0, 0},
      {"B1000B1000B1000GYL1", 1, 1, 0},
      {"B3000B4000B4000GYL2", -3, 4, 0},
      {"B10000B0B20000GYNR1", -20, 0, 2},     // upper half from (10,0): up 10, down 10
      {"B10000B0B20000GYSR2", 20, 0, -2},     // from (-10,0) over the top
      {"B10000B0B10000GXNR1", -10, 10, 1},    // a quarter, ends on +y, x counted
      {"B0B10000B30000GYSR1", -10, -10, -3},  // from (0,10) clockwise to (-10,0): y runs 10, 10, 10
      {"B3000B4000B7000GXNR1", -7, 1, 1},     // from (3,4) a quarter on to (-4,3)? no: x counted, ends at
                                              // (-4,±3)
  };
  for (const Case& c : cases) {
    const Walked w = walk(c.block);
    if (std::string(c.block) == "B3000B4000B7000GXNR1") {
      // (3,4) to (-4,3) counts 7 on x, but ends where x is the longer one: GX isn't its axis.
      EXPECT_NEAR(w.stroke.end.x, -7, 1e-9);
      EXPECT_NEAR(w.stroke.end.y, -1, 1e-9);
      EXPECT_FALSE(w.contradiction.empty());
      continue;
    }
    EXPECT_TRUE(w.contradiction.empty()) << c.block << w.contradiction;
    EXPECT_NEAR(w.stroke.end.x, c.x, 1e-9) << c.block;
    EXPECT_NEAR(w.stroke.end.y, c.y, 1e-9) << c.block;
    EXPECT_NEAR(w.stroke.sweep, c.sweep * pi / 2, 1e-9) << c.block;
  }
}

TEST(Walk3b, ContradictionsAreTold) {
  for (const char* block : {"B0B0B5000GXL2", "B0B0B5000GYL1", "B3000B4000B3000GXL1", "B3000B4000B4001GYL1",
                            "B0B0B0GXL1", "B10000B0B20000GYNR2", "B10000B0B20000GYSR1", "B10000B0B41000GYNR1",
                            "B0B0B5GXNR1", "B10000B0B10000GYNR1"})
    EXPECT_FALSE(walk(block).contradiction.empty()) << block;
}

// Random arcs, encoded and read back: the end comes back within the rounding that is claimed for it, and the
// claim stays small, whatever the radius, because the counting axis is the one along which the end is well
// found.
TEST(Walk3b, RecoveredArcEndsKeepTheirPromise) {
  std::mt19937 rng(5);
  auto real = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(rng); };
  double largest = 0;
  for (int i = 0; i < 50000; ++i) {
    const double r = std::pow(10, real(-1.5, 5)), a = real(0, 2 * pi);
    const double chord = real(0.002, 1.9) * std::min(r, 50.0), way = i % 4 == 0 ? real(0.01, 6.2) : chord / r;
    const double sweep = (rng() % 2 ? 1 : -1) * way;
    Maker m({0, 0});
    const P centre{-r * std::cos(a), -r * std::sin(a)};
    m.arc(centre, sweep);
    const std::string row = m.text().substr(m.text().rfind('\n') + 1);
    const Walked w = walkMove(only(row).move);
    const P end = m.here();
    double off = std::hypot(w.stroke.end.x - end.x, w.stroke.end.y - end.y);
    if (w.otherSide) off = std::min(off, std::hypot(w.otherSide->end.x - end.x, w.otherSide->end.y - end.y));
    ASSERT_LE(off, w.endRounding + 1e-7) << row << " radius " << r << " from " << a << " by " << sweep;
    largest = std::max(largest, w.endRounding);
  }
  EXPECT_LT(largest, 0.012);
  RecordProperty("largestRoundingNm", static_cast<int>(largest * 1e6));
}

}  // namespace
}  // namespace tarnex::truth::test
