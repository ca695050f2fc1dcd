// Whether an entity lies in a box or touches it, and how far it is from a point.
// Knows no view and no selection.
#pragma once

#include "host/database/database.h"

namespace tarnex {

[[nodiscard]] Extents2d boxOf(AcGePoint2d a, AcGePoint2d b);  // corners in any order
// Any part of its outline lies in the box or on its border. Entities without an outline count by their
// extents.
[[nodiscard]] bool touchesBox(const AcDbEntity& entity, const Extents2d& box);
// All of it lies in the box, border included; never so for a ray or an entity without extents.
[[nodiscard]] bool insideBox(const AcDbEntity& entity, const Extents2d& box);
// From p to the outline, mm; to the extents for an entity without an outline (0 inside), infinity without
// either.
[[nodiscard]] double distanceTo(const AcDbEntity& entity, AcGePoint2d p);

}  // namespace tarnex
