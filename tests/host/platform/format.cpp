// The checked formatter against the C library's printf, hostile patterns, and numbers as text.
#include "host/platform/format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

namespace tarnex {
namespace {

int rounds() {
  return std::getenv("TARNEX_LONG") ? 3'000'000 : 30'000;
}

class Patterns {
 public:
  int below(int n) { return static_cast<int>(random_() % n); }
  std::string next(std::string_view letters, std::string_view flags, const char* length) {
    std::string pattern = "%";
    for (char flag : flags)
      if (below(3) == 0) pattern += flag;
    if (below(2)) pattern += std::to_string(1 + below(24));
    if (below(2)) pattern += "." + (below(8) ? std::to_string(below(24)) : std::string());
    return pattern + length + letters[below(static_cast<int>(letters.size()))];
  }
  long long integer() {
    const auto bits = static_cast<long long>(random_());
    return below(6) == 0 ? below(3) - 1 : bits >> below(64);
  }
  double real() {
    switch (below(5)) {
      case 0:
        return 0.001 * (below(2'000'000) - 1'000'000);
      case 1:
        return (below(2) ? 1 : -1) * std::ldexp(1.0 + below(1000) / 8.0, below(80) - 40);
      case 2:
        return below(200) / 8.0 - 10;  // ties at the last digit shown
      case 3: {
        const unsigned long long bits = random_();  // any double there is
        double v = 0;
        std::memcpy(&v, &bits, sizeof v);
        return v;
      }
      default:
        return std::vector{0.0, -0.0, 1e300, -5e-324, 99999.95, 0.0001, 1e5, 999999.5}[below(8)];
    }
  }

