// Object snap: points of what lies under the target.
// Knows no prompt.
#pragma once

#include <optional>
#include <vector>

#include "host/editor/state.h"

namespace tarnex {

// Half the size of a box of that many pixels, mm in the drawing; the view counts as 150 of them high.
[[nodiscard]] double halfPixels(const EditorState& state, int pixels);

// The snap point of the entity nearest to p within the target, for a single mode however far the point lies
// (the middle of a long line that was hit near its end). Of several modes those but `near` count when they
// give a point within the target, the nearest first; `near` comes last. All points in user coordinates.
[[nodiscard]] std::optional<AcGePoint3d> snapTo(EditorState& state, const AcGePoint3d& p,
                                                const std::vector<OsnapMode>& modes, const AcGePoint3d& from);
// The point as the running object snap (OSMODE) leaves it. A point that lies on a curve already stays.
[[nodiscard]] AcGePoint3d runningSnap(AcEditor& editor, EditorState& state, const AcGePoint3d& p,
                                      const AcGePoint3d* base);

}  // namespace tarnex
