// Coordinates as text: values worked out by hand, the same digits as printf, and read back within the
// rounding.
#include "outputiso/numbers.h"

#include <cstdio>

#include "isotest.h"
#include "output3b/segment.h"

namespace tarnex {
namespace {

using Kind = NumberStyle::Kind;

std::string text(double mm, NumberStyle style) {
  std::string out;
  appendNumber(out, mm, style);
  return out;
}

TEST(Number, EachStyle) {
  struct Case {
    double mm;
    NumberStyle style;
    const char* text;
  };
  const NumberStyle sign{Kind::kSigned}, whole{Kind::kInteger};
  const auto decimal = [](int d) { return NumberStyle{Kind::kDecimal, d}; };
  for (const Case& c :
       {Case{1.5, sign, "+001500"},      {-0.25, sign, "-000250"},
        {0.0, sign, "+000000"},          {-0.0, sign, "+000000"},
        {-0.0004, sign, "-000000"},      {0.0005, sign, "+000001"},  // halves upward
        {-0.0005, sign, "-000000"},                                  // also below zero: floor(-0.5 + 0.5)
        {1234.5678, sign, "+1234568"},   {1.5, whole, "1500"},
        {-0.25, whole, "-250"},          {-0.0004, whole, "0"},
        {0.0001, decimal(3), "0."},      {-0.0001, decimal(3), "0."},
        {1.5, decimal(3), "1.5"},        {12.0, decimal(3), "12."},
        {100.0, decimal(3), "100."},     {0.1239, decimal(3), "0.124"},
        {-0.25, decimal(3), "-0.25"},    {0.0001, decimal(4), "0.0001"},
        {0.00019, decimal(4), "0.0001"}, {-0.00001, decimal(4), "-0.0001"},  // cut towards minus infinity
        {1.239, decimal(2), "1.23"},     {-1.231, decimal(2), "-1.24"},
        {10.0, decimal(2), "10."},       {7.9, decimal(0), "7."},
        {-7.1, decimal(0), "-8."},       {0.5, decimal(-3), "0."},  // held to 0 and to 22
        {0.5, decimal(99), "0.5"}})
    EXPECT_EQ(text(c.mm, c.style), c.text) << c.mm;
}

TEST(Number, ThePostSaysWhichStyle) {
  // Family 5 goes first, whole micrometres only for "1".
  const auto shown = [](int family, const char* units, const char* decimals) {
    return isoWith(family, {{4, units}, {10, decimals}}).formatNumber(1.25);
  };
  EXPECT_EQ(shown(5, "1", "3"), "+001250");
  EXPECT_EQ(shown(1, "1", "3"), "1250");
  EXPECT_EQ(shown(1, "2", "3"), "1.25");
  EXPECT_EQ(shown(-1, "", "1"), "1.2");
  EXPECT_EQ(shown(0, "x", "many"), "1.");
}

// The styles as printf patterns, step by step.
std::string byPrintf(double mm, NumberStyle style) {
  char room[512];
  if (style.kind != Kind::kDecimal) {
    const auto n = static_cast<long long>(std::floor(mm * 1000.0 + 0.5));
    if (style.kind == Kind::kInteger) std::snprintf(room, sizeof room, "%lld", n);
    if (style.kind == Kind::kSigned && mm < 0) std::snprintf(room, sizeof room, "-%06lld", -n);
    if (style.kind == Kind::kSigned && mm >= 0) std::snprintf(room, sizeof room, "+%06lld", n);
    return room;
  }
  const double p = std::pow(10.0, style.decimals), r = style.decimals == 3 ? 0.5 : 0.0;
  const double v = std::floor(p * mm + r) / p;
  if (v == 0.0) return "0.";
  if (std::floor(v) >= v) {
    std::snprintf(room, sizeof room, "%.0f.", v);
    return room;
  }
  std::snprintf(room, sizeof room, "%.*f", style.decimals, v);
  std::string out = room;
  while (out.back() == '0') out.pop_back();
  return out;
}

// Coordinates of drawings, values on and beside the limits of rounding, and numbers of any size.
double someValue(std::mt19937_64& random) {
  const auto upTo = [&](double most) { return std::uniform_real_distribution<double>(-most, most)(random); };
  switch (random() % 4) {
    case 0:
      return upTo(1000);
    case 1:
      return std::floor(upTo(1e6)) / std::pow(10.0, static_cast<double>(random() % 6));
    case 2: {
      const double half = (std::floor(upTo(1e5)) + 0.5) / std::pow(10.0, static_cast<double>(random() % 7));
      return std::nextafter(half, half + static_cast<double>(random() % 3) - 1);
    }
    default:
      return upTo(1) * std::pow(10.0, static_cast<double>(random() % 13) - 3);
  }
}

TEST(Number, HasTheDigitsThatPrintfGivesAndReadsBack) {
  std::mt19937_64 random(41);
  for (int i = 0; i < rounds(60000, 20000000); ++i) {
    const double mm = someValue(random);
    NumberStyle style{static_cast<Kind>(random() % 3), static_cast<int>(random() % 8)};
    if (random() % 8 == 0) style.decimals = static_cast<int>(random() % (kMostDecimals + 1));
    const std::string shown = text(mm, style);
    ASSERT_EQ(shown, byPrintf(mm, style)) << mm;
    const double step = style.kind == Kind::kDecimal ? std::pow(10.0, -style.decimals) : 0.001;
    const double noise = 1e-14 * (std::abs(mm) + 1);
    const double off = mm - readNumber(shown, style.kind != Kind::kDecimal);
    const bool rounds = style.kind != Kind::kDecimal || style.decimals == 3;
    ASSERT_GE(off, (rounds ? -step / 2 : 0.0) - noise) << shown;
    ASSERT_LE(off, (rounds ? step / 2 : step) + noise) << shown;
  }
}

TEST(Number, HoldsWhatNoMachineReaches) {
  EXPECT_EQ(text(1e300, {Kind::kInteger}), "9007199254740992");
  EXPECT_EQ(text(-1e300, {Kind::kSigned}), "-9007199254740992");
  EXPECT_EQ(text(std::nan(""), {Kind::kInteger}), "0");
}

// The head's heights are printed by the 3B program's function: the same but within a hair of halves.
TEST(Number, ThreeDecimalsAreOneStyleEverywhere) {
  std::mt19937_64 random(43);
  for (int i = 0; i < 2000; ++i) {
    const double mm = static_cast<double>(static_cast<long long>(random() % 4000001) - 2000000) / 4000;
    EXPECT_EQ(formatFixed3(mm + 1e-5), text(mm + 1e-5, {Kind::kDecimal, 3})) << mm;
  }
}

}  // namespace
}  // namespace tarnex
