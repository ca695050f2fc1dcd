// Line patterns as painters want them.
// Knows lengths; how a painter writes them down, it doesn't. For this folder only.
#pragma once

#include <vector>

#include "host/display/displaylist.h"

namespace tarnex {

// Dash, gap, dash, gap ... in mm of drawing; a dot has length 0. Runs of the same kind are one, and a pattern
// that begins with a gap begins with its first dash instead. Empty: the line is continuous, also where the
// pattern is so fine on paper (`pageScale`: mm of it per mm of drawing) that it would be but a grey line.
[[nodiscard]] std::vector<double> dashesAndGaps(const LinePattern& pattern, double patternScale,
                                                double pageScale);

}  // namespace tarnex
