// The way of the wire through a finished 3B program, from its blocks alone.
// Knows blocks and pauses; no drawing, and no judgement of the program.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exchange/plane.h"

namespace tarnex {

struct WireMove {
  truth::Stroke stroke;  // mm; the program's first block starts at (0,0)
  bool link = false;     // a lone line between two pauses: the wire is moved, not cutting
};
struct WireWalk {
  std::vector<WireMove> moves;           // each begins where the last one ended
  std::vector<std::string> skipped;      // lines that move nothing that we know, "line 12: cause"
  double cutLength = 0, linkLength = 0;  // mm
};
[[nodiscard]] WireWalk walkProgram(std::string_view program);

}  // namespace tarnex
