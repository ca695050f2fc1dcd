// What a drawing leaves behind for the writers, worked out by hand; and what a transformation does to all
// that hangs on a path.
#include <gtest/gtest.h>

#include "drawlog.h"

namespace tarnex {
namespace {

struct Settings : WireCutSettings {
  Settings(double length, double exit) : WireCutSettings("") {
    dOvercutLen = length;
    dOvercutExit = exit;
  }
};

std::unique_ptr<CToolPath> styled(std::unique_ptr<CToolPath> path) {
  path->setProcessStyle(ProcessStyle());
  return path;
}

void expectLine(const DisplayedOvercut& o, AcGePoint2d from, AcGePoint2d to) {
  ASSERT_TRUE(o.exit);
  EXPECT_LT(o.exit->from.distanceTo(from), 1e-9) << o.exit->from.x << ',' << o.exit->from.y;
  EXPECT_LT(o.exit->to.distanceTo(to), 1e-9) << o.exit->to.x << ',' << o.exit->to.y;
}

TEST(DisplayedOvercut, AStraightFirstSegmentIsLeftSquareAndGivesTheExitToAll) {
  // The wire comes in over 9 mm to (19,10) and goes up; 1.5 mm past the entry it leaves to the left, by 9
  // / 2.
  const auto square = styled(squareHole());
  Settings settings(1.5, 0);
  expectLine(square->displayedOvercut(settings), {19, 11.5}, {14.5, 11.5});
  EXPECT_EQ(settings.dOvercutExit, 0);  // only asked
  EXPECT_EQ(square->dOvercutLen(), 0);
  square->refreshFromDisplay(settings);
  EXPECT_DOUBLE_EQ(settings.dOvercutExit, 4.5);
  EXPECT_DOUBLE_EQ(square->dOvercutLen(), 1.5);
  EXPECT_DOUBLE_EQ(square->dOvercutExit(), 4.5);
  // A path drawn after it takes that exit, not the half of its own 7 mm: the wire at radius 7, clockwise from
  // (7,0), stands 1.5 / 7 rad on and leaves towards the centre, to radius 2.5.
  const auto round = styled(roundHole(kClockwise));
  round->setOffset(3);
  expectLine(round->displayedOvercut(settings), acutPolar({0, 0}, -1.5 / 7, 7),
             acutPolar({0, 0}, -1.5 / 7, 2.5));
  settings.dOvercutExit = -1;  // no length either
  round->refreshFromDisplay(settings);
  EXPECT_DOUBLE_EQ(settings.dOvercutExit, 3.5);
  EXPECT_NEAR(round->dOvercutExit(), 3.5, 1e-12);
}

TEST(DisplayedOvercut, AnArcThatBowsIntoTheHoleIsLeftAwayFromItsCentre) {
  // A dent of radius 5 about (0,5) in a hole cut counter-clockwise: the wire goes round it at radius 6, from
  // y 1 (4 below the centre, asin(4/6) before the middle) to y 9. Its middle is (-6,5); the exit points on
  // from there into the hole.
  const auto dent = stored(
      {.vertices = {{{-3, 0}, 0}, {{0, 0}, -1}, {{0, 10}, 0}, {{-20, 10}, 0}, {{-20, 0}, 0}, {{0, 0}, 0}},
       .dOffset = 1,
       .bHasStyle = true});
  const Settings settings(6 * std::asin(4.0 / 6), 0.5);
  expectLine(dent->displayedOvercut(settings), {-6, 5}, {-6.5, 5});
}

TEST(DisplayedOvercut, WhatIsNotShownKeepsItsExit) {
  const auto square = styled(squareHole());
  Settings settings(2, 0.7);
  square->refreshFromDisplay(settings);
  EXPECT_DOUBLE_EQ(square->dOvercutExit(), 0.7);
  // Longer than the first segment of 9 mm: the length is taken over, the exit isn't, nor are the settings.
  settings.dOvercutLen = 9.5;
  settings.dOvercutExit = 0;
  square->refreshFromDisplay(settings);
  EXPECT_EQ(square->dOvercutLen(), 9.5);
  EXPECT_DOUBLE_EQ(square->dOvercutExit(), 0.7);
  EXPECT_EQ(settings.dOvercutExit, 0);
  // An open path has no overcut, an unstyled one takes nothing over.
  StoredPath open{
      .vertices = {{{0, 0}, 0}, {{5, 0}, 0}, {{5, 8}, 0}}, .nFlags = kOpenPath, .bHasStyle = true};
  open.bClosed = false;
  const auto cut = stored(open);
  cut->refreshFromDisplay(settings);
  EXPECT_EQ(cut->dOvercutLen(), 0);
  const auto plain = squareHole();
  plain->refreshFromDisplay(settings);
  EXPECT_EQ(plain->dOvercutLen(), 0);
}

TEST(DisplayedOvercut, AnOuterShapeLeavesFromItsBreakPoint) {
  StoredPath fields{.vertices = {{{0, 0}, 0}, {{5, 0}, 0}, {{5, 8}, 0}},
                    .nSide = kOuterShape,
                    .bHasStyle = true,
                    .ptBreak = {5, 2},
                    .ptBreakExit = {2, 6}};  // 3 and 4 apart
  Settings settings(2, 0);
  EXPECT_EQ(stored(fields)->displayedOvercut(settings).dOvercutExit, 0);
  fields.nBreakSeg = 1;
  const auto path = stored(fields);
  path->refreshFromDisplay(settings);
  EXPECT_EQ(path->dOvercutExit(), 5);
  EXPECT_EQ(path->dOvercutLen(), 0);
  EXPECT_EQ(settings.dOvercutExit, 0);
}

TEST(PathTransform, CarriesAllThatHangsOnThePathAndLeavesItsMeasures) {
  const StoredPath fields{.vertices = {{{0, 0}, 0}, {{5, 0}, 0.5}, {{5, 8}, 0}, {{1, 4}, 0}, {{5, 0}, 0}},
                          .nFlags = kFourAxis,
                          .dOffset = 0.2,
                          .dHeight = 30,
                          .upper = {{{0, 0}, {6, 0}, {6, 8}, {1, 5}, {6, 0}}, {0, 1, 0, 0, 0}},
                          .aSyncMark = {3, 1, 2},
                          .bHasStyle = true,
                          .ptBreak = {5, 2},
                          .ptBreakExit = {4, 2},
                          .ptBreakUpper = {6, 3},
                          .ptBreakUpperExit = {4, 3},
                          .nBreakSeg = 1};
  for (const auto& m : {AcGeMatrix3d::translation({7, -3, 0}), AcGeMatrix3d::scaling(2, {1, 1}),
                        AcGeMatrix3d::mirroring({0, 1}, {1, 1})}) {
    const auto before = stored(fields), after = stored(fields);
    after->setPrevEnd({-3, -4});
    ASSERT_EQ(after->transformBy(m), ErrorStatus::eOk);
    const double turn = m.determinant2d() < 0 ? -1 : 1;
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(after->getPointAt(i), m.apply(before->getPointAt(i)));
      EXPECT_EQ(after->getBulgeAt(i), turn * before->getBulgeAt(i));
      const auto at = static_cast<std::size_t>(i);
      EXPECT_EQ(after->upper().vertices[at], m.apply(before->upper().vertices[at]));
      EXPECT_EQ(after->upper().bulges[at], turn * before->upper().bulges[at]);
    }
    EXPECT_EQ(after->ptBreak(), m.apply(before->ptBreak()));
    EXPECT_EQ(after->ptBreakExit(), m.apply(before->ptBreakExit()));
    EXPECT_EQ(after->nDirection(), turn);
    EXPECT_EQ(after->nBreakSeg(), 1);
    EXPECT_EQ(after->dHeight(), 30);
    EXPECT_EQ(after->dOffset(), 0.2);
    EXPECT_EQ(after->getPrevEnd(), (AcGePoint2d{-3, -4}));
  }
}

TEST(PathTransform, AnOpenPathKeepsItsWireOnItsSide) {
  // Straight: no orientation at all. Bent to the right although it was a part of a counter-clockwise contour.
  for (const AcGePoint2d bend : {AcGePoint2d{10, 0}, AcGePoint2d{10, -4}}) {
    const auto path =
        stored({.vertices = {{{0, 0}, 0}, {{5, 0}, 0}, {bend, 0}}, .nFlags = kOpenPath, .dOffset = 1});
    ASSERT_EQ(path->transformBy(AcGeMatrix3d::rotation(0.4, {3, 1})), ErrorStatus::eOk);
    EXPECT_EQ(path->nDirection(), kCounterClockwise);
    ASSERT_EQ(path->transformBy(AcGeMatrix3d::mirroring({0, 0}, {1, 2})), ErrorStatus::eOk);
    EXPECT_EQ(path->nDirection(), kClockwise);
  }
}

}  // namespace
}  // namespace tarnex
