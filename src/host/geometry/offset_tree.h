// A tree of boxes over the pieces of a curve in their own order: neighbours on the curve are neighbours in
// space, so no sorting is needed and pieces of any size may stand beside each other. Internal to the offset.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "host/geometry/offset_piece.h"

namespace tarnex::offsets {

class BoxTree {
 public:
  explicit BoxTree(std::vector<Box> leaves) {
    levels_.push_back(std::move(leaves));
    while (levels_.back().size() > 1) {
      const std::vector<Box>& below = levels_.back();
      std::vector<Box> level;
      level.reserve((below.size() + kFan - 1) / kFan);
      for (std::size_t i = 0; i < below.size(); i += kFan) {
        level.push_back(below[i]);
        for (std::size_t k = i + 1; k < std::min(below.size(), i + kFan); ++k) level.back().add(below[k]);
      }
      levels_.push_back(std::move(level));
    }
  }

  // f(i, j) for every two leaves, i < j, whose boxes meet; f returns false to stop. False when stopped.
  template <class F>
  bool eachPair(F&& f) const {
    return levels_[0].empty() || within(levels_.size() - 1, 0, f);
  }

  // f(i) for every leaf whose box meets `box`; f returns false to stop. False when stopped.
  template <class F>
  bool eachIn(const Box& box, F&& f) const {
    return levels_[0].empty() || in(levels_.size() - 1, 0, box, f);
  }

 private:
  static constexpr std::size_t kFan = 4;
  [[nodiscard]] std::size_t lastChild(std::size_t level, std::size_t node) const {
    return std::min(levels_[level - 1].size(), (node + 1) * kFan);
  }

  template <class F>
  bool within(std::size_t level, std::size_t node, F& f) const {
    if (level == 0) return true;
    const std::vector<Box>& below = levels_[level - 1];
    const std::size_t last = lastChild(level, node);
    for (std::size_t i = node * kFan; i < last; ++i) {
      if (!within(level - 1, i, f)) return false;
      for (std::size_t j = i + 1; j < last; ++j)
        if (below[i].meets(below[j]) && !across(level - 1, i, j, f)) return false;
    }
    return true;
  }

  template <class F>
  bool across(std::size_t level, std::size_t a, std::size_t b, F& f) const {
    if (level == 0) return f(a, b);
    const std::vector<Box>& below = levels_[level - 1];
    const Box& other = levels_[level][b];
    for (std::size_t i = a * kFan; i < lastChild(level, a); ++i) {
      if (!below[i].meets(other)) continue;
      for (std::size_t j = b * kFan; j < lastChild(level, b); ++j)
        if (below[i].meets(below[j]) && !across(level - 1, i, j, f)) return false;
    }
    return true;
  }

  template <class F>
  bool in(std::size_t level, std::size_t node, const Box& box, F& f) const {
    if (!levels_[level][node].meets(box)) return true;
    if (level == 0) return f(node);
    for (std::size_t i = node * kFan; i < lastChild(level, node); ++i)
      if (!in(level - 1, i, box, f)) return false;
    return true;
  }

  std::vector<std::vector<Box>> levels_;  // leaves first; the last has one box
};

}  // namespace tarnex::offsets
