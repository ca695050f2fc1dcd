// The break point: picked, off the path, given up; on lines, arcs and both contours.
// Knows one path and a scripted editor.
#include "toolpath/breakpoint.h"

#include <gmock/gmock.h>

#include "drawlog.h"
#include "host/editor/session.h"

namespace tarnex {
namespace {

constexpr double kExit = 0.5;  // mm
// tan(7.5°), tan(15°), tan(22.5°): bulges of 30, 60 and 90 degrees.
const double k30 = std::tan(kPi / 24), k60 = std::tan(kPi / 12), k90 = std::tan(kPi / 8);

::testing::AssertionResult isBreak(const std::optional<PathBreak>& at, int segment, AcGePoint2d exit,
                                   double bulgeA = 0, double bulgeB = 0) {
  if (!at) return ::testing::AssertionFailure() << "no break";
  if (at->nBreakSeg == segment && at->ptBreakExit.distanceTo(exit) < 1e-9 &&
      std::abs(at->dBreakBulgeA - bulgeA) < 1e-9 && std::abs(at->dBreakBulgeB - bulgeB) < 1e-9)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "segment " << at->nBreakSeg << " exit " << at->ptBreakExit.x << "," << at->ptBreakExit.y
         << " bulges " << at->dBreakBulgeA << " " << at->dBreakBulgeB;
}

TEST(BreakPoint, LeavesForTheWiresSide) {
  // A hole run counter-clockwise is left to the left; segment 4 runs from (0,0) to (20,0).
  EXPECT_TRUE(isBreak(breakAt(*squareHole(), {5, 0}, kExit), 4, {5, 0.5}));
  // An outer shape run clockwise too: segment 3 runs down from (20,20), outside is to the right of the
  // square.
  EXPECT_TRUE(isBreak(breakAt(*squarePunch(), {20, 5}, kExit), 3, {20.5, 5}));
  // On the first quarter at 30 degrees: 30 of 90 are behind; towards the centre, whatever the direction.
  const AcGePoint2d at30 = acutPolar({0, 0}, kPi / 6, 10), in30 = acutPolar({0, 0}, kPi / 6, 9.5);
  EXPECT_TRUE(isBreak(breakAt(*roundHole(1), at30, kExit), 1, in30, k30, k60));
  const AcGePoint2d below = acutPolar({0, 0}, -kPi / 6, 10), inBelow = acutPolar({0, 0}, -kPi / 6, 9.5);
  EXPECT_TRUE(isBreak(breakAt(*roundHole(-1), below, kExit), 1, inBelow, -k30, -k60));
  // At the start of an arc run clockwise it still leaves inwards, and the halves add up to the whole.
  EXPECT_TRUE(isBreak(breakAt(*roundHole(-1), {0, -10}, kExit), 1, {0, -9.5}, -k90, 0));
  // Where settings know no exit, half the way in, which is 10 mm.
  EXPECT_TRUE(isBreak(breakAt(*squareHole(), {5, 0}, 0), 4, {5, 5}));
  EXPECT_FALSE(breakAt(*squareHole(), {5, 1}, kExit));
  EXPECT_TRUE(breakAt(*squareHole(), {15, 10}, kExit));  // the lead-in is a segment too
}

TEST(BreakPoint, TheWayBackToTheThreadingPointCounts) {
  StoredPath open;
  open.vertices = {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}};
  open.nFlags = kOpenPath;
  const double d = kExit * std::sqrt(0.5);
  EXPECT_TRUE(isBreak(breakAt(*stored(open), {5, 5}, kExit), 2, {5 + d, 5 - d}));
}

// The square hole with an upper square 2 mm inside; its segment 4 from (2,2) to (18,2).
StoredPath fourAxes(double bulge4 = 0) {
  StoredPath p;
  p.vertices = squareHole()->polyline().vertices;
  p.nFlags = kFourAxis;
  p.upper.vertices = {{10, 10}, {18, 10}, {18, 18}, {2, 18}, {2, 2}, {18, 2}, {18, 10}};
  p.upper.bulges = {0, 0, 0, 0, bulge4, 0, 0};
  p.aSyncMark = std::vector<double>(7, 3);
  return p;
}

TEST(BreakPoint, GoesOverToTheUpperContour) {
  auto at = breakAt(*stored(fourAxes()), {5, 0}, kExit);
  ASSERT_TRUE(isBreak(at, 4, {5, 0.5}));
  EXPECT_EQ(at->ptBreakUpper, (AcGePoint2d{5, 2}));
  EXPECT_EQ(at->ptBreakUpperExit, (AcGePoint2d{5, 2.5}));
  EXPECT_FALSE(
      breakAt(*stored(fourAxes()), {1, 0}, kExit));  // beside the upper segment, which isn't drawn out
  // A half circle below the segment, about (10,2): met at its lowest point.
  at = breakAt(*stored(fourAxes(1)), {10, 0}, kExit);
  ASSERT_TRUE(at);
  EXPECT_LT(at->ptBreakUpper.distanceTo({10, -6}), 1e-9);
  EXPECT_LT(at->ptBreakUpperExit.distanceTo({10, -5.5}), 1e-9);
  EXPECT_NEAR(at->dBreakUpperBulgeA, k90, 1e-9);
  EXPECT_NEAR(at->dBreakUpperBulgeB, k90, 1e-9);
  // 270 degrees about (10,-6), radius 8 * sqrt(2): met twice at x = 19, the nearer one 6.856 above the
  // centre.
  at = breakAt(*stored(fourAxes(std::tan(3 * kPi / 8))), {19, 0}, kExit);
  ASSERT_TRUE(at);
  EXPECT_LT(at->ptBreakUpper.distanceTo({19, -6 + std::sqrt(47)}), 1e-9);
}

class Picking : public ::testing::Test {
 protected:
  Picking() { session.ed.setView({10, 10}, 40); }
  bool pick(std::unique_ptr<CToolPath> made, std::vector<std::string> answers) {
    id = session.add(std::move(made));
    session.answers(std::move(answers));
    auto path = session.ed.database().open<CToolPath>(id, OpenMode::kForWrite);
    const bool picked = pickBreakPoint(session.ed, path, {"Break: ", kExit});
    EXPECT_TRUE(path && path->isWriteEnabled());
    EXPECT_EQ(session.ed.intVar("OSMODE"), 0);
    return picked;
  }
  [[nodiscard]] const CToolPath& path() { return *session.entity<CToolPath>(id); }
  Session session;
  AcDbObjectId id;
};

TEST_F(Picking, APickBesideThePathIsMovedOntoIt) {
  EXPECT_TRUE(pick(squareHole(), {"5,0.3"}));
  EXPECT_TRUE(isBreak(path().breakPoint(), 4, {5, 0.5}));
  EXPECT_EQ(path().ptBreak(), (AcGePoint2d{5, 0}));
}

TEST_F(Picking, AsksAgainUntilThereIsABreak) {
  EXPECT_TRUE(pick(stored(fourAxes()), {"50,50", "", "*1,0", "*6,0"}));
  EXPECT_EQ(path().ptBreak(), (AcGePoint2d{6, 0}));
  EXPECT_EQ(path().breakPoint().ptBreakUpper, (AcGePoint2d{6, 2}));
  std::size_t asked = 0;
  for (auto at = session.out.find("Break: "); at != std::string::npos;
       at = session.out.find("Break: ", at + 1))
    ++asked;
  EXPECT_EQ(asked, 4u);
}

TEST_F(Picking, GivenUpNothingHasChanged) {
  const auto before = squareHole()->breakPoint();
  EXPECT_FALSE(pick(squareHole(), {"50,50", "^C"}));
  EXPECT_EQ(path().breakPoint(), before);
  EXPECT_FALSE(pick(squareHole(), {}));  // nobody answers
}

// Other readers see the path while the user is asked; what is locked meanwhile stays as it is.
TEST_F(Picking, ThePathIsOnlyReadWhileAsking) {
  class Meddler : public InputSource {
   public:
    Meddler(AcEditor& editor, AcDbObjectId path) : editor_(editor), path_(path) {}
    std::optional<std::string> next(const PromptShown&) override {
      auto& db = editor_.database();
      EXPECT_TRUE(db.open<CToolPath>(path_));
      EXPECT_EQ(db.open<CToolPath>(path_, OpenMode::kForWrite).status(), ErrorStatus::eWasOpenForRead);
      EXPECT_EQ(editor_.intVar("OSMODE"), 512);
      db.open<AcDbLayerTableRecord>(db.layer("0"), OpenMode::kForWrite)->setIsLocked(true);
      return "5,0";
    }

   private:
    AcEditor& editor_;
    AcDbObjectId path_;
  };
  id = session.add(squareHole());
  session.ed.pushInput(std::make_shared<Meddler>(session.ed, id));
  auto opened = session.ed.database().open<CToolPath>(id, OpenMode::kForWrite);
  EXPECT_FALSE(pickBreakPoint(session.ed, opened, {"Break: ", kExit}));
  EXPECT_EQ(path().nBreakSeg(), -1);
  EXPECT_TRUE(opened);
  EXPECT_FALSE(opened->isWriteEnabled());
}

}  // namespace
}  // namespace tarnex
