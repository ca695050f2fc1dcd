// Area and inside of a closed walk of spans with bulges.
// Knows vertices and bulges only.
#include <cmath>

#include "host/geometry/curves.h"

namespace tarnex {

namespace {

// Area between an arc and its chord, for a chord of length 2; above 0 counter-clockwise.
double segmentArea(double bulge) {
  const double square = bulge * bulge;
  if (std::abs(bulge) < 0.01) {  // θ - sin θ would lose its digits: its series in the bulge
    const double series = 8.0 / 3 - square * (24.0 / 5 - square * (48.0 / 7 - square * (80.0 / 9)));
    return bulge * (1 + square) * (1 + square) / 2 * series;
  }
  const double angle = 4 * std::atan(bulge), radius = (1 / bulge + bulge) / 2;
  return (angle - std::sin(angle)) / 2 * radius * radius;
}

const BulgeVertex& after(std::span<const BulgeVertex> walk, std::size_t i) {
  return walk[i + 1 < walk.size() ? i + 1 : 0];
}

// Turns that one span adds to the winding number: those of its chord, and of the loop between arc and chord.
int windingOf(const BulgeVertex& v, AcGePoint2d end, AcGePoint2d p) {
  const AcGePoint2d start = v.point;
  const AcGeVector2d chord = end - start;
  const double left = chord.crossProduct(p - start);  // above 0: p lies left of the chord
  int turns = 0;
  if (start.y <= p.y && end.y > p.y && left > 0) turns = 1;
  if (start.y > p.y && end.y <= p.y && left < 0) turns = -1;
  if (v.bulge == 0) return turns;
  // On the chord's line p counts to the side that the crossings above take it to.
  const bool upward = chord.y > 0 || (chord.y == 0 && chord.x < 0);
  const bool rightSide = left < 0 || (left == 0 && upward);
  if (rightSide != (v.bulge > 0)) return turns;
  const AcGeVector2d q = p - midpoint(start, end);
  const double size = std::abs(v.bulge), square = chord.dotProduct(chord) / 4;
  const double across = std::abs(left) / 2;  // distance from the chord times half of it
  // |q|² + 2 depth·across - half² < 0 inside the circle, multiplied by the bulge.
  const bool inside = size * (q.dotProduct(q) - square) < across * (size - 1) * (size + 1);
  return inside ? turns + (v.bulge > 0 ? 1 : -1) : turns;
}

}  // namespace

double signedArea(std::span<const BulgeVertex> closedWalk) {
  double area = 0;
  for (std::size_t i = 0; i < closedWalk.size(); ++i) {
    const AcGePoint2d end = after(closedWalk, i).point, origin = closedWalk.front().point;
    const AcGeVector2d from = closedWalk[i].point - origin, to = end - origin, chord = to - from;
    area += from.crossProduct(to) / 2;
    const double bulge = closedWalk[i].bulge;
    if (bulge != 0) area += chord.dotProduct(chord) / 4 * segmentArea(bulge);
  }
  return area;
}

bool insideClosedWalk(std::span<const BulgeVertex> closedWalk, AcGePoint2d p) {
  int turns = 0;
  for (std::size_t i = 0; i < closedWalk.size(); ++i) {
    turns += windingOf(closedWalk[i], after(closedWalk, i).point, p);
  }
  return turns != 0;
}

}  // namespace tarnex
