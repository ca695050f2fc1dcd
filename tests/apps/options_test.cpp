// Options, exit codes and what is said when a drawing can't be cut.
// Drawings are made by hand, a few entities each.
#include "apps/programtest.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Options : public ProgramTest {};

TEST_F(Options, WhatCannotBeReadIsThree) {
  write("words.dxf", "this is no drawing\n");
  write("old.dxf", std::string("AC1015") + std::string(200, '\0'));
  write("empty.dxf", "");
  for (const char* name : {"missing.dxf", "words.dxf", "old.dxf", "empty.dxf"}) {
    const Ran ran = sh(std::string("tarnex 3b ") + name + " -o out.3b");
    EXPECT_EQ(ran.code, 3) << name << ran.out;
    EXPECT_THAT(ran.out, HasSubstr(name));
    EXPECT_EQ(sh(std::string("tarnex info ") + name).code, 3) << name;
  }
  EXPECT_THAT(sh("tarnex 3b old.dxf").out, HasSubstr("DWG"));
  EXPECT_FALSE(there("out.3b"));
  EXPECT_EQ(sh("tarnex check missing.3b --drawing plate.dxf").code, 3);
  EXPECT_EQ(sh("tarnex run missing.scr").code, 3);
}

TEST_F(Options, NothingToCutIsOneAndSaysWhatIsThere) {
  drawing("text.dxf", "0\nTEXT\n8\n0\n10\n0\n20\n0\n40\n2.5\n1\nhello\n");
  drawing("paper.dxf", "0\nCIRCLE\n8\n0\n67\n1\n10\n0\n20\n0\n40\n5\n");
  drawing("solid.dxf", "0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\n5\n210\n0.6\n220\n0\n230\n0.8\n");
  drawing("open.dxf", line(0, 0, 10, 0) + line(10, 0, 10, 10));
  drawing("none.dxf", "");
  const std::pair<const char*, const char*> cases[] = {{"text", "TEXT"},
                                                       {"paper", "none in model space"},
                                                       {"solid", "3D"},
                                                       {"open", "0.000,0.000"},
                                                       {"none", "empty"}};
  for (const auto& [name, words] : cases) {
    const Ran ran = sh(std::string("tarnex 3b ") + name + ".dxf -o out.3b");
    EXPECT_EQ(ran.code, 1) << name << ran.out;
    EXPECT_THAT(ran.out, HasSubstr(words)) << name;
    EXPECT_FALSE(there("out.3b"));
  }
}

TEST_F(Options, AnOutputThatCannotBeWrittenLeavesTheOldOne) {
  std::filesystem::create_directories(folder + "/locked");
  write("locked/plate.3b", "old");
  EXPECT_EQ(sh("tarnex 3b plate.dxf -o nowhere/deep/plate.3b").code, 1);
  std::filesystem::create_directories(folder + "/plate.3b");  // a folder stands in the way
  EXPECT_EQ(sh("tarnex 3b plate.dxf").code, 1);
  EXPECT_EQ(sh("tarnex 3b plate.dxf -o /proc/plate.3b").code, 1);
  EXPECT_EQ(sh("tarnex 3b text.dxf -o locked/plate.3b").code, 3);
  EXPECT_EQ(read("locked/plate.3b"), "old");
}

TEST_F(Options, WrongUsageIsTwo) {
  for (const char* line :
       {"tarnex 3b", "tarnex 3b plate.dxf --no-such-option", "tarnex 3b plate.dxf --set dOffset",
        "tarnex 3b plate.dxf --set noSuch=1", "tarnex 3b plate.dxf --set dOffset=much",
        "tarnex 3b plate.dxf --units parsec", "tarnex 3b plate.dxf --gap=-1", "tarnex 3b plate.dxf --scale 0",
        "tarnex 3b plate.dxf punch.dxf -o one.3b",
        "tarnex 3b plate.dxf punch.dxf --out-dir nc --save one.dxf", "tarnex check plate.3b"})
    EXPECT_EQ(sh(line).code, 2) << line;
  EXPECT_FALSE(there("plate.3b"));
  // Two drawings of one name, and a program over its drawing.
  std::filesystem::create_directories(folder + "/a");
  std::filesystem::copy(folder + "/plate.dxf", folder + "/a/plate.dxf");
  const Ran both = sh("tarnex 3b plate.dxf a/plate.dxf --out-dir nc");
  EXPECT_EQ(both.code, 2);
  EXPECT_THAT(both.out, HasSubstr("plate.3b"));
  EXPECT_EQ(sh("tarnex 3b plate.dxf -o plate.dxf").code, 2);
  EXPECT_THAT(read("plate.dxf"), HasSubstr("SECTION"));
}

