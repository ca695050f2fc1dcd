// Undo and redo: what a user sees step by step, and random work undone to the last bit.
#include <gtest/gtest.h>

#include <random>

#include "host/database/dump.h"

namespace tarnex {
namespace {

constexpr std::uint32_t kFar = 100'000;  // no test makes as many objects

AcDbObjectId addLine(AcDbDatabase& db, double x) {
  return db.appendAcDbEntity(db.modelSpace(),
                             std::make_unique<AcDbLine>(AcGePoint3d{x, 0, 0}, AcGePoint3d{x, 1, 0}));
}

double xOf(const AcDbDatabase& db, AcDbObjectId id) {
  return db.peek<AcDbLine>(id)->getStartPoint().x;
}

TEST(Undo, ACommandIsOneStepAndCarriesItsLabel) {
  AcDbDatabase db;
  const auto kept = addLine(db, 1);
  db.startUndoMark("MOVE");
  for (int i = 0; i < 3; ++i) db.open<AcDbLine>(kept, OpenMode::kForWrite)->setStartPoint({10.0 + i, 0, 0});
  const auto made = addLine(db, 2);
  db.endUndoMark();

  std::string label;
  ASSERT_TRUE(db.undo(&label));
  EXPECT_EQ(label, "MOVE");
  EXPECT_EQ(xOf(db, kept), 1);
  EXPECT_EQ(db.peek<AcDbLine>(made), nullptr);
  EXPECT_FALSE(db.undo());

  label.clear();
  ASSERT_TRUE(db.redo(&label));
  EXPECT_EQ(label, "MOVE");
  EXPECT_EQ(xOf(db, kept), 12);
  EXPECT_EQ(xOf(db, made), 2);
  EXPECT_FALSE(db.redo());
}

TEST(Undo, StepsWithoutChangesVanish) {
  AcDbDatabase db;
  const auto line = addLine(db, 1);
  db.startUndoMark("LIST");
  (void)db.open<AcDbLine>(line, OpenMode::kForWrite);
  db.open<AcDbLine>(line, OpenMode::kForWrite)->setStartPoint({1, 0, 0});  // it is there already
  db.endUndoMark();
  EXPECT_FALSE(db.undo());
  EXPECT_FALSE(db.peek<AcDbLine>(line)->changedSinceRead());
}

TEST(Undo, TheUndoCommandsOwnEmptyStepIsNotInTheWay) {
  AcDbDatabase db;
  db.startUndoMark("LINE");
  addLine(db, 1);
  db.endUndoMark();
  db.startUndoMark("U");
  EXPECT_TRUE(db.undo());
  db.endUndoMark();
  EXPECT_TRUE(db.modelSpaceEntities().empty());
  EXPECT_TRUE(db.redo());
  EXPECT_EQ(db.modelSpaceEntities().size(), 1u);
}

TEST(Undo, ANewChangeForgetsWhatCouldBeDoneAgainAndReusesItsHandle) {
  AcDbDatabase db;
  const auto next = db.nextHandle();
  db.startUndoMark("A");
  addLine(db, 1);
  db.endUndoMark();
  ASSERT_TRUE(db.undo());
  EXPECT_EQ(db.nextHandle(), next);
  db.startUndoMark("B");
  const auto other = addLine(db, 2);
  db.endUndoMark();
  EXPECT_FALSE(db.redo());
  EXPECT_EQ(db.idOfHandle(next), other);
}

TEST(Undo, RollBackLeavesNoStepAndAllowsObjectsStillOpen) {
  AcDbDatabase db;
  const auto line = addLine(db, 1);
  const std::string before = dump(db, kFar);
  {
    db.startUndoMark("STRETCH");
    auto open = db.open<AcDbLine>(line, OpenMode::kForWrite);
    open->setEndPoint({5, 5, 5});
    auto made = db.open<AcDbLine>(addLine(db, 3), OpenMode::kForWrite);
    made->erase();
    db.rollBack();
    EXPECT_EQ(dump(db, kFar), before);
    EXPECT_EQ(open->getEndPoint().x, 5);  // what was open lives on until it is closed
  }
  db.endUndoMark();
  EXPECT_FALSE(db.undo());
  EXPECT_TRUE(db.open<AcDbLine>(line, OpenMode::kForWrite));
}

TEST(Undo, AnObjectOpenWhileTheNextStepBeginsIsKeptAgain) {
  AcDbDatabase db;
  const auto line = addLine(db, 1);
  auto open = db.open<AcDbLine>(line, OpenMode::kForWrite);
  for (const double x : {2.0, 3.0}) {
    db.startUndoMark("STEP");
    open->setStartPoint({x, 0, 0});
    db.endUndoMark();
  }
  open.close();
  ASSERT_TRUE(db.undo());
  EXPECT_EQ(xOf(db, line), 2);
  ASSERT_TRUE(db.undo());
  EXPECT_EQ(xOf(db, line), 1);
}

// An application's entity with a field of its own.
class Marked : public AcDbPolyline {
 public:
  static const AcRxClass& desc() {
    static const AcRxClass kClass = hostClass("Marked", &AcDbPolyline::desc());
    return kClass;
  }
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override { return std::unique_ptr<Marked>(new Marked(*this)); }
  Marked() = default;
  int mark = 1;

