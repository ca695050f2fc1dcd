// The break point by a pick: on the path, away from it, over to the upper contour.
// Knows one path; what a program makes of the break is the writers' matter.
#include "toolpath/breakpoint.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"

namespace tarnex {

namespace {

constexpr int kSnapNear = 512;  // of OSMODE

struct Span {
  AcGePoint2d start, end;
  double bulge = 0;
};

double signOf(double bulge) {
  return bulge > 0 ? 1.0 : -1.0;
}

double straightened(double bulge) {
  return isArcBulge(bulge) ? bulge : 0;
}

// The closed walk: the last segment runs back to the threading point.
Span segmentOf(const PolylineCurve& c, std::size_t i) {
  const auto& v = c.vertices;
  return {v[i].point, v[(i + 1) % v.size()].point, straightened(v[i].bulge)};
}

Span segmentOf(const PathCurve& c, std::size_t i) {
  const double bulge = i < c.bulges.size() ? c.bulges[i] : 0;
  return {c.vertices[i], c.vertices[(i + 1) % c.vertices.size()], straightened(bulge)};
}

std::optional<std::size_t> segmentAt(const PolylineCurve& c, AcGePoint2d p) {
  for (std::size_t i = 0; i < c.vertices.size(); ++i) {
    const Span s = segmentOf(c, i);
    if (s.start != s.end && isPointOnSpan(s.start, s.end, s.bulge, p)) return i;
  }
  return std::nullopt;
}

struct Halves {
  double before = 0, behind = 0;  // bulges
};

Halves halvesAt(const Span& s, AcGePoint2d p) {
  if (s.bulge == 0) return {};
  const AcGePoint2d centre = bulgeToCircle(s.start, s.end, s.bulge).centre;
  const double whole = 4 * std::atan(s.bulge);
  double before = sweepAngle(centre, s.start, p, signOf(s.bulge));
  // At the very ends rounding can put p beside the arc, and the sweep goes all the way round.
  if (std::abs(before) > std::abs(whole)) before = p.distanceTo(s.start) < p.distanceTo(s.end) ? 0 : whole;
  return {std::tan(before / 4), std::tan((whole - before) / 4)};
}

// Away from the contour at p, one long. `turn` is nDirection * nSide.
AcGeVector2d wayOut(const Span& s, AcGePoint2d p, int turn) {
  if (s.bulge == 0) return AcGeMatrix3d::rotation(kPi * turn * 0.5, {}).apply(s.end - s.start).normal();
  const AcGePoint2d centre = bulgeToCircle(s.start, s.end, s.bulge).centre;
  return ((centre - p) * (turn * signOf(s.bulge))).normal();
}

std::optional<AcGePoint2d> partnerOn(const Span& upper, AcGePoint2d p, AcGeVector2d way) {
  if (upper.start == upper.end) return std::nullopt;
  const auto met =
      intersect(spanCurve(upper.start, upper.end, upper.bulge), LineCurve{p, p + way}, Extend::kExtendArg);
  std::optional<AcGePoint2d> nearest;
  for (const AcGePoint2d at : met)
    if (!nearest || at.distanceTo(p) < nearest->distanceTo(p)) nearest = at;
  return nearest;
}

bool addUpper(const CToolPath& path, AcGeVector2d way, double exit, PathBreak& at) {
  const auto i = static_cast<std::size_t>(at.nBreakSeg);
  if (i >= path.upper().vertices.size()) return false;
  const Span upper = segmentOf(path.upper(), i);
  const auto partner = partnerOn(upper, at.ptBreak, way);
  if (!partner) return false;
  const Halves halves = halvesAt(upper, *partner);
  at.ptBreakUpper = *partner;
  at.ptBreakUpperExit = *partner + way * exit;
  at.dBreakUpperBulgeA = halves.before;
  at.dBreakUpperBulgeB = halves.behind;
  return true;
}

// The picked point on the path; nothing when the user gives up.
std::optional<AcGePoint2d> askPoint(AcEditor& editor, const CToolPath& path, const std::string& prompt) {
  const AcGePoint3d base = solid(path.getPointAt(std::min(1, path.numVerts() - 1)));
  for (;;) {
    editor.print("\n");
    const auto answer = editor.acedGetPoint(prompt, &base);
    if (answer) return editor.acedOsnap(answer.value, "near").value_or(answer.value).flat();
    if (answer.reply == Reply::RTCAN) return std::nullopt;
  }
}

}  // namespace

PathBreak CToolPath::breakPoint() const {
  return {nBreakSeg_,    ptBreak_,          ptBreakExit_,       dBreakBulgeA_,     dBreakBulgeB_,
          ptBreakUpper_, ptBreakUpperExit_, dBreakUpperBulgeA_, dBreakUpperBulgeB_};
}

void CToolPath::setBreakPoint(const PathBreak& at) {
  if (at == breakPoint()) return;
  assertWriteEnabled();
  nBreakSeg_ = at.nBreakSeg;
  ptBreak_ = at.ptBreak;
  ptBreakExit_ = at.ptBreakExit;
  dBreakBulgeA_ = at.dBreakBulgeA;
  dBreakBulgeB_ = at.dBreakBulgeB;
  ptBreakUpper_ = at.ptBreakUpper;
  ptBreakUpperExit_ = at.ptBreakUpperExit;
  dBreakUpperBulgeA_ = at.dBreakUpperBulgeA;
  dBreakUpperBulgeB_ = at.dBreakUpperBulgeB;
}

namespace {

std::optional<PathBreak> breakOn(const CToolPath& path, std::size_t segment, AcGePoint2d p,
                                 double dOvercutExit) {
  const Span s = segmentOf(path.polyline(), segment);
  const double leadIn = path.getPointAt(0).distanceTo(path.getPointAt(1));
  const double exit = dOvercutExit > 0 ? dOvercutExit : leadIn / 2;
  const AcGeVector2d way = wayOut(s, p, path.nDirection() * path.nSide());
  const Halves halves = halvesAt(s, p);
  PathBreak at = path.breakPoint();
  at.nBreakSeg = static_cast<int>(segment);
  at.ptBreak = p;
  at.ptBreakExit = p + way * exit;
  at.dBreakBulgeA = halves.before;
  at.dBreakBulgeB = halves.behind;
  if (path.hasFlag(kFourAxis) && !addUpper(path, way, exit, at)) return std::nullopt;
  return at;
}

}  // namespace

std::optional<PathBreak> breakAt(const CToolPath& path, AcGePoint2d p, double dOvercutExit) {
  const auto i = segmentAt(path.polyline(), p);
  return i ? breakOn(path, *i, p, dOvercutExit) : std::nullopt;
}

std::optional<PathBreak> breakFromEnd(const CToolPath& path, double length, double dOvercutExit) {
  if (path.numVerts() < 3 || !(length >= 0)) return std::nullopt;
  const auto last = static_cast<std::size_t>(path.numVerts() - 2);
  const Span s = segmentOf(path.polyline(), last);
  const double whole = s.start == s.end ? 0 : spanLength(s.start, s.end, s.bulge);
  constexpr double kRoundoff = 1e-9;  // mm
  if (whole == 0 || whole + kRoundoff < length) return std::nullopt;
  const double part = std::min(length / whole, 1.0);
  AcGePoint2d p = s.end + (s.start - s.end) * part;
  if (s.bulge != 0) {
    const AcGePoint2d centre = bulgeToCircle(s.start, s.end, s.bulge).centre;
    const double back = -4 * std::atan(s.bulge) * part;
    p = AcGeMatrix3d::rotation(back, centre).apply(s.end);
  }
  return breakOn(path, last, p, dOvercutExit);
}

bool placeBreakFromEnd(AcEditor& editor, Opened<CToolPath>& path, double length, const BreakPrompt& prompt) {
  if (!path) return false;
  const auto found = breakFromEnd(*path, length, prompt.dOvercutExit);
  if (!found) return pickBreakPoint(editor, path, prompt);
  path->setBreakPoint(*found);
  return true;
}

bool pickBreakPoint(AcEditor& editor, Opened<CToolPath>& path, const BreakPrompt& prompt) {
  if (!path || path->numVerts() < 2) return false;
  std::optional<PathBreak> found;
  (void)path.downgradeOpen();
  {
    CommandSetting setting(editor);
    setting.world().osmode(kSnapNear);
    while (!found) {
      const auto p = askPoint(editor, *path, prompt.text);
      if (!p) break;
      found = breakAt(*path, *p, prompt.dOvercutExit);
    }
  }
  if (path.upgradeOpen() != ErrorStatus::eOk || !found) return false;
  path->setBreakPoint(*found);
  return true;
}

}  // namespace tarnex
