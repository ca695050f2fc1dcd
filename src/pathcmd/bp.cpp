// `BP`: paths with an automatic lead-in, by pick or by window, and the order after a batch.
// Knows prompts; how one path is made stands in makepath.
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "frame/dialoglibrary.h"
#include "pathcmd/batch.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

void orderFrom(Module& module, int first) {
  auto& state = module.state<PathState>();
  if (module.settings.nPathOrder == 0)
    sortNearest(module.drawing(), state, first, static_cast<int>(state.PathList.size()) - 1);
  if (module.settings.nPathOrder == 1) sortByLength(module.drawing(), state);
}

void windowOfContours(Module& module, const AcGePoint3d& first) {
  const SelectionSet set = windowSelect(module.editor, first);
  if (set.empty()) return;
  const int before = lastBefore(module.state<PathState>().nextPathNo);
  metered(module, set, [&](AcDbObjectId id) { makePath(module, {MakeMode::kBatch, id, {}, 0, nullptr}); });
  orderFrom(module, before);
}

void sameHoles(Module& module, double radius, const ProcessStyle* style) {
  const auto all = module.editor.acedSSGet("X");
  if (!all) return;
  auto& state = module.state<PathState>();
  const int before = lastBefore(state.nextPathNo);
  metered(module, all.value, [&](AcDbObjectId id) {
    const auto* circle = module.drawing().peek<AcDbCircle>(id);
    if (circle && std::abs(circle->radius() - radius) < kSamePoint)
      makePath(module, {MakeMode::kBatch, id, {}, 0, style});
  });
  sortNearest(module.drawing(), state, before, static_cast<int>(state.PathList.size()) - 1);
}

}  // namespace

bool makePathFromPick(Module& module, const MakeRequest& request) {
  std::optional<double> radius;
  {
    const auto entity = module.drawing().open<AcDbEntity>(request.entity);
    if (!entity || entity->isKindOf(CToolPath::desc())) return false;
    if (const auto* circle = dynamic_cast<const AcDbCircle*>(entity.get())) radius = circle->radius();
  }
  if (!makePath(module, request)) return false;
  if (radius && module.settings.nSide != kOuterShape && module.settings.bSameHoles)
    sameHoles(module, *radius, request.style);
  return true;
}

void BP(Module& module) {
  if (DialogLibrary(module).call("SetDlg", 0, 0) == 0) return;
  module.loadSettings();
  rebuildPathList(module);
  CommandSetting setting(module.editor);
  setting.world();
  auto& state = module.state<PathState>();
  for (bool more = true; more;) {
    std::string prompt =
        module.message(30 + module.settings.nSide, {static_cast<long long>(state.nextPathNo)});
    if (module.settings.nSnapMode != 0) prompt += "MID of ";
    const auto input = getUserInput(module.editor, prompt, PickMode::kEntityPickBox, "U");
    switch (input.kind) {
      case InputKind::kCancel:
      case InputKind::kEnter:
        more = false;
        break;
      case InputKind::kKeyword:
        undoLastPath(module.drawing(), state);
        break;
      case InputKind::kEntity:
        makePathFromPick(module, {MakeMode::kPick, input.entity, input.point.flat(), 0, nullptr});
        break;
      case InputKind::kPoint:
        windowOfContours(module, input.point);
        break;
      default:
        break;
    }
  }
  orderFrom(module, 0);
}

}  // namespace tarnex
