// Code pages and profile files.
#include <gmock/gmock.h>

#include <climits>
#include <cstdlib>
#include <random>

#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "host/platform/profile.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;

// Codes from the tables of the standards: 指 is D6B8 in GB and ABFC in Big5, 令 is C1EE and A54F, € is 80 in
// 1252.
TEST(CodePage, BothWays) {
  const struct {
    const char *page, *bytes, *utf8;
  } cases[] = {
      {"GB18030", "\xD6\xB8\xC1\xEE 1", "指令 1"},
      {"GBK", "\xD6\xB8", "指"},
      {"BIG5", "\xAB\xFC\xA5\x4F|", "指令|"},
      {"CP1252", "5 \x80", "5 €"},
      {"UTF-8", "指", "指"},
      {"GB18030", "plain \\ ~", "plain \\ ~"},
  };
  for (const auto& c : cases) {
    bool damaged = true, lossy = true;
    EXPECT_EQ(toUtf8(c.bytes, c.page, &damaged), c.utf8) << c.page;
    EXPECT_EQ(fromUtf8(c.utf8, c.page, &lossy), c.bytes) << c.page;
    EXPECT_FALSE(damaged || lossy) << c.page;
  }
  EXPECT_EQ(fromUtf8("a指", "UTF-16LE"), std::string_view("a\0\x07\x63", 4));
  EXPECT_TRUE(isKnownCodePage("BIG5"));
  EXPECT_FALSE(isKnownCodePage("NOSUCHPAGE"));
  EXPECT_FALSE(isKnownCodePage(""));
}

TEST(CodePage, WhatHasNoCounterpartIsMarked) {
  bool damaged = false, lossy = false;
  EXPECT_EQ(toUtf8("a\xFF"
                   "b\xD6",
                   "GB18030", &damaged),
            "a\uFFFDb\uFFFD");
  EXPECT_TRUE(damaged);
  EXPECT_EQ(toUtf8("\xE6\x8C"
                   "A",
                   "UTF-8", &damaged),
            "\uFFFD\uFFFDA");
  EXPECT_TRUE(damaged);
  EXPECT_EQ(toUtf8("a\xD6\xB8", "NOSUCHPAGE", &damaged), "a\uFFFD\uFFFD");
  EXPECT_TRUE(damaged);
  EXPECT_EQ(fromUtf8("5 € 指!", "BIG5", &lossy), "5 \xA3\xE1 \xAB\xFC!");
  EXPECT_EQ(fromUtf8("é指\xFF!", "CP1252", &lossy),
            "\xE9?"
            "?!");
  EXPECT_TRUE(lossy);
  EXPECT_EQ(fromUtf8("x\U0001F600y", "BIG5", &lossy), "x?y");
  // Longer than the converter's own room, with the bad byte across its border.
  const std::string many = std::string(1023, 'x') + "\xD6";
  EXPECT_EQ(toUtf8(many + "\xFF" + many, "GB18030").size(), 2 * 1023 + 3u * 3);
}

TEST(CodePage, Utf8IsToldFromTheRest) {
  for (const char* good : {"", "abc", "指é", "\U0010FFFF", "\uFFFD"}) EXPECT_TRUE(isUtf8(good)) << good;
  // Cut off, alone, too long for what it says, a surrogate, above the last character.
  for (const char* bad : {"\xE6\x8C", "\x80", "\xC0\xAF", "\xE0\x80\xAF", "\xF0\x80\x80\xAF", "\xED\xA0\x80",
                          "\xF4\x90\x80\x80", "\xFF", "\xC1\xEE"})
    EXPECT_FALSE(isUtf8(bad)) << bad;
}

constexpr std::string_view kMachines =
    "before = any section\r\n"
    "[Main]\r\n"
    "Ver=3\r\n"
    "; a comment = not a key\r\n"
    "1 = \"  Vorn  \"\r\n"
    "no equals sign\r\n"
    "2='Kestrel'\r"
    "1=later\n"
    "[ pause ]\n"
    "1=D = D\n"
    "empty=\n"
    "[broken\n"
    "2=still pause\n"
    "[MAIN]\n"
    "3=third";

