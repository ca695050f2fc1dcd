// Tools beside the ISO programs: the process report, the NC editor, the sibling program.
// Knows paths, the job's keys and the host; how programs are written is nothing to it.
#pragma once

#include "frame/module.h"

namespace tarnex {

// Draws a table of the job's styles that the chosen paths have: which paths, taper, fit value, and per pass
// offset and offset number, as the drawing's keys tell them. A style without paths has no row. The user
// places it; it becomes one block. A style with a negative count of passes shows as many as the writers cut.
void GY(Module& module);
void NC(Module& module);   // starts the NC editor with nothing
void TCF(Module& module);  // starts Hestrel.exe of the install folder; when it isn't there, nothing happens

}  // namespace tarnex
