// The texts of answers and the keywords that they find.
#include "host/editor/answers.h"

#include <gmock/gmock.h>

#include <cmath>

#include "host/editor/keywords.h"
#include "host/editor/terminal.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using Frame = PointText::Frame;

TEST(Answers, PointsInEveryNotation) {
  struct Case {
    const char* text;
    Frame frame;
    AcGePoint3d value;
  };
  // 2<90 lies straight up; 2<30 at (2 cos 30°, 2 sin 30°) = (√3, 1).
  const Case cases[] = {{"10,20", Frame::kUser, {10, 20, 0}},
                        {"-1.5,+.25", Frame::kUser, {-1.5, .25, 0}},
                        {"1,2,3", Frame::kUser, {1, 2, 3}},
                        {" 1e1,2E-1 ", Frame::kUser, {10, .2, 0}},
                        {"*10,20", Frame::kWorld, {10, 20, 0}},
                        {"@1,-2", Frame::kRelative, {1, -2, 0}},
                        {"@", Frame::kRelative, {0, 0, 0}},
                        {"@2<90", Frame::kRelative, {0, 2, 0}},
                        {"2<30", Frame::kUser, {std::sqrt(3.0), 1, 0}}};
  for (const auto& c : cases) {
    const auto p = parsePoint(c.text);
    ASSERT_TRUE(p) << c.text;
    EXPECT_EQ(p->frame, c.frame) << c.text;
    EXPECT_NEAR(p->value.distanceTo(c.value), 0, 1e-12) << c.text;
  }
}

TEST(Answers, WhatIsNoPoint) {
  for (const char* text : {"", "*", "10", "10,", ",10", "1,2,3,4", "a,b", "nan,1", "inf,0", "1e13,0",
                           "0,-1e300", "0x1,2", "1,2x", "@1", "2<", "<3", "1;2", "10.5.5,1"})
    EXPECT_FALSE(parsePoint(text)) << text;
  EXPECT_TRUE(parsePoint("1e12,0"));
}

TEST(Answers, Handles) {
  ASSERT_TRUE(parseHandle("&1F"));
  EXPECT_EQ(parseHandle("&1f")->handle, 31u);
  const auto picked = parseHandle("&A*1.5,2,3");
  ASSERT_TRUE(picked && picked->at);
  EXPECT_EQ(*picked->at, (AcGePoint3d{1.5, 2, 3}));
  for (const char* text : {"&", "1F", "&0", "&G", "&1F*", "&1F*5", "&-1", "&1FFFFFFFFFFFFFFFF"})
    EXPECT_FALSE(parseHandle(text)) << text;
}

// What a command gets from another command is the very same number.
TEST(Answers, ValuesReadBackTheSame) {
  for (const double v : {0.1, 1.0 / 3, -123456.789012345, 5e-300, 99999.99999999999}) {
    EXPECT_EQ(parseReal(realText(v)), v);
    EXPECT_EQ(parsePoint(worldPointText({v, -v, v}))->value, (AcGePoint3d{v, -v, v}));
  }
  EXPECT_EQ(handleText(0xABC), "&ABC");
}

TEST(Answers, Numbers) {
  EXPECT_EQ(parseReal(" -2.5 "), -2.5);
  EXPECT_EQ(parseInt("12"), 12);
  for (const char* text : {"", ".", "1.5.2", "1 2", "2x", "nan", "infinity", "1e999", "--1"})
    EXPECT_FALSE(parseReal(text)) << text;
  for (const char* text : {"1.5", "2147483648", "x", ""}) EXPECT_FALSE(parseInt(text)) << text;
}

TEST(Answers, WordsOfALine) {
  std::string_view line = "  open  \"my plate.dxf\" 10, 20\t\"\" 5,6 ";
  std::vector<std::string> words;
  while (auto word = takeWord(line)) words.push_back(*word);
  EXPECT_THAT(words, ElementsAre("open", "my plate.dxf", "10,20", "", "5,6"));
  EXPECT_TRUE(line.empty());
}

TEST(Keywords, FoundWholeOrByTheirCapitals) {
  const auto words = parseKeywords("UNdo eXit CLose Close2 LAST last S 3P");
  struct Case {
    const char* answer;
    const char* keyword;  // "" for none
  };
  const Case cases[] = {
      {"un", "UNdo"},   {"UND", "UNdo"}, {"undo", "UNdo"}, {"u", ""},        {"undone", ""},   {"x", "eXit"},
      {"exit", "eXit"}, {"ex", ""},      {"cl", "CLose"},  {"c2", "Close2"}, {"last", "LAST"}, {"las", ""},
      {"s", "S"},       {"_s", "S"},     {"3p", "3P"},     {"3", ""},        {"", ""}};
  for (const auto& c : cases) EXPECT_EQ(matchKeyword(words, c.answer).value_or(""), c.keyword) << c.answer;
}

TEST(Completions, CandidatesAndWhatTheyShare) {
  const auto c = completionsOf({"CIRCLE", "circa", "COPY", "LINE"}, "ci");
  EXPECT_THAT(c.candidates, ElementsAre("CIRCLE", "circa"));
  EXPECT_EQ(c.common, "CIRC");
  EXPECT_TRUE(completionsOf({"LINE"}, "x").candidates.empty());
}

}  // namespace
}  // namespace tarnex
