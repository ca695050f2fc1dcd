// `BM`: paths whose threading and entry points the user gives.
// Knows prompts and the contour under Q; the path itself is built in makepath.
#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "frame/dialoglibrary.h"
#include "pathcmd/jobparts.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

constexpr int kEntrySnaps = 643;  // end, mid, perpendicular, nearest
constexpr int kUndo = 0, kByBase = 1;

enum class Step { kMade, kAgain, kEnd };

bool isContourKind(const AcDbEntity& e) {
  for (const AcRxClass* c : {&AcDbCircle::desc(), &AcDbArc::desc(), &AcDbLine::desc(), &AcDbSpline::desc(),
                             &AcDbPolyline::desc(), &AcDb2dPolyline::desc(), &AcDbEllipse::desc()})
    if (e.isKindOf(*c)) return true;
  return false;
}

class ManualMaker {
 public:
  explicit ManualMaker(Module& module, const ManualJob* job = nullptr)
      : module_(module),
        job_(job),
        drawing_(module.drawing()),
        prompt_(module.message(48)),
        entryPrompt_(module.message(49)) {}

  bool run() {
    CommandSetting setting(module_.editor);
    setting.world();
    bool made = false;
    while (const auto thread = askThread()) {
      const Step step = fromThread(*thread);
      made = step == Step::kMade;
      if (step == Step::kEnd) break;
    }
    return made;
  }

 private:
  std::optional<AcGePoint2d> askThread() {
    for (;;) {
      const auto input = getUserInput(module_.editor, prompt_, PickMode::kPointOnly, "U B");
      if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return std::nullopt;
      if (input.kind == InputKind::kPoint) return input.point.flat();
      if (input.kind != InputKind::kKeyword) continue;
      if (input.keyword == kUndo) undoLastPath(drawing_, module_.state<PathState>());
      if (input.keyword == kByBase)
        if (const auto point = askByBase()) return point;
    }
  }

  std::optional<AcGePoint2d> askByBase() {
    const auto base = module_.editor.acedGetPoint(module_.message(262));
    if (!base) return std::nullopt;
    const auto by = module_.editor.acedGetPoint(module_.message(263), &base.value);
    if (!by) return std::nullopt;
    return AcGePoint2d{base.value.x + by.value.x, base.value.y + by.value.y};
  }

  Step fromThread(AcGePoint2d thread) {
    for (;;) {
      const auto entry = askEntry(thread);
      if (!entry) return Step::kAgain;
      const AcDbObjectId id = contourAt(*entry);
      if (id.isNull()) continue;
      return makeAt(thread, *entry, id);
    }
  }

  std::optional<AcGePoint2d> askEntry(AcGePoint2d thread) {
    CommandSetting setting(module_.editor);
    setting.osmode(kEntrySnaps);
    const AcGePoint3d from = solid(thread);
    const auto answer = module_.editor.acedGetPoint(entryPrompt_, &from);
    return answer ? std::optional(answer.value.flat()) : std::nullopt;
  }

  AcDbObjectId contourAt(AcGePoint2d entry) {
    const auto set = module_.editor.entitiesAtPickBox(solid(entry));
    if (set.empty()) {
      module_.editor.print(module_.message(50));
      return {};
    }
    for (AcDbObjectId id : set) {
      const auto* entity = drawing_.peek<AcDbEntity>(id);
      if (entity && !entity->isKindOf(CToolPath::desc()) && isContourKind(*entity)) return id;
    }
    return {};
  }

  Step makeAt(AcGePoint2d thread, AcGePoint2d entry, AcDbObjectId id) {
    if (!drawing_.open<AcDbEntity>(id, OpenMode::kForWrite)) {
      module_.editor.print("\n***open object failed!");
      return Step::kAgain;
    }
    std::unique_ptr<CToolPath> path;
    if (const auto* circle = drawing_.peek<AcDbCircle>(id)) {
      path = circlePath(thread, entry, circle->center().flat(), circle->radius());
    } else {
      if (!prepareContour(module_, id)) return isStillToConvert(id) ? Step::kAgain : Step::kEnd;
      path = contourPath(thread, entry, id);
    }
    if (!path) return Step::kAgain;
    add(std::move(path), id);
    return !job_ || settle() ? Step::kMade : Step::kEnd;
  }

