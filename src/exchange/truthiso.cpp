// The truth test of ISO programs from text to verdict: which figure the wire is at, the ways between figures,
// the report.
// Knows how visits follow each other; what is cut in one, the figure's run judges.
#include "exchange/truthiso.h"

#include <algorithm>
#include <limits>

#include "exchange/figureiso.h"
#include "exchange/nearby.h"
#include "host/platform/format.h"

namespace tarnex::truth {

namespace {

constexpr double kClearOfEnds = 0.01;    // mm; a move that begins or ends on a contour doesn't cross it there
constexpr double kTouch = 1e-9;          // mm
constexpr std::size_t kLookAhead = 8;    // moves up to a figure's entry point
constexpr std::size_t kHeadBlocks = 60;  // within which the first figure is entered

std::string at(Point p) {
  return formatted("(%.4f, %.4f)", p.x, p.y);
}

// All contours, to be crossed by none but those who cut them.
class Contours {
 public:
  explicit Contours(const std::vector<IsoFigure>& figures) {
    std::vector<Stroke> strokes;
    for (std::size_t f = 0; f < figures.size(); ++f)
      for (const Stroke& s : figures[f].spans) {
        strokes.push_back(s);
        owner_.push_back(f);
      }
    nearby_ = Nearby(std::move(strokes));
  }
  struct Crossing {
    std::size_t figure = 0;
    Point at;
  };
  // Where a move first crosses a contour; `but`: of this figure none counts.
  [[nodiscard]] std::optional<Crossing> crossed(const Stroke& move, std::optional<std::size_t> but) const {
    const double size = lengthOf(move), cut = kClearOfEnds;
    if (size <= 2 * cut || nearby_.empty()) return std::nullopt;
    const Stroke inner = part(move, cut / size, 1 - cut / size);
    std::optional<Crossing> first;
    nearby_.within(boxOf(inner), kTouch, [&](std::size_t k) {
      if (but && owner_[k] == *but) return;
      const Closest c = closest(inner, nearby_.strokes()[k]);
      if (c.distance <= kTouch && (!first || dist(move.start, c.onFirst) < dist(move.start, first->at)))
        first = Crossing{owner_[k], c.onFirst};
    });
    return first;
  }

 private:
  static Stroke part(const Stroke& s, double a, double b) {
    if (!s.arc) return lineStroke(truth::at(s, a), truth::at(s, b));
    return arcStroke(s.centre, truth::at(s, a), s.sweep * (b - a));
  }
  Nearby nearby_;
  std::vector<std::size_t> owner_;
};

class IsoTest {
 public:
  IsoTest(const IsoJob& job, const std::vector<IsoFigure>& figures) : job_(job), contours_(figures) {
    for (const IsoFigure& f : figures) runs_.emplace_back(job, f);
  }

  void run(Point start) {
    here_ = start;
    const auto& moves = job_.walk.moves;
    for (std::size_t k = 0; k < moves.size(); ++k) {
      events(k);
      if (moves[k].rapid)
        rapid(k);
      else
        cut(k);
      here_ = moves[k].stroke.end;
    }
    events(moves.size());
    leave(nullptr);
    for (auto& r : runs_) r.finish();
    tellWire();
  }
  [[nodiscard]] const std::vector<IsoFigureRun>& runs() const { return runs_; }

 private:
  [[nodiscard]] IsoFigureRun* current() { return current_ ? &runs_[*current_] : nullptr; }
  [[nodiscard]] IsoFindings::Place place(const IsoMove& m) {
    return {current_ ? runs_[*current_].figure().number : 0, m.line, m.stroke.end};
  }

  void events(std::size_t before) {
    const auto& events = job_.walk.events;
    for (; event_ < events.size() && events[event_].before <= before; ++event_) {
      const IsoEvent& e = events[event_];
      if (e.kind == IsoEvent::Kind::kCompensationOff && current_) current()->compensationOff();
      if (e.kind == IsoEvent::Kind::kCompensationOff) continue;
      const bool cuts = e.kind == IsoEvent::Kind::kCut;
      if (e.compensation != 0 && (current_ || !cuts))
        job_.findings.fault(IsoFault::kCompensation,
                            {current_ ? current()->figure().number : 0, e.line, here_},
                            cuts ? "the wire is cut while compensation is still on"
                                 : "the wire is threaded while compensation is on");
      if (!cuts) continue;
      if (current_) current()->compensationOff();
    }
  }

