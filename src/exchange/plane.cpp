// Plane arithmetic of the judge: strokes, their feet, crossings and areas.
// Knows no programs, no compensation, no drawing.
#include "exchange/plane.h"

namespace tarnex::truth {

namespace {

constexpr double kTurn = 6.283185307179586;
constexpr double kFlat = 1e-6;       // mm; an arc that leaves its chord by less is a line to any wire
constexpr double kOnTheArc = 1e-12;  // turns of rounding at the ends of an arc

double angleOf(Vec v) {
  return std::atan2(v.y, v.x);
}

Point onCircle(Point c, double r, double angle) {
  return {c.x + r * std::cos(angle), c.y + r * std::sin(angle)};
}

// Where the direction `angle` lies on the arc, 0 at its start and 1 at its end; beyond 1 it isn't on the arc.
double partOf(const Stroke& s, double angle) {
  const double size = std::abs(s.sweep);
  double turned = std::fmod(s.sweep > 0 ? angle - s.from : s.from - angle, kTurn);
  if (turned < 0) turned += kTurn;
  if (turned > kTurn * (1 - kOnTheArc)) turned = 0;
  return size > 0 ? turned / size : 2;
}

// Points where two strokes may be nearest besides their ends; feet that lie on neither are dropped by the
// caller.
struct Candidates {
  Point p[4];
  int n = 0;
  void add(Point q) { p[n++] = q; }
};

Candidates lineLine(const Stroke& a, const Stroke& b) {
  Candidates c;
  const Vec u = a.end - a.start, v = b.end - b.start;
  const double d = cross(u, v);
  if (d == 0) return c;
  const double t = cross(b.start - a.start, v) / d;
  if (t >= 0 && t <= 1) c.add(a.start + u * t);
  return c;
}

Candidates lineCircle(const Stroke& line, const Stroke& arc) {
  Candidates c;
  const Vec u = unit(line.end - line.start);
  const Point foot = line.start + u * dot(arc.centre - line.start, u);
  const double h = dist(foot, arc.centre);
  c.add(foot);
  if (h > 0) c.add(arc.centre + (foot - arc.centre) * (arc.radius / h));
  if (h < arc.radius) {
    const double w = std::sqrt((arc.radius - h) * (arc.radius + h));
    c.add(foot + u * w), c.add(foot - u * w);
  }
  return c;
}

Candidates circleCircle(const Stroke& a, const Stroke& b) {
  Candidates c;
  const double d = dist(a.centre, b.centre);
  if (d == 0) return c;
  const Vec u = unit(b.centre - a.centre);
  c.add(a.centre + u * a.radius), c.add(a.centre - u * a.radius);
  const double x = (d * d + (a.radius - b.radius) * (a.radius + b.radius)) / (2 * d);
  const double yy = (a.radius - x) * (a.radius + x);
  if (yy > 0) {
    const double y = std::sqrt(yy);
    c.add(a.centre + u * x + Vec{-u.y, u.x} * y), c.add(a.centre + u * x - Vec{-u.y, u.x} * y);
  }
  return c;
}

void take(Closest& best, const Stroke& a, const Stroke& b, Point p) {
  const Point onA = nearest(a, p).point;
  const Foot onB = nearest(b, onA);
  if (onB.distance < best.distance) best = {onB.distance, onA};
}

}  // namespace

Stroke lineStroke(Point a, Point b) {
  Stroke s;
  s.start = a, s.end = b;
  return s;
}

Stroke arcStroke(Point centre, Point start, double sweep) {
  Stroke s;
  s.arc = true, s.centre = centre, s.start = start, s.sweep = sweep;
  s.radius = dist(centre, start);
  s.from = angleOf(start - centre);
  s.end = onCircle(centre, s.radius, s.from + sweep);
  return s;
}

Stroke spanStroke(Point a, Point b, double bulge) {
  const double chord = dist(a, b);
  if (!std::isfinite(bulge) || std::abs(bulge) * chord / 2 < kFlat) return lineStroke(a, b);
  const double toCentre = (1 - bulge * bulge) / (4 * bulge);  // of the chord's length, left of it
  const Vec u = b - a;
  Stroke s = arcStroke(midpoint(a, b) + Vec{-u.y, u.x} * toCentre, a, 4 * std::atan(bulge));
  s.end = b;
  return s;
}

Point at(const Stroke& s, double t) {
  if (t <= 0) return s.start;
  if (t >= 1) return s.end;
  if (s.arc) return onCircle(s.centre, s.radius, s.from + s.sweep * t);
  return s.start + (s.end - s.start) * t;
}

Vec heading(const Stroke& s, double t) {
  if (!s.arc) return unit(s.end - s.start);
  const double a = s.from + s.sweep * t, turn = s.sweep > 0 ? 1 : -1;
  return {-turn * std::sin(a), turn * std::cos(a)};
}

double lengthOf(const Stroke& s) {
  return s.arc ? s.radius * std::abs(s.sweep) : dist(s.start, s.end);
}

Stroke moved(Stroke s, Vec by) {
  s.start = s.start + by, s.end = s.end + by, s.centre = s.centre + by;
  return s;
}

Foot nearest(const Stroke& s, Point p) {
  if (s.arc && p != s.centre) {
    const double t = partOf(s, angleOf(p - s.centre));
    if (t <= 1) {
      const double d = dist(p, s.centre);
      return {s.centre + (p - s.centre) * (s.radius / d), t, std::abs(d - s.radius)};
    }
  } else if (!s.arc) {
    const Vec u = s.end - s.start;
    const double uu = dot(u, u), t = uu > 0 ? dot(p - s.start, u) / uu : 0;
    if (t > 0 && t < 1) {
      const Point q = s.start + u * t;
      return {q, t, std::abs(cross(u, p - s.start)) / std::sqrt(uu)};
    }
  }
  const double a = dist(p, s.start), b = dist(p, s.end);
  return a <= b ? Foot{s.start, 0, a} : Foot{s.end, 1, b};
}

Closest closest(const Stroke& a, const Stroke& b) {
  Closest best{1e300, a.start};
  take(best, a, b, a.start), take(best, a, b, a.end);
  take(best, a, b, b.start), take(best, a, b, b.end);
  const Candidates c =
      a.arc ? (b.arc ? circleCircle(a, b) : lineCircle(b, a)) : (b.arc ? lineCircle(a, b) : lineLine(a, b));
  for (int i = 0; i < c.n; ++i) take(best, a, b, c.p[i]);
  return best;
}

double beside(const Stroke& s, Point p) {
  if (!s.arc) return cross(unit(s.end - s.start), p - s.start);
  const double d = dist(p, s.centre);
  return s.sweep > 0 ? s.radius - d : d - s.radius;
}

double farthestBeside(const Stroke& s, double t0, double t1, const Stroke& span, int side) {
  double most = std::max(side * beside(span, at(s, t0)), side * beside(span, at(s, t1)));
  auto take = [&](double t) {
    if (t > t0 && t < t1) most = std::max(most, side * beside(span, at(s, t)));
  };
  if (s.arc) {
    Vec out{1, 0};
    if (!span.arc) {
      const Vec u = span.end - span.start;
      out = {-u.y, u.x};
    } else {
      out = s.centre - span.centre;
    }
    const double a = angleOf(out);
    take(partOf(s, a)), take(partOf(s, a + kTurn / 2));
  } else if (span.arc) {
    take(nearest(s, span.centre).t);
  }
  return most;
}

Box boxOf(const Stroke& s) {
  Box b;
  b.add(s.start), b.add(s.end);
  if (!s.arc) return b;
  for (int quarter = 0; quarter < 4; ++quarter) {
    const double a = quarter * kTurn / 4;
    if (partOf(s, a) <= 1) b.add(onCircle(s.centre, s.radius, a));
  }
  return b;
}

double areaOf(const std::vector<Stroke>& walk) {
  if (walk.empty()) return 0;
  const Point o = walk.front().start;  // near the walk, so that far coordinates don't eat the digits
  double sum = 0;
  for (const Stroke& s : walk) {
    sum += cross(s.start - o, s.end - o) / 2;
    if (s.arc) sum += s.radius * s.radius * (s.sweep - std::sin(s.sweep)) / 2;
  }
  return sum;
}

bool encloses(const std::vector<Stroke>& walk, Point p) {
  bool inside = false;
  for (const Stroke& s : walk) {
    const Point a = s.start, b = s.end;
    if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y))) inside = !inside;
    if (!s.arc) continue;
    // The piece between chord and arc changes sides too; a counter-clockwise arc lies right of its chord,
    // small or large.
    const double left = cross(b - a, p - a);
    if (dist(p, s.centre) < s.radius && (s.sweep > 0 ? left < 0 : left > 0)) inside = !inside;
  }
  return inside;
}

}  // namespace tarnex::truth
