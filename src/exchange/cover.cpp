// Whether every stretch of the contour that the wire can reach has the wire beside it: finds what was left
// out. Knows one path and its outline.
#include "exchange/outline.h"

namespace tarnex::truth {

namespace {

constexpr double kClear = 1e-6;   // mm; a wire that overlaps a contour by less fits
constexpr double kFinest = 0.01;  // mm; stretches are told apart down to this length
constexpr double kToldAlready =
    1.5;  // times a deviation that was told: by so much the wire may be off here unsaid
constexpr int kTurnSamples = 32;
constexpr double kLongestTip =
    20;  // compensations from an outer corner to where the wire's turn about it may reach
constexpr int kDeepest = 12;

enum class Cover { kWire, kNoRoom, kMissing };

// A place on the contour: span and part of it.
struct Sample {
  std::size_t span = 0;
  double t = 0;
  Cover cover = Cover::kWire;
  std::size_t wire = 0;  // kWire: the stroke beside it
};

class Sweep {
 public:
  Sweep(Measuring& m, const Nearby& wire, const std::vector<double>& allowed)
      : m_(m), o_(m.outline), wire_(wire), allowed_(allowed) {}

  std::vector<Sample> run() {
    for (std::size_t i = 0; i < o_.count(); ++i) {
      const Stroke& s = o_.span(i);
      const double length = lengthOf(s);
      int parts = length > 4 * o_.compensation ? 2 : 1;
      if (s.arc) parts = std::max(parts, 1 + static_cast<int>(std::abs(s.sweep) / 1.6));
      Sample left = sample(i, 0);
      samples_.push_back(left);
      for (int k = 0; k < parts; ++k) {
        const Sample right = sample(i, double(k + 1) / parts);
        split(left, right, length, 0);
        samples_.push_back(right);
        left = right;
      }
    }
    return std::move(samples_);
  }
  // From the contour to the wire, unit.
  [[nodiscard]] Vec normal(const Sample& s) const {
    const Vec h = heading(o_.span(s.span), s.t);
    return Vec{-h.y, h.x} * m_.wireSide;
  }
  // Where the wire's centre would be, touching the contour there.
  [[nodiscard]] Point touching(std::size_t span, double t) const {
    return at(o_.span(span), t) + normal({span, t, Cover::kWire, 0}) * o_.compensation;
  }
  // The wire fits at w, and w isn't cut off by the drawn-out turn about an outer corner.
  [[nodiscard]] bool room(Point w) const {
    if (o_.spans.nearestTo(w).foot.distance < o_.compensation - kClear) return false;
    bool free = true;
    o_.spans.within(boxOf(w), kLongestTip * o_.compensation, [&](std::size_t i) {
      if (free && nearest(o_.span(i), w).t >= 1) free = !behindCorner(w, o_.meeting(i, true));
    });
    return free;
  }
  [[nodiscard]] Sample sample(std::size_t span, double t) const {
    const Point w = touching(span, t);
    const auto hit = wire_.nearestTo(w);
    if (hit.foot.distance <= allowed_[hit.stroke] + kClear) return {span, t, Cover::kWire, hit.stroke};
    return {span, t, room(w) ? Cover::kMissing : Cover::kNoRoom, 0};
  }
  // The wire can turn about the corner between two places on either side of it, closely and drawn out alike.
  [[nodiscard]] bool turns(const Sample& a, const Sample& b) const {
    const Point v = at(o_.span(a.span), a.t), from = touching(a.span, a.t), to = touching(b.span, b.t);
    const Vec na = normal(a), nb = normal(b);
    auto free = [&](const Stroke& way) {
      bool clear = true;
      o_.spans.within(boxOf(way), o_.compensation, [&](std::size_t i) {
        const bool own = i == a.span || i == b.span;
        clear = clear && (own || closest(way, o_.span(i)).distance >= o_.compensation - kClear);
      });
      return clear;
    };
    if (!free(arcStroke(v, from, std::atan2(cross(na, nb), dot(na, nb))))) return false;
    const double meet = 1 + dot(na, nb);  // 0: drawn out, the two run apart
    if (meet < 1e-6) return true;
    const Point tip = v + (na + nb) * (o_.compensation / meet);
    const Stroke out = lineStroke(from, tip), back = lineStroke(tip, to);
    if (!free(out) || !free(back)) return false;
    for (int k = 1; k < kTurnSamples; ++k)  // other corners' turns may cut it off too
      if (!room(at(out, double(k) / kTurnSamples)) || !room(at(back, double(k) / kTurnSamples))) return false;
    return true;
  }
  [[nodiscard]] bool wirePasses(Point w) const {
    const auto hit = wire_.nearestTo(w);
    return hit.foot.distance <= 2 * allowed_[hit.stroke] + kClear;
  }