 private:
  Marked(const Marked&) = default;
};

TEST(Undo, ClassesOfApplicationsKeepTheirFields) {
  AcDbDatabase db;
  const auto id = db.appendAcDbEntity(db.modelSpace(), std::make_unique<Marked>());
  db.startUndoMark("MARK");
  {
    auto open = db.open<Marked>(id, OpenMode::kForWrite);
    open->assertWriteEnabled();
    open->mark = 2;
  }
  db.endUndoMark();
  ASSERT_TRUE(db.undo());
  ASSERT_NE(db.peek<Marked>(id), nullptr);
  EXPECT_EQ(db.peek<Marked>(id)->mark, 1);
  ASSERT_TRUE(db.redo());
  EXPECT_EQ(db.peek<Marked>(id)->mark, 2);
}

TEST(Undo, TablesFollowByName) {
  AcDbDatabase db;
  db.startUndoMark("LAYER");
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName("Cut");
  const auto cut = db.addLayer(std::move(record));
  db.endUndoMark();
  db.startUndoMark("RENAME");
  db.open<AcDbLayerTableRecord>(cut, OpenMode::kForWrite)->setName("Wire");
  db.endUndoMark();
  EXPECT_EQ(db.layer("WIRE"), cut);
  EXPECT_TRUE(db.layer("cut").isNull());
  ASSERT_TRUE(db.undo());
  EXPECT_EQ(db.layer("CUT"), cut);
  EXPECT_TRUE(db.layer("wire").isNull());
  ASSERT_TRUE(db.undo());
  EXPECT_TRUE(db.layer("cut").isNull());
  EXPECT_EQ(db.layers().size(), 1u);
  ASSERT_TRUE(db.redo());
  EXPECT_EQ(db.layer("cut"), cut);
}

TEST(Undo, KnowsWhetherTheDrawingDiffersFromWhatWasSaved) {
  AcDbDatabase db;
  EXPECT_FALSE(db.modifiedSinceSave());
  db.startUndoMark("A");
  addLine(db, 1);
  EXPECT_TRUE(db.modifiedSinceSave());
  db.endUndoMark();
  db.markSaved();
  EXPECT_FALSE(db.modifiedSinceSave());
  db.undo();
  EXPECT_TRUE(db.modifiedSinceSave());
  db.redo();
  EXPECT_FALSE(db.modifiedSinceSave());
  db.undo();
  db.markSaved();
  db.redo();
  addLine(db, 2);  // outside any step: no undo leads back
  db.undo();
  EXPECT_TRUE(db.modifiedSinceSave());
}

// ---- random work

class Worker {
 public:
  explicit Worker(unsigned seed) : random_(seed) {
    for (int i = 0; i < 5; ++i) act();
    db.markSaved();
  }
  AcDbDatabase db;

  void act() {
    switch (number(9)) {
      case 0:
      case 1:
        append();
        break;
      case 2:
        change<AcDbEntity>([&](AcDbEntity& e) {
          e.transformBy(AcGeMatrix3d::rotation(real(), {real(), 1}));
        });
        break;
      case 3:
        change<AcDbEntity>([](AcDbEntity& e) { e.erase(); });
        break;
      case 4:
        change<AcDbEntity>([&](AcDbEntity& e) {
          e.setXData("WIRE", {{1070, static_cast<long long>(number(3))}});
        });
        break;
      case 5:
        change<AcDbPolyline>([&](AcDbPolyline& p) {
          p.addVertexAt(number(4), {real(), real()}, real(), -1, -1);
        });
        break;
      case 6:
        layer();
        break;
      case 7:
        dictionary();
        break;
      case 8:
        change<AcDbEntity>([&](AcDbEntity& e) {
          e.setColorIndex(number(255));
          e.setLayer(db.layers()[static_cast<std::size_t>(number(static_cast<int>(db.layers().size())))]);
        });
        break;
    }
  }
  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

 private:
  double real() { return std::uniform_real_distribution<double>(-10, 10)(random_); }
  AcGePoint3d point() { return {real(), real(), real()}; }

