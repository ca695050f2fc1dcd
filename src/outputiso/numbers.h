// Coordinates as text, in the three ways in which slow-wire controls spell them.
// Knows numbers alone; which way a machine wants, IsoPost knows.
#pragma once

#include <string>

namespace tarnex {

struct NumberStyle {
  enum class Kind {
    kSigned,   // micrometres with a sign, six digits at least: "+001500"
    kInteger,  // micrometres: "1500"
    kDecimal   // millimetres with a point: "1.5", "12.", "0."
  };
  Kind kind = Kind::kDecimal;
  int decimals = 3;  // kDecimal: 0 to kMostDecimals
};

// Up to here a power of ten is a number of its own, not the nearest one.
inline constexpr int kMostDecimals = 22;

// `mm` behind `text`. Micrometres are rounded, halves upward, and so are three decimals; any other number of
// decimals is cut towards minus infinity. A value below zero that rounds to nothing keeps its sign in the
// signed style alone. The digits are those that printf gives, made by whole numbers as far as these are
// exact.
void appendNumber(std::string& text, double mm, NumberStyle style);

}  // namespace tarnex
