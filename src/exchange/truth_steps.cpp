// Steps out from corners and back: those that the path carries, and those of the corner compensation, each
// one that is called for and no other.
// Knows the path as read; tapers and code texts are judged next door.
#include "exchange/truth_reading.h"

namespace tarnex::truth {

namespace {

constexpr double kStraight = 0.001;   // rad from straight on, or from turning right back
constexpr double kSmallArea = 0.001;  // mm² of the triangle that a corner and its two spans enclose
constexpr double kTipSlack = 0.002;   // mm; two counts
constexpr double kListed = 0.001;     // mm; a shorter step is none
constexpr std::size_t kMostTold = 4;  // findings of one path

enum class Call { kNone, kMaybe, kWanted };

struct Compensation {
  Call call = Call::kNone;
  Vec way{0, 0};
  double slack = 0;  // mm that the way may be off
  Compensated compensated = Compensated::kNo;
};

// The step that a corner between two strokes calls for.
Compensation compensationAt(const Step& in, const Step& out, int turn, const Expected& e) {
  Compensation c;
  if (e.dFix <= 0) return c;
  const Vec a = heading(in.stroke, 1), b = heading(out.stroke, 0);
  const double doubt = headingDoubt(in) + headingDoubt(out);
  const double angle = std::atan2(std::abs(cross(a, b)), -dot(a, b));  // between the two spans
  const double straight = std::acos(-1.0) - angle;
  if (straight <= kStraight - doubt || angle <= kStraight - doubt) return c;
  const double side = cross(a, b) * turn;
  if (side < 0 && std::abs(side) > doubt) return c;
  const double half = std::max(angle / 2, 1e-6);
  const double length = e.dFix / std::sin(half) - e.dFix;
  c.way = unit(a - b) * length;
  const double lengthDoubt =
      1e-6 + doubt * (length + e.dFix * std::cos(half) / (2 * std::sin(half) * std::sin(half)));
  c.slack = kTipSlack + lengthDoubt;
  c.compensated = length > kListed + lengthDoubt   ? Compensated::kYes
                  : length > kListed - lengthDoubt ? Compensated::kMaybe
                                                   : Compensated::kNo;
  auto reach = [](const Step& s) { return s.stroke.arc ? s.stroke.radius : lengthOf(s.stroke); };
  const double area = 0.5 * reach(in) * reach(out) * std::sin(angle);
  const double areaDoubt = 0.003 * (reach(in) + reach(out)) + 1e-6;
  if (area < kSmallArea - areaDoubt || length < e.minStep - lengthDoubt) return c;
  const bool sure = length > e.minStep + lengthDoubt && straight > kStraight + doubt &&
                    angle > kStraight + doubt && side > doubt && area > kSmallArea + areaDoubt;
  c.call = sure ? Call::kWanted : Call::kMaybe;
  return c;
}

class Steps {
 public:
  Steps(Measuring& m, const PathReading& reading) : m_(m), r_(reading) {}

  CornerSteps run() {
    CornerSteps out;
    for (std::size_t k = 0; k < r_.cuts.size(); ++k) out.behind.push_back(corner(k));
    for (; next_ < r_.excursions.size(); ++next_) tellExtra(r_.excursions[next_]);
    if (told_ > kMostTold)
      m_.findings.fault(
          FindingKind::kStep, m_.at(m_.path.steps.front(), m_.path.start()),
          formatted("figure %d: %zu more steps at corners are wrong", m_.figure.number, told_ - kMostTold));
    return out;
  }

