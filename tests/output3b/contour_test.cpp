// One path as blocks, worked out by hand: options at the contour's end, marks, codes, steps at corners.
// Knows one path; the program's frame is tested beside it.
#include "output3b/contourwriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/bytes.h"

namespace tarnex {
namespace {

using testing::ElementsAre;

// A wire offset of 1 in all of them.
std::unique_ptr<CToolPath> rectanglePath(CToolPath::Making making, bool clockwise, int span) {
  PolylineCurve c{{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 20}, 0}, {{0, 20}, 0}}, true};
  if (clockwise) std::swap(c.vertices[1], c.vertices[3]);
  making.dOffset = 1;
  auto path = std::make_unique<CToolPath>();
  EXPECT_TRUE(path->initContour(making, c, span));
  return path;
}
std::unique_ptr<CToolPath> squareHole() {  // entered in the middle of an edge
  return rectanglePath({{10, 10}, {20, 10}, 1, 1}, false, 1);
}
std::unique_ptr<CToolPath> cornerHole() {  // entered at a corner
  return rectanglePath({{10, 10}, {20, 20}, 1, 1}, false, 2);
}
std::unique_ptr<CToolPath> squarePunch() {
  return rectanglePath({{-5, 10}, {0, 10}, -1, -1}, true, 0);
}
std::unique_ptr<CToolPath> roundHole() {
  auto path = std::make_unique<CToolPath>();
  EXPECT_TRUE(path->initCircle({{0, 0}, {10, 0}, 1, 1, 1, 0}, {0, 0}, 10, 4));
  return path;
}

class Contour3b : public testing::Test {
 protected:
  // The lines, without the numbers of blocks (whose order is tested on its own).
  std::vector<std::string> written(const CToolPath& path) {
    program = {};
    reports.clear();
    const Contour3bContext context{settings,
                                   {},
                                   "D",
                                   {},
                                   [this](std::string_view s) { reports += s; },
                                   [](int id) { return "message " + std::to_string(id); }};
    write3B(path, context, program);
    std::vector<std::string> lines;
    for (std::size_t at = 1; at < program.text.size();) {
      const std::size_t end = std::min(program.text.find('\n', at), program.text.size());
      lines.push_back(program.text.substr(at, end - at));
      if (lines.back().size() >= 7) lines.back().erase(0, 7);
      at = end + 1;
    }
    return lines;
  }
  // A block of a line along an axis.
  static std::string axis(const char* g, int count, const char* word) {
    char text[64];
    std::snprintf(text, sizeof text, "B      0 B      0 B %6d %s  %s ;", count, g, word);
    return text;
  }
  Contour3b() : settings("") {
    settings.bCutoffPause = settings.bOvercut = settings.nOvercutMode = settings.bOvercutTangent = 0;
    settings.bAutoFix = settings.bPrintCoords = 0;
    settings.dOvercutLen = settings.dCutoffLen = 2;
    settings.dMinStep = 0.01;
  }
  WireCutSettings settings;
  Program3b program;
  std::string reports;
};

const char kPause[] = "D";

TEST_F(Contour3b, WithoutOptionsLeadInContourAndReturn) {
  EXPECT_THAT(written(*squareHole()),
              ElementsAre(axis("GX", 9000, "L1"), axis("GY", 9000, "L2"), axis("GX", 18000, "L3"),
                          axis("GY", 18000, "L4"), axis("GX", 18000, "L1"), axis("GY", 9000, "L2"),
                          axis("GX", 9000, "L3")));
  EXPECT_EQ(program.text.substr(0, 8), "\nN   1: ");
  EXPECT_EQ(program.lineNo, 8);
  program.lineNo = 9999;
  program.text.clear();
  program.block("a");
  program.block("b");
  EXPECT_EQ(program.text, "\nN9999: a\nN10000: b");
}

TEST_F(Contour3b, APathWithoutAWireIsTold) {
  EXPECT_THAT(written(CToolPath()), ElementsAre(testing::HasSubstr("2")));
  EXPECT_EQ(program.text, "\nmessage 2");
}

TEST_F(Contour3b, OvercutAtAStraightEntry) {
  settings.bOvercut = 1;
  // The last block runs to (19,12), 2 past the entry, and the return starts there.
  auto lines = written(*squareHole());
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[5], axis("GY", 11000, "L2"));
  EXPECT_EQ(lines[6], "B   9000 B   2000 B   9000 GX  L3 ;");
  settings.nOvercutMode = 1;  // and back to the entry
  lines = written(*squareHole());
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_THAT((std::vector<std::string>{lines.begin() + 5, lines.end()}),
              ElementsAre(axis("GY", 11000, "L2"), axis("GY", 2000, "L4"), axis("GX", 9000, "L3")));
  settings.dOvercutLen = 9;  // not shorter than the first segment
  EXPECT_EQ(written(*squareHole()).size(), 7u);
  settings.dOvercutLen = 8.999;
  EXPECT_EQ(written(*squareHole()).size(), 8u);
}

