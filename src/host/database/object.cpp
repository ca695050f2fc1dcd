// What all objects of a drawing share: class, extended data, erasing, the word before a change.
// Knows no kind of object; the table of objects and the journal are the database's.
#include "host/database/object.h"

#include <algorithm>

#include "host/database/database.h"

namespace tarnex {

AcRxClass hostClass(std::string name, const AcRxClass* parent, std::string dxfName,
                    std::unique_ptr<AcDbObject> (*create)()) {
  AcRxClass made;
  made.name = std::move(name);
  made.parent = parent;
  made.dxfName = std::move(dxfName);
  made.create = create;
  return made;
}

bool AcRxClassDictionary::add(const AcRxClass& c) {
  if (const AcRxClass* there = at(c.name)) return there == &c;
  classes_.push_back(&c);
  return true;
}

void AcRxClassDictionary::remove(const AcRxClass& c) {
  std::erase(classes_, &c);
}

const AcRxClass* AcRxClassDictionary::at(std::string_view name) const {
  const auto it = std::find_if(classes_.begin(), classes_.end(), [&](auto* c) { return c->name == name; });
  return it == classes_.end() ? nullptr : *it;
}

const AcRxClass* AcRxClassDictionary::atDxfName(std::string_view name) const {
  const auto it = std::find_if(classes_.begin(), classes_.end(), [&](auto* c) { return c->dxfName == name; });
  return it == classes_.end() ? nullptr : *it;
}

const AcRxClass& AcDbObject::desc() {
  static const AcRxClass kClass = hostClass("AcDbObject", nullptr);
  return kClass;
}

AcDbObject::AcDbObject(const AcDbObject& other)
    : sourceOffset_(other.sourceOffset_), sourceLength_(other.sourceLength_), changed_(true) {
  if (other.xdata_) xdata_ = std::make_unique<XData>(*other.xdata_);
}

ErrorStatus AcDbObject::erase() {
  if (!database_) return ErrorStatus::eNotInDatabase;
  if (erased_) return ErrorStatus::eWasErased;
  if (!writer_) return ErrorStatus::eNotOpenForWrite;
  database_->eraseObject(*this);
  return ErrorStatus::eOk;
}

void AcDbObject::prepareForChange() {
  if (database_) database_->prepareForChange(*this);
  writeReady_ = true;
}

ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler& filer) {
  return filer.filerStatus();
}
ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler& filer) const {
  return filer.filerStatus();
}

ResBufChain AcDbObject::xData(const std::string& application) const {
  if (xdata_)
    for (const auto& [name, data] : *xdata_)
      if (name == application) return data;
  return {};
}

void AcDbObject::setXData(const std::string& application, ResBufChain data) {
  if (xData(application) == data) return;
  assertWriteEnabled();
  if (!xdata_) xdata_ = std::make_unique<XData>();
  const auto it = std::find_if(xdata_->begin(), xdata_->end(),
                               [&](const auto& entry) { return entry.first == application; });
  if (data.empty())
    xdata_->erase(it);
  else if (it == xdata_->end())
    xdata_->emplace_back(application, std::move(data));
  else
    it->second = std::move(data);
  if (xdata_->empty()) xdata_.reset();
}

std::vector<std::string> AcDbObject::xDataApplications() const {
  std::vector<std::string> names;
  if (xdata_)
    for (const auto& entry : *xdata_) names.push_back(entry.first);
  return names;
}

}  // namespace tarnex