 private:
  Compensated corner(std::size_t k) {
    const Step& in = m_.path.steps[r_.cuts[k].step];
    const auto v = r_.behind(k, m_.outline);
    bool own = false;
    for (const auto& step : m_.figure.marks->steps) {
      const auto at = static_cast<std::size_t>(std::max(step.vertex, 0));
      if (at < v.first || at > v.last) continue;
      if (v.first != v.last) {
        m_.findings.note(
            FindingKind::kStep, m_.at(in, in.stroke.end),
            formatted("figure %d: the step at vertex %d isn't cut: the wire doesn't come to that "
                      "corner",
                      m_.figure.number, step.vertex));
        continue;
      }
      own = true;
      judge(k, ownStep(step));
    }
    Compensation c;
    const std::optional<std::size_t> out = k + 1 < r_.cuts.size() ? r_.cuts[k + 1].step : r_.runOn;
    if (!own && out) c = compensationAt(in, m_.path.steps[*out], m_.wireSide, m_.expected);
    if (in.pauses > 0 && c.call == Call::kWanted && !m_.expected.relieved) {
      c.call = Call::kMaybe;
      if (!there(k))
        m_.findings.note(
            FindingKind::kStep, m_.at(in, in.stroke.end),
            formatted("block %lld: the corner (%.4f, %.4f) isn't compensated: the pause before "
                      "the end stands there",
                      static_cast<long long>(in.line->number), in.stroke.end.x, in.stroke.end.y));
    }
    judge(k, c);
    while (there(k)) tellExtra(r_.excursions[next_++]);
    return own ? Compensated::kNo : c.compensated;
  }
  [[nodiscard]] Compensation ownStep(const PathMarks::Step& step) const {
    const double length = step.way.length();
    Compensation c{Call::kWanted, step.way, kTipSlack, Compensated::kNo};
    if (std::abs(length - m_.expected.minStep) <= kTipSlack / 4) c.call = Call::kMaybe;
    if (length < m_.expected.minStep - kTipSlack / 4) c.call = Call::kNone;
    return c;
  }
  [[nodiscard]] bool there(std::size_t k) const {
    return next_ < r_.excursions.size() && r_.excursions[next_].cut == k;
  }
  void judge(std::size_t k, const Compensation& c) {
    if (c.call == Call::kNone) return;
    if (there(k)) {
      const Step& out = m_.path.steps[r_.excursions[next_].step];
      const Vec way = out.stroke.end - out.stroke.start;
      if ((way - c.way).length() <= c.slack) {
        ++next_;
        return;
      }
      if (c.call == Call::kMaybe) return;
      ++next_;
      tell(out, formatted(
                    "block %lld: the step at the corner (%.4f, %.4f) goes (%.4f, %.4f) out, not (%.4f, %.4f)",
                    static_cast<long long>(out.line->number), out.stroke.start.x, out.stroke.start.y, way.x,
                    way.y, c.way.x, c.way.y));
      return;
    }
    if (c.call == Call::kMaybe) return;
    const Step& in = m_.path.steps[r_.cuts[k].step];
    tell(in,
         formatted("block %lld: behind it at the corner (%.4f, %.4f) of figure %d a step of %.4f mm out and "
                   "back is missing",
                   static_cast<long long>(in.line->number), in.stroke.end.x, in.stroke.end.y,
                   m_.figure.number, c.way.length()));
  }
  void tellExtra(const Excursion& e) {
    const Step& out = m_.path.steps[e.step];
    tell(out, formatted("block %lld: a step of %.4f mm out to (%.4f, %.4f) and back that no option explains",
                        static_cast<long long>(out.line->number), lengthOf(out.stroke), out.stroke.end.x,
                        out.stroke.end.y));
  }
  void tell(const Step& s, std::string text) {
    if (++told_ <= kMostTold) m_.findings.fault(FindingKind::kStep, m_.at(s, s.stroke.end), std::move(text));
  }

  Measuring& m_;
  const PathReading& r_;
  std::size_t next_ = 0;  // of the excursions, not yet explained
  std::size_t told_ = 0;
};

}  // namespace

CornerSteps judgeSteps(Measuring& m, const PathReading& reading) {
  return Steps(m, reading).run();
}

}  // namespace tarnex::truth
