// `tarnex info`: what a drawing holds.
// Looks at a copy in memory; no file is changed.
#pragma once

#include <string>

namespace tarnex {

struct InfoOptions {
  std::string drawing;
  bool json = false;
};
int runInfo(const InfoOptions& options);

}  // namespace tarnex
