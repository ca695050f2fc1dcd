// Rows brought into order by looks into a tree are those of the scan as it is told, and equal items stand
// where an exchange sort leaves them. The rules stand here as loops over all pairs.
#include "pathcmd/nearestfirst.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>

#include "pathcmd/exchangesort.h"

namespace tarnex {

namespace {

using Member = NearestFirst::Member;
using Scan = NearestFirst::Scan;

// Longer than the stretches that are walked, so that looks are taken.
const int kRow = std::getenv("TARNEX_LONG") ? 4500 : 1300;

class TwoRows {
 public:
  TwoRows(const std::vector<Member>& row, double sameLength)
      : members_(row), sameLength_(sameLength), quick_(row, sameLength) {
    for (std::size_t i = 0; i < row.size(); ++i) told_.push_back(i);
  }
  [[nodiscard]] const Member& at(std::size_t place) const { return members_[told_[place]]; }
  [[nodiscard]] std::size_t size() const { return told_.size(); }
  void run(const Scan& scan) {
    tell(scan);
    quick_.run(scan);
  }
  void runAll() { quick_.runAll(); }
  void tell(const Scan& scan) {
    double best = scan.best;
    for (std::size_t j = scan.from; j < told_.size(); ++j) {
      if (std::abs(at(j).length - scan.length) > sameLength_) continue;
      const double distance = scan.p.distanceTo(at(j).at);
      if (!(distance < best)) continue;
      best = distance;
      std::swap(told_[scan.to], told_[j]);
    }
  }
  [[nodiscard]] bool same() const {
    for (std::size_t i = 0; i < told_.size(); ++i)
      if (quick_.origin(i) != told_[i]) return false;
    return true;
  }

