// `tarnex job`: the job that ISO programs are written with, shown, and as text to edit and keep.
// Knows files; what a job holds, the machining room knows.
#pragma once

#include <string>

namespace tarnex {

// Exit codes of the program (job3b.h): 0 done, 1 faults or nothing written, 3 unreadable.
int showJob();
int exportJob(const std::string& file);
int importJob(const std::string& file);  // the job stays as it is when there are faults

}  // namespace tarnex
