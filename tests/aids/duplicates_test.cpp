// `scc` over drawings, and its passes against the same passes without an index.
// Knows the drawing.
#include "aids/duplicates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <random>

#include "aids/foldrules.h"
#include "contour/hosthelpers.h"
#include "support/modulefixture.h"

namespace tarnex {
namespace {

class Duplicates : public ModuleFixture {
 protected:
  int foldAll() {
    int erased = 0;
    foldCurves(session.ed, session.all(), erased);
    return erased;
  }
};

TEST_F(Duplicates, ALineDrawnTwiceStaysOnceAndUnchanged) {
  const AcDbObjectId first = session.line({0, 0}, {10, 0}), second = session.line({10, 0}, {0, 0});
  EXPECT_EQ(foldAll(), 1);
  EXPECT_TRUE(stands(first));
  EXPECT_FALSE(stands(second));
  EXPECT_EQ(session.all().size(), 1u);
}

TEST_F(Duplicates, FoldedLinesTakeTheCurrentLayer) {
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName("NOW");
  drawing().currentLayer = drawing().addLayer(std::move(record));
  for (auto [a, b] : {std::pair{0.0, 10.0}, {25.0, 30.0}, {10.0, 20.0}}) {
    auto line = std::make_unique<AcDbLine>(AcGePoint3d{a, 0, 0}, AcGePoint3d{b, 0, 0});
    line->setColorIndex(1);
    session.add(std::move(line));
  }
  EXPECT_EQ(foldAll(), 1);  // the base that was replaced isn't counted
  ASSERT_EQ(session.all().size(), 2u);
  const auto* made = session.last<AcDbLine>();
  ASSERT_TRUE(made);
  EXPECT_EQ(made->getStartPoint().x, 0);
  EXPECT_EQ(made->getEndPoint().x, 20);
  EXPECT_EQ(made->layerId(), drawing().currentLayer);
  EXPECT_EQ(made->colorIndex(), kColorByLayer);
}

TEST_F(Duplicates, AFoldedLineMeetsTheOthersAgain) {
  // 0..10 meets only 9..20 in its pass; what they make then bridges to 21..30 through 19..22.
  for (auto [a, b] : {std::pair{0.0, 10.0}, {21.0, 30.0}, {9.0, 20.0}, {19.0, 22.0}})
    session.line({a, 1}, {b, 1});
  foldAll();
  ASSERT_EQ(session.all().size(), 1u);
  EXPECT_EQ(session.last<AcDbLine>()->getStartPoint().x, 0);
  EXPECT_EQ(session.last<AcDbLine>()->getEndPoint().x, 30);
}

TEST_F(Duplicates, ArcsAndCirclesOfOneCentre) {
  const AcDbObjectId arc = addArc(session, {0, 0}, 10, 20, 70), circle = session.circle({0, 0}, 10),
                     other = addArc(session, {0, 0}, 10, 100, 170), again = session.circle({0, 0}, 10);
  // The first arc gives way to the first circle and counts as it; all others lie under it.
  EXPECT_EQ(foldAll(), 3);
  EXPECT_FALSE(stands(arc) || stands(other) || stands(again));
  EXPECT_TRUE(stands(circle));
}

TEST_F(Duplicates, AnArcDrawnTwiceIsReplaced) {
  const AcDbObjectId first = addArc(session, {0, 0}, 10, 20, 70),
                     second = addArc(session, {0, 0}, 10, 20, 70);
  EXPECT_EQ(foldAll(), 1);
  EXPECT_FALSE(stands(first) || stands(second));
  const auto* made = session.last<AcDbArc>();
  ASSERT_TRUE(made);
  EXPECT_NEAR(made->startAngle(), kPi / 9, 1e-12);
  EXPECT_NEAR(made->endAngle(), 7 * kPi / 18, 1e-12);
}

TEST_F(Duplicates, NothingOfACircleIsLost) {
  // Halves that overlap at both ends, and an arc whose angles are equal: a full circle as some files write
  // it.
  addArc(session, {0, 0}, 10, 350, 190);
  addArc(session, {0, 0}, 10, 170, 10);
  addArc(session, {50, 0}, 10, 0, 90);
  const AcDbObjectId full = addArc(session, {50, 0}, 10, 40, 40);
  EXPECT_EQ(foldAll(), 1);
  EXPECT_EQ(session.all().size(), 3u);
  EXPECT_TRUE(stands(full));
}

// ---- the passes without an index

std::optional<FoldShape> shapeOf(const AcDbEntity& e) {
  if (auto* l = dynamic_cast<const AcDbLine*>(&e))
    return foldLine(l->getStartPoint().flat(), l->getEndPoint().flat());
  if (auto* a = dynamic_cast<const AcDbArc*>(&e))
    return foldArc(a->center().flat(), a->radius(), a->startAngle(), a->endAngle());
  if (auto* c = dynamic_cast<const AcDbCircle*>(&e)) return FoldCircle{c->center().flat(), c->radius()};
  return std::nullopt;
}

int plainPasses(Session& s) {
  AcDbDatabase& drawing = s.ed.database();
  int erased = 0;
  const auto erase = [&](AcDbObjectId id) { drawing.open<AcDbEntity>(id, OpenMode::kForWrite)->erase(); };
  auto work = s.all();
  while (work.size() >= 2) {
    FoldBase base{*shapeOf(*drawing.peek<AcDbEntity>(work[0]))};
    std::vector<AcDbObjectId> rest;
    for (std::size_t i = 1; i < work.size(); ++i) {
      const bool stood = !base.gaveWay;
      const auto outcome = fold(base, *shapeOf(*drawing.peek<AcDbEntity>(work[i])));
      if (stood && base.gaveWay) {
        erase(work[0]);
        ++erased;
      }
      if (outcome == FoldOutcome::kKeep) rest.push_back(work[i]);
      if (outcome == FoldOutcome::kAbsorb) {
        erase(work[i]);
        ++erased;
      }
    }
    if (base.merged && !base.gaveWay) {
      std::unique_ptr<AcDbEntity> made;
      if (auto* l = std::get_if<FoldLine>(&base.shape))
        made = std::make_unique<AcDbLine>(solid(l->s0), solid(l->s1));
      if (auto* a = std::get_if<FoldArc>(&base.shape))
        made = std::make_unique<AcDbArc>(solid(a->centre), a->radius, normalizedAngle(a->a0),
                                         normalizedAngle(a->a1));
      rest.push_back(s.add(std::move(made)));
      erase(work[0]);
    }
    work = rest;
  }
  return erased;
}

void soup(Session& s, unsigned seed) {
  std::mt19937 rng(seed);
  const auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  for (int i = 0; i < 60; ++i) {
    const double a = pick(12), b = a + 1 + pick(5), row = pick(3) + (pick(4) ? 0 : 0.0007);
    const AcGePoint2d centre{pick(2) * 30.0 + (pick(4) ? 0 : 0.0007), 0};
    switch (pick(5)) {
      case 0:
        s.line({a, row}, {b, row});
        break;
      case 1:
        s.line({row, b}, {row, a});
        break;
      case 2:
        s.line({a, a / 2 + row}, {b, b / 2 + row});
        break;
      case 3:
        addArc(s, centre, 5, 20 * a, 20 * b);
        break;
      default:
        if (pick(6) == 0) s.circle(centre, 5);
        break;
    }
  }
}

TEST_F(Duplicates, TheIndexChangesNothing) {
  int erasedInAll = 0;
  for (unsigned seed = 0; seed < 150; ++seed) {
    Session indexed, plain;
    soup(indexed, seed);
    soup(plain, seed);
    int erased = 0;
    foldCurves(indexed.ed, indexed.all(), erased);
    EXPECT_EQ(erased, plainPasses(plain)) << seed;
    erasedInAll += erased;
    const auto a = indexed.all(), b = plain.all();
    ASSERT_EQ(a, b) << seed;
    for (std::size_t i = 0; i < a.size(); ++i)
      EXPECT_EQ(indexed.entity<AcDbCurve>(a[i])->geometry(), plain.entity<AcDbCurve>(b[i])->geometry())
          << seed;
  }
  EXPECT_GT(erasedInAll, 2000);
}

TEST_F(Duplicates, TimesWithTheDrawing) {
  if (!environment("TARNEX_LONG")) GTEST_SKIP() << "TARNEX_LONG=1 measures 20000 lines";
  std::mt19937 rng(1);
  std::uniform_real_distribution<double> unit(0, 1000);
  for (int i = 0; i < 20000; ++i) session.line({unit(rng), unit(rng)}, {unit(rng), unit(rng)});
  const auto begin = std::chrono::steady_clock::now();
  foldAll();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  std::cout << "20000 lines folded in " << seconds << " s\n";
  EXPECT_LT(seconds, 20);
}

}  // namespace
}  // namespace tarnex
