// Slow-wire jobs: paths that carry a process style with a record for each pass, so that offset and clearance
// stay 0 on the path itself. The fast-wire open cut stands here too, since both open cuts are made alike.
// Knows settings, prompts and paths; programs are above it.
#pragma once

#include "frame/module.h"
#include "machining/processstyle.h"

namespace tarnex {

// What a path of a job has until the user gives it a style of his own: named BASE, and such that a program
// leaves it out (CToolPath::hasFirstPass is false).
[[nodiscard]] ProcessStyle makeBaseStyle();
inline constexpr const char* kBaseStyleName = "BASE";

// The jobs, with the style that their paths get; null: BASE. `diejob` makes no plain contour and no roughing
// with a style (catalogue message 1039). Kind 2, the upper and lower contour, isn't built and says so.
void dieJob(Module& module, const ProcessStyle* style);
void punchJob(Module& module, const ProcessStyle* style);
void openCutJob(Module& module, const ProcessStyle* style);

// The user gives paths the style, one by one or as a selection, or makes new ones with it, until Enter.
// False: cancelled; what was changed before stays.
[[nodiscard]] bool assignStyle(Module& module, const ProcessStyle& style);

// Commands.
void GA(Module& module);  // die: holes and outer shapes, roughing
void GT(Module& module);  // punch: contours, and outer shapes with a break that the user picks
void GK(Module& module);  // open cut, slow wire
void BK(Module& module);  // open cut, fast wire: with the wire offset of the settings
void JX(Module& module);  // offset and clearance of selected paths

}  // namespace tarnex
