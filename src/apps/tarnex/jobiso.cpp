// The slow-wire job: what an ISO program adds to the road of all jobs.
// Knows which commands in which order; what they do, the rooms know.
#include "apps/tarnex/jobiso.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "apps/tarnex/isochoice.h"
#include "apps/tarnex/tabbreak.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "frame/drawingvars.h"
#include "frame/folders.h"
#include "host/editor/answers.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "machining/conditionlines.h"
#include "outputiso/program.h"
#include "pathcmd/jobs.h"
#include "pathcmd/paths.h"
#include "pathcmd/wiresurvey.h"

namespace tarnex {

namespace {

constexpr int kBreakPrompt = 42;    // catalogue number
constexpr double kGivenStop = 0.5;  // mm

// What GA asks for an outer shape whose tab doesn't fit on the span before its entry.
class BreakAnswers {
 public:
  explicit BreakAnswers(Module& module) : module_(module), question_(module.message(kBreakPrompt)) {}

  std::optional<std::string> operator()(const PromptShown& prompt) {
    if (prompt.commandPrompt || prompt.text.find(question_) == std::string::npos) return std::nullopt;
    const auto& list = module_.state<PathState>().PathList;
    const auto* path = list.empty() ? nullptr : module_.drawing().peek<CToolPath>(list.back());
    if (!path || path->numVerts() < 3) return "^C";
    refused_ = list.back() == asked_ ? refused_ + 1 : 0;
    asked_ = list.back();
    if (refused_ > 1) return "^C";  // the contour then stays without a path, which is told
    // A point that was refused lay beside the path by more than its rounding: the start of a span lies on it.
    if (refused_ == 1) return worldPointText(solid(path->getPointAt(path->numVerts() - 2)));
    const auto& s = module_.settings;
    return worldPointText(solid(tabBreakOf(*path, {s.dGapValue, s.dOvercutExit, s.dCutoffLen})));
  }

 private:
  Module& module_;
  const std::string question_;
  AcDbObjectId asked_;
  int refused_ = 0;
};

class JobIso : public DrawingJob {
 public:
  JobIso(const std::string& drawing, const JobIsoOptions& options, JobIsoResult& result)
      : DrawingJob(drawing, options, result), options_(options), result_(result) {}

 private:
  // ---- settings

  bool chooseOwnSettings() override {
    const DrawingVars vars(session_.drawing());
    if (const auto fault = isoJobOf(options_, folder_.path(), &vars, job_); fault.exitCode != kDone)
      return fail(fault.exitCode, fault.why);
    if (const auto fault = machineFault(job_, folder_.path()); fault.exitCode != kDone)
      return fail(fault.exitCode, fault.why);
    if (auto problem = postProblem(job_, folder_.path()); !problem.empty())
      result_.warnings.push_back(std::move(problem));
    result_.machine = job_.machine();
    result_.program = programFileOf(result_.drawing, options_, programExtension(job_, folder_.path()));
    std::vector<std::string> lines{"SET bKeepJob 0"};
    if (!options_.job.empty())
      lines.insert(lines.end(), {"SET nAction 7", "SET jobFile " + absolutePath(options_.job), "GG"});
    if (!options_.machine.empty()) lines.push_back("SET machine " + result_.machine);
    leaveCorners(lines);
    if (!options_.by.empty()) lines.push_back(formatted("SET nCutType %d", job_.layout.nCutType));
    return session_.run(lines) || fail(kFailed, "the job was refused: " + lastWords());
  }

  // A contour goes out as drawn unless --set asks for relief at its corners.
  void leaveCorners(std::vector<std::string>& lines) {
    for (const std::string name : {"dIsoFixA", "dIsoFixB"})
      if (std::ranges::none_of(options_.sets, [&](const auto& set) { return set.starts_with(name + "="); }))
        lines.push_back("SET " + name + " 0");
  }

  bool takesSet(const std::string& name) override { return isJobField(name); }

  // ---- figures

  double offsetOf(const SurveyedContour& c) {
    const auto* entity = session_.drawing().peek<AcDbEntity>(c.id);
    if (!entity) return 0;
    const auto& style = StyleChoice(job_).styleOf(figureOf(session_.drawing(), *entity, !isHole(c)));
    return largestOffset(style, isHole(c) ? kInnerHole : kOuterShape);
  }

  std::string obstacle(const SurveyedContour& c) override {
    if (!(c.area > kNegligibleArea)) return "encloses nothing";
    if (!isHole(c)) return {};  // a wire outside a contour always goes round it
    const double offset = offsetOf(c);
    return vanishesUnderOffset(c.shape, true, offset)
               ? formatted("too small for a wire offset of %.3f mm", offset)
               : std::string();
  }

  void makePathsOf(const Contours& holes, const Contours& outer) override {
    giveStop();
    steps_.makePaths({"GA", kInnerHole, {}, {}}, holes);
    steps_.makePaths({"GA",
                      kOuterShape,
                      {shortestNumber(session_.module().settings.dGapValue)},
                      BreakAnswers(session_.module())},
                     outer);
  }

