// Intersections of random curves against dense sampling, and of long polylines against every pair of spans.
// Knows no internals of the kernel.
#include <gtest/gtest.h>

#include <ctime>

#include "host/geometry/curves.h"
#include "sample_curves.h"

namespace tarnex {
namespace {

using sample::at;
using sample::Source;

struct Chord {
  AcGePoint2d from, to;
};

std::vector<Chord> chordsOf(const Curve& c, int count) {
  std::vector<Chord> chords;
  for (int i = 0; i < count; ++i) chords.push_back({at(c, double(i) / count), at(c, double(i + 1) / count)});
  return chords;
}

// Crossing of two chords well inside both, at no flat angle.
std::optional<AcGePoint2d> clearCrossing(const Chord& a, const Chord& b) {
  const AcGeVector2d da = a.to - a.from, db = b.to - b.from;
  const double cross = da.crossProduct(db);
  if (std::abs(cross) < 0.2 * da.length() * db.length()) return std::nullopt;
  const double t = (b.from - a.from).crossProduct(db) / cross, u = (b.from - a.from).crossProduct(da) / cross;
  if (t < 0.05 || t > 0.95 || u < 0.05 || u > 0.95) return std::nullopt;
  return a.from + da * t;
}

TEST(IntersectProperties, FoundPointsLieOnBothAndNoneIsMissed) {
  Source source(21);
  int crossings = 0;
  for (int i = 0; i < sample::rounds(150); ++i) {
    const Curve a = source.any(10), b = source.any(10);
    const auto found = intersect(a, b, Extend::kOnBothOperands);
    for (const AcGePoint2d p : found) {
      const Closest onA = closestPoint(a, p);
      ASSERT_LT(onA.distance, 1e-9) << i << " kinds " << a.index() << ' ' << b.index();
      ASSERT_LT(closestPoint(b, p).distance, 1e-9) << i << " kinds " << a.index() << ' ' << b.index();
    }
    ASSERT_EQ(found.size(), intersect(b, a, Extend::kOnBothOperands).size())
        << i << " kinds " << a.index() << b.index();
    const auto chordsA = chordsOf(a, 240), chordsB = chordsOf(b, 240);
    for (const Chord& ca : chordsA) {
      for (const Chord& cb : chordsB) {
        const auto p = clearCrossing(ca, cb);
        if (!p) continue;
        ++crossings;
        double nearest = 1e9;
        for (const AcGePoint2d q : found) nearest = std::min(nearest, q.distanceTo(*p));
        const double reach = ca.from.distanceTo(ca.to) + cb.from.distanceTo(cb.to);
        ASSERT_LT(nearest, 3 * reach) << i << " kinds " << a.index() << ' ' << b.index();
      }
    }
  }
  EXPECT_GT(crossings, 100);
}

TEST(IntersectProperties, OrderFollowsTheFirstCurve) {
  Source source(22);
  for (int i = 0; i < sample::rounds(100); ++i) {
    const Curve a = source.any(10), b = source.any(10);
    double last = -1e-9;
    for (const AcGePoint2d p : intersect(a, b, Extend::kOnBothOperands)) {
      // A curve that crosses itself has two parameters there; the order is that of one of them.
      const double d = *distAtPoint(a, p, 1e-6);
      if (std::holds_alternative<NurbsCurve>(a) || std::holds_alternative<PolylineCurve>(a)) continue;
      ASSERT_GE(d, last - 1e-9) << i << " kinds " << a.index() << ' ' << b.index();
      last = d;
    }
  }
}

TEST(IntersectProperties, LinesAndArcsExtended) {
  Source source(23);
  for (int i = 0; i < sample::rounds(300); ++i) {
    const Curve a =
        source.coin() ? Curve(LineCurve{source.point(10), source.point(10)}) : Curve(source.arc(10));
    const Curve b =
        source.coin() ? Curve(LineCurve{source.point(10), source.point(10)}) : Curve(source.arc(10));
    const auto both = intersect(a, b, Extend::kExtendBoth);
    for (const AcGePoint2d p : both) {
      const double size = 1 + std::hypot(p.x, p.y);
      ASSERT_LT(closestPoint(a, p, true).distance, 1e-10 * size) << i;
      ASSERT_LT(closestPoint(b, p, true).distance, 1e-10 * size) << i;
    }
    // Each mode gives those of the whole that lie on what isn't extended.
    const auto count = [&](bool onA, bool onB) {
      std::size_t n = 0;
      for (const AcGePoint2d p : both) {
        n += (!onA || closestPoint(a, p).distance < 1e-9) && (!onB || closestPoint(b, p).distance < 1e-9);
      }
      return n;
    };
    ASSERT_EQ(intersect(a, b, Extend::kOnBothOperands).size(), count(true, true)) << i;
    ASSERT_EQ(intersect(a, b, Extend::kExtendThis).size(), count(false, true)) << i;
    ASSERT_EQ(intersect(a, b, Extend::kExtendArg).size(), count(true, false)) << i;
  }
}

// Curves on whole coordinates with angles of 45°, so that contacts, shared ends and overlaps abound.
Curve onGrid(Source& source) {
  const auto point = [&] {
    return AcGePoint2d{double(source.integer(-4, 4)), double(source.integer(-4, 4))};
  };
  const double start = source.integer(0, 7) * kPi / 4, sweep = source.integer(1, 8) * kPi / 4;
  const double size = source.integer(1, 5), turned = source.coin() ? sweep : -sweep;
  switch (source.integer(0, 4)) {
    case 0:
      return LineCurve{point(), point()};
    case 1:
      return ArcCurve{point(), size, start, turned};
    case 2:
      return EllipseCurve{point(), {size, 0}, source.integer(1, int(size)) / size, start, turned};
    case 3:
      return NurbsCurve{2, {point(), point(), point(), point()}, {}, {0, 0, 0, 1, 2, 2, 2}};
    default:
      break;
  }
  const double bulges[] = {0, 0, 1, -1, std::sqrt(2) - 1, 1 - std::sqrt(2), 1 + std::sqrt(2)};
  PolylineCurve c;
  c.closed = source.coin();
  for (int i = source.integer(2, 6); i > 0; --i)
    c.vertices.push_back({point(), bulges[source.integer(0, 6)]});
  return c;
}

TEST(IntersectProperties, DegenerateMeetingsSurviveTurningMovingAndSwapping) {
  Source source(26);
  for (const double far : {0.0, 100.0, 1e6}) {
    for (int i = 0; i < sample::rounds(1000); ++i) {
      const Curve a = onGrid(source), b = onGrid(source);
      const bool extendA = source.coin(), extendB = source.coin();
      const auto mode = [](bool first, bool second) {
        if (first) return second ? Extend::kExtendBoth : Extend::kExtendThis;
        return second ? Extend::kExtendArg : Extend::kOnBothOperands;
      };
      const auto found = intersect(a, b, mode(extendA, extendB));
      for (const AcGePoint2d p : found) {
        ASSERT_LT(closestPoint(a, p, extendA).distance, 1e-9) << i;
        ASSERT_LT(closestPoint(b, p, extendB).distance, 1e-9) << i;
      }
      const auto moved = AcGeMatrix3d::translation({far, -far / 3, 0}) *
                         AcGeMatrix3d::rotation(source.between(0, 6), {0, 0});
      const auto after = intersect(*transformed(a, moved), *transformed(b, moved), mode(extendA, extendB));
      ASSERT_EQ(found.size(), after.size())
          << i << " kinds " << a.index() << ' ' << b.index() << " far " << far;
      // A polyline may walk a stretch twice; its ends then depend on whose walk they are seen from.
      if (a.index() == 5 || b.index() == 5) continue;
      ASSERT_EQ(found.size(), intersect(b, a, mode(extendB, extendA)).size()) << i;
    }
  }
}

// A ring of short spans of radius 100 about `centre`, up to `noise` out of round.
PolylineCurve ring(AcGePoint2d centre, double noise, int spans, Source& source) {
  PolylineCurve c;
  c.closed = true;
  for (int i = 0; i < spans; ++i) {
    const double r = 100 + noise * source.between(-1, 1);
    c.vertices.push_back(
        {acutPolar(centre, 2 * kPi * i / spans, r), source.coin() ? 0 : source.between(-0.3, 0.3)});
  }
  return c;
}

TEST(IntersectProperties, LongPolylinesFindWhatTheirSpansFind) {
  Source source(24);
  const PolylineCurve a = ring({0, 0}, 2, 400, source), b = ring({1, 0.5}, 2, 300, source);
  std::size_t pairs = 0;
  for (std::size_t i = 0; i < a.spanCount(); ++i) {
    for (std::size_t j = 0; j < b.spanCount(); ++j) {
      pairs += intersect(spanCurve(a, i), spanCurve(b, j), Extend::kOnBothOperands).size();
    }
  }
  EXPECT_GT(pairs, 20u);
  EXPECT_EQ(intersect(a, b, Extend::kOnBothOperands).size(), pairs);
}

TEST(IntersectProperties, LongPolylinesAreNotQuadratic) {
  Source source(25);
  const auto work = [&](int spans) {     // processor time, the best of three
    const double noise = 300.0 / spans;  // of the size of a span
    const Curve a = ring({0, 0}, noise, spans, source), b = ring({0.01, 0}, noise, spans, source);
    std::clock_t best = std::numeric_limits<std::clock_t>::max();
    for (int i = 0; i < 3; ++i) {
      const std::clock_t begin = std::clock();
      (void)intersect(a, b, Extend::kOnBothOperands);
      best = std::min(best, std::clock() - begin);
    }
    return double(best) + 1;
  };
  EXPECT_LT(work(16000), 30 * work(2000));  // eight times the spans; all pairs would be 64 times the work
}

}  // namespace
}  // namespace tarnex
