// The paths of the current drawing in cutting order: their list, numbers and running end, and what orders
// them. Knows path entities; how they are made and edited stands in the room's other files.
#pragma once

#include <vector>

#include "frame/module.h"
#include "toolpath/display.h"
#include "toolpath/toolpath.h"

namespace tarnex {

inline constexpr AcGePoint2d kNoLastEnd{-9999, 9999};

struct PathState {
  std::vector<AcDbObjectId> PathList;  // every tool path of the drawing in cutting order
  int nextPathNo = 1;                  // number that the next path gets
  AcGePoint2d lastEnd = kNoLastEnd;    // where the wire stands after the last numbered path
};

// Gives the number and where the wire stood before; moves lastEnd on. Only what differs is written. A path on
// a locked layer keeps its number; the wire passes it all the same.
void numberPath(AcDbDatabase& drawing, PathState& state, AcDbObjectId id, int number);
void renumberAll(AcDbDatabase& drawing, PathState& state);
// The paths of the drawing, sorted by their numbers and numbered anew from 1, and the display values that the
// drawing holds. Costs what has changed since the last call here or of followPaths.
void rebuildPathList(Module& module);
// The same, but the numbers stay as they are in the drawing (nothing is written, so nothing that could be
// done again is lost): after undo and redo, and before paths are drawn.
void followPaths(Module& module);
// What the paths' drawing depends on, as it stands now: the context for DisplayOptions. Holds the module's
// settings, not a copy.
[[nodiscard]] PathDisplay pathDisplay(Module& module);
// Removes the last path and brings its source back.
void undoLastPath(AcDbDatabase& drawing, PathState& state);
// Nearest-neighbour order from the path at `first` to the one at `last`, then new numbers.
void sortNearest(AcDbDatabase& drawing, PathState& state, int first, int last);
// Shorter contours first, equal ones in a nearest-neighbour walk, then new numbers.
void sortByLength(AcDbDatabase& drawing, PathState& state);

// The same paths with every one behind those that lie inside its contour, else in their order: what is cut
// out must not take along what is still to be cut.
[[nodiscard]] std::vector<AcDbObjectId> insideFirst(const AcDbDatabase& drawing,
                                                    const std::vector<AcDbObjectId>& order);

// The user's choice of paths for a program, in order. Nothing: none, or cancelled.
[[nodiscard]] std::optional<std::vector<AcDbObjectId>> selectProgramPaths(Module& module);

}  // namespace tarnex
