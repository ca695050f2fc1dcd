// Blocks of a pass that don't run along its contour: what they come to, and where the program is picked up
// again. Knows one figure.
#include "exchange/figureiso.h"
#include "host/platform/format.h"

namespace tarnex::truth {

namespace {

constexpr std::size_t kLookAhead = 4;   // spans that a program which has left some out is picked up again in
constexpr double kSurelyTheSame = 0.5;  // mm; shorter moves may be the same by chance

}  // namespace

// An incremental block that moves as the first span of the due pass does.
bool IsoFigureRun::movesAsDue(const IsoMove& m) const {
  if (next_ >= plan_.size() || m.state->compensation == 0) return false;
  const Vec way = m.stroke.end - m.stroke.start;
  const auto same = [&](double s, int dir) {
    const auto due = rail_.ahead(s, dir);
    if (!due) return false;
    const Vec wanted = rail_.pointAt(due->end) - rail_.pointAt(s);
    return (way - wanted).length() <= 2 * job_.base && wanted.length() > kSurelyTheSame;
  };
  return same(plan_[next_].from, 1) || same(plan_[next_].to, -1);
}

// A pass whose first block begins where no pass does: told, and judged as if it began at the nearer end of
// what is due.
bool IsoFigureRun::beginElsewhere(const IsoMove& m) {
  const IsoPiece& due = plan_[next_];
  const Point ends[] = {rail_.pointAt(due.from), rail_.pointAt(due.to)};
  const Point stands = ideal_, entry = rail_.span(0).start;
  const Vec drift = drift_;
  const Point first = dist(ends[0], stands) <= dist(ends[1], stands) ? ends[0] : ends[1];
  for (const Point end : {first, first == ends[0] ? ends[1] : ends[0]}) {
    relocate(end);
    feature_ = end == entry                      ? Feature::kEntry
               : figure_.kind == IsoKind::kOuter ? Feature::kBreak
                                                 : Feature::kEnd;
    ran_ = active_ = surplus_ = faulty_ = halfRelieved_ = false;
    overcut_ = 0;
    told_ = 0;
    landingCompensation_ = m.state->compensation;
    where_ = Where::kOn;
    if (begin(m)) {
      job_.findings.fault(
          IsoFault::kUncut, {figure_.number, m.line, stands},
          formatted("%s begins at %s, %.4f mm from %s, where it is to begin", piece_.name.c_str(),
                    placeText(stands).c_str(), dist(stands, end), placeText(end).c_str()));
      return true;
    }
  }
  ideal_ = stands;
  drift_ = drift;
  where_ = Where::kOff;
  feature_ = Feature::kNone;
  return false;
}

// A corner's relief: an arc from the span ahead of the corner to it, out into the part, and on to the span
// behind it.
bool IsoFigureRun::relief(const IsoMove& m) {
  if (job_.expected.reliefStraight <= 0 && job_.expected.reliefArc <= 0) return false;
  const Stroke arc = idealOf(m);
  if (!arc.arc || !m.fault.empty() || surplus_ || !active_ || figure_.kind == IsoKind::kOpen) return false;
  const double slack = radiusRounding(job_.dialect.unit);
  if (std::abs(arc.radius - job_.expected.reliefStraight) > slack &&
      std::abs(arc.radius - job_.expected.reliefArc) > slack)
    return false;
  const bool waste = figure_.kind == IsoKind::kHole;
  if (encloses(figure_.spans, at(arc, 0.5)) == waste) return false;
  const auto run = reliefRun(m, arc);
  if (!run) return false;
  halfRelieved_ = !halfRelieved_;
  if (!halfRelieved_) ++report_.relieved;
  advance(m, *run);
  return true;
}

// Up to the corner, or from it to a place on the next span.
std::optional<RailRun> IsoFigureRun::reliefRun(const IsoMove& m, const Stroke& arc) const {
  const auto ahead = rail_.ahead(s_, dir_);
  if (!ahead) return std::nullopt;
  const Stroke& span = rail_.span(ahead->span);
  if (!halfRelieved_) {
    const double off = dist(arc.end, dir_ > 0 ? span.end : span.start);
    if (off > tolerance(m)) return std::nullopt;
    return RailRun{ahead->span, s_, ahead->end, off, true};
  }
  const Foot foot = nearest(span, arc.end);
  if (foot.distance > tolerance(m)) return std::nullopt;
  const double part = dir_ > 0 ? foot.t : 1 - foot.t;
  return RailRun{ahead->span, s_, s_ + dir_ * part * lengthOf(span), foot.distance, false};
}

void IsoFigureRun::derail(const IsoMove& m) {
  const Stroke ideal = idealOf(m);
  if (derails_++ > 0) {  // twice in a row: this isn't the pass any more
    where_ = Where::kLost;
    if (active_) ++next_;
    ran_ = active_ = false;
    return;
  }
  if (pickUp(m, ideal)) return;
  const auto due = rail_.ahead(s_, dir_);
  const Point meant = due ? rail_.pointAt(due->end) : ideal_;
  if (m.fault.empty())
    tell(IsoFault::kOffContour, m, ideal.end,
         formatted("%s leaves the contour at %s for %s, %.4f mm beside it; it goes on to %s",
                   piece_.name.c_str(), placeText(ideal_).c_str(), placeText(ideal.end).c_str(),
                   rail_.nearestTo(ideal.end).distance, placeText(meant).c_str()));
  faulty_ = true;
  looseWay_ = absolute();
  if (!due) return;
  s_ = due->end;
  arriveAt(m, meant);
  account(m);
}

// The block ends where a later span ends, or moves as that span does: what is between has been left out.
bool IsoFigureRun::pickUp(const IsoMove& m, const Stroke& ideal) {
  for (std::size_t skip = 0; skip < kLookAhead; ++skip) {
    const auto on = rail_.ahead(s_, dir_, skip);
    if (!on) return false;
    const Stroke& span = rail_.span(on->span);
    const Point begin = dir_ > 0 ? span.start : span.end, end = dir_ > 0 ? span.end : span.start;
    const Vec way = ideal.end - ideal.start, spanWay = end - begin;
    const bool here = absolute()
                          ? dist(ideal.end, end) <= tolerance(m)
                          : std::hypot(way.x - spanWay.x, way.y - spanWay.y) <= 2 * job_.base && skip > 0;
    if (!here) continue;
    if (m.fault.empty() && skip == 0)
      tell(IsoFault::kOffContour, m, at(ideal, 0.5),
           formatted("%s runs to %s, but not along the contour: halfway it lies %.4f mm beside it",
                     piece_.name.c_str(), placeText(end).c_str(), rail_.nearestTo(at(ideal, 0.5)).distance));
    if (m.fault.empty() && skip > 0)
      tell(IsoFault::kUncut, m, ideal_,
           formatted("%s jumps from %s to %s and leaves %.4f mm of contour uncut", piece_.name.c_str(),
                     placeText(ideal_).c_str(), placeText(absolute() ? end : begin).c_str(),
                     std::abs(on->end - s_) - (absolute() ? 0 : lengthOf(span))));
    faulty_ = true;
    derails_ = 0;
    s_ = on->end;
    arriveAt(m, end);
    account(m);
    return true;
  }
  return false;
}

}  // namespace tarnex::truth