 private:
  std::mt19937_64 random_{20261};
};

template <class T>
std::string printed(const std::string& pattern, T value) {
  char room[1024];
  std::snprintf(room, sizeof room, pattern.c_str(), value);
  return room;
}

// "%#g" by the C standard's own words: style e or f, whichever the exponent X asks for. (glibc 2.36 loses the
// zeros of a number that rounds up to a power of ten, so it can't be the judge.)
std::string alternateGeneral(int precision, double v) {
  const int digits = precision == 0 ? 1 : precision;
  const auto asE = formatted("%#.*e", digits - 1, v);
  if (!std::isfinite(v)) return asE;
  const int x = std::atoi(asE.c_str() + asE.find('e') + 1);
  return x < -4 || x >= digits ? asE : formatted("%#.*f", digits - 1 - x, v);
}

TEST(FormatChecked, AlternateGeneralKeepsItsZeros) {
  Patterns random;
  for (int i = 0; i < rounds() / 10; ++i) {
    const int precision = random.below(24);
    const double v = random.real();
    ASSERT_EQ(formatChecked(formatted("%%#.%dg", precision), {v}), alternateGeneral(precision, v))
        << precision << " of " << formatted("%a", v);
  }
}

TEST(FormatChecked, PrintsAsTheCLibraryDoes) {
  Patterns random;
  for (int i = 0; i < rounds(); ++i) {
    const auto wide = random.next("diuxXo", "-+ #0", "ll");
    const long long v = random.integer();
    ASSERT_EQ(formatChecked(wide, {v}), printed(wide, v)) << wide << " of " << v;
    const auto narrow = random.next("diuxXo", "-+ #0", random.below(4) ? "" : random.below(2) ? "h" : "hh");
    const int n = static_cast<int>(v);
    ASSERT_EQ(formatChecked(narrow, {static_cast<long long>(n)}), printed(narrow, n))
        << narrow << " of " << n;
    const auto real = random.below(2) ? random.next("feEF", "-+ #0", "") : random.next("gG", "-+ 0", "l");
    const double d = random.real();
    ASSERT_EQ(formatChecked(real, {d}), printed(real, d)) << real << " of " << formatted("%a", d);
    const auto text = random.next("s", "-", "");
    const char* word = std::vector{"", "Vorn", "线切割", "a text of some length"}[random.below(4)];
    ASSERT_EQ(formatChecked(text, {word}), printed(text, word)) << text;
  }
}

TEST(FormatChecked, PlainTextAndSeveralArguments) {
  EXPECT_EQ(formatChecked("\nN%4d: %s", {7LL, "B  1"}), "\nN   7: B  1");
  EXPECT_EQ(formatChecked("100%% of %c%c", {65LL, 66LL}), "100% of AB");
  EXPECT_EQ(formatChecked("R%.3f, %d times", {0.0625, 3LL}),
            "R0.062, 3 times");  // a tie goes to the even digit
  EXPECT_EQ(formatChecked("", {}), "");
  EXPECT_EQ(formatChecked("%f", {std::numeric_limits<double>::max()}).size(), 309u + 1 + 6);
  EXPECT_EQ(formatChecked("%.512f|%512d", {5e-324, 1LL}).size(), 514u + 1 + 512);
}

TEST(FormatChecked, PatternThatDoesNotMatchStandsAsItIs) {
  const struct {
    const char* pattern;
    std::initializer_list<FormatArg> args;
  } cases[] = {
      {"%d of %d %%", {1LL}},
      {"%d %%", {1LL, 2LL}},
      {"none %%", {1.0}},
      {"%s", {1LL}},
      {"%d", {1.5}},
      {"%f", {"x"}},
      {"%n", {1LL}},
      {"%*d", {5LL, 1LL}},
      {"%.*f", {5LL, 1.0}},
      {"%1$d", {1LL}},
      {"%p", {1LL}},
      {"%a", {1.0}},
      {"%ls", {"x"}},
      {"%hf", {1.0}},
      {"50% and %d", {1LL}},
      {"%", {}},
      {"%d%", {1LL}},
      {"%5%", {}},
      {"%-", {1LL}},
      {"%.", {1LL}},
      {"%ll", {1LL}},
      {"%513d", {1LL}},
      {"%.513f", {1.0}},
      {"%99999999999999999999d", {1LL}},
      {"%.99999999999f", {1.0}},
      {"%'d", {1LL}},
      {"%d \xFF %k", {1LL}},
  };
  for (const auto& c : cases) EXPECT_EQ(formatChecked(c.pattern, c.args), c.pattern);
}

TEST(FormatChecked, HugePatternsCostTheirOwnSize) {
  std::string huge;
  for (int i = 0; i < 200'000; ++i) huge += "%512d";
  EXPECT_EQ(formatChecked(huge, {1LL, 2LL}), huge);
  bool known = false;
  EXPECT_EQ(conversionsOf(huge, known), std::string(200'000, 'i'));
  EXPECT_TRUE(known);
  EXPECT_EQ(formatChecked(std::string(1 << 20, '%'), {}), std::string(1 << 19, '%'));
  EXPECT_EQ(formatChecked("%" + std::string(1 << 20, '0') + "d", {7LL}), "7");
  EXPECT_EQ(formatChecked(std::string_view("a\0%d", 4), {7LL}), std::string("a\0007", 3));
}

// Any row of characters either has known conversions and is printed with such arguments, or stands as it is.
TEST(FormatChecked, AnyPatternIsPrintedOrStands) {
  const std::string_view letters = "%%%%0123456789.*-+ #'hlLqjztdiucxXofeEgGspnakm$";
  Patterns random;
  int printedOnes = 0;
  for (int i = 0; i < rounds(); ++i) {
    std::string pattern;
    for (int length = random.below(12); length > 0; --length)
      pattern += letters[random.below(static_cast<int>(letters.size()))];
    bool known = false;
    const auto kinds = conversionsOf(pattern, known);
    const auto kind = kinds.size() == 1 ? kinds[0] : 'i';
    const FormatArg arg = kind == 'f' ? FormatArg(1.5) : kind == 's' ? FormatArg("x") : FormatArg(7LL);
    const auto text = formatChecked(pattern, {arg});
    if (!known || kinds.size() != 1) {
      ASSERT_EQ(text, pattern);
    }
    if (text != pattern) ++printedOnes;
  }
  EXPECT_GT(printedOnes, rounds() / 20);
}

TEST(FormatChecked, ConversionsByKind) {
  bool known = false;
  EXPECT_EQ(conversionsOf("%s %5.2lf%% %c%x %-4d %g", known), "sfiiif");
  EXPECT_TRUE(known);
  EXPECT_EQ(conversionsOf("%d %n", known), "");
  EXPECT_FALSE(known);
  EXPECT_EQ(conversionsOf("no conversion, 100%%", known), "");
  EXPECT_TRUE(known);
}

TEST(Formatted, LongAndShortTexts) {
  EXPECT_EQ(formatted("%.3f|%s|%d", 1.5, "x", -3), "1.500|x|-3");
  const std::string text(5000, 'y');
  EXPECT_EQ(formatted("<%s>", text.c_str()), "<" + text + ">");
}

TEST(Numbers, WholeTextIsANumberOrNothingIsSet) {
  const struct {
    const char* text;
    double value;
  } good[] = {{"1.5", 1.5},  {" +2\t", 2}, {"-.5", -0.5}, {"5.", 5},       {"1e3\r\n", 1000},
              {"1E-2", .01}, {"-0", -0.0}, {"007", 7},    {"1e-400", 0.0}, {"4.9e-324", 5e-324}};
  for (const auto& c : good) {
    double v = 77;
    EXPECT_TRUE(parseNumber(c.text, v)) << c.text;
    EXPECT_EQ(v, c.value) << c.text;
    EXPECT_EQ(std::signbit(v), std::signbit(c.value)) << c.text;
  }
  for (const char* text : {"", " ", "+", "-", ".", "1,5", "1 2", "nan", "inf", "-inf", "1e999", "0x10", "+-1",
                           "--1", "1d5", "1e", "e5", "1.5mm"}) {
    double v = 77;
    EXPECT_FALSE(parseNumber(text, v)) << text;
    EXPECT_EQ(v, 77) << text;
  }
}

TEST(Numbers, Integers) {
  long long v = 77;
  EXPECT_TRUE(parseInteger("\t-9223372036854775808 ", v));
  EXPECT_EQ(v, LLONG_MIN);
  EXPECT_TRUE(parseInteger("+12", v));
  EXPECT_EQ(v, 12);
  for (const char* text : {"", "9223372036854775808", "1.0", "+-1", "1 1", "0x1", "-"})
    EXPECT_FALSE(parseInteger(text, v)) << text;
  EXPECT_EQ(v, 12);
}

TEST(Numbers, ShortestTextReadsBackTheSame) {
  EXPECT_EQ(shortestNumber(0.1), "0.1");
  EXPECT_EQ(shortestNumber(-25), "-25");
  Patterns random;
  for (int i = 0; i < 2000; ++i) {
    const double v = random.real();
    double back = 0;
    if (!std::isfinite(v)) continue;
    ASSERT_TRUE(parseNumber(shortestNumber(v), back)) << shortestNumber(v);
    ASSERT_EQ(back, v);
  }
}

}  // namespace
}  // namespace tarnex
