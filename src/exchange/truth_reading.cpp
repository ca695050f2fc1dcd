// Steps of a path matched with the spans of its contour, and the end of the contour found.
// Knows no marks' faults.
#include "exchange/truth_reading.h"

namespace tarnex::truth {

namespace {

constexpr double kTwoCounts = 0.003;  // mm; two roundings in x and in y
constexpr double kHeading = 0.002;    // rad; a count over half a millimetre

// A line, or an arc that leaves its chord by less than a count.
bool flat(const Stroke& s) {
  const double length = lengthOf(s);
  return !s.arc || length * length < 8 * s.radius * kAllowance;
}

// The step's own direction is that of the span beside it, as far as counts can tell.
bool sameWay(const Step& s, const Stroke& span) {
  const bool bothFlat = flat(s.stroke) && flat(span);
  if (s.stroke.arc != span.arc && !bothFlat) return false;
  const double slack = kTwoCounts + s.spread;
  if (span.arc && !bothFlat)
    return (s.stroke.sweep > 0) == (span.sweep > 0) && dist(s.stroke.centre, span.centre) <= slack;
  const Vec a = heading(s.stroke, 0.5), b = heading(span, 0.5);
  return dot(a, b) > 0 && std::abs(cross(a, b)) <= kHeading + kTwoCounts / std::max(lengthOf(s.stroke), 1e-6);
}

class Matcher {
 public:
  explicit Matcher(const Measuring& m) : m_(m), o_(m.outline) {}

  // The span that step s runs beside; `from` is the first that comes into question.
  [[nodiscard]] std::size_t match(const Step& s, std::size_t from) const {
    if (const auto corner = turnAbout(s)) return *corner;
    std::optional<std::size_t> best;
    double least = 1e300;
    for (std::size_t i = from; i < o_.count(); ++i) {
      if (!fits(s, i)) continue;
      const double beyond = nearest(o_.span(i), at(s.stroke, 0.5)).distance - o_.compensation;
      if (beyond <= kTwoCounts + s.spread) return i;
      if (beyond < least) least = beyond, best = i;
    }
    if (best) return *best;
    return std::max(from, std::size_t{1}) - 1;  // told elsewhere: the wire runs beside nothing
  }

 private:
  [[nodiscard]] bool fits(const Step& s, std::size_t i) const {
    if (!sameWay(s, o_.span(i))) return false;
    const double slack = 2 * kAllowance + 2 * s.spread;
    for (const double t : {0.0, 0.5, 1.0})
      if (std::abs(m_.wireSide * beside(o_.span(i), at(s.stroke, t)) - o_.compensation) > slack) return false;
    return true;
  }
  // The span in front of the corner about which an arc turns.
  [[nodiscard]] std::optional<std::size_t> turnAbout(const Step& s) const {
    const double slack = kTwoCounts + s.spread;
    if (!s.stroke.arc || std::abs(s.stroke.radius - o_.compensation) > slack) return std::nullopt;
    const auto hit = o_.spans.nearestTo(s.stroke.centre);
    if (hit.foot.distance > slack || (hit.foot.t > 0 && hit.foot.t < 1)) return std::nullopt;
    return o_.meeting(hit.stroke, hit.foot.t >= 1).first;
  }
  const Measuring& m_;
  const Outline& o_;
};

Vec wayOf(const Step& s) {
  return s.stroke.end - s.stroke.start;
}

bool same(Vec a, Vec b, double slack) {
  return std::hypot(a.x - b.x, a.y - b.y) <= slack;
}

}  // namespace

double headingDoubt(const Step& s) {
  const double reach = s.stroke.arc ? std::min(s.stroke.radius, 4 * lengthOf(s.stroke)) : lengthOf(s.stroke);
  return 1e-6 + kAllowance / std::max(reach, 1e-9);
}

PathReading::PathReading(Measuring& m) {
  if (!m.figure.marks) return;
  auto& steps = m.path.steps;
  std::vector<std::size_t> cutting;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (steps[i].role != Role::kCut) continue;
    const bool pair = !cutting.empty() && i + 1 < steps.size() && steps[i + 1].role == Role::kCut &&
                      outAndBack(steps[i], steps[i + 1]);
    if (!pair) {
      cutting.push_back(i);
      continue;
    }
    excursions.push_back({cutting.size() - 1, i});
    steps[i].role = steps[i + 1].role = Role::kSpike;
    ++i;
  }
  findOvercut(m, cutting);
  for (std::size_t i : cutting) cuts.push_back({i, 0});
}

