// The post's file in both layouts, its migrations and its source, against offsets put down by hand.
// Knows the layouts from here, not from the tables of the code.
#include "machining/machinepost.h"

#include <gmock/gmock.h>

#include "bytes.h"
#include "machining/postnames.h"
#include "machining/postsource.h"

namespace tarnex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// One value in every kind of field, at the offsets of the format.
std::string presentFile(int version) {
  std::string f(35480, '\0');
  putInt(f, 0, version);
  putInt(f, 4, 11);
  putInt(f, 8, -12);
  putText(f, 12, "head a");
  putText(f, 42, "head b");
  putText(f, 72, "reserved");
  putInt(f, 112, 48);
  for (int i = 0; i < 48; ++i) putInt(f, 116 + 4 * i, 100 + i);
  for (int i = 0; i < 48; ++i) putText(f, 308 + 10 * i, "p" + std::to_string(i));
  putInt(f, 788, 79);
  for (int i = 0; i < 80; ++i) putText(f, 792 + 10 * i, "w" + std::to_string(i));
  putText(f, 1592, "HEAD$SPRK$");
  putText(f, 2192, "M02$");
  for (int i = 0; i < 800; ++i) putText(f, 2392 + 41 * i, "row" + std::to_string(i));
  putText(f, 35192, "N%04d");
  putText(f, 35233, "N%02d%02d");
  putText(f, 35274, "extra a");
  putText(f, 35294, "extra b");
  putText(f, 35314, "steel");
  putText(f, 35334, "copper");
  putText(f, 35354, "!?");
  putText(f, 35356, "owner");
  for (int i = 0; i < 6; ++i) putInt(f, 35376 + 4 * i, 2020 + i);
  for (int i = 0; i < 6; ++i) putInt(f, 35400 + 4 * i, 2030 + i);
  putInt(f, 35424, 5);
  putText(f, 35428, "tail a");
  putText(f, 35448, "tail b");
  return f;
}

MachinePost decoded(const std::string& bytes, std::string* problem = nullptr) {
  MachinePost post;
  const auto reading = decodePost(bytes, "x.pc", post);
  EXPECT_TRUE(reading.read);
  if (problem) *problem = reading.problem;
  return post;
}

TEST(MachinePostFile, EveryFieldLiesWhereTheFormatSays) {
  std::string problem;
  const MachinePost p = decoded(presentFile(117), &problem);
  EXPECT_EQ(problem, "");
  EXPECT_EQ(p.nHeadA, 11);
  EXPECT_EQ(p.nHeadB, -12);
  EXPECT_EQ(p.sHeadA + p.sHeadB, "head ahead b");
  EXPECT_EQ(p.paramOn[47], 147);
  EXPECT_EQ(p.param[0] + p.param[23] + p.param[24] + p.param[47], "p0p23p24p47");
  EXPECT_EQ(p.word[0] + p.word[26] + p.word[79], "w0w26w79");
  EXPECT_EQ(p.word[1] + p.word[5] + p.word[18] + p.word[19], "G4xGx");  // whatever the file holds there
  EXPECT_EQ(p.headerText + p.footerText, "HEAD$SPRK$M02$");
  EXPECT_EQ(p.rowText(0, 0), "row0");
  EXPECT_EQ(p.rowText(150, 1), "row451");
  EXPECT_EQ(p.rowText(266, 1), "row799");
  EXPECT_EQ(p.rowText(266, 2), "");
  EXPECT_EQ(p.rowText(-1, 0), "");
  EXPECT_EQ(p.rowText(INT32_MAX, 2), "");
  EXPECT_EQ(p.lineFormat + p.subFormat, "N%04dN%02d%02d");
  EXPECT_EQ(p.sExtraA + p.sExtraB, "extra aextra b");
  EXPECT_THAT(p.conditionFile, ElementsAre("steel", "copper"));
  EXPECT_EQ(p.sOwner + p.sTailA + p.sTailB, "ownertail atail b");
  EXPECT_THAT(p.dateCreated, ElementsAre(2020, 2021, 2022, 2023, 2024, 2025));
  EXPECT_EQ(p.dateChanged[5], 2035);
  EXPECT_EQ(p.nFamily, 5);
  // Written again, the placeholders alone differ.
  std::string expected = presentFile(117);
  putText(expected, 792 + 10, std::string("G4x\0", 4));
  putText(expected, 792 + 50, std::string("Gx", 2));
  putText(expected, 792 + 180, std::string(20, '\0'));
  EXPECT_TRUE(encodePost(p) == expected);
}

