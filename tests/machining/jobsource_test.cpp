// Jobs as text, and what is shipped: posts, job, lists and conditions that belong together.
// Knows the sources in the tree.
#include "machining/jobsource.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "bytes.h"
#include "frame/catalog.h"
#include "frame/catalogsource.h"
#include "host/platform/files.h"
#include "machining/conditiontable.h"
#include "machining/machines.h"
#include "machining/postsource.h"

namespace tarnex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

JobLayout oddJob(std::mt19937& random) {
  JobLayout job;
  const auto real = [&] { return (static_cast<int>(random() % 4001) - 2000) / 1000.0; };
  job.sMaterial = "铜";
  job.nSortMode = static_cast<int>(random() % 5) - 1;
  job.nCutType = static_cast<int>(random() % 3);
  job.nDbf = static_cast<int>(random() % 2);
  job.nStyleCount = static_cast<int>(random() % 11);
  job.dThick = real();
  job.dThickAux = real();
  for (auto& s : job.styles) {
    if (random() % 3 == 0) continue;
    s.sName = "S" + std::to_string(random() % 100);
    s.nPassLast = static_cast<int>(random() % 19) - 9;
    s.nCode = static_cast<int>(random() % 2000) - 300;
    s.dValueA = real();
    s.dValueB = real();
    s.dValueC = real();
    s.dValueD = real();
    for (std::size_t g = 0; g < 10; ++g) {
      if (random() % 2 == 0) continue;
      s.passOffset[g] = real();
      s.passes[g].dValue1 = real();
      s.passes[g].dValue2 = real();
      s.passes[g].sCode = std::to_string(random() % 1000);
    }
  }
  return job;
}

TEST(JobSourceText, EveryJobComesBack) {
  std::mt19937 random(1);
  for (int i = 0; i < rounds(100); ++i) {
    const JobLayout job = oddJob(random);
    const auto back = readJobSource(jobSource(job), "job.toml", JobLayout());
    ASSERT_THAT(back.faults, IsEmpty());
    ASSERT_EQ(back.job, job) << jobSource(job);
  }
}

TEST(JobSourceText, WhatIsNotNamedStays) {
  JobLayout base;
  base.dWireRad = 0.3;
  base.styles[0].sName = "OLD";
  const auto read = readJobSource("thickness = 40\norder = \"style\"\n", "j", base);
  EXPECT_EQ(read.job.dThick * 10 + read.job.dWireRad + read.job.nSortMode, 401.3);
  EXPECT_EQ(read.job.styles[0].sName, "OLD");
  const auto styled = readJobSource(R"(
[[style]]
name = "HOLE"
colour = 12
kind = 4
pass = [ { offset = 0.2, offset_number = "H1" }, { offset = 0.1 }, {} ]
[[style]]
[[rule]]
style = "HOLE"
figure = "hole"
layer = "PUNCH"
colour = 3
[[rule]]
style = "STYLE2"
)",
                                    "j", base);
  EXPECT_THAT(styled.faults, IsEmpty());
  EXPECT_EQ(styled.job.nStyleCount, 2);
  EXPECT_EQ(styled.job.styles[0].nCode, 1204);
  EXPECT_EQ(styled.job.styles[0].nPassLast, 2);
  EXPECT_EQ(styled.job.styles[0].passes[0].sCode + styled.job.styles[0].passes[1].sCode, "H1001");
  EXPECT_THAT(styled.rules,
              ElementsAre(StyleRule{"HOLE", false, "PUNCH", 3}, StyleRule{"STYLE2", {}, {}, {}}));
}

