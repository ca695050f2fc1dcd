// Contours of any number for measuring: plates and holes with rounded corners, a gear, and the plates as a
// drawing of loose entities. The same count gives the same contours. Knows no time.
#pragma once

#include <string>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex::bench {

// A closed walk; the first vertex is repeated at the end.
using Outline = std::vector<BulgeVertex>;

// By turns an L-shaped plate and a rounded hexagon that lies inside it: 12 spans each, counter-clockwise, mm.
std::vector<Outline> plates(std::size_t count);
inline constexpr std::size_t kSpansOfPlate = 12;

// A gear of `vertices` vertices: straight flanks, arcs at root and head, `pitch` mm from tooth to tooth.
Outline gear(std::size_t vertices, double pitch);

// The text of a drawing in millimetres in which every span is an entity of its own, in random order, lines
// turned about by chance.
std::string looseDrawing(const std::vector<Outline>& outlines);

}  // namespace tarnex::bench
