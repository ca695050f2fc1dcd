// Intersections worked out by hand: every pair of kinds, the extension modes, contacts and overlaps.
// Knows no internals of the kernel.
#include <gmock/gmock.h>

#include "host/geometry/curves.h"

namespace tarnex {
namespace {

using Points = std::vector<AcGePoint2d>;
constexpr auto kBoth = Extend::kExtendBoth;
constexpr auto kNone = Extend::kOnBothOperands;

void expectPoints(const Points& found, const Points& wanted, double tolerance = 1e-9) {
  ASSERT_EQ(found.size(), wanted.size()) << testing::PrintToString(found.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(found[i].x, wanted[i].x, tolerance) << i;
    EXPECT_NEAR(found[i].y, wanted[i].y, tolerance) << i;
  }
}

const Curve kCircle = ArcCurve{{0, 0}, 5, 0, 2 * kPi};
const Curve kUpperHalf = ArcCurve{{0, 0}, 5, 0, kPi};
// Square of side 10, counter-clockwise from the origin.
const Curve kSquare = PolylineCurve{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, true};

TEST(Intersect, ExtensionModesOfTwoLines) {
  const Curve a = LineCurve{{0, 0}, {4, 0}}, b = LineCurve{{6, 1}, {6, 5}};
  expectPoints(intersect(a, b, kBoth), {{6, 0}});
  for (const Extend mode : {kNone, Extend::kExtendThis, Extend::kExtendArg})
    expectPoints(intersect(a, b, mode), {});
  const Curve c = LineCurve{{6, -1}, {6, 5}};
  expectPoints(intersect(a, c, Extend::kExtendThis), {{6, 0}});
  expectPoints(intersect(c, a, Extend::kExtendArg), {{6, 0}});
  expectPoints(intersect(a, c, Extend::kExtendArg), {});
  expectPoints(intersect(a, LineCurve{{4, 0}, {9, 9}}, kNone), {{4, 0}});
  expectPoints(intersect(a, LineCurve{{0, 1}, {4, 1}}, kBoth), {});
}

TEST(Intersect, LinesThatCoincide) {
  const Curve a = LineCurve{{0, 0}, {10, 0}};
  expectPoints(intersect(a, LineCurve{{14, 0}, {6, 0}}, kNone), {{6, 0}, {10, 0}});
  expectPoints(intersect(a, LineCurve{{10, 0}, {14, 0}}, kNone), {{10, 0}});
  expectPoints(intersect(a, LineCurve{{11, 0}, {14, 0}}, kNone), {});
  expectPoints(intersect(a, LineCurve{{11, 0}, {14, 0}}, Extend::kExtendThis), {{11, 0}, {14, 0}});
  expectPoints(intersect(a, LineCurve{{11, 0}, {14, 0}}, kBoth), {});  // an endless stretch has no ends
  expectPoints(intersect(a, a, kNone), {{0, 0}, {10, 0}});
  expectPoints(intersect(a, LineCurve{{3, 0}, {3, 0}}, kNone), {{3, 0}});  // a point on a line
  expectPoints(intersect(LineCurve{{3, 0}, {3, 0}}, LineCurve{{3, 0}, {3, 0}}, kNone), {{3, 0}});
  expectPoints(intersect(LineCurve{{3, 1}, {3, 1}}, a, kBoth), {});
}

TEST(Intersect, LinesAndArcs) {
  const Curve chord = LineCurve{{-9, 3}, {0, 3}};
  expectPoints(intersect(chord, kCircle, kNone), {{-4, 3}});
  expectPoints(intersect(chord, kCircle, Extend::kExtendThis), {{-4, 3}, {4, 3}});
  const Curve low = LineCurve{{9, -3}, {-9, -3}};  // in order along the line: from the right
  expectPoints(intersect(low, kUpperHalf, kNone), {});
  expectPoints(intersect(low, kUpperHalf, Extend::kExtendArg), {{4, -3}, {-4, -3}});
  expectPoints(intersect(kUpperHalf, LineCurve{{0, -9}, {0, 9}}, kNone), {{0, 5}});
  expectPoints(intersect(kUpperHalf, LineCurve{{9, 0}, {-9, 0}}, kNone),
               {{5, 0}, {-5, 0}});  // at its very ends
  // In order along the circle, which starts at the right.
  expectPoints(intersect(kCircle, LineCurve{{3, 9}, {3, -9}}, kNone), {{3, 4}, {3, -4}});
  expectPoints(intersect(RayCurve{{-3, 0}, {0, 1}}, kCircle, kNone), {{-3, 4}});
}

TEST(Intersect, ContactsGiveOnePoint) {
  for (const double off : {0.0, 3e-15, -3e-15}) {
    expectPoints(intersect(LineCurve{{-9, 5 + off}, {9, 5}}, kCircle, kNone), {{0, 5}}, 1e-4);
    expectPoints(intersect(kCircle, ArcCurve{{8 + off, 0}, 3, 0, 2 * kPi}, kNone), {{5, 0}}, 1e-4);
    expectPoints(intersect(kCircle, ArcCurve{{2 + off, 0}, 3, 0, 2 * kPi}, kNone), {{5, 0}}, 1e-4);
  }
  // Line and arc that run smoothly into each other, as every rounded corner does.
  expectPoints(intersect(LineCurve{{-9, 5}, {0, 5}}, ArcCurve{{0, 0}, 5, kPi / 2, -kPi / 2}, kNone),
               {{0, 5}});
  expectPoints(intersect(LineCurve{{-9, 5}, {0, 5}}, ArcCurve{{0, 0}, 5, kPi / 2, -kPi / 2}, kBoth),
               {{0, 5}});
  expectPoints(intersect(LineCurve{{-9, 5.001}, {9, 5.001}}, kCircle, kBoth), {});
  // 0.001 inside: half chord √(25 - 4.999²) = √0.009999.
  const double half = std::sqrt(0.009999);
  expectPoints(intersect(LineCurve{{-9, 4.999}, {9, 4.999}}, kCircle, kBoth),
               {{-half, 4.999}, {half, 4.999}});
}

TEST(Intersect, TwoArcs) {
  // Circles of radius 5 about (0,0) and (6,0): x = 3, y = ±4. Order along the first: from angle 0 up.
  expectPoints(intersect(kCircle, ArcCurve{{6, 0}, 5, 0, 2 * kPi}, kNone), {{3, 4}, {3, -4}});
  expectPoints(intersect(kUpperHalf, ArcCurve{{6, 0}, 5, 0, 2 * kPi}, kNone), {{3, 4}});
  expectPoints(intersect(kUpperHalf, ArcCurve{{6, 0}, 5, kPi, -0.1}, kNone), {});
  // Extended, the first still begins at its own start: (3,4) lies on it, (3,-4) beyond its end.
  expectPoints(intersect(kUpperHalf, ArcCurve{{6, 0}, 5, kPi, -0.1}, kBoth), {{3, -4}, {3, 4}});
  expectPoints(intersect(kCircle, ArcCurve{{0, 0}, 4, 0, 2 * kPi}, kBoth), {});
  expectPoints(intersect(kCircle, kCircle, kNone), {});  // coincide all the way round: no ends
  const Curve right = ArcCurve{{0, 0}, 5, -kPi / 2, kPi};
  expectPoints(intersect(kUpperHalf, right, kNone), {{5, 0}, {0, 5}});
  expectPoints(intersect(kCircle, right, kNone), {{0, 5}, {0, -5}});
  expectPoints(intersect(kUpperHalf, right, kBoth), {});
  // Two arcs of 300° that lap over each other at both their ends.
  const Curve gapLeft = ArcCurve{{0, 0}, 5, -5 * kPi / 6, 5 * kPi / 3};
  const Curve gapRight = ArcCurve{{0, 0}, 5, kPi / 6, 5 * kPi / 3};
  EXPECT_EQ(intersect(gapLeft, gapRight, kNone).size(), 4u);
}

TEST(Intersect, Polylines) {
  expectPoints(intersect(LineCurve{{-5, 5}, {15, 5}}, kSquare, kNone), {{0, 5}, {10, 5}});
  expectPoints(intersect(kSquare, LineCurve{{-5, 5}, {15, 5}}, kNone),
               {{10, 5}, {0, 5}});  // along the square
  expectPoints(intersect(LineCurve{{-5, -5}, {15, 15}}, kSquare, kNone),
               {{0, 0}, {10, 10}});  // through corners
  expectPoints(intersect(LineCurve{{-5, 5}, {5, -5}}, kSquare, kNone), {{0, 0}});
  expectPoints(intersect(LineCurve{{-5, 0}, {5, 0}}, kSquare, kNone), {{0, 0}, {5, 0}});  // along a side
  // Only the end spans are extended: the first to the left, the last upwards.
  const Curve open = PolylineCurve{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}}, false};
  expectPoints(intersect(open, LineCurve{{-3, -9}, {-3, 9}}, Extend::kExtendThis), {{-3, 0}});
  expectPoints(intersect(open, LineCurve{{-9, 20}, {30, 20}}, Extend::kExtendThis), {{10, 20}});
  expectPoints(intersect(open, LineCurve{{20, -9}, {20, 9}}, Extend::kExtendThis), {});
  expectPoints(intersect(kSquare, LineCurve{{-3, -9}, {-3, 9}}, Extend::kExtendThis), {});  // closed
  // An end arc is extended to its circle: about (0,5), radius 5, drawn from (0,0) over the right to (0,10).
  const Curve bow = PolylineCurve{{{{0, 0}, 1}, {{0, 10}, 0}, {{-9, 10}, 0}}, false};
  expectPoints(intersect(bow, LineCurve{{-7, 5}, {9, 5}}, kNone), {{5, 5}});
  expectPoints(intersect(bow, LineCurve{{-7, 5}, {9, 5}}, Extend::kExtendThis), {{-5, 5}, {5, 5}});
}

