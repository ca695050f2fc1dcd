// R-tree of boxes: packed by sorting along a space-filling grid of strips, split by the longer side when a
// node is full. Knows no entities.
#include "host/database/boxtree.h"

#include <algorithm>
#include <cmath>

namespace tarnex {

namespace {

double halfOutline(const Extents2d& b) {
  return (b.high.x - b.low.x) + (b.high.y - b.low.y);
}

Extents2d joined(Extents2d a, const Extents2d& b) {
  a.add(b);
  return a;
}

bool touches(const Extents2d& a, const Extents2d& b) {
  return a.low.x <= b.high.x && b.low.x <= a.high.x && a.low.y <= b.high.y && b.low.y <= a.high.y;
}

double midX(const Extents2d& b) {
  return b.low.x / 2 + b.high.x / 2;
}
double midY(const Extents2d& b) {
  return b.low.y / 2 + b.high.y / 2;
}

// Sorts into vertical strips of about the square root of the node count, each from bottom to top.
template <class T>
void sortIntoStrips(std::vector<T>& items, std::size_t perNode) {
  const auto left = [](const T& a, const T& b) { return midX(a.box) < midX(b.box); };
  const auto below = [](const T& a, const T& b) { return midY(a.box) < midY(b.box); };
  std::sort(items.begin(), items.end(), left);
  const double nodes = std::ceil(static_cast<double>(items.size()) / static_cast<double>(perNode));
  const std::size_t strip = static_cast<std::size_t>(std::ceil(std::sqrt(nodes))) * perNode;
  for (std::size_t i = 0; i < items.size(); i += strip)
    std::sort(items.begin() + static_cast<std::ptrdiff_t>(i),
              items.begin() + static_cast<std::ptrdiff_t>(std::min(i + strip, items.size())), below);
}

}  // namespace

std::uint32_t BoxTree::newNode(bool leaf) {
  if (!free_.empty()) {
    const std::uint32_t at = free_.back();
    free_.pop_back();
    nodes_[at] = Node{};
    nodes_[at].leaf = leaf;
    return at;
  }
  nodes_.emplace_back();
  nodes_.back().leaf = leaf;
  return static_cast<std::uint32_t>(nodes_.size() - 1);
}

void BoxTree::setLeafOf(std::uint32_t key, std::uint32_t leaf) {
  if (key >= leafOf_.size())
    leafOf_.resize(std::max<std::size_t>(key + std::size_t{1}, leafOf_.size() * 3 / 2), kNone);
  leafOf_[key] = leaf;
}

void BoxTree::addChild(std::uint32_t node, const Extents2d& box, std::uint32_t child) {
  Node& n = nodes_[node];
  n.boxes[n.used] = box;
  n.children[n.used] = child;
  ++n.used;
  if (n.leaf)
    setLeafOf(child, node);
  else
    nodes_[child].parent = node;
}

Extents2d BoxTree::boxOf(const Node& node) {
  Extents2d box;
  for (int i = 0; i < node.used; ++i) box.add(node.boxes[i]);
  return box;
}

int BoxTree::slotIn(const Node& node, std::uint32_t child) {
  int slot = 0;
  while (node.children[slot] != child) ++slot;
  return slot;
}

void BoxTree::build(std::vector<Item> items) {
  nodes_.clear();
  free_.clear();
  leafOf_.clear();
  root_ = kNone;
  count_ = items.size();
  // Room is left in each node, so that the first insertions don't split all of them.
  constexpr std::size_t kPacked = kFanout * 7 / 8;
  nodes_.reserve(items.size() / kPacked * 8 / 7 + 16);
  for (bool leaf = true; !items.empty(); leaf = false) {
    sortIntoStrips(items, kPacked);
    std::vector<Item> above;
    above.reserve(items.size() / kPacked + 1);
    for (std::size_t i = 0; i < items.size(); i += kPacked) {
      const std::uint32_t node = newNode(leaf);
      for (std::size_t k = i; k < std::min(i + kPacked, items.size()); ++k)
        addChild(node, items[k].box, items[k].key);
      above.push_back({boxOf(nodes_[node]), node});
    }
    if (above.size() == 1) {
      root_ = above.front().key;
      return;
    }
    items = std::move(above);
  }
}

// The leaf whose boxes on the way down grow least.
std::uint32_t BoxTree::leafFor(const Extents2d& box) const {
  std::uint32_t at = root_;
  while (!nodes_[at].leaf) {
    const Node& n = nodes_[at];
    int best = 0;
    double bestGrowth = 0, bestSize = 0;
    for (int i = 0; i < n.used; ++i) {
      const double size = halfOutline(n.boxes[i]);
      const double growth = halfOutline(joined(n.boxes[i], box)) - size;
      if (i > 0 && !(growth < bestGrowth || (growth == bestGrowth && size < bestSize))) continue;
      best = i;
      bestGrowth = growth;
      bestSize = size;
    }
    at = n.children[best];
  }
  return at;
}

// Boxes from a node up to the root follow what is below.
void BoxTree::refit(std::uint32_t node) {
  while (nodes_[node].parent != kNone) {
    const std::uint32_t parent = nodes_[node].parent;
    Extents2d& box = nodes_[parent].boxes[slotIn(nodes_[parent], node)];
    const Extents2d fresh = boxOf(nodes_[node]);
    if (box == fresh) return;
    box = fresh;
    node = parent;
  }
}

// Parts a full node along its longer side and adds the child to the half where it lies; returns the new half.
std::uint32_t BoxTree::split(std::uint32_t node, const Extents2d& box, std::uint32_t child) {
  std::vector<Item> items;
  for (int i = 0; i < kFanout; ++i) items.push_back({nodes_[node].boxes[i], nodes_[node].children[i]});
  items.push_back({box, child});
  const Extents2d all = joined(boxOf(nodes_[node]), box);
  const bool wide = all.high.x - all.low.x > all.high.y - all.low.y;
  std::sort(items.begin(), items.end(), [wide](const Item& a, const Item& b) {
    return wide ? midX(a.box) < midX(b.box) : midY(a.box) < midY(b.box);
  });
  const std::uint32_t other = newNode(nodes_[node].leaf);
  nodes_[node].used = 0;
  for (std::size_t i = 0; i < items.size(); ++i)
    addChild(i < items.size() / 2 ? node : other, items[i].box, items[i].key);
  return other;
}

void BoxTree::insert(const Item& item) {
  ++count_;
  if (root_ == kNone) root_ = newNode(true);
  std::uint32_t node = leafFor(item.box);
  Extents2d box = item.box;
  std::uint32_t child = item.key;
  while (nodes_[node].used == kFanout) {
    const std::uint32_t other = split(node, box, child);
    if (nodes_[node].parent == kNone) {
      root_ = newNode(false);
      addChild(root_, boxOf(nodes_[node]), node);
      addChild(root_, boxOf(nodes_[other]), other);
      return;
    }
    refit(node);
    node = nodes_[node].parent;
    box = boxOf(nodes_[other]);
    child = other;
  }
  addChild(node, box, child);
  refit(node);
}

void BoxTree::remove(std::uint32_t key) {
  if (key >= leafOf_.size() || leafOf_[key] == kNone) return;
  --count_;
  std::uint32_t node = leafOf_[key];
  leafOf_[key] = kNone;
  std::uint32_t child = key;
  // Emptied nodes go; half empty ones stay until the tree is packed again.
  while (true) {
    Node& n = nodes_[node];
    const int slot = slotIn(n, child);
    --n.used;
    n.boxes[slot] = n.boxes[n.used];
    n.children[slot] = n.children[n.used];
    if (n.used > 0) {
      refit(node);
      return;
    }
    free_.push_back(node);
    if (n.parent == kNone) {
      root_ = kNone;
      return;
    }
    child = node;
    node = n.parent;
  }
}

void BoxTree::query(const Extents2d& box, std::vector<std::uint32_t>& keys) const {
  if (root_ == kNone || box.empty()) return;
  std::vector<std::uint32_t> open{root_};
  while (!open.empty()) {
    const Node& n = nodes_[open.back()];
    open.pop_back();
    for (int i = 0; i < n.used; ++i)
      if (touches(n.boxes[i], box)) (n.leaf ? keys : open).push_back(n.children[i]);
  }
}

}  // namespace tarnex
