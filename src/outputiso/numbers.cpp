// Digits of coordinates.
// Knows no machine.
#include "outputiso/numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "host/platform/format.h"
#include "output3b/segment.h"

namespace tarnex {

namespace {

// Beyond these, a double no longer holds every count; such a drawing is no part that a machine cuts.
constexpr double kMostCount = 9007199254740992.0;  // 2^53
// Below this many steps, the double nearest to steps / power shows exactly the steps' digits when it is
// printed with as many decimals: it is off by less than half a step.
constexpr double kExactSteps = 4503599627370496.0;  // 2^52

constexpr std::array<double, kMostDecimals + 1> kPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The micrometres that are printed; what is no number counts as none.
long long micrometres(double mm) {
  const double count = round1000(mm);
  return std::isnan(count) ? 0 : static_cast<long long>(std::clamp(count, -kMostCount, kMostCount));
}

unsigned long long magnitude(long long v) {
  return v < 0 ? 0ULL - static_cast<unsigned long long>(v) : static_cast<unsigned long long>(v);
}

// Written from the last digit to the first.
class Digits {
 public:
  void put(char c) { *--at_ = c; }
  // At least `least` of them.
  void putWhole(unsigned long long v, int least) {
    for (; v != 0 || least > 0; v /= 10, --least) put(static_cast<char>('0' + v % 10));
  }
  [[nodiscard]] std::string_view text() const { return {at_, static_cast<std::size_t>(end() - at_)}; }

 private:
  [[nodiscard]] const char* end() const { return room_ + sizeof room_; }
  char room_[48];
  char* at_ = room_ + sizeof room_;
};

void appendSigned(std::string& text, double mm) {
  Digits digits;
  digits.putWhole(magnitude(micrometres(mm)), 6);
  digits.put(mm < 0.0 ? '-' : '+');
  text += digits.text();
}

void appendInteger(std::string& text, double mm) {
  const long long n = micrometres(mm);
  Digits digits;
  digits.putWhole(magnitude(n), 1);
  if (n < 0) digits.put('-');
  text += digits.text();
}

void cutZeros(std::string& text) {
  text.erase(text.find_last_not_of('0') + 1);
}

// Where whole numbers aren't exact.
void appendByPattern(std::string& text, double v, int decimals) {
  if (std::floor(v) >= v) {
    text += formatted("%.0f.", v);
    return;
  }
  std::string number = formatted("%.*f", decimals, v);
  cutZeros(number);
  text += number;
}

void appendDecimal(std::string& text, double mm, int decimals) {
  const double power = kPowers[static_cast<std::size_t>(decimals)];
  const double steps = std::floor(power * mm + (decimals == 3 ? 0.5 : 0.0));
  if (!(std::abs(steps) < kExactSteps)) return appendByPattern(text, steps / power, decimals);
  auto left = magnitude(static_cast<long long>(steps));
  int places = left == 0 ? 0 : decimals;
  for (; places > 0 && left % 10 == 0; --places) left /= 10;
  Digits digits;
  for (; places > 0; --places, left /= 10) digits.put(static_cast<char>('0' + left % 10));
  digits.put('.');
  digits.putWhole(left, 1);
  if (steps < 0.0) digits.put('-');
  text += digits.text();
}

}  // namespace

void appendNumber(std::string& text, double mm, NumberStyle style) {
  switch (style.kind) {
    case NumberStyle::Kind::kSigned:
      return appendSigned(text, mm);
    case NumberStyle::Kind::kInteger:
      return appendInteger(text, mm);
    case NumberStyle::Kind::kDecimal:
      return appendDecimal(text, mm, std::clamp(style.decimals, 0, kMostDecimals));
  }
}

}  // namespace tarnex
