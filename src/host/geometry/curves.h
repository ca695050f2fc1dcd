// The plane curve kernel: lines, rays, arcs, ellipses, NURBS and polylines with bulges as values, and what
// can be asked of any of them. Analytic, never on facets. Knows no entities, layers or tolerances of the
// trade.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "host/geometry/values.h"

namespace tarnex {

struct LineCurve {
  AcGePoint2d start, end;
  bool operator==(const LineCurve&) const = default;
};

// From `start` without end along `direction`. Lengths and parameters are measured in mm from start.
struct RayCurve {
  AcGePoint2d start;
  AcGeVector2d direction;  // unit
  bool operator==(const RayCurve&) const = default;
};

// A circle or a part of one. Sweep in radians, positive counter-clockwise, at most 2π in size; 2π is the full
// circle.
struct ArcCurve {
  AcGePoint2d centre;
  double radius = 0;      // mm, above 0
  double startAngle = 0;  // radians
  double sweep = 0;
  bool operator==(const ArcCurve&) const = default;
};

// centre + cos(t) major + sin(t) ratio perp(major), t from startParam over sweep (radians; positive runs
// counter-clockwise). Ratio in (0, 1]; 2π is the full ellipse.
struct EllipseCurve {
  AcGePoint2d centre;
  AcGeVector2d major;
  double ratio = 1;
  double startParam = 0;
  double sweep = 0;
  bool operator==(const EllipseCurve&) const = default;
};

// Non-uniform rational B-spline. Knots are not decreasing and number control points + degree + 1; weights are
// empty (all 1) or one per control point, above 0.
struct NurbsCurve {
  int degree = 3;
  std::vector<AcGePoint2d> control;
  std::vector<double> weights;
  std::vector<double> knots;
  bool operator==(const NurbsCurve&) const = default;
};

// Vertex of a polyline; the bulge belongs to the span that starts here: tan(included angle / 4), positive
// counter-clockwise, 0 straight.
struct BulgeVertex {
  AcGePoint2d point;
  double bulge = 0;
  bool operator==(const BulgeVertex&) const = default;
};

struct PolylineCurve {
  std::vector<BulgeVertex> vertices;
  bool closed = false;  // the last vertex's span runs back to the first
  [[nodiscard]] std::size_t spanCount() const {
    return vertices.size() < 2 ? 0 : vertices.size() - (closed ? 0 : 1);
  }
  bool operator==(const PolylineCurve&) const = default;
};

using Curve = std::variant<LineCurve, RayCurve, ArcCurve, EllipseCurve, NurbsCurve, PolylineCurve>;

// Where many questions go to one NURBS, `MeasuredCurve` (measured.h) answers the same in a fraction of the
// time.

// ---- one curve

// Every coordinate, radius, bulge, knot and weight is a number below 1e60 in size and the parts fit together:
// at least one vertex, a ray's direction of length 1, an ellipse's ratio in (0, 1], a degree of 1 to 25, no
// inner knot repeated more often than the degree. Zero length is valid. Anything may be asked of such a
// curve; of another the answers mean nothing (the NURBS and ellipses give an infinite distance, no length and
// no point), but do no harm.
[[nodiscard]] bool isValid(const Curve& c);
[[nodiscard]] AcGePoint2d startPoint(const Curve& c);
[[nodiscard]] AcGePoint2d endPoint(const Curve& c);  // of a ray: its start
[[nodiscard]] bool isClosed(
    const Curve& c);  // full circle or ellipse, closed polyline, NURBS with equal ends
[[nodiscard]] double length(const Curve& c);  // mm; of a ray: infinity
[[nodiscard]] Extents2d extents(
    const Curve& c);  // exact (tight on arcs, ellipses and NURBS); a ray: its start

// Parameters are those of the host: line 0 to its length, arc its angle, ellipse its parameter, NURBS its
// knot range, polyline span index + fraction of the span. Start and end follow the curve's direction: of a
// clockwise arc the end is the lower one. Beyond the ends lines, arcs, ellipses and open polylines run on as
// they are extended.
[[nodiscard]] double startParam(const Curve& c);
[[nodiscard]] double endParam(const Curve& c);
[[nodiscard]] AcGePoint2d pointAtParam(const Curve& c, double param);
// Derivative by the parameter; on a polyline that of the span, at a vertex of the span that starts there.
[[nodiscard]] AcGeVector2d tangentAtParam(const Curve& c, double param);
[[nodiscard]] double distAtParam(const Curve& c, double param);
// Point `distance` mm along the curve; nothing below 0 or beyond the length (by more than roundoff).
[[nodiscard]] std::optional<AcGePoint2d> pointAtDist(const Curve& c, double distance);
[[nodiscard]] std::optional<double> paramAtDist(const Curve& c, double distance);
// Parameter or distance from the start of a point on the curve; nothing for a point farther from it than
// `tolerance` mm.
[[nodiscard]] std::optional<double> paramAtPoint(const Curve& c, AcGePoint2d p, double tolerance = 1e-6);
[[nodiscard]] std::optional<double> distAtPoint(const Curve& c, AcGePoint2d p, double tolerance = 1e-6);

// Closest point of the curve to p. With `extend` a line counts as endless, an arc as its circle, an ellipse
// as whole, an open polyline's end spans as their extension beyond the ends; NURBS stay as they are.
struct Closest {
  AcGePoint2d point;
  double param = 0;
  double distance = 0;  // mm
};
[[nodiscard]] Closest closestPoint(const Curve& c, AcGePoint2d p, bool extend = false);

// A closed polyline keeps its vertices in the opposite order, so it starts at what was its last vertex. A ray
// turns about its start.
[[nodiscard]] Curve reversed(const Curve& c);
// A matrix that scales x and y unequally turns arcs into ellipses, polylines with arcs into nothing.
[[nodiscard]] std::optional<Curve> transformed(const Curve& c, const AcGeMatrix3d& m);
// A polyline's spans as lines and arcs (zero-length spans too), in order; anything else as itself.
[[nodiscard]] std::vector<Curve> exploded(const Curve& c);
// The pieces of the curve between the given parameters (sorted here, those outside or doubled dropped), in
// order along the curve. A closed curve split once gives one open piece that starts and ends there.
[[nodiscard]] std::vector<Curve> split(const Curve& c, std::vector<double> params);

// ---- two curves

// Which operand may be taken beyond its ends.
enum class Extend { kOnBothOperands, kExtendThis, kExtendArg, kExtendBoth };

// All intersection points of a and b, in order along a, each once. A tangent contact gives one point; curves
// that coincide along a stretch give the ends of the stretch, and none where it has no ends: all round a
// closed curve, or endless lines and whole circles. Extension as for closestPoint; a polyline is extended at
// its two end spans only. Points nearer than 1e-10 mm, or than what rounding adds up to on large coordinates,
// are one. Nothing when either curve isn't valid.
[[nodiscard]] std::vector<AcGePoint2d> intersect(const Curve& a, const Curve& b, Extend mode);

// ---- spans and arcs

// Span i of a polyline as a line or an arc; the closing span of a closed one has the last index.
[[nodiscard]] Curve spanCurve(const PolylineCurve& c, std::size_t i);
[[nodiscard]] Curve spanCurve(AcGePoint2d start, AcGePoint2d end, double bulge);
// tan(sweep / 4).
[[nodiscard]] double bulgeOfSweep(double sweep);
// Signed area enclosed by the closed walk over the vertices, above 0 counter-clockwise, mm².
[[nodiscard]] double signedArea(std::span<const BulgeVertex> closedWalk);
// Inside the closed walk by winding number (not 0 is inside). A point on the contour may count either way.
[[nodiscard]] bool insideClosedWalk(std::span<const BulgeVertex> closedWalk, AcGePoint2d p);

// ---- approximations

// A full ellipse as a closed polyline of arcs: passes the four axis ends, tangents there along the axes,
// smooth between arcs, nowhere farther from the ellipse than 0.1 % of the minor half axis (8 arcs for a
// circle, 32 for a ratio of 0.5, 72 for 0.01). Starts at the end of the major axis, counter-clockwise. No
// vertices for a ratio outside (0, 1] or an axis without length.
[[nodiscard]] PolylineCurve ellipseAsArcs(AcGePoint2d centre, AcGeVector2d major, double ratio);
// Interpolating cubic through the fit points: parameters are the lengths of the chords from the start, mm;
// points that repeat the one before are dropped. Only the direction of a tangent counts (the curve leaves at
// 1 mm of length per mm of parameter); an end without one is natural. A curve whose last point repeats its
// first closes smoothly when no tangent is given. Nothing for fewer than two distinct points.
[[nodiscard]] std::optional<NurbsCurve> nurbsThrough(std::span<const AcGePoint2d> fitPoints,
                                                     std::optional<AcGeVector2d> startTangent,
                                                     std::optional<AcGeVector2d> endTangent);

}  // namespace tarnex
