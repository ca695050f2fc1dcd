// Tables to their place and into a block.
// Knows the host, and no table.
#include "contour/tableblock.h"

#include "contour/hosthelpers.h"
#include "host/platform/format.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

std::string nameOfNow() {
  const LocalTime t = localTime();
  return formatted("VORN%02d%02d%02d%02d%02d", t.month, t.day, t.hour, t.minute, t.second);
}

}  // namespace

std::string makeBlockFromEntities(AcEditor& editor, std::string name, const AcGePoint3d& base,
                                  const SelectionSet& entities) {
  AcDbDatabase& drawing = editor.database();
  if (name.empty()) name = nameOfNow();
  const std::string wanted = name;
  for (int n = 2; !drawing.block(name).isNull(); ++n) name = wanted + formatted("_%d", n);
  auto record = std::make_unique<AcDbBlockTableRecord>();
  record->setName(name);
  record->origin = base;
  const AcDbObjectId block = drawing.addBlock(std::move(record));
  for (AcDbObjectId id : entities) {
    std::unique_ptr<AcDbObject> copy;
    if (auto entity = drawing.open<AcDbEntity>(id, OpenMode::kForWrite)) {
      copy = entity->clone();
      entity->erase();
    }
    if (copy)
      drawing.appendAcDbEntity(block, std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(copy.release())));
  }
  CommandSetting setting(editor);
  setting.cmdEcho(0);
  editor.acedCommand({std::string("insert"), name, base, std::string(), std::string(), std::string()});
  return name;
}

bool placeAsBlock(Module& module, const SelectionSet& entities) {
  AcEditor& editor = module.editor;
  CommandSetting setting(editor);
  setting.world().cmdEcho(0);
  editor.acedInitGet(0, "");
  const auto at = editor.acedDragGen(entities, module.message(480), false);
  if (!at) {
    editor.database().takeBack(entities);
    return false;
  }
  for (AcDbObjectId id : entities)
    if (auto entity = editor.database().open<AcDbEntity>(id, OpenMode::kForWrite))
      (void)entity->transformBy(AcGeMatrix3d::translation({at.value.x, at.value.y, at.value.z}));
  makeBlockFromEntities(editor, "", at.value, entities);
  return true;
}

}  // namespace tarnex