TEST(Profile, LooksUpAsTheOriginalsAreMeant) {
  const auto p = Profile::parse(kMachines);
  EXPECT_EQ(p.stringOf("main", "1", ""), "  Vorn  ");
  EXPECT_EQ(p.stringOf("Main", "2", ""), "Kestrel");
  EXPECT_EQ(p.stringOf("Main", "3", ""), "third");
  EXPECT_EQ(p.stringOf("PAUSE", "1", ""), "D = D");
  EXPECT_EQ(p.stringOf("Pause", "2", ""), "still pause");
  EXPECT_EQ(p.stringOf("Pause", "EMPTY", "fallback"), "");
  EXPECT_EQ(p.stringOf("Pause", "missing", "fallback"), "fallback");
  EXPECT_EQ(p.stringOf("Pause", "2", "", 6), "still");
  EXPECT_EQ(p.stringOf("Pause", "2", "", 0), "");
  EXPECT_THAT(p.keysOf("main"), ElementsAre("Ver", "1", "2", "1", "3"));
  EXPECT_THAT(p.find("main", "VER"), Optional(std::string_view("3")));
  EXPECT_EQ(p.find("main", "4"), std::nullopt);
}

TEST(Profile, LeadingIntegers) {
  const auto p = Profile::parse(
      "[a]\n1=12abc\n2=-7.9\n3=+5\n4=abc\n5=\n6=99999999999999999999\n7=-2147483648\n8=-99999999999");
  const int expected[] = {12, -7, 5, 0, 0, INT_MAX, INT_MIN, INT_MIN};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(p.intOf("A", std::to_string(i + 1), 77), expected[i]) << i + 1;
  EXPECT_EQ(p.intOf("A", "9", 77), 77);
}

TEST(Profile, WrittenTextReadsBackTheSame) {
  auto p = Profile::parse(kMachines);
  p.set("MAIN", "ver", "4");
  p.set("Send", "Port", " 7 ");
  p.set("pause", "quoted", "\"x\"");
  p.set("pause", "lines", "a\nb");
  const auto back = Profile::parse(p.text());
  EXPECT_EQ(back.text(), p.text());
  for (const char* section : {"", "Main", "Pause", "Send"})
    EXPECT_EQ(back.keysOf(section), p.keysOf(section)) << section;
  EXPECT_EQ(back.intOf("Main", "Ver", 0), 4);
  EXPECT_EQ(back.stringOf("Main", "1", ""), "  Vorn  ");
  EXPECT_EQ(back.stringOf("Send", "Port", ""), " 7 ");
  EXPECT_EQ(back.stringOf("Pause", "quoted", ""), "\"x\"");
  EXPECT_EQ(back.stringOf("Pause", "lines", ""), "a b");
}

TEST(Profile, ForeignBytes) {
  EXPECT_EQ(Profile::parse("\xEF\xBB\xBF[a]\nk=v").stringOf("a", "k", ""), "v");
  const std::string_view utf16("\xFF\xFE[\0a\0]\0\n\0k\0=\0\x07\x63", 16);
  EXPECT_EQ(Profile::parse(utf16).stringOf("a", "k", ""), "指");
  EXPECT_EQ(Profile::parse(std::string_view("[a]\nk=\0\xFF", 8)).stringOf("a", "k", ""),
            std::string_view("\0\xFF", 2));
  EXPECT_EQ(Profile::load("/no/such/file").text(), "");
  std::string hostile;
  for (int i = 0; i < 100'000; ++i) hostile += "[[[]\n===\n";
  EXPECT_EQ(Profile::parse(hostile).keysOf("[[").size(), 100'000u);
}

// Lines of pieces that mean something to the reader, in any order: nothing is lost by writing, and it ends.
TEST(Profile, AnyTextWrittenReadsBackTheSame) {
  const char* pieces[] = {"[",  "]", "=", ";", "\n", "\r", " ",        "\t",
                          "\"", "'", "a", "B", "12", "-",  "\xD6\xB8", ""};
  std::mt19937 random(7);
  const int rounds = std::getenv("TARNEX_LONG") ? 1'000'000 : 5'000;
  for (int i = 0; i < rounds; ++i) {
    std::string text;
    for (int length = static_cast<int>(random() % 60); length > 0; --length) text += pieces[random() % 16];
    const auto p = Profile::parse(text);
    const auto back = Profile::parse(p.text());
    ASSERT_EQ(back.text(), p.text()) << text;
    for (const char* section : {"", "a", "B", "aB", "12"}) {
      ASSERT_EQ(back.keysOf(section), p.keysOf(section)) << text;
      for (const auto& key : p.keysOf(section))
        ASSERT_EQ(back.find(section, key), p.find(section, key)) << text;
    }
  }
}

}  // namespace
}  // namespace tarnex
