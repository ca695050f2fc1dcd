// The public operations on one curve: each asks the curve's own kind.
// Knows no arithmetic of its own but that of spans.
#include "host/geometry/curves.h"

#include <algorithm>

#include "host/geometry/kernel.h"

namespace tarnex {

namespace {

// Lines, arcs and polylines answer any numbers without harm; the others are worked on only when they are
// sound.
bool sound(const Curve& c) {
  const bool smooth = std::holds_alternative<EllipseCurve>(c) || std::holds_alternative<NurbsCurve>(c);
  return !smooth || isValid(c);
}

}  // namespace

bool isValid(const Curve& c) {
  return std::visit([](const auto& x) { return kernel::valid(x); }, c);
}

AcGePoint2d startPoint(const Curve& c) {
  return std::visit([](const auto& x) { return kernel::at(x, kernel::paramFrom(x)); }, c);
}

AcGePoint2d endPoint(const Curve& c) {
  if (isClosed(c)) return startPoint(c);
  if (const auto* line = std::get_if<LineCurve>(&c)) return line->end;
  return std::visit([](const auto& x) { return kernel::at(x, kernel::paramTo(x)); }, c);
}

bool isClosed(const Curve& c) {
  return std::visit([](const auto& x) { return kernel::closed(x); }, c);
}

double length(const Curve& c) {
  if (!sound(c)) return 0;
  return std::visit([](const auto& x) { return kernel::distTo(x, kernel::paramTo(x)); }, c);
}

Extents2d extents(const Curve& c) {
  if (!sound(c)) return {};
  return std::visit([](const auto& x) { return kernel::box(x); }, c);
}

double startParam(const Curve& c) {
  return std::visit([](const auto& x) { return kernel::paramFrom(x); }, c);
}

double endParam(const Curve& c) {
  return std::visit([](const auto& x) { return kernel::paramTo(x); }, c);
}

AcGePoint2d pointAtParam(const Curve& c, double param) {
  return std::visit([param](const auto& x) { return kernel::at(x, param); }, c);
}

AcGeVector2d tangentAtParam(const Curve& c, double param) {
  return std::visit([param](const auto& x) { return kernel::slope(x, param); }, c);
}

double distAtParam(const Curve& c, double param) {
  if (!sound(c)) return 0;
  return std::visit([param](const auto& x) { return kernel::distTo(x, param); }, c);
}

std::optional<double> paramAtDist(const Curve& c, double distance) {
  if (!sound(c)) return std::nullopt;
  const double whole = length(c);
  const double slack = std::isfinite(whole) ? kernel::contactTolerance(whole) : 0;
  if (!(distance >= -slack && distance <= whole + slack)) return std::nullopt;
  if (distance <= 0) return startParam(c);
  if (distance >= whole) return endParam(c);
  return std::visit([distance](const auto& x) { return kernel::paramOf(x, distance); }, c);
}

std::optional<AcGePoint2d> pointAtDist(const Curve& c, double distance) {
  const auto param = paramAtDist(c, distance);
  if (!param) return std::nullopt;
  return *param == endParam(c) ? endPoint(c) : pointAtParam(c, *param);
}

std::optional<double> paramAtPoint(const Curve& c, AcGePoint2d p, double tolerance) {
  const Closest near = closestPoint(c, p);
  if (!(near.distance <= tolerance)) return std::nullopt;
  return near.param;
}

std::optional<double> distAtPoint(const Curve& c, AcGePoint2d p, double tolerance) {
  const auto param = paramAtPoint(c, p, tolerance);
  if (!param) return std::nullopt;
  return distAtParam(c, *param);
}

Closest closestPoint(const Curve& c, AcGePoint2d p, bool extend) {
  if (!sound(c)) return {{}, 0, std::numeric_limits<double>::infinity()};
  return std::visit([p, extend](const auto& x) { return kernel::closest(x, p, extend); }, c);
}

Curve reversed(const Curve& c) {
  return std::visit([](const auto& x) { return kernel::backwards(x); }, c);
}

std::optional<Curve> transformed(const Curve& c, const AcGeMatrix3d& m) {
  if (!sound(c)) return std::nullopt;
  auto image = std::visit([&m](const auto& x) { return kernel::moved(x, m); }, c);
  if (image && !isValid(*image)) image.reset();
  return image;
}

std::vector<Curve> exploded(const Curve& c) {
  const auto* polyline = std::get_if<PolylineCurve>(&c);
  if (!polyline) return {c};
  std::vector<Curve> spans;
  spans.reserve(polyline->spanCount());
  for (std::size_t i = 0; i < polyline->spanCount(); ++i) spans.push_back(spanCurve(*polyline, i));
  return spans;
}

std::vector<Curve> split(const Curve& c, std::vector<double> params) {
  if (!isValid(c)) return {c};
  const double first = startParam(c), last = endParam(c);
  const bool closed = isClosed(c), rising = first <= last;
  const double size = std::isfinite(last) ? std::max(std::abs(first), std::abs(last)) : std::abs(first);
  const double same = roundoff(size);
  // On a closed curve the end is the start.
  for (double& p : params) p = closed && std::abs(p - last) <= same ? first : p;
  std::erase_if(params, [&](double p) {
    const double after = rising ? p - first : first - p, before = rising ? last - p : p - last;
    return !(before > same) || !(closed ? after >= -same : after > same);
  });
  std::ranges::sort(params);
  if (!rising) std::ranges::reverse(params);
  const auto twin = [same](double a, double b) { return std::abs(a - b) <= same; };
  params.erase(std::unique(params.begin(), params.end(), twin), params.end());
  if (params.empty()) return {c};
  if (closed) {
    params.push_back(params.front());
  } else {
    params.insert(params.begin(), first);
    params.push_back(last);
  }
  std::vector<Curve> pieces;
  for (std::size_t i = 0; i + 1 < params.size(); ++i) {
    pieces.push_back(
        std::visit([&](const auto& x) { return kernel::piece(x, params[i], params[i + 1]); }, c));
  }
  return pieces;
}

Curve spanCurve(const PolylineCurve& c, std::size_t i) {
  const std::size_t next = i + 1 < c.vertices.size() ? i + 1 : 0;
  return spanCurve(c.vertices[i].point, c.vertices[next].point, c.vertices[i].bulge);
}

Curve spanCurve(AcGePoint2d start, AcGePoint2d end, double bulge) {
  // A flatter arc stands off its chord by less than the rounding of its radius, so the chord is nearer to it.
  constexpr double kFlattest = 1e-8;
  const AcGeVector2d half = (end - start) * 0.5;
  if (std::abs(bulge) < kFlattest || half == AcGeVector2d{}) return LineCurve{start, end};
  const AcGePoint2d centre = midpoint(start, end) + half.perpVector() * ((1 / bulge - bulge) / 2);
  const double radius = half.length() * std::abs(1 / bulge + bulge) / 2;
  return ArcCurve{centre, radius, acutAngle(centre, start), 4 * std::atan(bulge)};
}

double bulgeOfSweep(double sweep) {
  return std::tan(sweep / 4);
}

}  // namespace tarnex
