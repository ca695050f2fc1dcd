// One contour becomes one path: where it is entered, from where, which way round.
// Expected points are worked out from the drawn shapes.
#include "pathcmd/pathtest.h"

namespace tarnex {

namespace {

const double kQuarterBulge = std::tan(kPi / 8);  // of an arc of 90 degrees

class MakePath : public PathTest {
 protected:
  MakePath() { settings().nSnapMode = 0; }

  // 10 by 10 with a half circle about (10,5) at the right, counter-clockwise.
  AcDbObjectId rounded(double bulge = 1) {
    return addContour(session, {{{0, 0}, 0}, {{10, 0}, bulge}, {{10, 10}, 0}, {{0, 10}, 0}});
  }
};

TEST_F(MakePath, LeadInOnALineForBothSidesAndDirections) {
  struct Case {
    int side, direction;
    AcGePoint2d thread;
  };
  // Inside a hole, outside a shape, whichever way the contour is cut.
  for (const Case& c :
       {Case{1, 1, {4, 3}}, Case{-1, 1, {4, -3}}, Case{1, -1, {4, 3}}, Case{-1, -1, {4, -3}}}) {
    settings().nSide = c.side;
    settings().nDirection = c.direction;
    const AcDbObjectId id = addSquare(session);
    ASSERT_TRUE(pick(id, {4, 0}));
    const AcGePoint2d q{4, 0};
    const std::vector<BulgeVertex> onward{{c.thread, 0}, {q, 0},      {{10, 0}, 0}, {{10, 10}, 0},
                                          {{0, 10}, 0},  {{0, 0}, 0}, {q, 0}};
    const std::vector<BulgeVertex> back{{c.thread, 0}, {q, 0},       {{0, 0}, 0}, {{0, 10}, 0},
                                        {{10, 10}, 0}, {{10, 0}, 0}, {q, 0}};
    EXPECT_TRUE(sameWalk(path(), c.direction > 0 ? onward : back)) << c.side << " " << c.direction;
    EXPECT_EQ(path()->nSide(), c.side);
    EXPECT_EQ(path()->nDirection(), c.direction);
    EXPECT_FALSE(stands(id));
    undoLastPath(drawing(), state());
    drawing().open<AcDbEntity>(session.ed.acdbEntLast(), OpenMode::kForWrite)->erase();
  }
}

TEST_F(MakePath, LeadInOnAnArc) {
  ASSERT_TRUE(pick(rounded(), {15, 5}));
  EXPECT_TRUE(sameWalk(path(), {{{12, 5}, 0},
                                {{15, 5}, kQuarterBulge},
                                {{10, 10}, 0},
                                {{0, 10}, 0},
                                {{0, 0}, 0},
                                {{10, 0}, kQuarterBulge},
                                {{15, 5}, 0}}));
  settings().nSide = -1;
  ASSERT_TRUE(pick(rounded(), {15, 5}));
  EXPECT_TRUE(leadsFrom(path(1), {18, 5}, {15, 5}));
  settings().nSide = 1;
  settings().nDirection = -1;
  ASSERT_TRUE(pick(rounded(), {15, 5}));
  EXPECT_TRUE(leadsFrom(path(2), {12, 5}, {15, 5}));
  // An arc cut into the shape: its inside lies away from its centre.
  settings().nDirection = 1;
  settings().dLeadLen = 2;
  ASSERT_TRUE(pick(rounded(-1), {5, 5}));
  EXPECT_TRUE(leadsFrom(path(3), {3, 5}, {5, 5}));
}

TEST_F(MakePath, SnapsToTheMiddleOrTheNearestPoint) {
  settings().nSnapMode = 1;
  ASSERT_TRUE(pick(addSquare(session), {4, 0}));
  EXPECT_TRUE(leadsFrom(path(), {5, 3}, {5, 0}));
  settings().nSnapMode = 0;
  ASSERT_TRUE(pick(addSquare(session), {10.01, 7}));
  EXPECT_TRUE(leadsFrom(path(1), {7, 7}, {10, 7}));
}

TEST_F(MakePath, AnEntryAtAVertexIsOneVertex) {
  ASSERT_TRUE(pick(addSquare(session), {10, 0}));
  ASSERT_EQ(path()->numVerts(), 6u);  // T, Q, three corners, Q
  for (int i = 2; i < 6; ++i) EXPECT_GT(path()->getPointAt(i).distanceTo(path()->getPointAt(i - 1)), 1);
}

TEST_F(MakePath, ThreadsHalfwayAcrossASlot) {
  const AcDbObjectId slot = addContour(session, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 4}, 0}, {{0, 4}, 0}});
  ASSERT_TRUE(pick(slot, {4, 0}));
  EXPECT_TRUE(leadsFrom(path(), {4, 2}, {4, 0}));
  // Outside: the notch of a U, 4 wide.
  settings().nSide = -1;
  const std::vector<BulgeVertex> u{{{0, 0}, 0},   {{24, 0}, 0},  {{24, 20}, 0}, {{14, 20}, 0},
                                   {{14, 10}, 0}, {{10, 10}, 0}, {{10, 20}, 0}, {{0, 20}, 0}};
  settings().dLeadLen = 5;
  ASSERT_TRUE(pick(addContour(session, u), {14, 15}));
  EXPECT_TRUE(leadsFrom(path(1), {12, 15}, {14, 15}));
  // The line through the lead-in meets all four walls of the U; the arm that was picked is 10 wide.
  settings().nSide = 1;
  settings().dLeadLen = 6;
  ASSERT_TRUE(pick(addContour(session, u), {24, 15}));
  EXPECT_TRUE(leadsFrom(path(2), {19, 15}, {24, 15}));
}

