// Block references taken apart, measured and drawn, by hand; and blocks that mean harm.
#include <gmock/gmock.h>

#include <chrono>

#include "host/database/drawn.h"

namespace tarnex {
namespace {

using testing::ElementsAre;

constexpr double kTiny = 1e-9;
using Parts = std::vector<std::unique_ptr<AcDbEntity>>;

struct Blocks : testing::Test {
  AcDbDatabase db;
  AcDbObjectId block(const std::string& name, AcGePoint3d origin = {}) {
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName(name);
    record->origin = origin;
    return db.addBlock(std::move(record));
  }
  AcDbObjectId put(AcDbObjectId into, std::unique_ptr<AcDbEntity> e) {
    return db.appendAcDbEntity(into, std::move(e));
  }
  AcDbObjectId line(AcDbObjectId into, AcGePoint3d a, AcGePoint3d b) {
    return put(into, std::make_unique<AcDbLine>(a, b));
  }
  template <class F>
  AcDbObjectId insert(AcDbObjectId into, AcDbObjectId what, AcGePoint3d at, F&& more) {
    auto reference = std::make_unique<AcDbBlockReference>(what, at);
    more(*reference);
    return put(into, std::move(reference));
  }
  AcDbObjectId insert(AcDbObjectId into, AcDbObjectId what, AcGePoint3d at = {}) {
    return insert(into, what, at, [](AcDbBlockReference&) {});
  }
  Parts parts(AcDbObjectId reference) {
    Parts out;
    EXPECT_EQ(db.peek<AcDbBlockReference>(reference)->explode(out), ErrorStatus::eOk);
    return out;
  }
  Extents2d box(AcDbObjectId id) { return db.peek<AcDbEntity>(id)->getGeomExtents(); }
};

void expectLine(const AcDbEntity& e, AcGePoint2d a, AcGePoint2d b) {
  const auto& line = dynamic_cast<const AcDbLine&>(e);
  EXPECT_LT(line.getStartPoint().flat().distanceTo(a), kTiny)
      << line.getStartPoint().x << ' ' << line.getStartPoint().y;
  EXPECT_LT(line.getEndPoint().flat().distanceTo(b), kTiny)
      << line.getEndPoint().x << ' ' << line.getEndPoint().y;
}

void expectBox(const Extents2d& b, double x0, double y0, double x1, double y1) {
  EXPECT_LT(b.low.distanceTo({x0, y0}), kTiny) << b.low.x << ' ' << b.low.y;
  EXPECT_LT(b.high.distanceTo({x1, y1}), kTiny) << b.high.x << ' ' << b.high.y;
}

TEST_F(Blocks, APartIsScaledThenTurnedThenMovedFromTheBasePoint) {
  const auto b = block("B", {1, 0, 0});
  line(b, {1, 0, 0}, {3, 0, 0});  // from the base point, 2 long
  const auto r = insert(db.modelSpace(), b, {10, 20, 5}, [](auto& ref) {
    ref.scaleX = ref.scaleY = ref.scaleZ = 3;
    ref.rotation = kPi / 2;
  });
  const Parts out = parts(r);
  ASSERT_EQ(out.size(), 1u);
  expectLine(*out[0], {10, 20}, {10, 26});
  EXPECT_NEAR(static_cast<AcDbLine&>(*out[0]).getEndPoint().z, 5, kTiny);
}

TEST_F(Blocks, AMirroredPlaneIsSeenFromBelow) {
  const auto b = block("B");
  put(b, std::make_unique<AcDbArc>(AcGePoint3d{2, 0, 0}, 1, 0, kPi / 2));  // from (3,0) to (2,1)
  const auto r = insert(db.modelSpace(), b, {-10, 0, 0}, [](auto& ref) {
    ref.mirroredPlane = true;
    ref.rotation = kPi / 2;
  });
  // Turned by 90 degrees the arc runs from (0,3) to (-1,2) about (0,2); seen from below x changes its sign:
  // it lies between (0,3) and (1,2), counter-clockwise from 0 to 90 degrees; then it is moved to the left
  // by 10.
  const Parts out = parts(r);
  const auto& arc = dynamic_cast<const AcDbArc&>(*out.at(0));
  EXPECT_LT(arc.center().flat().distanceTo({-10, 2}), kTiny);
  EXPECT_LT(arc.getStartPoint().flat().distanceTo({-9, 2}), kTiny);
  EXPECT_LT(arc.getEndPoint().flat().distanceTo({-10, 3}), kTiny);
  EXPECT_LT(db.peek<AcDbEntity>(r)->getGeomExtents().high.distanceTo({-9, 3}), kTiny);
}

TEST_F(Blocks, AnArrayStepsAlongItsOwnAxesUnscaled) {
  const auto b = block("B");
  line(b, {0, 0, 0}, {1, 0, 0});
  const auto r = insert(db.modelSpace(), b, {}, [](auto& ref) {
    ref.scaleX = 2;
    ref.rotation = kPi / 2;
    ref.columns = 2;
    ref.rows = 3;
    ref.columnSpacing = 10;
    ref.rowSpacing = 1;
  });
  const Parts out = parts(r);
  ASSERT_EQ(out.size(), 6u);  // row by row; columns go up, rows to the left
  expectLine(*out[0], {0, 0}, {0, 2});
  expectLine(*out[1], {0, 10}, {0, 12});
  expectLine(*out[4], {-2, 0}, {-2, 2});
  expectBox(box(r), -2, 0, 0, 12);
  EXPECT_EQ(db.peek<AcDbEntity>(r)->outline().size(), 6u);
}

TEST_F(Blocks, UnequalScalesMakeEllipsesAndTakeBentPolylinesApart) {
  const auto b = block("B");
  put(b, std::make_unique<AcDbCircle>(AcGePoint3d{1, 0, 2}, 1));
  put(b, std::make_unique<AcDbPolyline>(PolylineCurve{{{{0, 0}, 0}, {{4, 0}, 1}, {{4, 2}, 0}}, false}));
  const auto r = insert(db.modelSpace(), b, {}, [](auto& ref) { ref.scaleX = 3; });
  const Parts out = parts(r);
  ASSERT_EQ(out.size(), 3u);
  const auto& ellipse = dynamic_cast<const AcDbEllipse&>(*out[0]);
  EXPECT_LT(ellipse.center().distanceTo({3, 0, 2}), kTiny);
  EXPECT_NEAR(ellipse.majorAxis().length(), 3, kTiny);
  EXPECT_NEAR(ellipse.radiusRatio(), 1.0 / 3, kTiny);
  expectLine(*out[1], {0, 0}, {12, 0});
  // The half circle about (4,1) reaches to x 5, stretched to 15.
  const auto bent = dynamic_cast<const AcDbEllipse&>(*out[2]).getGeomExtents();
  expectBox(bent, 12, 0, 15, 2);
  expectBox(box(r), 0, -1, 15, 2);
}

TEST_F(Blocks, NestedReferencesStayWithTheirPlacesComposed) {
  const auto inner = block("INNER"), outer = block("OUTER");
  line(inner, {0, 0, 0}, {1, 0, 0});
  insert(outer, inner, {5, 0, 0}, [](auto& ref) {
    ref.rotation = kPi / 2;
    ref.columns = 2;
    ref.columnSpacing = 4;
  });
  const auto r = insert(db.modelSpace(), outer, {100, 0, 0}, [](auto& ref) {
    ref.scaleX = -2;
    ref.scaleY = 2;
  });
  Parts once = parts(r);
  ASSERT_EQ(once.size(), 1u);
  ASSERT_TRUE(once[0]->isKindOf(AcDbBlockReference::desc()));
  const Parts twice = parts(put(db.modelSpace(), std::move(once[0])));
  ASSERT_EQ(twice.size(), 2u);
  // The inner lines go from (5,0) to (5,1) and from (5,4) to (5,5); doubled and mirrored about the insertion
  // at 100.
  expectLine(*twice[0], {90, 0}, {90, 2});
  expectLine(*twice[1], {90, 8}, {90, 10});
  expectBox(box(r), 90, 0, 90, 10);
}

TEST_F(Blocks, ASkewedNestedReferenceIsTakenApart) {
  const auto inner = block("INNER"), outer = block("OUTER");
  line(inner, {0, 0, 0}, {1, 1, 0});
  insert(outer, inner, {}, [](auto& ref) { ref.rotation = kPi / 4; });  // the line stands upright
  const auto r = insert(db.modelSpace(), outer, {1, 0, 0}, [](auto& ref) { ref.scaleX = 2; });
  const Parts out = parts(r);
  ASSERT_EQ(out.size(), 1u);
  expectLine(*out[0], {1, 0}, {1, std::sqrt(2)});
  expectBox(box(r), 1, 0, 1,
            std::sqrt(2));  // exact: the turned box of the line would reach out by 1.4 to each side
}

TEST_F(Blocks, PropertiesByBlockAndOnLayerZeroAreTheReferences) {
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName("Cut");
  layer->setColorIndex(6);
  const auto cut = db.addLayer(std::move(layer));
  const auto dashed = db.loadLineTypeFile("Dashed");
  const auto b = block("B");
  {
    auto follows = db.open<AcDbLine>(line(b, {0, 0, 0}, {1, 0, 0}), OpenMode::kForWrite);
    follows->setColorIndex(kColorByBlock);
    follows->setLinetype(db.linetype("ByBlock"));
    auto own = db.open<AcDbLine>(line(b, {0, 1, 0}, {1, 1, 0}), OpenMode::kForWrite);
    own->setColorIndex(1);
    auto byLayer = db.open<AcDbLine>(line(b, {0, 2, 0}, {1, 2, 0}), OpenMode::kForWrite);
    byLayer->setLayer(db.layer("0"));
  }
  const auto r = insert(db.modelSpace(), b, {}, [&](auto& ref) {
    ref.setLayer(cut);
    ref.setColorIndex(3);
    ref.setLinetype(dashed);
  });
  const Parts out = parts(r);
  EXPECT_EQ(out.at(0)->colorIndex(), 3);
  EXPECT_EQ(out.at(0)->linetypeId(), dashed);
  EXPECT_EQ(out.at(1)->colorIndex(), 1);
  for (const auto& part : out) EXPECT_EQ(part->layerId(), cut);

  Drawn drawn;
  db.peek<AcDbEntity>(r)->worldDraw(drawn);
  EXPECT_THAT(drawn.lines, ElementsAre("color 3", "linetype Dashed", "polyline 0,0,0 1,0,0", "color 1",
                                       "polyline 0,1,0 1,1,0", "color 6", "polyline 0,2,0 1,2,0"));
}

TEST_F(Blocks, TransformingAReferenceTransformsItsContent) {
  const auto b = block("B", {0.5, 0.25, 0});
  line(b, {0, 0, 0}, {1, 0, 0});
  line(b, {0, 0, 0}, {0, 2, 0});
  const AcGeMatrix3d moves[] = {
      AcGeMatrix3d::rotation(0.7, {3, 4}),
      AcGeMatrix3d::mirroring({1, 0}, {2, 5}),
      AcGeMatrix3d::scaling(2.5, {1, 1}),
      AcGeMatrix3d::translation({1, 2, 3}),
  };
  for (const bool mirrored : {false, true})
    for (const AcGeMatrix3d& m : moves) {
      const auto r = insert(db.modelSpace(), b, {7, 8, 9}, [&](auto& ref) {
        ref.scaleX = 2;
        ref.scaleY = -3;
        ref.rotation = 0.3;
        ref.columns = ref.rows = 2;
        ref.columnSpacing = 5;
        ref.rowSpacing = 6;
        ref.mirroredPlane = mirrored;
      });
      Parts before = parts(r);
      for (const auto& part : before) ASSERT_EQ(part->transformBy(m), ErrorStatus::eOk);
      ASSERT_EQ(db.open<AcDbBlockReference>(r, OpenMode::kForWrite)->transformBy(m), ErrorStatus::eOk);
      const Parts after = parts(r);
      ASSERT_EQ(after.size(), 8u);
      for (std::size_t i = 0; i < after.size(); ++i) {
        const auto& wanted = static_cast<AcDbLine&>(*before[i]);
        expectLine(*after[i], wanted.getStartPoint().flat(), wanted.getEndPoint().flat());
      }
    }
}

TEST_F(Blocks, ContentThatChangesMovesTheExtentsOfReferences) {
  const auto b = block("B");
  const auto inside = line(b, {0, 0, 0}, {1, 1, 0});
  const auto r = insert(db.modelSpace(), b, {10, 0, 0});
  expectBox(box(r), 10, 0, 11, 1);
  const auto stamp = db.changeStamp();
  db.open<AcDbLine>(inside, OpenMode::kForWrite)->setEndPoint({5, 5, 0});
  expectBox(box(r), 10, 0, 15, 5);
  std::vector<AcDbObjectId> ids;
  ASSERT_TRUE(db.changesSince(stamp, ids));
  EXPECT_EQ(ids, std::vector<AcDbObjectId>{r});
  db.open<AcDbLine>(inside, OpenMode::kForWrite)->erase();
  EXPECT_TRUE(box(r).empty());
}

TEST_F(Blocks, WhatIsKeptIsLeftOutOfAnExplosion) {
  const auto b = block("B");
  put(b, std::make_unique<AcDbKeptEntity>("3DFACE", Extents2d{{0, 0}, {1, 1}}));
  line(b, {0, 0, 0}, {1, 0, 0});
  EXPECT_EQ(parts(insert(db.modelSpace(), b)).size(), 1u);
}

// ---- blocks that mean harm

TEST_F(Blocks, ABlockWithinItselfIsRefusedAndShowsNothing) {
  const auto a = block("A"), b = block("B"), c = block("C");
  line(a, {0, 0, 0}, {1, 0, 0});
  insert(a, b);
  insert(b, c);
  insert(c, a);
  for (const auto start : {a, b, c}) {
    const auto r = insert(db.modelSpace(), start);
    Parts out;
    EXPECT_EQ(db.peek<AcDbBlockReference>(r)->explode(out), ErrorStatus::eInvalidInput);
    EXPECT_TRUE(box(r).empty());
    EXPECT_TRUE(db.peek<AcDbEntity>(r)->outline().empty());
    Drawn drawn;
    db.peek<AcDbEntity>(r)->worldDraw(drawn);
    EXPECT_TRUE(drawn.lines.empty());
    std::vector<std::string> lines;
    db.peek<AcDbEntity>(r)->list(lines);
    EXPECT_EQ(lines.back(), "  The block contains itself; nothing of it is drawn");
  }
  Parts out;
  EXPECT_EQ(AcDbBlockReference().explode(out), ErrorStatus::eNotApplicable);
}

TEST_F(Blocks, TenThousandLevelsAreWalkedWithoutTheStack) {
  auto below = block("B0");
  line(below, {0, 0, 0}, {1, 1, 0});
  for (int i = 1; i <= 10'000; ++i) {
    const auto next = block("B" + std::to_string(i));
    insert(next, below, {1, 0, 0});
    below = next;
  }
  const auto r = insert(db.modelSpace(), below);
  expectBox(box(r), 10'000, 0, 10'001, 1);
  EXPECT_EQ(db.peek<AcDbEntity>(r)->outline().size(), 1u);
  EXPECT_EQ(parts(r).size(), 1u);
}

TEST_F(Blocks, ExponentialContentIsMeasuredAndDrawnInBoundedWork) {
  auto below = block("B0");
  line(below, {0, 0, 0}, {1, 1, 0});
  for (int i = 1; i <= 40; ++i) {  // ten to the fortieth lines
    const auto next = block("B" + std::to_string(i));
    for (int k = 0; k < 10; ++k) insert(next, below, {k * 1.0, 0, 0}, [](auto& ref) { ref.rotation = 0.1; });
    below = next;
  }
  const auto r = insert(db.modelSpace(), below);
  EXPECT_FALSE(box(r).empty());
  Drawn drawn;
  db.peek<AcDbEntity>(r)->worldDraw(drawn);
  EXPECT_EQ(drawn.points.size(), 200'000u);
  std::vector<std::string> lines;
  db.peek<AcDbEntity>(r)->list(lines);
  EXPECT_EQ(lines.back(), "  More than 200000 parts; the rest is not drawn");
}

TEST_F(Blocks, ArraysOfMillionsAreCountedNotUnfolded) {
  const auto inner = block("INNER"), outer = block("OUTER");
  line(inner, {0, 0, 0}, {1, 1, 0});
  insert(outer, inner, {}, [](auto& ref) {
    ref.rows = ref.columns = 1000;
    ref.rowSpacing = ref.columnSpacing = 2;
  });
  const auto r = insert(db.modelSpace(), outer, {}, [](auto& ref) { ref.rotation = 0.5; });
  EXPECT_FALSE(box(r).empty());
  std::vector<std::string> lines;
  db.peek<AcDbEntity>(r)->list(lines);
  EXPECT_EQ(lines.back(), "  More than 200000 parts; the rest is not drawn");

  const auto wide =
      insert(db.modelSpace(), block("EMPTY"), {}, [](auto& ref) { ref.rows = ref.columns = 2'000'000; });
  Parts out;
  EXPECT_EQ(db.peek<AcDbBlockReference>(wide)->explode(out), ErrorStatus::eInvalidInput);
}

}  // namespace
}  // namespace tarnex
