// Many drawings: one job each, several at a time; one that fails doesn't stop the others.
// Knows jobs; what one does stands in job3b.
#pragma once

#include "apps/tarnex/job3b.h"

namespace tarnex {

int run3b(const Job3bOptions& options);

}  // namespace tarnex
