// A session with modules and texts, contours put in by hand, and paths as they come out.
// Knows no command.
#pragma once

#include "contour/geometrylibrary.h"
#include "modules/moduletest.h"
#include "pathcmd/makepath.h"

namespace tarnex {

inline AcDbObjectId addContour(Session& s, std::vector<BulgeVertex> vertices, bool closed = true) {
  return s.add(std::make_unique<AcDbPolyline>(PolylineCurve{std::move(vertices), closed}));
}

// 10 by 10 from the origin, counter-clockwise.
inline AcDbObjectId addSquare(Session& s) {
  return addContour(s, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}});
}

class PathTest : public ModuleTest {
 protected:
  PathTest() {
    (void)session.ed.acedSetVar("CMDDIA", 0LL);
    module->loadSettings();
  }

  [[nodiscard]] WireCutSettings& settings() { return module->settings; }
  [[nodiscard]] PathState& state() { return module->state<PathState>(); }

  [[nodiscard]] bool stands(AcDbObjectId id) { return drawing().peek<AcDbEntity>(id) != nullptr; }
  bool pick(AcDbObjectId id, AcGePoint2d at, double fraction = 0) {
    module->saveSettings();
    return makePath(*module, {MakeMode::kPick, id, at, fraction, nullptr});
  }
  bool batch(AcDbObjectId id) {
    module->saveSettings();
    return makePath(*module, {MakeMode::kBatch, id, {}, 0, nullptr});
  }
  // Runs a command on answers and gives what it printed.
  std::string run(void (*command)(Module&), std::vector<std::string> lines) {
    module->saveSettings();
    session.out.clear();
    session.answers(std::move(lines));
    command(*module);
    return session.out;
  }
  [[nodiscard]] const CToolPath* path(std::size_t i = 0) {
    return i < state().PathList.size() ? drawing().peek<CToolPath>(state().PathList[i]) : nullptr;
  }
  // A path round a circle, entered from the right, its threading point at the centre.
  AcDbObjectId circlePath(AcGePoint2d centre, double radius) {
    auto made = std::make_unique<CToolPath>();
    EXPECT_TRUE(
        made->initCircle({centre, centre + AcGeVector2d{radius, 0}, 1, 1, 0.08, 0}, centre, radius, 2));
    addPath(*module, std::move(made), {}, kColorByLayer, nullptr);
    return state().PathList.back();
  }
  [[nodiscard]] std::vector<int> numbers(const std::vector<AcDbObjectId>& ids) {
    std::vector<int> list;
    for (AcDbObjectId id : ids) list.push_back(drawing().peek<CToolPath>(id)->nPathNo());
    return list;
  }
};

inline ::testing::AssertionResult sameWalk(const CToolPath* path, const std::vector<BulgeVertex>& wanted) {
  if (!path) return ::testing::AssertionFailure() << "no path";
  std::string shown;
  for (const auto& v : path->polyline().vertices)
    shown += " (" + std::to_string(v.point.x) + "," + std::to_string(v.point.y) + ";" +
             std::to_string(v.bulge) + ")";
  const auto& got = path->polyline().vertices;
  if (got.size() != wanted.size()) return ::testing::AssertionFailure() << "got" << shown;
  for (std::size_t i = 0; i < wanted.size(); ++i)
    if (!(got[i].point.distanceTo(wanted[i].point) < 1e-9) ||
        !(std::abs(got[i].bulge - wanted[i].bulge) < 1e-9))
      return ::testing::AssertionFailure() << "vertex " << i << " differs; got" << shown;
  return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult leadsFrom(const CToolPath* path, AcGePoint2d thread, AcGePoint2d entry) {
  if (!path) return ::testing::AssertionFailure() << "no path";
  const AcGePoint2d t = path->getPointAt(0), q = path->getPointAt(1);
  if (t.distanceTo(thread) < 1e-9 && q.distanceTo(entry) < 1e-9) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "T " << t.x << "," << t.y << " Q " << q.x << "," << q.y;
}

}  // namespace tarnex
