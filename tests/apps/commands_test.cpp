// Every command as a user types it: the scripts of samples/commands run to their end, what they leave is
// written as a program and proven, and the programs of the plain edits are those worked out by hand. Knows
// the programs' format; nothing of how they are made.
#include "apps/programtest.h"

#include <regex>
#include <sstream>

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Commands : public ProgramTest {
 protected:
  Commands() {
    std::filesystem::copy(TARNEX_SOURCE_DIR "/samples", folder + "/samples",
                          std::filesystem::copy_options::recursive);
  }

  // Runs a sample's script, saves the drawing, and writes NAME.3b when `program`.
  Ran runSample(const std::string& name, bool program) {
    std::string script = read("samples/commands/" + name + ".scr");
    script += "plot " + name + ".svg\n\n\nsaveas " + name + "-after.dxf\n";
    if (program) script += "SET bAskFileName 1\nBB\n\n" + folder + "/" + name + ".3b\n";
    write(name + ".scr", script);
    std::filesystem::remove_all(folder + "/install");
    std::filesystem::create_directories(folder + "/install");
    return sh("tarnex --no-wait run " + name + ".scr");
  }

  // What the blocks say, one after another: "28500 GX L1", "4500 GX NR1", with the taper word between; texts
  // as they stand.
  std::vector<std::string> blocksOf(const std::string& name) {
    static const std::regex line(
        R"(N *\d+: (?:B *\d+ B *\d+ B *(?:\d+ B *)?(\d+) (G[XY]) +(D+ )?([A-Z]+\d) ;|(.*)))");
    std::vector<std::string> blocks;
    std::istringstream in(read(name + ".3b"));
    for (std::string text; std::getline(in, text);) {
      if (!text.empty() && text.back() == '\r') text.pop_back();
      std::smatch m;
      if (!std::regex_match(text, m, line)) continue;
      blocks.push_back(m[5].length() ? m[5].str()
                                     : m[1].str() + " " + m[2].str() + " " + m[3].str() + m[4].str());
    }
    return blocks;
  }
};

using Blocks = std::vector<std::string>;

