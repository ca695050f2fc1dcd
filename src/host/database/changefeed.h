// The running list of touched entities, for those who keep something beside the drawing (index, display).
// Knows ids and stamps only.
#pragma once

#include <cstdint>
#include <vector>

#include "host/database/object.h"

namespace tarnex {

class ChangeFeed {
 public:
  void touch(AcDbObjectId id);
  [[nodiscard]] std::uint64_t stamp() const { return first_ + log_.size(); }
  // Ids touched since the stamp, sorted, each once; false when the list no longer reaches back.
  [[nodiscard]] bool since(std::uint64_t stamp, std::vector<AcDbObjectId>& ids) const;
  [[nodiscard]] std::uint64_t countSince(std::uint64_t stamp) const;  // touches, some ids several times

 private:
  std::uint64_t first_ = 0;  // stamp of the first entry that is still there
  std::uint32_t highest_ = 0;
  std::vector<AcDbObjectId> log_;
};

}  // namespace tarnex
