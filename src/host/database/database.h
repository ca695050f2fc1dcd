// The drawing: objects by id, tables, named dictionaries, undo, and an index of where entities lie.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/database/entities.h"
#include "host/database/tables.h"

namespace tarnex {

class SpatialIndex;
class UndoJournal;

// What a file reader keeps with the drawing so that it can be written again without loss.
struct DrawingSource {
  virtual ~DrawingSource() = default;
};

class AcDbDatabase {
 public:
  AcDbDatabase();  // empty drawing: layer 0, linetypes, model and paper space, named objects dictionary
  ~AcDbDatabase();
  AcDbDatabase(const AcDbDatabase&) = delete;
  AcDbDatabase& operator=(const AcDbDatabase&) = delete;

  // ---- objects
  // Opens an object: eNullObjectId, eWasErased, eWasOpenForRead/Write, eOnLockedLayer (entities, for write),
  // eNotThatKindOfClass when it isn't a T.
  template <class T>
  [[nodiscard]] Opened<T> open(AcDbObjectId id, OpenMode mode = OpenMode::kForRead) {
    ErrorStatus status = ErrorStatus::eOk;
    AcDbObject* object = openObject(id, mode, T::desc(), status);
    return object ? Opened<T>(static_cast<T*>(object), mode) : Opened<T>(status);
  }
  void closeObject(AcDbObject& object, OpenMode mode);
  // Reading without opening, for loops over many; null when erased or no T. Not to be kept across a change.
  template <class T>
  [[nodiscard]] const T* peek(AcDbObjectId id) const {
    const AcDbObject* object = peekObject(id);
    return object && object->isKindOf(T::desc()) ? static_cast<const T*>(object) : nullptr;
  }
  // Handle 0, or one that another object has, takes the next free one. What the empty drawing came with gives
  // its handles away to those who ask for them by number.
  [[nodiscard]] AcDbObjectId add(std::unique_ptr<AcDbObject> object, AcDbObjectId owner,
                                 std::uint64_t handle = 0);
  // At the end of a block's drawing order. Null when `block` is no block.
  AcDbObjectId appendAcDbEntity(AcDbObjectId block, std::unique_ptr<AcDbEntity> entity,
                                std::uint64_t handle = 0);
  [[nodiscard]] AcDbObjectId idOfHandle(std::uint64_t handle) const;  // null when there is none
  [[nodiscard]] std::uint64_t nextHandle() const;                     // HANDSEED
  void reserveHandlesTo(std::uint64_t last);
  [[nodiscard]] std::size_t objectCount() const;

  // ---- tables
  // Names compare without regard to case (ASCII). Null when there is none. Adding a record under a name that
  // is there puts it in the old one's place: same id, and for a block the same entities.
  [[nodiscard]] AcDbObjectId layer(std::string_view name) const;
  [[nodiscard]] AcDbObjectId linetype(std::string_view name) const;
  [[nodiscard]] AcDbObjectId block(std::string_view name) const;
  AcDbObjectId addLayer(std::unique_ptr<AcDbLayerTableRecord> record, std::uint64_t handle = 0);
  AcDbObjectId addLinetype(std::unique_ptr<AcDbLinetypeTableRecord> record, std::uint64_t handle = 0);
  AcDbObjectId addBlock(std::unique_ptr<AcDbBlockTableRecord> record, std::uint64_t handle = 0);
  [[nodiscard]] const std::vector<AcDbObjectId>& layers() const;
  [[nodiscard]] const std::vector<AcDbObjectId>& linetypes() const;
  [[nodiscard]] const std::vector<AcDbObjectId>& blocks() const;
  // Loads a linetype by name from the host's own set (CONTINUOUS, Acad_iso02W100, Acad_iso03W100, ...) if it
  // isn't there.
  AcDbObjectId loadLineTypeFile(std::string_view name);
  [[nodiscard]] AcDbObjectId modelSpace() const;
  [[nodiscard]] AcDbObjectId paperSpace() const;
  [[nodiscard]] AcDbObjectId namedObjectsDictionary() const;
  [[nodiscard]] std::string layerName(AcDbObjectId layer) const;  // "0" for null
  // On, thawed and (for the entity) visible and not hidden.
  [[nodiscard]] bool isShown(const AcDbEntity& entity) const;
  [[nodiscard]] int effectiveColor(const AcDbEntity& entity) const;  // by layer resolved

