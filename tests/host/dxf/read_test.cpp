// What is read of well-formed drawings: geometry, planes, units, layers, texts, encodings.
#include <cmath>

#include "host/dxf/drawings.h"

namespace tarnex::test {
namespace {

constexpr double kDegree = 0.017453292519943295;

TEST(DxfRead, SimpleCurvesWithHeads) {
  const auto r = read(drawing("AC1009",
                              "0 LINE|8 CUT|62 3|6 DASHED|10 1|20 2|11 3|21 4|"
                              "0 ARC|8 CUT|10 0|20 0|40 5|50 350|51 20|"
                              "0 CIRCLE|8 0|10 7|20 8|30 1|40 2.5|60 1|"
                              "0 POINT|8 0|10 7|20 9|"
                              "0 RAY|8 0|10 1|20 1|11 0|21 2"));
  ASSERT_FALSE(r->failure);
  EXPECT_TRUE(r->report.notes.empty()) << r->report.notes[0].text;
  const auto& line = nth<AcDbLine>(r->db, 0);
  EXPECT_EQ(line.getStartPoint(), (AcGePoint3d{1, 2, 0}));
  EXPECT_EQ(line.getEndPoint(), (AcGePoint3d{3, 4, 0}));
  EXPECT_EQ(r->db.layerName(line.layerId()), "CUT");
  EXPECT_EQ(line.colorIndex(), 3);
  EXPECT_EQ(r->db.peek<AcDbLinetypeTableRecord>(line.linetypeId())->getName(), "DASHED");
  const auto& arc = nth<AcDbArc>(r->db, 1);
  EXPECT_DOUBLE_EQ(arc.startAngle(), 350 * kDegree);
  EXPECT_DOUBLE_EQ(arc.endAngle(), 20 * kDegree);
  EXPECT_TRUE(nth<AcDbCircle>(r->db, 2).isInvisible());
  EXPECT_EQ(nth<AcDbPoint>(r->db, 3).position(), (AcGePoint3d{7, 9, 0}));
  EXPECT_EQ(nth<AcDbRay>(r->db, 4).unitDir(), (AcGeVector2d{0, 1}));
  EXPECT_EQ(r->report.modelSpace.at("LINE"), 1);
}

// The normal (0,0,-1) looks at the plane from behind: x and z change sign, and with them the way round.
TEST(DxfRead, MirroredPlanesAreTurnedIntoTheirEqual) {
  const std::string back = "210 0|220 0|230 -1";
  const auto r = read(drawing(
      "AC1015", "0 ARC|8 0|10 -10|20 5|40 2|50 0|51 90|" + back + "|0 CIRCLE|8 0|10 -3|20 4|30 2|40 1|" +
                    back + "|0 LWPOLYLINE|8 0|90 2|70 0|10 -1|20 0|42 1|10 -3|20 0|" + back +
                    "|0 ELLIPSE|8 0|10 5|20 0|30 0|11 2|21 0|31 0|40 0.5|41 0|42 1.5707963267948966|" + back +
                    "|0 TEXT|8 0|10 -1|20 2|40 3|1 T|50 0|" + back));
  ASSERT_FALSE(r->failure);
  // Own plane: from (-8,5) counter-clockwise to (-10,7). World: (8,5) clockwise to (10,7), so
  // counter-clockwise from 90 to 180 degrees about (10,5).
  const auto& arc = nth<AcDbArc>(r->db, 0);
  EXPECT_EQ(arc.center(), (AcGePoint3d{10, 5, 0}));
  EXPECT_NEAR(arc.startAngle(), 90 * kDegree, 1e-15);
  EXPECT_NEAR(arc.endAngle(), 180 * kDegree, 1e-15);
  EXPECT_EQ(nth<AcDbCircle>(r->db, 1).center(), (AcGePoint3d{3, 4, -2}));
  const auto& poly = nth<AcDbPolyline>(r->db, 2);
  EXPECT_EQ(poly.getPointAt(0), (AcGePoint2d{1, 0}));
  EXPECT_EQ(poly.getBulgeAt(0), -1);
  // Centre and axis are world values; from (7,0) it runs clockwise to (5,-1).
  const auto& ellipse = nth<AcDbEllipse>(r->db, 3);
  EXPECT_NEAR(ellipse.startAngle(), 1.5 * kPi, 1e-15);
  EXPECT_NEAR(ellipse.endAngle(), 0, 1e-15);
  EXPECT_NEAR(nth<AcDbText>(r->db, 4).rotation(), kPi, 1e-15);
}

TEST(DxfRead, TiltedAndSolidEntitiesAreKept) {
  const auto r = read(drawing("AC1015",
                              "0 CIRCLE|8 0|10 0|20 0|40 1|210 1|220 0|230 0|"
                              "0 3DFACE|8 0|10 0|20 0|30 0|11 1|21 0|31 0|12 1|22 1|32 0|13 0|23 1|33 5|"
                              "0 POLYLINE|8 0|66 1|70 8|0 VERTEX|8 0|10 0|20 0|30 0|70 32|0 VERTEX|8 0|10 "
                              "0|20 0|30 9|70 32|0 SEQEND|8 0|"
                              "0 HATCH|8 0|10 1|20 1"));
  for (const std::size_t i : {0u, 1u, 2u})
    EXPECT_TRUE(nth<AcDbKeptEntity>(r->db, i).isThreeDimensional()) << i;
  EXPECT_TRUE(nth<AcDbKeptEntity>(r->db, 3).isKindOf(AcDbHatch::desc()));
}

TEST(DxfRead, HeavyPolylinesByTheirKind) {
  const auto vertex = [](const char* x, const char* y, const char* more) {
    return "0 VERTEX|8 0|10 " + std::string(x) + "|20 " + y + more + "|";
  };
  const auto r = read(drawing(
      "AC1009", "0 POLYLINE|8 0|66 1|10 0|20 0|30 2.5|70 1|" + vertex("0", "0", "|42 1") +
                    vertex("4", "0", "") + "0 SEQEND|8 0|" + "0 POLYLINE|8 0|66 1|70 4|75 6|" +
                    vertex("0", "0", "|70 16") + vertex("9", "9", "|70 16") + vertex("1", "1", "|70 8") +
                    vertex("2", "2", "|70 8") + vertex("3", "3", "|70 8") + "0 SEQEND|8 0"));
  const auto& simple = nth<AcDb2dPolyline>(r->db, 0);
  EXPECT_TRUE(simple.isClosed());
  EXPECT_EQ(simple.elevation(), 2.5);
  EXPECT_EQ(simple.drawn().vertices, (std::vector<BulgeVertex>{{{0, 0}, 1}, {{4, 0}, 0}}));
  const auto& fitted = nth<AcDb2dPolyline>(r->db, 1);
  EXPECT_EQ(fitted.polyType(), Poly2dType::k2dCubicSplinePoly);
  ASSERT_EQ(fitted.drawn().vertices.size(), 3u);  // the frame's two don't count
  EXPECT_EQ(fitted.drawn().vertices[2].point, (AcGePoint2d{3, 3}));
}

TEST(DxfRead, Splines) {
  const std::string knots = "40 0|40 0|40 0|40 0|40 1|40 1|40 1|40 1|";
  const std::string control = "10 0|20 0|30 0|10 1|20 2|30 0|10 3|20 2|30 0|10 4|20 0|30 0";
  const auto r = read(
      drawing("AC1015", "0 SPLINE|8 0|70 8|71 3|72 8|73 4|74 0|" + knots + control +
                            "|0 SPLINE|8 0|70 8|71 3|72 99|73 4|" + control +  // no knots at all
                            "|0 SPLINE|8 0|70 8|71 3|74 3|11 0|21 0|31 0|11 5|21 5|31 0|11 10|21 0|31 0" +
                            "|0 SPLINE|8 0|70 8|71 3|" + knots +
                            "10 0|20 0|30 0|10 1|20 2|30 9|10 3|20 2|30 0|10 4|20 0|30 0"));
  EXPECT_EQ(nth<AcDbSpline>(r->db, 0).nurbs().knots, (std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1}));
  const NurbsCurve& repaired = nth<AcDbSpline>(r->db, 1).nurbs();
  EXPECT_EQ(repaired.knots, (std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1}));
  const auto& fit = nth<AcDbSpline>(r->db, 2);
  EXPECT_EQ(fit.numFitPoints(), 3);
  EXPECT_LT(closestPoint(fit.geometry(), {5, 5}).distance, 1e-9);
  EXPECT_TRUE(nth<AcDbKeptEntity>(r->db, 3).isThreeDimensional());
}

