// A reckoning of offsets that shares no code with them: fine polygons, Boolean operations of another library,
// and plain distances. Knows nothing of how the offset is made.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex::reckoning {

using Outline = std::vector<BulgeVertex>;  // a closed one repeats its first vertex, as the offset takes it

// Shortest distance from p to the outline, mm, span by span.
double distanceTo(const Outline& path, AcGePoint2d p);
// Vertices and points between them, `perSpan` steps along each span.
std::vector<AcGePoint2d> samples(const PolylineCurve& c, int perSpan);
// Signed area of closed curves, mm²: above 0 counter-clockwise.
double signedArea(const PolylineCurve& c);
// No two spans of the closed outline meet but neighbours at their shared vertex (of some mm in size).
bool isSimple(const Outline& path);

// What the offset of a simple closed outline leaves, told by union and difference of fine polygons: the
// outline's strips and its corners' mitres, taken from (inwards) or added to (outwards) its inside.
struct Expected {
  double area = 0;       // mm² inside of what is left
  double tolerance = 0;  // mm², from the polygons' chords
  int outer = 0, holes = 0;
  std::vector<std::vector<AcGePoint2d>> mitres;
};
Expected expectedOffset(const Outline& closed, double distance);

// Random simple outlines of about 10 mm: stars with straight, bulged and rounded spans, either way round.
Outline randomOutline(std::mt19937& random);
// A comb on the grid: slots of width 2·d; bottoms square, with corners of radius d, or half circles of radius
// d.
Outline comb(int slots, double d, int bottom, bool clockwise);
// A part of a ring with a slot of width 2·d along it, from the angle `from` (radians) on, with a round end.
Outline arcSlot(double d, double from, bool clockwise);
// A random outline along the lines of a grid of 1 mm, without holes; corners square or rounded by 0.25 or 0.5
// mm.
Outline gridOutline(std::mt19937& random);
Outline changed(const Outline& path, double scale, AcGeVector2d shift);
Outline turned(const Outline& path, double radians);
// Coordinates and bulges rounded to multiples of `step`, as drawings are that were written with few digits.
Outline roundedTo(const Outline& path, double step);
Outline reversedOutline(const Outline& path);

}  // namespace tarnex::reckoning
