// Helpers around every command: variables, coordinate system, model space, windows, macros.
// Knows the host, and nothing of paths.
#include "contour/hosthelpers.h"

#include "contour/geometrylibrary.h"
#include "frame/drawingvars.h"

namespace tarnex {

namespace {

int swapIntVar(AcEditor& editor, const char* name, int value, bool write) {
  const int old = editor.intVar(name);
  if (write && value != old) (void)editor.acedSetVar(name, static_cast<long long>(value));
  return old;
}

int swapDrawingInt(AcDbDatabase& drawing, const char* key, int value) {
  DrawingVars vars(drawing);
  const int old = vars.getInt(key).value_or(0);
  if (value != kLeaveAsIs) vars.setInt(key, value);
  return old;
}

// Unlocks every layer for as long as it lives.
class LayersUnlocked {
 public:
  explicit LayersUnlocked(AcDbDatabase& drawing) : drawing_(drawing) {
    for (AcDbObjectId id : drawing.layers()) {
      const auto* layer = drawing.peek<AcDbLayerTableRecord>(id);
      if (!layer || !layer->isLocked()) continue;
      locked_.push_back(id);
      setLocked(id, false);
    }
  }
  LayersUnlocked(const LayersUnlocked&) = delete;
  LayersUnlocked& operator=(const LayersUnlocked&) = delete;
  ~LayersUnlocked() {
    for (AcDbObjectId id : locked_) setLocked(id, true);
  }

 private:
  void setLocked(AcDbObjectId id, bool locked) {
    if (auto layer = drawing_.open<AcDbLayerTableRecord>(id, OpenMode::kForWrite)) layer->setIsLocked(locked);
  }
  AcDbDatabase& drawing_;
  std::vector<AcDbObjectId> locked_;
};

}  // namespace

int setOsmode(AcEditor& editor, int value) {
  return swapIntVar(editor, "OSMODE", value, value != kLeaveAsIs);
}

int setCmdEcho(AcEditor& editor, int value) {
  return swapIntVar(editor, "CMDECHO", value, value == 0 || value == 1);
}

int setPellipse(AcEditor& editor, int value) {
  return swapIntVar(editor, "PELLIPSE", value, value >= 0);
}

double setTextSize(AcEditor& editor, double value) {
  const double old = editor.realVar("TEXTSIZE");
  if (value != kLeaveAsIs) (void)editor.acedSetVar("TEXTSIZE", value);
  return old;
}

int setSnapFlag(AcDbDatabase& drawing, int value) {
  return swapDrawingInt(drawing, "SNAPFLAG", value);
}
int setSelMask(AcDbDatabase& drawing, int value) {
  return swapDrawingInt(drawing, "SELMASK", value);
}

double viewUnit(const AcEditor& editor) {
  return editor.realVar("VIEWSIZE") * 0.025;
}

AcGePoint3d setUcsOrigin(AcEditor& editor, const std::optional<AcGePoint3d>& p) {
  const AcGePoint3d old = editor.database().ucsorg;
  if (!p) return old;
  const AcDbDatabase& drawing = editor.database();
  const bool turned = drawing.ucsXDir != AcGeVector3d{1, 0, 0} || drawing.ucsYDir != AcGeVector3d{0, 1, 0};
  if (!turned && old == *p) return old;  // it stands already: nothing to run
  const int echo = setCmdEcho(editor, 0);
  editor.acedCommand({std::string("ucs"), std::string("w")});
  editor.acedCommand({std::string("ucs"), std::string("o"), *p});
  setCmdEcho(editor, echo);
  return old;
}

CommandSetting::~CommandSetting() {
  if (origin_) setUcsOrigin(editor_, origin_);
  if (osmode_) setOsmode(editor_, *osmode_);
  if (cmdEcho_) setCmdEcho(editor_, *cmdEcho_);
}

CommandSetting& CommandSetting::world() {
  origin_ = setUcsOrigin(editor_, AcGePoint3d{});
  return *this;
}

CommandSetting& CommandSetting::osmode(int value) {
  osmode_ = setOsmode(editor_, value);
  return *this;
}

CommandSetting& CommandSetting::cmdEcho(int value) {
  cmdEcho_ = setCmdEcho(editor_, value);
  return *this;
}

AcDbObjectId appendToModelSpace(AcDbDatabase& drawing, std::unique_ptr<AcDbEntity> entity, AcDbObjectId layer,
                                int color, std::string_view linetype) {
  entity->setLayer(layer.isNull() ? drawing.currentLayer : layer);
  entity->setColorIndex(color);
  if (!linetype.empty()) entity->setLinetype(drawing.linetype(linetype));
  return drawing.appendAcDbEntity(drawing.modelSpace(), std::move(entity));
}

SelectionSet windowSelect(AcEditor& editor, const AcGePoint3d& first) {
  const auto corner = editor.acedGetCorner(first, "");
  if (const auto named = editor.namedInsteadOfCorner()) return *named;
  if (!corner) return {};
  AcEditor::SelectArgs args;
  args.first = first;
  args.second = corner.value;
  return editor.acedSSGet(first.x > corner.value.x ? "C" : "W", args).value;
}

PickBox pickBoxCorners(const AcEditor& editor, const AcGePoint3d& p) {
  // The angles are those of the host's box, not exactly 45 and 225 degrees.
  const double h = editor.realVar("PICKBOX") * editor.realVar("VIEWSIZE") * 0.006666666666666667 * 0.5;
  return {solid(acutPolar(p.flat(), 0.7333, h)), solid(acutPolar(p.flat(), 3.9269, h))};
}

SelectionSet entitiesAt(AcEditor& editor, const AcGePoint3d& p) {
  const auto box = pickBoxCorners(editor, p);
  AcEditor::SelectArgs args;
  args.first = box.high;
  args.second = box.low;
  return editor.acedSSGet("C", args).value;
}

void waitForEnter(AcEditor& editor) {
  (void)editor.acedGetString(false, "\nPress ENTER to continue... ");
}

void sendToHost(AcEditor& editor, std::string_view text) {
  editor.sendText(text);
}

void runMacro(AcEditor& editor, std::string_view text) {
  std::string line;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    const char c = i < text.size() ? text[i] : '\n';
    if (c == '^') {
      const char control = ++i < text.size() ? text[i] : '\0';
      if (control == 'C') sendToHost(editor, "(command)(princ) ");
      if (control == 'P') {
        sendToHost(editor, "cmdecho ");
        sendToHost(editor, "0 ");
      }
    } else if (c == '\r' || c == '\n') {
      sendToHost(editor, line + " ");
      if (i < text.size()) sleepMilliseconds(10);
      line.clear();
    } else if (c != ';') {
      line += c;
    }
  }
}

void highlightEntity(AcDbDatabase& drawing, AcDbObjectId id) {
  if (auto entity = drawing.open<AcDbEntity>(id)) entity->highlight();
}

void unhighlightEntity(AcDbDatabase& drawing, AcDbObjectId id) {
  if (auto entity = drawing.open<AcDbEntity>(id)) entity->unhighlight();
}

void setEntityColor(AcDbDatabase& drawing, AcDbObjectId id, int color) {
  if (auto entity = drawing.open<AcDbEntity>(id, OpenMode::kForWrite)) entity->setColorIndex(color);
}

void eraseList(AcDbDatabase& drawing, SelectionSet& list) {
  const LayersUnlocked unlocked(drawing);
  for (AcDbObjectId id : list)
    if (auto entity = drawing.open<AcDbEntity>(id, OpenMode::kForWrite)) entity->erase();
  list.clear();
}

}  // namespace tarnex
