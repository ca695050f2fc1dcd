// Line patterns as painters want them.
// Knows lengths.
#include "host/display/dashes.h"

#include <algorithm>
#include <cmath>

namespace tarnex {

namespace {

constexpr double kFinestPattern = 0.5;  // mm on paper
constexpr std::size_t kMostDashes = 64;

}  // namespace

std::vector<double> dashesAndGaps(const LinePattern& pattern, double patternScale, double pageScale) {
  std::vector<double> lengths;
  if (pattern.dashes.size() > kMostDashes) return {};
  const auto first =
      std::find_if(pattern.dashes.begin(), pattern.dashes.end(), [](double d) { return d >= 0; });
  std::vector<double> turned(first, pattern.dashes.end());
  turned.insert(turned.end(), pattern.dashes.begin(), first);
  double whole = 0;
  for (const double d : turned) {
    const bool gap = d < 0;
    const double length = std::abs(d) * patternScale;
    if (!(length <= kFarthestDrawn)) return {};
    whole += length;
    if (lengths.size() % 2 == (gap ? 1 : 0))
      lengths.push_back(length);
    else if (!lengths.empty())
      lengths.back() += length;
  }
  if (lengths.size() % 2 != 0 || whole * pageScale < kFinestPattern) return {};
  return lengths;
}

}  // namespace tarnex
