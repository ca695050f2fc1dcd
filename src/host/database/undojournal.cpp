// Undo by exchanging whole states, newest first.
// Knows states of whole objects; not what is in them.
#include "host/database/undojournal.h"

#include <algorithm>

#include "host/database/state.h"

namespace tarnex {

// True when a step runs and has taken the change.
bool UndoJournal::record(Change change) {
  for (Step& s : undone_) discard(std::move(s));
  undone_.clear();
  if (!running_) {
    state_ = ++lastState_;
    savedState_ = 0;  // no undo leads back to what was saved
    return false;
  }
  step_.changes.push_back(std::move(change));
  return true;
}

void UndoJournal::appending(AcDbObjectId id) {
  record({Kind::kAppended, id, nullptr});
}
void UndoJournal::erasing(AcDbObjectId id) {
  record({Kind::kErased, id, nullptr});
}

void UndoJournal::changing(AcDbObject& object) {
  ready_.push_back(object.id_);
  if (running_ && object.id_.index >= step_.firstNewId) return;  // undoing takes it away as a whole
  std::unique_ptr<AcDbObject> before;
  if (running_) {
    before = object.clone();
    before->database_ = object.database_;
    before->id_ = object.id_;
    before->owner_ = object.owner_;
    before->handle_ = object.handle_;
    before->erased_ = object.erased_;
    before->changed_ = object.changed_;
    if (before->isKindOf(AcDbBlockTableRecord::desc()))
      static_cast<AcDbBlockTableRecord&>(*before).entities_ = {};
  }
  record({Kind::kChanged, object.id_, std::move(before)});
}

void UndoJournal::replacing(std::unique_ptr<AcDbObject> old) {
  const AcDbObjectId id = old->id_;
  record({Kind::kChanged, id, std::move(old)});
}

// The next change of any object asks again.
void UndoJournal::closeReady() {
  for (const AcDbObjectId id : ready_)
    if (AcDbObject* object = database_.state_->at(id)) object->writeReady_ = false;
  ready_.clear();
}

void UndoJournal::start(std::string label) {
  end();
  closeReady();
  std::erase_if(parted_, [](const auto& object) { return object->readers_ == 0 && !object->writer_; });
  auto& state = *database_.state_;
  running_ = true;
  step_ = {};
  step_.label = std::move(label);
  step_.handleBefore = state.nextHandle;
  step_.stateBefore = state_;
  step_.firstNewId = static_cast<std::uint32_t>(state.objects.size());
}

void UndoJournal::end() {
  if (!running_) return;
  running_ = false;
  closeReady();
  if (step_.changes.empty()) return;
  step_.handleAfter = database_.state_->nextHandle;
  state_ = step_.stateAfter = ++lastState_;
  step_.changes.shrink_to_fit();
  done_.push_back(std::move(step_));
  step_ = {};
}

void UndoJournal::rollBack() {
  if (!running_) return;
  running_ = false;
  closeReady();
  step_.handleAfter = database_.state_->nextHandle;
  undoStep(step_);
  discard(std::move(step_));
  step_ = {};
}

void UndoJournal::takeBack(std::vector<AcDbObjectId> ids) {
  auto& state = *database_.state_;
  std::erase_if(ids, [&](AcDbObjectId id) { return id.index < step_.firstNewId || !state.at(id); });
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  const auto taken = [&](AcDbObjectId id) { return std::binary_search(ids.begin(), ids.end(), id); };
  std::erase_if(step_.changes, [&](const Change& change) { return taken(change.id); });
  std::erase_if(ready_, taken);
  for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
    auto object = state.unlink(*id);
    if (state.nextHandle == object->handle_ + 1) state.nextHandle = object->handle_;
    if (object->readers_ != 0 || object->writer_) parted_.push_back(std::move(object));
  }
}