TEST_F(Options, ManyDrawingsOneBroken) {
  write("bad.dxf", "0\nSECTION\nbroken");
  const Ran ran = sh("tarnex 3b plate.dxf bad.dxf punch.dxf --out-dir nc --jobs 2");
  EXPECT_EQ(ran.code, 3) << ran.out;
  EXPECT_TRUE(there("nc/plate.3b"));
  EXPECT_TRUE(there("nc/punch.3b"));
  EXPECT_FALSE(there("nc/bad.3b"));
  EXPECT_THAT(ran.out, HasSubstr("bad.dxf"));
  const std::string together = read("nc/plate.3b");
  ASSERT_EQ(sh("tarnex 3b plate.dxf -o plate.3b").code, 0);
  EXPECT_EQ(read("plate.3b"), together);
}

// The counted length of the first block: the lead-in of a circle at 45 degrees shows sizes and offsets alike.
TEST_F(Options, UnitsScaleAndSettings) {
  drawing("c.dxf", circle(0, 0, 10));
  const auto radius = [&](const std::string& options) {
    const Ran ran =
        sh("tarnex 3b c.dxf -o c.3b --set bFixedLeadAngle=0 --set dOffset=0.1 --set dLeadAngle=0 " + options);
    EXPECT_EQ(ran.code, 0) << ran.out;
    const std::string text = read("c.3b");
    // Cut from the right: the arc's start lies its radius right of the centre.
    const auto block = text.find("NR") == std::string::npos ? text.find("SR") : text.find("NR");
    const auto b = text.rfind('B', text.rfind('B', text.rfind('B', block) - 1) - 1);
    return b == std::string::npos ? 0 : std::stol(text.substr(b + 1));
  };
  EXPECT_EQ(radius(""), 10100);
  EXPECT_EQ(radius("--scale 0.5"), 5100);
  EXPECT_EQ(radius("--units inch"), 254100);
  EXPECT_EQ(radius("--units cm --scale 0.1"), 10100);
  EXPECT_EQ(radius("--set dOffset=0.25"), 10250);
  drawing("c.dxf", circle(0, 0, 10), "9\n$INSUNITS\n70\n1\n");
  EXPECT_EQ(radius(""), 254100);
  EXPECT_EQ(radius("--units mm"), 10100);
  // What holds for a run holds for that run alone.
  EXPECT_FALSE(there("install/WireCut.set"));
}

TEST_F(Options, LayersGapAndClean) {
  drawing("l.dxf", circle(0, 0, 10, "CUT") + circle(30, 0, 5, "BEND") + circle(60, 0, 5, "Marks"));
  const auto paths = [&](const std::string& options) {
    const Ran ran = sh("tarnex 3b " + options + " -o l.3b");
    return ran.code == 0 ? count(ran.out, " paths")
                               ? std::stoi(ran.out.substr(ran.out.rfind(' ', ran.out.find(" paths") - 1)))
                               : -1
                         : -ran.code;
  };
  EXPECT_EQ(paths("l.dxf"), 3);
  EXPECT_EQ(paths("l.dxf --layers CUT"), 1);
  EXPECT_EQ(paths("l.dxf --layers cut,MARKS"), 2);
  EXPECT_EQ(paths("l.dxf --skip-layers BEND"), 2);
  EXPECT_EQ(paths("l.dxf --layers NONE"), -1);
  EXPECT_THAT(sh("tarnex 3b l.dxf --layers CUT,NONE -o l.3b").out, HasSubstr("NONE"));
  // A square whose last corner gapes by 0.04.
  drawing("gap.dxf", line(0, 0, 10, 0) + line(10, 0, 10, 10) + line(10, 10, 0, 10) + line(0, 10, 0, 0.04));
  EXPECT_EQ(paths("gap.dxf"), -1);
  EXPECT_EQ(paths("gap.dxf --gap 0.03"), -1);
  EXPECT_EQ(paths("gap.dxf --gap 0.05"), 1);
  // Lines drawn twice: a chain has a choice at every corner.
  const std::string square =
      line(0, 0, 10, 0) + line(10, 0, 10, 10) + line(10, 10, 0, 10) + line(0, 10, 0, 0);
  drawing("twice.dxf", square + square);
  EXPECT_THAT(sh("tarnex 3b twice.dxf -o t.3b").out, HasSubstr("lie over each other"));
  const Ran cleaned = sh("tarnex 3b twice.dxf -o t.3b --clean --save t.dxf");
  EXPECT_EQ(cleaned.code, 0);
  EXPECT_THAT(cleaned.out, HasSubstr("cleaned: 4 entities less"));
  EXPECT_THAT(cleaned.out, Not(HasSubstr("lie over each other")));
  EXPECT_EQ(paths("twice.dxf --clean"), 1);
  EXPECT_EQ(sh("tarnex check t.3b --drawing t.dxf").code, 0);
}