TEST(Intersect, PolylinesThatCoincide) {
  // The stretch runs over a corner of both, which is no end of it.
  const Curve hook = PolylineCurve{{{{5, 0}, 0}, {{10, 0}, 0}, {{10, 4}, 0}, {{20, 4}, 0}}, false};
  expectPoints(intersect(hook, kSquare, kNone), {{5, 0}, {10, 4}});
  // Over the square's start: in order along the square.
  const Curve start = PolylineCurve{{{{0, 3}, 0}, {{0, 0}, 0}, {{3, 0}, 0}}, false};
  expectPoints(intersect(kSquare, start, kNone), {{3, 0}, {0, 3}});
  expectPoints(intersect(kSquare, kSquare, kNone), {});
  // Half a circle in a polyline over the same circle.
  const Curve slot = PolylineCurve{{{{5, 0}, 1}, {{-5, 0}, 0}, {{-5, -9}, 0}}, false};
  expectPoints(intersect(slot, kCircle, kNone), {{5, 0}, {-5, 0}});
}

TEST(Intersect, EllipsesAndSplines) {
  const Curve oval = EllipseCurve{{0, 0}, {5, 0}, 0.6, 0, 2 * kPi};
  expectPoints(intersect(oval, LineCurve{{-9, 0}, {9, 0}}, kNone), {{5, 0}, {-5, 0}});
  expectPoints(intersect(LineCurve{{-9, 3}, {9, 3}}, oval, kNone), {{0, 3}});  // contact
  // x²/25 + y²/9 = 1 with x² + y² = 16: x² = (16 - 9) * 25 / 16, y² = 16 - x².
  const double x = std::sqrt(7 * 25.0 / 16), y = std::sqrt(16 - 7 * 25.0 / 16);
  const Curve circle = ArcCurve{{0, 0}, 4, 0, 2 * kPi};
  expectPoints(intersect(circle, oval, kNone), {{x, y}, {-x, y}, {-x, -y}, {x, -y}});
  // With the same ellipse turned by 90° they meet on the diagonals: x² (1/25 + 1/9) = 1.
  const double d = 15 / std::sqrt(34);
  const Curve upright = EllipseCurve{{0, 0}, {0, 5}, 0.6, 0, 2 * kPi};
  expectPoints(intersect(oval, upright, kNone), {{d, d}, {-d, d}, {-d, -d}, {d, -d}});
  expectPoints(intersect(oval, ArcCurve{{0, 0}, 3, 0, 2 * kPi}, kNone), {{0, 3}, {0, -3}});  // contact inside
  const Curve half = EllipseCurve{{0, 0}, {5, 0}, 0.6, 0, kPi};
  expectPoints(intersect(half, LineCurve{{0, 0}, {0, -9}}, kNone), {});
  expectPoints(intersect(half, LineCurve{{0, 0}, {0, -9}}, Extend::kExtendThis), {{0, -3}});
  expectPoints(intersect(half, oval, kNone), {{5, 0}, {-5, 0}});
  // The parabola y = x²/4 over [-4, 4] and lines, its mirror image, and a shifted copy of itself.
  const Curve bowl = NurbsCurve{2, {{-4, 4}, {0, -4}, {4, 4}}, {}, {0, 0, 0, 1, 1, 1}};
  expectPoints(intersect(bowl, LineCurve{{-9, 1}, {9, 1}}, kNone), {{-2, 1}, {2, 1}});
  expectPoints(intersect(bowl, LineCurve{{-9, 0}, {9, 0}}, kNone), {{0, 0}});
  const Curve dome = NurbsCurve{2, {{-4, -2}, {0, 6}, {4, -2}}, {}, {0, 0, 0, 1, 1, 1}};  // y = 2 - x²/4
  expectPoints(intersect(bowl, dome, kNone), {{-2, 1}, {2, 1}});
  const Curve touching = NurbsCurve{2, {{-4, -4}, {0, 4}, {4, -4}}, {}, {0, 0, 0, 1, 1, 1}};  // y = -x²/4
  expectPoints(intersect(bowl, touching, kNone), {{0, 0}}, 1e-6);
  const Curve shifted = NurbsCurve{2, {{-2, 4}, {2, -4}, {6, 4}}, {}, {0, 0, 0, 1, 1, 1}};  // y = (x - 2)²/4
  expectPoints(intersect(bowl, shifted, kNone), {{1, 0.25}});
  expectPoints(intersect(bowl, bowl, kNone), {{-4, 4}, {4, 4}});
}