  // Entities of model space that stand, in drawing order.
  [[nodiscard]] std::vector<AcDbObjectId> modelSpaceEntities() const;

  // ---- header
  AcGePoint3d ucsorg;  // origin of the current user coordinate system, world
  AcGeVector3d ucsXDir{1, 0, 0}, ucsYDir{0, 1, 0};
  AcDbObjectId currentLayer;  // null: layer "0"
  int currentColor = kColorByLayer;
  std::map<std::string, ResBuf>
      headerVariables;                  // "$INSUNITS" and so on, as the program changed or needs them
  std::string dwgName = "Drawing.dxf";  // host variable DWGNAME, without folder
  std::string dwgPrefix;                // folder it was read from, with the separator
  std::unique_ptr<DrawingSource> source;

  // ---- undo
  // Everything that changes between a mark and the next is one step.
  void startUndoMark(std::string label);
  void endUndoMark();  // an empty step vanishes
  void rollBack();     // undoes the running step, for a cancelled command
  // Entities that the running step appended go as if they had never been: the step has nothing of them, their
  // handles are free again. For marks that a command shows for a moment. Others are left alone; without a
  // running step all are erased.
  void takeBack(std::vector<AcDbObjectId> marks);
  bool undo(std::string* label = nullptr);  // false when there is nothing
  bool redo(std::string* label = nullptr);
  void forgetUndo();  // after reading a drawing
  [[nodiscard]] bool modifiedSinceSave() const;
  void markSaved();

  // ---- where things lie
  // Model space entities whose extents touch the box, in drawing order; hidden layers too.
  [[nodiscard]] std::vector<AcDbObjectId> entitiesTouching(const Extents2d& box) const;
  [[nodiscard]] Extents2d drawingExtents() const;  // of what is shown
  // Counts up with every append, change, erase and undo of a model space entity.
  [[nodiscard]] std::uint64_t changeStamp() const;
  // Ids touched since the stamp, sorted, each once (erased ones too); false when the feed no longer reaches
  // back.
  [[nodiscard]] bool changesSince(std::uint64_t stamp, std::vector<AcDbObjectId>& ids) const;
  // Counts an entity as touched: what it is drawn with has changed, though the drawing hasn't.
  void noteChange(AcDbObjectId id);
  // Lives as long as the drawing. Who keeps something beside a drawing knows by it that a later one isn't the
  // same, though it lies in the same memory.
  [[nodiscard]] std::weak_ptr<const void> life() const;

 private:
  friend class AcDbObject;
  friend class AcDbSymbolTableRecord;
  friend class UndoJournal;
  friend class BlockContents;
  void prepareForChange(AcDbObject& object);
  void eraseObject(AcDbObject& object);
  void namesChanged();
  AcDbObject* openObject(AcDbObjectId id, OpenMode mode, const AcRxClass& kind, ErrorStatus& status);
  const AcDbObject* peekObject(AcDbObjectId id) const;
  struct State;
  std::unique_ptr<State> state_;
};

template <class T>
void Opened<T>::close() {
  if (!object_) return;
  object_->database()->closeObject(*object_, mode_);
  object_ = nullptr;
}

template <class T>
ErrorStatus Opened<T>::downgradeOpen() {
  if (!object_ || mode_ != OpenMode::kForWrite) return ErrorStatus::eNotOpenForWrite;
  AcDbDatabase& database = *object_->database();
  const AcDbObjectId id = object_->objectId();
  close();
  *this = database.open<T>(id, OpenMode::kForRead);
  return status_;
}

template <class T>
ErrorStatus Opened<T>::upgradeOpen() {
  if (!object_) return status_;
  if (mode_ == OpenMode::kForWrite) return ErrorStatus::eOk;
  AcDbDatabase& database = *object_->database();
  const AcDbObjectId id = object_->objectId();
  close();
  *this = database.open<T>(id, OpenMode::kForWrite);
  const ErrorStatus status = status_;
  if (!object_) *this = database.open<T>(id, OpenMode::kForRead);
  return status;
}

}  // namespace tarnex
