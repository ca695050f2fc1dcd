// Loading a large table of conditions.
// Prints figures, no judgement.
#pragma once

namespace tarnex::bench {

// 100 materials, wires and thicknesses; 100 and 1,000 cells with lines.
void printConditionTable();

}  // namespace tarnex::bench
