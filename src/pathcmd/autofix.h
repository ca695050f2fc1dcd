// Auto fix: small features in the polyline of finished paths, so that a wire can cut their corners and a slug
// leaves no mark at the entry. The contour that a path was made from stays. Knows paths and the sizes of
// auto fix; where the sizes come from is the form's matter.
#pragma once

#include <optional>
#include <vector>

#include "frame/autofix.h"
#include "frame/module.h"
#include "toolpath/toolpath.h"

namespace tarnex {

// The corner at vertex p between its neighbours a and b, and the bulges of both spans.
struct FixCorner {
  AcGePoint2d a, p, b;
  double bulgeIn = 0, bulgeOut = 0;
  double angle = 0;  // between the rays to a and b (chords of arcs), radians, 0 to π
  int side = 0;      // -1 the polyline turns left, 1 right, 0 hardly at all
  int turn = 0;      // below 0 the corner turns with the path, above 0 against it
};
[[nodiscard]] FixCorner fixCornerAt(const PolylineCurve& path, int vertex, int nDirection);
// The two spans run into each other without a bend (0.001 rad).
[[nodiscard]] bool isSmoothJoin(const FixCorner& corner);

// What becomes of a corner: vertices that come in before it, and where its own vertex goes.
struct CornerChange {
  std::vector<BulgeVertex> before;
  AcGePoint2d at;
};
// Nothing where the kind leaves the corner alone: the wrong turn, a size of 0, a span that isn't longer than
// what the fix takes of it. An arc's end is moved along its chord and keeps its bulge, so its radius changes.
[[nodiscard]] std::optional<CornerChange> notchAndRound(const FixCorner& corner,
                                                        const AutoFixSettings& sizes);
[[nodiscard]] std::optional<CornerChange> roundAll(const FixCorner& corner, const AutoFixSettings& sizes);
[[nodiscard]] std::optional<CornerChange> reliefCircle(const FixCorner& corner, const AutoFixSettings& sizes);
[[nodiscard]] std::optional<CornerChange> spike(const FixCorner& corner, const AutoFixSettings& sizes);
[[nodiscard]] std::optional<CornerChange> ear(const FixCorner& corner, const AutoFixSettings& sizes);

struct CornersFixed {
  bool changed = false;
  bool full = false;                   // the path can't take more vertices; the rest stays
  std::vector<int> smooth;             // kind 2: vertices that were left since they are smooth
  std::vector<AcGePoint2d> spikeTips;  // kind 6
  std::vector<AcGePoint2d> loops;      // kind 7: corners that the path now passes twice, by nature
};
// Kinds 1, 2, 3, 6 and 7 on the corners within the window (world, its edges included), each once. Threading
// point, entry point and the closing vertex are never fixed.
CornersFixed fixCorners(CToolPath& path, const AutoFixSettings& sizes, const Extents2d& window);

// Kinds 4 and 5: a pocket at the entry, past the contour. The path then starts and ends on its tip, on the
// lead-in's line; at an arc on the radius through the entry, away from the side that the wire comes from.
// A pocket deeper than half a circle is none.
[[nodiscard]] bool isPocket(const AutoFixSettings& sizes);
// False, nothing changed: an open path, or spans at its entry that are too short or (for less than 0.001 rad
// of the arc) too flat for it.
[[nodiscard]] bool fixEntry(CToolPath& path, const AutoFixSettings& sizes);

// Windows over the paths to fix, until one is empty. What a path would cross of itself is told.
void AF(Module& module);

}  // namespace tarnex
