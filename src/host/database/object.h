// Objects of a drawing: identity, opening, erasing, undo. What kinds of objects there are stands in the other
// headers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/database/filer.h"
#include "host/database/resbuf.h"
#include "host/database/rxclass.h"
#include "host/database/status.h"

namespace tarnex {

class AcDbDatabase;

// Names an object of one database for as long as the database lives. Ids grow in the order of appending, so
// sorting by id is drawing order.
struct AcDbObjectId {
  std::uint32_t index = 0;
  [[nodiscard]] bool isNull() const { return index == 0; }
  auto operator<=>(const AcDbObjectId&) const = default;
};

enum class OpenMode { kForRead, kForWrite };

// Where an object stood in the file that the drawing was read from; length 0: nowhere.
struct SourceRef {
  std::uint64_t offset = 0;
  std::uint32_t length = 0;
};

class AcDbObject {
 public:
  AcDbObject() = default;
  virtual ~AcDbObject() = default;
  static const AcRxClass& desc();
  [[nodiscard]] virtual const AcRxClass& isA() const { return desc(); }
  [[nodiscard]] bool isKindOf(const AcRxClass& c) const { return isA().isDerivedFrom(c); }

  [[nodiscard]] AcDbObjectId objectId() const { return id_; }
  [[nodiscard]] AcDbDatabase* database() const { return database_; }
  [[nodiscard]] AcDbObjectId ownerId() const { return owner_; }  // block, table or dictionary that holds it
  [[nodiscard]] std::uint64_t handle() const { return handle_; }
  [[nodiscard]] bool isErased() const { return erased_; }
  [[nodiscard]] bool isWriteEnabled() const { return writer_; }  // open for write

  // Marks the object erased: eNotInDatabase, eNotOpenForWrite, or eWasErased when it is already.
  ErrorStatus erase();

  // A copy outside any database, with the same source reference and marked as changed.
  [[nodiscard]] virtual std::unique_ptr<AcDbObject> clone() const = 0;
  virtual ErrorStatus dwgInFields(AcDbDwgFiler& filer);  // the base class stores nothing
  virtual ErrorStatus dwgOutFields(AcDbDwgFiler& filer) const;

  // Extended data of one application, without the leading 1001; empty when there is none.
  [[nodiscard]] ResBufChain xData(const std::string& application) const;
  void setXData(const std::string& application, ResBufChain data);  // empty data removes it
  [[nodiscard]] std::vector<std::string> xDataApplications() const;

  // Everything that is about to change says so first: the journal then keeps the state before the change,
  // once per command. Objects outside a database may always change. std::logic_error: in a database and not
  // open for write.
  void assertWriteEnabled() {
    if (!writeReady_) prepareForChange();
  }

  [[nodiscard]] SourceRef source() const { return {sourceOffset_, sourceLength_}; }
  void setSource(SourceRef s) {
    sourceOffset_ = s.offset;
    sourceLength_ = s.length;
  }
  [[nodiscard]] bool changedSinceRead() const { return changed_; }

 protected:
  AcDbObject(const AcDbObject& other);  // content without identity
  AcDbObject& operator=(const AcDbObject&) = delete;
  // Sets a field; a value that is there already is no change, so the object still counts as read.
  template <class Field>
  void change(Field& field, Field value) {
    if (field == value) return;
    assertWriteEnabled();
    field = std::move(value);
  }

 private:
  friend class AcDbDatabase;
  friend class UndoJournal;
  using XData = std::vector<std::pair<std::string, ResBufChain>>;
  void prepareForChange();

  // Large drawings hold many of them: large members come first, so that nothing is lost to alignment.
  AcDbDatabase* database_ = nullptr;
  std::uint64_t handle_ = 0;
  std::uint64_t sourceOffset_ = 0;
  std::unique_ptr<XData> xdata_;
  std::uint32_t sourceLength_ = 0;
  AcDbObjectId id_, owner_;
  std::int16_t readers_ = 0;
  bool writer_ = false, writeReady_ = false, erased_ = false, changed_ = false;
};

// An opened object; closes itself. Empty when it couldn't be opened (status() tells why).
template <class T>
class Opened {
 public:
  Opened() = default;
  explicit Opened(ErrorStatus why) : status_(why) {}
  Opened(T* object, OpenMode mode) : object_(object), mode_(mode), status_(ErrorStatus::eOk) {}
  Opened(Opened&& o) noexcept
      : object_(std::exchange(o.object_, nullptr)), mode_(o.mode_), status_(o.status_) {}
  Opened& operator=(Opened&& o) noexcept {
    if (this != &o) {
      close();
      object_ = std::exchange(o.object_, nullptr);
      mode_ = o.mode_;
      status_ = o.status_;
    }
    return *this;
  }
  ~Opened() { close(); }
  void close();  // early, so that the object can be opened again
  // From write to read while others, or a prompt, may look at it: eNotOpenForWrite when it isn't.
  ErrorStatus downgradeOpen();
  // Back to write: what `open` for write answers (eWasOpenForRead while others read, eOnLockedLayer, ...); it
  // is open for read then as before, or no longer when it was erased meanwhile. The object may be another one
  // than before the prompt: take it from here again.
  ErrorStatus upgradeOpen();

  explicit operator bool() const { return object_ != nullptr; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  [[nodiscard]] T* get() const { return object_; }
  [[nodiscard]] ErrorStatus status() const { return status_; }

 private:
  T* object_ = nullptr;
  OpenMode mode_ = OpenMode::kForRead;
  ErrorStatus status_ = ErrorStatus::eNullObjectId;
};

}  // namespace tarnex
