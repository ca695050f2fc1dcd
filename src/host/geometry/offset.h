// The offset of an open polyline with arcs: where the centre of a wire runs beside a contour.
// Knows spans and bulges; lead-ins, sides and passes are above it.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

// The curves `distance` mm beside `path`: above 0 left of travel, below 0 right; each runs the way of the
// path. Corners are trimmed, or extended until the neighbours meet (a line as endless, an arc as its circle,
// up to half a turn); neighbours that never meet are joined by an arc about the shared vertex, and so is an
// outer corner at which one neighbour vanishes, one that turns back on itself, or a mitre of more than a
// million times the distance. Arcs stay arcs, vanished ones are removed, and loops that a wire of that size
// can't reach are cut away: no point of the result is nearer to the path than the distance, or lies on
// another corner's mitre. A path whose ends coincide is taken as closed: the result is closed, and starts
// where the offset of the path's start lies (or at the nearest place that is left). Where the region falls
// apart there are several curves; the one nearest to the path's start comes first. Outwards, pockets that
// close come as curves of their own, run the other way round. Nothing thinner than what the coordinates round
// to counts as left: a slot of twice the distance closes. An open path keeps square ends; what is too near to
// its other side or to its ends is cut away as well, so it can give several open curves, or a closed one
// where its arms come together. An empty list: nothing is left. Nothing (declined): fewer than two distinct
// vertices, a coordinate or bulge that isn't finite (or beyond 1e60), a closed path that crosses itself, or a
// result that can't be vouched for. Tolerances grow with the size of the coordinates; there is no absolute
// one.
[[nodiscard]] std::optional<std::vector<PolylineCurve>> offsetCurves(std::span<const BulgeVertex> path,
                                                                     double distance);

}  // namespace tarnex
