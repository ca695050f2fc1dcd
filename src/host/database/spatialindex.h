// Where the entities of model space lie. Kept lazily: what was touched since the last question is looked at
// when the next one comes. Knows extents and ids; hidden layers don't matter here.
#pragma once

#include <cstdint>
#include <vector>

#include "host/database/boxtree.h"
#include "host/database/object.h"

namespace tarnex {

class AcDbDatabase;
class AcDbEntity;

class SpatialIndex {
 public:
  explicit SpatialIndex(const AcDbDatabase& database) : database_(database) {}
  // Ids of the entities whose extents touch the box, in drawing order.
  [[nodiscard]] std::vector<AcDbObjectId> touching(const Extents2d& box);

 private:
  void sync();
  void rebuild();
  void refresh(AcDbObjectId id);
  void noteWriter(const AcDbEntity& entity);

  const AcDbDatabase& database_;
  BoxTree tree_;
  std::uint64_t stamp_ = 0;
  std::uint64_t refreshed_ = 0;  // single changes since the tree was built as a whole
  bool built_ = false;
  std::vector<AcDbObjectId> beingWritten_;  // open for write when last looked at
};

}  // namespace tarnex
