// Numbers to text and back, and printf for literals, in the "C" locale whatever the user's is.
// Knows nothing of patterns that come from data.
#include <locale.h>

#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "host/platform/format.h"

namespace tarnex {
namespace {

// This thread's numbers are those of the "C" locale while the value lives.
class PlainNumbers {
 public:
  PlainNumbers() : before_(uselocale(plain())) {}
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;
  ~PlainNumbers() { uselocale(before_); }

 private:
  static locale_t plain() {
    static const locale_t made = newlocale(LC_ALL_MASK, "C", nullptr);
    return made;
  }
  locale_t before_;
};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Without blanks and a leading '+'; "+-1" keeps nothing that a number could begin with.
std::string_view numberIn(std::string_view text) {
  text = trimmed(text);
  if (text.empty() || text[0] != '+') return text;
  text.remove_prefix(1);
  return text.empty() || text[0] == '-' ? std::string_view{} : text;
}

}  // namespace

std::string formatted(const char* pattern, ...) {
  va_list args;
  va_start(args, pattern);
  std::string out = formattedList(pattern, args);
  va_end(args);
  return out;
}

std::string formattedList(const char* pattern, va_list args) {
  const PlainNumbers plain;
  char room[256];
  va_list again;
  va_copy(again, args);
  const int count = std::vsnprintf(room, sizeof room, pattern, args);
  std::string out;
  if (count >= 0 && static_cast<std::size_t>(count) < sizeof room) {
    out.assign(room, count);
  } else if (count >= 0) {
    out.resize(count);
    std::vsnprintf(out.data(), out.size() + 1, pattern, again);
  }
  va_end(again);
  return out;
}

std::string shortestNumber(double v) {
  char room[40];
  return {room, std::to_chars(room, room + sizeof room, v).ptr};
}

bool parseNumber(std::string_view text, double& out) {
  text = numberIn(text);
  const std::size_t first = !text.empty() && text[0] == '-' ? 1 : 0;
  if (first >= text.size()) return false;
  if (text[first] != '.' && (text[first] < '0' || text[first] > '9')) return false;  // "inf", "nan"
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size()) return false;
  if (error == std::errc::result_out_of_range) {
    const PlainNumbers plain;  // too small is zero or nearly so, too large is refused
    value = std::strtod(std::string(text).c_str(), nullptr);
    if (!std::isfinite(value)) return false;
  } else if (error != std::errc()) {
    return false;
  }
  out = value;
  return true;
}

bool parseInteger(std::string_view text, long long& out) {
  text = numberIn(text);
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  out = value;
  return true;
}

}  // namespace tarnex
