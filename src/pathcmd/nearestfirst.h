// Points that stand in a row of places, the nearest of which are brought forward as a scan over the places
// brings them, at the cost of a look into a tree of boxes and not of the row.
// Knows points and lengths; what they belong to is above it.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/geometry/values.h"

namespace tarnex {

inline constexpr double kFarAway = 99999.0;  // mm; nothing farther than this is the nearest

class NearestFirst {
 public:
  struct Member {
    AcGePoint2d at;     // a member that isn't finite keeps a place but is never the nearest
    double length = 0;  // mm
  };
  // For each place j from `from` on, as it stands then: if its member differs from `length` by no more than
  // the row's tolerance and is nearer to p than `best`, its distance becomes `best` and it changes places
  // with the member at `to`.
  struct Scan {
    std::size_t to, from;  // neither goes back from scan to scan; from - 1 <= to <= from
    AcGePoint2d p;
    double best;  // mm
    double length = 0;
  };

  explicit NearestFirst(const std::vector<Member>& row, double sameLength = 0);

  void run(const Scan& scan);
  // On a new row that ascends by length: for every place i the scan from i + 1 on for the member at i, with
  // kFarAway, among those as long as it; where the next is of another length, among those as long as the
  // next, which counts however far it is. Costs a look a place where no two members are ever equally near.
  void runAll();
  [[nodiscard]] std::size_t size() const { return place_.size(); }
  [[nodiscard]] Member at(std::size_t place) const { return {{x_[place], y_[place]}, length_[place]}; }
  // Where in the row that was given the member at a place stood.
  [[nodiscard]] std::size_t origin(std::size_t place) const { return origin_[slot_[place]]; }

 private:
  using Index = std::uint32_t;
  static constexpr Index kNone = 0xFFFFFFFF;
  struct Slot {
    Member member;
    Index origin;
  };
  struct Node {
    Extents2d box;
    double shortest, longest;
    Index firstPlace;  // no member below stands before it
    Index right;       // kNone: a leaf; the left child follows its node
    Index begin, end;  // slots
  };
  struct Look {
    const Scan& scan;
    Index before;        // places from here on aren't looked at
    double distance;     // of what was found; the scan's `best` while nothing was
    Index place;         // of it, 0 while nothing was; kNone where places don't matter, so that ties are seen
    Index slot = kNone;  // of it
    bool tied = false;   // another is as near
  };

  void build(Index begin, Index end);
  [[nodiscard]] Index divide(const Node& node);
  [[nodiscard]] bool isOtherLength(double a, double b) const { return std::abs(a - b) > sameLength_; }
  [[nodiscard]] bool lengthsFallApart() const;
  [[nodiscard]] Scan scanAt(std::size_t place, AcGePoint2d p) const;
  [[nodiscard]] bool runAllByLooks();
  void findFirstPlaces();
  void retire(std::size_t from);
  void stand(Index slot, std::size_t place);
  void comeForward(Index slot, std::size_t place);
  void changePlaces(std::size_t to, std::size_t place);
  [[nodiscard]] bool canWin(const Node& node, double bound, const Look& look) const;
  void lookAtSlots(Node& leaf, Look& look) const;
  void lookBelow(Index at, Look& look);
  [[nodiscard]] std::size_t lookFromBehind(const Scan& scan);
  void walk(const Scan& scan, std::size_t end);

  std::vector<double> x_, y_, length_;  // by place
  std::vector<Index> slot_;             // by place
  std::vector<Index> place_, origin_;   // by slot; place kNone: no longer looked for
  std::vector<Slot> slots_;             // in the tree's order; those that are nowhere have a number behind
  std::vector<Node> nodes_;
  double sameLength_;
  std::size_t front_ = 0;      // members before this place are out of the tree
  std::vector<Index> behind_;  // where the scan at hand changes last, from the back
};

}  // namespace tarnex
