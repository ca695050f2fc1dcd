// The index of a chain's candidates against a plain list that is walked from its start.
// Knows points and order alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "contour/chaining.h"

namespace tarnex {
namespace {

// What the index stands for.
struct PlainList {
  struct Item {
    AcDbObjectId id;
    AcGePoint2d a, b;
    std::uint64_t order;
  };
  std::vector<Item> items;

  void add(AcDbObjectId id, AcGePoint2d a, AcGePoint2d b, std::uint64_t order) {
    remove(id);
    items.push_back({id, a, b, order});
    std::stable_sort(items.begin(), items.end(), [](auto& x, auto& y) { return x.order < y.order; });
  }
  void remove(AcDbObjectId id) {
    std::erase_if(items, [&](const Item& i) { return i.id == id; });
  }
  [[nodiscard]] std::vector<AcDbObjectId> touching(AcGePoint2d p, double tolerance) const {
    std::vector<AcDbObjectId> found;
    for (const Item& i : items)
      if (i.a.distanceTo(p) <= tolerance || i.b.distanceTo(p) <= tolerance) found.push_back(i.id);
    return found;
  }
  [[nodiscard]] std::vector<AcDbObjectId> all() const { return touching({0, 0}, 1e300); }
};

struct Soup {
  const char* name;
  double step, spread;  // coordinates are multiples of `step` up to `spread`, mm
  double tolerance;
  AcGePoint2d at;
};

TEST(ChainCandidates, AnswersAsAWalkOverTheListWould) {
  std::mt19937 rng(5);
  for (const Soup& soup :
       {Soup{"grid of the tolerance", 0.001, 0.05, 0.001, {10, -7}},
        Soup{"wide tolerance", 0.1, 4, 0.2, {0, 0}}, Soup{"tolerance over all", 1, 3, 5, {0, 0}},
        Soup{"far out", 0.25, 4, 0.001, {1e6, -1e6}}, Soup{"one place", 1, 0, 0.001, {3, 3}}}) {
    ChainCandidates index;
    PlainList plain;
    const auto point = [&] {
      const int most = static_cast<int>(soup.spread / soup.step + 0.5);
      const auto coordinate = [&] {
        return soup.step * std::uniform_int_distribution<int>(-most, most)(rng);
      };
      const double x = coordinate();
      return AcGePoint2d{soup.at.x + x, soup.at.y + coordinate()};
    };
    std::vector<AcDbObjectId> found;
    std::size_t hits = 0;
    for (int round = 0; round < 1500; ++round) {
      const AcDbObjectId id{static_cast<std::uint32_t>(rng() % 300 + 1)};
      const int what = static_cast<int>(rng() % 10);
      if (what < 4) {
        const AcGePoint2d a = point(), b = point();
        const std::uint64_t order =
            what == 0 ? rng() % 1000 * 1000 + id.index : 1000000u + static_cast<unsigned>(round);
        index.add(id, a, b, order);
        plain.add(id, a, b, order);
      } else if (what < 6) {
        index.remove(id);
        plain.remove(id);
      } else {
        const AcGePoint2d p = point();
        index.touching(p, soup.tolerance, found);
        ASSERT_EQ(found, plain.touching(p, soup.tolerance)) << soup.name << ", round " << round;
        const AcDbObjectId first = index.firstTouching(p, soup.tolerance, [](AcDbObjectId) { return true; });
        ASSERT_EQ(first, found.empty() ? AcDbObjectId{} : found.front()) << soup.name;
        hits += found.size();
      }
      ASSERT_EQ(index.size(), plain.items.size()) << soup.name;
      ASSERT_EQ(index.first(), plain.items.empty() ? AcDbObjectId{} : plain.items.front().id) << soup.name;
    }
    EXPECT_EQ(index.remaining(), plain.all()) << soup.name;
    EXPECT_GT(hits, 50u) << soup.name;
  }
}

TEST(ChainCandidates, EndsAtTheToleranceItselfTouch) {
  ChainCandidates index;
  index.add(AcDbObjectId{1}, {10, 0}, {20, 0}, 1);
  index.add(AcDbObjectId{2}, {30, 0}, {10.25, 0}, 2);
  std::vector<AcDbObjectId> found;
  index.touching({10, 0.25}, 0.25, found);
  EXPECT_EQ(found, std::vector{AcDbObjectId{1}});
  index.touching({10.125, 0}, 0.125, found);
  EXPECT_EQ(found, (std::vector{AcDbObjectId{1}, AcDbObjectId{2}}));
  index.touching({10.125, 0}, 0.124, found);
  EXPECT_TRUE(found.empty());
}

}  // namespace
}  // namespace tarnex
