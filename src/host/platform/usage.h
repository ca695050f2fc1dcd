// What the running program has taken of the machine.
#pragma once

#include <cstddef>

namespace tarnex {

// The most memory that this process has held so far, bytes; 0 when the system doesn't tell.
[[nodiscard]] std::size_t peakMemory();

}  // namespace tarnex
