// The die and punch jobs: what their paths carry, where breaks lie, and what a refusal leaves.
// Breaks are worked out beside each case.
#include "pathcmd/jobs.h"
#include "host/database/entities.h"
#include "pathcmd/pathtest.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Jobs : public PathTest {
 protected:
  Jobs() {
    settings().bFixedLeadAngle = 0;
    settings().dOvercutExit = 0.5;
  }
  std::string at(AcDbObjectId id, const std::string& point) { return session.handle(id) + "*" + point; }
  AcDbObjectId circle(AcGePoint2d centre, double radius) {
    return session.add(std::make_unique<AcDbCircle>(solid(centre), radius));
  }
  std::string assign(const ProcessStyle& style, std::vector<std::string> lines) {
    module->saveSettings();
    session.out.clear();
    session.answers(std::move(lines));
    confirmed = assignStyle(*module, style);
    return session.out;
  }
  std::vector<std::string> styles() {
    std::vector<std::string> names;
    for (std::size_t i = 0; path(i); ++i) names.push_back(path(i)->getProcessStyle().sName);
    return names;
  }
  bool confirmed = false;
};

::testing::AssertionResult breaksAt(const CToolPath* path, int segment, AcGePoint2d at, AcGePoint2d exit) {
  if (!path) return ::testing::AssertionFailure() << "no path";
  const PathBreak b = path->breakPoint();
  if (b.nBreakSeg == segment && b.ptBreak.distanceTo(at) < 1e-9 && b.ptBreakExit.distanceTo(exit) < 1e-9)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "segment " << b.nBreakSeg << " at " << b.ptBreak.x << "," << b.ptBreak.y << " exit "
         << b.ptBreakExit.x << "," << b.ptBreakExit.y;
}

TEST_F(Jobs, AHoleGetsNoOffsetAndTheBaseStyle) {
  const AcDbObjectId square = addSquare(session);
  settings().dClearance = 0.3;
  run(&GA, {at(square, "10,5"), ""});
  ASSERT_TRUE(leadsFrom(path(), {7, 5}, {10, 5}));
  EXPECT_EQ(path()->dOffset(), 0);
  EXPECT_EQ(path()->dClearance(), 0);
  EXPECT_EQ(path()->flags(), kContourPath);
  EXPECT_EQ(styles(), std::vector<std::string>{"BASE"});
  EXPECT_FALSE(path()->hasFirstPass());  // no program takes it yet
  EXPECT_EQ(path()->nBreakSeg(), -1);
}

// Entered at (10,5) going up, the last span comes up from (10,0): 5 mm. The exit leads away from the part, to
// +x.
TEST_F(Jobs, AnOuterShapeBreaksTheGapBeforeItsEnd) {
  const struct {
    const char* gap;
    AcGePoint2d at;
  } cases[] = {{"2", {10, 3}}, {"5", {10, 0}}, {"", {10, 0}}};  // the last one is remembered
  settings().nSide = kOuterShape;
  for (const auto& c : cases) {
    const AcDbObjectId square = addSquare(session);
    run(&GA, {at(square, "10,5"), c.gap, ""});
    ASSERT_TRUE(leadsFrom(path(), {13, 5}, {10, 5})) << c.gap;
    EXPECT_TRUE(breaksAt(path(), 5, c.at, c.at + AcGeVector2d{0.5, 0})) << c.gap;
    undoLastPath(drawing(), state());
    drawing().open<AcDbEntity>(session.all().back(), OpenMode::kForWrite)->erase();
  }
}

TEST_F(Jobs, AGapLongerThanTheLastSpanIsPickedOrThePathGoes) {
  settings().nSide = kOuterShape;
  run(&GA, {at(addSquare(session), "10,5"), "5.001", "5,0.2", ""});
  // On the span from (0,0) to (10,0): away from the part is -y.
  EXPECT_TRUE(breaksAt(path(), 4, {5, 0}, {5, -0.5}));
  const AcDbObjectId second = addContour(session, {{{20, 0}, 0}, {{30, 0}, 0}, {{30, 10}, 0}, {{20, 10}, 0}});
  run(&GA, {at(second, "30,5"), "6", "^C", ""});
  EXPECT_EQ(state().PathList.size(), 1u);
  EXPECT_EQ(state().nextPathNo, 2);
  EXPECT_EQ(session.all().size(), 2u);                     // the path, and the second contour again
  run(&GA, {at(session.all().back(), "30,5"), "^C", ""});  // no gap given: nothing is made
  EXPECT_EQ(state().PathList.size(), 1u);
  EXPECT_EQ(session.all().size(), 2u);
}

