// What ground a wire of the offset's size can't stand on: nearer to the path than the distance, or on the
// mitre of a corner. Internal to the offset.
#pragma once

#include <array>
#include <vector>

#include "host/geometry/offset_raw.h"
#include "host/geometry/offset_tree.h"

namespace tarnex::offsets {

enum class Contact {
  kNone,
  kTouches,  // somewhere, or lies upon itself
  kCrosses   // two spans pass through each other, well within both
};

// Refers to source and joints for as long as it lives.
class Cover {
 public:
  Cover(const Source& s, const std::vector<Joint>& joints, double distance);

  // No span is nearer to p than the distance less `slack` mm.
  [[nodiscard]] bool farEnough(Vec p, double slack) const;
  // One of the few spans about `span` is nearer than that: told without a search.
  [[nodiscard]] bool nearNeighbours(Vec p, std::size_t span, double slack) const;
  // p lies on no mitre.
  [[nodiscard]] bool offMitres(Vec p) const;
  // Winding number of a closed path about p isn't 0.
  [[nodiscard]] bool insidePath(Vec p) const;
  [[nodiscard]] Contact pathWithItself() const;
  [[nodiscard]] const Source& source() const { return s_; }

 private:
  // From the vertex to where the span before ends, to where both meet, to where the span after starts, and
  // back.
  [[nodiscard]] std::array<Piece, 4> mitreAt(std::size_t joint) const;
  [[nodiscard]] bool hasMitre(std::size_t joint) const;

  const Source& s_;
  const std::vector<Joint>& joints_;
  double distance_;
  BoxTree spans_;
  std::vector<std::size_t> mitres_;  // their joints
  BoxTree mitreBoxes_;
};

}  // namespace tarnex::offsets
