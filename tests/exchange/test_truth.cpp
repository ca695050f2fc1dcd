// The truth test on true programs: worked out by hand, and made at random in closed form.
#include <gmock/gmock.h>

#include <cstdlib>

#include "maker3b.h"

namespace tarnex::truth::test {
namespace {

std::string lines(const Report& r) {
  std::string all;
  for (const std::string& l : describe(r)) all += l + "\n";
  return all;
}

// Square hole 10 x 10 about (0,0), compensation 0.1, T (0,-2), entry (0,-4.9) straight below;
// counter-clockwise. Wire square ±4.9: lead-in 2.9 down; 4.9 right; 9.8 up; 9.8 left; 9.8 down; 4.9
// right; 2.9 up.
const char* const kSquareHole =
    "//Tarnex\n//    Start Point  =       0. ,      -2. ;     X    ,     Y\n"
    "N   1: B      0 B      0 B   2900 GY  L4 ;\n"
    "N   2: B      0 B      0 B   4900 GX  L1 ;\n"
    "N   3: B      0 B      0 B   9800 GY  L2 ;\n"
    "N   4: B      0 B      0 B   9800 GX  L3 ;\n"
    "N   5: B      0 B      0 B   9800 GY  L4 ;\n"
    "N   6: B      0 B      0 B   4900 GX  L1 ;\n"
    "N   7: B      0 B      0 B   2900 GY  L2 ;\n"
    "N    : DD";

Figure square(double half, double c, Side side) {
  Figure f;
  f.number = 1;
  f.contour.vertices = {{{-half, -half}, 0}, {{half, -half}, 0}, {{half, half}, 0}, {{-half, half}, 0}};
  f.contour.closed = true;
  f.compensation = c;
  f.side = side;
  f.direction = Direction::kCounterClockwise;
  return f;
}

TEST(Truth, SquareHoleByHand) {
  Figure f = square(5, 0.1, Side::kInside);
  f.threading = AcGePoint2d{0, -2};
  const Report r = check(kSquareHole, {f});
  EXPECT_TRUE(r.ok) << lines(r);
  ASSERT_EQ(r.paths.size(), 1u);
  EXPECT_EQ(r.paths[0].blocks, 7u);
  EXPECT_EQ(r.paths[0].lastBlock, 7);
  EXPECT_NEAR(r.paths[0].shortfall.value, 0, 1e-9);
  EXPECT_NEAR(r.paths[0].excess.value, 0, 1e-9);
  EXPECT_NEAR(r.paths[0].closingError, 0, 1e-9);
  EXPECT_EQ(r.paths[0].side, Side::kInside);
}

// Circle of radius 5 about (20,10) as a hole, compensation 0.1: wire radius 4.9, entry at angle 0, T 3 mm
// inward.
TEST(Truth, CircleOfTwoArcsByHand) {
  Figure f;
  f.number = 1;
  f.circle = CircleFigure{{20, 10}, 5};
  f.compensation = 0.1;
  f.threading = AcGePoint2d{21.9, 10};
  f.direction = Direction::kCounterClockwise;
  const char* program =
      "//    Start Point  =     21.9 ,      10. ;     X    ,     Y\n"
      "N   1: B      0 B      0 B   3000 GX  L1 ;\n"
      "N   2: B   4900 B      0 B   9800 GY NR1 ;\n"  // upper half: up 4.9 and down 4.9
      "N   3: B   4900 B      0 B   9800 GY NR3 ;\n"
      "N   4: B      0 B      0 B   3000 GX  L3 ;\n"
      "N    : DD";
  const Report r = check(program, {f});
  EXPECT_TRUE(r.ok) << lines(r);
  ASSERT_EQ(r.paths.size(), 1u);
  EXPECT_NEAR(r.paths[0].excess.value, 0, 1e-9);
  EXPECT_NEAR(r.paths[0].shortfall.value, 0, 1e-9);
}

// An L-shaped punch from outside, compensation 0.1, dFix 0.18: only the inner corner (0,0) is an outer corner
// of the wire's own turn. The wire stands at (0.1,0.1) there; the step goes out along (-1,-1) by 0.18 / sin
// 45° - 0.18 = 0.07456, 53 counts each way.
std::string punchProgram() {
  return "//    Start Point  =       0. ,      -8. ;     X    ,     Y\n"
         "N   1: B      0 B      0 B   2900 GY  L2 ;\n"  // to (0,-5.1)
         "N   2: B      0 B      0 B   5100 GX  L1 ;\n"  // (5.1,-5.1)
         "N   3: B      0 B      0 B   5200 GY  L2 ;\n"  // (5.1,0.1)
         "N   4: B      0 B      0 B   5000 GX  L3 ;\n"  // (0.1,0.1)
         "N   5: B     53 B     53 B     53 GY  L3 \n"
         "N   6: B     53 B     53 B     53 GY  L1 \n"
         "N   7: B      0 B      0 B   5000 GY  L2 ;\n"  // (0.1,5.1)
         "N   8: B      0 B      0 B   5200 GX  L3 ;\n"  // (-5.1,5.1)
         "N   9: B      0 B      0 B  10200 GY  L4 ;\n"  // (-5.1,-5.1)
         "N  10: B      0 B      0 B   5100 GX  L1 ;\n"
         "N  11: B      0 B      0 B   2900 GY  L4 ;\n"
         "N    : DD";
}

TEST(Truth, PunchWithCornerSpikeByHand) {
  Figure f = square(5, 0.1, Side::kOutside);
  f.contour.vertices = {{{-5, -5}, 0}, {{5, -5}, 0}, {{5, 0}, 0}, {{0, 0}, 0}, {{0, 5}, 0}, {{-5, 5}, 0}};
  f.threading = AcGePoint2d{0, -8};
  Expected e;
  e.dFix = 0.18;
  const Report r = check(punchProgram(), {f}, e);
  EXPECT_TRUE(r.ok) << lines(r);
  // Without the option the step is told by its block.
  const Report bare = check(punchProgram(), {f});
  EXPECT_FALSE(bare.ok);
  ASSERT_FALSE(bare.findings.empty());
  EXPECT_EQ(bare.findings[0].kind, FindingKind::kUnexplained) << lines(bare);
  EXPECT_EQ(bare.findings[0].block, 5);
  e.dFix = 0;
  e.markedStep = 0.08;
  EXPECT_TRUE(check(punchProgram(), {f}, e).ok);
}

// The square hole again with all that may stand in a program: comment and pause in the middle, taper marks,
// code texts, a pause that splits the last edge 1 mm before its end, an overcut of 0.5 mm and back, printed
// coordinates.
TEST(Truth, EverythingThatAProgramMayHold) {
  Figure f = square(5, 0.1, Side::kInside);
  f.threading = AcGePoint2d{0, -2};
  const std::string program =
      "//Tarnex\r\n//    Start Point  =       0. ,      -2. ;     X    ,     Y\r\n\r\n// a remark\r\n"
      "N   1: B      0 B      0 B   2900 B   2900 GY D  L4 ;   0.0000 ,  -2.0000\r\n"
      "N   2: R\r\n"
      "N   3: B      0 B      0 B   4900 B   4900 GX DD  L1 ;   0.0000 ,  -4.9000\r\n"
      "N   4: b0b0b9800gyl2\r\n"
      "N   5: B      0 B      0 B   9800 GX  L3 ;\r\n"
      "N   6: B      0 B      0 B   9800 GY  L4 ;\r\n"
      "N   7: B      0 B      0 B   3900 GX  L1 ;\r\n"
      "N    : D\r\n"
      "N   8: B      0 B      0 B   1000 GX  L1 ;\r\n"
      "N   9: B      0 B      0 B    500 GX  L1 ;\r\n"
      "N  10: B      0 B      0 B    500 GX  L3 ;\r\n"
      "N  11: B      0 B      0 B   2900 GY  L2 ;\r\n"
      "N    : DD";
  Expected e;
  e.codes = {"R"};
  e.overcut = 0.5;
  const Report r = check(program, {f}, e);
  EXPECT_TRUE(r.ok) << lines(r);
  EXPECT_EQ(r.paths.at(0).blocks, 11u);
  EXPECT_FALSE(check(program, {f}).ok);  // "R" isn't known then
}

// Overcut without return: the last edge ends 0.5 mm past the entry, the return starts there: (0.5,-4.9) to
// (0,-2).
TEST(Truth, OvercutMustBeExpected) {
  Figure f = square(5, 0.1, Side::kInside);
  f.threading = AcGePoint2d{0, -2};
  std::string program = kSquareHole;
  program.replace(program.find("4900 GX  L1 ;\nN   7: B      0 B      0 B   2900 GY  L2"), 55,
                  "5400 GX  L1 ;\nN   7: B    500 B   2900 B   2900 GY  L2");
  Expected e;
  e.overcut = 0.5;
  EXPECT_TRUE(check(program, {f}, e).ok) << lines(check(program, {f}, e));
  const Report r = check(program, {f});
  ASSERT_EQ(r.findings.size(), 1u) << lines(r);
  EXPECT_EQ(r.findings[0].kind, FindingKind::kUnexplained);
}

// Open contour (0,0) - (10,0) - (10,10), wire 0.2 to its left, from T (0,3): down, right, up; no return.
TEST(Truth, OpenContour) {
  Figure f;
  f.number = 1;
  f.contour.vertices = {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}};
  f.compensation = 0.2;
  f.side = Side::kLeft;
  f.direction = Direction::kAlong;
  f.threading = AcGePoint2d{0, 3};
  const std::string program =
      "//    Start Point  =       0. ,       3. ;     X    ,     Y\n"
      "N   1: B 0 B 0 B 2800 GY L4 ;\nN   2: B 0 B 0 B 9800 GX L1 ;\nN   3: B 0 B 0 B 9800 GY L2 ;\nN    : "
      "DD";
  EXPECT_TRUE(check(program, {f}).ok) << lines(check(program, {f}));
  Figure plain = f;
  plain.threading.reset();
  EXPECT_TRUE(check(program, {plain}).ok) << lines(check(program, {plain}));
  f.side = Side::kRight;
  f.direction = Direction::kAgainst;
  const Report r = check(program, {f});
  ASSERT_EQ(r.findings.size(), 2u) << lines(r);
  EXPECT_EQ(r.findings[0].kind, FindingKind::kSide);
  EXPECT_EQ(r.findings[1].kind, FindingKind::kDirection);
  f.side = Side::kLeft;
  f.direction = Direction::kAlong;
  f.contour.vertices.push_back({{10, 20}, 0});  // the wire stops short of the third edge
  const Report part = check(program, {f});
  ASSERT_FALSE(part.ok);
  EXPECT_EQ(part.findings.back().kind, FindingKind::kUncovered) << lines(part);
  EXPECT_NEAR(part.paths[0].uncovered, 10, 0.05) << lines(part);
}

// A keyhole: a round of radius 2 behind a neck 0.3 wide. A wire of 0.2 can't pass the neck, so the round is
// told in a note.
TEST(Truth, WhereAWireCannotComeIsNoFault) {
  Figure f = square(5, 0.2, Side::kInside);
  const double half = 0.15, reach = std::sqrt(4 - half * half);
  const double bulge = std::tan((2 * std::acos(-1.0) - 2 * std::asin(half / 2)) / 4);
  f.contour.vertices = {{{-5, -5}, 0},          {{5, -5}, 0},   {{5, -half}, 0}, {{8 - reach, -half}, bulge},
                        {{8 - reach, half}, 0}, {{5, half}, 0}, {{5, 5}, 0},     {{-5, 5}, 0}};
  f.threading = AcGePoint2d{0, -2};
  // Past the neck the wire follows its two lips, rounded by 0.2 as far as they leave the straight: it meets
  // itself on the neck's middle, 0.2 from both lips at (5 - sqrt(0.04 - 0.0225), 0).
  Maker m({0, -2});
  const double x = 5 - std::sqrt(0.2 * 0.2 - half * half), a = std::asin(half / 0.2);
  m.line({0, -4.8}), m.line({4.8, -4.8}), m.line({4.8, -half}), m.arc({5, -half}, -a);
  EXPECT_NEAR(m.here().x, 5 - 0.2 * std::cos(a), 1e-12);
  EXPECT_NEAR(x, m.here().x, 1e-12);
  m.arc({5, half}, -a), m.line({4.8, 4.8}), m.line({-4.8, 4.8}), m.line({-4.8, -4.8}), m.line({0, -4.8}),
      m.line({0, -2});
  m.stop();
  const Report r = check(m.text(), {f});
  EXPECT_TRUE(r.ok) << lines(r);
  EXPECT_EQ(r.notes, 1u) << lines(r);
  EXPECT_NEAR(r.paths.at(0).unreachable, 2 * 2 * std::acos(-1.0), 0.7);  // the round but for the neck
}

TEST(Truth, RandomTruePrograms) {
  const int rounds = std::getenv("TARNEX_LONG") ? 20000 : 300;
  std::mt19937 rng(20240501);
  for (int i = 0; i < rounds; ++i) {
    std::vector<Sample> samples;
    const double far = i % 3 == 0 ? 0 : i % 3 == 1 ? 1234.5678 : 98765.4321;
    for (int k = 0; k < 3; ++k) samples.push_back(randomSample(rng, {far + 100 * k, -far + 0.12345 * k}));
    const std::string program = programOf(samples);
    auto figures = figuresOf(samples);
    const Report r = check(program, figures);
    ASSERT_TRUE(r.ok) << i << "\n" << lines(r) << program;
    for (Figure& f : figures) f.threading.reset();
    const Report plain = check(program, figures);
    ASSERT_TRUE(plain.ok) << i << "\n" << lines(plain) << program;
  }
}

// A plate with ten holes in a plain drawing: sides follow from nesting, and each path finds its contour.
TEST(Truth, PlainDrawingTakesSidesFromNesting) {
  std::vector<Sample> samples;
  for (int i = 0; i < 10; ++i)
    samples.push_back(circleSample({10.0 * i, 0.0}, 2.0 + 0.1 * i, 0.7, {false, true, 0.11}));
  samples.push_back(polygonSample(rectangle({45, 0}, 120, 30, 0), {true, false, 0.11}));
  const std::string program = programOf(samples);
  auto figures = figuresOf(samples);
  for (Figure& f : figures) f.threading.reset(), f.side = Side::kEither, f.direction = Direction::kEither;
  std::reverse(figures.begin(), figures.end());
  const Report r = check(program, figures);
  EXPECT_TRUE(r.ok) << lines(r);
  ASSERT_EQ(r.paths.size(), 11u);
  EXPECT_EQ(r.paths[0].side, Side::kInside);
  EXPECT_EQ(r.paths[10].side, Side::kOutside);
  figures.push_back(circleSample({45, 10}, 1, 0, {false, true, 0.11}).figure);
  figures.back().threading.reset();
  EXPECT_EQ(check(program, figures).findings.back().kind, FindingKind::kNotCut);
}

// An arc that starts 0.05 degrees before an axis has the word of the quadrant behind it. Read as it stands,
// the circle of 20 mm would lie 2 * 20 * sin 0.05° = 0.035 mm off: the contour shows which reading is meant,
// and a note says so.
TEST(Truth, AxisRuleOfTheWordIsTold) {
  const double before = (90 - 0.05) * std::acos(-1.0) / 180;
  std::vector<Sample> samples{circleSample({0, 0}, 20.1, before, {false, false, 0.1})};
  const Report r = check(programOf(samples), figuresOf(samples));
  EXPECT_TRUE(r.ok) << lines(r);
  ASSERT_GE(r.findings.size(), 1u);
  EXPECT_EQ(r.findings[0].kind, FindingKind::kAxisWord);
}

}  // namespace
}  // namespace tarnex::truth::test