 private:
  // Nearest to the corner itself on both its spans, and within the offsets of both drawn out to where they
  // meet.
  [[nodiscard]] bool behindCorner(Point w, std::pair<std::size_t, std::size_t> corner) const {
    const Stroke &a = o_.span(corner.first), &b = o_.span(corner.second);
    if (corner.first == corner.second || nearest(a, w).t < 1 || nearest(b, w).t > 0) return false;
    return std::max(m_.wireSide * beside(a, w), m_.wireSide * beside(b, w)) < o_.compensation - kClear;
  }
  // Puts the samples between left and right in order, finer where the answer changes.
  void split(const Sample& left, const Sample& right, double length, int depth) {
    const Sample middle = sample(left.span, (left.t + right.t) / 2);
    const bool same = left.cover == middle.cover && middle.cover == right.cover;
    const bool one = left.wire == middle.wire && middle.wire == right.wire;
    const bool fine = (right.t - left.t) * length <= kFinest || depth >= kDeepest;
    const bool more = !fine && (!same || (left.cover == Cover::kWire && !one));
    if (more) split(left, middle, length, depth + 1);
    samples_.push_back(middle);
    if (more) split(middle, right, length, depth + 1);
  }

  Measuring& m_;
  const Outline& o_;
  const Nearby& wire_;
  const std::vector<double>& allowed_;
  std::vector<Sample> samples_;
};

// A stretch of samples without wire, though there is room: [first, last] in the list, round the end when
// wrapped.
struct Stretch {
  std::size_t first = 0, last = 0;
  double length = 0;  // mm
};

class Judge {
 public:
  Judge(Measuring& m, const Sweep& sweep, std::vector<Sample> samples)
      : m_(m), sweep_(sweep), samples_(std::move(samples)) {}

  void run(double slack) {
    std::vector<Stretch> missing, apart;
    for (const Stretch& s : stretches()) {
      if (s.length <= slack) continue;
      const bool wireCouldGoOn = s.length > 0.999 * m_.outline.perimeter || meets(s.first, before(s.first)) ||
                                 meets(s.last, after(s.last));
      (wireCouldGoOn ? missing : apart).push_back(s);
      (wireCouldGoOn ? m_.report.uncovered : m_.report.unreachable) += s.length;
    }
    tell(missing, Grade::kFault, "no wire runs beside it though a wire could");
    tell(apart, Grade::kNote, "a wire would fit beside it, but can't come there from where the path runs");
  }

