// Entities one by one: what transformations, explosions, offsets, snaps, drawing and listing make of them.
#include <gmock/gmock.h>

#include <array>
#include <cmath>

#include "host/database/drawn.h"

namespace tarnex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kTiny = 1e-9;

void expectPoint(const AcGePoint3d& p, double x, double y, double z = 0) {
  EXPECT_NEAR(p.x, x, kTiny);
  EXPECT_NEAR(p.y, y, kTiny);
  EXPECT_NEAR(p.z, z, kTiny);
}

const AcGeMatrix3d kMirrorAtY = AcGeMatrix3d::mirroring({0, 0}, {0, 1});  // x becomes -x
const AcGeMatrix3d kStretch = AcGeMatrix3d::scaling(2, 1, 1);

// ---- transformations

TEST(Arc, StaysCounterClockwiseWhenMirrored) {
  AcDbArc arc({10, 0, 5}, 2, 0, kPi / 2);  // from (12,0) to (10,2)
  ASSERT_EQ(arc.transformBy(kMirrorAtY), ErrorStatus::eOk);
  expectPoint(arc.center(), -10, 0, 5);
  // Mirrored the arc lies between (-10,2) and (-12,0): counter-clockwise from 90 to 180 degrees.
  EXPECT_NEAR(arc.startAngle(), kPi / 2, kTiny);
  EXPECT_NEAR(arc.endAngle(), kPi, kTiny);
  expectPoint(arc.getStartPoint(), -10, 2, 5);
  expectPoint(arc.getEndPoint(), -12, 0, 5);
}

TEST(Arc, TurnsAndGrowsAboutAPoint) {
  AcDbArc arc({1, 0, 0}, 1, 0, kPi);
  ASSERT_EQ(arc.transformBy(AcGeMatrix3d::rotation(kPi * 1.5, {0, 0}) * AcGeMatrix3d::scaling(2, {0, 0})),
            ErrorStatus::eOk);
  expectPoint(arc.center(), 0, -2);
  EXPECT_NEAR(arc.radius(), 2, kTiny);
  EXPECT_NEAR(arc.startAngle(), kPi * 1.5, kTiny);
  EXPECT_NEAR(arc.endAngle(), kPi / 2, kTiny);  // 180 + 270 degrees, brought under 360
  EXPECT_NEAR(arc.length(), 2 * kPi, kTiny);
}

TEST(Arc, EqualAnglesAreTheFullCircle) {
  EXPECT_NEAR(AcDbArc({0, 0, 0}, 1, 0, 2 * kPi).length(), 2 * kPi, kTiny);
  EXPECT_NEAR(AcDbArc({0, 0, 0}, 1, 1, 1).length(), 2 * kPi, kTiny);
  EXPECT_NEAR(AcDbArc({0, 0, 0}, 1, 3, 1).length(), 2 * kPi - 2, kTiny);
}

TEST(Transform, UnequalScalesAreRefusedWhereTheKindWouldChange) {
  AcDbArc arc({0, 0, 0}, 1, 0, 1);
  AcDbCircle circle({0, 0, 0}, 1);
  AcDbPolyline bent(PolylineCurve{{{{0, 0}, 1}, {{1, 0}, 0}}, false});
  AcDbPolyline straight(PolylineCurve{{{{0, 0}, 0}, {{1, 0}, 0}}, false});
  AcDbEllipse ellipse({0, 0, 0}, {2, 0}, 0.5, 0, 2 * kPi);
  for (AcDbEntity* e :
       {static_cast<AcDbEntity*>(&arc), static_cast<AcDbEntity*>(&circle), static_cast<AcDbEntity*>(&bent)})
    EXPECT_EQ(e->transformBy(kStretch), ErrorStatus::eCannotScaleNonUniformly) << e->dxfName();
  EXPECT_EQ(arc.radius(), 1);
  EXPECT_EQ(bent.getPointAt(1).x, 1);
  EXPECT_EQ(straight.transformBy(kStretch), ErrorStatus::eOk);
  EXPECT_EQ(straight.getPointAt(1).x, 2);
  // The ellipse of half axes 2 and 1 gets 4 and 1.
  ASSERT_EQ(ellipse.transformBy(kStretch), ErrorStatus::eOk);
  EXPECT_NEAR(ellipse.majorAxis().length(), 4, kTiny);
  EXPECT_NEAR(ellipse.radiusRatio(), 0.25, kTiny);
}

