// How far the wire runs from the contour: too near, too far, on the wrong side, the wrong way round, not
// closed. Knows one path and its outline.
#include "exchange/outline.h"

namespace tarnex::truth {

namespace {

constexpr int kDeepest = 10;  // halvings of one step in search of a place that is too far
constexpr double kTip = 4;  // compensations from a corner to the tip of the wire's turn about it; corners of
                            // longer tips (below 29 degrees) are sought beside the steps that meet there
constexpr double kOpenEnd = 5;  // compensations that a wire may run past the end of an open contour: its
                                // lead-in meets the drawn-out offset at 11 degrees then

constexpr double kSameHeading = 0.999;  // least cosine between two ways along the same line
constexpr double kNoRepeat =
    50;  // of the perimeter: a smaller part may be run twice where the wire just fits

long long number(const Step& s) {
  return static_cast<long long>(s.line->number);
}

bool measured(Role r) {
  return r == Role::kCut;
}

const char* roleName(Role r) {
  return r == Role::kLead ? "the lead-in" : r == Role::kReturn ? "the return" : "the wire";
}

const Step& longestCut(const WirePath& path) {
  const Step* best = &path.steps.front();
  double most = -1;
  for (const Step& s : path.steps) {
    const double l = measured(s.role) ? lengthOf(s.stroke) : 0;
    if (l > most) most = l, best = &s;
  }
  return *best;
}

// The largest of a value over a path; the first step that is beyond what is allowed, and the worst of those
// steps.
struct Tally {
  struct Met {
    const Step* step = nullptr;
    Point at;
    double value = 0;
  };
  Worst worst;
  Met first, most;
  std::size_t steps = 0;
  void take(const Step& s, Point p, double value, double allowed) {
    if (value > worst.value || worst.block == 0) worst = {value, p, s.line->number};
    if (value <= allowed) return;
    if (!first.step) first = {&s, p, value};
    if (first.step == &s && value > first.value) first = {&s, p, value};
    if (&s != last_) ++steps, last_ = &s;
    if (value > most.value) most = {&s, p, value};
  }
  // " ; N blocks in all, ..." for the end of a sentence about the first.
  [[nodiscard]] std::string more() const {
    if (steps < 2) return "";
    return formatted("; so do %zu more blocks, at worst block %lld by %.4f mm at (%.4f, %.4f)", steps - 1,
                     number(*most.step), most.value, most.at.x, most.at.y);
  }

 private:
  const Step* last_ = nullptr;
};

// Runs out the excess of one path. A point may be farther than the compensation only where its nearest
// contour point is an outer corner and it lies on neither neighbour's far side: on the neighbours' offsets
// drawn out to where they meet.
class Reach {
 public:
  explicit Reach(Measuring& m) : m_(m), o_(m.outline), c_(m.outline.compensation) {}

  Tally run() {
    for (const Step& s : m_.path.steps) {
      if (!measured(s.role)) continue;
      const int parts =
          s.stroke.arc ? 1 + static_cast<int>(std::min(std::abs(s.stroke.sweep) / 1.6, 4.0)) : 1;
      for (int i = 0; i < parts; ++i) search(s, double(i) / parts, double(i + 1) / parts, 0);
    }
    return tally_;
  }

