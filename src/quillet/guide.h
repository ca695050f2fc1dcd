// The guide along the turns: from the inside out, one polyline.
// Internal to roughing.
#pragma once

#include "quillet/turns.h"

namespace tarnex {

struct GuideRules {
  AcGePoint2d inside, beside;  // the turns around `inside` are joined on the line to `beside`, on the contour
  double sharpest = 0;         // radians between the spans of a corner; sharper ones get a spur outwards
  double startHole = 0;        // mm about `inside`: turns within it are left out
  int direction = 1;           // 1 counter-clockwise, -1 clockwise
  bool alternate = false;      // every other turn the other way
};

// Ends on the outermost turn. Every turn is closed only after those inside it. Fewer than two vertices: all
// turns lie in the start hole.
[[nodiscard]] PolylineCurve guideAlong(const std::vector<Turn>& turns, const GuideRules& rules);

}  // namespace tarnex
