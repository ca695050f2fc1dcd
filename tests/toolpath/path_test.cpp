// How a contour becomes a path, what is turned, moved and marked on it, and the lists for ISO programs.
// Knows one path; no NC format.
#include <gtest/gtest.h>

#include "drawlog.h"
#include "frame/settings.h"
#include "support/modulefixture.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

// tan(22.5°), tan(15°), tan(7.5°): bulges of 90, 60 and 30 degrees.
const double k90 = std::tan(kPi / 8), k60 = std::tan(kPi / 12), k30 = std::tan(kPi / 24);

CToolPath::Making making(AcGePoint2d thread, AcGePoint2d entry, int side = 1, int direction = 1) {
  return {thread, entry, side, direction, 0.1, 0};
}

TEST(PathMaking, ACircleInArcsFromTheEntrysDirection) {
  CToolPath path;
  ASSERT_TRUE(path.initCircle(making({5, 5}, {5, 15}), {5, 5}, 10, 4));
  EXPECT_TRUE(sameVertices(
      path.polyline(),
      {{{5, 5}, 0}, {{5, 15}, k90}, {{-5, 5}, k90}, {{5, -5}, k90}, {{15, 5}, k90}, {{5, 15}, 0}}));
  EXPECT_TRUE(path.bCircle());
  EXPECT_EQ(path.contour().dRadius, 10);
  EXPECT_TRUE(path.contour().aContour.empty());
  EXPECT_EQ(path.aSegTaper(), std::vector<double>(6, 0));
  CToolPath clockwise;
  ASSERT_TRUE(clockwise.initCircle(making({20, 5}, {15, 5}, -1, -1), {5, 5}, 10, 2));
  EXPECT_TRUE(sameVertices(clockwise.polyline(), {{{20, 5}, 0}, {{15, 5}, -1}, {{-5, 5}, -1}, {{15, 5}, 0}}));
}

TEST(PathMaking, ACircleThatCannotBeIsRefusedAndOneArcBecomesTwo) {
  CToolPath path;
  EXPECT_FALSE(path.initCircle(making({5, 5}, {5, 15}), {5, 5}, 10, 0));
  EXPECT_FALSE(path.initCircle(making({5, 5}, {5, 15}), {5, 5}, 0, 4));
  EXPECT_FALSE(path.initCircle(making({5, 15}, {5, 15.0005}), {5, 5}, 10, 4));  // no lead-in
  ASSERT_TRUE(path.initCircle(making({5, 5}, {5, 15}), {5, 5}, 10, 1));
  EXPECT_TRUE(sameVertices(path.polyline(), {{{5, 5}, 0}, {{5, 15}, 1}, {{5, -5}, 1}, {{5, 15}, 0}}));
}

TEST(PathMaking, AContourIsSplitAtTheEntry) {
  // A quarter disc about (0,0): the arc from (10,0) to (0,10) is span 1, entered at 30 degrees.
  const PolylineCurve contour{{{{0, 0}, 0}, {{10, 0}, k90}, {{0, 10}, 0}}, true};
  const AcGePoint2d q = acutPolar({0, 0}, kPi / 6, 10);
  CToolPath path;
  ASSERT_TRUE(path.initContour(making({3, 2}, q), contour, 1));
  EXPECT_TRUE(sameVertices(path.polyline(),
                           {{{3, 2}, 0}, {q, k60}, {{0, 10}, 0}, {{0, 0}, 0}, {{10, 0}, k30}, {q, 0}}));
  EXPECT_EQ(path.contour().aContour, (std::vector<AcGePoint3d>{{0, 0, 0}, {10, 0, k90}, {0, 10, 0}}));
  EXPECT_EQ(path.flags(), 1);
  EXPECT_TRUE(path.bClosed());
  EXPECT_NEAR(path.contourLength(), 20 + 5 * kPi, 1e-9);
}

