// The command that makes and changes layers.
// Knows no application.
#include "host/editor/answers.h"
#include "host/editor/filter.h"
#include "host/editor/hostcommands.h"

namespace tarnex {

namespace {

void fail(AcEditor& editor, const std::string& why) {
  editor.print(why + "\n");
  editor.commandFailed();
}

std::string askNames(AcEditor& editor, const std::string& what) {
  const auto names = editor.acedGetString(false, what + ": ");
  return names ? std::string(trimmed(names.value)) : std::string();
}

// Each layer whose name fits the pattern, opened for writing.
template <class Change>
void changeLayers(AcEditor& editor, const std::string& pattern, Change change) {
  if (pattern.empty()) return;
  auto& db = editor.database();
  std::size_t count = 0;
  for (const auto id : db.layers()) {
    const auto* layer = db.peek<AcDbLayerTableRecord>(id);
    if (!layer || !matchesWildcard(layer->getName(), pattern)) continue;
    if (auto opened = db.open<AcDbLayerTableRecord>(id, OpenMode::kForWrite)) change(*opened);
    ++count;
  }
  if (count == 0) fail(editor, "No layer is named \"" + pattern + "\".");
}

bool isLayerName(const std::string& name) {
  return !name.empty() && name.find_first_of("<>/\\\":;?*|,=`") == std::string::npos;
}

AcDbObjectId layerMade(AcEditor& editor, const std::string& name) {
  auto& db = editor.database();
  if (const auto there = db.layer(name); !there.isNull()) return there;
  if (!isLayerName(name)) {
    if (!name.empty()) fail(editor, "\"" + name + "\" can't be the name of a layer.");
    return {};
  }
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName(name);
  return db.addLayer(std::move(record));
}

void setCurrent(AcEditor& editor, const std::string& name) {
  if (name.empty()) return;
  if (!editor.acedSetVar("CLAYER", SysVar(name))) fail(editor, "No layer is named \"" + name + "\".");
}

void colourLayers(AcEditor& editor) {
  editor.acedInitGet(1, "");
  const auto colour = editor.acedGetInt("Color number, 1 to 255: ");
  if (!colour) return;
  if (colour.value < 1 || colour.value > 255) return fail(editor, "Colors are numbered from 1 to 255.");
  changeLayers(editor, askNames(editor, "Layers for that color"),
               [&](AcDbLayerTableRecord& l) { l.setColorIndex(colour.value); });
}

void linetypeLayers(AcEditor& editor) {
  const std::string name = askNames(editor, "Linetype");
  if (name.empty()) return;
  const auto linetype = editor.database().loadLineTypeFile(name);
  if (linetype.isNull()) return fail(editor, "There is no linetype \"" + name + "\".");
  changeLayers(editor, askNames(editor, "Layers for that linetype"),
               [&](AcDbLayerTableRecord& l) { l.setLinetype(linetype); });
}

void listLayers(AcEditor& editor) {
  const auto& db = editor.database();
  for (const auto id : db.layers()) {
    const auto* layer = db.peek<AcDbLayerTableRecord>(id);
    if (!layer) continue;
    std::string line = layer->getName() + "  color " + std::to_string(layer->colorIndex());
    if (layer->isOff()) line += ", off";
    if (layer->isFrozen()) line += ", frozen";
    if (layer->isLocked()) line += ", locked";
    if (!layer->isPlottable()) line += ", not plotted";
    editor.print(line + "\n");
  }
}

void runOption(AcEditor& editor, const std::string& option) {
  if (option == "?") return listLayers(editor);
  if (option == "Color") return colourLayers(editor);
  if (option == "LType") return linetypeLayers(editor);
  const std::string names = askNames(editor, option == "Set" || option == "Make" || option == "New"
                                                 ? "Name of the layer"
                                                 : "Names of the layers, * for all");
  if (option == "Set") return setCurrent(editor, names);
  if (option == "New") return (void)layerMade(editor, names);
  if (option == "Make") {
    if (!layerMade(editor, names).isNull()) setCurrent(editor, names);
    return;
  }
  changeLayers(editor, names, [&](AcDbLayerTableRecord& l) {
    if (option == "ON" || option == "OFF") l.setIsOff(option == "OFF");
    if (option == "Freeze" || option == "Thaw") l.setIsFrozen(option == "Freeze");
    if (option == "LOck" || option == "Unlock") l.setIsLocked(option == "LOck");
  });
}

}  // namespace

void layerCommand(AcEditor& editor) {
  for (;;) {
    editor.acedInitGet(0, "? Make Set New ON OFF Color LType Freeze Thaw LOck Unlock");
    const auto option = editor.acedGetKword(
        "\nEnter an option [?/Make/Set/New/ON/OFF/Color/LType/Freeze/Thaw/LOck/Unlock]: ");
    if (!option) return;
    runOption(editor, option.value);
  }
}

}  // namespace tarnex
