// Which job, and which of its styles.
// Knows job files, machines and rules; no command.
#include "apps/tarnex/isochoice.h"

#include <algorithm>
#include <cmath>

#include "frame/drawingvars.h"
#include "frame/folders.h"
#include "host/editor/answers.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "machining/machinepost.h"
#include "machining/machines.h"
#include "outputiso/postslots.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// Changes of one letter that make one name of the other.
std::size_t lettersApart(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t corner = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = std::min({above + 1, row[j - 1] + 1, corner + (a[i - 1] == b[j - 1] ? 0 : 1)});
      corner = above;
    }
  }
  return row.back();
}

JobFault noMachine(const std::string& name, const std::string& folder) {
  const auto machines = machinesOf(folder);
  std::string why = name + ": there is no such machine; ", all;
  const std::string* nearest = nullptr;
  std::size_t best = std::max<std::size_t>(2, name.size() / 3) + 1;
  std::vector<std::string> names;
  for (const auto& machine : machines) names.push_back(machine.text());
  for (const auto& machine : names) {
    all += (all.empty() ? "" : ", ") + machine;
    const std::size_t apart = lettersApart(upperCase(machine), upperCase(name));
    if (apart < best) {
      best = apart;
      nearest = &machine;
    }
  }
  if (nearest) why += "the nearest is " + *nearest + "; ";
  return {kUsage, why + (all.empty() ? "no machine is there at all" : "there are " + all)};
}

JobFault takeFile(const std::string& file, IsoJob& job) {
  const auto text = readFile(file);
  if (!text) return {kUnreadable, text.error.text()};
  auto read = readJobSource(*text.value, file, job.layout);
  if (!read.faults.empty()) {
    std::string all;
    for (const auto& fault : read.faults) all += (all.empty() ? "" : "\n") + fault;
    return {kFailed, all};
  }
  job.layout = std::move(read.job);
  job.rules = std::move(read.rules);
  return {};
}

}  // namespace

JobFault isoJobOf(const JobIsoOptions& options, const std::string& folder, const DrawingVars* drawing,
                  IsoJob& job) {
  job = {};
  job.layout.setFolder(folder);
  job.layout.load();
  if (drawing) readJobKeys(*drawing, job.layout);
  if (!options.job.empty())
    if (auto fault = takeFile(options.job, job); fault.exitCode != kDone) return fault;
  job.layout.nStyleCount = std::max(job.layout.nStyleCount, 1);
  if (!options.by.empty()) job.layout.nCutType = options.by == "pass" ? CutType::kByPass : CutType::kByFigure;
  MachineName machine{job.layout.sPostPath, job.layout.sMachine};
  std::string error;
  if (!options.machine.empty() && !parseMachine(options.machine, machine, error))
    return {kUsage, "--machine " + options.machine + ": " + error};
  job.layout.sPostPath = machine.folder;
  job.layout.sMachine = machine.name;
  return {};
}

JobFault machineFault(const IsoJob& job, const std::string& folder) {
  const bool there = fileExists(realPath(postPath(folder, job.layout.sPostPath, job.layout.sMachine)));
  return there ? JobFault{} : noMachine(job.machine(), folder);
}

std::string postProblem(const IsoJob& job, const std::string& folder) {
  const auto bytes = readFile(realPath(postPath(folder, job.layout.sPostPath, job.layout.sMachine)));
  if (!bytes) return bytes.error.text();
  MachinePost post;
  return decodePost(*bytes.value, "MZS\\" + job.layout.sPostPath + "\\" + job.layout.sMachine + ".pc", post)
      .problem;
}

std::string programExtension(const IsoJob& job, const std::string& folder) {
  MachinePost post;
  (void)readPost(postPath(folder, job.layout.sPostPath, job.layout.sMachine), post);
  const std::string& own = post.param[PostParam::kExtension];
  return own.empty() || own.find_first_of("/\\") != std::string::npos ? "iso" : own;
}

bool isJobField(const std::string& name) {
  constexpr const char* kFields[] = {"nDbf",      "sMaterial",   "dWireRad",  "dThick",    "nCutType",
                                     "nSortMode", "nLeaderType", "dThickAux", "dThickProg"};
  return std::ranges::find(kFields, name) != std::end(kFields);
}

std::size_t StyleChoice::ruleOf(const Figure& figure) const {
  const auto& rules = job_.rules;
  for (std::size_t i = 0; i < rules.size(); ++i)
    if ((!rules[i].outer || *rules[i].outer == figure.outer) &&
        (!rules[i].layer || equalIgnoringCase(*rules[i].layer, figure.layer)) &&
        (!rules[i].colour || *rules[i].colour == figure.colour))
      return i;
  return kNoRule;
}

std::size_t StyleChoice::styleOfRule(std::size_t rule) const {
  if (rule == kNoRule) return 0;
  const auto& styles = job_.layout.styles;
  const auto at = std::ranges::find(styles, job_.rules[rule].style, &ProcessStyle::sName);
  return static_cast<std::size_t>(at - styles.begin());  // a job's file names no style that it lacks
}

const ProcessStyle& StyleChoice::styleOf(const Figure& figure) const {
  return job_.layout.styles[styleOfRule(ruleOf(figure))];
}

std::size_t StyleChoice::choose(const Figure& figure) {
  const std::size_t rule = ruleOf(figure);
  ++(rule == kNoRule ? withoutRule_ : fitted_[rule]);
  return styleOfRule(rule);
}

void StyleChoice::tell(std::vector<std::string>& said) const {
  if (withoutRule_ > 0)
    said.push_back(formatted(
        "%s: %d, by the job's first style, %s",
        job_.rules.empty() ? "figures (the job has no rules for styles)" : "figures that no rule fits",
        withoutRule_, job_.layout.styles[0].sName.c_str()));
  for (std::size_t i = 0; i < fitted_.size(); ++i)
    if (fitted_[i] == 0)
      said.push_back(formatted("rule %zu, for style %s, fits no figure", i + 1, job_.rules[i].style.c_str()));
}

StyleChoice::Figure figureOf(const AcDbDatabase& drawing, const AcDbEntity& contour, bool outer) {
  const auto* layer = drawing.peek<AcDbLayerTableRecord>(contour.layerId());
  return {outer, layer ? layer->getName() : "0", drawing.effectiveColor(contour)};
}

}  // namespace tarnex
