// What primitives are in the plane: the circle of an arc through three points, the size of a text, a text's
// codes. Knows no colours and no paper.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/display/displaylist.h"

namespace tarnex {

struct CircleThrough {
  AcGeVector2d toCentre;  // from the arc's start
  double radius = 0;
};
// The circle of an arc in plan whose start and end are apart; nothing when the three points lie on a line.
[[nodiscard]] std::optional<CircleThrough> circleThrough(const DrawnArc& arc);

// The arc in plan. Start and end at one place with `point` elsewhere: the full circle. Nothing when the three
// points lie on a line (within rounding).
[[nodiscard]] std::optional<ArcCurve> arcThrough(const DrawnArc& arc);

// Width of the text's letters, mm, as an average font has them.
[[nodiscard]] double textWidth(const DrawnText& text);

// The text as a reader sees it: %%c %%d %%p %%% %%nnn become the diameter sign, degrees, plus-minus, the
// percent sign, the character of that number; %%u %%o %%k, which switch lines on and off, fall away.
[[nodiscard]] std::string shownText(std::string_view utf8);

// Walks UTF-8: the code point at `at`, which is moved on; U+FFFD (and one byte) where the bytes aren't UTF-8.
[[nodiscard]] char32_t nextCodePoint(std::string_view utf8, std::size_t& at);
void appendUtf8(std::string& out, char32_t c);

}  // namespace tarnex
