// `tarnex plot`: a drawing with its paths as a picture or a page to print.
// Knows the options and what they mean; putting it down is host/display's.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/display/plot.h"

namespace tarnex {

// As typed; an empty text: not given.
struct PlotCommand {
  std::string drawing, output;
  std::vector<std::string> layers, skipLayers;
  std::vector<std::string> sets;     // KEY=VALUE
  std::string window;                // x1,y1,x2,y2: two opposite corners, mm of drawing in plan
  std::string size;                  // WxH, mm of paper or pixels of a PNG; a0 to a4, the way that suits
  std::string scale;                 // 5:1, 1:2: paper to drawing; a plain number is that to 1
  std::string view;                  // top, iso, or x,y,z to the eye
  std::optional<double> unitFactor;  // mm per drawing unit
  double lineWidth = 0.25;           // mm on paper
  double dpi = kPixelsPerInch;       // of a PNG
  bool dark = false;
};
int runPlot(const PlotCommand& command);

// What the options mean, or the sentence that says which one means nothing.
struct PlotMeaning {
  PlotOptions options;
  bool namedPaper = false;  // a0 to a4: may lie across or stand
  std::string error;        // empty: all is well
};
[[nodiscard]] PlotMeaning meaningOf(const PlotCommand& command);

}  // namespace tarnex
