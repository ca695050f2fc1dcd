// The road that all jobs share: one drawing opened, settings chosen, contours found, paths made, looked over,
// saved and plotted. Knows which steps in which order; paths and programs of its kind each job adds.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/tarnex/jobsteps.h"
#include "apps/tarnex/session.h"
#include "contour/survey.h"
#include "host/dxf/dxf.h"

namespace tarnex {

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kUnreadable = 3 };

struct JobOptions {
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

// What became of one drawing.
struct JobResult {
  int exitCode = kDone;
  bool interrupted = false;               // by the user, before the program stood
  std::string drawing, program, failure;  // failure: one sentence, empty when the program stands
  DxfReport read;
  LooseSurvey loose;
  ContourSurvey found;
  std::size_t leftOut = 0;  // contours that can't be cut, each with a warning
  std::size_t holes = 0, outer = 0, paths = 0;
  double cutLength = 0;               // mm
  std::vector<std::string> warnings;  // by place
  std::vector<std::string> said;      // what was decided on the way
  std::vector<std::string> script;
  std::string transcript;                               // what the commands printed
  std::vector<std::pair<std::string, double>> seconds;  // where the time went, step by step
};

// The file that a drawing's program goes to; without a name of its own it gets the drawing's and `extension`.
[[nodiscard]] std::string programFileOf(const std::string& drawing, const JobOptions& options,
                                        const std::string& extension);

class DrawingJob {
 public:
  DrawingJob(const DrawingJob&) = delete;
  DrawingJob& operator=(const DrawingJob&) = delete;
  virtual ~DrawingJob() = default;
  void run();

 protected:
  using Contours = std::vector<const SurveyedContour*>;
  // Both outlive the job; `result` has the program's file already.
  DrawingJob(const std::string& drawing, const JobOptions& options, JobResult& result);

  // ---- what each kind of job adds. False: failed, and `fail` has been told why

  virtual bool chooseOwnSettings() = 0;
  // Whether --set may name it although it is none of the settings: a field of the job's forms.
  virtual bool takesSet(const std::string&) { return false; }
  // Why a contour can't be cut; empty when it can.
  virtual std::string obstacle(const SurveyedContour& contour) = 0;
  virtual void makePathsOf(const Contours& holes, const Contours& outer) = 0;
  virtual bool writeProgram() = 0;
  virtual bool programStands() = 0;
  virtual void survey() = 0;  // of the paths, once the program stands

  // ---- tools of theirs

  bool fail(int exitCode, std::string why);
  [[nodiscard]] std::string lastWords() const;  // the last line that was printed
  // Their values in the install folder as they were before the job: a user who runs the script keeps his own.
  void putSettingsBack(std::initializer_list<const char*> names);
  static bool isHole(const SurveyedContour& c) { return c.depth % 2 == 1; }
  static std::string placeOf(const SurveyedContour& c);

  const JobOptions& options_;
  JobFolder folder_;
  Session session_;
  JobSteps steps_;

 private:
  bool timed(const char* step, bool (DrawingJob::*what)());
  bool open();
  bool chooseSettings();
  bool prepare();
  bool makePaths();
  bool mendOrder();
  bool lookOver();
  bool saveAndPlot();
  void tellUnmade(const Contours& contours);
  void tellLoose();

  WireCutSettings standing_{""};  // as the user has them
  JobResult& result_;
};

}  // namespace tarnex
