// Keeps texts from covering each other.
// Knows boxes of texts; what they are about, it doesn't. For this folder only.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "host/display/displaylist.h"

namespace tarnex {

// The first text stands where it is drawn. One that would cover it goes a line lower, to the left of its
// point, a line higher and so on, at most two lines away, so that it can be seen what it belongs to. Where
// no place is free it stays where it is drawn. The cost of a text is that of its neighbours alone.
class Labels {
 public:
  [[nodiscard]] DrawnText placed(const DrawnText& text);

 private:
  [[nodiscard]] bool isFree(const Extents2d& box) const;
  void take(const Extents2d& box);
  template <class Visit>
  void cellsOf(const Extents2d& box, Visit visit) const;

  double cell_ = 0;  // mm
  std::vector<Extents2d> taken_;
  std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> cells_;  // which boxes touch a cell
};

}  // namespace tarnex
