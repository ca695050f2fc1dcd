// `tarnex check` of a drawing: what is wrong with its contours, listed and ringed in a plot.
// Knows files, words and exit codes; the finding is markfinder's.
#include "apps/tarnex/checkdrawing.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/job3b.h"
#include "apps/tarnex/markfinder.h"
#include "apps/tarnex/markplot.h"
#include "frame/folders.h"
#include "host/display/plot.h"
#include "host/editor/drawingfile.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

using Json = nlohmann::ordered_json;

struct Checked {
  DxfReport read;
  FoundMarks found;
  std::vector<Mark> marks;
  std::vector<std::string> said;
  double offset = 0;    // mm, of a plain drawing
  std::string nothing;  // what is there instead of something to cut
};

Json pointJson(AcGePoint2d p) {
  return Json::array({p.x, p.y});
}

Json jsonOf(const std::string& drawing, const Checked& c) {
  Json j;
  j["drawing"] = drawing;
  j["ok"] = c.marks.empty() && c.nothing.empty();
  j["contours"] = c.found.contours;
  j["paths"] = c.found.paths;
  j["openChains"] = c.found.openChains;
  if (c.found.paths == 0) j["offset"] = c.offset;
  j["complete"] = c.found.complete;
  j["marks"] = Json::array();
  for (const Mark& m : c.marks) {
    Json places = Json::array();
    for (AcGePoint2d p : m.places) places.push_back(pointJson(p));
    j["marks"].push_back({{"number", m.number},
                          {"kind", nameOf(m.kind)},
                          {"layer", m.layer},
                          {"count", m.count},
                          {"at", pointJson(m.places.front())},
                          {"places", std::move(places)},
                          {"least", m.least},
                          {"most", m.most},
                          {"limit", m.limit},
                          {"text", m.text}});
  }
  if (!c.nothing.empty()) j["nothing"] = c.nothing;
  j["said"] = c.said;
  return j;
}

std::string lineOf(const Mark& m) {
  std::string line = formatted("%3d  %-20s %s%.3f,%.3f: ", m.number, nameOf(m.kind),
                               m.count > 1 ? "first at " : "at ", m.places.front().x, m.places.front().y);
  line += m.text;
  if (!m.layer.empty() && m.layer != "0") line += " (layer " + m.layer + ")";
  return line;
}

std::string counted(std::size_t count, const char* one) {
  return formatted("%zu %s%s", count, one, count == 1 ? "" : "s");
}

void print(const std::string& drawing, const Checked& c) {
  for (const auto& said : c.said) std::printf("  %s\n", said.c_str());
  for (const Mark& m : c.marks) std::printf("%s\n", lineOf(m).c_str());
  if (!c.found.complete)
    std::printf("  so many contours meet each other that not all places were looked for\n");
  std::string what = counted(c.found.contours, "closed contour");
  if (c.found.paths > 0)
    what += ", " + counted(c.found.paths, "path") + ", each with its own offset";
  else
    what += formatted(", wire offset %.3f mm", c.offset);
  std::string verdict = c.marks.empty() ? "nothing wrong" : counted(c.marks.size(), "mark");
  if (!c.nothing.empty()) verdict = "nothing to cut: " + c.nothing;
  std::printf("%s: %s: %s\n", drawing.c_str(), what.c_str(), verdict.c_str());
}

bool openDrawing(Session& session, const CheckDrawingOptions& options, Checked& c, std::string& failure) {
  std::optional<double> factor = options.unitFactor;
  if (options.scale != 1 && !factor) {
    const auto asDrawn = loadDrawing(options.drawing, nullptr);
    factor = asDrawn.drawing ? asDrawn.report.unitFactor : 1.0;
  }
  if (factor) factor = *factor * options.scale;
  auto load = loadDrawing(options.drawing, &session.editor.classes(), factor);
  failure = load.failure;
  if (!load.drawing) return false;
  c.read = load.report;
  for (const auto& note : load.report.notes)
    c.said.push_back(noteText(options.drawing, note, load.report.binary));
  if (load.report.unitFactor != 1)
    c.said.push_back("1 unit of the drawing is " + shortestNumber(load.report.unitFactor) + " mm");
  session.editor.setDatabase(std::move(load.drawing));
  return true;
}

std::optional<FileError> plotMarks(const std::string& path, DisplayList list,
                                   const std::vector<Mark>& marks) {
  const PlotOptions page;
  addMarks(list, marks, page);
  return writePlot(path, list, page);
}

}  // namespace

bool isDrawing(const std::string& path) {
  const auto endsWith = [&](std::string_view ending) {
    return path.size() > ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), path.rbegin(),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
  };
  if (endsWith(".dxf") || endsWith(".dwg")) return true;
  if (endsWith(".3b")) return false;
  const auto bytes = readFile(path);
  if (!bytes) return false;
  const std::string_view head = std::string_view(*bytes.value).substr(0, 4096);
  // A section begins within the first tags of every drawing, in text or binary; no block of a program has the
  // word.
  return head.find("SECTION") != std::string_view::npos &&
         (head.find("HEADER") != std::string_view::npos || head.find("ENTITIES") != std::string_view::npos ||
          head.find("TABLES") != std::string_view::npos || head.find("CLASSES") != std::string_view::npos);
}

int runCheckDrawing(const CheckDrawingOptions& options) {
  if (!options.plot.empty()) {
    const auto format = plotFormatOf(options.plot);
    if (!format || !canPlot(*format)) {
      std::fprintf(stderr, "--plot %s: %s\n", options.plot.c_str(),
                   format ? "this build writes no such files" : "the ending is to be .svg, .pdf or .png");
      return kUsage;
    }
  }
  const JobFolder folder(installFolder());
  Session session(std::make_unique<StringSink>(), folder.path());
  Checked c;
  std::string failure;
  if (!openDrawing(session, options, c, failure)) {
    std::fprintf(stderr, "%s\n", failure.c_str());
    return kUnreadable;
  }
  session.run({"setvar CMDDIA 0"});
  if (options.offset) session.run({"SET dOffset " + shortestNumber(*options.offset)});
  c.offset = session.module().settings.dOffset;
  JobSteps steps(session);
  if (!steps.chooseLayers(options.layers, options.skipLayers, c.said)) {
    std::fprintf(stderr, "%s: no layer of those names holds anything\n", options.drawing.c_str());
    return kFailed;
  }
  DisplayList list;
  if (!options.plot.empty()) {  // as drawn: what is looked at is changed on the way
    rebuildPathList(session.module());
    const PathDisplay display = pathDisplay(session.module());
    DisplayOptions shown;
    shown.applicationContext = &display;
    list = buildDisplayList(session.drawing(), shown);
  }
  c.found = findMarks(session, steps, options.gap);
  c.marks = marksOf(c.found.findings);
  if (c.found.contours + c.found.paths == 0) c.nothing = steps.whatIsThere(c.read, {});
  if (!options.plot.empty()) {
    if (const auto error = plotMarks(absolutePath(options.plot), std::move(list), c.marks)) {
      std::fprintf(stderr, "%s\n", error->text().c_str());
      return kFailed;
    }
  }
  if (options.json)
    std::printf("%s\n",
                jsonOf(options.drawing, c).dump(2, ' ', false, Json::error_handler_t::replace).c_str());
  else
    print(options.drawing, c);
  return c.marks.empty() && c.nothing.empty() ? kDone : kFailed;
}

}  // namespace tarnex
