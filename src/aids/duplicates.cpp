// `scc`: the passes over a work list, each with its first entity as the base that all others are compared
// with. An index of what can lie over what keeps a pass from looking at the whole list; its order stays the
// list's.
#include "aids/duplicates.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "aids/foldrules.h"
#include "contour/hosthelpers.h"
#include "frame/dialoglibrary.h"

namespace tarnex {

namespace {

std::optional<FoldShape> shapeOf(const AcDbEntity& entity) {
  if (const auto* line = dynamic_cast<const AcDbLine*>(&entity))
    return foldLine(line->getStartPoint().flat(), line->getEndPoint().flat());
  if (const auto* arc = dynamic_cast<const AcDbArc*>(&entity)) {
    if (arc->isClosed()) return FoldCircle{arc->center().flat(), arc->radius()};
    return foldArc(arc->center().flat(), arc->radius(), arc->startAngle(), arc->endAngle());
  }
  if (const auto* circle = dynamic_cast<const AcDbCircle*>(&entity))
    return FoldCircle{circle->center().flat(), circle->radius()};
  return std::nullopt;
}

// Two values by which shapes that can lie over each other agree within the tolerance.
struct FoldKey {
  double u, v;
  bool line;
};
FoldKey keyOf(const FoldShape& shape) {
  if (auto* l = std::get_if<FoldLine>(&shape)) return {l->k, l->b, true};
  if (auto* a = std::get_if<FoldArc>(&shape)) return {a->centre.x, a->centre.y, false};
  const auto& c = std::get<FoldCircle>(shape);
  return {c.centre.x, c.centre.y, false};
}

// The work list in its order, with cells of the key's values.
class WorkList {
 public:
  struct Entry {
    AcDbObjectId id;
    FoldShape shape;
    bool alive = true;
  };

  void add(AcDbObjectId id, const FoldShape& shape) {
    entries_.push_back({id, shape});
    ++alive_;
    const FoldKey key = keyOf(shape);
    cells_[cellOf(key, 0, 0)].push_back(entries_.size() - 1);
  }
  [[nodiscard]] std::size_t alive() const { return alive_; }
  std::size_t first() {
    while (!entries_[first_].alive) ++first_;
    return first_;
  }
  Entry& at(std::size_t i) { return entries_[i]; }
  void remove(std::size_t i) {
    if (std::exchange(entries_[i].alive, false)) --alive_;
  }
  // Entries behind `base` that may lie over it, in order.
  void nearTo(const FoldShape& base, std::size_t self, std::vector<std::size_t>& found) const {
    found.clear();
    const FoldKey key = keyOf(base);
    for (int du = -1; du <= 1; ++du)
      for (int dv = -1; dv <= 1; ++dv)
        if (const auto cell = cells_.find(cellOf(key, du, dv)); cell != cells_.end())
          for (std::size_t i : cell->second)
            if (i != self && entries_[i].alive) found.push_back(i);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
  }

 private:
  static std::uint64_t cellOf(const FoldKey& key, int du, int dv) {
    const auto cell = [](double v, int d) {
      return static_cast<std::uint64_t>(
          static_cast<std::int64_t>(std::clamp(std::floor(v / (2 * kFoldTolerance)) + d, -9e15, 9e15)));
    };
    return cell(key.u, du) * 0x9E3779B97F4A7C15ull + cell(key.v, dv) * 0xC2B2AE3D27D4EB4Full +
           (key.line ? 1 : 0);
  }

