// The stored record of a path byte by byte: the present form, every older one, and bytes that lie.
// Knows the record; nothing of what the fields are for.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "frame/settings.h"
#include "support/bytes.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

struct Kind {
  int version = 213;
  int nFlags = 1;
  bool circle = false, upperCircle = false;
  int passLast = 1;
};

const std::vector<BulgeVertex> kVertices{
    {{-5, 5}, 0}, {{0, 5}, 0.25}, {{0, 0}, -0.5}, {{10, 0}, 0}, {{0, 5}, 0}};

void putContour(Bytes& b, bool circle, double shift) {
  b.flag(circle);
  if (circle)
    b.real(12.5 + shift).p2({3 + shift, 4});
  else
    b.flag(true);
}

void putPoints(Bytes& b, double shift) {
  b.i16(2).p3({0 + shift, 5, 0.25}).p3({10, 0, -0.5});
}

// The record as each version stored it, group by group.
Bytes record(const Kind& k) {
  Bytes b;
  const int v = k.version;
  b.i32(v);
  if (v <= 204) b.i32(4711);
  b.i32(7).i32(-1).i32(1).real(1.5);
  if (v <= 204) b.real(0.1);
  if (v >= 205) {
    b.flag(false).real(0).i32(5);
    for (const auto& x : kVertices) b.p2(x.point).real(x.bulge);
    b.i16(5);
    for (int i = 0; i < 5; ++i) b.real(i * 0.5);
  } else {
    b.real(0.2).real(0.3).i16(5);
    for (int i = 0; i < 5; ++i)
      b.real(kVertices[static_cast<std::size_t>(i)].bulge)
          .p2(kVertices[static_cast<std::size_t>(i)].point)
          .real(i * 0.5);
  }
  putContour(b, k.circle, 0);
  if (v <= 201) return b;
  b.i32(k.nFlags).real(0.02).real(0.11);
  if (!k.circle) putPoints(b, 0);
  if (k.nFlags & 24) b.i16(2).real(0.125).p2({1, 2}).real(-0.25).p2({3, 4});
  if (k.nFlags & 8) {
    putContour(b, k.upperCircle, 100);
    if (!k.upperCircle) putPoints(b, 100);
  }
  if (v >= 203) b.i16(5);
  if (v >= 204) {
    b.text("STYLE7").real(1).real(2).real(3).real(4).i16(k.passLast).i16(503);
    for (int i = 0; i <= k.passLast; ++i)
      b.real(10 + i).real(20 + i).real(30 + i).text("C" + std::to_string(i)).text("S" + std::to_string(i));
  }
  b.flag(true).p2({61, 62}).p2({63, 64});
  if (v >= 206) {
    b.real(0.6).real(0.7).real(40);
    if (k.nFlags & 8) b.i16(1).p2({71, 72}).i16(2).real(1).real(2);
  }
  if (v >= 207) b.i16(3).real(0.1).real(0.2).real(0.3).real(0.4).p2({81, 82}).p2({83, 84});
  if (v == 209) b.i16(2).p3({0, 5.0009, 9}).text("M00").p3({99, 99, 0}).text("lost");
  if (v >= 210) b.i16(2).i16(2).text("R").i16(4).text("A|B");
  if (v == 211 || v == 212) b.text("gone").i32(1);
  if (v == 212) b.i32(2);
  return b;
}

ErrorStatus readInto(CToolPath& path, const std::string& bytes) {
  AcDbDwgFiler in(bytes);
  return path.dwgInFields(in);
}

std::string written(const CToolPath& path, FilerType type = FilerType::kFileFiler) {
  AcDbDwgFiler out(type);
  EXPECT_EQ(path.dwgOutFields(out), ErrorStatus::eOk);
  return out.bytes();
}

TEST(PathRecord, ThePresentFormGoesOutAsItCameIn) {
  for (const Kind& k :
       {Kind{}, Kind{213, 2}, Kind{213, 1, true}, Kind{213, 16}, Kind{213, 8}, Kind{213, 8, true, true},
        Kind{213, 1, false, false, 0}, Kind{213, 1, false, false, 9}, Kind{213, 1, false, false, -1}}) {
    const std::string bytes = record(k).s;
    CToolPath path;
    ASSERT_EQ(readInto(path, bytes), ErrorStatus::eOk);
    EXPECT_EQ(written(path), bytes) << k.nFlags << " " << k.circle << " " << k.passLast;
  }
}

