// Outer figures on controls without words of their own: rows and moves of first pass, trim passes, tab and
// extra passes, in both cut types. A counter-clockwise outer shape has its waste on the right: G42 forward,
// G41 backward.
#include <cmath>

#include "outertest.h"

namespace tarnex {
namespace {

constexpr int kOther = 2;                         // a family without behaviour of its own
constexpr double kQuarter = 0.41421356237309503;  // tan(90°/4)

const std::string kSquareFirst = programOf({"<1 X5.Y-3.>", "<2 G01X5.Y-1.>", "<3 G01X5.Y0.>", "G01X10.Y0.",
                                            "G01X10.Y10.", "G01X0.Y10.", "G01X0.Y0.", "<8 G01X3.Y0.>"});

TEST(OuterFigure, WithoutLaterPassesTheTabFollowsTheBreak) {
  const OuterProgram p = writeOuter(square(0), outerPost(kOther));
  EXPECT_EQ(p.first, kSquareFirst);
  EXPECT_TRUE(p.run.bStoppedAtBreak);
  EXPECT_EQ(p.firstEnd, AcGePoint2d(3, 0));
  EXPECT_EQ(p.later, programOf({"<20 G01X4.5Y0.>", "<21 G42C0 G01X5.Y0.>", "<22 G01X5.Y-1.>"}));
  EXPECT_EQ(p.run.ptWireEnd, AcGePoint2d(5, -1));
}

TEST(OuterFigure, TrimPassesGoBackAndForth) {
  const std::vector<std::string> back{"<11 G41C1 G01X3.Y0.>", "G01X0.Y0.",  "G01X0.Y10.",
                                      "G01X10.Y10.",          "G01X10.Y0.", "<16 G01X5.Y0.>",
                                      "<17 G01X5.Y-1.>"};
  std::string trimBack;
  for (const auto& line : back) trimBack += line + "\n";
  OuterProgram p = writeOuter(square(1), outerPost(kOther));
  EXPECT_EQ(p.first, kSquareFirst + "<9 G01X3.Y-2.>\n");
  EXPECT_EQ(p.later, trimBack + programOf({"<19 G41C0 G01X5.Y0.>", "<20 G01X3.5Y0.>", "<21 G41C0 G01X3.Y0.>",
                                           "<22 G01X3.Y-2.>"}));
  EXPECT_EQ(p.run.ptWireEnd, AcGePoint2d(3, -2));
  p = writeOuter(square(2), outerPost(kOther));
  EXPECT_EQ(p.later,
            trimBack + programOf({"<11 G42C2 G01X5.Y0.>", "G01X10.Y0.", "G01X10.Y10.", "G01X0.Y10.",
                                  "G01X0.Y0.", "<16 G01X3.Y0.>", "<17 G01X3.Y-2.>", "<19 G42C0 G01X3.Y0.>",
                                  "<20 G01X4.5Y0.>", "<21 G42C0 G01X5.Y0.>", "<22 G01X5.Y-1.>"}));
}

TEST(OuterFigure, ByPassTrimsForwardFirstAndGoesHome) {
  OuterFigure f = cornerTab(1);
  f.nCutType = CutType::kByPass;
  f.bReturn = true;
  f.figureIndex = 1;
  OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.first, programOf({"<12 >", "<2 G01X5.Y-1.>", "<3 G01X5.Y0.>", "G01X10.Y0.", "G01X10.Y10.",
                                "G01X0.Y10.", "<8 G01X0.Y4.>", "<9 G01X-2.Y4.>"}));
  const std::string trim = programOf({"<12 >", "<15 G42C1 G01X5.Y0.>", "G01X10.Y0.", "G01X10.Y10.",
                                      "G01X0.Y10.", "G01X0.Y4.", "<20 G01X-2.Y4.>"});
  EXPECT_EQ(p.later, trim + programOf({"<22 G42C0 G01X0.Y4.>", "G01X0.Y0.", "<23 G01X4.5Y0.>",
                                       "<24 G42C0 G01X5.Y0.>", "<25 G01X5.Y-1.>", "<30 G00X5.Y-3.>"}));
  EXPECT_EQ(p.run.ptWireEnd, AcGePoint2d(5, -3));
  f.bReturn = false;
  f.style = tracedStyle(2);
  p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later, trim + programOf({"<15 G41C2 G01X0.Y4.>", "G01X0.Y10.", "G01X10.Y10.", "G01X10.Y0.",
                                       "G01X5.Y0.", "<20 G01X5.Y-1.>", "<22 G41C0 G01X5.Y0.>", "G01X0.Y0.",
                                       "<23 G01X0.Y3.5>", "<24 G41C0 G01X0.Y4.>", "<25 G01X-2.Y4.>"}));
}