// Half circles of radius 10 from (10,0): the last one is 10π long, so 5π before its end is a quarter turn
// back.
TEST_F(Jobs, ABreakOnAnArcLiesOnItWhicheverWayItRuns) {
  settings().nSide = kOuterShape;
  const double quarter = std::tan(kPi / 8);
  for (int direction : {1, -1}) {
    settings().nDirection = direction;
    run(&GA, {at(circle({0, 0}, 10), "10,0"), "15.707963267948966", ""});
    const CToolPath* made = path();
    EXPECT_TRUE(breaksAt(made, 2, {0, -10.0 * direction}, {0, -10.5 * direction})) << direction;
    EXPECT_NEAR(made->breakPoint().dBreakBulgeA, direction * quarter, 1e-9);
    EXPECT_NEAR(made->breakPoint().dBreakBulgeB, direction * quarter, 1e-9);
    undoLastPath(drawing(), state());
  }
}

TEST_F(Jobs, HolesOfExactlyTheSameRadiusFollowAPick) {
  settings().bSameHoles = 1;
  const AcDbObjectId picked = circle({0, 0}, 2);
  circle({20, 0}, 2);
  circle({40, 0}, 2.0000001);
  ProcessStyle style;
  style.sName = "CUT";
  session.ed.preset("nPunchKind", "1");
  assign(style, {"B", at(picked, "2,0"), "", ""});
  EXPECT_TRUE(confirmed);
  EXPECT_EQ(styles(), (std::vector<std::string>{"CUT", "CUT"}));
  // Entered where the ray to the first pick leaves the second hole: at its left.
  EXPECT_TRUE(leadsFrom(path(1), {20, 0}, {18, 0}));
}

TEST_F(Jobs, OuterCirclesAreNotFollowedByOthers) {
  settings().bSameHoles = 1;
  settings().nSide = kOuterShape;
  const AcDbObjectId picked = circle({0, 0}, 4);
  circle({20, 0}, 4);
  run(&GA, {at(picked, "4,0"), "1", ""});
  EXPECT_EQ(state().PathList.size(), 1u);
}

TEST_F(Jobs, AWindowGivesTheBaseStyleWhateverTheJobCarries) {
  ProcessStyle style;
  style.sName = "CUT";
  const AcDbObjectId one = circle({0, 0}, 5), two = circle({30, 0}, 5);
  assign(style, {"B", "*-90,-90", session.handle(one) + " " + session.handle(two), "", ""});
  EXPECT_EQ(styles(), (std::vector<std::string>{"BASE", "BASE"}));
}

TEST_F(Jobs, ADieJobTakesNoStyle) {
  const AcDbObjectId hole = circle({0, 0}, 5);
  for (const char* kind : {"1", "3"}) {
    session.ed.preset("nDieKind", kind);
    EXPECT_THAT(assign({}, {"A", ""}), HasSubstr("Not possible here")) << kind;
    EXPECT_TRUE(confirmed);
  }
  EXPECT_TRUE(stands(hole));
}

// Picked in the second half of the right side: entered at three quarters of it, from outside, whatever the
// settings say.
TEST_F(Jobs, APunchIsEnteredAtAQuarterAndItsBreakPicked) {
  session.ed.preset("nPunchKind", "4");
  const AcDbObjectId square = addSquare(session);
  run(&GT, {at(square, "10,6"), "5,10", ""});
  EXPECT_TRUE(sameWalk(path(), {{{13, 7.5}, 0},
                                {{10, 7.5}, 0},
                                {{10, 10}, 0},
                                {{0, 10}, 0},
                                {{0, 0}, 0},
                                {{10, 0}, 0},
                                {{10, 7.5}, 0}}));
  EXPECT_TRUE(breaksAt(path(), 2, {5, 10}, {5, 10.5}));
  EXPECT_EQ(path()->flags(), kContourPath | kPunchJob);
  EXPECT_EQ(path()->nSide(), kOuterShape);
  EXPECT_EQ(settings().nSide, kInnerHole);
  const AcDbObjectId hole = circle({50, 0}, 5);
  run(&GT, {at(hole, "55,0"), "^C", "U", ""});
  EXPECT_TRUE(state().PathList.empty());
  EXPECT_EQ(session.all().size(), 2u);  // both contours are back
}

