// The report of the truth test of ISO programs as text.
// Knows no geometry.
#include "exchange/truth_text.h"
#include "exchange/truthiso.h"
#include "host/platform/format.h"

namespace tarnex::truth {

const char* nameOf(IsoFault kind) {
  constexpr const char* names[] = {"unreadable", "numbering", "start",        "connection", "not-cut",
                                   "too-many",   "arc",       "off-contour",  "uncut",      "repeated",
                                   "overcut",    "tab",       "compensation", "offset",     "condition",
                                   "taper",      "lead",      "rapid",        "wire",       "guide",
                                   "return",     "order",     "remark"};
  return names[static_cast<int>(kind)];
}

std::vector<std::string> describe(const IsoReport& report) {
  std::vector<std::string> out;
  out.push_back(
      formatted("%s: %d lines, %zu moves, %zu figures, %zu faults, %zu notes; a block may end %.4f mm beside "
                "its contour, radii of an arc's ends differ by up to %.4f mm",
                report.ok ? "ok" : "not ok", report.lines, report.moves, report.figures.size(), report.faults,
                report.notes, report.tolerance, report.worstRadius));
  for (const IsoFigureReport& f : report.figures)
    out.push_back(
        formatted("figure %d: lines %d to %d, %d of %d passes, %.3f mm of contour; blocks end up to %.4f mm "
                  "beside it%s%s",
                  f.figure, f.firstLine, f.lastLine, f.passes, f.expected, f.cut, f.worst,
                  f.relieved > 0 ? formatted("; %d corners relieved", f.relieved).c_str() : "",
                  f.drift > 0 ? formatted("; roundings add up to %.4f mm", f.drift).c_str() : ""));
  appendFindings(out, report);
  return out;
}

}  // namespace tarnex::truth
