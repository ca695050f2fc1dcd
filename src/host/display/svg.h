// A drawing as an SVG picture: arcs stay arcs, text stays text, dashes have their true length.
// Knows lists of primitives; what an entity is, it doesn't.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/display/colors.h"
#include "host/display/painter.h"
#include "host/platform/files.h"

namespace tarnex {

struct SvgOptions : PageOptions {
  Ground ground = Ground::light;
  double lineWidth = 0.25;  // mm on paper
};

// User units are mm of the drawing, measured from the upper left corner of what is shown, so that a part far
// from the origin keeps its digits in viewers that count with few; <desc> says where that corner lies.
// Coordinates are rounded to a micrometre of the drawing or of the paper, whichever is finer. Lines are
// `lineWidth` at plot size; where the viewer can, continuous ones keep that width at any zoom. An arc longer
// than a third of a turn is written in pieces, so that rounding can't move its centre.
void drawSvg(const DisplayList& list, const SvgOptions& options,
             const std::function<void(std::string_view)>& sink);  // in pieces
[[nodiscard]] std::string svgText(const DisplayList& list, const SvgOptions& options = {});
// The same into a file, piece by piece; on an error the old file stays.
[[nodiscard]] std::optional<FileError> writeSvg(const std::string& path, const DisplayList& list,
                                                const SvgOptions& options = {});

}  // namespace tarnex
