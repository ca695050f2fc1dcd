// Lines and arcs as the offset handles them: ends, tangents and curvature, so that a line is an arc of
// curvature 0 and a nearly straight arc loses no digits. Internal to the offset; knows no corners and no
// sides.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "host/geometry/values.h"

namespace tarnex::offsets {

using Vec = AcGeVector2d;  // a place, too: seen from the path's own origin

inline double dot(Vec a, Vec b) {
  return a.x * b.x + a.y * b.y;
}
inline double cross(Vec a, Vec b) {
  return a.x * b.y - a.y * b.x;
}
inline Vec leftOf(Vec v) {
  return {-v.y, v.x};
}
inline double sizeOf(Vec v) {
  return std::sqrt(dot(v, v));
}

struct Box {
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  void add(const Box& b) {
    x0 = std::min(x0, b.x0), y0 = std::min(y0, b.y0), x1 = std::max(x1, b.x1), y1 = std::max(y1, b.y1);
  }
  [[nodiscard]] Box grown(double by) const { return {x0 - by, y0 - by, x1 + by, y1 + by}; }
  [[nodiscard]] bool meets(const Box& b) const {
    return x0 <= b.x1 && b.x0 <= x1 && y0 <= b.y1 && b.y0 <= y1;
  }
};

struct Piece {
  Vec start, end;
  Vec t0, t1;  // unit tangents at start and end
  double bulge = 0;
  double curvature = 0;  // 1/mm, above 0 counter-clockwise
};

// Start and end must differ.
Piece makePiece(Vec start, Vec end, double bulge);
Piece reversed(const Piece& p);
// Holds the whole piece; loose on arcs.
Box boxOf(Vec start, Vec end, double bulge);
inline Box boxOf(const Piece& p) {
  return boxOf(p.start, p.end, p.bulge);
}
double lengthOf(const Piece& p);
// The sweep in radians, positive counter-clockwise.
inline double sweepOf(const Piece& p) {
  return 4 * std::atan(p.bulge);
}

// Unit normal, left of travel, of the circle or line of p at (or abeam of) q.
Vec normalAt(const Piece& p, Vec q);
// How far q lies left of the endless line or the whole circle of p, mm.
double leftDistance(const Piece& p, Vec q);
// q lies abeam of the piece, between the normals at its ends.
bool abeam(const Piece& p, Vec q);
// Distance from q to the piece, mm.
double distanceTo(const Piece& p, Vec q);
// Place on the piece nearest to q.
Vec nearestOn(const Piece& p, Vec q);
// Where q (on the piece) lies: mm from the start on a line, radians swept (0 to 2 pi) on an arc.
double placeOf(const Piece& p, Vec q);
// The point at a part (0 to 1) of the piece's length.
Vec pointAt(const Piece& p, double part);
// The part of p between two of its own points.
Piece partOf(const Piece& p, Vec from, Vec to);

// Where two pieces meet: proper crossings, touches, and ends of either that lie on the other; all within
// `tolerance` mm. Pieces that run upon each other meet at the ends of the common stretch.
struct Meetings {
  std::array<Vec, 6> at;
  int count = 0;
  void add(Vec q, double tolerance);
};
Meetings meetings(const Piece& a, const Piece& b, double tolerance);

// Where `after`, which begins at the end of `before`, meets it once more (within `tolerance` mm of both).
std::optional<Vec> meetAgain(const Piece& before, const Piece& after, double tolerance);

// The lines or circles c + u·q - k/2 |q|² = 0, the left side positive and |u|² + 2kc = 1.
struct Locus {
  Vec u;
  double c = 0, k = 0;
};
Locus locusOf(Vec point, Vec leftNormal, double curvature);
// Both meeting places of two loci, first the one where b crosses a to the left; of circles that miss each
// other twice the place where they come nearest.
struct TwoPlaces {
  std::array<Vec, 2> at;
  int count = 0;      // 1: two lines (at[0], whichever side); 0: parallel or concentric
  bool real = false;  // they do meet
};
TwoPlaces meet(const Locus& a, const Locus& b);

}  // namespace tarnex::offsets
