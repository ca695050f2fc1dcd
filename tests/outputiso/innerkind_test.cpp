// Inner figures: tapers, corners that are marked, and the family whose first span stands ahead of the lead.
// Squares of 20 with their wire from (10,10) to (20,10); the rounded one has a radius of 5 at (20,20).
#include "innertest.h"

namespace tarnex {
namespace {

TEST(InnerTaper, LinesWhereItChanges) {
  InnerFigure f = squareHole().passes(1);
  for (const auto& [vertex, taper] : {std::pair{1, 3.0}, {2, 3.0}, {5, -2.0}})
    f.path->setSegmentTaperAt(vertex, taper);
  const std::string spans = "TL3.0|G01X20.Y20.|G01X0.Y20.|T0|G01X0.Y0.|G01X20.Y0.|TR2.0|",
                    overcut = "TL3.0|<10 G01X20.Y12.>|T0|";
  // The overcut lies on span 1 again: its taper, and none behind it.
  EXPECT_EQ(between(f.first(), "<3 G01X20.Y10.>|", "<11"),
            spans + "<8 G01X20.Y7.>|<9 G01X20.Y10.>|" + overcut);
  EXPECT_EQ(between(f.later(), "<13 G01X20.Y10.>|", "<18"), spans + "G01X20.Y10.|TL3.0|G01X20.Y12.|T0|");
  // A last span of the same taper needs no word between; without taper on span 1 nothing is said.
  f.path->setSegmentTaperAt(5, 3);
  EXPECT_EQ(between(f.first(), "<9 ", "<11"), "G01X20.Y10.>|<10 G01X20.Y12.>|T0|");
  f.path->setSegmentTaperAt(1, 0);
  EXPECT_EQ(between(f.first(), "<9 ", "<11"), "G01X20.Y10.>|<10 G01X20.Y12.>|");
}

TEST(InnerTaper, ArcCornersOfAllCorners) {
  InnerFigure f = roundedHole();
  f.path->setFlag(kAllCornersR, true);
  f.path->setSegmentTaperAt(3, 1);
  // The arc, span 2, has a tapered neighbour; it keeps its own lack of taper.
  EXPECT_EQ(between(f.first(), "<3 G01X20.Y10.>|", "G01X0.Y0."),
            "G01X20.Y15.|M16|G03X15.Y20.I-5.J0.|TL1.0|G01X0.Y20.|T0|");
}

// The lines of the rounded hole from the lead to (0,0).
std::string corner(InnerFigure& f) {
  return between(f.first(), "<3 G01X20.Y10.>|", "G01X0.Y0.");
}

TEST(MarkedCorner, IsCutSharpWhereItIsTapered) {
  const char *sharp = "G01X20.Y20.R5.R5.|G01X0.Y20.|", *round = "G01X20.Y15.|G03X15.Y20.I-5.J0.|G01X0.Y20.|";
  InnerFigure f = roundedHole();
  EXPECT_EQ(corner(f), round);
  f.path->setCodeAt(2, "M05");  // any text but "R" sharpens without taper too
  EXPECT_EQ(corner(f), sharp);
  f.path->setCodeAt(2, "R");
  EXPECT_EQ(corner(f), round);
  f.path->setProcessStyle(tracedStyle(0, 1));
  EXPECT_EQ(corner(f), sharp);
  f.passes(0);
  f.path->setSegmentTaperAt(2, 2);  // the arc's own taper doesn't count
  EXPECT_EQ(corner(f), "G01X20.Y15.|TL2.0|G03X15.Y20.I-5.J0.|T0|G01X0.Y20.|");
  f.path->setSegmentTaperAt(2, 0);
  f.path->setSegmentTaperAt(3, 2);
  EXPECT_EQ(corner(f), "G01X20.Y20.R5.R5.|TL2.0|G01X0.Y20.|T0|");
  f.path->setSegmentTaperAt(3, 0);
  f.path->setSegmentTaperAt(1, 2);
  EXPECT_EQ(corner(f), "TL2.0|G01X20.Y20.R5.R5.|T0|G01X0.Y20.|");
  f.path->removeCodeAt(2);
  f.path->setCodeAt(1, "M05");  // a straight span is no corner
  EXPECT_EQ(corner(f), "TL2.0|G01X20.Y15.|T0|G03X15.Y20.I-5.J0.|G01X0.Y20.|");
}

// Entered at (5,20), the last span comes from the corner: in incremental output too it starts at (20,20),
// where the wire stands, 12 mm from the stop 3 mm before the end.
TEST(MarkedCorner, TheLastSpanGoesOnFromIt) {
  InnerFigure f;
  ASSERT_TRUE(f.path->initContour(
      {{5, 10}, {5, 20}, kInnerHole, kCounterClockwise, 0, 0},
      {{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 15}, kQuarter}, {{15, 20}, 0}, {{0, 20}, 0}}, true}, 3));
  f.path->setCodeAt(5, "M05");
  EXPECT_EQ(between(f.incremental().first(), "|G01X20.Y0.|", "<10"),
            "G01X0.Y20.R5.R5.|<8 G01X-12.Y0.>|<9 G01X-3.Y0.>|");
}

