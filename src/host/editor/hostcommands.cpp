// The table of the host's own commands, and what they share.
// Knows no application.
#include "host/editor/hostcommands.h"

#include "host/editor/ucs.h"

namespace tarnex {

namespace {

struct Row {
  const char* name;
  const char* shortName;
  void (*run)(AcEditor&);
  int flags;
  const char* help;
};

constexpr int kModal = ACRX_CMD_MODAL, kTransparent = ACRX_CMD_TRANSPARENT, kNoStep = ACRX_CMD_NO_UNDO_MARKER;

constexpr Row kRows[] = {
    {"OPEN", "", openCommand, kNoStep, "reads a drawing file"},
    {"SAVE", "", saveCommand, kNoStep, "writes the drawing file"},
    {"SAVEAS", "", saveAsCommand, kNoStep, "writes the drawing under another name"},
    {"NEW", "", newCommand, kNoStep, "starts an empty drawing"},
    {"QUIT", "EXIT", quitCommand, kNoStep, "ends the program"},
    {"SCRIPT", "", scriptCommand, kNoStep, "takes answers from a file"},
    {"U", "UNDO", undoCommand, kNoStep, "takes the last command back"},
    {"REDO", "", redoCommand, kNoStep, "does again what U took back"},
    {"LINE", "L", lineCommand, kModal, "draws lines"},
    {"CIRCLE", "C", circleCommand, kModal, "draws a circle"},
    {"ARC", "A", arcCommand, kModal, "draws an arc by three points or about a centre"},
    {"PLINE", "PL", plineCommand, kModal, "draws a polyline of lines and arcs"},
    {"ELLIPSE", "EL", ellipseCommand, kModal, "draws an ellipse; a polyline of arcs when PELLIPSE is 1"},
    {"POINT", "PO", pointCommand, kModal, "draws a point"},
    {"TEXT", "", textCommand, kModal, "writes a line of text"},
    {"EXPLODE", "X", explodeCommand, kModal, "takes polylines and blocks apart"},
    {"MOVE", "M", moveCommand, kModal, "moves entities"},
    {"COPY", "CP", copyCommand, kModal, "copies entities"},
    {"ROTATE", "RO", rotateCommand, kModal, "turns entities about a point"},
    {"MIRROR", "MI", mirrorCommand, kModal, "mirrors entities at a line"},
    {"SCALE", "SC", scaleCommand, kModal, "enlarges entities from a point"},
    {"ERASE", "E", eraseCommand, kModal, "erases entities"},
    {"TRIM", "", trimCommand, kModal, "cuts curves off at others"},
    {"-INSERT", "INSERT", insertCommand, kModal, "inserts a block or a drawing file"},
    {"LAYER", "-LAYER", layerCommand, kTransparent, "makes and changes layers"},
    {"LIST", "LI", listCommand, kModal, "tells about entities"},
    {"SETVAR", "", setvarCommand, kTransparent, "shows and sets system variables"},
    {"SET", "", setCommand, kTransparent, "sets a value ahead: SET NAME VALUE"},
    {"HELP", "?", helpCommand, kTransparent, "lists the commands"},
    {"UCS", "", ucsCommand, kModal, "moves the user coordinate system"},
    {"ZOOM", "Z", zoomCommand, kTransparent, "changes the view"},
    {"VPOINT", "", vpointCommand, kModal, "sets from where the view looks"},
    {"REGEN", "RE", regenCommand, kModal, "shows the drawing anew, without highlights"},
    {"REDRAW", "R", redrawCommand, kTransparent, "shows the drawing anew"},
    {"PLOT", "", plotCommand, kTransparent, "makes a picture of what is shown: SVG, PDF or PNG"},
};

}  // namespace

void addHostCommands(AcEditor& editor) {
  for (const auto& row : kRows)
    editor.addCommand(
        {"HOST", row.name, row.shortName, row.flags, [&editor, run = row.run] { run(editor); }, row.help});
}

Answer<AcGePoint3d> askWorldPoint(AcEditor& editor, std::string_view prompt, const AcGePoint3d* worldBase) {
  const AcGePoint3d base = worldBase ? worldToUcs(editor.database(), *worldBase) : AcGePoint3d{};
  auto answer = editor.acedGetPoint(prompt, worldBase ? &base : nullptr);
  answer.value = ucsToWorld(editor.database(), answer.value);
  return answer;
}

Answer<double> askDistance(AcEditor& editor, std::string_view prompt, const AcGePoint3d& worldBase) {
  const AcGePoint3d base = worldToUcs(editor.database(), worldBase);
  return editor.acedGetDist(prompt, &base);
}

AcDbObjectId appendNew(AcEditor& editor, std::unique_ptr<AcDbEntity> entity) {
  auto& db = editor.database();
  entity->setLayer(db.currentLayer);
  entity->setColorIndex(db.currentColor);
  return db.appendAcDbEntity(db.modelSpace(), std::move(entity));
}

}  // namespace tarnex
