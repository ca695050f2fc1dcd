// Where texts find room.
// Knows boxes of texts.
#include "host/display/labels.h"

#include <algorithm>
#include <cmath>

#include "host/display/shape.h"

namespace tarnex {

namespace {

constexpr double kLineStep = 1.4;    // of the height
constexpr double kBehind = 0.3;      // of the height, from a text's end to the point that it stands left of
constexpr double kCellOfHeight = 4;  // a number is a cell or two
constexpr double kMostCells = 1000;  // a text of more is no label
constexpr std::size_t kFirstChains = 256;
constexpr double kFarthestCell = 1e9;

// Lines up and widths to the left.
constexpr struct {
  double lines, widths;
} kPlaces[] = {{0, 0}, {-1, 0}, {0, 1}, {-1, 1}, {1, 0}, {1, 1}, {-2, 0}, {-2, 1}, {2, 0}, {2, 1}};

double cellNumber(double v) {
  return std::clamp(std::floor(v), -kFarthestCell, kFarthestCell);
}

}  // namespace

template <class Visit>
void Labels::cellsOf(const Extents2d& box, Visit visit) const {
  const double left = cellNumber(box.low.x / cell_), right = cellNumber(box.high.x / cell_);
  const double low = cellNumber(box.low.y / cell_), high = cellNumber(box.high.y / cell_);
  if (!((right - left + 1) * (high - low + 1) <= kMostCells)) return;
  for (double x = left; x <= right; ++x)
    for (double y = low; y <= high; ++y)
      visit(static_cast<std::uint64_t>(static_cast<std::int64_t>(x)) << 32 ^
            static_cast<std::uint32_t>(static_cast<std::int64_t>(y)));
}

std::size_t Labels::chainOf(std::uint64_t cell) const {
  return cell * 0x9E3779B97F4A7C15U >> 32 & (chains_.size() - 1);
}

bool Labels::isFree(const Extents2d& box) const {
  bool free = true;
  if (!chains_.empty())
    cellsOf(box, [&](std::uint64_t cell) {
      for (std::uint32_t at = chains_[chainOf(cell)]; free && at != 0; at = links_[at - 1].next)
        free = links_[at - 1].cell != cell || !taken_[links_[at - 1].box].overlaps(box);
    });
  return free;
}

void Labels::hang(std::uint32_t link) {
  std::uint32_t& first = chains_[chainOf(links_[link - 1].cell)];
  links_[link - 1].next = first;
  first = link;
}

void Labels::take(const Extents2d& box) {
  const auto index = static_cast<std::uint32_t>(taken_.size());
  taken_.push_back(box);
  cellsOf(box, [&](std::uint64_t cell) {
    links_.push_back({cell, index, 0});
    if (links_.size() <= chains_.size()) return hang(static_cast<std::uint32_t>(links_.size()));
    chains_.assign(std::max(kFirstChains, 2 * chains_.size()), 0);
    for (std::uint32_t i = 1; i <= links_.size(); ++i) hang(i);
  });
}

DrawnText Labels::placed(const DrawnText& text) {
  if (!(text.height > 0)) return text;
  if (cell_ == 0) cell_ = kCellOfHeight * text.height;
  const double width = textWidth(text) + kBehind * text.height;
  const AcGeVector2d up = text.direction.perpVector() * (kLineStep * text.height);
  DrawnText moved = text;
  for (const auto& place : kPlaces) {
    const AcGeVector2d by = up * place.lines - text.direction * (place.widths * width);
    moved.position = text.position + AcGeVector3d{by.x, by.y, 0};
    const Extents2d box = extentsOf(DrawnShape{moved});
    if (!isFree(box)) continue;
    take(box);
    return moved;
  }
  return text;
}

}  // namespace tarnex
