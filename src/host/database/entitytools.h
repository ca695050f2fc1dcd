// Helpers that the entity classes share: drawing a curve, lines of `list`, what a matrix may do to a plane
// entity. For this folder only.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "host/database/entity.h"
#include "host/database/worlddraw.h"

namespace tarnex {

// Draws a curve at height z: arcs as arcs, ellipses and NURBS as chords no farther from them than 1/1000 of
// their size.
void drawCurve(AcGiWorldDraw& draw, const Curve& c, double z);
// Straight spans that follow each other are one primitive; arcs end on the vertices to the last bit.
void drawCurve(AcGiWorldDraw& draw, const PolylineCurve& c, double z);

// "X=1.0000 Y=2.0000 Z=0.0000"; numbers with four decimals and a point.
[[nodiscard]] std::string pointText(const AcGePoint3d& p);
[[nodiscard]] std::string numberText(double v);
[[nodiscard]] std::string degreesText(double radians);

// eInvalidInput for a matrix with numbers that aren't finite or that flattens the plane, eNotApplicable for
// one that tilts the plane of drawing.
[[nodiscard]] ErrorStatus checkPlaneMatrix(const AcGeMatrix3d& m);

template <class T>
std::unique_ptr<AcDbObject> makeObject() {
  return std::make_unique<T>();
}

}  // namespace tarnex