// y = a x² + b x + c over [-4, 4]: the middle control point lies on the tangents of both ends.
Curve parabola(double a, double b, double c) {
  return NurbsCurve{
      2, {{-4, 16 * a - 4 * b + c}, {0, c - 16 * a}, {4, 16 * a + 4 * b + c}}, {}, {0, 0, 0, 1, 1, 1}};
}

TEST(Intersect, SplinesInContact) {
  // x²/4 less (x - 0.7)² touches x²/4 at x = 0.7; moved by h they meet at 0.7 ± √h, or not at all.
  const Curve bowl = parabola(0.25, 0, 0);
  expectPoints(intersect(bowl, parabola(-0.75, 1.4, -0.49), kNone), {{0.7, 0.1225}}, 1e-4);
  for (const double h : {1e-2, 1e-5, 1e-8}) {
    const double left = 0.7 - std::sqrt(h), right = 0.7 + std::sqrt(h);
    expectPoints(intersect(bowl, parabola(-0.75, 1.4, -0.49 + h), kNone),
                 {{left, left * left / 4}, {right, right * right / 4}}, 1e-6);
    expectPoints(intersect(bowl, parabola(-0.75, 1.4, -0.49 - h), kNone), {});
  }
  // Contact of third order: x³ and a straight spline, at one place.
  const Curve wave =
      NurbsCurve{3, {{-1, -1}, {-1.0 / 3, 1}, {1.0 / 3, -1}, {1, 1}}, {}, {0, 0, 0, 0, 1, 1, 1, 1}};
  expectPoints(intersect(wave, parabola(0, 0, 0), kNone), {{0, 0}}, 1e-3);
  expectPoints(intersect(wave, LineCurve{{-2, 0}, {2, 0}}, kNone), {{0, 0}}, 1e-3);
}

