// The binding to the roughing routine of the module `Quillet.arx`.
// Knows how to load and call it; what it does, the module knows.
#pragma once

#include <functional>

#include "host/database/database.h"

namespace tarnex {

class Module;

// What the routine is told; the order and the kinds are those of its call.
struct Roughing {
  int circleArcs = 2;       // arcs that make up a turn in a circle
  double sharpest = 135.0;  // degrees: turns get a spur into corners sharper than this
  double step = 0.2;        // mm, between turns
  int direction = 1;        // of the turns: 1 counter-clockwise, -1 clockwise
  double allowance = 0;     // mm, left on the contour beyond the step that its first pass clears
  double startHole = 0;     // mm, radius of a hole that is there already
  int alternate = 0;        // not 0: every other turn runs the other way
};

// Leaves the guide polyline as the newest entity. Nothing: the module or the routine isn't there, or it left
// no polyline.
[[nodiscard]] AcDbObjectId roughContour(Module& module, AcDbObjectId contour, const Roughing& arguments);

}  // namespace tarnex
