// Many drawings: one job each, several at a time; one that fails doesn't stop the others.
// Knows jobs; what one does stands in job3b and jobiso.
#pragma once

#include <functional>

#include "apps/tarnex/job3b.h"
#include "apps/tarnex/jobiso.h"

namespace tarnex {

// What is left of a job when it is done: its text waits until all of them are.
struct JobTold {
  int exitCode = kDone;
  bool interrupted = false;
  bool failed = false;
  std::string text;  // goes to the output, or to the errors where the job failed and no JSON is wanted
  std::vector<std::string> script;
};

// One job for each drawing of the options; the exit code of the whole.
struct BatchRequest {
  const JobOptions& options;
  std::string extension;  // of programs that get their drawing's name
  std::function<JobTold(const std::string& drawing)> job;
};
int runBatch(const BatchRequest& request);

int run3b(const Job3bOptions& options);
int runIso(const JobIsoOptions& options);

}  // namespace tarnex
