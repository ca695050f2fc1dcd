// Chains from a seed: who joins, which way round, what becomes of gaps; and against the scan spelled out.
// Knows the drawing; no path.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <random>

#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "support/modulefixture.h"

namespace tarnex {
namespace {

using Vertices = std::vector<BulgeVertex>;

class Join : public ModuleFixture {
 protected:
  // Chains from the first entity of the drawing with all others.
  PolylineCurve joinAll(double tolerance = 0.001) {
    const auto all = session.all();
    ChainCandidates candidates;
    collectChainCandidates(session.ed, {all.begin() + 1, all.end()}, candidates);
    const auto made = joinCurves(session.ed, all.front(), candidates, tolerance);
    return made ? polylineOf(session, *made) : PolylineCurve{};
  }
  AcDbObjectId line(AcGePoint2d a, AcGePoint2d b) { return session.line(a, b); }
};

TEST_F(Join, ASingleLineBecomesAPolylineOfItsLayerAndColour) {
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName("CUT");
  const AcDbObjectId cut = drawing().addLayer(std::move(layer));
  auto seed = std::make_unique<AcDbLine>(AcGePoint3d{0, 0, 5}, AcGePoint3d{10, 0, 7});
  seed->setLayer(cut);
  seed->setColorIndex(3);
  const AcDbObjectId id = session.add(std::move(seed));
  EXPECT_TRUE(sameVertices(joinAll(), {{{10, 0}, 0}, {{0, 0}, 0}}));  // open: turned about
  EXPECT_FALSE(stands(id));
  const auto* made = session.last<AcDbPolyline>();
  ASSERT_TRUE(made);
  EXPECT_EQ(made->layerId(), cut);
  EXPECT_EQ(made->colorIndex(), 3);
  EXPECT_EQ(made->elevation(), 0);
}

TEST_F(Join, SeedsOfOtherKindsChangeNothing) {
  const AcDbObjectId seed = session.circle({0, 0}, 5);
  const AcDbObjectId touching = line({5, 0}, {9, 0});
  ChainCandidates candidates;
  collectChainCandidates(session.ed, {touching}, candidates);
  EXPECT_FALSE(joinCurves(session.ed, seed, candidates, 0.001));
  EXPECT_TRUE(stands(seed) && stands(touching));
  EXPECT_EQ(session.all().size(), 2u);
}

TEST_F(Join, AClosedChainKeepsTheSeedsDirectionAndStart) {
  line({0, 0}, {10, 0});
  line({0, 10}, {10, 10});
  addArc(session, {10, 5}, 5, 270, 90);
  line({0, 10}, {0, 0});
  const auto c = joinAll();
  EXPECT_TRUE(c.closed);
  EXPECT_TRUE(sameVertices(c, {{{0, 0}, 0}, {{10, 0}, 1}, {{10, 10}, 0}, {{0, 10}, 0}}));
  EXPECT_EQ(session.all().size(), 1u);
}

TEST_F(Join, AChainThatStaysOpenGrowsAtBothEndsAndIsTurnedAbout) {
  line({0, 0}, {10, 0});
  line({20, 0}, {10, 0});
  line({-10, 5}, {0, 0});
  EXPECT_TRUE(sameVertices(joinAll(), {{{20, 0}, 0}, {{10, 0}, 0}, {{0, 0}, 0}, {{-10, 5}, 0}}));
}

TEST_F(Join, AtABranchTheFirstInOrderWins) {
  line({0, 0}, {10, 0});
  const AcDbObjectId late = line({10, 0}, {20, 5}), straight = line({10, 0}, {20, 0});
  const auto c = joinAll();
  EXPECT_TRUE(sameVertices(c, {{{20, 5}, 0}, {{10, 0}, 0}, {{0, 0}, 0}}));
  EXPECT_FALSE(stands(late));
  EXPECT_TRUE(stands(straight));
}

TEST_F(Join, ArcsAndPolylinesEnteredFromTheirEnd) {
  // The arc runs from (10,0) to (0,10); the chain comes along from (0,20), so it is walked clockwise.
  line({0, 20}, {0, 10});
  addArc(session, {0, 0}, 10, 0, 90);
  addPolyline(session, {{{30, 0}, 0.25}, {{20, 0}, -0.5}, {{15, 0}, 0.75}, {{10, 0}, 9}});
  const auto c = joinAll();
  // In travel: line, arc -q, then the polyline backward: -0.75, 0.5, -0.25; turned about at the end.
  const double q = bulgeOfDegrees(90);
  EXPECT_TRUE(sameVertices(
      c, {{{30, 0}, 0.25}, {{20, 0}, -0.5}, {{15, 0}, 0.75}, {{10, 0}, q}, {{0, 10}, 0}, {{0, 20}, 0}}));
}

TEST_F(Join, PolylineSeedsCloseInPlaceWithinAThousandth) {
  const AcDbObjectId near = addPolyline(session, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 0.001}, 0}});
  EXPECT_TRUE(joinAll().closed);
  EXPECT_TRUE(stands(near));
  drawing().open<AcDbEntity>(near, OpenMode::kForWrite)->erase();
  const AcDbObjectId apart =
      addPolyline(session, {{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 0.0011}, 0}});
  EXPECT_FALSE(joinAll().closed);
  EXPECT_FALSE(stands(apart));
}

