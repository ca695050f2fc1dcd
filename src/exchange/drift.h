// The set of drifts that a walked wire may have: grown by each block's rounding, cut down by what is seen.
// Knows the plane only.
#pragma once

#include <vector>

#include "exchange/plane.h"

namespace tarnex::truth {

// A convex set of vectors, mm; begins as a square about none.
class DriftSet {
 public:
  explicit DriftSet(double halfWidth = 0);
  void grow(double x, double y);  // by every vector of up to x and y in size
  // Keeps the vectors whose part along the unit vector `n` lies from `low` to `high`. Where none does, the
  // set stays as it is and the answer is false.
  bool keep(Vec n, double low, double high);
  [[nodiscard]] double farthest() const;    // largest length in the set
  [[nodiscard]] double along(Vec n) const;  // largest part along the unit vector n; 0 if all point away

 private:
  std::vector<Vec> corners_;  // counter-clockwise
};

}  // namespace tarnex::truth
