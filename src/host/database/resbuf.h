// Chains of typed items: xrecords, extended data, selection filters.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/geometry/values.h"

namespace tarnex {

// One item: a DXF group code and its value (70 short, 90 long, 40 real, 1 text, 10 point, 310 binary as raw
// bytes).
struct ResBuf {
  int code = 0;
  std::variant<long long, double, std::string, AcGePoint3d> value;
  bool operator==(const ResBuf&) const = default;
};
using ResBufChain = std::vector<ResBuf>;

}  // namespace tarnex
