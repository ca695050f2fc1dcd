// What an entity draws itself with: primitives with colour, line type and selection marker, in the order
// drawn.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/geometry/values.h"

namespace tarnex {

class AcGiWorldDraw {
 public:
  virtual ~AcGiWorldDraw() = default;
  // Stay in force until changed; every entity starts with its own layer colour and line type.
  virtual void setColor(int index) = 0;                 // 1..255, 256 by layer, 0 by block
  virtual void setLineType(std::string_view name) = 0;  // a name that isn't there leaves the one in force
  virtual void setSelectionMarker(int marker) = 0;

  virtual void polyline(std::span<const AcGePoint3d> points) = 0;
  virtual void circle(const AcGePoint3d& centre, double radius) = 0;
  virtual void circularArc(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end) = 0;
  virtual void text(const AcGePoint3d& position, AcGeVector3d direction, double height,
                    std::string_view utf8) = 0;

  // What an application handed to the drawing for its own entities (display values and the like); null:
  // nothing, they draw themselves with their defaults. The application knows the type.
  [[nodiscard]] virtual const void* applicationContext() const { return nullptr; }
};

}  // namespace tarnex
