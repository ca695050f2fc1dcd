// Lists of primitives written down shape by shape.
// Knows no entities.
#pragma once

#include <initializer_list>
#include <variant>
#include <vector>

#include "host/display/displaylist.h"

namespace tarnex {

using Points = std::vector<AcGePoint3d>;
using Shape = std::variant<Points, DrawnCircle, DrawnArc, DrawnText>;

inline DrawnShape drawn(const Points& points) {
  return DrawnPolyline{points};
}
inline DrawnShape drawn(const auto& shape) {
  return shape;
}

inline DisplayList listOf(std::initializer_list<Shape> shapes) {
  DisplayList list;
  for (const Shape& shape : shapes) {
    std::visit(
        [&](const auto& s) {
          const DrawnShape seen = drawn(s);
          list.extents.add(extentsOf(seen));
          list.add(Primitive(), seen);
        },
        shape);
  }
  return list;
}

}  // namespace tarnex
