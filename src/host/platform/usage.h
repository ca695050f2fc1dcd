// What the running program has taken of the machine.
#pragma once

#include <cstddef>

namespace tarnex {

// The most memory that this process has held so far, bytes; 0 when the system doesn't tell.
[[nodiscard]] std::size_t peakMemory();

// Processor time of this process so far, its own and the system's for it, seconds: on a busy machine a
// steadier measure than the clock.
[[nodiscard]] double processorSeconds();

}  // namespace tarnex
