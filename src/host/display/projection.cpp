// Projecting shapes.
// Knows parallel projection.
#include "host/display/projection.h"

#include <algorithm>

#include "host/display/shape.h"

namespace tarnex {

namespace {

constexpr double kUpright = 1e-9;  // x and y of a view along z, as a share of its z
constexpr double kOnEdge = 1e-6;   // ratio of an ellipse that is a line to the eye
constexpr double kBeyond = 1e-6;   // of the extents: rounding, no ray

// centre + cos(t) cosine + sin(t) sine, t from the arc's start angle over its sweep.
struct Swung {
  AcGePoint2d centre;
  AcGeVector2d cosine, sine;
  [[nodiscard]] AcGePoint2d at(double t) const { return centre + cosine * std::cos(t) + sine * std::sin(t); }
  // Where it is farthest from its centre.
  [[nodiscard]] double farthest() const {
    return std::atan2(2 * cosine.dotProduct(sine), cosine.dotProduct(cosine) - sine.dotProduct(sine)) / 2;
  }
};

Swung swung(const Projection& view, const ArcCurve& arc, const ArcPlane& plane) {
  const auto lifted = [&](AcGePoint2d p) {
    return view.at(solid(p, plane.height + plane.slope.dotProduct(p - plane.about)));
  };
  const AcGePoint2d centre = lifted(arc.centre);
  return {centre, lifted(arc.centre + AcGeVector2d{arc.radius, 0}) - centre,
          lifted(arc.centre + AcGeVector2d{0, arc.radius}) - centre};
}

ArcCurve wholeCircle(const DrawnCircle& c) {
  return {c.centre.flat(), c.radius, 0, 2 * kPi};
}

struct SeenBox {
  const Projection& view;

  Extents2d operator()(const DrawnPolyline& s) const {
    Extents2d box;
    for (const AcGePoint3d& p : s.points) box.add(view.at(p));
    return box;
  }
  Extents2d operator()(const DrawnCircle& s) const {
    return ofArc(wholeCircle(s), {s.centre.flat(), s.centre.z, {}});
  }
  Extents2d operator()(const DrawnArc& s) const {
    if (const auto arc = arcThrough(s)) return ofArc(*arc, planeThrough(s));
    const AcGePoint3d points[] = {s.start, s.point, s.end};
    return (*this)(DrawnPolyline{points});
  }
  Extents2d operator()(const DrawnText& s) const { return extentsOf(DrawnShape{seenText(view, s)}); }

