// Between the user coordinate system and the world.
// Knows no prompt.
#pragma once

#include "host/database/database.h"

namespace tarnex {

[[nodiscard]] inline AcGePoint3d ucsToWorld(const AcDbDatabase& db, const AcGePoint3d& p) {
  const AcGeVector3d z = db.ucsXDir.crossProduct(db.ucsYDir);
  const auto mixed = [&](double o, double ax, double ay, double az) {
    return o + p.x * ax + p.y * ay + p.z * az;
  };
  return {mixed(db.ucsorg.x, db.ucsXDir.x, db.ucsYDir.x, z.x),
          mixed(db.ucsorg.y, db.ucsXDir.y, db.ucsYDir.y, z.y),
          mixed(db.ucsorg.z, db.ucsXDir.z, db.ucsYDir.z, z.z)};
}

[[nodiscard]] inline AcGePoint3d worldToUcs(const AcDbDatabase& db, const AcGePoint3d& p) {
  const AcGeVector3d from = p - db.ucsorg;
  const AcGeVector3d z = db.ucsXDir.crossProduct(db.ucsYDir);
  const auto along = [&](const AcGeVector3d& axis) {
    return from.x * axis.x + from.y * axis.y + from.z * axis.z;
  };
  return {along(db.ucsXDir), along(db.ucsYDir), along(z)};
}

}  // namespace tarnex
