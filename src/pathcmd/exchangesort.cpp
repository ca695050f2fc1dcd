// The order of equal items in an exchange sort, found without exchanging.
// Knows ranks.
//
// Take the items of one rank, and those of lower rank as they come in the row that was given. Each pass of
// the sort that brings a lower one forward lets the first of ours that it meets on the way change places with
// it: ours goes behind all others of its rank met so far. Passes that bring ours forward take them as they
// stand, and later ones don't move them. So our items are a queue: walked along the row, each of ours joins
// it at its end, and each lower one sends the queue's first item to its end.
#include "pathcmd/exchangesort.h"

#include <bit>

namespace tarnex {

namespace {

// How many of a row of marks stand before a place; the place of the n-th mark (a Fenwick tree).
class Marks {
 public:
  explicit Marks(std::size_t size) : sums_(size + 1, 0) {}
  void add(std::size_t place, std::int32_t count) {
    for (std::size_t i = place + 1; i < sums_.size(); i += i & (~i + 1)) sums_[i] += count;
  }
  [[nodiscard]] std::size_t before(std::size_t place) const {
    std::int32_t sum = 0;
    for (std::size_t i = place; i > 0; i &= i - 1) sum += sums_[i];
    return static_cast<std::size_t>(sum);
  }
  [[nodiscard]] std::size_t placeOf(std::size_t n) const {  // n from 0
    std::size_t at = 0;
    for (std::size_t step = std::bit_floor(sums_.size() - 1); step > 0; step /= 2) {
      if (at + step >= sums_.size() || static_cast<std::size_t>(sums_[at + step]) > n) continue;
      at += step;
      n -= static_cast<std::size_t>(sums_[at]);
    }
    return at;
  }

 private:
  std::vector<std::int32_t> sums_;
};

// The queue's items, first to last, where each item that joins is followed by `turns` moves of the first to
// the end. Found from the last one that joined: where it stands now says where the queue began before it.
std::vector<std::uint32_t> queueAfter(const std::vector<std::uint32_t>& items,
                                      const std::vector<std::size_t>& turns) {
  Marks open(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) open.add(i, 1);
  std::vector<std::uint32_t> queue(items.size());
  std::size_t first = 0;  // of the queue of the first k + 1 items, counted in open places
  for (std::size_t k = items.size(); k-- > 0;) {
    const std::size_t at = (first + k + (k + 1) - turns[k] % (k + 1)) % (k + 1);
    const std::size_t place = open.placeOf(at);
    queue[place] = items[k];
    open.add(place, -1);
    first = at;
  }
  return queue;
}

// Items of one rank, in the order of the row; `lower` marks those of lower rank.
std::vector<std::uint32_t> orderOfEqual(const std::vector<std::uint32_t>& items, const Marks& lower,
                                        std::size_t rowSize) {
  std::vector<std::size_t> turns;
  for (std::size_t k = 0; k < items.size(); ++k)
    turns.push_back(lower.before(k + 1 < items.size() ? items[k + 1] : rowSize) - lower.before(items[k]));
  return queueAfter(items, turns);
}

}  // namespace

std::vector<std::uint32_t> exchangeOrder(const std::vector<std::uint32_t>& ranks) {
  std::vector<std::uint32_t> order(ranks.size());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return ranks[a] < ranks[b]; });
  Marks lower(ranks.size());
  for (auto begin = order.begin(), end = begin; begin != order.end(); begin = end) {
    end = std::find_if(begin, order.end(), [&](std::uint32_t item) { return ranks[item] != ranks[*begin]; });
    if (end - begin > 1) std::ranges::copy(orderOfEqual({begin, end}, lower, ranks.size()), begin);
    for (auto item = begin; item != end; ++item) lower.add(*item, 1);
  }
  return order;
}

}  // namespace tarnex
