// Handles to ids: sorted vectors for what came in order, open addressing for the rest.
// Knows no objects.
#include "host/database/handleindex.h"

#include <algorithm>

namespace tarnex {

namespace {

// Finishing step of a 64 bit hash (Murmur3): every bit of the handle reaches every bit of the slot number.
std::uint64_t mixed(std::uint64_t h) {
  h = (h ^ (h >> 33)) * 0xff51afd7ed558ccdULL;
  h = (h ^ (h >> 33)) * 0xc4ceb9fe1a85ec53ULL;
  return h ^ (h >> 33);
}

}  // namespace

// Where the handle stands or would go.
std::size_t HandleIndex::slotOf(std::uint64_t handle) const {
  // The table's own address makes the order differ from run to run, so no file can be made to fall into one
  // slot.
  const std::size_t mask = late_.size() - 1;
  std::size_t at = mixed(handle ^ reinterpret_cast<std::uintptr_t>(this)) & mask;
  while (late_[at].handle != 0 && late_[at].handle != handle) at = (at + 1) & mask;
  return at;
}

std::size_t HandleIndex::ascendingAt(std::uint64_t handle) const {
  if (ascending_.empty() || handle > ascending_.back()) return ascending_.size();
  const auto it = std::lower_bound(ascending_.begin(), ascending_.end(), handle);
  return it != ascending_.end() && *it == handle ? static_cast<std::size_t>(it - ascending_.begin())
                                                 : ascending_.size();
}

AcDbObjectId HandleIndex::find(std::uint64_t handle) const {
  if (const std::size_t at = ascendingAt(handle); at < ascending_.size()) return ascendingIds_[at];
  if (late_.empty() || handle == 0) return {};
  return late_[slotOf(handle)].id;
}

void HandleIndex::grow() {
  std::vector<Slot> old = std::move(late_);
  late_.assign(old.empty() ? 16 : old.size() * 2, Slot{});
  lateUsed_ = 0;
  for (const Slot& s : old)
    if (!s.id.isNull()) {
      late_[slotOf(s.handle)] = s;
      ++lateUsed_;
    }
}

bool HandleIndex::insert(std::uint64_t handle, AcDbObjectId id) {
  if (handle == 0) return false;
  if (ascending_.empty() || handle > ascending_.back()) {
    ascending_.push_back(handle);
    ascendingIds_.push_back(id);
    return true;
  }
  if (const std::size_t at = ascendingAt(handle); at < ascending_.size()) {
    if (!ascendingIds_[at].isNull()) return false;
    ascendingIds_[at] = id;
    return true;
  }
  if ((lateUsed_ + 1) * 5 > late_.size() * 3) grow();
  Slot& slot = late_[slotOf(handle)];
  if (!slot.id.isNull()) return false;
  lateUsed_ += slot.handle == 0;
  slot = {handle, id};
  return true;
}

void HandleIndex::remove(std::uint64_t handle) {
  if (const std::size_t at = ascendingAt(handle); at < ascending_.size()) {
    ascendingIds_[at] = {};  // the place stays, so that a handle never stands in both
  } else if (!late_.empty() && handle != 0) {
    late_[slotOf(handle)].id = {};
  }
}

}  // namespace tarnex
