// The recorder of the screen.
// Knows vectors and waits.
#include "host/editor/screenrecorder.h"

#include <cmath>
#include <utility>

namespace tarnex {

namespace {

constexpr double kSamePlace = 1e-6;  // mm; ends that were computed apart differ by their rounding

double lengthOf(const TemporaryVector& v) {
  return v.from.flat().distanceTo(v.to.flat());
}

bool goesOn(const AnimatedLine& line, const TemporaryVector& v) {
  const AcGePoint2d end = line.steps.back().end, from = v.from.flat();
  const double allowed = kSamePlace + roundoff(std::max(std::abs(from.x), std::abs(from.y)));
  return line.color == v.color && end.distanceTo(from) <= allowed;
}

}  // namespace

void ScreenRecorder::vectorDrawn(const TemporaryVector& vector) {
  waiting_.push_back(vector);
}

void ScreenRecorder::take(const TemporaryVector& vector, double seconds) {
  if (recorded_.lines.empty() || !goesOn(recorded_.lines.back(), vector))
    recorded_.lines.push_back({vector.color, time_, vector.from.flat(), {}});
  recorded_.lines.back().steps.push_back({vector.to.flat(), {}, seconds});
  time_ += seconds;
}

void ScreenRecorder::waits(int milliseconds) {
  if (waiting_.empty()) return;
  double whole = 0;
  for (const auto& v : waiting_) whole += lengthOf(v);
  const double even = 1.0 / static_cast<double>(waiting_.size());
  for (const auto& v : waiting_) take(v, milliseconds / 1000.0 * (whole > 0 ? lengthOf(v) / whole : even));
  waiting_.clear();
}

Animation ScreenRecorder::animation() {
  waits(0);
  return recorded_;
}

}  // namespace tarnex
