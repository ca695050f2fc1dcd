// Views: where points, arcs and texts are seen, worked out by hand.
#include "host/display/projection.h"

#include <gtest/gtest.h>

#include "displaylists.h"
#include "host/display/painter.h"

namespace tarnex {
namespace {

constexpr double kNear = 1e-9;
const double kHalf = std::sqrt(0.5), kSixth = std::sqrt(1.0 / 6), kThird = std::sqrt(1.0 / 3);

void expectAt(AcGePoint2d p, double x, double y) {
  EXPECT_NEAR(p.x, x, kNear);
  EXPECT_NEAR(p.y, y, kNear);
}

TEST(Projection, ShowsTheAxesOfAnIsometricView) {
  // Eye at (-1,-1,1): to the right is z x eye = (1,-1,0), up is eye x right = (1,1,2), both made unit long.
  const Projection iso = Projection::isometric();
  expectAt(iso.at({1, 0, 0}), kHalf, kSixth);
  expectAt(iso.at({0, 1, 0}), -kHalf, kSixth);
  expectAt(iso.at({0, 0, 1}), 0, 2 * kSixth);
  expectAt(iso.at({5, 5, -5}), 0, 0);  // along the view
  EXPECT_FALSE(iso.isPlan());
}

TEST(Projection, FromAboveIsThePlanAndFromBelowItsMirrorImage) {
  for (const double z : {1.0, 0.001, 1e12}) EXPECT_TRUE(Projection::from({0, 0, z})->isPlan());
  EXPECT_TRUE(Projection().isPlan());
  expectAt(Projection::from({0, 0, -3})->at({2, 5, 7}), -2, 5);
  expectAt(Projection::from({0, -1, 0})->at({2, 5, 7}), 2, 7);  // from the front: x and z
  expectAt(Projection::from({1, 0, 0})->at({2, 5, 7}), 5, 7);   // from the right: y and z
  for (const AcGeVector3d& none : {AcGeVector3d{}, AcGeVector3d{std::nan(""), 0, 1},
                                   AcGeVector3d{std::numeric_limits<double>::infinity(), 0, 0}})
    EXPECT_FALSE(Projection::from(none));
}

TEST(Projection, ACircleIsSeenAsAnEllipse) {
  // Level circle of radius 2 about (3,0) at z 6: the half axis across the view keeps its length, the one
  // along it shrinks by the sine of the eye's height over the plane, 1/sqrt(3).
  const auto seen = seenArc(Projection::isometric(), {{3, 0}, 2, 0, 2 * kPi}, {{3, 0}, 6, {}});
  ASSERT_TRUE(seen);
  expectAt(seen->centre, 3 * kHalf, 3 * kSixth + 12 * kSixth);
  EXPECT_NEAR(seen->major.length(), 2, kNear);
  EXPECT_NEAR(seen->major.y, 0, kNear);
  EXPECT_NEAR(seen->ratio, kThird, kNear);
  EXPECT_NEAR(seen->sweep, 2 * kPi, kNear);
}

TEST(Projection, ArcsKeepTheirEndsAndTheirWay) {
  // Each point of the arc is where its lifted plan is seen, also on a slope and from below.
  const DrawnArc arcs[] = {{{4, 0, 1}, {0, 4, 1}, {-4, 0, 1}},
                           {{4, 0, 0}, {0, 4, 2}, {-4, 0, 8}},
                           {{0, 4, 1}, {4, 0, 1}, {0, -4, 1}}};
  for (const AcGeVector3d& eye : {AcGeVector3d{-1, -1, 1}, {2, -1, 0.3}, {1, 1, -1}})
    for (const DrawnArc& arc : arcs) {
      const Projection view = *Projection::from(eye);
      const bool left = arc.start.x > 0;
      const ArcCurve plan{{0, 0}, 4, left ? 0 : kPi / 2, left ? kPi : -kPi};
      const auto seen = seenArc(view, plan, planeThrough(arc));
      ASSERT_TRUE(seen);
      const Curve curve{*seen};
      const AcGePoint2d start = view.at(arc.start), middle = view.at(arc.point), end = view.at(arc.end);
      expectAt(pointAtParam(curve, seen->startParam), start.x, start.y);
      expectAt(pointAtParam(curve, seen->startParam + seen->sweep / 2), middle.x, middle.y);
      expectAt(pointAtParam(curve, seen->startParam + seen->sweep), end.x, end.y);
    }
}

TEST(Projection, ACircleSeenOnEdgeIsALine) {
  const Projection front = *Projection::from({0, -1, 0});
  const ArcCurve circle{{3, 9}, 2, kPi / 2, 2 * kPi};
  const ArcPlane plane{{3, 9}, 6, {}};
  EXPECT_FALSE(seenArc(front, circle, plane));
  const auto corners = seenOnEdge(front, circle, plane);  // from the middle to one end, the other, and back
  Extents2d box;
  for (const AcGePoint2d p : corners) box.add(p);
  expectAt(corners.front(), 3, 6);
  expectAt(corners.back(), 3, 6);
  EXPECT_NEAR(box.low.x, 1, kNear);
  EXPECT_NEAR(box.high.x, 5, kNear);
  EXPECT_NEAR(box.high.y - box.low.y, 0, kNear);
}

TEST(Projection, ThePageHoldsWhatIsSeen) {
  // The cube's edge from (0,0,0) to (10,10,10) is seen upright: from 0 to 10 * 4/sqrt(6).
  DisplayList list = listOf({Points{{0, 0, 0}, {10, 10, 10}}});
  PageOptions options;
  options.view = Projection::isometric();
  options.margin = 0;
  options.scale = 2;
  options.width = options.height = 0;
  Page page = layoutPage(list, options);
  EXPECT_NEAR(page.shown.low.y, 0, kNear);
  EXPECT_NEAR(page.shown.high.y, 40 * kSixth, kNear);
  EXPECT_NEAR(page.height, 80 * kSixth, kNear);
  // A window of 10 by 10 in plan, as high as the drawing: corners (0,10,0) to (10,0,0) across, z up to 10.
  options.window = Extents2d{{0, 0}, {10, 10}};
  page = layoutPage(list, options);
  EXPECT_NEAR(page.width, 2 * 20 * kHalf, kNear);
  EXPECT_NEAR(page.shown.high.y, 40 * kSixth, kNear);
}

TEST(Projection, TextsStandUpright) {
  const DrawnText text{{1, 0, 3}, {0, 1}, 2.5, "A"};
  const DrawnText seen = seenText(Projection::isometric(), text);
  expectAt(seen.position.flat(), kHalf, 7 * kSixth);
  EXPECT_EQ(seen.direction, (AcGeVector2d{1, 0}));
  EXPECT_EQ(seenText(Projection(), text).direction, text.direction);
}

}  // namespace
}  // namespace tarnex