TEST(Transform, MatricesThatMakeNoSenseChangeNothing) {
  AcGeMatrix3d nan, flat = AcGeMatrix3d::scaling(1, 0, 1), tilted;
  nan.entry(0, 3) = std::nan("");
  tilted.entry(1, 1) = tilted.entry(2, 2) = std::cos(1);
  tilted.entry(1, 2) = -std::sin(1);
  tilted.entry(2, 1) = std::sin(1);
  AcDbCircle circle({1, 2, 3}, 4);
  EXPECT_EQ(circle.transformBy(nan), ErrorStatus::eInvalidInput);
  EXPECT_EQ(circle.transformBy(flat), ErrorStatus::eInvalidInput);
  EXPECT_EQ(circle.transformBy(tilted), ErrorStatus::eNotApplicable);
  expectPoint(circle.center(), 1, 2, 3);
  EXPECT_EQ(AcDbKeptEntity("HATCH", {}).transformBy(AcGeMatrix3d()), ErrorStatus::eNotApplicable);
}

TEST(Polyline, MirroringTurnsItsBulges) {
  AcDbPolyline path(PolylineCurve{{{{0, 0}, 1}, {{2, 0}, 0}, {{2, 5}, 0}}, true});
  path.setElevation(3);
  ASSERT_EQ(path.transformBy(kMirrorAtY), ErrorStatus::eOk);
  EXPECT_EQ(path.getBulgeAt(0), -1);
  EXPECT_EQ(path.getPointAt(1).x, -2);
  EXPECT_EQ(path.elevation(), 3);
  EXPECT_TRUE(path.isClosed());
}

TEST(Ellipse, MirroredPartCoversTheMirroredPlaces) {
  // Quarter from (4,0) to (0,1); its mirror lies between (-4,0) and (0,1).
  AcDbEllipse quarter({0, 0, 7}, {4, 0}, 0.25, 0, kPi / 2);
  ASSERT_EQ(quarter.transformBy(kMirrorAtY), ErrorStatus::eOk);
  const AcGePoint3d a = quarter.getStartPoint(), b = quarter.getEndPoint();
  expectPoint(a.x < b.x ? a : b, -4, 0, 7);
  expectPoint(a.x < b.x ? b : a, 0, 1, 7);
  const auto curve = std::get<EllipseCurve>(quarter.geometry());
  EXPECT_GT(curve.sweep, 0);
  EXPECT_NEAR(curve.sweep, kPi / 2, kTiny);
}

TEST(Text, MirroredStaysReadableInTheMirroredPlace) {
  AcDbText text({10, 0, 0}, "ABCD", 1);  // four letters of 0.7: from x 10 to 12.8
  ASSERT_EQ(text.transformBy(kMirrorAtY), ErrorStatus::eOk);
  expectPoint(text.position(), -12.8, 0);
  EXPECT_NEAR(text.rotation(), 0, kTiny);
  const Extents2d box = text.getGeomExtents();
  EXPECT_NEAR(box.high.x, -10, kTiny);
  EXPECT_NEAR(box.high.y, 1, kTiny);
}

TEST(Spline, FollowsAnyMatrix) {
  AcDbSpline spline(NurbsCurve{1, {{0, 0}, {1, 1}}, {}, {0, 0, 1, 1}}, {{0, 0}, {1, 1}}, 2);
  ASSERT_EQ(spline.transformBy(kStretch), ErrorStatus::eOk);
  expectPoint(*spline.getControlPointAt(1), 2, 1, 2);
  expectPoint(*spline.getFitPointAt(1), 2, 1, 2);
  EXPECT_FALSE(spline.getFitPointAt(2));
  EXPECT_FALSE(spline.getControlPointAt(-1));
}

