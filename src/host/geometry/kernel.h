// What each kind of curve answers, one overload per kind; the public operations only choose among them.
// Internal to the kernel.
#pragma once

#include <optional>

#include "host/geometry/curves.h"
#include "host/geometry/element.h"

namespace tarnex::kernel {

// Parameters may lie beyond the ends of lines, rays, arcs, ellipses and open polylines, where the curve is
// taken as extended; NURBS and closed polylines hold them to their range.
// clang-format off
bool valid(const LineCurve& c);
bool valid(const RayCurve& c);
bool valid(const ArcCurve& c);
bool valid(const EllipseCurve& c);
bool valid(const NurbsCurve& c);
bool valid(const PolylineCurve& c);

bool closed(const LineCurve& c);
bool closed(const RayCurve& c);
bool closed(const ArcCurve& c);
bool closed(const EllipseCurve& c);
bool closed(const NurbsCurve& c);
bool closed(const PolylineCurve& c);

double paramFrom(const LineCurve& c);
double paramFrom(const RayCurve& c);
double paramFrom(const ArcCurve& c);
double paramFrom(const EllipseCurve& c);
double paramFrom(const NurbsCurve& c);
double paramFrom(const PolylineCurve& c);

double paramTo(const LineCurve& c);
double paramTo(const RayCurve& c);
double paramTo(const ArcCurve& c);
double paramTo(const EllipseCurve& c);
double paramTo(const NurbsCurve& c);
double paramTo(const PolylineCurve& c);

AcGePoint2d at(const LineCurve& c, double param);
AcGePoint2d at(const RayCurve& c, double param);
AcGePoint2d at(const ArcCurve& c, double param);
AcGePoint2d at(const EllipseCurve& c, double param);
AcGePoint2d at(const NurbsCurve& c, double param);
AcGePoint2d at(const PolylineCurve& c, double param);

AcGeVector2d slope(const LineCurve& c, double param);
AcGeVector2d slope(const RayCurve& c, double param);
AcGeVector2d slope(const ArcCurve& c, double param);
AcGeVector2d slope(const EllipseCurve& c, double param);
AcGeVector2d slope(const NurbsCurve& c, double param);
AcGeVector2d slope(const PolylineCurve& c, double param);

Extents2d box(const LineCurve& c);
Extents2d box(const RayCurve& c);
Extents2d box(const ArcCurve& c);
Extents2d box(const EllipseCurve& c);
Extents2d box(const NurbsCurve& c);
Extents2d box(const PolylineCurve& c);

// Distance from the start, mm, and back. The way back gets distances within the length only.
double distTo(const LineCurve& c, double param);
double distTo(const RayCurve& c, double param);
double distTo(const ArcCurve& c, double param);
double distTo(const EllipseCurve& c, double param);
double distTo(const NurbsCurve& c, double param);
double distTo(const PolylineCurve& c, double param);

double paramOf(const LineCurve& c, double distance);
double paramOf(const RayCurve& c, double distance);
double paramOf(const ArcCurve& c, double distance);
double paramOf(const EllipseCurve& c, double distance);
double paramOf(const NurbsCurve& c, double distance);
double paramOf(const PolylineCurve& c, double distance);

Closest closest(const LineCurve& c, AcGePoint2d p, bool extend);
Closest closest(const RayCurve& c, AcGePoint2d p, bool extend);
Closest closest(const ArcCurve& c, AcGePoint2d p, bool extend);
Closest closest(const EllipseCurve& c, AcGePoint2d p, bool extend);
Closest closest(const NurbsCurve& c, AcGePoint2d p, bool extend);
Closest closest(const PolylineCurve& c, AcGePoint2d p, bool extend);

Curve backwards(const LineCurve& c);
Curve backwards(const RayCurve& c);
Curve backwards(const ArcCurve& c);
Curve backwards(const EllipseCurve& c);
Curve backwards(const NurbsCurve& c);
Curve backwards(const PolylineCurve& c);

std::optional<Curve> moved(const LineCurve& c, const AcGeMatrix3d& m);
std::optional<Curve> moved(const RayCurve& c, const AcGeMatrix3d& m);
std::optional<Curve> moved(const ArcCurve& c, const AcGeMatrix3d& m);
std::optional<Curve> moved(const EllipseCurve& c, const AcGeMatrix3d& m);
std::optional<Curve> moved(const NurbsCurve& c, const AcGeMatrix3d& m);
std::optional<Curve> moved(const PolylineCurve& c, const AcGeMatrix3d& m);

// The piece between two parameters in the curve's direction. On a closed curve `to` may lie at or before `from`:
// the piece then runs over the start.
Curve piece(const LineCurve& c, double from, double to);
Curve piece(const RayCurve& c, double from, double to);
Curve piece(const ArcCurve& c, double from, double to);
Curve piece(const EllipseCurve& c, double from, double to);
Curve piece(const NurbsCurve& c, double from, double to);
Curve piece(const PolylineCurve& c, double from, double to);
// clang-format on

// The ellipse that an arc of one is extended to: half of what is missing before its start, half beyond its
// end.
EllipseCurve wholeOf(const EllipseCurve& c);

// Span i as an element, with open ends where the polyline is open and `extend` is asked.
Element elementOf(const PolylineCurve& c, std::size_t i, bool extend);

}  // namespace tarnex::kernel
