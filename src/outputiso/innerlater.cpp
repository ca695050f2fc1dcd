// The later passes of an inner figure: all of them in the direction of the first, and the figure's end.
// Knows one figure and what its first pass left in the run.
#include "contour/geometrylibrary.h"
#include "outputiso/inner.h"

namespace tarnex {

namespace {

class InnerLater : public InnerWriter {
 public:
  InnerLater(const FigureJob& job, bool bReturn)
      : InnerWriter(job), bReturn_(bReturn), rows_(innerRows(context_.nCutType)) {}

  void head() {
    setPath();
    iso_.setPass(1, 1);
    if (rows_.laterHead != kNoRow && !spanAhead()) row("", rows_.laterHead);
  }

  void run() {
    setLeadBulge();
    for (int k = 0; k < laterPasses(); ++k) pass(k);
    if (!bReturn_) row(seg({run_.ptWireEnd, V(0), 0.0, true}), rows_.figureEnd);
    run_.ptWireEnd = V(0);
  }

 private:
  void pass(int k) {
    iso_.setPass(k + 1, 1);
    // Corners look at the taper of the pass before.
    startPass(iso_.figure.styleNow.passOffset[static_cast<std::size_t>(k)]);
    int parts = kWholeRow;
    if (spanAhead()) {
      const ContourLine line = contourLine(1);
      row(line.text + (line.bCorner ? "" : kFirstBlockWord), rows_.laterStart, kRowUpToMotion);
      parts = kRowAfter;
    }
    if (bReturn_ || (k == 0 && byPass()))
      approachFromHome(parts);
    else
      approachFromBeside(parts);
    const int i = mainLoop();
    if (cutsOvercut(k)) overcut(cur_, kNoRow, marksSpan(i));
    retreat();
  }

  void approachFromHome(int parts) {
    if (!run_.bLeadArc) return row(seg(V(0), V(1)), rows_.laterStart, parts);
    row(seg(V(0), run_.ptLeadSplit), rows_.laterStart, parts);
    row(seg(run_.ptLeadSplit, run_.ptLeadArc), kNoRow);
    row(seg({run_.ptLeadArc, V(1), run_.dLeadBulge}), kNoRow);
  }

  void approachFromBeside(int parts) {
    if (!run_.bLeadArc) return row(seg(run_.ptWireEnd, run_.ptReEntry), rows_.laterStart, parts);
    row(seg(run_.ptWireEnd, run_.ptLeadSplit), kNoRow);
    row(seg(run_.ptLeadSplit, run_.ptLeadArc), rows_.laterStart, parts);
    row(seg({run_.ptLeadArc, V(1), run_.dLeadBulge}), kNoRow);
  }

  // The index behind the last span.
  int mainLoop() {
    int i = firstSpan();
    while (i <= lastSpan()) {
      ContourLine line = contourLine(i);
      if (marksSpan(i) && !line.bCorner) line.text += kFirstBlockWord;
      row(line.text, kNoRow);
      i = line.next;
    }
    return i;
  }

  [[nodiscard]] bool cutsOvercut(int k) const {
    if (cur_.distanceTo(run_.ptBreak) < kSamePoint) return false;
    return overcutRule() == kEveryPass || (overcutRule() == kLastPassOnly && k == laterPasses() - 1);
  }

  void retreat() {
    const AcGePoint2d from = bCut_ ? run_.ptBreak : run_.ptReEntry;
    const AcGePoint2d to = bCut_ ? run_.ptBreakExit : run_.ptReEntryExit;
    if (!bReturn_) run_.ptWireEnd = to;
    if (!run_.bExitArc) return row(seg(from, bReturn_ ? V(0) : to), rows_.laterEnd);
    if (bReturn_) return retreatHome(bCut_ ? from : V(n() - 1));
    retreatBeside(from, to);
  }

  void retreatHome(AcGePoint2d start) {
    leadOut(start);
    row(seg({start, run_.ptExitArcB, run_.dLeadBulge}), kNoRow);
    row(seg(run_.ptExitArcB, run_.ptExitArcA), rows_.laterEnd, kRowUpToMotion);
    row(seg(run_.ptExitArcA, V(0)), rows_.laterEnd, kRowAfter);
  }

  void retreatBeside(AcGePoint2d from, AcGePoint2d to) {
    if (!bCut_) {
      from = V(n() - 1);
      leadOut(from);
      to = run_.ptWireEnd = run_.ptExitArcA;
    } else {
      leadOutBeside(from, to);
    }
    row(seg({from, run_.ptExitArcB, run_.dLeadBulge}), kNoRow);
    row(seg(run_.ptExitArcB, to), rows_.laterEnd);
  }

  bool bReturn_;
  InnerRow rows_;
};

}  // namespace

FigureWritten writeInnerLater(const FigureJob& job, bool bReturn) {
  InnerLater writer(job, bReturn);
  if (const auto refused = writer.refusal()) return *refused;
  writer.head();
  if (job.path.hasFlag(kOpenPath)) return writeOpenLater(job);
  writer.run();
  return FigureWritten::kDone;
}

}  // namespace tarnex
