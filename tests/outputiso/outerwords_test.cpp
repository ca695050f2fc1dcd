// Outer figures on controls that want words of their own: family 5 with the first span ahead of the lead,
// tapers and corners of the others. And breaks where none should be.
#include "outertest.h"

namespace tarnex {
namespace {

constexpr int kOther = 2;
constexpr double kQuarter = 0.41421356237309503;  // tan(90°/4)
const std::string kSupplier =
    "阿奇程序特殊情况，请不要使用此程序，联系开发商"
    "www.tarnex.example";

TEST(OuterFamily5, TheFirstLineThatTouchesTheContourGoesAhead) {
  const OuterProgram p = writeOuter(cornerTab(2), outerPost(5));
  EXPECT_EQ(p.first, programOf({">", "G01X+010000Y+000000G44", "<2 G01X+005000Y-001000>",
                                "<3 G01X+005000Y+000000>", "G01X+010000Y+010000G44", "G01X+000000Y+010000",
                                "<8 G01X+000000Y+004000>", "<9 G01X-002000Y+004000>"}));
  EXPECT_EQ(
      p.later,
      programOf({"<11 G41C1TC1 G01X+000000Y+010000G44",  // from the break, ahead of the way there
                 "G01X+000000Y+004000>", "G01X+010000Y+010000G44", "G01X+010000Y+000000",
                 "<16 G01X+005000Y+000000>", "<17 G01X+005000Y-001000>",
                 "<11 G42C2TC2 G01X+010000Y+000000G44", "G01X+005000Y+000000>", "G01X+010000Y+010000G44",
                 "G01X+000000Y+010000", "<16 G01X+000000Y+004000>", "<17 G01X-002000Y+004000>",
                 "<19 G42C0TC0 G01X+000000Y+000000G44", "G01X+000000Y+004000>", "<20 G01X+004500Y+000000G44>",
                 "<21 G42C0TC0 G01X+005000Y+000000>", "<22 G01X+005000Y-001000>"}));
}

TEST(OuterFamily5, ATabOfOnePieceMarksBothItsParts) {
  const OuterProgram p = writeOuter(square(1), outerPost(5));
  EXPECT_EQ(p.later.substr(p.later.find("<19")),
            programOf({"<19 G41C0TC0 G01X+003500Y+000000G44", "G01X+005000Y+000000>",
                       "<21 G41C0TC0 G01X+003000Y+000000G44>", "<22 G01X+003000Y-002000>"}));
}

TEST(OuterFamily5, ATabWithoutTrimPassesMarksItsSecondPiece) {
  EXPECT_EQ(writeOuter(cornerTab(0), outerPost(5)).later,
            programOf({"G01X+000000Y+000000", "<20 G01X+004500Y+000000G44>",
                       "<21 G42C0TC0 G01X+005000Y+000000>", "<22 G01X+005000Y-001000>"}));
  OuterFigure f = cornerTab(0);  // pass by pass: backward, and no head
  f.nCutType = CutType::kByPass;
  EXPECT_EQ(writeOuter(f, outerPost(5)).later,
            programOf({"G01X+000000Y+000000", "<23 G01X+000000Y+003500G44>",
                       "<24 G41C0TC0 G01X+000000Y+004000>", "<25 G01X-002000Y+004000>"}));
}

// Both ways to no stop point; the move onto a tab of one piece gets lost with it.
TEST(OuterFamily5, ATabWithoutAStopIsReportedInTheProgram) {
  OuterFigure f = square(1);
  f.stop = 0;
  OuterProgram p = writeOuter(f, outerPost(5));
  const std::string end =
      programOf({kSupplier, "<21 G41C0TC0 G01X+003000Y+000000>", "<22 G01X+003000Y-002000>"});
  EXPECT_EQ(p.later.substr(p.later.find("<17")), "<17 G01X+005000Y-001000>\n" + end);
  f.stop = 2.001;
  p = writeOuter(f, outerPost(5));
  EXPECT_EQ(p.later.substr(p.later.find("<17")), "<17 G01X+005000Y-001000>\n<20 >\n" + end);
}

TEST(OuterFamily5, LeadInOneBlockHasTheRapidRowAlone) {
  OuterFigure f = square(0);
  f.leadPiece = 5;
  EXPECT_NE(writeOuter(f, outerPost(5)).first.find("G44\n<2 G01X+005000Y+000000>\n"), std::string::npos);
}

// Told ahead, span 1 ends at the break, and the pass goes on behind it to the entry point.
TEST(OuterFamily5, ABreakOnSpan1DoesNotEndTheFirstPass) {
  OuterFigure f = square(1);
  f.ptBreak = {8, 0};
  f.ptBreakExit = {8, -2};
  const OuterProgram p = writeOuter(f, outerPost(5));
  EXPECT_EQ(p.first, programOf({">", "<8 G01X+008000Y+000000G44>", "<2 G01X+005000Y-001000>",
                                "<3 G01X+005000Y+000000>", "G01X+010000Y+010000G44", "G01X+000000Y+010000",
                                "G01X+000000Y+000000", "G01X+005000Y+000000", "<9 G01X+008000Y-002000>"}));
  EXPECT_FALSE(p.run.bStoppedAtBreak);
  EXPECT_EQ(p.run.nBreakSeg, 1);
}

// A corner of radius 2 about (8,2), which runs without taper, in a contour whose other spans have
// 2 degrees, but 4 along the top and 3 at the end.
OuterFigure tapered(int later) {
  OuterFigure f;
  f.lists = listsOf({{5, -3}, {5, 0}, {8, 0}, {10, 2}, {10, 10}, {0, 10}, {0, 0}, {5, 0}},
                    {0, 0, kQuarter, 0, 0, 0, 0, 0}, {0, 2, 0, 2, 4, 2, 3, 0});
  f.ptBreak = {0, 4};
  f.ptBreakExit = {-2, 4};
  f.style = tracedStyle(later, 2);
  f.nFlags = kAllCornersR;
  return f;
}

TEST(OuterTaper, CornersAreAWordOrALine) {
  OuterProgram p = writeOuter(tapered(0), outerPost(kFamilyCornerWords));
  EXPECT_EQ(p.first, programOf({"<1 X5.Y-3.>", "<2 G01X5.Y-1.>", "<3 G01X5.Y0.>", "TL2.0", "G01X8.Y0.", "T0",
                                "G03X10.Y2.I0.J2.r2.", "TL2.0", "G01X10.Y10.", "TL4.0", "G01X0.Y10.",
                                "<8 TL2.0", "G01X0.Y4.>"}));
  p = writeOuter(tapered(0), outerPost(kOther));
  EXPECT_NE(p.first.find("G01X8.Y0.\nM16\nT0\nG03X10.Y2.I0.J2.\nTL2.0\n"), std::string::npos) << p.first;
  OuterFigure plain = tapered(0);
  plain.nFlags = 0;
  p = writeOuter(plain, outerPost(kOther));
  EXPECT_NE(p.first.find("G01X8.Y0.\nT0\nG03X10.Y2.I0.J2.\nTL2.0\n"), std::string::npos) << p.first;
}

TEST(OuterTaper, BackwardPassesComeFromTheOtherNeighbour) {
  const OuterProgram p = writeOuter(tapered(2), outerPost(kFamilyCornerWords));
  // From the middle of span 5, as if from span 6 with its other taper.
  EXPECT_EQ(
      p.later.substr(0, p.later.find("<11 G42")),
      programOf({"<11 G41C1 G01X0.Y4.>", "TR2.0", "G01X0.Y10.", "TR4.0", "G01X10.Y10.", "TR2.0", "G01X10.Y2.",
                 "T0", "G02X8.Y0.I-2.J0.r2.", "<16 TR2.0", "G01X5.Y0.>", "<17 G01X5.Y-1.>"}));
  // The tab begins with the taper of the break's span, and its last span's stands before the row.
  EXPECT_EQ(p.later.substr(p.later.find("<19")),
            programOf({"<19 G42C0 G01X0.Y4.>", "G01X0.Y0.", "TL3.0", "<20 G01X4.5Y0.>",
                       "<21 G42C0 G01X5.Y0.>", "<22 G01X5.Y-1.>"}));
}

TEST(OuterTaper, ThePunchsExtraPassesTakeTheirNeighboursTaper) {
  OuterFigure f = tapered(1);
  f.nFlags = kPunchJob;
  const OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later.substr(p.later.find("<19")),
            programOf({"<19 G41C0 G01X5.Y0.>", "TR3.0", "G01X0.Y0.", "TR2.0", "<20 G01X0.Y3.5>",
                       "<21 G41C0 G01X0.Y4.>", "<22 G01X-2.Y4.>", "<24 G42C1 G01X0.Y4.>", "TL2.0",
                       "G01X0.Y0.", "<25 G01X5.Y0.>", "<26 G01X5.Y-1.>"}));
}

// The way from a break on span 1 is all of a trim pass: nothing is cut twice, and no row is left out.
TEST(OuterBreak, OnSpan1) {
  OuterFigure f = square(1);
  f.ptBreak = {8, 0};
  f.ptBreakExit = {8, -2};
  const OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_NE(p.first.find("<3 G01X5.Y0.>\n<8 G01X8.Y0.>\n<9 G01X8.Y-2.>\n"), std::string::npos) << p.first;
  EXPECT_EQ(p.later.substr(0, p.later.find("<19")),
            programOf({"<11 G41C1 G01X8.Y0.>", "<16 G01X5.Y0.>", "<17 G01X5.Y-1.>"}));
}

// Where an arc begins, the first part is nothing and the second the arc itself, the way that it turns.
TEST(OuterBreak, AtTheStartOfAnArc) {
  OuterFigure f;
  f.lists = listsOf({{0, -13}, {0, -10}, {0, 10}, {0, -10}}, {0, 1, 1, 0});  // a circle in two halves
  f.ptBreak = {0, -10};
  f.ptBreakExit = {0, -12};
  const OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.run.nBreakSeg, 1);
  EXPECT_NEAR(p.run.dBreakBulgeA, 0, 1e-12);
  EXPECT_NEAR(p.run.dBreakBulgeB, 1, 1e-12);
}

