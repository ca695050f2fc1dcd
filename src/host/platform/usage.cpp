// What the running program has taken of the machine.
// Knows the system's counters alone.
#include "host/platform/usage.h"

#include <sys/resource.h>

#include <ctime>

namespace tarnex {

std::size_t peakMemory() {
  rusage usage{};
  if (getrusage(RUSAGE_SELF, &usage) != 0) return 0;
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;  // the system counts in kilobytes
}

double processorSeconds() {
  timespec used{};
  if (clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used) != 0) return 0;
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

}  // namespace tarnex
