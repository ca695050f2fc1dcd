// The report of the truth test as text.
// Knows no geometry.
#include "exchange/truth_text.h"

#include <algorithm>

#include "exchange/outline.h"

namespace tarnex::truth {

namespace {

const char* sideText(Side s) {
  constexpr const char* names[] = {"inside", "outside", "left", "right", "-"};
  return names[static_cast<int>(s)];
}
const char* directionText(Direction d) {
  constexpr const char* names[] = {"counter-clockwise", "clockwise", "along", "against", "-"};
  return names[static_cast<int>(d)];
}
std::string worstText(const Worst& w) {
  if (w.block == 0) return "none";
  return formatted("%.4f mm at (%.3f, %.3f) block %lld", std::max(0.0, w.value), w.at.x, w.at.y,
                   static_cast<long long>(w.block));
}

}  // namespace

const char* nameOf(FindingKind kind) {
  constexpr const char* names[] = {
      "unreadable", "contradiction", "numbering",   "stop-missing", "start", "link",      "unknown-cut",
      "not-cut",    "too-near",      "too-far",     "uncovered",    "side",  "direction", "lead-in",
      "closing",    "unexplained",   "coordinates", "axis-word",    "taper", "code",      "pause",
      "overcut",    "step",          "repeated",    "transit",      "order", "remark"};
  return names[static_cast<int>(kind)];
}

std::vector<std::string> describe(const Report& report) {
  std::vector<std::string> out;
  out.push_back(
      formatted("%s: %zu blocks, %zu paths, %zu faults, %zu notes; one arc's rounding added up to %.4f mm",
                report.ok ? "ok" : "not ok", report.blocks, report.paths.size(), report.faults, report.notes,
                report.worstArcRounding));
  for (const PathReport& p : report.paths) {
    out.push_back(
        formatted("path of figure %d: blocks %lld to %lld (%zu), %s, %s; too near by %s; too far by %s; "
                  "closes to %.4f mm, placed to %.4f mm, rounding up to %.4f mm",
                  p.figure, static_cast<long long>(p.firstBlock), static_cast<long long>(p.lastBlock),
                  p.blocks, sideText(p.side), directionText(p.direction), worstText(p.shortfall).c_str(),
                  worstText(p.excess).c_str(), p.closingError, p.placing, p.rounding));
    if (p.uncovered > 0)
      out.push_back(formatted("  %.4f mm of contour have no wire beside them", p.uncovered));
  }
  appendFindings(out, report);
  return out;
}

}  // namespace tarnex::truth
