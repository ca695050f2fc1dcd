// Spans of an offset matched with the spans of its path, by where they run.
// Knows no entity.
#include "toolpath/offsetspans.h"

#include <algorithm>

#include "contour/geometrylibrary.h"

namespace tarnex {

namespace {

constexpr double kBeside = 1e-4;   // mm off the offset's exact distance
constexpr double kAligned = 0.99;  // least cosine between a span and the one beside it

bool stepAt(std::span<const BulgeVertex> v, std::size_t i) {
  return i > 0 && i + 2 < v.size() && v[i].bulge == kMarkedBulge && v[i + 1].bulge == kMarkedBulge &&
         v[i + 2].point.distanceTo(v[i].point) <= kSamePoint;
}

// One span, and where points lie beside it.
class Span {
 public:
  Span(AcGePoint2d a, AcGePoint2d b, double bulge) : a_(a), b_(b), bulge_(bulge) {
    if (bulge_ == kMarkedBulge) bulge_ = 0;
    if (bulge_ != 0 && a != b) circle_ = bulgeToCircle(a, b, bulge_);
  }
  [[nodiscard]] bool arc() const { return bulge_ != 0; }
  [[nodiscard]] const SpanCircle& circle() const { return circle_; }
  [[nodiscard]] AcGePoint2d start() const { return a_; }
  [[nodiscard]] AcGePoint2d end() const { return b_; }
  [[nodiscard]] AcGePoint2d middle() const {
    const AcGeVector2d chord = b_ - a_;
    return AcGePoint2d{(a_.x + b_.x) / 2, (a_.y + b_.y) / 2} + AcGeVector2d{chord.y, -chord.x} * (bulge_ / 2);
  }
  [[nodiscard]] double left(AcGePoint2d p) const {  // mm beside the span drawn out
    if (arc()) return (circle_.radius - p.distanceTo(circle_.centre)) * (bulge_ > 0 ? 1 : -1);
    const AcGeVector2d d = unit();
    return d.x * (p.y - a_.y) - d.y * (p.x - a_.x);
  }
  [[nodiscard]] AcGeVector2d headingAt(AcGePoint2d p) const {
    if (!arc()) return unit();
    const double angle = acutAngle(circle_.centre, p) + (bulge_ > 0 ? kPi / 2 : -kPi / 2);
    return {std::cos(angle), std::sin(angle)};
  }
  // mm that p lies before the span's start or behind its end.
  [[nodiscard]] double beyond(AcGePoint2d p) const {
    if (arc()) {
      const double direction = bulge_ > 0 ? 1 : -1;
      const double sweep = std::abs(sweepAngle(circle_.centre, a_, b_, direction));
      const double at = std::abs(sweepAngle(circle_.centre, a_, p, direction));
      return at <= sweep ? 0 : std::min(at - sweep, 2 * kPi - at) * circle_.radius;
    }
    const AcGeVector2d d = unit();
    const double at = d.x * (p.x - a_.x) + d.y * (p.y - a_.y);
    return std::max({0.0, -at, at - a_.distanceTo(b_)});
  }

 private:
  [[nodiscard]] AcGeVector2d unit() const {
    const double length = a_.distanceTo(b_);
    return length > 0 ? AcGeVector2d{(b_.x - a_.x) / length, (b_.y - a_.y) / length} : AcGeVector2d{1, 0};
  }
  AcGePoint2d a_, b_;
  double bulge_;
  SpanCircle circle_;
};

// Matches one offset, without steps, span by span; the way round the contour never turns back.
class Matching {
 public:
  Matching(std::span<const BulgeVertex> path, double toTheLeft) : path_(path), left_(toTheLeft) {}

  std::vector<int> run(const std::vector<BulgeVertex>& offset) {
    std::vector<int> spans(offset.size(), 0);
    for (std::size_t k = 1; k + 1 < offset.size(); ++k) {
      const Span s(offset[k].point, offset[k + 1].point, offset[k].bulge);
      if (s.start() != s.end()) last_ = match(s);
      spans[k] = static_cast<int>(last_);
    }
    if (offset.size() > 1) spans.back() = static_cast<int>(path_.size()) - 1;
    return spans;
  }