 private:
  // Excess at p, and the two spans that meet at the corner by which it was excused.
  struct Excess {
    double value = 0;
    std::pair<std::size_t, std::size_t> corner;
  };
  [[nodiscard]] double beyondCorner(Point p, std::pair<std::size_t, std::size_t> corner) const {
    const auto [a, b] = corner;
    return std::max(m_.wireSide * beside(o_.span(a), p), m_.wireSide * beside(o_.span(b), p)) - c_;
  }
  [[nodiscard]] Excess excessAt(const Step& step, Point p) const {
    const double allowed = step.allowedAway();
    const auto hit = o_.spans.nearestTo(p);
    const double plain = hit.foot.distance - c_;
    Excess best{plain, o_.meeting(hit.stroke, hit.foot.t > 0.5)};
    auto excuse = [&](std::size_t i, bool atEnd) {
      const auto corner = o_.meeting(i, atEnd);
      const Point v = atEnd ? o_.span(i).end : o_.span(i).start;
      if (corner.first == corner.second && dist(v, p) > kOpenEnd * c_) return;
      const double e = beyondCorner(p, corner);
      if (e < best.value) best = {e, corner};
    };
    if (plain <= 0) return best;
    if (hit.foot.t <= 0 || hit.foot.t >= 1) excuse(hit.stroke, hit.foot.t >= 1);
    if (best.value <= allowed) return best;
    // Between two walls the tip at a corner of one may be nearer to the other.
    Excess found = best;
    auto excuseEnd = [&](std::size_t i, bool atEnd) {
      if (found.value <= allowed) return;
      best = {plain, {i, i}};
      excuse(i, atEnd);
      if (best.value < found.value && std::abs(best.value) <= allowed) found = best;
    };
    o_.spans.within(boxOf(p), kTip * c_, [&](std::size_t i) {
      const Foot f = nearest(o_.span(i), p);
      if (f.t <= 0 || f.t >= 1) excuseEnd(i, f.t >= 1);
    });
    for (const std::size_t i : besides(step)) excuseEnd(i, true), excuseEnd(i, false);
    return found;
  }
  // Spans beside which the step and its neighbours run: a long tip belongs to one of their corners.
  [[nodiscard]] std::vector<std::size_t> besides(const Step& step) const {
    std::vector<std::size_t> out;
    const auto& steps = m_.path.steps;
    const auto here = static_cast<std::size_t>(&step - steps.data());
    for (std::size_t k = here > 0 ? here - 1 : 0; k < std::min(here + 2, steps.size()); ++k)
      for (const double t : {0.0, 0.1, 0.5, 0.9, 1.0})
        out.push_back(o_.spans.nearestTo(at(steps[k].stroke, t)).stroke);
    return out;
  }
  bool passes(const Step& s, double t) {
    const Point p = at(s.stroke, t);
    const double e = excessAt(s, p).value;
    tally_.take(s, p, e, s.allowedAway());
    return e <= s.allowedAway();
  }
  // All of the step between t0 and t1 is near enough to what lies beside its middle.
  [[nodiscard]] bool sure(const Step& s, double t0, double t1) const {
    const Point middle = at(s.stroke, (t0 + t1) / 2);
    const Stroke& span = o_.span(o_.spans.nearestTo(middle).stroke);
    const double most = c_ + s.allowedAway();
    auto beyond = [&](const Stroke& e) { return farthestBeside(s.stroke, t0, t1, e, m_.wireSide) > most; };
    const Foot f0 = nearest(span, at(s.stroke, t0)), f1 = nearest(span, at(s.stroke, t1));
    if (f0.distance <= most && f1.distance <= most && !beyond(span)) return true;
    const auto [a, b] = excessAt(s, middle).corner;
    return !beyond(o_.span(a)) && !beyond(o_.span(b));
  }
  void search(const Step& s, double t0, double t1, int depth) {
    const double tm = (t0 + t1) / 2;
    const bool ends = depth > 0 || (passes(s, t0) & passes(s, t1));
    if (!passes(s, tm) || !ends || depth == kDeepest) return;
    if ((t1 - t0) * lengthOf(s.stroke) <= 2 * s.allowedAway()) return;
    if (sure(s, t0, t1)) return;
    search(s, t0, tm, depth + 1), search(s, tm, t1, depth + 1);
  }

