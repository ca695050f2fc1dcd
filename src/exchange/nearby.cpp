// The tree of boxes: halved at the middle of the longer extent until four strokes are left.
// Knows strokes only.
#include "exchange/nearby.h"

#include <array>
#include <numeric>

namespace tarnex::truth {

namespace {
constexpr std::uint32_t kLeaf = 4;
}

Nearby::Nearby(std::vector<Stroke> strokes) : strokes_(std::move(strokes)) {
  boxes_.reserve(strokes_.size());
  for (const Stroke& s : strokes_) boxes_.push_back(boxOf(s));
  order_.resize(strokes_.size());
  std::iota(order_.begin(), order_.end(), 0U);
  if (!strokes_.empty()) grow();
}

Box Nearby::boxOver(std::uint32_t first, std::uint32_t last) const {
  Box b;
  for (std::uint32_t i = first; i < last; ++i) b.add(boxes_[order_[i]]);
  return b;
}

void Nearby::grow() {
  const auto n = static_cast<std::uint32_t>(strokes_.size());
  nodes_.reserve(2 * strokes_.size() / kLeaf + 2);
  nodes_.push_back({boxOver(0, n), 0, n, 0});
  for (std::uint32_t at = 0; at < nodes_.size(); ++at) {  // children are appended and met later
    const auto [box, first, last, left] = nodes_[at];
    if (last - first <= kLeaf) continue;
    const std::uint32_t middle = first + (last - first) / 2;
    const bool byX = box.x1 - box.x0 > box.y1 - box.y0;
    std::nth_element(order_.begin() + first, order_.begin() + middle, order_.begin() + last,
                     [&](std::uint32_t a, std::uint32_t b) {
                       const double ka = byX ? boxes_[a].x0 + boxes_[a].x1 : boxes_[a].y0 + boxes_[a].y1;
                       const double kb = byX ? boxes_[b].x0 + boxes_[b].x1 : boxes_[b].y0 + boxes_[b].y1;
                       return ka != kb ? ka < kb : a < b;
                     });
    const auto child = static_cast<std::uint32_t>(nodes_.size());
    nodes_.push_back({boxOver(first, middle), first, middle, 0});
    nodes_.push_back({boxOver(middle, last), middle, last, 0});
    nodes_[at] = {box, 0, 0, child};
  }
}

Nearby::Hit Nearby::nearestTo(Point p) const {
  Hit best;
  best.foot.distance = 1e300;
  const Box here = boxOf(p);
  std::array<std::uint32_t, 128> open;  // the tree is halved at every level, so 64 levels are out of reach
  std::size_t n = 0;
  if (!nodes_.empty()) open[n++] = 0;
  while (n > 0) {
    const Node& node = nodes_[open[--n]];
    if (node.box.distance(here) > best.foot.distance) continue;
    for (std::uint32_t i = node.first; i < node.last; ++i) {
      const std::uint32_t s = order_[i];
      if (boxes_[s].distance(here) > best.foot.distance) continue;
      const Foot f = nearest(strokes_[s], p);
      const bool tie = f.distance == best.foot.distance && s < best.stroke;
      if (f.distance < best.foot.distance || tie) best = {s, f};
    }
    if (node.left == 0) continue;
    const bool leftFirst = nodes_[node.left].box.distance(here) <= nodes_[node.left + 1].box.distance(here);
    open[n++] = leftFirst ? node.left + 1 : node.left;
    open[n++] = leftFirst ? node.left : node.left + 1;
  }
  return best;
}

}  // namespace tarnex::truth
