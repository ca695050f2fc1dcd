// Drift of a walked wire: a convex polygon that grows by rounding and is cut by observations, block after
// block. Knows steps and their outline; what is too near or too far is judged elsewhere.
#include "exchange/drift.h"

#include "exchange/outline.h"

namespace tarnex::truth {

namespace {

constexpr std::size_t kMostCorners = 24;  // a set with more is replaced by its box
constexpr double kHalfCount = 0.0005;     // mm
constexpr double kMiddle = 0.5;           // of a step: where what it runs beside is looked up
// mm; an arc flatter round than this turns too much within a drift for its distance to tell the drift
constexpr double kRoundest = 0.05;
constexpr double kTurning = 0.25;  // rad; steps that turn more look at the drift in all directions

using Beside = std::optional<std::size_t>;  // the outline's span beside which a step runs

std::vector<Vec> hull(std::vector<Vec> p) {
  std::sort(p.begin(), p.end(), [](Vec a, Vec b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
  std::vector<Vec> out;
  auto chain = [&](auto begin, auto end) {
    const std::size_t base = out.size();
    for (auto it = begin; it != end; ++it) {
      while (out.size() >= base + 2 && cross(out.back() - out[out.size() - 2], *it - out.back()) <= 0)
        out.pop_back();
      out.push_back(*it);
    }
    out.pop_back();
  };
  if (p.size() < 3) return p;
  chain(p.begin(), p.end());
  chain(p.rbegin(), p.rend());
  return out;
}

// The outline's span beside which a step runs from end to end, if it is one and of the step's own kind.
Beside spanBeside(const Measuring& m, const Step& s) {
  if (s.role != Role::kCut) return std::nullopt;
  const auto hit = m.outline.spans.nearestTo(at(s.stroke, kMiddle));
  if (hit.foot.t <= 0 || hit.foot.t >= 1) return std::nullopt;
  const Stroke& span = m.outline.span(hit.stroke);
  if (span.arc != s.stroke.arc) return std::nullopt;
  if (span.arc && std::min(span.radius, s.stroke.radius) < kRoundest) return std::nullopt;
  for (const double t : {0.0, kMiddle, 1.0}) {
    const double off = m.wireSide * beside(span, at(s.stroke, t)) - m.outline.compensation;
    if (std::abs(off) > s.allowed()) return std::nullopt;
  }
  return hit.stroke;
}

// Away from the span on the wire's side, at p.
Vec normalOf(const Measuring& m, const Stroke& span, Point p) {
  if (span.arc) return unit(p - span.centre) * (span.sweep > 0 ? -m.wireSide : m.wireSide);
  const Vec u = unit(span.end - span.start);
  return Vec{-u.y, u.x} * m.wireSide;
}

// Distance of p from where it should be, across the span: so much of the drift is seen.
void observe(const Measuring& m, std::size_t spanIndex, Point p, DriftSet& drift) {
  const Stroke& span = m.outline.span(spanIndex);
  const double seen = m.wireSide * beside(span, p) - m.outline.compensation;
  drift.keep(normalOf(m, span, p), seen - kAllowance, seen + kAllowance);
}

// How far the wire may be off away from what a step runs beside and towards it; where that isn't known or
// turns, as far as in any direction.
struct Across {
  double away = 0, towards = 0;
  void add(const Across& a) { away = std::max(away, a.away), towards = std::max(towards, a.towards); }
};
Across across(const Measuring& m, const Step& s, Beside span, const DriftSet& drift) {
  Across out;
  if (!span || (s.stroke.arc && std::abs(s.stroke.sweep) > kTurning))
    return {drift.farthest(), drift.farthest()};
  for (const double t : {0.0, kMiddle, 1.0}) {
    const Vec n = normalOf(m, m.outline.span(*span), at(s.stroke, t));
    out.add({drift.along(n), drift.along(-n)});
    if (!s.stroke.arc) break;
  }
  // Between the three the direction turns by no more than this, across the largest drift there is.
  const double turn = s.stroke.arc ? drift.farthest() * std::sin(std::abs(s.stroke.sweep) / 4) : 0;
  return {out.away + turn, out.towards + turn};
}

// One span after the other: then no block can have been left out for being too short.
bool follow(const Outline& o, Beside a, Beside b) {
  if (!a || !b) return false;
  const std::size_t n = o.count(), gap = *a > *b ? *a - *b : *b - *a;
  return gap <= 1 || (o.closed && gap == n - 1);
}

}  // namespace

DriftSet::DriftSet(double h) : corners_{{-h, -h}, {h, -h}, {h, h}, {-h, h}} {}

void DriftSet::grow(double x, double y) {
  std::vector<Vec> all;
  all.reserve(4 * corners_.size());
  for (const Vec v : corners_)
    for (const Vec by : {Vec{-x, -y}, Vec{x, -y}, Vec{x, y}, Vec{-x, y}}) all.push_back(v + by);
  if (corners_.size() <= kMostCorners) {
    corners_ = hull(std::move(all));
    return;
  }
  Box b;
  for (const Vec v : all) b.add(Point{v.x, v.y});
  corners_ = {{b.x0, b.y0}, {b.x1, b.y0}, {b.x1, b.y1}, {b.x0, b.y1}};
}

bool DriftSet::keep(Vec n, double low, double high) {
  std::vector<Vec> left = corners_;
  for (const auto& [normal, limit] : {std::pair{n, high}, std::pair{-n, -low}}) {
    std::vector<Vec> kept;
    for (std::size_t i = 0; i < left.size(); ++i) {
      const Vec a = left[i], b = left[(i + 1) % left.size()];
      const double da = dot(normal, a) - limit, db = dot(normal, b) - limit;
      if (da <= 0) kept.push_back(a);
      if ((da < 0) != (db < 0) && da != db) kept.push_back(a + (b - a) * (da / (da - db)));
    }
    left = std::move(kept);
  }
  if (left.empty()) return false;
  corners_ = std::move(left);
  return true;
}

double DriftSet::along(Vec n) const {
  double most = 0;
  for (const Vec v : corners_) most = std::max(most, dot(n, v));
  return most;
}

double DriftSet::farthest() const {
  double most = 0;
  for (const Vec v : corners_) most = std::max(most, std::hypot(v.x, v.y));
  return most;
}

void narrowRounding(Measuring& m) {
  auto& steps = m.path.steps;
  std::vector<Beside> spans;
  spans.reserve(steps.size());
  for (const Step& s : steps) spans.push_back(spanBeside(m, s));
  DriftSet drift(steps.front().before);
  double sum = steps.front().before;  // what the blocks' roundings add up to, unseen
  for (std::size_t i = 0; i < steps.size(); ++i) {
    Step& s = steps[i];
    const bool last = i + 1 == steps.size();
    const double own = (last ? m.path.rounding : steps[i + 1].before) - sum;
    sum += own;
    // Blocks shorter than a micrometre aren't written; what they would have moved is missing from here on.
    if (i > 0 && !follow(m.outline, spans[i - 1], spans[i])) drift.grow(kAllowance, kAllowance);
    // What is allowed here follows from what was seen before: not from the step itself.
    Across off = across(m, s, spans[i], drift);
    if (i > 0) off.add(across(m, steps[i - 1], spans[i - 1], drift));
    s.spread = drift.farthest();
    if (spans[i]) observe(m, *spans[i], s.stroke.start, drift);
    s.stroke.arc ? drift.grow(own, own) : drift.grow(kHalfCount, kHalfCount);
    off.add(across(m, s, spans[i], drift));
    if (!last) off.add(across(m, steps[i + 1], spans[i + 1], drift));
    s.spread = std::max(s.spread, drift.farthest());
    if (spans[i]) observe(m, *spans[i], s.stroke.end, drift);
    const double way = std::max(0.0, s.away - s.before - own);
    s.away = std::min(s.away, off.away + way);
    s.towards = std::min(s.towards, off.towards + way);
    s.spread = std::min(s.before + own, s.spread) + way;
  }
  m.path.rounding = std::min(m.path.rounding, drift.farthest());
}

}  // namespace tarnex::truth
