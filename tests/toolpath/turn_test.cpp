// What hangs on a path's vertices and spans stays there when the path is turned, entered from the other side
// or given a vertex more; and the mark on a corner. Breaks and upper contours are compared as stored records.
#include <gtest/gtest.h>

#include "drawlog.h"
#include "support/modulefixture.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

// Bulges of 90, 60 and 30 degrees.
const double k90 = bulgeOfDegrees(90), k60 = bulgeOfDegrees(60), k30 = bulgeOfDegrees(30);

std::string record(const CToolPath& path) {
  AcDbDwgFiler filer;
  EXPECT_EQ(path.dwgOutFields(filer), ErrorStatus::eOk);
  return filer.bytes();
}

// The quarter about (0,0) from (10,0) to (0,10), entered at (10,0): T, Q, (0,10), (0,0), Q.
StoredPath quarter() {
  return {.vertices = {{{5, 2}, 0}, {{10, 0}, k90}, {{0, 10}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}};
}

TEST(PathBreak, FollowsItsSpanWhenThePathIsReversed) {
  StoredPath before = quarter();
  before.nBreakSeg = 1;  // on the arc, 30 degrees after its start: bulges of 30 and 60 degrees
  before.ptBreak = acutPolar({0, 0}, kPi / 6, 10);
  before.ptBreakExit = acutPolar({0, 0}, kPi / 6, 8);
  before.dBreakBulgeA = k30;
  before.dBreakBulgeB = k60;
  const auto path = stored(before);
  ASSERT_TRUE(path->reverse());
  // T, Q, (0,0), (0,10), Q: the arc is span 3 of 5 vertices, run clockwise, first its 60 degrees.
  StoredPath after = before;
  after.vertices = {{{5, 2}, 0}, {{10, 0}, 0}, {{0, 0}, 0}, {{0, 10}, -k90}, {{10, 0}, 0}};
  after.nDirection = -1;
  after.nBreakSeg = 3;
  after.dBreakBulgeA = -k60;
  after.dBreakBulgeB = -k30;
  EXPECT_EQ(record(*path), record(*stored(after)));
  ASSERT_TRUE(path->reverse());
  EXPECT_EQ(record(*path), record(*stored(before)));
  for (int seg : {0, 4}) {  // to and from the threading point
    before.nBreakSeg = seg;
    const auto apart = stored(before);
    ASSERT_TRUE(apart->reverse());
    EXPECT_EQ(apart->nBreakSeg(), seg);
  }
}

TEST(PathBreak, LeavesForTheSideThatThePathIsEnteredFrom) {
  auto fields = quarter();
  fields.nBreakSeg = 2;
  fields.ptBreak = {0, 6};
  fields.ptBreakExit = {1, 6};
  const auto path = stored(fields);
  ASSERT_TRUE(path->flipSide());
  EXPECT_NEAR(path->ptBreakExit().distanceTo({-1, 6}), 0, 1e-12);
  EXPECT_EQ(path->ptBreak(), (AcGePoint2d{0, 6}));
  EXPECT_NEAR(path->getPointAt(0).distanceTo({15, -2}), 0, 1e-12);
}

TEST(PathBreak, KeepsItsPlaceAmongMoreVertices) {
  auto fields = quarter();
  fields.nBreakSeg = 2;
  fields.ptBreak = {0, 6};
  const auto seg = [&](int index, AcGePoint2d p) {
    const auto path = stored(fields);
    path->addVertexAt(index, p, 0);
    return path->nBreakSeg();
  };
  EXPECT_EQ(seg(2, {5, 5}), 3);  // before its span
  EXPECT_EQ(seg(3, {0, 7}), 3);  // on it, passed before the break
  EXPECT_EQ(seg(3, {0, 5}), 2);  // on it, behind the break
  EXPECT_EQ(seg(4, {3, 0}), 2);  // behind its span
  // On the arc, broken at 30 degrees; split at 60 and at 15 degrees.
  fields.nBreakSeg = 1;
  fields.ptBreak = acutPolar({0, 0}, kPi / 6, 10);
  fields.dBreakBulgeA = k30;
  fields.dBreakBulgeB = k60;
  const auto split = [&](double degrees, double first, double second, int at, double a, double b) {
    const AcGePoint2d p = acutPolar({0, 0}, degrees * kPi / 180, 10);
    const auto path = stored(fields);
    path->addVertexAt(2, p, bulgeOfDegrees(second));
    path->setBulgeAt(1, bulgeOfDegrees(first));
    StoredPath after = fields;
    after.vertices.insert(after.vertices.begin() + 2, {p, bulgeOfDegrees(second)});
    after.vertices[1].bulge = bulgeOfDegrees(first);
    after.nBreakSeg = at;
    EXPECT_EQ(path->nBreakSeg(), at);
    // The halves to nine digits: read from the record that would be stored.
    after.dBreakBulgeA = bulgeOfDegrees(a);
    after.dBreakBulgeB = bulgeOfDegrees(b);
    const auto double8 = [](const std::string& bytes, std::size_t fromEnd) {
      double v = 0;
      std::memcpy(&v, bytes.data() + bytes.size() - fromEnd, 8);
      return v;
    };
    const std::string got = record(*path), wanted = record(*stored(after));
    ASSERT_EQ(got.size(), wanted.size());
    // Behind the two: two bulges, two points, the count of code texts.
    for (std::size_t fromEnd : {2 + 32 + 16 + 16, 2 + 32 + 16 + 8})
      EXPECT_NEAR(double8(got, fromEnd), double8(wanted, fromEnd), 1e-9) << degrees;
  };
  split(60, 60, 30, 1, 30, 30);
  split(15, 15, 75, 2, 15, 60);
}

TEST(PathTurning, PartnersOfTheUpperContourStayPartners) {
  StoredPath before{.vertices = {{{5, 2}, 0}, {{10, 0}, k90}, {{0, 10}, 0}, {{0, 0}, 0}, {{10, 0}, 0}},
                    .nFlags = kFourAxis,
                    .upper = {{{5, 3}, {9, 0}, {0, 9}, {1, 1}, {9, 0}}, {0, k90, 0, 0.25, 0}},
                    .aSyncMark = {3, 3, 1, 2, 3}};
  const auto path = stored(before);
  ASSERT_TRUE(path->reverse());
  StoredPath after = before;
  after.vertices = {{{5, 2}, 0}, {{10, 0}, 0}, {{0, 0}, 0}, {{0, 10}, -k90}, {{10, 0}, 0}};
  after.upper = {{{5, 3}, {9, 0}, {1, 1}, {0, 9}, {9, 0}}, {0, -0.25, 0, -k90, 0}};
  after.aSyncMark = {3, 3, 2, 1, 3};
  after.nDirection = -1;
  EXPECT_EQ(record(*path), record(*stored(after)));
  ASSERT_TRUE(path->flipSide());
  // Each threading point through its own entry.
  EXPECT_NEAR(path->getPointAt(0).distanceTo({15, -2}), 0, 1e-12);
  EXPECT_NEAR(path->upper().vertices[0].distanceTo({13, -3}), 0, 1e-12);
}

// A square of 20 whose corner at (20,20) is rounded by 5 and whose corner at (0,20) is two arcs in a row.
// T (10,10), Q (20,10), (20,15) arc (15,20), (5,20) arc (2,19) arc (0,15), (0,0), (20,0), Q.
std::unique_ptr<CToolPath> cornered() {
  return stored({.vertices = {{{10, 10}, 0},
                              {{20, 10}, 0},
                              {{20, 15}, k90},
                              {{15, 20}, 0},
                              {{5, 20}, 0.1},
                              {{2, 19}, 0.1},
                              {{0, 15}, 0},
                              {{0, 0}, 0},
                              {{20, 0}, 0},
                              {{20, 10}, 0}},
                 .nFlags = 1 | kAllCornersR});
}

using Mark = CToolPath::CornerMark;
const AcGePoint2d kOnCorner = acutPolar({15, 15}, kPi / 4, 5);
AcGePoint2d middle(AcGePoint2d a, AcGePoint2d b, double bulge) {
  return midpoint(a, b) + (b - a).perpVector() * (-bulge / 2);
}

TEST(CornerMark, OneMarkOnAnArcBetweenTwoLines) {
  const auto path = cornered();
  EXPECT_EQ(path->markCorner(kOnCorner, true), Mark::kDone);
  EXPECT_EQ(path->markCorner(kOnCorner, true), Mark::kDone);
  EXPECT_EQ(path->aCodeVertex(), std::vector<int>{2});
  EXPECT_EQ(path->aCodeText(), std::vector<std::string>{"R"});
  EXPECT_EQ(path->flags(), 1) << "single marks take the place of the mark for all";
  EXPECT_EQ(path->markCorner(kOnCorner, false), Mark::kDone);
  EXPECT_TRUE(path->aCodeVertex().empty());
  EXPECT_TRUE(path->aCodeText().empty());
  EXPECT_EQ(path->markCorner(kOnCorner, false), Mark::kDone);
  path->setCodeAt(2, "M0");
  EXPECT_EQ(path->markCorner(kOnCorner, true), Mark::kDone);
  EXPECT_EQ(path->getCodeAt(2), "M0") << "what stands there stays";
}

TEST(CornerMark, RefusalsChangeNoCode) {
  const auto path = cornered();
  EXPECT_EQ(path->markCorner({50, 50}, true), Mark::kNoSegment);
  EXPECT_EQ(path->markCorner({20, 12}, true), Mark::kStraight);
  EXPECT_EQ(path->markCorner(middle({5, 20}, {2, 19}, 0.1), true), Mark::kNextIsArc);
  EXPECT_EQ(path->markCorner(middle({2, 19}, {0, 15}, 0.1), true), Mark::kPreviousIsArc);
  EXPECT_TRUE(path->aCodeVertex().empty());
  EXPECT_TRUE(path->hasFlag(kAllCornersR));
  EXPECT_EQ(path->markCorner({50, 50}, false), Mark::kNoSegment);
  EXPECT_FALSE(path->hasFlag(kAllCornersR)) << "taken off before anything is looked for";
  EXPECT_EQ(CToolPath().markCorner({0, 0}, true), Mark::kNoSegment);
}

}  // namespace
}  // namespace tarnex
