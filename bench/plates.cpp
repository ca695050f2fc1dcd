// Contours of any number for measuring.
// Knows no time.
#include "plates.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "host/database/database.h"
#include "host/dxf/dxf.h"

namespace tarnex::bench {

namespace {

// Every corner of the closed polygon becomes a tangent arc of radius r.
Outline rounded(const std::vector<AcGePoint2d>& p, double r) {
  Outline o;
  const std::size_t n = p.size();
  for (std::size_t i = 0; i < n; ++i) {
    const AcGePoint2d b = p[i];
    const AcGeVector2d u = (p[(i + n - 1) % n] - b).normal(), v = (p[(i + 1) % n] - b).normal();
    const double angle = std::acos(u.dotProduct(v)), back = r / std::tan(angle / 2);
    const double side = u.crossProduct(v) < 0 ? 1 : -1;
    o.push_back({b + u * back, side * std::tan((kPi - angle) / 4)});
    o.push_back({b + v * back, 0});
  }
  o.push_back({o.front().point, 0});
  return o;
}

// As drawings commonly have them: nine decimals.
double stored(double v) {
  return std::round(v * 1e9) / 1e9;
}

AcGePoint3d stored(AcGePoint2d p) {
  return {stored(p.x), stored(p.y), 0};
}

std::unique_ptr<AcDbEntity> entityOf(AcGePoint2d a, AcGePoint2d b, double bulge) {
  if (bulge == 0) return std::make_unique<AcDbLine>(stored(a), stored(b));
  const auto arc = std::get<ArcCurve>(spanCurve(a, b, bulge));
  const double low = std::min(arc.startAngle, arc.startAngle + arc.sweep);  // it runs counter-clockwise there
  return std::make_unique<AcDbArc>(stored(arc.centre), stored(arc.radius), normalizedAngle(low),
                                   normalizedAngle(low + std::abs(arc.sweep)));
}

}  // namespace

std::vector<Outline> plates(std::size_t count) {
  std::mt19937 random(1);
  const auto number = [&random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(double(count) / 2 + 1)));
  std::vector<Outline> all;
  for (std::size_t i = 0; all.size() < count; ++i) {
    const double x = 60.0 * double(i % columns), y = 60.0 * double(i / columns);
    const double w = number(35, 50), h = number(35, 50);
    all.push_back(rounded({{x, y},
                           {x + w, y},
                           {x + w, y + h * .55},
                           {x + w * .5, y + h * .55},
                           {x + w * .5, y + h},
                           {x, y + h}},
                          number(1, 3)));
    if (all.size() == count) break;
    const double radius = number(4, 7), turn = number(0, 1);
    std::vector<AcGePoint2d> hexagon;
    for (int k = 0; k < 6; ++k)
      hexagon.push_back({x + w * .27 + radius * std::cos(turn + k * kPi / 3),
                         y + h * .28 + radius * std::sin(turn + k * kPi / 3)});
    all.push_back(rounded(hexagon, number(.3, .8)));
  }
  return all;
}

Outline gear(std::size_t vertices, double pitch) {
  const std::size_t teeth = vertices / 4;
  const double radius = pitch * double(teeth) / (2 * kPi);
  Outline o;
  for (std::size_t i = 0; i < teeth; ++i) {
    const auto at = [&](double part, double r) {
      const double w = 2 * kPi * (double(i) + part) / double(teeth);
      return AcGePoint2d{r * std::cos(w), r * std::sin(w)};
    };
    o.push_back({at(0.00, radius), -0.4});
    o.push_back({at(0.40, radius), 0});
    o.push_back({at(0.52, radius + pitch), 0.3});
    o.push_back({at(0.88, radius + pitch), 0});
  }
  o.push_back(o.front());
  return o;
}

std::string looseDrawing(const std::vector<Outline>& outlines) {
  std::mt19937 random(2);
  std::vector<std::pair<const Outline*, std::size_t>> spans;
  for (const Outline& o : outlines)
    for (std::size_t i = 0; i + 1 < o.size(); ++i) spans.emplace_back(&o, i);
  std::shuffle(spans.begin(), spans.end(), random);
  AcDbDatabase drawing;
  for (const auto& [outline, i] : spans) {
    const BulgeVertex &a = (*outline)[i], &b = (*outline)[i + 1];
    const bool turned = a.bulge == 0 && random() % 2 == 0;
    drawing.appendAcDbEntity(drawing.modelSpace(),
                             turned ? entityOf(b.point, a.point, 0) : entityOf(a.point, b.point, a.bulge));
  }
  return dxfText(drawing);
}

}  // namespace tarnex::bench
