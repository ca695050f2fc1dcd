// Pause, overcut and code texts of one path, each at its place.
// Knows the path as read; steps at corners and tapers are judged next door.
#include "exchange/truth_reading.h"

namespace tarnex::truth {

namespace {

constexpr double kPlace = 0.004;  // mm; three roundings in x and in y
constexpr std::size_t kNoCut = static_cast<std::size_t>(-1);

std::string_view trimmed(std::string_view s) {
  const auto from = s.find_first_not_of(" \t");
  if (from == std::string_view::npos) return {};
  return s.substr(from, s.find_last_not_of(" \t") - from + 1);
}

Vec wayOf(const Step& s) {
  return s.stroke.end - s.stroke.start;
}

// ---- overcut and pause

bool overcutThere(const Measuring& m, const PathReading& reading, Vec past) {
  if (m.expected.overcutMode == 1) return reading.back && past.length() <= kPlace;
  return (past - reading.wantedOvercut).length() <= kPlace + reading.overcutSlack;
}

void judgeOvercut(Measuring& m, const PathReading& reading) {
  const auto& steps = m.path.steps;
  if (steps.front().role != Role::kLead || steps.back().role != Role::kReturn || steps.size() < 3) return;
  const Vec past = (wayOf(steps.back()) + wayOf(steps.front())) * -1.0;
  const bool wanted = reading.wantedOvercut.length() > 0;
  const bool none = past.length() <= kPlace && !reading.back;
  if (wanted ? overcutThere(m, reading, past) || (none && reading.maybeOvercut) : none) return;
  const Step& last = steps.back();
  m.findings.fault(
      FindingKind::kOvercut, m.at(last, last.stroke.start),
      formatted("block %lld: the wire leaves the contour of figure %d (%.4f, %.4f) from its entry; %s%.4f mm "
                "%swas expected",
                static_cast<long long>(last.line->number), m.figure.number, past.x, past.y,
                wanted ? "an overcut of " : "no overcut, ", wanted ? m.expected.overcut : 0.0,
                wanted && m.expected.overcutMode == 1 ? "and back " : ""));
}

// mm of contour that the wire has still to cut behind step p, and in how many cuts.
struct Rest {
  double length = 0;
  std::size_t cuts = 0;
  bool splits = false;  // the pause stands within a span
};

Rest restBehind(const Measuring& m, const PathReading& reading, std::size_t p) {
  Rest rest;
  const auto& cuts = reading.cuts;
  for (std::size_t k = 0; k < cuts.size(); ++k) {
    if (cuts[k].step <= p) continue;
    rest.length += lengthOf(m.path.steps[cuts[k].step].stroke);
    ++rest.cuts;
    // Where the contour's last spans are too narrow for the wire, its way may have a vertex within a span.
    const bool wholeEnd = cuts.back().span + 1 == m.outline.count();
    if (rest.cuts == 1 && k > 0 && wholeEnd) rest.splits = cuts[k - 1].span == cuts[k].span;
  }
  if (reading.inLine && reading.wantedOvercut.length() > 0) {
    const auto& last = m.path.steps.back();
    const Vec past = (wayOf(last) + wayOf(m.path.steps.front())) * -1.0;
    if (m.expected.overcutMode == 1 || past.length() > kPlace) rest.length -= m.expected.overcut;
  }
  return rest;
}

void judgePause(Measuring& m, const PathReading& reading) {
  const auto& steps = m.path.steps;
  const double length = m.outline.closed ? m.expected.pauseBefore : 0;
  std::size_t pauses = 0;
  const Step* extra = nullptr;
  for (std::size_t p = 0; p < steps.size(); ++p) {
    if (steps[p].pauses == 0) continue;
    pauses += static_cast<std::size_t>(steps[p].pauses);
    if (pauses > 1 || length <= 0) {
      extra = &steps[p];
      continue;
    }
    const Rest rest = restBehind(m, reading, p);
    const bool atPlace = std::abs(rest.length - length) <= kPlace;
    const bool wholeSpan = rest.length <= length + kPlace && rest.cuts <= 1 && !rest.splits;
    if (!atPlace && !wholeSpan)
      m.findings.fault(
          FindingKind::kPause, m.at(steps[p], steps[p].stroke.end),
          formatted(
              "block %lld: the pause stands %.4f mm before the end of the contour of figure %d, not %.4f mm",
              static_cast<long long>(steps[p].line->number), rest.length, m.figure.number, length));
  }
  if (extra)
    m.findings.fault(FindingKind::kPause, m.at(*extra, extra->stroke.end),
                     formatted("block %lld: a pause that nothing explains stands behind it",
                               static_cast<long long>(extra->line->number)));
  if (length > 0 && pauses == 0)
    m.findings.fault(FindingKind::kPause, m.at(steps.back(), steps.back().stroke.start),
                     formatted("figure %d: the pause %.4f mm before the end of the contour is missing",
                               m.figure.number, length));
}

// ---- code texts

// A place where code texts stand: in front of the lead-in, behind it, behind a cut, or behind the contour.
struct Slot {
  std::vector<std::string_view> wanted, found;
  int vertex = -1;  // of a wanted one
  const Step* step = nullptr;
  const Line3b* line = nullptr;  // of a found one
  const char* lost = nullptr;    // why a wanted one isn't written
};

class Codes {
 public:
  Codes(Measuring& m, const PathReading& reading)
      : m_(m), reading_(reading), slots_(reading.cuts.size() + 3) {
    fillWanted();
    fillFound();
  }
  void run() {
    for (const Slot& s : slots_)
      if (s.wanted != s.found) tell(s);
  }

