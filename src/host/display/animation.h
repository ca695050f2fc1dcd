// A cut as an animated SVG picture: lines that grow one after another over a still, faint drawing, and the
// wire as a dot that runs along with them. Knows curves and times; paths and programs are above it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/display/colors.h"
#include "host/display/painter.h"
#include "host/platform/files.h"

namespace tarnex {

struct AnimatedStep {
  AcGePoint2d end;
  std::optional<ArcCurve> arc;  // the way to the end; none: straight
  double seconds = 0;           // that the wire takes; 0: the step is there at once
};
// A line of one colour without a gap.
struct AnimatedLine {
  int color = 7;     // 1 to 255
  double begin = 0;  // seconds from the animation's beginning
  AcGePoint2d start;
  std::vector<AnimatedStep> steps;
};
struct Animation {
  std::vector<Curve> still;
  std::vector<AnimatedLine> lines;  // in order of their beginnings; one begins when the last has ended
  [[nodiscard]] double seconds() const;
};

struct AnimationOptions : PageOptions {
  Ground ground = Ground::light;
  double lineWidth = 0.4;  // mm on paper; the still drawing's lines are half as wide
  std::string title;       // what a viewer shows as the picture's name
  double clockRate = 1;    // seconds on the clock for one of the animation
};

// Plays by itself, also as an image in a page, and starts over when the finished picture has stood for a
// while. Opened by itself in a browser it has a bar: pause, a slider, the clock; the space bar pauses, the
// arrow keys step. The file stands alone: nothing is fetched. Lines that come faster than the eye sees are
// shown in groups, so that a browser's work in a frame stays small. User units are mm on paper. Coordinates
// are rounded to a hundredth of a mm on paper. Arcs stay arcs.
[[nodiscard]] std::string animationText(const Animation& animation, const AnimationOptions& options);
[[nodiscard]] std::optional<FileError> writeAnimation(const std::string& path, const Animation& animation,
                                                      const AnimationOptions& options);

}  // namespace tarnex