TEST_F(Contour3b, OvercutAtACornerCutsNoCornerOff) {
  settings.bOvercut = 1;
  const std::string lead = "B   9000 B   9000 B   9000 GY  L1 ;";
  EXPECT_THAT(
      written(*cornerHole()),
      ElementsAre(lead, axis("GX", 18000, "L3"), axis("GY", 18000, "L4"), axis("GX", 18000, "L1"),
                  axis("GY", 18000, "L2"), axis("GX", 2000, "L3"), "B   7000 B   9000 B   9000 GY  L3 ;"));
  settings.nOvercutMode = 1;
  EXPECT_THAT(written(*cornerHole()),
              ElementsAre(lead, axis("GX", 18000, "L3"), axis("GY", 18000, "L4"), axis("GX", 18000, "L1"),
                          axis("GY", 18000, "L2"), axis("GX", 2000, "L3"), axis("GX", 2000, "L1"),
                          "B   9000 B   9000 B   9000 GY  L3 ;"));
}

TEST_F(Contour3b, OvercutOnACircle) {
  settings.bOvercut = 1;
  // 2/9 rad past (9,0): X = 9 (cos, sin) = (8.7787, 1.9836). The last arc counts y from -9 up to it.
  auto lines = written(*roundHole());
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[4], "B      0 B   9000 B  10984 GY NR4 ;");
  EXPECT_EQ(lines[5], "B   8779 B   1984 B   8779 GX  L3 ;");
  settings.nOvercutMode = 1;
  lines = written(*roundHole());
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[4], "B      0 B   9000 B  10984 GY NR4 ;");
  EXPECT_EQ(lines[5], "B   8779 B   1984 B   1984 GY SR1 ;");
  EXPECT_EQ(lines[6], axis("GX", 9000, "L3"));
}

TEST_F(Contour3b, OvercutOnTheTangentOfACircle) {
  settings.bOvercut = settings.bOvercutTangent = 1;
  settings.dOvercutLen = 50;  // the length isn't tested
  auto lines = written(*roundHole());
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[4], "B      0 B   9000 B   9000 GY NR4 ;");
  EXPECT_EQ(lines[5], axis("GY", 50000, "L2"));
  EXPECT_EQ(lines[6], "B   9000 B  50000 B  50000 GY  L3 ;");
  settings.nOvercutMode = 1;
  lines = written(*roundHole());
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[6], axis("GY", 50000, "L4"));
  EXPECT_EQ(lines[7], axis("GX", 9000, "L3"));
}

TEST_F(Contour3b, AnOuterShapeGetsNoOvercut) {
  const auto plain = written(*squarePunch());
  settings.bOvercut = settings.nOvercutMode = 1;
  EXPECT_EQ(written(*squarePunch()), plain);
}

TEST_F(Contour3b, APauseShortlyBeforeTheEnd) {
  settings.bCutoffPause = 1;
  const auto tail = [&](const CToolPath& path, std::size_t from) {
    const auto lines = written(path);
    return std::vector<std::string>(lines.begin() + static_cast<std::ptrdiff_t>(std::min(from, lines.size())),
                                    lines.end());
  };
  EXPECT_THAT(tail(*squareHole(), 5),
              ElementsAre(axis("GY", 7000, "L2"), kPause, axis("GY", 2000, "L2"), axis("GX", 9000, "L3")));
  EXPECT_NE(program.text.find("\nN    : D\nN   7: "), std::string::npos);
  // A last segment not longer than that: before it.
  settings.dCutoffLen = 9;
  EXPECT_THAT(tail(*squareHole(), 4),
              ElementsAre(axis("GX", 18000, "L1"), kPause, axis("GY", 9000, "L2"), axis("GX", 9000, "L3")));
  // On an arc: X = 9 (cos, -sin) of 2/9 rad, y from -9 to -1.9836.
  settings.dCutoffLen = 2;
  EXPECT_THAT(tail(*roundHole(), 4),
              ElementsAre("B      0 B   9000 B   7016 GY NR4 ;", kPause,
                          "B   8779 B   1984 B   1984 GY NR4 ;", axis("GX", 9000, "L3")));
  // With an overcut, which counts from the entry.
  settings.bOvercut = 1;
  EXPECT_THAT(tail(*squareHole(), 5), ElementsAre(axis("GY", 7000, "L2"), kPause, axis("GY", 4000, "L2"),
                                                  "B   9000 B   2000 B   9000 GX  L3 ;"));
}

