// Templates: what each word prints and what it leaves behind for the next line break; hostile bytes.
#include "isotest.h"

namespace tarnex {
namespace {

ProcessStyle style() {
  ProcessStyle s;
  s.dValueA = 0.01;
  s.dValueC = 1.5;
  s.nPassLast = 3;
  s.passes[0] = {"001", 0.2, "005", "", 0};
  s.passes[1] = {"007", 0.15, "12", "", 2.5};
  s.passOffset[0] = 0.5;
  s.passOffset[1] = 0.25;
  return s;
}

// Figure 3 at (11,22), origin (1,2), a hole cut counter-clockwise, pass 1 forward.
IsoPost machine(const SlotTexts& params = {}, int family = 1) {
  SlotTexts all{{6, "1"}, {23, "G51"}, {24, "G52"}};
  all.insert(all.end(), params.begin(), params.end());
  IsoPost iso = isoWith(family, all,
                        {{2, "H"},
                         {3, "C"},
                         {6, "A%.2f"},
                         {7, "G50"},
                         {8, "M8"},
                         {9, "M9"},
                         {10, "T84"},
                         {17, "S%.1f"},
                         {40, "LAST"},
                         {22, "N%04d"},
                         {23, "P%d"}});
  iso.post.subFormat = "O%02d%02d";
  iso.ptOriginCopy = {1, 2};
  iso.setPath({3, 1, 1, 0, {11, 22}, style()});
  iso.setPass(1, 1);
  iso.dPathLength = 12.5;
  iso.dTaperNow = -0.75;
  iso.ptLast = {-2, 2};
  return iso;
}

struct Case {
  const char* text;
  const char* expected;
};

void expectAll(const IsoPost& iso, std::initializer_list<Case> cases) {
  for (const Case& c : cases) EXPECT_EQ(iso.expand(c.text, "\n"), c.expected) << c.text;
}

TEST(Expand, EachWord) {
  expectAll(machine(), {{"V0", "G90"},     {"V1", "G41"},       {"v2", "H007"},       {"V3", "C12"},
                        {"V5", "G51"},    // a hole: the pass's 0.25, above 0 along direction and side
                        {"V6", "A0.25"},  // direction words: no sign
                        {"V7", "G50"},     {"V8", ""},          {"V10", "T84"},       {"V14", "O0301"},
                        {"V15", "12.500"}, {"V16", "X10.Y20."}, {"V17", "S2.5"},      {"V20", "G40"},
                        {"V21", "G52"},  // -0.75 forward and counter-clockwise
                        {"V22", "N0003"},  {"V23", "P4"},       {"V30", ""},          {"V105", "G52"},
                        {"V106", "A0.75"}, {"V40", "LAST"},     {"V45", ""},           // above nWordCount
                        {"V", ""},         {"V00002", "H007"},  {"V000023", "H0073"},  // five digits at most
                        {"V99999", ""},    {"TVVV3", "TC12"}});
}

TEST(Expand, WordsThatDependOnPostStyleAndSide) {
  IsoPost iso = machine({{6, "0"}});
  EXPECT_EQ(iso.expand("V2", ""), "H0.14");  // 0.15 less the fit of a hole
  iso.figure.nSide = -1;
  EXPECT_EQ(iso.expand("V2V6", ""), "H0.16A1.50");  // an outer shape: larger, and its own taper
  iso.setPass(-1, 1);
  EXPECT_EQ(iso.expand("V2", ""), "H0.21");  // passes beside the table: its nearest
  iso.setPass(12, 1);
  EXPECT_EQ(iso.expand("V3", ""), "C09");

  EXPECT_EQ(machine({{37, "1"}}).expand("V6", ""), "A0.50");  // all passes take the first's taper
  iso = machine({}, 5);
  EXPECT_EQ(iso.expand("V3V6V16", ""), "C12T12P11X+010000Y+020000");
  iso.figure.styleNow.passOffset[1] = 0;
  EXPECT_EQ(iso.expand("V6$", "\n"), "P01");

  iso = machine({{23, ""}});  // no words for the directions: the angle has the sign, here that of -1
  EXPECT_EQ(iso.expand("V5V6V106", ""), "A-0.25A0.75");
  iso.setPass(1, -1);
  EXPECT_EQ(iso.expand("V6V106", ""), "A0.25A-0.75");

  iso = machine();
  iso.figure.styleNow.nCode = 1204;
  EXPECT_EQ(iso.expand("V8", ""), "M8");
  iso.post.word[8] = "v9";
  EXPECT_EQ(iso.expand("V8", ""), "");
  iso.figure.styleNow.nCode = 702;  // holes of this kind are cut from the other side: both words
  EXPECT_EQ(iso.expand("V21", ""), "G52G51");
}

TEST(Expand, FormatsThatDoNotFitStandAsTheyAre) {
  IsoPost iso = machine();
  for (std::size_t slot : {6u, 17u, 22u, 23u}) iso.post.word[slot] = "%s%n";
  iso.post.subFormat = "O%d";
  EXPECT_EQ(iso.expand("V6 V14 V17 V22 V23 V106", ""), "%s%n O%d %s%n %s%n %s%n %s%n");
  iso.post.subFormat = "";
  iso.post.word[22] = "%999d";
  EXPECT_EQ(iso.expand("V14V22", ""), "%999d");
}

TEST(Expand, ClockStandsOnTheLineWithoutCounting) {
  ::setenv("SOURCE_DATE_EPOCH", "86399", 1);  // 1970-01-01 23:59:59
  expectAll(machine(), {{"V18", "1970-01- 1"}, {"V19$X", "23:59:59X"}, {"NV19$X", "N23:59:59\nX"}});
  ::unsetenv("SOURCE_DATE_EPOCH");
}

// Whether a line break behind the word is written, with the word alone and with text ahead of it.
TEST(Expand, WhatAWordLeavesForTheLineBreak) {
  struct Left {
    int word;
    bool alone, behindText;
  };
  const auto check = [](const IsoPost& iso, std::initializer_list<Left> words) {
    for (const Left& w : words) {
      const std::string text = "V" + std::to_string(w.word) + "$X";
      EXPECT_EQ(iso.expand(text, "\n").find('\n') != std::string::npos, w.alone) << w.word;
      EXPECT_EQ(iso.expand("Z" + text, "\n").find('\n') != std::string::npos, w.behindText) << w.word;
    }
  };
  IsoPost iso = machine();
  check(iso, {{0, true, true},   {1, true, true},   {2, true, true},   {3, true, true},   {5, true, true},
              {6, true, true},   {7, true, true},   {8, false, true},  {14, true, true},  {15, true, true},
              {16, true, true},  {17, true, true},  {18, false, true}, {19, false, true}, {21, true, true},
              {22, true, true},  {23, true, true},  {30, true, true},  {45, false, true}, {105, true, true},
              {106, true, true}, {104, false, true}});
  iso.figure.styleNow.passOffset[1] = 0;
  iso.figure.styleNow.nCode = 704;
  iso.post.word[8] = "V9";
  iso.post.subFormat = "";
  check(iso, {{5, false, false}, {6, false, false}, {7, false, true}, {8, true, true}, {14, false, true}});
  iso.post.nFamily = 5;
  check(iso, {{6, false, false}});
}

TEST(Expand, BreaksAxesAndOffsets) {
  IsoPost iso = machine();
  iso.setPass(0, 1);
  expectAll(iso, {{"V3V2", "C005H001"},
                  {"$V3$G01", "\nC005\nG01"},
                  {"$$$", "\n"},
                  {"A$$$B", "A\nB"},
                  {"A\b$\bB", "A\nB"},
                  {"\b$B", "B"},
                  {"U1.5V2.5", "U1.5V2.5"},
                  {"V2U1.V3", "H001U1.V3"},
                  {"UXV2", "UXV2"},
                  {"UV2V2", "UV2H001"},
                  {"u1.V3", "u1.C005"},
                  {"A\n\n\nB", "A\n\nB"},
                  {"A\n\n\n\nB\n\n", "A\n\nB\n"},
                  {"G92#X1.5", "G92-3.5"},
                  {"G92X#x+1.Y#y-.5", "G92X-3.Y1.5"},
                  {"#X12345678", "-1234569.8"},  // seven characters at most
                  {"#Y1.2.3,", "3.2,"},
                  {"#Y+-1", "2."},
                  {"#X", ""},
                  {"#", ""},
                  {"A#V2B#$C", "A2BC"},
                  {"#Y1$X", "3.X"}});  // an offset isn't text of the line
  iso.figure.styleNow.passOffset[0] = 0;
  expectAll(iso, {{"V5$V2", "H001"}, {"V3V5$V2", "C005H001"}});
  EXPECT_EQ(iso.expand("A$B", ""), "AB");
}

TEST(Expand, TextsOfHeadAndEnd) {
  IsoPost iso = machine();
  iso.post.headerText = "%\r\n$V3\r\n$\r\n$M30";
  iso.post.footerText = "\r\n";
  EXPECT_EQ(iso.textBlock(0, "\n"), "");  // switched off
  iso.post.paramOn[0] = iso.post.paramOn[1] = 1;
  EXPECT_EQ(iso.textBlock(0, "\n"), "%\nC12\nM30");
  EXPECT_EQ(iso.textBlock(1, "\n"), "");
}

TEST(Expand, EndsOnAnyBytesAndStaysInSize) {
  constexpr std::string_view kLikely = "VvU#$XYxy0123456789.-+\b";
  std::mt19937_64 random(45);
  IsoPost iso = machine();
  iso.post.nWordCount = 32767;  // more than there are
  for (int i = 0; i < rounds(20000, 3000000); ++i) {
    // A buffer of just its size, without an end mark, so that a read past it shows.
    std::vector<char> bytes(random() % 48);
    for (char& c : bytes)
      c = random() % 4 != 0 ? kLikely[random() % kLikely.size()] : static_cast<char>(random() % 256);
    const std::string_view text(bytes.data(), bytes.size());
    const std::string lines = iso.expand(text, "\n");
    ASSERT_LE(lines.size(), 4 * text.size());  // a date takes ten bytes for three
    // Line breaks decide nothing else.
    auto bare = lines, joined = iso.expand(text, "");
    std::erase(bare, '\n');
    std::erase(joined, '\n');
    ASSERT_EQ(joined, bare);
  }
}

}  // namespace
}  // namespace tarnex
