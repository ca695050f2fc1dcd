// The offset of an open polyline with arcs: where the centre of a wire runs beside a contour.
// Knows spans and bulges; lead-ins, sides and passes are above it.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

// The curves `distance` mm beside `path`: above 0 left of travel, below 0 right; each runs the way of the path.
// Corners are trimmed, or extended until the neighbours meet (a line as endless, an arc as its circle); neighbours
// that never meet are joined by an arc about the shared vertex. Arcs stay arcs, vanished ones are removed, and
// loops that a wire of that size can't reach are cut away. A path whose ends coincide is taken as closed: the
// result is closed, and starts where the offset of the path's start lies (or at the nearest place that is left).
// Where the region falls apart there are several curves; the one nearest to the path's start comes first.
// An empty list: nothing is left. Nothing (declined): fewer than two distinct vertices, a coordinate or bulge that
// isn't finite, or a result that can't be vouched for.
// Tolerances grow with the size of the coordinates; there is no absolute one.
[[nodiscard]] std::optional<std::vector<PolylineCurve>> offsetCurves(std::span<const BulgeVertex> path,
                                                                     double distance);

}  // namespace tarnex