// What a file of each version gets, by the step that is the first not to run any more.
TEST(MachinePostFile, StepsOfOldVersions) {
  for (int version = 100; version <= 117; ++version) {
    if (version == 104) continue;  // another layout
    SCOPED_TRACE(version);
    const MachinePost p = decoded(presentFile(version));
    EXPECT_EQ(p.nVersion, 117);
    EXPECT_EQ(p.sExtraA, version < 106 ? "" : "extra a");
    EXPECT_EQ(p.param[23], version < 107 ? "G51" : "p23");
    EXPECT_EQ(p.param[24], version < 107 ? "G52" : "p24");
    EXPECT_EQ(p.word[26], version < 108 ? "" : "w26");
    EXPECT_EQ(p.sOwner, version < 111 ? "科星技术" : "owner");
    EXPECT_EQ(p.dateCreated[0], version < 111 ? 2002 : 2020);
    EXPECT_EQ(p.dateChanged[3], version < 111 ? 12 : 2033);
    EXPECT_EQ(p.conditionFile[0], version < 113 ? "p26" : "steel");
    EXPECT_EQ(p.param[26], version < 113 ? "More" : "p26");
    EXPECT_EQ(p.nFamily, version < 114 ? -1 : 5);
    EXPECT_EQ(p.sTailB, version < 114 ? "" : "tail b");
    EXPECT_EQ(p.paramOn[8], version < 116 ? 107 : 108);
    EXPECT_EQ(p.param[8], version < 116 ? "p7" : "p8");
    EXPECT_EQ(p.param[7], version < 116 ? "p27" : "p7");
    EXPECT_EQ(p.conditionFile[1], version < 113 ? "p26" : version < 117 ? "steel" : "copper");
    const MachinePost again = decoded(encodePost(p));
    EXPECT_TRUE(again == p);  // a second reading changes nothing
  }
}

std::string oldFile() {
  std::string f(18651, '\0');
  putInt(f, 0, 104);
  putInt(f, 4, 7);
  for (int i = 0; i < 48; ++i) putInt(f, 16 + 4 * i, 200 + i);
  putInt(f, 520, 30);
  putInt(f, 524, 40);
  for (int i = 0; i < 80; ++i) putText(f, 528 + 5 * i, "w" + std::to_string(i));
  for (int i = 0; i < 48; ++i) putText(f, 928 + 5 * i, "p" + std::to_string(i));
  putText(f, 1176, "OLD$");
  putText(f, 1776, "END$");
  putInt(f, 1984, 8);
  putText(f, 1988, "title a");
  putText(f, 2018, "title b");
  for (int i = 0; i < 400; ++i) putText(f, 2128 + 41 * i, "row" + std::to_string(i));
  putText(f, 18528, "N%d");
  putText(f, 18569, "O%d%d");
  return f;
}

