// Programs compared: what a user reads of the difference, and that it is one that makes the one into the
// other. Knows unified diffs by a reader of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <random>
#include <vector>

#include "exchange/programdiff.h"

namespace tarnex {
namespace {

std::string lines(const std::vector<std::string>& all) {
  std::string text;
  for (const auto& line : all) text += line + "\n";
  return text;
}

std::vector<std::string> parted(const std::string& text) {
  std::vector<std::string> all;
  for (std::size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
    all.push_back(text.substr(at, end - at));
  return all;
}

// A diff laid on a program; every line that it says stands there has to stand there.
std::vector<std::string> patched(const std::vector<std::string>& before, const std::string& diff) {
  std::vector<std::string> after;
  std::size_t at = 0;
  for (const auto& line : parted(diff)) {
    if (line.starts_with("@@ -")) {
      std::size_t first = 0;
      std::from_chars(line.data() + 4, line.data() + line.size(), first);
      if (line.find(",0 +") == std::string::npos) --first;  // an empty side stands behind its line
      while (at < std::min(first, before.size())) after.push_back(before[at++]);
    } else if (line[0] == '+') {
      after.push_back(line.substr(1));
    } else {
      EXPECT_TRUE(at < before.size() && before[at] == line.substr(1)) << line;
      if (line[0] == ' ') after.push_back(line.substr(1));
      ++at;
    }
  }
  after.insert(after.end(), before.begin() + static_cast<std::ptrdiff_t>(std::min(at, before.size())),
               before.end());
  return after;
}

// The longest common subsequence by its table.
std::size_t commonLines(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  std::vector<std::vector<std::size_t>> best(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 1; i <= a.size(); ++i)
    for (std::size_t j = 1; j <= b.size(); ++j)
      best[i][j] = a[i - 1] == b[j - 1] ? best[i - 1][j - 1] + 1 : std::max(best[i - 1][j], best[i][j - 1]);
  return best[a.size()][b.size()];
}

TEST(ProgramDiff, ShowsChangesInTheirPlace) {
  // Changes seven lines apart have a head each, nearer ones share it: line 2 replaced, one line more behind
  // line 5; line 13 is gone.
  const std::string before = lines({"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13"});
  const std::string after = lines({"1", "two", "3", "4", "5", "more", "6", "7", "8", "9", "10", "11", "12"});
  const auto diff = compareProgram(before, after);
  EXPECT_EQ(diff.text,
            "@@ -1,8 +1,9 @@\n 1\n-2\n+two\n 3\n 4\n 5\n+more\n 6\n 7\n 8\n@@ -10,4 +11,3 @@\n 10\n 11\n "
            "12\n-13\n");
  EXPECT_EQ(diff.removed, 2u);
  EXPECT_EQ(diff.added, 2u);
  EXPECT_EQ(diff.changed, 3u);
  EXPECT_EQ(compareProgram("", "M02\n").text, "@@ -0,0 +1,1 @@\n+M02\n");
  EXPECT_EQ(compareProgram("M02\n", "").text, "@@ -1,1 +0,0 @@\n-M02\n");
}

TEST(ProgramDiff, DatesAndTimesAreNoChange) {
  // V18 pads the day with a blank.
  const std::string before = "N1(2026-09- 7 08:05:59)\nG01X12-34\nM02\n";
  EXPECT_EQ(compareProgram(before, "N1(2027-10-25 23:00:00)\nG01X12-34\nM02\n").text, "");
  EXPECT_EQ(compareProgram(before, "N1(2026-09- 7 08:05:59)\nG01X12-35\nM02\n").changed, 1u);
  EXPECT_EQ(compareProgram(before, "N2(2026-09- 7 08:05:59)\nG01X12-34\nM02\n").changed, 1u);
}

TEST(ProgramDiff, AnyTwoProgramsByTheFewestLines) {
  std::mt19937 random(5);
  for (int round = 0; round < 400; ++round) {
    const auto program = [&] {
      std::vector<std::string> all(random() % 25);
      for (auto& line : all) line = "G0" + std::to_string(random() % 5);
      return all;
    };
    const auto before = program(), after = program();
    const auto diff = compareProgram(lines(before), lines(after));
    const std::size_t common = commonLines(before, after);
    EXPECT_EQ(patched(before, diff.text), after) << diff.text;
    EXPECT_EQ(diff.removed, before.size() - common) << diff.text;
    EXPECT_EQ(diff.added, after.size() - common) << diff.text;
  }
}

TEST(ProgramDiff, LongProgramsOfWhichEveryLineHasChangedAreSummedUp) {
  std::string before = "%\n", after = "%\n";
  for (int i = 0; i < 200000; ++i) {
    before += "G01X" + std::to_string(i) + "\n";
    after += "G01X" + std::to_string(i) + ".\n";
  }
  before += "M02\n";
  after += "M30\nM02\n";
  const auto diff = compareProgram(before, after);
  EXPECT_TRUE(diff.isShortened);
  EXPECT_EQ(diff.text, "@@ -2,200000 +2,200001 @@\n-G01X0\n+G01X0.\n");
  EXPECT_EQ(diff.changed, 200001u);
  // A single one of them is found all the same.
  std::string other = before;
  other.replace(other.find("X99999\n"), 6, "X99998");
  EXPECT_EQ(compareProgram(before, other).changed, 1u);
}

}  // namespace
}  // namespace tarnex
