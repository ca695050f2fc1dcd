// Where things lie: the tree of boxes and the drawing's index against looking at everything.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "host/database/boxtree.h"
#include "host/database/database.h"

namespace tarnex {
namespace {

class Boxes {
 public:
  explicit Boxes(unsigned seed) : random_(seed) {}
  double real(double from, double to) { return std::uniform_real_distribution<double>(from, to)(random_); }
  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
  // Points, slivers and large ones, often on a grid so that edges touch exactly.
  Extents2d box() {
    const double x = number(2) ? number(50) : real(0, 50), y = number(2) ? number(50) : real(0, 50);
    const double size = number(4) == 0 ? 0 : number(10) == 0 ? 30 : 1;
    return {{x, y}, {x + size * number(3), y + size * number(3)}};
  }

 private:
  std::mt19937 random_;
};

std::vector<std::uint32_t> found(const BoxTree& tree, const Extents2d& box) {
  std::vector<std::uint32_t> keys;
  tree.query(box, keys);
  std::sort(keys.begin(), keys.end());
  return keys;
}

bool meets(const Extents2d& a, const Extents2d& b) {
  return !(a.high.x < b.low.x || b.high.x < a.low.x || a.high.y < b.low.y || b.high.y < a.low.y);
}

void expectAsByScan(const BoxTree& tree, const std::map<std::uint32_t, Extents2d>& all, Boxes& boxes) {
  ASSERT_EQ(tree.size(), all.size());
  for (int q = 0; q < 20; ++q) {
    const Extents2d window = boxes.box();
    std::vector<std::uint32_t> expected;
    for (const auto& [key, box] : all)
      if (meets(box, window)) expected.push_back(key);
    ASSERT_EQ(found(tree, window), expected);
  }
}

TEST(BoxTree, AnswersAsAScanWouldThroughBuildingInsertingAndRemoving) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    Boxes boxes(seed);
    std::map<std::uint32_t, Extents2d> all;
    std::vector<BoxTree::Item> items;
    for (int i = 0, n = boxes.number(600); i < n; ++i) {
      const auto key = static_cast<std::uint32_t>(3 * i);
      items.push_back({all[key] = boxes.box(), key});
    }
    BoxTree tree;
    tree.build(items);
    expectAsByScan(tree, all, boxes);
    for (int i = 0; i < 1500; ++i) {
      const auto key = static_cast<std::uint32_t>(boxes.number(2000));
      tree.remove(key);
      all.erase(key);
      if (boxes.number(3)) tree.insert({all[key] = boxes.box(), key});
      if (i % 100 == 0) expectAsByScan(tree, all, boxes);
    }
    for (std::uint32_t key = 0; key < 2000; ++key) tree.remove(key);
    EXPECT_EQ(tree.size(), 0u);
    tree.insert({boxes.box(), 7});
    EXPECT_EQ(found(tree, {{-100, -100}, {100, 100}}), std::vector<std::uint32_t>{7});
  }
}

TEST(BoxTree, ManyEqualBoxesAreAllFound) {
  BoxTree tree;
  for (std::uint32_t key = 0; key < 1000; ++key) tree.insert({{{1, 1}, {1, 1}}, key});
  EXPECT_EQ(found(tree, {{0, 0}, {1, 1}}).size(), 1000u);
  EXPECT_TRUE(found(tree, {{0, 0}, {0.5, 2}}).empty());
  EXPECT_TRUE(found(tree, Extents2d{}).empty());
}

// ---- the drawing's index

std::unique_ptr<AcDbLine> lineAcross(const Extents2d& b) {
  return std::make_unique<AcDbLine>(solid(b.low), solid(b.high));
}

std::vector<AcDbObjectId> byScan(const AcDbDatabase& db, const Extents2d& window) {
  std::vector<AcDbObjectId> ids;
  for (const AcDbObjectId id : db.modelSpaceEntities()) {
    const Extents2d box = db.peek<AcDbEntity>(id)->getGeomExtents();
    if (!box.empty() && meets(box, window)) ids.push_back(id);
  }
  return ids;
}

TEST(SpatialIndex, FollowsEveryKindOfChange) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    AcDbDatabase db;
    Boxes boxes(seed);
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName("B");
    const auto block = db.addBlock(std::move(record));
    for (int i = 0; i < 3000; ++i) {
      const auto ids = db.modelSpaceEntities();
      const auto one = ids.empty()
                           ? AcDbObjectId{}
                           : ids[static_cast<std::size_t>(boxes.number(static_cast<int>(ids.size())))];
      if (i % 50 == 0) db.startUndoMark("STEP");
      switch (boxes.number(12)) {
        case 0:
          if (auto e = db.open<AcDbEntity>(one, OpenMode::kForWrite)) e->erase();
          break;
        case 1:
          if (auto e = db.open<AcDbLine>(one, OpenMode::kForWrite)) e->setEndPoint(solid(boxes.box().high));
          break;
        case 2:
          if (boxes.number(20) == 0) db.appendAcDbEntity(block, lineAcross(boxes.box()));
          break;
        case 3:
          if (boxes.number(20) == 0)
            db.appendAcDbEntity(db.modelSpace(),
                                std::make_unique<AcDbBlockReference>(block, solid(boxes.box().low)));
          break;
        case 4:
          if (i % 50 == 49) db.rollBack();
          break;
        default:
          db.appendAcDbEntity(db.modelSpace(), lineAcross(boxes.box()));
          break;
      }
      if (i % 50 == 49) db.endUndoMark();
      if (i % 300 == 299) db.undo();
      if (boxes.number(10)) continue;
      const Extents2d window = boxes.box();
      ASSERT_EQ(db.entitiesTouching(window), byScan(db, window)) << "seed " << seed << " step " << i;
    }
  }
}

TEST(SpatialIndex, SeesWhatChangesWhileItIsOpen) {
  AcDbDatabase db;
  const auto id = db.appendAcDbEntity(db.modelSpace(), lineAcross({{0, 0}, {1, 1}}));
  auto open = db.open<AcDbLine>(id, OpenMode::kForWrite);
  for (const double x : {10.0, 20.0, 30.0}) {
    open->setStartPoint({x, 0, 0});
    open->setEndPoint({x + 1, 1, 0});
    EXPECT_EQ(db.entitiesTouching({{x, 0}, {x, 0}}), std::vector<AcDbObjectId>{id});
    EXPECT_TRUE(db.entitiesTouching({{x - 9, 0}, {x - 9, 0}}).empty());
  }
}

TEST(SpatialIndex, WhatHasNoExtentsIsNotFoundAndDoesNoHarm) {
  AcDbDatabase db;
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  db.appendAcDbEntity(db.modelSpace(), lineAcross({{nan, 0}, {1, inf}}));
  db.appendAcDbEntity(db.modelSpace(), std::make_unique<AcDbPoint>(AcGePoint3d{nan, nan, 0}));
  db.appendAcDbEntity(db.modelSpace(), std::make_unique<AcDbText>(AcGePoint3d{0, inf, 0}, "x", 1e308));
  db.appendAcDbEntity(db.modelSpace(), std::make_unique<AcDbPolyline>());
  const auto good = db.appendAcDbEntity(db.modelSpace(), lineAcross({{1e9, -1e9}, {1e9, 0}}));
  EXPECT_EQ(db.entitiesTouching({{-1e308, -1e308}, {1e308, 1e308}}), std::vector<AcDbObjectId>{good});
}

}  // namespace
}  // namespace tarnex
