// Named values inside a drawing.
// Knows the dictionary that holds them.
#include "frame/drawingvars.h"

#include <gmock/gmock.h>

namespace tarnex {
namespace {

using ::testing::Optional;

const AcDbDictionary* values(AcDbDatabase& drawing) {
  AcDbObjectId id;
  const auto* named = drawing.peek<AcDbDictionary>(drawing.namedObjectsDictionary());
  (void)named->getAt("MY_INFO_DICT", id);
  return drawing.peek<AcDbDictionary>(id);
}

TEST(DrawingVariables, AFreshDrawingHasNoneAndReadingMakesNone) {
  AcDbDatabase drawing;
  DrawingVars vars(drawing);
  EXPECT_EQ(vars.getInt("ISO_3BAUTOFIX"), std::nullopt);
  EXPECT_FALSE(vars.exists("ISO_3BAUTOFIX"));
  vars.remove("ISO_3BAUTOFIX");
  EXPECT_TRUE(vars.listAll().empty());
  EXPECT_EQ(values(drawing), nullptr);
  EXPECT_FALSE(vars.setInt("", 1));
  EXPECT_EQ(values(drawing), nullptr);
}

TEST(DrawingVariables, KeepTheirKindAndTheirSixteenBits) {
  AcDbDatabase drawing;
  DrawingVars vars(drawing);
  vars.setInt("a", 70000);  // 70000 - 65536
  EXPECT_THAT(vars.getInt("a"), Optional(4464));
  vars.setInt("a", 40000);
  EXPECT_THAT(vars.getInt("a"), Optional(40000 - 65536));
  vars.setInt("a", -32768);
  EXPECT_THAT(vars.getInt("a"), Optional(-32768));
  vars.setDouble("b", 0.18);
  vars.setString("c", "机床");
  vars.setPoint("d", {1, 2, 3});
  EXPECT_EQ(vars.getDouble("b"), 0.18);
  EXPECT_EQ(vars.getString("c"), "机床");
  EXPECT_EQ(vars.getPoint("d"), (AcGePoint3d{1, 2, 3}));
  for (const char* key : {"b", "c", "d"}) EXPECT_EQ(vars.getInt(key), std::nullopt) << key;
  for (const char* key : {"a", "c", "d"}) EXPECT_EQ(vars.getDouble(key), std::nullopt) << key;
  for (const char* key : {"a", "b", "d"}) EXPECT_EQ(vars.getString(key), std::nullopt) << key;
  for (const char* key : {"a", "b", "c"}) EXPECT_EQ(vars.getPoint(key), std::nullopt) << key;
}

TEST(DrawingVariables, AKeyHoldsOneRecordWhateverItsCase) {
  AcDbDatabase drawing;
  DrawingVars vars(drawing);
  EXPECT_FALSE(vars.setString("VORN_SHOW_dTextHeight", "first"));
  EXPECT_TRUE(vars.setDouble("vorn_show_DTEXTHEIGHT", 3.5));
  ASSERT_EQ(values(drawing)->entries().size(), 1u);
  const auto entry = values(drawing)->entries().front();
  EXPECT_EQ(entry.key, "VORN_SHOW_DTEXTHEIGHT");
  EXPECT_EQ(drawing.peek<AcDbXrecord>(entry.id)->rbChain().size(), 1u);
  EXPECT_EQ(vars.getDouble("VORN_SHOW_dTextHeight"), 3.5);
  EXPECT_TRUE(vars.exists("Vorn_Show_dTextHeight"));
  vars.remove("vorn_show_dtextheight");
  EXPECT_FALSE(vars.exists("VORN_SHOW_dTextHeight"));
}

TEST(DrawingVariables, AreListedByKind) {
  AcDbDatabase drawing;
  DrawingVars vars(drawing);
  vars.setInt("SNAPFLAG", 37);
  vars.setDouble("ISO_THICK", 0.25);
  vars.setString("ISO_MACHINEKZS", "Vorn");
  vars.setPoint("STARTPOINT0", {1, -2.5, 0});
  EXPECT_THAT(vars.listAll(), ::testing::ElementsAre("\n名称：    SNAPFLAG\t当前值： 37",
                                                     "\n名称：   ISO_THICK\t当前值： 0.25",
                                                     "\n名称：ISO_MACHINEKZS\t当前值： Vorn",
                                                     "\n名称： STARTPOINT0\t当前值： (1 -2.5 0)"));
}

}  // namespace
}  // namespace tarnex