TEST_F(MakePath, BatchOfAnOuterShape) {
  settings().nSide = -1;
  ASSERT_TRUE(batch(addSquare(session)));
  EXPECT_TRUE(leadsFrom(path(), {5, -3}, {5, 0}));
  const auto arcFirst = addContour(session, {{{10, 0}, 1}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}});
  ASSERT_TRUE(batch(arcFirst));
  EXPECT_TRUE(leadsFrom(path(1), {18, 5}, {15, 5}));
  // Three quarters of a circle about (0,0), from (5,0) to (0,-5): its middle lies at 135 degrees, on the
  // other side of the centre than the chord's.
  const auto major = addContour(session, {{{5, 0}, std::tan(3 * kPi / 8)}, {{0, -5}, 0}, {{5, -5}, 0}});
  ASSERT_TRUE(batch(major));
  const double k = std::sqrt(0.5);
  EXPECT_TRUE(leadsFrom(path(2), {-8 * k, 8 * k}, {-5 * k, 5 * k}));
}

TEST_F(MakePath, BatchGoesOnToASpanWithRoom) {
  // A U with a notch 2 wide whose walls and bottom come first: a lead-in of 3 fits none of them.
  settings().nSide = -1;
  const auto u = addContour(session, {{{16, 20}, 0},
                                      {{16, 10}, 0},
                                      {{14, 10}, 0},
                                      {{14, 20}, 0},
                                      {{0, 20}, 0},
                                      {{0, 0}, 0},
                                      {{30, 0}, 0},
                                      {{30, 20}, 0}});
  ASSERT_TRUE(batch(u));
  EXPECT_TRUE(leadsFrom(path(), {7, 23}, {7, 20}));
}

TEST_F(MakePath, BatchOfAHoleThreadsInside) {
  for (const int direction : {1, -1}) {
    settings().nDirection = direction;
    const AcDbObjectId id = rounded();
    const PolylineCurve shape = drawing().peek<AcDbPolyline>(id)->polyline();
    ASSERT_TRUE(batch(id));
    const CToolPath* made = path(state().PathList.size() - 1);
    const AcGePoint2d t = made->getPointAt(0), q = made->getPointAt(1);
    EXPECT_NEAR(t.distanceTo(q), 3, 1e-9);  // the shape has more room than the lead-in is long
    EXPECT_EQ(pointInPolyline(shape, t), 1);
    EXPECT_NEAR(closestPoint(shape, t).distance, 3, 1e-6);
    EXPECT_LT(closestPoint(shape, q).distance, 1e-9);
  }
}

