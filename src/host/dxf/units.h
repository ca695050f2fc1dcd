// Drawing units: the codes of $INSUNITS with their names and lengths.
#pragma once

#include <optional>
#include <string_view>

namespace tarnex {

struct DrawingUnit {
  int code;               // of $INSUNITS
  std::string_view name;  // "inches"
  double millimetres;     // of one unit
  bool imperial;
};
// Nothing for a code that isn't one; 0 is "unitless" and counts 1 mm.
[[nodiscard]] std::optional<DrawingUnit> drawingUnit(long long code);
// The unit of this length; nothing when there is none.
[[nodiscard]] std::optional<DrawingUnit> drawingUnitOf(double millimetres);

}  // namespace tarnex