TEST(JobSourceText, FaultsNamePlaceValueAndLimit) {
  std::string many = "[[style]]\npass = [\n";
  for (int i = 0; i < 11; ++i) many += "{},\n";
  const std::pair<std::string, const char*> cases[] = {
      {"material = \"twenty bytes of text\"",
       "j:1: material: \"twenty bytes of text\" has 20 bytes, at most 19"},
      {"condition_file = 7", "j:1: condition_file: 7, but 0 to 1 is meant"},
      {"styles_in_use = 11", "j:1: styles_in_use: 11, but 0 to 10 is meant"},
      {"order = \"random\"", "j:1: order: \"random\" is none of nearest, style, number"},
      {"wire = \"thin\"", "j:1: wire: a number is meant"},
      {"wire = inf", "j:1: wire: a number is meant"},
      {"[[style]]\nname = \"two words\"", "j:2: style.name: \"two words\" has a blank in it"},
      {"[[style]]\nlast_pass = 10", "j:2: style.last_pass: 10, but -9 to 9 is meant"},
      {"[[style]]\npass = [{ condition = \"\" }]", "j:2: style.pass.condition: \"\" is empty"},
      {many + "]", "j:13: style.pass: at most 10 passes"},
      {"[[rule]]\nstyle = \"NONE\"", "j:1: rule: the job has no style \"NONE\""},
      {"[[rule]]\ncolour = 1", "j:1: rule: it names no style"},
      {"style = 3", "j:1: style: [[style]] is meant"},
      {"wire = 1\nwire = 2", "j:2: "},
  };
  for (const auto& [source, fault] : cases) {
    const auto read = readJobSource(source, "j", JobLayout());
    ASSERT_EQ(read.faults.size(), 1u) << source;
    EXPECT_THAT(read.faults[0], HasSubstr(fault));
  }
}

TEST(JobFuzz, DamagedSourcesGiveFaultsOrAJob) {
  std::mt19937 random(8);
  JobLayout job = oddJob(random);
  job.nStyleCount = 2;
  const std::string seed = jobSource(job) + "[[rule]]\nstyle = \"STYLE1\"\ncolour = 3\n";
  for (int i = 0; i < rounds(100); ++i) {
    const auto read = readJobSource(damaged(seed, random), "x", JobLayout());
    for (const auto& style : read.job.styles) ASSERT_LE(std::abs(style.nPassLast), 9);
    ASSERT_LE(read.job.nStyleCount, 10);
    if (read.faults.empty()) {
      ASSERT_EQ(readJobSource(jobSource(read.job), "x", JobLayout()).job, read.job);
    }
  }
}

TEST(Machines, NamesLeadNowhereElse) {
  MachineName name;
  std::string error;
  ASSERT_TRUE(parseMachine("A/b", name, error));
  EXPECT_EQ(name.folder + "+" + name.name, "A+b");
  ASSERT_TRUE(parseMachine("X", name, error));
  EXPECT_EQ(name.text(), "X/X");
  for (const char* bad : {"", "/", "a/", "/b", "../x", "a/..", "a/b/c", "a\\b\\c"})
    EXPECT_FALSE(parseMachine(bad, name, error)) << bad;
  EXPECT_EQ(name.text(), "X/X");
}

TEST(Machines, FamiliesOfFolders) {
  EXPECT_EQ(familyOfText("Label|Folder").folder, "Folder");
  EXPECT_EQ(familyOfText("|Folder").folder + familyOfText("Free").folder, "");
  MessageCatalog catalog;
  EXPECT_FALSE(familyOfFolder(catalog, "SixDigit"));
  ASSERT_FALSE(catalog.open(std::string(TARNEX_BINARY_DIR) + "/install/VornEn.tgf", 1));
  EXPECT_EQ(familyOfFolder(catalog, "sodick"), 0);
  EXPECT_EQ(familyOfFolder(catalog, "SIXDIGIT"), 5);
  EXPECT_EQ(familyOfFolder(catalog, "MyWire"), std::nullopt);
  EXPECT_EQ(familyOfFolder(catalog, ""), std::nullopt);
}

// The samples of a page, top keys first, as one source.
std::string samplesOf(const std::string& page) {
  const std::string text = readFile(std::string(TARNEX_SOURCE_DIR) + "/docs/" + page).value.value_or("");
  const std::string open = "```toml\n";
  std::string top, tables;
  for (auto at = text.find(open); at != text.npos; at = text.find(open, at + 1)) {
    const auto sample = text.substr(at + open.size(), text.find("```\n", at + 1) - at - open.size());
    const auto table = ("\n" + sample).find("\n[");
    top += sample.substr(0, table);
    tables += table == sample.npos ? "" : sample.substr(table);
  }
  return top + tables;
}

