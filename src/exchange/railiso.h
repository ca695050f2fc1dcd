// A figure's contour as a rail: places on it as lengths from the entry point, and whether a stroke runs along
// it. Knows one contour; no passes.
#pragma once

#include <optional>
#include <vector>

#include "exchange/plane.h"

namespace tarnex::truth {

// What a stroke along the rail comes to.
struct RailRun {
  std::size_t span = 0;
  double from = 0, to = 0;  // mm from the entry point, beyond the perimeter where it runs on past the entry
  double off = 0;           // mm that its end lies beside the rail
  bool vertex = false;      // its end is the span's
};

class Rail {
 public:
  Rail() = default;
  Rail(std::vector<Stroke> spans, bool closed);
  [[nodiscard]] double length() const { return starts_.back(); }
  [[nodiscard]] bool closed() const { return closed_; }
  [[nodiscard]] std::size_t count() const { return spans_.size(); }
  [[nodiscard]] const Stroke& span(std::size_t k) const { return spans_[k]; }
  [[nodiscard]] double startOf(std::size_t k) const { return starts_[k]; }  // also of count()
  [[nodiscard]] Point pointAt(double s) const;
  // Nearest place.
  struct Place {
    double s = 0, distance = 0;
  };
  [[nodiscard]] Place nearestTo(Point p) const;
  // The span ahead of the place `s` in direction `dir` (1 along, -1 against), and the place of its far end.
  // Nothing at an end of an open rail. `skip` spans further on.
  struct Ahead {
    std::size_t span = 0;
    double end = 0;
  };
  [[nodiscard]] std::optional<Ahead> ahead(double s, int dir, std::size_t skip = 0) const;

  // A stroke that begins at `s` (its beginning isn't looked at) and runs in direction `dir` along one span.
  // `tolerance`: mm that its end may lie beside it; `shape`: that the way may. An unknown way isn't looked
  // at.
  struct Fit {
    int dir = 1;
    double tolerance = 0, shape = 0;
    bool anyWay = false;
  };
  [[nodiscard]] std::optional<RailRun> follow(const Stroke& stroke, double s, const Fit& fit) const;

 private:
  [[nodiscard]] std::optional<RailRun> alongSpan(const Stroke& stroke, double s, const Ahead& on,
                                                 const Fit& fit) const;
  std::vector<Stroke> spans_;
  std::vector<double> starts_{0};
  bool closed_ = false;
};

}  // namespace tarnex::truth