  // A conversion was refused (a spline with a no): another contour can be picked.
  bool isStillToConvert(AcDbObjectId id) {
    return drawing_.peek<AcDbSpline>(id) || drawing_.peek<AcDbEllipse>(id) ||
           drawing_.peek<AcDb2dPolyline>(id);
  }

  std::unique_ptr<CToolPath> circlePath(AcGePoint2d thread, AcGePoint2d entry, AcGePoint2d centre,
                                        double radius) {
    const auto& s = module_.settings;
    const int side = thread.distanceTo(centre) <= radius ? kInnerHole : kOuterShape;
    auto path = std::make_unique<CToolPath>();
    if (!path->initCircle({thread, entry, side, s.nDirection, s.dOffset, s.dClearance}, centre, radius,
                          s.nCircleArcs))
      return nullptr;
    return path;
  }

  std::unique_ptr<CToolPath> contourPath(AcGePoint2d thread, AcGePoint2d entry, AcDbObjectId id) {
    PolylineCurve contour;
    {
      auto polyline = drawing_.open<AcDbPolyline>(id, OpenMode::kForWrite);
      if (!polyline || polyline->numVerts() < 2) return nullptr;
      if (!polyline->isClosed() && !(polyline->getPointAt(0).distanceTo(
                                         polyline->getPointAt(polyline->numVerts() - 1)) <= kSamePoint)) {
        module_.editor.print(module_.message(74));
        return nullptr;
      }
      polyline->setClosed(true);
      contour = polyline->polyline();
    }
    const auto at = findSpanAt(contour, entry);
    if (!at) {
      module_.editor.print(module_.message(50));
      return nullptr;
    }
    return makeContourPath(module_, thread, entry, std::move(contour), at->index, true);
  }

  void add(std::unique_ptr<CToolPath> path, AcDbObjectId source) {
    AcDbObjectId layer;
    int color = kColorByLayer;
    {
      auto entity = drawing_.open<AcDbEntity>(source, OpenMode::kForWrite);
      layer = entity->layerId();
      color = entity->colorIndex();
      entity->erase();
    }
    addPath(module_, std::move(path), layer, color, nullptr);
  }

  // False: an outer shape without its break, which is gone again.
  bool settle() {
    bool outer = false;
    if (auto path = lastPath(module_)) {
      settleJobPath(*path, job_->style);
      path->setFlag(job_->flags, true);
      outer = path->nSide() == kOuterShape;
    }
    return !outer || pickBreakOfLast(module_);
  }

  Module& module_;
  const ManualJob* job_;
  AcDbDatabase& drawing_;
  const std::string prompt_, entryPrompt_;
};

}  // namespace

namespace {

bool confirmed(Module& module) {
  if (DialogLibrary(module).call("SetMDlg", 0) == 0) return false;
  module.loadSettings();
  return true;
}

}  // namespace

bool makeManualPaths(Module& module) {
  return confirmed(module) && ManualMaker(module).run();
}

bool makeManualPaths(Module& module, const ManualJob& job) {
  return ManualMaker(module, &job).run();
}

void BM(Module& module) {
  if (!confirmed(module)) return;
  rebuildPathList(module);
  ManualMaker(module).run();
  auto& state = module.state<PathState>();
  const int last = static_cast<int>(state.PathList.size()) - 1;
  if (module.settings.nPathOrder == 0) sortNearest(module.drawing(), state, 0, last);
  if (module.settings.nPathOrder == 1) sortByLength(module.drawing(), state);
}

}  // namespace tarnex
