// Edges shifted and steps cut, as geometry and at the prompt.
// Vertices are worked out by hand; the working stands beside them.
#include "pathcmd/edges.h"

#include "pathcmd/autofixtest.h"
#include "pathcmd/pathchange.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Edges : public AutoFixTest {
 protected:
  // The square's path with other vertices behind T and Q.
  static Walked walk(Walked rest, AcGePoint2d entry = {5, 0}) {
    rest.insert(rest.begin(), {{{5, 4}, 0}, {entry, 0}});
    rest.push_back({entry, 0});
    return rest;
  }
};

// ---- shifting

TEST_F(Edges, ShiftBetweenSquareNeighboursByJustTheValue) {
  CToolPath& path = square();
  EXPECT_EQ(shiftEdge(path, {10, 5}, {12, 5}, 0.1).outcome, EdgeShift::kDone);  // right side outward
  EXPECT_TRUE(sameWalk(&path, walk({{{10.1, 0}, 0}, {{10.1, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}})));
  EXPECT_EQ(shiftEdge(path, {10.1, 5}, {0, 5}, 0.3).outcome, EdgeShift::kDone);  // and inward
  EXPECT_TRUE(sameWalk(&path, walk({{{9.8, 0}, 0}, {{9.8, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}})));
  const ShiftedEdge top = shiftEdge(path, {5, 10}, {5, 99}, -1);  // the side says the direction
  EXPECT_NEAR(top.from.distanceTo({9.8, 10}), 0, 1e-12);
  EXPECT_EQ(top.to, (AcGePoint2d{0, 10}));
  EXPECT_TRUE(sameWalk(&path, walk({{{9.8, 0}, 0}, {{9.8, 11}, 0}, {{0, 11}, 0}, {{0, 0}, 0}})));
}

TEST_F(Edges, ShiftClockwiseGoesToTheSameSide) {
  CToolPath& path = enter(mirrored(kSquare), {-5, 4}, {-5, 0}, -1);
  EXPECT_EQ(shiftEdge(path, {-10, 5}, {-12, 5}, 0.1).outcome, EdgeShift::kDone);
  EXPECT_TRUE(sameWalk(&path, mirrored(walk({{{10.1, 0}, 0}, {{10.1, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}}))));
}

// The left side rises at 3:4, so that the sloping neighbour of the top is slid along by value/sin =
// value·5/4.
TEST_F(Edges, ShiftSlidesAlongSlopesAndPlainlyAlongX) {
  const Walked slanted{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 8}, 0}, {{6, 8}, 0}};
  CToolPath& path = enter(slanted, {10, 4}, {10, 0});
  EXPECT_EQ(shiftEdge(path, {13, 8}, {13, 9}, 0.4).outcome, EdgeShift::kDone);
  EXPECT_NEAR(path.getPointAt(3).distanceTo({20, 8.4}), 0, 1e-12);
  EXPECT_NEAR(path.getPointAt(4).distanceTo({6.3, 8.4}), 0, 1e-12);
  // The slope itself has two neighbours along x: each end slides by the plain 0.4.
  EXPECT_EQ(shiftEdge(path, {3.15, 4.2}, {0, 8}, 0.4).outcome, EdgeShift::kDone);
  EXPECT_NEAR(path.getPointAt(4).distanceTo({5.9, 8.4}), 0, 1e-12);
  EXPECT_NEAR(path.getPointAt(5).distanceTo({-0.4, 0}), 0, 1e-12);
}

TEST_F(Edges, ShiftTakesAnArcAlong) {
  const Walked rounded{{{0, 0}, 0},         {{8, 0}, kQuarter}, {{10, 2}, 0},
                       {{10, 8}, kQuarter}, {{8, 10}, 0},       {{0, 10}, 0}};
  CToolPath& path = enter(rounded, {5, 4}, {5, 0});
  EXPECT_EQ(shiftEdge(path, {10, 5}, {12, 5}, 0.5).outcome, EdgeShift::kDone);
  EXPECT_TRUE(sameWalk(&path, walk({{{8.5, 0}, kQuarter},
                                    {{10.5, 2}, 0},
                                    {{10.5, 8}, kQuarter},
                                    {{8.5, 10}, 0},
                                    {{0, 10}, 0},
                                    {{0, 0}, 0}})));
}

// The edge that the entry splits: each half moves by itself, and the lead-in's line is its neighbour.
TEST_F(Edges, ShiftAtTheEntryKeepsThePathClosed) {
  CToolPath& last = square();
  EXPECT_EQ(shiftEdge(last, {2, 0}, {2, -3}, 0.1).outcome, EdgeShift::kDone);
  EXPECT_TRUE(
      sameWalk(&last, walk({{{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, -0.1}, 0}, {{5, -0.1}, 0}})));
  closePath();
  CToolPath& first = square();
  EXPECT_EQ(shiftEdge(first, {7, 0}, {7, -3}, 0.1).outcome, EdgeShift::kDone);
  EXPECT_TRUE(sameWalk(
      &first, walk({{{10, -0.1}, 0}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}, {{5, 0}, 0}}, {5, -0.1})));
  EXPECT_EQ(first.aSegTaper().size(), 8u);
}

