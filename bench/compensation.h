// How fast contours become wire paths, and wire paths blocks.
// Knows the offset, a path's compensation and the block encoder.
#pragma once

#include <cstddef>

namespace tarnex::bench {

// Input vertices a second on `contours` plates at 0.15 and 2.5 mm to either side and on a gear of `vertices`
// vertices; blocks a second on the plates' wire paths.
void printCompensation(std::size_t contours, std::size_t vertices);

}  // namespace tarnex::bench
