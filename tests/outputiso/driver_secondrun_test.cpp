// The second run: line numbers, texts around lines, long lines, and what the family of signed units gets.
// Knows a program as text; every expected line is worked out from the words before it.
#include "outputiso/secondrun.h"

#include <algorithm>

#include "outputiso/isotest.h"

namespace tarnex {
namespace {

constexpr int kPlainFamily = 2;

IsoPost numbering(const std::string& format, int family = kPlainFamily) {
  IsoPost iso = isoWith(family, {});
  iso.post.lineFormat = format;
  iso.post.paramOn[8] = 1;
  return iso;
}

TEST(SecondRun, NumbersEveryLineBehindItsStroke) {
  const std::string first = "%\n/G01X1.Y1.\n\n//M0\n(V)";
  EXPECT_EQ(finishProgram(numbering("N%03d"), first), "N001%\n/N002G01X1.Y1.\nN003\n/N004M0\nN005(V)\n");
  EXPECT_EQ(finishProgram(numbering("N%3d "), first), "N  1 %\n/N  2 G01X1.Y1.\nN  3 \n/N  4 M0\nN  5 (V)\n");
  EXPECT_EQ(finishProgram(numbering("%-4d"), "A\n"), "1   A\n");
  EXPECT_EQ(finishProgram(numbering("%s"), "A\n"), "%sA\n");  // no format of a number
  EXPECT_EQ(finishProgram(numbering(""), first), "%\n/G01X1.Y1.\n\n/M0\n(V)\n");
  EXPECT_EQ(finishProgram(isoWith(kPlainFamily, {}), "//M0\nX+000000\n"), "//M0\nX+000000\n");
}

// Digits of the format's own text, places filled with blanks or zeros, and every carry to a thousand and
// more.
TEST(SecondRun, CountsOnThroughEveryCarry) {
  const struct {
    const char *format, *ahead;
    char fill;
    std::size_t places;
    const char* behind;
  } cases[] = {{"N%03d ", "N", '0', 3, " "},
               {"N%3d9", "N", ' ', 3, "9"},
               {"9%d", "9", ' ', 0, ""},
               {"9%04d09", "9", '0', 4, "09"},
               {"%d", "", ' ', 0, ""}};
  for (const auto& c : cases) {
    std::string first, expected;
    for (int i = 1; i <= 11000; ++i) {
      const std::string digits = std::to_string(i);
      first += "A\n";
      expected += c.ahead + std::string(c.places - std::min(c.places, digits.size()), c.fill) + digits +
                  c.behind + "A\n";
    }
    EXPECT_TRUE(finishProgram(numbering(c.format), first) == expected) << c.format;
  }
}

TEST(SecondRun, PutsTextsAheadOfAndBehindTheLine) {
  IsoPost iso = numbering("N%d");
  iso.post.param[2] = "<";
  iso.post.param[3] = ">";
  EXPECT_EQ(finishProgram(iso, "A\n/B\n"), "N1A\n/N2B\n");  // neither is switched on
  iso.post.paramOn[2] = iso.post.paramOn[3] = 1;
  EXPECT_EQ(finishProgram(iso, "A\n/B\n"), "<N1A>\n</N2B>\n");
  iso.post.nFamily = kFamilySignedUnits;
  EXPECT_EQ(finishProgram(iso, "A\n"), "<%N001M63>\n<N2A>\n");
}

TEST(SecondRun, PartsLongLines) {
  const IsoPost iso = numbering("%d:");
  const auto as = [](std::size_t n) { return std::string(n, 'a'); };
  EXPECT_EQ(finishProgram(iso, as(253) + "\n"), "1:" + as(253) + "\n");
  // Read up to its last character, a line leaves its end to be read as an empty one.
  EXPECT_EQ(finishProgram(iso, as(254) + "\n"), "1:" + as(254) + "\n2:\n");
  EXPECT_EQ(finishProgram(iso, as(254)), "1:" + as(254) + "\n");
  EXPECT_EQ(finishProgram(iso, as(255) + "\n"), "1:" + as(254) + "\n2:a\n");
  EXPECT_EQ(finishProgram(iso, as(508) + "\n"), "1:" + as(254) + "\n2:" + as(254) + "\n3:\n");
  EXPECT_EQ(finishProgram(iso, as(253) + "程\n"), "1:" + as(253) + "\n2:程\n");  // no half characters
}

TEST(SecondRun, IsTheSameInPiecesOfAnySize) {
  IsoPost iso = numbering("N%04d", kFamilySignedUnits);
  std::string first;
  for (int i = 0; i < 40; ++i) first += "G01X+000000Y+00" + std::to_string(1000 + i) + "\n/G44\n\n";
  const std::string whole = finishProgram(iso, first);
  for (std::size_t size : {1u, 2u, 7u, 64u}) {
    SecondRun run(iso);
    std::string out;
    for (std::size_t at = 0; at < first.size(); at += size) run.feed(first.substr(at, size), out);
    run.finish(out);
    EXPECT_EQ(out, whole) << size;
    EXPECT_EQ(run.lines(), 121) << "with the opening line";
  }
}

TEST(SecondRun, LeavesOutZeroWords) {
  const struct {
    const char *line, *wanted;
  } cases[] = {
      {"X+000000Y+001000", "X+000000Y+001000"},  // at the start it stays
      {"G01X+000000Y+001000", "G01Y+001000"},
      {"G01X+001000Y+000000", "G01X+001000"},
      {"X+000000Y+000000", "X+000000"},
      {"Y+000000X+000000", "Y+000000"},
      {"G01X-000000Y-000000", "G01X-000000Y-000000"},  // the minus form goes behind a start that stays alone
      {"X+000000Y+001000X-000000", "X+000000Y+001000"},
      {"G03X+000000Y+002000I+000000J+001000", "G03Y+002000I+000000J+001000"},
  };
  IsoPost iso = isoWith(kFamilySignedUnits, {});
  for (const auto& c : cases)
    EXPECT_EQ(finishProgram(iso, std::string(c.line) + "\n"), std::string("%N001M63\n") + c.wanted + "\n");
  // Other families have no such words.
  EXPECT_EQ(finishProgram(isoWith(1, {}), "G01X+000000Y+000000G44\n"), "G01X+000000Y+000000G44\n");
}

TEST(SecondRun, GivesAnOpenFirstBlockTheWayOfTheLastMove) {
  const struct {
    const char *before, *vector;
  } cases[] = {
      {"M0", "X+000000Y-001000"},  // nothing has moved
      {"G01X+000000Y+002000", "X+000000Y+001000"},
      {"G01X+000000Y-002000", "X+000000Y-001000"},
      {"G01X+002000Y+000000", "X+001000Y+000000"},
      {"G01X-002000Y+000000", "X-001000Y+000000"},
      {"G01X+003000Y+004000", "X+000600Y+000800"},  // cos and sin of atan(4/3)
      {"G01X-003000Y+004000", "X+000600Y-000800"},  // of atan(-4/3): the arc tangent knows no left side
      // From (10000, 0) the point (5000, 0) lies at 180 degrees: less a quarter turn 90, and 270 with one.
      {"G02X+010000Y+000000I+005000J+000000", "X+000000Y+001000"},
      {"G03X+010000Y+000000I+005000J+000000", "X+000000Y-001000"},
      // From (0, 4000) the point (3000, 0): the way (3, -4)/5, a quarter turn left of it (4, 3)/5.
      {"G03X+000000Y+004000I+003000J+000000", "X+000800Y+000600"},
      {"G03X+000000Y+004000I+003000J+000000\nM05", "X+000800Y+000600"},  // no word: the last ones stand
      {"G03X+000000Y+004000I+003000J+000000\nG01X+002000", "X+001000Y+000000"},
  };
  IsoPost iso = isoWith(kFamilySignedUnits, {});
  for (const auto& c : cases) {
    const std::string out = finishProgram(iso, std::string(c.before) + "\nG01X+000000Y+000000G44\n");
    EXPECT_EQ(out.substr(out.rfind("G01X")), std::string("G01") + c.vector + "G44\n") << c.before;
  }
}

// After a connecting move a word that equals the last cut's but not where the wire stands is written.
TEST(ConnectingMove, HidesNoWordOfModalOutput) {
  IsoPost iso = isoWith(kPlainFamily, {{5, "1"}});
  const ProcessStyle style;
  EXPECT_EQ(iso.segmentWords({{0, 0}, {5, 5}}, style), "G01X5.Y5.");
  EXPECT_EQ(iso.moveWords({20, 5}, {5, 5}), "X20.Y5.");
  iso.nModalG = 0;
  EXPECT_EQ(iso.segmentWords({{20, 5}, {5, 5}}, style), "G01X5.");  // y is where it was all the time
  EXPECT_EQ(iso.segmentWords({{5, 5}, {5, 6}}, style), "Y6.");
}

}  // namespace
}  // namespace tarnex
