// Symbol tables and dictionaries: layers, linetypes, blocks, named dictionaries, xrecords.
#pragma once

#include <string>
#include <vector>

#include "host/database/object.h"

namespace tarnex {

class AcDbSymbolTableRecord : public AcDbObject {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  [[nodiscard]] const std::string& getName() const { return name_; }
  void setName(std::string name);

 protected:
  AcDbSymbolTableRecord() = default;
  AcDbSymbolTableRecord(const AcDbSymbolTableRecord&) = default;

 private:
  std::string name_;
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
  [[nodiscard]] bool isOff() const { return off_; }
  [[nodiscard]] bool isFrozen() const { return frozen_; }
  [[nodiscard]] bool isLocked() const { return locked_; }
  [[nodiscard]] bool isPlottable() const { return plottable_; }
  [[nodiscard]] int colorIndex() const { return color_; }
  [[nodiscard]] AcDbObjectId linetypeId() const { return linetype_; }
  void setIsOff(bool v) { change(off_, v); }
  void setIsFrozen(bool v) { change(frozen_, v); }
  void setIsLocked(bool v) { change(locked_, v); }
  void setIsPlottable(bool v) { change(plottable_, v); }
  void setColorIndex(int v) { change(color_, v); }
  void setLinetype(AcDbObjectId v) { change(linetype_, v); }

 private:
  bool off_ = false, frozen_ = false, locked_ = false, plottable_ = true;
  int color_ = 7;
  AcDbObjectId linetype_;
};

class AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
  std::string description;
  std::vector<double> dashes;  // mm: above 0 drawn, below 0 gap, 0 a dot; empty: continuous
};

class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
  AcGePoint3d origin;
  // In drawing order, erased ones too.
  [[nodiscard]] const std::vector<AcDbObjectId>& entities() const { return entities_; }

 private:
  friend class AcDbDatabase;
  friend class UndoJournal;
  std::vector<AcDbObjectId> entities_;
};

class AcDbDictionary : public AcDbObject {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
  [[nodiscard]] bool has(const std::string& key) const;
  // eKeyNotFound when there is none (or it is erased).
  ErrorStatus getAt(const std::string& key, AcDbObjectId& id) const;
  // Adds the object to the dictionary's database; an entry of that key is erased first (its own status when
  // it is open elsewhere). eNotInDatabase for a dictionary outside one.
  ErrorStatus setAt(const std::string& key, std::unique_ptr<AcDbObject> object, AcDbObjectId& id);
  void bind(const std::string& key,
            AcDbObjectId id);                  // for readers of drawing files: the object is there already
  ErrorStatus remove(const std::string& key);  // erases the object too
  struct Entry {
    std::string key;
    AcDbObjectId id;
  };
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

 private:
  std::vector<Entry>::const_iterator find(const std::string& key) const;
  ErrorStatus eraseEntry(AcDbObjectId id);

  std::vector<Entry> entries_;  // in order of adding; keys as given
};

class AcDbXrecord : public AcDbObject {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
  [[nodiscard]] const ResBufChain& rbChain() const { return chain_; }
  void setFromRbChain(ResBufChain chain) { change(chain_, std::move(chain)); }

 private:
  ResBufChain chain_;
};

// An object of the file that the program doesn't know; kept as it was read.
class AcDbKeptObject : public AcDbObject {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
};

}  // namespace tarnex
