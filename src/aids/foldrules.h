// When one curve lies over another, and what becomes of both.
// Knows values; the drawing and the order of comparison are in duplicates.
#pragma once

#include <variant>

#include "host/geometry/values.h"

namespace tarnex {

// Drop: it stays in the drawing and leaves the work, as when two arcs make up a whole circle between them.
enum class FoldOutcome { kKeep, kAbsorb, kDrop };

// A line in canonical order (smaller x first, for equal x smaller y) with its signature.
struct FoldLine {
  AcGePoint2d s0, s1;
  double k = 0, b = 0;  // y = k x + b; a vertical line has its x and 99999
};
[[nodiscard]] FoldLine foldLine(AcGePoint2d start, AcGePoint2d end);

// An arc with normalised angles, radians: a start near 0 or 2π is 2π, an end near them is 0.
struct FoldArc {
  AcGePoint2d centre;
  double radius = 0, a0 = 0, a1 = 0;
};
[[nodiscard]] FoldArc foldArc(AcGePoint2d centre, double radius, double startAngle, double endAngle);

struct FoldCircle {
  AcGePoint2d centre;
  double radius = 0;
};

using FoldShape = std::variant<FoldLine, FoldArc, FoldCircle>;

// The entity that others are compared with; it may grow, and an arc may give way to a circle.
struct FoldBase {
  FoldShape shape;
  bool merged = false;
  bool gaveWay = false;  // an arc under a circle: the base itself is to be erased and counted
};

inline constexpr double kFoldTolerance = 0.001;  // of signatures, centres, radii, and lengths in mm

[[nodiscard]] FoldOutcome fold(FoldBase& base, const FoldShape& other);

}  // namespace tarnex
