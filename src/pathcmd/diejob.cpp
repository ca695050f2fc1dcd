// The contour job: paths with an automatic lead-in from a pick or a window; outer shapes get their break.
// Knows prompts; how one path is made stands in makepath.
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "pathcmd/batch.h"
#include "pathcmd/jobparts.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

constexpr int kUndo = 0, kManual = 1;

class ContourJob {
 public:
  ContourJob(Module& module, const ProcessStyle* style)
      : module_(module), state_(module.state<PathState>()), style_(style) {}

  void run() {
    CommandSetting setting(module_.editor);
    setting.world();
    module_.loadSettings();
    for (;;) {
      const auto input = getUserInput(
          module_.editor,
          module_.message(33 + module_.settings.nSide, {static_cast<long long>(state_.nextPathNo)}),
          PickMode::kEntityPickBox, "U M");
      if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return;
      answer(input);
    }
  }

 private:
  void answer(const UserInput& input) {
    if (input.kind == InputKind::kEntity) return fromPick(input.entity, input.point.flat());
    if (input.kind == InputKind::kPoint) return fromWindow(input.point);
    if (input.kind != InputKind::kKeyword) return;
    if (input.keyword == kUndo) undoLastPath(module_.drawing(), state_);
    if (input.keyword == kManual) makeManualPaths(module_, {style_, 0});
  }

  [[nodiscard]] bool outer() const { return module_.settings.nSide == kOuterShape; }

  void fromPick(AcDbObjectId id, AcGePoint2d at) {
    std::optional<double> radius;
    {
      const auto entity = module_.drawing().open<AcDbEntity>(id, OpenMode::kForWrite);
      if (!entity || entity->isKindOf(CToolPath::desc())) return;
      if (const auto* circle = dynamic_cast<const AcDbCircle*>(entity.get())) radius = circle->radius();
    }
    if (outer() && !askGap(module_)) return;
    if (!makePath(module_, {MakeMode::kPick, id, at, 0, style_}) || !finish(style_)) return;
    if (radius && !outer() && module_.settings.bSameHoles != 0) sameHoles(*radius, at);
  }

  // Circles of exactly this radius: what was drawn as another size is another hole to a die maker.
  void sameHoles(double radius, AcGePoint2d at) {
    const int before = lastBefore(state_.nextPathNo);
    metered(module_, module_.editor.acedSSGet("X").value, [&](AcDbObjectId id) {
      const auto* circle = module_.drawing().peek<AcDbCircle>(id);
      if (circle && circle->radius() == radius && makePath(module_, {MakeMode::kPick, id, at, 0, style_}))
        finish(style_);
    });
    sortFrom(before);
  }

  // A window gives all its paths BASE, whatever style the job carries.
  void fromWindow(const AcGePoint3d& first) {
    const SelectionSet set = windowSelect(module_.editor, first);
    if (set.empty() || (outer() && !askGap(module_))) return;
    const int before = lastBefore(state_.nextPathNo);
    metered(module_, set, [&](AcDbObjectId id) {
      if (makePath(module_, {MakeMode::kBatch, id, {}, 0, nullptr})) finish(nullptr);
    });
    sortFrom(before);
  }

  void sortFrom(int before) {
    sortNearest(module_.drawing(), state_, before, static_cast<int>(state_.PathList.size()) - 1);
  }

  // False: an outer shape without a break, which is gone again.
  bool finish(const ProcessStyle* style) {
    {
      auto path = lastPath(module_);
      if (path) settleJobPath(*path, style);
      if (!outer() ||
          placeBreakFromEnd(module_.editor, path, module_.settings.dGapValue, breakPrompt(module_)))
        return true;
    }
    undoLastPath(module_.drawing(), state_);
    return false;
  }

  Module& module_;
  PathState& state_;
  const ProcessStyle* style_;
};

}  // namespace

void pickContourJob(Module& module, const ProcessStyle* style) {
  ContourJob(module, style).run();
}

}  // namespace tarnex
