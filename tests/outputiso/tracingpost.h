// A post that makes a program readable as what it is: every row prints its number around its motion, "<13 "
// and
// ">", so that a program is the sequence of rows and moves. Taper words are "TL" or "TR" and the angle, "T0"
// takes the taper back, and "M16" tells an arc corner.
// Knows the post's slots; nothing of writers.
#pragma once

#include <string>
#include <vector>

#include "isotest.h"
#include "machining/processstyle.h"

namespace tarnex {

inline constexpr int kRowBases[] = {0, 40, 80, 120};
inline constexpr int kMostTracedRow = 30;

// Absolute with three decimals, not modal, in signed micrometres for family 5.
inline IsoPost tracingPost(int family, const SlotTexts& params = {}, const SlotTexts& words = {}) {
  SlotTexts allParams{{16, "M16"}, {23, "TL"}, {24, "TR"}, {28, "0"}}, allWords{{6, "%.1f"}, {7, "T0"}};
  allParams.insert(allParams.end(), params.begin(), params.end());
  allWords.insert(allWords.end(), words.begin(), words.end());
  IsoPost iso = isoWith(family, allParams, allWords);
  for (int base : kRowBases)
    for (int r = 1; r <= kMostTracedRow; ++r) {
      const auto at = static_cast<std::size_t>(3 * (base + r));
      iso.post.blockRow[at] = "<" + std::to_string(r) + " ";
      iso.post.blockRow[at + 2] = ">";
    }
  return iso;
}

// `later` later passes, "C1" to "C9" behind the first one's "C0", all with one taper.
inline ProcessStyle tracedStyle(int later, double taper = 0) {
  ProcessStyle style;
  style.nPassLast = later;
  for (std::size_t i = 0; i < style.passes.size(); ++i) {
    style.passes[i].sSub1 = "C" + std::to_string(i);
    style.passOffset[i] = taper;
  }
  return style;
}

// A program's text of these lines.
inline std::string programOf(std::initializer_list<std::string> lines) {
  std::string text;
  for (const auto& line : lines) text += line + "\n";
  return text;
}

}  // namespace tarnex
