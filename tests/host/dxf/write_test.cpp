// What is written: untouched things byte for byte, changed ones with only the changed values, new ones as the
// version wants them.
#include <algorithm>

#include "host/dxf/drawings.h"

namespace tarnex::test {
namespace {

// Tags that only one of two files has, in order, as "-code value" and "+code value".
std::vector<std::string> difference(const std::string& before, const std::string& after) {
  const Tags a = parsed(before), b = parsed(after);
  std::size_t front = 0;
  std::vector<std::string> out;
  // Greedy alignment is enough for a few separate changes.
  std::size_t j = 0;
  for (std::size_t i = front; i < a.size(); ++i) {
    std::size_t k = j;
    while (k < b.size() && k < j + 40 && b[k] != a[i]) ++k;
    if (k < b.size() && b[k] == a[i] &&
        std::equal(a.begin() + static_cast<std::ptrdiff_t>(i),
                   a.begin() + static_cast<std::ptrdiff_t>(std::min(i + 2, a.size())),
                   b.begin() + static_cast<std::ptrdiff_t>(k))) {
      for (; j < k; ++j) out.push_back("+" + std::to_string(b[j].first) + " " + b[j].second);
      ++j;
    } else if (j < b.size() && b[j] == a[i]) {
      ++j;
    } else {
      out.push_back("-" + std::to_string(a[i].first) + " " + a[i].second);
    }
  }
  for (; j < b.size(); ++j) out.push_back("+" + std::to_string(b[j].first) + " " + b[j].second);
  return out;
}

using Lines = std::vector<std::string>;

template <class T>
Opened<T> change(AcDbDatabase& db, std::size_t n) {
  return db.open<T>(db.modelSpaceEntities().at(n), OpenMode::kForWrite);
}

TEST(DxfWrite, UntouchedDrawingsAreTheSameBytes) {
  const std::string minimal = ascii("0 SECTION|2 ENTITIES|0 LINE|8 0|10 1|20 2|11 3|21 4|0 ENDSEC|0 EOF");
  for (const std::string& bytes : {completeDrawing(), minimal, "\xEF\xBB\xBF" + completeDrawing()}) {
    const auto r = read(bytes);
    ASSERT_FALSE(r->failure);
    EXPECT_EQ(dxfText(r->db), bytes);
  }
}

TEST(DxfWrite, OnlyWhatChangedIsWrittenAnew) {
  const std::string bytes = completeDrawing();
  const auto r = read(bytes);
  change<AcDbLine>(r->db, 0)->setEndPoint({4, 2.25, 0});
  EXPECT_EQ(difference(bytes, dxfText(r->db)), (Lines{"-21 2.0", "+21 2.25"}));
  change<AcDbLine>(r->db, 0)->setEndPoint(
      {4, 2, 0});  // as it was: nothing differs, though it counts as changed
  EXPECT_EQ(dxfText(r->db), bytes);
}

TEST(DxfWrite, PropertiesOfKnownAndUnknownEntities) {
  const std::string bytes = completeDrawing();
  const auto r = read(bytes);
  const auto layer = r->db.layer("CUT");
  {
    auto odd = change<AcDbEntity>(r->db, 1);
    odd->setLayer(layer);
    odd->setColorIndex(4);
    odd->setInvisible(true);
  }
  change<AcDbEntity>(r->db, 2)->setColorIndex(kColorByLayer);
  const Lines expected = {"-8 0", "+8 CUT", "+62 4", "+60 1", "-62 1", "+62 256"};
  EXPECT_EQ(difference(bytes, dxfText(r->db)), expected);
}

TEST(DxfWrite, ErasedEntitiesGoWithTheirChildren) {
  const std::string rest = "0 LINE|8 0|10 1|20 2|11 3|21 4|";
  const std::string poly =
      "0 POLYLINE|8 0|66 1|70 0|0 VERTEX|8 0|10 0|20 0|0 VERTEX|8 0|10 1|20 0|0 SEQEND|8 0|";
  const auto whole = [](const std::string& e) {
    return ascii("0 SECTION|2 ENTITIES|" + e + "0 ENDSEC|0 EOF");
  };
  const auto r = read(whole(poly + rest));
  ASSERT_EQ(change<AcDbEntity>(r->db, 0)->erase(), ErrorStatus::eOk);
  EXPECT_EQ(dxfText(r->db), whole(rest));
}

TEST(DxfWrite, UnitsOfTheFileStay) {
  const auto r =
      read(drawing("AC1015", "0 CIRCLE|5 A|8 0|10 1.50|20 0.1|30 0|40 0.5|0 POINT|5 B|8 0|10 3|20 0.10",
                   "9 $INSUNITS|70 1"));
  const std::string before = dxfText(r->db);
  change<AcDbCircle>(r->db, 0)->setRadius(25.4 * 0.3);
  r->db.appendAcDbEntity(r->db.modelSpace(), std::make_unique<AcDbPoint>(AcGePoint3d{2.54, 0, 0}));
  const Lines expected = {"+9 $HANDSEED", "-40 0.5",        "+40 0.3", "+0 POINT", "+5 C", "+100 AcDbEntity",
                          "+8 0",         "+100 AcDbPoint", "+10 0.1", "+20 0",    "+30 0"};
  Lines got = difference(before, dxfText(r->db));
  std::erase_if(got, [](const std::string& line) {
    return line.compare(0, 3, "+5 ") == 0 && line != "+5 C";
  });  // the seed itself
  EXPECT_EQ(got, expected);
}

// Read as millimetres whatever it says, a drawing says so from then on: opened again, it is as large as
// before.
TEST(DxfWrite, UnitsThatWereAskedForAreWritten) {
  const std::string metres =
      drawing("AC1015", "0 CIRCLE|5 A|8 0|10 1.5|20 0|30 0|40 0.5", "9 $INSUNITS|70 6");
  const auto asked = read(metres, {nullptr, 1.0});
  EXPECT_EQ(difference(dxfText(read(metres)->db), dxfText(asked->db)), (Lines{"-70 6", "+70 4"}));
  EXPECT_EQ(nth<AcDbCircle>(read(dxfText(asked->db))->db).radius(), 0.5);
  const auto scaled = read(metres, {nullptr, 0.7});  // no unit is that long
  EXPECT_EQ(dxfText(scaled->db), dxfText(read(metres)->db));
}

// The numbers of a mirrored plane are turned back.
TEST(DxfWrite, MirroredPlanesStayMirrored) {
  const std::string back = "|210 0.0|220 0.0|230 -1.0";
  const std::string bytes = drawing(
      "AC1015", "0 ARC|5 A|8 0|10 -10.0|20 5.0|30 0.0|40 2.0|50 0.0|51 90.0" + back +
                    "|0 LWPOLYLINE|5 B|8 0|90 2|70 0|38 1.0|10 -1.0|20 0.0|42 1.0|10 -3.0|20 0.0" + back);
  const auto r = read(bytes);
  change<AcDbArc>(r->db, 0)->setCenter({11, 5, 0});
  change<AcDbArc>(r->db, 0)->setEndAngle(1.5 * kPi);
  change<AcDbPolyline>(r->db, 1)->setPointAt(1, {4, 0});
  const Lines expected = {"-10 -10.0", "+10 -11", "-50 0.0", "+50 270", "-10 -3.0", "+10 -4"};
  EXPECT_EQ(difference(bytes, dxfText(r->db)), expected);
}

TEST(DxfWrite, VerticesThatStandKeepTheirTags) {
  const std::string bytes =
      drawing("AC1015",
              "0 LWPOLYLINE|5 A|8 0|100 AcDbPolyline|90 3|70 0|10 0.0|20 0.0|40 0.5|41 0.5|10 1.0|20 0.0|91 "
              "7|10 2.0|20 0.0|210 0.0|220 0.0|230 1.0|1001 X|1070 1");
  const auto r = read(bytes);
  change<AcDbPolyline>(r->db, 0)->addVertexAt(1, {0.5, 1}, 0.25, -1, -1);
  const Lines inserted = {"-90 3", "+90 4", "+10 0.5", "+20 1", "+42 0.25"};
  EXPECT_EQ(difference(bytes, dxfText(r->db)), inserted);
  change<AcDbPolyline>(r->db, 0)->removeVertexAt(1);
  change<AcDbPolyline>(r->db, 0)->removeVertexAt(1);
  change<AcDbPolyline>(r->db, 0)->setClosed(true);
  const Lines removed = {"-90 3", "-70 0", "-10 1.0", "-20 0.0", "-91 7", "+90 2", "+70 1"};
  Lines got = difference(bytes, dxfText(r->db));
  std::sort(got.begin(), got.end());
  Lines sorted = removed;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(got, sorted);
}

TEST(DxfWrite, CopiesTakeAllTagsAndANewHandle) {
  const std::string bytes = completeDrawing();
  const auto r = read(bytes);
  auto copy = nth<AcDbEntity>(r->db, 1).clone();
  r->db.appendAcDbEntity(r->db.modelSpace(),
                         std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(copy.release())));
  const auto again = read(dxfText(r->db));
  ASSERT_TRUE(again->report.notes.empty()) << again->report.notes[0].text;
  ASSERT_EQ(again->report.modelSpace.at("ODDTHING"), 2);
  EXPECT_GE(nth<AcDbEntity>(again->db, 3).handle(), 0x100u);
  EXPECT_GT(again->db.nextHandle(), nth<AcDbEntity>(again->db, 3).handle());
}

TEST(DxfWrite, CurveFitMadeSimpleAndRaised) {
  const auto vertex = [](const char* x, const char* flags) {
    return "0 VERTEX|8 0|10 " + std::string(x) + "|20 0.0|30 0.0|42 0.5|70 " + flags + "|";
  };
  const std::string bytes =
      drawing("AC1009", "0 POLYLINE|8 0|66 1|10 0.0|20 0.0|30 0.0|70 4|75 6|" + vertex("9.0", "16") +
                            vertex("1.0", "8") + vertex("2.0", "8") + "0 SEQEND|8 0");
  const auto r = read(bytes);
  change<AcDb2dPolyline>(r->db, 0)->setPolyType(Poly2dType::k2dSimplePoly);
  change<AcDb2dPolyline>(r->db, 0)->setElevation(3);
  const auto again = read(dxfText(r->db));
  const auto& simple = nth<AcDb2dPolyline>(again->db, 0);
  EXPECT_EQ(simple.polyType(), Poly2dType::k2dSimplePoly);
  EXPECT_EQ(simple.elevation(), 3);
  EXPECT_EQ(simple.drawn().vertices, (std::vector<BulgeVertex>{{{1, 0}, 0.5}, {{2, 0}, 0.5}}));
}

// The frame of a spline fit turns with the drawn vertices: (x,y) to (-y,x), then 10 to the right.
TEST(DxfWrite, FramesFollowTheirCurve) {
  const auto vertex = [](const char* x, const char* y, const char* flags) {
    return "0 VERTEX|8 0|10 " + std::string(x) + "|20 " + y + "|70 " + flags + "|";
  };
  const auto r = read(drawing("AC1009", "0 POLYLINE|8 0|66 1|70 4|75 6|" + vertex("9.0", "2.0", "16") +
                                            vertex("1.0", "0.0", "8") + vertex("2.0", "1.0", "8") +
                                            vertex("4.0", "0.0", "8") + "0 SEQEND|8 0"));
  const AcGeMatrix3d turn = AcGeMatrix3d::rotation(kPi / 2, {0, 0});
  ASSERT_EQ(change<AcDb2dPolyline>(r->db, 0)->transformBy(AcGeMatrix3d::translation({10, 0, 0}) * turn),
            ErrorStatus::eOk);
  const Tags tags = parsed(dxfText(r->db));
  const auto frame = std::find(tags.begin(), tags.end(), std::pair<int, std::string>(0, "VERTEX"));
  ASSERT_NE(frame, tags.end());
  EXPECT_NEAR(std::stod((frame + 2)->second), 8, 1e-12);
  EXPECT_NEAR(std::stod((frame + 3)->second), 9, 1e-12);
}

// What the drawing doesn't hold of a text or a reference goes where they go.
TEST(DxfWrite, SecondPointsAndAttributesFollow) {
  const std::string bytes =
      drawing("AC1015",
              "0 TEXT|5 A|8 0|10 1.0|20 2.0|30 0.0|40 3.0|1 T|72 1|11 5.0|21 2.0|31 0.0|"
              "0 INSERT|5 B|8 0|66 1|2 X|10 1.0|20 1.0|30 0.0|"
              "0 ATTRIB|5 C|8 0|10 2.0|20 1.0|40 1.0|1 v|2 TAG|0 SEQEND|5 D|8 0");
  const auto r = read(bytes);
  const AcGeMatrix3d move = AcGeMatrix3d::translation({10, 0, 0});
  ASSERT_EQ(change<AcDbText>(r->db, 0)->transformBy(move), ErrorStatus::eOk);
  ASSERT_EQ(change<AcDbBlockReference>(r->db, 1)->transformBy(move), ErrorStatus::eOk);
  Lines got = difference(bytes, dxfText(r->db));
  const Lines expected = {"-10 1.0", "+10 11", "-11 5.0", "+11 15", "-10 1.0", "+10 11", "-10 2.0", "+10 12"};
  for (const std::string& line : expected)
    EXPECT_EQ(std::count(got.begin(), got.end(), line), std::count(expected.begin(), expected.end(), line))
        << line;
  // Turned by 90 degrees about (11,1), the attribute stands above its reference.
  ASSERT_EQ(change<AcDbBlockReference>(r->db, 1)->transformBy(AcGeMatrix3d::rotation(kPi / 2, {11, 1})),
            ErrorStatus::eOk);
  const Tags tags = parsed(dxfText(r->db));
  const auto attribute = std::find(tags.begin(), tags.end(), std::pair<int, std::string>(0, "ATTRIB"));
  ASSERT_NE(attribute, tags.end());
  EXPECT_NEAR(std::stod((attribute + 3)->second), 11, 1e-12);
  EXPECT_NEAR(std::stod((attribute + 4)->second), 2, 1e-12);
}

TEST(DxfWrite, LayersChangedAndAdded) {
  const std::string bytes = completeDrawing();
  const auto r = read(bytes);
  {
    auto cut = r->db.open<AcDbLayerTableRecord>(r->db.layer("CUT"), OpenMode::kForWrite);
    cut->setIsOff(false);
    cut->setIsLocked(true);
  }
  auto fresh = std::make_unique<AcDbLayerTableRecord>();
  fresh->setName("\u7ebf\u00e4");  // one character that the code page lacks, one that it has
  fresh->setColorIndex(5);
  r->db.currentLayer = r->db.addLayer(std::move(fresh));
  const Lines expected = {"-5 100",
                          "+5 101",
                          "-70 1",
                          "+70 3",
                          "-70 0",
                          "-62 -3",
                          "+70 4",
                          "+62 3",
                          "+0 LAYER",
                          "+5 100",
                          "+330 2",
                          "+100 AcDbSymbolTableRecord",
                          "+100 AcDbLayerTableRecord",
                          "+2 \\U+7EBF\xe4",
                          "+70 0",
                          "+62 5",
                          "+6 CONTINUOUS",
                          "+370 -3",
                          "+390 F"};
  Lines got = difference(bytes, dxfText(r->db));
  EXPECT_EQ(std::count(got.begin(), got.end(), "+2 \\U+7EBF\xe4"), 1);
  EXPECT_EQ(std::count(got.begin(), got.end(), "+390 F"), 1);
  EXPECT_EQ(std::count(got.begin(), got.end(), "-62 -3"), 1);
  const auto again = read(dxfText(r->db));
  EXPECT_TRUE(again->db.peek<AcDbLayerTableRecord>(again->db.layer("CUT"))->isLocked());
  EXPECT_FALSE(again->db.layer("\u7ebf\u00e4").isNull());
  EXPECT_EQ(again->db.layerName(again->db.currentLayer), "\u7ebf\u00e4");
}

TEST(DxfWrite, HeaderVariablesAndUcs) {
  const std::string bytes = completeDrawing();
  const auto r = read(bytes);
  r->db.headerVariables["$LTSCALE"].value = 2.5;
  r->db.ucsorg = {10, 20, 0};
  EXPECT_EQ(difference(bytes, dxfText(r->db)),
            (Lines{"-40 1.0", "+40 2.5", "+9 $UCSORG", "+10 10", "+20 20", "+30 0"}));
  const auto again = read(dxfText(r->db));
  EXPECT_EQ(again->db.ucsorg, (AcGePoint3d{10, 20, 0}));
}

}  // namespace
}  // namespace tarnex::test