// The only pass of the second round runs backward. The way home starts where the wire stands: at (-2,4), so
// that it is 7 and -7 in incremental output.
TEST(OuterFigure, ByPassWithoutTrimPasses) {
  OuterFigure f = cornerTab(0);
  f.nCutType = CutType::kByPass;
  f.bReturn = true;
  EXPECT_EQ(writeOuter(f, outerPost(kOther)).later,
            programOf({"<12 >", "G01X0.Y0.", "<23 G01X0.Y3.5>", "<24 G41C0 G01X0.Y4.>", "<25 G01X-2.Y4.>",
                       "<30 G00X5.Y-3.>"}));
  EXPECT_EQ(writeOuter(f, outerPost(kOther, {}, {{0, "G91"}})).later,
            programOf({"<12 >", "G01X-5.Y0.", "<23 G01X0.Y3.5>", "<24 G41C0 G01X0.Y0.5>", "<25 G01X-2.Y0.>",
                       "<30 G00X7.Y-7.>"}));
}

// The row that enters the tab tells which record is in force.
TEST(OuterFigure, TheTabsRecordIsThePostsChoice) {
  struct {
    const char* value;
    int later, flags;
    const char* entry;
  } const cases[] = {{"0", 2, 0, "<19 G42C0 "},  {"", 2, 0, "<19 G42C0 "},    {"1", 2, 0, "<19 G42C2 "},
                     {"-1", 2, 0, "<19 G42C3 "}, {"2", 2, 0, "<19 G42C2 "},   {"2", 1, 0, "<19 G41C1 "},
                     {"1", 2, 32, "<19 G42C0 "}, {"-1", 1, 32, "<19 G41C0 "}, {"-1", 8, 0, "<19 G42C9 "},
                     {"-1", 9, 0, "<19 G41C9 "}};
  for (const auto& c : cases) {
    OuterFigure f = square(c.later);
    f.nFlags = c.flags;
    const OuterProgram p = writeOuter(f, outerPost(kOther, {{22, c.value}}));
    EXPECT_NE(p.later.find(c.entry), std::string::npos) << c.value << ", " << c.later << "\n" << p.later;
  }
  // Without trim passes nobody asks.
  EXPECT_EQ(writeOuter(square(0), outerPost(kOther, {{22, "-1"}})).later,
            writeOuter(square(0), outerPost(kOther)).later);
}

// V14 prints the index of the pass, which is held as its record is.
TEST(OuterFigure, StylesOutsideTheirTablesAreHeld) {
  for (int last : {9, 10, -9, -12, 32767, -32768}) {
    OuterFigure f = square(last);
    IsoPost iso = outerPost(kOther, {{22, "-1"}});
    iso.post.subFormat = "P%d-%d";
    iso.post.blockRow[3 * (40 + 19) + 1] = "V14";
    const std::string later = writeOuter(f, iso).later;
    EXPECT_NE(later.find("<11 G41C9 "), std::string::npos) << last;
    EXPECT_NE(later.find("<19 G41C9 G01P1-9X5.Y0.>"), std::string::npos) << last << "\n" << later;
    std::size_t trims = 0;
    for (std::size_t at = later.find("<11"); at != std::string::npos; at = later.find("<11", at + 1)) ++trims;
    EXPECT_EQ(trims, 9u) << last;
  }
  EXPECT_EQ(writeOuter(square(-2), outerPost(kOther)).later, writeOuter(square(2), outerPost(kOther)).later);
}

