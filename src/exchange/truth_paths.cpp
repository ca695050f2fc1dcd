// Figures and expectations of the truth test, read off paths, settings and drawing variables.
// Knows no program.
#include "exchange/truth_paths.h"

#include <algorithm>

#include "exchange/nearby.h"
#include "exchange/plane.h"
#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

using truth::Point;

constexpr double kOnContour = 0.002;  // mm; vertices nearer than 0.001 are made one when a path is built
constexpr int kMostTransits = 100;

bool isStep(const std::vector<BulgeVertex>& v, std::size_t i) {
  return i > 0 && i + 2 < v.size() && v[i].bulge == kMarkedBulge && v[i + 1].bulge == kMarkedBulge &&
         v[i].point.distanceTo(v[i + 2].point) <= truth::kAllowance;
}

std::vector<std::string> blocksOf(const std::string& text) {
  std::vector<std::string> out;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t bar = std::min(text.find('|', from), text.size());
    out.push_back(text.substr(from, bar - from));
    from = bar + 1;
  }
  return out;
}

// The path's vertices without its steps, its marks with them.
struct Reading {
  std::vector<BulgeVertex> vertices;
  truth::PathMarks marks;
};

Reading readingOf(const CToolPath& path) {
  const auto& v = path.polyline().vertices;
  Reading out;
  out.marks.taper = path.dTaper();
  auto taper = [&](std::size_t i) { return i < path.aSegTaper().size() ? path.aSegTaper()[i] : 0.0; };
  auto takeCode = [&](std::size_t i) {
    if (const std::string text = path.getCodeAt(static_cast<int>(i)); !text.empty())
      out.marks.codes.push_back({static_cast<int>(out.vertices.size()), blocksOf(text)});
  };
  for (std::size_t i = 0; i < v.size(); ++i) {
    takeCode(i);
    if (isStep(v, i)) {
      out.marks.steps.push_back(
          {static_cast<int>(out.vertices.size()), v[i + 1].point - v[i].point, taper(i), taper(i + 1)});
      takeCode(++i);
      continue;
    }
    out.vertices.push_back(v[i]);
    if (out.vertices.back().bulge == kMarkedBulge) out.vertices.back().bulge = 0;
    out.marks.tapers.push_back(taper(i));
  }
  return out;
}

std::vector<truth::Stroke> strokesOf(const PathContour& c) {
  std::vector<truth::Stroke> out;
  if (c.bCircle) {
    const Point right{c.ptCenter.x + c.dRadius, c.ptCenter.y};
    out.push_back(truth::arcStroke(c.ptCenter, right, 2 * std::acos(-1.0)));
    return out;
  }
  const auto& v = c.aContour;
  for (std::size_t i = 0; i + (c.bClosed ? 0 : 1) < v.size(); ++i) {
    const Point a = v[i].flat(), b = v[(i + 1) % v.size()].flat();
    if (a != b) out.push_back(truth::spanStroke(a, b, v[i].z));
  }
  return out;
}

std::vector<truth::Stroke> strokesOf(const PolylineCurve& c) {
  std::vector<truth::Stroke> out;
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const auto &a = c.vertices[i], &b = c.vertices[(i + 1) % c.vertices.size()];
    if (a.point != b.point) out.push_back(truth::spanStroke(a.point, b.point, a.bulge));
  }
  return out;
}

// The largest distance that strokes come away from others, mm, and where.
struct Apart {
  double most = 0;
  Point at;
  void look(const std::vector<truth::Stroke>& of, const truth::Nearby& from) {
    for (const auto& s : of)
      for (const double t : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        const auto hit = from.nearestTo(truth::at(s, t));
        if (hit.foot.distance > most) most = hit.foot.distance, at = truth::at(s, t);
      }
  }
};

std::string leftContour(const CToolPath& path, const PolylineCurve& contour) {
  const auto source = strokesOf(path.contour()), now = strokesOf(contour);
  if (source.empty() || now.empty()) return {};
  Apart apart;
  apart.look(now, truth::Nearby(source));
  apart.look(source, truth::Nearby(now));
  if (apart.most <= kOnContour) return {};
  return formatted(
      "figure %d: the path has been edited and lies up to %.4f mm, at (%.4f, %.4f), from its source "
      "contour; the program is held against the path as it stands",
      path.nPathNo(), apart.most, apart.at.x, apart.at.y);
}