  std::vector<Entry> entries_;
  std::unordered_map<std::uint64_t, std::vector<std::size_t>> cells_;
  std::size_t first_ = 0, alive_ = 0;
};

bool eraseEntity(AcDbDatabase& drawing, AcDbObjectId id) {
  auto entity = drawing.open<AcDbEntity>(id, OpenMode::kForWrite);
  return entity && entity->erase() == ErrorStatus::eOk;
}

std::unique_ptr<AcDbCurve> mergedEntity(const FoldShape& shape) {
  if (auto* l = std::get_if<FoldLine>(&shape)) return std::make_unique<AcDbLine>(solid(l->s0), solid(l->s1));
  if (auto* a = std::get_if<FoldArc>(&shape))
    return std::make_unique<AcDbArc>(solid(a->centre), a->radius, normalizedAngle(a->a0),
                                     normalizedAngle(a->a1));
  return nullptr;
}

// One pass: the base meets everything that can lie over it.
void pass(AcDbDatabase& drawing, WorkList& work, int& erasedCount) {
  const std::size_t self = work.first();
  const AcDbObjectId baseId = work.at(self).id;
  FoldBase base{work.at(self).shape};
  work.remove(self);
  std::vector<std::size_t> others;
  work.nearTo(base.shape, self, others);
  for (std::size_t i : others) {
    if (!drawing.open<AcDbEntity>(work.at(i).id, OpenMode::kForWrite)) {
      work.remove(i);
      continue;
    }
    const bool stood = !base.gaveWay;
    const FoldOutcome outcome = fold(base, work.at(i).shape);
    if (stood && base.gaveWay && eraseEntity(drawing, baseId)) ++erasedCount;
    if (outcome == FoldOutcome::kKeep) continue;
    work.remove(i);
    if (outcome == FoldOutcome::kAbsorb && eraseEntity(drawing, work.at(i).id)) ++erasedCount;
  }
  if (!base.merged || base.gaveWay) return;
  if (auto merged = mergedEntity(base.shape)) {
    const FoldShape shape = *shapeOf(*merged);
    work.add(appendToModelSpace(drawing, std::move(merged), {}, kColorByLayer, ""), shape);
    eraseEntity(drawing, baseId);
  }
}

// Erases what the options ask for; what may be folded goes into the work list.
SelectionSet eraseSmall(Module& module, const SelectionSet& set, int& erasedCount) {
  const auto& s = module.settings;
  SelectionSet work;
  for (AcDbObjectId id : set) {
    auto entity = module.drawing().open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!entity) continue;
    bool gone = false;
    if (entity->isKindOf(AcDbPoint::desc())) {
      gone = s.bDupPoint != 0;
    } else if (shapeOf(*entity)) {
      gone = s.bDupCurve != 0 && static_cast<const AcDbCurve&>(*entity).length() < s.dDupTol;
      if (!gone) work.push_back(id);
    }
    if (gone && entity->erase() == ErrorStatus::eOk) ++erasedCount;
  }
  return work;
}

}  // namespace

void foldCurves(AcEditor& editor, const SelectionSet& list, int& erasedCount) {
  AcDbDatabase& drawing = editor.database();
  WorkList work;
  for (AcDbObjectId id : list)
    if (const auto* entity = drawing.peek<AcDbEntity>(id))
      if (const auto shape = shapeOf(*entity)) work.add(id, *shape);
  const auto total = static_cast<long>(list.size());
  while (work.alive() >= 2) {
    editor.acedSetStatusBarProgressMeterPos(total - static_cast<long>(work.alive()));
    if (!drawing.open<AcDbEntity>(work.at(work.first()).id, OpenMode::kForWrite)) return;
    pass(drawing, work, erasedCount);
  }
}

void scc(Module& module) {
  if (DialogLibrary(module).call("DupDlg", 0) == 0) return;
  module.loadSettings();
  AcEditor::SelectArgs args;
  args.filter = {{0, std::string("POINT,LINE,ARC,CIRCLE,LWPOLYLINE")}};
  const auto set = module.editor.acedSSGet("", args);
  if (!set || set.value.empty()) return;
  int erasedCount = 0;
  const SelectionSet work = eraseSmall(module, set.value, erasedCount);
  if (module.settings.bFoldCurves == 0) return;
  module.editor.acedSetStatusBarProgressMeter(module.message(273, {static_cast<long long>(work.size())}), 0,
                                              static_cast<long>(work.size()));
  foldCurves(module.editor, work, erasedCount);
  module.editor.acedRestoreStatusBar();
  module.editor.print("\n");
  module.editor.print(module.message(274, {static_cast<long long>(erasedCount)}));
}

}  // namespace tarnex
