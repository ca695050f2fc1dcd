// Which style a figure of an ISO job gets, what a job's user is told, and what ends it.
#include "apps/isoprogramtest.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class JobIsoChoice : public IsoProgramTest {
 protected:
  // Four squares side by side, each with a hole: the layers of both and the colour of the square.
  void squares() {
    std::string all;
    for (int i = 0; i < 4; ++i) {
      const std::string layer = i % 2 == 0 ? "EVEN" : "ODD";
      std::string outline = square(40 * i, 0, 20, layer);
      if (i < 2)
        for (std::size_t at = 0; (at = outline.find("\n10\n", at)) != std::string::npos; at += 10)
          outline.insert(at, "\n62\n3");
      all += outline + circle(40 * i + 10, 10, 2, layer);
    }
    drawing("four.dxf", all);
  }
  static std::string styles(const std::vector<std::string>& names) {
    std::string all;
    for (std::size_t i = 0; i < names.size(); ++i)
      all += "[[style]]\nname = \"" + names[i] + "\"\npass = [ { offset = 0.1, offset_number = \"0" +
             std::to_string(i + 11) + "\", condition = \"01\" } ]\n";
    return all;
  }
};

TEST_F(JobIsoChoice, TheFirstRuleThatFitsAndTheJobsFirstStyleWhereNoneDoes) {
  squares();
  struct Case {
    std::string rules, told;
    int numbers[3];  // how often the program has the offset numbers of A, B and C
    std::string without;
  };
  const Case cases[] = {
      {"", "figures by style: A: 8\n", {8, 0, 0}, "fits no figure"},
      {rule("B", "figure = \"hole\""), "figures by style: A: 4, B: 4\n", {4, 4, 0}, "fits no figure"},
      {rule("B", "layer = \"odd\""), "by the job's first style, A", {4, 4, 0}, "fits no figure"},
      {rule("B", "layer = \"ODD\"\nfigure = \"outer\""), "A: 6, B: 2\n", {6, 2, 0}, "fits no figure"},
      // Two squares are green; a green one on ODD is taken by the rule before.
      {rule("B", "layer = \"ODD\"") + rule("C", "colour = 3"), "A: 3, B: 4, C: 1\n", {3, 4, 1}, "no figure"},
      {rule("C", "colour = 3") + rule("B", "layer = \"ODD\""), "A: 3, B: 3, C: 2\n", {3, 3, 2}, "no figure"},
      {rule("C", "") + rule("B", "figure = \"hole\""),
       "rule 2, for style B, fits no figure",
       {0, 0, 8},
       "first style"},
      {rule("B", "layer = \"ODDER\""), "rule 1, for style B, fits no figure", {8, 0, 0}, "warnings"},
  };
  for (const auto& c : cases) {
    write("job.toml", styles({"A", "B", "C"}) + c.rules);
    const Ran ran = sh("tarnex iso four.dxf -o f.nc --job job.toml");
    EXPECT_EQ(ran.code, 0) << c.rules;
    EXPECT_THAT(ran.out, HasSubstr(c.told)) << c.rules;
    EXPECT_THAT(ran.out, Not(HasSubstr(c.without))) << c.rules;
    const std::string program = read("f.nc");  // one pass each, and the tab goes on without a number
    EXPECT_EQ(count(program, "H011G01"), c.numbers[0]) << c.rules;
    EXPECT_EQ(count(program, "H012G01"), c.numbers[1]) << c.rules;
    EXPECT_EQ(count(program, "H013G01"), c.numbers[2]) << c.rules;
  }
}

TEST_F(JobIsoChoice, PathsThatCameWithAStyleTakeWhatTheJobsFileSaysOfIt) {
  ASSERT_EQ(sh("tarnex iso square.dxf -o s.nc --job two.toml --save saved.dxf").code, 0);
  write("thicker.toml", "[[style]]\nname = \"PART\"\npass = [ { offset = 0.3, offset_number = \"055\" } ]\n" +
                            rule("PART", ""));
  const Ran ran = sh("tarnex iso saved.dxf -o t.nc --job thicker.toml");
  EXPECT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(read("t.nc"), HasSubstr("H055=0.300"));
  EXPECT_EQ(count(read("t.nc"), "H055G01"), 1) << "one pass, and the tab without a way to it";
  EXPECT_THAT(ran.out, HasSubstr("figures by style: PART: 1, HOLE: 1"));
  EXPECT_THAT(ran.out, HasSubstr("style HOLE is none of the job's"));
}