  // A machine that can't leave a tab without a stop gets one.
  void giveStop() {
    const auto text = [this](int id) { return session_.module().message(id); };
    givesStop_ = machineFamily(job_.layout.sPostPath, text) == kFamilySignedUnits &&
                 !(session_.module().settings.dCutoffLen > 0);
    if (givesStop_) session_.run({formatted("SET dCutoffLen %g", kGivenStop)});
  }

  // So short that it fits on the spans at either end of every tab: it may be cut from both sides.
  void fitStop() {
    if (!givesStop_) return;
    bool any = false;
    double room = 2 * kGivenStop;
    for (AcDbObjectId id : paths()) {
      const auto* path = session_.drawing().peek<CToolPath>(id);
      if (!path || path->nSide() != kOuterShape || path->numVerts() < 3) continue;
      any = true;
      const int last = path->numVerts() - 1, behind = std::min(path->nBreakSeg() + 1, last);
      room = std::min({room, path->getPointAt(last - 1).distanceTo(path->getPointAt(last)),
                       path->ptBreak().distanceTo(path->getPointAt(behind))});
    }
    if (!any) return putSettingsBack({"dCutoffLen"});
    const double stop = std::floor(500 * room) / 1000;  // half of it, in whole micrometres
    if (stop > 0 && stop < kGivenStop) session_.run({formatted("SET dCutoffLen %g", stop)});
    result_.said.push_back(
        formatted("this machine needs a stop before a part is free: dCutoffLen %g for this run",
                  session_.module().settings.dCutoffLen));
  }

  // ---- styles

  [[nodiscard]] const std::vector<AcDbObjectId>& paths() {
    return session_.module().state<PathState>().PathList;
  }

  // Paths that never got a style: those of this job, and of a drawing that came with such.
  static bool isUnstyled(const CToolPath& path) {
    const ProcessStyle style = path.getProcessStyle();
    return style.sName == kBaseStyleName || !path.bHasStyle();
  }

  // False: GG refused the job.
  bool assignStyles() {
    StyleChoice choice(job_);
    std::map<std::size_t, std::vector<AcDbObjectId>> byStyle;
    for (AcDbObjectId id : paths())
      if (const auto* path = session_.drawing().peek<CToolPath>(id); path && isUnstyled(*path))
        byStyle[choice.choose(figureOf(session_.drawing(), *path, path->nSide() == kOuterShape))].push_back(
            id);
    for (const auto& [style, ids] : byStyle) {
      session_.run({"SET nAction 0", formatted("SET nStyleNow %zu", style + 1), "GG", steps_.emptyPlace(),
                    steps_.named(ids), "", ""});
      if (!session_.tookAll()) return fail(kFailed, "the job was refused: " + lastWords());
    }
    choice.tell(result_.said);
    return true;
  }

  // A job's file says what its styles are; paths that came with one of that name carry what it was before.
  void spreadStyles() {
    if (options_.job.empty()) return;
    for (std::size_t i = 0; i < static_cast<std::size_t>(job_.layout.nStyleCount); ++i) {
      const auto& style = job_.layout.styles[i];
      const bool carried = std::ranges::any_of(paths(), [&](AcDbObjectId id) {
        const auto* path = session_.drawing().peek<CToolPath>(id);
        return path && path->bHasStyle() && path->getProcessStyle().sName == style.sName;
      });
      if (carried) session_.run({"SET nAction 4", formatted("SET nStyleNow %zu", i + 1), "GG"});
    }
  }

  // ---- program

  bool writeProgram() override {
    fitStop();
    spreadStyles();
    if (!assignStyles() || !canBeCut() || session_.interrupted()) return false;
    if (const auto failure = makeFolders(absolutePath(options_.outDir.empty() ? "." : options_.outDir)))
      return fail(kFailed, failure->text());
    // All paths, from the origin that is offered.
    session_.run({"SET nAction 1", "GG", "", "", absolutePath(result_.program)});
    const std::string words = lastWords();
    if (result_.outer > 0 && !(session_.module().settings.dCutoffLen > 0))
      result_.said.push_back(
          "parts come loose without a stop before: dCutoffLen is 0 (--set dCutoffLen=0.5)");
    session_.run({"SET bKeepJob 1"});
    putSettingsBack({"nSide", "dOpenTol", "dCutoffLen", "dIsoFixA", "dIsoFixB"});
    waitForStarted(session_.module());
    if (!programStands()) return fail(kFailed, "the program was not written: " + words);
    take(session_.module().state<LastProgramIso>());
    return true;
  }

  // As GG's form will have it: --set says so where --by doesn't.
  [[nodiscard]] bool cutsByPass() const {
    std::string type = std::to_string(job_.layout.nCutType);
    for (const auto& set : options_.sets)
      if (options_.by.empty() && set.starts_with("nCutType=")) type = set.substr(set.find('=') + 1);
    return type == std::to_string(CutType::kByPass);
  }

