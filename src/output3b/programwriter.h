// `BB`: the chosen paths as one 3B program, from the file's name to the hand-over.
// Knows the program's frame; what is written for one path stands in contourwriter.
#pragma once

#include <string>

#include "frame/module.h"

namespace tarnex {

// What the last program of this run was: for summaries.
struct LastProgram3b {
  std::string path;  // real path of the file; empty: none was written
  long blocks = 0;
  std::size_t paths = 0;
};

// True when a file was written.
bool write3BProgram(Module& module, const std::string& machine);

void BB(Module& module);

}  // namespace tarnex
