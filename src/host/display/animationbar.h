// The script that gives an animated picture its bar: pause, slider, clock.
// Knows the picture's clock alone, not what moves.
#pragma once

#include <string>

namespace tarnex {

struct AnimationBar {
  double seconds = 0;   // of one round
  double lastStop = 0;  // the slider's right end, seconds; the finished picture stands from there on
  double clockRate = 1;
  std::string ground, ink;  // colours
};

// The script's text, for an element of SVG. It does nothing where scripts don't run or the picture is part of
// a page.
[[nodiscard]] std::string barScript(const AnimationBar& bar);

}  // namespace tarnex
