// What holds for every curve, tried on random ones.
// Knows nothing of how the kernel finds its answers: sampling is the judge.
#include <gtest/gtest.h>

#include "host/geometry/curves.h"
#include "sample_curves.h"

namespace tarnex {
namespace {

using sample::at;
using sample::Source;

TEST(CurveProperties, NothingSampledBeatsTheClosestPoint) {
  Source source(11);
  for (int i = 0; i < sample::rounds(300); ++i) {
    const Curve c = source.any(10);
    const AcGePoint2d p = source.point(15);
    const Closest near = closestPoint(c, p);
    ASSERT_NEAR(near.point.distanceTo(p), near.distance, 1e-12) << i;
    ASSERT_LT(pointAtParam(c, near.param).distanceTo(near.point), 1e-9) << i << " kind " << c.index();
    for (int k = 0; k <= 200; ++k) ASSERT_GE(at(c, k / 200.0).distanceTo(p), near.distance - 1e-11) << i;
  }
}

TEST(CurveProperties, BoxHoldsTheCurveTightly) {
  Source source(12);
  for (int i = 0; i < sample::rounds(200); ++i) {
    const Curve c = source.any(10);
    const Extents2d box = extents(c);
    Extents2d sampled;
    for (int k = 0; k <= 2000; ++k) sampled.add(at(c, k / 2000.0));
    ASSERT_TRUE(box.grown(1e-11).contains(sampled)) << i << " kind " << c.index();
    ASSERT_TRUE(sampled.grown(0.1).contains(box)) << i << " kind " << c.index();
  }
}

TEST(CurveProperties, LengthsAgreeWithSamplingAndWithTheWayBack) {
  Source source(13);
  for (int i = 0; i < sample::rounds(100); ++i) {
    const Curve c = source.any(10);
    double chords = 0;
    constexpr int kChords = 4000;
    for (int k = 0; k < kChords; ++k)
      chords += at(c, double(k) / kChords).distanceTo(at(c, double(k + 1) / kChords));
    const double whole = length(c);
    ASSERT_NEAR(whole, chords, 2e-3 * whole) << i << " kind " << c.index();
    ASSERT_GE(whole, chords - 1e-9) << i;  // chords are the shortest way
    const double d = source.between(0, whole);
    const auto param = paramAtDist(c, d);
    ASSERT_TRUE(param);
    ASSERT_NEAR(distAtParam(c, *param), d, 1e-8) << i << " kind " << c.index();
  }
}

TEST(CurveProperties, SlopeIsTheDerivative) {
  Source source(14);
  for (int i = 0; i < sample::rounds(200); ++i) {
    const Curve c = source.any(10);
    const double range = endParam(c) - startParam(c), step = 1e-6 * range;
    const double param = startParam(c) + range * source.between(0.01, 0.99);
    if (std::floor(param - step) != std::floor(param + step)) continue;  // a vertex between
    const AcGeVector2d rate = (pointAtParam(c, param + step) - pointAtParam(c, param - step)) * (0.5 / step);
    const AcGeVector2d slope = tangentAtParam(c, param);
    ASSERT_NEAR((rate - slope).length(), 0, 1e-4 * (1 + slope.length())) << i << " kind " << c.index();
  }
}

TEST(CurveProperties, PiecesAddUpAndFollowEachOther) {
  Source source(15);
  for (int i = 0; i < sample::rounds(200); ++i) {
    const Curve c = source.any(10);
    std::vector<double> params;
    for (int k = source.integer(1, 4); k > 0; --k) {
      params.push_back(startParam(c) + (endParam(c) - startParam(c)) * source.between(0.01, 0.99));
    }
    const auto pieces = split(c, params);
    ASSERT_EQ(pieces.size(), params.size() + (isClosed(c) ? 0 : 1)) << i << " kind " << c.index();
    double sum = 0;
    for (std::size_t k = 0; k < pieces.size(); ++k) {
      ASSERT_TRUE(isValid(pieces[k]));
      sum += length(pieces[k]);
      const Curve& next = pieces[(k + 1) % pieces.size()];
      if (k + 1 < pieces.size() || isClosed(c)) {
        ASSERT_LT(endPoint(pieces[k]).distanceTo(startPoint(next)), 1e-9) << i << " kind " << c.index();
      }
      for (int s = 0; s <= 20; ++s) {
        ASSERT_LT(closestPoint(c, at(pieces[k], s / 20.0)).distance, 1e-9) << i << " kind " << c.index();
      }
    }
    ASSERT_NEAR(sum, length(c), 1e-8) << i << " kind " << c.index();
  }
}

TEST(CurveProperties, ReversedRunsBack) {
  Source source(16);
  for (int i = 0; i < sample::rounds(200); ++i) {
    const Curve c = source.any(10);
    const Curve back = reversed(c), twice = reversed(back);
    const auto* polyline = std::get_if<PolylineCurve>(&c);
    // A closed polyline starts one span earlier after it has been turned round.
    const double shift = polyline && polyline->closed ? 1.0 / static_cast<double>(polyline->spanCount()) : 0;
    for (int k = 0; k <= 20; ++k) {
      double part = 1 - shift - k / 20.0;
      if (part < -1e-9) part += 1;
      ASSERT_LT(at(back, k / 20.0).distanceTo(at(c, std::max(part, 0.0))), 1e-9)
          << i << " kind " << c.index();
      ASSERT_LT(at(twice, k / 20.0).distanceTo(at(c, k / 20.0)), 1e-12) << i << " kind " << c.index();
    }
  }
}

TEST(CurveProperties, TransformingCommutesWithEvaluation) {
  Source source(17);
  for (int i = 0; i < sample::rounds(300); ++i) {
    const Curve c = source.any(10);
    AcGeMatrix3d m = AcGeMatrix3d::rotation(source.between(0, 6), source.point(5)) *
                     AcGeMatrix3d::scaling(source.between(0.3, 2), source.point(5));
    if (source.coin()) m = AcGeMatrix3d::mirroring(source.point(5), source.point(5)) * m;
    if (source.coin()) m = AcGeMatrix3d::scaling(source.between(0.3, 2), source.between(0.3, 2), 1) * m;
    const auto image = transformed(c, m);
    if (!image) {
      ASSERT_TRUE(std::holds_alternative<PolylineCurve>(c) && !m.uniformScale()) << i;
      continue;
    }
    for (int k = 0; k <= 20; ++k) {
      ASSERT_LT(at(*image, k / 20.0).distanceTo(m.apply(at(c, k / 20.0))), 1e-10)
          << i << " kind " << c.index();
    }
  }
}

TEST(CurveProperties, AreaByPolygonOfManyChords) {
  Source source(18);
  for (int i = 0; i < sample::rounds(50); ++i) {
    PolylineCurve c = source.polyline(10, source.integer(3, 7));
    c.closed = true;
    std::vector<BulgeVertex> fine;
    for (int k = 0; k < 2000 * static_cast<int>(c.vertices.size()); ++k)
      fine.push_back({pointAtParam(c, k / 2000.0), 0});
    ASSERT_NEAR(signedArea(c.vertices), signedArea(fine), 1e-4 * (1 + std::abs(signedArea(fine)))) << i;
    for (int k = 0; k < 20; ++k) {
      const AcGePoint2d p = source.point(15);
      if (closestPoint(c, p).distance < 1e-3) continue;
      ASSERT_EQ(insideClosedWalk(c.vertices, p), insideClosedWalk(fine, p)) << i << ' ' << p.x << ',' << p.y;
    }
  }
}

}  // namespace
}  // namespace tarnex
