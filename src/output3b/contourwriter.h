// One path as the blocks of a 3B program: pause, overcut, corner compensation, taper marks and code texts on
// the way. Knows one path; the frame of the program is above it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "frame/settings.h"
#include "pathcmd/wirepaths.h"
#include "toolpath/toolpath.h"

namespace tarnex {

// Where the lines of a program go, and the running block number.
struct Program3b {
  std::string text;
  long lineNo = 1;                          // number of the next block
  void block(std::string_view block);       // "\nN%4d: %s"
  void unnumbered(std::string_view words);  // "\nN    : %s", a pause or a stop
};

struct Contour3bContext {
  const WireCutSettings& settings;
  AcGePoint2d origin;  // subtracted from printed coordinates
  std::string_view pauseText;
  CornerRelief relief;                           // may be empty
  std::function<void(std::string_view)> report;  // lines for the command line
  std::function<std::string(int)> message;       // catalogue texts
  WirePaths* wires = nullptr;                    // where wire paths are kept for others; may be null
};

// Writes the path. Without a wire path it writes catalogue message 2 as a line of its own.
void write3B(const CToolPath& path, const Contour3bContext& context, Program3b& program);

}  // namespace tarnex
