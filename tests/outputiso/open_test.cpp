// Open cuts: first pass with its lead and stop point, later passes back and forth.
// The cut runs (0,0), (10,0), (10,10), threaded at (-5,0); it breaks off at its end, to (12,10).
#include "innertest.h"

namespace tarnex {
namespace {

InnerFigure openCut(int family = kOtherFamily) {
  InnerFigure f(family);
  EXPECT_TRUE(f.path->initOpen({{-5, 0}}, {{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}}, false}));
  PathBreak at;
  at.nBreakSeg = 2;
  at.ptBreak = {10, 10};
  at.ptBreakExit = {12, 10};
  f.path->setBreakPoint(at);
  return f;
}

// The first later passes, told by their compensation: waste stays on one side, travel changes.
const std::string kBack = "G42 G01X10.Y10.>|G01X10.Y0.|G01X0.Y0.|",
                  kForth = "G41 G01X0.Y0.>|G01X10.Y0.|G01X10.Y10.|";

InnerFigure& telling(InnerFigure& f) {
  f.iso.post.blockRow[3 * 13] = "<13 V1 ";
  f.iso.post.blockRow[3 * (80 + 17)] = "<17 V1 ";
  return f;
}

TEST(OpenCut, ByFigure) {
  InnerFigure f = openCut().passes(3);
  EXPECT_EQ(telling(f).first(),
            "<1 X-5.Y0.>|<2 G01X-0.5Y0.>|<3 G01X0.Y0.>|G01X10.Y0.|<8 G01X10.Y7.>|"
            "<9 G01X10.Y10.>|<11 G01X12.Y10.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(12, 10));
  const std::string back = "<13 " + kBack + "<18 G01X-5.Y0.>|";
  EXPECT_EQ(f.later(), back + "<13 " + kForth + "<18 G01X12.Y10.>|" + back);
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(-5, 0));
  EXPECT_EQ(f.passes(2).laterOnly(), back + "<13 " + kForth + "<18 G01X12.Y10.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(12, 10));
  EXPECT_EQ(f.passes(0).laterOnly(), "");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(12, 10));
}

TEST(OpenCut, ByPassTheFirstLaterPassRunsForward) {
  InnerFigure f = openCut().passes(2).byPass().returning();
  EXPECT_EQ(between(telling(f).first(1), "", "<8"), "<14 >|<2 G01X-0.5Y0.>|<3 G01X0.Y0.>|G01X10.Y0.|");
  EXPECT_EQ(f.later(), "<14 >|<17 " + kForth + "<22 G01X12.Y10.>|<17 " + kBack + "<22 G01X-5.Y0.>|");
  EXPECT_EQ(f.run.ptWireEnd, AcGePoint2d(-5, 0));
}

TEST(OpenCut, LeadsAreStraight) {
  struct Case {
    int leaderType;
    double piece;  // of a lead of 5 mm
    const char* lead;
  };
  for (const Case& c : {Case{1, 2, "<2 G01X-2.Y0.>|<3 G01X0.Y0.>|"},
                        {1, 5, "<2 G01X-2.5Y0.>|<3 G01X0.Y0.>|"},
                        {0, 5.1, "<2 <3 G01X0.Y0.>>|"},
                        {0, 0, "<2 <3 G01X0.Y0.>>|"}}) {
    InnerFigure f = openCut();
    f.path->setFlag(kIsoMark64, true);
    f.nLeaderType = f.settings.nIsoOption792 = c.leaderType;
    f.settings.dIsoOvercut = c.piece;
    EXPECT_EQ(between(f.first(), "<1 X-5.Y0.>|", "G01X10."), c.lead);
    EXPECT_FALSE(f.run.bLeadArc);
  }
}

TEST(OpenCut, StopPointsThatDoNotFitLeaveNoEmptyRow) {
  for (double stop : {0.0, 10.001}) {
    InnerFigure f = openCut();
    f.settings.dCutoffLen = stop;
    EXPECT_EQ(between(f.first(), "|G01X10.Y0.|", "<11"), "<9 G01X10.Y10.>|");
    EXPECT_EQ(f.run.bStopTooLong, stop > 0);
  }
}

TEST(OpenCut, WithoutABreakItEndsAtItsEnd) {
  InnerFigure f = openCut().passes(1).incremental();
  f.path->setBreakPoint({});
  EXPECT_EQ(behind(f.first(), "<9 G01X0.Y3.>|"), "<11 G01X0.Y0.>|");
  EXPECT_EQ(f.later(), "<13 G01X0.Y0.>|G01X0.Y-10.|G01X-10.Y0.|<18 G01X-5.Y0.>|");
}

// (0,0), (10,0), round a corner of 5 to (15,5), (15,10): tapered but on the arc.
TEST(OpenCut, TapersAndCornersInBothDirections) {
  InnerFigure f(0);
  ASSERT_TRUE(
      f.path->initOpen({{-5, 0}}, {{{{0, 0}, 0}, {{10, 0}, kQuarter}, {{15, 5}, 0}, {{15, 10}, 0}}, false}));
  f.path->setFlag(kAllCornersR, true);
  f.path->setSegmentTaperAt(1, 1);
  f.path->setSegmentTaperAt(3, 1);
  f.passes(2);
  const std::string forth = "TL1.0|G01X10.Y0.|T0|G03X15.Y5.I0.J5.r5.|TL1.0|";
  EXPECT_EQ(between(f.first(), "<3 G01X0.Y0.>|", "<9"), forth + "<8 G01X15.Y7.>|");
  const std::string later = f.later();
  EXPECT_EQ(between(later, "<13 G01X15.Y10.>|", "<18"),
            "TR1.0|G01X15.Y5.|T0|G02X10.Y0.I-5.J0.r5.|TR1.0|G01X0.Y0.|");
  EXPECT_EQ(between(later, "<13 G01X0.Y0.>|", "<18"), forth + "G01X15.Y10.|");
  // Only the family with corner words has them.
  f.iso.post.nFamily = kOtherFamily;
  EXPECT_EQ(between(f.first(), "|T0|", "<8"), "G03X15.Y5.I0.J5.|TL1.0|");
}

TEST(OpenCut, NoSpanIsTakenAhead) {
  InnerFigure f = openCut(kFamilySignedUnits).passes(1);
  EXPECT_EQ(f.first(),
            ">|<2 G01X-000500Y+000000>|<3 G01X+000000Y+000000>|G01X+010000Y+000000|"
            "<8 G01X+010000Y+007000>|<9 G01X+010000Y+010000>|<11 G01X+012000Y+010000>|");
  EXPECT_EQ(count(f.later(), "G44"), 0);
}

}  // namespace
}  // namespace tarnex
