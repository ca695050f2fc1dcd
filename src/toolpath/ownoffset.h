// The system's own method of the offset: segment by segment, each corner solved against the element before
// it. It takes over where the host's offset declines; it cuts no loops away.
#pragma once

#include "toolpath/toolpath.h"

namespace tarnex {

struct OwnOffsetInput {
  const std::vector<BulgeVertex>& path;  // with its lead-in
  int side;                              // 1 or -1
  double distance;                       // mm, left of travel where side * distance is above 0
  int roundingSide;                      // nSide * nDirection of the path
  double arcReach;                       // dOffset: how far an arc is widened when two hits are weighed, mm
  bool closed;
};
[[nodiscard]] PathCurve ownOffset(const OwnOffsetInput& input);

}  // namespace tarnex
