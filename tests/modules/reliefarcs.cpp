// Relief arcs: what the routine makes of corners that were worked out by hand, and that a wire beside its
// arcs reaches the corner. Loads the module of this build.
#include <cmath>

#include "contour/geometrylibrary.h"
#include "host/geometry/offset.h"
#include "modules/moduletest.h"
#include "toolpath/reliefbinding.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

class ReliefArcs : public ModuleTest {
 protected:
  ReliefArcs() : relief(bindCornerRelief(*module, ReliefOf::kDrawnContour)) { EXPECT_TRUE(relief); }
  PolylineCurve relieved(std::vector<BulgeVertex> vertices, int nSide, double radius) {
    flags.clear();
    const auto id = session.add(std::make_unique<AcDbPolyline>(PolylineCurve{std::move(vertices), true}));
    EXPECT_TRUE(relief(id, radius, radius, nSide, flags));
    return session.last<AcDbPolyline>()->polyline();
  }
  CornerRelief relief;
  std::vector<int> flags;
};

// A circle of 0.2 through a right angle meets its sides 2 · 0.2 · cos 45° from the corner; it sweeps 90° up
// to the corner and 90° from it.
TEST_F(ReliefArcs, OfASquareHole) {
  const double d = 0.4 * std::sqrt(0.5), quarter = std::tan(kPi / 8);
  const auto hole = relieved({{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, 1, 0.2);
  const std::vector<BulgeVertex> expected{{{0, 0}, 0},       {{10 - d, 0}, quarter},  {{10, 0}, quarter},
                                          {{10, d}, 0},      {{10, 10 - d}, quarter}, {{10, 10}, quarter},
                                          {{10 - d, 10}, 0}, {{d, 10}, quarter},      {{0, 10}, quarter},
                                          {{0, 10 - d}, 0}};
  ASSERT_EQ(hole.vertices.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(hole.vertices[i].point.distanceTo(expected[i].point), 0, 1e-12) << i;
    EXPECT_NEAR(hole.vertices[i].bulge, expected[i].bulge, 1e-12) << i;
  }
  EXPECT_EQ(flags, (std::vector{0, 1, 0, 1, 1, 0, 1, 1, 0, 1}));
  // Round a part these corners keep no fillet.
  EXPECT_EQ(relieved({{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, -1, 0.2).vertices.size(), 4u);
}

struct Cornered {
  const char* what;
  std::vector<BulgeVertex> contour;
  int nSide;
  std::size_t corner;  // index in the contour
};

// Beside the arcs a wire with a smaller offset than their radius comes as near to the corner as its offset;
// without them it stays farther away. So a mating part's sharp corner fits in.
TEST_F(ReliefArcs, AWireReachesTheCorner) {
  const Cornered cases[] = {
      {"acute hole", {{{2, 0}, 0}, {{10, 0}, 0}, {{0, 6}, 0}, {{0, 0}, 0}}, 1, 1},
      {"hole, clockwise", {{{0, 0}, 0}, {{0, 6}, 0}, {{10, 0}, 0}}, 1, 2},
      {"L-shaped part",
       {{{0, 0}, 0}, {{9, 0}, 0}, {{9, 4}, 0}, {{4, 4}, 0}, {{4, 9}, 0}, {{0, 9}, 0}},
       -1,
       3},
      {"half disc", {{{0, -5}, 0}, {{5, 0}, 0.41421356237309503}, {{-5, 0}, 0}}, 1, 2},
      {"between arcs", {{{0, -4}, 0.3}, {{6, 0}, 0.3}, {{0, 4}, 0.3}, {{-6, 0}, 0.3}}, 1, 1},
  };
  constexpr double kRadius = 0.25, kOffset = 0.18;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const auto nearest = [&](const PolylineCurve& contour) {
      const double left = c.nSide * polylineOrientation(contour) * kOffset;
      auto walk = contour.vertices;
      walk.push_back({walk.front().point, 0});
      const auto wires = offsetCurves(walk, left);
      double best = 1e300;
      if (!wires) return best;
      for (const auto& wire : *wires)
        best = std::min(best, closestPoint(wire, c.contour[c.corner].point).distance);
      return best;
    };
    EXPECT_GT(nearest({c.contour, true}), kOffset + 0.005);
    EXPECT_NEAR(nearest(relieved(c.contour, c.nSide, kRadius)), kOffset, 1e-6);
  }
}

TEST_F(ReliefArcs, ShortSpansAndStepsStayAsTheyAre) {
  // Sides of 0.5: 0.28 from each corner is beyond their middle.
  EXPECT_EQ(relieved({{{0, 0}, 0}, {{0.5, 0}, 0}, {{0.5, 9}, 0}, {{0, 9}, 0}}, 1, 0.2).vertices.size(), 4u);
  // The corner at (10,0) has a step already.
  const auto stepped = relieved({{{0, 0}, 0},
                                 {{10, 0}, kMarkedBulge},
                                 {{10.1, -0.1}, kMarkedBulge},
                                 {{10, 0}, 0},
                                 {{10, 10}, 0},
                                 {{0, 10}, 0}},
                                1, 0.2);
  EXPECT_EQ(stepped.vertices.size(), 6u + 2 * 2);
  EXPECT_EQ(stepped.vertices[2].point, (AcGePoint2d{10.1, -0.1}));
}

TEST_F(ReliefArcs, InTheListsOfAProgramEachVertexKnowsWhichOfThePathItIs) {
  const auto id = session.add(std::make_unique<AcDbPolyline>(
      PolylineCurve{{{{-10, -10}, 0}, {{10, -10}, 0}, {{10, 10}, 0}, {{-10, 10}, 0}}, true}));
  auto path = std::make_unique<CToolPath>();
  const PolylineCurve contour = drawing().peek<AcDbPolyline>(id)->polyline();
  ASSERT_TRUE(path->initContour({{0, -5}, {0, -10}, kInnerHole, 1, 0, 0}, contour, 0));
  const auto& added = *drawing().peek<CToolPath>(session.add(std::move(path)));
  WireCutSettings settings(folder);
  settings.dIsoFixA = settings.dIsoFixB = 0.2;
  const auto lists = added.prepareOutput(settings, relief);
  // Threading point, entry, three for each corner, the entry again.
  EXPECT_EQ(lists.pathVertex, (std::vector{0, 1, -1, 2, -1, -1, 3, -1, -1, 4, -1, -1, 5, -1, 6}));
  EXPECT_EQ(lists.relievedCorners, 4);
  EXPECT_EQ(lists.vertices[3], (AcGePoint2d{10, -10}));
  settings.dIsoFixB = 0;
  EXPECT_EQ(added.prepareOutput(settings, relief).pathVertex, (std::vector{0, 1, 2, 3, 4, 5, 6}));
}

}  // namespace
}  // namespace tarnex
