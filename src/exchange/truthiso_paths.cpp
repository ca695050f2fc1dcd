// Figures and expectations of the truth test of ISO programs, read off paths, settings and drawing variables.
// Knows no program.
#include "exchange/truthiso_paths.h"

#include <algorithm>

#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "machining/joblayout.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

using truth::IsoFigure;
using truth::IsoKind;

// A step out of a corner and back is none of an ISO program's.
double plainBulge(double bulge) {
  return bulge == kMarkedBulge ? 0 : bulge;
}

void takeContour(const CToolPath& path, IsoFigure& f) {
  const auto& v = path.polyline().vertices;
  const bool closed = f.kind != IsoKind::kOpen;
  if (v.size() < 3) {
    f.refusal = "its path has no contour";
    return;
  }
  f.threading = v[0].point;
  for (std::size_t i = 1; i + 1 < v.size(); ++i) {
    if (v[i].point == v[i + 1].point) continue;
    f.spans.push_back(truth::spanStroke(v[i].point, v[i + 1].point, plainBulge(v[i].bulge)));
    f.tapers.push_back(i < path.aSegTaper().size() ? path.aSegTaper()[i] : 0.0);
  }
  if (f.spans.empty()) f.refusal = "its contour has no length";
  if (closed && f.refusal.empty() &&
      truth::dist(f.spans.front().start, f.spans.back().end) > truth::kAllowance)
    f.refusal = "its contour isn't closed";
}

void takeBreak(const CToolPath& path, IsoFigure& f) {
  if (path.ptBreak() == kNoBreak) {
    if (f.kind == IsoKind::kOuter) f.refusal = "it is an outer shape without a break";
    return;
  }
  f.breakAt = path.ptBreak();
  if (f.kind != IsoKind::kOuter || !f.refusal.empty()) return;
  double least = 1e300;
  for (const auto& s : f.spans) least = std::min(least, truth::nearest(s, *f.breakAt).distance);
  if (least > truth::kAllowance)
    f.refusal = formatted("its break (%.4f, %.4f) lies %.4f mm beside its contour", f.breakAt->x,
                          f.breakAt->y, least);
}

void takeSides(const CToolPath& path, IsoFigure& f) {
  const int kind = kindOf(f.style);
  const bool outer = f.kind == IsoKind::kOuter;
  f.swapped = outer ? kind == StyleKind::kSwapOuter : kind == StyleKind::kSwapInner;
  // The turn of a closed contour is seen in its area, not in what the path says of itself.
  f.turn = f.kind == IsoKind::kOpen ? path.nDirection() : truth::areaOf(f.spans) > 0 ? 1 : -1;
  f.wire = outer ? -f.turn : f.turn;
}

}  // namespace

truth::IsoFigure isoFigureOfPath(const CToolPath& path) {
  IsoFigure f;
  f.number = path.nPathNo();
  f.kind = path.hasFlag(kOpenPath)       ? IsoKind::kOpen
           : path.nSide() == kOuterShape ? IsoKind::kOuter
                                         : IsoKind::kHole;
  f.style = path.getProcessStyle();
  f.fourAxis = path.hasFlag(kFourAxis);
  f.punch = path.hasFlag(kPunchJob);
  f.marked = path.hasFlag(kIsoMark64);
  f.circle = path.bCircle();
  f.ownTaper = path.dTaper();
  if (f.fourAxis) return f;
  takeContour(path, f);
  takeBreak(path, f);
  if (!f.spans.empty()) takeSides(path, f);
  if (path.hasFlag(kGuideCurve)) {
    const PathCurve& g = path.upper();
    for (std::size_t i = 0; i + 1 < g.vertices.size() && i < g.bulges.size(); ++i)
      if (g.vertices[i] != g.vertices[i + 1])
        f.guide.push_back(truth::spanStroke(g.vertices[i], g.vertices[i + 1], g.bulges[i]));
  }
  return f;
}

std::vector<truth::IsoFigure> isoFiguresOfPaths(const AcDbDatabase& drawing) {
  std::vector<IsoFigure> figures;
  for (AcDbObjectId id : drawing.modelSpaceEntities())
    if (const auto* path = drawing.peek<CToolPath>(id); path && path->numVerts() > 0 && path->hasFirstPass())
      figures.push_back(isoFigureOfPath(*path));
  std::ranges::stable_sort(figures, {}, &IsoFigure::number);
  return figures;
}

truth::IsoExpected isoExpectedOfPaths(AcDbDatabase& drawing, const WireCutSettings& settings) {
  truth::IsoExpected e;
  e.walk.origin = drawing.ucsorg.flat();
  e.overcut = std::max(0.0, settings.dOvercutLen);
  e.reliefStraight = std::max(0.0, settings.dIsoFixB);
  e.reliefArc = std::max(0.0, settings.dIsoFixA);
  e.markedOvercut = settings.nIsoOption796 == 0;
  e.byNumber = DrawingVars(drawing).getInt("ISO_SORTMODE") == SortMode::kByNumber;
  return e;
}

}  // namespace tarnex
