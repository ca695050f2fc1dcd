// Random paths through their own operations: contours of all kinds, edited, with tapers, code texts, steps at
// corners, reversed, flipped, moved, turned and mirrored.
// Knows paths; no program.
#pragma once

#include <memory>
#include <random>

#include "toolpath/toolpath.h"

namespace tarnex::truth::test {

class EditedPaths {
 public:
  explicit EditedPaths(unsigned seed) : rng_(seed) {}
  double real(double a, double b) { return std::uniform_real_distribution<double>(a, b)(rng_); }
  bool oneIn(unsigned n) { return rng_() % n == 0; }
  std::size_t below(std::size_t n) { return rng_() % n; }

  // A path about `at` that a wire can cut, and that one can be turned to its other side; edited at random.
  std::unique_ptr<CToolPath> path(AcGePoint2d at);

 private:
  PolylineCurve contour(AcGePoint2d at);
  PolylineCurve starShaped(AcGePoint2d at);
  std::unique_ptr<CToolPath> plain(AcGePoint2d at);
  void hang(CToolPath& path);
  void addSteps(CToolPath& path);
  void turn(CToolPath& path);
  std::mt19937 rng_;
};

}  // namespace tarnex::truth::test
