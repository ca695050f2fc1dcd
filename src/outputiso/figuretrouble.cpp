// What is amiss with a figure, and the sentences that tell it.
// Knows runs that the writers have left; nothing is written here.
#include "outputiso/figuretrouble.h"

#include "contour/geometrylibrary.h"
#include "frame/settings.h"

namespace tarnex {

namespace {

// The smallest arc that a wire runs inside of and that is too small for it.
std::optional<FigureNote> tightestArc(const FigureJob& job) {
  FigureNote note{job.path.nPathNo(), FigureTrouble::kRadiusBelowOffset};
  const ProcessStyle style = job.path.getProcessStyle();
  note.limit = largestOffset(style, job.path.nSide());
  const auto& lists = job.run.lists;
  const bool left = (job.path.nSide() * job.path.nDirection() == 1) != sidesSwap(style, job.path.nSide());
  for (std::size_t i = 1; i + 1 < lists.vertices.size(); ++i) {
    const double bulge = lists.bulges[i];
    if (bulge == 0.0 || (bulge > 0.0) != left) continue;
    const double radius = bulgeToCircle(lists.vertices[i], lists.vertices[i + 1], bulge).radius;
    if (radius >= note.limit || (note.value > 0 && note.value <= radius)) continue;
    note.value = radius;
    note.at = lists.vertices[i];
  }
  if (note.value > 0) return note;
  return std::nullopt;
}

}  // namespace

std::vector<FigureNote> notesOf(const FigureJob& job) {
  std::vector<FigureNote> notes;
  const auto tell = [&](FigureTrouble trouble, double limit = 0, AcGePoint2d at = {}) {
    notes.push_back({job.path.nPathNo(), trouble, 0, limit, at});
  };
  const bool outer = job.path.nSide() != kInnerHole;
  if (job.path.passCount() < 0 && !outer && job.context.nCutType == CutType::kByPass)
    tell(FigureTrouble::kNegativePasses);
  if (job.run.bNoStopText) tell(FigureTrouble::kNoStop);
  if (job.run.bStopTooLong) tell(FigureTrouble::kStopTooLong, job.context.settings.dCutoffLen);
  if (outer) {
    if (!job.run.bStoppedAtBreak) tell(FigureTrouble::kFreedInFirstPass);
    if (job.path.passCount() == 0 && job.context.nCutType == CutType::kByPass)
      tell(FigureTrouble::kTabFromOutside);
    if (job.run.dBreakBulgeA != 0.0) tell(FigureTrouble::kBreakOnArc, 0, job.run.ptBreak);
  }
  if (const auto tight = tightestArc(job)) notes.push_back(*tight);
  return notes;
}

std::string sentenceOf(const FigureNote& note, const MessageText& message) {
  const auto number = static_cast<long long>(note.nPathNo);
  switch (note.trouble) {
    case FigureTrouble::kFourAxis:
      return message(20260, {number});
    case FigureTrouble::kNegativePasses:
      return message(20265, {number});
    case FigureTrouble::kNoStop:
      return message(20267, {number});
    case FigureTrouble::kBreakless:
      return message(20270, {number});
    case FigureTrouble::kStopTooLong:
      return message(20271, {number, note.limit});
    case FigureTrouble::kFreedInFirstPass:
      return message(20272, {number});
    case FigureTrouble::kTabFromOutside:
      return message(20273, {number});
    case FigureTrouble::kBreakOnArc:
      return message(20274, {number, note.at.x, note.at.y});
    case FigureTrouble::kRadiusBelowOffset:
      return message(20275, {number, note.at.x, note.at.y, note.value, note.limit});
  }
  return {};
}

}  // namespace tarnex
