// One span of a wire path as the text of one 3B block: three counts and two words.
// Knows the span and the program's origin; numbering and pauses are above it.
#pragma once

#include <string>

#include "host/geometry/values.h"

namespace tarnex {

// Whole micrometres of a length in mm, halves upward. All counts of a block come from here.
[[nodiscard]] inline double round1000(double mm) {
  return std::floor(mm * 1000.0 + 0.5);
}

// The largest count of a block is 2^31 - 1 micrometres: a contour that is wider or higher can't be written.
inline constexpr double kLargestExtent = 2147483.647;  // mm

// A number with at most three decimals: "0." for zero, "12." for a whole number, trailing zeros dropped.
[[nodiscard]] std::string formatFixed3(double v);

// The block from start to end (mm), bulge 0 a line. Empty when they are nearer than 0.001. With `origin` the
// coordinates follow the block, less the origin.
[[nodiscard]] std::string encodeSegment(AcGePoint2d start, AcGePoint2d end, double bulge,
                                        const AcGePoint2d* origin = nullptr);
// The same into a buffer that is emptied first: no allocation from the second block on.
void encodeSegment(std::string& block, AcGePoint2d start, AcGePoint2d end, double bulge,
                   const AcGePoint2d* origin = nullptr);

}  // namespace tarnex