TEST(OuterFigure, APunchsTabIsTrimmedToo) {
  OuterFigure f = cornerTab(2);
  f.nFlags = kPunchJob;
  OuterProgram p = writeOuter(f, outerPost(kOther));
  const std::string end =
      programOf({"<19 G42C0 G01X0.Y4.>", "G01X0.Y0.", "<20 G01X4.5Y0.>", "<21 G42C0 G01X5.Y0.>",
                 "<22 G01X5.Y-1.>", "<24 G41C1 G01X5.Y0.>", "G01X0.Y0.", "<25 G01X0.Y4.>", "<26 G01X-2.Y4.>",
                 "<24 G42C2 G01X0.Y4.>", "G01X0.Y0.", "<25 G01X5.Y0.>", "<26 G01X5.Y-1.>"});
  EXPECT_EQ(p.later.substr(p.later.find("<19")), end);
  EXPECT_EQ(p.run.ptWireEnd, AcGePoint2d(5, -1));
  f = square(1);
  f.nFlags = kPunchJob;
  f.nCutType = CutType::kByPass;
  f.bReturn = true;
  p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later.substr(p.later.find("<25")),
            programOf({"<25 G01X5.Y-1.>", "<27 G41C1 G01X5.Y0.>", "<28 G01X3.Y0.>", "<29 G01X3.Y-2.>",
                       "<30 G00X5.Y-3.>"}));
  f.style = tracedStyle(0);
  p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later.substr(p.later.find("<25")), programOf({"<25 G01X3.Y-2.>", "<30 G00X5.Y-3.>"}));
}

TEST(OuterFigure, StopPointsThatDoNotFit) {
  OuterFigure f = square(2);  // the tab is 2 mm long
  f.stop = 2.5;
  OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later.substr(p.later.find("<20")),
            programOf({"<20 >", "<21 G42C0 G01X5.Y0.>", "<22 G01X5.Y-1.>"}));
  EXPECT_TRUE(p.run.bStopTooLong);
  f.stop = 2;  // just fits: nothing is left ahead of it
  p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later.substr(p.later.find("<20")),
            programOf({"<20 G01X3.Y0.>", "<21 G42C0 G01X5.Y0.>", "<22 G01X5.Y-1.>"}));
  EXPECT_FALSE(p.run.bStopTooLong);
  f.stop = 0;
  p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.later.substr(p.later.find("<19 ")),
            programOf({"<19 G42C0 G01X3.Y0.>", "<21 G42C0 G01X5.Y0.>", "<22 G01X5.Y-1.>"}));
}

TEST(OuterFigure, LeadsWithoutASplit) {
  OuterFigure f = square(1);
  f.figureIndex = 3;
  f.leadPiece = 0;
  OuterProgram p = writeOuter(f, outerPost(kOther));
  EXPECT_EQ(p.first.substr(0, p.first.find("G01X10")), "<30 >\n<2 <3 G01X5.Y0.>>\n");
  EXPECT_NE(p.later.find("<17 G01X5.Y-3.>\n"), std::string::npos);  // the whole lead back
  f.lists.vertices[0] = {5, -0.05};
  f.leadPiece = 0.1;
  p = writeOuter(f, outerPost(kOther));
  EXPECT_NE(p.first.find("<2 <3 G01X5.Y0.>>\n"), std::string::npos);
  f.nLeaderType = 1;  // splits it in the middle
  p = writeOuter(f, outerPost(kOther));
  EXPECT_NE(p.first.find("<2 G01X5.Y-0.025>\n<3 G01X5.Y0.>\n"), std::string::npos) << p.first;
}

