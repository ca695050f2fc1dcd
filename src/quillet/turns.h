// The turns that clear the inside of a contour: rings inside one another, from the outermost inwards.
// Internal to roughing.
#pragma once

#include <optional>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

struct Turn {
  PolylineCurve ring;     // closed, counter-clockwise
  Curve curve;            // the same, as the kernel takes it
  int parent = -1;        // the turn around it; -1 the outermost
  int depth = 0;          // turns around it
  bool wholeStep = true;  // false: half a step inside its parent
  std::vector<int> inside;
};

inline constexpr std::size_t kMostGuideVertices =
    32767 - 2;  // counts are stored in 16 bits, both ends are added

// The turns of a counter-clockwise contour, the outermost first: it lies `first` mm inside the contour, every
// other one a step inside the one around it, or half a step where a whole one would leave a place farther
// than three quarters of a step from every turn. Nothing: no room, the outermost would fall apart, the
// contour crosses itself, or there would be more vertices than a path can store.
[[nodiscard]] std::optional<std::vector<Turn>> turnsInside(const PolylineCurve& contour, double first,
                                                           double step);

}  // namespace tarnex
