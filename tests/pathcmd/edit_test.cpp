// The edit commands typed by name: what each changes, what it refuses, and that u and redo are exact.
// Vertices are worked out by hand on squares of 20.
#include "pathcmd/edittest.h"

namespace tarnex {

namespace {

using ::testing::ElementsAre;

const std::vector<BulgeVertex> kSquare{{{10, 10}, 0}, {{20, 10}, 0}, {{20, 20}, 0}, {{0, 20}, 0},
                                       {{0, 0}, 0},   {{20, 0}, 0},  {{20, 10}, 0}};

// ---- CD, CM

TEST_F(EditTest, CdReversesEachPickedPath) {
  const AcDbObjectId id = squarePath({0, 0}), open = openPath({50, 0}), line = session.line({0, 90}, {9, 90});
  const std::string out = type({"CD", "20,15", "300,300", at(line, "3,90"), at(open, "70,15"), "&FFFFF", ""});
  EXPECT_EQ(times(out, module->message(55)), 6);
  EXPECT_EQ(times(out, module->message(54)), 1);
  EXPECT_TRUE(says(out, "\n" + module->message(19)));
  EXPECT_TRUE(sameWalk(
      pathOf(id),
      {{{10, 10}, 0}, {{20, 10}, 0}, {{20, 0}, 0}, {{0, 0}, 0}, {{0, 20}, 0}, {{20, 20}, 0}, {{20, 10}, 0}}));
  EXPECT_EQ(pathOf(id)->nDirection(), -1);
  EXPECT_EQ(pathOf(open)->nDirection(), 1);
  type({"CD", at(id, "20,15"), "^C"});
  EXPECT_TRUE(sameWalk(pathOf(id), kSquare)) << "what was picked before a cancel stays";
}

TEST_F(EditTest, CmMovesTheLeadInAndTheNextPathStartsThere) {
  const AcDbObjectId first = squarePath({0, 0}), second = squarePath({50, 0}), open = openPath({100, 0});
  const std::string out = type({"CM", "20,15", at(open, "120,15"), ""});
  EXPECT_TRUE(says(out, "\n" + module->message(20)));
  auto wanted = kSquare;
  wanted[0].point = {30, 10};
  EXPECT_TRUE(sameWalk(pathOf(first), wanted));
  EXPECT_EQ(pathOf(first)->nSide(), kOuterShape);
  EXPECT_LT(pathOf(second)->getPrevEnd().distanceTo({30, 10}), 1e-9);
  EXPECT_EQ(pathOf(open)->nSide(), kInnerHole);
  session.run({"u"});
  EXPECT_EQ(pathOf(second)->getPrevEnd(), (AcGePoint2d{10, 10}));
  lockLayerOf(first);
  EXPECT_TRUE(says(type({"CM", "20,15", ""}), module->message(20210)));
  EXPECT_TRUE(sameWalk(pathOf(first), kSquare));
}

// ---- QQ

TEST_F(EditTest, QqBringsContoursBackAndClosesTheNumbers) {
  settings().nSnapMode = 0;
  session.line({0, 0}, {20, 0});
  session.line({20, 0}, {10, 15});
  session.line({10, 15}, {0, 0});
  const std::string made = run(&BP, {"10,0", ""});
  ASSERT_EQ(state().PathList.size(), 1u) << made;
  const AcDbObjectId round = circlePath({80, 0}, 5), last = squarePath({100, 0});
  const AcDbObjectId line = session.line({0, 90}, {9, 90});
  // The chained path and what is no path; taken out and added again; then nothing more.
  const std::string out = type(
      {"QQ", session.handle(state().PathList[0]) + " " + session.handle(line) + " " + session.handle(round),
       "r", session.handle(round), "", ""});
  EXPECT_TRUE(says(out, module->message(51)));
  EXPECT_TRUE(says(out, module->message(52)));
  EXPECT_THAT(state().PathList, ElementsAre(round, last));
  EXPECT_THAT(numbers(state().PathList), ElementsAre(1, 2));
  EXPECT_TRUE(stands(line));
  const auto* contour = session.last<AcDbPolyline>();  // one, of three vertices
  ASSERT_TRUE(contour);
  EXPECT_TRUE(contour->isClosed());
  ASSERT_EQ(contour->numVerts(), 3);
  double around = 0;
  for (int i = 0; i < 3; ++i) around += contour->getPointAt(i).distanceTo(contour->getPointAt((i + 1) % 3));
  EXPECT_NEAR(around, 20 + 2 * std::hypot(10, 15), 1e-9);
  type({"QQ", "all", "", ""});
  EXPECT_TRUE(state().PathList.empty());
  EXPECT_EQ(state().lastEnd, kNoLastEnd);
  const auto* circle = session.entity<AcDbCircle>(session.all()[session.all().size() - 2]);
  ASSERT_TRUE(circle);
  EXPECT_EQ(circle->center(), (AcGePoint3d{80, 0, 0}));
  EXPECT_EQ(circle->radius(), 5);
}

TEST_F(EditTest, QqStopsAtAPathThatCannotBeOpened) {
  const AcDbObjectId a = squarePath({0, 0}), b = squarePath({50, 0}), c = squarePath({100, 0});
  lockLayerOf(b);
  const std::string out = type({"QQ", "all", "", ""});
  EXPECT_TRUE(says(out, module->message(20210)));
  EXPECT_FALSE(stands(a));
  EXPECT_TRUE(stands(b) && stands(c));
  // The locked one keeps its number; the wire still passes it.
  EXPECT_THAT(state().PathList, ElementsAre(b, c));
  EXPECT_THAT(numbers(state().PathList), ElementsAre(2, 2));
  EXPECT_EQ(pathOf(c)->getPrevEnd(), (AcGePoint2d{60, 10}));
  drawing().open<AcDbLayerTableRecord>(drawing().layer("LOCKED"), OpenMode::kForWrite)->setIsLocked(false);
  rebuildPathList(*module);
  EXPECT_THAT(numbers(state().PathList), ElementsAre(1, 2));
  type({"QQ", "^C"});
  EXPECT_EQ(state().PathList.size(), 2u);
}

// ---- SR, SR0

TEST_F(EditTest, SrMarksOneCornerAndSr0TakesTheMarkAway) {
  const double k90 = std::tan(kPi / 8);
  const PolylineCurve contour{{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 15}, k90}, {{15, 20}, 0}, {{0, 20}, 0}},
                              true};
  const AcDbObjectId id = contourPath({{10, 10}, {20, 10}, 1, 1, 0.08, 0}, contour, 1);
  const AcDbObjectId line = session.line({0, 90}, {9, 90});
  // 45 degrees on the corner about (15,15): 15 + 5 cos 45.
  const std::string corner = "18.5355339,18.5355339";
  const std::string out = type({"SR", corner, corner, "20,13", at(line, "3,90"), "200,200", ""});
  EXPECT_TRUE(says(out, "\n只能选择转角的圆弧！"));
  EXPECT_EQ(times(out, module->message(54)), 1);
  EXPECT_EQ(times(out, "请选择上下要处理的角："), 6);
  EXPECT_THAT(pathOf(id)->aCodeVertex(), ElementsAre(2));
  EXPECT_THAT(pathOf(id)->aCodeText(), ElementsAre("R"));
  // T Q (20,0) (0,0) (0,20) (15,20) (20,15) Q: the arc now starts at vertex 5.
  type({"CD", "20,13", ""});
  EXPECT_THAT(pathOf(id)->aCodeVertex(), ElementsAre(5));
  EXPECT_LT(pathOf(id)->getBulgeAt(5), 0);
  type({"SR0", corner, ""});
  EXPECT_TRUE(pathOf(id)->aCodeVertex().empty());
}

// ---- CS beside the others: the highlight of an exchange goes on every way out

TEST_F(EditTest, CsSwapLeavesNothingHighlighted) {
  const AcDbObjectId a = squarePath({0, 0}), b = squarePath({50, 0});
  type({"CS", "W", session.handle(a), session.handle(b), session.handle(a), "", "", ""});
  EXPECT_THAT(state().PathList, ElementsAre(b, a));
  EXPECT_FALSE(pathOf(a)->isHighlighted());
  EXPECT_FALSE(pathOf(b)->isHighlighted());
}

}  // namespace

}  // namespace tarnex
