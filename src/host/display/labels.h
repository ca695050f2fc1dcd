// Keeps texts from covering each other.
// Knows boxes of texts; what they are about, it doesn't. For this folder only.
#pragma once

#include <cstdint>
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
  // The boxes that touch a cell hang on a chain, which they share with the cells of the same remainder.
  struct Link {
    std::uint64_t cell = 0;
    std::uint32_t box = 0, next = 0;  // next: 1 and up, 0 ends the chain
  };
  [[nodiscard]] bool isFree(const Extents2d& box) const;
  void take(const Extents2d& box);
  void hang(std::uint32_t link);
  [[nodiscard]] std::size_t chainOf(std::uint64_t cell) const;
  template <class Visit>
  void cellsOf(const Extents2d& box, Visit visit) const;

  double cell_ = 0;  // mm
  std::vector<Extents2d> taken_;
  std::vector<Link> links_;
  std::vector<std::uint32_t> chains_;  // their first links; a power of two of them
};

}  // namespace tarnex
