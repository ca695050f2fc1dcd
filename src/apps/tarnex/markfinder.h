// Finds what is wrong with the contours and wire paths of a drawing that is open in a session.
// Knows the surveys that see it; nothing of how it is told.
#pragma once

#include "apps/tarnex/jobsteps.h"
#include "apps/tarnex/marks.h"

namespace tarnex {

struct FoundMarks {
  std::vector<Finding> findings;
  std::size_t contours = 0, paths = 0;  // looked at; contours of paths count as paths
  std::size_t openChains = 0;
  bool complete = true;  // false: so many contours meet each other that not all places were looked for
};

// In a drawing with paths, those are judged with their own offsets. In a plain one, the paths that
// `tarnex 3b` would make with the session's settings are made and judged; contours that cross or lie over
// each other get none. The session's drawing is changed: blocks apart, curves joined (within `gap` mm), paths
// made.
[[nodiscard]] FoundMarks findMarks(Session& session, JobSteps& steps, std::optional<double> gap);

}  // namespace tarnex