 private:
  // 0: before the lead-in, 1: behind it, 2 + k: behind cut k; the last one: further on.
  [[nodiscard]] std::size_t slotOf(std::size_t step) const {
    if (step == 0) return 0;
    if (m_.path.steps[step - 1].role == Role::kLead) return 1;
    const auto& cuts = reading_.cuts;
    std::size_t k = kNoCut;
    while (k + 1 < cuts.size() && cuts[k + 1].step < step) ++k;
    if (k == kNoCut) return 1;
    const auto past = [&](std::optional<std::size_t> s) { return s && *s < step; };
    const bool beyond =
        past(reading_.runOn) || past(reading_.back) || m_.path.steps[step - 1].role == Role::kReturn;
    return beyond ? slots_.size() - 1 : k + 2;
  }
  void want(std::size_t slot, std::size_t from, std::size_t to) {
    for (std::size_t v = from; v <= to; ++v)
      for (const auto& code : m_.figure.marks->codes)
        if (code.vertex == static_cast<int>(v)) {
          for (const auto& text : code.blocks) slots_[slot].wanted.push_back(trimmed(text));
          slots_[slot].vertex = code.vertex;
        }
  }
  void fillWanted() {
    want(0, 0, 0);
    const auto& steps = m_.path.steps;
    slots_[0].step = slots_[1].step = &steps.front();
    slots_.back().step = &steps.back();
    if (reading_.cuts.empty()) return;
    const auto& o = m_.outline;
    want(1, 1, (reading_.cuts[0].span < o.figureSpans.size() ? o.figureSpans[reading_.cuts[0].span] : 0) + 1);
    for (std::size_t k = 0; k < reading_.cuts.size(); ++k) {
      Slot& s = slots_[k + 2];
      s.step = &steps[reading_.cuts[k].step];
      const auto v = reading_.behind(k, o);
      want(k + 2, v.first, v.last);
      if (s.step->pauses > 0) s.lost = "the pause before the end stands there";
      if (k + 1 == reading_.cuts.size() && reading_.inLine && reading_.wantedOvercut.length() > 0)
        s.lost = "the overcut runs over it";
    }
  }
  void fillFound() {
    for (const CodeLine& c : m_.path.codes) {
      Slot& s = slots_[slotOf(c.step)];
      s.found.push_back(trimmed(c.line->text));
      if (!s.line) s.line = c.line;
    }
  }
  void tell(const Slot& s) {
    const auto block = static_cast<long long>(s.step->line->number);
    const Findings::Place place{m_.figure.number, s.line ? s.line : s.step->line, s.step->stroke.end};
    if (s.found.empty() && s.lost) {
      m_.findings.note(FindingKind::kCode, place,
                       formatted("figure %d: the code text \"%.*s\" of vertex %d isn't in the program: %s",
                                 m_.figure.number, static_cast<int>(s.wanted[0].size()), s.wanted[0].data(),
                                 s.vertex, s.lost));
      return;
    }
    if (told_++ >= kMostTold) return;
    if (s.wanted.empty())
      m_.findings.fault(FindingKind::kCode, place,
                        formatted("block %lld: the code text \"%.*s\" belongs to no vertex there",
                                  static_cast<long long>(s.line->number), static_cast<int>(s.found[0].size()),
                                  s.found[0].data()));
    else
      m_.findings.fault(
          FindingKind::kCode, place,
          formatted("block %lld: at vertex %d of figure %d %zu code texts are to stand, from \"%.*s\" on; "
                    "%zu stand there, or others",
                    block, s.vertex, m_.figure.number, s.wanted.size(), static_cast<int>(s.wanted[0].size()),
                    s.wanted[0].data(), s.found.size()));
  }

  static constexpr std::size_t kMostTold = 4;
  Measuring& m_;
  const PathReading& reading_;
  std::vector<Slot> slots_;
  std::size_t told_ = 0;
};

}  // namespace

void judgeEnd(Measuring& m, const PathReading& reading) {
  if (m.outline.closed) judgeOvercut(m, reading);
  judgePause(m, reading);
}

void judgeCodes(Measuring& m, const PathReading& reading) {
  Codes(m, reading).run();
}

void judgeMarks(Measuring& m, PathReading& reading) {
  reading.matchSpans(m);
  judgeEnd(m, reading);
  const CornerSteps corners = judgeSteps(m, reading);
  judgeTapers(m, reading, corners);
  judgeCodes(m, reading);
}

}  // namespace tarnex::truth