bool UndoJournal::undo(std::string* label) {
  if (done_.empty() || (running_ && !step_.changes.empty())) return false;
  closeReady();
  undoStep(done_.back());
  if (label) *label = done_.back().label;
  undone_.push_back(std::move(done_.back()));
  done_.pop_back();
  standOnNewState();
  return true;
}

bool UndoJournal::redo(std::string* label) {
  if (undone_.empty() || (running_ && !step_.changes.empty())) return false;
  closeReady();
  redoStep(undone_.back());
  if (label) *label = undone_.back().label;
  done_.push_back(std::move(undone_.back()));
  undone_.pop_back();
  standOnNewState();
  return true;
}

// An empty step that runs while another is undone (the undo command's own) begins after it.
void UndoJournal::standOnNewState() {
  step_.stateBefore = state_;
  step_.handleBefore = database_.state_->nextHandle;
}

void UndoJournal::forget() {
  for (Step& s : done_) discard(std::move(s));
  for (Step& s : undone_) discard(std::move(s));
  done_.clear();
  undone_.clear();
}

bool UndoJournal::modifiedSinceSave() const {
  return state_ != savedState_ || (running_ && !step_.changes.empty());
}

void UndoJournal::markSaved() {
  if (running_ && !step_.changes.empty()) state_ = ++lastState_;
  savedState_ = state_;
}

void UndoJournal::undoStep(Step& step) {
  for (auto it = step.changes.rbegin(); it != step.changes.rend(); ++it) undoChange(*it);
  auto& state = *database_.state_;
  if (state.nextHandle == step.handleAfter) state.nextHandle = step.handleBefore;
  state_ = step.stateBefore;
}

void UndoJournal::redoStep(Step& step) {
  for (Change& change : step.changes) redoChange(change);
  auto& state = *database_.state_;
  state.nextHandle = std::max(state.nextHandle, step.handleAfter);
  state_ = step.stateAfter;
}

void UndoJournal::undoChange(Change& change) {
  auto& state = *database_.state_;
  switch (change.kind) {
    case Kind::kAppended:
      change.other = state.unlink(change.id);
      break;
    case Kind::kChanged:
      swapState(change);
      break;
    case Kind::kErased:
      setErased(change.id, false);
      break;
  }
}

void UndoJournal::redoChange(Change& change) {
  auto& state = *database_.state_;
  switch (change.kind) {
    case Kind::kAppended:
      state.link(std::move(change.other));
      break;
    case Kind::kChanged:
      swapState(change);
      break;
    case Kind::kErased:
      setErased(change.id, true);
      break;
  }
}

void UndoJournal::setErased(AcDbObjectId id, bool erased) {
  auto& state = *database_.state_;
  AcDbObject& object = *state.at(id);
  object.erased_ = erased;
  state.standingKnown = false;
  state.namesMayDiffer(object);
  state.touch(object);
}

// Pointers are exchanged, never contents: an object may be of a class that is derived elsewhere.
void UndoJournal::swapState(Change& change) {
  auto& state = *database_.state_;
  auto& slot = state.objects[change.id.index];
  std::swap(slot, change.other);
  slot->writeReady_ = false;
  state.standingKnown = false;
  if (slot->isKindOf(AcDbBlockTableRecord::desc()))  // the list of entities follows appending, not the state
    std::swap(static_cast<AcDbBlockTableRecord&>(*slot).entities_,
              static_cast<AcDbBlockTableRecord&>(*change.other).entities_);
  if (slot->handle_ != change.other->handle_) {
    state.handles.remove(change.other->handle_);
    state.handles.insert(slot->handle_, slot->id_);
  }
  state.namesMayDiffer(*slot);
  state.touch(*slot);
}

// Drops a step for good; what somebody still has open lives on until it is closed.
void UndoJournal::discard(Step step) {
  for (Change& change : step.changes)
    if (change.other && (change.other->readers_ != 0 || change.other->writer_))
      parted_.push_back(std::move(change.other));
}

}  // namespace tarnex