  void append() {
    std::unique_ptr<AcDbEntity> e;
    switch (number(4)) {
      case 0:
        e = std::make_unique<AcDbLine>(point(), point());
        break;
      case 1:
        e = std::make_unique<AcDbArc>(point(), 3, 1, 2);
        break;
      case 2:
        e = std::make_unique<AcDbPolyline>(
            PolylineCurve{{{{real(), real()}, 1}, {{real(), real()}, 0}}, false});
        break;
      default:
        e = std::make_unique<AcDbBlockReference>(db.paperSpace(), point());
        break;
    }
    e->setSource({static_cast<std::uint64_t>(number(1000)), 7});
    ids_.push_back(db.appendAcDbEntity(number(3) ? db.modelSpace() : db.paperSpace(), std::move(e)));
  }
  template <class T, class F>
  void change(F&& f) {
    if (ids_.empty()) return;
    auto open = db.open<T>(ids_[static_cast<std::size_t>(number(static_cast<int>(ids_.size())))],
                           OpenMode::kForWrite);
    if (open) f(*open);
  }
  void layer() {
    const std::string name = "L" + std::to_string(number(4));
    if (const auto id = db.layer(name); !id.isNull() && number(2)) {
      auto open = db.open<AcDbLayerTableRecord>(id, OpenMode::kForWrite);
      number(4) ? open->setColorIndex(number(255)) : open->setName(name + "x");
      return;
    }
    auto record = std::make_unique<AcDbLayerTableRecord>();  // new, or in the old one's place
    record->setName(name);
    record->setColorIndex(number(255));
    db.addLayer(std::move(record));
  }
  void dictionary() {
    auto root = db.open<AcDbDictionary>(db.namedObjectsDictionary(), OpenMode::kForWrite);
    const std::string key = "K" + std::to_string(number(3));
    AcDbObjectId id;
    if (number(4) == 0) {
      root->remove(key);
    } else {
      auto record = std::make_unique<AcDbXrecord>();
      record->setFromRbChain({{40, real()}});
      EXPECT_EQ(root->setAt(key, std::move(record), id), ErrorStatus::eOk);
    }
  }

  std::mt19937 random_;
  std::vector<AcDbObjectId> ids_;
};

TEST(UndoProperty, AnyWorkIsUndoneAndDoneAgainToTheLastBit) {
  const unsigned rounds = std::getenv("TARNEX_LONG") ? 3000 : 60;
  for (unsigned seed = 1; seed <= rounds; ++seed) {
    Worker worker(seed);
    AcDbDatabase& db = worker.db;
    std::vector<std::string> states{dump(db, 300)};
    for (int step = 0; step < 12; ++step) {
      db.startUndoMark("STEP");
      const int acts = worker.number(7);
      for (int i = 0; i < acts; ++i) worker.act();
      if (worker.number(5) == 0) {
        db.rollBack();
        ASSERT_EQ(dump(db, 300), states.back()) << "rolled back, seed " << seed;
        continue;
      }
      db.endUndoMark();
      const std::string now = dump(db, 300);
      if (now != states.back()) states.push_back(now);
    }
    // Up and down at random, then all the way to the start. A step may leave the text as it was; such are
    // passed over.
    std::size_t at = states.size() - 1;
    const auto move = [&](bool back) {
      if (!(back ? db.undo() : db.redo())) return false;
      const std::string now = dump(db, 300);
      if (now != states[at]) at += back ? -1 : 1;
      EXPECT_LT(at, states.size()) << "seed " << seed;
      EXPECT_EQ(now, states.at(at)) << "seed " << seed;
      return true;
    };
    for (int i = 0; i < 15; ++i) move(worker.number(3) != 0);
    while (move(true)) {
    }
    ASSERT_EQ(at, 0u);
    while (move(false)) {
    }
    ASSERT_EQ(at, states.size() - 1);
  }
}

// Marks of a moment: the step, the handles and the drawing are as if they had never been.
TEST(Undo, WhatIsTakenBackLeavesNoTrace) {
  AcDbDatabase db;
  const auto old = addLine(db, 1);
  db.markSaved();
  const auto handle = db.nextHandle();
  db.startUndoMark("SHOW");
  auto first = addLine(db, 2), second = addLine(db, 3);
  db.open<AcDbLine>(second, OpenMode::kForWrite)->setStartPoint({9, 0, 0});
  db.open<AcDbLine>(first, OpenMode::kForWrite)->erase();
  db.takeBack({second, first, old, {}});
  EXPECT_EQ(db.nextHandle(), handle);
  EXPECT_EQ(db.modelSpaceEntities(), std::vector<AcDbObjectId>{old});  // not of this step: left alone
  db.endUndoMark();
  EXPECT_FALSE(db.modifiedSinceSave());
  EXPECT_FALSE(db.undo());
  // Beside other work only the marks go.
  db.startUndoMark("WORK");
  const auto mark = addLine(db, 4), made = addLine(db, 5);
  db.open<AcDbLine>(old, OpenMode::kForWrite)->setStartPoint({0.5, 0, 0});
  db.takeBack({mark});
  db.endUndoMark();
  ASSERT_TRUE(db.undo());
  EXPECT_EQ(db.modelSpaceEntities(), std::vector<AcDbObjectId>{old});
  EXPECT_EQ(xOf(db, old), 1);
  ASSERT_TRUE(db.redo());
  EXPECT_EQ(db.modelSpaceEntities(), (std::vector<AcDbObjectId>{old, made}));
  EXPECT_EQ(xOf(db, made), 5);
  EXPECT_TRUE(db.entitiesTouching({{3.5, 0}, {4.5, 1}}).empty());
  db.takeBack({made});  // without a step it is erased
  EXPECT_EQ(db.peek<AcDbLine>(made), nullptr);
}

}  // namespace
}  // namespace tarnex
