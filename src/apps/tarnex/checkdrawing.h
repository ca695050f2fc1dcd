// `tarnex check` of a drawing: what is wrong with its contours, listed and ringed in a plot.
// Knows files, words and exit codes; the finding is markfinder's.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarnex {

struct CheckDrawingOptions {
  std::string drawing, plot;
  std::optional<double> offset;  // mm; of a plain drawing, in place of the settings' dOffset
  std::optional<double> gap;     // mm: ends up to this far apart count as joined
  std::vector<std::string> layers, skipLayers;
  std::optional<double> unitFactor;  // mm per drawing unit
  double scale = 1;
  bool json = false;
};
// Exit code: kDone when nothing is wrong, kFailed when something was found, the plot couldn't be written or
// there is nothing to cut, kUnreadable.
int runCheckDrawing(const CheckDrawingOptions& options);

// Whether a file is a drawing and no program: by its ending, else by its first bytes.
[[nodiscard]] bool isDrawing(const std::string& path);

}  // namespace tarnex
