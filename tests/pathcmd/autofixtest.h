// Paths on contours given by hand, and what auto fix makes of them; also seen in a mirror, where a path runs
// the other way. Knows no kind.
#pragma once

#include "pathcmd/autofix.h"
#include "pathcmd/pathtest.h"
#include "support/modulefixture.h"

namespace tarnex {

using Walked = std::vector<BulgeVertex>;

inline Walked mirrored(Walked walk) {
  for (auto& v : walk) {
    v.point.x = -v.point.x;
    if (v.bulge != kMarkedBulge) v.bulge = -v.bulge;
  }
  return walk;
}

inline AcGePoint2d mirrored(AcGePoint2d p) {
  return {-p.x, p.y};
}

class AutoFixTest : public PathTest {
 protected:
  // A path that enters `contour` on its first span at `entry`.
  CToolPath& enter(const Walked& contour, AcGePoint2d thread, AcGePoint2d entry, int nDirection = 1) {
    auto made = std::make_unique<CToolPath>();
    EXPECT_TRUE(made->initContour({thread, entry, 1, nDirection, 0.08, 0}, {contour, true}, 0));
    addPath(*module, std::move(made), {}, kColorByLayer, nullptr);
    return hold(state().PathList.back());
  }
  CToolPath& hold(AcDbObjectId id) {
    opened_ = drawing().open<CToolPath>(id, OpenMode::kForWrite);
    return *opened_;
  }
  void closePath() { opened_.close(); }
  // 10 by 10, counter-clockwise, entered in the middle of its lower side; corners are vertices 2 to 5.
  CToolPath& square() { return enter(kSquare, {5, 4}, {5, 0}); }

  static Extents2d everything() { return {{-1e9, -1e9}, {1e9, 1e9}}; }
  [[nodiscard]] AutoFixSettings sizes(FixKind kind) {
    AutoFixSettings record(folder);
    record.nKind = static_cast<int>(kind);
    return record;
  }

  inline static const Walked kSquare{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}};
  // One corner, at (6, 4), turns right.
  inline static const Walked kL{{{0, 0}, 0},  {{10, 0}, 0}, {{10, 10}, 0},
                                {{6, 10}, 0}, {{6, 4}, 0},  {{0, 4}, 0}};
  static constexpr double kQuarter = 0.41421356237309503;  // tan(90°/4)

 private:
  Opened<CToolPath> opened_{ErrorStatus::eOk};
};

}  // namespace tarnex
