// Numbers, list and running end of the paths, kept in step with the drawing.
// Knows path entities, and nothing of how they were made.
#include "pathcmd/makepath.h"
#include "pathcmd/pathorder.h"
#include "pathcmd/showcommands.h"

namespace tarnex {

void numberPath(AcDbDatabase& drawing, PathState& state, AcDbObjectId id, int number) {
  const auto* path = drawing.peek<CToolPath>(id);
  if (!path) return;
  path->setPrevEnd(state.lastEnd);
  state.lastEnd = path->getEndPoint(true);
  if (path->nPathNo() == number) return;
  if (auto opened = drawing.open<CToolPath>(id, OpenMode::kForWrite)) opened->setPathNo(number);
}

void renumberAll(AcDbDatabase& drawing, PathState& state) {
  state.lastEnd = kNoLastEnd;
  int number = 0;
  for (AcDbObjectId id : state.PathList) numberPath(drawing, state, id, ++number);
  state.nextPathNo = number + 1;
}

namespace {

void follow(Module& module, PathOrder::Numbers numbers) {
  readDisplayValues(module);
  module.state<PathOrder>().follow(module.drawing(), module.state<PathState>(), numbers);
}

}  // namespace

void rebuildPathList(Module& module) {
  follow(module, PathOrder::Numbers::kWrite);
}

void followPaths(Module& module) {
  follow(module, PathOrder::Numbers::kKeep);
}

// Asked for by the user, who may know better: the whole drawing is read.
void TTT(Module& module) {
  module.state<PathOrder>().forget();
  rebuildPathList(module);
}

}  // namespace tarnex
