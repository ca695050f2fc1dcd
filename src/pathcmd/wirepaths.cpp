// Wire paths in step with the drawing.
// Knows ids and the drawing's feed of changes.
#include "pathcmd/wirepaths.h"

#include <utility>
#include <vector>

namespace tarnex {

void WirePaths::follow(const AcDbDatabase& drawing) {
  const auto life = drawing.life();
  const bool same = !drawing_.owner_before(life) && !life.owner_before(drawing_);
  std::vector<AcDbObjectId> changed;
  if (!kept_.empty()) {
    if (!same || !drawing.changesSince(stamp_, changed)) kept_.clear();
    for (const AcDbObjectId id : changed) kept_.erase(id.index);
  }
  drawing_ = life;
  stamp_ = drawing.changeStamp();
}

const OffsetPath& WirePaths::of(const CToolPath& path) {
  const auto [at, isNew] = kept_.try_emplace(path.objectId().index);
  if (isNew) at->second = path.wireCentrePath();
  return at->second;
}

OffsetPath WirePaths::take(const CToolPath& path) {
  auto kept = kept_.extract(path.objectId().index);
  return kept.empty() ? path.wireCentrePath() : std::move(kept.mapped());
}

}  // namespace tarnex
