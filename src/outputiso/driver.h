// `GG`: the job's dialog and what follows from it, up to an ISO program of the chosen paths.
// Knows prompts and the job; what stands in the program, program.h makes.
#pragma once

#include <functional>

#include "frame/module.h"
#include "outputiso/program.h"

namespace tarnex {

// Asks for paths, origin and file, writes the program with the post that stands in module.state<IsoPost>(),
// hands it to the editor and tells the warnings. False: cancelled, or not written; drawing and files are then
// as they were. `chosen` is called once when nothing is left to cancel, before anything is changed.
bool writeIsoProgram(Module& module, const std::function<void()>& chosen = {});

// The job comes from its file, the drawing's keys go before it. What the dialog was confirmed with stays in
// both, also where the choice of paths, origin or file that follows is cancelled; a job that wasn't changed
// is then not written either. With `bKeepJob` 0 the job is the drawing's alone, and the file stays as it is.
// Without prompts (CMDDIA 0) the dialog comes once.
void GG(Module& module);

}  // namespace tarnex
