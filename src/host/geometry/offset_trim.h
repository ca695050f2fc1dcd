// The offset where something collapses: the raw offset is cut where it meets itself, and what can be walked
// is joined again. Internal to the offset.
#pragma once

#include <optional>
#include <vector>

#include "host/geometry/offset_raw.h"

namespace tarnex::offsets {

// Vertices are seen from the source's origin. Nothing when the parts don't join to sound curves.
std::optional<std::vector<PolylineCurve>> trimmedOffset(const Source& s, const std::vector<Joint>& joints,
                                                        double distance);

}  // namespace tarnex::offsets
