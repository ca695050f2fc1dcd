// The catalogue's byte layout, against files worked out by hand and against the rule played on a file handle.
// Knows no language.
#include "frame/tgf.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

namespace tarnex {
namespace {

std::string bytes(std::initializer_list<int> values) {
  std::string out;
  for (const int v : values) out += static_cast<char>(v);
  return out;
}

// nSalt 1600, nBase 3: 3 + 1600 % 800 = 3 records, so texts begin at 8 + 3 * 8 = 32.
// "Hi" is 48 69, stored as its complement B7 96; "A" is 41, stored as BE.
const std::string kThreeRecords = bytes({0x40, 6,    0, 0,    3,  0, 0, 0,  //
                                         5,    0,    0, 0,    32, 0, 0, 0,  //
                                         7,    0,    0, 0,    35, 0, 0, 0,  //
                                         5,    0,    0, 0,    35, 0, 0, 0,  //
                                         0xB7, 0x96, 0, 0xBE, 0});

std::string withHeader(std::int32_t salt, std::int32_t base) {
  std::string file = kThreeRecords;
  std::memcpy(file.data(), &salt, 4);
  std::memcpy(file.data() + 4, &base, 4);
  return file;
}

TEST(Tgf, FindsTextsAndTakesTheFirstOfADoubledNumber) {
  EXPECT_EQ(lookUpTgf(kThreeRecords, 5), "Hi");
  EXPECT_EQ(lookUpTgf(kThreeRecords, 7), "A");
  EXPECT_EQ(lookUpTgf(kThreeRecords, 6), "");
  EXPECT_EQ(TgfIndex(kThreeRecords).lookUp(kThreeRecords, 5), "Hi");
  ASSERT_EQ(readTgfIndex(kThreeRecords).size(), 3u);
  EXPECT_EQ(tgfTextAt(kThreeRecords, readTgfIndex(kThreeRecords)[2].offset), "A");
}

TEST(Tgf, CountsRecordsAsTheRemainderOfTheSaltSays) {
  const struct {
    std::int32_t salt, base;
    std::size_t records;
  } cases[] = {
      {1600, 3, 3},        {0, 2, 2},
      {803, -1, 2},   // 803 % 800 = 3
      {-1601, 3, 2},  // the remainder keeps the sign: -1
      {799, -799, 0},      {0, -5, 0},
      {0, INT32_MAX, 3},                          // the file holds (37 - 8) / 8 = 3 records
      {799, INT32_MAX, 3}, {-799, INT32_MIN, 0},  // sums that leave 32 bits
  };
  for (const auto& c : cases)
    EXPECT_EQ(readTgfIndex(withHeader(c.salt, c.base)).size(), c.records) << c.salt << ' ' << c.base;
}

TEST(Tgf, WritesTheLayoutByteForByte) {
  // nSalt 1607, 1607 % 800 = 7, so nBase is 2 - 7 = -5. Texts begin at 8 + 2 * 8 = 24. "OK" is 4F 4B, stored
  // B0 B4.
  const auto file = writeTgf({{29, "OK"}, {20000, ""}});  // 20000 is 4E20
  ASSERT_TRUE(file);
  EXPECT_EQ(*file, bytes({0x47, 6, 0,    0,    0xFB, 0xFF, 0xFF, 0xFF, 29, 0, 0,    0,    24, 0,
                          0,    0, 0x20, 0x4E, 0,    0,    27,   0,    0,  0, 0xB0, 0xB4, 0,  0}));
}

TEST(Tgf, RefusesTextsThatALookupWouldCut) {
  EXPECT_FALSE(tgfTextFault(std::string(126, 'x')));
  EXPECT_EQ(tgfTextFault(std::string(127, 'x')), "the text takes 127 bytes, the limit is 126");
  EXPECT_FALSE(writeTgf({{1, std::string(127, 'x')}}));
  EXPECT_FALSE(writeTgf({{1, std::string("a\0b", 3)}}));
  EXPECT_FALSE(writeTgf({{1, "a\xFF"}})) << "FF is stored as 00";
}

TEST(Tgf, TakesAtMost127BytesAndStopsAtTheFilesEnd) {
  // One record (nSalt 0, nBase 1), the text at 16 without an end byte. "A" is stored as BE.
  const std::string head = bytes({0, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, 16, 0, 0, 0});
  EXPECT_EQ(lookUpTgf(head + std::string(200, '\xBE'), 9), std::string(127, 'A'));
  EXPECT_EQ(lookUpTgf(head + std::string(127, '\xBE'), 9), std::string(127, 'A'));
  EXPECT_EQ(lookUpTgf(head + std::string(3, '\xBE'), 9), "AAA");
  EXPECT_EQ(lookUpTgf(head, 9), "") << "the text begins where the file ends";
  // An offset of -1, and one that points back into the header: 00 there ends the text at once.
  EXPECT_EQ(lookUpTgf(bytes({0, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, 255, 255, 255, 255}), 9), "");
  EXPECT_EQ(lookUpTgf(bytes({0, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, 1, 0, 0, 0}), 9), "");
  EXPECT_EQ(lookUpTgf("", 9), "");
  EXPECT_EQ(lookUpTgf(bytes({0, 0, 0, 0, 1, 0, 0}), 9), "");
}

// The rule as it would be played on an open file: rewind, two numbers, the index in order, one seek, 127
// bytes.
std::string playedOnAFile(std::string file, std::int32_t id) {
  if (file.empty()) return "";
  std::FILE* f = fmemopen(file.data(), file.size(), "rb");
  std::int32_t salt = 0, base = 0, record[2];
  std::string text;
  if (std::fread(&salt, 4, 1, f) == 1 && std::fread(&base, 4, 1, f) == 1) {
    const long long count = static_cast<long long>(base) + salt % 800;
    for (long long i = 0; i < count && std::fread(record, 8, 1, f) == 1; ++i) {
      if (record[0] != id) continue;
      char buffer[128] = {};
      if (std::fseek(f, record[1], SEEK_SET) == 0) (void)!std::fread(buffer, 1, 127, f);
      for (std::size_t k = 0; buffer[k] != 0; ++k) text += static_cast<char>(~buffer[k]);
      break;
    }
  }
  std::fclose(f);
  return text;
}

TEST(Tgf, AnswersHostileFilesAsTheRuleDoes) {
  std::mt19937 random(20260811);
  const auto below = [&](std::uint32_t n) { return static_cast<std::int32_t>(random() % n); };
  const int rounds = std::getenv("TARNEX_LONG") ? 3'000'000 : 20'000;
  int found = 0;
  for (int round = 0; round < rounds; ++round) {
    std::string file(static_cast<std::size_t>(below(300)), '\0');
    for (char& c : file) c = static_cast<char>(below(4) == 0 ? below(256) : below(12));
    if (below(4) != 0 && file.size() >= 8) {  // mostly a count that leads somewhere
      const std::int32_t salt = below(3200) - 1600, base = below(40) - salt % 800;
      std::memcpy(file.data(), &salt, 4);
      std::memcpy(file.data() + 4, &base, 4);
    }
    for (std::size_t at = 8; at + 8 <= file.size() && below(20) != 0; at += 8) {
      const std::int32_t record[2] = {below(6), below(6) == 0 ? below(2000) - 1000 : below(400)};
      std::memcpy(file.data() + at, record, 8);
    }
    const TgfIndex index(file);
    for (std::int32_t id = -1; id < 8; ++id) {
      const std::string expected = playedOnAFile(file, id);
      ASSERT_EQ(lookUpTgf(file, id), expected) << "round " << round << ", number " << id;
      ASSERT_EQ(index.lookUp(file, id), expected) << "round " << round << ", number " << id;
      if (!expected.empty()) ++found;
    }
  }
  EXPECT_GT(found, rounds / 4) << "the files hold too few texts to test anything";
}

}  // namespace
}  // namespace tarnex
