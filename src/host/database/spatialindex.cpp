// The index of where entities lie, brought up to date when it is asked.
// Knows extents and ids.
#include "host/database/spatialindex.h"

#include <algorithm>
#include <utility>

#include "host/database/database.h"

namespace tarnex {

namespace {

// What has no place, or none that can be compared, isn't found.
bool hasPlace(const Extents2d& box) {
  return !box.empty() && std::isfinite(box.low.x) && std::isfinite(box.low.y) && std::isfinite(box.high.x) &&
         std::isfinite(box.high.y);
}

}  // namespace

// What is open for write may change again without a word; it is looked at each time.
void SpatialIndex::noteWriter(const AcDbEntity& entity) {
  if (entity.isWriteEnabled()) beingWritten_.push_back(entity.objectId());
}

void SpatialIndex::rebuild() {
  beingWritten_.clear();
  std::vector<BoxTree::Item> items;
  const std::vector<AcDbObjectId> ids = database_.modelSpaceEntities();
  items.reserve(ids.size());
  for (const AcDbObjectId id : ids) {
    const auto* entity = database_.peek<AcDbEntity>(id);
    if (!entity) continue;
    noteWriter(*entity);
    const Extents2d box = entity->getGeomExtents();
    if (hasPlace(box)) items.push_back({box, id.index});
  }
  tree_.build(std::move(items));
  built_ = true;
  refreshed_ = 0;
}

void SpatialIndex::refresh(AcDbObjectId id) {
  tree_.remove(id.index);
  const auto* entity = database_.peek<AcDbEntity>(id);
  if (!entity || entity->ownerId() != database_.modelSpace()) return;
  noteWriter(*entity);
  if (const Extents2d box = entity->getGeomExtents(); hasPlace(box)) tree_.insert({box, id.index});
}

void SpatialIndex::sync() {
  std::vector<AcDbObjectId> touched;
  const std::uint64_t now = database_.changeStamp();
  const bool reaches = built_ && database_.changesSince(stamp_, touched);
  stamp_ = now;
  refreshed_ += touched.size();
  // Single changes cost more than packing anew, and leave the tree less tidy; so now and then it is packed.
  if (!reaches || refreshed_ > tree_.size() / 2 + 1024) {
    rebuild();
    return;
  }
  for (const AcDbObjectId id : std::exchange(beingWritten_, {}))
    if (!std::binary_search(touched.begin(), touched.end(), id)) refresh(id);
  for (const AcDbObjectId id : touched) refresh(id);
}

std::vector<AcDbObjectId> SpatialIndex::touching(const Extents2d& box) {
  sync();
  std::vector<std::uint32_t> keys;
  tree_.query(box, keys);
  std::sort(keys.begin(), keys.end());
  std::vector<AcDbObjectId> ids(keys.size());
  std::transform(keys.begin(), keys.end(), ids.begin(), [](std::uint32_t key) { return AcDbObjectId{key}; });
  return ids;
}

}  // namespace tarnex
