// `tarnex check`: the truth test of a finished program against its drawing.
// Knows how figures are read off a drawing; the judging is exchange/truth.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exchange/truth.h"
#include "host/database/database.h"

namespace tarnex {

struct CheckOptions {
  std::string program, drawing, machine;
  std::optional<double> offset;   // mm: the drawing holds plain contours
  std::vector<std::string> sets;  // KEY=VALUE: options of the program (dAutoFixLen, nOvercutMode, ...)
  std::optional<double> unitFactor;
  bool json = false;
  // Of ISO programs: the words that thread and cut the wire, and the program's origin in the drawing, x and y
  // in mm (none: the drawing's).
  std::string threadWord = "M60", cutWord = "M50";
  std::vector<double> origin;
};
int runCheck(const CheckOptions& options);

// One figure per closed contour, cut `offset` mm beside it.
[[nodiscard]] std::vector<truth::Figure> figuresOfContours(const AcDbDatabase& drawing, double offset);

}  // namespace tarnex