TEST(Documentation, SamplesAreSound) {
  const auto post = compilePost(samplesOf("posts.md"), "posts.md");
  EXPECT_THAT(post.faults, IsEmpty());
  EXPECT_THAT(postAdvice(post.post), IsEmpty());
  EXPECT_EQ(post.post.rowText(3, 0), "V1V2");
  const auto job = readJobSource(samplesOf("files.md"), "files.md", JobLayout());
  EXPECT_THAT(job.faults, IsEmpty());
  EXPECT_EQ(job.job.styles[0].passes[1].dValue1, 0.12);
  EXPECT_EQ(job.rules.size(), 1u);
}

// What a new installation gets.

const std::string kData = std::string(TARNEX_SOURCE_DIR) + "/data/";

TEST(Shipped, PostsAreSoundAndBelongToTheirFamily) {
  std::vector<SourceFault> faults;
  const auto set = loadCatalogSet(kData + "catalog", faults);
  std::map<std::string, int> families;  // by folder, as the English catalogue has them
  for (const auto& language : set.languages) {
    std::map<std::string, int> own;
    for (const auto& entry : language.entries)
      if (entry.id >= 1800 && entry.id <= 1809)
        if (const auto family = familyOfText(entry.text); !family.folder.empty())
          own[family.folder] = entry.id - 1800;
    if (families.empty()) families = own;
    EXPECT_EQ(own, families);
  }
  EXPECT_EQ(families.size(), 5u);
  int posts = 0;
  for (const auto& [folder, family] : families) {
    const std::string source = kData + "MZS/" + folder + "/" + folder + ".toml";
    const auto text = readFile(source);
    ASSERT_TRUE(text) << source;
    const auto made = compilePost(*text.value, source);
    EXPECT_THAT(made.faults, IsEmpty());
    EXPECT_EQ(made.post.nFamily, family) << folder;
    const auto again = compilePost(decompilePost(made.post), source);
    EXPECT_TRUE(encodePost(again.post) == encodePost(made.post)) << folder;
    std::set<int> versions;
    for (const auto& name : made.post.conditionFile) {
      ConditionTable table;
      versions.insert(table.load(kData + "MZS/" + folder + "/" + name + ".ini", kData + "MZS/Main.dat"));
      EXPECT_THAT(table.faults(), IsEmpty()) << folder << "/" << name;
      EXPECT_GT(table.lineCount({0, 0, 0}) + (family == 1 ? 0 : 1), 0u);  // family 1 takes the first cell
    }
    EXPECT_THAT(versions, ElementsAre(1, 2)) << folder;
    ++posts;
  }
  EXPECT_EQ(posts, 5);
}

TEST(Shipped, TheFirstJobFindsItsMachineAndConditions) {
  const auto text = readFile(kData + "MZS/ISO.toml");
  ASSERT_TRUE(text);
  const auto read = readJobSource(*text.value, "ISO.toml", JobLayout());
  EXPECT_THAT(read.faults, IsEmpty());
  const JobLayout& job = read.job;
  EXPECT_EQ(job.sPostPath + "/" + job.sMachine, "SODICK/SODICK");  // and so does a record's default
  EXPECT_EQ(JobLayout().sPostPath + "/" + JobLayout().sMachine, "SODICK/SODICK");
  ConditionTable table;
  table.load(kData + "MZS/SODICK/bywire.ini", kData + "MZS/Main.dat");
  const auto cell = table.find(job.sMaterial, job.dWireRad, job.dThick);
  ASSERT_TRUE(cell);
  std::set<std::string> numbers;
  for (int i = 0; i < job.nStyleCount; ++i) {
    const auto& style = job.styles[i];
    EXPECT_THAT(styleFaults(style), IsEmpty());
    for (int g = 0; g < passesOf(style); ++g) {
      EXPECT_TRUE(numbers.insert(style.passes[g].sCode).second) << "one offset number, two offsets";
      int lines = 0;
      for (const auto& line : table.linesOf(*cell)) lines += line.starts_with("C" + style.passes[g].sSub1);
      EXPECT_EQ(lines, 1) << style.sName << " pass " << g;
    }
  }
  EXPECT_GE(numbers.size(), 10u);
}

}  // namespace
}  // namespace tarnex
