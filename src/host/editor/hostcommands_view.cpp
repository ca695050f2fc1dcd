// Commands on the view and the user coordinate system.
// Knows no display.
#include <algorithm>

#include "host/editor/answers.h"
#include "host/editor/boxtest.h"
#include "host/editor/hostcommands.h"
#include "host/editor/state.h"
#include "host/editor/ucs.h"

namespace tarnex {

namespace {

void showBox(AcEditor& editor, const Extents2d& box) {
  editor.setView(midpoint(box.low, box.high),
                 std::max(box.high.y - box.low.y, (box.high.x - box.low.x) * kViewAspect));
}

void zoomWindow(AcEditor& editor, std::optional<AcGePoint3d> first) {
  if (!first) {
    const auto corner = editor.acedGetPoint("Specify first corner: ");
    if (!corner) return;
    first = corner.value;
  }
  const auto second = editor.acedGetCorner(*first, "Specify opposite corner: ");
  if (!second || editor.namedInsteadOfCorner()) return;
  const auto& db = editor.database();
  showBox(editor, boxOf(ucsToWorld(db, *first).flat(), ucsToWorld(db, second.value).flat()));
}

// `2x` and `2xp` change the present scale, a bare number the scale at which a view of 297 mm is 1.
void zoomFactor(AcEditor& editor, const std::string& text) {
  const auto x = text.find_first_of("xX");
  const auto factor = parseReal(std::string_view(text).substr(0, x));
  if (!factor || !(*factor > 0)) {
    editor.print("\"" + text + "\" is no factor; write 2x, 0.5x, Extents, All, Window or a corner point.\n");
    return editor.commandFailed();
  }
  const double standing = x == std::string::npos ? View{}.height : editor.realVar("VIEWSIZE");
  editor.setView(editor.viewCentre(), standing / *factor);
}

void moveUcs(AcEditor& editor, const AcGePoint3d& worldOrigin) {
  editor.database().ucsorg = worldOrigin;
}

void worldUcs(AcEditor& editor) {
  auto& db = editor.database();
  db.ucsorg = {};
  db.ucsXDir = {1, 0, 0};
  db.ucsYDir = {0, 1, 0};
}

void turnUcs(AcEditor& editor) {
  const auto angle = editor.acedGetAngle("Specify rotation angle about Z axis <90>: ");
  const auto radians = orStanding(angle, kPi / 2);
  if (!radians) return;
  auto& db = editor.database();
  const auto x = db.ucsXDir, y = db.ucsYDir;
  const double c = std::cos(*radians), s = std::sin(*radians);
  db.ucsXDir = {c * x.x + s * y.x, c * x.y + s * y.y, c * x.z + s * y.z};
  db.ucsYDir = {c * y.x - s * x.x, c * y.y - s * x.y, c * y.z - s * x.z};
}

}  // namespace

void zoomCommand(AcEditor& editor) {
  editor.acedInitGet(kOtherText, "All Extents Window");
  const auto answer =
      editor.acedGetPoint("Specify corner of window, a scale factor (nX), or [All/Extents/Window]: ");
  if (answer) return zoomWindow(editor, answer.value);
  if (answer.reply != Reply::RTKWORD) return;
  const std::string word = editor.acedGetInput();
  if (word == "All" || word == "Extents") return editor.zoomExtents();
  if (word == "Window") return zoomWindow(editor, {});
  zoomFactor(editor, word);
}

void ucsCommand(AcEditor& editor) {
  editor.acedInitGet(0, "World Origin Z");
  const auto answer = askWorldPoint(editor, "Specify origin of UCS or [Origin/Z/World] <World>: ");
  if (answer) return moveUcs(editor, answer.value);
  if (answer.reply == Reply::RTNONE) return worldUcs(editor);
  if (answer.reply != Reply::RTKWORD) return;
  if (editor.acedGetInput() == "World") return worldUcs(editor);
  if (editor.acedGetInput() == "Z") return turnUcs(editor);
  const auto origin = askWorldPoint(editor, "Specify new origin point <0,0,0>: ");
  if (origin) moveUcs(editor, origin.value);
}

void vpointCommand(AcEditor& editor) {
  const auto from = editor.acedGetPoint("Specify a view point: ");
  if (from && !(from.value == AcGePoint3d{})) editor.setViewDirection(from.value);
}

void regenCommand(AcEditor& editor) {
  auto& db = editor.database();
  for (const auto id : db.modelSpaceEntities()) {
    const auto* entity = db.peek<AcDbEntity>(id);
    if (!entity || !entity->isHighlighted()) continue;
    if (auto opened = db.open<AcDbEntity>(id)) opened->unhighlight();
  }
  editor.acedRedraw();
}

void redrawCommand(AcEditor& editor) {
  editor.acedRedraw();
}

}  // namespace tarnex