TEST_F(Join, ClosedOnesAndOtherKindsNeverJoin) {
  line({0, 0}, {10, 0});
  session.circle({10, 5}, 5);
  addPolyline(session, {{{10, 0}, 0}, {{20, 0}, 0}, {{20, 9}, 0}}, true);
  session.add(std::make_unique<AcDbPoint>(AcGePoint3d{10, 0, 0}));
  session.add(std::make_unique<AcDbText>(AcGePoint3d{10, 0, 0}, "A", 3.0));
  EXPECT_EQ(joinAll().vertices.size(), 2u);
  EXPECT_EQ(session.all().size(), 5u);
}

TEST_F(Join, CollectingTurnsTwoVertexPolylinesAndEllipsesIntoWhatCanJoin) {
  const AcDbObjectId two = addPolyline(session, {{{0, 0}, bulgeOfDegrees(90)}, {{10, 0}, 0}});
  const AcDbObjectId straight = addPolyline(session, {{{0, 0}, 0}, {{-10, 0}, 0}});
  const AcDbObjectId doubled =
      addPolyline(session, {{{0, 0}, 1}, {{0, 0.0009}, 2}, {{5, 0}, 3}, {{5, 5}, 4}});
  ChainCandidates candidates;
  EXPECT_EQ(collectChainCandidates(session.ed, session.all(), candidates), 3u);
  EXPECT_FALSE(stands(two) || stands(straight));
  EXPECT_TRUE(sameVertices(polylineOf(session, doubled), {{{0, 0.0009}, 2}, {{5, 0}, 3}, {{5, 5}, 4}}));
  const auto ids = candidates.remaining();
  ASSERT_EQ(ids.size(), 3u);
  EXPECT_TRUE(session.entity<AcDbArc>(ids[0]));
  EXPECT_TRUE(session.entity<AcDbLine>(ids[1]));
  EXPECT_EQ(ids[2], doubled);
}

TEST_F(Join, CoincidentVerticesGoOneAfterAnother) {
  // Each is compared with the one read just before it: three steps of 0.0008 leave the last alone.
  AcDbPolyline p(
      PolylineCurve{{{{0, 0}, 1}, {{0.0008, 0}, 2}, {{0.0016, 0}, 3}, {{5, 0}, 4}, {{5.0011, 0}, 5}}, false});
  removeCoincidentVertices(p);
  EXPECT_TRUE(sameVertices(p.polyline(), {{{0.0016, 0}, 3}, {{5, 0}, 4}, {{5.0011, 0}, 5}}));
}

TEST_F(Join, AToleranceOfItsOwnBridgesWiderGaps) {
  line({0, 0}, {10, 0});
  line({10.15, 0}, {10.15, 10});
  EXPECT_EQ(joinAll(0.1).vertices.size(), 2u);
  const auto all = session.all();
  ChainCandidates candidates;
  collectChainCandidates(session.ed, {all[0]}, candidates);
  const auto made = joinCurves(session.ed, all[1], candidates, 0.2);
  ASSERT_TRUE(made);
  EXPECT_TRUE(sameVertices(polylineOf(session, *made), {{{0, 0}, 0}, {{10.15, 0}, 0}, {{10.15, 10}, 0}}));
}

// ---- against the scan spelled out

struct Piece {
  AcDbObjectId id;
  Vertices v;  // from its start; the last bulge doesn't count
};

