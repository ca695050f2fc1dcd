// Motion words, taper lines and blocks, worked out by hand; modal output followed as a control follows it.
#include <numbers>
#include <optional>

#include "isotest.h"

namespace tarnex {
namespace {

const double kQuarter = std::tan(std::numbers::pi / 8);  // bulge of 90 degrees counter-clockwise

std::string words(IsoPost& iso, const IsoMove& move) {
  return iso.segmentWords(move, iso.figure.styleNow);
}

TEST(Segment, LinesInEachStyle) {
  const IsoMove line{{11, 22}, {14, 26}}, rapid{{11, 22}, {14, 26}, 0, true};  // 3 and 4 mm: 5 long
  struct Case {
    IsoPost iso;
    const char *line, *rapid;
  };
  for (Case& c : std::vector<Case>{{isoWith(0, {}), "G01X4.Y6.", "G00X4.Y6."},
                                   {isoWith(0, {{4, "1"}}), "G01X4000Y6000", "G00X4000Y6000"},
                                   {isoWith(1, {}, {{0, "G91"}}), "G01X3.Y4.", "G00X3.Y4."},
                                   {isoWith(1, {}, {{0, "G90 "}}), "G01X3.Y4.", "G00X3.Y4."},
                                   {isoWith(5, {{9, ""}}), "G01X+004000Y+006000", "X+004000Y+006000"}}) {
    c.iso.ptOriginCopy = {10, 20};
    EXPECT_EQ(words(c.iso, line), c.line);
    EXPECT_EQ(words(c.iso, rapid), c.rapid);
    EXPECT_EQ(c.iso.dPathLength, 10);
    EXPECT_EQ(c.iso.nModalG, -1);
  }
}

TEST(Segment, Arcs) {
  const auto arc = [](const SlotTexts& params, const SlotTexts& coordinates, const IsoMove& move) {
    IsoPost iso = isoWith(1, params, coordinates);
    iso.ptOriginCopy = {100, 50};
    const std::string text = words(iso, move);
    EXPECT_EQ(iso.nModalG, -1);
    return std::pair{text, iso.dPathLength};
  };
  // About (105,52), from 10 mm right of it to 10 mm above it; less the origin about (5,2).
  const IsoMove ccw{{115, 52}, {105, 62}, kQuarter}, cw{{105, 62}, {115, 52}, -kQuarter};
  EXPECT_EQ(arc({}, {}, ccw).first, "G03X5.Y12.I-10.J0.");
  EXPECT_EQ(arc({{29, "1"}}, {}, ccw).first, "G03X5.Y12.I5.J2.");
  EXPECT_EQ(arc({}, {{0, "G91"}}, cw).first, "G02X10.Y-10.I0.J-10.");
  EXPECT_NEAR(arc({}, {}, cw).second, 5 * std::numbers::pi, 1e-12);
  // Half a circle: the centre lies on the chord.
  EXPECT_EQ(arc({}, {}, {{100, 50}, {110, 50}, 1}).first, "G03X10.Y0.I5.J0.");
}

TEST(Segment, ModalWordsAppearWhereTheyChange) {
  IsoPost iso = isoWith(0, {{5, "1"}});
  auto next = [&, at = AcGePoint2d{0, 0}](AcGePoint2d to, double bulge = 0, bool rapid = false) mutable {
    const IsoMove move{at, to, bulge, rapid};
    at = to;
    return words(iso, move);
  };
  EXPECT_EQ(next({0, 0}), "G01X0.Y0.");  // nothing was written before
  EXPECT_EQ(next({0, 0}), "");
  EXPECT_EQ(iso.block("", kNoRow, "\n", kWholeRow), "\n");
  EXPECT_EQ(next({3, 0.00005}), "X3.");
  EXPECT_EQ(next({3, 4}, 0, true), "G00Y4.");
  EXPECT_EQ(next({5, 4}, 0, true), "X5.");  // the rapid code once for a chain of them
  EXPECT_EQ(next({10, 4}), "G01X10.");
  EXPECT_EQ(next({0, 4}, 1), "G03X0.I-5.J0.");  // half a circle about (5,4)
  EXPECT_EQ(next({0, 9}), "G01Y9.");
  // About (-5,10), up from (0,9) and down again: I is -5 as before the line.
  EXPECT_EQ(next({0, 11}, std::tan(std::atan2(1, 5) / 2)), "G03Y11.J1.");
  EXPECT_EQ(next({0, 9}, -std::tan(std::atan2(1, 5) / 2)), "G02Y9.J-1.");
  EXPECT_EQ(iso.nModalG, 2);

  IsoPost steps = isoWith(0, {{5, "1"}}, {{0, "G91"}});  // incremental: X and Y always
  EXPECT_EQ(words(steps, {{1, 1}, {2, 1}}), "G01X1.Y0.");
  EXPECT_EQ(words(steps, {{2, 1}, {3, 1}}), "X1.Y0.");
  EXPECT_EQ(words(steps, {{3, 1}, {5, 1}, 1}), "G03X2.Y0.I1.J0.");
  EXPECT_EQ(words(steps, {{5, 1}, {7, 1}, 1}), "X2.Y0.I1.J0.");
  EXPECT_EQ(steps.ptLast.x, 2);
}

TEST(Segment, FirstPassMark) {
  IsoPost iso = isoWith(0, {}, {{8, "v9"}, {9, "M99"}});
  ProcessStyle style;
  style.nCode = 1204;
  EXPECT_EQ(iso.segmentWords({{0, 0}, {1, 0}}, style), "G01X1.Y0.M99");
  iso.nPass = 1;
  EXPECT_EQ(iso.segmentWords({{0, 0}, {1, 0}}, style), "G01X1.Y0.");
  iso.nPass = 0;
  style.nCode = 1203;
  EXPECT_EQ(iso.segmentWords({{0, 0}, {1, 0}}, style), "G01X1.Y0.");
}

TEST(Move, CountsItsLength) {
  IsoPost iso = isoWith(0, {});
  EXPECT_EQ(iso.moveWords({4, 6}, {1, 2}), "X4.Y6.");
  IsoPost steps = isoWith(0, {}, {{0, ""}});
  EXPECT_EQ(steps.moveWords({4, 6}, {1, 2}), "X3.Y4.");
  EXPECT_EQ(iso.dPathLength + steps.dPathLength, 10);
}

TEST(Taper, LinesAndCornerWords) {
  struct Case {
    IsoTaper taper;  // current, previous, all corners, bulge, next
    const char *family0, *others, *corner;
  };
  for (const Case& c : {Case{{1, 1, false, 0, 1}, "", "", ""},
                        {{1, 0, false, 0, 0}, "G51A1.0\n", "G51A1.0\n", ""},
                        {{-2, 1, true, 1, 0}, "G52A2.0\n", "G52A2.0\n", ""},
                        {{0, 1, false, 1, 0}, "G50\n", "G50\n", ""},
                        {{0, 1, true, 0, 0}, "G50\n", "G50\n", ""},  // a straight span is no corner
                        {{0, 1, true, 1, 0}, "G50\n", "M16\nG50\n", "r2.5"},
                        {{0, 0, true, 1, 1}, "", "M16\n", "r2.5"},
                        {{0, 0, true, 1, 0}, "", "", ""}}) {
    for (int family : {0, 1, 5}) {
      IsoPost iso = isoWith(family, {{16, "M16"}, {23, "G51"}, {24, "G52"}}, {{6, "A%.1f"}, {7, "G50"}});
      iso.setPass(0, 1);
      EXPECT_EQ(iso.taperChange(c.taper), family == 0 ? c.family0 : c.others);
      EXPECT_EQ(iso.dTaperNow, c.taper.current != c.taper.previous ? c.taper.current : 0);
      EXPECT_EQ(iso.cornerWord(c.taper, 2.5), family == 0 ? c.corner : "");
      EXPECT_EQ(iso.cornerWord(c.taper, 0), "");
    }
  }
}

TEST(Block, RowsAroundTheMotion) {
  IsoPost iso = isoWith(0, {}, {{2, "H"}, {3, "C"}});
  const auto row = [&](int r, const char* before, const char* inside, const char* after) {
    const auto at = static_cast<std::size_t>(3 * r);
    iso.post.blockRow[at] = before;
    iso.post.blockRow[at + 1] = inside;
    iso.post.blockRow[at + 2] = after;
  };
  row(0, "NO", "NO", "NO");
  row(3, "", "T1", "");
  row(4, "V3$", "", "$M00$");
  row(44, "OTHER", "", "$");
  EXPECT_EQ(iso.block("", 2, "\n", 7), "\n");
  EXPECT_EQ(iso.block("G01", 0, "\n", 7), "G01\n");
  EXPECT_EQ(iso.block("G01X1.Y2.", 3, "\n", 7), "G01T1X1.Y2.\n");
  EXPECT_EQ(iso.block("X1", 3, "", 7), "X1T1");
  EXPECT_EQ(iso.block("G01X1.Y2.", 3, "\n", kRowBefore | kRowAfter), "G01X1.Y2.\n");
  EXPECT_EQ(iso.block("G01X1.", 4, "\n", 7), "C00\nG01X1.\nM00\n");
  EXPECT_EQ(iso.block("G01X1.", 4, "", 7), "C00G01X1.M00");
  EXPECT_EQ(iso.block("G01X1.", 4, "\n", 3), "C00\nG01X1.\n");  // split over two blocks
  EXPECT_EQ(iso.block("G01X2.", 4, "\n", 4), "G01X2.\nM00\n");
  EXPECT_EQ(iso.block("", 4, "\n", 4), "M00\n");  // nothing ahead of it: no empty line
  iso.rowBase = 40;
  EXPECT_EQ(iso.block("G01", 4, "\n", 7), "OTHERG01\n");
  EXPECT_EQ(iso.block("G01V3", kNoRow, "\n", 7), "G01C00\n");  // motions are templates too
  EXPECT_EQ(iso.block("G01U1.V3$$\n\n", kNoRow, "\n", 7), "G01U1.V3\n");
  EXPECT_EQ(iso.block("G01", 32767, "\n", 7), "G01\n");
}

// A control that keeps code and coordinates until a word changes them.
struct Control {
  bool incremental, micrometres;
  AcGePoint2d at, centre;
  int code = -1;
  void read(const std::string& block) {
    std::optional<double> x, y;
    for (const auto& [letter, text] : readWords(block)) {
      const double v = letter == 'G' ? 0 : readNumber(text, micrometres);
      if (letter == 'G') code = std::stoi(text);
      if (letter == 'X') x = v;
      if (letter == 'Y') y = v;
      if (letter == 'I') centre.x = v;
      if (letter == 'J') centre.y = v;
    }
    if (incremental)
      at = {at.x + x.value(), at.y + y.value()};
    else
      at = {x.value_or(at.x), y.value_or(at.y)};
  }
};

// A move to a point of a grid of 0.01 mm, every third time straight along an axis, every third an arc.
IsoMove someMove(std::mt19937_64& random, AcGePoint2d from) {
  const auto coordinate = [&] { return static_cast<double>(random() % 20001) / 100 - 100; };
  IsoMove move{from, {coordinate(), coordinate()}};
  if (random() % 3 == 0) move.to.x = from.x;
  if (random() % 4 == 0) move.to.y = from.y;
  const bool arc = random() % 3 == 0 && from.distanceTo(move.to) > 0.1;
  if (arc) move.bulge = (random() % 2 == 0 ? 1 : -1) * (0.05 + 0.01 * static_cast<double>(random() % 150));
  move.bRapid = !arc && random() % 5 == 0;
  return move;
}

// The centre from the chord: half of it, and from its middle to the left as far as the angle asks.
AcGePoint2d centreOf(const IsoMove& m) {
  const double across = (1 - m.bulge * m.bulge) / (4 * m.bulge);
  return {(m.from.x + m.to.x) / 2 - across * (m.to.y - m.from.y),
          (m.from.y + m.to.y) / 2 + across * (m.to.x - m.from.x)};
}

TEST(Segment, AControlThatReadsTheBlocksMakesTheMoves) {
  std::mt19937_64 random(46);
  for (int program = 0; program < rounds(300, 30000); ++program) {
    const int family = static_cast<int>(random() % 3) * 5 / 2;  // 0, 2, 5
    const bool incremental = random() % 2 == 0, fromStart = random() % 2 == 0, units = random() % 2 == 0;
    IsoPost iso = isoWith(
        family, {{4, units ? "1" : ""}, {5, random() % 2 == 0 ? "1" : "0"}, {29, fromStart ? "0" : "1"}},
        {{0, incremental ? "G91" : "G90"}});
    iso.ptOriginCopy = {12.34, -5.6};
    Control control{incremental, units || family == 5, {}, {}};
    AcGePoint2d at = iso.ptOriginCopy;
    double length = 0;
    for (int i = 1; i <= 40; ++i) {
      const IsoMove move = someMove(random, at);
      const std::string block = iso.block(words(iso, move), kNoRow, "\n", kWholeRow);
      ASSERT_EQ(block.find('\n'), block.size() - 1);
      control.read(block.substr(0, block.size() - 1));
      at = move.to;
      // Steps add up their roundings; the grid leaves none.
      ASSERT_NEAR(control.at.x + iso.ptOriginCopy.x, at.x, 1e-6) << block;
      ASSERT_NEAR(control.at.y + iso.ptOriginCopy.y, at.y, 1e-6) << block;
      ASSERT_EQ(control.code, move.bulge > 0 ? 3 : move.bulge < 0 ? 2 : move.bRapid ? 0 : 1);
      length += move.bulge == 0 ? move.from.distanceTo(move.to) : 0;
      if (move.bulge == 0) continue;
      const AcGePoint2d centre = centreOf(move), from = fromStart ? move.from : iso.ptOriginCopy;
      ASSERT_NEAR(control.centre.x, centre.x - from.x, 0.00051 + 0.0001)
          << block;  // rounded, or not said again
      ASSERT_NEAR(control.centre.y, centre.y - from.y, 0.00051 + 0.0001) << block;
      length += 4 * std::atan(std::abs(move.bulge)) * move.from.distanceTo(centre);
    }
    ASSERT_NEAR(iso.dPathLength, length, 1e-6);
  }
}

}  // namespace
}  // namespace tarnex
