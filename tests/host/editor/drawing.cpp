// The host's commands that draw and change, as whole sessions.
#include <gmock/gmock.h>

#include <cmath>

#include "session.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

void expectNear(AcGePoint2d a, AcGePoint2d b) {
  EXPECT_NEAR(a.distanceTo(b), 0, 1e-9) << a.x << "," << a.y;
}

TEST(Drawing, LinesWithUndoAndClose) {
  Session s;
  s.run({"line 0,0 10,0 20,20 u @0,10 c"});
  ASSERT_EQ(s.all().size(), 3u);
  const auto* closing = s.last<AcDbLine>();
  expectNear(closing->getStartPoint().flat(), {10, 10});
  expectNear(closing->getEndPoint().flat(), {0, 0});
}

TEST(Drawing, CirclesAndArcs) {
  Session s;
  s.run({"circle 0,0 d 10"});
  EXPECT_EQ(s.last<AcDbCircle>()->radius(), 5);
  s.run({"circle 3p 5,0 0,5 -5,0"});
  expectNear(s.last<AcDbCircle>()->center().flat(), {0, 0});
  EXPECT_NEAR(s.last<AcDbCircle>()->radius(), 5, 1e-12);
  // Through (5,0), (0,5), (-5,0) an arc runs counter-clockwise; backwards it would run clockwise, so ends
  // change places.
  for (const char* points : {"arc 5,0 0,5 -5,0", "arc -5,0 0,5 5,0"}) {
    s.run({points});
    const auto* arc = s.last<AcDbArc>();
    ASSERT_TRUE(arc);
    EXPECT_NEAR(arc->startAngle(), 0, 1e-12);
    EXPECT_NEAR(arc->endAngle(), kPi, 1e-12);
  }
  s.run({"arc c 1,1 3,1 1,9"});  // about (1,1) from the right to straight up
  EXPECT_NEAR(s.last<AcDbArc>()->radius(), 2, 1e-12);
  EXPECT_NEAR(s.last<AcDbArc>()->endAngle(), kPi / 2, 1e-12);
  EXPECT_THAT(s.run({"arc 0,0 1,1 2,2"}), HasSubstr("Three points on a line"));
  EXPECT_THAT(s.run({"circle 0,0 0"}), HasSubstr("must not be zero"));
}

TEST(Drawing, PolylinesOfLinesAndTangentArcs) {
  Session s;
  // Along +x, then a half circle back over it (tangent: a chord square to the heading sweeps 180°, bulge 1),
  // a line along -x, and a closing arc that starts along -x: its chord goes straight down, again a half
  // circle to the left.
  s.run({"pline 0,0 10,0 a 10,4 l 0,4 a cl"});
  const auto* p = s.last<AcDbPolyline>();
  ASSERT_TRUE(p);
  ASSERT_EQ(p->numVerts(), 4);
  EXPECT_TRUE(p->isClosed());
  const double bulges[] = {0, 1, 0, 1};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(p->getBulgeAt(i), bulges[i], 1e-12) << i;
  // Through (1,1) from (0,0) to (2,0): a half circle to the right, bulge -1.
  s.run({"pline 0,0 a s 1,1 2,0", ""});
  EXPECT_NEAR(s.last<AcDbPolyline>()->getBulgeAt(0), -1, 1e-12);
}

TEST(Drawing, EllipsesByAxesAndAsPolylines) {
  Session s;
  s.run({"ellipse c 10,10 13,14 2"});  // half axes 5 and 2
  const auto* e = s.last<AcDbEllipse>();
  ASSERT_TRUE(e);
  EXPECT_NEAR(e->majorAxis().length(), 5, 1e-12);
  EXPECT_NEAR(e->radiusRatio(), 0.4, 1e-12);
  s.run({"ellipse 0,0 4,0 6"});  // the axis given first is the shorter one
  expectNear({s.last<AcDbEllipse>()->majorAxis().x, s.last<AcDbEllipse>()->majorAxis().y}, {0, 6});
  EXPECT_NEAR(s.last<AcDbEllipse>()->radiusRatio(), 1.0 / 3, 1e-12);
  s.run({"PELLIPSE 1", "ellipse c 10,10 15,10 2"});
  const auto* p = s.last<AcDbPolyline>();
  ASSERT_TRUE(p);
  EXPECT_TRUE(p->isClosed());
  for (const AcGePoint2d end : {AcGePoint2d{15, 10}, {10, 12}, {5, 10}, {10, 8}})
    EXPECT_NEAR(p->getClosestPointTo(solid(end)).flat().distanceTo(end), 0, 1e-9);
}