TEST_F(Edges, WhatCantBeShiftedStays) {
  const Walked split{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 5}, 0}, {{10, 10}, 0.2}, {{0, 10}, 0}};
  CToolPath& path = enter(split, {5, 4}, {5, 0});
  const PolylineCurve old = path.polyline();
  const struct {
    AcGePoint2d pick;
    double value;
    EdgeShift outcome;
  } cases[] = {{{5, 2}, 1, EdgeShift::kNothing},    // lead-in
               {{77, 2}, 1, EdgeShift::kNothing},   // nowhere
               {{0, 5}, 0, EdgeShift::kNothing},    // by nothing
               {{5, 11}, 1, EdgeShift::kArc},       // top of the arc
               {{10, 3}, 1, EdgeShift::kParallel},  // goes on in a line
               {{10, 8}, 1, EdgeShift::kParallel}};
  for (const auto& c : cases) {
    EXPECT_EQ(shiftEdge(path, c.pick, {20, 20}, c.value).outcome, c.outcome) << c.pick.x << "," << c.pick.y;
    EXPECT_EQ(path.polyline(), old);
  }
}

TEST_F(Edges, DbKeepsItsValueAndLeavesNotes) {
  settings().dTextHeight = 2.5;
  square();
  closePath();
  const AcDbObjectId line = session.line({50, 0}, {60, 0});
  const std::string out =
      run(&DB, {"0.25", "10,5", "12,5", session.handle(line), "0,0", "5,2", "9,9", "77,77", ""});
  EXPECT_THAT(out, HasSubstr("Shift 0.1:"));
  EXPECT_THAT(out, HasSubstr("Shift 0.25:"));
  EXPECT_TRUE(sameWalk(path(), walk({{{10.25, 0}, 0}, {{10.25, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}})));
  EXPECT_EQ(settings().dLeadStep, 0.25);
  const auto all = session.all();
  ASSERT_EQ(all.size(), 4u) << "lead-in and line leave no notes";
  const auto* text = session.entity<AcDbText>(all[2]);
  const auto* edge = session.entity<AcDbLine>(all[3]);
  ASSERT_TRUE(text && edge);
  EXPECT_EQ(text->textString(), module->message(550));
  EXPECT_EQ(text->position(), (AcGePoint3d{10, 5, 0}));
  EXPECT_EQ(text->height(), 2.5);
  EXPECT_EQ(text->colorIndex(), 3);
  EXPECT_EQ(edge->colorIndex(), 1);
  EXPECT_EQ(edge->getStartPoint(), (AcGePoint3d{10, 0, 0}));
  EXPECT_EQ(edge->getEndPoint(), (AcGePoint3d{10, 10, 0}));
  EXPECT_THAT(run(&DB, {"10.25,5", "^C", "0,5", "20,5", ""}), Not(HasSubstr("meets itself")));
  EXPECT_EQ(path()->getPointAt(5), (AcGePoint2d{0.25, 0}));
  EXPECT_THAT(run(&DB, {"12", "0.25,5", "20,5", ""}), HasSubstr("Path 1 now meets itself at"));
}

// ---- steps

class Steps : public Edges {
 protected:
  Walked cut(const Walked& vertices, const Step& step, bool closed = true) {
    AcDbPolyline polyline(PolylineCurve{vertices, closed});
    outcome = cutStep(polyline, step);
    return polyline.polyline().vertices;
  }
  StepCut outcome = StepCut::kOnNoSpan;
};

TEST_F(Steps, GoToTheSideThatIsShown) {
  for (const Walked& contour : {kSquare, mirrored(kSquare)}) {
    const double sign = contour[1].point.x > 0 ? 1 : -1;  // -1: clockwise
    const auto step = [&](AcGePoint2d a, AcGePoint2d b, AcGePoint2d towards) {
      return Step{{sign * a.x, a.y}, {sign * b.x, b.y}, {sign * towards.x, towards.y}, 2};
    };
    const auto wanted = [&](double height) {
      const Walked in{{{0, 0}, 0}, {{3, 0}, 0},  {{3, height}, 0}, {{6, height}, 0},
                      {{6, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0},    {{0, 10}, 0}};
      return sign > 0 ? in : mirrored(in);
    };
    EXPECT_TRUE(sameVertices({cut(contour, step({3, 0}, {6, 0}, {5, 5})), true}, wanted(2)));
    EXPECT_TRUE(sameVertices({cut(contour, step({6, 0}, {3, 0}, {5, 5})), true}, wanted(2)))
        << "in either order";
    EXPECT_TRUE(sameVertices({cut(contour, step({6, 0}, {3, 0}, {5, -1})), true}, wanted(-2)));
  }
  // An open line has no inside: the side of the line itself counts. Its end is an end of the step.
  EXPECT_TRUE(sameVertices({cut({{{0, 0}, 0}, {{9, 0}, 0}}, {{9, 0}, {4, 0}, {1, -3}, 1}, false), false},
                           {{{0, 0}, 0}, {{4, 0}, 0}, {{4, -1}, 0}, {{9, -1}, 0}, {{9, 0}, 0}}));
}

// From 30° to 60° of a circle of radius 10. The pieces of the circle have 30°, 30° and 120°, the step's own
// 30°.
TEST_F(Steps, OnAnArcAreRadial) {
  const Walked circle{{{10, 0}, 1}, {{-10, 0}, 1}};
  const AcGePoint2d a = polarDegrees({}, 30, 10), b = polarDegrees({}, 60, 10);
  const auto wanted = [&](double radius) {
    return Walked{{{10, 0}, bulgeOfDegrees(30)},
                  {a, 0},
                  {polarDegrees({}, 30, radius), bulgeOfDegrees(30)},
                  {polarDegrees({}, 60, radius), 0},
                  {b, bulgeOfDegrees(120)},
                  {{-10, 0}, 1}};
  };
  EXPECT_TRUE(sameVertices({cut(circle, {a, b, {1, 1}, 2}), true}, wanted(8)));
  EXPECT_TRUE(sameVertices({cut(circle, {b, a, {20, 1}, 2}), true}, wanted(12)));
  EXPECT_TRUE(sameVertices({cut(mirrored(circle), {mirrored(b), mirrored(a), {1, 1}, 2}), true},
                           mirrored(wanted(8))));
  // More than half a circle, entered at its start: from 0° to 270°.
  EXPECT_TRUE(sameVertices({cut({{{10, 0}, bulgeOfDegrees(270)}, {{0, -10}, bulgeOfDegrees(90)}},
                                {polarDegrees({}, 240, 10), {10, 0}, {1, 1}, 2}),
                            true},
                           {{{10, 0}, 0},
                            {{8, 0}, bulgeOfDegrees(240)},
                            {polarDegrees({}, 240, 8), 0},
                            {polarDegrees({}, 240, 10), bulgeOfDegrees(30)},
                            {{0, -10}, bulgeOfDegrees(90)}}));
  EXPECT_EQ(cut(circle, {a, b, {1, 1}, 10}), circle) << "to the centre";
  EXPECT_EQ(outcome, StepCut::kNoStep);
}

TEST_F(Steps, WhatIsNoneChangesNothing) {
  EXPECT_EQ(cut(kSquare, {{3, 0}, {10, 4}, {5, 5}, 1}), kSquare);
  EXPECT_EQ(outcome, StepCut::kOnNoSpan);
  EXPECT_EQ(cut(kSquare, {{3, 0}, {3, 0.0004}, {5, 5}, 1}), kSquare);
  EXPECT_EQ(outcome, StepCut::kNoStep);
  EXPECT_EQ(cut({{{0, 0}, 0}, {{9, 0}, 0}}, {{3, 0}, {4, 0}, {1, 0}, 1}, false).size(), 2u);
  EXPECT_EQ(outcome, StepCut::kNoStep);
  CToolPath& path = square();
  EXPECT_EQ(cutStep(path, {{5, 3}, {5, 1}, {1, 1}, 1}), StepCut::kOnNoSpan) << "lead-in";
}

TEST_F(Steps, InAPathTheRestKeepsItsTaper) {
  CToolPath& path = square();
  path.setSegmentTaperAt(2, 1.5);
  path.setCodeAt(3, "top");
  EXPECT_EQ(cutStep(path, {{10, 3}, {10, 6}, {5, 5}, 1}), StepCut::kDone);
  EXPECT_TRUE(sameWalk(&path, walk({{{10, 0}, 0},
                                    {{10, 3}, 0},
                                    {{9, 3}, 0},
                                    {{9, 6}, 0},
                                    {{10, 6}, 0},
                                    {{10, 10}, 0},
                                    {{0, 10}, 0},
                                    {{0, 0}, 0}})));
  EXPECT_EQ(path.aSegTaper(), (std::vector<double>{0, 0, 1.5, 0, 0, 0, 1.5, 0, 0, 0, 0}));
  EXPECT_EQ(path.getCodeAt(7), "top");
}

TEST_F(Steps, AcAsksForPolylineAfterPolyline) {
  const AcDbObjectId plain = addSquare(session);
  const AcDbObjectId line = session.line({50, 0}, {60, 0});
  EXPECT_EQ(run(&AC, {"0"}).find(module->message(57)), std::string::npos);
  EXPECT_EQ(run(&AC, {"-1"}).find(module->message(57)), std::string::npos);
  std::string out = run(&AC, {"2", session.handle(line), "3,0", "6,0", "5,5", "0,3", "10,6", "5,5", ""});
  EXPECT_THAT(out, HasSubstr("The pick is not a path."));
  EXPECT_THAT(out, HasSubstr("Both ends of the step must lie on one span"));
  EXPECT_TRUE(sameVertices(polylineOf(session, plain), {{{0, 0}, 0},
                                                        {{3, 0}, 0},
                                                        {{3, 2}, 0},
                                                        {{6, 2}, 0},
                                                        {{6, 0}, 0},
                                                        {{10, 0}, 0},
                                                        {{10, 10}, 0},
                                                        {{0, 10}, 0}}));
  EXPECT_THAT(run(&AC, {"12", "8,10", "2,10", "5,5", ""}), HasSubstr("The polyline now meets itself at"));
  EXPECT_EQ(run(&AC, {"1", "0,3", "^C"}).find(module->message(59)), std::string::npos);
}

// ---- the break

class BreakPoint : public Edges {
 protected:
  CToolPath& withBreak(AcGePoint2d at) {
    CToolPath& path = square();
    path.setBreakPoint({2, at, {at.x - 0.5, at.y}, 0, 0, {}, {}, 0, 0});
    return path;
  }
  ::testing::AssertionResult breaks(const CToolPath& path, int segment, AcGePoint2d at) {
    if (path.nBreakSeg() == segment && path.ptBreak().distanceTo(at) < 1e-9 &&
        path.ptBreakExit().distanceTo({at.x - 0.5, at.y}) < 1e-9)
      return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "segment " << path.nBreakSeg() << " at " << path.ptBreak().x << "," << path.ptBreak().y;
  }
};

TEST_F(BreakPoint, GoesAlongWithAShiftedEdge) {
  CToolPath& path = withBreak({10, 3});
  shiftEdge(path, {10, 5}, {12, 5}, 0.1);
  EXPECT_TRUE(breaks(path, 2, {10.1, 3}));
  shiftEdge(path, {7, 0}, {7, -3}, 0.1);  // the lower side: the break's own only grows longer
  EXPECT_TRUE(breaks(path, 2, {10.1, 3}));
}

TEST_F(BreakPoint, CountsTheVerticesThatComeInBeforeIt) {
  CToolPath& path = withBreak({10, 3});
  fixCorners(path, sizes(FixKind::kNotchAndRound), everything());
  EXPECT_TRUE(breaks(path, 5, {10, 3}));
  EXPECT_TRUE(fixEntry(path, sizes(FixKind::kSquarePocket)));
  EXPECT_TRUE(breaks(path, 7, {10, 3}));
  closePath();
  CToolPath& stepped = withBreak({10, 8});
  cutStep(stepped, {{10, 2}, {10, 6}, {5, 5}, 1});
  EXPECT_TRUE(breaks(stepped, 6, {10, 8}));
}

// Within what is cut away the nearest point of the path takes it over.
TEST_F(BreakPoint, OfAPieceThatGoesMovesToThePath) {
  CToolPath& stepped = withBreak({10, 4});
  cutStep(stepped, {{10, 2}, {10, 6}, {5, 5}, 1});
  EXPECT_TRUE(breaks(stepped, 4, {9, 4}));
  closePath();
  CToolPath& rounded =
      withBreak({10, 0.2});  // the rounding's centre is (9.6, 0.4): half as far down as across
  fixCorners(rounded, sizes(FixKind::kRoundAll), {{10, 0}, {10, 0}});
  const double down = std::atan(0.5);
  EXPECT_TRUE(breaks(rounded, 2, {9.6 + 0.4 * std::cos(down), 0.4 - 0.4 * std::sin(down)}));
  EXPECT_NEAR(rounded.breakPoint().dBreakBulgeA, std::tan((kPi / 2 - down) / 4), 1e-9);
  EXPECT_NEAR(rounded.breakPoint().dBreakBulgeB, std::tan(down / 4), 1e-9);
}

}  // namespace

}  // namespace tarnex