// A periodic spline of degree 2 on even knots: between two knots it is the mean of neighbouring control
// points.
TEST(DxfRead, SplineWithOpenKnotsKeepsItsShape) {
  const auto r = read(
      drawing("AC1015",
              "0 SPLINE|8 0|70 11|71 2|72 9|73 6|40 -2|40 -1|40 0|40 1|40 2|40 3|40 4|40 5|40 6|"
              "10 0|20 0|30 0|10 4|20 0|30 0|10 4|20 4|30 0|10 0|20 4|30 0|10 0|20 0|30 0|10 4|20 0|30 0"));
  ASSERT_TRUE(r->report.notes.empty()) << r->report.notes[0].text;
  const Curve c = nth<AcDbSpline>(r->db, 0).geometry();
  const std::vector<AcGePoint2d> atKnots = {{2, 0}, {4, 2}, {2, 4}, {0, 2}, {2, 0}};
  for (std::size_t k = 0; k < atKnots.size(); ++k)
    EXPECT_LT(pointAtParam(c, static_cast<double>(k)).distanceTo(atKnots[k]), 1e-12) << k;
}

TEST(DxfRead, BlocksNestedMirroredAndWithinThemselves) {
  const auto block = [](const char* name, const char* content) {
    return "0 BLOCK|8 0|2 " + std::string(name) + "|70 0|10 1|20 0|30 0|3 " + name + "|1 |" + content +
           "|0 ENDBLK|8 0|";
  };
  const std::string blocks =
      block("OUTER", "0 INSERT|8 0|2 INNER|10 0|20 0") + block("INNER", "0 LINE|8 0|10 0|20 0|11 1|21 0") +
      block("A", "0 INSERT|8 0|2 B|10 0|20 0") + block("B", "0 INSERT|8 0|2 A|10 0|20 0");
  const auto r = read(ascii(
      section("BLOCKS", blocks.substr(0, blocks.size() - 1)) +
      section("ENTITIES",
              "0 INSERT|8 0|2 outer|10 5|20 6|41 2|42 -2|50 90|70 3|44 10|"
              "0 INSERT|8 0|2 INNER|10 -5|20 6|50 30|230 -1|"
              "0 INSERT|8 0|2 INNER|66 1|10 0|20 0|0 ATTRIB|8 0|10 1|20 1|40 2|1 v|2 TAG|0 SEQEND|8 0") +
      "0 EOF"));
  const auto& reference = nth<AcDbBlockReference>(r->db, 0);
  EXPECT_EQ(r->db.peek<AcDbBlockTableRecord>(reference.blockTableRecord())->getName(), "OUTER");
  EXPECT_EQ(reference.scaleY, -2);
  EXPECT_EQ(reference.columns, 3);
  EXPECT_EQ(reference.columnSpacing, 10);
  // A point (1,0) of the block, its base point at (1,0), lies at the insertion point; own x points to the
  // left turned by 30 degrees the other way round.
  const AcGeMatrix3d m = nth<AcDbBlockReference>(r->db, 1).blockTransform();
  EXPECT_LT(m.apply(AcGePoint2d{1, 0}).distanceTo({5, 6}), 1e-12);
  EXPECT_LT(m.apply(AcGePoint2d{2, 0}).distanceTo({5 - std::cos(kPi / 6), 6 + std::sin(kPi / 6)}), 1e-12);
  EXPECT_EQ(r->db.modelSpaceEntities().size(), 3u);  // the attribute belongs to its reference
  ASSERT_EQ(r->report.notes.size(), 1u);             // A in B or B in A
  EXPECT_NE(r->report.notes[0].text.find("within itself"), std::string::npos);
}

