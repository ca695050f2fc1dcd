// The job's file and keys, and what a style may be, against offsets and texts put down by hand.
// Knows the layout from here.
#include "machining/joblayout.h"

#include <gmock/gmock.h>

#include "bytes.h"
#include "frame/drawingvars.h"
#include "host/platform/files.h"

namespace tarnex {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string jobFile() {
  std::string f(5512, '\0');
  putText(f, 0, "WIRE1");
  putInt(f, 20, 1);
  putInt(f, 24, 1);
  putText(f, 28, "CR12");
  putDouble(f, 48, 40.5);
  putDouble(f, 56, 0.25);
  putInt(f, 64, 3);
  for (int i = 0; i < 10; ++i) {
    const std::size_t at = 68 + 540 * i;
    putText(f, at, "S" + std::to_string(i));
    putDouble(f, at + 20, 1.5 + i);
    putDouble(f, at + 28, -2.5);
    putInt(f, at + 36, i);
    putDouble(f, at + 40, 0.01);
    putDouble(f, at + 48, 0.02);
    putInt(f, at + 56, 100 * i + 4);
    for (int g = 0; g < 10; ++g) {
      const std::size_t pass = at + 60 + 40 * g;
      putText(f, pass, "H" + std::to_string(g));
      putDouble(f, pass + 8, 0.2 - 0.01 * g);
      putText(f, pass + 16, "9" + std::to_string(g));
      putText(f, pass + 21, "second" + std::to_string(g));
      putDouble(f, pass + 32, g * 10.0);
      putDouble(f, at + 460 + 8 * g, g * 0.125);
    }
  }
  putInt(f, 5468, 1);
  putInt(f, 5472, 1);
  putDouble(f, 5476, 60);
  putDouble(f, 5484, -5);
  putText(f, 5492, "FOLDER");
  return f;
}

TEST(JobLayoutFile, EveryFieldLiesWhereTheFormatSays) {
  JobLayout job;
  std::string told;
  job.decode(jobFile(), &told);
  EXPECT_EQ(told, "");
  EXPECT_EQ(job.sMachine + job.sPostPath + job.sMaterial, "WIRE1FOLDERCR12");
  EXPECT_EQ(job.nSortMode * 1000 + job.nCutType * 100 + job.nDbf * 10 + job.nLeaderType, 1111);
  EXPECT_EQ(job.dThick, 40.5);
  EXPECT_EQ(job.dWireRad, 0.25);
  EXPECT_EQ(job.nStyleCount, 3);
  EXPECT_EQ(job.dThickAux, 60);
  EXPECT_EQ(job.dThickProg, -5);
  const auto& s = job.styles[9];
  EXPECT_EQ(s.sName, "S9");
  EXPECT_EQ(s.dValueC, 10.5);
  EXPECT_EQ(s.dValueD, -2.5);
  EXPECT_EQ(s.nPassLast, 9);
  EXPECT_EQ(s.dValueA, 0.01);
  EXPECT_EQ(s.dValueB, 0.02);
  EXPECT_EQ(s.nCode, 904);
  EXPECT_EQ(s.passes[7].sCode + s.passes[7].sSub1 + s.passes[7].sSub2, "H797second7");
  EXPECT_EQ(s.passes[7].dValue2, 70);
  EXPECT_EQ(s.passOffset[3], 0.375);
  EXPECT_TRUE(job.encode() == jobFile());  // all ten styles, though three are in use
}

TEST(JobLayoutFile, DefaultsWithoutAFile) {
  const JobLayout job;
  EXPECT_EQ(job.sMachine + job.sPostPath + job.sMaterial, "SODICKSODICKSKD11");
  EXPECT_EQ(job.nStyleCount * 10 + job.nSortMode, 12);
  EXPECT_EQ(job.dThick, 5);
  EXPECT_EQ(job.dWireRad, 0.2);
  JobLayout same;
  EXPECT_FALSE(same.read(std::string(TARNEX_BINARY_DIR) + "/no such.LYT"));
  EXPECT_EQ(same, job);
}

TEST(JobLayoutFile, WhatNoJobCanHaveIsHeldAndTold) {
  std::string f = jobFile();
  putInt(f, 64, 32767);
  putInt(f, 5468, 7);
  putInt(f, 68 + 36, 10);
  putInt(f, 68 + 540 + 36, -12);
  putInt(f, 68 + 1080 + 36, 32767);
  std::string told;
  JobLayout job;
  job.decode(f, &told);
  EXPECT_EQ(
      told,
      "number of styles 32767, taken as 10; condition file 7, taken as 1; style 1: last pass 10, taken as 9; "
      "style 2: last pass -12, taken as -9; and 1 more");
  EXPECT_EQ(passesOf(job.styles[0]) * 100 + passesOf(job.styles[1]), 1010);
  // A short file keeps what it doesn't reach: 68 + 540 + 30 bytes hold style 1 and of style 2 the taper.
  JobLayout cut;
  cut.decode(jobFile().substr(0, 68 + 540 + 30), &told);
  EXPECT_EQ(told, "638 of 5512 bytes, the rest keeps its values");
  EXPECT_EQ(cut.styles[1].dValueC, 2.5);
  EXPECT_EQ(cut.styles[1].nCode, 700);
  EXPECT_EQ(cut.sPostPath, "SODICK");
}

TEST(JobLayoutFile, FilesAreWrittenWholeOrNotAtAll) {
  const std::string folder = temporaryFolder("job");
  JobLayout job;
  job.decode(jobFile());
  job.setFolder(folder);
  EXPECT_FALSE(job.save());  // there is no folder MZS
  ASSERT_FALSE(makeFolders(folder + "/MZS"));
  EXPECT_TRUE(job.save());
  JobLayout read;
  read.setFolder(folder);
  EXPECT_TRUE(read.load());
  EXPECT_EQ(read, job);
  EXPECT_FALSE(removeTree(folder));
}

TEST(JobFuzz, DamagedJobFiles) {
  std::mt19937 random(5512);
  for (int i = 0; i < rounds(500); ++i) {
    JobLayout job;
    job.decode(damaged(jobFile(), random));
    ASSERT_EQ(job.encode().size(), JobLayout::kFileSize);
    ASSERT_LE(job.nStyleCount, 10);
    JobLayout again;
    again.decode(job.encode());
    ASSERT_EQ(again.encode(), job.encode());
  }
}

TEST(JobKeys, StylesAsText) {
  ProcessStyle s;
  s.sName = "ROUGH";
  s.dValueC = 1.5;
  s.nPassLast = 2;
  s.dValueA = -0.01;
  s.nCode = 1204;
  EXPECT_EQ(styleKeyText(s), "ROUGH 1.500000 0.000000 2 -0.010000 0.000000 1204");
  s.passes[1].dValue1 = 0.1234567;
  s.passOffset[1] = 2;
  EXPECT_EQ(passKeyText(s, 1), "001 0.123457 01 01 0.000000 2.000000");
  // A name with a blank shifts what stands behind it: "B" is no number, and all else stays.
  ProcessStyle shifted;
  readStyleKey("A B 1.5 0 2 0 0 1204", shifted);
  EXPECT_EQ(shifted.sName, "A");
  EXPECT_EQ(shifted.dValueC, 0);
  EXPECT_EQ(shifted.nCode, 700);
  readPassKey("123456789 0.5 12345 x nan 3", shifted, 9);
  EXPECT_EQ(shifted.passes[9].sCode + shifted.passes[9].sSub1 + shifted.passes[9].sSub2, "12345671234x");
  EXPECT_EQ(shifted.passes[9].dValue2, 0);
  EXPECT_EQ(shifted.passOffset[9], 0);
  readStyleKey("BIG 0 0 32767 0 0 1", shifted);
  EXPECT_THAT(holdStyle(shifted), testing::ElementsAre("last pass 32767, taken as 9"));
}

TEST(JobFuzz, DamagedKeys) {
  std::mt19937 random(54);
  for (int i = 0; i < rounds(2000); ++i) {
    ProcessStyle s;
    readStyleKey(damaged("ROUGH 1.5 0 2 -0.01 0 1204", random), s);
    readPassKey(damaged("001 0.123457 01 01 0 2", random), s, i % 10);
    (void)holdStyle(s);
    ASSERT_LE(s.sName.size(), 23u);
    ASSERT_LE(passesOf(s), 10);
    ASSERT_TRUE(std::isfinite(s.dValueA) && std::isfinite(s.passes[i % 10].dValue1));
  }
}

TEST(JobKeys, TheDrawingGivesTheJobBack) {
  AcDbDatabase drawing;
  DrawingVars vars(drawing);
  JobLayout job;
  EXPECT_FALSE(readJobKeys(vars, job));
  EXPECT_EQ(job, JobLayout());
  job.decode(jobFile());
  job.nStyleCount = 10;
  writeJobKeys(vars, job);
  EXPECT_EQ(vars.getString("ISO_STYLE9"), "S9 10.500000 -2.500000 9 0.010000 0.020000 904");
  EXPECT_EQ(vars.getString("ISO_STYLEGROUP99"), "H9 0.110000 99 second9 90.000000 1.125000");
  EXPECT_TRUE(vars.exists("ISO_STYLEGROUP01"));  // the pass behind the last of style 0
  EXPECT_FALSE(vars.exists("ISO_STYLEGROUP02"));
  JobLayout back;
  EXPECT_TRUE(readJobKeys(vars, back));
  EXPECT_EQ(back.sPostPath + back.sMachine + back.sMaterial, "FOLDERWIRE1CR12");
  for (int i = 0; i < 10; ++i) {
    SCOPED_TRACE(i);
    const auto &a = back.styles[i], &b = job.styles[i];
    EXPECT_TRUE(sameStyle(a, b));
    for (int g = 0; g <= std::min(i + 1, 9); ++g) EXPECT_EQ(passKeyText(a, g), passKeyText(b, g));
  }
  vars.setInt("ISO_STYLENUM", 30000);
  vars.setInt("ISO_DBF", -3);
  vars.setString("ISO_STYLE3", "S3 0 0 -12 0 0 700");
  std::string told;
  EXPECT_TRUE(readJobKeys(vars, back, &told));
  EXPECT_EQ(back.nStyleCount * 10 + back.nDbf, 100);
  EXPECT_EQ(told,
            "the drawing's job: number of styles 30000, taken as 10; condition file -3, taken as 0; style 4: "
            "last pass "
            "-12, taken as -9");
}

TEST(Styles, DefaultsKindsAndFaults) {
  ProcessStyle s;
  EXPECT_EQ(s.passes[0].sCode + s.passes[0].sSub1 + s.passes[9].sCode, "00000009");
  EXPECT_EQ(kindOf(s) + colourOf(s), 7);
  s.nCode = 1204;
  EXPECT_EQ(kindOf(s), StyleKind::kFirstPassWord);
  EXPECT_EQ(colourOf(s), 12);
  EXPECT_EQ(passesOf(s), 1);
  s.nPassLast = INT32_MIN;
  EXPECT_EQ(passesOf(s), 10);
  s = ProcessStyle();
  EXPECT_THAT(styleFaults(s), IsEmpty());
  s.sName = "two words";
  s.nPassLast = 1;
  s.passes[1].sSub1 = "";
  s.passes[1].sCode = "12345678";
  s.passes[2].sCode = "";  // behind the last pass
  EXPECT_THAT(styleFaults(s),
              testing::ElementsAre(HasSubstr("name \"two words\" has a blank"),
                                   HasSubstr("pass 2: offset number \"12345678\" has 8 bytes, at most 7"),
                                   HasSubstr("pass 2: condition is empty")));
}

}  // namespace
}  // namespace tarnex
