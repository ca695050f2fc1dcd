// A job as text: TOML with names, to a record and back; and the rules by which figures of a drawing get their
// style. Knows the names and the limits; who applies the rules is above it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machining/joblayout.h"

namespace tarnex {

// The first rule that fits a figure names its style; what a rule doesn't say fits every figure.
struct StyleRule {
  std::string style;
  std::optional<bool> outer;         // outer shapes, or holes and open cuts
  std::optional<std::string> layer;  // of the drawn contour, ignoring case
  std::optional<int> colour;         // its colour index
  bool operator==(const StyleRule&) const = default;
};

struct JobSource {
  JobLayout job;
  std::vector<StyleRule> rules;     // the job's file has no place for them
  std::vector<std::string> faults;  // "NAME:LINE: what, which value, which limit"; empty: the job stands
};

// What the source leaves out is as in `base`; styles are replaced as a whole once there is one.
[[nodiscard]] JobSource readJobSource(std::string_view source, const std::string& name,
                                      const JobLayout& base);
// Read again over defaults it gives the same job.
[[nodiscard]] std::string jobSource(const JobLayout& job);

}  // namespace tarnex