// A stored path of side 1 without offset: its wire path is its polyline.
std::unique_ptr<CToolPath> pathOf(const std::vector<BulgeVertex>& vertices, bool closed = true) {
  Bytes b;
  b.i32(213).i32(1).i32(1).i32(1).real(0).flag(false).real(0).i32(static_cast<int>(vertices.size()));
  for (const auto& v : vertices) b.p2(v.point).real(v.bulge);
  b.i16(static_cast<int>(vertices.size()));
  for (std::size_t i = 0; i < vertices.size(); ++i) b.real(0);
  b.flag(false).flag(closed).i32(closed ? 1 : 2).real(0).real(0).i16(0).i16(256).text("S");
  b.real(0).real(0).real(0).real(0).i16(-1).i16(700).flag(false);
  b.p2({}).p2({}).real(0).real(0).real(0).i16(-1).real(0).real(0).real(0).real(0).p2({}).p2({}).i16(0);
  auto path = std::make_unique<CToolPath>();
  AcDbDwgFiler in(b.s);
  EXPECT_EQ(path->dwgInFields(in), ErrorStatus::eOk);
  return path;
}

TEST_F(Contour3b, APauseIsNeverLostWithABlock) {
  settings.bCutoffPause = 1;
  // The last segment is short, and the one before it too short for a block.
  const auto path =
      pathOf({{{5, 5}, 0}, {{10, 5}, 0}, {{10, 10}, 0}, {{9, 6}, 0}, {{9, 6.0009}, 0}, {{10, 5}, 0}});
  EXPECT_EQ(std::count(program.text.begin(), program.text.end(), 'D'), 0);
  const auto lines = written(*path);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), kPause), 1);
}

TEST_F(Contour3b, AnOpenPathHasNoReturn) {
  EXPECT_THAT(written(*pathOf({{{0, 0}, 0}, {{5, 0}, 0}, {{5, 5}, 0}}, false)),
              ElementsAre(axis("GX", 5000, "L1"), axis("GY", 5000, "L2")));
}

TEST_F(Contour3b, ATaperOfThePathMarksLeadInAndReturn) {
  auto hole = squareHole(), punch = squarePunch();
  for (CToolPath* path : {hole.get(), punch.get()}) path->setTaper(1.5);
  auto lines = written(*hole);
  EXPECT_EQ(lines[0], "B      0 B      0 B   9000 B   9000 GX  D L1 ;");
  EXPECT_EQ(lines[1], axis("GY", 9000, "L2"));
  EXPECT_EQ(lines[6], "B      0 B      0 B   9000 B   9000 GX  D L3 ;");
  settings.bPrintCoords = 1;
  lines = written(*punch);  // T (-5,10), entry on the wire (-1,10)
  EXPECT_EQ(lines[0], "B      0 B      0 B   4000 B   4000 GX  DD L1 ;  -5.0000 ,  10.0000");
  EXPECT_EQ(lines.back(), "B      0 B      0 B   4000 B   4000 GX  DD L3 ;  -1.0000 ,  10.0000");
}

TEST_F(Contour3b, TapersOfSegmentsMarkTheirNeighbours) {
  auto path = squareHole();
  ASSERT_TRUE(path->setSegmentTaper({0, 10}, 1.5));  // segment 3, from (0,20) to (0,0)
  const auto lines = written(*path);
  EXPECT_EQ(lines[2], "B      0 B      0 B  18000 B  18000 GX  D L3 ;");
  EXPECT_EQ(lines[3], axis("GY", 18000, "L4"));
  EXPECT_EQ(lines[4], "B      0 B      0 B  18000 B  18000 GX  D L1 ;");
  EXPECT_EQ(reports, "\ni+1:2, 1.500000\ni-1:4, 1.500000");
  auto round = roundHole();
  ASSERT_TRUE(round->setSegmentTaper({0, 10}, 1));  // segment 1; its end belongs to it
  // Arc 2 follows: counter-clockwise of a hole cut that way widens. Its chord is 9 √2 = 12.728.
  EXPECT_EQ(written(*round)[2], "B      0 B   9000 B   9000 B  12728 GY DD NR2 ;");
}

