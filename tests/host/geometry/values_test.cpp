// Points, vectors, transformations and angles.
// Knows no curves.
#include "host/geometry/values.h"

#include <gtest/gtest.h>

namespace tarnex {
namespace {

constexpr double kNear = 1e-12;

void expectNear(AcGePoint2d a, AcGePoint2d b, double tolerance = kNear) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
}

TEST(Values, AnglesLieInOneTurn) {
  const struct {
    AcGePoint2d to;
    double angle;
  } cases[] = {
      {{1, 0}, 0},       {{1, 1}, kPi / 4},      {{-1, 0}, kPi}, {{-1, -0.0}, kPi}, {{0, -2}, 3 * kPi / 2},
      {{1, -1e-300}, 0}, {{1, -1}, 7 * kPi / 4}, {{0, 0}, 0}};
  for (const auto& c : cases) {
    const double angle = acutAngle({0, 0}, c.to);
    EXPECT_NEAR(angle, c.angle, kNear) << c.to.x << ',' << c.to.y;
    EXPECT_GE(angle, 0);
    EXPECT_LT(angle, 2 * kPi);
  }
  EXPECT_NEAR(normalizedAngle(-kPi / 4), 7 * kPi / 4, kNear);
  EXPECT_NEAR(normalizedAngle(9 * kPi), kPi, 1e-11);
  EXPECT_EQ(normalizedAngle(-1e-20), 0);  // not 2π
  EXPECT_NEAR((AcGeVector2d{1, 0}.angleTo({-1, -1})), 3 * kPi / 4, kNear);
  EXPECT_NEAR((AcGeVector2d{1, 0}.angleTo({1, 1e-9})), 1e-9, 1e-20);
  expectNear(acutPolar({1, 2}, kPi / 2, -3), {1, -1});
}

TEST(Values, MatricesMoveTurnScaleAndMirror) {
  const AcGePoint2d p{3, 1};
  expectNear(AcGeMatrix3d::translation({1, 2, 3}).apply(p), {4, 3});
  expectNear(AcGeMatrix3d::rotation(kPi / 2, {1, 1}).apply(p), {1, 3});
  expectNear(AcGeMatrix3d::scaling(2, {1, 1}).apply(p), {5, 1});
  expectNear(AcGeMatrix3d::mirroring({0, 0}, {1, 1}).apply(p), {1, 3});
  expectNear(AcGeMatrix3d::mirroring({0, 5}, {9, 5}).apply(p), {3, 9});
  // a * b: b first. Turn about the origin to (-1, 3), then move.
  const auto both = AcGeMatrix3d::translation({10, 0, 0}) * AcGeMatrix3d::rotation(kPi / 2, {0, 0});
  expectNear(both.apply(p), {9, 3});
  EXPECT_LT(AcGeMatrix3d::mirroring({0, 0}, {1, 2}).determinant2d(), 0);
}

TEST(Values, UniformScaleOnlyWhereCirclesStayCircles) {
  const auto turned = AcGeMatrix3d::rotation(1, {5, 5}) * AcGeMatrix3d::scaling(-3, 3, 1);
  ASSERT_TRUE(turned.uniformScale());
  EXPECT_NEAR(*turned.uniformScale(), 3, kNear);
  EXPECT_FALSE(AcGeMatrix3d::scaling(1, 1 + 1e-8, 1).uniformScale());
  EXPECT_TRUE(AcGeMatrix3d::scaling(1, 1 + 1e-10, 1).uniformScale());
  AcGeMatrix3d shear;
  shear.entry(0, 1) = 0.5;
  EXPECT_FALSE(shear.uniformScale());
}

TEST(Values, ObjectCoordinatesByTheArbitraryAxisRule) {
  // Normal -z is near z: ax = y × -z = -x, ay = -z × -x = y. So drawings seen from behind are mirrored in x.
  const auto behind = AcGeMatrix3d::planeToWorld({0, 0, -1});
  expectNear(behind.apply(AcGePoint2d{2, 3}), {-2, 3});
  // Normal x isn't near z: ax = z × x = y, ay = x × y = z.
  const AcGePoint3d side = AcGeMatrix3d::planeToWorld({1, 0, 0}).apply(AcGePoint3d{2, 3, 4});
  EXPECT_NEAR(side.x, 4, kNear);
  EXPECT_NEAR(side.y, 2, kNear);
  EXPECT_NEAR(side.z, 3, kNear);
  EXPECT_EQ(AcGeMatrix3d::planeToWorld({0, 0, 7}), AcGeMatrix3d());
}

TEST(Values, ExtentsGrowFromEmpty) {
  Extents2d box;
  EXPECT_TRUE(box.empty());
  EXPECT_FALSE(box.contains(AcGePoint2d{0, 0}));
  EXPECT_FALSE(box.overlaps(box));
  EXPECT_TRUE(box.grown(5).empty());
  box.add(AcGePoint2d{1, 2});
  EXPECT_FALSE(box.empty());
  box.add(Extents2d{});
  EXPECT_EQ(box, (Extents2d{{1, 2}, {1, 2}}));
  EXPECT_TRUE(box.grown(1).contains(AcGePoint2d{0, 3}));
  EXPECT_FALSE(box.grown(1).overlaps(Extents2d{{2.1, 0}, {3, 9}}));
  EXPECT_TRUE(box.grown(1).overlaps(Extents2d{{2, 3}, {3, 9}}));
}

}  // namespace
}  // namespace tarnex