  // A program without a word that threads has its wire threaded all along.
  [[nodiscard]] bool threaded(const IsoMove& m) const { return m.state->threaded || !job_.walk.threads; }

  void leave(const IsoMove* m) {
    if (!current_) return;
    current()->leave(m);
    doubt_ = current()->doubt();
    lost_ = current()->lost();
    drift_ = current()->drift();
    current_.reset();
  }

  // ---- between figures
  void rapid(std::size_t k) {
    const IsoMove& m = job_.walk.moves[k];
    const Vec drift = current_ ? current()->drift() : drift_;
    const Stroke way = moved(m.stroke, Vec{0, 0} - drift);
    const double doubt = current_ ? current()->doubt() : doubt_;
    if (threaded(m) && !(current_ && current()->lost()))
      if (const auto c = contours_.crossed(way, std::nullopt))
        job_.findings.fault(IsoFault::kRapid, place(m),
                            formatted("a rapid move with the wire in crosses the contour of figure %d at %s",
                                      runs_[c->figure].figure().number, at(c->at).c_str()));
    const double reach = job_.base + (job_.dialect.absolute ? 0 : doubt);
    if (current_ && threaded(m) && dist(way.end, current()->figure().threading) <= reach) {
      current()->rapid(m);
      return;
    }
    const auto next = figureAt(way.end, reach, k);
    if (!next && current_ && threaded(m)) {
      current()->rapid(m);
      return;
    }
    const auto from = current_;
    leave(&m);
    if (from && next && *next != *from) moved_ = moved_ || threaded(m);
    connect(m, way.end, next, k);
  }

  void connect(const IsoMove& m, Point to, std::optional<std::size_t> next, std::size_t k) {
    const bool back = k + 1 >= job_.walk.moves.size();  // the last move may lead to where the program began
    if (!next && back && nearestThreading(to).second <= job_.base + doubt_) return;
    if (!next && !lost_) {
      const auto [f, apart] = nearestThreading(to);
      job_.findings.fault(IsoFault::kConnection, {0, m.line, to},
                          formatted("the rapid move leads to %s, where no figure is threaded%s",
                                    at(to).c_str(), nearestText(f, apart).c_str()));
    }
    if (!next) next = nearestDue(to);
    if (next) begin(*next, m.stroke.end, m.line);
  }
  std::string nearestText(std::optional<std::size_t> f, double apart) const {
    if (!f) return "";
    return formatted("; the nearest threading point is figure %d's at %s, %.4f mm away",
                     runs_[*f].figure().number, at(runs_[*f].figure().threading).c_str(), apart);
  }

  void begin(std::size_t f, Point actual, int line) {
    current_ = f;
    dryTold_ = false;
    IsoFigureRun& r = runs_[f];
    if (!r.begun() && job_.expected.byNumber) {
      if (r.figure().number < highest_)
        job_.findings.fault(IsoFault::kOrder, {r.figure().number, line, actual},
                            formatted("comes behind figure %d; the job cuts by number", highest_));
      highest_ = std::max(highest_, r.figure().number);
    }
    r.arrive(actual);
  }

