// Places on a contour and strokes along it.
// Knows one contour.
#include "exchange/railiso.h"

#include <algorithm>

namespace tarnex::truth {

namespace {

constexpr double kAtVertex = 1e-7;    // mm; places come from lengths added up
constexpr std::size_t kMostTiny = 4;  // spans in a row that rounding may swallow

}  // namespace

Rail::Rail(std::vector<Stroke> spans, bool closed) : spans_(std::move(spans)), closed_(closed) {
  for (const Stroke& s : spans_) starts_.push_back(starts_.back() + lengthOf(s));
}

Point Rail::pointAt(double s) const {
  if (closed_ && length() > 0) {
    s = std::fmod(s, length());
    if (s < 0) s += length();
  }
  const auto above = std::ranges::upper_bound(starts_.begin() + 1, starts_.end() - 1, s);
  const auto k = static_cast<std::size_t>(above - starts_.begin()) - 1;
  const double size = starts_[k + 1] - starts_[k];
  return at(spans_[k], size > 0 ? (s - starts_[k]) / size : 0);
}

Rail::Place Rail::nearestTo(Point p) const {
  Place best{0, 1e300};
  for (std::size_t k = 0; k < spans_.size(); ++k) {
    const Foot foot = nearest(spans_[k], p);
    if (foot.distance < best.distance)
      best = {starts_[k] + foot.t * (starts_[k + 1] - starts_[k]), foot.distance};
  }
  return best;
}

std::optional<Rail::Ahead> Rail::ahead(double s, int dir, std::size_t skip) const {
  const double lap = closed_ ? std::floor((s + (dir > 0 ? kAtVertex : -kAtVertex)) / length()) : 0;
  const double within = s - lap * length();
  // The first vertex ahead of the place, by halving.
  std::size_t low = 0, high = spans_.size();
  while (low < high) {
    const std::size_t k = (low + high) / 2;
    const bool isAhead = dir > 0 ? starts_[k + 1] > within + kAtVertex : starts_[k] >= within - kAtVertex;
    if (isAhead)
      high = k;
    else
      low = k + 1;
  }
  if (!closed_) {
    if (dir > 0 && low + skip >= spans_.size()) return std::nullopt;
    if (dir < 0 && low < 1 + skip) return std::nullopt;
  }
  const auto n = static_cast<long>(spans_.size());
  const long index =
      dir > 0 ? static_cast<long>(low + skip) : static_cast<long>(low) - 1 - static_cast<long>(skip);
  const long turns = index >= 0 ? index / n : -((n - 1 - index) / n);
  const auto k = static_cast<std::size_t>(index - turns * n);
  return Ahead{k, (lap + static_cast<double>(turns)) * length() + starts_[dir > 0 ? k + 1 : k]};
}

std::optional<RailRun> Rail::follow(const Stroke& stroke, double s, const Fit& fit) const {
  for (std::size_t skip = 0; skip < kMostTiny; ++skip) {
    const auto on = ahead(s, fit.dir, skip);
    if (!on) return std::nullopt;
    if (auto run = alongSpan(stroke, s, *on, fit)) return run;
    // Only what rounding may have swallowed is passed over.
    if (std::abs(on->end - s) > 2 * fit.tolerance) return std::nullopt;
  }
  return std::nullopt;
}

std::optional<RailRun> Rail::alongSpan(const Stroke& stroke, double s, const Ahead& on,
                                       const Fit& fit) const {
  const Stroke& span = spans_[on.span];
  const double size = starts_[on.span + 1] - starts_[on.span];
  const Point far = fit.dir > 0 ? span.end : span.start;
  RailRun run{on.span, s, on.end, dist(stroke.end, far), true};
  if (run.off > fit.tolerance) {
    const Foot foot = nearest(span, stroke.end);
    if (foot.distance > fit.tolerance) return std::nullopt;
    run.to = on.end - fit.dir * size * (fit.dir > 0 ? 1 - foot.t : foot.t);
    run.off = foot.distance;
    run.vertex = false;
  }
  const double way = fit.dir * (run.to - s);
  if (way <= 0 || (way <= 2 * fit.tolerance && lengthOf(stroke) > 6 * fit.tolerance)) return std::nullopt;
  if (fit.anyWay) return run;
  // The start is known as well as the end, so the lengths differ by both, an arc's by its radius too.
  if (std::abs(lengthOf(stroke) - way) > 4 * fit.shape + 1e-3 * way) return std::nullopt;
  for (const double t : {0.25, 0.5, 0.75})
    if (nearest(span, at(stroke, t)).distance > fit.shape) return std::nullopt;
  return run;
}

}  // namespace tarnex::truth
