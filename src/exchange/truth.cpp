// The truth test from text to verdict: sections of the program, the figure that each path cuts, measuring,
// verdict. Knows how paths follow each other in a program; measuring is next door.
#include "exchange/truth.h"

#include <map>
#include <utility>

#include "exchange/outline.h"
#include "exchange/plain.h"
#include "exchange/sections.h"

namespace tarnex::truth {

namespace {

constexpr std::size_t kMostSections =
    3;                         // of one path: a pause before its end makes two, a third is forgiven
constexpr double kCell = 1.0;  // mm; threading points nearer than this share a look-up cell or neighbours

// Threading points by place.
class Threading {
 public:
  explicit Threading(const std::vector<Figure>& figures) : figures_(figures) {
    for (std::size_t i = 0; i < figures.size(); ++i)
      if (figures[i].threading) cells_.emplace(cellOf(*figures[i].threading), i);
  }
  // Nearest unused figure whose threading point lies within `reach` mm of p.
  [[nodiscard]] std::optional<std::size_t> at(Point p, double reach, const std::vector<bool>& used) const {
    std::optional<std::size_t> best;
    const auto c = cellOf(p);
    double most = std::min(reach, kCell);
    for (int dx = -1; dx <= 1; ++dx)
      for (int dy = -1; dy <= 1; ++dy) {
        const auto [from, to] = cells_.equal_range({c.first + dx, c.second + dy});
        for (auto it = from; it != to; ++it) {
          const double d = dist(*figures_[it->second].threading, p);
          if (!used[it->second] && d <= most) most = d, best = it->second;
        }
      }
    return best;
  }

 private:
  using Cell = std::pair<std::int64_t, std::int64_t>;
  static Cell cellOf(Point p) {
    auto coordinate = [](double v) {
      return static_cast<std::int64_t>(std::floor(std::clamp(v, -1e12, 1e12) / kCell));
    };
    return {coordinate(p.x), coordinate(p.y)};
  }
  const std::vector<Figure>& figures_;
  std::multimap<Cell, std::size_t> cells_;
};

// Walks a program whose figures have threading points: each path is measured from the threading point where
// it begins.
class ThreadedRun {
 public:
  ThreadedRun(Job& job, const std::vector<Section>& sections)
      : job_(job), sections_(sections), threading_(job.figures), used_(job.figures.size(), false) {
    for (std::size_t i = 0; i < job.figures.size(); ++i)
      if (!job.outlines[i]) used_[i] = true;  // told already
  }

  void run(std::optional<Point> start) {
    here_ = start.value_or(firstThreading());
    walked_ = start_ = here_;
    for (std::size_t i = 0; i < sections_.size();) {
      const auto figure = begins(i);
      i = figure ? cut(*figure, i) : travel(i);
    }
    tellEnd();
    if (!cutAny_) tellLegs(std::nullopt);
    for (std::size_t f = 0; f < used_.size(); ++f)
      if (!used_[f]) job_.tellNotCut(f);
  }