  Measuring& m_;
  const Outline& o_;
  double c_;
  Tally tally_;
};

Closest nearestApproach(const Outline& o, const Stroke& s) {
  Closest best{1e300, s.start};
  o.spans.within(boxOf(s), o.compensation, [&](std::size_t i) {
    const Closest c = closest(s, o.span(i));
    if (c.distance < best.distance) best = c;
  });
  return best;
}

// A lead-in or return that crosses the contour: the two are told from each other, and from a mere scrape.
bool tellCrossing(Measuring& m, const Step& s, const Closest& c) {
  if (c.distance > 0 || m.outline.compensation <= s.allowed()) return false;
  m.findings.fault(FindingKind::kLeadIn, m.at(s, c.onFirst),
                   formatted("block %lld: %s crosses its contour at (%.4f, %.4f)", number(s),
                             roleName(s.role), c.onFirst.x, c.onFirst.y));
  return true;
}

Side sideOf(const Outline& o, int wireSide) {
  if (!o.closed) return wireSide > 0 ? Side::kLeft : Side::kRight;
  return wireSide == o.insideIsLeft ? Side::kInside : Side::kOutside;
}

const char* sideName(Side s) {
  constexpr const char* names[] = {"inside", "outside", "left", "right", "either side"};
  return names[static_cast<int>(s)];
}

const char* directionName(Direction d) {
  constexpr const char* names[] = {"counter-clockwise", "clockwise", "along", "against", "either way"};
  return names[static_cast<int>(d)];
}

// Which side the wire runs on, from the middle of its longest cut. Where the compensation is too small to
// tell, a closed contour's threading point decides.
int wireSideOf(const Measuring& m) {
  const Step& s = longestCut(m.path);
  const Point p = at(s.stroke, 0.5);
  if (m.outline.closed) {
    const bool tiny = m.outline.compensation <= s.allowed();
    const bool inside = encloses(m.outline.spans.strokes(), tiny ? m.path.start() : p);
    return inside ? m.outline.insideIsLeft : -m.outline.insideIsLeft;
  }
  return beside(m.outline.span(m.outline.spans.nearestTo(p).stroke), p) >= 0 ? 1 : -1;
}

Direction directionOf(const Measuring& m) {
  if (!m.outline.closed) {
    const Step& s = longestCut(m.path);
    const auto hit = m.outline.spans.nearestTo(at(s.stroke, 0.5));
    const Vec along = heading(m.outline.span(hit.stroke), hit.foot.t);
    return dot(along, heading(s.stroke, 0.5)) >= 0 ? Direction::kAlong : Direction::kAgainst;
  }
  std::vector<Stroke> walk;
  double length = 0;
  for (const Step& s : m.path.steps)
    if (s.role != Role::kLead && s.role != Role::kReturn)
      walk.push_back(s.stroke), length += lengthOf(s.stroke);
  // A wire that only turns about on the spot has no direction that its counts could tell.
  if (std::abs(areaOf(walk)) <= length * (kAllowance + m.path.rounding)) return Direction::kEither;
  return areaOf(walk) >= 0 ? Direction::kCounterClockwise : Direction::kClockwise;
}

void tellTooNear(Measuring& m, const Tally& t) {
  if (!t.first.step) return;
  const double c = m.outline.compensation;
  const auto& [step, p, value] = t.first;
  m.findings.fault(
      FindingKind::kTooNear, m.at(*step, p),
      formatted(
          "block %lld: at (%.4f, %.4f) %s comes to %.4f mm of the contour of figure %d, %.4f mm nearer than "
          "the compensation of %.4f mm; rounding explains %.4f mm%s",
          number(*step), p.x, p.y, roleName(step->role), c - value, m.figure.number, value, c, step->towards,
          t.more().c_str()));
}

void tellTooFar(Measuring& m, const Tally& t) {
  if (!t.first.step) return;
  const auto& [step, p, value] = t.first;
  m.findings.fault(
      FindingKind::kTooFar, m.at(*step, p),
      formatted(
          "block %lld: at (%.4f, %.4f) the wire runs %.4f mm farther from the contour of figure %d than the "
          "compensation of %.4f mm; rounding explains %.4f mm%s",
          number(*step), p.x, p.y, value, m.figure.number, m.outline.compensation, step->away,
          t.more().c_str()));
}

}  // namespace

void findSideAndDirection(Measuring& m) {
  const Step& s = longestCut(m.path);
  const Point p = at(s.stroke, 0.5);
  m.wireSide = wireSideOf(m);
  m.report.side = sideOf(m.outline, m.wireSide);
  m.report.direction = directionOf(m);
  const bool tells = m.outline.closed || m.outline.compensation > s.allowed();
  if (tells && m.wantedSide != Side::kEither && m.report.side != m.wantedSide)
    m.findings.fault(
        FindingKind::kSide, m.at(s, p),
        formatted("block %lld: at (%.4f, %.4f) the wire runs %s of the contour of figure %d, not %s",
                  number(s), p.x, p.y, sideName(m.report.side), m.figure.number, sideName(m.wantedSide)));
  const bool turns = m.report.direction != Direction::kEither && m.figure.direction != Direction::kEither;
  if (turns && m.report.direction != m.figure.direction)
    m.findings.fault(FindingKind::kDirection, m.at(s, p),
                     formatted("block %lld: figure %d is cut %s, not %s", number(s), m.figure.number,
                               directionName(m.report.direction), directionName(m.figure.direction)));
}

// How much nearer the overcut along the tangent comes than the compensation, mm; told, since it cuts into the
// part.
double tangentNears(Measuring& m) {
  double most = 0;
  const Step* worst = nullptr;
  for (const Step& s : m.path.steps) {
    if (s.role != Role::kTangent) continue;
    const double nearer = m.outline.compensation - nearestApproach(m.outline, s.stroke).distance;
    if (nearer > most) most = nearer, worst = &s;
  }
  if (worst && most > worst->allowedTowards())
    m.findings.note(
        FindingKind::kOvercut, m.at(*worst, worst->stroke.end),
        formatted("block %lld: the overcut along the tangent comes %.4f mm nearer to the contour of "
                  "figure %d than the compensation",
                  number(*worst), most, m.figure.number));
  return most;
}

void measureDistances(Measuring& m) {
  const double c = m.outline.compensation;
  const double tangent = tangentNears(m);
  Tally near;
  double cutTooNear = 0;
  for (const Step& s : m.path.steps) {
    if (s.role == Role::kSpike || s.role == Role::kTangent || s.role == Role::kCode) continue;
    const Closest closestHere = nearestApproach(m.outline, s.stroke);
    if (s.role == Role::kReturn && c - closestHere.distance <= tangent + kAllowance) continue;
    if (!measured(s.role) && tellCrossing(m, s, closestHere)) continue;
    near.take(s, closestHere.onFirst, c - closestHere.distance, s.allowedTowards());
    if (measured(s.role) && c - closestHere.distance > s.allowedTowards())
      cutTooNear = std::max(cutTooNear, c - closestHere.distance);
  }
  const Tally far = Reach(m).run();
  m.report.shortfall = near.worst;
  m.report.excess = far.worst;
  const bool farFirst =
      far.first.step && near.first.step && far.first.step < near.first.step;  // in cutting order
  if (farFirst) tellTooFar(m, far);
  tellTooNear(m, near);
  if (!farFirst) tellTooFar(m, far);
  m.told = std::max(cutTooNear, far.most.value);
}

void measureEnds(Measuring& m) {
  if (!m.outline.closed) return;
  const auto& steps = m.path.steps;
  const Step& last = steps.back();
  m.report.closingError = dist(m.path.end(), m.path.start());
  if (m.report.closingError > kAllowance + m.path.rounding) {
    m.findings.fault(
        FindingKind::kClosing, m.at(last, m.path.end()),
        formatted(
            "block %lld: the path of figure %d ends at (%.4f, %.4f), %.4f mm from where it began; rounding "
            "explains %.4f mm",
            number(last), m.figure.number, m.path.end().x, m.path.end().y, m.report.closingError,
            m.path.rounding));
    return;
  }
  if (m.figure.marks) return;  // the overcut is looked at on its own
  if (steps.size() < 3 || m.report.uncovered > 0 || last.role != Role::kReturn) return;
  const Point entry = steps.front().role == Role::kLead ? steps.front().stroke.end : m.path.start();
  const Point exit = last.stroke.start;
  const double past = dist(entry, exit);
  const auto in = m.outline.spans.nearestTo(entry).foot, out = m.outline.spans.nearestTo(exit).foot;
  const double allowed = 2 * kAllowance + m.path.rounding;
  // An entry at an outer corner may be left open: both ends then lie about the same contour point.
  if (past <= m.expected.overcut + allowed || dist(in.point, out.point) <= allowed) return;
  m.findings.fault(
      FindingKind::kUnexplained, m.at(last, exit),
      formatted(
          "block %lld: the wire leaves the contour of figure %d at (%.4f, %.4f), %.4f mm past its entry; "
          "an overcut of %.4f mm was expected",
          number(last), m.figure.number, exit.x, exit.y, past, m.expected.overcut));
}

// Looks at each cut from an earlier one's side. What the overcut runs again is allowed.
void measureRepeats(Measuring& m) {
  std::vector<Stroke> strokes;
  std::vector<const Step*> owners;
  for (const Step& s : m.path.steps)
    if (measured(s.role)) strokes.push_back(s.stroke), owners.push_back(&s);
  const Nearby wire(std::move(strokes));
  constexpr int kSamples = 4;
  double repeated = 0;
  const Step* first = nullptr;
  for (std::size_t i = 1; i < owners.size(); ++i) {
    const Step& s = *owners[i];
    const double reach = kAllowance + m.path.steps.back().before - owners[0]->before;
    const double part = lengthOf(s.stroke) / kSamples;
    if (part <= reach) continue;  // as short as what rounding explains
    for (int k = 0; k < kSamples; ++k) {
      const double t = (k + 0.5) / kSamples;
      const Point p = at(s.stroke, t);
      bool again = false;
      wire.within(boxOf(p), reach, [&](std::size_t j) {
        if (again || j >= i) return;
        const Foot f = nearest(wire.strokes()[j], p);
        again = f.distance <= reach && f.t > 0 && f.t < 1 &&
                dot(heading(wire.strokes()[j], f.t), heading(s.stroke, t)) > kSameHeading;
      });
      if (!again) continue;
      repeated += part;
      if (!first) first = &s;
    }
  }
  if (!first || repeated <= 2 * m.expected.overcut + m.outline.perimeter / kNoRepeat) return;
  m.findings.fault(
      FindingKind::kRepeated, m.at(*first, first->stroke.start),
      formatted("block %lld: from (%.4f, %.4f) on the wire runs %.4f mm along its own way a second time",
                number(*first), first->stroke.start.x, first->stroke.start.y, repeated));
}

}  // namespace tarnex::truth
