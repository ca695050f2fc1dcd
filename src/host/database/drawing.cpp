// The database as a drawing: what an empty one holds, tables, what is shown, steps of undo, where things lie.
// Knows nothing of files and views.
#include <algorithm>

#include "host/database/linetypes.h"
#include "host/database/state.h"

namespace tarnex {

AcDbDatabase::AcDbDatabase() : state_(std::make_unique<State>(*this)) {
  state_->objects.emplace_back();  // id 0 names nothing
  const auto named = [](auto record, const char* name) {
    record->setName(name);
    return record;
  };
  for (const char* name : {"ByBlock", "ByLayer"})
    addLinetype(named(std::make_unique<AcDbLinetypeTableRecord>(), name));
  auto layerZero = named(std::make_unique<AcDbLayerTableRecord>(), "0");
  layerZero->setLinetype(loadLineTypeFile("Continuous"));
  state_->layerZero = addLayer(std::move(layerZero));
  state_->modelSpace = addBlock(named(std::make_unique<AcDbBlockTableRecord>(), "*Model_Space"));
  state_->paperSpace = addBlock(named(std::make_unique<AcDbBlockTableRecord>(), "*Paper_Space"));
  state_->namedObjects = add(std::make_unique<AcDbDictionary>(), {});
  state_->defaultObjects = static_cast<std::uint32_t>(state_->objects.size() - 1);
  markSaved();
}

AcDbObjectId AcDbDatabase::layer(std::string_view name) const {
  return state_->layers.find(*this, name);
}
AcDbObjectId AcDbDatabase::linetype(std::string_view name) const {
  return state_->linetypes.find(*this, name);
}
AcDbObjectId AcDbDatabase::block(std::string_view name) const {
  return state_->blocks.find(*this, name);
}
AcDbObjectId AcDbDatabase::addLayer(std::unique_ptr<AcDbLayerTableRecord> record, std::uint64_t handle) {
  return state_->addRecord(state_->layers, std::move(record), handle);
}
AcDbObjectId AcDbDatabase::addLinetype(std::unique_ptr<AcDbLinetypeTableRecord> record,
                                       std::uint64_t handle) {
  return state_->addRecord(state_->linetypes, std::move(record), handle);
}
AcDbObjectId AcDbDatabase::addBlock(std::unique_ptr<AcDbBlockTableRecord> record, std::uint64_t handle) {
  return state_->addRecord(state_->blocks, std::move(record), handle);
}
const std::vector<AcDbObjectId>& AcDbDatabase::layers() const {
  return state_->layers.standing(*this);
}
const std::vector<AcDbObjectId>& AcDbDatabase::linetypes() const {
  return state_->linetypes.standing(*this);
}
const std::vector<AcDbObjectId>& AcDbDatabase::blocks() const {
  return state_->blocks.standing(*this);
}

AcDbObjectId AcDbDatabase::loadLineTypeFile(std::string_view name) {
  if (const AcDbObjectId there = linetype(name); !there.isNull()) return there;
  const auto known = hostLinetype(name);
  if (!known) return {};
  auto record = std::make_unique<AcDbLinetypeTableRecord>();
  record->setName(known->name);
  record->description = known->description;
  record->dashes = known->dashes;
  return addLinetype(std::move(record));
}

AcDbObjectId AcDbDatabase::modelSpace() const {
  return state_->modelSpace;
}
AcDbObjectId AcDbDatabase::paperSpace() const {
  return state_->paperSpace;
}
AcDbObjectId AcDbDatabase::namedObjectsDictionary() const {
  return state_->namedObjects;
}

std::string AcDbDatabase::layerName(AcDbObjectId layer) const {
  const auto* record = peek<AcDbLayerTableRecord>(layer);
  return record ? record->getName() : "0";
}

bool AcDbDatabase::isShown(const AcDbEntity& entity) const {
  if (entity.isInvisible() || entity.isHidden()) return false;
  const auto* record =
      peek<AcDbLayerTableRecord>(entity.layerId().isNull() ? state_->layerZero : entity.layerId());
  return !record || (!record->isOff() && !record->isFrozen());
}

int AcDbDatabase::effectiveColor(const AcDbEntity& entity) const {
  if (entity.colorIndex() == kColorByBlock) return kForegroundColor;
  if (entity.colorIndex() != kColorByLayer) return entity.colorIndex();
  const auto* record =
      peek<AcDbLayerTableRecord>(entity.layerId().isNull() ? state_->layerZero : entity.layerId());
  return record ? record->colorIndex() : kForegroundColor;
}

std::vector<AcDbObjectId> AcDbDatabase::modelSpaceEntities() const {
  return state_->standingInModelSpace();
}

void AcDbDatabase::startUndoMark(std::string label) {
  state_->journal.start(std::move(label));
}
void AcDbDatabase::endUndoMark() {
  state_->journal.end();
}
void AcDbDatabase::takeBack(std::vector<AcDbObjectId> marks) {
  if (state_->journal.running()) {
    state_->journal.takeBack(std::move(marks));
    return;
  }
  for (const AcDbObjectId id : marks)
    if (peekObject(id)) eraseObject(*state_->at(id));
}
void AcDbDatabase::rollBack() {
  state_->journal.rollBack();
}
bool AcDbDatabase::undo(std::string* label) {
  return state_->journal.undo(label);
}
bool AcDbDatabase::redo(std::string* label) {
  return state_->journal.redo(label);
}
void AcDbDatabase::forgetUndo() {
  state_->journal.forget();
}
bool AcDbDatabase::modifiedSinceSave() const {
  return state_->journal.modifiedSinceSave();
}
void AcDbDatabase::markSaved() {
  state_->journal.markSaved();
}

std::vector<AcDbObjectId> AcDbDatabase::entitiesTouching(const Extents2d& box) const {
  state_->followBlocks();
  return state_->index.touching(box);
}

Extents2d AcDbDatabase::drawingExtents() const {
  Extents2d all;
  for (const AcDbObjectId id : modelSpaceEntities()) {
    const auto* entity = peek<AcDbEntity>(id);
    if (entity && isShown(*entity)) all.add(entity->getGeomExtents());
  }
  return all;
}

std::uint64_t AcDbDatabase::changeStamp() const {
  state_->followBlocks();
  return state_->feed.stamp();
}

bool AcDbDatabase::changesSince(std::uint64_t stamp, std::vector<AcDbObjectId>& ids) const {
  state_->followBlocks();
  return state_->feed.since(stamp, ids);
}

void AcDbDatabase::noteChange(AcDbObjectId id) {
  if (const AcDbObject* object = state_->at(id)) state_->touch(*object);
}

std::weak_ptr<const void> AcDbDatabase::life() const {
  return state_->life;
}

}  // namespace tarnex
