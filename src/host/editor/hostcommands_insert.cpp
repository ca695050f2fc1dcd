// The command that inserts a block or a whole drawing file.
// Knows no application.
#include "host/editor/answers.h"
#include "host/editor/blockimport.h"
#include "host/editor/drawingfile.h"
#include "host/editor/hostcommands.h"
#include "host/editor/state.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

void fail(AcEditor& editor, const std::string& why) {
  editor.print(why + "\n");
  editor.commandFailed();
}

// A DXF beside a DWG of that name goes first, since it is read without a converter.
std::optional<std::string> drawingFileFor(const std::string& name) {
  std::string stem = name;
  if (const auto dot = name.rfind('.');
      dot != std::string::npos && equalIgnoringCase(name.substr(dot), ".dwg"))
    stem.erase(dot);
  for (const auto& candidate : {stem + ".dxf", name, name + ".dwg"})
    if (const auto path = realPath(candidate); fileExists(path) && !isFolder(path)) return path;
  return std::nullopt;
}

AcDbObjectId blockFromFile(AcEditor& editor, const std::string& path) {
  std::string name = fileNameOf(path);
  if (const auto dot = name.rfind('.'); dot != std::string::npos && dot > 0) name.erase(dot);
  if (const auto there = editor.database().block(name); !there.isNull()) return there;
  const auto load = loadDrawing(path, &editor.classes());
  if (!load.drawing) {
    fail(editor, load.failure);
    return {};
  }
  const auto import = importAsBlock(editor.database(), *load.drawing, name);
  if (import.leftOut > 0)
    editor.print(path + ": " + std::to_string(import.leftOut) +
                 " entities can't be copied and were left out\n");
  return import.block;
}

AcDbObjectId blockNamed(AcEditor& editor, const std::string& name) {
  if (const auto block = editor.database().block(name); !block.isNull()) return block;
  if (const auto path = drawingFileFor(name)) return blockFromFile(editor, *path);
  fail(editor, "There is neither a block nor a drawing file \"" + name + "\".");
  return {};
}

}  // namespace

void insertCommand(AcEditor& editor) {
  const auto name = editor.acedGetString(false, "Enter block name or drawing file: ");
  if (!name || trimmed(name.value).empty()) return;
  const auto block = blockNamed(editor, std::string(trimmed(name.value)));
  if (block.isNull()) return;
  const auto at = askWorldPoint(editor, "Specify insertion point: ");
  if (!at) return;
  editor.acedInitGet(kNotZero, "");
  const auto x = orStanding(editor.acedGetReal("Enter X scale factor <1>: "), 1.0);
  if (!x) return;
  editor.acedInitGet(kNotZero, "");
  const auto y = orStanding(editor.acedGetReal("Enter Y scale factor <use X scale factor>: "), *x);
  if (!y) return;
  const auto rotation = orStanding(editor.acedGetAngle("Specify rotation angle <0>: "), 0.0);
  if (!rotation) return;
  auto reference = std::make_unique<AcDbBlockReference>(block, at.value);
  reference->scaleX = *x, reference->scaleY = *y, reference->scaleZ = *x;
  reference->rotation = *rotation;
  appendNew(editor, std::move(reference));
}

}  // namespace tarnex
