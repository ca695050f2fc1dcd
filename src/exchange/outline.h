// A figure made ready for measuring, and the steps of the wire around it.
// Knows contours, compensation and walked blocks; not how blocks are grouped into paths.
#pragma once

#include <string>
#include <vector>

#include "exchange/nearby.h"
#include "exchange/reader3b.h"
#include "exchange/truth.h"
#include "exchange/walk3b.h"
#include "host/platform/format.h"

namespace tarnex::truth {

// The contour as strokes in the figure's order; spans without length are left out.
struct Outline {
  Nearby spans;
  bool closed = false;
  int insideIsLeft = 1;     // 1: the inside of a closed contour lies left of its order, -1: right
  double compensation = 0;  // mm
  double perimeter = 0;     // mm
  std::vector<std::size_t> figureSpans;  // of each span, the contour's span; empty for a circle
  [[nodiscard]] const Stroke& span(std::size_t i) const { return spans.strokes()[i]; }
  [[nodiscard]] std::size_t count() const { return spans.strokes().size(); }
  // The spans that meet at the end or start of span i; the same twice at an end of an open contour.
  [[nodiscard]] std::pair<std::size_t, std::size_t> meeting(std::size_t i, bool atEnd) const;
};
// Nothing, with the reason in `refusal`, for a figure that can't be measured.
[[nodiscard]] std::optional<Outline> outlineOf(const Figure& figure, std::string& refusal);

enum class Role { kCut, kLead, kReturn, kSpike, kTangent, kCode };

// A code text on the way of the wire.
struct CodeLine {
  std::size_t step = 0;  // stands in front of this step
  const Line3b* line = nullptr;
};

struct Step {
  Stroke stroke;  // mm, drawing
  const Line3b* line = nullptr;
  // mm; rounding that may show at this step's farthest point: away from the contour, towards it, in any
  // direction.
  double away = 0, towards = 0, spread = 0;
  double before = 0;  // mm; all roundings before this step
  Role role = Role::kCut;
  int pauses = 0;  // behind it
  [[nodiscard]] double allowed() const { return kAllowance + std::max(away, towards); }
  [[nodiscard]] double allowedAway() const { return kAllowance + away; }
  [[nodiscard]] double allowedTowards() const { return kAllowance + towards; }
};

struct WirePath {
  std::vector<Step> steps;
  double rounding = 0;     // mm, of all blocks
  double worstArc = 0;     // mm, of one arc
  std::size_t blocks = 0;  // numbered lines
  std::vector<CodeLine> codes;
  const Line3b* first = nullptr;
  const Line3b* last = nullptr;
  [[nodiscard]] Point start() const { return steps.front().stroke.start; }
  [[nodiscard]] Point end() const { return steps.back().stroke.end; }
};

// Collects findings; counts all, keeps the first kFindingsKept.
class Findings {
 public:
  explicit Findings(Report& report) : report_(report) {}
  struct Place {
    int figure = 0;
    const Line3b* line = nullptr;
    AcGePoint2d at;
  };
  void fault(FindingKind kind, const Place& where, std::string sentence) {
    add(kind, Grade::kFault, where, std::move(sentence));
  }
  void note(FindingKind kind, const Place& where, std::string sentence) {
    add(kind, Grade::kNote, where, std::move(sentence));
  }

 private:
  void add(FindingKind kind, Grade grade, const Place& where, std::string sentence);
  Report& report_;
};

// Everything that measuring one path needs to know, and where it writes.
struct Measuring {
  const Figure& figure;
  const Outline& outline;
  const Expected& expected;
  WirePath& path;
  PathReport& report;
  Findings& findings;
  Side wantedSide = Side::kEither;
  double told = 0;   // mm; the largest deviation told as a fault so far
  int wireSide = 1;  // 1: the wire runs left of the outline's order, -1: right; as found
  [[nodiscard]] Findings::Place at(const Step& s, Point p) const { return {figure.number, s.line, p}; }
};

// Walks the lines from `start`, mm. The outline, when given, decides on which side of its axis an arc starts
// whose word leaves that open. Findings of single blocks (words and counts, printed coordinates) when
// `findings` is given.
struct WalkFrom {
  Point start;
  Point origin;  // of printed coordinates
  const Outline* outline = nullptr;
  Findings* findings = nullptr;
  int figure = 0;
  double unsure = 0;  // mm that `start` itself may be off
};
[[nodiscard]] WirePath walkLines(const Line3b* first, const Line3b* last, const WalkFrom& from);

void giveRoles(Measuring& m);  // lead, return, spikes, overcut along the tangent
// Two steps that go out along a line and back.
[[nodiscard]] bool outAndBack(const Step& a, const Step& b);
void findSideAndDirection(Measuring& m);
// Narrows the rounding that steps may have added up by what the wire's own distances say on the way: a long
// contour's blocks may drift by half a count each, but where they have drifted to shows in how far the wire
// runs from what it runs beside. Under the assumption that the true wire keeps the compensation to
// kAllowance, no step's true place is lost. Sets the steps' bounds and the path's rounding.
void narrowRounding(Measuring& m);
void measureDistances(Measuring& m);  // too near, too far, lead-ins that cross
void measureCover(Measuring& m);      // stretches of the contour without wire
void measureEnds(Measuring& m);       // closing, overrun
void measureRepeats(Measuring& m);    // a way that the wire runs twice

}  // namespace tarnex::truth