  // ---- which figure
  // The figure whose threading point this is; of several the one that the wire goes on to.
  std::optional<std::size_t> figureAt(Point p, double reach, std::size_t k) {
    std::vector<std::size_t> there;
    for (std::size_t f = 0; f < runs_.size(); ++f)
      if (runs_[f].judged() && dist(runs_[f].figure().threading, p) <= reach) there.push_back(f);
    if (there.empty()) return std::nullopt;
    std::ranges::stable_sort(there, {}, [&](std::size_t f) { return runs_[f].finished(); });
    for (std::size_t f : there)
      if (there.size() == 1 || reachesEntry(f, p, k)) return f;
    return there.front();
  }
  // Whether the cutting moves behind move k lead from p to the figure's entry point.
  bool reachesEntry(std::size_t f, Point p, std::size_t k) const {
    const auto& moves = job_.walk.moves;
    if (k >= moves.size()) return false;
    const Vec drift = moves[k].stroke.end - p;
    for (std::size_t j = k + 1; j < std::min(k + kLookAhead, moves.size()) && !moves[j].rapid; ++j)
      if (dist(moves[j].stroke.end - drift, runs_[f].figure().spans.front().start) <=
          job_.base * static_cast<double>(j - k + 1))
        return true;
    return false;
  }
  std::pair<std::optional<std::size_t>, double> nearestThreading(Point p) const {
    std::optional<std::size_t> best;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t f = 0; f < runs_.size(); ++f)
      if (const double d = dist(runs_[f].figure().threading, p); runs_[f].judged() && d < least)
        least = d, best = f;
    return {best, least};
  }
  // Where the program has gone astray: the nearest figure that has passes left.
  std::optional<std::size_t> nearestDue(Point p) const {
    std::optional<std::size_t> best;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t f = 0; f < runs_.size(); ++f)
      if (const double d = dist(runs_[f].figure().threading, p);
          runs_[f].judged() && !runs_[f].finished() && d < least)
        least = d, best = f;
    return best;
  }

  // ---- cutting
  void cut(std::size_t k) {
    const IsoMove& m = job_.walk.moves[k];
    if (!current_) start(k);
    if (!current_) return;
    if (!threaded(m) && !dryTold_) {
      dryTold_ = true;
      job_.findings.fault(IsoFault::kWire, place(m), "the wire isn't threaded where this block cuts");
    }
    if (!m.fault.empty()) job_.findings.fault(IsoFault::kArc, place(m), m.fault);
    const Stroke way = moved(m.stroke, Vec{0, 0} - current()->drift());
    current()->cut(m);
    if (!current()->beside()) return;
    if (const auto c = contours_.crossed(way, current_))
      job_.findings.fault(IsoFault::kLead, place(m),
                          formatted("the way to or from the contour crosses the contour of figure %d at %s",
                                    runs_[c->figure].figure().number, at(c->at).c_str()));
  }
  void start(std::size_t k) {
    const IsoMove& m = job_.walk.moves[k];
    const Point here = here_ - drift_;
    auto f = k == 0 ? startAt(here) : std::nullopt;
    if (!f) {
      const auto [near, apart] = nearestThreading(here);
      f = nearestDue(here);
      if (f)
        job_.findings.fault(IsoFault::kStart, {0, m.line, here},
                            formatted("the wire stands at %s, where no figure is threaded%s",
                                      at(here).c_str(), nearestText(near, apart).c_str()));
    }
    if (f) begin(*f, here_, m.line);
  }
  std::optional<std::size_t> startAt(Point p) {
    std::optional<std::size_t> any;
    for (std::size_t f = 0; f < runs_.size(); ++f) {
      if (!runs_[f].judged() || dist(runs_[f].figure().threading, p) > job_.base) continue;
      if (!any) any = f;
      if (leadsIn(f)) return f;
    }
    return any;
  }
  bool leadsIn(std::size_t f) const {
    const auto& moves = job_.walk.moves;
    for (std::size_t j = 0; j < std::min(kLookAhead, moves.size()) && !moves[j].rapid; ++j)
      if (dist(moves[j].stroke.end, runs_[f].figure().spans.front().start) <=
          job_.base * static_cast<double>(j + 2))
        return true;
    return false;
  }

  void tellWire() {
    if (job_.walk.moves.empty()) return;
    if (!job_.walk.threads && !job_.walk.cuts)
      job_.findings.note(
          IsoFault::kWire, {0, 0, {}},
          formatted("no word of the program threads the wire (%s) or cuts it (%s); it is taken as "
                    "threaded all along",
                    job_.expected.walk.thread.c_str(), job_.expected.walk.cut.c_str()));
    else if (!job_.walk.threads)
      job_.findings.note(
          IsoFault::kWire, {0, 0, {}},
          formatted("no word of the program threads the wire (%s)", job_.expected.walk.thread.c_str()));
    else if (moved_)
      job_.findings.note(IsoFault::kWire, {0, 0, {}},
                         formatted("the wire isn't cut (%s) on every way from figure to figure",
                                   job_.expected.walk.cut.c_str()));
  }

