// What the first and the later passes of an inner figure share: sharp corners, the lines of its contour, the
// overcut, the way off the contour. Knows its rows by number; the order of its passes is in the two writers.
#pragma once

#include <optional>
#include <string>

#include "outputiso/figurewriter.h"

namespace tarnex {

// Rows of inner and open figures, relative to rowBase.
struct InnerRow {
  static constexpr int kUpToStop = 8, kContourEnd = 9, kOvercut = 10, kRetreat = 11;
  int figureStart;  // of all figures but the first
  int laterHead;
  int laterStart, laterEnd;
  int figureEnd;
};
[[nodiscard]] constexpr InnerRow innerRows(int nCutType) {
  return nCutType == CutType::kByPass ? InnerRow{14, 14, 17, 22, 23} : InnerRow{22, kNoRow, 13, 18, 19};
}

class InnerWriter : public FigureWriter {
 protected:
  // When a pass cuts the overcut, by the post.
  enum OvercutRule { kEveryPass = 0, kFirstPassOnly = 1, kLastPassOnly = 2 };

  explicit InnerWriter(const FigureJob& job);
  void startPass(double taper);  // degrees; at the entry point
  void setLeadBulge();
  [[nodiscard]] double leadAngle() const;  // of the lead arcs, radians
  [[nodiscard]] int overcutRule() const;
  [[nodiscard]] int firstSpan() const { return spanAhead() ? 2 : 1; }
  [[nodiscard]] int lastSpan() const { return n() - 2; }
  [[nodiscard]] bool marksSpan(int i) const { return spanAhead() && i == firstSpan(); }

  // A corner's arc that is cut as the corner of its neighbours.
  struct SharpCorner {
    AcGePoint2d at;
    double radius = 0;  // mm, of the arc that isn't cut
  };
  // Behind span i, where the arc i + 1 has a code text. Without any taper a text with "R" leaves the arc.
  [[nodiscard]] std::optional<SharpCorner> markedCorner(int i) const;
  // The line of span i and the span that comes next; the wire is behind it then.
  struct ContourLine {
    std::string text;
    bool bCorner = false;
    int next = 0;
  };
  ContourLine contourLine(int i);

  // From where the wire stands to the end of the overcut, with the taper of span 1.
  void overcut(AcGePoint2d from, int r, bool bFirstBlock);
  // Corners of the lead-out that leaves the contour at `start`, on the overcut or at the contour's end.
  void leadOut(AcGePoint2d start);
  // The lead-out's corner where the wire doesn't go home.
  void leadOutBeside(AcGePoint2d from, AcGePoint2d to);

  bool bCut_ = false;  // the overcut was cut in this pass
  AcGePoint2d cur_;
  double prev_ = 0;  // taper of the span before, degrees

 private:
  double passTaper_ = 0;
};

}  // namespace tarnex
