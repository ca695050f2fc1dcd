// A tree of boxes over strokes: which stroke is nearest, which come within a distance. Built once, asked
// often. Knows strokes only.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "exchange/plane.h"

namespace tarnex::truth {

class Nearby {
 public:
  Nearby() = default;
  explicit Nearby(std::vector<Stroke> strokes);

  struct Hit {
    std::size_t stroke = 0;
    Foot foot;
  };
  // Nearest stroke to p, of equals the lowest index. There must be one.
  [[nodiscard]] Hit nearestTo(Point p) const;
  // Calls `visit(index)` for every stroke whose box comes within `reach` mm of `box`, in no order.
  template <class Visit>
  void within(const Box& box, double reach, Visit visit) const {
    std::vector<std::uint32_t> open;
    if (!nodes_.empty()) open.push_back(0);
    while (!open.empty()) {
      const Node& n = nodes_[open.back()];
      open.pop_back();
      if (n.box.distance(box) > reach) continue;
      for (std::uint32_t i = n.first; i < n.last; ++i)
        if (boxes_[order_[i]].distance(box) <= reach) visit(std::size_t{order_[i]});
      if (n.left != 0) open.push_back(n.left), open.push_back(n.left + 1);
    }
  }
  [[nodiscard]] const std::vector<Stroke>& strokes() const { return strokes_; }
  [[nodiscard]] bool empty() const { return strokes_.empty(); }

 private:
  struct Node {
    Box box;
    std::uint32_t first = 0, last = 0;  // of order_; empty in a node with children
    std::uint32_t left = 0;             // the other child follows it; 0: a leaf
  };
  void grow();
  [[nodiscard]] Box boxOver(std::uint32_t first, std::uint32_t last) const;
  std::vector<Stroke> strokes_;
  std::vector<Box> boxes_;
  std::vector<std::uint32_t> order_;
  std::vector<Node> nodes_;
};

}  // namespace tarnex::truth
