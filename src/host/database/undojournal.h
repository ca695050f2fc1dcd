// What changed, command by command, so that it can be undone and done again to the last bit.
// Knows states of whole objects; not what is in them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/database/database.h"

namespace tarnex {

class UndoJournal {
 public:
  explicit UndoJournal(AcDbDatabase& database) : database_(database) {}

  // ---- before the change; without a running step nothing is kept, and what could be done again is forgotten
  // ----
  void appending(AcDbObjectId id);
  void changing(AcDbObject& object);  // keeps a copy of its state
  void erasing(AcDbObjectId id);
  void replacing(std::unique_ptr<AcDbObject> old);  // another object takes its place and id

  // ---- steps
  void start(std::string label);
  void end();
  void rollBack();
  void takeBack(std::vector<AcDbObjectId> ids);  // what the running step appended, without a trace
  bool undo(std::string* label);
  bool redo(std::string* label);
  void forget();
  [[nodiscard]] bool running() const { return running_; }
  [[nodiscard]] bool modifiedSinceSave() const;
  void markSaved();

 private:
  enum class Kind : std::uint8_t { kAppended, kChanged, kErased };
  struct Change {
    Kind kind;
    AcDbObjectId id;
    // kChanged: the other state of the object. kAppended: the object itself while it is undone.
    std::unique_ptr<AcDbObject> other;
  };
  struct Step {
    std::string label;
    std::vector<Change> changes;
    std::uint64_t handleBefore = 0, handleAfter = 0;  // next free handle
    std::uint64_t stateBefore = 0, stateAfter = 0;    // numbers of the drawing's states
    std::uint32_t firstNewId = 0;                     // ids from here on were appended in this step
  };
  bool record(Change change);
  void closeReady();
  void undoChange(Change& change);
  void redoChange(Change& change);
  void swapState(Change& change);
  void setErased(AcDbObjectId id, bool erased);
  void standOnNewState();
  void undoStep(Step& step);
  void redoStep(Step& step);
  void discard(Step step);

  AcDbDatabase& database_;
  bool running_ = false;
  Step step_;
  std::vector<Step> done_, undone_;
  std::vector<AcDbObjectId> ready_;                  // objects that need not ask again before a change
  std::vector<std::unique_ptr<AcDbObject>> parted_;  // states taken away while somebody had them open
  std::uint64_t state_ = 1, savedState_ = 1, lastState_ = 1;
};

}  // namespace tarnex
