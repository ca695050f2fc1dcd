// Taper marks: a fourth count and a word on the blocks that ought to carry them, and on no others.
// Knows the path as read.
#include "exchange/truth_reading.h"

namespace tarnex::truth {

namespace {

constexpr double kNoTaper = 0.001;  // degrees; smaller ones aren't marked
constexpr double kChordSlack = 2;   // counts
constexpr std::size_t kMostTold = 4;

// One span of the wire in the order of cutting: a block, or a place without one that holds a taper all the
// same.
struct Row {
  double taper = 0;                 // degrees
  std::optional<std::size_t> step;  // of the path
  bool plain = false;               // its block never carries a mark
  bool mark = false;
};

struct Tapers {
  Tapers(Measuring& m_, const PathReading& reading, const CornerSteps& corners_)
      : m(m_), r(reading), corners(corners_) {}
  Measuring& m;
  const PathReading& r;
  const CornerSteps& corners;

  [[nodiscard]] double at(std::size_t vertex) const {
    const auto& t = m.figure.marks->tapers;
    return vertex < t.size() ? t[vertex] : 0.0;
  }
  [[nodiscard]] double ofCut(std::size_t k) const {
    const auto& spans = m.outline.figureSpans;
    const std::size_t span = r.cuts[k].span;
    return at((span < spans.size() ? spans[span] : span) + 1);
  }
  [[nodiscard]] bool splitFromLast(std::size_t k) const {
    return k > 0 && r.cuts[k].span == r.cuts[k - 1].span && m.path.steps[r.cuts[k - 1].step].pauses > 0;
  }
  void addOwnSteps(std::size_t k, std::vector<Row>& rows) const {
    const auto v = r.behind(k, m.outline);
    for (const auto& s : m.figure.marks->steps)
      if (v.first == v.last && s.vertex == static_cast<int>(v.first))
        rows.push_back({s.out, {}, false, false}), rows.push_back({s.back, {}, false, false});
  }
  // The end of the contour, the overcut, and what stands behind it.
  void addEnd(std::vector<Row>& rows, double closing) const {
    const bool overcut = r.wantedOvercut.length() > 0;
    const bool tangent = r.runOn && m.path.steps[*r.runOn].role == Role::kTangent;
    const double first = tangent || rows.size() < 2 ? 0.0 : rows[1].taper;
    double last = closing;
    if (overcut && r.inLine) rows.back().plain = true;
    if (r.runOn) rows.push_back({closing, r.runOn, true, false}), last = first;
    if (r.back) rows.push_back({first, r.back, true, false});
    rows.push_back({last, {}, false, false});
    for (std::size_t i = 1; i + 1 < rows.size(); ++i)
      rows[i].mark = !rows[i].plain &&
                     (std::abs(rows[i + 1].taper) >= kNoTaper || std::abs(rows[i - 1].taper) >= kNoTaper);
  }
  // Spans as the path has them: each keeps its own taper.
  [[nodiscard]] std::vector<Row> asDrawn() const {
    std::vector<Row> rows{{at(0), {}, true, false}};
    for (std::size_t k = 0; k < r.cuts.size(); ++k) {
      const std::size_t step = r.cuts[k].step;
      rows.push_back({ofCut(k), step, m.path.steps[step].pauses > 0, false});
      addOwnSteps(k, rows);
    }
    addEnd(rows, at(m.outline.figureSpans.size() + 1));
    return rows;
  }
  // Neighbours of tapered spans on the contour itself: where a machine wants the marks. Steps at corners, a
  // pause and the overcut may keep them from there.
  [[nodiscard]] std::vector<Row> besideTapered() const {
    std::vector<Row> rows;
    const std::size_t n = r.cuts.size();
    auto tapered = [&](std::size_t k) { return std::abs(ofCut(k)) >= kNoTaper; };
    for (std::size_t k = 0; k < n; ++k) {
      const std::size_t first = splitFromLast(k) ? k - 1 : k;
      const std::size_t last = k + 1 < n && splitFromLast(k + 1) ? k + 1 : k;
      const bool before = first > 0 ? tapered(first - 1) : std::abs(at(0)) >= kNoTaper;
      const bool behind =
          last + 1 < n ? tapered(last + 1) : std::abs(at(m.outline.figureSpans.size() + 1)) >= kNoTaper;
      rows.push_back({ofCut(k), r.cuts[k].step, false, before || behind});
    }
    return rows;
  }
  // Spans behind corner relief: the tapers are counted from the lead-in's on, so each falls to the span
  // behind its own, and a relieved corner stands between two spans with two rows of its own.
  [[nodiscard]] std::vector<Row> relieved(Compensated least) const {
    std::vector<Row> drawn{{at(0), {}, true, false}};
    std::vector<std::size_t> cutOf{0};
    for (std::size_t k = 0; k < r.cuts.size(); ++k) {
      if (splitFromLast(k)) continue;
      drawn.push_back({ofCut(k), k, false, false});
      addOwnSteps(k, drawn);
    }
    for (std::size_t i = drawn.size() - 1; i > 0; --i) drawn[i].taper = drawn[i - 1].taper;
    std::vector<Row> rows{drawn[0]};
    bool behindRelief = false;
    for (std::size_t i = 1; i < drawn.size(); ++i) {
      Row row = drawn[i];
      if (!row.step) {
        rows.push_back(row);
        continue;
      }
      if (behindRelief) {
        rows.push_back({row.taper, {}, false, false}), rows.push_back({0, {}, false, false});
        row.taper = 0;
      }
      std::size_t k = *row.step;
      addCut(k, row.taper, rows);
      if (k + 1 < r.cuts.size() && splitFromLast(k + 1)) addCut(++k, row.taper, rows);
      behindRelief = corners.behind[k] >= least && k + 1 < r.cuts.size();
    }
    addEnd(rows, 0);
    return rows;
  }
  void addCut(std::size_t k, double taper, std::vector<Row>& rows) const {
    const std::size_t step = r.cuts[k].step;
    rows.push_back({taper, step, m.path.steps[step].pauses > 0, false});
  }
};

bool marked(const Step& s) {
  return s.line->move.taperCount.has_value() || s.line->move.taperWord > 0;
}

class Judge {
 public:
  Judge(Measuring& m, const PathReading& reading) : m_(m), r_(reading) {}

