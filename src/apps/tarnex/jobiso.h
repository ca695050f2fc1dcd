// The slow-wire job: one drawing to one ISO program, by nothing but commands that a user could type: GA for
// holes and for outer shapes with their break, GG for each style and for the program. Knows which commands in
// which order; what they do, the rooms know.
#pragma once

#include "apps/tarnex/drawingjob.h"

namespace tarnex {

// `machine` is FOLDER/NAME. What neither file nor option says is as the drawing's job has it, or else the
// job that stands in the install folder.
struct JobIsoOptions : JobOptions {
  std::string job;  // a job's source (TOML), with its rules; empty: none
  std::string by;   // "figure" or "pass"; empty: as the job says
};

// `cutLength` is that of the moves in the program, all passes and leads, without the moves between figures.
struct JobIsoResult : JobResult {
  std::string machine;  // FOLDER/NAME that the program is for
  bool byPass = false;
  int figures = 0, passes = 0;
  long lines = 0;
  std::vector<double> cutLengthPerPass;                      // mm, by the pass record that is in force
  std::vector<std::pair<std::string, int>> figuresPerStyle;  // in the job's order
};

[[nodiscard]] JobIsoResult runJobIso(const std::string& drawing, const JobIsoOptions& options);

// What all drawings of a run have in common, looked at before the first is read.
struct IsoJobChoice {
  int exitCode = kDone;   // else the job's file has faults, or there is no such machine
  std::string why;        // a line for each fault
  std::string extension;  // of programs without a name of their own, as the machine's post has it
};
[[nodiscard]] IsoJobChoice chooseIsoJob(const JobIsoOptions& options);

}  // namespace tarnex
