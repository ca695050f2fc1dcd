// What goes wrong between paths before a machine finds out: wires that cut into a neighbour, lead-ins that
// cross a contour, contours that vanish or fall apart under their offset, radii below it. Knows paths as they
// stand in the drawing; it only looks.
#pragma once

#include <functional>
#include <vector>

#include "host/database/database.h"
#include "pathcmd/wirepaths.h"

namespace tarnex {

class CToolPath;

enum class WireTrouble {
  kRadiusBelowOffset,  // an arc that the wire runs inside of is smaller than the wire
  kVanished,           // no wire of this size goes round the contour
  kFallsApart,         // the offset contour splits; only the part at the entry is cut
  kOwnMethod,          // the offset was made corner by corner and may cross itself
  kCutsNeighbour,      // the wire comes nearer to another contour than its own offset
  kSharpCorner,        // the wire runs far out along the sides of a sharp corner before it turns
  kLeadInCrosses,      // the lead-in crosses a contour
};

struct WireWarning {
  WireTrouble trouble = WireTrouble::kVanished;
  int path = 0, other = 0;  // path numbers; other 0: none
  AcGePoint2d at;
  double value = 0, limit = 0;  // mm: radius and offset, or distance and offset
};

struct WireSurvey {
  std::vector<WireWarning> warnings;  // in path order; at most one per pair of paths and kind
  double cutLength = 0;               // mm along the wire's centre: leads, contours, returns
};
// The wire of a path, mm beside its contour away from the part; a path's own where none is given, as it is
// for paths whose control compensates.
using WireOffset = std::function<double(const CToolPath& path)>;
[[nodiscard]] WireSurvey surveyWires(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& paths,
                                     const WireOffset& offset = {});
// By the paths' own offsets, with wire paths that are known already; those looked at are `known` no longer.
[[nodiscard]] WireSurvey surveyWires(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& paths,
                                     WirePaths& known);

// What becomes of one closed contour beside which a wire runs `offset` mm away.
struct OffsetFate {
  bool vanished = false;
  int pieces = 1;
  AcGePoint2d at;  // a point of the contour
};
[[nodiscard]] OffsetFate fateUnderOffset(const PolylineCurve& contour, bool hole, double offset);
// The first part of that alone; a contour that is large beside the offset is known without making any.
[[nodiscard]] bool vanishesUnderOffset(const PolylineCurve& contour, bool hole, double offset);

// Every arc that the wire runs inside of and that is smaller than the offset, at its start.
struct TightArc {
  double radius = 0;  // mm
  AcGePoint2d at;
};
[[nodiscard]] std::vector<TightArc> tightArcs(const PolylineCurve& contour, bool hole, double offset);

}  // namespace tarnex
