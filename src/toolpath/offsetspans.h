// Which span of a path each span of its offset runs beside, and the out-and-back steps of a path.
// Knows vertices and bulges; what hangs on them (tapers, code texts) is above it.
#pragma once

#include <span>
#include <vector>

#include "toolpath/toolpath.h"

namespace tarnex {

// A path's vertices without its out-and-back steps (root, tip, root, both spans marked). The steps don't
// belong to the contour that is offset: a wire can't run beside them.
struct SteplessPath {
  std::vector<BulgeVertex> vertices;
  std::vector<int> index;  // of each vertex in the path; where a step stood, that of the root behind it
  struct Step {
    int vertex = 0;    // of `vertices`
    int root = 0;      // of the path: the root before the tip
    AcGeVector2d way;  // mm, from root to tip
  };
  std::vector<Step> steps;  // in path order
};
[[nodiscard]] bool hasSteps(std::span<const BulgeVertex> path);
[[nodiscard]] SteplessPath withoutSteps(std::span<const BulgeVertex> path);

// For each vertex k of the offset the index of the path's span beside which the offset's span from k runs;
// 0 for the lead-in, the path's last vertex for the last one. An arc about the path's vertex v, which rounds
// a corner, counts as span v - 1. `toTheLeft`: mm from the path to its offset, above 0 left of travel. Steps
// are matched with steps.
[[nodiscard]] std::vector<int> spansBeside(std::span<const BulgeVertex> path, const PathCurve& offset,
                                           double toTheLeft);

// Sets the steps of a path at the vertices of its offset again that came from their roots. A step whose
// corner the offset dropped is left out.
void restoreSteps(const SteplessPath& path, double toTheLeft, PathCurve& offset);

}  // namespace tarnex
