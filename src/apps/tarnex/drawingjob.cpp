// The road that all jobs share, step by step.
// Knows which steps in which order; what they do, the rooms know.
#include "apps/tarnex/drawingjob.h"

#include "contour/geometrylibrary.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

std::string withoutExtension(const std::string& name) {
  const auto dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

// mm per unit as the drawing itself says.
double ownUnit(const std::string& drawing) {
  const auto load = loadDrawing(drawing, nullptr);
  return load.drawing ? load.report.unitFactor : 1.0;
}

}  // namespace

std::string programFileOf(const std::string& drawing, const JobOptions& options,
                          const std::string& extension) {
  if (!options.output.empty()) return options.output;
  if (options.outDir.empty()) return withoutExtension(drawing) + "." + extension;
  const char* between = options.outDir.ends_with('/') ? "" : "/";
  return options.outDir + between + withoutExtension(fileNameOf(drawing)) + "." + extension;
}

DrawingJob::DrawingJob(const std::string& drawing, const JobOptions& options, JobResult& result)
    : options_(options),
      folder_(installFolder()),
      session_(std::make_unique<StringSink>(), folder_.path()),
      steps_(session_),
      result_(result) {
  result_.drawing = drawing;
}

void DrawingJob::run() {
  if (timed("read", &DrawingJob::open) && timed("settings", &DrawingJob::chooseSettings) &&
      timed("contours", &DrawingJob::prepare) && timed("paths", &DrawingJob::makePaths) &&
      timed("program", &DrawingJob::writeProgram)) {
    timed("survey", &DrawingJob::lookOver);
    timed("save", &DrawingJob::saveAndPlot);
  }
  result_.script = session_.script;
  result_.transcript = static_cast<StringSink&>(session_.editor.sink()).text;
}

bool DrawingJob::timed(const char* step, bool (DrawingJob::*what)()) {
  const double start = steadySeconds();
  bool done = (this->*what)();
  if (session_.interrupted() && !programStands()) {
    result_.interrupted = true;
    result_.warnings.clear();  // what is missing is so because the user wanted it
    done = fail(kFailed, result_.drawing + ": interrupted, no program was written");
  }
  result_.seconds.emplace_back(step, steadySeconds() - start);
  return done;
}

bool DrawingJob::fail(int exitCode, std::string why) {
  result_.exitCode = exitCode;
  result_.failure = std::move(why);
  return false;
}

std::string DrawingJob::lastWords() const {
  const auto& text = static_cast<const StringSink&>(const_cast<AcEditor&>(session_.editor).sink()).text;
  const auto end = text.find_last_not_of('\n');
  const auto begin = text.rfind('\n', end);
  return text.substr(begin == std::string::npos ? 0 : begin + 1, end - begin);
}

void DrawingJob::putSettingsBack(std::initializer_list<const char*> names) {
  for (const char* name : names) session_.run({std::string("SET ") + name + " " + *standing_.textOf(name)});
}

std::string DrawingJob::placeOf(const SurveyedContour& c) {
  const AcGePoint2d at = c.shape.vertices.front().point;
  return formatted("contour at %.3f,%.3f: ", at.x, at.y);
}

// ---- the drawing

bool DrawingJob::open() {
  std::optional<double> factor = options_.unitFactor;
  if (options_.scale != 1) factor = factor.value_or(ownUnit(result_.drawing)) * options_.scale;
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

bool DrawingJob::chooseSettings() {
  standing_ = session_.module().settings;
  std::vector<std::string> lines{"setvar CMDDIA 0"};
  for (const auto& set : options_.sets) {
    const auto equal = set.find('=');
    std::string error = "is to be KEY=VALUE";
    if (equal == std::string::npos ||
        (!takesSet(set.substr(0, equal)) &&
         !session_.module().settings.setFromText(set.substr(0, equal), set.substr(equal + 1), error)))
      return fail(kUsage, "--set " + set + ": " + error);
    lines.push_back("SET " + set.substr(0, equal) + " " + set.substr(equal + 1));
  }
  if (!session_.run(lines)) return fail(kFailed, "a setting was refused: " + lastWords());
  return chooseOwnSettings();
}

// ---- contours and paths

bool DrawingJob::prepare() {
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

// A contour that still stands has no path.
void DrawingJob::tellUnmade(const Contours& contours) {
  for (const auto* c : contours) {
    if (!session_.drawing().peek<AcDbEntity>(c->id)) continue;
    result_.warnings.push_back(placeOf(*c) + formatted("no path could be made (%zu spans, lead-in %.3f mm)",
                                                       c->shape.spanCount(),
                                                       session_.module().settings.dLeadLen));
    ++result_.leftOut;
  }
}

bool DrawingJob::makePaths() {
  Contours holes, outer;
  for (const auto& c : result_.found.contours) {
    if (const std::string why = obstacle(c); !why.empty()) {
      result_.warnings.push_back(placeOf(c) + why + ", left out");
      ++result_.leftOut;
      continue;
    }
    (isHole(c) ? holes : outer).push_back(&c);
  }
  makePathsOf(holes, outer);
  tellUnmade(holes);
  tellUnmade(outer);
  for (auto& c : result_.found.contours) c.shape = {};  // the paths have it now
  rebuildPathList(session_.module());
  result_.holes = holes.size();
  result_.outer = outer.size();
  return mendOrder();
}

bool DrawingJob::mendOrder() {
  result_.paths = session_.module().state<PathState>().PathList.size();
  if (result_.paths == 0) return fail(kFailed, result_.drawing + ": no path could be made");
  if (const std::size_t moved = steps_.mendOrder(); moved > 0)
    result_.said.push_back(
        formatted("%zu contours would have been cut before one that lies inside them: the order "
                  "was mended as CS would",
                  moved));
  return true;
}

// ---- what is told, and what is kept

bool DrawingJob::lookOver() {
  survey();
  tellLoose();
  return true;
}

void DrawingJob::tellLoose() {
  for (const auto& d : result_.loose.doubled)
    result_.warnings.push_back(formatted("at %.3f,%.3f: two curves lie over each other", d.at.x, d.at.y));
  for (const auto& b : result_.loose.branches)
    result_.warnings.push_back(
        formatted("at %.3f,%.3f: %d curve ends meet, the way on was a choice", b.at.x, b.at.y, b.ends));
  for (const auto& chain : result_.found.open)
    result_.warnings.push_back(formatted("open chain from %.3f,%.3f to %.3f,%.3f, %.3f mm long: not cut",
                                         chain.from.x, chain.from.y, chain.to.x, chain.to.y, chain.length));
}

bool DrawingJob::saveAndPlot() {
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

}  // namespace tarnex