TEST_F(Jobs, PathsByHandAskForABreakOnOuterShapesAlone) {
  const AcDbObjectId hole = circle({0, 0}, 5), disc = circle({30, 0}, 5);
  // T and Q of the hole; then those of the disc from its right, and its break.
  run(&GA, {"M", "0,0", "5,0", "40,0", "35,0", "30,5", "", ""});
  ASSERT_EQ(state().PathList.size(), 2u);
  EXPECT_EQ(path(0)->nBreakSeg(), -1);
  // On the first half circle, its exit away from the disc.
  EXPECT_TRUE(breaksAt(path(1), 1, {30, 5}, {30, 5.5}));
  EXPECT_EQ(styles(), (std::vector<std::string>{"BASE", "BASE"}));
  EXPECT_FALSE(stands(hole) || stands(disc));
  const AcDbObjectId other = circle({60, 0}, 5);
  run(&GA, {"M", "70,0", "65,0", "^C", ""});
  EXPECT_EQ(state().PathList.size(), 2u);
  EXPECT_FALSE(stands(other));
  EXPECT_TRUE(session.last<AcDbCircle>());  // brought back
}

TEST_F(Jobs, ALibraryWithoutTheDialogCountsAsCancelled) {
  std::filesystem::copy_file(TARNEX_BINARY_DIR "/install/Quillet.arx", folder + "/Harbec.DLL");
  EXPECT_THAT(run(&GA, {"10,10"}), HasSubstr("SetDlgDie"));
  EXPECT_TRUE(session.ed.anyCommandFailed());
}

// ---- values of paths that stand

TEST_F(Jobs, OffsetAndClearanceOfASelection) {
  circlePath({0, 0}, 5);
  circlePath({20, 0}, 5);
  const AcDbObjectId line = session.line({0, 30}, {9, 30});
  run(&JX, {"0.35", "0.01", "all", ""});
  EXPECT_EQ(path(0)->dOffset(), 0.35);
  EXPECT_EQ(path(1)->dClearance(), 0.01);
  run(&JX, {"", "", session.handle(state().PathList[0]), ""});
  EXPECT_EQ(path(0)->dOffset(), 0.2);
  EXPECT_EQ(path(0)->dClearance(), 0.0);
  EXPECT_EQ(path(1)->dOffset(), 0.35);
  run(&JX, {"0.5", "^C"});
  EXPECT_EQ(path(0)->dOffset(), 0.2);
  EXPECT_TRUE(stands(line));
}

TEST_F(Jobs, AStyleIsGivenByPickAndBySelection) {
  const AcDbObjectId one = circlePath({0, 0}, 5), two = circlePath({20, 0}, 5);
  const AcDbObjectId line = session.line({0, 30}, {9, 30});
  ProcessStyle style;
  style.sName = "CUT";
  style.nPassLast = 3;
  style.nCode = 1204;
  const std::string replaced = "which has been replaced";
  EXPECT_THAT(assign(style, {session.handle(one), session.handle(line), ""}), HasSubstr(replaced));
  EXPECT_THAT(session.out, HasSubstr("Not possible here"));
  EXPECT_EQ(path(0)->getProcessStyle(), style);
  EXPECT_EQ(path(0)->nColor(), 12);
  EXPECT_EQ(path(0)->dOffset(), 0.08);  // a single pick leaves the offset
  for (AcDbObjectId id : {one, two})
    drawing().open<CToolPath>(id, OpenMode::kForWrite)->setProcessStyle(makeBaseStyle());
  EXPECT_THAT(assign(style, {"*50,50", "all", "", ""}), Not(HasSubstr(replaced)));
  EXPECT_EQ(path(1)->getProcessStyle(), style);
  EXPECT_EQ(path(1)->dOffset(), 0);
  EXPECT_THAT(assign(style, {"*50,50", session.handle(two), "", ""}), HasSubstr(replaced));
  assign(style, {"^C"});
  EXPECT_FALSE(confirmed);
}

TEST_F(Jobs, SettingsOfTheJobAreEditedFromTheLoop) {
  session.ed.preset("dIsoAngle", "45");
  assign({}, {"S", ""});
  EXPECT_EQ(settings().dIsoAngle, 45);
}

}  // namespace
}  // namespace tarnex
