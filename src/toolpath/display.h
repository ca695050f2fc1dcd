// What a path's drawing depends on beside the path itself, and the lines that list it.
// Knows settings and drawing variables; when they change is the commands' matter.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "host/platform/format.h"
#include "toolpath/toolpath.h"

namespace tarnex {

struct WireCutSettings;

// The context that paths ask their drawing for (AcGiWorldDraw::applicationContext). Without one they draw
// themselves with the settings' construction defaults, in no mode, with the program origin at (0,0,0) and
// without chains.
struct PathDisplay {
  const WireCutSettings* settings = nullptr;  // null: construction defaults
  bool bOrderMode = false;       // the order command runs: numbers instead of compensation and arrows
  bool bShowMatchLines = false;  // the match line tool runs: it draws the ruling lines itself
  AcGePoint3d ptOrigin;          // program origin, world
  int pathCount = 0;             // paths in the running list
  // Points that the wire passes before the first path and after the last one, in the order travelled, world.
  std::vector<AcGePoint2d> startChain, endChain;
};

// Fills the chains from the drawing's variables: STARTPOINTk from the highest k of 0 to 100 that is there
// down to the first gap, ENDPOINT0 upward to the first gap.
void readTransitChains(AcDbDatabase& drawing, PathDisplay& display);

// The path's own lines of `list`, without line ends. `text` gives a catalogue text with its arguments filled
// in: 539 number, 541 fit clearance, 542 wire offset; 20230 to 20242 side, direction, threading and entry
// point, contour, tapers, codes and break point, those that there are; 540 the closing line. A text that is
// empty gives no line.
using PathText = std::function<std::string(int id, std::initializer_list<FormatArg> args)>;
[[nodiscard]] std::vector<std::string> pathListLines(const CToolPath& path, const PathText& text);

}  // namespace tarnex
