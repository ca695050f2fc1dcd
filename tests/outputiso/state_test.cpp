// What a pass sets, what a new program forgets, and the numbers of offsets.
#include "isotest.h"
#include "outputiso/offsets.h"

namespace tarnex {
namespace {

TEST(Pass, WordsFollowDirectionSideAndKind) {
  struct Case {
    int direction, side, passDir, nCode;
    double taper;
    const char *compensation, *fourAxis, *taperWord;
  };
  // Compensation by the product of direction, side and pass; the taper's word by that times the taper.
  for (const Case& c : {Case{1, 1, 1, 700, 1, "G41", "L", "G51"},
                        {1, 1, -1, 700, 1, "G42", "R", "G52"},
                        {-1, 1, 1, 700, 1, "G42", "R", "G52"},
                        {-1, -1, 1, 700, -1, "G41", "L", "G52"},
                        {1, 1, 1, 700, 0, "G41", "L", "G52"},  // no taper counts as the other word
                        {1, 1, 1, 702, 1, "G42", "R", "G52"},  // holes of kind 2 and outer shapes of 3 swap
                        {1, 1, 1, 703, 1, "G41", "L", "G51"},
                        {1, -1, 1, 703, 0, "G41", "L", "G51"},
                        {1, -1, 1, 702, 1, "G42", "R", "G52"}}) {
    for (const int flags : {1, 9}) {
      IsoPost iso = isoWith(1, {{23, "G51"}, {24, "G52"}, {34, "L"}, {35, "R"}, {36, "O"}});
      ProcessStyle style;
      style.nCode = c.nCode;
      style.passOffset[2] = c.taper;
      iso.setPath({1, c.direction, c.side, flags, {}, style});
      iso.setPass(2, c.passDir);
      EXPECT_EQ(iso.post.word[1], flags == 9 ? c.fourAxis : c.compensation);
      EXPECT_EQ(iso.post.word[20], flags == 9 ? "O" : "G40");
      EXPECT_EQ(iso.post.word[5], c.taperWord);
      EXPECT_EQ(iso.nTaperSign, 0);
      iso.post.param[23] = "";
      iso.setPass(2, c.passDir);
      EXPECT_EQ(iso.post.word[5], "");
      EXPECT_EQ(iso.nTaperSign, c.passDir * c.direction == -1 ? 1 : -1);
    }
  }
}

std::string someProgram(IsoPost& iso) {
  iso.resetProgram();
  std::string text = iso.expand("V2V6V14V15V16#X1V22V105V106$", "\n");
  text += iso.block("", 2, "\n", kWholeRow);
  iso.setPath({7, -1, -1, 0, {3, 4}, {}});
  iso.setPass(2, -1);
  text += iso.taperChange({1.5, 0, false, 0, 0});
  iso.rowBase = 40;
  text += iso.block(iso.segmentWords({{3, 4}, {3, 4.5}, 0.5}, {}), 2, "\n", kWholeRow);
  return text + iso.block(iso.segmentWords({{3, 4}, {3, 8}}, {}), 2, "\n", kWholeRow);
}

TEST(Program, DoesNotDependOnTheProgramBeforeIt) {
  const IsoPost first =
      isoWith(1, {{4, "1"}, {5, "1"}, {23, "G51"}, {24, "G52"}}, {{0, "G91"}, {6, "A%.1f"}});
  const IsoPost second = isoWith(0, {{5, "1"}, {23, "G51"}, {24, "G52"}}, {{6, "B%.1f"}, {22, "N%d"}});
  IsoPost alone, after;
  alone.post = second.post;
  alone.post.blockRow[3 * 2] = "ROW2";
  alone.post.blockRow[3 * 42] = "ROW42";
  const MachinePost posted = alone.post;  // as it was loaded
  const std::string expected = someProgram(alone);
  after.post = first.post;
  EXPECT_NE(someProgram(after), expected);
  after.post = posted;
  EXPECT_EQ(someProgram(after), expected);
}

TEST(Offsets, NumbersAndTable) {
  ProcessStyle style;
  style.nPassLast = -1;  // two passes
  style.dValueA = 0.01;
  style.passes[0].dValue1 = 0.15;
  style.passes[1].dValue1 = 0.1255;
  style.passes[2].dValue1 = 0.12;
  const auto lines = [&](const SlotTexts& params, int nSide, int next) {
    return offsetLines(isoWith(1, params, {{2, "H"}}).post, style, nSide, next);
  };
  EXPECT_EQ(lines({}, 1, 1), "H000=0.140\nH001=0.116\n");  // the passes' own numbers, less the fit
  EXPECT_EQ(lines({}, -1, 1), "H000=0.160\nH001=0.136\n");
  EXPECT_EQ(lines({{4, "1"}}, 1, 1), "H000=140\nH001=116\n");
  EXPECT_EQ(lines({{7, "1"}}, 1, 8), "H008=0.140\nH009=0.116\n");
  EXPECT_EQ(lines({{7, "1"}, {22, "1"}}, 1, 8),
            "H008=0.140\nH009=0.116\nH010=0.130\n");  // tab: 0.12 and the fit
  EXPECT_EQ(lines({{7, "1"}, {22, "1"}}, -1, 8), "H008=0.160\nH009=0.136\n");

  // What V2 prints stands in the table; there is no record behind the tenth.
  style.nPassLast = 9;
  IsoPost iso = isoWith(1, {{6, "1"}, {7, "1"}, {22, "1"}}, {{2, "H"}});
  int inTable = 5, onPath = 5;
  const std::string table = offsetLines(iso.post, style, 1, inTable);
  numberOffsets(iso.post, style, 1, onPath);
  EXPECT_EQ(inTable, 15);
  EXPECT_EQ(onPath, 15);
  iso.setPath({1, 1, 1, 0, {}, style});
  for (int pass = 0; pass < kMostPasses; ++pass) {
    iso.setPass(pass, 1);
    EXPECT_NE(table.find(iso.expand("V2", "") + "="), std::string::npos) << pass;
  }
}

}  // namespace
}  // namespace tarnex
