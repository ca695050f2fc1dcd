// Roughing: the guide proven by area on random contours, its order by a small square, and the job around it.
// Loads the module of this build; contours have a fixed seed, more of them with TARNEX_LONG=1.
#include <cmath>
#include <random>

#include "contour/geometrylibrary.h"
#include "modules/moduletest.h"
#include "pathcmd/jobs.h"
#include "pathcmd/paths.h"
#include "toolpath/roughbinding.h"

namespace tarnex {
namespace {

class Rough : public ModuleTest {
 protected:
  Rough() {
    (void)session.ed.acedSetVar("CMDDIA", 0LL);
    module->loadSettings();
  }
  AcDbObjectId add(const PolylineCurve& c) { return session.add(std::make_unique<AcDbPolyline>(c)); }
  // The guide; its entity is taken out of the drawing again.
  PolylineCurve guideIn(AcDbObjectId id, const Roughing& arguments) {
    const AcDbObjectId guide = roughContour(*module, id, arguments);
    if (guide.isNull()) return {};
    const PolylineCurve curve = drawing().peek<AcDbPolyline>(guide)->polyline();
    drawing().takeBack({guide});
    return curve;
  }
  void run(void (*command)(Module&), std::vector<std::string> lines) {
    module->saveSettings();
    session.out.clear();
    session.answers(std::move(lines));
    command(*module);
  }
};

// Round a centre, so that it can't cross itself: corners, bays, bumps and notches of 3 to 10 mm.
PolylineCurve randomContour(std::mt19937& random) {
  std::uniform_real_distribution<double> radius(3, 10), swing(-0.25, 0.25);
  const int n = std::uniform_int_distribution<int>(4, 12)(random);
  PolylineCurve c;
  c.closed = true;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * kPi * (i + 0.3 * swing(random)) / n;
    c.vertices.push_back({acutPolar({0, 0}, a, radius(random)), 0});
    if (i % 3 == 0) c.vertices.back().bulge = 0.4 * swing(random);
  }
  return c;
}

struct Verdict {
  int outside = 0;  // places of the guide nearer to the contour than allowed, or outside
  int left = 0,
      seen = 0;  // of the inside: farther than 0.8 of a step from the guide; `first` from the contour
};

Verdict judge(const PolylineCurve& contour, const PolylineCurve& guide, double first, double step) {
  Verdict v;
  const Curve wall = contour, wire = guide;
  for (double d = 0; d < length(wire); d += step / 5) {
    const AcGePoint2d p = *pointAtDist(wire, d);
    if (!insideClosedWalk(contour.vertices, p) || closestPoint(wall, p).distance < step / 2 - 1e-6)
      ++v.outside;
  }
  const Extents2d box = extents(wall);
  for (double x = box.low.x; x < box.high.x; x += step / 4)
    for (double y = box.low.y; y < box.high.y; y += step / 4) {
      const AcGePoint2d p{x, y};
      if (!insideClosedWalk(contour.vertices, p) || closestPoint(wall, p).distance < first) continue;
      ++v.seen;
      if (closestPoint(wire, p).distance > 0.8 * step) ++v.left;
    }
  return v;
}

TEST_F(Rough, ClearsRandomContoursAndNeverLeavesThem) {
  const int count = std::getenv("TARNEX_LONG") ? 200 : 30;
  std::mt19937 random(7);
  int made = 0;
  for (int i = 0; i < count; ++i) {
    const PolylineCurve contour = randomContour(random);
    const double step = std::uniform_real_distribution<double>(0.3, 0.9)(random);
    Roughing r;
    r.step = step;
    r.direction = i % 2 == 0 ? 1 : -1;
    r.alternate = i % 4 == 3 ? 1 : 0;
    r.allowance = i % 5 == 4 ? step / 3 : 0;
    const AcDbObjectId id = add(contour);
    const PolylineCurve guide = guideIn(id, r);
    drawing().takeBack({id});
    if (guide.vertices.empty()) continue;
    ++made;
    const Verdict v = judge(contour, guide, step + r.allowance, step);
    EXPECT_EQ(v.outside, 0) << i;
    EXPECT_EQ(v.left, 0) << i << " of " << v.seen << " step " << step;
    EXPECT_GT(v.seen, 50) << i;
    // It ends beside the contour.
    EXPECT_LE(closestPoint(Curve(contour), guide.vertices.back().point).distance, 2 * (step + r.allowance))
        << i;  // at a hollow corner the turn's own corner lies deeper
  }
  EXPECT_GE(made, count * 9 / 10);  // the others have a neck that no turn passes
}

// Where many corners close at once, rounding leaves spans of no length; every turn is there all the same.
TEST_F(Rough, ClearsEvenStars) {
  for (int points : {5, 12, 24}) {
    PolylineCurve star;
    star.closed = true;
    for (int i = 0; i < 2 * points; ++i)
      star.vertices.push_back({acutPolar({3, 4}, kPi * i / points, i % 2 == 0 ? 10 : 6.5), 0});
    Roughing r;
    r.step = 0.4;
    const PolylineCurve guide = guideIn(add(star), r);
    ASSERT_FALSE(guide.vertices.empty()) << points;
    const Verdict v = judge(star, guide, r.step, r.step);
    EXPECT_EQ(v.outside, 0) << points;
    EXPECT_EQ(v.left, 0) << points;
  }
}

// 10 by 10, a step of 2: turns of 6 by 6 and 2 by 2, from the inner one's four corners a spur of 2√2 out and
// back, and 2 from turn to turn.
TEST_F(Rough, ASquareFromTheInsideOut) {
  const AcDbObjectId square = add({{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, true});
  for (int direction : {1, -1}) {
    Roughing r;
    r.step = 2;
    r.direction = direction;
    const PolylineCurve guide = guideIn(square, r);
    ASSERT_GT(guide.vertices.size(), 10u);
    EXPECT_NEAR(length(Curve(guide)), 8 + 16 * std::sqrt(2.0) + 2 + 24, 1e-9);
    const Curve wall = drawing().peek<AcDbPolyline>(square)->polyline();
    EXPECT_NEAR(closestPoint(wall, guide.vertices.front().point).distance, 4, 1e-9);
    EXPECT_NEAR(closestPoint(wall, guide.vertices.back().point).distance, 2, 1e-9);
    const std::size_t n = guide.vertices.size();  // the outer turn: its joint, four corners, its joint
    const PolylineCurve outer{{guide.vertices.end() - 6, guide.vertices.end() - 1}, true};
    EXPECT_EQ(polylineOrientation(outer), direction);
    EXPECT_LT(guide.vertices[n - 1].point.distanceTo(guide.vertices[n - 6].point), 1e-9);
    r.sharpest = 0;  // no spurs
    EXPECT_NEAR(length(Curve(guideIn(square, r))), 8 + 2 + 24, 1e-9);
    r.step = 10.1;  // no room, not even for half a step
    EXPECT_TRUE(guideIn(square, r).vertices.empty());
  }
}

// A circle of 10, a step of 2: turns of 8, 6, 4, 2, and of 1, half a step in, for the middle.
TEST_F(Rough, TurnsInTheStartHoleAreLeftOut) {
  const AcDbObjectId circle = session.add(std::make_unique<AcDbCircle>(AcGePoint3d{5, 5, 0}, 10));
  Roughing r;
  r.step = 2;
  EXPECT_NEAR(length(Curve(guideIn(circle, r))), 2 * kPi * 21 + 7, 1e-9);
  r.startHole = 4.5;
  EXPECT_NEAR(length(Curve(guideIn(circle, r))), 2 * kPi * 14 + 2, 1e-9);
  r.allowance = 50;  // half a step of it: turns of 7 and 5
  EXPECT_NEAR(length(Curve(guideIn(circle, r))), 2 * kPi * 12 + 2, 1e-9);
}

TEST_F(Rough, TheJobKeepsTheGuideOnThePath) {
  session.ed.preset("nDieKind", "3");
  module->settings.bSameHoles = 1;
  module->settings.nSide = kOuterShape;  // roughing is a hole's all the same
  const AcDbObjectId hole = session.add(std::make_unique<AcDbCircle>(AcGePoint3d{0, 0, 0}, 5));
  session.add(std::make_unique<AcDbCircle>(AcGePoint3d{20, 0, 0}, 5));
  const AcDbObjectId loose = session.line({40, 0}, {50, 0});  // a triangle of lines
  session.line({50, 0}, {45, 8});
  session.line({45, 8}, {40, 0});
  run(&GA, {session.handle(hole) + "*5,0", session.handle(loose) + "*44,0", ""});
  const auto& list = module->state<PathState>().PathList;
  ASSERT_EQ(list.size(), 3u) << session.out;
  for (AcDbObjectId id : list) {
    const auto* path = drawing().peek<CToolPath>(id);
    EXPECT_EQ(path->flags(), kGuideCurve);
    EXPECT_EQ(path->nSide(), kInnerHole);
    EXPECT_EQ(path->getProcessStyle().sName, "BASE");
    ASSERT_GT(path->upper().vertices.size(), 20u);
    EXPECT_EQ(path->upper().vertices.front(), path->getPointAt(0));  // the wire never jumps
    EXPECT_EQ(path->upper().vertices.back(), path->getPointAt(0));
  }
  EXPECT_EQ(session.all().size(), 3u);  // the guides are no entities of their own
  EXPECT_EQ(module->settings.nSide, kOuterShape);
}

TEST_F(Rough, WhatCantBeClearedIsToldAndStays) {
  session.ed.preset("nDieKind", "3");
  const PolylineCurve none[] = {{{{{0, 0}, 0}, {{10, 0}, 0}, {{5, 8}, 0}}, false},
                                {{{{20, 0}, 0}, {{30, 0}, 0}, {{20, 10}, 0}, {{30, 15}, 0}}, true},
                                {{{{40, 0}, 0}, {{50, 0}, 0}, {{50, 0.15}, 0}, {{40, 0.15}, 0}}, true}};
  for (const auto& c : none) {
    const AcDbObjectId id = add(c);
    const AcGePoint2d at = c.vertices.front().point;
    run(&GA, {session.handle(id) + "*" + std::to_string(at.x) + "," + std::to_string(at.y), ""});
    EXPECT_THAT(session.out, ::testing::HasSubstr("No roughing")) << at.x;
  }
  EXPECT_EQ(session.all().size(), std::size(none));
  EXPECT_TRUE(module->state<PathState>().PathList.empty());
}

}  // namespace
}  // namespace tarnex
