// The short commands that change paths which are there, and the points around them.
// Knows paths and prompts; how paths are made stands in makepath.
#pragma once

#include "contour/userinput.h"
#include "frame/module.h"
#include "pathcmd/paths.h"

namespace tarnex {

// Each asks until Enter or a cancelled prompt. What was changed before then stays, as one step of undo. A
// pick on nothing, on something else or on a path that can't be changed changes nothing, and the prompt
// returns.

// Taper, degrees. A typed value is taken between -90 and 90, both excluded, and remembered when the command
// ends.
void XD(Module& module);   // of the picked segment
void XD0(Module& module);  // none, on all selected paths
void CX(Module& module);   // of whole paths (A) or single segments (P), or none (C)

void CD(Module& module);   // reverses the cutting direction of each picked path
void CM(Module& module);   // moves the lead-in of each picked path to the other side
void QQ(Module& module);   // removes paths and brings their contours back
void SR(Module& module);   // marks a corner arc "R"
void SR0(Module& module);  // takes the mark, or another code, off a corner arc

// Points that the wire passes, as the current user coordinate system shows them; its rotation isn't kept. The
// simulation and the output know up to 101 of them before the first path; more are not taken.
void QD(Module& module);  // before the first path
void ZD(Module& module);  // after the last path
void QZ(Module& module);  // takes all of them away

// ---- for these commands

// The picked entity as a path; null when it is none (said).
[[nodiscard]] const CToolPath* pickedPath(Module& module, AcDbObjectId id);
// A path opened for a change; what can't be opened (a locked layer) is said.
[[nodiscard]] Opened<CToolPath> openPicked(Module& module, AcDbObjectId id);
// Where the pick lies on what it hit, world.
[[nodiscard]] AcGePoint2d snappedPick(Module& module, const UserInput& input);

}  // namespace tarnex
