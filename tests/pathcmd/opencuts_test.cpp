// Open cuts: which end the wire enters, where it is threaded, and where it leaves.
// Threading and exit points are worked out beside each case.
#include "host/database/entities.h"
#include "pathcmd/jobs.h"
#include "pathcmd/pathtest.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;

class OpenCuts : public PathTest {
 protected:
  OpenCuts() { settings().dOvercutExit = 0.5; }
  std::string at(AcDbObjectId id, const std::string& point) { return session.handle(id) + "*" + point; }
  AcDbObjectId line() { return session.line({0, 0}, {10, 0}); }
  // A quarter of radius 10 about the origin, from (10,0) to (0,10).
  AcDbObjectId arc() { return session.add(std::make_unique<AcDbArc>(AcGePoint3d{}, 10, 0, kPi / 2)); }
};

const double kQuarter = std::tan(kPi / 8);

// The lead-in is 2 long and square on the first span, the exit 0.5 on the side of the lead-in.
TEST_F(OpenCuts, AreEnteredSquareFromTheSideGiven) {
  struct Case {
    const char* what;
    bool arc;
    const char *pick, *side;
    std::vector<BulgeVertex> walk;
    int direction;
    AcGePoint2d exit;
  };
  const Case cases[] = {
      {"from the left", false, "2,0", "5,3", {{{0, 2}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}, 1, {10, 0.5}},
      {"from the right", false, "2,0", "5,-3", {{{0, -2}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}, -1, {10, -0.5}},
      {"other end", false, "8,0", "5,3", {{{10, 2}, 0}, {{10, 0}, 0}, {{0, 0}, 0}}, -1, {0, 0.5}},
      {"on the line: right", false, "2,0", "20,0", {{{0, -2}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}, -1, {10, -0.5}},
      {"arc, inside", true, "10,0", "0,0", {{{8, 0}, 0}, {{10, 0}, kQuarter}, {{0, 10}, 0}}, 1, {0, 9.5}},
      {"arc, outside",
       true,
       "10,0",
       "30,5",
       {{{12, 0}, 0}, {{10, 0}, kQuarter}, {{0, 10}, 0}},
       -1,
       {0, 10.5}},
      {"arc backwards", true, "0,10", "0,0", {{{0, 8}, 0}, {{0, 10}, -kQuarter}, {{10, 0}, 0}}, -1, {9.5, 0}},
  };
  for (const auto& c : cases) {
    const AcDbObjectId id = c.arc ? arc() : line();
    run(&GK, {at(id, c.pick), "2", c.side, ""});
    ASSERT_TRUE(sameWalk(path(), c.walk)) << c.what;
    EXPECT_EQ(path()->nDirection(), c.direction) << c.what;
    EXPECT_LT(path()->ptBreakExit().distanceTo(c.exit), 1e-9) << c.what;
    EXPECT_LT(path()->ptBreak().distanceTo(c.walk.back().point), 1e-9) << c.what;
    EXPECT_EQ(path()->getEndPoint(true), path()->ptBreakExit()) << c.what;
    EXPECT_EQ(path()->flags(), kOpenPath);
    EXPECT_EQ(path()->dOffset(), 0);
    EXPECT_EQ(path()->dOvercutExit(), settings().dOvercutExit);
    EXPECT_EQ(path()->getProcessStyle().sName, "BASE");
    undoLastPath(drawing(), state());
    for (AcDbObjectId left : session.all()) drawing().open<AcDbEntity>(left, OpenMode::kForWrite)->erase();
  }
}

// Picked just in the middle, and in a batch, the curve keeps its direction.
TEST_F(OpenCuts, StartWhereTheCurveDoes) {
  const std::vector<BulgeVertex> bend{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}};
  const std::vector<BulgeVertex> walk{{{0, 2}, 0}, {{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}};
  run(&GK, {at(addContour(session, bend, false), "10,0"), "2", "0,1", ""});
  EXPECT_TRUE(sameWalk(path(), walk));
  undoLastPath(drawing(), state());
  run(&GK, {"*-90,-90", session.handle(session.all().back()), "2", "0,1", ""});
  EXPECT_TRUE(sameWalk(path(), walk));
}

// Settings without an exit length: half the lead-in, as where paths are drawn.
TEST_F(OpenCuts, LeaveByHalfTheLeadInWhereNoLengthIsSet) {
  settings().dOvercutExit = 0;
  run(&GK, {at(line(), "2,0"), "3", "5,1", ""});
  EXPECT_LT(path()->ptBreakExit().distanceTo({10, 1.5}), 1e-9);
}

TEST_F(OpenCuts, TakeThePointAsThreadingPoint) {
  run(&GK, {at(line(), "2,0"), "-3,4", ""});
  EXPECT_TRUE(sameWalk(path(), {{{-3, 4}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}));
  EXPECT_EQ(settings().dBridgeLen, 5);
  // T on the start itself: no lead-in, and an arc stays one.
  run(&GK, {at(session.line({0, 20}, {10, 20}), "2,20"), "0,20", ""});
  EXPECT_TRUE(sameWalk(path(1), {{{0, 20}, 0}, {{10, 20}, 0}}));
  run(&GK, {at(arc(), "10,0"), "10,0", ""});
  EXPECT_TRUE(sameWalk(path(2), {{{10, 0}, kQuarter}, {{0, 10}, 0}}));
}

TEST_F(OpenCuts, OfTheFastWireHaveTheOffsetAndNoStyle) {
  settings().dOffset = 0.11;
  run(&BK, {at(line(), "2,0"), "1.5", "0,1", ""});
  ASSERT_TRUE(leadsFrom(path(), {0, 1.5}, {0, 0}));
  EXPECT_EQ(path()->dOffset(), 0.11);
  EXPECT_FALSE(path()->bHasStyle());
  EXPECT_EQ(path()->nBreakSeg(), -1);
  EXPECT_EQ(path()->ptBreak(), kNoBreak);
  EXPECT_EQ(settings().dBridgeLen, 1.5);
}

TEST_F(OpenCuts, FollowTheWholeChain) {
  const AcDbObjectId id = line();
  session.line({10, 0}, {10, 10});
  run(&GK, {at(id, "2,0"), "2", "0,1", ""});
  EXPECT_TRUE(sameWalk(path(), {{{0, 2}, 0}, {{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}}));
  EXPECT_TRUE(session.all().size() == 1);
  undoLastPath(drawing(), state());
  const auto* back = session.last<AcDbPolyline>();
  ASSERT_TRUE(back);
  EXPECT_FALSE(back->isClosed());
  EXPECT_EQ(back->numVerts(), 3);
}

TEST_F(OpenCuts, RefuseWhatIsClosedOrGivenUp) {
  EXPECT_THAT(run(&GK, {at(addSquare(session), "10,5"), ""}), HasSubstr("The contour is closed"));
  const AcDbObjectId ring = session.add(std::make_unique<AcDbCircle>(AcGePoint3d{50, 0, 0}, 5));
  EXPECT_THAT(run(&BK, {at(ring, "55,0"), ""}), HasSubstr("The contour is closed"));
  session.line({80, 0}, {90, 0});
  session.line({90, 0}, {85, 8});
  const AcDbObjectId side = session.line({85, 8}, {80, 0});
  EXPECT_THAT(run(&GK, {at(side, "82,3.2"), ""}), HasSubstr("The contour is closed"));
  const AcDbObjectId id = session.line({0, 40}, {10, 40});
  run(&GK, {at(id, "2,40"), "", ""});
  EXPECT_THAT(run(&GK, {at(session.all().back(), "2,40"), "-1", "1000.5", "^C", ""}),
              HasSubstr("The lead-in must lie between 0 and 1000 mm."));
  EXPECT_TRUE(state().PathList.empty());
  EXPECT_EQ(settings().dBridgeLen, 5);
}

TEST_F(OpenCuts, AWindowAsksForEachCurveUntilItIsGivenUp) {
  std::string all;
  for (double y : {0.0, 10.0, 20.0, 30.0})
    all += session.handle(addContour(session, {{{0, y}, 0}, {{5, y}, 0}, {{10, y}, 0}}, false)) + " ";
  run(&GK, {"*-90,-90", all, "1", "0,99", "", "0,19", "^C", ""});
  ASSERT_EQ(state().PathList.size(), 2u);  // the second left out, the fourth given up
  EXPECT_TRUE(leadsFrom(path(0), {0, 1}, {0, 0}));
  EXPECT_TRUE(leadsFrom(path(1), {0, 19}, {0, 20}));
}

}  // namespace
}  // namespace tarnex
