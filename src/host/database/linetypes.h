// The linetypes that can be loaded by name without a file.
// Knows patterns; loading into a drawing is the database's.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

struct LinetypePattern {
  std::string name;  // as it is written into drawings
  std::string description;
  std::vector<double> dashes;  // mm: above 0 drawn, below 0 gap, 0 a dot
};
// Without regard to case; nothing for a name that isn't known.
[[nodiscard]] std::optional<LinetypePattern> hostLinetype(std::string_view name);

}  // namespace tarnex
