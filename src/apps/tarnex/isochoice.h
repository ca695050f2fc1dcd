// Which job a drawing's ISO program is made with, and which of its styles each figure gets.
// Knows job files, machines and rules; no command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/tarnex/jobiso.h"
#include "machining/jobsource.h"

namespace tarnex {

class DrawingVars;
class CToolPath;

// A failure as the program ends with it.
struct JobFault {
  int exitCode = kDone;  // kDone: none
  std::string why;       // a line for each fault
};

struct IsoJob {
  JobLayout layout;
  std::vector<StyleRule> rules;
  [[nodiscard]] std::string machine() const { return layout.sPostPath + "/" + layout.sMachine; }
};

// The job that stands in `folder`; over it what the drawing's keys say (null: no drawing), then the job's
// file, then the options.
[[nodiscard]] JobFault isoJobOf(const JobIsoOptions& options, const std::string& folder,
                                const DrawingVars* drawing, IsoJob& job);
// The job's machine isn't there: those that are, and the nearest by name.
[[nodiscard]] JobFault machineFault(const IsoJob& job, const std::string& folder);
// What the file of the job's post lacks, one sentence; empty where it is as it should be.
[[nodiscard]] std::string postProblem(const IsoJob& job, const std::string& folder);
// Of its programs, as the machine's post has it; "iso" where it has none.
[[nodiscard]] std::string programExtension(const IsoJob& job, const std::string& folder);

// The fields of the job that --set reaches, beside the settings: those of GG's form.
[[nodiscard]] bool isJobField(const std::string& name);

// Which style a figure gets: by the first rule that fits, else the job's first.
class StyleChoice {
 public:
  struct Figure {
    bool outer = false;
    std::string layer;  // of the drawn contour
    int colour = 7;     // as it shows
  };
  explicit StyleChoice(const IsoJob& job) : job_(job), fitted_(job.rules.size()) {}

  [[nodiscard]] const ProcessStyle& styleOf(const Figure& figure) const;
  // The same, counted for what is told in the end; an index into the job's styles.
  std::size_t choose(const Figure& figure);
  void tell(std::vector<std::string>& said) const;

 private:
  static constexpr std::size_t kNoRule = static_cast<std::size_t>(-1);
  [[nodiscard]] std::size_t ruleOf(const Figure& figure) const;
  [[nodiscard]] std::size_t styleOfRule(std::size_t rule) const;

  const IsoJob& job_;
  std::vector<int> fitted_;  // figures, by rule
  int withoutRule_ = 0;
};
[[nodiscard]] StyleChoice::Figure figureOf(const AcDbDatabase& drawing, const AcDbEntity& contour,
                                           bool outer);

}  // namespace tarnex