TEST(DxfRead, LayersFrozenOffLockedAndUnicode) {
  const auto layer = [](const char* name, const char* flags, const char* color, const char* more) {
    return "0 LAYER|2 " + std::string(name) + "|70 " + flags + "|62 " + color + "|6 CONTINUOUS" + more + "|";
  };
  const std::string tables = "0 TABLE|2 LAYER|70 9|" + layer("OFF", "0", "-3", "") +
                             layer("FROZEN", "1", "1", "") + layer("LOCKED", "4", "300", "|290 0") +
                             layer("\xc9\xd9\xb6\xa8", "0", "7", "") + layer("\\U+00C4", "0", "7", "") +
                             layer("off", "0", "7", "") + "0 ENDTAB";
  const auto r = read(
      ascii(section("HEADER", "9 $ACADVER|1 AC1015|9 $DWGCODEPAGE|3 ANSI_936|9 $CLAYER|8 FROZEN") +
            section("TABLES", tables) +
            section("ENTITIES",
                    "0 POINT|8 \xc9\xd9\xb6\xa8|10 0|20 0|0 TEXT|8 0|10 0|20 0|40 1|1 \\M+5C9D9\xb6\xa8") +
            "0 EOF"));
  const auto& off = *r->db.peek<AcDbLayerTableRecord>(r->db.layer("OFF"));
  EXPECT_TRUE(off.isOff());
  EXPECT_EQ(off.colorIndex(), 3);
  EXPECT_TRUE(r->db.peek<AcDbLayerTableRecord>(r->db.layer("Frozen"))->isFrozen());
  const auto& locked = *r->db.peek<AcDbLayerTableRecord>(r->db.layer("LOCKED"));
  EXPECT_TRUE(locked.isLocked());
  EXPECT_FALSE(locked.isPlottable());
  EXPECT_FALSE(r->db.layer("\u00c4").isNull());
  EXPECT_EQ(r->db.layerName(nth<AcDbPoint>(r->db, 0).layerId()), "\u5c11\u5b9a");  // GB 2312: C9D9 B6A8
  EXPECT_EQ(nth<AcDbText>(r->db, 1).textString(), "\u5c11\u5b9a");
  EXPECT_EQ(r->db.layerName(r->db.currentLayer), "FROZEN");
  ASSERT_EQ(r->report.notes.size(), 1u);
  EXPECT_EQ(r->report.notes[0].text, "\"off\" stands twice in the table LAYER, the first one counts");
}