 private:
  [[nodiscard]] Point firstThreading() const {
    for (std::size_t f = 0; f < used_.size(); ++f)
      if (!used_[f]) return *job_.figures[f].threading;
    return {};
  }
  [[nodiscard]] std::optional<std::size_t> expected() {
    while (next_ < used_.size() && used_[next_]) ++next_;
    if (next_ < used_.size()) return next_;
    while (lowest_ < used_.size() && used_[lowest_]) ++lowest_;
    return lowest_ < used_.size() ? std::optional(lowest_) : std::nullopt;
  }
  // A section that may be a path of figure f: a lone line is one for an open figure only.
  [[nodiscard]] bool mayCut(std::size_t i, std::size_t f) const {
    if (sections_[i].moves == 0) return false;
    return !sections_[i].single() || (!job_.outlines[f]->closed && !leadsToAnother(i, here_));
  }
  // A move between paths that has gone wrong: a few lines that lead away, before a path that closes.
  [[nodiscard]] bool brokenMove(std::size_t i) const {
    const Section& s = sections_[i];
    return !s.arcs && s.moves < 3 && !s.closes() && i + 1 < sections_.size() && sections_[i + 1].closes();
  }
  // The figure whose path begins with section i, or nothing for a move between paths.
  std::optional<std::size_t> begins(std::size_t i) {
    const double reach = kAllowance + kHalfMicron + loose_;
    const auto next = expected();
    if (next && dist(*job_.figures[*next].threading, here_) <= reach && mayCut(i, *next)) return next;
    if (const auto other = threading_.at(here_, reach, used_); other && mayCut(i, *other)) return other;
    if (sections_[i].single() || !next || brokenMove(i)) return std::nullopt;
    tellLanding(i, *next);
    walked_ = walked_ + (*job_.figures[*next].threading - here_);
    return next;
  }
  void tellLanding(std::size_t i, std::size_t f) {
    const Point t = *job_.figures[f].threading;
    const char* what = cutAny_ ? "the move before it leads to" : "the program starts at";
    job_.findings.fault(
        cutAny_ ? FindingKind::kLink : FindingKind::kStart,
        {job_.figures[f].number, sections_[i].first, here_},
        formatted("block %lld: figure %d: %s (%.4f, %.4f), %.4f mm from the threading point (%.4f, %.4f)",
                  sections_[i].number(), job_.figures[f].number, what, here_.x, here_.y, dist(here_, t), t.x,
                  t.y));
  }
  [[nodiscard]] bool leadsToAnother(std::size_t section, Point from) const {
    const Section& s = sections_[section];
    if (s.moves != 1 || s.arcs) return false;
    const Point to = from + s.way;
    const double reach = 2 * kAllowance + s.rounding + s.loose;
    if (threading_.at(to, reach, used_)) return true;
    const auto& ends = job_.expected.endPoints;
    return !ends.empty() && dist(ends.front(), to) <= reach;
  }
  // One past the last section of the path of figure f that begins with section i.
  [[nodiscard]] std::size_t pathEnd(std::size_t f, std::size_t i) const {
    if (!job_.outlines[f]->closed) return i + 1;
    const Point t = *job_.figures[f].threading;
    Point p = t;
    double allowed = kAllowance;
    const std::size_t limit = std::min(i + kMostSections, sections_.size());
    for (std::size_t j = i; j < limit; ++j) {
      p = p + sections_[j].way;
      allowed += sections_[j].rounding + sections_[j].loose;
      if (dist(p, t) <= allowed) return j + 1;
      if (j + 1 < sections_.size() && leadsToAnother(j + 1, t)) return j + 1;
    }
    for (std::size_t j = i; j + 1 < limit; ++j)
      if (sections_[j + 1].single()) return j + 1;
    return limit;
  }
  std::size_t cut(std::size_t f, std::size_t i) {
    tellLegs(f);
    used_[f] = true;
    if (next_ <= f) next_ = f + 1;
    cutAny_ = true;
    const std::size_t end = pathEnd(f, i);
    const Point t = *job_.figures[f].threading;
    const WirePath path = job_.measure(f, {sections_[i].first, sections_[end - 1].last}, t);
    job_.report.paths.back().placing = dist(walked_, t);
    const bool closed = job_.outlines[f]->closed;
    const Vec way = path.steps.empty() ? Vec{0, 0} : path.end() - path.start();
    walked_ = walked_ + way;
    here_ = closed ? t : t + way;
    loose_ = looseBefore_ = closed ? 0 : path.rounding;
    lastEnd_ = here_;
    return end;
  }
  std::size_t travel(std::size_t i) {
    const Section& s = sections_[i];
    const bool over = !expected();
    if (over && !s.single())
      job_.findings.fault(FindingKind::kUnknownCut, {0, s.first, here_},
                          formatted("blocks %lld to %lld from (%.4f, %.4f) on cut none of the figures",
                                    s.number(), s.lastNumber(), here_.x, here_.y));
    here_ = here_ + s.way;
    walked_ = walked_ + s.way;
    loose_ += s.rounding + s.loose;
    if (over) endMoves_.push_back({&s, here_});
    if (!over) legs_.push_back({&s, here_});
    return i + 1;
  }
  // The moves in front of the path of figure f: from the machine's start over the points to be passed, then
  // from path to path in one move each; and the order of the paths.
  void tellLegs(std::optional<std::size_t> f) {
    auto legs = std::exchange(legs_, {});
    if (!job_.expected.inOrder || !f) return;
    const Figure& figure = job_.figures[*f];
    if (last_ && *f < *last_)
      job_.findings.fault(FindingKind::kOrder,
                          {figure.number, legs.empty() ? nullptr : legs[0].first->first, here_},
                          formatted("figure %d is cut behind figure %d, though its turn is before it",
                                    figure.number, job_.figures[*last_].number));
    std::vector<Point> wanted;
    if (!cutAny_) wanted = job_.expected.startPoints;
    if (!wanted.empty()) {
      if (!(dist(wanted.front(), start_) <= kAllowance + kHalfMicron))
        job_.findings.fault(
            FindingKind::kTransit, {0, nullptr, start_},
            formatted("the program starts at (%.4f, %.4f), the machine stands at (%.4f, %.4f)", start_.x,
                      start_.y, wanted.front().x, wanted.front().y));
      wanted.erase(wanted.begin());
    }
    if (cutAny_ || !job_.expected.startPoints.empty()) wanted.push_back(*figure.threading);
    tellTransits(wanted, legs, cutAny_ ? lastEnd_ : start_);
    last_ = std::max(*f, last_.value_or(0));
  }
  using Leg = std::pair<const Section*, Point>;
  // Each leg leads to the next of the wanted points; those where the wire stands already need none.
  void tellTransits(const std::vector<Point>& wanted, const std::vector<Leg>& legs, Point from) {
    std::size_t k = 0;
    double loose = kAllowance + kHalfMicron;
    for (const Point& to : wanted) {
      const bool stands = dist(from, to) <= 2 * kAllowance;
      if (k < legs.size()) loose += legs[k].first->rounding;
      if (k < legs.size() && dist(legs[k].second, to) <= loose + looseBefore_) {
        ++k;
      } else if (!stands) {
        job_.findings.fault(FindingKind::kTransit, {0, k < legs.size() ? legs[k].first->first : nullptr, to},
                            formatted("the wire doesn't pass (%.4f, %.4f), as it ought to here", to.x, to.y));
        return;
      }
      from = to;
    }
    if (k < legs.size())
      job_.findings.fault(
          FindingKind::kTransit, {0, legs[k].first->first, legs[k].second},
          formatted("block %lld: a move to (%.4f, %.4f) that leads to no path and no transit point",
                    legs[k].first->number(), legs[k].second.x, legs[k].second.y));
  }
  // Moves behind the last path must be those to the end points.
  void tellEnd() {
    const auto& ends = job_.expected.endPoints;
    for (std::size_t k = 0; k < endMoves_.size(); ++k) {
      const auto& [section, place] = endMoves_[k];
      if (!section->single()) continue;  // told
      if (k < ends.size() && dist(ends[k], place) <= kAllowance + loose_) continue;
      job_.findings.fault(
          FindingKind::kUnexplained, {0, section->first, place},
          formatted("block %lld: a move to (%.4f, %.4f) behind the last path that no end point explains",
                    section->number(), place.x, place.y));
    }
    if (!job_.expected.inOrder || !cutAny_) return;
    Point from = lastEnd_;
    std::size_t moves = 0;
    for (const Point& to : ends) {
      if (dist(from, to) > 2 * kAllowance) ++moves;
      from = to;
    }
    if (endMoves_.size() < moves)
      job_.findings.fault(FindingKind::kTransit, {0, nullptr, ends.back()},
                          formatted("behind the last path the wire doesn't go on to (%.4f, %.4f)",
                                    ends.back().x, ends.back().y));
  }

