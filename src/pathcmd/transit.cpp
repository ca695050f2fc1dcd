// `QD`, `ZD`, `QZ`: the points that the wire passes before the first and after the last path.
// Knows drawing variables and the list of paths.
#include <ranges>

#include "contour/hosthelpers.h"
#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "pathcmd/editcommands.h"

namespace tarnex {

namespace {

constexpr int kMostStartPoints = 101;

struct Chain {
  const char* name;  // of its drawing variables; a number follows
  int text;          // catalogue text
  bool beforeFirst;  // path, else after the last
};
constexpr Chain kStart{"STARTPOINT", 179, true}, kEnd{"ENDPOINT", 180, false};

std::string keyOf(const Chain& chain, int k) {
  return chain.name + std::to_string(k);
}

// Of the paths that stand, the first in that direction of the list; null for none.
template <class Ids>
const CToolPath* firstOf(const AcDbDatabase& drawing, const Ids& ids) {
  for (AcDbObjectId id : ids)
    if (const auto* path = drawing.peek<CToolPath>(id)) return path;
  return nullptr;
}

// The numbers stand. Where the wire comes from is told to the first path, and both draw their chains anew.
void firstPathFrom(Module& module, AcGePoint2d point) {
  const auto* first = firstOf(module.drawing(), module.state<PathState>().PathList);
  if (!first) return;
  first->setPrevEnd(point);
  module.drawing().noteChange(first->objectId());
}

void redrawLastPath(Module& module) {
  const auto* last = firstOf(module.drawing(), std::views::reverse(module.state<PathState>().PathList));
  if (last) module.drawing().noteChange(last->objectId());
}

void askPoints(Module& module, const Chain& chain) {
  AcDbDatabase& drawing = module.drawing();
  const AcGePoint3d origin = drawing.ucsorg;
  setUcsOrigin(module.editor, origin);
  DrawingVars vars(drawing);
  AcGePoint3d at;  // in the user's coordinates
  int k = 0;
  for (; const auto known = vars.getPoint(keyOf(chain, k)); ++k)
    at = {known->x - origin.x, known->y - origin.y, known->z - origin.z};
  for (; !chain.beforeFirst || k < kMostStartPoints; ++k) {
    const auto answer = module.editor.acedGetPoint(
        "\n" + module.message(chain.text) + formatted("%d(%g,%g): ", k + 1, at.x, at.y), &at);
    if (!answer) return;
    at = answer.value;
    const AcGePoint3d point{at.x + origin.x, at.y + origin.y, at.z + origin.z};
    vars.setPoint(keyOf(chain, k), point);
    module.editor.print(formatted("(%g,%g)", at.x, at.y));
    if (chain.beforeFirst)
      firstPathFrom(module, point.flat());
    else
      redrawLastPath(module);
  }
  module.editor.print(module.message(20212, {static_cast<long long>(kMostStartPoints)}));
}

}  // namespace

void QD(Module& module) {
  askPoints(module, kStart);
}

void ZD(Module& module) {
  askPoints(module, kEnd);
}

void QZ(Module& module) {
  DrawingVars vars(module.drawing());
  for (const Chain& chain : {kStart, kEnd})
    for (int k = 0; vars.exists(keyOf(chain, k)); ++k) vars.remove(keyOf(chain, k));
  firstPathFrom(module, kNoLastEnd);
  redrawLastPath(module);
}

}  // namespace tarnex
