// `GK` and `BK`: paths along open curves, which the wire enters from the side and doesn't close.
// Knows prompts and curves; the path itself is made in toolpath.
#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "pathcmd/batch.h"
#include "pathcmd/jobparts.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

constexpr double kLongestLeadIn = 1000;  // mm

// How the wire comes to the curve: T itself, or a length and a point on the side of T.
struct LeadIn {
  std::optional<double> length;  // mm
  AcGePoint2d point;
};

// 1: p lies left of the first span, else -1.
int sideOf(const PolylineCurve& c, AcGePoint2d p) {
  const AcGePoint2d p0 = c.vertices[0].point, p1 = c.vertices[1].point;
  const double area = spanArea(p0, p1, c.vertices[0].bulge) + spanArea(p1, p, 0) + spanArea(p, p0, 0);
  return area > 0 ? 1 : -1;
}

// Square on the first span.
AcGePoint2d threadAt(const PolylineCurve& c, int side, double length) {
  const AcGePoint2d p0 = c.vertices[0].point, p1 = c.vertices[1].point;
  const double bulge = c.vertices[0].bulge;
  if (bulge == 0) return acutPolar(p0, acutAngle(p0, p1) + side * kPi / 2, length);
  const auto circle = bulgeToCircle(p0, p1, bulge);
  return acutPolar(circle.centre, acutAngle(circle.centre, p0),
                   circle.radius + (bulge > 0 ? -side * length : side * length));
}

class OpenCuts {
 public:
  OpenCuts(Module& module, bool job, const ProcessStyle* style)
      : module_(module), drawing_(module.drawing()), job_(job), style_(style) {}

  void run() {
    rebuildPathList(module_);
    CommandSetting setting(module_.editor);
    setting.world();
    auto& state = module_.state<PathState>();
    for (;;) {
      const auto input =
          getUserInput(module_.editor, module_.message(72, {static_cast<long long>(state.nextPathNo)}),
                       PickMode::kEntityPickBox, "U");
      if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return;
      if (input.kind == InputKind::kKeyword) undoLastPath(drawing_, state);
      if (input.kind == InputKind::kEntity) (void)make(input.entity, input.point.flat());
      if (input.kind == InputKind::kPoint) fromWindow(input.point);
    }
  }

 private:
  enum class Outcome { kDone, kCancelled };

  // Asks for each curve; a cancelled prompt ends the batch.
  void fromWindow(const AcGePoint3d& first) {
    bool more = true;
    metered(module_, windowSelect(module_.editor, first), [&](AcDbObjectId id) {
      if (more) more = make(id, std::nullopt) != Outcome::kCancelled;
    });
  }

  // The path along the curve of an entity, from its end near `pick`; without a pick from its first vertex.
  Outcome make(AcDbObjectId id, std::optional<AcGePoint2d> pick) {
    if (!isOpenCurve(id)) return Outcome::kDone;
    const AcGePoint2d drawnStart = drawing_.peek<AcDbCurve>(id)->getStartPoint().flat();
    if (!prepareContour(module_, id) || !isOpenCurve(id)) return Outcome::kDone;
    PolylineCurve curve = drawing_.peek<AcDbPolyline>(id)->polyline();
    if (curve.vertices.size() < 2) return Outcome::kDone;
    // A chain may run either way; one that ends where the curve began runs against it.
    if (curve.vertices.back().point.distanceTo(drawnStart) <= kSamePoint) reversePolyline(curve);
    if (pick && nearerToEnd(curve, *pick)) reversePolyline(curve);
    highlightEntity(drawing_, id);
    const auto lead = askLeadIn(curve.vertices[0].point);
    unhighlightEntity(drawing_, id);
    if (!lead) return Outcome::kCancelled;
    if (lead->length || lead->point != kNoLastEnd) add(id, curve, *lead);
    return Outcome::kDone;
  }

  // A closed curve is told.
  bool isOpenCurve(AcDbObjectId id) {
    const auto curve = drawing_.open<AcDbCurve>(id, OpenMode::kForWrite);
    if (!curve || curve->isKindOf(CToolPath::desc())) return false;
    if (curve->isClosed()) module_.editor.print(module_.message(144));
    return !curve->isClosed();
  }

  bool nearerToEnd(const PolylineCurve& curve, AcGePoint2d pick) {
    {
      CommandSetting setting(module_.editor);
      setting.osmode(0);
      if (const auto snapped = module_.editor.acedOsnap(solid(pick), "near")) pick = snapped->flat();
    }
    const double whole = length(curve), at = distAtParam(curve, closestPoint(curve, pick).param);
    return at > whole - at;
  }

  // Nothing: cancelled. A point of kNoLastEnd: this curve is left out.
  std::optional<LeadIn> askLeadIn(AcGePoint2d start) {
    for (;;) {
      const auto input = getUserInput(module_.editor, module_.message(285, {module_.settings.dBridgeLen}),
                                      PickMode::kPointOnly);
      if (input.kind == InputKind::kCancel) return std::nullopt;
      if (input.kind == InputKind::kEnter) return LeadIn{std::nullopt, kNoLastEnd};
      if (input.kind == InputKind::kPoint) return LeadIn{std::nullopt, input.point.flat()};
      const double typed = input.kind == InputKind::kInteger ? input.intValue : input.realValue;
      if (typed >= 0 && typed <= kLongestLeadIn) return askSide(start, typed);
      module_.editor.print(module_.message(20280, {0.0, kLongestLeadIn}));
    }
  }

  std::optional<LeadIn> askSide(AcGePoint2d start, double typed) {
    const AcGePoint3d base = solid(start);
    const auto side = module_.editor.acedGetPoint("\n" + module_.message(17), &base);
    if (!side) return std::nullopt;
    module_.settings.dBridgeLen = typed;
    module_.saveSettings();
    return LeadIn{typed, side.value.flat()};
  }

  void add(AcDbObjectId source, const PolylineCurve& curve, const LeadIn& lead) {
    const auto& s = module_.settings;
    const int side = sideOf(curve, lead.point);
    auto path = std::make_unique<CToolPath>();
    const CToolPath::OpenMaking making{lead.length ? threadAt(curve, side, *lead.length) : lead.point, side,
                                       job_ ? 0.0 : s.dOffset, job_, s.dOvercutExit};
    if (!path->initOpen(making, curve)) return;
    if (auto entity = drawing_.open<AcDbEntity>(source, OpenMode::kForWrite)) entity->erase();
    addPath(module_, std::move(path), {}, kColorByLayer, nullptr);
    if (!job_) return;
    if (auto made = lastPath(module_)) made->setProcessStyle(style_ ? *style_ : makeBaseStyle());
  }

  Module& module_;
  AcDbDatabase& drawing_;
  const bool job_;
  const ProcessStyle* style_;
};

}  // namespace

void openCutJob(Module& module, const ProcessStyle* style) {
  OpenCuts(module, true, style).run();
}

void GK(Module& module) {
  openCutJob(module, nullptr);
}

void BK(Module& module) {
  OpenCuts(module, false, nullptr).run();
}

}  // namespace tarnex
