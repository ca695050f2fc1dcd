// `tarnex info`: what a drawing holds.
// Looks at a copy in memory; no file is changed.
#include "apps/tarnex/info.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/job3b.h"
#include "apps/tarnex/jobsteps.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/platform/format.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

using Json = nlohmann::ordered_json;

struct Looked {
  DxfReport read;
  std::map<std::string, std::map<std::string, long>> byLayer;  // layer, then kind
  Extents2d box;
  LooseSurvey loose;
  ContourSurvey found;
  std::size_t paths = 0;
};

Json at(AcGePoint2d p) {
  return Json::array({p.x, p.y});
}

Json jsonOfLook(const std::string& drawing, const Looked& l) {
  Json j;
  j["drawing"] = drawing;
  j["version"] = l.read.version;
  j["binary"] = l.read.binary;
  j["units"] = l.read.units;
  j["unitFactor"] = l.read.unitFactor;
  j["entities"] = l.read.entities;
  j["layers"] = l.byLayer;
  if (!l.box.empty()) j["extents"] = {at(l.box.low), at(l.box.high)};
  j["paths"] = l.paths;
  j["contours"] = Json::array();
  for (const auto& c : l.found.contours)
    j["contours"].push_back({{"kind", c.circle ? "circle" : "contour"},
                             {"start", at(c.shape.vertices.front().point)},
                             {"spans", c.circle ? 1 : c.shape.spanCount()},
                             {"length", c.length},
                             {"area", c.area},
                             {"depth", c.depth},
                             {"parent", c.parent}});
  j["openChains"] = Json::array();
  for (const auto& c : l.found.open)
    j["openChains"].push_back({{"from", at(c.from)}, {"to", at(c.to)}, {"length", c.length}, {"gap", c.gap}});
  j["branchPoints"] = Json::array();
  for (const auto& b : l.loose.branches) j["branchPoints"].push_back({{"at", at(b.at)}, {"ends", b.ends}});
  j["doubledCurves"] = Json::array();
  for (const auto& d : l.loose.doubled) j["doubledCurves"].push_back({{"at", at(d.at)}});
  j["notes"] = Json::array();
  for (const auto& n : l.read.notes) j["notes"].push_back(noteText(drawing, n, l.read.binary));
  return j;
}

void printCounts(const Looked& l) {
  for (const auto& [layer, kinds] : l.byLayer) {
    std::printf("  layer %-20s", layer.c_str());
    for (const auto& [kind, count] : kinds) std::printf(" %ld %s", count, kind.c_str());
    std::printf("\n");
  }
}

void printContours(const ContourSurvey& found) {
  constexpr std::size_t kShown = 50;
  std::printf("%zu closed contours, %zu open chains\n", found.contours.size(), found.open.size());
  for (std::size_t i = 0; i < std::min(found.contours.size(), kShown); ++i) {
    const auto& c = found.contours[i];
    const AcGePoint2d p = c.shape.vertices.front().point;
    std::printf("  %-7s depth %d (%s) from %.3f,%.3f: %.3f mm round, %.3f mm2, %zu spans\n",
                c.circle ? "circle" : "contour", c.depth, c.depth % 2 ? "hole" : "outer", p.x, p.y, c.length,
                c.area, c.circle ? std::size_t{1} : c.shape.spanCount());
  }
  if (found.contours.size() > kShown)
    std::printf("  ... and %zu more (see --json)\n", found.contours.size() - kShown);
  for (std::size_t i = 0; i < std::min(found.open.size(), kShown); ++i) {
    const auto& c = found.open[i];
    std::printf("  open from %.3f,%.3f to %.3f,%.3f: %.3f mm long, gap %.3f mm\n", c.from.x, c.from.y, c.to.x,
                c.to.y, c.length, c.gap);
  }
}

void printLook(const std::string& drawing, const Looked& l) {
  std::printf("%s: %s%s, %s", drawing.c_str(), l.read.version.empty() ? "no version" : l.read.version.c_str(),
              l.read.binary ? " (binary)" : "", l.read.units.c_str());
  if (l.read.unitFactor != 1) std::printf(" (1 unit is %s mm)", shortestNumber(l.read.unitFactor).c_str());
  std::printf("\n");
  if (!l.box.empty())
    std::printf("  from %.3f,%.3f to %.3f,%.3f mm\n", l.box.low.x, l.box.low.y, l.box.high.x, l.box.high.y);
  printCounts(l);
  if (l.paths > 0) std::printf("%zu paths\n", l.paths);
  printContours(l.found);
  for (const auto& b : l.loose.branches)
    std::printf("  branch point at %.3f,%.3f: %d ends\n", b.at.x, b.at.y, b.ends);
  for (const auto& d : l.loose.doubled) std::printf("  doubled curve at %.3f,%.3f\n", d.at.x, d.at.y);
  for (const auto& n : l.read.notes) std::printf("  %s\n", noteText(drawing, n, l.read.binary).c_str());
}

}  // namespace

int runInfo(const InfoOptions& options) {
  const JobFolder folder(installFolder());
  Session session(std::make_unique<StringSink>(), folder.path());
  auto load = loadDrawing(options.drawing, &session.editor.classes());
  if (!load.drawing) {
    std::fprintf(stderr, "%s\n", load.failure.c_str());
    return kUnreadable;
  }
  Looked look;
  look.read = load.report;
  session.editor.setDatabase(std::move(load.drawing));
  AcDbDatabase& drawing = session.drawing();
  for (AcDbObjectId id : drawing.modelSpaceEntities()) {
    const auto* entity = drawing.peek<AcDbEntity>(id);
    ++look.byLayer[drawing.layerName(entity->layerId())]
                  [entity->isKindOf(CToolPath::desc()) ? "path" : entity->dxfName()];
    if (entity->isKindOf(CToolPath::desc())) ++look.paths;
  }
  look.box = drawing.drawingExtents();
  session.run({"setvar CMDDIA 0"});
  JobSteps steps(session);
  std::vector<std::string> said;
  steps.takeBlocksApart(said);
  look.loose = surveyLoose(drawing, steps.shown());
  steps.joinLooseCurves(look.loose, std::nullopt);
  look.found = steps.survey(look.loose);
  if (options.json)
    std::printf(
        "%s\n",
        jsonOfLook(options.drawing, look).dump(2, ' ', false, Json::error_handler_t::replace).c_str());
  else
    printLook(options.drawing, look);
  return kDone;
}

}  // namespace tarnex
