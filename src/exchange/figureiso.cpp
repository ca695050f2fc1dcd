// The wire at one figure: what is due, ways to and from the contour, where they land.
// Knows one figure; passes are next door.
#include "exchange/figureiso.h"

#include <algorithm>

#include "host/platform/format.h"

namespace tarnex::truth {

namespace {

constexpr double kWorthNoting = 0.005;  // mm of drift that a shop would see
constexpr int kLeadSamples = 32;
// A lead through the centre of a circle runs along its spans' chords, where inside and outside aren't told
// apart.
const Vec kBesideChords{3.1e-6, 4.7e-6};  // mm

}  // namespace

std::string placeText(Point p) {
  return formatted("(%.4f, %.4f)", p.x, p.y);
}

void IsoFindings::add(IsoFault kind, Grade grade, const Place& where, const std::string& what) {
  (grade == Grade::kFault ? report_.faults : report_.notes)++;
  if (report_.findings.size() >= kFindingsKept) return;
  std::string text;
  if (where.line != 0) text += formatted("line %d: ", where.line);
  if (where.figure != 0) text += formatted("figure %d: ", where.figure);
  report_.findings.push_back({kind, grade, where.figure, where.line, where.at, text + what});
}

IsoFigureRun::IsoFigureRun(const IsoJob& job, const IsoFigure& figure)
    : job_(job), figure_(figure), rail_(figure.spans, figure.kind != IsoKind::kOpen) {
  report_.figure = figure.number;
  judged_ = !figure.fourAxis && figure.refusal.empty() && !figure.spans.empty();
  bySpan_ = std::ranges::any_of(figure.tapers, [](double t) { return t != 0; });
  if (judged_) makePlan();
  report_.expected = static_cast<int>(plan_.size());
}

// ---- what is due

void IsoFigureRun::makePlan() {
  const int later = passesOf(figure_.style) - 1;
  if (figure_.kind == IsoKind::kOuter) {
    break_ = figure_.breakAt ? rail_.nearestTo(*figure_.breakAt).s : 0;
  } else {
    break_ = rail_.length();
  }
  addPieces(later);
}

void IsoFigureRun::addPieces(int later) {
  const double whole = rail_.length();
  const bool outer = figure_.kind == IsoKind::kOuter;
  for (int k = 0; k <= later; ++k)
    plan_.push_back({outer ? IsoPiece::Kind::kMain : IsoPiece::Kind::kWhole, k, formatted("pass %d", k + 1),
                     0, outer ? break_ : whole});
  if (!outer) return;
  int record = later;
  const int asked = figure_.punch ? 0 : job_.dialect.tabRecord;
  if (asked == 0 || later == 0) record = 0;
  if (asked == -1 && later > 0) record = std::min(later + 1, kMostPasses - 1);
  plan_.push_back({IsoPiece::Kind::kTab, record, "the tab's pass", break_, whole});
  if (figure_.punch)
    for (int k = 1; k <= later; ++k)
      plan_.push_back({IsoPiece::Kind::kExtra, k, formatted("the tab's pass %d", k + 1), break_, whole});
}

// ---- places

IsoFindings::Place IsoFigureRun::place(const IsoMove* m, Point at) const {
  return {figure_.number, m ? m->line : report_.lastLine, at};
}

void IsoFigureRun::tell(IsoFault kind, const IsoMove& m, Point where, const std::string& what) {
  faulty_ = true;
  job_.findings.fault(kind, place(&m, where), what);
}

void IsoFigureRun::arrive(Point actual) {
  where_ = Where::kOff;
  ideal_ = figure_.threading;
  displaced_ = drift_ = absolute() ? Vec{0, 0} : actual - ideal_;
  doubt_ = absolute() ? job_.base : 0;
  homeSeen_ = true;
  offSeen_ = true;
  derails_ = 0;
}

// The wire comes to `ideal`; where that is a known place (`exact`) its doubt ends.
void IsoFigureRun::stepTo(const IsoMove& m, Point ideal, bool exact) {
  ideal_ = ideal;
  if (absolute()) {
    doubt_ = job_.base;
    return;
  }
  doubt_ = exact ? 0 : doubt_ + job_.base;
  drift_ = m.stroke.end - ideal;
  const double size = (drift_ - displaced_).length();
  if (size > report_.drift) {
    report_.drift = size;
    driftLine_ = m.line;
  }
}

// The same behind a block that is wrong.
void IsoFigureRun::arriveAt(const IsoMove& m, Point meant) {
  ideal_ = absolute() ? meant : m.stroke.end - drift_;
  relocate(meant);
}

// A fault has brought the wire elsewhere; from here on it is taken to stand at `ideal`.
void IsoFigureRun::relocate(Point ideal) {
  const Vec by = ideal_ - ideal;
  ideal_ = ideal;
  doubt_ = absolute() ? job_.base : 0;
  if (absolute()) return;
  drift_ = drift_ + by;
  displaced_ = drift_;
}

void IsoFigureRun::cut(const IsoMove& m) {
  if (report_.firstLine == 0) report_.firstLine = m.line;
  report_.lastLine = m.line;
  begun_ = true;
  beside_ = false;
  if (where_ == Where::kOn)
    on(m);
  else
    off(m);
}

void IsoFigureRun::rapid(const IsoMove& m) {
  if (where_ == Where::kOn) endRun(&m);
  if (!offSeen_ && m.state->compensation != 0)
    job_.findings.fault(IsoFault::kCompensation, place(&m, ideal_),
                        "the wire moves at rapid speed while compensation is still on");
  offSeen_ = true;
  const Stroke ideal = idealOf(m);
  const double apart = dist(ideal.end, figure_.threading);
  const bool home = apart <= tolerance(m) + job_.base;
  stepTo(m, home ? figure_.threading : ideal.end, home);
  homeSeen_ = true;
  if (home || where_ == Where::kLost) return;
  job_.findings.fault(IsoFault::kConnection, place(&m, ideal_),
                      formatted("the rapid move ends at %s, %.4f mm from the threading point %s",
                                placeText(ideal_).c_str(), apart, placeText(figure_.threading).c_str()));
  relocate(figure_.threading);
}

void IsoFigureRun::leave(const IsoMove* m) {
  if (where_ == Where::kOn) endRun(m);
}

// ---- off the contour

void IsoFigureRun::off(const IsoMove& m) {
  const Stroke ideal = idealOf(m);
  beside_ = true;
  // The end of a contour that is lost is no beginning of a pass.
  if (where_ == Where::kLost && (!absolute() || !offSeen_)) return;
  if (where_ != Where::kLost) {
    if (guideAt_ < figure_.guide.size() && next_ == 0) {
      followGuide(m, ideal);
      return;
    }
    if (!absolute() && movesAsDue(m) && beginElsewhere(m)) return;
    checkLead(m, ideal);
  }
  landing(m);
}

void IsoFigureRun::followGuide(const IsoMove& m, const Stroke& ideal) {
  const Stroke& wanted = figure_.guide[guideAt_++];
  const bool same = dist(ideal.end, wanted.end) <= tolerance(m) &&
                    nearest(wanted, at(ideal, 0.5)).distance <= job_.shape + tolerance(m);
  if (!same && m.fault.empty())
    tell(IsoFault::kGuide, m, ideal.end,
         "the roughing guide goes to " + placeText(wanted.end) + ", the block to " + placeText(ideal.end));
  stepTo(m, wanted.end, true);
}

void IsoFigureRun::landing(const IsoMove& m) {
  const Stroke ideal = idealOf(m);
  const double reach = (absolute() ? 0 : doubt_) + job_.base + m.slack;
  const auto near = [&](Point p) { return dist(ideal.end, p) <= reach; };
  feature_ = Feature::kNone;
  if (near(figure_.threading)) {
    where_ = Where::kOff;
    homeSeen_ = true;
    return stepTo(m, figure_.threading, true);
  }
  const Rail::Place rail = rail_.nearestTo(ideal.end);
  Point land = ideal.end;
  if (near(rail_.span(0).start)) {
    feature_ = Feature::kEntry;
    land = rail_.span(0).start;
  } else if (figure_.kind == IsoKind::kOuter && figure_.breakAt && near(*figure_.breakAt)) {
    feature_ = Feature::kBreak;
    land = *figure_.breakAt;
  } else if (figure_.kind == IsoKind::kOpen && near(rail_.span(rail_.count() - 1).end)) {
    feature_ = Feature::kEnd;
    land = rail_.span(rail_.count() - 1).end;
  } else if (rail.distance > reach || where_ == Where::kLost) {
    return stepTo(m, ideal.end, false);
  }
  where_ = Where::kOn;
  s_ = rail.s;
  ran_ = active_ = surplus_ = faulty_ = halfRelieved_ = false;
  derails_ = 0;
  overcut_ = 0;
  told_ = 0;
  landingCompensation_ = m.state->compensation;
  stepTo(m, land, feature_ != Feature::kNone);
}

// Leads and ways off run on the waste and touch no other contour.
void IsoFigureRun::checkLead(const IsoMove& m, const Stroke& ideal) {
  if (figure_.kind == IsoKind::kOpen || faulty_) return;
  const bool inside = figure_.kind == IsoKind::kHole;
  const double allowed = 2 * (tolerance(m) + job_.base) + kAllowance;
  double deepest = allowed;
  Point where;
  for (int k = 1; k < kLeadSamples; ++k) {
    const Point p = at(ideal, static_cast<double>(k) / kLeadSamples);
    if (encloses(figure_.spans, p + kBesideChords) == inside) continue;
    if (const double depth = rail_.nearestTo(p).distance; depth > deepest) deepest = depth, where = p;
  }
  if (deepest > allowed)
    tell(IsoFault::kLead, m, where,
         formatted("the way to or from the contour cuts %.4f mm into what stays, at ", deepest) +
             placeText(where));
}

void IsoFigureRun::finish() {
  if (report_.drift > kWorthNoting)
    job_.findings.note(IsoFault::kRemark, {figure_.number, driftLine_, figure_.threading},
                       formatted("roundings of its blocks add up to %.4f mm up to here", report_.drift));
  if (!judged_ || finished()) return;
  const Point entry = rail_.span(0).start;
  const IsoFindings::Place where{figure_.number, report_.lastLine, entry};
  if (!begun_) {
    job_.findings.fault(IsoFault::kNotCut, where,
                        "isn't cut; it is threaded at " + placeText(figure_.threading));
    return;
  }
  const IsoPiece& due = plan_[next_];
  if (due.kind == IsoPiece::Kind::kTab)
    job_.findings.fault(
        IsoFault::kTab, where,
        formatted("the tab from %s to %s stays uncut", placeText(rail_.pointAt(due.from)).c_str(),
                  placeText(rail_.pointAt(due.to)).c_str()));
  else
    job_.findings.fault(
        IsoFault::kNotCut, where,
        formatted("%zu of its %zu passes are cut; %s is missing", next_, plan_.size(), due.name.c_str()));
}

}  // namespace tarnex::truth
