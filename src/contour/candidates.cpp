// The candidates of a chain and the index of their ends: buckets of grid cells.
// Knows points and order only.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "contour/chaining.h"
#include "contour/geometrylibrary.h"

namespace tarnex {

namespace {

// The bits of x and y in turn; of each the lower 16 count.
std::uint32_t interleaved(std::uint32_t x, std::uint32_t y) {
  const auto spread = [](std::uint32_t v) {
    v = (v | v << 8) & 0x00FF00FF;
    v = (v | v << 4) & 0x0F0F0F0F;
    v = (v | v << 2) & 0x33333333;
    return (v | v << 1) & 0x55555555;
  };
  return spread(x) | spread(y) << 1;
}

}  // namespace

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

// Places for entries in order, so that those near each other in the plane come near each other in memory: a
// chain walks among its neighbours. Cells of a grid over all, in the order of Morton's curve.
std::vector<std::uint32_t> ChainCandidates::placesByNeighbourhood() const {
  constexpr int kGridBits = 8;  // 256 by 256 cells
  Extents2d all;
  for (const Entry& e : entries_) all.add(e.ends[0]);
  const double cells = (1 << kGridBits) - 1;
  const double x = cells / std::max(all.high.x - all.low.x, kSamePoint);
  const double y = cells / std::max(all.high.y - all.low.y, kSamePoint);
  // What is no number, or lies at no place, goes to the first cell.
  const auto along = [cells](double v) { return static_cast<std::uint32_t>(v > 0 ? std::min(v, cells) : 0); };
  const auto cell = [&](const Entry& e) {
    return interleaved(along((e.ends[0].x - all.low.x) * x), along((e.ends[0].y - all.low.y) * y));
  };
  std::vector<std::uint32_t> next((1u << 2 * kGridBits) + 1, 0), places(entries_.size());
  for (const Entry& e : entries_) ++next[cell(e) + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  for (std::size_t i = 0; i < entries_.size(); ++i) places[i] = next[cell(entries_[i])]++;
  return places;
}

// Entries are put into buckets when somebody asks, all at once.
void ChainCandidates::rebuild() {
  std::erase_if(entries_, [](const Entry& e) { return !e.alive; });
  const auto earlier = [](const Entry& a, const Entry& b) { return a.order < b.order; };
  if (!std::is_sorted(entries_.begin(), entries_.end(), earlier))
    std::stable_sort(entries_.begin(), entries_.end(), earlier);
  turns_.clear();
  turns_.reserve(entries_.size());
  for (const Entry& e : entries_) turns_.push_back({e.id, e.order});
  nextTurn_ = 0;
  double size = 0;
  for (const Entry& e : entries_)
    for (AcGePoint2d p : e.ends) size = std::max({size, std::abs(p.x), std::abs(p.y)});
  // A query mostly falls into one cell, and few ends that don't touch share it, however the drawing lies.
  constexpr double kCellOverReach = 16;
  cell_ = std::max(kCellOverReach * std::max(finest_, kSamePoint), roundoff(size));
  const auto places = placesByNeighbourhood();
  std::vector<Entry> placed(entries_.size());
  for (std::size_t i = 0; i < places.size(); ++i) placed[places[i]] = entries_[i];
  entries_ = std::move(placed);
  linkAll(places);
}

// From the last to the first, each at the head of its bucket: so every chain runs in order.
void ChainCandidates::linkAll(const std::vector<std::uint32_t>& places) {
  std::size_t count = 64;
  while (count < entries_.size() * 4) count *= 2;
  buckets_.assign(count, -1);
  for (std::size_t i = places.size(); i-- > 0;) {
    slots_[entries_[places[i]].id.index] = places[i];
    link(places[i], 1);
    link(places[i], 0);
  }
  linked_ = entries_.size();
}

void ChainCandidates::add(AcDbObjectId id, AcGePoint2d start, AcGePoint2d end, std::uint64_t order) {
  if (contains(id)) remove(id);
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

AcDbObjectId ChainCandidates::first() {
  if (linked_ != entries_.size()) rebuild();
  for (; nextTurn_ < turns_.size(); ++nextTurn_) {
    const Turn& turn = turns_[nextTurn_];
    if (contains(turn.id) && entries_[slots_[turn.id.index]].order == turn.order) return turn.id;
  }
  return {};
}

void ChainCandidates::bucketsAround(AcGePoint2d p, double tolerance) {
  links_.clear();
  if (linked_ != entries_.size() || tolerance > 2 * cell_) {
    finest_ = std::max(finest_, tolerance);
    rebuild();
  }
  if (buckets_.empty()) return;
  const double reach = tolerance + roundoff(std::max(std::abs(p.x), std::abs(p.y)));
  for (std::int64_t cx = cellOf(p.x - reach); cx <= cellOf(p.x + reach); ++cx)
    for (std::int64_t cy = cellOf(p.y - reach); cy <= cellOf(p.y + reach); ++cy) {
      std::int32_t* head = &buckets_[bucketOf(cx, cy)];
      if (std::find(links_.begin(), links_.end(), head) == links_.end()) links_.push_back(head);
    }
}

// From `link` on, the link to the next end within the tolerance, or one to nothing. Dead entries on the way
// leave the chain, so that nobody walks over them twice.
std::int32_t* ChainCandidates::nextHit(std::int32_t* link, AcGePoint2d p, double tolerance) {
  while (*link >= 0) {
    Entry& e = entries_[static_cast<std::size_t>(*link / 2)];
    const int end = *link % 2;
    const AcGeVector2d off = e.ends[end] - p;
    if (!e.alive)
      *link = e.next[end];
    else if (std::abs(off.x) <= tolerance && std::abs(off.y) <= tolerance && off.length() <= tolerance)
      return link;
    else
      link = &e.next[end];
  }
  return link;
}

AcDbObjectId ChainCandidates::firstTouching(AcGePoint2d p, double tolerance,
                                            const std::function<bool(AcDbObjectId)>& take) {
  bucketsAround(p, tolerance);
  for (std::int32_t*& link : links_) link = nextHit(link, p, tolerance);
  std::int32_t told = -1;  // an entry that touches with both ends is told once
  for (;;) {
    std::int32_t** first = nullptr;
    for (std::int32_t*& link : links_)
      if (*link >= 0 && (!first || comesBefore(*link, **first))) first = &link;
    if (!first) return {};
    const std::int32_t entry = **first / 2;
    Entry& e = entries_[static_cast<std::size_t>(entry)];
    if (entry != told && take(e.id)) return e.id;
    told = entry;
    *first = nextHit(&e.next[**first % 2], p, tolerance);
  }
}

void ChainCandidates::touching(AcGePoint2d p, double tolerance, std::vector<AcDbObjectId>& found) {
  found.clear();
  (void)firstTouching(p, tolerance, [&](AcDbObjectId id) {
    found.push_back(id);
    return false;
  });
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
