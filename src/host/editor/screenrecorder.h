// What happens on the screen as an animation: every temporary vector with the time of its wait.
// Knows vectors and waits; the command that draws them, it doesn't.
#pragma once

#include "host/display/animation.h"
#include "host/editor/screen.h"

namespace tarnex {

// Vectors that were drawn since the last wait grow one after another while the next one lasts, each in its
// share by length; those behind the last wait are there at once. What goes on where the last vector of its
// colour ended is one line. Wiping leaves what has been recorded.
class ScreenRecorder : public ScreenWatcher {
 public:
  void vectorDrawn(const TemporaryVector& vector) override;
  void waits(int milliseconds) override;
  // Nothing still; in plan.
  [[nodiscard]] Animation animation();

 private:
  void take(const TemporaryVector& vector, double seconds);
  Animation recorded_;
  std::vector<TemporaryVector> waiting_;  // drawn, and no wait yet
  double time_ = 0;                       // seconds
};

}  // namespace tarnex