// The scan over the whole list, from its start again after every join; without gaps to close.
PolylineCurve scanned(const Piece& seed, std::vector<Piece>& list, double tolerance) {
  std::vector<AcGePoint2d> p;
  std::vector<double> b;
  for (std::size_t i = 0; i < seed.v.size(); ++i) {
    p.push_back(seed.v[i].point);
    if (i + 1 < seed.v.size()) b.push_back(seed.v[i].bulge);
  }
  bool closed = false;
  for (int pass = 0; pass < 2 && !closed; ++pass) {
    for (std::size_t at = 0; at < list.size() && !closed;) {
      Vertices v = list[at].v;
      const bool forward = p.back().distanceTo(v.front().point) <= tolerance;
      if (!forward && !(p.back().distanceTo(v.back().point) <= tolerance)) {
        ++at;
        continue;
      }
      if (!forward) {
        std::reverse(v.begin(), v.end());
        for (std::size_t i = 0; i + 1 < v.size(); ++i) v[i].bulge = -v[i + 1].bulge;
      }
      for (std::size_t i = 0; i + 1 < v.size(); ++i) {
        b.push_back(v[i].bulge);
        if (i + 2 < v.size()) p.push_back(v[i + 1].point);
      }
      if (v.back().point.distanceTo(p.front()) <= tolerance)
        closed = true;
      else
        p.push_back(v.back().point);
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(at));
      at = 0;
    }
    if (pass == 0 && !closed) {
      std::reverse(p.begin(), p.end());
      std::reverse(b.begin(), b.end());
      for (double& x : b) x = -x;
    }
  }
  if (!closed) b.push_back(0);
  PolylineCurve c;
  c.closed = closed;
  for (std::size_t i = 0; i < p.size(); ++i) c.vertices.push_back({p[i], b[i]});
  return c;
}

TEST_F(Join, TakesTheSameCurvesInTheSameOrderAsAScan) {
  std::mt19937 rng(21);
  int closedOnes = 0, longest = 0;
  for (int round = 0; round < 120; ++round) {
    Session s;
    std::vector<Piece> list;
    const int grid = 2 + round % 4, count = 6 + round % 25;
    const auto point = [&] {
      return AcGePoint2d{1.0 * static_cast<int>(rng() % grid), 1.0 * static_cast<int>(rng() % grid)};
    };
    for (int i = 0; i < count; ++i) {
      Vertices v{{point(), 0}, {point(), 0}};
      if (v[0].point == v[1].point) continue;
      if (rng() % 3 == 0) {
        const AcGePoint2d next = point();
        if (next == v[1].point || next == v[0].point) continue;
        v[0].bulge = 0.5;
        v[1].bulge = -0.25;
        v.push_back({next, 0});
        list.push_back({addPolyline(s, v), v});
      } else {
        list.push_back({s.line(v[0].point, v[1].point), v});
      }
    }
    if (list.empty()) continue;
    ChainCandidates candidates;
    std::vector<AcDbObjectId> others;
    for (std::size_t i = 1; i < list.size(); ++i) others.push_back(list[i].id);
    collectChainCandidates(s.ed, others, candidates);
    const Piece seed = list.front();
    list.erase(list.begin());
    const auto made = joinCurves(s.ed, seed.id, candidates, 0.001);
    ASSERT_TRUE(made);
    const auto wanted = scanned(seed, list, 0.001);
    const auto got = polylineOf(s, *made);
    EXPECT_EQ(got.closed, wanted.closed) << round;
    EXPECT_TRUE(sameVertices(got, wanted.vertices)) << round;
    std::vector<AcDbObjectId> left;
    for (const Piece& p : list) left.push_back(p.id);
    EXPECT_EQ(candidates.remaining(), left) << round;
    closedOnes += got.closed;
    longest = std::max(longest, static_cast<int>(got.vertices.size()));
  }
  EXPECT_GT(closedOnes, 20);
  EXPECT_GT(longest, 12);
}

TEST_F(Join, TimesWithTheDrawing) {
  if (!environment("TARNEX_LONG")) GTEST_SKIP() << "TARNEX_LONG=1 measures 12000 lines";
  // 12000 lines in random order: first as one contour, then as 3000 squares.
  for (int perContour : {12000, 4}) {
    Session s;
    std::vector<std::pair<AcGePoint2d, AcGePoint2d>> lines;
    for (int c = 0; c < 12000 / perContour; ++c) {
      const AcGePoint2d centre{3.0 * (c % 60), 3.0 * (c / 60)};
      const double radius = perContour == 4 ? 1 : 500, step = 2 * kPi / perContour;
      for (int i = 0; i < perContour; ++i)
        lines.push_back({acutPolar(centre, i * step, radius), acutPolar(centre, (i + 1) * step, radius)});
    }
    std::shuffle(lines.begin(), lines.end(), std::mt19937(4));
    for (const auto& l : lines) s.line(l.first, l.second);
    const auto begin = std::chrono::steady_clock::now();
    ChainCandidates candidates;
    collectChainCandidates(s.ed, s.all(), candidates);
    int closed = 0;
    while (!candidates.first().isNull()) {
      const AcDbObjectId seed = candidates.first();
      candidates.remove(seed);
      const auto made = joinCurves(s.ed, seed, candidates, 0.001);
      closed += made && polylineOf(s, *made).closed;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::cout << "12000 lines joined into " << closed << " contours in " << seconds << " s\n";
    EXPECT_EQ(closed, 12000 / perContour);
    EXPECT_LT(seconds, 10);
  }
}

}  // namespace
}  // namespace tarnex
