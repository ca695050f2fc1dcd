// The sort that settles the order of equal ones in this room.
// Knows no paths.
#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace tarnex {

// Where an exchange sort brings items of these ranks: for each place the item that comes to stand there. Rank
// 0 is the least; items of one rank are equal, and no rank is left out.
[[nodiscard]] std::vector<std::uint32_t> exchangeOrder(const std::vector<std::uint32_t>& ranks);

// What an exchange sort gives (each place in turn changes with every later one that is less than it), also in
// the order of equal items, without its comparison of all pairs.
template <class T, class Less>
void exchangeSort(std::vector<T>& items, Less less) {
  if (std::is_sorted(items.begin(), items.end(), less)) return;
  std::vector<std::uint32_t> order(items.size()), ranks(items.size());
  std::iota(order.begin(), order.end(), 0u);
  std::sort(order.begin(), order.end(),
            [&](std::uint32_t a, std::uint32_t b) { return less(items[a], items[b]); });
  for (std::size_t k = 1; k < order.size(); ++k)
    ranks[order[k]] = ranks[order[k - 1]] + (less(items[order[k - 1]], items[order[k]]) ? 1 : 0);
  std::vector<T> sorted;
  sorted.reserve(items.size());
  for (std::uint32_t item : exchangeOrder(ranks)) sorted.push_back(std::move(items[item]));
  items = std::move(sorted);
}

}  // namespace tarnex
