// Times of named steps for one size of drawing, and their table with multiples of the floor and growth.
// Knows no step by its meaning.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host/platform/usage.h"

namespace tarnex::bench {

// Processor time: other programs of the machine don't count.
template <class What>
double secondsOf(What what) {
  const double start = processorSeconds();
  what();
  return processorSeconds() - start;
}

inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Steps in the order of their first time; each holds the times of all runs.
class Steps {
 public:
  void add(const std::string& name, double seconds) {
    for (auto& [known, times] : all_)
      if (known == name) return times.push_back(seconds);
    all_.emplace_back(name, std::vector<double>{seconds});
  }
  // 0 when there is no such step.
  [[nodiscard]] double secondsOf(const std::string& name) const {
    for (const auto& [known, times] : all_)
      if (known == name) return median(times);
    return 0;
  }
  // One line a step: ms, floors, and how many times as long as `before` took.
  void print(double floor, const Steps& before) const;

 private:
  std::vector<std::pair<std::string, std::vector<double>>> all_;
};

}  // namespace tarnex::bench