TEST(MachinePostFile, OldLayout) {
  MachinePost p;
  p.word[48] = "kept";
  p.word[79] = "kept too";
  const auto reading = decodePost(oldFile(), "old.pc", p);
  EXPECT_EQ(reading.problem, "");
  EXPECT_EQ(p.nHeadA * 100 + p.nHeadB, 708);
  EXPECT_EQ(p.paramOn[47], 247);
  EXPECT_EQ(p.nParamCount * 100 + p.nWordCount, 3040);
  EXPECT_EQ(p.word[2] + p.word[47] + p.word[48] + p.word[79], "w2w47keptkept too");
  EXPECT_EQ(p.param[0] + p.param[47], "p0p47");
  EXPECT_EQ(p.param[23] + p.param[24] + p.param[26], "G51G52More");
  EXPECT_THAT(p.conditionFile, ElementsAre("p26", "p26"));
  EXPECT_EQ(p.headerText + p.footerText + p.sHeadA + p.sHeadB, "OLD$END$title atitle b");
  EXPECT_EQ(p.blockRow[399], "row399");
  EXPECT_EQ(p.blockRow[400], "");
  EXPECT_EQ(p.lineFormat + p.subFormat, "N%dO%d%d");
  EXPECT_EQ(p.nFamily, -1);
  EXPECT_EQ(p.nVersion, 117);
}

TEST(MachinePostFile, AMissingFileLeavesABlankPost) {
  MachinePost p = decoded(presentFile(117));
  const auto reading = readPost(std::string(TARNEX_BINARY_DIR) + "/no such post.pc", p);
  EXPECT_FALSE(reading.read);
  EXPECT_THAT(reading.problem, HasSubstr("no such post.pc"));
  EXPECT_EQ(p.sHeadA + p.sHeadB, "DDD");
  EXPECT_EQ(p.headerText + p.blockRow[3] + p.word[2] + p.param[9], "");
  EXPECT_EQ(p.param[23] + p.word[1] + p.sOwner, "G51G4x科星技术");
  EXPECT_EQ(p.nWordCount + p.nParamCount, 0);
}

TEST(MachinePostFile, DamageIsToldInOneSentence) {
  std::string problem;
  // 20000 bytes end within the rows: (20000 - 2392) / 41 = 429.46, so 429 whole texts.
  const MachinePost cut = decoded(presentFile(117).substr(0, 20000), &problem);
  EXPECT_EQ(cut.blockRow[428] + cut.blockRow[429], "row428");
  EXPECT_THAT(problem, HasSubstr("x.pc: 20000 of 35480 bytes, missing is part of the block rows, all of: "
                                 "line number format, sub-program format"));
  // Ten bytes in a field of ten: nine are text.
  std::string endless = presentFile(117);
  putText(endless, 308 + 90, "0123456789");
  EXPECT_EQ(decoded(endless, &problem).param[9], "012345678");
  EXPECT_EQ(problem, "x.pc: 1 text without an end in the field");
  EXPECT_EQ(decoded(presentFile(130), &problem).conditionFile[1], "copper");
  EXPECT_EQ(problem, "x.pc: version 130, known are 100 to 117");
  for (const std::size_t size : {0, 1, 3, 4, 2127}) {
    decoded(presentFile(117).substr(0, size), &problem);
    EXPECT_THAT(problem, HasSubstr("missing is"));
    decoded(oldFile().substr(0, size), &problem);
    EXPECT_THAT(problem, HasSubstr("missing is"));
  }
}

TEST(MachinePostFile, TextsInAnyCodePageComeBack) {
  std::string chinese = presentFile(117);
  putText(chinese, 1592, "\xbf\xc6\xd0\xc7$");  // GB: 科星
  MachinePost p = decoded(chinese);
  EXPECT_EQ(p.headerText.substr(0, 7), "科星$");
  EXPECT_EQ(p.sTextCode, "GB18030");
  EXPECT_EQ(encodePost(p).substr(1592, 5), "\xbf\xc6\xd0\xc7$");
  std::string odd = chinese;
  putText(odd, 2192, "\xff\x81\x20");  // no page of the east
  p = decoded(odd);
  EXPECT_EQ(p.sTextCode, "ISO-8859-1");
  EXPECT_EQ(encodePost(p).substr(2192, 3), "\xff\x81\x20");
}

TEST(MachinePostFile, ParametersAsNumbers) {
  MachinePost p;
  const std::pair<const char*, int> cases[] = {{"", 0},   {"3", 3},  {" 3 ", 3}, {"-1x", -1},
                                               {"+2", 2}, {"x3", 0}, {"- 3", 0}, {"999999999", 999999999}};
  for (const auto& [text, value] : cases) {
    p.param[4] = text;
    EXPECT_EQ(p.paramInt(4), value) << text;
  }
}

