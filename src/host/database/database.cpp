// The drawing database: objects by id and handle, opening and closing, tables by name.
// Knows how objects are held; what they are stands with their classes.
#include "host/database/database.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/database/state.h"

namespace tarnex {

namespace {

std::string capitals(std::string_view name) {
  std::string s(name);
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return s;
}

void insertSorted(std::vector<AcDbObjectId>& ids, AcDbObjectId id) {
  if (ids.empty() || ids.back() < id) {
    ids.push_back(id);
    return;
  }
  const auto at = std::lower_bound(ids.begin(), ids.end(), id);
  if (*at != id) ids.insert(at, id);
}

void eraseSorted(std::vector<AcDbObjectId>& ids, AcDbObjectId id) {
  const auto at = std::lower_bound(ids.begin(), ids.end(), id);
  if (at != ids.end() && *at == id) ids.erase(at);
}

}  // namespace

// ---- symbol tables

void SymbolTable::add(const AcDbSymbolTableRecord& record) {
  insertSorted(all_, record.objectId());
  if (!valid_ || record.isErased()) return;
  insertSorted(standing_, record.objectId());
  byName_.emplace(capitals(record.getName()), record.objectId());
}

void SymbolTable::remove(AcDbObjectId id) {
  eraseSorted(all_, id);
  valid_ = false;
}

void SymbolTable::rebuild(const AcDbDatabase& database) {
  standing_.clear();
  byName_.clear();
  for (const AcDbObjectId id : all_)
    if (const auto* record = database.peek<AcDbSymbolTableRecord>(id)) {
      standing_.push_back(id);
      byName_.emplace(capitals(record->getName()), id);
    }
  valid_ = true;
}

const std::vector<AcDbObjectId>& SymbolTable::standing(const AcDbDatabase& database) {
  if (!valid_) rebuild(database);
  return standing_;
}

AcDbObjectId SymbolTable::find(const AcDbDatabase& database, std::string_view name) {
  if (!valid_) rebuild(database);
  const auto it = byName_.find(capitals(name));
  return it == byName_.end() ? AcDbObjectId{} : it->second;
}

// ---- the tables of objects

SymbolTable* AcDbDatabase::State::tableOf(const AcDbObject& object) {
  if (object.isKindOf(AcDbLayerTableRecord::desc())) return &layers;
  if (object.isKindOf(AcDbLinetypeTableRecord::desc())) return &linetypes;
  return object.isKindOf(AcDbBlockTableRecord::desc()) ? &blocks : nullptr;
}

void AcDbDatabase::State::namesMayDiffer(const AcDbObject& object) {
  if (object.isKindOf(AcDbEntity::desc())) return;
  if (SymbolTable* table = tableOf(object)) table->invalidate();
}

void AcDbDatabase::State::touch(const AcDbObject& object) {
  if (object.owner_ == modelSpace) {
    feed.touch(object.id_);
  } else if (object.isKindOf(AcDbEntity::desc()) || object.isKindOf(AcDbBlockTableRecord::desc())) {
    contents.invalidate();
    blocksChanged = true;
  }
}

void AcDbDatabase::State::followBlocks() {
  if (!blocksChanged) return;
  blocksChanged = false;
  for (const AcDbObjectId id : references) feed.touch(id);
}

void AcDbDatabase::State::link(std::unique_ptr<AcDbObject> owned) {
  AcDbObject& object = *owned;
  const AcDbObjectId id = object.id_;
  if (id.index == objects.size())
    objects.push_back(std::move(owned));
  else
    objects[id.index] = std::move(owned);
  handles.insert(object.handle_, id);
  if (object.isKindOf(AcDbEntity::desc())) {
    AcDbObject* owner = at(object.owner_);
    if (owner && owner->isKindOf(AcDbBlockTableRecord::desc()))
      insertSorted(static_cast<AcDbBlockTableRecord*>(owner)->entities_, id);
    if (object.owner_ == modelSpace) {
      standingKnown = standingKnown && !object.erased_ && (standing.empty() || standing.back() < id);
      if (standingKnown) standing.push_back(id);
      if (object.isKindOf(AcDbBlockReference::desc())) insertSorted(references, id);
    }
  } else if (SymbolTable* table = tableOf(object)) {
    table->add(static_cast<AcDbSymbolTableRecord&>(object));
  }
  touch(object);
}

std::unique_ptr<AcDbObject> AcDbDatabase::State::unlink(AcDbObjectId id) {
  AcDbObject& object = *at(id);
  handles.remove(object.handle_);
  if (object.isKindOf(AcDbEntity::desc())) {
    AcDbObject* owner = at(object.owner_);
    if (owner && owner->isKindOf(AcDbBlockTableRecord::desc()))
      eraseSorted(static_cast<AcDbBlockTableRecord*>(owner)->entities_, id);
    eraseSorted(references, id);
    standingKnown = false;
  } else if (SymbolTable* table = tableOf(object)) {
    table->remove(id);
  }
  touch(object);
  return std::move(objects[id.index]);
}

// The handle that an object gets which asks for `wish` (0: any).
std::uint64_t AcDbDatabase::State::handleFor(std::uint64_t wish, AcDbObjectId id) {
  const AcDbObjectId holder = wish == 0 ? AcDbObjectId{} : handles.find(wish);
  if (wish != 0 && (holder.isNull() || holder == id)) {
    nextHandle = std::max(nextHandle, wish + 1 != 0 ? wish + 1 : wish);
    return wish;
  }
  while (nextHandle == 0 || !handles.find(nextHandle).isNull())
    ++nextHandle;  // after the last comes the first
  const std::uint64_t next = nextHandle++;
  if (wish == 0 || holder.index > defaultObjects) return next;
  AcDbObject& yielding = *at(holder);
  handles.remove(wish);
  yielding.handle_ = next;
  handles.insert(next, holder);
  return wish;
}

void AcDbDatabase::State::replace(AcDbObjectId id, std::unique_ptr<AcDbObject> object, std::uint64_t handle) {
  std::unique_ptr<AcDbObject>& slot = objects[id.index];
  object->database_ = &database;
  object->id_ = id;
  object->owner_ = slot->owner_;
  object->writeReady_ = false;
  object->handle_ = slot->handle_;
  if (slot->isKindOf(AcDbBlockTableRecord::desc()))
    static_cast<AcDbBlockTableRecord&>(*object).entities_ =
        static_cast<AcDbBlockTableRecord&>(*slot).entities_;
  std::swap(slot, object);
  journal.replacing(std::move(object));
  if (handle != 0 && handle != slot->handle_) {
    const std::uint64_t old = slot->handle_;
    slot->handle_ = handleFor(handle, id);
    handles.remove(old);
    handles.insert(slot->handle_, id);
  }
  namesMayDiffer(*slot);
  touch(*slot);
}

AcDbObjectId AcDbDatabase::State::addRecord(SymbolTable& table, std::unique_ptr<AcDbSymbolTableRecord> record,
                                            std::uint64_t handle) {
  const AcDbObjectId there = table.find(database, record->getName());
  if (there.isNull()) return database.add(std::move(record), {}, handle);
  replace(there, std::move(record), handle);
  return there;
}

const std::vector<AcDbObjectId>& AcDbDatabase::State::standingInModelSpace() {
  const auto gone = [&](AcDbObjectId id) { return database.peekObject(id) == nullptr; };
  if (!standingKnown) {
    const auto* space = database.peek<AcDbBlockTableRecord>(modelSpace);
    standing = space ? space->entities() : std::vector<AcDbObjectId>();
    standingKnown = space != nullptr;
    someErased = true;
  }
  if (std::exchange(someErased, false)) std::erase_if(standing, gone);
  return standing;
}

// ---- objects

AcDbDatabase::~AcDbDatabase() = default;

AcDbObjectId AcDbDatabase::add(std::unique_ptr<AcDbObject> object, AcDbObjectId owner, std::uint64_t handle) {
  AcDbObject& added = *object;
  const AcDbObjectId id{static_cast<std::uint32_t>(state_->objects.size())};
  state_->journal.appending(id);  // before the handle is chosen: what can't be done again frees its own
  added.database_ = this;
  added.id_ = id;
  added.owner_ = owner;
  added.handle_ = state_->handleFor(handle, id);
  added.readers_ = 0;
  added.writer_ = added.writeReady_ = added.erased_ = false;
  state_->link(std::move(object));
  return id;
}

AcDbObjectId AcDbDatabase::appendAcDbEntity(AcDbObjectId block, std::unique_ptr<AcDbEntity> entity,
                                            std::uint64_t handle) {
  if (!peek<AcDbBlockTableRecord>(block)) return {};
  return add(std::move(entity), block, handle);
}

AcDbObject* AcDbDatabase::openObject(AcDbObjectId id, OpenMode mode, const AcRxClass& kind,
                                     ErrorStatus& status) {
  AcDbObject* object = id.isNull() ? nullptr : state_->at(id);
  const auto refused = [&](ErrorStatus why) {
    status = why;
    return nullptr;
  };
  if (!object) return refused(id.isNull() ? ErrorStatus::eNullObjectId : ErrorStatus::eWasErased);
  if (object->erased_) return refused(ErrorStatus::eWasErased);
  if (!object->isKindOf(kind)) return refused(ErrorStatus::eNotThatKindOfClass);
  if (object->writer_) return refused(ErrorStatus::eWasOpenForWrite);
  if (mode == OpenMode::kForRead) {
    if (object->readers_ == std::numeric_limits<std::int16_t>::max())
      return refused(ErrorStatus::eWasOpenForRead);
    ++object->readers_;
    return object;
  }
  if (object->readers_ > 0) return refused(ErrorStatus::eWasOpenForRead);
  if (object->isKindOf(AcDbEntity::desc())) {
    const AcDbObjectId layerId = static_cast<const AcDbEntity*>(object)->layerId();
    const auto* layer = peek<AcDbLayerTableRecord>(layerId.isNull() ? state_->layerZero : layerId);
    if (layer && layer->isLocked()) return refused(ErrorStatus::eOnLockedLayer);
  }
  object->writer_ = true;
  return object;
}

void AcDbDatabase::closeObject(AcDbObject& object, OpenMode mode) {
  if (mode == OpenMode::kForRead) {
    --object.readers_;
    return;
  }
  object.writer_ = false;
  if (object.writeReady_) state_->touch(object);
}

const AcDbObject* AcDbDatabase::peekObject(AcDbObjectId id) const {
  const AcDbObject* object = state_->at(id);
  return object && !object->erased_ ? object : nullptr;
}

void AcDbDatabase::prepareForChange(AcDbObject& object) {
  if (!object.writer_) throw std::logic_error("an object is changed that isn't open for write");
  state_->journal.changing(object);
  object.changed_ = true;
  state_->touch(object);
}

void AcDbDatabase::eraseObject(AcDbObject& object) {
  state_->journal.erasing(object.id_);
  object.erased_ = true;
  state_->someErased = true;
  state_->namesMayDiffer(object);
  state_->touch(object);
}

void AcDbDatabase::namesChanged() {
  state_->layers.invalidate();
  state_->linetypes.invalidate();
  state_->blocks.invalidate();
}

AcDbObjectId AcDbDatabase::idOfHandle(std::uint64_t handle) const {
  const AcDbObjectId id = state_->handles.find(handle);
  return peekObject(id) ? id : AcDbObjectId{};
}

std::uint64_t AcDbDatabase::nextHandle() const {
  return state_->nextHandle;
}
void AcDbDatabase::reserveHandlesTo(std::uint64_t last) {
  if (last + 1 != 0) state_->nextHandle = std::max(state_->nextHandle, last + 1);
}
std::size_t AcDbDatabase::objectCount() const {
  return static_cast<std::size_t>(std::count_if(state_->objects.begin(), state_->objects.end(),
                                                [](const auto& o) { return o && !o->erased_; }));
}

}  // namespace tarnex
