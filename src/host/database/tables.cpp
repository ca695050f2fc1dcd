// Records of symbol tables, named dictionaries and xrecords.
// Knows their content; look-up of records by name is the database's.
#include "host/database/tables.h"

#include <algorithm>

#include "host/database/database.h"

namespace tarnex {

namespace {

template <class T>
std::unique_ptr<AcDbObject> make() {
  return std::make_unique<T>();
}

}  // namespace

const AcRxClass& AcDbSymbolTableRecord::desc() {
  static const AcRxClass kClass = hostClass("AcDbSymbolTableRecord", &AcDbObject::desc());
  return kClass;
}

const AcRxClass& AcDbLayerTableRecord::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbLayerTableRecord", &AcDbSymbolTableRecord::desc(), "LAYER", make<AcDbLayerTableRecord>);
  return kClass;
}

const AcRxClass& AcDbLinetypeTableRecord::desc() {
  static const AcRxClass kClass = hostClass("AcDbLinetypeTableRecord", &AcDbSymbolTableRecord::desc(),
                                            "LTYPE", make<AcDbLinetypeTableRecord>);
  return kClass;
}

const AcRxClass& AcDbBlockTableRecord::desc() {
  static const AcRxClass kClass = hostClass("AcDbBlockTableRecord", &AcDbSymbolTableRecord::desc(),
                                            "BLOCK_RECORD", make<AcDbBlockTableRecord>);
  return kClass;
}

const AcRxClass& AcDbDictionary::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbDictionary", &AcDbObject::desc(), "DICTIONARY", make<AcDbDictionary>);
  return kClass;
}

const AcRxClass& AcDbXrecord::desc() {
  static const AcRxClass kClass = hostClass("AcDbXrecord", &AcDbObject::desc(), "XRECORD", make<AcDbXrecord>);
  return kClass;
}

const AcRxClass& AcDbKeptObject::desc() {
  static const AcRxClass kClass = hostClass("AcDbKeptObject", &AcDbObject::desc(), {}, make<AcDbKeptObject>);
  return kClass;
}

std::unique_ptr<AcDbObject> AcDbLayerTableRecord::clone() const {
  return std::make_unique<AcDbLayerTableRecord>(*this);
}
std::unique_ptr<AcDbObject> AcDbLinetypeTableRecord::clone() const {
  return std::make_unique<AcDbLinetypeTableRecord>(*this);
}
std::unique_ptr<AcDbObject> AcDbBlockTableRecord::clone() const {
  return std::make_unique<AcDbBlockTableRecord>(*this);
}
std::unique_ptr<AcDbObject> AcDbDictionary::clone() const {
  return std::make_unique<AcDbDictionary>(*this);
}
std::unique_ptr<AcDbObject> AcDbXrecord::clone() const {
  return std::make_unique<AcDbXrecord>(*this);
}
std::unique_ptr<AcDbObject> AcDbKeptObject::clone() const {
  return std::make_unique<AcDbKeptObject>(*this);
}

void AcDbSymbolTableRecord::setName(std::string name) {
  if (name == name_) return;
  assertWriteEnabled();
  name_ = std::move(name);
  if (database()) database()->namesChanged();
}

std::vector<AcDbDictionary::Entry>::const_iterator AcDbDictionary::find(const std::string& key) const {
  return std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.key == key; });
}

bool AcDbDictionary::has(const std::string& key) const {
  AcDbObjectId id;
  return getAt(key, id) == ErrorStatus::eOk;
}

ErrorStatus AcDbDictionary::getAt(const std::string& key, AcDbObjectId& id) const {
  const auto it = find(key);
  if (it == entries_.end()) return ErrorStatus::eKeyNotFound;
  if (database() && !database()->peek<AcDbObject>(it->id)) return ErrorStatus::eKeyNotFound;
  id = it->id;
  return ErrorStatus::eOk;
}

ErrorStatus AcDbDictionary::eraseEntry(AcDbObjectId id) {
  if (!database() || !database()->peek<AcDbObject>(id)) return ErrorStatus::eOk;
  auto object = database()->open<AcDbObject>(id, OpenMode::kForWrite);
  return object ? object->erase() : object.status();
}

ErrorStatus AcDbDictionary::setAt(const std::string& key, std::unique_ptr<AcDbObject> object,
                                  AcDbObjectId& id) {
  if (!database()) return ErrorStatus::eNotInDatabase;
  const auto it = find(key);
  const auto at = it - entries_.begin();
  const bool replaces = it != entries_.end();
  if (replaces) {
    const ErrorStatus erased = eraseEntry(it->id);
    if (erased != ErrorStatus::eOk) return erased;
  }
  assertWriteEnabled();
  id = database()->add(std::move(object), objectId());
  if (replaces)
    entries_[static_cast<std::size_t>(at)].id = id;
  else
    entries_.push_back({key, id});
  return ErrorStatus::eOk;
}

void AcDbDictionary::bind(const std::string& key, AcDbObjectId id) {
  assertWriteEnabled();
  entries_.push_back({key, id});
}

ErrorStatus AcDbDictionary::remove(const std::string& key) {
  const auto it = find(key);
  if (it == entries_.end()) return ErrorStatus::eKeyNotFound;
  const ErrorStatus erased = eraseEntry(it->id);
  if (erased != ErrorStatus::eOk) return erased;
  const auto at = it - entries_.begin();
  assertWriteEnabled();
  entries_.erase(entries_.begin() + at);
  return ErrorStatus::eOk;
}

}  // namespace tarnex