  const IsoJob& job_;
  const Contours contours_;
  std::vector<IsoFigureRun> runs_;
  std::optional<std::size_t> current_;
  std::size_t event_ = 0;
  Point here_;
  Vec drift_{0, 0};
  double doubt_ = 0;
  bool lost_ = false, dryTold_ = false, moved_ = false;
  int highest_ = 0;
};

// Where the wire starts when the program doesn't say: at the first figure whose way in the program begins
// with.
Point startOf(const IsoText& text, const IsoDialect& dialect, const std::vector<IsoFigure>& figures,
              const IsoExpected& expected) {
  IsoText head = text;
  head.blocks.resize(std::min(text.blocks.size(), kHeadBlocks));
  std::optional<Point> first;
  for (const IsoFigure& f : figures) {
    if (f.fourAxis || !f.refusal.empty() || f.spans.empty()) continue;
    if (!first) first = f.threading;
    IsoWalkFrom from = expected.walk;
    from.from = f.threading;
    const IsoWalk walk = walkIso(head, dialect, from);
    if (walk.start) return *walk.start;
    for (std::size_t j = 0; j < std::min(kLookAhead, walk.moves.size()); ++j)
      if (dist(walk.moves[j].stroke.end, f.spans.front().start) <=
          isoTolerance(dialect) * static_cast<double>(j + 2))
        return f.threading;
  }
  return first.value_or(Point{});
}

void tellOfFigures(const IsoJob& job, const std::vector<IsoFigure>& figures) {
  for (const IsoFigure& f : figures) {
    const IsoFindings::Place where{f.number, 0, f.threading};
    const auto note = [&](const std::string& what) { job.findings.note(IsoFault::kRemark, where, what); };
    if (f.fourAxis) note("four axes; it is left out of this test");
    if (!f.refusal.empty()) job.findings.fault(IsoFault::kNotCut, where, f.refusal);
    if (f.ownTaper != 0)
      note(formatted("its own taper of %.4f degrees isn't part of ISO programs, which have the style's",
                     f.ownTaper));
    if (std::ranges::any_of(f.tapers, [](double t) { return t != 0; }) &&
        (f.style.dValueC != 0 || std::ranges::any_of(f.style.passOffset, [](double t) { return t != 0; })))
      note("both its spans and its style have tapers; the taper words aren't judged");
  }
}

}  // namespace

IsoReport checkIso(std::string_view program, const IsoDialect& dialect, const std::vector<IsoFigure>& figures,
                   const IsoExpected& expected) {
  IsoReport report;
  IsoFindings findings(report);
  const IsoText text = readIso(program, dialect);
  const IsoTables tables(text, dialect, findings);
  IsoWalkFrom from = expected.walk;
  from.from = startOf(text, dialect, figures, expected);
  const IsoWalk walk = walkIso(text, dialect, from);
  const double base = isoTolerance(dialect);
  const IsoJob job{dialect, expected, tables, walk, findings, base, base + radiusRounding(dialect.unit)};
  for (const auto* list : {&text.complaints, &walk.complaints})
    for (const IsoComplaint& c : *list)
      findings.fault(c.numbering ? IsoFault::kNumbering : IsoFault::kUnreadable, {0, c.line, {}}, c.text);
  tellOfFigures(job, figures);
  if (!walk.saysOffset && !walk.moves.empty())
    findings.note(IsoFault::kOffset, {},
                  "the program says no offset anywhere; the control's own is in force");
  if (!walk.start && !dialect.spanAhead && !walk.moves.empty())
    findings.note(IsoFault::kStart, {0, 0, from.from},
                  "the program doesn't say where the wire starts; it is taken to start at " + at(from.from));
  IsoTest test(job, figures);
  test.run(walk.start.value_or(from.from));
  for (const auto& r : test.runs()) report.figures.push_back(r.report());
  std::ranges::stable_sort(report.findings, {}, &IsoFinding::line);
  report.lines = text.lines;
  report.moves = walk.moves.size();
  report.worstRadius = walk.worstRadius;
  report.tolerance = base;
  report.ok = report.faults == 0;
  return report;
}

}  // namespace tarnex::truth
