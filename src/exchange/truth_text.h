// What the reports of all truth tests have at their end.
// Knows findings by their grade and text.
#pragma once

#include <string>
#include <vector>

#include "exchange/truth.h"
#include "host/platform/format.h"

namespace tarnex::truth {

// A line for each finding that the report holds, and how many more there were.
template <class Report>
void appendFindings(std::vector<std::string>& lines, const Report& report) {
  for (const auto& f : report.findings)
    lines.push_back((f.grade == Grade::kFault ? "fault: " : "note: ") + f.text);
  const std::size_t told = report.findings.size(), all = report.faults + report.notes;
  if (all > told) lines.push_back(formatted("and %zu more", all - told));
}

}  // namespace tarnex::truth
