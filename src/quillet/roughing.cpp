// Roughing: a guide that clears the inside of a contour before the contour itself is cut.
// Knows contours of a drawing; turns and the walk along them stand in files of their own.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "host/database/database.h"
#include "quillet/guide.h"
#include "quillet/quillet.h"

namespace {

using namespace tarnex;

struct Inside {
  PolylineCurve contour;  // closed, counter-clockwise
  AcGePoint2d centre, beside;
};

std::optional<Inside> insideOfCircle(const AcDbCircle& circle, int arcs) {
  if (arcs < 2 || arcs > 1000 || !(circle.radius() > 0)) return std::nullopt;
  const AcGePoint2d centre = circle.center().flat();
  Inside inside{{{}, true}, centre, centre + AcGeVector2d{circle.radius(), 0}};
  const double bulge = bulgeOfSweep(2 * kPi / arcs);
  for (int k = 0; k < arcs; ++k)
    inside.contour.vertices.push_back({acutPolar(centre, 2 * kPi * k / arcs, circle.radius()), bulge});
  return inside;
}

// The line of joints is the one on which a path made of this contour has its threading point.
std::optional<Inside> insideOfPolyline(const AcDbPolyline& polyline, int direction) {
  PolylineCurve contour = polyline.polyline();
  const int orientation = contour.closed ? polylineOrientation(contour) : 0;
  if (orientation == 0) return std::nullopt;
  if (orientation != direction) reversePolyline(contour);
  const ThreadPoint found = findThreadPoint(contour);
  if (pointInPolyline(contour, found.thread) != 1) return std::nullopt;
  if (direction < 0) reversePolyline(contour);
  return Inside{std::move(contour), found.thread, found.contour};
}

}  // namespace

void lxquillet1(AcDbDatabase* drawing, unsigned id, int circleArcs, double sharpest, double step,
                int direction, double allowance, double startHole, int alternate) {
  if (!drawing || !(step > 0) || !(allowance >= 0) || !(startHole >= 0)) return;
  const AcDbObjectId source{id};
  const auto* entity = drawing->peek<AcDbEntity>(source);
  const auto* polyline = drawing->peek<AcDbPolyline>(source);
  const auto* circle = drawing->peek<AcDbCircle>(source);
  const int way = direction < 0 ? -1 : 1;
  const auto inside = circle     ? insideOfCircle(*circle, circleArcs)
                      : polyline ? insideOfPolyline(*polyline, way)
                                 : std::nullopt;
  if (!inside) return;
  const auto turns = turnsInside(inside->contour, step + std::min(allowance, step / 2), step);
  if (!turns) return;
  PolylineCurve guide = guideAlong(
      *turns, {inside->centre, inside->beside, sharpest * kPi / 180, startHole, way, alternate != 0});
  if (guide.vertices.size() < 2 || guide.vertices.size() > kMostGuideVertices) return;
  auto result = std::make_unique<AcDbPolyline>(std::move(guide));
  result->setLayer(entity->layerId());
  result->setColorIndex(entity->colorIndex());
  drawing->appendAcDbEntity(drawing->modelSpace(), std::move(result));
}
