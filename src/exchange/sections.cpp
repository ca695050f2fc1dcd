// Sections between pauses, and one path measured from end to end.
// Knows the order of measuring; each measure is next door.
#include "exchange/sections.h"

#include "exchange/truth_reading.h"

namespace tarnex::truth {

namespace {

void addMove(Section& s, const Move3b& move) {
  const Walked w = walkMove(move);
  ++s.moves;
  s.arcs = s.arcs || w.stroke.arc;
  s.way = s.way + (w.stroke.end - w.stroke.start);
  s.rounding += w.endRounding;
  if (w.otherSide) s.loose += dist(w.stroke.end, w.otherSide->end);
}

}  // namespace

std::vector<Section> sectionsOf(const ProgramLines& program) {
  std::vector<Section> out;
  bool open = false;
  for (const Line3b& line : program.lines) {
    if (line.kind == LineKind::kPause) {
      open = false;
      continue;
    }
    if (!open) out.push_back({&line, &line, 0, false, {}, 0, 0});
    open = true;
    out.back().last = &line + 1;
    if (line.kind == LineKind::kMove) addMove(out.back(), line.move);
  }
  return out;
}

bool plainDrawing(const std::vector<Figure>& figures) {
  return std::none_of(figures.begin(), figures.end(),
                      [](const Figure& f) { return f.threading.has_value(); });
}

Job::Job(const std::vector<Figure>& figures_, const Expected& expected_, Report& report_, Findings& findings_)
    : figures(figures_), expected(expected_), report(report_), findings(findings_) {
  outlines.reserve(figures.size());
  const bool plain = plainDrawing(figures);
  for (const Figure& f : figures) {
    sides.push_back(f.side);
    std::string refusal;
    outlines.push_back(outlineOf(f, refusal));
    if (!plain && !f.threading && outlines.back())
      outlines.back().reset(), refusal = "it has no threading point";
    if (!outlines.back())
      findings.fault(FindingKind::kNotCut, {f.number, nullptr, {}},
                     formatted("figure %d can't be checked: %s", f.number, refusal.c_str()));
  }
}

WirePath Job::measure(std::size_t f, Lines lines, Point start, double unsure) {
  const Figure& figure = figures[f];
  const Outline& outline = *outlines[f];
  WirePath path = walkLines(lines.first, lines.last,
                            {start, expected.origin, &outline, &findings, figure.number, unsure});
  PathReport& r = report.paths.emplace_back();
  r.figure = figure.number;
  r.blocks = path.blocks;
  if (path.first) r.firstBlock = path.first->number, r.lastBlock = path.last->number;
  report.worstArcRounding = std::max(report.worstArcRounding, path.worstArc);
  if (path.steps.empty()) return path;
  Measuring m{figure, outline, expected, path, r, findings, sides[f], 0, 1};
  giveRoles(m);
  PathReading reading(m);
  findSideAndDirection(m);
  narrowRounding(m);
  measureDistances(m);
  measureCover(m);
  measureEnds(m);
  measureRepeats(m);
  if (figure.marks) judgeMarks(m, reading);
  r.rounding = path.rounding;
  return path;
}

void Job::tellNotCut(std::size_t f) {
  const auto sentence = formatted("figure %d isn't cut by the program", figures[f].number);
  if (expected.allFigures)
    findings.fault(FindingKind::kNotCut, {figures[f].number, nullptr, {}}, sentence);
  else
    findings.note(FindingKind::kNotCut, {figures[f].number, nullptr, {}}, sentence);
}

}  // namespace tarnex::truth
