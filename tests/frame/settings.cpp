// The settings record against its layout, byte for byte, and its file under all that happens to files.
// Knows the layout from a list of its own.
#include "frame/settings.h"

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

#include "frame/environment.h"
#include "host/platform/format.h"

namespace tarnex {
namespace {

// Offset, kind (i 4 bytes, d 8 bytes, s a text field of so many bytes), name, what stands without a file;
// then the version below which a file gets another value, and that value. "-" is an empty text, NC the
// program's file.
constexpr const char* kLayout = R"(
0 i nVersion 305; 8 d dLeadLen 3; 16 i nSnapMode 1; 20 i nReserved20 1; 24 i nDirection 1;
28 i nSide 1; 32 i nColorNumber 1 330 1; 36 i bSmallHole 0; 40 d dSmallHoleRadius 2;
48 i bFixedLeadAngle 1; 56 d dLeadAngle 45; 64 i bThreadAtCentre 0; 68 i nCircleArcs 2;
72 i bShowNumber 1; 76 i nCoordDecimals -1; 80 d dLastTaper 1; 88 d dReserved88 1; 96 d dTextHeight 3;
104 i bShowArrow 1; 112 d dArrowLen 3; 120 i bShowTool 0; 124 i nColorTool 3; 128 i bShowReal 0;
132 i nColorReal 0; 136 i bShowNull 0; 140 i nColorNull 6; 144 d dLayerHeight 30 327 40;
152 s128 sAutopOut C:\AutoP1.DAT; 280 s128 sAutopIn C:\AutoP1.DAT; 408 d dOffset 0.08;
416 d dClearance 0; 424 d dLeadStep 0.1; 432 d dIsoSlotWidth 0 327 0.2; 440 i bDupPoint 1;
444 i bDupCurve 1; 448 d dDupTol 0.001; 456 d dThickProg 0 327 0; 464 d dThickAux 0 327 40;
472 d dIsoSlotTol 0 327 0.02; 480 d dIsoOvercut 0 304 0.5; 488 d dOvercutLen 0 304 0.2;
496 d dCutoffLen 0 304 0.2; 504 d dOvercutExit 0 304 0.5; 512 i nPageIndex 0 304 0;
516 s20 sMachineKZS - 304 Vorn; 536 i bCutoffPause 0 304 0; 540 i bOvercut 0 304 0;
544 i nReserved544 0 305 0; 552 d dReserved552 0 305 1; 560 i nReserved560 0 305 0;
568 i nReserved568 0 305 0; 572 i nReserved572 0 305 0; 576 s16 sReserved576 - 307 0;
592 d dReserved592 0 309 270; 600 d dReserved600 0 309 93; 608 i bAutoFix 0; 616 d dAutoFixLen 0.18;
624 d dOpenTol 0.2; 632 s128 sLastNcFile - 323 NC; 760 i nReserved760 0 324 1;
768 d dIsoFixA 0 324 0.2; 776 d dIsoFixB 0 324 0.2; 784 d dGapValue 0 324 5;
792 i nIsoOption792 0 325 0; 796 i nIsoOption796 0 325 0; 800 d dIsoAngle 0 325 30; 808 i nRoughA 0;
816 d dRoughB 0; 824 d dRoughC 0; 832 d dRoughD 0 325 0.2; 840 i bSameHoles 0 326 0;
844 i nPathOrder 1; 848 i bAskFileName 0; 852 i bPrintCoords 0; 860 i bFoldCurves 0 334 1;
864 d dTangentRadius 0 334 2; 872 d dCircleRadius 0 334 1; 880 s128 sLastCode - 335 B0B0B1GXL1;
1008 i nScaleKind 0; 1016 d dScaleX 1.5; 1024 d dScaleY 2; 1032 d dIncrX 0.2; 1040 d dIncrY 0.3;
1048 i nOvercutMode 0; 1052 i bOvercutTangent 0; 1056 d dMinStep 0.006; 1064 i nReserved1064 0;
1068 i nReserved1068 100; 1088 d dReserved1088 0.01; 1096 d dReserved1096 0.5; 1104 d dBridgeLen 5;
1112 i bOfferFileText 0;
)";

struct LaidOut {
  std::size_t offset = 0;
  std::string kind, name, initial;
  int since = 0;
  std::string migrated;
};

std::vector<LaidOut> layout() {
  std::vector<LaidOut> rows;
  std::istringstream all(kLayout);
  for (std::string item; std::getline(all, item, ';');) {
    std::istringstream words(item);
    LaidOut row;
    if (words >> row.offset >> row.kind >> row.name >> row.initial) {
      words >> row.since >> row.migrated;
      rows.push_back(row);
    }
  }
  return rows;
}

void putInt(std::string& file, std::size_t at, std::int32_t v) {
  for (int i = 0; i < 4; ++i) file[at + i] = static_cast<char>(static_cast<std::uint32_t>(v) >> 8 * i);
}

// A double's bytes, lowest first, worked out from its value: sign, exponent and fraction of binary64.
void putDouble(std::string& file, std::size_t at, double v) {
  int exponent = 0;
  const double half = std::frexp(std::abs(v), &exponent);  // 0.5 <= half < 1
  std::uint64_t bits = 0;
  if (v != 0)
    bits = static_cast<std::uint64_t>(std::ldexp(half, 53)) - (1ULL << 52) +
           (static_cast<std::uint64_t>(exponent + 1022) << 52);
  if (v < 0) bits |= 1ULL << 63;
  for (int i = 0; i < 8; ++i) file[at + i] = static_cast<char>(bits >> 8 * i);
}

std::string valueFor(const LaidOut& row) {
  if (row.kind == "i") return std::to_string(1000000 + row.offset);
  if (row.kind == "d") return "-" + std::to_string(row.offset) + ".3";
  return "text at " + std::to_string(row.offset);
}

void put(std::string& file, const LaidOut& row, const std::string& value) {
  if (row.kind == "i")
    putInt(file, row.offset, std::stoi(value));
  else if (row.kind == "d")
    putDouble(file, row.offset, std::stod(value));
  else
    file.replace(row.offset, value.size(), value);
}

// A file with a value of its own in every field and FF in every byte between them.
std::string fullFile(int version) {
  std::string file(1120, '\xFF');
  for (const auto& row : layout()) {
    if (row.kind[0] == 's')
      file.replace(row.offset, std::stoul(row.kind.substr(1)), std::stoul(row.kind.substr(1)), '\0');
    put(file, row, valueFor(row));
  }
  putInt(file, 0, version);
  return file;
}

class SettingsFile : public InFolder {
 protected:
  [[nodiscard]] std::string expected(const std::string& text) const {
    return text == "-" ? "" : text == "NC" ? folder + "\\Vorn.nc" : text;
  }
  void expectField(const WireCutSettings& s, const std::string& name, const std::string& value) {
    EXPECT_EQ(s.textOf(name).value_or("(no such field)"), value) << name;
  }
};

TEST_F(SettingsFile, EveryFieldHasItsPlaceAndTheBytesBetweenAreCarried) {
  ASSERT_EQ(layout().size(), settingsRows().size());
  write("WireCut.set", fullFile(335));
  WireCutSettings s(folder);
  EXPECT_TRUE(s.load());
  for (const auto& row : layout()) {
    const bool reset = row.name == "dClearance" || row.name == "bShowTool" || row.name == "nVersion";
    if (!reset) expectField(s, row.name, valueFor(row));
  }
  expectField(s, "dClearance", "0");
  expectField(s, "bShowTool", "1");
  std::string after = fullFile(335);
  putDouble(after, 416, 0.0);
  putInt(after, 120, 1);
  EXPECT_TRUE(s.save());
  EXPECT_EQ(read("WireCut.set"), after);
}

TEST_F(SettingsFile, WithoutAFileTheNewerStepsAloneRun) {
  WireCutSettings s(folder);
  for (const auto& row : layout()) expectField(s, row.name, expected(row.initial));
  EXPECT_TRUE(s.load());
  for (const auto& row : layout()) {
    if (row.name == "nVersion" || row.name == "bShowTool") continue;
    expectField(s, row.name, expected(row.since > 305 ? row.migrated : row.initial));
  }
  EXPECT_EQ(s.nVersion, 335);
  EXPECT_TRUE(s.save());
  EXPECT_EQ(read("WireCut.set").size(), 1120u);
  EXPECT_EQ(read("WireCut.set").substr(0, 4), std::string("\x4F\x01\0\0", 4));  // 335 is 0x14F
}

TEST_F(SettingsFile, OlderVersionsGainTheFieldsTheyLack) {
  for (const int version : {-7, 0, 300, 304, 308, 326, 334, 335, 400}) {
    write("WireCut.set", fullFile(version));
    WireCutSettings s(folder);
    EXPECT_TRUE(s.load());
    for (const auto& row : layout()) {
      if (row.name == "nVersion" || row.name == "bShowTool" || row.name == "dClearance") continue;
      expectField(s, row.name, row.since && version < row.since ? expected(row.migrated) : valueFor(row));
    }
    EXPECT_EQ(s.nVersion, 335) << version;
    EXPECT_TRUE(s.save());
    EXPECT_EQ(read("WireCut.set").substr(0, 4), std::string("\x4F\x01\0\0", 4)) << version;
  }
}

TEST_F(SettingsFile, AShortFileGivesWhatItHolds) {
  write("WireCut.set", fullFile(335).substr(0, 412));  // half of dOffset
  WireCutSettings s(folder);
  std::string cause;
  EXPECT_FALSE(s.load(&cause));
  EXPECT_THAT(cause, ::testing::HasSubstr("412 of 1120"));
  expectField(s, "sAutopIn", "text at 280");
  expectField(s, "dOffset", "0.08");
  EXPECT_TRUE(s.save());
  EXPECT_EQ(read("WireCut.set").size(), 1120u);
  EXPECT_TRUE(s.load(&cause));
}

TEST_F(SettingsFile, TextsThatFillTheirFieldEndWithIt) {
  std::string file = fullFile(335);
  file.replace(152, 128, 128, 'x');  // no zero at its end
  write("WireCut.set", file);
  WireCutSettings s(folder);
  EXPECT_TRUE(s.load());
  expectField(s, "sAutopOut", std::string(128, 'x'));
  expectField(s, "sAutopIn", "text at 280");
  s.sAutopOut = std::string(126, 'y') + "轨";  // its three bytes don't fit
  EXPECT_TRUE(s.save());
  EXPECT_EQ(read("WireCut.set").substr(152, 128), std::string(126, 'y') + std::string(2, '\0'));
}

TEST_F(SettingsFile, AFileThatCantBeWrittenIsSaid) {
  write("taken", "a file in the folder's place");
  WireCutSettings s(folder + "/taken");
  s.dOffset = 0.11;
  std::string cause;
  EXPECT_FALSE(s.save(&cause));
  EXPECT_THAT(cause, ::testing::HasSubstr("WireCut.set"));
  EXPECT_EQ(s.dOffset, 0.11);
}

// A file that hasn't changed isn't read or written again; that must never hide another program's change.
TEST_F(SettingsFile, SeesWhatAnotherProgramWrote) {
  WireCutSettings mine(folder), other(folder);
  mine.dOffset = 0.11;
  ASSERT_TRUE(mine.save());
  ASSERT_TRUE(other.load());
  other.dOffset = 0.12;
  ASSERT_TRUE(other.save());
  ASSERT_TRUE(mine.load());
  EXPECT_EQ(mine.dOffset, 0.12);
  other.dOffset = 0.13;
  ASSERT_TRUE(other.save());
  ASSERT_TRUE(mine.save());  // what it last read, over the other's value
  ASSERT_TRUE(other.load());
  EXPECT_EQ(other.dOffset, 0.12);
  ASSERT_FALSE(removeFile(folder + "/WireCut.set"));
  ASSERT_TRUE(mine.save());
  EXPECT_EQ(read("WireCut.set").size(), 1120u);
}

TEST_F(SettingsFile, FieldsAreSetByText) {
  WireCutSettings s(folder);
  std::string error;
  EXPECT_TRUE(s.setFromText("dOffset", " 0.11 ", error));
  EXPECT_TRUE(s.setFromText("nSide", "-1", error));
  EXPECT_TRUE(s.setFromText("sMachineKZS", "nineteen bytes long", error));
  EXPECT_EQ(error, "");
  EXPECT_EQ(s.dOffset, 0.11);
  EXPECT_EQ(s.nSide, -1);
  EXPECT_EQ(s.sMachineKZS, "nineteen bytes long");
  const struct {
    const char *field, *text;
  } refused[] = {{"doffset", "1"},   {"nVersion", "1"},
                 {"dOffset", ""},    {"dOffset", "0,11"},
                 {"dOffset", "nan"}, {"dOffset", "1e999"},
                 {"nSide", "1.5"},   {"nSide", "2147483648"},
                 {"nSide", "one"},   {"sMachineKZS", "a name of twenty byt"}};
  for (const auto& [field, text] : refused) {
    error.clear();
    EXPECT_FALSE(s.setFromText(field, text, error)) << field << " " << text;
    EXPECT_THAT(error, ::testing::StartsWith(field));
  }
  EXPECT_EQ(s.dOffset, 0.11);
  EXPECT_EQ(s.nSide, -1);
}

TEST_F(SettingsFile, AnyBytesLoadAndSaveAgain) {
  std::mt19937 random(20031);
  const int rounds = environment("TARNEX_LONG") ? 20000 : 20;
  for (int i = 0; i < rounds; ++i) {
    std::string file =
        random() % 2 ? fullFile(300 + static_cast<int>(random() % 40)) : std::string(1120, '\0');
    file.resize(random() % 4 ? 1120 : random() % 1300, '\x7F');
    for (int k = 0; k < 30 && !file.empty(); ++k) file[random() % file.size()] = static_cast<char>(random());
    write("WireCut.set", file);
    WireCutSettings s(folder), again(folder);
    EXPECT_EQ(s.load(), file.size() >= 1120);
    ASSERT_TRUE(s.save());
    ASSERT_TRUE(again.load());
    const std::string first = read("WireCut.set");
    ASSERT_EQ(first.size(), 1120u);
    for (const auto& row : settingsRows()) {
      // A text that filled its whole field was cut when it was written.
      const auto was = s.textOf(row.name).value_or(""), is = again.textOf(row.name).value_or("?");
      EXPECT_TRUE(was == is || (was.size() >= row.size && was.starts_with(is)))
          << row.name << " in round " << i;
    }
    ASSERT_TRUE(again.save());
    EXPECT_EQ(read("WireCut.set"), first) << "round " << i;
  }
}

}  // namespace
}  // namespace tarnex
