// The colours behind the indices of a drawing, and how they are shown on a light or a dark ground.
// Knows no entities.
#pragma once

#include <cstdint>
#include <string>

namespace tarnex {

struct Rgb {
  std::uint8_t r = 0, g = 0, b = 0;
  bool operator==(const Rgb&) const = default;
};

// Indices 1 to 255. 1 to 9 are red, yellow, green, cyan, blue, magenta, white, grey, light grey; 10 to 249
// are 24 hues at steps of 15 degrees, each in five brightnesses (even: pure, odd: half way to its grey); 250
// to 255 run from dark grey to white. Anything else is index 7.
[[nodiscard]] Rgb indexedColor(int index);

enum class Ground { light, dark };
[[nodiscard]] Rgb groundColor(Ground ground);

// The colour as it is put down: index 7 is black on light, white on dark; a colour that the ground would
// swallow (yellow on white, blue on black) is darkened or lightened just so far that a thin line of it can be
// seen.
[[nodiscard]] Rgb shownColor(int index, Ground ground);

[[nodiscard]] std::string hexColor(Rgb c);  // "#f00", "#7f3f3f"

}  // namespace tarnex