TEST_F(MakePath, Circles) {
  const double k = std::sqrt(0.5);
  ASSERT_TRUE(batch(session.circle({0, 0}, 10)));
  ASSERT_EQ(path()->numVerts(), 4u);
  EXPECT_TRUE(sameWalk(
      path(), {{{7 * k, 7 * k}, 0}, {{10 * k, 10 * k}, 1}, {{-10 * k, -10 * k}, 1}, {{10 * k, 10 * k}, 0}}));
  settings().nSide = -1;
  ASSERT_TRUE(batch(session.circle({0, 0}, 10)));
  EXPECT_TRUE(leadsFrom(path(1), {13 * k, 13 * k}, {10 * k, 10 * k}));
  settings().nSide = 1;
  settings().bThreadAtCentre = 1;
  ASSERT_TRUE(batch(session.circle({1, 2}, 10)));
  EXPECT_TRUE(leadsFrom(path(2), {1, 2}, {1 + 10 * k, 2 + 10 * k}));
  // A lead-in as long as the radius starts at the centre; a shorter one doesn't.
  settings().bThreadAtCentre = 0;
  settings().bFixedLeadAngle = 0;
  ASSERT_TRUE(batch(session.circle({0, 0}, 3)));
  EXPECT_TRUE(leadsFrom(path(3), {0, 0}, {3, 0}));
  ASSERT_TRUE(pick(session.circle({0, 0}, 4), {0, -4}));
  EXPECT_TRUE(leadsFrom(path(4), {0, -1}, {0, -4}));
  settings().nCircleArcs = 5;
  settings().nDirection = -1;
  ASSERT_TRUE(batch(session.circle({0, 0}, 10)));
  ASSERT_EQ(path(5)->numVerts(), 7u);
  EXPECT_NEAR(path(5)->getPointAt(2).y, -10 * std::sin(2 * kPi / 5), 1e-9);
}

TEST_F(MakePath, SmallHoleInACircle) {
  settings().bSmallHole = 1;
  settings().bFixedLeadAngle = 0;
  const AcDbObjectId hole = session.circle({4, 0}, 2), big = session.circle({0, 0}, 10);
  EXPECT_FALSE(batch(hole)) << "a threading hole is no contour";
  ASSERT_TRUE(batch(big));
  EXPECT_TRUE(leadsFrom(path(), {4, 0}, {10, 0}));
  EXPECT_TRUE(stands(hole));
  const AcDbObjectId larger = session.circle({104, 0}, 2.001);
  ASSERT_TRUE(batch(session.circle({100, 0}, 10)));
  EXPECT_TRUE(leadsFrom(path(1), {107, 0}, {110, 0}));
  EXPECT_TRUE(batch(larger));
}

TEST_F(MakePath, SmallHoleInAContour) {
  settings().bSmallHole = 1;
  session.circle({3, 2}, 1);
  ASSERT_TRUE(batch(addSquare(session)));
  EXPECT_TRUE(leadsFrom(path(), {3, 2}, {3, 0}));
  ASSERT_TRUE(pick(addSquare(session), {10, 5}));
  EXPECT_TRUE(leadsFrom(path(1), {3, 2}, {10, 2}));
  EXPECT_TRUE(sameWalk(
      path(1),
      {{{3, 2}, 0}, {{10, 2}, 0}, {{10, 10}, 0}, {{0, 10}, 0}, {{0, 0}, 0}, {{10, 0}, 0}, {{10, 2}, 0}}));
}

TEST_F(MakePath, SmallHoleAtTheCentreOfAnArc) {
  // The feet on the lines above and below fall on vertices, as near as the arc itself; the arc is entered.
  settings().bSmallHole = 1;
  session.circle({10, 5}, 1);
  ASSERT_TRUE(batch(rounded()));
  EXPECT_TRUE(leadsFrom(path(), {10, 5}, {15, 5}));
}

TEST_F(MakePath, SameHolesFollowAPickedOne) {
  settings().bSameHoles = 1;
  const AcDbObjectId first = session.circle({0, 0}, 5);
  session.circle({40, 0}, 5.0009);
  session.circle({20, 0}, 4.9995);
  const AcDbObjectId other = session.circle({60, 0}, 5.002);
  module->saveSettings();
  ASSERT_TRUE(makePathFromPick(*module, {MakeMode::kPick, first, {5, 0}, 0, nullptr}));
  ASSERT_EQ(state().PathList.size(), 3u);
  EXPECT_TRUE(stands(other));
  EXPECT_NEAR(path(1)->contour().ptCenter.x, 20, 1e-9);  // the nearest comes next
  // Of an outer shape there is just one.
  settings().nSide = -1;
  session.circle({60, 20}, 5.002);
  module->saveSettings();
  ASSERT_TRUE(makePathFromPick(*module, {MakeMode::kPick, other, {65, 0}, 0, nullptr}));
  EXPECT_EQ(state().PathList.size(), 4u);
}

