// One ISO program as a file: head, figures, end, second run.
// Knows the job and the paths that were chosen; what the user is asked, the driver knows.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "frame/module.h"
#include "machining/joblayout.h"
#include "outputiso/isopost.h"

namespace tarnex {

// What the last program of this run was: for summaries.
struct LastProgramIso {
  std::string path;  // real path of the file; empty: none was written
  long lines = 0;
  int figures = 0, passes = 0;
  std::array<double, kMostPasses> cutLength{};  // mm cut with each pass record, leads too; no rapid moves
  std::vector<std::string> warnings;            // a sentence each, in the user's language
  std::vector<AcDbObjectId> order{};            // of the paths that were chosen, as they were taken up
};

struct IsoProgramRequest {
  IsoPost& iso;  // its post is loaded
  const JobLayout& job;
  std::vector<AcDbObjectId> ids;  // tool paths in cutting order
  std::string path;               // real path of the file
};

// Writes the program to a temporary file and puts it in the old one's place; from module.ptOrigin, with the
// settings as they are. Each path is as if it had just been drawn. With offsets numbered by the program the
// numbers go to the paths' styles. False: the file can't be written, the user has been told, the old one is
// intact.
bool writeIsoFile(Module& module, const IsoProgramRequest& request);

}  // namespace tarnex
