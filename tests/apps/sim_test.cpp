// `tarnex sim` and SIM in scripts, as a user runs them.
#include <chrono>

#include "apps/programtest.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Sim : public ProgramTest {
 protected:
  void SetUp() override { ASSERT_EQ(sh("tarnex 3b punch.dxf -o punch.3b --save punch-paths.dxf").code, 0); }
  // By a reader of XML that isn't ours.
  void expectWellFormed(const std::string& name) {
    const Ran ran = sh("python3 -c \"import sys,xml.dom.minidom as m;m.parse('" + name + "')\"");
    EXPECT_EQ(ran.code, 0) << ran.out;
  }
};

TEST_F(Sim, DrawingsAndPrograms) {
  EXPECT_EQ(sh("tarnex sim punch-paths.dxf -o d.svg").code, 0);
  expectWellFormed("d.svg");
  EXPECT_THAT(read("d.svg"), HasSubstr("<title>punch-paths.dxf: 1 path</title>"));
  const Ran ran = sh("tarnex sim punch.3b -o p.svg --speed 1e5 --dark --size 100x80");
  EXPECT_EQ(ran.code, 0) << ran.out;
  expectWellFormed("p.svg");
  // The wire comes nearer than the speed of the eye: nothing is compressed.
  EXPECT_THAT(ran.out, Not(HasSubstr("shown in")));
  EXPECT_THAT(read("p.svg"), HasSubstr("rate = 1,"));
  // At 60 mm/min more than a minute of cutting is shown in a minute.
  EXPECT_THAT(sh("tarnex sim punch.3b -o slow.svg").out, HasSubstr("shown in 1:00 min"));
  EXPECT_THAT(read("slow.svg"), HasSubstr("last = 60.000000"));
  EXPECT_THAT(sh("tarnex sim punch.3b -o real.svg --real-time").out, Not(HasSubstr("shown in")));
}

// Twice the delay, twice the time.
TEST_F(Sim, TheDelayIsThatOfTheSegments) {
  const auto seconds = [&](const std::string& delay) {
    EXPECT_EQ(sh("tarnex sim punch-paths.dxf -o d.svg --delay " + delay).code, 0);
    const std::string text = read("d.svg");
    const auto at = text.find("last = ");
    return at == std::string::npos ? 0.0 : std::stod(text.substr(at + 7));
  };
  const double one = seconds("1000");
  EXPECT_GE(one, 1);
  EXPECT_NEAR(seconds("2000"), 2 * one, 1e-5);
}

TEST_F(Sim, WhatCannotBeShownIsSaid) {
  const Ran plain = sh("tarnex sim punch.dxf -o no.svg");
  EXPECT_EQ(plain.code, 1);
  EXPECT_THAT(plain.out, HasSubstr("punch.dxf: holds no paths"));
  write("empty.3b", "// nothing\n");
  write("words.3b", "N 1: words\n");
  EXPECT_EQ(sh("tarnex sim empty.3b -o no.svg").code, 1);
  EXPECT_EQ(sh("tarnex sim words.3b -o no.svg").code, 3);
  for (const char* missing : {"missing.3b", "missing.dxf"})
    EXPECT_EQ(sh(std::string("tarnex sim ") + missing + " -o no.svg").code, 3) << missing;
  for (const char* wrong : {"punch.3b --delay 40", "punch-paths.dxf --speed 60", "punch.3b --speed 0",
                            "punch.3b --size 10", "punch.3b --size 0x5", "punch-paths.dxf --delay=-1"})
    EXPECT_EQ(sh(std::string("tarnex sim ") + wrong + " -o no.svg").code, 2) << wrong;
  EXPECT_EQ(sh("tarnex sim punch.3b").code, 2);
  EXPECT_FALSE(there("no.svg"));
  EXPECT_EQ(sh("tarnex sim punch.3b -o nowhere/deep/no.svg").code, 1);
}

TEST_F(Sim, ScriptsWaitUnlessTheyAreToldNotTo) {
  write("sim.scr", "SIM\n\n30000\n\n");  // half a minute for each span
  const auto from = std::chrono::steady_clock::now();
  for (const char* line :
       {"tarnex run sim.scr punch-paths.dxf --no-wait", "tarnex --no-wait run sim.scr punch-paths.dxf",
        "tarnex --no-wait punch-paths.dxf < sim.scr"}) {
    const Ran ran = sh(line);
    EXPECT_EQ(ran.code, 0) << line << ran.out;
    EXPECT_THAT(ran.out, Not(HasSubstr("Path 1"))) << "nothing extra where nobody looks";
  }
  EXPECT_LT(std::chrono::steady_clock::now() - from, std::chrono::seconds(20));
  EXPECT_NE(sh("timeout -s KILL 2 " TARNEX_BINARY_DIR "/bin/tarnex run sim.scr punch-paths.dxf").code, 0);
}

}  // namespace

}  // namespace tarnex
