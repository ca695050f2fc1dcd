// Commands that change what is drawn: erase, move, copy, rotate, mirror, scale, explode, and u with redo.
// Knows no application.
#include "host/editor/hostcommands.h"

#include <cmath>

#include "host/editor/state.h"
#include "host/editor/ucs.h"

namespace tarnex {

namespace {

std::optional<SelectionSet> askSet(AcEditor& editor) {
  auto set = editor.acedSSGet("");
  if (!set) return std::nullopt;
  return std::move(set.value);
}

void tellLeftAlone(AcEditor& editor, std::size_t count, const char* why) {
  if (count == 0) return;
  editor.print(std::to_string(count) + (count == 1 ? " was " : " were ") + why + "\n");
  editor.commandFailed();
}

// Opens each of the set for writing and counts those that couldn't be, or for which `change` says no.
template <class Change>
void changeEach(AcEditor& editor, const SelectionSet& set, Change change) {
  std::size_t locked = 0, refused = 0;
  for (const auto id : set) {
    auto entity = editor.database().open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!entity)
      ++locked;
    else if (change(*entity) != ErrorStatus::eOk)
      ++refused;
  }
  tellLeftAlone(editor, locked, "on a locked layer and stayed as it was.");
  tellLeftAlone(editor, refused, "of a kind that can't be changed so and stayed as it was.");
}

void transformEach(AcEditor& editor, const SelectionSet& set, const AcGeMatrix3d& m) {
  changeEach(editor, set, [&](AcDbEntity& e) { return e.transformBy(m); });
}

void copyEach(AcEditor& editor, const SelectionSet& set, const AcGeMatrix3d& m) {
  auto& db = editor.database();
  std::size_t refused = 0;
  for (const auto id : set) {
    const auto* entity = db.peek<AcDbEntity>(id);
    if (!entity) continue;
    std::unique_ptr<AcDbEntity> copy(static_cast<AcDbEntity*>(entity->clone().release()));
    if (copy->transformBy(m) == ErrorStatus::eOk)
      db.appendAcDbEntity(db.modelSpace(), std::move(copy));
    else
      ++refused;
  }
  tellLeftAlone(editor, refused, "of a kind that can't be copied so.");
}

// Base point and second point, or a displacement and Enter: the way from one to the other, world.
std::optional<AcGeVector3d> askDisplacement(AcEditor& editor) {
  const auto base = askWorldPoint(editor, "Specify base point or displacement: ");
  if (!base) return std::nullopt;
  const auto to =
      askWorldPoint(editor, "Specify second point or <use first point as displacement>: ", &base.value);
  if (to) return to.value - base.value;
  if (to.reply != Reply::RTNONE) return std::nullopt;
  const auto& org = editor.database().ucsorg;
  return base.value - org;
}

}  // namespace

void eraseCommand(AcEditor& editor) {
  if (const auto set = askSet(editor)) changeEach(editor, *set, [](AcDbEntity& e) { return e.erase(); });
}

void moveCommand(AcEditor& editor) {
  const auto set = askSet(editor);
  const auto by = set ? askDisplacement(editor) : std::nullopt;
  if (by) transformEach(editor, *set, AcGeMatrix3d::translation(*by));
}

void copyCommand(AcEditor& editor) {
  const auto set = askSet(editor);
  const auto by = set ? askDisplacement(editor) : std::nullopt;
  if (by) copyEach(editor, *set, AcGeMatrix3d::translation(*by));
}

void rotateCommand(AcEditor& editor) {
  const auto set = askSet(editor);
  if (!set) return;
  const auto base = askWorldPoint(editor, "Specify base point: ");
  if (!base) return;
  const AcGePoint3d at = worldToUcs(editor.database(), base.value);
  const auto angle = editor.acedGetAngle("Specify rotation angle: ", &at);
  if (angle) transformEach(editor, *set, AcGeMatrix3d::rotation(angle.value, base.value.flat()));
}

void mirrorCommand(AcEditor& editor) {
  const auto set = askSet(editor);
  if (!set) return;
  const auto first = askWorldPoint(editor, "Specify first point of mirror line: ");
  if (!first) return;
  const auto second = askWorldPoint(editor, "Specify second point of mirror line: ", &first.value);
  if (!second) return;
  if (first.value.flat() == second.value.flat()) {
    editor.print("A mirror line needs two different points.\n");
    return editor.commandFailed();
  }
  editor.acedInitGet(0, "Yes No");
  const auto answer = editor.acedGetKword("Erase source objects? [Yes/No] <No>: ");
  if (answer.reply == Reply::RTCAN) return;
  const auto m = AcGeMatrix3d::mirroring(first.value.flat(), second.value.flat());
  if (answer && answer.value == "Yes")
    transformEach(editor, *set, m);
  else
    copyEach(editor, *set, m);
}

void scaleCommand(AcEditor& editor) {
  const auto set = askSet(editor);
  if (!set) return;
  const auto base = askWorldPoint(editor, "Specify base point: ");
  if (!base) return;
  editor.acedInitGet(kNoEnter | kNotZero | kNotNegative, "");
  const auto factor = editor.acedGetReal("Specify scale factor: ");
  if (factor) transformEach(editor, *set, AcGeMatrix3d::scaling(factor.value, base.value.flat()));
}

void explodeCommand(AcEditor& editor) {
  const auto set = askSet(editor);
  if (!set) return;
  auto& db = editor.database();
  std::vector<std::unique_ptr<AcDbEntity>> parts;
  changeEach(editor, *set, [&](AcDbEntity& e) {
    parts.clear();
    const ErrorStatus status = e.explode(parts);
    if (status != ErrorStatus::eOk) return status;
    for (auto& part : parts) db.appendAcDbEntity(db.modelSpace(), std::move(part));
    return e.erase();
  });
}

void undoCommand(AcEditor& editor) {
  std::string label;
  if (!editor.database().undo(&label)) return editor.print("Nothing to undo.\n");
  editor.print("Undone: " + label + "\n");
  for (const auto& hook : editor.afterUndo) hook();
}

void redoCommand(AcEditor& editor) {
  std::string label;
  if (!editor.database().redo(&label)) return editor.print("Nothing to redo.\n");
  editor.print("Done again: " + label + "\n");
  for (const auto& hook : editor.afterUndo) hook();
}

}  // namespace tarnex
