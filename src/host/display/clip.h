// Keeping within numbers that a drawing library takes: what of lines and arcs lies near the page.
// Knows plane geometry. For this folder only.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

using Stretch = std::pair<AcGePoint2d, AcGePoint2d>;

// The part of the line from a to b inside the box; nothing when it misses it.
[[nodiscard]] std::optional<Stretch> stretchInside(AcGePoint2d a, AcGePoint2d b, const Extents2d& box);

// Chords of a line, an arc or an ellipse no farther than `tolerance` from it, where they reach into the box.
[[nodiscard]] std::vector<Stretch> chordsInside(const Curve& curve, const Extents2d& box, double tolerance);

}  // namespace tarnex
