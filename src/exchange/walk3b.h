// One 3B block as a stroke of the wire, with the rounding that its counts allow.
// Knows what a controller does with counts; no contours.
#pragma once

#include <optional>
#include <string>

#include "exchange/reader3b.h"

namespace tarnex::truth {

// What a block does when the wire stands at (0,0), mm, and how far a true move of which these are the counts
// may differ from it.
struct Walked {
  Stroke stroke;
  double endRounding = 0;  // mm; largest distance of the true end from the walked end
  double wayRounding = 0;  // mm; the same for the points on the way
  // The word of an arc that starts within 0.1 degrees of an axis is that of the quadrant behind the axis.
  // Where the start may therefore lie on the axis's other side: the move read that way.
  std::optional<Stroke> otherSide;
  std::string otherContradiction;
  std::string
      contradiction;  // empty, or what in the block doesn't fit together; the stroke is the likeliest reading
};
[[nodiscard]] Walked walkMove(const Move3b& m);

// How far the true end of an arc may lie from the recovered one, mm: the counts of the start are known to
// half a micrometre each and so is the count length, so the end is found again from every corner of those
// three intervals. Where the end lies in the half of the circle that its counting axis is meant for, that is
// a few micrometres however large the circle; for a block that counts along the wrong axis it can be the root
// of radius times micrometre.
struct ArcEnd {
  Stroke stroke;
  double rounding = 0;  // mm
};
[[nodiscard]] ArcEnd arcEnd(const Move3b& m, Vec startFromCentre);

}  // namespace tarnex::truth