  // Outer shapes of fast-wire paths have no break, and four-axis paths aren't written.
  static bool canBeWritten(const CToolPath& path) {
    return path.hasFirstPass() && !path.hasFlag(kFourAxis) &&
           (path.nSide() != kOuterShape || path.ptBreak() != kNoBreak);
  }

  // Pass by pass nothing leads onto the tab of an outer shape that has no trim pass.
  bool canBeCut() {
    if (std::ranges::none_of(paths(), [this](AcDbObjectId id) {
          const auto* path = session_.drawing().peek<CToolPath>(id);
          return path && canBeWritten(*path);
        }))
      return fail(kFailed, result_.drawing +
                               ": none of its paths can be written: outer shapes that GA or GT "
                               "didn't make have no break, four-axis paths are left out");
    if (!cutsByPass()) return true;
    for (AcDbObjectId id : paths())
      if (const auto* path = session_.drawing().peek<CToolPath>(id);
          path && path->nSide() == kOuterShape && path->hasFirstPass() && path->passCount() == 0)
        return fail(
            kFailed,
            formatted("%s: path %d: pass by pass an outer shape needs two passes, and style %s has "
                      "one: cut it figure by figure, or give it a trim pass",
                      result_.drawing.c_str(), path->nPathNo(), path->getProcessStyle().sName.c_str()));
    return true;
  }

  void take(const LastProgramIso& program) {
    result_.program = program.path;
    result_.lines = program.lines;
    result_.figures = program.figures;
    result_.passes = program.passes;
    result_.byPass = session_.module().state<JobLayout>().nCutType == CutType::kByPass;
    for (double length : program.cutLength) result_.cutLength += length;
    result_.cutLengthPerPass.assign(program.cutLength.begin(), program.cutLength.end());
    while (!result_.cutLengthPerPass.empty() && result_.cutLengthPerPass.back() == 0)
      result_.cutLengthPerPass.pop_back();
  }

  bool programStands() override { return !session_.module().state<LastProgramIso>().path.empty(); }

  // ---- what is told

  void survey() override {
    countStyles();
    tellOrder();
    const auto offset = [](const CToolPath& path) {
      return largestOffset(path.getProcessStyle(), path.nSide());
    };
    for (const auto& warning : surveyWires(session_.drawing(), paths(), offset).warnings)
      if (warning.trouble != WireTrouble::kRadiusBelowOffset)  // the writers tell it
        result_.warnings.push_back(sentenceOf(warning));
    const auto& told = session_.module().state<LastProgramIso>().warnings;
    result_.warnings.insert(result_.warnings.end(), told.begin(), told.end());
  }

  void countStyles() {
    const auto& layout = session_.module().state<JobLayout>();
    std::map<std::string, int> counts;
    for (AcDbObjectId id : session_.module().state<LastProgramIso>().order)
      if (const auto* path = session_.drawing().peek<CToolPath>(id)) ++counts[path->getProcessStyle().sName];
    std::string all;
    const auto add = [&](const std::string& name, int count) {
      result_.figuresPerStyle.emplace_back(name, count);
      all += formatted("%s%s: %d", all.empty() ? "" : ", ", name.c_str(), count);
    };
    for (int i = 0; i < layout.nStyleCount; ++i)
      if (auto found = counts.extract(layout.styles[static_cast<std::size_t>(i)].sName))
        add(found.key(), found.mapped());
    for (const auto& [name, count] : counts) add(name, count);
    result_.said.push_back("figures by style: " + all);
  }

  // By number the order was mended; another order is the job's own wish.
  void tellOrder() {
    const auto& order = session_.module().state<LastProgramIso>().order;
    const auto wanted = insideFirst(session_.drawing(), order);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < order.size(); ++i) wrong += order[i] != wanted[i] ? 1 : 0;
    if (wrong > 0)
      result_.warnings.push_back(
          formatted("%zu figures are cut before one that lies inside them, as the job's order "
                    "wants it; with order = \"number\" what lies inside comes first",
                    wrong));
  }

  const JobIsoOptions& options_;
  JobIsoResult& result_;
  IsoJob job_;
  bool givesStop_ = false;
};

}  // namespace

IsoJobChoice chooseIsoJob(const JobIsoOptions& options) {
  const std::string folder = installFolder();
  IsoJob job;
  auto fault = isoJobOf(options, folder, nullptr, job);
  // A machine that no option names may still be another by the drawing's own job.
  if (fault.exitCode == kDone && !options.machine.empty()) fault = machineFault(job, folder);
  return {fault.exitCode, fault.why, programExtension(job, folder)};
}

JobIsoResult runJobIso(const std::string& drawing, const JobIsoOptions& options) {
  JobIsoResult result;
  JobIso(drawing, options, result).run();
  return result;
}

}  // namespace tarnex
