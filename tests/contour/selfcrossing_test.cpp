// Contours that cross, touch and fold back, worked out by hand; many spans against the comparison of every
// pair. Knows values alone.
#include "contour/selfcrossing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "contour/geometrylibrary.h"

namespace tarnex {
namespace {

const double kQuarter = std::tan(kPi / 8);

PolylineCurve walk(std::vector<BulgeVertex> vertices, bool closed = true) {
  return {std::move(vertices), closed};
}

std::vector<AcGePoint2d> byX(std::vector<AcGePoint2d> points) {
  sortPoints(points, 2);
  return points;
}

void expectPlaces(const char* what, const PolylineCurve& c, const std::vector<AcGePoint2d>& expected) {
  SCOPED_TRACE(what);
  for (const bool turned : {false, true}) {
    PolylineCurve shape = c;
    if (turned) reversePolyline(shape);
    const auto found = byX(selfCrossings(shape));
    ASSERT_EQ(found.size(), expected.size()) << (turned ? "reversed" : "as drawn");
    for (std::size_t i = 0; i < found.size(); ++i)
      EXPECT_LE(found[i].distanceTo(expected[i]), kSamePoint) << found[i].x << "," << found[i].y;
  }
}

TEST(SelfCrossing, PlacesWorkedOutByHand) {
  // A figure of eight crosses in the middle.
  expectPlaces("eight", walk({{{0, 0}}, {{10, 10}}, {{10, 0}}, {{0, 10}}}), {{5, 5}});
  // The closing span runs from (0,8) to (0,0) and is cut by the span from (-2,4) to (5,4).
  expectPlaces("closing span", walk({{{0, 0}}, {{9, 0}}, {{9, 4}}, {{-2, 4}}, {{-2, 8}}, {{0, 8}}}),
               {{0, 4}});
  expectPlaces("vertex on a span", walk({{{0, 0}}, {{10, 0}}, {{10, 8}}, {{5, 0}}, {{0, 8}}}), {{5, 0}});
  expectPlaces("vertex on a vertex", walk({{{0, 0}}, {{5, 5}}, {{10, 0}}, {{10, 10}}, {{5, 5}}, {{0, 10}}}),
               {{5, 5}});
  // A half circle about (5,5) of radius 5 hangs down from (10,5) to (0,5) and touches the line below at
  // (5,0), which is no vertex of either.
  expectPlaces("tangent arc", walk({{{-3, 0}}, {{13, 0}}, {{13, 5}}, {{10, 5}, -1}, {{0, 5}}, {{-3, 5}}}),
               {{5, 0}});
  // From (10,0) back to (4,0) on the span that it came along, then away: the stretch ends at (4,0).
  expectPlaces("folds back", walk({{{0, 0}}, {{10, 0}}, {{4, 0}}, {{4, 6}}}, false), {{4, 0}});
  // The hook's last span lies on the first one from (3,0) to (6,0).
  expectPlaces("lies over", walk({{{0, 0}}, {{10, 0}}, {{10, 5}}, {{6, 5}}, {{6, 0}}, {{3, 0}}}, false),
               {{3, 0}, {6, 0}});
  // There and back encloses nothing: the middle tells it.
  expectPlaces("there and back", walk({{{0, 0}}, {{10, 0}}}), {{5, 0}});
  // The arc about (7,-3) leaves the line's end (10,0) upward and comes down through (4,0), to its leftmost.
  const double r = std::sqrt(18.0);
  expectPlaces("neighbour crosses again",
               walk({{{0, 0}}, {{10, 0}, bulgeOfSweep(0.75 * kPi)}, {{7 - r, -3}}}, false), {{4, 0}});
}

TEST(SelfCrossing, SoundContoursHaveNone) {
  expectPlaces("square", walk({{{0, 0}}, {{10, 0}}, {{10, 10}}, {{0, 10}}}), {});
  expectPlaces("circle", walk({{{5, 0}, 1}, {{-5, 0}, 1}}), {});
  expectPlaces("lens", walk({{{0, 0}, 0.3}, {{10, 0}, 0.3}}), {});
  expectPlaces("slot", walk({{{0, 0}}, {{10, 0}, 1}, {{10, 4}}, {{0, 4}, 1}}), {});
  // A line runs into a fillet of 1 km, as smoothly as numbers allow.
  const double sweep = 0.01, r = 1e6;  // mm
  expectPlaces("huge fillet",
               walk({{{-50, 0}},
                     {{0, 0}, bulgeOfSweep(sweep)},
                     {{r * std::sin(sweep), r * (1 - std::cos(sweep))}},
                     {{-50, 500}}}),
               {});
  expectPlaces("vertex repeated", walk({{{0, 0}}, {{10, 0}}, {{10, 0}}, {{10, 10}}, {{0, 0}}}), {});
  expectPlaces("closed twice", walk({{{0, 0}}, {{10, 0}}, {{10, 10}}, {{0, 0}}}, false), {});
  // A circle of 0.2 mm in chords of 0.0006 mm: what is near along the polyline is near in the plane.
  PolylineCurve fine = walk({});
  for (int i = 0; i < 2000; ++i) fine.vertices.push_back({acutPolar({0, 0}, 2 * kPi * i / 2000, 0.2)});
  expectPlaces("micro-spans", fine, {});
}

// Each limit has a neighbour on either side.
TEST(SelfCrossing, ToleranceIsTheSamePoint) {
  const auto notch = [](double gap) { return walk({{{0, 0}}, {{10, 0}}, {{10, 8}}, {{5, gap}}, {{0, 8}}}); };
  EXPECT_EQ(selfCrossings(notch(0.0009)).size(), 1u);
  EXPECT_EQ(selfCrossings(notch(0.0011)).size(), 0u);
  const auto bow = [](double gap) {
    return walk({{{-3, 0}}, {{13, 0}}, {{13, 5}}, {{10, 5 + gap}, -1}, {{0, 5 + gap}}, {{-3, 5}}});
  };
  EXPECT_EQ(selfCrossings(bow(0.0009)).size(), 1u);
  EXPECT_EQ(selfCrossings(bow(0.0011)).size(), 0u);
  EXPECT_EQ(selfCrossings(bow(-0.5)).size(), 2u);
}

// Far from the origin and in other sizes the same places are found.
TEST(SelfCrossing, MovedAndGrown) {
  const PolylineCurve c =
      walk({{{0, 0}}, {{10, 10}, kQuarter}, {{10, 0}}, {{0, 10}, -kQuarter}, {{-1, 4}}, {{3, -1}}});
  const auto here = selfCrossings(c);
  ASSERT_FALSE(here.empty());
  for (const double shift : {0.0, 1000.0, 1e6})
    for (const double grow : {0.1, 1.0, 100.0}) {
      PolylineCurve other = c;
      for (auto& v : other.vertices) v.point = {v.point.x * grow + shift, v.point.y * grow - shift};
      const auto there = selfCrossings(other);
      ASSERT_EQ(there.size(), here.size()) << shift << " " << grow;
      for (std::size_t i = 0; i < here.size(); ++i)
        EXPECT_NEAR(there[i].distanceTo({here[i].x * grow + shift, here[i].y * grow - shift}), 0, 1e-6);
    }
}

// Against every pair of spans, away from the vertices, on random walks of lines and arcs.
TEST(SelfCrossing, AgreesWithEveryPair) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(0, 100), bend(-1.5, 1.5);
  const int rounds = std::getenv("TARNEX_LONG") ? 3000 : 150;
  for (int round = 0; round < rounds; ++round) {
    PolylineCurve c = walk({}, round % 2 == 0);
    const int count = 3 + static_cast<int>(random() % 30);
    for (int i = 0; i < count; ++i)
      c.vertices.push_back({{place(random), place(random)}, random() % 2 ? bend(random) : 0.0});
    std::vector<AcGePoint2d> expected;
    std::size_t all = 0;
    for (std::size_t i = 0; i < c.spanCount(); ++i)
      for (std::size_t k = i + 1; k < c.spanCount(); ++k)
        for (AcGePoint2d p : intersect(spanCurve(c, i), spanCurve(c, k), Extend::kOnBothOperands)) {
          const bool shared = std::any_of(c.vertices.begin(), c.vertices.end(),
                                          [&](const auto& v) { return v.point.distanceTo(p) < 0.1; });
          ++all;
          if (!shared) expected.push_back(p);
        }
    const auto found = selfCrossings(c);
    for (AcGePoint2d p : expected)
      EXPECT_TRUE(std::any_of(found.begin(), found.end(), [&](auto q) { return p.distanceTo(q) < 0.006; }))
          << "round " << round << ": missing " << p.x << "," << p.y;
    EXPECT_LE(found.size(), all) << "round " << round;
  }
}

TEST(ContourContacts, OfDifferentContoursAndWithThemselves) {
  const PolylineCurve square = walk({{{0, 0}}, {{10, 0}}, {{10, 10}}, {{0, 10}}});
  const PolylineCurve circle = walk({{{8, 5}, 1}, {{2, 5}, 1}});           // within the square
  const PolylineCurve across = walk({{{12, 5}, 1}, {{8, 5}, 1}});          // cuts x = 10 at 5 ± 2
  const PolylineCurve touching = walk({{{-4, 0}}, {{0, 5}}, {{-4, 10}}});  // a corner on the square's side
  const PolylineCurve eight = walk({{{50, 0}}, {{60, 10}}, {{60, 0}}, {{50, 10}}});
  const auto found = contourContacts(std::vector{square, circle, across, touching, eight});
  ASSERT_TRUE(found.complete);
  struct Row {
    std::uint32_t first, second;
    AcGePoint2d at;
  };
  // The circle across touches the one within at (8,5), at a vertex of both.
  const std::vector<Row> expected{
      {0, 2, {10, 3}}, {0, 2, {10, 7}}, {0, 3, {0, 5}}, {1, 2, {8, 5}}, {4, 4, {55, 5}}};
  ASSERT_EQ(found.contacts.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(found.contacts[i].first, expected[i].first) << i;
    EXPECT_EQ(found.contacts[i].second, expected[i].second) << i;
    EXPECT_NEAR(found.contacts[i].at.distanceTo(expected[i].at), 0, 1e-6) << i;
  }
}

TEST(ContourContacts, NumbersThatAreNoneMeetNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(selfCrossings({}).empty());
  EXPECT_TRUE(selfCrossings(walk({{{0, 0}}})).empty());
  EXPECT_TRUE(selfCrossings(walk({{{0, 0}}, {{nan, 1}}, {{5, 5}}})).empty());
  EXPECT_TRUE(selfCrossings(walk({{{0, 0}}, {{1e300, 1}}, {{5, 5}}})).empty());
  EXPECT_TRUE(selfCrossings(walk({{{0, 0}, 1e9}, {{1e-9, 1e-9}, 1e-300}, {{0, 0}}})).empty());
}

// A comb of slanting teeth has all boxes over each other, and no contact; a star of lines through one point
// has every pair meet there.
TEST(ContourContacts, ManySpansStayCheap) {
  PolylineCurve comb = walk({}, false), star = walk({}, false);
  for (int i = 0; i < 20000; ++i) {
    const AcGePoint2d foot = acutPolar({0, 0}, kPi / 3, i * 0.5);
    const AcGePoint2d tip = acutPolar(foot, -kPi / 6, 10000);
    if (i % 2 == 0)
      comb.vertices.insert(comb.vertices.end(), {{foot, 0}, {tip, 0}});
    else
      comb.vertices.insert(comb.vertices.end(), {{tip, 0}, {foot, 0}});
    const AcGePoint2d out = acutPolar({0, 0}, kPi * i / 20000, i % 2 ? 100 : -100);
    star.vertices.insert(star.vertices.end(), {{out, 0}, {{-out.x, -out.y}, 0}});
  }
  EXPECT_TRUE(selfCrossings(comb).empty());
  const auto found = contourContacts({&star, 1});
  EXPECT_FALSE(found.complete);
  ASSERT_FALSE(found.contacts.empty());
  EXPECT_TRUE(std::any_of(found.contacts.begin(), found.contacts.end(), [](const auto& c) {
    return c.at.distanceTo({0, 0}) < 1e-6;
  }));
}

}  // namespace
}  // namespace tarnex
