// The candidates of a chain and the index of their ends: buckets of grid cells.
// Knows points and order only.
#include <algorithm>
#include <array>
#include <cmath>

#include "contour/chaining.h"

namespace tarnex {

std::int64_t ChainCandidates::cellOf(double v) const {
  const double c = std::floor(v / cell_);
  return static_cast<std::int64_t>(std::clamp(c, -9e15, 9e15));
}

std::size_t ChainCandidates::bucketOf(std::int64_t cellX, std::int64_t cellY) const {
  const auto h = static_cast<std::uint64_t>(cellX) * 0x9E3779B97F4A7C15ull ^
                 static_cast<std::uint64_t>(cellY) * 0xC2B2AE3D27D4EB4Full;
  return (h ^ h >> 29) & (buckets_.size() - 1);
}

void ChainCandidates::link(std::uint32_t entry, int end) {
  Entry& e = entries_[entry];
  const std::size_t b = bucketOf(cellOf(e.ends[end].x), cellOf(e.ends[end].y));
  e.next[end] = buckets_[b];
  buckets_[b] = static_cast<std::int32_t>(entry * 2 + static_cast<std::uint32_t>(end));
}

void ChainCandidates::rebuild() {
  std::erase_if(entries_, [](const Entry& e) { return !e.alive; });
  if (!inOrder_)
    std::stable_sort(entries_.begin(), entries_.end(), [](auto& a, auto& b) { return a.order < b.order; });
  inOrder_ = true;
  firstAlive_ = 0;
  Extents2d box;
  for (const Entry& e : entries_)
    for (AcGePoint2d p : e.ends) box.add(p);
  // About one end a cell, and never finer than the reach of a query.
  if (!box.empty())
    cell_ = std::max({(box.high - box.low).length() / std::sqrt(2.0 * static_cast<double>(entries_.size())),
                      finest_,
                      roundoff(std::max({std::abs(box.low.x), std::abs(box.low.y), std::abs(box.high.x),
                                         std::abs(box.high.y)})),
                      1e-9});
  std::size_t count = 64;
  while (count < entries_.size() * 4) count *= 2;
  buckets_.assign(count, -1);
  for (std::uint32_t i = 0; i < entries_.size(); ++i) {
    slots_[entries_[i].id.index] = i;
    link(i, 0);
    link(i, 1);
  }
  linked_ = entries_.size();
}

// Entries are put into buckets when somebody asks, so that many can come without the index growing step by
// step.
void ChainCandidates::linkNew() {
  if (linked_ == entries_.size()) return;
  if (entries_.size() * 2 > buckets_.size()) {
    rebuild();
    return;
  }
  for (; linked_ < entries_.size(); ++linked_) {
    link(static_cast<std::uint32_t>(linked_), 0);
    link(static_cast<std::uint32_t>(linked_), 1);
  }
}

void ChainCandidates::add(AcDbObjectId id, AcGePoint2d start, AcGePoint2d end, std::uint64_t order) {
  if (contains(id)) remove(id);
  if (!entries_.empty() && order < entries_.back().order) inOrder_ = false;
  Entry e;
  e.id = id;
  e.order = order;
  e.ends[0] = start;
  e.ends[1] = end;
  entries_.push_back(e);
  const auto slot = static_cast<std::uint32_t>(entries_.size() - 1);
  if (id.index >= slots_.size())
    slots_.resize(std::max<std::size_t>(id.index + 1, slots_.size() * 2), kNoSlot);
  slots_[id.index] = slot;
  ++alive_;
}

void ChainCandidates::remove(AcDbObjectId id) {
  if (!contains(id)) return;
  entries_[slots_[id.index]].alive = false;
  slots_[id.index] = kNoSlot;
  --alive_;
}

AcDbObjectId ChainCandidates::first() const {
  if (!inOrder_) {
    const auto all = remaining();
    return all.empty() ? AcDbObjectId{} : all.front();
  }
  while (firstAlive_ < entries_.size() && !entries_[firstAlive_].alive) ++firstAlive_;
  return firstAlive_ < entries_.size() ? entries_[firstAlive_].id : AcDbObjectId{};
}

void ChainCandidates::touching(AcGePoint2d p, double tolerance, std::vector<AcDbObjectId>& found) {
  found.clear();
  linkNew();
  if (buckets_.empty()) return;
  if (tolerance > 2 * cell_) {
    finest_ = tolerance;
    rebuild();
  }
  std::vector<const Entry*> hits;
  std::array<std::size_t, 64> visited{};  // a query reaches over two cells and a bit at most
  std::size_t visits = 0;
  const double reach = tolerance + roundoff(std::max(std::abs(p.x), std::abs(p.y)));
  for (std::int64_t cx = cellOf(p.x - reach); cx <= cellOf(p.x + reach); ++cx)
    for (std::int64_t cy = cellOf(p.y - reach); cy <= cellOf(p.y + reach); ++cy) {
      const std::size_t b = bucketOf(cx, cy);
      if (std::find(visited.begin(), visited.begin() + static_cast<long>(visits), b) !=
          visited.begin() + static_cast<long>(visits))
        continue;
      visited[visits++] = b;
      for (std::int32_t at = buckets_[b]; at >= 0;) {
        const Entry& e = entries_[static_cast<std::size_t>(at / 2)];
        const AcGeVector2d off = e.ends[at % 2] - p;
        if (e.alive && std::abs(off.x) <= tolerance && std::abs(off.y) <= tolerance &&
            off.length() <= tolerance)
          hits.push_back(&e);
        at = e.next[at % 2];
      }
    }
  std::sort(hits.begin(), hits.end(),
            [](auto* a, auto* b) { return a->order != b->order ? a->order < b->order : a < b; });
  hits.erase(std::unique(hits.begin(), hits.end()), hits.end());
  for (const Entry* e : hits) found.push_back(e->id);
}

std::vector<AcDbObjectId> ChainCandidates::remaining() const {
  std::vector<const Entry*> alive;
  for (const Entry& e : entries_)
    if (e.alive) alive.push_back(&e);
  std::stable_sort(alive.begin(), alive.end(), [](auto* a, auto* b) { return a->order < b->order; });
  std::vector<AcDbObjectId> ids;
  for (const Entry* e : alive) ids.push_back(e->id);
  return ids;
}

}  // namespace tarnex