TEST(Drawing, NewEntitiesTakeCurrentLayerAndColour) {
  Session s;
  s.run({"layer m CUT c 1 CUT", "", "CECOLOR 5", "text 1,2 3.5 90 Hello  world"});
  const auto* text = s.last<AcDbText>();
  ASSERT_TRUE(text);
  EXPECT_EQ(s.ed.database().layerName(text->layerId()), "CUT");
  EXPECT_EQ(text->colorIndex(), 5);
  EXPECT_EQ(text->textString(), "Hello  world");
  EXPECT_NEAR(text->rotation(), kPi / 2, 1e-12);
  EXPECT_EQ(s.ed.realVar("TEXTSIZE"), 3.5);
  EXPECT_THAT(s.run({"layer s none", ""}), HasSubstr("No layer is named \"none\""));
  EXPECT_THAT(s.run({"layer n a*b", ""}), HasSubstr("can't be the name of a layer"));
  EXPECT_THAT(s.run({"layer off CUT", "?", ""}), HasSubstr("CUT  color 1, off\n"));
}

TEST(Editing, MovedCopiedTurnedMirroredScaled) {
  Session s;
  s.line({1, 0}, {2, 0});
  const auto ends = [&] {
    const auto* l = s.last<AcDbLine>();
    return std::vector<AcGePoint2d>{l->getStartPoint().flat(), l->getEndPoint().flat()};
  };
  s.run({"move last", "", "0,0 5,0"});
  EXPECT_THAT(ends(), ElementsAre(AcGePoint2d{6, 0}, AcGePoint2d{7, 0}));
  s.run({"move last", "", "-5,0", ""});  // by a displacement
  EXPECT_THAT(ends(), ElementsAre(AcGePoint2d{1, 0}, AcGePoint2d{2, 0}));
  s.run({"copy last", "", "0,0 0,10"});
  ASSERT_EQ(s.all().size(), 2u);
  EXPECT_THAT(ends(), ElementsAre(AcGePoint2d{1, 10}, AcGePoint2d{2, 10}));
  s.run({"rotate last", "", "0,10 90"});
  expectNear(ends()[1], {0, 12});
  s.run({"scale last", "", "0,10 2"});
  expectNear(ends()[1], {0, 14});
  s.run({"mirror last", "", "5,0 5,1", ""});
  ASSERT_EQ(s.all().size(), 3u);
  expectNear(ends()[1], {10, 14});
  s.run({"mirror last", "", "0,0 1,0 y"});
  ASSERT_EQ(s.all().size(), 3u);
  expectNear(ends()[1], {10, -14});
  EXPECT_EQ(s.status, 0);
}

TEST(Editing, LockedLayersStayAsTheyAre) {
  Session s;
  s.run({"layer m FIX", "", "point 1,1", "layer lo FIX", ""});
  EXPECT_THAT(s.run({"erase all", ""}), HasSubstr("1 was on a locked layer"));
  EXPECT_EQ(s.all().size(), 1u);
  EXPECT_EQ(s.status, 1);
}

TEST(Editing, ExplodedPolylinesKeepTheirShape) {
  Session s;
  s.run({"pline 0,0 10,0 a 10,4", "", "explode last", ""});
  ASSERT_EQ(s.all().size(), 2u);
  EXPECT_TRUE(s.entity<AcDbLine>(s.all()[0]));
  ASSERT_TRUE(s.last<AcDbArc>());
  EXPECT_NEAR(s.last<AcDbArc>()->radius(), 2, 1e-9);
  EXPECT_THAT(s.run({"explode last", ""}), HasSubstr("can't be changed so"));
}

// ---- trim

