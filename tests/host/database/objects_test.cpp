// Opening and closing with the host's status codes, handles, names, dictionaries, classes, extended data.
#include <gtest/gtest.h>

#include "host/database/dump.h"
#include "host/database/handleindex.h"

namespace tarnex {
namespace {

using enum ErrorStatus;
using enum OpenMode;

std::unique_ptr<AcDbLine> line(double x = 0) {
  return std::make_unique<AcDbLine>(AcGePoint3d{x, 0, 0}, AcGePoint3d{x, 1, 0});
}
std::unique_ptr<AcDbLayerTableRecord> layer(const char* name) {
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName(name);
  return record;
}

struct Objects : testing::Test {
  AcDbDatabase db;
  AcDbObjectId id = db.appendAcDbEntity(db.modelSpace(), line());
  ErrorStatus status(AcDbObjectId of, OpenMode mode) { return db.open<AcDbLine>(of, mode).status(); }
};

TEST_F(Objects, OpeningAnswersWithTheHostsCodes) {
  EXPECT_EQ(status({}, kForRead), eNullObjectId);
  EXPECT_EQ(status({12345}, kForRead), eWasErased);
  EXPECT_EQ(db.open<AcDbArc>(id).status(), eNotThatKindOfClass);
  EXPECT_EQ(db.open<AcDbCurve>(id).status(), eOk);
  {
    auto first = db.open<AcDbLine>(id), second = db.open<AcDbLine>(id);
    EXPECT_TRUE(first && second);
    first.close();
    EXPECT_EQ(status(id, kForWrite), eWasOpenForRead);  // the second is still there
  }
  {
    auto writer = db.open<AcDbLine>(id, kForWrite);
    EXPECT_EQ(status(id, kForRead), eWasOpenForWrite);
    EXPECT_EQ(status(id, kForWrite), eWasOpenForWrite);
    auto moved = std::move(writer);
    EXPECT_FALSE(writer);
    EXPECT_EQ(status(id, kForRead), eWasOpenForWrite);
    moved = {};
    EXPECT_EQ(status(id, kForWrite), eOk);
  }
}

TEST_F(Objects, ErasingNeedsWritingAndHappensOnce) {
  EXPECT_EQ(db.open<AcDbLine>(id)->erase(), eNotOpenForWrite);
  EXPECT_EQ(line()->erase(), eNotInDatabase);
  auto open = db.open<AcDbLine>(id, kForWrite);
  EXPECT_EQ(open->erase(), eOk);
  EXPECT_EQ(open->erase(), eWasErased);
  EXPECT_EQ(status(id, kForRead), eWasErased);
  EXPECT_EQ(db.peek<AcDbLine>(id), nullptr);
  EXPECT_TRUE(db.idOfHandle(open->handle()).isNull());
}

TEST_F(Objects, EntitiesOnLockedLayersOpenForReadingOnly) {
  const auto cut = db.addLayer(layer("Cut"));
  db.open<AcDbLine>(id, kForWrite)->setLayer(cut);
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setIsLocked(true);
  EXPECT_EQ(status(id, kForWrite), eOnLockedLayer);
  EXPECT_EQ(status(id, kForRead), eOk);
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setIsLocked(false);
  EXPECT_EQ(status(id, kForWrite), eOk);

  const auto onZero = db.appendAcDbEntity(db.modelSpace(), line());  // no layer is layer "0"
  db.open<AcDbLayerTableRecord>(db.layer("0"), kForWrite)->setIsLocked(true);
  EXPECT_EQ(status(onZero, kForWrite), eOnLockedLayer);
}

TEST_F(Objects, ChangingWhatIsNotOpenForWriteIsRefusedLoudly) {
  auto reader = db.open<AcDbLine>(id);
  EXPECT_THROW(reader->setStartPoint({9, 9, 9}), std::logic_error);
  EXPECT_EQ(reader->getStartPoint().x, 0);
}

TEST_F(Objects, OnlyARealChangeMarksAnObjectAsChanged) {
  auto read = line(3);
  read->setStartPoint({3, 1, 0});  // a reader may set what it likes before appending
  read->setSource({100, 20});
  const auto kept = db.appendAcDbEntity(db.modelSpace(), std::move(read));
  db.open<AcDbLine>(kept, kForWrite)->setStartPoint({3, 1, 0});
  EXPECT_FALSE(db.peek<AcDbLine>(kept)->changedSinceRead());
  db.open<AcDbLine>(kept, kForWrite)->setColorIndex(1);
  EXPECT_TRUE(db.peek<AcDbLine>(kept)->changedSinceRead());
  EXPECT_EQ(db.peek<AcDbLine>(kept)->source().offset, 100u);
}

TEST_F(Objects, ClonesCarryContentWithoutIdentity) {
  {
    auto open = db.open<AcDbLine>(id, kForWrite);
    open->setXData("WIRE", {{1000, std::string("a")}});
    open->setSource({5, 6});
    open->highlight();
  }
  const auto copy = db.peek<AcDbLine>(id)->clone();
  EXPECT_TRUE(copy->objectId().isNull());
  EXPECT_EQ(copy->database(), nullptr);
  EXPECT_EQ(copy->handle(), 0u);
  EXPECT_TRUE(copy->changedSinceRead());
  EXPECT_EQ(copy->source().offset, 5u);
  EXPECT_EQ(copy->xData("WIRE"), (ResBufChain{{1000, std::string("a")}}));
  EXPECT_FALSE(static_cast<AcDbEntity&>(*copy).isHighlighted());
}

TEST_F(Objects, ExtendedDataIsKeptByApplication) {
  auto open = db.open<AcDbLine>(id, kForWrite);
  open->setXData("A", {{1070, 1LL}});
  open->setXData("B", {{1070, 2LL}});
  open->setXData("A", {{1070, 3LL}});
  EXPECT_EQ(open->xData("A"), (ResBufChain{{1070, 3LL}}));
  open->setXData("A", {});
  EXPECT_EQ(open->xDataApplications(), std::vector<std::string>{"B"});
  EXPECT_TRUE(open->xData("A").empty());
}

// ---- handles

TEST_F(Objects, HandlesAreTakenAsAskedOrTheNextFree) {
  const auto handle = [&](AcDbObjectId of) { return db.peek<AcDbObject>(of)->handle(); };
  const auto wished = db.appendAcDbEntity(db.modelSpace(), line(), 0x500);
  EXPECT_EQ(handle(wished), 0x500u);
  EXPECT_EQ(db.nextHandle(), 0x501u);
  const auto doubled = db.appendAcDbEntity(db.modelSpace(), line(), 0x500);
  EXPECT_EQ(handle(doubled), 0x501u);
  EXPECT_EQ(db.idOfHandle(0x500), wished);
  db.reserveHandlesTo(0x7FF);
  EXPECT_EQ(handle(db.appendAcDbEntity(db.modelSpace(), line())), 0x800u);

  const auto last = db.appendAcDbEntity(db.modelSpace(), line(), ~std::uint64_t{0});
  EXPECT_EQ(handle(last), ~std::uint64_t{0});
  const auto after = db.appendAcDbEntity(db.modelSpace(), line());
  EXPECT_EQ(db.idOfHandle(handle(after)), after);  // round the end, neither 0 nor taken

  // A file's objects get their handles also where the empty drawing's own objects had them.
  const auto zero = db.layer("0");
  const auto old = handle(zero);
  const auto taker = db.appendAcDbEntity(db.modelSpace(), line(), old);
  EXPECT_EQ(db.idOfHandle(old), taker);
  EXPECT_EQ(db.idOfHandle(handle(zero)), zero);
  EXPECT_NE(handle(zero), old);
}

TEST(HandleIndex, FindsAnyOrderAndForgetsWhatIsRemoved) {
  HandleIndex index;
  const auto handleOf = [](std::uint32_t i) { return (std::uint64_t{i} * 2654435761u) % 1000003 * 16 + 1; };
  for (std::uint32_t i = 1; i <= 5000; ++i) ASSERT_TRUE(index.insert(handleOf(i), {i}));
  for (std::uint32_t i = 1; i <= 5000; ++i) ASSERT_FALSE(index.insert(handleOf(i), {1}));
  EXPECT_FALSE(index.insert(0, {1}));
  for (std::uint32_t i = 1; i <= 5000; i += 2) index.remove(handleOf(i));
  for (std::uint32_t i = 1; i <= 5000; ++i) ASSERT_EQ(index.find(handleOf(i)).index, i % 2 ? 0 : i);
  for (std::uint32_t i = 1; i <= 5000; i += 2) ASSERT_TRUE(index.insert(handleOf(i), {i + 9000}));
  for (std::uint32_t i = 1; i <= 5000; ++i) ASSERT_EQ(index.find(handleOf(i)).index, i % 2 ? i + 9000 : i);
  EXPECT_TRUE(index.find(2).isNull());
}

// ---- tables and dictionaries

TEST_F(Objects, AnEmptyDrawingHasWhatEveryDrawingNeeds) {
  EXPECT_EQ(db.layerName(db.layer("0")), "0");
  EXPECT_EQ(db.layerName({}), "0");
  for (const char* name : {"BYLAYER", "byblock", "CONTINUOUS"})
    EXPECT_FALSE(db.linetype(name).isNull()) << name;
  EXPECT_EQ(db.block("*MODEL_SPACE"), db.modelSpace());
  EXPECT_EQ(db.block("*paper_space"), db.paperSpace());
  EXPECT_NE(db.peek<AcDbDictionary>(db.namedObjectsDictionary()), nullptr);
  EXPECT_TRUE(db.loadLineTypeFile("no such line").isNull());
  const auto dashed = db.loadLineTypeFile("ACAD_ISO02W100");
  EXPECT_EQ(db.peek<AcDbLinetypeTableRecord>(dashed)->dashes, (std::vector<double>{12, -3}));
  EXPECT_EQ(db.loadLineTypeFile("acad_iso02w100"), dashed);
}

TEST_F(Objects, ARecordOfTheSameNameTakesTheOldOnesPlace) {
  const auto cut = db.addLayer(layer("Cut"), 0x90);
  auto again = layer("CUT");
  again->setColorIndex(3);
  EXPECT_EQ(db.addLayer(std::move(again), 0x91), cut);
  EXPECT_EQ(db.peek<AcDbLayerTableRecord>(cut)->colorIndex(), 3);
  EXPECT_EQ(db.idOfHandle(0x91), cut);
  EXPECT_TRUE(db.idOfHandle(0x90).isNull());

  auto space = std::make_unique<AcDbBlockTableRecord>();
  space->setName("*MODEL_SPACE");
  EXPECT_EQ(db.addBlock(std::move(space)), db.modelSpace());
  EXPECT_EQ(db.modelSpaceEntities(), std::vector<AcDbObjectId>{id});

  db.open<AcDbLayerTableRecord>(cut, kForWrite)->erase();
  EXPECT_TRUE(db.layer("Cut").isNull());
  EXPECT_NE(db.addLayer(layer("Cut")), cut);
}

TEST_F(Objects, ShownMeansOnThawedAndVisible) {
  const auto cut = db.addLayer(layer("Cut"));
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setColorIndex(5);
  db.open<AcDbLine>(id, kForWrite)->setLayer(cut);
  const auto shown = [&] { return db.isShown(*db.peek<AcDbLine>(id)); };
  EXPECT_TRUE(shown());
  EXPECT_EQ(db.effectiveColor(*db.peek<AcDbLine>(id)), 5);
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setIsOff(true);
  EXPECT_FALSE(shown());
  EXPECT_TRUE(db.drawingExtents().empty());
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setIsOff(false);
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setIsFrozen(true);
  EXPECT_FALSE(shown());
  db.open<AcDbLayerTableRecord>(cut, kForWrite)->setIsFrozen(false);
  db.open<AcDbLine>(id, kForWrite)->setInvisible(true);
  EXPECT_FALSE(shown());
}

TEST_F(Objects, DictionariesHoldOneObjectAKey) {
  const auto text = [](const char* s) {
    auto record = std::make_unique<AcDbXrecord>();
    record->setFromRbChain({{1, std::string(s)}});
    return record;
  };
  auto root = db.open<AcDbDictionary>(db.namedObjectsDictionary(), kForWrite);
  AcDbObjectId first, second, got;
  EXPECT_EQ(root->getAt("A", got), eKeyNotFound);
  EXPECT_EQ(root->setAt("A", text("1"), first), eOk);
  EXPECT_EQ(root->setAt("a", text("other"), got), eOk);  // keys are as given
  EXPECT_EQ(root->setAt("A", text("2"), second), eOk);
  EXPECT_EQ(root->entries().size(), 2u);
  EXPECT_EQ(root->getAt("A", got), eOk);
  EXPECT_EQ(got, second);
  EXPECT_EQ(db.peek<AcDbXrecord>(first), nullptr);
  {
    auto busy = db.open<AcDbXrecord>(second);
    EXPECT_EQ(root->remove("A"), eWasOpenForRead);
    EXPECT_TRUE(root->has("A"));
  }
  EXPECT_EQ(root->remove("A"), eOk);
  EXPECT_EQ(root->remove("A"), eKeyNotFound);
  EXPECT_FALSE(root->has("A"));
  EXPECT_EQ(AcDbDictionary().setAt("A", text("1"), first), eNotInDatabase);
}

TEST(Classes, TheTreeIsWalkedAndNamesAreUnique) {
  EXPECT_TRUE(AcDbPolyline::desc().isDerivedFrom(AcDbCurve::desc()));
  EXPECT_TRUE(AcDbDimension::desc().isDerivedFrom(AcDbKeptEntity::desc()));
  EXPECT_FALSE(AcDbPoint::desc().isDerivedFrom(AcDbCurve::desc()));
  ASSERT_NE(AcDbArc::desc().create, nullptr);
  EXPECT_EQ(&AcDbArc::desc().create()->isA(), &AcDbArc::desc());

  AcRxClassDictionary classes;
  const AcRxClass mine = hostClass("CWire", &AcDbPolyline::desc(), "WIRE");
  const AcRxClass other = hostClass("CWire", &AcDbLine::desc(), "WIRE2");
  EXPECT_TRUE(classes.add(mine));
  EXPECT_TRUE(classes.add(mine));
  EXPECT_FALSE(classes.add(other));
  EXPECT_EQ(classes.at("CWire"), &mine);
  EXPECT_EQ(classes.atDxfName("WIRE"), &mine);
  EXPECT_EQ(classes.atDxfName("wire"), nullptr);
  classes.remove(mine);
  EXPECT_EQ(classes.at("CWire"), nullptr);
}

// ---- change feed

TEST_F(Objects, TheFeedNamesWhatWasTouchedOnceInOrder) {
  const auto second = db.appendAcDbEntity(db.modelSpace(), line());
  const auto stamp = db.changeStamp();
  std::vector<AcDbObjectId> ids;
  ASSERT_TRUE(db.changesSince(stamp, ids));
  EXPECT_TRUE(ids.empty());
  db.open<AcDbLine>(second, kForWrite)->setColorIndex(1);
  db.open<AcDbLine>(id, kForWrite)->setColorIndex(1);
  db.open<AcDbLine>(second, kForWrite)->erase();
  db.appendAcDbEntity(db.paperSpace(), line());
  ASSERT_TRUE(db.changesSince(stamp, ids));
  EXPECT_EQ(ids, (std::vector<AcDbObjectId>{id, second}));
  EXPECT_FALSE(db.changesSince(db.changeStamp() + 1, ids));
}

TEST_F(Objects, TheFeedForgetsItsOldestPartAndSaysSo) {
  const auto stamp = db.changeStamp();
  std::vector<AcDbObjectId> ids;
  for (int i = 0; i < 100'000; ++i) db.open<AcDbLine>(id, kForWrite)->setColorIndex(1 + i % 2);
  EXPECT_FALSE(db.changesSince(stamp, ids));
  EXPECT_TRUE(db.changesSince(db.changeStamp() - 100, ids));
  EXPECT_EQ(ids, std::vector<AcDbObjectId>{id});
}

TEST_F(Objects, AnOpenedObjectGoesDownToReadAndUpAgain) {
  auto opened = db.open<AcDbLine>(id, kForWrite);
  EXPECT_EQ(opened.upgradeOpen(), eOk);  // it is there already
  EXPECT_EQ(opened.downgradeOpen(), eOk);
  EXPECT_EQ(opened.downgradeOpen(), eNotOpenForWrite);
  EXPECT_FALSE(opened->isWriteEnabled());
  {
    const auto reader = db.open<AcDbLine>(id);
    EXPECT_TRUE(reader);
    EXPECT_EQ(opened.upgradeOpen(), eWasOpenForRead);
    EXPECT_TRUE(opened);  // for read, as before
  }
  EXPECT_EQ(opened.upgradeOpen(), eOk);
  opened->setStartPoint({5, 0, 0});
  opened.close();
  EXPECT_EQ(opened.downgradeOpen(), eNotOpenForWrite);
  EXPECT_EQ(status(id, kForWrite), eOk);  // nothing is left open
}

}  // namespace
}  // namespace tarnex
