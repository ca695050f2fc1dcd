// PDF and PNG, by Cairo: the only files that know it are those that begin with "cairo".
// Knows pages and lists of primitives. For this folder only.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/display/plot.h"

namespace tarnex {

[[nodiscard]] bool hasCairo();  // built in

// The file's bytes in pieces. Why it failed; empty when it went well. Lines and texts look as in the SVG. The
// same list and options give the same bytes; a PDF's date is that of SOURCE_DATE_EPOCH or 2000-01-01.
[[nodiscard]] std::string drawPdf(const DisplayList& list, const PlotOptions& options,
                                  const std::function<void(std::string_view)>& sink);
[[nodiscard]] std::string drawPng(const DisplayList& list, const PlotOptions& options,
                                  const std::function<void(std::string_view)>& sink);

}  // namespace tarnex
