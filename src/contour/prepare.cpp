// From one picked entity to one polyline: which kinds are taken, what is converted, what joins from the whole
// drawing. Knows the conversions and the chain; no path.
#include <algorithm>

#include "contour/approximation.h"
#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"

namespace tarnex {

namespace {

// The candidates of the whole drawing, kept in step with it: a chain costs what has changed since the last
// one.
struct DrawingCandidates {
  AcDbDatabase* drawing = nullptr;
  std::uint64_t stamp = 0;
  ChainCandidates candidates;
  std::vector<AcDbObjectId> waiting;  // couldn't be taken when they were looked at: seeds, locked layers
};

// The drawing's form of a two-vertex polyline: its one span as a line or an arc, by layer's colour.
AcDbObjectId explodeTwoVertices(AcDbDatabase& drawing, AcDbObjectId id) {
  std::vector<std::unique_ptr<AcDbEntity>> parts;
  AcDbObjectId layer;
  {
    auto polyline = drawing.open<AcDbPolyline>(id, OpenMode::kForWrite);
    if (!polyline || polyline->explode(parts) != ErrorStatus::eOk || parts.size() != 1) return {};
    layer = parts.front()->layerId();
    polyline->erase();
  }
  return appendToModelSpace(drawing, std::move(parts.front()), layer, kColorByLayer, "");
}

// What the entity is as a candidate, after the drawing has been changed for it; null when it is none.
// Nothing: it can't be changed now.
std::optional<AcDbObjectId> candidateFor(AcEditor& editor, AcDbObjectId id) {
  AcDbDatabase& drawing = editor.database();
  int vertices = 0;
  {
    auto entity = drawing.open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!entity) return std::nullopt;
    if (entity->isKindOf(AcDbLine::desc()) || entity->isKindOf(AcDbArc::desc())) return id;
    auto* polyline =
        &entity->isA() == &AcDbPolyline::desc() ? static_cast<AcDbPolyline*>(entity.get()) : nullptr;
    if (polyline) {
      if (polyline->isClosed() || polyline->numVerts() == 0) return AcDbObjectId{};
      vertices = polyline->numVerts();
      if (vertices != 2) {
        removeCoincidentVertices(*polyline);
        return id;
      }
    } else if (!entity->isKindOf(AcDbEllipse::desc())) {
      return AcDbObjectId{};
    }
  }
  return vertices == 2 ? explodeTwoVertices(drawing, id) : ellipseToPolyline(editor, id);
}

// False: the entity can't be changed now.
bool addCandidate(AcEditor& editor, AcDbObjectId id, std::uint64_t order, ChainCandidates& candidates) {
  const auto becomes = candidateFor(editor, id);
  if (!becomes) return false;
  // A whole ellipse is a closed polyline now, and closed ones never join.
  if (const auto* curve = editor.database().peek<AcDbCurve>(*becomes); curve && !curve->isClosed())
    candidates.add(*becomes, curve->getStartPoint().flat(), curve->getEndPoint().flat(), order);
  return true;
}

// The candidates of the whole drawing without the seed.
ChainCandidates& wholeDrawing(Module& module, AcDbObjectId seed) {
  AcDbDatabase& drawing = module.drawing();
  auto& kept = module.state<DrawingCandidates>();
  std::vector<AcDbObjectId> touched;
  if (kept.drawing != &drawing || !drawing.changesSince(kept.stamp, touched)) {
    kept.candidates = {};
    kept.waiting.clear();
    kept.drawing = &drawing;
    touched = drawing.modelSpaceEntities();
  }
  kept.stamp = drawing.changeStamp();
  touched.insert(touched.end(), kept.waiting.begin(), kept.waiting.end());
  kept.waiting.clear();
  for (AcDbObjectId id : touched) {
    kept.candidates.remove(id);
    if (id != seed && drawing.peek<AcDbEntity>(id) &&
        !addCandidate(module.editor, id, id.index, kept.candidates))
      kept.waiting.push_back(id);
  }
  kept.candidates.remove(seed);
  kept.waiting.push_back(seed);
  return kept.candidates;
}

bool replaceHeavyPolyline(AcDbDatabase& drawing, AcDbObjectId& id) {
  std::unique_ptr<AcDbPolyline> light;
  AcDbObjectId layer;
  int color = kColorByLayer;
  {
    auto heavy = drawing.open<AcDb2dPolyline>(id, OpenMode::kForWrite);
    if (!heavy) return false;
    heavy->setPolyType(Poly2dType::k2dSimplePoly);
    light = convertFrom(*heavy);
    layer = heavy->layerId();
    color = heavy->colorIndex();
    heavy->erase();
  }
  id = appendToModelSpace(drawing, std::move(light), layer, color, "");
  return true;
}

bool replaceSpline(Module& module, AcDbObjectId& id) {
  std::string question = module.message(381);
  for (int number : {382, 383, 384}) question += "\n\n" + module.message(number);
  if (!module.editor.askYesNo(question)) return false;
  AcDbObjectId made;
  {
    const auto spline = module.drawing().open<AcDbSpline>(id);
    if (spline) made = splineToPolyline(module.editor, *spline);
  }
  if (made.isNull()) {
    module.editor.print("\njoin spline failed!");
    return false;
  }
  if (auto spline = module.drawing().open<AcDbSpline>(id, OpenMode::kForWrite)) spline->erase();
  id = made;
  return true;
}

bool isClosedPolyline(AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* polyline = drawing.peek<AcDbPolyline>(id);
  return polyline && polyline->isClosed();
}

}  // namespace

std::size_t collectChainCandidates(AcEditor& editor, const SelectionSet& set, ChainCandidates& candidates) {
  for (std::size_t i = 0; i < set.size(); ++i) (void)addCandidate(editor, set[i], i, candidates);
  return candidates.size();
}

bool prepareContour(Module& module, AcDbObjectId& id) {
  AcDbDatabase& drawing = module.drawing();
  if (drawing.peek<AcDbEllipse>(id)) {
    const AcDbObjectId made = ellipseToPolyline(module.editor, id);
    if (made.isNull()) return false;
    id = made;
  } else if (drawing.peek<AcDb2dPolyline>(id)) {
    if (!replaceHeavyPolyline(drawing, id)) return false;
  } else if (drawing.peek<AcDbSpline>(id)) {
    if (!replaceSpline(module, id)) return false;
  }
  if (isClosedPolyline(drawing, id)) return true;
  CommandSetting setting(module.editor);
  setting.osmode(0).cmdEcho(0);
  const auto joined = joinCurves(module.editor, id, wholeDrawing(module, id), kSamePoint);
  if (!joined) return false;
  id = *joined;
  return drawing.peek<AcDbPolyline>(id) != nullptr;
}

}  // namespace tarnex
