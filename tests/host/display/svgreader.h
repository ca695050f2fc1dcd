// A reader of SVG path data for tests, written from the format's own rules; shares nothing with the writer.
#pragma once

#include <string>
#include <vector>

#include "host/geometry/values.h"

namespace tarnex {

// What stands in the first d="..." of the text.
std::string firstPathData(const std::string& svg);
// The line that a viewer draws, as a fine chain of points in page coordinates. Knows M m h v l a q z.
std::vector<AcGePoint2d> readPath(const std::string& data);
double distanceToChain(const std::vector<AcGePoint2d>& chain, AcGePoint2d p);

}  // namespace tarnex