// Source and record.

TEST(PostSource, RecordsSurviveAsSource) {
  std::string odd = presentFile(110);
  putText(odd, 2392, "quote \" back\\slash\ttab\x01");
  putText(odd, 1592, "a\r\n$$b$c");
  for (const std::string& bytes : {presentFile(117), presentFile(100), presentFile(115), oldFile(), odd,
                                   std::string(), presentFile(117).substr(0, 9000)}) {
    const MachinePost post = decoded(bytes);
    const auto back = compilePost(decompilePost(post), "post.toml");
    EXPECT_THAT(back.faults, IsEmpty());
    EXPECT_TRUE(encodePost(back.post) == encodePost(post));
    const auto once = decoded(encodePost(back.post));
    EXPECT_EQ(decompilePost(once), decompilePost(post));
  }
}

TEST(PostSource, NamesStandForSlots) {
  const auto made = compilePost(R"(
family = 1
conditions = ["steel"]
header = ["%$", "SPRK$"]
[switches]
header = true
slot_40 = 7
[parameters]
rapid = "G00"
decimals = 3
slot_25 = "x"
[words]
coordinates = "G90"
V30 = "M50"
[rows.hole_by_figure]
lead_compensated = { before = "V2$", after = "$M00" }
[rows.outer_by_pass]
tab_end = { inside = "T" }
row_31 = { before = "x" }
[rows.more]
row_266 = { inside = "last" }
)",
                                "p.toml");
  EXPECT_THAT(made.faults, IsEmpty());
  const auto& p = made.post;
  EXPECT_EQ(p.nFamily, 1);
  EXPECT_EQ(p.headerText, "%$SPRK$");
  EXPECT_EQ(p.paramOn[0] * 10 + p.paramOn[40], 17);
  EXPECT_EQ(p.param[9] + p.param[10] + p.param[25], "G003x");
  EXPECT_EQ(p.word[0] + p.word[30], "G90M50");
  EXPECT_EQ(p.blockRow[9] + p.blockRow[11], "V2$$M00");  // row 3: texts 9, 10, 11
  EXPECT_EQ(p.blockRow[3 * (120 + 24) + 1], "T");
  EXPECT_EQ(p.blockRow[3 * (120 + 31)], "x");
  EXPECT_EQ(p.blockRow[799], "last");
}

TEST(PostSource, FaultsNamePlaceValueAndLimit) {
  const std::pair<const char*, const char*> cases[] = {
      {"[parameters]\nrapid = \"G000000000\"",
       R"(p.toml:2: parameters.rapid: "G000000000" has 10 bytes, at most 9)"},
      {"\n\n[rows.hole_by_figure]\nlead = { before = \"12345678901234567890123456789012345678901234\" }",
       "p.toml:4: rows.hole_by_figure.lead.before: \"12345678901234567890123456789012345678901234\" has 44 "
       "bytes, at "
       "most 40"},
      {"[parameters]\nslot_9 = 1\nrapid = 2", "p.toml:3: parameters.rapid: number 9 is given twice"},
      {"[parameters]\nslot_48 = 1", "p.toml:2: parameters.slot_48: there is no such parameter"},
      {"[words]\nV1 = \"G41\"", "p.toml:2: words.V1: this word is filled while a program is written"},
      {"[rows.hole]\n", "p.toml:1: rows.hole: rows are in hole_by_figure"},
      {"[rows.more]\nrow_266 = { after = \"x\" }", "row_266 has no after"},
      {"family = 3000000000", "p.toml:1: family: 3000000000 is beyond what the file holds"},
      {"family = \"five\"", "p.toml:1: family: a whole number is meant"},
      {"colour = 1", "p.toml:1: colour: there is no such key"},
      {"conditions = []", "p.toml:1: conditions: a list of one or two"},
      {"text_code = \"martian\"", "p.toml:1: text_code: no code page of that name"},
      {"text_code = \"GB18030\"\nheader = \"a\\u0000b\"",
       "p.toml:2: header: \"a\\u0000b\" has a zero byte in it"},
      {"text_code = \"ISO-8859-1\"\nfooter = \"科\"",
       "p.toml:2: footer: \"科\" has a character that ISO-8859-1 lacks"},
      {"[editor]\ncreated = [1, 2]", "p.toml:2: editor.created: six whole numbers are meant"},
      {"family = ", "p.toml:1: "},
      {"format = 118", "p.toml:1: format: 117 is the one that is known"},
  };
  for (const auto& [source, fault] : cases) {
    const auto made = compilePost(source, "p.toml");
    ASSERT_EQ(made.faults.size(), 1u) << source;
    EXPECT_THAT(made.faults[0], HasSubstr(fault));
  }
}

