// The overcut of a styled path: how long it is, and where the wire leaves it.
// Knows the wire's centre path and the settings; how a program cuts it is the writers' matter.
#include "contour/geometrylibrary.h"
#include "frame/settings.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// Square to a straight span, towards or away from the centre of an arc; `turn` is side times direction.
AcGeVector2d exitWay(const PathCurve& wire, AcGePoint2d from, int turn) {
  const AcGePoint2d a = wire.vertices[1], b = wire.vertices[2];
  const double bulge = wire.bulges[1];
  if (bulge == 0) return (b - a).perpVector() * turn;
  return (bulgeToCircle(a, b, bulge).centre - from) * (bulge > 0 ? turn : -turn);
}

}  // namespace

DisplayedOvercut CToolPath::displayedOvercut(const WireCutSettings& settings) const {
  if (!bHasStyle_) return {dOvercutLen_, dOvercutExit_, settings.dOvercutExit, {}};
  return overcutOn(nSide_ == kInnerHole ? wireCentrePath() : OffsetPath(), settings);
}

DisplayedOvercut CToolPath::overcutOn(const PathCurve& wire, const WireCutSettings& settings) const {
  DisplayedOvercut now{dOvercutLen_, dOvercutExit_, settings.dOvercutExit, {}};
  if (nSide_ != kInnerHole) {
    if (nBreakSeg_ >= 0) now.dOvercutExit = ptBreak_.distanceTo(ptBreakExit_);
    return now;
  }
  now.dOvercutLen = contour_.bClosed || contour_.bCircle ? settings.dOvercutLen : 0;
  if (!(now.dOvercutLen > 0) || wire.vertices.size() < 3) return now;
  const auto end = pointAlongSpan(wire.vertices[1], wire.vertices[2], wire.bulges[1], now.dOvercutLen);
  if (!end) return now;
  if (now.settingsExit <= 0) now.settingsExit = wire.vertices[0].distanceTo(wire.vertices[1]) / 2;
  const AcGeVector2d way = exitWay(wire, end->point, nSide_ * nDirection_).normal();
  now.exit = DisplayedOvercut::Line{end->point, end->point + way * now.settingsExit};
  now.dOvercutExit = now.settingsExit;  // the line's length, not rounded by its ends
  return now;
}

void CToolPath::refreshFromDisplay(WireCutSettings& settings) {
  const DisplayedOvercut now = displayedOvercut(settings);
  settings.dOvercutExit = now.settingsExit;
  change(dOvercutLen_, now.dOvercutLen);
  change(dOvercutExit_, now.dOvercutExit);
}

}  // namespace tarnex
