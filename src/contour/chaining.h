// Loose curves become the one polyline that a path is built from: candidates are collected, walked end to end
// from a seed, small gaps closed by trimming, and the chain replaced by one polyline. Knows entities and
// their ends; whether a contour has to be closed is its users' rule.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "frame/module.h"

namespace tarnex {

// The curves that may join a chain, in the order of the selection set they came from, with an index of their
// ends: one step of a chain doesn't grow with the drawing, and the first in order still wins.
class ChainCandidates {
 public:
  void add(AcDbObjectId id, AcGePoint2d start, AcGePoint2d end, std::uint64_t order);
  void remove(AcDbObjectId id);
  [[nodiscard]] bool contains(AcDbObjectId id) const {
    return id.index < slots_.size() && slots_[id.index] != kNoSlot;
  }
  [[nodiscard]] std::size_t size() const { return alive_; }
  [[nodiscard]] AcDbObjectId first();  // null when there are none
  // Candidates with an end within `tolerance` of p (inclusive), in order. Fills `found`.
  void touching(AcGePoint2d p, double tolerance, std::vector<AcDbObjectId>& found);
  // The same one by one, until `take` says true: its candidate; null when it never does. What comes after it
  // isn't looked at, so that thousands of ends at one place cost no more than a few. `take` leaves the
  // candidates alone.
  AcDbObjectId firstTouching(AcGePoint2d p, double tolerance, const std::function<bool(AcDbObjectId)>& take);
  [[nodiscard]] std::vector<AcDbObjectId> remaining() const;  // in order

 private:
  struct Entry {
    AcDbObjectId id;
    std::int32_t next[2] = {-1, -1};  // chains of the buckets, in order: entry * 2 + end
    bool alive = true;
    std::uint64_t order = 0;
    AcGePoint2d ends[2];
  };
  [[nodiscard]] std::size_t bucketOf(std::int64_t cellX, std::int64_t cellY) const;
  [[nodiscard]] std::int64_t cellOf(double v) const;
  void link(std::uint32_t entry, int end);
  void rebuild();
  [[nodiscard]] std::vector<std::uint32_t> placesByNeighbourhood() const;
  void linkAll(const std::vector<std::uint32_t>& places);
  // Of two links to ends.
  [[nodiscard]] bool comesBefore(std::int32_t a, std::int32_t b) const {
    return entries_[static_cast<std::size_t>(a / 2)].order < entries_[static_cast<std::size_t>(b / 2)].order;
  }
  void bucketsAround(AcGePoint2d p, double tolerance);
  [[nodiscard]] std::int32_t* nextHit(std::int32_t* link, AcGePoint2d p, double tolerance);

  std::vector<Entry> entries_;  // neighbours in the plane are neighbours here, once they are linked
  static constexpr std::uint32_t kNoSlot = 0xFFFFFFFF;
  std::vector<std::uint32_t> slots_;  // by id: entry
  std::size_t alive_ = 0;
  std::vector<std::int32_t> buckets_;
  std::size_t linked_ = 0;          // entries from here on are in no bucket yet
  double cell_ = 1.0, finest_ = 0;  // mm
  struct Turn {
    AcDbObjectId id;
    std::uint64_t order;
  };
  std::vector<Turn> turns_;           // of the linked entries, in order
  std::size_t nextTurn_ = 0;          // what comes before has gone
  std::vector<std::int32_t*> links_;  // of a query: the next hit of every bucket that it looks at
};

// Fills `candidates` from the set, in set order, and changes the drawing on the way: open two-vertex
// polylines become lines or arcs, ellipses polylines; neighbouring vertices nearer than 0.001 become one.
// Returns how many there are.
std::size_t collectChainCandidates(AcEditor& editor, const SelectionSet& set, ChainCandidates& candidates);

// Builds the chain from the seed with everything within `tolerance` mm of its free ends; joined entities are
// erased and leave `candidates`. The new polyline has the seed's layer and colour. Nothing: the seed is no
// line, arc or polyline that can be opened. A polyline whose ends meet is closed in place and is its own
// result. A gap between nearly parallel spans isn't closed by trimming where that would turn a span about.
[[nodiscard]] std::optional<AcDbObjectId> joinCurves(AcEditor& editor, AcDbObjectId seed,
                                                     ChainCandidates& candidates, double tolerance);

void removeCoincidentVertices(AcDbPolyline& polyline);

// Turns the entity into a polyline, chaining it with what it touches in the whole drawing; `id` is replaced
// where a new entity was made. False: it can't be done (told where the user can act on it).
[[nodiscard]] bool prepareContour(Module& module, AcDbObjectId& id);

}  // namespace tarnex
