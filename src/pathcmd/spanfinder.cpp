// Contour spans by where they run: a tree over stretches, then span by span.
// It only looks.
#include "pathcmd/spanfinder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnex {

namespace {

constexpr std::uint32_t kStretch = 16;  // spans; most contours of a part are one stretch

}  // namespace

Extents2d boxOf(const OwnedSpan& s) {
  Extents2d box;
  box.add(s.start);
  box.add(s.end);
  if (s.bulge == 0) return box;
  // An arc stays within the circle about its chord's middle through its ends or its crown.
  const AcGePoint2d middle = midpoint(s.start, s.end);
  const double reach = s.start.distanceTo(s.end) / 2 * std::max(1.0, std::abs(s.bulge));
  Extents2d round;
  round.add(middle);
  return round.grown(reach);
}

// The span from the threading point to the entry belongs to no contour.
void SpanFinder::build(std::vector<const CToolPath*> paths) {
  paths_ = std::move(paths);
  stretches_.clear();
  std::vector<BoxTree::Item> boxes;
  boxes.reserve(paths_.size());
  stretches_.reserve(paths_.size());
  for (std::uint32_t i = 0; i < paths_.size(); ++i) {
    const auto vertices = static_cast<std::uint32_t>(paths_[i]->polyline().vertices.size());
    for (std::uint32_t first = 1; first + 1 < vertices; first += kStretch) {
      const Stretch stretch{i, first, std::min(first + kStretch, vertices - 1)};
      Extents2d box;
      for (std::uint32_t k = stretch.first; k < stretch.end; ++k) box.add(boxOf(spanOf(i, k)));
      boxes.push_back({box, static_cast<std::uint32_t>(stretches_.size())});
      stretches_.push_back(stretch);
    }
  }
  tree_.build(std::move(boxes));
}

OwnedSpan SpanFinder::spanOf(std::uint32_t path, std::size_t vertex) const {
  const auto& v = paths_[path]->polyline().vertices;
  return {v[vertex].point, v[vertex + 1].point, v[vertex].bulge, path};
}

bool SpanFinder::find(const Extents2d& box, std::uint32_t except, std::size_t most,
                      std::vector<BoxedSpan>& found) {
  found.clear();
  touched_.clear();
  tree_.query(box, touched_);
  for (std::uint32_t t : touched_) {
    const Stretch& stretch = stretches_[t];
    if (stretch.path == except) continue;
    for (std::uint32_t k = stretch.first; k < stretch.end; ++k) {
      const OwnedSpan span = spanOf(stretch.path, k);
      const Extents2d around = boxOf(span);
      if (!around.overlaps(box)) continue;
      if (found.size() == most) return false;
      found.push_back({around, span});
    }
  }
  std::sort(found.begin(), found.end(), [](const BoxedSpan& a, const BoxedSpan& b) {
    const AcGePoint2d p = midpoint(a.box.low, a.box.high), q = midpoint(b.box.low, b.box.high);
    return p.y != q.y ? p.y < q.y : p.x < q.x;
  });
  return true;
}

}  // namespace tarnex
