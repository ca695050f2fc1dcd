// The first pass of an inner figure: lead, contour with its stop point, overcut, way off the contour.
// Knows one figure; later passes read from its run what is settled here.
#include <cmath>

#include "contour/geometrylibrary.h"
#include "frame/settings.h"
#include "outputiso/inner.h"

namespace tarnex {

namespace {

constexpr double kShortestLeadArc = 0.2;  // mm, itself long enough
constexpr double kShortestExitArc = 0.2;  // mm, itself too short
constexpr int kLeadArcs = 1;              // lead kind; every other is straight

class InnerFirst : public InnerWriter {
 public:
  explicit InnerFirst(const FigureJob& job) : InnerWriter(job) {}

  void start(int figureIndex) {
    run_.nFigureNo = figureIndex + 1;
    setPath();
    iso_.setPass(0, 1);
    startBlock(figureIndex, innerRows(context_.nCutType).figureStart);
  }

  void run(bool bReturn) {
    guideCurve();
    setLeadBulge();
    startPass(iso_.figure.styleNow.passOffset[0]);
    run_.bLeadArc = run_.bExitArc = false;
    if (spanAhead()) firstSpanAhead();
    lead();
    const int last = mainLoop();
    lastPiece(last);
    overcutLengths();
    if (overcutPoint()) {
      if (overcutRule() == kEveryPass || overcutRule() == kFirstPassOnly)
        overcut(V(1), InnerRow::kOvercut, false);
      retreatPointsBehindOvercut();
    } else {
      retreatPointsAtEntry();
    }
    exit(bReturn);
  }

 private:
  void guideCurve() {
    if (!path_.hasFlag(kGuideCurve)) return;
    const PathCurve& guide = path_.upper();
    for (std::size_t i = 0; i + 1 < guide.vertices.size() && i < guide.bulges.size(); ++i)
      row(seg({guide.vertices[i], guide.vertices[i + 1], guide.bulges[i]}), kNoRow);
  }

  // With the passes of all figures in turn, a sharp corner isn't marked here.
  void firstSpanAhead() {
    ContourLine line = contourLine(1);
    if (!line.bCorner || !byPass()) line.text += kFirstBlockWord;
    row(line.text, kNoRow);
  }

  [[nodiscard]] int leadKind() const {
    if (path_.hasFlag(kAutoFixed)) return 0;
    return path_.hasFlag(kIsoMark64) ? context_.settings.nIsoOption792 : context_.nLeaderType;
  }

  void lead() {
    const auto split = leadSplit();
    if (!split) return unsplitLead();
    const AcGePoint2d from = run_.ptLeadSplit = split->point;
    row(seg(V(0), from), FigureRow::kLeadRapid);
    if (leadKind() != kLeadArcs || split->length < kShortestLeadArc)
      return row(seg(from, V(1)), FigureRow::kLeadCompensated);
    const int direction = path_.nDirection();
    const double a = spanNormalAngle(V(1), V(2), B(1), direction, false);
    run_.bLeadArc = true;
    run_.ptLeadArc = acutPolar(from, a - direction * leadAngle(), split->length);
    row(seg(from, run_.ptLeadArc), FigureRow::kLeadCompensated);
    row(seg({run_.ptLeadArc, V(1), run_.dLeadBulge}), kNoRow);
  }

  // Up to the last span, whose index is the result.
  int mainLoop() {
    int i = firstSpan();
    while (i < lastSpan()) {
      ContourLine line = contourLine(i);
      if (marksSpan(i)) line.text += takeMark();
      row(line.text, kNoRow);
      i = line.next;
    }
    return i;
  }

  // The mark of a pass's first block, once.
  const char* takeMark() {
    const bool due = spanAhead() && !marked_;
    marked_ = true;
    return due ? kFirstBlockWord : "";
  }

  void lastPiece(int i) {
    // A contour of one span that was told ahead of the lead: its end is all that is left.
    if (i > lastSpan()) return row("", InnerRow::kContourEnd);
    raw(iso_.taperChange({T(i), prev_, bAll(), B(i), T(i + 1)}));
    // Behind a corner that was made sharp the wire stands there, not at the span's start.
    IsoMove piece = span(i);
    if (piece.bulge == 0.0) piece.from = cur_;
    if (const auto stop = stopPoint(piece)) {
      const std::string upTo = seg(stop->upTo);
      row(upTo + takeMark(), InnerRow::kUpToStop);
      return row(seg(stop->rest), InnerRow::kContourEnd);
    }
    run_.bStopTooLong = wantsStop();
    if (run_.bStopTooLong) {
      takeMark();
      row("", InnerRow::kUpToStop);
    }
    const std::string whole = seg(piece);
    row(whole + takeMark(), InnerRow::kContourEnd);
  }

