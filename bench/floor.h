// The floor: the least that any reader of a drawing does. Reading and whole jobs are quoted in multiples of
// it, so that figures of different machines can be compared. Knows nothing of the program that is measured.
#pragma once

#include <cstddef>
#include <string>

namespace tarnex::bench {

struct Floor {
  double seconds = 0;  // of the processor
  std::size_t entities = 0;
  double sum = 0;  // of all reals, so that no work can be left out
};

// Reads the file, splits it into tags, turns every real into a double and keeps a record of 64 bytes for each
// line and arc.
Floor readingFloor(const std::string& path);

}  // namespace tarnex::bench