TEST_F(JobIsoChoice, WhatAProgramLacksIsToldAndTheProgramStands) {
  struct Case {
    std::string job, told;
  };
  const std::string style = "[[style]]\nname = \"A\"\npass = [ { offset = 0.1, offset_number = \"011\", ";
  const Case cases[] = {
      {style + "condition = \"77\" } ]\n", "Style A: the conditions hold no line for C77."},
      {"thickness = 21.5\n" + style + "condition = \"01\" } ]\n",
       "the nearest there are SKD11, wire 0.2, thickness 20."},
      {"material = \"WOOD\"\n" + style + "condition = \"01\" } ]\n",
       "No conditions for WOOD, wire 0.2, thickness 5;"},
      {"[[style]]\nname = \"A\"\npass = [ { offset = 2.1 } ]\n",
       "contour at 12.000,10.000: too small for a wire offset of 2.100 mm, left out"},
      {"[[style]]\nname = \"A\"\nfit = -0.05\npass = [ { offset = 1.96 } ]\n",
       "too small for a wire offset of 2.010 mm, left out"},
      // The plate's style comes first, and so does the plate.
      {"order = \"style\"\n" + style + "condition = \"01\" } ]\n" + kStyles +
           rule("A", "figure = \"outer\"") + rule("HOLE", ""),
       "2 figures are cut before one that lies inside them"},
  };
  for (const auto& c : cases) {
    write("job.toml", c.job);
    const Ran ran = sh("tarnex iso square.dxf -o s.nc --job job.toml");
    EXPECT_EQ(ran.code, 0) << c.job << ran.out;
    EXPECT_THAT(ran.out, HasSubstr(c.told)) << c.job;
    EXPECT_THAT(read("s.nc"), HasSubstr("M02")) << c.job;
  }
}

// 20,000 of its 35,480 bytes: the block rows end within, nothing behind them is there.
TEST_F(JobIsoChoice, APostThatIsCutOffIsToldAndUsedAsFarAsItGoes) {
  sh("tarnex post list");  // makes the install folder
  const std::string whole = read("install/MZS/SODICK/SODICK.pc");
  ASSERT_EQ(whole.size(), 35480u);
  write("install/MZS/SODICK/Short.pc", whole.substr(0, 20000));
  const Ran ran = sh("tarnex iso square.dxf -o s.nc --machine SODICK/Short");
  EXPECT_EQ(ran.code, 0);
  EXPECT_THAT(ran.out,
              HasSubstr("MZS\\SODICK\\Short.pc: 20000 of 35480 bytes, missing is part of the block rows"));
}

// Sixty short spans: none of them takes a tab of 5 mm, and its perimeter of 18.8 has room for one.
TEST_F(JobIsoChoice, NoContourIsLostForWantOfAPlaceForItsTab) {
  std::string outline;
  for (int i = 0; i < 60; ++i) {
    const double a = 0.10471975511965978 * i, b = 0.10471975511965978 * (i + 1);
    outline += line(3 * std::cos(a), 3 * std::sin(a), 3 * std::cos(b), 3 * std::sin(b));
  }
  // A lens of two arcs, a part of 1.5 by 1.5, and a rounded bar whose straight sides are the first place.
  const std::string lens =
      "0\nLWPOLYLINE\n8\n0\n90\n2\n70\n1\n10\n20\n20\n0\n42\n0.3\n10\n26\n20\n0\n42\n0.3\n";
  const std::string bar =
      "0\nLWPOLYLINE\n8\n0\n90\n4\n70\n1\n10\n40\n20\n0\n42\n1\n10\n40\n20\n2\n42\n0\n10\n30\n20\n2\n42\n1\n1"
      "0\n30\n20\n"
      "0\n42\n0\n";
  drawing("many.dxf", outline + lens + bar + square(60, 0, 1.5));
  const Ran ran = sh("tarnex iso many.dxf -o m.nc --json --set dCutoffLen=0.1");
  EXPECT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(ran.out, HasSubstr("\"leftOut\": 0"));
  EXPECT_THAT(ran.out, HasSubstr("\"figures\": 4"));
  EXPECT_EQ(count(read("m.nc"), "M01"), 4) << "each part has its stop";
}

