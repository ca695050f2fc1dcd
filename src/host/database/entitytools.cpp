// Drawing curves and writing numbers for entities.
// Knows curves; no entity class.
#include "host/database/entitytools.h"

#include <algorithm>
#include <charconv>

namespace tarnex {

namespace {

constexpr double kChordError = 0.001;  // of the curve's size
constexpr int kDeepestHalving = 8;     // per piece; bounds the points of a wild curve

struct Chords {
  const Curve& curve;
  double z, tolerance;
  std::vector<AcGePoint3d> points;

  void add(AcGePoint2d p) { points.push_back(solid(p, z)); }
  // Points after `from` up to and with `to`.
  void piece(double from, AcGePoint2d a, double to, AcGePoint2d b, int depth) {
    const double mid = (from + to) / 2;
    const AcGePoint2d m = pointAtParam(curve, mid);
    if (depth < kDeepestHalving && m.distanceTo(midpoint(a, b)) > tolerance) {
      piece(from, a, mid, m, depth + 1);
      piece(mid, m, to, b, depth + 1);
    } else {
      add(b);
    }
  }
  void run(const std::vector<double>& stops) {
    AcGePoint2d a = pointAtParam(curve, stops.front());
    add(a);
    for (std::size_t i = 1; i < stops.size(); ++i) {
      const AcGePoint2d b = pointAtParam(curve, stops[i]);
      piece(stops[i - 1], a, stops[i], b, 0);
      a = b;
    }
  }
};

// Parameters between which the curve is smooth and bends little enough to be halved safely.
std::vector<double> smoothStops(const Curve& c) {
  std::vector<double> coarse{startParam(c)};
  if (const auto* nurbs = std::get_if<NurbsCurve>(&c))
    for (const double knot : nurbs->knots)
      if (knot > coarse.back() && knot < endParam(c)) coarse.push_back(knot);
  coarse.push_back(endParam(c));
  const int parts = std::holds_alternative<NurbsCurve>(c) ? 3 : 8;
  std::vector<double> stops{coarse.front()};
  for (std::size_t i = 1; i < coarse.size(); ++i)
    for (int k = 1; k <= parts; ++k) stops.push_back(coarse[i - 1] + (coarse[i] - coarse[i - 1]) * k / parts);
  return stops;
}

void drawChords(AcGiWorldDraw& draw, const Curve& c, double z) {
  const Extents2d box = extents(c);
  if (box.empty()) return;
  Chords chords{c, z, kChordError * (box.high - box.low).length(), {}};
  chords.run(smoothStops(c));
  draw.polyline(chords.points);
}

void drawArc(AcGiWorldDraw& draw, const ArcCurve& arc, double z) {
  if (std::abs(arc.sweep) >= 2 * kPi - 1e-12) {
    draw.circle(solid(arc.centre, z), arc.radius);
    return;
  }
  const auto at = [&](double f) {
    return solid(acutPolar(arc.centre, arc.startAngle + f * arc.sweep, arc.radius), z);
  };
  draw.circularArc(at(0), at(0.5), at(1));
}

constexpr double kFlattestBulge = 1e-8;  // flatter arcs are chords, as the kernel has them

bool isFinite(const PolylineCurve& c) {
  return std::all_of(c.vertices.begin(), c.vertices.end(), [](const BulgeVertex& v) {
    return std::isfinite(v.point.x) && std::isfinite(v.point.y) && std::isfinite(v.bulge);
  });
}

constexpr double kDrawnRay = 1e5;  // mm that are drawn of what has no end

}  // namespace

void drawCurve(AcGiWorldDraw& draw, const PolylineCurve& c, double z) {
  if (!isFinite(c)) return;
  std::vector<AcGePoint3d> run;
  run.reserve(c.vertices.size() + 1);
  const auto flush = [&] {
    if (run.size() > 1) draw.polyline(run);
    run.clear();
  };
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const BulgeVertex& v = c.vertices[i];
    const AcGePoint2d a = v.point, b = c.vertices[i + 1 < c.vertices.size() ? i + 1 : 0].point;
    if (std::abs(v.bulge) >= kFlattestBulge && a != b) {
      flush();
      const AcGePoint2d middle = midpoint(a, b) - (b - a).perpVector() * (v.bulge / 2);
      draw.circularArc(solid(a, z), solid(middle, z), solid(b, z));
      continue;
    }
    if (run.empty()) run.push_back(solid(a, z));
    run.push_back(solid(b, z));
  }
  flush();
}

void drawCurve(AcGiWorldDraw& draw, const Curve& c, double z) {
  if (!isValid(c)) return;
  if (const auto* line = std::get_if<LineCurve>(&c)) {
    const AcGePoint3d ends[] = {solid(line->start, z), solid(line->end, z)};
    draw.polyline(ends);
  } else if (const auto* ray = std::get_if<RayCurve>(&c)) {
    const AcGePoint3d ends[] = {solid(ray->start, z), solid(ray->start + ray->direction * kDrawnRay, z)};
    draw.polyline(ends);
  } else if (const auto* arc = std::get_if<ArcCurve>(&c)) {
    drawArc(draw, *arc, z);
  } else if (const auto* polyline = std::get_if<PolylineCurve>(&c)) {
    drawCurve(draw, *polyline, z);
  } else {
    drawChords(draw, c, z);
  }
}

std::string numberText(double v) {
  char text[400];  // the largest double has 309 digits before the point
  const auto end = std::to_chars(text, text + sizeof text, v, std::chars_format::fixed, 4).ptr;
  return {text, end};
}

std::string degreesText(double radians) {
  return numberText(radians * 180 / kPi);
}

std::string pointText(const AcGePoint3d& p) {
  return "X=" + numberText(p.x) + " Y=" + numberText(p.y) + " Z=" + numberText(p.z);
}

ErrorStatus checkPlaneMatrix(const AcGeMatrix3d& m) {
  double size = 0;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 4; ++c) {
      if (!std::isfinite(m(r, c))) return ErrorStatus::eInvalidInput;
      if (c < 3) size = std::max(size, std::abs(m(r, c)));
    }
  if (m.determinant2d() == 0) return ErrorStatus::eInvalidInput;
  const double none = 1e-12 * size;  // what turning by products of sines leaves
  const bool tilts = std::abs(m(0, 2)) > none || std::abs(m(1, 2)) > none || std::abs(m(2, 0)) > none ||
                     std::abs(m(2, 1)) > none;
  return tilts ? ErrorStatus::eNotApplicable : ErrorStatus::eOk;
}

}  // namespace tarnex
