// The file of auto fix, byte for byte, whole, older, cut off and damaged.
// Knows its layout from a table of its own.
#include "frame/autofix.h"

#include <cmath>
#include <random>

#include "frame/environment.h"
#include "support/bytes.h"

namespace tarnex {
namespace {

class AutoFixFile : public InFolder {};

constexpr const char* kSizes[] = {
    "dRound1",       "dNotchDepth", "dNotchWidth", "dRound2Against", "dRound2With", "dRound3", "dCircleReach",
    "dCircleRadius", "dEntryDepth", "dEntryWidth", "dSpikeLen",      "dSpikeAngle", "dEarLen"};
constexpr double kDefaults[] = {0.2, 0.5, 0.4, 0.2, 0.4, 0.2, 0.5, 0.4, 0.2, 0.4, 0.2, 45, 0.2};

std::string recordOf(int version, int kind, const std::vector<double>& sizes) {
  Bytes file;
  file.i32(version).i32(kind);
  for (double size : sizes) file.real(size);
  return file.s;
}

// Sizes that no default is: 1.5, 2.5, ...
std::vector<double> ownSizes() {
  std::vector<double> sizes;
  for (std::size_t i = 0; i < std::size(kSizes); ++i) sizes.push_back(1.5 + static_cast<double>(i));
  return sizes;
}

double valueOf(const AutoFixSettings& record, const char* field) {
  return std::stod(record.textOf(field).value_or("-1"));
}

TEST_F(AutoFixFile, AMissingFileGivesTheDefaults) {
  std::string cause = "something";
  const AutoFixSettings fresh = AutoFixLoad(folder, &cause);
  EXPECT_EQ(cause, "");
  EXPECT_EQ(fresh.nKind, 1);
  ASSERT_TRUE(fresh.save());
  EXPECT_EQ(read("AutoFix.set"), recordOf(103, 1, {std::begin(kDefaults), std::end(kDefaults)}));
  EXPECT_EQ(read("AutoFix.set").size(), 112u);
}

// Sizes 8 and 9 came with version 101, 10 and 11 with 102, 12 with 103.
TEST_F(AutoFixFile, OlderFilesGainWhatTheyLack) {
  const std::pair<int, std::size_t> versions[] = {{-5, 8},   {100, 8},  {101, 10},
                                                  {102, 12}, {103, 13}, {250, 13}};
  for (const auto& [version, own] : versions) {
    write("AutoFix.set", recordOf(version, 6, ownSizes()));
    const AutoFixSettings record = AutoFixLoad(folder);
    EXPECT_EQ(record.nVersion, 103);
    EXPECT_EQ(record.nKind, 6);
    for (std::size_t i = 0; i < std::size(kSizes); ++i)
      EXPECT_EQ(valueOf(record, kSizes[i]), i < own ? ownSizes()[i] : kDefaults[i]) << version << kSizes[i];
  }
}

TEST_F(AutoFixFile, CutOffAtAnyByteIsReadAsFarAsItGoesAndTold) {
  const std::string whole = recordOf(103, 4, ownSizes());
  for (std::size_t keep = 0; keep <= whole.size(); ++keep) {
    const std::string cut = whole.substr(0, keep);
    write("AutoFix.set", cut);
    std::string cause;
    const AutoFixSettings record = AutoFixLoad(folder, &cause);
    EXPECT_EQ(record.nKind, keep < 8 ? 1 : 4) << keep;
    for (std::size_t i = 0; i < std::size(kSizes); ++i)
      EXPECT_EQ(valueOf(record, kSizes[i]), keep < 16 + 8 * i ? kDefaults[i] : ownSizes()[i])
          << keep << kSizes[i];
    EXPECT_EQ(read("AutoFix.set"), cut);
    if (keep == whole.size())
      EXPECT_EQ(cause, "");
    else
      EXPECT_EQ(cause, folder + "/AutoFix.set: holds " + std::to_string(keep) +
                           " of 112 bytes; the missing values keep their defaults");
  }
}

TEST_F(AutoFixFile, SaysWhichSizeIsNone) {
  const double nan = std::nan(""), inf = HUGE_VAL;
  const struct {
    std::size_t at;
    double value;
    bool usable;
  } cases[] = {{0, 0, true},      {0, -0.001, false}, {1, nan, false},    {2, 1e300, false},
               {12, inf, false},  {4, 1000, true},    {4, 1000.1, false}, {11, -360, true},
               {11, -361, false}, {11, nan, false},   {8, -inf, false},   {9, 5e-324, true}};
  for (const auto& c : cases) {
    auto sizes = ownSizes();
    sizes[c.at] = c.value;
    write("AutoFix.set", recordOf(103, 99, sizes));
    const auto field = AutoFixLoad(folder).unusableField();
    EXPECT_EQ(field.value_or("none"), c.usable ? "none" : kSizes[c.at]) << c.value;
  }
}

TEST_F(AutoFixFile, SetsFieldsByNameAndRefusesWhatIsNoNumber) {
  AutoFixSettings record(folder);
  std::string error;
  EXPECT_TRUE(record.setFromText("dEarLen", "0.35", error));
  EXPECT_EQ(record.dEarLen, 0.35);
  EXPECT_FALSE(record.setFromText("dEarLen", "nan", error));
  EXPECT_EQ(error, "dEarLen: \"nan\" is not a number");
  EXPECT_FALSE(record.setFromText("nKind", "2.5", error));
  EXPECT_EQ(error, "nKind: \"2.5\" is not a whole number");
  EXPECT_FALSE(record.setFromText("nVersion", "99", error));
  EXPECT_FALSE(record.setFromText("dLeadLen", "1", error));
  EXPECT_EQ(error, "dLeadLen: there is no such setting");
  EXPECT_EQ(record.dEarLen, 0.35);
}

TEST_F(AutoFixFile, AnyBytesLoadAndSaveAgain) {
  std::mt19937 random(75);
  const int rounds = environment("TARNEX_LONG") ? 20000 : 40;
  for (int i = 0; i < rounds; ++i) {
    std::string file(random() % 130, '\0');
    for (char& c : file) c = static_cast<char>(random() % 3 ? random() : 0);
    write("AutoFix.set", file);
    ASSERT_TRUE(AutoFixLoad(folder).save());
    const std::string first = read("AutoFix.set");
    EXPECT_EQ(first.size(), 112u);
    ASSERT_TRUE(AutoFixLoad(folder).save());
    EXPECT_EQ(read("AutoFix.set"), first) << "round " << i;
  }
}

}  // namespace
}  // namespace tarnex