TEST(MarkedCorner, LaterPassesLookAtTheTaperOfThePassBefore) {
  InnerFigure f = roundedHole();
  f.path->setCodeAt(2, "R");
  ProcessStyle style = tracedStyle(2);
  style.passOffset[1] = 1;  // of the first later pass, and thus of the second one's corners
  f.path->setProcessStyle(style);
  const std::string passes = f.laterOnly();
  EXPECT_EQ(count(f.first(), "R5."), 0);
  EXPECT_EQ(count(passes, "G03X15."), 1);
  EXPECT_LT(passes.find("G03X15."), passes.find("G01X20.Y20.R5.R5.|G01X0.Y20.|"));
}

TEST(MarkedCorner, WithoutASharpPointTheArcStays) {
  // Half a circle between parallel spans.
  InnerFigure slot;
  ASSERT_TRUE(slot.path->initContour({{10, 10}, {10, 0}, kInnerHole, kCounterClockwise, 0, 0},
                                     {{{{0, 0}, 0}, {{20, 0}, 1}, {{20, 20}, 0}, {{0, 20}, 0}}, true}, 0));
  slot.path->setCodeAt(2, "M05");
  EXPECT_EQ(between(slot.first(), "<3 G01X10.Y0.>|", "G01X0.Y0."),
            "G01X20.Y0.|G03X20.Y20.I0.J10.|G01X0.Y20.|");
  // An arc at the end of the contour has no span behind it.
  InnerFigure last;
  ASSERT_TRUE(last.path->initContour(
      {{10, 10}, {15, 20}, kInnerHole, kCounterClockwise, 0, 0},
      {{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 15}, kQuarter}, {{15, 20}, 0}, {{0, 20}, 0}}, true}, 2));
  last.path->setCodeAt(5, "M05");
  last.settings.dCutoffLen = 0;
  EXPECT_EQ(between(last.first(), "G01X20.Y0.|", "<10"), "G01X20.Y15.|<9 G03X15.Y20.I-5.J0.>|");
  last.passes(1);
  EXPECT_EQ(between(last.laterOnly(), "G01X20.Y0.|", "G01X13."), "G01X20.Y15.|G03X15.Y20.I-5.J0.|");
}

