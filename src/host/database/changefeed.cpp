// The list of touched entities, kept short: its older half goes when it outgrows the drawing.
// Knows ids and stamps only.
#include "host/database/changefeed.h"

#include <algorithm>

namespace tarnex {

namespace {
constexpr std::size_t kShortest = 1 << 16;  // touches that are always kept
constexpr std::uint64_t kFewOfAll = 16;     // below one id in so many they are sorted, else counted off
}  // namespace

void ChangeFeed::touch(AcDbObjectId id) {
  highest_ = std::max(highest_, id.index);
  if (log_.size() >= std::max<std::size_t>(kShortest, 2 * std::size_t{highest_})) {
    const std::size_t half = log_.size() / 2;
    log_.erase(log_.begin(), log_.begin() + static_cast<std::ptrdiff_t>(half));
    first_ += half;
  }
  log_.push_back(id);
}

bool ChangeFeed::since(std::uint64_t stamp, std::vector<AcDbObjectId>& ids) const {
  ids.clear();
  if (stamp < first_ || stamp > this->stamp()) return false;
  const auto from = log_.begin() + static_cast<std::ptrdiff_t>(stamp - first_);
  if (countSince(stamp) > highest_ / kFewOfAll) {
    std::vector<bool> touched(std::size_t{highest_} + 1);
    std::for_each(from, log_.end(), [&](AcDbObjectId id) { touched[id.index] = true; });
    for (std::uint32_t i = 0; i <= highest_; ++i)
      if (touched[i]) ids.push_back({i});
    return true;
  }
  ids.assign(from, log_.end());
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return true;
}

std::uint64_t ChangeFeed::countSince(std::uint64_t stamp) const {
  return this->stamp() - std::min(stamp, this->stamp());
}

}  // namespace tarnex
