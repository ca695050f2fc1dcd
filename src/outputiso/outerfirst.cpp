// The first pass of an outer figure: lead, contour as far as the break, the move off it.
// Knows one figure; what the later passes leave uncut follows from the break that is found here.
#include <cmath>

#include "contour/geometrylibrary.h"
#include "outputiso/outer.h"

namespace tarnex {

OuterWriter::OuterWriter(const FigureJob& job) : FigureWriter(job), rows_(outerRows(job.context.nCutType)) {}

bool OuterWriter::holdsBreak(int i) const {
  return isPointOnSpan(V(i), V(i + 1), B(i), run_.ptBreak);
}

std::optional<FigureWritten> OuterWriter::refusal() {
  if (const auto refused = FigureWriter::refusal()) return refused;
  return isBreakless() ? std::optional(FigureWritten::kBreakless) : std::nullopt;
}

bool OuterWriter::isBreakless() const {
  if (run_.nBreakSeg >= 0) return false;
  for (int i = 1; i < n() - 1; ++i)
    if (holdsBreak(i)) return false;
  return true;
}

namespace {

class OuterFirst : public OuterWriter {
 public:
  explicit OuterFirst(const FigureJob& job) : OuterWriter(job) {}

  void write(int figureIndex) {
    run_.nFigureNo = figureIndex + 1;
    setPath();
    iso_.setPass(0, 1);
    startBlock(figureIndex, rows_.figureStart);
    run_.dBreakBulgeA = run_.dBreakBulgeB = 0.0;
    run_.bStoppedAtBreak = false;
    run_.ptWireEnd = V(1);
    if (spanAhead()) firstSpanAhead();
    lead();
    contour();
    if (laterPasses() == 0) return;
    row(seg(run_.ptBreak, run_.ptBreakExit), OuterRow::kOffContour);
    run_.ptWireEnd = run_.ptBreakExit;
  }

 private:
  // A break on this span ends it, but not the pass: the control has been told the span ahead of its lead.
  void firstSpanAhead() {
    const bool last = holdsBreak(1);
    row(line(1, last) + kFirstBlockWord, last ? OuterRow::kBreak : kNoRow);
    run_.ptWireEnd = V(2);
  }

  void lead() {
    const auto split = leadSplit();
    run_.ptLeadEnd = split ? split->point : V(0);
    if (!split) return unsplitLead();
    row(seg(V(0), run_.ptLeadEnd), FigureRow::kLeadRapid);
    row(seg(run_.ptLeadEnd, V(1)), FigureRow::kLeadCompensated);
  }

  void contour() {
    for (int i = firstSpan(); i < n() - 1; ++i) {
      const bool last = holdsBreak(i);
      row(line(i, last) + mark(i == firstSpan()), last ? OuterRow::kBreak : kNoRow);
      run_.ptWireEnd = last ? run_.ptBreak : V(i + 1);
      run_.bStoppedAtBreak = last;
      if (last) return;
    }
  }

  std::string line(int i, bool upToBreak) {
    if (!upToBreak) return forwardLine(i);
    splitAt(i);
    return spanLine({V(i), run_.ptBreak, run_.dBreakBulgeA}, forwardTaper(i));
  }

  // Both parts turn as the span does, also where the break is one of its ends.
  void splitAt(int i) {
    run_.nBreakSeg = i;
    run_.dBreakBulgeA = run_.dBreakBulgeB = 0.0;
    if (B(i) == 0.0) return;
    const AcGePoint2d centre = bulgeToCircle(V(i), V(i + 1), B(i)).centre;
    const double way = B(i) > 0.0 ? 1.0 : -1.0;
    run_.dBreakBulgeA = std::tan(sweepAngle(centre, V(i), run_.ptBreak, way) / 4);
    run_.dBreakBulgeB = std::tan(sweepAngle(centre, run_.ptBreak, V(i + 1), way) / 4);
  }
};

}  // namespace

bool isBreakless(const FigureJob& job) {
  return job.path.nSide() != kInnerHole && OuterWriter(job).isBreakless();
}

FigureWritten writeOuterFirst(const FigureJob& job, int figureIndex, bool /*bReturn*/) {
  OuterFirst writer(job);
  if (const auto refused = writer.refusal()) return *refused;
  writer.write(figureIndex);
  return FigureWritten::kDone;
}

}  // namespace tarnex
