// Text sources of the catalogue: reading, faults, the way to bytes and back, and the shipped texts
// themselves. Judges the form of the shipped texts, not their wording.
#include "frame/catalogsource.h"

#include <gmock/gmock.h>

#include <set>

#include "frame/catalogcheck.h"
#include "frame/tgf.h"
#include "host/platform/codepage.h"
#include "host/platform/profile.h"

namespace tarnex {
namespace {

const std::string kData = TARNEX_SOURCE_DIR "/data";

std::vector<std::string> texts(const std::vector<SourceFault>& faults) {
  std::vector<std::string> out;
  for (const SourceFault& fault : faults) out.push_back(fault.text());
  return out;
}

CatalogSet setOf(const std::string& arguments, const std::string& english, const std::string& gb,
                 const std::string& big5) {
  std::vector<SourceFault> faults;
  CatalogSet set{
      parseCatalogArguments(arguments, "arguments.txt", faults),
      {parseCatalogSource(english, "VornEn.txt", 1, faults), parseCatalogSource(gb, "VornGb.txt", 2, faults),
       parseCatalogSource(big5, "VornBig5.txt", 3, faults)}};
  EXPECT_THAT(texts(faults), ::testing::IsEmpty());
  return set;
}

TEST(CatalogSource, ReadsEntriesAndEscapes) {
  std::vector<SourceFault> faults;
  const auto source = parseCatalogSource(
      "\xEF\xBB\xBF# head\n\n 29\ti  \"\\nPath %d: \" \r\n4 isis \"L%d \\\"%s\\\" \\\\ %d%s\"", "x.txt", 1,
      faults);
  EXPECT_THAT(texts(faults), ::testing::IsEmpty());
  ASSERT_EQ(source.entries.size(), 2u);
  EXPECT_EQ(source.entries[0].text, "\nPath %d: ");
  EXPECT_EQ(source.entries[0].kinds, "i");
  EXPECT_EQ(source.entries[0].line, 3);
  EXPECT_EQ(source.entries[1].text, "L%d \"%s\" \\ %d%s");
  EXPECT_EQ(catalogLine(source.entries[0]), "29  i  \"\\nPath %d: \"");
}

TEST(CatalogSource, ReportsLinesThatCanNotBeRead) {
  const struct {
    const char *line, *fault;
  } cases[] = {
      {"x29 i \"a\"", "x.txt:1: 'x29' is not a number"},
      {"-1 - \"a\"", "x.txt:1: '-1' is not a number"},
      {"99999999999 - \"a\"", "x.txt:1: '99999999999' is not a number"},
      {"29 d \"a\"", "x.txt:1: 29: kinds 'd' are not of i, f, s or -"},
      {"29 \"a\"", "x.txt:1: 29: kinds '\"a\"' are not of i, f, s or -"},
      {"29 - a", "x.txt:1: 29: a text in quotes is expected, escapes are \\n \\t \\\" \\\\"},
      {"29 - \"", "x.txt:1: 29: a text in quotes is expected, escapes are \\n \\t \\\" \\\\"},
      {"29 - \"a\" b\"", "x.txt:1: 29: a text in quotes is expected, escapes are \\n \\t \\\" \\\\"},
      {"29 - \"a\\q\"", "x.txt:1: 29: a text in quotes is expected, escapes are \\n \\t \\\" \\\\"},
      {"29 - \"a\\\"", "x.txt:1: 29: a text in quotes is expected, escapes are \\n \\t \\\" \\\\"},
  };
  for (const auto& c : cases) {
    std::vector<SourceFault> faults;
    EXPECT_TRUE(parseCatalogSource(c.line, "x.txt", 1, faults).entries.empty()) << c.line;
    EXPECT_THAT(texts(faults), ::testing::ElementsAre(c.fault)) << c.line;
  }
  std::vector<SourceFault> faults;
  (void)parseCatalogArguments("29 i U\n30 i U,B the note", "a.txt", faults);
  EXPECT_THAT(texts(faults), ::testing::ElementsAre("a.txt:1: 29: keywords and a note are expected"));
}

TEST(CatalogSource, TellsEachWayInWhichLanguagesDiffer) {
  const std::string arguments = "29 i U,N prompt\n64 - - text\n";
  const std::string english = "29 i \"\\nPath %d [Undo/raNge]: \"\n64 - \"none\"\n";
  const std::string gb = "29 i \"\\n轨迹 %d [放弃(U)/范围(N)]: \"\n64 - \"无\"\n";
  const std::string big5 = "29 i \"\\n軌跡 %d [放棄(U)/範圍(N)]: \"\n64 - \"無\"\n";
  EXPECT_THAT(texts(checkCatalogs(setOf(arguments, english, gb, big5))), ::testing::IsEmpty());

  const std::string prompt = "29 i \"\\n轨迹 %d [放弃(U)/范围(N)]: \"\n";
  const struct {
    std::string source, fault;
  } cases[] = {
      {prompt, "VornGb.txt: 64: is missing (text)"},
      {gb + "64 - \"无\"", "VornGb.txt:3: 64: stands at line 2 too"},
      {gb + "65 - \"无\"", "VornGb.txt:3: 65: is not declared in arguments.txt"},
      {prompt + "64 - \"\"", "VornGb.txt:2: 64: the text is empty"},
      {prompt + "64 i \"无\"", "VornGb.txt:2: 64: kinds are 'i', declared are none"},
      {prompt + "64 - \"无 %d\"", "VornGb.txt:2: 64: conversions are 'i', declared are none"},
      {prompt + "64 - \"10%% \"", "VornGb.txt:2: 64: a text without arguments must not hold '%'"},
      {prompt + "64 - \"无 %n\"", "VornGb.txt:2: 64: the text holds a conversion that can't be printed"},
      {prompt + "64 - \"軌軌跡\"", "VornGb.txt:2: 64: GB2312 lacks '軌跡'"},
      {prompt + "64 - \"" + std::string(127, 'x') + "\"",
       "VornGb.txt:2: 64: the text takes 127 bytes, the limit is 126"},
      {prompt + "64 - \"\\n无\"", "VornGb.txt:2: 64: the line end in front differs from English"},
      {prompt + "64 - \"无\\n\"", "VornGb.txt:2: 64: the last line end differs from English"},
      {"29 i \"\\n轨迹 %s [放弃(U)/范围(N)]: \"\n64 - \"无\"",
       "VornGb.txt:1: 29: conversions are 's', declared are 'i'"},
      {"29 i \"\\n轨迹 %d [放弃(U)]: \"\n64 - \"无\"",
       "VornGb.txt:1: 29: keywords offered are U, declared are U N"},
      {"29 i \"\\n轨迹 %d [放弃(A)/范围(N)]: \"\n64 - \"无\"",
       "VornGb.txt:1: 29: keywords offered are A N, declared are U N"},
  };
  for (const auto& c : cases)
    EXPECT_THAT(texts(checkCatalogs(setOf(arguments, english, c.source, big5))),
                ::testing::ElementsAre(c.fault));
  EXPECT_THAT(texts(checkCatalogs(setOf(arguments + "64 - - again", english, gb, big5))),
              ::testing::ElementsAre("arguments.txt:3: 64: stands twice"));
}

TEST(CatalogSource, BuiltAndDecompiledGivesTheSameEntries) {
  std::vector<SourceFault> faults;
  for (const CatalogSource& source : loadCatalogSet(kData + "/catalog", faults).languages) {
    const std::string file = buildCatalog(source, faults);
    const auto back =
        parseCatalogSource(decompileCatalog(file, source.language), "back", source.language, faults);
    std::set<std::string> before, after;
    for (const CatalogEntry& entry : source.entries) before.insert(catalogLine(entry));
    for (const CatalogEntry& entry : back.entries) after.insert(catalogLine(entry));
    EXPECT_EQ(before, after) << source.file;
    EXPECT_EQ(buildCatalog(back, faults).size(), file.size()) << source.file;
  }
  EXPECT_THAT(texts(faults), ::testing::IsEmpty());
  // What a foreign file holds is shown as far as it goes: doubled numbers once, strange conversions marked.
  const std::string foreign = writeTgf({{9, "%n"}, {4, "%d %s"}, {9, "second"}}).value();
  EXPECT_EQ(decompileCatalog(foreign, 1), "4  is  \"%d %s\"\n9  ?  \"%n\"\n");
}

TEST(CatalogSource, LeavesOutAndReportsWhatCanNotBeStored) {
  std::vector<SourceFault> faults;
  const auto source = parseCatalogSource("1 - \"kept\"\n2 - \"轨\"\n3 - \"ÿ\"", "x.txt", 1, faults);
  EXPECT_EQ(buildCatalog(source, faults), writeTgf({{1, "kept"}}));
  EXPECT_THAT(texts(faults),
              ::testing::ElementsAre("x.txt:2: 2: the text has characters that CP1252 lacks",
                                     "x.txt:3: 3: the text holds a byte FF, which would end it"));
}

TEST(ShippedCatalog, IsCompleteAndAgrees) {
  std::vector<SourceFault> faults;
  const CatalogSet set = loadCatalogSet(kData + "/catalog", faults);
  EXPECT_THAT(texts(faults), ::testing::IsEmpty());
  EXPECT_THAT(texts(checkCatalogs(set)), ::testing::IsEmpty());
  ASSERT_GE(set.arguments.entries.size(), 200u) << "the sources are not there";
  std::set<int> declared;
  for (const CatalogArgument& argument : set.arguments.entries) declared.insert(argument.id);
  for (int row = 1; row <= 71; ++row) EXPECT_TRUE(declared.contains(21000 + row)) << "command " << row;
  for (const CatalogSource& source : set.languages)
    for (const CatalogEntry& entry : source.entries)
      if (entry.id == 51 || entry.id == 52) {
        const std::string stored = fromUtf8(entry.text, catalogLanguage(source.language).writePage);
        EXPECT_LT(stored.size(), 60u)
            << source.file << ' ' << entry.id << " goes through a buffer of 60 bytes";
      }
}

TEST(ShippedMachines, AreTheSameInEveryLanguage) {
  const auto machines = [](const std::string& suffix) {
    const Profile file = Profile::load(kData + "/KZS/KZS" + suffix + ".ini");
    std::vector<std::string> rows;
    for (int i = 1; i <= 20; ++i) {
      const std::string key = std::to_string(i), name = file.stringOf("MAIN", key, "");
      if (name.empty()) break;
      rows.push_back(name + ' ' + file.stringOf("Pause", key, "") + ' ' + file.stringOf("Stop", key, ""));
    }
    return rows;
  };
  const auto english = machines("En");
  ASSERT_THAT(english, ::testing::Contains("Vorn D DD")) << "the machine that new settings name";
  for (const char* suffix : {"Gb", "Big5", ""}) EXPECT_EQ(machines(suffix), english) << suffix;
}

}  // namespace
}  // namespace tarnex
