// Profile files: parsing, look-ups and writing back.
// Knows no code page but the two that a byte order mark tells; values are bytes.
#include "host/platform/profile.h"

#include <algorithm>
#include <climits>

#include "host/platform/codepage.h"
#include "host/platform/files.h"

namespace tarnex {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\v\f\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isQuoted(std::string_view value) {
  return value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0];
}

std::string_view unquoted(std::string_view value) {
  return isQuoted(value) ? value.substr(1, value.size() - 2) : value;
}

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

// One line, and `rest` moved behind its end.
std::string_view takeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
  const auto line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return trimmed(line);
}

// A value is one line; what would end it becomes a blank.
std::string oneLine(std::string_view text) {
  std::string out(trimmed(text));
  std::replace_if(
      out.begin(), out.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return out;
}

std::string writtenValue(std::string_view value) {
  const bool needsQuotes = value != trimmed(value) || isQuoted(value);
  return needsQuotes ? '"' + std::string(value) + '"' : std::string(value);
}

}  // namespace

Profile Profile::parse(std::string_view bytes) {
  std::string decoded;
  if (bytes.substr(0, 2) == "\xFF\xFE") {
    decoded = toUtf8(bytes.substr(2), "UTF-16LE");
    bytes = decoded;
  }
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  Profile profile;
  std::string section;
  while (!bytes.empty()) {
    const auto line = takeLine(bytes);
    if (line.empty() || line[0] == ';') continue;
    if (line[0] == '[') {
      const std::size_t end = line.rfind(']');
      if (end != line.npos) section = trimmed(line.substr(1, end - 1));
      continue;
    }
    const std::size_t sign = line.find('=');
    if (sign == line.npos) continue;
    profile.entries_.push_back({section, std::string(trimmed(line.substr(0, sign))),
                                std::string(unquoted(trimmed(line.substr(sign + 1))))});
  }
  return profile;
}

Profile Profile::load(const std::string& path) {
  const auto bytes = readFile(path);
  return bytes ? parse(*bytes.value) : Profile();
}

std::optional<std::string_view> Profile::find(std::string_view section, std::string_view key) const {
  for (const Entry& entry : entries_)
    if (sameName(entry.key, key) && sameName(entry.section, section)) return entry.value;
  return std::nullopt;
}

int Profile::intOf(std::string_view section, std::string_view key, int fallback) const {
  const auto value = find(section, key);
  if (!value) return fallback;
  std::string_view text = trimmed(*value);
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  long long number = 0;
  for (char c : text) {
    if (c < '0' || c > '9') break;
    number = std::min<long long>(number * 10 + (c - '0'), INT_MAX + 1LL);
  }
  if (negative) number = -number;
  return static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX));
}

std::string Profile::stringOf(std::string_view section, std::string_view key, std::string_view fallback,
                              std::size_t limit) const {
  return std::string(find(section, key).value_or(fallback).substr(0, limit == 0 ? 0 : limit - 1));
}

std::vector<std::string> Profile::keysOf(std::string_view section) const {
  std::vector<std::string> keys;
  for (const Entry& entry : entries_)
    if (sameName(entry.section, section)) keys.push_back(entry.key);
  return keys;
}

void Profile::set(std::string_view section, std::string_view key, std::string_view value) {
  std::string line(value);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  for (Entry& entry : entries_) {
    if (!sameName(entry.key, key) || !sameName(entry.section, section)) continue;
    entry.value = line;
    return;
  }
  entries_.push_back({oneLine(section), oneLine(key), line});
}

std::string Profile::text() const {
  std::vector<std::string_view> sections;
  for (const Entry& entry : entries_) {
    const auto same = [&](std::string_view seen) { return sameName(seen, entry.section); };
    if (std::none_of(sections.begin(), sections.end(), same)) sections.push_back(entry.section);
  }
  // Lines before the first section belong to none, so they go first.
  std::stable_sort(sections.begin(), sections.end(),
                   [](std::string_view a, std::string_view b) { return a.empty() && !b.empty(); });
  std::string out;
  for (std::string_view section : sections) {
    if (!section.empty()) out.append(out.empty() ? "[" : "\n[").append(section).append("]\n");
    for (const Entry& entry : entries_)
      if (sameName(entry.section, section)) out.append(entry.key + "=" + writtenValue(entry.value) + "\n");
  }
  return out;
}

}  // namespace tarnex
