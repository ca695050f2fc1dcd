// Closed contours and how they lie in each other; chains that stay open.
// It only looks.
#include "contour/survey.h"

#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"
#include "host/database/boxtree.h"

namespace tarnex {

namespace {

std::optional<SurveyedContour> closedContour(const AcDbDatabase& drawing, AcDbObjectId id) {
  if (const auto* circle = drawing.peek<AcDbCircle>(id)) {
    const AcGePoint2d centre = circle->center().flat();
    const AcGeVector2d out{circle->radius(), 0};
    auto c = surveyedContour(id, {{{centre + out, 1}, {centre - out, 1}}, true});
    if (c) {
      c->circle = true;
      c->radius = circle->radius();
    }
    return c;
  }
  if (const auto* heavy = drawing.peek<AcDb2dPolyline>(id)) return surveyedContour(id, heavy->drawn());
  const auto* polyline = drawing.peek<AcDbPolyline>(id);
  if (!polyline || &polyline->isA() != &AcDbPolyline::desc()) return std::nullopt;
  if (!polyline->isClosed()) return surveyedContour(id, polyline->polyline());
  return surveyedContour(id, polyline->polyline(), polyline->getGeomExtents());
}

bool isChainable(const AcDbEntity& e) {
  return e.isKindOf(AcDbLine::desc()) || e.isKindOf(AcDbArc::desc()) || e.isKindOf(AcDb2dPolyline::desc()) ||
         e.isKindOf(AcDbSpline::desc()) || e.isKindOf(AcDbEllipse::desc()) ||
         &e.isA() == &AcDbPolyline::desc();
}

// A vertex of `inner` that doesn't lie on `outer`, if there is one.
bool liesIn(const SurveyedContour& inner, const SurveyedContour& outer) {
  for (const auto& v : inner.shape.vertices)
    if (closestPoint(outer.shape, v.point).distance > kSamePoint)
      return insideClosedWalk(outer.shape.vertices, v.point);
  return false;
}

}  // namespace

void nestContours(std::vector<SurveyedContour>& contours) {
  std::vector<BoxTree::Item> boxes;
  for (std::size_t i = 0; i < contours.size(); ++i)
    boxes.push_back({contours[i].box, static_cast<std::uint32_t>(i)});
  BoxTree tree;
  tree.build(std::move(boxes));
  std::vector<std::uint32_t> around;
  for (std::size_t i = 0; i < contours.size(); ++i) {
    SurveyedContour& c = contours[i];
    around.clear();
    Extents2d at;
    at.add(c.shape.vertices.front().point);
    tree.query(at, around);
    for (std::uint32_t k : around) {
      const SurveyedContour& outer = contours[k];
      // Of two that are the same the earlier one is around the later.
      const bool larger = outer.area > c.area || (outer.area == c.area && k < i);
      if (k == i || !larger || !outer.box.contains(c.box) || !liesIn(c, outer)) continue;
      ++c.depth;
      if (c.parent < 0 || outer.area < contours[static_cast<std::size_t>(c.parent)].area)
        c.parent = static_cast<int>(k);
    }
  }
}

std::optional<SurveyedContour> surveyedContour(AcDbObjectId id, PolylineCurve shape,
                                               const std::optional<Extents2d>& box) {
  auto& v = shape.vertices;
  if (!shape.closed && v.size() > 2 && v.front().point.distanceTo(v.back().point) <= kSamePoint) {
    v.pop_back();
    shape.closed = true;
  }
  if (!shape.closed || v.size() < 2) return std::nullopt;
  Curve curve = std::move(shape);
  if (!isValid(curve)) return std::nullopt;
  SurveyedContour c;
  c.id = id;
  c.box = box ? *box : extents(curve);
  c.length = length(curve);
  c.shape = std::get<PolylineCurve>(std::move(curve));
  c.area = std::abs(signedArea(c.shape.vertices));
  return c;
}

ContourSurvey surveyContours(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& entities) {
  ContourSurvey survey;
  for (AcDbObjectId id : entities) {
    if (auto contour = closedContour(drawing, id)) {
      survey.contours.push_back(std::move(*contour));
      continue;
    }
    const auto* curve = drawing.peek<AcDbCurve>(id);
    if (!curve || !isChainable(*curve) || curve->isClosed()) continue;
    const AcGePoint2d from = curve->getStartPoint().flat(), to = curve->getEndPoint().flat();
    survey.open.push_back({id, from, to, curve->length(), from.distanceTo(to)});
  }
  nestContours(survey.contours);
  return survey;
}

}  // namespace tarnex
