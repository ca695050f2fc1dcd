// Candidates for picks and windows.
// Knows no selection.
#include "host/editor/nearby.h"

#include <algorithm>
#include <iterator>

namespace tarnex {

void Nearby::look(const AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* ray = drawing.peek<AcDbRay>(id);
  if (ray && ray->ownerId() == drawing.modelSpace())
    rays_.insert(id);
  else
    rays_.erase(id);
}

void Nearby::follow(const AcDbDatabase& drawing) {
  const std::uint64_t now = drawing.changeStamp();
  if (known_ && now == stamp_) return;
  std::vector<AcDbObjectId> changed;
  if (!known_ || !drawing.changesSince(stamp_, changed)) {
    rays_.clear();
    changed = drawing.modelSpaceEntities();
  }
  for (const auto id : changed) look(drawing, id);
  known_ = true;
  stamp_ = now;
}

std::vector<AcDbObjectId> Nearby::candidates(const AcDbDatabase& drawing, const Extents2d& box) {
  follow(drawing);
  auto found = drawing.entitiesTouching(box);
  if (rays_.empty()) return found;
  std::vector<AcDbObjectId> all;
  std::set_union(found.begin(), found.end(), rays_.begin(), rays_.end(), std::back_inserter(all));
  return all;
}

}  // namespace tarnex
