// The main job, step by step.
// Knows which commands in which order; what they do, the rooms know.
#include "apps/tarnex/job3b.h"

#include <algorithm>

#include "apps/tarnex/jobsteps.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "output3b/programwriter.h"
#include "output3b/segment.h"
#include "pathcmd/paths.h"
#include "toolpath/display.h"

namespace tarnex {

namespace {

std::string withoutExtension(const std::string& name) {
  const auto dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

class Job3b {
 public:
  Job3b(const std::string& drawing, const Job3bOptions& options)
      : options_(options),
        folder_(installFolder()),
        session_(std::make_unique<StringSink>(), folder_.path()),
        steps_(session_) {
    result_.drawing = drawing;
    result_.program = programFileOf(drawing, options);
  }

  Job3bResult run() {
    if (timed("read", &Job3b::open) && timed("settings", &Job3b::chooseSettings) &&
        timed("contours", &Job3b::prepare) && timed("paths", &Job3b::makePaths) &&
        timed("program", &Job3b::writeProgram)) {
      timed("survey", &Job3b::survey);
      timed("save", &Job3b::saveAndPlot);
    }
    result_.script = session_.script;
    result_.transcript = static_cast<StringSink&>(session_.editor.sink()).text;
    return std::move(result_);
  }

 private:
  bool timed(const char* step, bool (Job3b::*what)()) {
    const double start = steadySeconds();
    bool done = (this->*what)();
    if (result_.exitCode == kDone && session_.interrupted() && !programStands()) {
      result_.interrupted = true;
      done = fail(kFailed, result_.drawing + ": interrupted, no program was written");
    }
    result_.seconds.emplace_back(step, steadySeconds() - start);
    return done;
  }

  bool programStands() { return !session_.module().state<LastProgram3b>().path.empty(); }

  bool fail(int exitCode, std::string why) {
    result_.exitCode = exitCode;
    result_.failure = std::move(why);
    return false;
  }

  // ---- the drawing

  // mm per unit as the drawing itself says.
  double ownUnit() {
    const auto load = loadDrawing(result_.drawing, nullptr);
    return load.drawing ? load.report.unitFactor : 1.0;
  }

  bool open() {
    std::optional<double> factor = options_.unitFactor;
    if (options_.scale != 1) factor = factor.value_or(ownUnit()) * options_.scale;
    if (factor) session_.script.push_back("setvar OPENUNITS " + shortestNumber(*factor));
    session_.script.push_back("open " + absolutePath(result_.drawing));
    auto load = loadDrawing(result_.drawing, &session_.editor.classes(), factor);
    result_.read = load.report;
    if (!load.drawing) return fail(kUnreadable, load.failure);
    for (const auto& note : load.report.notes)
      result_.warnings.push_back(noteText(fileNameOf(result_.drawing), note, load.report.binary));
    if (load.report.unitFactor != 1)
      result_.said.push_back((load.report.units == "unitless" ? std::string("the drawing names no unit")
                                                              : "the drawing is in " + load.report.units) +
                             ": 1 unit is " + shortestNumber(load.report.unitFactor) + " mm");
    session_.editor.setDatabase(std::move(load.drawing));
    return true;
  }

  bool chooseSettings() {
    standing_ = session_.module().settings;
    std::vector<std::string> lines{"setvar CMDDIA 0"};
    for (const auto& set : options_.sets) {
      const auto equal = set.find('=');
      std::string error = "is to be KEY=VALUE";
      if (equal == std::string::npos ||
          !session_.module().settings.setFromText(set.substr(0, equal), set.substr(equal + 1), error))
        return fail(kUsage, "--set " + set + ": " + error);
      lines.push_back("SET " + set.substr(0, equal) + " " + set.substr(equal + 1));
    }
    if (!options_.machine.empty()) lines.push_back("SET machine " + options_.machine);
    return session_.run(lines) || fail(kFailed, "a setting was refused: " + lastWords());
  }

  std::string lastWords() const {
    const auto& text = static_cast<const StringSink&>(const_cast<AcEditor&>(session_.editor).sink()).text;
    const auto end = text.find_last_not_of('\n');
    const auto begin = text.rfind('\n', end);
    return text.substr(begin == std::string::npos ? 0 : begin + 1, end - begin);
  }

  // ---- contours

  bool prepare() {
    if (!steps_.chooseLayers(options_.layers, options_.skipLayers, result_.said))
      return fail(kFailed, result_.drawing + ": no layer of those names holds anything");
    steps_.takeBlocksApart(result_.said);
    if (options_.clean) steps_.clean(result_.said);
    result_.loose = surveyLoose(session_.drawing(), steps_.shown(), options_.gap.value_or(kSamePoint));
    steps_.joinLooseCurves(result_.loose, options_.gap);
    result_.found = steps_.survey(result_.loose);
    if (!result_.found.contours.empty() || steps_.hasPaths()) return true;
    return fail(kFailed,
                result_.drawing + ": nothing to cut: " + steps_.whatIsThere(result_.read, result_.found));
  }

  // Why a contour can't be cut; empty when it can.
  std::string obstacle(const SurveyedContour& c) {
    const double offset = session_.module().settings.dOffset;
    if (!(c.area > kNegligibleArea)) return "encloses nothing";
    if (std::max(c.box.high.x - c.box.low.x, c.box.high.y - c.box.low.y) > kLargestExtent)
      return "larger than the counts of a block";
    // A wire outside a contour always goes round it.
    if (isHole(c) && vanishesUnderOffset(c.shape, true, offset))
      return formatted("too small for a wire offset of %.3f mm", offset);
    return {};
  }

  static bool isHole(const SurveyedContour& c) { return c.depth % 2 == 1; }

  // A contour that still stands has no path.
  void tellUnmade(const std::vector<const SurveyedContour*>& contours) {
    for (const auto* c : contours) {
      if (!session_.drawing().peek<AcDbEntity>(c->id)) continue;
      const AcGePoint2d at = c->shape.vertices.front().point;
      result_.warnings.push_back(
          formatted("contour at %.3f,%.3f: no path could be made (%zu spans, lead-in %.3f mm)", at.x, at.y,
                    c->shape.spanCount(), session_.module().settings.dLeadLen));
      ++result_.leftOut;
    }
  }

  bool makePaths() {
    std::vector<const SurveyedContour*> holes, outer;
    for (const auto& c : result_.found.contours) {
      if (const std::string why = obstacle(c); !why.empty()) {
        const AcGePoint2d at = c.shape.vertices.front().point;
        result_.warnings.push_back(formatted("contour at %.3f,%.3f: %s, left out", at.x, at.y, why.c_str()));
        ++result_.leftOut;
        continue;
      }
      (isHole(c) ? holes : outer).push_back(&c);
    }
    steps_.makePaths(holes, kInnerHole);
    steps_.makePaths(outer, kOuterShape);
    tellUnmade(holes);
    tellUnmade(outer);
    for (auto& c : result_.found.contours) c.shape = {};  // the paths have it now
    auto& state = session_.module().state<PathState>();
    rebuildPathList(session_.module());
    result_.holes = holes.size();
    result_.outer = outer.size();
    result_.paths = state.PathList.size();
    if (state.PathList.empty()) return fail(kFailed, result_.drawing + ": no path could be made");
    if (const std::size_t moved = steps_.mendOrder(); moved > 0)
      result_.said.push_back(
          formatted("%zu contours would have been cut before one that lies inside them: the order "
                    "was mended as CS would",
                    moved));
    return true;
  }

  // ---- program

  bool writeProgram() {
    if (const auto failure = makeFolders(absolutePath(options_.outDir.empty() ? "." : options_.outDir))) {
      return fail(kFailed, failure->text());
    }
    const std::string path = absolutePath(result_.program);
    session_.run({"SET bAskFileName 1", "BB", "", path});
    const std::string words = lastWords();
    putSettingsBack();
    const auto& program = session_.module().state<LastProgram3b>();
    waitForStarted(session_.module());
    if (program.path.empty()) {
      return fail(kFailed, "the program was not written: " + words);
    }
    result_.blocks = program.blocks;
    result_.program = program.path;
    return true;
  }

  // A user who runs the script keeps his own settings.
  void putSettingsBack() {
    for (const char* name : {"nSide", "dOpenTol", "bAskFileName"})
      session_.run({std::string("SET ") + name + " " + *standing_.textOf(name)});
  }

  bool survey() {
    AcDbDatabase& drawing = session_.drawing();
    const auto& list = session_.module().state<PathState>().PathList;
    const WireSurvey wires = surveyWires(drawing, list, session_.module().state<WirePaths>());
    result_.cutLength = wires.cutLength;
    for (const auto& warning : wires.warnings) result_.warnings.push_back(sentenceOf(warning));
    tellLoose();
    return true;
  }

  void tellLoose() {
    for (const auto& d : result_.loose.doubled)
      result_.warnings.push_back(formatted("at %.3f,%.3f: two curves lie over each other", d.at.x, d.at.y));
    for (const auto& b : result_.loose.branches)
      result_.warnings.push_back(
          formatted("at %.3f,%.3f: %d curve ends meet, the way on was a choice", b.at.x, b.at.y, b.ends));
    for (const auto& chain : result_.found.open)
      result_.warnings.push_back(formatted("open chain from %.3f,%.3f to %.3f,%.3f, %.3f mm long: not cut",
                                           chain.from.x, chain.from.y, chain.to.x, chain.to.y, chain.length));
  }

  bool saveAndPlot() {
    steps_.restoreLayers();
    if (!options_.save.empty()) {
      const std::string path = absolutePath(options_.save);
      session_.script.push_back("saveas " + path);
      if (const auto failure = saveDrawing(session_.drawing(), path)) return fail(kFailed, *failure);
    }
    if (options_.plot.empty()) return true;
    const auto failure = plotPaths(session_, absolutePath(options_.plot));
    return !failure || fail(kFailed, failure->text());
  }

  const Job3bOptions& options_;
  JobFolder folder_;
  Session session_;
  JobSteps steps_;
  WireCutSettings standing_{""};  // as the user has them
  Job3bResult result_;
};

}  // namespace

std::string programFileOf(const std::string& drawing, const Job3bOptions& options) {
  if (!options.output.empty()) return options.output;
  const std::string name = withoutExtension(fileNameOf(drawing)) + ".3b";
  if (!options.outDir.empty()) return options.outDir + "/" + name;
  return withoutExtension(drawing) + ".3b";
}

Job3bResult runJob3b(const std::string& drawing, const Job3bOptions& options) {
  return Job3b(drawing, options).run();
}

}  // namespace tarnex
