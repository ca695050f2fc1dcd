// What was found wrong with a drawing: findings, and the numbered marks under which a user reads them.
// Knows kinds, places and words; how things are found and drawn is its neighbours' matter.
#pragma once

#include <string>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

enum class MarkKind {
  kGap,           // two free ends that nearly meet
  kOpenChain,     // a chain with a free end
  kBranch,        // more than two ends meet
  kDoubled,       // curves or contours drawn over each other
  kSelfCrossing,  // a contour crosses or touches itself
  kCrossing,      // two contours cross or touch
  kNoShape,       // a contour that encloses nothing, or is too large
  kTightRadius,   // the wire runs inside of an arc that is smaller than it
  kVanishes,      // no wire of this size fits
  kFallsApart,    // the offset contour splits
  kWireOverlap,   // the wire comes too near to another contour, or its path crosses itself
  kLeadIn,        // the lead-in crosses a contour
  kSharpCorner,   // the wire runs far out at a corner
  kOwnMethod,     // the offset was made corner by corner
};
[[nodiscard]] const char* nameOf(MarkKind kind);  // one of them: "gap", "open chain", ...

struct Finding {
  MarkKind kind = MarkKind::kGap;
  std::string layer;                // empty: none that could be named
  std::vector<AcGePoint2d> places;  // at least one; the first is where it is told
  double value = 0;                 // mm, or a count: what the kind is measured by
  double limit = 0;                 // mm: the wire offset, or 0
  std::string text;                 // what is wrong, without the place
};

struct Mark {
  int number = 0;  // from 1, as in the plot
  MarkKind kind = MarkKind::kGap;
  std::string layer;
  std::vector<AcGePoint2d> places;
  std::size_t count = 1;       // findings: more than one where alike ones were put together
  double least = 0, most = 0;  // their values
  double limit = 0;
  std::string text;
};
// By kind. Of one kind on one layer more than a dozen become one mark, so that a list can be read; a place
// is told once.
[[nodiscard]] std::vector<Mark> marksOf(std::vector<Finding> findings);

}  // namespace tarnex