TEST(Trim, LinesBetweenAndBeyondEdges) {
  Session s;
  const auto edge1 = s.line({10, -5}, {10, 5}), edge2 = s.line({20, -5}, {20, 5});
  const auto a = s.line({0, 0}, {30, 0}), b = s.line({0, 1}, {30, 1}), c = s.line({0, 9}, {30, 9});
  const auto out = s.run({"trim " + s.handle(edge1) + " " + s.handle(edge2), "", s.handle(a) + "*15,0",
                          s.handle(b) + "*25,1", s.handle(c), "5,7", ""});
  EXPECT_THAT(out, HasSubstr("No edge cuts that"));
  EXPECT_THAT(out, HasSubstr("Nothing is there"));
  ASSERT_EQ(s.all().size(), 6u);
  expectNear(s.entity<AcDbLine>(a)->getEndPoint().flat(), {10, 0});
  expectNear(s.last<AcDbLine>()->getStartPoint().flat(), {20, 0});
  expectNear(s.entity<AcDbLine>(b)->getEndPoint().flat(), {20, 1});
}

TEST(Trim, ClosedCurvesLoseThePickedSide) {
  Session s;
  const auto edge = s.line({-10, 0}, {10, 0}), circle = s.circle({0, 0}, 5);
  s.run({"trim " + s.handle(edge), "", s.handle(circle) + "*0,-5", ""});
  ASSERT_EQ(s.all().size(), 2u);
  const auto* arc = s.last<AcDbArc>();
  ASSERT_TRUE(arc);
  EXPECT_NEAR(normalizedAngle(arc->startAngle()), 0, 1e-9);
  EXPECT_NEAR(arc->endAngle(), kPi, 1e-9);
  // A tangent touches once: a circle needs two cuts.
  const auto tangent = s.line({-10, 5}, {10, 5}), whole = s.circle({0, 0}, 5);
  EXPECT_THAT(s.run({"trim " + s.handle(tangent), "", s.handle(whole) + "*0,-5", ""}),
              HasSubstr("No edge cuts that"));
}

// What the conversion of an elliptical arc asks for: the polyline of the whole ellipse, cut along the chord's
// line.
TEST(Trim, AnEllipsePolylineAlongAChord) {
  Session s;
  AcDbObjectId polyline;
  s.ed.addCommand(
      {"QV", "CONVERT", "", 0,
       [&] {
         (void)s.ed.acedSetVar("CMDECHO", 0LL);
         (void)s.ed.acedSetVar("PELLIPSE", 1LL);
         ASSERT_EQ(s.ed.acedCommand({std::string("ellipse"), std::string("c"), AcGePoint3d{0, 0, 0},
                                     AcGePoint3d{10, 0, 0}, 4.0}),
                   Reply::RTNORM);
         polyline = s.ed.acdbEntLast();
         const auto edge = s.line({0, 40}, {0, -40});
         ASSERT_EQ(s.ed.acedCommand({std::string("trim"), edge, std::string(""),
                                     EntityPick{polyline, {-10, 0, 0}}, std::string("")}),
                   Reply::RTNORM);
         ASSERT_EQ(s.ed.acedCommand({std::string("erase"), edge, std::string("")}), Reply::RTNORM);
       },
       ""});
  EXPECT_EQ(s.run({"CONVERT"}), "Command: CONVERT\n");
  EXPECT_EQ(s.ed.acdbEntLast(), polyline);
  const auto* p = s.last<AcDbPolyline>();
  ASSERT_TRUE(p);
  EXPECT_FALSE(p->isClosed());
  expectNear(p->getStartPoint().flat(),
             {0, -4});  // counter-clockwise over (10,0), the side that wasn't picked
  expectNear(p->getEndPoint().flat(), {0, 4});
  EXPECT_NEAR(p->getClosestPointTo({10, 0, 0}).distanceTo({10, 0, 0}), 0, 1e-9);
  EXPECT_NEAR(extents(p->geometry()).low.x, 0, 1e-9);
}

TEST(Listing, TellsWhatEntitiesSay) {
  Session s;
  s.circle({1, 2}, 3);
  std::vector<std::string> lines;
  s.last<AcDbCircle>()->list(lines);
  ASSERT_FALSE(lines.empty());
  std::string expected;
  for (const auto& line : lines) expected += line + "\n";
  EXPECT_THAT(s.run({"list all", ""}), HasSubstr(expected));
  EXPECT_THAT(s.run({"help trim"}), HasSubstr("cuts curves off"));
  EXPECT_THAT(s.run({"help", ""}), HasSubstr("SETVAR"));
}

}  // namespace
}  // namespace tarnex
