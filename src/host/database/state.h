// Inside of the drawing database; for its own parts only.
// Knows the tables of objects, handles and names; not what entities are made of.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/database/blockcontents.h"
#include "host/database/changefeed.h"
#include "host/database/database.h"
#include "host/database/handleindex.h"
#include "host/database/spatialindex.h"
#include "host/database/undojournal.h"

namespace tarnex {

// One symbol table: its records in order of adding, and by name.
class SymbolTable {
 public:
  void add(const AcDbSymbolTableRecord& record);
  void remove(AcDbObjectId id);
  void invalidate() { valid_ = false; }
  [[nodiscard]] const std::vector<AcDbObjectId>& standing(const AcDbDatabase& database);
  [[nodiscard]] AcDbObjectId find(const AcDbDatabase& database, std::string_view name);

 private:
  void rebuild(const AcDbDatabase& database);

  std::vector<AcDbObjectId> all_;  // ascending, erased ones too
  std::vector<AcDbObjectId> standing_;
  std::unordered_map<std::string, AcDbObjectId> byName_;  // in capitals
  bool valid_ = true;
};

struct AcDbDatabase::State {
  explicit State(AcDbDatabase& owner) : database(owner), journal(owner), contents(owner), index(owner) {}

  AcDbObject* at(AcDbObjectId id) { return id.index < objects.size() ? objects[id.index].get() : nullptr; }
  SymbolTable* tableOf(const AcDbObject& object);  // null when it is no table record
  void touch(const AcDbObject& object);            // a change that others may have to follow
  void namesMayDiffer(const AcDbObject& object);   // a record came, went or was renamed
  AcDbObjectId addRecord(SymbolTable& table, std::unique_ptr<AcDbSymbolTableRecord> record,
                         std::uint64_t handle);
  void replace(AcDbObjectId id, std::unique_ptr<AcDbObject> object, std::uint64_t handle);
  // Takes an object into the tables, or out of them; its identity is set already.
  void link(std::unique_ptr<AcDbObject> object);
  std::unique_ptr<AcDbObject> unlink(AcDbObjectId id);
  std::uint64_t handleFor(std::uint64_t wish, AcDbObjectId id);
  void followBlocks();  // references whose block has changed join the feed
  const std::vector<AcDbObjectId>& standingInModelSpace();

  AcDbDatabase& database;
  std::vector<std::unique_ptr<AcDbObject>> objects;  // by id; 0 stays empty, so do undone ones
  HandleIndex handles;
  std::uint64_t nextHandle = 1;
  std::uint32_t defaultObjects = 0;  // ids up to here came with the empty drawing
  SymbolTable layers, linetypes, blocks;
  AcDbObjectId modelSpace, paperSpace, namedObjects, layerZero;
  std::vector<AcDbObjectId> references;  // block references of model space, ascending
  // Entities of model space, ascending. While it is known, what comes joins it; erased ones leave it when it
  // is asked for, so that what was erased long ago isn't looked at again.
  std::vector<AcDbObjectId> standing;
  bool standingKnown = false, someErased = false;
  bool blocksChanged = false;
  UndoJournal journal;
  ChangeFeed feed;
  BlockContents contents;
  SpatialIndex index;
  std::shared_ptr<const int> life = std::make_shared<const int>(0);
};

}  // namespace tarnex
