// The sections of a program between its pause lines, and the job that measures one path after the other.
// Knows the outlines of all figures; not which path cuts which.
#pragma once

#include <vector>

#include "exchange/outline.h"

namespace tarnex::truth {

inline constexpr double kHalfMicron = 0.0005;  // mm; the start point is printed to a thousandth

struct Section {
  const Line3b* first = nullptr;
  const Line3b* last = nullptr;  // one past
  std::size_t moves = 0;
  bool arcs = false;    // any of them; a move between paths is a line
  Vec way;              // mm from its beginning to its end
  double rounding = 0;  // mm that its end may be off
  double loose = 0;     // mm; what arcs with two readings of their start may add
  [[nodiscard]] bool single() const { return moves < 2 && !arcs; }
  [[nodiscard]] bool closes() const { return moves > 1 && way.length() <= kAllowance + rounding + loose; }
  [[nodiscard]] long long number() const { return first->number; }
  [[nodiscard]] long long lastNumber() const { return (last - 1)->number; }
};
// Sections without a numbered line are left out.
[[nodiscard]] std::vector<Section> sectionsOf(const ProgramLines& program);

[[nodiscard]] bool plainDrawing(const std::vector<Figure>& figures);  // no figure has a threading point

struct Lines {
  const Line3b* first;
  const Line3b* last;  // one past
};

// Outlines of all figures, and the measuring of one path against one of them.
struct Job {
  Job(const std::vector<Figure>& figures, const Expected& expected, Report& report, Findings& findings);
  const std::vector<Figure>& figures;
  const Expected& expected;
  Report& report;
  Findings& findings;
  std::vector<std::optional<Outline>> outlines;  // of a refused figure: nothing, and told
  std::vector<Side> sides;                       // wanted; as the figures say until someone knows better

  // Measures the path that these lines cut from `start` on against figure f; adds its report. Returns the
  // path as walked; without steps when there was no move. `unsure`: mm that `start` may be off.
  WirePath measure(std::size_t f, Lines lines, Point start, double unsure = 0);
  void tellNotCut(std::size_t f);
};

}  // namespace tarnex::truth