TEST(PostSource, NoNameStandsTwiceAndNoNumberEither) {
  const auto distinct = [](std::span<const SlotName> names, int end) {
    std::set<std::string> seen;
    std::set<int> slots;
    for (const auto& n : names)
      EXPECT_TRUE(n.slot >= 0 && n.slot < end && seen.insert(n.name).second && slots.insert(n.slot).second)
          << n.name;
  };
  distinct(parameterNames(), 48);
  distinct(switchNames(), 48);
  distinct(wordNames(), 80);
  for (const auto& set : rowSets()) distinct(set.rows, kRowsOfASet);
}

TEST(PostSource, Advice) {
  const auto advice = postAdvice(
      compilePost(
          "line_format = \"N%s\"\nword_count = 40\nfooter = \"V45V106\"\n[parameters]\ntaper_left = \"G51\"",
          "p")
          .post);
  EXPECT_THAT(advice, testing::Contains(HasSubstr("line_format: \"N%s\" doesn't fit one number")));
  EXPECT_THAT(advice, testing::Contains(HasSubstr("V45 is used, but the last known word is V40")));
  EXPECT_THAT(advice, testing::Contains(HasSubstr("taper_left and taper_right one is empty")));
}

// Hostile input.

TEST(PostFuzz, DamagedFilesAreReadAndWrittenAgain) {
  std::mt19937 random(117);
  const std::string seeds[] = {presentFile(117), presentFile(103), oldFile()};
  for (int i = 0; i < rounds(150); ++i) {
    const std::string bytes = damaged(seeds[i % 3], random);
    MachinePost post;
    (void)decodePost(bytes, "x", post);
    const std::string written = encodePost(post);
    ASSERT_EQ(written.size(), MachinePost::kFileSize);
    ASSERT_TRUE(decoded(written) == post);
    const auto back = compilePost(decompilePost(post), "x");
    ASSERT_THAT(back.faults, IsEmpty());
    ASSERT_TRUE(encodePost(back.post) == written);
  }
}

TEST(PostFuzz, DamagedSourcesGiveFaultsOrAPost) {
  std::mt19937 random(5);
  const std::string seed = decompilePost(decoded(presentFile(117))).substr(0, 6000);
  for (int i = 0; i < rounds(150); ++i) {
    const auto made = compilePost(damaged(seed, random), "x");
    if (made.faults.empty()) {
      ASSERT_TRUE(decoded(encodePost(made.post)) == made.post);
    }
  }
  for (const char* header : {"[!]", "[[!]]", "[=", "[.", "x = {!", "[a.!]", "x = [!", "!"})
    EXPECT_FALSE(compilePost(header, "x").faults.empty()) << header;
  std::string deep = "x = ";
  for (int i = 0; i < 100000; ++i) deep += "[";
  EXPECT_FALSE(compilePost(deep, "x").faults.empty());
  std::string dotted = "a";
  for (int i = 0; i < 100000; ++i) dotted += ".a";
  EXPECT_FALSE(compilePost(dotted + " = 1", "x").faults.empty());
}

}  // namespace
}  // namespace tarnex