 private:
  std::vector<Member> members_;
  double sameLength_;
  NearestFirst quick_;
  std::vector<std::size_t> told_;
};

struct Shape {
  const char* name;
  std::function<Member(int i, std::mt19937& random)> member;
};

double between(double low, double high, std::mt19937& random) {
  return std::uniform_real_distribution<double>(low, high)(random);
}
int below(int n, std::mt19937& random) {
  return std::uniform_int_distribution<int>(0, n - 1)(random);
}

const Shape kShapes[] = {
    {"scattered",
     [](int, std::mt19937& r) {
       return Member{{between(0, 500, r), between(0, 500, r)}};
     }},
    {"scattered, a tie at last",
     [](int i, std::mt19937& r) {
       constexpr AcGePoint2d kCross[] = {{9001, 0}, {9000, 1}, {9000, -1}, {8999, 0}, {9000, 0}};
       return i > 0 && i <= 5 ? Member{kCross[i - 1]} : Member{{between(0, 500, r), between(0, 500, r)}};
     }},
    {"grid by rows",
     [](int i, std::mt19937&) {
       return Member{{i % 25 * 5.0, i / 25 * 5.0}};
     }},
    {"grid in disorder",
     [](int, std::mt19937& r) {
       return Member{{below(25, r) * 5.0, below(25, r) * 5.0}};
     }},
    {"all in one point",
     [](int, std::mt19937&) {
       return Member{{3, 4}};
     }},
    {"on a line, backwards",
     [](int i, std::mt19937&) {
       return Member{{i == 0 ? 0.0 : 1e4 - i, 0}};
     }},
    {"on a slope, many twice",
     [](int, std::mt19937& r) {
       const int k = below(200, r);
       return Member{{k * 0.1, k * 0.3}};
     }},
    {"about one centre",
     [](int i, std::mt19937&) {
       return i == 0 ? Member{} : Member{{100 * std::cos(i), 100 * std::sin(i)}};
     }},
    {"farther than the nearest may be",
     [](int, std::mt19937& r) {
       return Member{{below(9, r) * 60000.0, below(9, r) * 60000.0}};
     }},
    {"huge",
     [](int, std::mt19937& r) {
       return Member{{1e9 + below(30, r) * 1e-7, -1e12 + below(30, r) * 1e-4}};
     }},
    {"beyond the range of squares",
     [](int, std::mt19937& r) {
       return Member{{std::pow(10.0, below(600, r) - 300), below(3, r) * 1e200}};
     }},
    {"tiny",
     [](int, std::mt19937& r) {
       return Member{{below(50, r) * 1e-160, below(50, r) * 3e-162}};
     }},
    {"some nowhere",
     [](int i, std::mt19937& r) {
       return i % 5 == 2 ? Member{{std::numeric_limits<double>::quiet_NaN(), 0}}
                         : Member{{below(20, r) * 1.0, below(20, r) * 1.0}};
     }},
    {"lengths of few kinds",
     [](int, std::mt19937& r) {
       return Member{{below(15, r) * 5.0, below(15, r) * 5.0}, below(4, r) * 10 + below(3, r) * 1e-9};
     }},
    {"lengths that run on",
     [](int i, std::mt19937& r) {
       return Member{{below(15, r) * 5.0, below(15, r) * 5.0}, i / 20 * 0.0004};
     }},
    {"lengths far apart and one",
     [](int i, std::mt19937& r) {
       return Member{{between(0, 9, r), between(0, 9, r)}, i % 9 == 0 ? std::pow(2.0, i / 3 % 300) : 5.0};
     }},
};

std::vector<Member> rowOf(const Shape& shape, int size, std::mt19937& random) {
  std::vector<Member> row;
  for (int i = 0; i < size; ++i) row.push_back(shape.member(i, random));
  return row;
}

TEST(NearestFirst, IsTheScanOverAllPlaces) {
  std::mt19937 random(5);
  for (const Shape& shape : kShapes) {
    const double sameLength = below(2, random) ? 0.001 : 11;
    for (const std::size_t ahead :
         {0, 1}) {  // the place that is filled may be the one before those looked at
      TwoRows rows(rowOf(shape, kRow, random), sameLength);
      for (std::size_t to = 1; to + ahead < rows.size(); ++to) {
        const Member last = rows.at(to - 1 + ahead * below(2, random));
        const double best = below(8, random) == 0 ? std::numeric_limits<double>::infinity() : kFarAway;
        rows.run({to, to + ahead, last.at, best, last.length});
      }
      ASSERT_TRUE(rows.same()) << shape.name << ", " << sameLength;
    }
  }
}

// The rule as it is told, with its two scans at a step to another length.
TEST(NearestFirst, AllPlacesInTurn) {
  constexpr double kSame = 0.001;
  std::mt19937 random(6);
  for (const Shape& shape : kShapes)
    for (const int size : {0, 1, 2, 40, kRow}) {
      auto row = rowOf(shape, size, random);
      std::sort(row.begin(), row.end(), [](const Member& a, const Member& b) { return a.length < b.length; });
      TwoRows rows(row, kSame);
      for (std::size_t i = 0; i + 1 < row.size(); ++i) {
        const Member m = rows.at(i), next = rows.at(i + 1);
        const bool step = std::abs(next.length - m.length) > kSame;
        const double length = step ? next.length : m.length;
        if (step) rows.tell({i + 1, i + 2, m.at, m.at.distanceTo(next.at), length});
        rows.tell({i + 1, i + 1, m.at, kFarAway, length});
      }
      rows.runAll();
      ASSERT_TRUE(rows.same()) << shape.name << ", " << size;
    }
}

// Worked by hand, from (0,0), the first one: 5 swaps with itself, 3 with it, 3' not, 1 with 3.
TEST(NearestFirst, WhoGivesWayMovesOn) {
  NearestFirst row({{{0, 0}}, {{5, 0}}, {{3, 0}}, {{0, 3}}, {{1, 0}}, {{9, 0}}});
  row.run({1, 1, {0, 0}, kFarAway});
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < row.size(); ++i) order.push_back(row.origin(i));
  EXPECT_EQ(order, (std::vector<std::size_t>{0, 4, 1, 3, 2, 5}));
}

TEST(ExchangeSort, EqualOnesStandAsExchangesLeaveThem) {
  std::mt19937 random(9);
  const int rounds = std::getenv("TARNEX_LONG") ? 200000 : 3000;
  for (int round = 0; round < rounds; ++round) {
    std::vector<std::pair<int, int>> told;
    const int size = below(40, random), kinds = 1 + below(12, random);
    for (int i = 0; i < size; ++i) told.emplace_back(below(kinds, random), i);
    auto sorted = told;
    const auto less = [](const auto& a, const auto& b) { return a.first < b.first; };
    for (std::size_t i = 0; i < told.size(); ++i)
      for (std::size_t j = i + 1; j < told.size(); ++j)
        if (less(told[j], told[i])) std::swap(told[i], told[j]);
    exchangeSort(sorted, less);
    ASSERT_EQ(sorted, told) << round;
  }
}

}  // namespace

}  // namespace tarnex
