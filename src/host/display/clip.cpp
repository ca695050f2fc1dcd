// What of lines and arcs lies near the page.
// Knows plane geometry.
#include "host/display/clip.h"

#include <cmath>

namespace tarnex {

namespace {

constexpr int kMostHalvings = 50;
constexpr int kSureHalvings = 3;  // before that a chord says nothing of its bow

// Liang and Barsky: narrows [from, to] to where start + t * way <= limit holds.
bool narrow(double start, double way, double limit, double& from, double& to) {
  if (way == 0) return start <= limit;
  const double t = (limit - start) / way;
  if (way > 0)
    to = std::min(to, t);
  else
    from = std::max(from, t);
  return from <= to;
}

struct Chords {
  const Curve& curve;
  const Extents2d& box;
  double tolerance;
  std::vector<Stretch> found;

  void add(double from, double to, int depth) {
    const AcGePoint2d a = pointAtParam(curve, from), b = pointAtParam(curve, to);
    const double middle = from + (to - from) / 2;
    const double bow = pointAtParam(curve, middle).distanceTo(midpoint(a, b));
    Extents2d reach;
    reach.add(a);
    reach.add(b);
    // An arc of up to an eighth of a turn stays within its chord's box grown by its bow.
    if (depth >= kSureHalvings && !reach.grown(2 * bow).overlaps(box)) return;
    if (depth < kSureHalvings || (bow > tolerance && depth < kMostHalvings)) {
      add(from, middle, depth + 1);
      add(middle, to, depth + 1);
    } else if (const auto inside = stretchInside(a, b, box)) {
      found.push_back(*inside);
    }
  }
};

}  // namespace

std::optional<Stretch> stretchInside(AcGePoint2d a, AcGePoint2d b, const Extents2d& box) {
  const AcGeVector2d way = b - a;
  double from = 0, to = 1;
  if (!narrow(a.x, way.x, box.high.x, from, to) || !narrow(-a.x, -way.x, -box.low.x, from, to) ||
      !narrow(a.y, way.y, box.high.y, from, to) || !narrow(-a.y, -way.y, -box.low.y, from, to))
    return {};
  return Stretch{from > 0 ? a + way * from : a, to < 1 ? a + way * to : b};
}

std::vector<Stretch> chordsInside(const Curve& curve, const Extents2d& box, double tolerance) {
  Chords chords{curve, box, tolerance, {}};
  chords.add(startParam(curve), endParam(curve), 0);
  return std::move(chords.found);
}

}  // namespace tarnex
