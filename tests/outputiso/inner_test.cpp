// Inner figures: order of rows and moves of first and later passes, leads, stop points, overcuts, exits.
// Square hole: V0 (10,10), V1 (20,10), then (20,20), (0,20), (0,0), (20,0) and V1 again; waste is inside.
#include "innertest.h"

namespace tarnex {
namespace {

const std::string kFourSpans = "G01X20.Y20.|G01X0.Y20.|G01X0.Y0.|G01X20.Y0.|";
const std::string kLead = "<2 G01X19.5Y10.>|<3 G01X20.Y10.>|";

TEST(InnerFigure, ByFigureBesideTheContour) {
  InnerFigure f = squareHole().passes(2);
  // Stop 3 mm ahead of the end, overcut of 2 mm, retreat of 1 mm to the inside.
  EXPECT_EQ(f.first(), "<1 X10.Y10.>|" + kLead + kFourSpans +
                           "<8 G01X20.Y7.>|<9 G01X20.Y10.>|<10 G01X20.Y12.>|<11 G01X19.Y10.>|");
  EXPECT_EQ(f.run.nFigureNo, 1);
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(19, 10));  // beside the entry, also behind the overcut
  const std::string pass = "<13 G01X20.Y10.>|" + kFourSpans + "G01X20.Y10.|G01X20.Y12.|<18 G01X19.Y12.>|";
  EXPECT_EQ(f.later(), pass + pass + "<19 G00X10.Y10.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(10, 10));
  // Later figures begin with a row of their own, and a figure without later passes still ends.
  f.passes(0);
  EXPECT_EQ(between(f.first(4), "", "<2 "), "<22 >|");
  EXPECT_EQ(f.run.nFigureNo, 5);
  EXPECT_EQ(f.later(), "<19 G00X10.Y10.>|");
}

TEST(InnerFigure, ByPassHome) {
  InnerFigure f = squareHole().passes(2).byPass().returning();
  EXPECT_EQ(f.first(1), "<14 >|" + kLead + kFourSpans +
                            "<8 G01X20.Y7.>|<9 G01X20.Y10.>|<10 G01X20.Y12.>|<11 G01X10.Y10.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(10, 10));
  const std::string pass = "<17 G01X20.Y10.>|" + kFourSpans + "G01X20.Y10.|G01X20.Y12.|<22 G01X10.Y10.>|";
  EXPECT_EQ(f.later(), "<14 >|" + pass + pass);
}

TEST(InnerFigure, VectorsOfIncrementalOutput) {
  const std::string around = "G01X0.Y10.|G01X-20.Y0.|G01X0.Y-20.|G01X20.Y0.|";
  InnerFigure f = squareHole().passes(2).byPass().incremental().param(28, "1");
  // The retreat leads beside the entry point, from the overcut's end (20,12).
  EXPECT_EQ(f.first(1), "<14 >|<2 G01X9.5Y0.>|<3 G01X0.5Y0.>|" + around +
                            "<8 G01X0.Y7.>|<9 G01X0.Y3.>|<10 G01X0.Y2.>|<11 G01X-1.Y-2.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(19, 10));
  // The first later pass comes from the threading point, the next from beside the entry, where the one before
  // it ended: without overcut. At last (10,10) less the entry's exit (19,10).
  EXPECT_EQ(f.later(), "<14 >|<17 G01X10.Y0.>|" + around + "G01X0.Y10.|<22 G01X-1.Y0.>|<17 G01X1.Y0.>|" +
                           around + "G01X0.Y10.|<22 G01X-1.Y0.>|<23 G00X-9.Y0.>|");
}

TEST(InnerFigure, LeadKinds) {
  struct Case {
    int leaderType, flags, option792;
    double piece;  // dIsoOvercut of a lead of 10 mm
    const char* lead;
  };
  // Arcs of 90 degrees end at (20,10), upward: they begin as far below (20 - piece, 10) as that is left of
  // it.
  const char *arc2 = "<2 G01X18.Y10.>|<3 G01X18.Y8.>|G03X20.Y10.I0.J2.|",
             *straight2 = "<2 G01X18.Y10.>|<3 G01X20.Y10.>|", *whole = "<2 <3 G01X20.Y10.>>|",
             *arc5 = "<2 G01X15.Y10.>|<3 G01X15.Y5.>|G03X20.Y10.I0.J5.|";
  for (const Case& c : {Case{0, 0, 0, 2, straight2},
                        {0, 0, 0, 10, "<2 G01X10.Y10.>|<3 G01X20.Y10.>|"},
                        {0, 0, 0, 12, whole},
                        {0, 0, 0, 0, whole},
                        {1, 0, 0, 2, arc2},
                        {1, 0, 0, 12, arc5},  // split in the middle
                        {1, 0, 0, 10, arc5},
                        {1, 0, 0, 0.1, arc5},
                        {1, 0, 0, 0, arc5},
                        {1, 0, 0, 0.2, "<2 G01X19.8Y10.>|<3 G01X19.8Y9.8>|G03X20.Y10.I0.J0.2|"},
                        {1, 0, 0, 0.19, "<2 G01X19.81Y10.>|<3 G01X20.Y10.>|"},
                        {2, 0, 0, 2, straight2},
                        {1, kIsoMark64, 0, 2, straight2},
                        {0, kIsoMark64, 1, 2, arc2},
                        {0, kIsoMark64, 1, 12, whole},
                        {1, kAutoFixed, 1, 2, straight2},
                        {1, kAutoFixed | kIsoMark64, 1, 2, straight2}}) {
    InnerFigure f = squareHole();
    f.nLeaderType = c.leaderType;
    f.path->setFlag(c.flags, true);
    f.settings.nIsoOption792 = c.option792;
    f.settings.dIsoOvercut = c.piece;
    EXPECT_EQ(between(f.first(), "<1 X10.Y10.>|", "G01X20.Y20."), c.lead) << c.leaderType << c.piece;
  }
}

// Arcs of 90 degrees in and out, of 2 mm and 1 mm.
InnerFigure arcLeads(InnerFigure f) {
  f.nLeaderType = 1;
  f.settings.dIsoOvercut = 2;
  return f;
}

TEST(InnerFigure, ArcsHome) {
  const std::string in = "G01X18.Y8.|G03X20.Y10.I0.J2.|", around = kFourSpans + "G01X20.Y10.|";
  // Out from the overcut's end (20,12) about (19,12), to its top and down to that centre.
  InnerFigure f = arcLeads(squareHole().passes(1).returning());
  EXPECT_EQ(behind(f.first(), "<10 G01X20.Y12.>|"), "G03X19.Y13.I-1.J0.|<11 G01X19.Y12.>|G01X10.Y10.|");
  EXPECT_EQ(f.later(), "<13 G01X18.Y10.>|" + in + around +
                           "G01X20.Y12.|G03X19.Y13.I-1.J0.|<18 G01X19.Y12.|G01X10.Y10.>|");
  // Without overcut in the later pass: out from the contour's end.
  f.param(28, "1");
  EXPECT_EQ(f.laterOnly(),
            "<13 G01X18.Y10.>|" + in + around + "G03X19.Y11.I-1.J0.|<18 G01X19.Y10.|G01X10.Y10.>|");
  // Overcut in the last pass alone: the first leaves from the contour's end too.
  f.param(28, "2");
  EXPECT_EQ(behind(f.first(), "<9 G01X20.Y10.>|"), "G03X19.Y11.I-1.J0.|<11 G01X19.Y10.>|G01X10.Y10.|");
}

TEST(InnerFigure, ArcsBeside) {
  const std::string in = "|<13 G01X18.Y8.>|G03X20.Y10.I0.J2.|", around = kFourSpans + "G01X20.Y10.|";
  InnerFigure f = arcLeads(squareHole().passes(1));
  // From the overcut's end (20,12) about its exit (19,12).
  EXPECT_EQ(behind(f.first(), "<10 G01X20.Y12.>|"), "G03X19.Y13.I-1.J0.|<11 G01X19.Y12.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(19, 12));
  EXPECT_EQ(f.later(), "G01X18.Y10." + in + around +
                           "G01X20.Y12.|G03X19.Y13.I-1.J0.|<18 G01X19.Y12.>|<19 G00X10.Y10.>|");
  f.param(28, "1");
  EXPECT_EQ(f.laterOnly(),
            "G01X18.Y10." + in + around + "G03X19.Y11.I-1.J0.|<18 G01X19.Y10.>|<19 G00X10.Y10.>|");
  // Passes in turn: the wire was threaded anew.
  EXPECT_EQ(between(f.byPass().laterOnly(), "", "G03X20."), "<14 >|<17 G01X18.Y10.>|G01X18.Y8.|");
}

TEST(InnerFigure, ClockwiseArcsAreTheMirrorImage) {
  InnerFigure f = arcLeads(InnerFigure().returning());
  ASSERT_TRUE(f.path->initContour({{10, 10}, {20, 10}, kInnerHole, kClockwise, 0, 0},
                                  {{{{0, 0}, 0}, {{0, 20}, 0}, {{20, 20}, 0}, {{20, 0}, 0}}, true}, 2));
  EXPECT_EQ(f.first(),
            "<1 X10.Y10.>|<2 G01X18.Y10.>|<3 G01X18.Y12.>|G02X20.Y10.I0.J-2.|"
            "G01X20.Y0.|G01X0.Y0.|G01X0.Y20.|G01X20.Y20.|<8 G01X20.Y13.>|<9 G01X20.Y10.>|"
            "<10 G01X20.Y8.>|G02X19.Y7.I-1.J0.|<11 G01X19.Y8.>|G01X10.Y10.|");
  EXPECT_EQ(f.run.ptBreakExit, AcGePoint2d(19, 8));
}

TEST(InnerFigure, ExitLengths) {
  struct Case {
    double exit;
    const char* retreat;  // from (20,12): straight beside the entry, or by an arc beside where it stands; a
                          // lead of 10 mm
  };
  for (const Case& c : {Case{0.2, "<11 G01X19.8Y10.>|"},
                        {0.21, "G03X19.79Y12.21I-0.21J0.|<11 G01X19.79Y12.>|"},
                        {0, "G03X15.Y17.I-5.J0.|<11 G01X15.Y12.>|"},
                        {-1, "G03X15.Y17.I-5.J0.|<11 G01X15.Y12.>|"},
                        {10, "G03X10.Y22.I-10.J0.|<11 G01X10.Y12.>|"},
                        {10.1, "G03X15.Y17.I-5.J0.|<11 G01X15.Y12.>|"}}) {
    InnerFigure f = squareHole();
    f.nLeaderType = 1;
    f.settings.dOvercutExit = c.exit;
    EXPECT_EQ(behind(f.first(), "<10 G01X20.Y12.>|"), c.retreat) << c.exit;
  }
}

TEST(InnerFigure, StopPoints) {
  struct Case {
    double stop;  // the last span is 10 mm long
    const char* end;
    bool bTooLong;
  };
  for (const Case& c : {Case{3, "<8 G01X20.Y7.>|<9 G01X20.Y10.>|", false},
                        {10, "<8 G01X20.Y0.>|<9 G01X20.Y10.>|", false},
                        {10.001, "<8 >|<9 G01X20.Y10.>|", true},
                        {0, "<9 G01X20.Y10.>|", false},
                        {-1, "<9 G01X20.Y10.>|", false}}) {
    InnerFigure f = squareHole();
    f.settings.dCutoffLen = c.stop;
    EXPECT_EQ(between(f.first(), "G01X20.Y0.|", "<10"), c.end) << c.stop;
    EXPECT_EQ(f.run.bStopTooLong, c.bTooLong);
  }
}

TEST(InnerFigure, OvercutRules) {
  // Overcuts of the first pass, and of the two later ones.
  for (const auto& [rule, first, later] :
       {std::tuple{"0", 1, "11"}, {"", 1, "11"}, {"1", 1, "00"}, {"2", 0, "01"}, {"3", 0, "00"}}) {
    InnerFigure f = squareHole().passes(2).returning().param(28, rule);
    EXPECT_EQ(count(f.first(), "<10 G01X20.Y12.>|<11 G01X10.Y10.>|"), first) << rule;
    const std::string passes = f.later(), behind = passes.substr(passes.rfind("<13"));
    const std::string overcut = "|G01X20.Y12.|<18 G01X10.Y10.>|";
    EXPECT_EQ(count(passes, overcut) - count(behind, overcut), later[0] - '0') << rule;
    EXPECT_EQ(count(behind, overcut), later[1] - '0') << rule;
    EXPECT_EQ(f.run.ptBreak, AcGePoint2d(20, 12)) << rule;
  }
  // Nobody cuts it: the wire leaves from the entry point.
  InnerFigure none = squareHole().returning().incremental().param(28, "2");
  EXPECT_EQ(behind(none.first(), "<9 G01X0.Y3.>|"), "<11 G01X-10.Y0.>|");
}

TEST(InnerFigure, OvercutLengths) {
  const auto end = [](InnerFigure f, double length) {
    f.settings.dOvercutLen = length;
    f.first();
    return f.run;
  };
  EXPECT_NEAR(end(squareHole(), 9.999).ptBreak.y, 19.999, 1e-9);
  EXPECT_EQ(end(squareHole(), 10).ptBreak, AcGePoint2d(20, 15));  // span 1 is 10 mm long
  EXPECT_EQ(end(squareHole(), 0).ptBreak, AcGePoint2d(20, 10));
  EXPECT_EQ(end(squareHole(), 0).ptBreakExit, AcGePoint2d(19, 10));
  InnerFigure without = squareHole().passes(1);
  without.settings.dOvercutLen = 0;
  EXPECT_EQ(behind(without.laterOnly(), "G01X20.Y0.|"), "G01X20.Y10.|<18 G01X19.Y10.>|<19 G00X10.Y10.>|");
  InnerFigure marked = squareHole();
  marked.path->setFlag(kIsoMark64, true);
  EXPECT_EQ(end(marked, 2).dOvercutLen, 2);
  marked.settings.nIsoOption796 = 1;
  EXPECT_EQ(end(marked, 2).dOvercutLen, 0);
  EXPECT_EQ(count(marked.first(), "<10"), 0);
  InnerFigure open;
  ASSERT_TRUE(open.path->initOpen({{-5, 0}}, {{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}}, false}));
  open.path->setFlag(kOpenPath, false);
  EXPECT_EQ(end(open, 2).dOvercutLen, 0);
}

// A circle of radius 10 about its threading point (0,0) in four arcs, from (10,0) on.
TEST(InnerFigure, CirclePathAndArcContour) {
  const double kThirty = 10 * kPi / 6;  // mm of 30 degrees; its point is (8.660,5)
  InnerFigure circle = InnerFigure().returning();
  ASSERT_TRUE(circle.path->initCircle({{0, 0}, {10, 0}, kInnerHole, kCounterClockwise, 0, 0}, {0, 0}, 10, 4));
  circle.settings.dCutoffLen = circle.settings.dOvercutLen = kThirty;
  const std::string arcs = "G03X0.Y10.I-10.J0.|G03X-10.Y0.I0.J-10.|G03X0.Y-10.I10.J0.|";
  EXPECT_EQ(circle.first(), "<1 X0.Y0.>|<2 G01X9.5Y0.>|<3 G01X10.Y0.>|" + arcs +
                                "<8 G03X8.66Y-5.I0.J10.>|<9 G03X10.Y0.I-8.66J5.>|<10 G03X8.66Y5.I-10.J0.>|"
                                "<11 G01X0.Y0.>|");
  // The exit leads 1 mm towards the centre.
  EXPECT_LT(circle.run.ptBreakExit.distanceTo(acutPolar({0, 0}, kPi / 6, 9)), 1e-9);
  InnerFigure clockwise;
  ASSERT_TRUE(clockwise.path->initCircle({{0, 0}, {10, 0}, kInnerHole, kClockwise, 0, 0}, {0, 0}, 10, 4));
  clockwise.settings.dOvercutLen = kThirty;
  clockwise.first();
  EXPECT_LT(clockwise.run.ptBreakExit.distanceTo(acutPolar({0, 0}, -kPi / 6, 9)), 1e-9);
  // An arc is 15.708 mm long. A longer overcut is none on a circle, half an arc on any other contour.
  circle.settings.dOvercutLen = 16;
  EXPECT_EQ(behind(circle.first(), "<9 G03X10.Y0.I-8.66J5.>|"), "<11 G01X0.Y0.>|");
  EXPECT_EQ(circle.run.ptBreak, circle.run.ptReEntry);
  EXPECT_EQ(circle.run.dOvercutBulgeB, kQuarter);

  InnerFigure contour = InnerFigure().returning();
  ASSERT_TRUE(contour.path->initContour(
      {{0, 0}, {10, 0}, kInnerHole, kCounterClockwise, 0, 0},
      {{{{10, 0}, kQuarter}, {{0, 10}, kQuarter}, {{-10, 0}, kQuarter}, {{0, -10}, kQuarter}}, true}, 0));
  contour.settings.dCutoffLen = 0;
  contour.settings.dOvercutLen = 16;
  EXPECT_EQ(behind(contour.first(), arcs),
            "<9 G03X10.Y0.I0.J10.>|<10 G03X7.071Y7.071I-10.J0.>|<11 G01X0.Y0.>|");
}

TEST(InnerFigure, LaterPassesAreThoseOfTheStyle) {
  for (const auto& [last, passes] : {std::pair{0, 0}, {1, 1}, {9, 9}, {-2, 2}, {10, 9}, {-32768, 9}})
    EXPECT_EQ(count(squareHole().passes(last).laterOnly(), "<13 "), passes) << last;
  // Each with its own record, compensation to the left of travel in all: waste and travel don't change.
  InnerFigure f = squareHole().passes(3);
  f.iso.post.blockRow[3 * 13] = "<13 V1V3 ";
  const std::string program = f.laterOnly();
  for (const char* head : {"<13 G41C1 G01", "<13 G41C2 G01", "<13 G41C3 G01"})
    EXPECT_EQ(count(program, head), 1) << head;
}

TEST(InnerFigure, GuideCurveComesFirst) {
  InnerFigure f = squareHole();
  f.path->setGuide({{{{10, 10}, 0}, {{12, 10}, 0}, {{12, 14}, 1}, {{12, 10}, 0}}, false});
  EXPECT_EQ(between(f.first(), "<1 X10.Y10.>|", "<2 "), "G01X12.Y10.|G01X12.Y14.|G03X12.Y10.I0.J-2.|");
}

TEST(InnerFigure, WhatCannotBeWritten) {
  InnerFigure f = squareHole();
  f.path->setFlag(kFourAxis, true);
  EXPECT_EQ(f.first() + f.later(), "");
  EXPECT_EQ(f.result, FigureWritten::kFourAxis);
  EXPECT_EQ(f.run.nFigureNo, 0);
  InnerFigure empty;
  EXPECT_EQ(empty.first(), "|no path|");
  EXPECT_EQ(empty.later(), "|no path|");
  EXPECT_EQ(empty.result, FigureWritten::kNoPath);
}

}  // namespace
}  // namespace tarnex
