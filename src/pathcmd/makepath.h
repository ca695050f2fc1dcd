// The path builder behind the creation commands: a contour is prepared and turned the right way, entry and
// threading points are chosen, and a path takes the contour's place. Knows settings, contours and paths;
// prompts belong to the commands.
#pragma once

#include "frame/module.h"
#include "pathcmd/paths.h"

namespace tarnex {

enum class MakeMode { kPick = 0, kBatch = 1 };

struct MakeRequest {
  MakeMode mode = MakeMode::kPick;
  AcDbObjectId entity;
  AcGePoint2d pick;     // where the contour was picked, world
  double fraction = 0;  // above 0: the entry lies this part of its span from the nearer end
  const ProcessStyle* style = nullptr;
};

// True when a path was made.
bool makePath(Module& module, const MakeRequest& request);
// The same for a pick; after a circular hole, all circles of the same radius when the settings ask for it.
bool makePathFromPick(Module& module, const MakeRequest& request);

// A new path outside the drawing, or null. `testSide`: whether T lies inside decides the side (and prints
// it).
[[nodiscard]] std::unique_ptr<CToolPath> makeContourPath(Module& module, AcGePoint2d thread,
                                                         AcGePoint2d entry, PolylineCurve contour,
                                                         int spanIndex, bool testSide);
// Colour, style, layer; appended, numbered and listed. The source has been erased before.
void addPath(Module& module, std::unique_ptr<CToolPath> path, AcDbObjectId layer, int color,
             const ProcessStyle* style);

// The user gives T and Q, path after path, until Enter. True when the last one given made a path.
bool makeManualPaths(Module& module);
// The same for a job, with the settings that stand: the paths have offset and clearance 0, the style (null:
// BASE) and the flags. An outer shape gets the break that the user picks; giving that up ends it, and the
// path is gone again.
struct ManualJob {
  const ProcessStyle* style = nullptr;
  int flags = 0;  // PathFlag
};
bool makeManualPaths(Module& module, const ManualJob& job);

// Entry and threading points through a small circle inside the contour.
struct EntryPoints {
  AcGePoint2d thread, entry;
  int spanIndex = 0;
};
[[nodiscard]] bool findThreadingHole(Module& module, MakeMode mode, const PolylineCurve& contour,
                                     EntryPoints& points);

// Commands.
void BP(Module& module);   // a path with an automatic lead-in from a pick
void BM(Module& module);   // a path with a threading point given by the user
void CS(Module& module);   // the cutting order by picking paths
void TTT(Module& module);  // rebuilds the list of paths
void AJ(Module& module);   // joins a selection and tells what stays open
void AJ1(Module& module);  // joins what touches one picked curve
void RR(Module& module);   // regenerates

}  // namespace tarnex