// ---- curves

TEST(Curve, PointsLiftedOffThePlaneKeepTheirHeight) {
  const AcDbLine line({0, 0, 5}, {10, 0, 5});
  expectPoint(*line.getPointAtDist(4), 4, 0, 5);
  EXPECT_FALSE(line.getPointAtDist(11));
  expectPoint(line.getClosestPointTo({12, 3, 0}), 10, 0, 5);
  expectPoint(line.getClosestPointTo({12, 3, 0}, true), 12, 0, 5);
  double distance = -1;
  EXPECT_EQ(line.getDistAtPoint({7, 0, 0}, distance), ErrorStatus::eOk);
  EXPECT_NEAR(distance, 7, kTiny);
  EXPECT_EQ(line.getDistAtPoint({7, 0.01, 0}, distance), ErrorStatus::eInvalidInput);
}

TEST(Curve, OffsetsAboveZeroLieRightOfTravel) {
  std::vector<std::unique_ptr<AcDbCurve>> curves;
  AcDbArc arc({0, 0, 1}, 10, 0, kPi / 2);
  arc.setColorIndex(3);
  ASSERT_EQ(arc.getOffsetCurves(2, curves), ErrorStatus::eOk);  // counter-clockwise: right is outside
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_NEAR(static_cast<AcDbArc&>(*curves[0]).radius(), 12, kTiny);
  EXPECT_EQ(curves[0]->colorIndex(), 3);
  EXPECT_EQ(curves[0]->getStartPoint().z, 1);
  curves.clear();
  EXPECT_EQ(arc.getOffsetCurves(-10, curves), ErrorStatus::eNotApplicable);
  EXPECT_EQ(AcDbEllipse({0, 0, 0}, {2, 0}, 0.5, 0, 2 * kPi).getOffsetCurves(1, curves),
            ErrorStatus::eNotApplicable);
  EXPECT_TRUE(curves.empty());
}

TEST(Curve, OffsetsOfPolylinesArePolylinesAndOfLinesLines) {
  std::vector<std::unique_ptr<AcDbCurve>> curves;
  AcDbPolyline corner(PolylineCurve{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}}, false});
  corner.setElevation(6);
  ASSERT_EQ(corner.getOffsetCurves(-1, curves), ErrorStatus::eOk);  // left of travel: inside the corner
  ASSERT_EQ(curves.size(), 1u);
  const auto& inside = dynamic_cast<const AcDbPolyline&>(*curves[0]);
  ASSERT_EQ(inside.numVerts(), 3);
  expectPoint(solid(inside.getPointAt(0)), 0, 1);
  expectPoint(solid(inside.getPointAt(1)), 9, 1);
  expectPoint(solid(inside.getPointAt(2)), 9, 10);
  EXPECT_EQ(inside.elevation(), 6);
  curves.clear();
  ASSERT_EQ(AcDbLine({0, 0, 0}, {4, 0, 0}).getOffsetCurves(2, curves), ErrorStatus::eOk);
  expectPoint(dynamic_cast<const AcDbLine&>(*curves.at(0)).getStartPoint(), 0, -2);
  curves.clear();
  // The closed square of side 10 loses 2 on every side.
  AcDbPolyline square(PolylineCurve{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, true});
  ASSERT_EQ(square.getOffsetCurves(-2, curves), ErrorStatus::eOk);
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_TRUE(curves[0]->isClosed());
  EXPECT_NEAR(curves[0]->length(), 24, kTiny);
}

TEST(Curve, SplitPiecesHaveItsProperties) {
  AcDbLine line({0, 0, 0}, {10, 0, 0});
  line.setColorIndex(4);
  std::vector<std::unique_ptr<AcDbCurve>> pieces;
  ASSERT_EQ(line.getSplitCurves({4, 7}, pieces), ErrorStatus::eOk);
  ASSERT_EQ(pieces.size(), 3u);
  expectPoint(pieces[1]->getStartPoint(), 4, 0);
  expectPoint(pieces[1]->getEndPoint(), 7, 0);
  EXPECT_EQ(pieces[2]->colorIndex(), 4);
  EXPECT_EQ(line.getSplitCurves({std::nan("")}, pieces), ErrorStatus::eInvalidInput);
}