// The end of the program's path is walked from behind, from the threading point: so it is known to a count.
void PathReading::findOvercut(Measuring& m, std::vector<std::size_t>& steps) {
  auto& all = m.path.steps;
  const double length = m.expected.overcut;
  const bool wanted = length > 0 && m.outline.closed && m.wantedSide == Side::kInside && !steps.empty() &&
                      all.front().role == Role::kLead;
  if (!wanted) return;
  const Stroke& first = all[steps.front()].stroke;
  const bool tangent = m.expected.overcutTangent && first.arc;
  const double has = lengthOf(first);
  maybeOvercut = !tangent && std::abs(has - length) <= kTwoCounts;
  if (!tangent && has <= length && !maybeOvercut) return;
  auto aims = [&](std::size_t contourEnd) {
    overcutSlack = kTwoCounts + headingDoubt(all[tangent ? contourEnd : steps.front()]) * length;
    return tangent ? heading(all[contourEnd].stroke, 1) * length : at(first, length / has) - first.start;
  };
  const std::size_t n = steps.size();
  // Out and back along a line looks like an excursion behind the last cut.
  if (!excursions.empty() && excursions.back().cut + 1 == n) {
    const std::size_t out = excursions.back().step;
    const Vec to = aims(steps.back());
    const bool last = out + 2 == all.size() - (all.back().role == Role::kReturn ? 1 : 0);
    if (last && m.expected.overcutMode == 1 && same(wayOf(all[out]), to, overcutSlack)) {
      wantedOvercut = to, runOn = out, back = out + 1;
      all[out].role = all[out + 1].role = tangent ? Role::kTangent : Role::kCut;
      excursions.pop_back();
      return;
    }
  }
  std::size_t end = n;
  if (m.expected.overcutMode == 1 && n > 2) {
    const bool alone = n > 3 && same(wayOf(all[steps[n - 1]]), wayOf(all[steps[n - 2]]) * -1.0, kTwoCounts);
    wantedOvercut = aims(steps[alone ? n - 3 : n - 2]);
    if (same(wayOf(all[steps[n - 1]]), wantedOvercut * -1.0, overcutSlack)) back = steps[--end];
  }
  if (end < 2) return;
  wantedOvercut = aims(steps[end - 2]);
  if (end > 2 && same(wayOf(all[steps[end - 1]]), wantedOvercut, overcutSlack)) {
    runOn = steps[--end];
    if (tangent) all[*runOn].role = Role::kTangent;
    if (tangent && back) all[*back].role = Role::kTangent;
  } else {
    inLine = true;
    if (tangent) wantedOvercut = aims(steps[end - 1]);
  }
  steps.resize(end);
}

void PathReading::matchSpans(const Measuring& m) {
  const Matcher matcher(m);
  std::size_t from = 0;
  for (std::size_t k = 0; k < cuts.size(); ++k) {
    const Step& s = m.path.steps[cuts[k].step];
    const bool split = k > 0 && m.path.steps[cuts[k - 1].step].pauses > 0;
    if (split && matcher.match(s, from - 1) + 1 == from) {
      cuts[k].span = from - 1;
      continue;
    }
    cuts[k].span = matcher.match(s, from);
    from = std::max(from, cuts[k].span + 1);
  }
}

PathReading::Vertices PathReading::behind(std::size_t cut, const Outline& o) const {
  auto figureSpan = [&](std::size_t span) {
    return span < o.figureSpans.size() ? o.figureSpans[span] : span;
  };
  const std::size_t from = figureSpan(cuts[cut].span) + 2;
  if (cut + 1 < cuts.size()) return {from, figureSpan(cuts[cut + 1].span) + 1};
  return {from, figureSpan(o.count() - 1) + 2};
}

}  // namespace tarnex::truth