TEST(SpanAhead, ByFigure) {
  InnerFigure f = squareHole(kFamilySignedUnits).passes(1);
  EXPECT_EQ(f.first(),
            ">|G01X+020000Y+020000G44|<2 G01X+019500Y+010000>|<3 G01X+020000Y+010000>|"
            "G01X+000000Y+020000G44|G01X+000000Y+000000|G01X+020000Y+000000|"
            "<8 G01X+020000Y+007000>|<9 G01X+020000Y+010000>|<10 G01X+020000Y+012000>|"
            "<11 G01X+019000Y+010000>|");
  EXPECT_EQ(f.later(),
            "<13 G01X+020000Y+020000G44|G01X+020000Y+010000>|G01X+000000Y+020000G44|"
            "G01X+000000Y+000000|G01X+020000Y+000000|G01X+020000Y+010000|G01X+020000Y+012000|"
            "<18 G01X+019000Y+012000>|<19 G00X+010000Y+010000>|");
  // A lead without split has the rapid row alone.
  f.settings.dIsoOvercut = 0;
  EXPECT_EQ(between(f.first(), "G44|", "G01X+000000"), "<2 G01X+020000Y+010000>|");
}

TEST(SpanAhead, ByPass) {
  InnerFigure f = squareHole(kFamilySignedUnits).passes(1).byPass().returning();
  EXPECT_EQ(between(f.first(1), "", "<2"), "<14 >|G01X+020000Y+020000G44|");
  EXPECT_EQ(between(f.later(), "", "G01X+000000Y"), "<17 G01X+020000Y+020000G44|G01X+020000Y+010000>|");
}

TEST(SpanAhead, ASharpCornerTakesTheMarkInTheFirstPassByFigureAlone) {
  InnerFigure f = roundedHole(kFamilySignedUnits).passes(1);
  f.path->setCodeAt(2, "M05");
  // The arc behind it still has its turn, from the corner: half its chord of 5 to the left and below.
  const std::string sharp = "G01X+020000Y+020000R+005000R+005000",
                    arc = "G03X+015000Y+020000I-002500J-002500G44|";
  EXPECT_EQ(between(f.first(), ">|", "|<2"), sharp + "G44");
  EXPECT_EQ(between(f.first(), "<3 G01X+020000Y+010000>|", "G01X+000000Y+020000"), arc);
  EXPECT_EQ(between(f.later(), "<13 ", "G01X+000000Y+020000"), sharp + "|G01X+020000Y+010000>|" + arc);
  f.byPass();
  EXPECT_EQ(between(f.first(), ">|", "|<2"), sharp);
  EXPECT_EQ(between(f.later(), "<17 ", "|"), sharp);
}

// Half a circle and its chord, from (10,0) on: with the arc ahead of the lead, the chord is first and last.
TEST(SpanAhead, TheMarkGoesOnTheLastSpanWhereNoOtherIsLeft) {
  InnerFigure f(kFamilySignedUnits);
  ASSERT_TRUE(f.path->initContour({{0, 5}, {10, 0}, kInnerHole, kCounterClockwise, 0, 0},
                                  {{{{-10, 0}, 0}, {{10, 0}, 1}}, true}, 0));
  const auto end = [&f](double stop) {
    f.settings.dCutoffLen = stop;
    return between(f.first(), "<3 G01X+010000Y+000000>|", "<10");
  };
  EXPECT_EQ(between(f.first(), ">|", "|<2"), "G03X-010000Y+000000I-010000J+000000G44");
  EXPECT_EQ(end(3), "<8 G01X+007000Y+000000G44>|<9 G01X+010000Y+000000>|");
  EXPECT_EQ(end(21), "<8 >|<9 G01X+010000Y+000000>|");
  EXPECT_EQ(end(0), "<9 G01X+010000Y+000000G44>|");
}

TEST(SpanAhead, OtherFamiliesHaveNone) {
  for (int family : {-1, 0, 1, 2, 9})
    EXPECT_EQ(between(squareHole(family).first(), "", "G01X0."),
              "<1 X10.Y10.>|<2 G01X19.5Y10.>|<3 G01X20.Y10.>|G01X20.Y20.|")
        << family;
}

}  // namespace
}  // namespace tarnex
