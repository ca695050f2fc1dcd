// `tarnex sim`: the replay of a drawing's paths, or the wire's way through a finished program, as an animated
// picture. Knows the command line's options; SIM draws, the program's reader walks.
#pragma once

#include <optional>
#include <string>

namespace tarnex {

struct SimOptions {
  std::string input, output;    // a drawing with paths, or a program (.3b)
  std::optional<int> delay;     // ms a segment; drawings. Without it SIM's own, played in a minute at most
  std::optional<double> speed;  // mm/min that are cut; programs
  bool realTime = false;        // as long as it takes, however long
  bool dark = false;
  double width = 277, height = 190;  // mm on paper, at most
};
int runSim(const SimOptions& options);

}  // namespace tarnex