TEST(Curve, IntersectionsAreOfWholeOutlines) {
  const AcDbPolyline square(PolylineCurve{{{{0, 0}, 0}, {{2, 0}, 0}, {{2, 2}, 0}, {{0, 2}, 0}}, true});
  const AcDbLine across({-1, 1, 0}, {1, 1, 0});
  std::vector<AcGePoint3d> points;
  ASSERT_EQ(square.intersectWith(across, Extend::kOnBothOperands, points), ErrorStatus::eOk);
  ASSERT_EQ(points.size(), 1u);
  expectPoint(points[0], 0, 1);
  points.clear();
  ASSERT_EQ(square.intersectWith(across, Extend::kExtendArg, points), ErrorStatus::eOk);
  EXPECT_EQ(points.size(), 2u);
  EXPECT_EQ(AcDbPoint().intersectWith(across, Extend::kOnBothOperands, points), ErrorStatus::eNotApplicable);
}

TEST(Polyline, ExplodesIntoLinesAndArcsAtItsHeight) {
  // Half circle from (0,0) to (2,0) below the axis, then back along it.
  AcDbPolyline path(PolylineCurve{{{{0, 0}, 1}, {{2, 0}, 0}}, true});
  path.setElevation(4);
  path.setColorIndex(2);
  std::vector<std::unique_ptr<AcDbEntity>> parts;
  ASSERT_EQ(path.explode(parts), ErrorStatus::eOk);
  ASSERT_EQ(parts.size(), 2u);
  const auto& arc = dynamic_cast<const AcDbArc&>(*parts[0]);
  expectPoint(arc.center(), 1, 0, 4);
  EXPECT_NEAR(arc.startAngle(), kPi, kTiny);
  expectPoint(dynamic_cast<const AcDbLine&>(*parts[1]).getEndPoint(), 0, 0, 4);
  EXPECT_EQ(parts[1]->colorIndex(), 2);
  EXPECT_EQ(AcDbPolyline().explode(parts), ErrorStatus::eNotApplicable);
}

TEST(Polyline, EditsByIndexAndIgnoresWrongOnes) {
  AcDbPolyline path;
  path.addVertexAt(0, {0, 0}, 0.5, -1, -1);
  path.addVertexAt(99, {2, 0}, 0, -1, -1);
  path.addVertexAt(1, {1, 0}, 0, -1, -1);
  path.setPointAt(7, {9, 9});
  path.setBulgeAt(-1, 9);
  path.removeVertexAt(3);
  EXPECT_EQ(path.polyline().vertices, (std::vector<BulgeVertex>{{{0, 0}, 0.5}, {{1, 0}, 0}, {{2, 0}, 0}}));
  EXPECT_EQ(path.moveGripPointsAt({0, 3}, {1, 1, 0}), ErrorStatus::eInvalidInput);
  EXPECT_EQ(path.moveGripPointsAt({0, 2}, {1, 1, 0}), ErrorStatus::eOk);
  EXPECT_EQ(path.getPointAt(0), (AcGePoint2d{1, 1}));
  EXPECT_EQ(path.getPointAt(1), (AcGePoint2d{1, 0}));
}

