// Boxes of a path's pieces in a binary tree over their order: which pieces may meet a box, in logarithmic
// time. Internal to the kernel.
#pragma once

#include <vector>

#include "host/geometry/values.h"

namespace tarnex::kernel {

class SpanTree {
 public:
  explicit SpanTree(std::vector<Extents2d> boxes);

  // Calls found(index) for every piece whose box overlaps, in ascending order.
  template <class Found>
  void search(const Extents2d& box, const Found& found) const {
    if (leaves_ > 0) search(1, box, found);
  }

 private:
  template <class Found>
  void search(std::size_t node, const Extents2d& box, const Found& found) const {
    if (!nodes_[node].overlaps(box)) return;
    if (node >= leaves_) return found(node - leaves_);
    search(2 * node, box, found);
    search(2 * node + 1, box, found);
  }

  std::size_t leaves_ = 0;        // a power of two
  std::vector<Extents2d> nodes_;  // root 1, children of i at 2i and 2i + 1; leaves from leaves_
};

}  // namespace tarnex::kernel
