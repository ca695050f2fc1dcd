// Out-and-back steps of a path in its offset, and the spans that an offset runs beside.
// Knows no program.
#include <gtest/gtest.h>

#include "toolpath/offsetspans.h"

namespace tarnex {
namespace {

// A hole of 20 by 20 entered at (20,10), counter-clockwise, wire 1 mm inside.
std::unique_ptr<CToolPath> squareHole() {
  auto path = std::make_unique<CToolPath>();
  const PolylineCurve c{{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 20}, 0}, {{0, 20}, 0}}, true};
  EXPECT_TRUE(path->initContour({{10, 10}, {20, 10}, 1, 1, 1, 0}, c, 1));
  return path;
}

void addStep(CToolPath& path, int vertex, AcGeVector2d way) {
  const AcGePoint2d root = path.getPointAt(vertex);
  path.addVertexAt(vertex, root + way, kMarkedBulge);
  path.addVertexAt(vertex, root, kMarkedBulge);
}

void expectStep(const OffsetPath& tool, std::size_t at, AcGePoint2d root, AcGeVector2d way) {
  ASSERT_GT(tool.vertices.size(), at + 2);
  EXPECT_EQ(tool.bulges[at], kMarkedBulge);
  EXPECT_EQ(tool.bulges[at + 1], kMarkedBulge);
  EXPECT_LT(tool.vertices[at].distanceTo(root), 1e-9);
  EXPECT_LT(tool.vertices[at + 1].distanceTo(root + way), 1e-9);
  EXPECT_LT(tool.vertices[at + 2].distanceTo(root), 1e-9);
  EXPECT_EQ(tool.bulges[at + 2], 0);
}

// Whichever way a step points, the wire goes the same way from its own corner, here (19,19).
TEST(PathSteps, GoWithTheCornerOfTheWire) {
  for (const AcGeVector2d way : {AcGeVector2d{0.2, 0.2}, {-0.2, -0.2}, {0.3, 0}, {-0.1, 0.2}}) {
    auto path = squareHole();
    addStep(*path, 2, way);
    const OffsetPath tool = path->wireCentrePath();
    ASSERT_EQ(tool.vertices.size(), 9u);
    EXPECT_FALSE(tool.ownMethod);
    expectStep(tool, 2, {19, 19}, way);
    EXPECT_EQ(spansBeside(path->polyline().vertices, tool, path->wireOffsetToTheLeft()),
              (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
  }
}

TEST(PathSteps, StayStepsWhenThePathIsTurned) {
  auto path = squareHole();
  addStep(*path, 2, {0.2, 0.1});
  ASSERT_TRUE(path->reverse());  // vertices 2 to 4 of 9 become 5 to 7
  expectStep(path->wireCentrePath(), 5, {19, 19}, {0.2, 0.1});
  ASSERT_EQ(path->transformBy(AcGeMatrix3d::mirroring({0, 0}, {0, 1})), ErrorStatus::eOk);
  expectStep(path->wireCentrePath(), 5, {-19, 19}, {-0.2, 0.1});
}

// The chamfer (20,19.8) - (19.8,20) is too short for the wire: its vertices become one, and the spans keep
// their numbers behind it.
TEST(PathSteps, SpansBesideKnowWhatTheOffsetDropped) {
  auto path = std::make_unique<CToolPath>();
  const PolylineCurve c{{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 19.8}, 0}, {{19.8, 20}, 0}, {{0, 20}, 0}}, true};
  ASSERT_TRUE(path->initContour({{10, 10}, {20, 10}, 1, 1, 1, 0}, c, 1));
  const OffsetPath tool = path->wireCentrePath();
  ASSERT_EQ(tool.vertices.size(), 7u);
  EXPECT_EQ(spansBeside(path->polyline().vertices, tool, path->wireOffsetToTheLeft()),
            (std::vector<int>{0, 1, 3, 4, 5, 6, 7}));
  addStep(*path, 2, {0.1, 0.1});  // at a corner that the wire doesn't come to
  EXPECT_EQ(path->wireCentrePath().vertices.size(), 7u);
}

}  // namespace
}  // namespace tarnex
