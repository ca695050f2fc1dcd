// Which object has a handle. Handles mostly come in ascending order: those lie in two plain vectors, the
// others in a hash table. Knows no objects.
#pragma once

#include <cstdint>
#include <vector>

#include "host/database/object.h"

namespace tarnex {

class HandleIndex {
 public:
  [[nodiscard]] AcDbObjectId find(std::uint64_t handle) const;  // null when there is none
  // False when the handle is taken, or 0.
  bool insert(std::uint64_t handle, AcDbObjectId id);
  void remove(std::uint64_t handle);

 private:
  struct Slot {
    std::uint64_t handle = 0;  // 0: free
    AcDbObjectId id;           // null with a handle: removed
  };
  [[nodiscard]] std::size_t slotOf(std::uint64_t handle) const;
  [[nodiscard]] std::size_t ascendingAt(std::uint64_t handle) const;
  void grow();

  std::vector<std::uint64_t> ascending_;
  std::vector<AcDbObjectId> ascendingIds_;  // null: removed
  std::vector<Slot> late_;                  // open addressing, size a power of two
  std::size_t lateUsed_ = 0;
};

}  // namespace tarnex