Blocks operator+(Blocks a, const Blocks& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The part is 40 by 30 with a hole of radius 6 about (12,14); the wire runs 0.5 mm beside it.
// The hole: from (14,14) to (17.5,14), round with radius 5.5 in quarters, and back.
const Blocks kHole = {"3500 GX L1", "5500 GX NR1", "5500 GY NR2", "5500 GX NR3", "5500 GY NR4", "3500 GX L3"};
// From (14,14) to the outer path's threading point (12,-4): 2 to the left, 18 down.
const Blocks kMove = {"18000 GY L3"};
// The outer shape from (12,-4): corners at (40.5,-0.5), (40.5,14.5), (24.5,14.5), the arc about (20,26) with
// radius 4.5,
// (-0.5,30.5), (-0.5,-0.5).
const Blocks kOuter = {"3500 GY L2",  "28500 GX L1", "15000 GY L2", "16000 GX L3", "11500 GY L2",
                       "4500 GX NR1", "20500 GX L3", "31000 GY L4", "12500 GX L1", "3500 GY L4"};

TEST_F(Commands, ProgramsOfPlainEdits) {
  const std::pair<const char*, Blocks> cases[] = {
      // The other way round: each block back.
      {"CD", kHole + kMove +
                 Blocks{"3500 GY L2", "12500 GX L3", "31000 GY L2", "20500 GX L1", "4500 GY SR1",
                        "11500 GY L4", "16000 GX L1", "15000 GY L4", "28500 GX L3", "3500 GY L4"}},
      // From (12,4), inside: corners at (39.5,0.5), (39.5,13.5), (23.5,13.5), radius 3.5, (0.5,29.5),
      // (0.5,0.5).
      {"CM",
       kHole + Blocks{"10000 GY L3", "3500 GY L4", "27500 GX L1", "13000 GY L2", "16000 GX L3", "12500 GY L2",
                      "3500 GX NR1", "19500 GX L3", "29000 GY L4", "11500 GX L1", "3500 GY L2"}},
      // The outer path first; from (12,-4) back to the hole.
      {"CS", kOuter + Blocks{"18000 GY L1"} + kHole},
      // The edge at x = 40 stands at 42.
      {"DB", kHole + kMove +
                 Blocks{"3500 GY L2", "30500 GX L1", "15000 GY L2", "18000 GX L3", "11500 GY L2",
                        "4500 GX NR1", "20500 GX L3", "31000 GY L4", "12500 GX L1", "3500 GY L4"}},
      // 3 mm into the part between x = 28 and 36; the wire runs 0.5 mm inside the step's walls.
      {"AC", kHole + kMove +
                 Blocks{"3500 GY L2", "16500 GX L1", "3000 GY L2", "7000 GX L1", "3000 GY L4", "5000 GX L1",
                        "15000 GY L2", "16000 GX L3", "11500 GY L2", "4500 GX NR1", "20500 GX L3",
                        "31000 GY L4", "12500 GX L1", "3500 GY L4"}},
      // Behind the blocks that end at (40,0) and at (24,14).
      {"WZ",
       kHole + kMove +
           Blocks{"3500 GY L2", "28500 GX L1", "M00", "15000 GY L2", "16000 GX L3", "M00", "11500 GY L2",
                  "4500 GX NR1", "20500 GX L3", "31000 GY L4", "12500 GX L1", "3500 GY L4"}},
      // From (46,20) by (46,-6) to (14,14).
      {"QD", Blocks{"26000 GY L4", "32000 GX L2"} + kHole + kMove + kOuter},
      // From (12,-4) to (46,-6) and (46,20).
      {"ZD", kHole + kMove + kOuter + Blocks{"34000 GX L4", "26000 GY L2"}},
      {"QZ", kHole + kMove + kOuter},
      {"u", kHole + kMove + kOuter},
      {"XD0", kHole + kMove + kOuter},
      {"SR0", kHole + kMove + kOuter},
  };
  for (const auto& [name, blocks] : cases) {
    SCOPED_TRACE(name);
    const Ran ran = runSample(name, true);
    ASSERT_EQ(ran.code, 0) << ran.out;
    const Ran proof = sh(std::string("tarnex check ") + name + ".3b --drawing " + name + "-after.dxf");
    EXPECT_EQ(proof.code, 0) << proof.out;
    EXPECT_EQ(blocksOf(name), blocks);
  }
}

// Programs whose numbers aren't worked out here are proven against the drawing.
TEST_F(Commands, ProgramsOfEditedPathsAreProven) {
  for (const char* name : {"BP", "BP", "BM", "XD", "CX", "SR", "AF1", "AF2", "AF3", "AF4", "AF5", "AF6",
                           "SIM", "SV", "Vorn", "move", "rotate", "mirror", "redo"}) {
    SCOPED_TRACE(name);
    const Ran ran = runSample(name, true);
    ASSERT_EQ(ran.code, 0) << ran.out;
    const Ran proof = sh(std::string("tarnex check ") + name + ".3b --drawing " + name + "-after.dxf");
    EXPECT_EQ(proof.code, 0) << proof.out;
    EXPECT_THAT(proof.out, HasSubstr(" 0 faults"));
  }
  // An ear passes its corner twice, and no wire can: the command says so, and so does the proof.
  const Ran ears = runSample("AF7", true);
  EXPECT_EQ(ears.code, 0);
  EXPECT_THAT(ears.out, HasSubstr("Path 2 now meets itself at 40,0"));
  EXPECT_EQ(sh("tarnex check AF7.3b --drawing AF7-after.dxf").code, 1);
}

TEST_F(Commands, OthersRunToTheirEnd) {
  std::size_t plotted = 0;
  for (const char* name : {"QQ", "fx", "s2p", "e2p", "scc", "AJ", "AJ1"}) {
    SCOPED_TRACE(name);
    const Ran ran = runSample(name, false);
    EXPECT_EQ(ran.code, 0) << ran.out;
    EXPECT_THAT(ran.out, Not(HasSubstr("did not ask")));
    plotted += count(read(std::string(name) + ".svg"), "</svg>");
  }
  EXPECT_EQ(plotted, 7u);
  // The two contours are back, and no path stands.
  EXPECT_EQ(count(read("QQ-after.dxf"), "CIRCLE"), 1);
  EXPECT_EQ(count(read("QQ-after.dxf"), "CToolPath of"), 0);
}

TEST_F(Commands, TheJournalReadsAsItWasTyped) {
  EXPECT_THAT(runSample("XD", false).out,
              HasSubstr("Command: XD 1.5 40,7\nTaper 1.5: pick a segment or type a value: \n"));
  EXPECT_THAT(runSample("SIM", false).out, HasSubstr("Line of length 28. Enter for the next or [Quick]:"));
  EXPECT_THAT(runSample("CX", false).out, HasSubstr("Taper 2 of whole paths: pick a path"));
}

}  // namespace

}  // namespace tarnex