TEST_F(JobIsoChoice, FailuresSayWhatAndLeaveTheOldProgram) {
  write("bad.toml", "wire = \"a\"\n[[rule]]\nstyle = \"X\"\n");
  write("text.toml", "material = SKD11\n");
  drawing("empty.dxf", "");
  drawing("open.dxf", line(0, 0, 10, 0));
  ASSERT_EQ(sh("tarnex 3b punch.dxf -o p.3b --save fast.dxf").code, 0);
  write("s.nc", "old");
  std::filesystem::create_directories(folder + "/dir.nc");
  struct Case {
    std::string arguments;
    int code;
    std::string told;
  };
  const Case cases[] = {
      {"nowhere.dxf -o s.nc", 3, "nowhere.dxf: No such file"},
      {"two.toml -o s.nc", 3, "two.toml"},
      {"empty.dxf -o s.nc", 1, "empty.dxf: nothing to cut: the drawing is empty"},
      {"open.dxf -o s.nc", 1, "nothing to cut: 1 chains, none of them closed"},
      {"square.dxf -o s.nc --machine SODIK/SODICK", 2, "the nearest is SODICK/SODICK; there are DecimalSub/"},
      {"square.dxf -o s.nc --machine ../x", 2, "names no machine"},
      {"square.dxf -o s.nc --job bad.toml", 1,
       "bad.toml:1: wire: a number is meant\nbad.toml:2: rule: the job has no style \"X\""},
      {"square.dxf -o s.nc --job text.toml", 1, "text.toml:1: "},
      {"square.dxf -o s.nc --job none.toml", 3, "none.toml: No such file"},
      {"square.dxf -o s.nc --by part", 2, "part not in"},
      {"square.dxf -o s.nc --set sMaterial=WOOD", 1, "the job was refused: ProStyleDlg: sMaterial: \"WOOD\""},
      {"square.dxf -o s.nc --set dNothing=1", 2, "there is no such setting"},
      {"square.dxf -o dir.nc", 1, "the program was not written: "},
      {"square.dxf -o no/such/s.nc", 1, "the program was not written: "},
      {"punch.dxf -o s.nc --by pass", 1, "path 1: pass by pass an outer shape needs two passes"},
      {"punch.dxf -o s.nc --set nCutType=1", 1, "style ONEPASS has one"},
      {"fast.dxf -o s.nc", 1, "fast.dxf: none of its paths can be written: outer shapes"},
      {"square.dxf -o s", 2, "has an extension"},
      {"square.dxf punch.dxf -o s.nc", 2, "use --out-dir"},
  };
  for (const auto& c : cases) {
    const Ran ran = sh("tarnex iso " + c.arguments);
    EXPECT_EQ(ran.code, c.code) << c.arguments << "\n" << ran.out;
    EXPECT_THAT(ran.out, HasSubstr(c.told)) << c.arguments;
  }
  EXPECT_EQ(read("s.nc"), "old");
}

TEST_F(JobIsoChoice, ManyDrawingsOneOfWhichFails) {
  write("broken.dxf", "0\nSECTION\n2\nENT");
  const Ran ran =
      sh("tarnex iso punch.dxf broken.dxf square.dxf --out-dir nc --jobs 2 --machine MicronInc/MicronInc");
  EXPECT_EQ(ran.code, 3) << ran.out;
  EXPECT_THAT(ran.out, HasSubstr("broken.dxf"));
  // The post names the extension.
  const Ran names = sh("ls nc");
  EXPECT_EQ(names.out, "punch.nc\nsquare.nc\n");
  EXPECT_EQ(
      sh("tarnex iso square.dxf -o one.nc --machine MicronInc/MicronInc && cmp one.nc nc/square.nc").code, 0)
      << "one job doesn't influence another";
}

}  // namespace

}  // namespace tarnex