TEST_F(Options, JsonIsWhole) {
  write("read.py",
        "import json,sys\nd = json.load(sys.stdin)\nprint(d[0]['paths'] if isinstance(d, list) else "
        "d.get('paths'))\n");
  EXPECT_THAT(sh("tarnex 3b punch.dxf -o p.3b --json | " TARNEX_EZDXF_PYTHON " read.py").out, HasSubstr("1"));
  EXPECT_EQ(sh("tarnex info plate.dxf --json | " TARNEX_EZDXF_PYTHON " -m json.tool >/dev/null").code, 0);
  EXPECT_EQ(sh("tarnex commands --json | " TARNEX_EZDXF_PYTHON " -m json.tool >/dev/null").code, 0);
}

// ---- drawings that mean harm

TEST_F(Options, HostileDrawingsEndWithASentence) {
  const std::string good = circle(0, 0, 10);
  const auto polyline = [](const std::string& count, const std::string& vertices) {
    return "0\nLWPOLYLINE\n8\n0\n90\n" + count + "\n70\n1\n" + vertices;
  };
  const std::string square = "10\n0\n20\n0\n10\n9\n20\n0\n10\n9\n20\n9\n10\n0\n20\n9\n";
  std::string nested;
  for (int i = 0; i < 10000; ++i) {
    const std::string k = std::to_string(i);
    nested += "0\nBLOCK\n8\n0\n2\nB" + k + "\n70\n0\n10\n0\n20\n0\n0\nINSERT\n8\n0\n2\nB" +
              std::to_string(i + 1) + "\n10\n0\n20\n0\n0\nENDBLK\n";
  }
  const std::string blocks =
      "0\nSECTION\n2\nBLOCKS\n" + nested + "0\nBLOCK\n8\n0\n2\nB10000\n70\n0\n10\n0\n20\n0\n" +
      circle(0, 0, 3) +
      "0\nENDBLK\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nINSERT\n8\n0\n2\nB0\n10\n0\n20\n0\n" +
      "0\nENDSEC\n0\nEOF\n";
  write("nested.dxf", blocks);
  const std::pair<const char*, std::string> drawings[] = {
      {"nan.dxf", "0\nCIRCLE\n8\n0\n10\nnan\n20\n0\n40\n5\n"},
      {"huge.dxf", circle(1e300, 0, 5) + line(0, 0, 1e300, 1e300) + circle(0, 0, 1e300)},
      {"zero.dxf", circle(0, 0, 0) + circle(0, 0, -1)},
      {"bulge.dxf", polyline("2", "10\n0\n20\n0\n42\n1e9\n10\n9\n20\n0\n42\n-1e300\n")},
      {"count.dxf", polyline("40000000", square)},
      {"point.dxf", polyline("4", "10\n1\n20\n1\n10\n1\n20\n1\n10\n1\n20\n1\n10\n1\n20\n1\n")},
      {"spline.dxf",
       "0\nSPLINE\n8\n0\n70\n1\n71\n3000\n72\n2000000000\n73\n2000000000\n40\n0\n10\n0\n20\n0\n"}};
  for (const auto& [name, entities] : drawings) drawing(name, entities);
  for (const char* name : {"nan.dxf", "huge.dxf", "zero.dxf", "bulge.dxf", "count.dxf", "point.dxf",
                           "spline.dxf", "nested.dxf"}) {
    // In 4 GB of memory and 20 seconds; no signal, and something said. Sanitizers reserve far more than they
    // use.
#ifdef TARNEX_SANITIZED
    const std::string limits = "ulimit -t 60; ";
#else
    const std::string limits = "ulimit -v 4000000; ulimit -t 20; ";
#endif
    for (const char* what : {"tarnex 3b ", "tarnex info "}) {
      const Ran ran = sh(limits + what + name);
      EXPECT_LE(ran.code, 3) << what << name << ran.out.substr(0, 500);
      EXPECT_GT(ran.out.size(), 10u) << what << name;
    }
  }
  drawing("both.dxf", good + drawings[0].second + drawings[3].second);
  EXPECT_EQ(sh("tarnex 3b both.dxf -o both.3b").code, 0) << "what is sound is cut";
}

}  // namespace

}  // namespace tarnex
