// What all curves share: parameters, lengths, closest points, offsets, splitting; all asked of the curve
// kernel. Knows no class of curve but those that the kernel's values become.
#include <algorithm>

#include "host/database/database.h"
#include "host/geometry/offset.h"

namespace tarnex {

namespace {

// mm within which a point counts as on the curve; more where the coordinates are large.
double onCurve(const Curve& c) {
  const Extents2d box = extents(c);
  if (box.empty()) return 1e-6;
  const double reach =
      std::max({std::abs(box.low.x), std::abs(box.low.y), std::abs(box.high.x), std::abs(box.high.y)});
  return std::max(1e-6, 4 * roundoff(reach));
}

std::unique_ptr<AcDbCurve> withProperties(std::unique_ptr<AcDbCurve> made, const AcDbCurve& of, double z) {
  made->setPropertiesFrom(of);
  if (z != 0) made->transformBy(AcGeMatrix3d::translation({0, 0, z}));
  return made;
}

ErrorStatus offsetArc(const ArcCurve& arc, double left, std::optional<Curve>& result) {
  const double radius = arc.radius - (arc.sweep > 0 ? left : -left);
  if (!(radius > 0) || !std::isfinite(radius)) return ErrorStatus::eNotApplicable;
  result = ArcCurve{arc.centre, radius, arc.startAngle, arc.sweep};
  return ErrorStatus::eOk;
}

}  // namespace

const AcRxClass& AcDbCurve::desc() {
  static const AcRxClass kClass = hostClass("AcDbCurve", &AcDbEntity::desc());
  return kClass;
}

std::vector<Curve> AcDbCurve::outline() const {
  std::vector<Curve> curves{geometry()};
  if (!isValid(curves.front())) curves.clear();
  return curves;
}

Extents2d AcDbCurve::getGeomExtents() const {
  const Curve c = geometry();
  return isValid(c) ? extents(c) : Extents2d{};
}

AcGePoint3d AcDbCurve::getStartPoint() const {
  return solid(startPoint(geometry()));
}
AcGePoint3d AcDbCurve::getEndPoint() const {
  return solid(endPoint(geometry()));
}
bool AcDbCurve::isClosed() const {
  return tarnex::isClosed(geometry());
}
double AcDbCurve::getStartParam() const {
  return startParam(geometry());
}
double AcDbCurve::getEndParam() const {
  return endParam(geometry());
}
double AcDbCurve::getDistAtParam(double param) const {
  return distAtParam(geometry(), param);
}
double AcDbCurve::length() const {
  return tarnex::length(geometry());
}

ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& p, double& distance) const {
  const Curve c = geometry();
  const auto found = distAtPoint(c, p.flat(), onCurve(c));
  if (!found) return ErrorStatus::eInvalidInput;
  distance = *found;
  return ErrorStatus::eOk;
}

std::optional<AcGePoint3d> AcDbCurve::getPointAtDist(double distance) const {
  const auto p = pointAtDist(geometry(), distance);
  if (!p) return {};
  return solid(*p, getStartPoint().z);
}

AcGePoint3d AcDbCurve::getClosestPointTo(const AcGePoint3d& p, bool extend) const {
  return solid(closestPoint(geometry(), p.flat(), extend).point, getStartPoint().z);
}

ErrorStatus AcDbCurve::getOffsetCurves(double distance,
                                       std::vector<std::unique_ptr<AcDbCurve>>& curves) const {
  const Curve c = geometry();
  const double z = getStartPoint().z;
  if (!isValid(c) || !std::isfinite(distance)) return ErrorStatus::eNotApplicable;
  if (const auto* arc = std::get_if<ArcCurve>(&c)) {
    std::optional<Curve> moved;
    const ErrorStatus status = offsetArc(*arc, -distance, moved);
    if (moved) curves.push_back(withProperties(makeCurveEntity(*moved), *this, z));
    return status;
  }
  const auto* line = std::get_if<LineCurve>(&c);
  if (!line) return ErrorStatus::eNotApplicable;
  const BulgeVertex walk[] = {{line->start, 0}, {line->end, 0}};
  const auto moved = offsetCurves(walk, -distance);
  if (!moved) return ErrorStatus::eNotApplicable;
  for (const PolylineCurve& piece : *moved) {
    if (piece.vertices.size() < 2) continue;
    const LineCurve beside{piece.vertices.front().point, piece.vertices.back().point};
    curves.push_back(withProperties(makeCurveEntity(beside), *this, z));
  }
  return ErrorStatus::eOk;
}

ErrorStatus AcDbCurve::getSplitCurves(const std::vector<double>& params,
                                      std::vector<std::unique_ptr<AcDbCurve>>& pieces) const {
  const Curve c = geometry();
  if (!isValid(c)) return ErrorStatus::eNotApplicable;
  if (!std::all_of(params.begin(), params.end(), [](double p) { return std::isfinite(p); }))
    return ErrorStatus::eInvalidInput;
  for (const Curve& piece : split(c, params))
    pieces.push_back(withProperties(makeCurveEntity(piece), *this, getStartPoint().z));
  return ErrorStatus::eOk;
}

namespace {

struct EntityMaker {
  std::unique_ptr<AcDbCurve> operator()(const LineCurve& c) const {
    return std::make_unique<AcDbLine>(solid(c.start), solid(c.end));
  }
  std::unique_ptr<AcDbCurve> operator()(const RayCurve& c) const {
    return std::make_unique<AcDbRay>(solid(c.start), c.direction);
  }
  std::unique_ptr<AcDbCurve> operator()(const ArcCurve& c) const {
    if (std::abs(c.sweep) >= 2 * kPi - 1e-12) return std::make_unique<AcDbCircle>(solid(c.centre), c.radius);
    const double start = c.sweep < 0 ? c.startAngle + c.sweep : c.startAngle;
    return std::make_unique<AcDbArc>(solid(c.centre), c.radius, normalizedAngle(start),
                                     normalizedAngle(start + std::abs(c.sweep)));
  }
  std::unique_ptr<AcDbCurve> operator()(const EllipseCurve& c) const {
    if (std::abs(c.sweep) >= 2 * kPi - 1e-12)
      return std::make_unique<AcDbEllipse>(solid(c.centre), c.major, c.ratio, 0, 2 * kPi);
    const double start = c.sweep < 0 ? c.startParam + c.sweep : c.startParam;
    return std::make_unique<AcDbEllipse>(solid(c.centre), c.major, c.ratio, start, start + std::abs(c.sweep));
  }
  std::unique_ptr<AcDbCurve> operator()(NurbsCurve&& c) const {
    return std::make_unique<AcDbSpline>(std::move(c));
  }
  std::unique_ptr<AcDbCurve> operator()(PolylineCurve&& c) const {
    return std::make_unique<AcDbPolyline>(std::move(c));
  }
};

}  // namespace

std::unique_ptr<AcDbCurve> makeCurveEntity(Curve c) {
  return std::visit(EntityMaker{}, std::move(c));
}

}  // namespace tarnex
