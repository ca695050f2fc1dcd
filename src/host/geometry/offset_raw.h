// The raw offset: every span moved sideways, every corner solved by itself. Whether the whole is what a wire
// can walk is asked elsewhere. Internal to the offset.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/geometry/curves.h"
#include "host/geometry/offset_piece.h"

namespace tarnex::offsets {

// The path as pieces, seen from `origin`; repeated vertices are gone.
struct Source {
  std::vector<Piece> spans;
  Vec origin;
  bool closed = false;
  double tolerance = 0;  // mm: what rounding of coordinates of this size can add up to
  [[nodiscard]] std::size_t next(std::size_t i) const { return i + 1 < spans.size() ? i + 1 : 0; }
};
// Nothing when the path has fewer than two distinct vertices or a number that isn't finite.
std::optional<Source> readSource(std::span<const BulgeVertex> path, double distance);

enum class JointKind {
  kMeet,   // the neighbours are trimmed or extended to `end`, which is `start` as well
  kRound,  // the offset goes round the corner and they never meet, or one vanishes: an arc about the vertex
  kApart,  // an inner corner that can't be solved by its neighbours alone: they run on to where they lie
           // abeam of it
  kEnd     // of an open path
};

// What becomes of the vertex between two spans. The first one's offset ends at `end`, the second one's begins
// at `start`; `gained` and `given` are how far that lies beyond the place abeam of the vertex, forward of
// travel: mm on a line, radians on an arc.
struct Joint {
  JointKind kind = JointKind::kApart;
  bool convex = false;  // the offset goes round the outside of the corner
  Vec end, start;
  double gained = 0, given = 0;
};

// Turned to the other side or shrunk to a point by the offset.
bool vanishes(const Piece& span, double distance, double tolerance);
Joint jointBetween(const Piece& before, const Piece& after, double distance, double tolerance);
Joint firstJoint(const Piece& span, double distance);
Joint lastJoint(const Piece& span, double distance);

// The offset of a span between its two joints; nothing when it has no length left that is worth its own
// rounding (or an arc would wind once round itself).
std::optional<BulgeVertex> rawPiece(const Piece& span, const Joint& from, const Joint& to, double distance,
                                    double tolerance);
// Bulge of the rounding arc at a joint of kind kRound about vertex v.
double roundBulge(const Joint& j, Vec v, double distance);

}  // namespace tarnex::offsets
