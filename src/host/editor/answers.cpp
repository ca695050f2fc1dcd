// Reading the texts of answers.
// Knows no drawing, no coordinate system and no prompt.
#include "host/editor/answers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "host/platform/format.h"

namespace tarnex {

namespace {

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::optional<double> parseCoordinate(std::string_view text) {
  const auto v = parseReal(text);
  return v && std::abs(*v) <= kLargestCoordinate ? v : std::nullopt;
}

std::optional<AcGePoint3d> parseCartesian(std::string_view text) {
  std::vector<double> parts;
  for (;;) {
    const auto comma = text.find(',');
    const auto v = parseCoordinate(text.substr(0, comma));
    if (!v || parts.size() == 3) return std::nullopt;
    parts.push_back(*v);
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  if (parts.size() < 2) return std::nullopt;
  return AcGePoint3d{parts[0], parts[1], parts.size() == 3 ? parts[2] : 0};
}

std::optional<AcGePoint3d> parsePolar(std::string_view text) {
  const auto angleAt = text.find('<');
  if (angleAt == std::string_view::npos) return std::nullopt;
  const auto distance = parseCoordinate(text.substr(0, angleAt));
  const auto degrees = parseReal(text.substr(angleAt + 1));
  if (!distance || !degrees) return std::nullopt;
  return solid(acutPolar({}, *degrees * kPi / 180, *distance));
}

std::optional<AcGePoint3d> parseEither(std::string_view text) {
  const auto p = parseCartesian(text);
  return p ? p : parsePolar(text);
}

}  // namespace

std::optional<PointText> parsePoint(std::string_view text) {
  text = trimmed(text);
  if (text.empty()) return std::nullopt;
  PointText result;
  if (text[0] == '*' || text[0] == '@') {
    result.frame = text[0] == '*' ? PointText::Frame::kWorld : PointText::Frame::kRelative;
    text.remove_prefix(1);
  }
  if (text.empty()) {
    if (result.frame != PointText::Frame::kRelative) return std::nullopt;
    return result;
  }
  const auto p = parseEither(text);
  if (!p) return std::nullopt;
  result.value = *p;
  return result;
}

std::optional<HandleText> parseHandle(std::string_view text) {
  text = trimmed(text);
  if (text.size() < 2 || text[0] != '&') return std::nullopt;
  text.remove_prefix(1);
  const auto star = text.find('*');
  const auto digits = text.substr(0, star);
  HandleText result;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, result.handle, 16);
  if (error != std::errc() || stop != end || result.handle == 0) return std::nullopt;
  if (star != std::string_view::npos) {
    result.at = parseCartesian(text.substr(star + 1));
    if (!result.at) return std::nullopt;
  }
  return result;
}

std::optional<double> parseReal(std::string_view text) {
  text = trimmed(text);
  // Numbers as people write them; what else the library reads ("inf", hexadecimal) is no answer.
  if (text.empty() || text.find_first_not_of("+-.0123456789eE") != std::string_view::npos)
    return std::nullopt;
  double v = 0;
  if (!parseNumber(text, v) || !std::isfinite(v)) return std::nullopt;
  return v;
}

std::optional<int> parseInt(std::string_view text) {
  long long v = 0;
  if (!parseInteger(trimmed(text), v) || v < INT32_MIN || v > INT32_MAX) return std::nullopt;
  return static_cast<int>(v);
}

std::string realText(double v) {
  return formatted("%.17g", v);
}

std::string worldPointText(const AcGePoint3d& p) {
  return formatted("*%.17g,%.17g,%.17g", p.x, p.y, p.z);
}

std::string handleText(std::uint64_t handle) {
  return formatted("&%llX", static_cast<unsigned long long>(handle));
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool isCancel(std::string_view text) {
  text = trimmed(text);
  return text == "^C" || text == "^c" || text == "\x1b" || text == "\x03" || text == "(command)(princ)";
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return upper(x) == upper(y); });
}

std::string upperCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

std::optional<std::string> takeWord(std::string_view& line) {
  const auto cut = [&](std::size_t at) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t", at), line.size()));
  };
  cut(0);
  if (line.empty()) return std::nullopt;
  std::string word;
  std::size_t at = 0;
  if (line[0] == '"') {
    const auto close = std::min(line.find('"', 1), line.size());
    word = line.substr(1, close - 1);
    at = std::min(close + 1, line.size());
  } else {
    while (at < line.size() && line[at] != ' ' && line[at] != '\t') {
      word += line[at++];
      if (word.back() == ',') at = std::min(line.find_first_not_of(" \t", at), line.size());
    }
  }
  cut(at);
  return word;
}

}  // namespace tarnex
