// Pieces that the writers of all figures share: start block, lead, lines of spans, stop point.
// Knows one figure; which pieces a pass consists of, the writers know.
#include "outputiso/figurewriter.h"

#include <cmath>
#include <utility>

#include "contour/geometrylibrary.h"
#include "frame/settings.h"

namespace tarnex {

namespace {

constexpr double kShortestLead = 0.1;  // mm; shorter settings split a lead in its middle
constexpr int kFewestVertices = 3;     // a lead and one span

double radiusOf(const IsoMove& span) {
  return span.bulge == 0.0 ? 0.0 : bulgeToCircle(span.from, span.to, span.bulge).radius;
}

}  // namespace

IsoFigureRun::IsoFigureRun(const CToolPath& path, OutputLists outputLists)
    : lists(std::move(outputLists)),
      ptBreak(path.ptBreak()),
      ptBreakExit(path.ptBreakExit()),
      nBreakSeg(path.nBreakSeg()),
      dBreakBulgeA(path.breakPoint().dBreakBulgeA),
      dBreakBulgeB(path.breakPoint().dBreakBulgeB),
      dOvercutLen(path.dOvercutLen()),
      dOvercutExit(path.dOvercutExit()) {
  if (lists.vertices.empty()) return;
  ptWireEnd = ptLeadEnd = lists.vertices.front();
  if (path.hasFlag(kOpenPath) && ptBreak == kNoBreak) ptBreak = ptBreakExit = lists.vertices.back();
}

FigureWriter::FigureWriter(const FigureJob& job)
    : context_(job.context), iso_(job.context.iso), path_(job.path), run_(job.run) {}

int FigureWriter::laterPasses() const {
  return passesOf(iso_.figure.styleNow) - 1;
}

std::optional<FigureWritten> FigureWriter::refusal() {
  if (path_.hasFlag(kFourAxis)) return FigureWritten::kFourAxis;
  if (n() >= kFewestVertices) return std::nullopt;
  raw("\n" + context_.sNoPath + "\n");
  return FigureWritten::kNoPath;
}

void FigureWriter::setPath() {
  iso_.setPath(
      {run_.nFigureNo, path_.nDirection(), path_.nSide(), path_.flags(), V(0), path_.getProcessStyle()});
}

std::string FigureWriter::seg(const IsoMove& move) {
  return iso_.segmentWords(move, iso_.figure.styleNow);
}

void FigureWriter::row(std::string_view motion, int r, int parts) {
  iso_.appendBlock(context_.out, motion, r, "\n", parts);
}

void FigureWriter::startBlock(int figureIndex, int laterRow) {
  if (figureIndex != 0) return row("", laterRow);
  if (spanAhead()) return row("", FigureRow::kProgramStart, kRowAfter);
  const AcGePoint2d p = V(0), origin = iso_.ptOriginCopy;
  row("X" + iso_.formatNumber(p.x - origin.x) + "Y" + iso_.formatNumber(p.y - origin.y),
      FigureRow::kProgramStart);
}

std::optional<FigureWriter::LeadSplit> FigureWriter::leadSplit() const {
  double length = context_.settings.dIsoOvercut;
  const double lead = V(0).distanceTo(V(1));
  if (context_.nLeaderType == 1 && (length <= kShortestLead || lead <= length)) length = lead / 2;
  if (!(length > 0.0)) return std::nullopt;
  const auto at = pointAlongSpan(V(1), V(0), 0.0, length);
  if (!at) return std::nullopt;
  return LeadSplit{at->point, length};
}

void FigureWriter::unsplitLead() {
  std::string line = seg(V(0), V(1));
  if (!spanAhead()) {
    line = iso_.block(line, FigureRow::kLeadCompensated, "\n", kWholeRow);
    line.erase(line.find_last_not_of('\n') + 1);
  }
  row(line, FigureRow::kLeadRapid);
}

IsoTaper FigureWriter::forwardTaper(int i) const {
  return {T(i), T(i - 1), bAll(), B(i), T(i + 1)};
}

IsoTaper FigureWriter::backwardTaper(int i) const {
  return {T(i - 1), T(i), bAll(), -B(i - 1), T(i - 2)};
}

std::string FigureWriter::spanLine(const IsoMove& piece, const IsoTaper& taper) {
  std::string line = iso_.taperChange(taper);
  join(line, seg(piece));
  if (taper.bAllCorners) line += iso_.cornerWord(taper, radiusOf(piece));
  return line;
}

bool FigureWriter::wantsStop() const {
  return context_.settings.dCutoffLen > 0.0;
}

std::optional<FigureWriter::StopPoint> FigureWriter::stopPoint(const IsoMove& span) const {
  if (!wantsStop()) return std::nullopt;
  const auto back = pointAlongSpan(span.to, span.from, -span.bulge, context_.settings.dCutoffLen);
  if (!back) return std::nullopt;
  return StopPoint{{span.from, back->point, -back->bulgeAfter}, {back->point, span.to, -back->bulgeBefore}};
}

}  // namespace tarnex
