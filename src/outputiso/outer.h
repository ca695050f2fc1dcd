// What the first and the later passes of an outer figure share: its rows, its break. The part hangs on a tab
// from the break to the entry point until all but that is cut.
// Knows its rows by number; the order of its passes is in the two writers.
#pragma once

#include <optional>

#include "outputiso/figurewriter.h"

namespace tarnex {

// Rows of outer figures, relative to rowBase.
struct OuterRow {
  static constexpr int kBreak = 8, kOffContour = 9;  // of the first pass
  int figureStart;                                   // of all figures but the first
  int laterHead;
  int trimStart, trimEnd, trimRetreat;
  int tabEntry, tabUpToStop, tabEnd, tabRetreat;
  int extraEntry, extraEnd, extraRetreat;
  int home;
};
[[nodiscard]] constexpr OuterRow outerRows(int nCutType) {
  return nCutType == CutType::kByPass ? OuterRow{12, 12, 15, kNoRow, 20, 22, 23, 24, 25, 27, 28, 29, 30}
                                      : OuterRow{30, kNoRow, 11, 16, 17, 19, 20, 21, 22, 24, 25, 26, 27};
}

class OuterWriter : public FigureWriter {
 public:
  // Also where the figure has no break at all: neither a point on its contour nor a span that it was on once.
  [[nodiscard]] std::optional<FigureWritten> refusal();
  [[nodiscard]] bool isBreakless() const;
  explicit OuterWriter(const FigureJob& job);

 protected:
  [[nodiscard]] bool holdsBreak(int i) const;
  // The word of a pass's first block where `due`, in the family that has one.
  [[nodiscard]] const char* mark(bool due) const { return spanAhead() && due ? kFirstBlockWord : ""; }
  [[nodiscard]] int firstSpan() const { return spanAhead() ? 2 : 1; }
  // Span i and its line forward, or vertex i back to i - 1.
  std::string forwardLine(int i) { return spanLine(span(i), forwardTaper(i)); }
  std::string backwardLine(int i) { return spanLine({V(i), V(i - 1), -B(i - 1)}, backwardTaper(i)); }

  const OuterRow rows_;
};

}  // namespace tarnex
