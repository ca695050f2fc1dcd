// `tarnex check` of an ISO program: the truth test against the drawing's slow-wire paths.
// Knows files, the machine's post and words of the command line; the judging is exchange/truthiso.
#include "apps/tarnex/checkiso.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/drawingjob.h"
#include "apps/tarnex/session.h"
#include "exchange/truthiso_paths.h"
#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "machining/machines.h"

namespace tarnex {

namespace {

using Json = nlohmann::ordered_json;

Json pointJson(AcGePoint2d p) {
  return Json::array({p.x, p.y});
}

Json jsonOf(const truth::IsoReport& report) {
  Json j;
  j["ok"] = report.ok;
  j["lines"] = report.lines;
  j["moves"] = report.moves;
  j["faults"] = report.faults;
  j["notes"] = report.notes;
  j["tolerance"] = report.tolerance;
  j["worstRadius"] = report.worstRadius;
  j["figures"] = Json::array();
  for (const auto& f : report.figures)
    j["figures"].push_back({{"figure", f.figure},
                            {"passes", f.passes},
                            {"expected", f.expected},
                            {"firstLine", f.firstLine},
                            {"lastLine", f.lastLine},
                            {"cut", f.cut},
                            {"worst", f.worst},
                            {"worstLine", f.worstLine},
                            {"relieved", f.relieved},
                            {"drift", f.drift}});
  j["findings"] = Json::array();
  for (const auto& f : report.findings)
    j["findings"].push_back({{"kind", truth::nameOf(f.kind)},
                             {"fault", f.grade == truth::Grade::kFault},
                             {"figure", f.figure},
                             {"line", f.line},
                             {"at", pointJson(f.at)},
                             {"text", f.text}});
  return j;
}

void print(const truth::IsoReport& report, bool json) {
  if (json)
    std::printf("%s\n", jsonOf(report).dump(2, ' ', false, Json::error_handler_t::replace).c_str());
  else
    for (const auto& line : truth::describe(report)) std::printf("%s\n", line.c_str());
}

// FOLDER/NAME of the post that the program was written with.
std::string machineOf(Session& session, const CheckOptions& options) {
  if (!options.machine.empty()) return options.machine;
  const DrawingVars vars(session.drawing());
  const auto folder = vars.getString("ISO_PCFPATH"), name = vars.getString("ISO_MACHINE");
  return folder && name ? *folder + "/" + *name : std::string();
}

// Nothing, with the reason told, where there is no such machine.
std::optional<MachinePost> postOf(Session& session, const CheckOptions& options) {
  const std::string machine = machineOf(session, options);
  MachineName name;
  std::string error;
  if (machine.empty()) {
    std::fprintf(stderr, "%s: the drawing names no machine; --machine FOLDER/NAME does\n",
                 options.drawing.c_str());
    return std::nullopt;
  }
  if (!parseMachine(machine, name, error)) {
    std::fprintf(stderr, "--machine %s: %s\n", machine.c_str(), error.c_str());
    return std::nullopt;
  }
  MachinePost post;
  const PostReading reading =
      readPost(postPath(session.module().installFolder, name.folder, name.name), post);
  if (!reading.read) {
    std::fprintf(stderr, "--machine %s: there is no such post; `tarnex post list` tells which there are\n",
                 machine.c_str());
    return std::nullopt;
  }
  if (!reading.problem.empty()) std::fprintf(stderr, "%s\n", reading.problem.c_str());
  post.nFamily = familyOfFolder(session.module().catalog, name.folder).value_or(post.nFamily);
  return post;
}

}  // namespace

bool isIsoCheck(const CheckOptions& options, std::string_view program) {
  if (!options.machine.empty()) return options.machine.find_first_of("/\\") != std::string::npos;
  // The first lines that are more than a comment.
  for (int lines = 0; !program.empty() && lines < 20;) {
    const auto end = program.find('\n');
    const auto words = truth::isoWords(program.substr(0, end));
    program.remove_prefix(end == std::string_view::npos ? program.size() : end + 1);
    if (words.empty()) continue;
    ++lines;
    constexpr std::string_view kIsoWords[] = {"G90", "G91", "G92", "G1", "G40"};
    if (std::ranges::any_of(
            words, [&](const truth::IsoWord& w) { return std::ranges::count(kIsoWords, w.key) != 0; }))
      return true;
  }
  return false;
}

int checkIsoProgram(Session& session, const CheckOptions& options, std::string_view program) {
  const auto post = postOf(session, options);
  if (!post) return kUnreadable;
  const auto figures = isoFiguresOfPaths(session.drawing());
  if (figures.empty()) {
    std::fprintf(stderr, "%s: holds no path with a first pass\n", options.drawing.c_str());
    return kFailed;
  }
  truth::IsoExpected expected = isoExpectedOfPaths(session.drawing(), session.module().settings);
  expected.walk.thread = options.threadWord;
  expected.walk.cut = options.cutWord;
  if (options.origin.size() == 2) expected.walk.origin = {options.origin[0], options.origin[1]};
  const auto report = truth::checkIso(program, truth::IsoDialect(*post, post->nFamily), figures, expected);
  print(report, options.json);
  return report.ok ? kDone : kFailed;
}

}  // namespace tarnex
