// The main job: one drawing to one 3B program, by nothing but commands that a user could type.
// Knows which commands in which order; what they do, the rooms know.
#pragma once

#include "apps/tarnex/drawingjob.h"

namespace tarnex {

// `machine` is a name of the KZS file.
struct Job3bOptions : JobOptions {};

// `cutLength` runs along the wire's centre: contours and leads.
struct Job3bResult : JobResult {
  long blocks = 0;
};

[[nodiscard]] Job3bResult runJob3b(const std::string& drawing, const Job3bOptions& options);

}  // namespace tarnex
