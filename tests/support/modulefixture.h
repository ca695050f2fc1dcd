// A module on an install folder of its own, without shipped content, and what tests of its rooms ask again
// and again. Knows no test.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "frame/environment.h"
#include "frame/module.h"
#include "frame/tgf.h"
#include "host/editor/session.h"

namespace tarnex {

class ModuleFixture : public InFolder {
 protected:
  ModuleFixture() {
    surround("TARNEX_SHIPPED", folder + "/nothing");
    module.emplace(session.ed, folder, 1);
  }
  // A catalogue with these texts alone.
  void texts(const std::vector<TgfText>& list) {
    write("texts.tgf", writeTgf(list).value());
    ASSERT_FALSE(module->catalog.open(folder + "/texts.tgf", 1));
  }
  [[nodiscard]] AcDbDatabase& drawing() { return session.ed.database(); }
  [[nodiscard]] bool stands(AcDbObjectId id) { return drawing().peek<AcDbEntity>(id) != nullptr; }

  Session session;
  std::optional<Module> module;
};

inline AcDbObjectId addArc(Session& s, AcGePoint2d centre, double radius, double fromDegrees,
                           double toDegrees) {
  return s.add(
      std::make_unique<AcDbArc>(solid(centre), radius, fromDegrees * kPi / 180, toDegrees * kPi / 180));
}

inline AcDbObjectId addPolyline(Session& s, std::vector<BulgeVertex> vertices, bool closed = false) {
  return s.add(std::make_unique<AcDbPolyline>(PolylineCurve{std::move(vertices), closed}));
}

// The polyline of an entity; without vertices when it is none.
inline PolylineCurve polylineOf(Session& s, AcDbObjectId id) {
  const auto* p = s.ed.database().peek<AcDbPolyline>(id);
  return p ? p->polyline() : PolylineCurve{};
}

// tan(sweep / 4) of an angle in degrees.
inline double bulgeOfDegrees(double degrees) {
  return std::tan(degrees * kPi / 720);
}

// The same vertices and bulges within `tolerance`, in the same order.
inline ::testing::AssertionResult sameVertices(const PolylineCurve& got,
                                               const std::vector<BulgeVertex>& wanted,
                                               double tolerance = 1e-9) {
  std::string shown;
  for (const auto& v : got.vertices)
    shown += " (" + std::to_string(v.point.x) + "," + std::to_string(v.point.y) + ";" +
             std::to_string(v.bulge) + ")";
  if (got.vertices.size() != wanted.size()) return ::testing::AssertionFailure() << "got" << shown;
  for (std::size_t i = 0; i < wanted.size(); ++i)
    if (!(got.vertices[i].point.distanceTo(wanted[i].point) <= tolerance) ||
        !(std::abs(got.vertices[i].bulge - wanted[i].bulge) <= tolerance))
      return ::testing::AssertionFailure() << "vertex " << i << " differs; got" << shown;
  return ::testing::AssertionSuccess();
}

}  // namespace tarnex
