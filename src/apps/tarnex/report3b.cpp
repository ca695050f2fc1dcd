// What a job tells its user.
// Knows results; nothing is decided here.
#include "apps/tarnex/report3b.h"

#include <nlohmann/json.hpp>

#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::size_t kShown = 40;  // of each list in words; JSON has all

void appendList(std::string& text, const std::vector<std::string>& lines, const char* lead) {
  for (std::size_t i = 0; i < std::min(lines.size(), kShown); ++i) text += lead + lines[i] + "\n";
  if (lines.size() > kShown)
    text += formatted("%s... and %zu more (see --json)\n", lead, lines.size() - kShown);
}

}  // namespace

std::string summaryOf(const Job3bResult& r) {
  std::string text;
  if (!r.failure.empty()) text += r.failure + "\n";
  if (r.exitCode == kUnreadable || r.exitCode == kUsage) return text;
  if (r.failure.empty())
    text +=
        formatted("%s -> %s\n%zu contours (%zu outer, %zu holes), %zu paths, %ld blocks, %.1f mm of cut\n",
                  r.drawing.c_str(), r.program.c_str(), r.found.contours.size(), r.outer, r.holes, r.paths,
                  r.blocks, r.cutLength);
  appendList(text, r.said, "  ");
  if (!r.warnings.empty()) text += formatted("%zu warnings:\n", r.warnings.size());
  appendList(text, r.warnings, "  ");
  return text;
}

std::string jsonOf(const Job3bResult& r) {
  nlohmann::ordered_json j;
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
  j["blocks"] = r.blocks;
  j["cutLength"] = r.cutLength;
  auto open = nlohmann::ordered_json::array();
  for (const auto& c : r.found.open)
    open.push_back(
        {{"from", {c.from.x, c.from.y}}, {"to", {c.to.x, c.to.y}}, {"length", c.length}, {"gap", c.gap}});
  j["openChains"] = open;
  for (const auto& [step, seconds] : r.seconds) j["seconds"][step] = seconds;
  j["said"] = r.said;
  j["warnings"] = r.warnings;
  return j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace tarnex