  Job& job_;
  const std::vector<Section>& sections_;
  Threading threading_;
  std::vector<bool> used_;
  std::vector<std::pair<const Section*, Point>> endMoves_, legs_;
  std::optional<std::size_t> last_;  // of the figures cut so far, the farthest in order
  Point start_, lastEnd_;            // of the program, of the path before
  double looseBefore_ = 0;           // mm that lastEnd_ may be off
  std::size_t next_ = 0, lowest_ = 0;
  Point here_;        // where the wire should be by the last threading point
  Point walked_;      // where it is by the counts from the program's start on
  double loose_ = 0;  // mm that here_ may be off
  bool cutAny_ = false;
};

// Pauses in between, one stop at the end.
void tellPauses(const ProgramLines& program, const Expected& expected, Findings& findings) {
  const auto& lines = program.lines;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i)
    if (lines[i].kind == LineKind::kPause && !expected.pauseText.empty() &&
        lines[i].text != expected.pauseText)
      findings.fault(FindingKind::kUnexplained, {0, &lines[i], {}},
                     formatted("line %d: \"%.40s\" stands where only the pause \"%.40s\" may", lines[i].line,
                               lines[i].text.c_str(), expected.pauseText.c_str()));
  const bool stopped =
      !lines.empty() && lines.back().kind == LineKind::kPause && lines.back().text == expected.stopText;
  if (!stopped)
    findings.fault(
        FindingKind::kStopMissing, {0, lines.empty() ? nullptr : &lines.back(), {}},
        formatted("the program doesn't end with the stop line \"%.40s\"", expected.stopText.c_str()));
}

void tellLines(const ProgramLines& program, Report& report, Findings& findings) {
  std::int64_t next = 1;
  for (const Line3b& line : program.lines) {
    if (line.kind == LineKind::kUnreadable)
      findings.fault(FindingKind::kUnreadable, {0, &line, {}},
                     formatted("line %d can't be read: %s", line.line, line.text.c_str()));
    if (line.kind == LineKind::kPause || (line.kind == LineKind::kUnreadable && line.number == 0)) continue;
    ++report.blocks;
    if (line.number != next)
      findings.fault(FindingKind::kNumbering, {0, &line, {}},
                     formatted("line %d: block number %lld stands where %lld should", line.line,
                               static_cast<long long>(line.number), static_cast<long long>(next)));
    next = line.number + 1;
  }
}

std::vector<std::string> codesOf(const std::vector<Figure>& figures, const Expected& expected) {
  std::vector<std::string> codes = expected.codes;
  for (const Figure& f : figures)
    if (f.marks)
      for (const auto& code : f.marks->codes)
        codes.insert(codes.end(), code.blocks.begin(), code.blocks.end());
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  return codes;
}

}  // namespace

Report check(std::string_view text, const std::vector<Figure>& figures, const Expected& expected) {
  Report report;
  Findings findings(report);
  const ProgramLines program = readProgram(text, codesOf(figures, expected));
  tellLines(program, report, findings);
  tellPauses(program, expected, findings);
  Job job(figures, expected, report, findings);
  const auto sections = sectionsOf(program);
  std::optional<Point> start = program.startPoint;
  if (start) start = *start + (expected.origin - Point{0, 0});
  if (!start)
    findings.fault(FindingKind::kStart, {}, "the comment line \"Start Point\" is missing or can't be read");
  if (plainDrawing(figures))
    checkPlain(job, sections, start.value_or(Point{}));
  else
    ThreadedRun(job, sections).run(start);
  for (const Figure& f : figures)
    if (!f.remark.empty()) findings.note(FindingKind::kRemark, {f.number, nullptr, {}}, f.remark);
  report.ok = report.faults == 0;
  return report;
}

}  // namespace tarnex::truth
