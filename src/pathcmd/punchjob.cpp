// The punch job: outer shapes whose entry lies at a quarter of the picked span and whose break the user
// picks. Knows prompts; how one path is made stands in makepath.
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "pathcmd/jobparts.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

constexpr int kUndo = 0, kManual = 1, kSettings = 2;
constexpr double kEntryFraction = 0.25;  // of the picked span

void fromPick(Module& module, AcDbObjectId id, AcGePoint2d at) {
  const bool made = makePath(module, {MakeMode::kPick, id, at, kEntryFraction, nullptr});
  if (!made) return;
  if (auto path = lastPath(module)) settleJobPath(*path, nullptr);
  if (!pickBreakOfLast(module)) return;
  if (auto path = lastPath(module)) path->setFlag(kPunchJob, true);
}

}  // namespace

void pickBreakJob(Module& module) {
  CommandSetting setting(module.editor);
  setting.world();
  auto& state = module.state<PathState>();
  for (;;) {
    const auto input =
        getUserInput(module.editor, module.message(30, {static_cast<long long>(state.nextPathNo)}),
                     PickMode::kEntityPickBox, "U M S");
    if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return;
    if (input.kind == InputKind::kEntity) fromPick(module, input.entity, input.point.flat());
    if (input.kind != InputKind::kKeyword) continue;
    if (input.keyword == kUndo) undoLastPath(module.drawing(), state);
    if (input.keyword == kManual) makeManualPaths(module, {nullptr, kPunchJob});
    if (input.keyword == kSettings) editJobSettings(module);
  }
}

}  // namespace tarnex
