// Object snap on any entity with an outline.
// Knows the geometry of curves; picking and the nearest of several points are the editor's.
#include <algorithm>
#include <array>

#include "host/database/entities.h"

namespace tarnex {

namespace {

// The curve under the pick; of a polyline only its span, of a block one part.
std::optional<Curve> nearestPiece(const std::vector<Curve>& outline, AcGePoint2d pick) {
  const Curve* best = nullptr;
  Closest closest;
  for (const Curve& c : outline) {
    if (!isValid(c)) continue;
    const Closest found = closestPoint(c, pick);
    if (best && found.distance >= closest.distance) continue;
    best = &c;
    closest = found;
  }
  if (!best) return {};
  const auto* polyline = std::get_if<PolylineCurve>(best);
  if (!polyline) return *best;
  if (polyline->spanCount() == 0) return {};
  const double last = static_cast<double>(polyline->spanCount() - 1);
  return spanCurve(*polyline, static_cast<std::size_t>(std::clamp(std::floor(closest.param), 0.0, last)));
}

bool lies(const Curve& c, AcGePoint2d p) {
  const Extents2d box = extents(c);
  const double size =
      std::max(std::abs(box.high.x) + std::abs(box.high.y), std::abs(box.low.x) + std::abs(box.low.y));
  return closestPoint(c, p).distance <= 1e-9 + 4 * roundoff(size);
}

void addQuadrants(const Curve& c, std::vector<AcGePoint2d>& points) {
  std::vector<AcGePoint2d> candidates;
  if (const auto* arc = std::get_if<ArcCurve>(&c)) {
    const AcGePoint2d m = arc->centre;
    candidates = {{m.x + arc->radius, m.y},
                  {m.x, m.y + arc->radius},
                  {m.x - arc->radius, m.y},
                  {m.x, m.y - arc->radius}};
  } else if (const auto* e = std::get_if<EllipseCurve>(&c)) {
    const AcGeVector2d minor = e->major.perpVector() * e->ratio;
    candidates = {e->centre + e->major, e->centre + minor, e->centre - e->major, e->centre - minor};
  }
  for (const AcGePoint2d p : candidates)
    if (lies(c, p)) points.push_back(p);
}

// Where lines from `from` touch the circle: the angle at the centre has the cosine radius / distance.
void addTangents(const Curve& c, AcGePoint2d from, std::vector<AcGePoint2d>& points) {
  const auto* arc = std::get_if<ArcCurve>(&c);
  if (!arc) return;
  const double distance = arc->centre.distanceTo(from);
  if (!(distance > arc->radius)) return;
  const double toward = acutAngle(arc->centre, from), half = std::acos(arc->radius / distance);
  for (const double angle : {toward - half, toward + half}) {
    const AcGePoint2d p = acutPolar(arc->centre, angle, arc->radius);
    if (lies(c, p)) points.push_back(p);
  }
}

std::optional<AcGePoint2d> centreOf(const Curve& c) {
  if (const auto* arc = std::get_if<ArcCurve>(&c)) return arc->centre;
  if (const auto* e = std::get_if<EllipseCurve>(&c)) return e->centre;
  return {};
}

std::vector<AcGePoint2d> snapPoints(const Curve& c, OsnapMode mode, AcGePoint2d pick, AcGePoint2d last) {
  std::vector<AcGePoint2d> points;
  const bool endless = std::holds_alternative<RayCurve>(c);
  switch (mode) {
    case OsnapMode::kOsModeEnd:
      points.push_back(startPoint(c));
      if (!endless && !isClosed(c)) points.push_back(endPoint(c));
      break;
    case OsnapMode::kOsModeMid:
      if (const auto p = endless ? std::nullopt : pointAtDist(c, length(c) / 2)) points.push_back(*p);
      break;
    case OsnapMode::kOsModeCen:
      if (const auto p = centreOf(c)) points.push_back(*p);
      break;
    case OsnapMode::kOsModeQuad:
      addQuadrants(c, points);
      break;
    case OsnapMode::kOsModePerp:
      points.push_back(closestPoint(c, last, true).point);
      break;
    case OsnapMode::kOsModeTan:
      addTangents(c, last, points);
      break;
    case OsnapMode::kOsModeNear:
      points.push_back(closestPoint(c, pick).point);
      break;
    case OsnapMode::kOsModeNode:
    case OsnapMode::kOsModeIns:
    case OsnapMode::kOsModeInt:
      break;
  }
  return points;
}

}  // namespace

void AcDbEntity::getOsnapPoints(OsnapMode mode, AcGePoint3d pick, AcGePoint3d last,
                                std::vector<AcGePoint3d>& out) const {
  const bool insertion = mode == OsnapMode::kOsModeIns, node = mode == OsnapMode::kOsModeNode;
  if (insertion && isKindOf(AcDbText::desc())) out.push_back(static_cast<const AcDbText*>(this)->position());
  if (insertion && isKindOf(AcDbBlockReference::desc()))
    out.push_back(static_cast<const AcDbBlockReference*>(this)->position());
  if (isKindOf(AcDbPoint::desc()) && (node || mode == OsnapMode::kOsModeNear))
    out.push_back(static_cast<const AcDbPoint*>(this)->position());
  if (insertion || node || mode == OsnapMode::kOsModeInt) return;
  const auto piece = nearestPiece(outline(), pick.flat());
  if (!piece) return;
  const double z = isKindOf(AcDbCurve::desc()) ? static_cast<const AcDbCurve*>(this)->getStartPoint().z : 0;
  for (const AcGePoint2d p : snapPoints(*piece, mode, pick.flat(), last.flat())) out.push_back(solid(p, z));
}

}  // namespace tarnex
