// The roughing job: holes whose inside is cut away along a guide curve before their contour is cut.
// Knows prompts and the guide's ends; where its turns run, the routine knows.
#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "pathcmd/batch.h"
#include "pathcmd/jobparts.h"
#include "pathcmd/makepath.h"
#include "toolpath/roughbinding.h"

namespace tarnex {

namespace {

Roughing roughingOf(const WireCutSettings& s) {
  return {s.nCircleArcs, 135.0, s.dRoughD, s.nDirection, s.dRoughB, s.dRoughC, s.nRoughA};
}

// Roughing is a hole's, whatever side the settings name.
class HoleSide {
 public:
  explicit HoleSide(Module& module) : module_(module), stands_(module.settings.nSide) { set(kInnerHole); }
  HoleSide(const HoleSide&) = delete;
  HoleSide& operator=(const HoleSide&) = delete;
  ~HoleSide() { set(stands_); }

 private:
  void set(std::int32_t side) {
    module_.settings.nSide = side;
    module_.saveSettings();
  }
  Module& module_;
  std::int32_t stands_;
};

class RoughJob {
 public:
  RoughJob(Module& module, const ProcessStyle* style)
      : module_(module), drawing_(module.drawing()), state_(module.state<PathState>()), style_(style) {}

  void run() {
    CommandSetting setting(module_.editor);
    setting.world();
    const HoleSide side(module_);
    for (;;) {
      const auto input = getUserInput(module_.editor, module_.message(437), PickMode::kEntityPickBox, "U");
      if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return;
      if (input.kind == InputKind::kKeyword) undoLastPath(drawing_, state_);
      if (input.kind == InputKind::kEntity) fromPick(input.entity);
    }
  }

 private:
  void fromPick(AcDbObjectId id) {
    std::optional<double> radius;
    {
      const auto entity = drawing_.open<AcDbEntity>(id, OpenMode::kForWrite);
      if (!entity || entity->isKindOf(CToolPath::desc())) return;
      if (const auto* circle = dynamic_cast<const AcDbCircle*>(entity.get())) radius = circle->radius();
    }
    if (roughOne(id) && radius && module_.settings.bSameHoles != 0) sameHoles(*radius);
  }

  void sameHoles(double radius) {
    const int before = lastBefore(state_.nextPathNo);
    metered(module_, module_.editor.acedSSGet("X").value, [&](AcDbObjectId id) {
      const auto* circle = drawing_.peek<AcDbCircle>(id);
      if (circle && circle->radius() == radius) (void)roughOne(id);
    });
    sortNearest(drawing_, state_, before, static_cast<int>(state_.PathList.size()) - 1);
  }

  bool roughOne(AcDbObjectId id) {
    if (!drawing_.peek<AcDbCircle>(id) && !prepareContour(module_, id)) return false;
    const AcDbObjectId guide = roughContour(module_, id, roughingOf(module_.settings));
    if (guide.isNull()) {
      module_.editor.print(module_.message(20281));
      return false;
    }
    const auto curve = takeGuide(guide);
    if (!curve || !makePath(module_, {MakeMode::kBatch, id, {}, 0, style_})) return false;
    if (attach(*curve)) return true;
    undoLastPath(drawing_, state_);
    module_.editor.print(module_.message(20282));
    return false;
  }

  // The guide's curve; its entity goes.
  std::optional<PolylineCurve> takeGuide(AcDbObjectId guide) {
    auto polyline = drawing_.open<AcDbPolyline>(guide, OpenMode::kForWrite);
    if (!polyline || polyline->numVerts() < 2) return std::nullopt;
    const PolylineCurve curve = polyline->polyline();
    polyline->erase();
    return curve;
  }

  // The wire starts at the threading point, and the lead-in begins there again: the guide gets both moves.
  // False: one of them would leave the contour.
  bool attach(PolylineCurve curve) {
    auto path = lastPath(module_);
    if (!path) return false;
    settleJobPath(*path, style_);
    const AcGePoint2d thread = path->getPointAt(0);
    const auto& vertices = path->polyline().vertices;
    const PolylineCurve contour{{vertices.begin() + 1, vertices.end() - 1}, true};
    for (const AcGePoint2d end : {curve.vertices.front().point, curve.vertices.back().point})
      if (!intersect(contour, LineCurve{thread, end}, Extend::kOnBothOperands).empty()) return false;
    if (curve.vertices.front().point.distanceTo(thread) > kSamePoint)
      curve.vertices.insert(curve.vertices.begin(), {thread, 0});
    curve.vertices.back().bulge = 0;
    if (curve.vertices.back().point.distanceTo(thread) > kSamePoint) curve.vertices.push_back({thread, 0});
    path->setGuide(curve);
    return true;
  }

  Module& module_;
  AcDbDatabase& drawing_;
  PathState& state_;
  const ProcessStyle* style_;
};

}  // namespace

void pickRoughJob(Module& module, const ProcessStyle* style) {
  RoughJob(module, style).run();
}

}  // namespace tarnex