 private:
  [[nodiscard]] Extents2d ofArc(const ArcCurve& arc, const ArcPlane& plane) const {
    Extents2d box;
    if (const auto ellipse = seenArc(view, arc, plane)) box = extents(Curve{*ellipse});
    for (const AcGePoint2d p : seenOnEdge(view, arc, plane)) box.add(p);
    return box;
  }
};

}  // namespace

std::optional<Projection> Projection::from(const AcGeVector3d& toEye) {
  const AcGeVector3d eye = toEye.normal();
  const double length = eye.length();
  if (!std::isfinite(length) || !(length > 0)) return {};
  Projection view;
  if (std::hypot(eye.x, eye.y) <= kUpright) {
    view.right_ = {eye.z > 0 ? 1.0 : -1.0, 0, 0};
    return view;
  }
  view.right_ = AcGeVector3d{0, 0, 1}.crossProduct(eye).normal();
  view.up_ = eye.crossProduct(view.right_);
  return view;
}

Projection Projection::isometric() {
  return Projection::from({-1, -1, 1}).value_or(Projection());
}

ArcPlane planeThrough(const DrawnArc& arc) {
  const AcGeVector3d a = arc.point - arc.start, b = arc.end - arc.start;
  const double twice = a.x * b.y - a.y * b.x;
  ArcPlane plane{arc.start.flat(), arc.start.z, {}};
  const AcGeVector2d slope{(a.z * b.y - b.z * a.y) / twice, (a.x * b.z - b.x * a.z) / twice};
  if (std::isfinite(slope.x) && std::isfinite(slope.y)) plane.slope = slope;
  return plane;
}

std::optional<EllipseCurve> seenArc(const Projection& view, const ArcCurve& arc, const ArcPlane& plane) {
  const Swung seen = swung(view, arc, plane);
  const double turned = seen.farthest();
  const AcGeVector2d major = seen.cosine * std::cos(turned) + seen.sine * std::sin(turned);
  const AcGeVector2d minor = seen.sine * std::cos(turned) - seen.cosine * std::sin(turned);
  const double ratio = minor.length() / major.length();
  if (!(ratio > kOnEdge)) return {};
  const double way = major.crossProduct(minor) > 0 ? 1 : -1;  // -1: seen from behind
  return EllipseCurve{seen.centre, major, std::min(ratio, 1.0), way * (arc.startAngle - turned),
                      way * arc.sweep};
}

std::vector<AcGePoint2d> seenOnEdge(const Projection& view, const ArcCurve& arc, const ArcPlane& plane) {
  const Swung seen = swung(view, arc, plane);
  const double low = std::min(arc.startAngle, arc.startAngle + arc.sweep), high = low + std::abs(arc.sweep);
  std::vector<AcGePoint2d> corners{seen.at(low)};
  const double turn = seen.farthest();
  for (double t = turn + std::ceil((low - turn) / kPi) * kPi; t < high; t += kPi)
    corners.push_back(seen.at(t));
  corners.push_back(seen.at(high));
  if (arc.sweep < 0) std::reverse(corners.begin(), corners.end());
  return corners;
}

DrawnText seenText(const Projection& view, const DrawnText& text) {
  DrawnText seen = text;
  seen.position = solid(view.at(text.position));
  if (!view.isPlan()) seen.direction = {1, 0};
  return seen;
}

Extents2d seenExtents(const Projection& view, const DrawnShape& shape) {
  return std::visit(SeenBox{view}, shape);
}

Extents2d seenExtents(const Projection& view, const DisplayList& list) {
  if (view.isPlan() || list.extents.empty()) return list.extents;
  const double longer =
      std::max(list.extents.high.x - list.extents.low.x, list.extents.high.y - list.extents.low.y);
  const Extents2d inside = list.extents.grown(longer * kBeyond);
  Extents2d box;
  for (const Primitive& p : list.primitives) {
    const DrawnShape shape = list.shapeOf(p);
    if (const auto* line = std::get_if<DrawnPolyline>(&shape)) {
      for (const AcGePoint3d& point : line->points)
        if (inside.contains(point.flat())) box.add(view.at(point));
    } else {
      box.add(seenExtents(view, shape));
    }
  }
  return box;
}

Extents2d seenWindow(const Projection& view, const DisplayList& list, const Extents2d& window) {
  if (view.isPlan()) return window;
  double low = 0, high = 0;
  const auto reach = [&](const AcGePoint3d& p) {
    low = std::min(low, p.z);
    high = std::max(high, p.z);
  };
  for (const Primitive& p : list.primitives) {
    const DrawnShape shape = list.shapeOf(p);
    if (const auto* line = std::get_if<DrawnPolyline>(&shape))
      for (const AcGePoint3d& point : line->points) reach(point);
    else if (const auto* circle = std::get_if<DrawnCircle>(&shape))
      reach(circle->centre);
    else if (const auto* arc = std::get_if<DrawnArc>(&shape))
      for (const AcGePoint3d& point : {arc->start, arc->point, arc->end}) reach(point);
  }
  Extents2d box;
  for (const double z : {low, high})
    for (const AcGePoint2d& p :
         {window.low, window.high, AcGePoint2d{window.low.x, window.high.y}, {window.high.x, window.low.y}})
      box.add(view.at(solid(p, z)));
  return box;
}

}  // namespace tarnex