// A circle of 10 in quarters, counter-clockwise from below. The break (-6,-8) lies on the last quarter; its
// exit is 2 mm outward. The angle from there to the entry has the sine 0.6, that of the stop point before the
// break 0.28, so the stop is their difference, with sine 0.6*0.96 - 0.8*0.28 = 0.352 and cosine 0.936, before
// either end.
OuterFigure circle(int later) {
  OuterFigure f;
  f.lists = listsOf({{0, -13}, {0, -10}, {10, 0}, {0, 10}, {-10, 0}, {0, -10}},
                    {0, kQuarter, kQuarter, kQuarter, kQuarter, 0});
  f.ptBreak = {-6, -8};
  f.ptBreakExit = {-7.2, -9.6};
  f.style = tracedStyle(later);
  f.stop = 10 * (std::asin(0.6) - std::asin(0.28));
  return f;
}

const std::string kCircleFirst =
    programOf({"<1 X0.Y-13.>", "<2 G01X0.Y-11.>", "<3 G01X0.Y-10.>", "G03X10.Y0.I0.J10.",
               "G03X0.Y10.I-10.J0.", "G03X-10.Y0.I0.J-10.", "<8 G03X-6.Y-8.I10.J0.>", "<9 G01X-7.2Y-9.6>"});
const std::string kCircleTrimBack =
    programOf({"<11 G41C1 G01X-6.Y-8.>", "G02X-10.Y0.I6.J8.", "G02X0.Y10.I10.J0.", "G02X10.Y0.I0.J-10.",
               "<16 G02X0.Y-10.I-10.J0.>", "<17 G01X0.Y-11.>"});
const std::string kCircleBack =
    kCircleTrimBack + programOf({"<19 G41C0 G01X0.Y-10.>", "<20 G02X-2.8Y-9.6I0.J10.>",
                                 "<21 G41C0 G02X-6.Y-8.I2.8J9.6>", "<22 G01X-7.2Y-9.6>"});
const std::string kCircleForth =
    kCircleTrimBack +
    programOf({"<11 G42C2 G01X0.Y-10.>", "G03X10.Y0.I0.J10.", "G03X0.Y10.I-10.J0.", "G03X-10.Y0.I0.J-10.",
               "<16 G03X-6.Y-8.I10.J0.>", "<17 G01X-7.2Y-9.6>", "<19 G42C0 G01X-6.Y-8.>",
               "<20 G03X-3.52Y-9.36I6.J8.>", "<21 G42C0 G03X0.Y-10.I3.52J9.36>", "<22 G01X0.Y-11.>"});

// A program in the mirror of the y axis.
std::string mirrored(std::string text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    out += text[at];
    if ((text[at] == 'X' || text[at] == 'I') && text.compare(at + 1, 2, "0.") != 0) {
      if (text[at + 1] == '-')
        ++at;
      else
        out += '-';
    }
  }
  for (std::size_t at = 0; at + 2 < out.size(); ++at) {
    char& digit = out[at + 2];
    if (out.compare(at, 2, "G0") == 0 && digit != '1') digit = digit == '2' ? '3' : '2';
    if (out.compare(at, 2, "G4") == 0) digit = digit == '1' ? '2' : '1';
  }
  return out;
}

TEST(OuterFigure, BreaksOnArcs) {
  OuterProgram p = writeOuter(circle(1), outerPost(kOther));
  EXPECT_EQ(p.first, kCircleFirst);
  EXPECT_EQ(p.later, kCircleBack);
  EXPECT_EQ(writeOuter(circle(2), outerPost(kOther)).later, kCircleForth);
  OuterFigure clockwise = circle(2);
  clockwise.nDirection = kClockwise;
  for (auto& v : clockwise.lists.vertices) v.x = -v.x;
  for (double& b : clockwise.lists.bulges) b = -b;
  clockwise.ptBreak.x = 6;
  clockwise.ptBreakExit.x = 7.2;
  p = writeOuter(clockwise, outerPost(kOther));
  EXPECT_EQ(p.first, mirrored(kCircleFirst));
  EXPECT_EQ(p.later, mirrored(kCircleForth));
}

}  // namespace
}  // namespace tarnex
