// `CD`, `CM`, `QQ`, `SR`, `SR0`: paths turned, entered from the other side, given up, and marked at corners.
// Knows paths and prompts.
#include "pathcmd/editcommands.h"

#include "contour/hosthelpers.h"

namespace tarnex {

const CToolPath* pickedPath(Module& module, AcDbObjectId id) {
  const auto* path = module.drawing().peek<CToolPath>(id);
  if (!path) module.editor.print(module.message(54));
  return path;
}

Opened<CToolPath> openPicked(Module& module, AcDbObjectId id) {
  auto path = module.drawing().open<CToolPath>(id, OpenMode::kForWrite);
  if (!path) module.editor.print(module.message(20210));
  return path;
}

AcGePoint2d snappedPick(Module& module, const UserInput& input) {
  CommandSetting setting(module.editor);
  setting.world();
  return module.editor.acedOsnap(input.point, "near").value_or(input.point).flat();
}

namespace {

// Each path that is picked goes to `change`.
template <class Change>
void forPicked(Module& module, int prompt, Change change) {
  for (;;) {
    const auto answer = module.editor.acedEntSel(module.message(prompt));
    if (answer.reply == Reply::RTERROR) continue;
    if (!answer) return;
    if (!pickedPath(module, answer.value.entity)) continue;
    if (auto path = openPicked(module, answer.value.entity)) change(std::move(path));
  }
}

}  // namespace

void CD(Module& module) {
  forPicked(module, 55, [&](Opened<CToolPath> path) {
    if (!path->reverse()) module.editor.print("\n" + module.message(19));
  });
}

void CM(Module& module) {
  forPicked(module, 53, [&](Opened<CToolPath> path) {
    const bool flipped = path->flipSide();
    path.close();
    if (flipped)
      rebuildPathList(module);
    else
      module.editor.print("\n" + module.message(20));
  });
}

// ---- QQ

namespace {

// False: the path can't be opened.
bool giveUp(Module& module, AcDbObjectId id) {
  AcDbDatabase& drawing = module.drawing();
  std::vector<std::unique_ptr<AcDbEntity>> sources;
  {
    auto path = openPicked(module, id);
    if (!path) return false;
    sources = path->restoredContour();
    path->erase();
  }
  for (auto& source : sources) drawing.appendAcDbEntity(drawing.modelSpace(), std::move(source));
  return true;
}

}  // namespace

void QQ(Module& module) {
  AcEditor::SelectArgs args;
  args.addPrompt = module.message(51);
  args.removePrompt = module.message(52);
  while (const auto set = module.editor.acedSSGet(":$", args)) {
    for (AcDbObjectId id : set.value)
      if (module.drawing().peek<CToolPath>(id) && !giveUp(module, id)) break;
    rebuildPathList(module);
  }
}

// ---- SR, SR0

namespace {

std::string textOf(Module& module, CToolPath::CornerMark result) {
  switch (result) {
    case CToolPath::CornerMark::kNoSegment:
      return "\n" + module.message(136);
    case CToolPath::CornerMark::kStraight:
      return "\n只能选择转角的圆弧！";
    case CToolPath::CornerMark::kNextIsArc:
      return "\n下一段图形不为圆弧，无法处理该情况，如有需要，请联系开发商！";
    case CToolPath::CornerMark::kPreviousIsArc:
      return "\n前一段图形不为圆弧，无法处理该情况，如有需要，请联系开发商！";
    default:
      return "";
  }
}

void markCorners(Module& module, bool on) {
  for (;;) {
    const auto input = getUserInput(module.editor, "\n请选择上下要处理的角：", PickMode::kEntityPickBox);
    if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return;
    if (input.kind != InputKind::kEntity || !pickedPath(module, input.entity)) continue;
    const AcGePoint2d pick = snappedPick(module, input);
    if (auto path = openPicked(module, input.entity))
      module.editor.print(textOf(module, path->markCorner(pick, on)));
  }
}

}  // namespace

void SR(Module& module) {
  markCorners(module, true);
}

void SR0(Module& module) {
  markCorners(module, false);
}

}  // namespace tarnex