TEST(PathRecord, FieldsLandWhereTheyBelong) {
  CToolPath path;
  ASSERT_EQ(readInto(path, record({213, 8}).s), ErrorStatus::eOk);
  EXPECT_EQ(path.nPathNo(), 7);
  EXPECT_EQ(path.nSide(), -1);
  EXPECT_EQ(path.nDirection(), 1);
  EXPECT_EQ(path.dTaper(), 1.5);
  EXPECT_EQ(path.polyline().vertices, kVertices);
  EXPECT_EQ(path.aSegTaper(), (std::vector<double>{0, 0.5, 1, 1.5, 2}));
  EXPECT_EQ(path.contour(), (PathContour{false, 0, {}, true, {{0, 5, 0.25}, {10, 0, -0.5}}}));
  EXPECT_EQ(path.upper(), (PathCurve{{{1, 2}, {3, 4}}, {0.125, -0.25}}));
  EXPECT_EQ(path.upperContour(), (PathContour{false, 0, {}, true, {{100, 5, 0.25}, {10, 0, -0.5}}}));
  EXPECT_EQ(path.dClearance(), 0.02);
  EXPECT_EQ(path.dOffset(), 0.11);
  EXPECT_EQ(path.dHeight(), 40);
  EXPECT_EQ(path.nColor(), 5);
  EXPECT_TRUE(path.bHasStyle());
  EXPECT_EQ(path.ptBreak(), (AcGePoint2d{61, 62}));
  EXPECT_EQ(path.ptBreakExit(), (AcGePoint2d{63, 64}));
  EXPECT_EQ(path.nBreakSeg(), 3);
  EXPECT_EQ(path.aCodeVertex(), (std::vector<int>{2, 4}));
  EXPECT_EQ(path.aCodeText(), (std::vector<std::string>{"R", "A|B"}));
  const ProcessStyle s = path.getProcessStyle();
  EXPECT_EQ(s.sName, "STYLE7");
  EXPECT_EQ((std::vector<double>{s.dValueA, s.dValueB, s.dValueC, s.dValueD}),
            (std::vector<double>{1, 2, 3, 4}));
  EXPECT_EQ(s.nPassLast, 1);
  EXPECT_EQ(s.nCode, 503);
  EXPECT_EQ(s.passes[1].dValue1, 11);
  EXPECT_EQ(s.passes[1].dValue2, 21);
  EXPECT_EQ(s.passOffset[1], 31);
  EXPECT_EQ(s.passes[1].sCode, "C1");
  EXPECT_EQ(s.passes[1].sSub1, "S1");
  EXPECT_EQ(s.passes[2].sCode, "002");  // beyond the count: as made
}

TEST(PathRecord, EveryOlderFormIsRead) {
  for (int version : {1, 201, 202, 203, 204, 205, 206, 207, 208, 209, 210, 211, 212, 213})
    for (int flags : {1, 8, 16}) {
      SCOPED_TRACE(std::to_string(version) + " flags " + std::to_string(flags));
      CToolPath path;
      const std::string bytes = record({version, flags}).s;
      ASSERT_EQ(readInto(path, bytes), ErrorStatus::eOk);
      EXPECT_EQ(path.nPathNo(), 7);
      EXPECT_EQ(path.dTaper(), 1.5);
      EXPECT_EQ(path.polyline().vertices, kVertices);
      EXPECT_EQ(path.aSegTaper(), (std::vector<double>{0, 0.5, 1, 1.5, 2}));
      EXPECT_TRUE(path.bClosed());
      EXPECT_EQ(path.flags(), version <= 201 ? 1 : flags);
      EXPECT_EQ(path.dOffset(), version <= 201 ? 0 : 0.11);
      EXPECT_EQ(path.contour().aContour.size(), version <= 201 ? 5u : 2u);
      EXPECT_EQ(path.contour().aContour[version <= 201 ? 1 : 0], (AcGePoint3d{0, 5, 0.25}));
      EXPECT_EQ(path.nColor(), version <= 202 ? 256 : 5);
      EXPECT_EQ(path.getProcessStyle().sName, version < 204 ? "STYLE1" : "STYLE7");
      EXPECT_EQ(path.bHasStyle(), version >= 202);
      EXPECT_EQ(path.ptBreak(), version <= 201 ? kNoBreak : (AcGePoint2d{61, 62}));
      EXPECT_EQ(path.dHeight(), version < 206 ? 0 : 40);
      EXPECT_EQ(path.nBreakSeg(), version < 207 ? -1 : 3);
      if (version == 209) {
        EXPECT_EQ(path.aCodeVertex(), (std::vector<int>{1, -1}));
        EXPECT_EQ(path.aCodeText(), (std::vector<std::string>{"M00", "lost"}));
      } else {
        EXPECT_EQ(path.aCodeVertex().size(), version < 210 ? 0u : 2u);
      }
      // Nothing is left of the record, and the present form comes back the same.
      CToolPath again;
      ASSERT_EQ(readInto(again, written(path)), ErrorStatus::eOk);
      EXPECT_EQ(written(again), written(path));
      CToolPath beyond;
      EXPECT_NE(readInto(beyond, bytes.substr(0, bytes.size() - 1)), ErrorStatus::eOk);
    }
}

TEST(PathRecord, ANewerFormStaysAProxy) {
  for (int version : {214, 2000000000}) {
    CToolPath path;
    EXPECT_EQ(readInto(path, Bytes{}.i32(version).s), ErrorStatus::eMakeMeProxy);
    EXPECT_EQ(path.nPathNo(), 0);
  }
}

