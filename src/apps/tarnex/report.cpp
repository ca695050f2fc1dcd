// What a job tells its user.
// Knows results; nothing is decided here.
#include "apps/tarnex/report.h"

#include <nlohmann/json.hpp>

#include "host/platform/format.h"

namespace tarnex {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kShown = 40;  // of each list in words; JSON has all

void appendList(std::string& text, const std::vector<std::string>& lines, const char* lead) {
  for (std::size_t i = 0; i < std::min(lines.size(), kShown); ++i) text += lead + lines[i] + "\n";
  if (lines.size() > kShown)
    text += formatted("%s... and %zu more (see --json)\n", lead, lines.size() - kShown);
}

// `done`: what is told of a program that stands.
std::string summary(const JobResult& r, const std::string& done) {
  std::string text;
  if (!r.failure.empty()) text += r.failure + "\n";
  if (r.exitCode == kUnreadable || r.exitCode == kUsage) return text;
  if (r.failure.empty()) text += r.drawing + " -> " + r.program + "\n" + done;
  appendList(text, r.said, "  ");
  if (!r.warnings.empty()) text += formatted("%zu warnings:\n", r.warnings.size());
  appendList(text, r.warnings, "  ");
  return text;
}

// `own`: what a program of this kind has to tell; it stands between paths and open chains.
Json json(const JobResult& r, const Json& own) {
  Json j;
  j["drawing"] = r.drawing;
  j["ok"] = r.failure.empty();
  if (!r.failure.empty()) j["failure"] = r.failure;
  j["exitCode"] = r.exitCode;
  if (r.failure.empty()) j["program"] = r.program;
  j["version"] = r.read.version;
  j["units"] = r.read.units;
  j["unitFactor"] = r.read.unitFactor;
  j["contours"] = r.found.contours.size();
  j["outer"] = r.outer;
  j["holes"] = r.holes;
  j["leftOut"] = r.leftOut;
  j["paths"] = r.paths;
  for (const auto& [key, value] : own.items()) j[key] = value;
  j["cutLength"] = r.cutLength;
  auto open = Json::array();
  for (const auto& c : r.found.open)
    open.push_back(
        {{"from", {c.from.x, c.from.y}}, {"to", {c.to.x, c.to.y}}, {"length", c.length}, {"gap", c.gap}});
  j["openChains"] = open;
  for (const auto& [step, seconds] : r.seconds) j["seconds"][step] = seconds;
  j["said"] = r.said;
  j["warnings"] = r.warnings;
  return j;
}

std::string text(const Json& j) {
  return j.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string summaryOf(const Job3bResult& r) {
  return summary(r, formatted("%zu contours (%zu outer, %zu holes), %zu paths, %ld blocks, %.1f mm of cut\n",
                              r.found.contours.size(), r.outer, r.holes, r.paths, r.blocks, r.cutLength));
}

std::string jsonOf(const Job3bResult& r) {
  return text(json(r, {{"blocks", r.blocks}}));
}

std::string summaryOf(const JobIsoResult& r) {
  std::string passes;
  for (std::size_t g = 0; g < r.cutLengthPerPass.size(); ++g)
    passes += formatted("%s%zu: %.1f", g == 0 ? "" : ", ", g + 1, r.cutLengthPerPass[g]);
  return summary(
      r, formatted("machine %s, cut %s: %zu contours (%zu outer, %zu holes), %d figures, %d passes, %ld "
                   "lines, %.1f mm of cut (%s)\n",
                   r.machine.c_str(), r.byPass ? "pass by pass" : "figure by figure", r.found.contours.size(),
                   r.outer, r.holes, r.figures, r.passes, r.lines, r.cutLength, passes.c_str()));
}

std::string jsonOf(const JobIsoResult& r) {
  Json styles = Json::object();
  for (const auto& [style, count] : r.figuresPerStyle) styles[style] = count;
  return text(json(r, {{"machine", r.machine},
                       {"cut", r.byPass ? "pass" : "figure"},
                       {"figures", r.figures},
                       {"passes", r.passes},
                       {"lines", r.lines},
                       {"styles", styles},
                       {"cutLengthPerPass", r.cutLengthPerPass}}));
}

std::string jsonOf(const JobResult& r) {
  return text(json(r, Json::object()));
}

}  // namespace tarnex