// Codes that hang on no vertex never come into a program.
std::string strayCodes(const CToolPath& path) {
  for (std::size_t i = 0; i < path.aCodeVertex().size(); ++i)
    if (path.aCodeVertex()[i] < 0 || path.aCodeVertex()[i] >= path.numVerts())
      return formatted("figure %d: its code text \"%.40s\" stands at no vertex and isn't written",
                       path.nPathNo(), path.aCodeText()[i].c_str());
  return {};
}

}  // namespace

truth::Figure figureOfPath(const CToolPath& path) {
  truth::Figure f;
  Reading reading = readingOf(path);
  const bool closed = path.bClosed() || path.bCircle();
  const bool left = path.nDirection() * path.nSide() > 0;
  f.number = path.nPathNo();
  f.compensation = path.dOffset() - path.nSide() * path.dClearance();
  f.side = !closed                      ? left ? truth::Side::kLeft : truth::Side::kRight
           : path.nSide() == kInnerHole ? truth::Side::kInside
                                        : truth::Side::kOutside;
  f.direction = !closed                 ? truth::Direction::kAlong
                : path.nDirection() > 0 ? truth::Direction::kCounterClockwise
                                        : truth::Direction::kClockwise;
  f.threading = path.getPointAt(0);
  f.contour.closed = closed;
  const std::size_t behind = closed ? 1 : 0;  // the last vertex repeats the entry
  for (std::size_t i = 1; i + behind < reading.vertices.size(); ++i)
    f.contour.vertices.push_back(reading.vertices[i]);
  f.marks = std::move(reading.marks);
  f.remark = leftContour(path, f.contour);
  if (const std::string stray = strayCodes(path); !stray.empty())
    f.remark += (f.remark.empty() ? "" : "; ") + stray;
  return f;
}

std::vector<truth::Figure> figuresOfPaths(const AcDbDatabase& drawing) {
  std::vector<truth::Figure> figures;
  for (AcDbObjectId id : drawing.modelSpaceEntities())
    if (const auto* path = drawing.peek<CToolPath>(id); path && path->numVerts() > 0)
      figures.push_back(figureOfPath(*path));
  std::stable_sort(figures.begin(), figures.end(),
                   [](const auto& a, const auto& b) { return a.number < b.number; });
  return figures;
}

truth::Expected expectedOfPaths(AcDbDatabase& drawing, const WireCutSettings& s) {
  const DrawingVars vars(drawing);
  truth::Expected e;
  e.origin = drawing.ucsorg.flat();
  e.inOrder = true;
  const bool own = vars.getInt("ISO_3BAUTOFIX").has_value();  // the drawing holds its options
  if (own ? vars.getInt("ISO_3BGUOQIE").value_or(s.bOvercut) : s.bOvercut) {
    e.overcut = own ? vars.getDouble("ISO_3BGUOQIELen").value_or(s.dOvercutLen) : s.dOvercutLen;
    e.overcutTangent = s.bOvercutTangent != 0;
    e.overcutMode = s.nOvercutMode;
  }
  if (own ? vars.getInt("ISO_3BAUTOFIX").value_or(0) : s.bAutoFix)
    e.dFix = own ? vars.getDouble("ISO_3BAUTOFIXLen").value_or(s.dAutoFixLen) : s.dAutoFixLen;
  if (s.bCutoffPause) e.pauseBefore = s.dCutoffLen;
  e.minStep = s.dMinStep;
  auto transit = [&](const char* key, int k) { return vars.getPoint(key + std::to_string(k)); };
  int k = kMostTransits;
  while (k >= 0 && !transit("STARTPOINT", k)) --k;
  for (; k >= 0; --k) {
    const auto p = transit("STARTPOINT", k);
    if (!p) break;
    e.startPoints.push_back(p->flat());
  }
  for (k = 0;; ++k) {
    const auto p = transit("ENDPOINT", k);
    if (!p) break;
    e.endPoints.push_back(p->flat());
  }
  return e;
}

}  // namespace tarnex