TEST(Polyline, ExtentsFollowEveryEdit) {
  AcDbPolyline path(PolylineCurve{{{{0, 0}, 0}, {{4, 0}, 0}, {{4, 2}, 0}}, false});
  const auto around = [&] {
    const Extents2d box = path.getGeomExtents();
    return std::array{box.low.x, box.low.y, box.high.x, box.high.y};
  };
  EXPECT_THAT(around(), ElementsAre(0, 0, 4, 2));
  path.setPointAt(1, {6, 0});
  EXPECT_THAT(around(), ElementsAre(0, 0, 6, 2));
  path.setBulgeAt(0, 1);  // half a circle below, about (3,0)
  EXPECT_NEAR(around()[1], -3, kTiny);
  path.setBulgeAt(0, 0);
  path.addVertexAt(9, {-1, 0}, 0, -1, -1);
  EXPECT_THAT(around(), ElementsAre(-1, 0, 6, 2));
  path.removeVertexAt(3);
  EXPECT_THAT(around(), ElementsAre(0, 0, 6, 2));
  path.setBulgeAt(2, -1);  // of the span that closing adds, from (4,2) to (0,0)
  EXPECT_THAT(around(), ElementsAre(0, 0, 6, 2));
  path.setClosed(true);  // about (2,1), radius √5, the half below
  EXPECT_NEAR(around()[1], 1 - std::sqrt(5), kTiny);
  path.setClosed(false);
  ASSERT_EQ(path.moveGripPointsAt({2}, {0, 3, 0}), ErrorStatus::eOk);
  EXPECT_THAT(around(), ElementsAre(0, 0, 6, 5));
  ASSERT_EQ(path.transformBy(kMirrorAtY), ErrorStatus::eOk);
  EXPECT_THAT(around(), ElementsAre(-6, 0, 0, 5));
  path.setPolyline({{{{1, 1}, 0}, {{2, 3}, 0}}, false});
  EXPECT_THAT(around(), ElementsAre(1, 1, 2, 3));
  path.reset();
  EXPECT_TRUE(path.getGeomExtents().empty());
}

TEST(HeavyPolyline, BecomesALightOneOfTheDrawnShape) {
  const PolylineCurve drawn{{{{0, 0}, 0.3}, {{1, 1}, 0}, {{2, 0}, 0}}, true},
      frame{{{{0, 0}, 0}, {{2, 0}, 0}}, true};
  AcDb2dPolyline heavy(drawn, frame, Poly2dType::k2dFitCurvePoly);
  heavy.setElevation(2);
  heavy.setPolyType(Poly2dType::k2dSimplePoly);
  const auto light = convertFrom(heavy);
  EXPECT_EQ(light->polyline(), drawn);
  EXPECT_EQ(light->elevation(), 2);
}

// ---- snaps, drawing, listing

std::vector<AcGePoint3d> snaps(const AcDbEntity& e, OsnapMode mode, AcGePoint3d pick, AcGePoint3d last = {}) {
  std::vector<AcGePoint3d> points;
  e.getOsnapPoints(mode, pick, last, points);
  return points;
}

TEST(Snap, OfAPolylineIsThatOfThePickedSpan) {
  const AcDbPolyline path(PolylineCurve{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 4}, 0}}, false});
  const AcGePoint3d pick{9.9, 1, 0};
  const auto ends = snaps(path, OsnapMode::kOsModeEnd, pick);
  ASSERT_EQ(ends.size(), 2u);
  expectPoint(ends[0], 10, 0);
  expectPoint(ends[1], 10, 4);
  expectPoint(snaps(path, OsnapMode::kOsModeMid, pick).at(0), 10, 2);
  expectPoint(snaps(path, OsnapMode::kOsModeNear, pick).at(0), 10, 1);
  expectPoint(snaps(path, OsnapMode::kOsModePerp, pick, {0, 7, 0}).at(0), 10, 7);
  EXPECT_TRUE(snaps(path, OsnapMode::kOsModeCen, pick).empty());
}

TEST(Snap, OfRoundThingsHasCentreQuadrantsAndTangents) {
  const AcDbArc arc({0, 0, 3}, 5, 0, kPi);
  expectPoint(snaps(arc, OsnapMode::kOsModeCen, {0, 5, 0}).at(0), 0, 0, 3);
  EXPECT_EQ(snaps(arc, OsnapMode::kOsModeQuad, {0, 5, 0}).size(), 3u);  // the lowest isn't on it
  // From (0,-13) the tangents of the whole circle touch at the angle acos(5/13) from straight down: below the
  // arc.
  EXPECT_TRUE(snaps(arc, OsnapMode::kOsModeTan, {0, 5, 0}, {0, -13, 0}).empty());
  // From (0,13): 5 * 5/13 above the centre, 5 * 12/13 to either side.
  const auto touching = snaps(arc, OsnapMode::kOsModeTan, {0, 5, 0}, {0, 13, 0});
  ASSERT_EQ(touching.size(), 2u);
  expectPoint(touching[0], 60.0 / 13, 25.0 / 13, 3);
  expectPoint(touching[1], -60.0 / 13, 25.0 / 13, 3);
}

