// What a job tells its user: a summary in words, or all of it as JSON.
// Knows results; nothing is decided here.
#pragma once

#include <string>

#include "apps/tarnex/job3b.h"
#include "apps/tarnex/jobiso.h"

namespace tarnex {

[[nodiscard]] std::string summaryOf(const Job3bResult& result);
[[nodiscard]] std::string jsonOf(const Job3bResult& result);
[[nodiscard]] std::string summaryOf(const JobIsoResult& result);
[[nodiscard]] std::string jsonOf(const JobIsoResult& result);
// Of a job that came to nothing of its own kind.
[[nodiscard]] std::string jsonOf(const JobResult& result);

}  // namespace tarnex
