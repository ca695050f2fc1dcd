// `SIM`: the paths of the drawing replayed on the screen as temporary vectors, span by span.
// Knows paths as the polylines that they hold, without wire offset or taper; who watches, the editor knows.
#pragma once

#include <vector>

#include "frame/module.h"

namespace tarnex {

// Moves between paths and what is cut, as colour indices.
inline constexpr int kLinkColor = 2, kCutColor = 3;

// Asks how to run (through, or step by step with a report of each span) and for the delay in milliseconds,
// then draws path after path in cutting order. The first move starts at the drawing variable STARTPOINT and
// the last one ends at ENDPOINT; where they aren't there, there are no such moves. (The transit points of QD
// and ZD have names of their own and aren't walked.) Each further move leads from threading point to
// threading point. A negative delay waits no time. The paths are hidden meanwhile and shown again on every
// way out, and the drawing doesn't count as changed. The vectors are gone at the end.
void SIM(Module& module);

// A temporary vector, world. Where the host declines it the screen is redrawn, and the answer is false.
bool drawVector(AcEditor& editor, const AcGePoint3d& from, const AcGePoint3d& to, int color);

// The points of an arc's chords from `a` to `b`, mm: steps of acos(0.99) whatever the radius, the last one as
// long as what is left. `bulge` isn't 0.
[[nodiscard]] std::vector<AcGePoint2d> chordsOfArc(AcGePoint2d a, AcGePoint2d b, double bulge);

}  // namespace tarnex
