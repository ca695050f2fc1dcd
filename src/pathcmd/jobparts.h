// What the jobs have in common, and the loops that their dialogs choose between.
// Internal to the jobs.
#pragma once

#include "pathcmd/jobs.h"
#include "pathcmd/paths.h"
#include "toolpath/breakpoint.h"

namespace tarnex {

// ---- loops: each asks until Enter or a cancelled prompt

void pickContourJob(Module& module, const ProcessStyle* style);
void pickBreakJob(Module& module);
void pickRoughJob(Module& module, const ProcessStyle* style);

// ---- a path that was just made: the last of the list

[[nodiscard]] Opened<CToolPath> lastPath(Module& module);
// Offset and clearance 0, and the style; null: BASE.
void settleJobPath(CToolPath& path, const ProcessStyle* style);
[[nodiscard]] BreakPrompt breakPrompt(Module& module);
// The user picks the break of the last path. False: given up, and the path is gone again.
bool pickBreakOfLast(Module& module);

// Asks for the length left before the entry point and keeps it in the settings. False: cancelled.
[[nodiscard]] bool askGap(Module& module);
// Settings of a job in a form of their own; the settings that stand are saved before.
void editJobSettings(Module& module);

}  // namespace tarnex