// The chamfer of 0.2 at (20,20) is dropped by a wire of 1 mm: what hangs behind it stays where it is.
TEST_F(Contour3b, MarksAndCodesStayBehindADroppedVertex) {
  const PolylineCurve c{{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 19.8}, 0}, {{19.8, 20}, 0}, {{0, 20}, 0}}, true};
  CToolPath path;
  ASSERT_TRUE(path.initContour({{10, 10}, {20, 10}, 1, 1, 1, 0}, c, 1));
  ASSERT_TRUE(path.setSegmentTaper({0, 10}, 1.5));  // from (0,20) down
  path.setCodeAt(2, "A");                           // both at the chamfer
  path.setCodeAt(3, "B");
  path.setCodeAt(5, "R");  // at (0,0)
  EXPECT_THAT(written(path),
              ElementsAre(axis("GX", 9000, "L1"), axis("GY", 9000, "L2"), "A", "B",
                          "B      0 B      0 B  18000 B  18000 GX  D L3 ;", axis("GY", 18000, "L4"), "R",
                          "B      0 B      0 B  18000 B  18000 GX  D L1 ;", axis("GY", 9000, "L2"),
                          axis("GX", 9000, "L3")));
}

// A text that hung on a corner before the step was put in hangs on the root behind the tip.
TEST_F(Contour3b, ACodeAtAStepIsWrittenBehindIt) {
  auto path = squareHole();
  path->setCodeAt(2, "R");
  path->addVertexAt(2, {20.5, 20}, kMarkedBulge);
  path->addVertexAt(2, {20, 20}, kMarkedBulge);
  const auto lines = written(*path);
  EXPECT_THAT((std::vector<std::string>{lines.begin() + 1, lines.begin() + 6}),
              ElementsAre(axis("GY", 9000, "L2"), "B      0 B      0 B    500 GX  L1 ",
                          "B      0 B      0 B    500 GX  L3 ", "R", axis("GX", 18000, "L3")));
}

TEST_F(Contour3b, CodesBecomeBlocksOfTheirOwn) {
  auto path = squareHole();
  path->setCodeAt(0, "M1|M2");
  path->setCodeAt(1, "A||B|");
  path->setCodeAt(3, "R");
  EXPECT_THAT(written(*path),
              ElementsAre("M1", "M2", axis("GX", 9000, "L1"), "A", "", "B", axis("GY", 9000, "L2"),
                          axis("GX", 18000, "L3"), "R", axis("GY", 18000, "L4"), axis("GX", 18000, "L1"),
                          axis("GY", 9000, "L2"), axis("GX", 9000, "L3")));
  EXPECT_EQ(program.lineNo, 14);
}

TEST_F(Contour3b, MarkedStepsGoOutAndBack) {
  const double m = 0.000001;
  const auto path = pathOf(
      {{{5, 5}, 0}, {{10, 5}, 0}, {{10, 10}, m}, {{11, 11}, m}, {{10, 10}, 0}, {{0, 10}, 0}, {{10, 5}, 0}});
  const std::string back = "B  10000 B   5000 B  10000 GX  L4 ;";
  EXPECT_THAT(written(*path),
              ElementsAre(axis("GX", 5000, "L1"), axis("GY", 5000, "L2"),
                          "B   1000 B   1000 B   1000 GY  L1 ", "B   1000 B   1000 B   1000 GY  L3 ",
                          axis("GX", 10000, "L3"), back, axis("GX", 5000, "L3")));
  settings.dMinStep = 1.42;  // longer than √2
  EXPECT_THAT(written(*path), ElementsAre(axis("GX", 5000, "L1"), axis("GY", 5000, "L2"),
                                          axis("GX", 10000, "L3"), back, axis("GX", 5000, "L3")));
}

TEST_F(Contour3b, CornersOfAHoleAreCompensatedOutwards) {
  settings.bAutoFix = 1;
  settings.dAutoFixLen = 0.18;
  // 0.18 / sin 45 - 0.18 = 0.0746 along the bisector: 0.0527 in x and in y.
  const auto step = [](const char* g, const char* word) {
    return std::string("B     53 B     53 B     53 ") + g + "  " + word + " ";
  };
  EXPECT_THAT(
      written(*squareHole()),
      ElementsAre(axis("GX", 9000, "L1"), axis("GY", 9000, "L2"), step("GY", "L1"), step("GY", "L3"),
                  axis("GX", 18000, "L3"), step("GX", "L2"), step("GX", "L4"), axis("GY", 18000, "L4"),
                  step("GY", "L3"), step("GY", "L1"), axis("GX", 18000, "L1"), step("GX", "L4"),
                  step("GX", "L2"), axis("GY", 9000, "L2"), axis("GX", 9000, "L3")));
  EXPECT_EQ(written(*squarePunch()).size(), 7u);  // the wire leaves no fillet at a punch's corners
  EXPECT_EQ(written(*roundHole()).size(), 6u);    // nor where arcs go on smoothly
  settings.dMinStep = 0.08;
  EXPECT_EQ(written(*squareHole()).size(), 7u);
}

}  // namespace
}  // namespace tarnex
