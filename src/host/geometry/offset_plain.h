// The offset where nothing collapses. Internal to the offset.
#pragma once

#include <optional>
#include <vector>

#include "host/geometry/offset_raw.h"

namespace tarnex::offsets {

// One joint per vertex: of a closed path joint i stands before span i, an open one has one more, at its end.
std::vector<Joint> solveJoints(const Source& s, double distance);

// The raw offset, if it is proven to be the whole answer: every piece keeps its direction and some length,
// and neither the path nor its offset comes near itself. Vertices are seen from the source's origin.
std::optional<PolylineCurve> plainOffset(const Source& s, const std::vector<Joint>& joints, double distance);

}  // namespace tarnex::offsets