TEST(PathRecord, AsItIsMade) {
  Bytes b;
  b.i32(213).i32(0).i32(0).i32(0).real(0).flag(false).real(0).i32(0).i16(0).flag(false).flag(true);
  b.i32(1).real(0).real(0).i16(0).i16(256).text("STYLE1").real(0).real(0).real(0).real(0).i16(0).i16(700);
  b.real(0).real(0).real(0).text("000").text("00");
  b.flag(false).p2({-99999, 99999}).p2({0, 0}).real(0).real(0).real(0);
  b.i16(-1).real(0).real(0).real(0).real(0).p2({0, 0}).p2({0, 0}).i16(0);
  EXPECT_EQ(written(CToolPath()), b.s);
}

TEST(PathRecord, ACopyForAnotherDrawingCarriesItsOwner) {
  CToolPath path, copy;
  const std::string plain = written(path), cloned = written(path, FilerType::kWblockCloneFiler);
  EXPECT_EQ(cloned.size(), plain.size() + 8);
  AcDbDwgFiler in(cloned, FilerType::kWblockCloneFiler);
  EXPECT_EQ(copy.dwgInFields(in), ErrorStatus::eOk);
  EXPECT_EQ(in.remaining(), 0u);
}

TEST(PathRecord, ReadingOverAFilledPathLeavesNothingOfIt) {
  for (int version : {204, 209}) {
    CToolPath path;
    ASSERT_EQ(readInto(path, record({213, 8}).s), ErrorStatus::eOk);
    ASSERT_EQ(readInto(path, record({version, 8}).s), ErrorStatus::eOk);
    EXPECT_EQ(path.aSegTaper().size(), 5u);
    EXPECT_EQ(path.aCodeText().size(), 2u);
  }
}

TEST(PathRecord, ListsTooLongForTheirCountAreRefused) {
  CToolPath path;
  path.setGuide({std::vector<BulgeVertex>(32768, BulgeVertex{{1, 1}, 0}), false});
  AcDbDwgFiler out;
  EXPECT_NE(path.dwgOutFields(out), ErrorStatus::eOk);
  path.setGuide({std::vector<BulgeVertex>(32767, BulgeVertex{{1, 1}, 0}), false});
  AcDbDwgFiler fits;
  EXPECT_EQ(path.dwgOutFields(fits), ErrorStatus::eOk);
}

// Whatever was read, every operation can be asked of it.
void exercise(CToolPath& path) {
  const WireCutSettings settings("");
  (void)path.computeOffset(1, 0.1);
  (void)path.realContour();
  (void)path.prepareOutput(settings, {});
  (void)path.contourLength();
  (void)path.restoredContour();
  (void)path.getEndPoint(true);
  (void)path.setSegmentTaper({0, 2}, 1);
  (void)path.reverse();
  (void)path.flipSide();
  (void)path.transformBy(AcGeMatrix3d::mirroring({0, 0}, {0, 1}));
  path.addVertexAt(1, {3, 3}, 0);
  AcDbDwgFiler out;
  (void)path.dwgOutFields(out);
}

TEST(PathRecord, CutOffAnywhereItIsToldAndDoesNoHarm) {
  for (const Kind& k : {Kind{213, 8}, Kind{204, 8}, Kind{209, 16}, Kind{201}}) {
    const std::string bytes = record(k).s;
    for (std::size_t n = 0; n < bytes.size(); ++n) {
      CToolPath path;
      ASSERT_EQ(readInto(path, bytes.substr(0, n)), ErrorStatus::eEndOfFile) << k.version << " at " << n;
      if (n % 5 == 0) exercise(path);
    }
  }
}

// The fuzz driver of the record: changed bytes anywhere, in every form that is read.
TEST(PathRecord, ChangedBytesDoNoHarm) {
  std::mt19937 random(213);
  const int rounds = std::getenv("TARNEX_LONG") ? 200000 : 2000;
  constexpr int kVersions[] = {213, 212, 211, 210, 209, 207, 206, 205, 204, 203, 202, 201};
  for (int i = 0; i < rounds; ++i) {
    std::string bytes = record(Kind{kVersions[random() % std::size(kVersions)], random() % 2 ? 8 : 16}).s;
    for (int changes = static_cast<int>(random() % 6) + 1; changes > 0; --changes)
      bytes[4 + random() % (bytes.size() - 4)] = static_cast<char>(random() % 256);
    CToolPath path;
    if (readInto(path, bytes) == ErrorStatus::eOk) exercise(path);
  }
}

TEST(PathRecord, CountsThatLieDoNoHarm) {
  for (const Kind& k : {Kind{213, 8}, Kind{203, 16}}) {
    const std::string bytes = record(k).s;
    for (std::size_t at = 4; at + 4 <= bytes.size(); ++at)
      for (const char* lie : {"\xFF\x7F", "\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF\x7F"}) {
        std::string bad = bytes;
        bad.replace(at, std::strlen(lie), lie);
        CToolPath path;
        (void)readInto(path, bad);
        if (at % 7 == 0) exercise(path);
      }
  }
}

}  // namespace
}  // namespace tarnex