 private:
  [[nodiscard]] Span spanAt(std::size_t j) const {
    return {path_[j].point, path_[j + 1].point, path_[j].bulge};
  }
  [[nodiscard]] bool runsBeside(const Span& s, const Span& source) const {
    for (AcGePoint2d p : {s.start(), s.middle(), s.end()})
      if (!(std::abs(source.left(p) - left_) <= kBeside)) return false;
    const AcGeVector2d a = s.headingAt(s.middle()), b = source.headingAt(s.middle());
    return a.x * b.x + a.y * b.y >= kAligned;
  }
  // The vertex about which an arc rounds a corner, or 0.
  [[nodiscard]] std::size_t rounded(const Span& s) const {
    if (!s.arc() || std::abs(s.circle().radius - std::abs(left_)) > kBeside) return 0;
    for (std::size_t v = 1; v + 1 < path_.size(); ++v)
      if (path_[v].point.distanceTo(s.circle().centre) <= kSamePoint) return v;
    return 0;
  }
  [[nodiscard]] std::size_t match(const Span& s) const {
    const std::size_t first = 1, count = path_.size() - 2;
    const std::size_t from = std::max(last_, first);
    std::size_t best = from;
    double least = 1e300;
    for (std::size_t n = 0; n < count && least > 0; ++n) {
      const std::size_t j = first + (from - first + n) % count;
      if (path_[j].point == path_[j + 1].point) continue;
      const Span source = spanAt(j);
      if (!runsBeside(s, source)) continue;
      if (const double beyond = source.beyond(s.middle()); beyond < least) least = beyond, best = j;
    }
    if (least < 1e300) return best;
    const std::size_t v = rounded(s);
    return v > 0 ? v - 1 : best;
  }

  std::span<const BulgeVertex> path_;
  double left_;
  std::size_t last_ = 0;
};

std::vector<BulgeVertex> verticesOf(const PathCurve& c) {
  std::vector<BulgeVertex> out;
  out.reserve(c.vertices.size());
  for (std::size_t i = 0; i < c.vertices.size(); ++i) out.push_back({c.vertices[i], c.bulges[i]});
  return out;
}

// The offset's vertex that came from the path's vertex v alone, or 0.
std::size_t cameFrom(const std::vector<int>& spans, int v) {
  for (std::size_t k = 1; k + 1 < spans.size(); ++k)
    if (spans[k - 1] < v && spans[k] == v) return spans[k - 1] == v - 1 ? k : 0;
  return 0;
}

}  // namespace

bool hasSteps(std::span<const BulgeVertex> path) {
  for (std::size_t i = 1; i + 2 < path.size(); ++i)
    if (stepAt(path, i)) return true;
  return false;
}

SteplessPath withoutSteps(std::span<const BulgeVertex> path) {
  SteplessPath out;
  out.vertices.reserve(path.size());
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (stepAt(path, i)) {
      out.steps.push_back(
          {static_cast<int>(out.vertices.size()), static_cast<int>(i), path[i + 1].point - path[i].point});
      ++i;
      continue;
    }
    out.vertices.push_back(path[i]);
    out.index.push_back(static_cast<int>(i));
  }
  return out;
}

std::vector<int> spansBeside(std::span<const BulgeVertex> path, const PathCurve& offset, double toTheLeft) {
  const SteplessPath from = withoutSteps(path), to = withoutSteps(verticesOf(offset));
  if (from.vertices.size() < 3) return {};
  const auto spans = Matching(from.vertices, toTheLeft).run(to.vertices);
  std::vector<int> out(offset.vertices.size(), 0);
  for (std::size_t k = 0; k < spans.size(); ++k)
    out[static_cast<std::size_t>(to.index[k])] = from.index[static_cast<std::size_t>(spans[k])];
  for (const auto& step : to.steps)
    for (const auto& source : from.steps)
      if (cameFrom(spans, source.vertex) == static_cast<std::size_t>(step.vertex)) {
        out[static_cast<std::size_t>(step.root)] = source.root;
        out[static_cast<std::size_t>(step.root) + 1] = source.root + 1;
      }
  return out;
}

void restoreSteps(const SteplessPath& path, double toTheLeft, PathCurve& offset) {
  const auto spans = Matching(path.vertices, toTheLeft).run(verticesOf(offset));
  for (std::size_t n = path.steps.size(); n-- > 0;) {
    const auto& step = path.steps[n];
    const auto k = static_cast<std::ptrdiff_t>(cameFrom(spans, step.vertex));
    if (k == 0) continue;
    const AcGePoint2d root = offset.vertices[static_cast<std::size_t>(k)];
    const AcGePoint2d added[] = {root, root + step.way};
    offset.vertices.insert(offset.vertices.begin() + k, std::begin(added), std::end(added));
    offset.bulges.insert(offset.bulges.begin() + k, 2, kMarkedBulge);
  }
}

}  // namespace tarnex
