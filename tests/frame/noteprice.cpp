// The two cost settings files, byte for byte.
// Knows their layout from tables of its own.
#include "frame/noteprice.h"

#include <cstring>
#include <random>

#include "frame/environment.h"

namespace tarnex {
namespace {

class NotePriceFile : public InFolder {};

void put(std::string& file, std::size_t at, std::int32_t v) {
  for (int i = 0; i < 4; ++i) file[at + i] = static_cast<char>(static_cast<std::uint32_t>(v) >> 8 * i);
}
void put(std::string& file, std::size_t at, const char* text) {
  file.replace(at, std::strlen(text), text);
}
// Bytes of a double that hex digits write highest first: 40.0 is 4044000000000000.
void put(std::string& file, std::size_t at, std::uint64_t bits) {
  for (int i = 0; i < 8; ++i) file[at + i] = static_cast<char>(bits >> 8 * i);
}

constexpr std::uint64_t k1 = 0x3FF0000000000000, k20 = 0x4034000000000000, k30 = 0x403E000000000000,
                        k40 = 0x4044000000000000;
constexpr std::uint64_t k0_07 = 0x3FB1EB851EB851EC, k0_007 = 0x3F7CAC083126E979, k0_0042 = 0x3F713404EA4A8C15,
                        k0_05 = 0x3FA999999999999A;

std::string freshMzs() {
  std::string file(120, '\0');
  put(file, 0, 100);
  put(file, 4, "KESTRIX CO.,LTD");
  put(file, 54, "Plate1");
  put(file, 94, "RMB");
  put(file, 104, k40);
  put(file, 112, 1);
  return file;
}

// What the steps put into a file of an older version.
void addKzsSteps(std::string& file, int version) {
  if (version < 101) {
    for (std::size_t at : {112u, 152u, 160u}) put(file, at, std::uint64_t{0});
    put(file, 120, 1);
    put(file, 128, k0_007);
    put(file, 136, k30);
    put(file, 144, k1);
  }
  if (version < 102) {
    put(file, 168, k0_0042);
    put(file, 176, k0_05);
  }
  if (version < 103) {
    file.replace(184, 12, "1" + std::string(11, '\0'));
    put(file, 196, 0);
  }
  if (version < 104)
    for (std::size_t at : {208u, 216u}) put(file, at, std::uint64_t{0});
  if (version < 105) file.replace(224, 24, "A" + std::string(23, '\0'));
}

std::string freshKzs() {
  std::string file(248, '\0');
  put(file, 0, 105);
  put(file, 4, 1);
  put(file, 8, 1);
  put(file, 24, k0_07);
  put(file, 32, k20);
  put(file, 56, "Fe");
  put(file, 104, k1);
  addKzsSteps(file, 0);
  return file;
}

TEST_F(NotePriceFile, MissingFilesGiveTheDefaults) {
  std::filesystem::create_directories(folder + "/MZS");
  std::filesystem::create_directories(folder + "/KZS");
  NotePriceMzs mzs;
  mzs.load(folder);
  ASSERT_TRUE(mzs.save(folder));
  EXPECT_EQ(read("MZS/NotePrice.set"), freshMzs());
  NotePriceKzs kzs;
  kzs.load(folder);
  ASSERT_TRUE(kzs.save(folder));
  EXPECT_EQ(read("KZS/NotePrice.set"), freshKzs());
}

TEST_F(NotePriceFile, TheFileUnderMzsIsAlwaysVersion100) {
  std::string file = freshMzs();
  put(file, 0, 77);
  put(file, 4, "Another company");
  put(file, 116, 5);  // nobody knows what it is; it is carried
  write("MZS/NotePrice.set", file);
  NotePriceMzs mzs;
  mzs.load(folder);
  EXPECT_EQ(mzs.sCompany, "Another company");
  EXPECT_EQ(mzs.dPrice, 40);
  ASSERT_TRUE(mzs.save(folder));
  put(file, 0, 100);
  EXPECT_EQ(read("MZS/NotePrice.set"), file);
}

TEST_F(NotePriceFile, OlderFilesUnderKzsGainWhatTheyLack) {
  for (int version : {0, 100, 101, 102, 103, 104, 105, 106}) {
    std::string file(248, '\x41');  // every byte, those of no field too, has a value of its own
    put(file, 0, version);
    write("KZS/NotePrice.set", file);
    NotePriceKzs kzs;
    kzs.load(folder);
    ASSERT_TRUE(kzs.save(folder));
    addKzsSteps(file, version);
    put(file, 0, std::max(version, 105));
    // Texts without room for their zero lose their last byte.
    for (std::size_t end : {64u, 196u, 248u})
      if (file[end - 1] == '\x41') file[end - 1] = '\0';
    EXPECT_EQ(read("KZS/NotePrice.set"), file) << version;
  }
}

TEST_F(NotePriceFile, AnyBytesLoadAndSaveAgain) {
  std::mt19937 random(51);
  const int rounds = environment("TARNEX_LONG") ? 20000 : 20;
  for (int i = 0; i < rounds; ++i) {
    std::string file(random() % 300, '\0');
    for (char& c : file) c = static_cast<char>(random() % 3 ? random() : 0);
    write("KZS/NotePrice.set", file);
    write("MZS/NotePrice.set", file);
    NotePriceKzs kzs;
    NotePriceMzs mzs;
    kzs.load(folder);
    mzs.load(folder);
    ASSERT_TRUE(kzs.save(folder));
    ASSERT_TRUE(mzs.save(folder));
    const std::string first = read("KZS/NotePrice.set");
    EXPECT_EQ(read("MZS/NotePrice.set").size(), 120u);
    kzs.load(folder);
    ASSERT_TRUE(kzs.save(folder));
    EXPECT_EQ(read("KZS/NotePrice.set"), first) << "round " << i;
    EXPECT_GE(first.size(), 248u);
  }
}

}  // namespace
}  // namespace tarnex
