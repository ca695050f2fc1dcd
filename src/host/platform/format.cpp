// The checked formatter: printf's conversions on arguments whose kinds are known.
// Knows no locale: digits and the decimal point are made here, the same for every user.
#include "host/platform/format.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace tarnex {
namespace {

constexpr int kMostColumns = 512;  // width and precision above this are no honest format
constexpr std::size_t kRoom =
    1100;  // 309 digits before the point, kMostColumns behind it, sign, point, exponent

enum class Length { none, tiny, small, wide, widest };  // "", hh, h, l, and ll j z t q L

struct Conversion {
  bool left = false, plus = false, blank = false, alternate = false, zeros = false;
  int width = 0, precision = -1;
  Length length = Length::none;
  char letter = 0, kind = 0;  // kind: 'i', 'f' or 's'
  std::size_t end = 0;        // behind the letter
};

bool takeFlag(Conversion& c, char letter) {
  switch (letter) {
    case '-':
      return c.left = true;
    case '+':
      return c.plus = true;
    case ' ':
      return c.blank = true;
    case '#':
      return c.alternate = true;
    case '0':
      return c.zeros = true;
    default:
      return false;
  }
}

// Digits from `at` on; -1 when they say more than kMostColumns.
int takeCount(std::string_view pattern, std::size_t& at) {
  int count = 0;
  for (; at < pattern.size() && pattern[at] >= '0' && pattern[at] <= '9'; ++at) {
    count = count * 10 + (pattern[at] - '0');
    if (count > kMostColumns) return -1;
  }
  return count;
}

Length takeLength(std::string_view pattern, std::size_t& at) {
  const auto rest = pattern.substr(at, 2);
  if (rest == "hh" || rest == "ll") {
    at += 2;
    return rest == "hh" ? Length::tiny : Length::widest;
  }
  if (rest.empty()) return Length::none;
  switch (rest[0]) {
    case 'h':
      ++at;
      return Length::small;
    case 'l':
      ++at;
      return Length::wide;
    case 'j':
    case 'z':
    case 't':
    case 'q':
    case 'L':
      ++at;
      return Length::widest;
    default:
      return Length::none;
  }
}

char kindOf(char letter, Length length) {
  switch (letter) {
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      return 'i';
    case 'c':
      return length == Length::none ? 'i' : 0;
    case 's':
      return length == Length::none ? 's' : 0;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
      return length == Length::tiny || length == Length::small ? 0 : 'f';
    default:
      return 0;
  }
}

// The conversion behind the '%' that stands before `at`.
std::optional<Conversion> readConversion(std::string_view pattern, std::size_t at) {
  Conversion c;
  while (at < pattern.size() && takeFlag(c, pattern[at])) ++at;
  c.width = takeCount(pattern, at);
  if (c.width < 0) return std::nullopt;
  if (at < pattern.size() && pattern[at] == '.') {
    c.precision = takeCount(pattern, ++at);
    if (c.precision < 0) return std::nullopt;
  }
  c.length = takeLength(pattern, at);
  if (at >= pattern.size()) return std::nullopt;
  c.letter = pattern[at];
  c.kind = kindOf(c.letter, c.length);
  if (c.kind == 0) return std::nullopt;
  c.end = at + 1;
  return c;
}

// Sign or "0x", zeros, body, and blanks on the side that the flags say.
void put(std::string& out, const Conversion& c, std::string_view lead, std::size_t zeros,
         std::string_view body) {
  const std::size_t taken = lead.size() + zeros + body.size();
  const std::size_t blanks = static_cast<std::size_t>(c.width) > taken ? c.width - taken : 0;
  if (!c.left) out.append(blanks, ' ');
  out.append(lead).append(zeros, '0').append(body);
  if (c.left) out.append(blanks, ' ');
}

// Zeros that fill the width, where the flags ask for them.
std::size_t fillingZeros(const Conversion& c, std::size_t taken) {
  if (!c.zeros || c.left || static_cast<std::size_t>(c.width) <= taken) return 0;
  return c.width - taken;
}

std::string_view signOf(const Conversion& c, bool negative) {
  if (negative) return "-";
  return c.plus ? "+" : c.blank ? " " : "";
}

long long narrowed(long long v, Length length) {
  if (length == Length::tiny) return static_cast<std::int8_t>(v);
  if (length == Length::small) return static_cast<std::int16_t>(v);
  return v;
}

// A negative int shows its 32 bits under %u and %x; only "ll" and its like ask for 64.
unsigned long long withoutSign(long long v, Length length) {
  if (length == Length::tiny) return static_cast<std::uint8_t>(v);
  if (length == Length::small) return static_cast<std::uint16_t>(v);
  const bool fits = v < 0 && v >= INT32_MIN;
  return fits && length != Length::widest ? static_cast<std::uint32_t>(v)
                                          : static_cast<unsigned long long>(v);
}

void makeUpper(char* from, const char* to) {
  for (; from != to; ++from)
    if (*from >= 'a' && *from <= 'z') *from = static_cast<char>(*from - 'a' + 'A');
}

void putInteger(std::string& out, const Conversion& c, long long v) {
  const bool isSigned = c.letter == 'd' || c.letter == 'i';
  const long long narrow = isSigned ? narrowed(v, c.length) : 0;
  const auto magnitude = !isSigned    ? withoutSign(v, c.length)
                         : narrow < 0 ? 0ULL - static_cast<unsigned long long>(narrow)
                                      : static_cast<unsigned long long>(narrow);
  const int base = c.letter == 'x' || c.letter == 'X' ? 16 : c.letter == 'o' ? 8 : 10;
  char digits[24];
  char* end = std::to_chars(digits, digits + sizeof digits, magnitude, base).ptr;
  if (c.letter == 'X') makeUpper(digits, end);
  if (magnitude == 0 && c.precision == 0) end = digits;
  std::string_view lead = isSigned ? signOf(c, narrow < 0) : std::string_view{};
  if (base == 16 && c.alternate && magnitude != 0) lead = c.letter == 'X' ? "0X" : "0x";
  const std::size_t count = end - digits;
  std::size_t zeros = 0;
  if (c.precision > 0 && static_cast<std::size_t>(c.precision) > count) zeros = c.precision - count;
  if (base == 8 && c.alternate && zeros == 0 && (count == 0 || digits[0] != '0')) zeros = 1;
  if (c.precision < 0) zeros += fillingZeros(c, lead.size() + zeros + count);
  put(out, c, lead, zeros, {digits, count});
}

void putCharacter(std::string& out, const Conversion& c, long long v) {
  const char byte = static_cast<char>(v);
  put(out, c, {}, 0, {&byte, 1});
}

// '#' keeps the point and, under %g, the zeros behind it.
char* keepPoint(char* from, char* end, const Conversion& c, int precision) {
  std::string_view body(from, end - from);
  const std::size_t exponent = std::min(body.find_first_of("eE"), body.size());
  const bool hasPoint = body.substr(0, exponent).find('.') != body.npos;
  std::string fill = hasPoint ? "" : ".";
  if (c.letter == 'g' || c.letter == 'G') {
    int significant = 0;
    bool counting = false;
    for (char ch : body.substr(0, exponent)) {
      counting = counting || (ch >= '1' && ch <= '9');
      if (counting && ch != '.') ++significant;
    }
    // Zero has no significant digit of its own; its "0" counts as the first.
    if (!counting) significant = 1;
    for (; significant < precision; ++significant) fill += '0';
  }
  const std::string tail(body.substr(exponent));
  end = std::copy(fill.begin(), fill.end(), from + exponent);
  return std::copy(tail.begin(), tail.end(), end);
}

void putReal(std::string& out, const Conversion& c, double v) {
  const char letter = static_cast<char>(c.letter | 0x20);
  const auto style = letter == 'f'   ? std::chars_format::fixed
                     : letter == 'e' ? std::chars_format::scientific
                                     : std::chars_format::general;
  int precision = c.precision < 0 ? 6 : c.precision;
  if (letter == 'g' && precision == 0) precision = 1;
  char text[2 * kRoom];
  char* end = std::to_chars(text, text + kRoom, std::abs(v), style, precision).ptr;
  const bool finite = std::isfinite(v);
  if (finite && c.alternate) end = keepPoint(text, end, c, precision);
  if (c.letter != letter) makeUpper(text, end);
  const auto lead = signOf(c, std::signbit(v));
  const std::size_t count = end - text;
  put(out, c, lead, finite ? fillingZeros(c, lead.size() + count) : 0, {text, count});
}

void putText(std::string& out, const Conversion& c, std::string_view text) {
  if (c.precision >= 0) text = text.substr(0, c.precision);
  put(out, c, {}, 0, text);
}

char kindOf(const FormatArg& arg) {
  return "ifs"[arg.index()];
}

void putArgument(std::string& out, const Conversion& c, const FormatArg& arg) {
  if (c.kind == 'f') return putReal(out, c, std::get<double>(arg));
  if (c.kind == 's') return putText(out, c, std::get<std::string_view>(arg));
  if (c.letter == 'c') return putCharacter(out, c, std::get<long long>(arg));
  putInteger(out, c, std::get<long long>(arg));
}

}  // namespace

std::string formatChecked(std::string_view pattern, std::initializer_list<FormatArg> args) {
  std::string out;
  auto arg = args.begin();
  std::size_t at = 0;
  for (;;) {
    const std::size_t sign = pattern.find('%', at);
    out.append(pattern.substr(at, sign - at));
    if (sign == pattern.npos) break;
    if (pattern.substr(sign, 2) == "%%") {
      out += '%';
      at = sign + 2;
      continue;
    }
    const auto conversion = readConversion(pattern, sign + 1);
    if (!conversion || arg == args.end() || kindOf(*arg) != conversion->kind) return std::string(pattern);
    putArgument(out, *conversion, *arg++);
    at = conversion->end;
  }
  return arg == args.end() ? out : std::string(pattern);
}

std::string conversionsOf(std::string_view pattern, bool& known) {
  std::string kinds;
  std::size_t at = 0;
  while ((at = pattern.find('%', at)) != pattern.npos) {
    if (pattern.substr(at, 2) == "%%") {
      at += 2;
      continue;
    }
    const auto conversion = readConversion(pattern, at + 1);
    known = conversion.has_value();
    if (!known) return {};
    kinds += conversion->kind;
    at = conversion->end;
  }
  known = true;
  return kinds;
}

}  // namespace tarnex
