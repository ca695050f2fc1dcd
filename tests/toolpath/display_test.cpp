// What a path draws, primitive by primitive, worked out by hand; its snap points, grips and lines of `list`.
#include "toolpath/display.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "drawlog.h"
#include "frame/drawingvars.h"

namespace tarnex {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

using Lines = std::vector<std::string>;

// A display with settings of its own: everything off but what a test switches on.
struct Shown : PathDisplay {
  WireCutSettings values{""};
  Shown() {
    settings = &values;
    values.bShowArrow = values.bShowNumber = 0;
  }
  Shown(const Shown&) = delete;
  Shown& operator=(const Shown&) = delete;
};

// The line that a path's own polyline gives: square hole.
const char kSquare[] = "line 10,10 20,10 20,20 0,20 0,0 20,0 20,10";
std::string square(int color) {
  return "-1 " + std::to_string(color) + " as it is: " + kSquare;
}

TEST(PathDisplay, WithoutContextTheConstructionDefaultsHold) {
  const auto path = squareHole();
  path->setPathNo(1);
  // Text height 3, number in colour 1 at Q. The arrow starts 1 mm (wire offset) left of Q, on the inner side,
  // and runs up 3 mm; barbs of 1 mm stand 15 degrees beside it: sin 15 = 0.2588, cos 15 = 0.9659.
  EXPECT_THAT(drawn(*path),
              ElementsAre(square(256), "5001 1 --: text 20,10 h 3 1", "502 1 --: line 19,10 19,13",
                          "503 1 --: line 19.2588,12.0341 19,13", "504 1 --: line 18.7412,12.0341 19,13"));
}

TEST(PathDisplay, ContoursAndCoordinatesInTheirOrder) {
  const auto path = squareHole();
  path->setPathNo(2);
  ASSERT_TRUE(path->setClearance(0.1));
  Shown shown;
  shown.values.bShowReal = shown.values.bShowTool = shown.values.bShowNull = shown.values.bShowArrow = 1;
  shown.values.nColorReal = 5;
  shown.values.nCoordDecimals = 2;
  shown.values.dTextHeight = 2;
  shown.ptOrigin = {1, 2.5, 0};
  path->setPrevEnd({-3, -4});
  // The real contour lies 0.1 outside, the wire 1 - 0.1 inside.
  const Lines expected = {
      square(256),
      "0 5 -: line 20.1,10 20.1,20.1",
      "0 5 -: line 20.1,20.1 -0.1,20.1",
      "0 5 -: line -0.1,20.1 -0.1,-0.1",
      "0 5 -: line -0.1,-0.1 20.1,-0.1",
      "0 5 -: line 20.1,-0.1 20.1,10",
      "300 3 --: line 10,10 19.1,10",
      "301 3 --: line 19.1,10 19.1,19.1",
      "302 3 --: line 19.1,19.1 0.9,19.1",
      "303 3 --: line 0.9,19.1 0.9,0.9",
      "304 3 --: line 0.9,0.9 19.1,0.9",
      "305 3 --: line 19.1,0.9 19.1,10",
      "502 1 --: line 19.1,10 19.1,13",
      "503 1 --: line 19.3588,12.0341 19.1,13",
      "504 1 --: line 18.8412,12.0341 19.1,13",
      "505 4 --: text 10,10 h 2 (9.00 , 7.50 )",
      "506 6 - -: line -3,-4 10,10",
  };
  EXPECT_EQ(drawn(*path, &shown), expected);

  // The order command shows numbers alone, also that of a path without one.
  shown.bOrderMode = true;
  EXPECT_THAT(drawn(*path, &shown), ElementsAre(square(256), "5001 1 --: text 20,10 h 2 2"));
  path->setPathNo(0);
  EXPECT_THAT(drawn(*path, &shown), Contains("5001 1 --: text 20,10 h 2 0"));
}

TEST(PathDisplay, ValuesOfNothingShowNothing) {
  const auto path = squareHole();
  path->setOffset(0);
  path->setPathNo(3);
  Shown shown;
  shown.values.bShowReal = shown.values.bShowTool = shown.values.bShowNull = 1;
  // No offset, no clearance, no style: in the colour of the wire centre path. Coordinates of 0 or -1 decimals
  // and the move from a place that isn't known are left out.
  for (const int decimals : {-1, 0}) {
    shown.values.nCoordDecimals = decimals;
    EXPECT_THAT(drawn(*path, &shown), ElementsAre(square(3)));
  }
  const CToolPath empty;
  EXPECT_TRUE(drawn(empty, &shown).empty());
  auto point = std::make_unique<CToolPath>();
  point->setPolyline({{{{1, 1}, 0}}, false});
  point->setProcessStyle(ProcessStyle());
  point->setTaper(1);
  EXPECT_TRUE(drawn(*point, &shown).empty());
}

TEST(PathDisplay, ArrowsPointInCuttingDirectionOnTheWiresSide) {
  Shown shown;
  shown.values.bShowArrow = 1;
  const auto shaft = [&](const CToolPath& path) {
    for (const std::string& line : drawn(path, &shown))
      if (line.starts_with("502 ")) return line;
    return std::string();
  };
  // Clockwise about the square from (0,10) upward: the wire outside of it is on the left.
  EXPECT_EQ(shaft(*squarePunch()), "502 4 --: line -1,10 -1,13");
  // Quarters about (0,0): the wire at radius 9, up when counter-clockwise, down when clockwise.
  EXPECT_EQ(shaft(*roundHole(kCounterClockwise)), "502 1 --: line 9,0 9,3");
  EXPECT_EQ(shaft(*roundHole(kClockwise)), "502 4 --: line 9,0 9,-3");
  // A counter-clockwise hole that is entered on a dent: a half circle from (0,0) to (0,10), bulge -1, about
  // (0,5), bowing to the left. The wire keeps 1 mm farther into the hole, towards the left of travel.
  const auto dent = stored(
      {.vertices = {{{-3, 0}, 0}, {{0, 0}, -1}, {{0, 10}, 0}, {{-20, 10}, 0}, {{-20, 0}, 0}, {{0, 0}, 0}},
       .dOffset = 1});
  EXPECT_EQ(shaft(*dent), "502 1 --: line 0,-1 -3,-1");
}

TEST(PathDisplay, ArcsAreDrawnThroughTheirMiddle) {
  const auto path = roundHole(kCounterClockwise);
  Shown shown;
  shown.values.bShowTool = 1;
  // Quarters at radius 9; the middles lie at 45 degrees: 9 * 0.70711 = 6.36396.
  EXPECT_THAT(drawn(*path, &shown),
              ElementsAre("-1 256 as it is: line 0,0 10,0", "-1 256 as it is: arc 10,0 7.0711,7.0711 0,10",
                          "-1 256 as it is: arc 0,10 -7.0711,7.0711 -10,0",
                          "-1 256 as it is: arc -10,0 -7.0711,-7.0711 0,-10",
                          "-1 256 as it is: arc 0,-10 7.0711,-7.0711 10,0", "300 3 --: line 0,0 9,0",
                          "301 3 --: arc 9,0 6.364,6.364 0,9", "302 3 --: arc 0,9 -6.364,6.364 -9,0",
                          "303 3 --: arc -9,0 -6.364,-6.364 0,-9", "304 3 --: arc 0,-9 6.364,-6.364 9,0"));
}

TEST(PathDisplay, Tapers) {
  const auto path = squareHole();
  Shown shown;
  // Three letters of height 3: the ring's radius is 3 * 3 / 2; the text starts 1.5 right of its left and 1.5
  // below the threading point. A single letter counts as two.
  path->setTaper(0.5);
  EXPECT_THAT(drawn(*path, &shown),
              ElementsAre(square(256), "5002 1 -: text 7,8.5 h 3 0.5", "502 2 -: circle 10,10 r 4.5"));
  path->setTaper(5);
  EXPECT_THAT(drawn(*path, &shown),
              ElementsAre(square(256), "5002 1 -: text 8.5,8.5 h 3 5", "502 2 -: circle 10,10 r 3"));
  // Segment 2 runs left along y 20; a positive taper is marked 0.4 to its left, below it.
  ASSERT_TRUE(path->setSegmentTaper({10, 20}, 1.5));
  EXPECT_THAT(drawn(*path, &shown), ElementsAre(square(256), "202 181 --: line 20,19.6 0,19.6",
                                                "5002 181 --: text 10,19.6 h 3 1.5"));
  const auto round = roundHole(kCounterClockwise);
  ASSERT_TRUE(round->setSegmentTaper(acutPolar({0, 0}, 0.3, 10), -2));
  const Lines lines = drawn(*round, &shown);
  EXPECT_THAT(lines, Contains("201 181 --: arc 9.6,0 6.7882,6.7882 0,9.6"));  // 9.6 * 0.70711
  EXPECT_THAT(lines, Contains("5002 181 --: text 7.0711,7.0711 h 3 -2"));     // on the contour
}

TEST(PathDisplay, MarksOfAStyledPath) {
  const auto path = squareHole();
  ProcessStyle style;
  style.dValueC = 1;
  style.nCode = 304;  // colour 3
  path->setProcessStyle(style);
  Shown shown;
  shown.values.bShowTool = shown.values.bShowReal = 1;  // not for a styled path
  shown.values.dCutoffLen = 2;
  shown.values.dOvercutLen = 1.5;
  shown.values.dOvercutExit = 0;
  // The wire walks the square from 1 to 19, entered at (19,10). The pause lies 2 before it; the overcut
  // leaves 1.5 after it, at a right angle into the hole, by half of the 9 mm from (10,10) to (19,10).
  const Lines expected = {square(3),
                          "0 132 --: line 19.6,10 19.6,19.6",
                          "0 132 --: line 19.6,19.6 0.4,19.6",
                          "0 132 --: line 0.4,19.6 0.4,0.4",
                          "0 132 --: line 0.4,0.4 19.6,0.4",
                          "0 132 --: line 19.6,0.4 19.6,10",
                          "1000 1 --: circle 19,8 r 0.2",
                          "1001 2 --: line 19,11.5 14.5,11.5"};
  EXPECT_EQ(drawn(*path, &shown), expected);
  // A set exit length holds; what doesn't fit on its segment of 9 mm isn't shown.
  shown.values.dOvercutExit = 0.7;
  EXPECT_THAT(drawn(*path, &shown), Contains("1001 2 --: line 19,11.5 18.3,11.5"));
  shown.values.dCutoffLen = shown.values.dOvercutLen = 9.5;
  EXPECT_EQ(drawn(*path, &shown).size(), 6u);

  // On an arc the exit runs towards the centre of the hole: X lies 9 * angle = 1.5 along, 1.5 / 9 rad.
  const auto round = roundHole(kClockwise);
  style.dValueC = 0;
  round->setProcessStyle(style);
  shown.values.dCutoffLen = 0;
  shown.values.dOvercutLen = 1.5;
  shown.values.dOvercutExit = 9;
  // cos(1/6) = 0.98614, sin(1/6) = 0.16590
  EXPECT_THAT(drawn(*round, &shown).back(), "1001 2 as it is: line 8.8753,-1.4931 0,0");
}

TEST(PathDisplay, BreakPointsOfStyledPaths) {
  StoredPath fields{.vertices = {{{0, 0}, 0}, {{5, 0}, 0}, {{5, 8}, 0}},
                    .nSide = kOuterShape,
                    .bHasStyle = true,
                    .ptBreak = {5, 2},
                    .ptBreakExit = {4, 2},
                    .ptBreakUpper = {5, 3},
                    .ptBreakUpperExit = {4, 3}};
  Shown shown;
  const std::string exit = ": line 5,2 4,2", upper = ": line 5,3 4,3";
  EXPECT_EQ(drawn(*stored(fields), &shown).size(), 1u);  // no break segment, no exit
  fields.nBreakSeg = 1;
  EXPECT_EQ(drawn(*stored(fields), &shown).back(), "1002 256 as it is" + exit);
  fields.nFlags = kFourAxis;
  EXPECT_EQ(drawn(*stored(fields), &shown).back(), "1003 256 as it is" + upper);
  // An open path on the inner side: its own exit, and neither pause nor overcut.
  fields.nFlags = kOpenPath;
  fields.nSide = kInnerHole;
  fields.bClosed = false;
  shown.values.dCutoffLen = shown.values.dOvercutLen = 1;
  EXPECT_THAT(drawn(*stored(fields), &shown),
              ElementsAre("-1 256 as it is: line 0,0 5,0 5,8", "1002 6 as it is" + exit));
}

TEST(PathDisplay, UpperContourRulingsAndGuide) {
  StoredPath fields{.vertices = {{{0, 0}, 0}, {{5, 0}, 0}, {{5, 8}, 0}},
                    .nFlags = kFourAxis,
                    .dHeight = 30,
                    .upper = {{{0, 0}, {6, 0}, {6, 8}}, {0, 1, 0}},
                    .aSyncMark = {3, 1, 2}};
  Shown shown;
  // Half a circle from (6,0) to (6,8), counter-clockwise: it bows to the right, to x 10.
  const Lines expected = {"-1 3 as it is: line 0,0 5,0 5,8", "100 240 --: line 0,0,30 6,0,30",
                          "200 2 --: line 0,0 0,0,30", "101 240 --: arc 6,0,30 10,4,30 6,8,30",
                          "201 2 --: line 5,0 6,0,30"};
  const auto path = stored(fields);
  EXPECT_EQ(drawn(*path, &shown), expected);
  shown.bShowMatchLines = true;
  EXPECT_EQ(drawn(*path, &shown), (Lines{expected[0], expected[1], expected[3]}));

  std::vector<AcGePoint3d> points;
  path->getOsnapPoints(OsnapMode::kOsModeEnd, {}, {},
                       points);  // 1: lower vertices 0 and 1; 2: upper 2, never 0
  EXPECT_THAT(points, ElementsAre(AcGePoint3d{0, 0, 0}, AcGePoint3d{5, 0, 0}, AcGePoint3d{6, 8, 30}));
  points.clear();
  path->getOsnapPoints(OsnapMode::kOsModeMid, {5, 3, 0}, {}, points);
  EXPECT_THAT(points, ElementsAre(AcGePoint3d{5, 4, 0}));
  points.clear();
  path->getGripPoints(points);
  ASSERT_EQ(points.size(), 6u);
  EXPECT_EQ(points[5], (AcGePoint3d{6, 8, 0}));
  EXPECT_EQ(path->moveGripPointsAt({0, 5}, {1, 1, 0}), ErrorStatus::eOk);
  EXPECT_EQ(path->moveStretchPointsAt({1}, {1, 1, 0}), ErrorStatus::eOk);
  EXPECT_EQ(path->getPointAt(0), (AcGePoint2d{0, 0}));
  EXPECT_EQ(path->getPointAt(1), (AcGePoint2d{5, 0}));

  fields.nFlags = kGuideCurve | kIsoMark64 | kAllCornersR;
  const auto guided = stored(fields);
  EXPECT_EQ(drawn(*guided, &shown),
            (Lines{expected[0], "0 240 --: line 0,0 6,0", "1 240 --: arc 6,0 10,4 6,8",
                   "0 140 --: line 0,0 5,0", "5001 3 --: text 0,0 h 3 R"}));
  EXPECT_EQ(guided->moveGripPointsAt({1}, {1, 1, 0}), ErrorStatus::eOk);
  EXPECT_EQ(guided->getPointAt(1), (AcGePoint2d{6, 1}));
}

TEST(PathDisplay, ChainsBeforeTheFirstAndAfterTheLastPath) {
  AcDbDatabase drawing;
  DrawingVars vars(drawing);
  Shown shown;
  shown.pathCount = 2;
  const auto path = squareHole();
  const auto after = [&](int number) {
    path->setPathNo(number);
    readTransitChains(drawing, shown);
    Lines lines = drawn(*path, &shown);
    lines.erase(lines.begin());
    return lines;
  };
  vars.setPoint("STARTPOINT0", {1, 1, 0});
  const Lines single = {"506 6 - -: line 0.5,1 1.5,1", "506 6 - -: line 1,0.5 1,1.5",
                        "506 6 - -: line 1,1 10,10"};
  EXPECT_EQ(after(1), single);
  EXPECT_EQ(after(2), Lines{});
  // From the highest down to the first gap: 3, 2 and no more, since 1 isn't there.
  vars.setPoint("STARTPOINT3", {4, 0, 0});
  vars.setPoint("STARTPOINT2", {6, 0, 0});
  EXPECT_EQ(after(1), (Lines{"506 6 - -: line 3.5,0 4.5,0", "506 6 - -: line 4,-0.5 4,0.5",
                             "506 6 - -: line 5.5,0 6.5,0", "506 6 - -: line 6,-0.5 6,0.5",
                             "506 6 - -: line 4,0 6,0", "506 6 - -: line 6,0 10,10"}));
  // After the last path, whose wire stands at its threading point again.
  vars.setPoint("ENDPOINT0", {30, 10, 0});
  vars.setPoint("ENDPOINT1", {30, 40, 0});
  vars.setPoint("ENDPOINT3", {99, 99, 0});
  EXPECT_EQ(after(2), (Lines{"506 6 - -: line 10,10 30,10", "506 6 - -: line 29.5,10 30.5,10",
                             "506 6 - -: line 30,9.5 30,10.5", "506 6 - -: line 29.5,40 30.5,40",
                             "506 6 - -: line 30,39.5 30,40.5", "506 6 - -: line 30,10 30,40"}));
}

TEST(PathDisplay, CodeInsertionsStandAtTheirVertices) {
  const auto path = squareHole();
  path->setCodeAt(2, "M00|G04");
  path->setCodeAt(50, "M99");  // no such vertex
  Shown shown;
  shown.pathCount = 1;
  EXPECT_THAT(drawn(*path, &shown), ElementsAre(square(256), "520 1 --: text 20,20 h 0.9 M00|G04"));
}

TEST(PathDisplay, ListTellsNumberClearanceAndOffset) {
  const auto path = squareHole();
  path->setPathNo(7);
  ASSERT_TRUE(path->setClearance(0.025));
  path->setOffset(0.11);
  Lines lines;
  path->list(lines);
  ASSERT_GE(lines.size(), 4u);
  EXPECT_THAT(Lines(lines.end() - 4, lines.end()),
              ElementsAre("  Path number: 7", "  Fit clearance: 0.025", "  Wire offset: 0.11",
                          "  Lengths are in millimetres."));
  const auto catalogue = [](int id, std::initializer_list<FormatArg> args) {
    std::string pattern = "\n  " + std::to_string(id);
    for (const FormatArg& arg : args)
      pattern += std::holds_alternative<double>(arg)      ? " %g"
                 : std::holds_alternative<long long>(arg) ? " %d"
                                                          : " %s";
    return formatChecked(pattern, args) + "\n";
  };
  // Five sides of a square of 20 mm, one of them in two halves.
  EXPECT_THAT(pathListLines(*path, catalogue),
              ElementsAre("  539 7", "  541 0.025", "  542 0.11", "  20230", "  20232", "  20234 10 10",
                          "  20235 20 10", "  20240 5 80", "  540"));
  path->setTaper(1.5);
  path->setCodeAt(2, "M00");
  path->setCodeAt(9, "M99");  // no such vertex
  PathBreak at;
  at.nBreakSeg = 4;
  at.ptBreak = {5, 0};
  path->setBreakPoint(at);
  EXPECT_THAT(pathListLines(*path, catalogue),
              IsSupersetOf({"  20236 1.5", "  20238 2 20 20 M00", "  20242 5 0"}));
  ASSERT_TRUE(path->setSegmentTaper({10, 20}, -2));
  EXPECT_THAT(pathListLines(*path, catalogue), Contains("  20237 2 20 20 -2"));
  const auto lines2 = pathListLines(*squarePunch(), catalogue);
  EXPECT_THAT(lines2, IsSupersetOf({"  20231", "  20233", "  20234 -5 10"}));
}

}  // namespace
}  // namespace tarnex
