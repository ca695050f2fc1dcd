// The bytes of the object filer, worked out by hand, and what reading does at the end of them.
#include "host/database/filer.h"

#include <gtest/gtest.h>

#include "host/database/entities.h"

namespace tarnex {
namespace {

std::string bytes(std::initializer_list<int> values) {
  std::string s;
  for (const int v : values) s.push_back(static_cast<char>(v));
  return s;
}

TEST(Filer, ItemsAreLittleEndian) {
  AcDbDwgFiler out;
  out.writeInt16(-2);
  out.writeInt32(213);
  out.writeBoolean(true);
  out.writeBoolean(false);
  out.writeString("A\xC3\xA9");
  out.writeHardPointerId(0x0102030405060708);
  EXPECT_EQ(out.bytes(), bytes({0xFE, 0xFF,                   // 65534
                                0xD5, 0,    0,   0,           // 13 * 16 + 5
                                1,    0,                      //
                                3,    0,    'A', 0xC3, 0xA9,  // length in bytes
                                8,    7,    6,   5,    4,    3, 2, 1}));
}

// 1.5 is 1.1 binary: exponent 1023 = 3FF, fraction 1000...; 1 is 3FF0..., -2 is C000....
TEST(Filer, DoublesAndPointsAreIeeeBytes) {
  AcDbDwgFiler out;
  out.writeDouble(1.5);
  out.writePoint2d({1, -2});
  out.writePoint3d({0, 0, 1});
  const std::string one = bytes({0, 0, 0, 0, 0, 0, 0xF0, 0x3F}), zero(8, '\0');
  EXPECT_EQ(out.bytes(), bytes({0, 0, 0, 0, 0, 0, 0xF8, 0x3F}) + one + bytes({0, 0, 0, 0, 0, 0, 0, 0xC0}) +
                             zero + zero + one);
}

TEST(Filer, ReadsBackWhatItWrote) {
  AcDbDwgFiler out;
  out.writeInt16(-32768);
  out.writeInt32(-5);
  out.writeDouble(-0.1);
  out.writePoint3d({1, 2, 3});
  out.writeString("");
  out.writeHardPointerId(~std::uint64_t{0});
  AcDbDwgFiler in(out.bytes(), FilerType::kWblockCloneFiler);
  EXPECT_EQ(in.filerType(), FilerType::kWblockCloneFiler);
  EXPECT_EQ(in.readInt16(), -32768);
  EXPECT_EQ(in.readInt32(), -5);
  EXPECT_EQ(in.readDouble(), -0.1);
  EXPECT_EQ(in.readPoint3d(), (AcGePoint3d{1, 2, 3}));
  EXPECT_EQ(in.readString(), "");
  EXPECT_EQ(in.readHardPointerId(), ~std::uint64_t{0});
  EXPECT_EQ(in.remaining(), 0u);
  EXPECT_EQ(in.filerStatus(), ErrorStatus::eOk);
}

TEST(Filer, PastTheEndComeZerosAndAStatusThatStays) {
  const std::string three = bytes({1, 2, 3});
  AcDbDwgFiler in(three);
  EXPECT_EQ(in.readInt32(), 0);
  EXPECT_EQ(in.filerStatus(), ErrorStatus::eEndOfFile);
  EXPECT_EQ(in.readInt16(), 0);
  EXPECT_EQ(in.readString(), "");
  EXPECT_EQ(in.filerStatus(), ErrorStatus::eEndOfFile);
  for (const std::string& claim :
       {bytes({0xFF, 0x7F, 'a'}), bytes({0xFF, 0xFF, 'a'})}) {  // 32767 and -1 bytes
    AcDbDwgFiler lying(claim);
    EXPECT_EQ(lying.readString(), "");
    EXPECT_EQ(lying.filerStatus(), ErrorStatus::eEndOfFile);
  }
}

TEST(Filer, ALongStringIsCutBetweenCharacters) {
  std::string s(32766, 'x');
  s += "\xC3\xA9";  // two bytes across the limit
  AcDbDwgFiler out;
  out.writeString(s);
  EXPECT_EQ(out.bytes().size(), 2u + 32766u);
}

TEST(Filer, APolylineIsFlagElevationCountAndVertices) {
  AcDbPolyline path(PolylineCurve{{{{1, -2}, 1.5}, {{0, 0}, 0}}, true});
  path.setElevation(1);
  AcDbDwgFiler out;
  ASSERT_EQ(path.dwgOutFields(out), ErrorStatus::eOk);
  const std::string one = bytes({0, 0, 0, 0, 0, 0, 0xF0, 0x3F});
  EXPECT_EQ(out.bytes(), bytes({1}) + one + bytes({2, 0, 0, 0}) + one + bytes({0, 0, 0, 0, 0, 0, 0, 0xC0}) +
                             bytes({0, 0, 0, 0, 0, 0, 0xF8, 0x3F}) + std::string(24, '\0'));

  AcDbPolyline back;
  AcDbDwgFiler in(out.bytes());
  ASSERT_EQ(back.dwgInFields(in), ErrorStatus::eOk);
  EXPECT_EQ(back.polyline(), path.polyline());
  EXPECT_EQ(back.elevation(), 1);

  for (std::size_t size = 0; size < out.bytes().size(); ++size) {
    AcDbDwgFiler cut(std::string_view(out.bytes()).substr(0, size));
    EXPECT_EQ(back.dwgInFields(cut), ErrorStatus::eEndOfFile);
    EXPECT_EQ(back.polyline(), path.polyline());  // nothing half read
  }
}

TEST(Filer, AClaimedVertexCountIsNotBelieved) {
  AcDbDwgFiler out;
  out.writeBoolean(false);
  out.writeDouble(0);
  out.writeInt32(40'000'000);
  AcDbDwgFiler in(out.bytes());
  AcDbPolyline path;
  EXPECT_EQ(path.dwgInFields(in), ErrorStatus::eEndOfFile);
}

}  // namespace
}  // namespace tarnex