TEST_F(MakePath, FractionOfASpan) {
  ASSERT_TRUE(pick(addSquare(session), {2, 0}, 0.25));
  // Picked in the first half: cut the other way round.
  EXPECT_TRUE(leadsFrom(path(), {2.5, -3}, {2.5, 0}));
  EXPECT_EQ(path()->getPointAt(2), (AcGePoint2d{0, 0}));
  EXPECT_EQ(path()->nDirection(), -1);
  EXPECT_EQ(path()->nSide(), -1);
  ASSERT_TRUE(pick(addSquare(session), {8, 0}, 0.25));
  EXPECT_TRUE(leadsFrom(path(1), {7.5, -3}, {7.5, 0}));
  EXPECT_EQ(path(1)->nDirection(), 1);
  // A quarter of the half circle from its nearer end: 45 degrees before the top.
  ASSERT_TRUE(pick(rounded(), {10 + 5 * std::cos(1.2), 5 + 5 * std::sin(1.2)}, 0.25));
  const double k = std::sqrt(0.5);
  EXPECT_TRUE(leadsFrom(path(2), {10 + 8 * k, 5 + 8 * k}, {10 + 5 * k, 5 + 5 * k}));
  // What a call changes for itself is as before, in memory and in the file.
  for (int again = 0; again < 2; ++again) {
    EXPECT_EQ(settings().nSide, 1);
    EXPECT_EQ(settings().nDirection, 1);
    EXPECT_EQ(settings().nSnapMode, 0);
    module->loadSettings();
  }
}

TEST_F(MakePath, RefusesWhatIsOpenOrAPath) {
  const auto open = addContour(session, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 0.0011}, 0}}, false);
  session.out.clear();
  EXPECT_FALSE(pick(open, {5, 0}));
  EXPECT_NE(session.out.find(module->message(74)), std::string::npos);
  const AcDbObjectId chained = session.ed.acdbEntLast();  // stays in the drawing
  EXPECT_FALSE(pick(chained, {5, 0}, 0.5));
  EXPECT_NE(session.out.find(module->message(41)), std::string::npos);
  EXPECT_EQ(session.all().size(), 1u);
  EXPECT_EQ(settings().nSide, 1);
  // Ends within a thousandth are one point.
  const auto shut = addContour(session, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 0.0009}, 0}}, false);
  EXPECT_TRUE(pick(shut, {5, 0}));
  ASSERT_EQ(state().PathList.size(), 1u);
  EXPECT_FALSE(pick(state().PathList[0], {5, 0}));
  EXPECT_TRUE(stands(state().PathList[0]));
}

TEST_F(MakePath, UndoBringsBackOnePolyline) {
  const AcGePoint2d corners[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  std::vector<AcDbObjectId> lines;
  for (int i = 0; i < 4; ++i) lines.push_back(session.line(corners[i], corners[(i + 1) % 4]));
  ASSERT_TRUE(pick(lines[2], {6, 10}));
  EXPECT_EQ(session.all().size(), 1u);
  EXPECT_EQ(state().nextPathNo, 2);
  EXPECT_EQ(state().lastEnd, path()->getEndPoint(true));
  undoLastPath(drawing(), state());
  ASSERT_EQ(session.all().size(), 1u);
  const auto* restored = session.last<AcDbPolyline>();
  ASSERT_TRUE(restored);
  EXPECT_FALSE(restored->isKindOf(CToolPath::desc()));
  EXPECT_TRUE(restored->isClosed());
  EXPECT_EQ(restored->numVerts(), 4u);
  EXPECT_NEAR(std::abs(signedArea(restored->polyline().vertices)), 100, 1e-9);
  EXPECT_EQ(state().lastEnd, kNoLastEnd);
  EXPECT_EQ(state().nextPathNo, 1);
  undoLastPath(drawing(), state());
  EXPECT_EQ(session.all().size(), 1u);
}

TEST_F(MakePath, TakesLayerAndColour) {
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName("CUT");
  const AcDbObjectId layer = drawing().addLayer(std::move(record));
  const AcDbObjectId id = addSquare(session);
  {
    auto entity = drawing().open<AcDbEntity>(id, OpenMode::kForWrite);
    entity->setLayer(layer);
    entity->setColorIndex(3);
  }
  ASSERT_TRUE(batch(id));
  EXPECT_EQ(path()->layerId(), layer);
  EXPECT_EQ(path()->colorIndex(), 3);
  EXPECT_EQ(path()->nColor(), 3);
}

}  // namespace

}  // namespace tarnex