  void overcutLengths() {
    const WireCutSettings& settings = context_.settings;
    const bool closes = path_.bClosed() || path_.bCircle();
    const bool without = path_.hasFlag(kIsoMark64) && settings.nIsoOption796 != 0;
    run_.dOvercutLen = closes && !without ? settings.dOvercutLen : 0.0;
    const double lead = V(0).distanceTo(V(1));
    run_.dOvercutExit = settings.dOvercutExit;
    if (!(run_.dOvercutExit > 0.0) || lead < run_.dOvercutExit) run_.dOvercutExit = lead / 2;
  }

  // A short span 1 takes an overcut of half its length, but in a circle's path.
  bool overcutPoint() {
    double& length = run_.dOvercutLen;
    if (!(length > 0.0)) return false;
    const double limit = spanLength(V(1), V(2), B(1));
    if (length >= limit && (B(1) == 0.0 || !path_.bCircle())) length = limit / 2;
    const auto end = pointAlongSpan(V(1), V(2), B(1), length);
    if (!end) return false;
    run_.ptBreak = end->point;
    run_.dOvercutBulgeA = end->bulgeBefore;
    run_.dOvercutBulgeB = end->bulgeAfter;
    return true;
  }

  [[nodiscard]] AcGePoint2d retreatFromEntry() const {
    return V(1) + (V(0) - V(1)).normal() * run_.dOvercutExit;
  }

  void retreatPointsBehindOvercut() {
    AcGeVector2d away = (V(2) - V(1)).perpVector() * turn();
    if (B(1) != 0.0)
      away = (bulgeToCircle(V(1), V(2), B(1)).centre - run_.ptBreak) * (B(1) >= 0.0 ? turn() : -turn());
    run_.ptBreakExit = run_.ptBreak + away.normal() * run_.dOvercutExit;
    run_.ptReEntry = V(1);
    run_.ptReEntryExit = retreatFromEntry();
  }

  void retreatPointsAtEntry() {
    run_.dOvercutBulgeA = run_.dOvercutBulgeB = B(1);
    run_.ptBreak = run_.ptReEntry = V(1);
    run_.ptBreakExit = run_.ptReEntryExit = retreatFromEntry();
  }

  void exit(bool bReturn) {
    run_.bExitArc = leadKind() == kLeadArcs && run_.dOvercutExit > kShortestExitArc;
    const AcGePoint2d from = bCut_ ? run_.ptBreak : V(1);
    run_.ptWireEnd = bReturn ? V(0) : bCut_ && run_.bExitArc ? run_.ptBreakExit : run_.ptReEntryExit;
    if (bReturn)
      exitHome(from);
    else
      exitBeside(from, run_.ptWireEnd);
  }

  void exitHome(AcGePoint2d from) {
    if (!run_.bExitArc) return row(seg(from, V(0)), InnerRow::kRetreat);
    leadOut(from);
    row(seg({from, run_.ptExitArcB, run_.dLeadBulge}), kNoRow);
    row(seg(run_.ptExitArcB, run_.ptExitArcA), InnerRow::kRetreat);
    row(seg(run_.ptExitArcA, V(0)), kNoRow);
  }

  // From where the wire stands: incremental output and arcs count from there.
  void exitBeside(AcGePoint2d from, AcGePoint2d to) {
    if (!run_.bExitArc) return row(seg(from, to), InnerRow::kRetreat);
    leadOutBeside(from, to);
    row(seg({from, run_.ptExitArcB, run_.dLeadBulge}), kNoRow);
    row(seg(run_.ptExitArcB, to), InnerRow::kRetreat);
  }

  bool marked_ = false;
};

}  // namespace

FigureWritten writeInnerFirst(const FigureJob& job, int figureIndex, bool bReturn) {
  InnerFirst writer(job);
  if (const auto refused = writer.refusal()) return *refused;
  writer.start(figureIndex);
  if (job.path.hasFlag(kOpenPath)) return writeOpenFirst(job, figureIndex);
  writer.run(bReturn);
  return FigureWritten::kDone;
}

}  // namespace tarnex