TEST(Intersect, FarFromTheOriginAndFlat) {
  const double at = 1e6;
  const Curve line = LineCurve{{at, at + 3}, {at + 9, at + 3}};
  expectPoints(intersect(line, ArcCurve{{at + 4, at}, 5, 0, 2 * kPi}, kNone),
               {{at, at + 3}, {at + 8, at + 3}}, 1e-8);
  // Two flat arcs bent towards each other over the same chord, 1e-6 * 50 mm apart in the middle.
  const Curve below = PolylineCurve{{{{at, at}, 1e-6}, {{at + 100, at}, 0}}, false};
  const Curve above = PolylineCurve{{{{at, at}, -1e-6}, {{at + 100, at}, 0}}, false};
  expectPoints(intersect(below, above, kNone), {{at, at}, {at + 100, at}}, 1e-8);
  expectPoints(intersect(below, LineCurve{{at + 50, at - 1}, {at + 50, at + 1}}, kNone),
               {{at + 50, at - 5e-5}}, 1e-8);
  // Two arcs of 0.01 mm on one circle of radius 100: their rounded ends leave the centres uncertain, yet the
  // circles are one and have no isolated points.
  const auto shortArc = [&](double angle) {
    const AcGePoint2d from = acutPolar({at, at}, angle, 100), to = acutPolar({at, at}, angle + 1e-4, 100);
    return Curve(PolylineCurve{{{from, std::tan(1e-4 / 4)}, {to, 0}}, false});
  };
  for (int i = 0; i < 40; ++i) expectPoints(intersect(shortArc(i * 0.1), shortArc(i * 0.3 + 1), kBoth), {});
  // An arc of bulge 1e6 is all but a circle of radius 250 below its start.
  const Curve full = PolylineCurve{{{{0, 0}, 1e6}, {{0.001, 0}, 0}}, false};
  expectPoints(intersect(LineCurve{{0.0005, -900}, {0.0005, -100}}, full, kNone), {{0.0005, -500}}, 1e-6);
}

}  // namespace
}  // namespace tarnex
