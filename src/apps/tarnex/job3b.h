// The main job: one drawing to one 3B program, by nothing but commands that a user could type.
// Knows which commands in which order; what they do, the rooms know.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/tarnex/session.h"
#include "contour/survey.h"
#include "host/dxf/dxf.h"
#include "pathcmd/wiresurvey.h"

namespace tarnex {

struct Job3bOptions {
  std::vector<std::string> drawings;
  std::string output, outDir, machine, plot, save;
  std::vector<std::string> sets;  // KEY=VALUE
  std::vector<std::string> layers, skipLayers;
  std::optional<double> unitFactor;  // mm per drawing unit
  double scale = 1;
  std::optional<double> gap;  // mm
  bool clean = false, json = false, showScript = false;
  int jobs = 1;
};

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kUnreadable = 3 };

// What became of one drawing.
struct Job3bResult {
  int exitCode = kDone;
  bool interrupted = false;               // by the user, before the program stood
  std::string drawing, program, failure;  // failure: one sentence, empty when the program stands
  DxfReport read;
  LooseSurvey loose;
  ContourSurvey found;
  std::size_t leftOut = 0;  // contours that can't be cut, each with a warning
  std::size_t holes = 0, outer = 0, paths = 0;
  long blocks = 0;
  double cutLength = 0;               // mm along the wire's centre, contours and leads
  std::vector<std::string> warnings;  // by place
  std::vector<std::string> said;      // what was decided on the way
  std::vector<std::string> script;
  std::string transcript;                               // what the commands printed
  std::vector<std::pair<std::string, double>> seconds;  // where the time went, step by step
};

[[nodiscard]] Job3bResult runJob3b(const std::string& drawing, const Job3bOptions& options);

// The file that a drawing's program goes to.
[[nodiscard]] std::string programFileOf(const std::string& drawing, const Job3bOptions& options);

}  // namespace tarnex