TEST(PathMaking, AnEntryAtAVertexDoublesNothing) {
  const PolylineCurve contour{{{{0, 0}, 0}, {{10, 0}, k90}, {{0, 10}, 0}}, true};
  for (int span : {0, 1}) {  // the span that ends there, and the one that starts there
    CToolPath path;
    ASSERT_TRUE(path.initContour(making({3, 2}, {10, 0}), contour, span));
    EXPECT_TRUE(
        sameVertices(path.polyline(), {{{3, 2}, 0}, {{10, 0}, k90}, {{0, 10}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}))
        << span;
    EXPECT_EQ(path.aSegTaper().size(), 5u);
  }
  CToolPath none;
  EXPECT_FALSE(none.initContour(making({3, 2}, {10, 0}), contour, 3));
  EXPECT_FALSE(none.initContour(making({10, 0}, {10, 0}), contour, 0));
}

// ---- turning

TEST(PathTurning, ReversedByHandAndTwiceTheSame) {
  auto path = squareHole();  // T, Q (20,10), (20,20), (0,20), (0,0), (20,0), Q
  path->setPointAt(2, {20, 18});
  path->setBulgeAt(2, 0.25);
  ASSERT_TRUE(path->setSegmentTaper({20, 5}, 1.5));  // the last segment
  for (int vertex : {0, 1, 2, 6}) path->setCodeAt(vertex, "at " + std::to_string(vertex));
  const auto vertices = path->polyline().vertices;
  const auto tapers = path->aSegTaper();
  ASSERT_TRUE(path->reverse());
  EXPECT_TRUE(sameVertices(path->polyline(), {{{10, 10}, 0},
                                              {{20, 10}, 0},
                                              {{20, 0}, 0},
                                              {{0, 0}, 0},
                                              {{0, 20}, -0.25},
                                              {{20, 18}, 0},
                                              {{20, 10}, 0}}));
  for (const auto& v : path->polyline().vertices) EXPECT_FALSE(v.bulge == 0 && std::signbit(v.bulge));
  EXPECT_EQ(path->aSegTaper(), (std::vector<double>{0, 1.5, 0, 0, 0, 0, 0}));
  EXPECT_EQ(path->nDirection(), -1);
  EXPECT_EQ(path->nSide(), 1);
  // n = 7: vertex v becomes 7 - v; the threading point keeps its code.
  EXPECT_EQ(path->aCodeVertex(), (std::vector<int>{0, 6, 5, 1}));
  ASSERT_TRUE(path->reverse());
  EXPECT_EQ(path->polyline().vertices, vertices);
  EXPECT_EQ(path->aSegTaper(), tapers);
  EXPECT_EQ(path->aCodeVertex(), (std::vector<int>{0, 1, 2, 6}));
}

TEST(PathTurning, OfSixVerticesTheSecondBecomesTheFourth) {
  auto path = roundHole(1);
  ASSERT_EQ(path->numVerts(), 6);
  path->setCodeAt(2, "R");
  ASSERT_TRUE(path->reverse());
  EXPECT_EQ(path->getCodeAt(4), "R");
  EXPECT_EQ(path->getCodeAt(2), "");
}

TEST(PathTurning, FlippedTheLeadInKeepsItsLength) {
  auto path = squareHole();
  ASSERT_TRUE(path->flipSide());
  EXPECT_NEAR(path->getPointAt(0).distanceTo({30, 10}), 0, 1e-9);
  EXPECT_EQ(path->nSide(), -1);
  EXPECT_EQ(path->nDirection(), 1);
}

TEST(PathTurning, OpenPathsRefuse) {
  const auto open =
      stored({.vertices = {{{0, 0}, 0}, {{5, 0}, 0}, {{9, 9}, 0}}, .nFlags = 2, .bClosed = false});
  const auto before = open->polyline().vertices;
  EXPECT_FALSE(open->reverse());
  EXPECT_FALSE(open->flipSide());
  EXPECT_FALSE(open->setClearance(0.5));
  EXPECT_EQ(open->polyline().vertices, before);
  EXPECT_EQ(open->dClearance(), 0);
  const auto empty = stored({});
  EXPECT_FALSE(empty->flipSide());
  EXPECT_TRUE(empty->reverse());
}

TEST(PathTurning, MovesAndMirrorsCarryTheWireAlong) {
  const AcGeMatrix3d moves[] = {AcGeMatrix3d::translation({7, -3, 0}), AcGeMatrix3d::rotation(0.7, {4, 4}),
                                AcGeMatrix3d::mirroring({0, 0}, {1, 3}),
                                AcGeMatrix3d::rotation(1, {0, 0}) * AcGeMatrix3d::mirroring({5, 0}, {5, 1})};
  for (const auto& m : moves) {
    const double turn = m.determinant2d() < 0 ? -1 : 1;
    for (auto make :
         {+[] { return squareHole(); }, +[] { return squarePunch(); }, +[] { return roundHole(-1); }}) {
      const auto before = make(), after = make();
      ASSERT_EQ(after->transformBy(m), ErrorStatus::eOk);
      EXPECT_EQ(after->nDirection(), before->nDirection() * turn);
      EXPECT_EQ(after->nSide(), before->nSide());
      const auto wire = before->wireCentrePath(), moved = after->wireCentrePath();
      ASSERT_EQ(moved.vertices.size(), wire.vertices.size());
      for (std::size_t i = 0; i < wire.vertices.size(); ++i) {
        EXPECT_NEAR(moved.vertices[i].distanceTo(m.apply(wire.vertices[i])), 0, 1e-9);
        EXPECT_NEAR(moved.bulges[i], turn * wire.bulges[i], 1e-9);
      }
      const auto source = before->contour().aContour, turned = after->contour().aContour;
      ASSERT_EQ(source.size(), turned.size());
      for (std::size_t i = 0; i < source.size(); ++i) {
        EXPECT_NEAR(turned[i].flat().distanceTo(m.apply(source[i].flat())), 0, 1e-9);
        EXPECT_EQ(turned[i].z, turn * source[i].z);
      }
      EXPECT_EQ(after->contour().dRadius, before->contour().dRadius);
    }
  }
}

TEST(PathTurning, AScaledCircleGivesBackAScaledSource) {
  auto path = roundHole(1);
  ASSERT_EQ(path->transformBy(AcGeMatrix3d::scaling(2, {10, 0})), ErrorStatus::eOk);
  const auto sources = path->restoredContour();
  ASSERT_EQ(sources.size(), 1u);
  const auto& circle = dynamic_cast<const AcDbCircle&>(*sources[0]);
  EXPECT_NEAR(circle.radius(), 20, 1e-9);
  EXPECT_NEAR(circle.center().flat().distanceTo({-10, 0}), 0, 1e-9);
}

// ---- marks and fields

TEST(PathFields, PathTaperAndSegmentTapersExcludeEachOther) {
  auto path = squareHole();
  path->setTaper(2);
  EXPECT_FALSE(path->hasSegTaper());
  EXPECT_FALSE(path->setSegmentTaper({5, 5}, 1));  // no segment there
  EXPECT_EQ(path->dTaper(), 2);
  ASSERT_TRUE(path->setSegmentTaper({10, 20}, 1));
  EXPECT_EQ(path->dTaper(), 0);
  EXPECT_EQ(path->aSegTaper(), (std::vector<double>{0, 0, 1, 0, 0, 0, 0}));
  path->setTaper(3);
  EXPECT_FALSE(path->hasSegTaper());
  EXPECT_EQ(path->dTaper(), 3);
}

TEST(PathFields, AddedVerticesMoveTapersAndCodes) {
  auto path = squareHole();
  ASSERT_TRUE(path->setSegmentTaper({10, 20}, 1));
  for (int vertex : {1, 2, 3}) path->setCodeAt(vertex, "c");
  path->addVertexAt(2, {20, 15}, 0);
  EXPECT_EQ(path->aSegTaper(), (std::vector<double>{0, 0, 0, 1, 0, 0, 0, 0}));
  EXPECT_EQ(path->aCodeVertex(), (std::vector<int>{1, 3, 4}));
  path->addVertexAt(-4, {9, 9}, 0);
  EXPECT_EQ(path->getPointAt(0), (AcGePoint2d{9, 9}));
  EXPECT_EQ(path->aSegTaper()[4], 1);
  path->addVertexAt(99, {8, 8}, 0);
  EXPECT_EQ(path->getPointAt(path->numVerts() - 1), (AcGePoint2d{8, 8}));
  EXPECT_EQ(path->aSegTaper().size(), static_cast<std::size_t>(path->numVerts()));
}

TEST(PathFields, CodesReplaceAndGo) {
  CToolPath path;
  path.setCodeAt(3, "A");
  path.setCodeAt(5, "B");
  path.setCodeAt(3, "C");
  EXPECT_EQ(path.aCodeVertex(), (std::vector<int>{3, 5}));
  EXPECT_EQ(path.getCodeAt(3), "C");
  path.removeCodeAt(3);
  path.removeCodeAt(4);
  EXPECT_EQ(path.aCodeText(), std::vector<std::string>{"B"});
}

TEST(PathFields, StyleAndColourFollowEachOther) {
  CToolPath path;
  EXPECT_EQ(path.getProcessStyle().nCode, 700);
  path.setColor(3);
  EXPECT_EQ(path.getProcessStyle().nCode, 300);
  ProcessStyle style;
  style.nCode = 504;
  path.setProcessStyle(style);
  EXPECT_TRUE(path.bHasStyle());
  EXPECT_EQ(path.nColor(), 5);
  path.setColor(256);
  EXPECT_EQ(path.nColor(), 256);
  EXPECT_EQ(path.getProcessStyle().nCode, 25604);
  EXPECT_TRUE(path.hasFirstPass());
  style.passes[0].sCode = "00";
  path.setProcessStyle(style);
  EXPECT_FALSE(path.hasFirstPass());
}

TEST(PathFields, WhereTheWireStandsAfterwards) {
  EXPECT_EQ(squareHole()->getEndPoint(true), (AcGePoint2d{10, 10}));
  StoredPath open{
      .vertices = {{{0, -5}, 0}, {{0, 0}, 0}, {{10, 0}, 0}}, .nFlags = 2, .dOffset = 1, .bClosed = false};
  open.ptBreakExit = {77, 78};
  // Counter-clockwise on side 1: 1 mm left of travel.
  EXPECT_NEAR(stored(open)->getEndPoint(true).distanceTo({10, 1}), 0, 1e-9);
  EXPECT_EQ(stored(open)->getEndPoint(false), (AcGePoint2d{10, 0}));
  open.bHasStyle = true;
  EXPECT_EQ(stored(open)->getEndPoint(true), (AcGePoint2d{77, 78}));
  EXPECT_EQ(stored({})->getEndPoint(true), (AcGePoint2d{}));
}

// ---- lists for ISO programs

TEST(PathOutput, WithoutReliefTheListsAreThePolyline) {
  WireCutSettings settings("");
  settings.dIsoFixA = settings.dIsoFixB = 0.2;
  // An out-and-back step: marked bulges, the second on top of the next vertex.
  auto path = stored({.vertices = {{{0, 0}, 0},
                                   {{5, 0}, 0.5},
                                   {{9, 0}, 0.000001},
                                   {{9, 3}, 0.000001},
                                   {{9, 3.001}, 0.0000011},
                                   {{9, 3.0015}, 0},
                                   {{5, 0}, 0}}});
  ASSERT_TRUE(path->setSegmentTaper({9, 1}, 2));
  const auto lists = path->prepareOutput(settings, {});
  EXPECT_EQ(lists.vertices,
            (std::vector<AcGePoint2d>{{0, 0}, {5, 0}, {9, 0}, {9, 3.001}, {9, 3.0015}, {5, 0}}));
  EXPECT_EQ(lists.bulges, (std::vector<double>{0, 0.5, 0, 0.0000011, 0, 0}));
  EXPECT_EQ(lists.taper, (std::vector<double>{0, 0, 2, 0, 0, 0}));
}

}  // namespace
}  // namespace tarnex
