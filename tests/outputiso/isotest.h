// What the tests of this room share: a post with the slots that a test names, and its own reader of words.
// Knows the texts that a control reads; nothing of how they are made.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "host/platform/system.h"
#include "outputiso/isopost.h"

namespace tarnex {

using SlotTexts = std::vector<std::pair<std::size_t, std::string>>;

// Ready for its first figure, absolute with three decimals where the slots don't say otherwise.
inline IsoPost isoWith(int family, const SlotTexts& params, const SlotTexts& words = {}) {
  IsoPost iso;
  iso.post.nFamily = family;
  iso.post.nWordCount = 40;
  iso.post.param[9] = "G00";
  iso.post.param[10] = "3";
  iso.post.word[0] = "G90";
  for (const auto& [slot, text] : params) iso.post.param.at(slot) = text;
  for (const auto& [slot, text] : words) iso.post.word.at(slot) = text;
  iso.resetProgram();
  return iso;
}

inline int rounds(int inSuite, int inLongRun) {
  return environment("TARNEX_LONG") ? inLongRun : inSuite;
}

// A coordinate text: optional sign, digits, at most one point. Micrometres where `inMicrometres`.
inline double readNumber(const std::string& text, bool inMicrometres) {
  std::size_t at = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
  double v = 0, place = 0;
  std::size_t digits = 0;
  for (; at < text.size(); ++at) {
    if (text[at] == '.' && place == 0) {
      place = 1;
      continue;
    }
    EXPECT_TRUE(text[at] >= '0' && text[at] <= '9') << text;
    v = 10 * v + (text[at] - '0');
    place *= 10;
    ++digits;
  }
  EXPECT_GT(digits, 0u) << text;
  if (place > 1) v /= place;
  if (inMicrometres) v /= 1000;
  return text[0] == '-' ? -v : v;
}

// The words of a block: a letter and its number's text each.
inline std::vector<std::pair<char, std::string>> readWords(const std::string& block) {
  std::vector<std::pair<char, std::string>> words;
  for (char c : block)
    if (c >= 'A' && c <= 'Z')
      words.emplace_back(c, "");
    else if (!words.empty())
      words.back().second += c;
  return words;
}

}  // namespace tarnex