  [[nodiscard]] std::size_t wrong(const std::vector<Row>& rows) const {
    std::size_t n = 0;
    for (const Row& row : rows)
      if (row.step) n += marked(m_.path.steps[*row.step]) != row.mark;
    return n;
  }
  // "3, 5": numbers of the blocks that ought to carry marks.
  [[nodiscard]] std::string markedBlocks(const std::vector<Row>& rows) const {
    std::string out;
    for (const Row& row : rows)
      if (row.step && row.mark)
        out += (out.empty() ? "" : ", ") + std::to_string(m_.path.steps[*row.step].line->number);
    return out.empty() ? "none" : out;
  }
  void tell(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
      if (!row.step) continue;
      const Step& s = m_.path.steps[*row.step];
      if (marked(s) != row.mark) tellMark(s, row.mark);
      if (marked(s) && row.mark) judgeWords(s);
    }
  }
  void judgeEnds() {
    const double taper = m_.figure.marks->taper;
    for (const Step& s : m_.path.steps) {
      if (s.role == Role::kSpike && marked(s)) tellMark(s, false);
      if (s.role != Role::kLead && s.role != Role::kReturn) continue;
      const bool sure = taper == 0 || std::abs(taper) >= kNoTaper;
      if (sure && marked(s) != (taper != 0)) tellMark(s, taper != 0);
      if (marked(s)) judgeLead(s);
    }
  }

 private:
  void judgeLead(const Step& s) {
    const Move3b& move = s.line->move;
    const int word = m_.wantedSide == Side::kOutside ? 2 : 1;
    if (move.taperWord == word && move.taperCount == move.bj) return;
    tellWords(s, word, static_cast<double>(move.bj));
  }
  // Spans that turn with the path on the side where the wire runs widen.
  void judgeWords(const Step& s) {
    const Move3b& move = s.line->move;
    const bool left = s.stroke.arc && s.stroke.sweep * m_.wireSide > 0;
    const double chord = dist(s.stroke.start, s.stroke.end) * 1000;
    const double slack = kChordSlack + (s.stroke.arc ? s.spread * 1000 : 0);
    const bool count = move.taperCount && std::abs(static_cast<double>(*move.taperCount) - chord) <= slack;
    if (move.taperWord != (left ? 2 : 1) || !count) tellWords(s, left ? 2 : 1, chord);
  }
  void tellMark(const Step& s, bool wanted) {
    if (told_++ >= kMostTold) return;
    m_.findings.fault(
        FindingKind::kTaper, m_.at(s, s.stroke.start),
        formatted("block %lld: %s", static_cast<long long>(s.line->number),
                  wanted ? "the taper mark is missing" : "a taper mark that no taper explains"));
  }
  void tellWords(const Step& s, int word, double count) {
    if (told_++ >= kMostTold) return;
    m_.findings.fault(FindingKind::kTaper, m_.at(s, s.stroke.start),
                      formatted("block %lld: the taper mark ought to be the count %.0f and the word %s",
                                static_cast<long long>(s.line->number), count, word == 2 ? "DD" : "D"));
  }

  Measuring& m_;
  const PathReading& r_;
  std::size_t told_ = 0;
};

}  // namespace

void judgeTapers(Measuring& m, const PathReading& reading, const CornerSteps& corners) {
  if (reading.cuts.empty()) return;
  const Tapers tapers(m, reading, corners);
  Judge judge(m, reading);
  judge.judgeEnds();
  auto rows = tapers.asDrawn();
  if (m.expected.dFix > 0 && m.expected.relieved && m.outline.closed) {
    rows = tapers.relieved(Compensated::kYes);
    if (auto others = tapers.relieved(Compensated::kMaybe); judge.wrong(rows) > 0 && judge.wrong(others) == 0)
      rows = std::move(others);
  }
  judge.tell(rows);
  const auto beside = tapers.besideTapered();
  if (judge.wrong(rows) == 0 && judge.wrong(beside) > 0)
    m.findings.note(
        FindingKind::kTaper, m.at(m.path.steps.front(), m.path.start()),
        formatted("figure %d: beside its tapered spans are the blocks %s; steps at corners, the pause or the "
                  "overcut "
                  "have put the taper marks on %s",
                  m.figure.number, judge.markedBlocks(beside).c_str(), judge.markedBlocks(rows).c_str()));
}

}  // namespace tarnex::truth
