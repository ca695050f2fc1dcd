// The choice among condition lines, and families by folder.
// Knows no file.
#include "machining/conditionlines.h"

#include <algorithm>
#include <cstdlib>

namespace tarnex {

namespace {

constexpr int kFirstFamilyText = 1800, kMostFamilies = 10;

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool beginsWithC(const std::string& line) {
  return !line.empty() && line.front() == 'C';
}

}  // namespace

bool sameLetters(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

std::size_t headLineCount(const std::vector<std::string>& lines) {
  return static_cast<std::size_t>(std::ranges::find_if(lines, beginsWithC) - lines.begin());
}

const std::string* startConditionLine(const std::vector<std::string>& lines) {
  for (std::size_t i = headLineCount(lines); i < lines.size(); ++i) {
    const auto equals = lines[i].find('=');
    if (!beginsWithC(lines[i]) || equals == std::string::npos) continue;
    std::string number = lines[i].substr(0, equals);
    std::erase(number, 'C');
    if (std::atoi(number.c_str()) == 0) return &lines[i];
  }
  return nullptr;
}

const std::string* conditionLine(const std::vector<std::string>& lines, std::string_view number) {
  const std::string key = "C" + std::string(number);
  for (const auto& line : lines)
    if (sameLetters(std::string_view(line).substr(0, key.size()), key)) return &line;
  return nullptr;
}

std::optional<int> machineFamily(std::string_view folder, const std::function<std::string(int)>& message) {
  for (int i = 0; i < kMostFamilies; ++i) {
    const std::string text = message(kFirstFamilyText + i);
    if (text.empty()) return std::nullopt;
    const auto bar = text.find('|');
    if (bar == std::string::npos || bar == 0) continue;
    if (sameLetters(std::string_view(text).substr(bar + 1), folder)) return i;
  }
  return std::nullopt;
}

}  // namespace tarnex
