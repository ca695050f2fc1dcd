// The job: so far what the choice of paths for a program reads of it.
// Knows no file.
#pragma once

#include <array>

#include "machining/processstyle.h"

namespace tarnex {

enum class SortMode { kNearestNext = 0, kByStyle = 1, kByNumber = 2 };

struct JobLayout {
  SortMode nSortMode = SortMode::kByNumber;
  std::array<ProcessStyle, 10> styles;
};

}  // namespace tarnex