 private:
  using Index = std::optional<std::size_t>;
  [[nodiscard]] Index before(std::size_t i) const {
    if (i > 0) return i - 1;
    return m_.outline.closed ? Index(samples_.size() - 1) : std::nullopt;
  }
  [[nodiscard]] Index after(std::size_t i) const {
    if (i + 1 < samples_.size()) return i + 1;
    return m_.outline.closed ? Index(0) : std::nullopt;
  }
  [[nodiscard]] std::vector<Stretch> stretches() const {
    std::vector<Stretch> out;
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      if (samples_[i].cover != Cover::kMissing) continue;
      if (out.empty() || i == 0 || samples_[i - 1].cover != Cover::kMissing) {
        out.push_back({i, i, 0});
      } else {
        const Sample &a = samples_[i - 1], &b = samples_[i];
        out.back().last = i;
        if (a.span == b.span) out.back().length += (b.t - a.t) * lengthOf(m_.outline.span(a.span));
      }
    }
    const bool wraps = m_.outline.closed && out.size() > 1 && out.front().first == 0 &&
                       out.back().last + 1 == samples_.size();
    if (wraps) {
      out.back().last = out.front().last;
      out.back().length += out.front().length;
      out.erase(out.begin());
    }
    return out;
  }
  // The wire runs through the place where the stretch begins, so it could have gone on into it. `edge` is the
  // stretch's last sample, `beyond` the one outside it.
  [[nodiscard]] bool meets(std::size_t edge, Index beyond) const {
    const Sample& in = samples_[edge];
    if (!beyond) return sweep_.wirePasses(sweep_.touching(in.span, in.t));
    const Sample& out = samples_[*beyond];
    if (out.cover == Cover::kWire) return out.span == in.span || sweep_.turns(out, in);
    double t = in.t;
    if (out.span == in.span)
      for (double bad = out.t; std::abs(bad - t) * lengthOf(m_.outline.span(in.span)) > kClear / 2;) {
        const double middle = (t + bad) / 2;
        if (middle == t || middle == bad) break;
        (sweep_.room(sweep_.touching(in.span, middle)) ? t : bad) = middle;
      }
    return sweep_.wirePasses(sweep_.touching(in.span, t));
  }
  // The longest stretch, and how many more there are.
  void tell(const std::vector<Stretch>& all, Grade grade, const char* what) {
    if (all.empty()) return;
    const Stretch& s = *std::max_element(
        all.begin(), all.end(), [](const Stretch& a, const Stretch& b) { return a.length < b.length; });
    const Sample &f = samples_[s.first], &l = samples_[s.last];
    const Point a = at(m_.outline.span(f.span), f.t), b = at(m_.outline.span(l.span), l.t);
    const std::string others =
        all.size() < 2 ? std::string() : formatted("; so with %zu shorter stretches", all.size() - 1);
    auto text = formatted("figure %d: %.4f mm of its contour from (%.4f, %.4f) to (%.4f, %.4f): %s%s",
                          m_.figure.number, s.length, a.x, a.y, b.x, b.y, what, others.c_str());
    // The block that is nearest: where to look in the program.
    const Step* near = &m_.path.steps.front();
    for (const Step& step : m_.path.steps)
      if (dist(step.stroke.end, a) < dist(near->stroke.end, a)) near = &step;
    if (grade == Grade::kFault)
      m_.findings.fault(FindingKind::kUncovered, m_.at(*near, a), std::move(text));
    else
      m_.findings.note(FindingKind::kUncovered, m_.at(*near, a), std::move(text));
  }

  Measuring& m_;
  const Sweep& sweep_;
  std::vector<Sample> samples_;
};

}  // namespace

namespace {
// Cuts, and a lead-in or return that runs beside the contour itself, as where T lies on the wire's way.
bool runsBeside(const Measuring& m, const Step& s) {
  if (s.role == Role::kSpike || s.role == Role::kTangent || lengthOf(s.stroke) == 0) return false;
  if (s.role != Role::kLead && s.role != Role::kReturn) return true;
  for (const double t : {0.0, 0.5, 1.0})
    if (std::abs(m.outline.spans.nearestTo(at(s.stroke, t)).foot.distance - m.outline.compensation) >
        s.allowed())
      return false;
  return true;
}
}  // namespace

void measureCover(Measuring& m) {
  std::vector<Stroke> strokes;
  std::vector<double> allowed;
  for (const Step& s : m.path.steps) {
    if (!runsBeside(m, s)) continue;
    strokes.push_back(s.stroke);
    allowed.push_back(kAllowance + s.spread + kToldAlready * m.told);
  }
  if (strokes.empty()) return;
  const Nearby wire(std::move(strokes));
  Sweep sweep(m, wire, allowed);
  auto samples = sweep.run();
  Judge(m, sweep, std::move(samples))
      .run(2 * (kAllowance + m.path.rounding + kToldAlready * m.told) + kFinest);
}

}  // namespace tarnex::truth
