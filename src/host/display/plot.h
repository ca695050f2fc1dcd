// A drawing as a file to look at or to print, its format told by the file's name.
// Knows the formats by name; each is written by its own file.
#pragma once

#include <optional>
#include <string>

#include "host/display/svg.h"

namespace tarnex {

enum class PlotFormat { svg, pdf, png };

// By the extension, in capitals or not; nothing for any other.
[[nodiscard]] std::optional<PlotFormat> plotFormatOf(const std::string& path);
// False: the program was built without what writes it. SVG is always there.
[[nodiscard]] bool canPlot(PlotFormat format);

inline constexpr double kPixelsPerInch = 96;

struct PlotOptions : SvgOptions {
  double dpi = kPixelsPerInch;  // of a PNG
};

// Lengths on paper count in a PNG as well: at `dpi` pixels per inch. On an error, also of an extension that
// is none of the above, the old file stays.
[[nodiscard]] std::optional<FileError> writePlot(const std::string& path, const DisplayList& list,
                                                 const PlotOptions& options = {});

// The bytes of such a file, for a program that shows them itself. Nothing where canPlot says no, or where the
// page is larger than the format's library takes (32,767 pixels a side).
[[nodiscard]] std::optional<std::string> plotBytes(PlotFormat format, const DisplayList& list,
                                                   const PlotOptions& options = {});

}  // namespace tarnex
