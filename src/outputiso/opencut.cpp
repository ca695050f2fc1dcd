// The passes of an open cut: the first along it, the later ones back and forth.
// Knows one figure; its start block and the head of its later passes are those of inner figures.
#include "outputiso/inner.h"

namespace tarnex {

namespace {

class OpenCut : public FigureWriter {
 public:
  explicit OpenCut(const FigureJob& job) : FigureWriter(job), rows_(innerRows(context_.nCutType)) {}

  void firstPass(int figureIndex) {
    run_.nFigureNo = figureIndex + 1;
    setPath();
    iso_.setPass(0, 1);
    lead();
    for (int i = 1; i < n() - 2; ++i) row(spanLine(span(i), forwardTaper(i)), kNoRow);
    lastSpan(n() - 2);
    row(seg(run_.ptBreak, run_.ptBreakExit), InnerRow::kRetreat);
    run_.ptWireEnd = run_.ptBreakExit;
  }

  void laterPasses() {
    setPath();
    iso_.setPass(1, 1);
    int dir = byPass() ? -1 : 1;
    const int passes = FigureWriter::laterPasses();
    for (int k = 0; k < passes; ++k) {
      dir = -dir;
      iso_.setPass(k + 1, dir);
      if (dir > 0)
        forwardPass();
      else
        backwardPass();
    }
  }

 private:
  void lead() {
    const auto split = leadSplit();
    if (!split) return unsplitLead();
    row(seg(V(0), split->point), FigureRow::kLeadRapid);
    row(seg(split->point, V(1)), FigureRow::kLeadCompensated);
  }

  void lastSpan(int i) {
    raw(iso_.taperChange(forwardTaper(i)));
    if (const auto stop = stopPoint(span(i))) {
      row(seg(stop->upTo), InnerRow::kUpToStop);
      return row(seg(stop->rest), InnerRow::kContourEnd);
    }
    run_.bStopTooLong = wantsStop();
    row(seg(span(i)), InnerRow::kContourEnd);
  }

  void forwardPass() {
    row(seg(V(0), V(1)), rows_.laterStart);
    for (int i = 1; i < n() - 1; ++i) row(spanLine(span(i), forwardTaper(i)), kNoRow);
    row(seg(run_.ptBreak, run_.ptBreakExit), rows_.laterEnd);
    run_.ptWireEnd = run_.ptBreakExit;
  }

  void backwardPass() {
    row(seg(run_.ptBreakExit, run_.ptBreak), rows_.laterStart);
    AcGePoint2d cur = run_.ptBreak;
    for (int i = n() - 1; i > 1; --i) {
      row(spanLine({cur, V(i - 1), -B(i - 1)}, backwardTaper(i)), kNoRow);
      cur = V(i - 1);
    }
    row(seg(cur, V(0)), rows_.laterEnd);
    run_.ptWireEnd = V(0);
  }

  InnerRow rows_;
};

}  // namespace

FigureWritten writeOpenFirst(const FigureJob& job, int figureIndex) {
  OpenCut writer(job);
  if (const auto refused = writer.refusal()) return *refused;
  writer.firstPass(figureIndex);
  return FigureWritten::kDone;
}

FigureWritten writeOpenLater(const FigureJob& job) {
  OpenCut writer(job);
  if (const auto refused = writer.refusal()) return *refused;
  writer.laterPasses();
  return FigureWritten::kDone;
}

}  // namespace tarnex