TEST(DxfRead, UnitsAreConvertedAndSaid) {
  const std::string entities = "0 CIRCLE|8 0|10 1|20 0|40 0.5";
  const auto inch =
      read(drawing("AC1015", entities, "9 $INSUNITS|70 1|9 $MEASUREMENT|70 1|9 $UCSORG|10 2|20 0|30 0"));
  EXPECT_EQ(nth<AcDbCircle>(inch->db).radius(), 12.7);
  EXPECT_EQ(inch->db.ucsorg.x, 50.8);
  EXPECT_EQ(inch->report.units, "inches");
  ASSERT_EQ(inch->report.notes.size(), 1u);
  EXPECT_EQ(inch->report.notes[0].line, 9u)  // behind section and version, four lines each
  ;
  EXPECT_EQ(inch->report.notes[0].text,
            "$INSUNITS says inches, $MEASUREMENT says metric; $INSUNITS is taken");
  const auto told = read(drawing("AC1015", entities, "9 $INSUNITS|70 1"), {nullptr, 10.0});
  EXPECT_EQ(nth<AcDbCircle>(told->db).radius(), 5);
  EXPECT_EQ(told->report.unitFactor, 10);
}

TEST(DxfRead, PaperSpaceIsNotModelSpace) {
  const auto r = read(drawing("AC1009", "0 LINE|8 0|67 1|10 0|20 0|11 1|21 0|0 POINT|8 0|67 0|10 0|20 0"));
  EXPECT_EQ(r->db.modelSpaceEntities().size(), 1u);
  EXPECT_EQ(r->db.peek<AcDbBlockTableRecord>(r->db.paperSpace())->entities().size(), 1u);
}

// The same tags in every form of file give the same drawing.
TEST(DxfRead, AsciiAndBothBinaryKindsAndAnyLineEndAgree) {
  const std::string text =
      section("HEADER", "9 $ACADVER|1 AC1009") +
      section("ENTITIES",
              "0 LINE|5 2A|8 CUT|62 5|10 0.1|20 -2e-3|11 3|21 4|1001 APP|1071 -70000|1004 00FF10|"
              "0 POLYLINE|5 2B|8 0|66 1|70 1|0 VERTEX|5 2C|8 0|10 1|20 1|42 0.5|0 VERTEX|5 2D|8 0|10 5|20 "
              "1|0 SEQEND|5 2E|8 0") +
      "0 EOF";
  const Tags tags = tagsOf(text);
  std::vector<std::string> files = {ascii(tags),           ascii(tags, "\r\n"),          ascii(tags, "\r"),
                                    ascii(tags, "\r\r\n"), "\xEF\xBB\xBF" + ascii(tags), binary(tags, false),
                                    binary(tags, true)};
  std::string mixed = ascii(tags, "\r\n");
  mixed.replace(mixed.find("\r\n"), 2, "\r");
  mixed.replace(mixed.rfind("LINE\r\n") + 4, 2, "\n");
  files.push_back(mixed);
  std::string lostByte = binary(tags, true);
  lostByte.erase(18, 1);
  files.push_back(lostByte);
  for (std::size_t i = 0; i < files.size(); ++i) {
    SCOPED_TRACE(i);
    const std::string bytes = files[i];
    const auto r = read(bytes);
    ASSERT_FALSE(r->failure) << r->failure->cause;
    const auto& line = nth<AcDbLine>(r->db, 0);
    EXPECT_EQ(line.getStartPoint(), (AcGePoint3d{0.1, -2e-3, 0}));
    EXPECT_EQ(line.handle(), 0x2Au);
    EXPECT_EQ(line.colorIndex(), 5);
    EXPECT_EQ(line.xData("APP"), (ResBufChain{{1071, -70000LL}, {1004, std::string("\0\xff\x10", 3)}}));
    EXPECT_EQ(nth<AcDb2dPolyline>(r->db, 1).drawn().vertices,
              (std::vector<BulgeVertex>{{{1, 1}, 0.5}, {{5, 1}, 0}}));
    EXPECT_EQ(dxfText(r->db), bytes);
  }
}

}  // namespace
}  // namespace tarnex::test
