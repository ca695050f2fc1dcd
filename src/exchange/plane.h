// Plane arithmetic of the judge: lines and arcs as strokes, distances between them, boxes.
// Stands on its own feet, so that a fault in the geometry of the writers can't hide itself; knows no
// programs.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/geometry/curves.h"
#include "host/geometry/values.h"

namespace tarnex::truth {

using Point = AcGePoint2d;
using Vec = AcGeVector2d;

// One straight line or arc, run from start to end; mm, radians. On an arc `sweep` is positive
// counter-clockwise and at most a full turn in size.
struct Stroke {
  Point start, end;
  bool arc = false;
  Point centre;
  double radius = 0, from = 0, sweep = 0;
};

[[nodiscard]] Stroke lineStroke(Point a, Point b);
[[nodiscard]] Stroke arcStroke(Point centre, Point start, double sweep);
// A polyline's span. A bulge whose arc leaves the chord by less than a nanometre, or that isn't finite, is a
// line.
[[nodiscard]] Stroke spanStroke(Point a, Point b, double bulge);

[[nodiscard]] Point at(const Stroke& s, double t);     // t from 0 to 1 along the stroke
[[nodiscard]] Vec heading(const Stroke& s, double t);  // unit; (1,0) for a stroke without length
[[nodiscard]] double lengthOf(const Stroke& s);
[[nodiscard]] Stroke moved(Stroke s, Vec by);

struct Foot {
  Point point;
  double t = 0;         // where on the stroke, 0 to 1
  double distance = 0;  // mm
};
[[nodiscard]] Foot nearest(const Stroke& s, Point p);

struct Closest {
  double distance = 0;  // mm; 0 where the strokes cross or touch
  Point onFirst;
};
// Least distance of two strokes, exact: over ends, feet and crossings.
[[nodiscard]] Closest closest(const Stroke& a, const Stroke& b);

// Distance of p from the stroke drawn out beyond its ends (endless line, whole circle); positive left of
// travel.
[[nodiscard]] double beside(const Stroke& s, Point p);
// The largest value of side * beside(span, p) for p on `s` between t0 and t1; side is 1 or -1.
[[nodiscard]] double farthestBeside(const Stroke& s, double t0, double t1, const Stroke& span, int side);

struct Box {
  double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
  void add(Point p) {
    x0 = std::min(x0, p.x), x1 = std::max(x1, p.x);
    y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
  }
  void add(const Box& b) {
    x0 = std::min(x0, b.x0), x1 = std::max(x1, b.x1);
    y0 = std::min(y0, b.y0), y1 = std::max(y1, b.y1);
  }
  [[nodiscard]] double distance(const Box& b) const {  // 0 where the boxes overlap
    const double dx = std::max({0.0, b.x0 - x1, x0 - b.x1});
    const double dy = std::max({0.0, b.y0 - y1, y0 - b.y1});
    return std::hypot(dx, dy);
  }
};
[[nodiscard]] Box boxOf(const Stroke& s);
[[nodiscard]] inline Box boxOf(Point p) {
  return {p.x, p.y, p.x, p.y};
}

// Area, mm², enclosed by strokes that follow each other, closed by a line; above 0 counter-clockwise.
[[nodiscard]] double areaOf(const std::vector<Stroke>& walk);
// p inside the closed walk, by parity. On the walk itself either answer may come.
[[nodiscard]] bool encloses(const std::vector<Stroke>& walk, Point p);

[[nodiscard]] inline double cross(Vec a, Vec b) {
  return a.x * b.y - a.y * b.x;
}
[[nodiscard]] inline double dot(Vec a, Vec b) {
  return a.x * b.x + a.y * b.y;
}
[[nodiscard]] inline double dist(Point a, Point b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}
[[nodiscard]] inline Vec unit(Vec v) {
  const double l = std::hypot(v.x, v.y);
  return l > 0 ? Vec{v.x / l, v.y / l} : Vec{1, 0};
}

}  // namespace tarnex::truth