TEST(Snap, OfPointsAndTextsIsWhereTheyStand) {
  expectPoint(snaps(AcDbPoint({1, 2, 3}), OsnapMode::kOsModeNode, {}).at(0), 1, 2, 3);
  expectPoint(snaps(AcDbText({4, 5, 0}, "x", 1), OsnapMode::kOsModeIns, {}).at(0), 4, 5);
  EXPECT_TRUE(snaps(AcDbPoint({1, 2, 3}), OsnapMode::kOsModeEnd, {}).empty());
}

TEST(Draw, SpansOfAPolylineGoOutAsLinesAndArcs) {
  AcDbPolyline path(PolylineCurve{{{{0, 0}, 0}, {{4, 0}, 0}, {{4, 2}, 1}, {{0, 2}, 0}}, true});
  path.setElevation(1);
  Drawn drawn;
  path.worldDraw(drawn);
  // Half circle from (4,2) to (0,2), to the left of its chord's direction bulging outwards: top at (2,4).
  EXPECT_THAT(drawn.lines,
              ElementsAre("polyline 0,0,1 4,0,1 4,2,1", "arc 4,2,1 2,4,1 0,2,1", "polyline 0,2,1 0,0,1"));
}

TEST(Draw, EllipsesAreChordsWithinAThousandthOfTheirSize) {
  const AcDbEllipse ellipse({100, 0, 0}, {50, 0}, 0.1, 0, 2 * kPi);
  Drawn drawn;
  ellipse.worldDraw(drawn);
  ASSERT_EQ(drawn.points.size(), 1u);
  const auto& points = drawn.points[0];
  EXPECT_LT(points.size(), 200u);
  const double size = std::hypot(100, 10);
  for (std::size_t i = 1; i < points.size(); ++i)
    for (const double f : {0.0, 0.25, 0.5, 0.75}) {
      const AcGePoint2d p{points[i - 1].x + f * (points[i].x - points[i - 1].x),
                          points[i - 1].y + f * (points[i].y - points[i - 1].y)};
      EXPECT_LT(closestPoint(ellipse.geometry(), p).distance, 1.5e-3 * size);
    }
}

TEST(Draw, ParagraphsLoseTheirCodes) {
  Drawn drawn;
  AcDbMText({0, 10, 0}, "{\\fArial|b0;One\\P\\H2.5x;T\\~wo} \\{3\\}", 1).worldDraw(drawn);
  ASSERT_EQ(drawn.lines.size(), 2u);
  EXPECT_THAT(drawn.lines[0], HasSubstr("One"));
  EXPECT_THAT(drawn.lines[1], HasSubstr("T wo {3}"));
}

TEST(List, SaysKindLayerHandleAndGeometry) {
  AcDbDatabase db;
  const auto id = db.appendAcDbEntity(
      db.modelSpace(), std::make_unique<AcDbLine>(AcGePoint3d{0, 0, 0}, AcGePoint3d{3, 4, 0}), 0x1AF);
  std::vector<std::string> lines;
  db.peek<AcDbLine>(id)->list(lines);
  // Length by 3-4-5, angle atan(4/3) = 53.1301 degrees.
  EXPECT_THAT(lines, ElementsAre("LINE  Layer: \"0\"  Space: Model", "  Color: BYLAYER  Linetype: BYLAYER",
                                 "  Handle: 1AF", "  From: X=0.0000 Y=0.0000 Z=0.0000",
                                 "  To: X=3.0000 Y=4.0000 Z=0.0000", "  Length: 5.0000  Angle: 53.1301"));
}

}  // namespace
}  // namespace tarnex
