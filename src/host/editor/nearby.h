// What may lie in a box: the drawing's index, and the rays, which reach beyond their extents.
// Knows no selection.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "host/database/database.h"

namespace tarnex {

// Remembers which entities are rays and follows the drawing's changes.
class Nearby {
 public:
  // Entities of model space that may touch the box, in drawing order; hidden ones too.
  [[nodiscard]] std::vector<AcDbObjectId> candidates(const AcDbDatabase& drawing, const Extents2d& box);
  void forget() { known_ = false; }  // for another drawing

 private:
  void follow(const AcDbDatabase& drawing);
  void look(const AcDbDatabase& drawing, AcDbObjectId id);
  bool known_ = false;
  std::uint64_t stamp_ = 0;
  std::set<AcDbObjectId> rays_;
};

}  // namespace tarnex
