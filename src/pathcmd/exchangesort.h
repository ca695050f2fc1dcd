// The sort that settles the order of equal ones in this room.
// Knows no paths.
#pragma once

#include <algorithm>
#include <vector>

namespace tarnex {

// An exchange sort. Where no two are equal any sort gives the same.
template <class T, class Less>
void exchangeSort(std::vector<T>& items, Less less) {
  if (std::is_sorted(items.begin(), items.end(), less)) return;
  auto sorted = items;
  std::sort(sorted.begin(), sorted.end(), less);
  const bool distinct = std::adjacent_find(sorted.begin(), sorted.end(), [&](const T& a, const T& b) {
                          return !less(a, b);
                        }) == sorted.end();
  if (distinct) {
    items = std::move(sorted);
    return;
  }
  for (std::size_t i = 0; i < items.size(); ++i)
    for (std::size_t j = i + 1; j < items.size(); ++j)
      if (less(items[j], items[i])) std::swap(items[i], items[j]);
}

}  // namespace tarnex
