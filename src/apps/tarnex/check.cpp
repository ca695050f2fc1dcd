// `tarnex check`: the truth test of a finished program against its drawing.
// Knows how figures are read off a drawing; the judging is exchange/truth.
#include "apps/tarnex/check.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/checkiso.h"
#include "apps/tarnex/job3b.h"
#include "apps/tarnex/jobsteps.h"
#include "exchange/truth_paths.h"
#include "frame/drawingvars.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "machining/machinetable.h"
#include "toolpath/reliefbinding.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// With the texts of pause and stop of the machine that the program is for.
truth::Expected expectedOf(AcDbDatabase& drawing, const WireCutSettings& s, Module& module,
                           const std::string& machine) {
  truth::Expected e = expectedOfPaths(drawing, s);
  e.relieved = e.dFix > 0 && bindCornerRelief(module, ReliefOf::kWireCentre);
  MachineTable table;
  table.load(module.installFolder, module.language);
  const std::string name =
      !machine.empty() ? machine : DrawingVars(drawing).getString("ISO_MACHINEKZS").value_or(s.sMachineKZS);
  table.find(name, e.pauseText, e.stopText);
  return e;
}

void print(const truth::Report& report, bool json) {
  if (!json) {
    for (const auto& line : truth::describe(report)) std::printf("%s\n", line.c_str());
    return;
  }
  nlohmann::ordered_json j;
  j["ok"] = report.ok;
  j["blocks"] = report.blocks;
  j["faults"] = report.faults;
  j["notes"] = report.notes;
  j["paths"] = nlohmann::ordered_json::array();
  for (const auto& p : report.paths)
    j["paths"].push_back({{"figure", p.figure},
                          {"blocks", p.blocks},
                          {"shortfall", p.shortfall.value},
                          {"excess", p.excess.value},
                          {"uncovered", p.uncovered},
                          {"closingError", p.closingError},
                          {"rounding", p.rounding}});
  j["findings"] = nlohmann::ordered_json::array();
  for (const auto& f : report.findings)
    j["findings"].push_back({{"kind", truth::nameOf(f.kind)},
                             {"fault", f.grade == truth::Grade::kFault},
                             {"figure", f.figure},
                             {"block", f.block},
                             {"line", f.line},
                             {"at", {f.at.x, f.at.y}},
                             {"text", f.text}});
  std::printf("%s\n", j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace

std::vector<truth::Figure> figuresOfContours(const AcDbDatabase& drawing, double offset) {
  std::vector<AcDbObjectId> ids = drawing.modelSpaceEntities();
  std::vector<truth::Figure> figures;
  for (const auto& c : surveyContours(drawing, ids).contours) {
    truth::Figure f;
    f.number = static_cast<int>(figures.size()) + 1;
    f.contour = c.shape;
    f.compensation = offset;
    f.side = truth::Side::kEither;
    figures.push_back(std::move(f));
  }
  return figures;
}

int runCheck(const CheckOptions& options) {
  const auto bytes = readFile(options.program);
  if (!bytes) {
    std::fprintf(stderr, "%s\n", bytes.error.text().c_str());
    return kUnreadable;
  }
  const JobFolder folder(installFolder());
  Session session(std::make_unique<StringSink>(), folder.path());
  auto load = loadDrawing(options.drawing, &session.editor.classes(), options.unitFactor);
  if (!load.drawing) {
    std::fprintf(stderr, "%s\n", load.failure.c_str());
    return kUnreadable;
  }
  session.editor.setDatabase(std::move(load.drawing));
  session.run({"setvar CMDDIA 0"});
  WireCutSettings& settings = session.module().settings;
  for (const auto& set : options.sets) {
    std::string error = "is to be KEY=VALUE";
    const auto equal = set.find('=');
    if (equal == std::string::npos ||
        !settings.setFromText(set.substr(0, equal), set.substr(equal + 1), error)) {
      std::fprintf(stderr, "--set %s: %s\n", set.c_str(), error.c_str());
      return kUsage;
    }
  }
  const std::string text = toUtf8(*bytes.value, isUtf8(*bytes.value) ? "UTF-8" : "GB18030");
  if (isIsoCheck(options, text)) return checkIsoProgram(session, options, text);
  std::vector<truth::Figure> figures;
  if (options.offset) {
    JobSteps steps(session);
    std::vector<std::string> said;
    steps.takeBlocksApart(said);
    steps.joinLooseCurves(surveyLoose(session.drawing(), steps.shown()), std::nullopt);
    figures = figuresOfContours(session.drawing(), *options.offset);
  } else {
    figures = figuresOfPaths(session.drawing());
  }
  if (figures.empty()) {
    std::fprintf(stderr, "%s: holds no %s\n", options.drawing.c_str(),
                 options.offset ? "closed contour" : "path (a plain drawing needs --offset)");
    return kFailed;
  }
  const auto expected = expectedOf(session.drawing(), settings, session.module(), options.machine);
  const auto report = truth::check(text, figures, expected);
  print(report, options.json);
  return report.ok ? kDone : kFailed;
}

}  // namespace tarnex
