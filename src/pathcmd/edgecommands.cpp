// `DB` and `AC`: prompts around shifted edges and steps, and what stays in the drawing.
// Knows picks and messages; the geometry stands beside it.
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/selfcrossing.h"
#include "contour/userinput.h"
#include "host/editor/ucs.h"
#include "pathcmd/edges.h"
#include "pathcmd/pathchange.h"

namespace tarnex {

namespace {

constexpr int kRed = 1, kGreen = 3;

class ShiftEdges {
 public:
  explicit ShiftEdges(Module& module)
      : module_(module), drawing_(module.drawing()), value_(module.settings.dLeadStep) {}

  void run() {
    CommandSetting setting(module_.editor);
    setting.world();
    while (answer()) {
    }
    if (value_ == module_.settings.dLeadStep) return;
    module_.settings.dLeadStep = value_;
    module_.saveSettings();
  }

 private:
  bool answer() {
    const auto input = getUserInput(module_.editor, module_.message(264, {value_}), PickMode::kEntityPickBox);
    switch (input.kind) {
      case InputKind::kCancel:
      case InputKind::kEnter:
        return false;
      case InputKind::kInteger:
        value_ = input.intValue;
        return true;
      case InputKind::kReal:
        value_ = input.realValue;
        return true;
      case InputKind::kEntity:
        picked(input);
        return true;
      default:
        return true;
    }
  }

  void picked(const UserInput& input) {
    const AcGePoint2d pick = module_.editor.acedOsnap(input.point, "near").value_or(input.point).flat();
    const auto towards = module_.editor.acedGetPoint(module_.message(265));
    if (!towards) return;
    auto path = drawing_.open<CToolPath>(input.entity, OpenMode::kForWrite);
    if (!path || refusesFourAxis(module_, *path)) return;
    const PolylineCurve old = path->polyline();
    const ShiftedEdge edge = shiftEdge(*path, pick, towards.value.flat(), value_);
    const int number = path->nPathNo();
    const PolylineCurve now = path->polyline();
    path.close();
    if (edge.outcome == EdgeShift::kArc) module_.editor.print(module_.message(20228));
    if (edge.outcome == EdgeShift::kParallel) module_.editor.print(module_.message(20227));
    if (edge.outcome == EdgeShift::kFull) tellFull(module_, number);
    if (edge.outcome != EdgeShift::kDone) return;
    note(pick, edge);
    tellContacts(module_, number, newContacts(pathContacts(old), pathContacts(now)));
  }

  void note(AcGePoint2d pick, const ShiftedEdge& edge) {
    appendToModelSpace(
        drawing_, std::make_unique<AcDbText>(solid(pick), module_.message(550), module_.settings.dTextHeight),
        {}, kGreen, "");
    appendToModelSpace(drawing_, std::make_unique<AcDbLine>(solid(edge.from), solid(edge.to)), {}, kRed, "");
  }

  Module& module_;
  AcDbDatabase& drawing_;
  double value_;
};

class CutSteps {
 public:
  explicit CutSteps(Module& module) : module_(module), drawing_(module.drawing()) {}

  void run() {
    const auto height = module_.editor.acedGetReal(module_.message(56));
    if (!height || !(height.value > 0)) return;
    while (cutOne(height.value)) {
    }
  }

 private:
  // A polyline by a pick; asked again for another class. Null: no pick.
  EntityPick pickPolyline() {
    for (;;) {
      const auto answer = module_.editor.acedEntSel(module_.message(57));
      if (!answer) return {};
      if (drawing_.peek<AcDbPolyline>(answer.value.entity)) return answer.value;
      module_.editor.print(module_.message(54));
    }
  }

  std::optional<AcGePoint2d> ask(int text, const EntityPick& pick) {
    const AcGePoint3d from = worldToUcs(drawing_, pick.point);
    const auto answer = module_.editor.acedGetPoint(module_.message(text), &from);
    return answer ? std::optional(ucsToWorld(drawing_, answer.value).flat()) : std::nullopt;
  }

  // What lies within the pick box of the polyline was meant to lie on it.
  AcGePoint2d onto(const PolylineCurve& polyline, AcGePoint2d p) const {
    const PickBox box = pickBoxCorners(module_.editor, solid(p));
    const Closest nearest = closestPoint(polyline, p);
    return nearest.distance <= box.high.flat().distanceTo(p) ? nearest.point : p;
  }

  bool cutOne(double height) {
    const EntityPick pick = pickPolyline();
    if (pick.entity.isNull()) return false;
    const auto b = ask(58, pick);
    const auto towards = b ? ask(59, pick) : std::nullopt;
    if (!towards) return false;
    auto polyline = drawing_.open<AcDbPolyline>(pick.entity, OpenMode::kForWrite);
    const auto* path = drawing_.peek<CToolPath>(pick.entity);
    if (!polyline || (path && refusesFourAxis(module_, *path))) return true;
    const PolylineCurve old = polyline->polyline();
    const StepCut cut = cutStep(*polyline, {onto(old, pick.point.flat()), onto(old, *b), *towards, height});
    const PolylineCurve now = polyline->polyline();
    polyline.close();
    tell(cut, path ? std::optional(path->nPathNo()) : std::nullopt);
    if (cut == StepCut::kDone && path)
      tellContacts(module_, path->nPathNo(), newContacts(pathContacts(old), pathContacts(now)));
    else if (cut == StepCut::kDone)
      for (const AcGePoint2d p : newContacts(selfCrossings(old), selfCrossings(now)))
        module_.editor.print(module_.message(20222, {p.x, p.y}));
    return true;
  }

  void tell(StepCut cut, std::optional<int> pathNo) {
    if (cut == StepCut::kOnNoSpan) module_.editor.print(module_.message(193));
    if (cut == StepCut::kNoStep) module_.editor.print(module_.message(20229));
    if (cut == StepCut::kFull) tellFull(module_, pathNo.value_or(0));
  }

  Module& module_;
  AcDbDatabase& drawing_;
};

}  // namespace

void DB(Module& module) {
  ShiftEdges(module).run();
}

void AC(Module& module) {
  CutSteps(module).run();
}

}  // namespace tarnex
