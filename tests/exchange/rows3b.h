// A program as rows that can be changed, for planting faults, and a report as text.
// Knows how blocks look; what a fault is, the tests know.
#pragma once

#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "exchange/truth.h"

namespace tarnex::truth::test {

inline std::string lines(const Report& r) {
  std::string all;
  for (const std::string& l : describe(r)) all += l + "\n";
  return all;
}

// Written back with its blocks numbered anew, so that numbers betray nothing. Row 0 is never a block: it
// stands for "none".
struct Rows {
  std::vector<std::string> rows;
  explicit Rows(const std::string& text) {
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) rows.push_back(l);
  }
  [[nodiscard]] bool isBlock(std::size_t i) const {
    return rows[i].size() > 5 && rows[i][0] == 'N' && rows[i][5] == ':' && rows[i][4] != ' ';
  }
  // A random block for which `fits` holds, that isn't a move between paths.
  std::size_t pick(std::mt19937& rng, const std::function<bool(const std::string&)>& fits) const {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool between = i > 0 && rows[i - 1] == "N    : D" && rows[i + 1] == "N    : D";
      if (isBlock(i) && !between && fits(rows[i])) found.push_back(i);
    }
    return found.empty() ? 0 : found[rng() % found.size()];
  }
  [[nodiscard]] std::size_t find(const std::string& part, std::size_t from = 0) const {
    for (std::size_t i = from; i < rows.size(); ++i)
      if (isBlock(i) && rows[i].find(part) != std::string::npos) return i;
    return 0;
  }
  // The first block of the first step out and back: the blocks of steps end without a ';'.
  [[nodiscard]] std::size_t step() const {
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (isBlock(i) && rows[i].find(" G") != std::string::npos && rows[i].back() == ' ') return i;
    return 0;
  }
  // The pause within a path: blocks of more than a move stand on both sides.
  [[nodiscard]] std::size_t pauseBeforeEnd() const {
    for (std::size_t i = 2; i + 2 < rows.size(); ++i)
      if (rows[i] == "N    : D" && isBlock(i - 2) && isBlock(i - 1) && isBlock(i + 1) && isBlock(i + 2))
        return i;
    return 0;
  }
  void erase(std::size_t at, std::ptrdiff_t n = 1) {
    const auto from = rows.begin() + static_cast<std::ptrdiff_t>(at);
    rows.erase(from, from + n);
  }
  void insert(std::size_t at, const std::string& row) {
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(at), row);
  }
  [[nodiscard]] std::string text() const {
    std::string out;
    int n = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      std::string row = rows[i];
      if (isBlock(i)) {
        std::string number = std::to_string(++n);
        row.replace(1, 4, std::string(4 - number.size(), ' ') + number);
      }
      out += row + "\n";
    }
    return out;
  }
};

}  // namespace tarnex::truth::test