TEST(OuterBreak, OffTheContourThePathsOwnSpanCounts) {
  OuterFigure f = square(1);
  f.ptBreak = {20, 20};
  f.ptBreakExit = {21, 20};
  f.nBreakSeg = 3;
  OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_FALSE(p.run.bStoppedAtBreak);
  EXPECT_NE(p.first.find("G01X0.Y0.\nG01X5.Y0.\n<9 G01X21.Y20.>\n"), std::string::npos) << p.first;
  EXPECT_EQ(p.later.substr(0, p.later.find("<19")),
            programOf({"<11 G41C1 G01X20.Y20.>", "G01X10.Y10.", "G01X10.Y0.", "<16 G01X5.Y0.>",
                       "<17 G01X5.Y-1.>"}));
  f.nBreakSeg = 99;  // held to the last span
  p = writeOuter(f, outerPost(kOther));
  EXPECT_NE(p.later.find("G01X20.Y20.>\nG01X0.Y0.\nG01X0.Y10.\n"), std::string::npos) << p.later;
}

TEST(OuterBreak, FiguresThatCannotBeWritten) {
  OuterFigure f = square(1);
  f.ptBreak = kNoBreak;
  OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.firstResult, FigureWritten::kBreakless);
  EXPECT_EQ(p.laterResult, FigureWritten::kBreakless);
  EXPECT_EQ(p.first + p.later, "");
  f.nFlags = kFourAxis;
  EXPECT_EQ(writeOuter(f, outerPost(kOther)).firstResult, FigureWritten::kFourAxis);
  f = square(1);
  f.lists = {};
  p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.firstResult, FigureWritten::kNoPath);
  EXPECT_EQ(p.first, "\nno path\n");
  EXPECT_EQ(p.later, "\nno path\n");
}

}  // namespace
}  // namespace tarnex
