// Gaps at a joint closed by trimming, and what a picked entity becomes.
// Knows the drawing; no path.
#include <gtest/gtest.h>

#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "support/modulefixture.h"

namespace tarnex {
namespace {

class Gaps : public ModuleFixture {
 protected:
  // The first entity as seed, the others as candidates; in the direction of the seed.
  PolylineCurve chained(double tolerance) {
    const auto all = session.all();
    ChainCandidates candidates;
    collectChainCandidates(session.ed, {all.begin() + 1, all.end()}, candidates);
    const auto made = joinCurves(session.ed, all.front(), candidates, tolerance);
    PolylineCurve c = made ? polylineOf(session, *made) : PolylineCurve{};
    // An open chain runs against its seed; the bulge behind its end is 0.
    std::reverse(c.vertices.begin(), c.vertices.end());
    for (std::size_t i = 0; i + 1 < c.vertices.size(); ++i) c.vertices[i].bulge = -c.vertices[i + 1].bulge;
    if (!c.vertices.empty()) c.vertices.back().bulge = 0;
    return c;
  }
  AcDbObjectId line(AcGePoint2d a, AcGePoint2d b) { return session.line(a, b); }
  void nextDrawing() {
    for (AcDbObjectId id : session.all()) drawing().open<AcDbEntity>(id, OpenMode::kForWrite)->erase();
  }
};

TEST_F(Gaps, LineToLineMeetsWhereBothAreDrawnOut) {
  struct Row {
    AcGePoint2d from, to, joint;
  };
  for (const Row& r : {Row{{10.0005, 0.0005}, {10.0005, 10}, {10.0005, 0}},  // square
                       Row{{10.0005, 0.0005}, {20, 0.0005}, {10, 0}},        // parallel: the end stays
                       Row{{10.0005, 0.0005}, {5, 0.0005}, {10, 0}},         // parallel and back again
                       Row{{10.0005, 0.0005}, {20, 0.0013}, {10, 0}},        // 0.00008 rad: parallel enough
                       Row{{10.000001, 0}, {10.000001, 5}, {10, 0}},         // not worth closing
                       Row{{10.000002, 0}, {10.000002, 5}, {10.000002, 0}}, Row{{10, 0}, {10, 5}, {10, 0}}}) {
    nextDrawing();
    line({0, 0}, {10, 0});
    line(r.from, r.to);
    EXPECT_TRUE(sameVertices(chained(0.001), {{{0, 0}, 0}, {r.joint, 0}, {r.to, 0}}, 1e-9))
        << r.to.x << "," << r.to.y;
  }
}

TEST_F(Gaps, NearlyParallelLinesAreNotTurnedAboutByTheirFarMeeting) {
  // They meet at x = 1 - 0.0005/0.0002 = -1.5, left of the seed's start.
  line({0, 0}, {1, 0});
  line({1, 0.0005}, {11, 0.0025});
  EXPECT_TRUE(sameVertices(chained(0.001), {{{0, 0}, 0}, {{1, 0}, 0}, {{11, 0.0025}, 0}}));
}

TEST_F(Gaps, LineToArc) {
  // y = 0 misses the circle about (10,5.1): the foot below its centre; from there a quarter to (15,5.1).
  line({0, 0}, {10, 0});
  addArc(session, {10, 5.1}, 5, 270, 0);
  EXPECT_TRUE(sameVertices(chained(0.2), {{{0, 0}, 0}, {{10, 0}, bulgeOfDegrees(90)}, {{15, 5.1}, 0}}));
  // It cuts the circle about (10.1,4.9) at x = 10.1 ± √(25 - 4.9²); the nearer to (10,0) is the left one.
  nextDrawing();
  line({0, 0}, {10, 0});
  addArc(session, {10.1, 4.9}, 5, 270, 0);
  const double half = std::sqrt(25 - 4.9 * 4.9), included = 180 + std::asin(half / 5) * 180 / kPi - 90;
  EXPECT_TRUE(sameVertices(chained(0.2),
                           {{{0, 0}, 0}, {{10.1 - half, 0}, bulgeOfDegrees(included)}, {{15.1, 4.9}, 0}}));
  // The same arc walked from its end: an incoming clockwise span.
  nextDrawing();
  line({0, 0}, {10, 0});
  addArc(session, {10, -5.1}, 5, 0, 90);
  EXPECT_TRUE(sameVertices(chained(0.2), {{{0, 0}, 0}, {{10, 0}, -bulgeOfDegrees(90)}, {{15, -5.1}, 0}}));
}

TEST_F(Gaps, ArcToLine) {
  // The line y = 10.1 misses the seed's circle: the foot above its centre, and still a quarter.
  addArc(session, {0, 0}, 10, 0, 90);
  line({-0.1, 10.1}, {-10, 10.1});
  EXPECT_TRUE(sameVertices(chained(0.2), {{{10, 0}, bulgeOfDegrees(90)}, {{0, 10.1}, 0}, {{-10, 10.1}, 0}}));
  // x = -0.1 cuts it above at y = √(100 - 0.01): the arc turns on by asin(0.01).
  nextDrawing();
  addArc(session, {0, 0}, 10, 0, 90);
  line({-0.1, 10.1}, {-0.1, 20});
  const double turn = 90 + std::asin(0.01) * 180 / kPi;
  EXPECT_TRUE(sameVertices(
      chained(0.2), {{{10, 0}, bulgeOfDegrees(turn)}, {{-0.1, std::sqrt(99.99)}, 0}, {{-0.1, 20}, 0}}));
}

TEST_F(Gaps, ArcToArc) {
  // No meeting (20.1 apart, radii 10 and 10): the end stays, and the second is walked clockwise from it.
  addArc(session, {0, 0}, 10, 0, 90);
  addArc(session, {0, 20.1}, 10, 180, 270);
  EXPECT_TRUE(sameVertices(
      chained(0.2), {{{10, 0}, bulgeOfDegrees(90)}, {{0, 10}, -bulgeOfDegrees(90)}, {{-10, 20.1}, 0}}));
  // Radii 10 and 10.1 about (0,0) and (0.05,20): two meetings; the joint is the nearer and lies on both.
  nextDrawing();
  addArc(session, {0, 0}, 10, 0, 90);
  addArc(session, {0.05, 20}, 10.1, 180, 270);
  const auto c = chained(0.2);
  ASSERT_EQ(c.vertices.size(), 3u);
  const AcGePoint2d joint = c.vertices[1].point;
  EXPECT_NEAR(joint.distanceTo({0, 0}), 10, 1e-9);
  EXPECT_NEAR(joint.distanceTo({0.05, 20}), 10.1, 1e-9);
  // The line through both meetings stands square on the centres: the other is the mirror image.
  const AcGePoint2d other = AcGeMatrix3d::mirroring({0, 0}, {0.05, 20}).apply(joint);
  EXPECT_LT(joint.distanceTo({0, 10}), other.distanceTo({0, 10}));
  EXPECT_GT(c.vertices[0].bulge, 0);
  EXPECT_LT(c.vertices[1].bulge, 0);
  for (int i : {0, 1}) {
    const auto circle = bulgeToCircle(c.vertices[static_cast<std::size_t>(i)].point,
                                      c.vertices[static_cast<std::size_t>(i) + 1].point,
                                      c.vertices[static_cast<std::size_t>(i)].bulge);
    EXPECT_NEAR(circle.centre.distanceTo(i == 0 ? AcGePoint2d{0, 0} : AcGePoint2d{0.05, 20}), 0, 1e-6);
  }
}

TEST_F(Gaps, AMajorArcStaysOne) {
  addArc(session, {0, 0}, 10, 0, 270);
  line({-0.0005, -10.0005}, {-0.0005, -20});
  const auto c = chained(0.001);
  ASSERT_EQ(c.vertices.size(), 3u);
  EXPECT_NEAR(4 * std::atan(c.vertices[0].bulge), 1.5 * kPi, 1e-3);
}

TEST_F(Gaps, DegenerateCurvesDoNoHarm) {
  const double huge = 1e9;
  line({0, 0}, {10, 0});
  line({10, 0.0005}, {10, 0.0005});           // no length
  addPolyline(session, {{{10, 0.0002}, 0}});  // one vertex
  addPolyline(session, {{{10, 0}, 1e9}, {{10, 0.0001}, 1e-9}, {{10.0002, 0}, 0}});
  addPolyline(session, {{{10, 0}, 1}, {{10, 0}, -1}});
  addArc(session, {10, 1e-7}, 1e-7, 270, 90);
  line({10.0003, 0}, {huge, huge});
  const auto c = chained(0.001);
  ASSERT_GE(c.vertices.size(), 3u);
  for (const auto& v : c.vertices) EXPECT_TRUE(std::isfinite(v.point.x + v.point.y + v.bulge));
}

// ---- one picked entity

class Prepare : public ModuleFixture {
 protected:
  std::optional<PolylineCurve> prepared(AcDbObjectId id) {
    if (!prepareContour(*module, id)) return std::nullopt;
    return polylineOf(session, id);
  }
};

TEST_F(Prepare, LooseCurvesOfTheDrawingCloseAroundThePick) {
  (void)session.ed.acedSetVar("OSMODE", 33LL);
  session.line({0, 10}, {0, 0});
  const AcDbObjectId pick = session.line({0, 0}, {10, 0});
  addPolyline(session, {{{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}});
  session.circle({5, 5}, 2);
  const auto c = prepared(pick);
  ASSERT_TRUE(c && c->closed);
  EXPECT_TRUE(sameVertices(*c, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}));
  EXPECT_EQ(session.all().size(), 2u);
  EXPECT_EQ(session.ed.intVar("OSMODE"), 33);
}

TEST_F(Prepare, WhatStandsOnALockedLayerJoinsOnceItIsUnlocked) {
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName("KEPT");
  const AcDbObjectId layer = drawing().addLayer(std::move(record));
  const auto lock = [&](bool on) {
    drawing().open<AcDbLayerTableRecord>(layer, OpenMode::kForWrite)->setIsLocked(on);
  };
  auto kept = std::make_unique<AcDbLine>(AcGePoint3d{10, 0, 0}, AcGePoint3d{10, 10, 0});
  kept->setLayer(layer);
  const AcDbObjectId locked = session.add(std::move(kept));
  const AcDbObjectId first = session.line({0, 0}, {10, 0});
  lock(true);
  ASSERT_TRUE(prepared(first));
  EXPECT_TRUE(stands(locked));
  lock(false);
  const auto c = prepared(session.ed.acdbEntLast());
  ASSERT_TRUE(c);
  EXPECT_EQ(c->vertices.size(), 3u);
  EXPECT_FALSE(stands(locked));
}

TEST_F(Prepare, AContourThatWasClosedInPlaceJoinsNoOther) {
  const AcDbObjectId ring = addPolyline(session, {{{0, 0}, 0}, {{5, 0}, 0}, {{5, 5}, 0}, {{0, 0}, 0}});
  ASSERT_TRUE(prepared(ring)->closed);
  const AcDbObjectId tail = session.line({0, 0}, {-9, 0});
  EXPECT_EQ(prepared(tail)->vertices.size(), 2u);
  EXPECT_TRUE(stands(ring));
}

TEST_F(Prepare, HeavyPolylinesBecomeLightOnesOfTheirColour) {
  const PolylineCurve shape{{{{0, 0}, 0}, {{10, 0}, 1}, {{10, 10}, 0}}, true};
  auto heavy = std::make_unique<AcDb2dPolyline>(shape, shape, Poly2dType::k2dSimplePoly);
  heavy->setColorIndex(4);
  const auto c = prepared(session.add(std::move(heavy)));
  ASSERT_TRUE(c);
  EXPECT_TRUE(c->closed);
  EXPECT_TRUE(sameVertices(*c, shape.vertices));
  EXPECT_EQ(session.all().size(), 1u);
  EXPECT_EQ(session.last<AcDbPolyline>()->colorIndex(), 4);
}

TEST_F(Prepare, ASplineIsAskedAboutFirst) {
  const NurbsCurve straight{1, {{0, 0}, {10, 0}}, {}, {0, 0, 1, 1}};
  const AcDbObjectId spline = session.add(std::make_unique<AcDbSpline>(straight));
  session.line({10, 0}, {10, 5});
  session.answers({"n"});
  EXPECT_FALSE(prepared(spline));
  EXPECT_TRUE(stands(spline));
  session.answers({"y"});
  const auto c = prepared(spline);
  ASSERT_TRUE(c);
  EXPECT_TRUE(sameVertices(*c, {{{10, 5}, 0}, {{10, 0}, 0}, {{0, 0}, 0}}));
  EXPECT_EQ(session.all().size(), 1u);
}

TEST_F(Prepare, EllipticArcsMeetTheirNeighboursAtTheirEnds) {
  // From 20 to 200 degrees of the parameter: neither end is an axis end, where the arcs touch the ellipse.
  const double a = kPi / 9, b = kPi + kPi / 9;
  const AcGePoint2d s{200 * std::cos(a), 80 * std::sin(a)}, e{200 * std::cos(b), 80 * std::sin(b)};
  session.add(std::make_unique<AcDbEllipse>(AcGePoint3d{}, AcGeVector2d{200, 0}, 0.4, a, b));
  const auto c = prepared(session.line(e, s));
  ASSERT_TRUE(c);
  EXPECT_TRUE(c->closed);
  EXPECT_EQ(session.all().size(), 1u);
}

}  // namespace
}  // namespace tarnex
