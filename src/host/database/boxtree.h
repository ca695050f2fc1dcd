// Boxes with numbers, found by the box that they touch: an R-tree that is packed as a whole and changed
// singly. Knows no entities.
#pragma once

#include <cstdint>
#include <vector>

#include "host/geometry/values.h"

namespace tarnex {

class BoxTree {
 public:
  struct Item {
    Extents2d box;
    std::uint32_t key = 0;
  };
  // Replaces everything; keys are different from each other.
  void build(std::vector<Item> items);
  void insert(const Item& item);
  void remove(std::uint32_t key);  // nothing happens when it isn't there
  // Appends the keys of all boxes that touch or overlap `box`, in no order.
  void query(const Extents2d& box, std::vector<std::uint32_t>& keys) const;
  [[nodiscard]] std::size_t size() const { return count_; }

 private:
  static constexpr int kFanout = 16;
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  struct Node {
    Extents2d boxes[kFanout];
    std::uint32_t children[kFanout];  // keys in a leaf, else nodes
    std::uint32_t parent = kNone;
    std::uint8_t used = 0;
    bool leaf = true;
  };
  std::uint32_t newNode(bool leaf);
  void addChild(std::uint32_t node, const Extents2d& box, std::uint32_t child);
  [[nodiscard]] static Extents2d boxOf(const Node& node);
  [[nodiscard]] static int slotIn(const Node& node, std::uint32_t child);
  [[nodiscard]] std::uint32_t leafFor(const Extents2d& box) const;
  void refit(std::uint32_t node);
  std::uint32_t split(std::uint32_t node, const Extents2d& box, std::uint32_t child);
  void setLeafOf(std::uint32_t key, std::uint32_t leaf);

  std::vector<Node> nodes_;
  std::vector<std::uint32_t> free_;
  std::vector<std::uint32_t> leafOf_;  // by key
  std::uint32_t root_ = kNone;
  std::size_t count_ = 0;
};

}  // namespace tarnex
