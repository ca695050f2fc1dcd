// Recording what entities draw.
// Knows layers and line types; how a primitive looks on paper, the painters know.
#include "host/display/displaylist.h"

#include <algorithm>

#include "host/database/linetypes.h"
#include "host/display/shape.h"

namespace tarnex {

namespace {

bool drawable(double v) {
  return std::abs(v) <= kFarthestDrawn;
}  // false for what is no number
bool drawable(const AcGePoint3d& p) {
  return drawable(p.x) && drawable(p.y) && drawable(p.z);
}

bool sameName(std::string_view a, std::string_view b) {
  const auto low = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return low(x) == low(y); });
}

double realHeader(const AcDbDatabase& drawing, const char* name, double otherwise) {
  const auto found = drawing.headerVariables.find(name);
  const auto* value =
      found == drawing.headerVariables.end() ? nullptr : std::get_if<double>(&found->second.value);
  return value && *value > 0 && std::isfinite(*value) ? *value : otherwise;
}

bool wanted(const AcDbDatabase& drawing, const AcDbEntity& entity, const DisplayOptions& options) {
  if (!drawing.isShown(entity)) return false;
  if (options.wantsLayer && !options.wantsLayer(drawing.layerName(entity.layerId()))) return false;
  const auto* layer = drawing.peek<AcDbLayerTableRecord>(entity.layerId());
  return !options.plottableOnly || !layer || layer->isPlottable();
}

}  // namespace

DisplayList buildDisplayList(const AcDbDatabase& drawing, const DisplayOptions& options) {
  DisplayList list;
  list.patternScale = realHeader(drawing, "$LTSCALE", 1);
  DisplayRecorder recorder(list, &drawing, options.applicationContext);
  const auto ids = drawing.modelSpaceEntities();
  list.primitives.reserve(ids.size());
  for (const AcDbObjectId id : ids) {
    const auto* entity = drawing.peek<AcDbEntity>(id);
    if (entity && wanted(drawing, *entity, options)) recorder.record(*entity);
  }
  return list;
}

// ---- what is in force

void DisplayRecorder::record(const AcDbEntity& entity) {
  entity_ = &entity;
  now_ = {};
  now_.owner = entity.objectId();
  setColor(entity.colorIndex());
  now_.pattern = patternOf(linetypeOf(entity));
  entityBox_ = {};
  entity.worldDraw(*this);
  list_.extents.add(entity.isKindOf(AcDbRay::desc()) ? entity.getGeomExtents() : entityBox_);
  entity_ = nullptr;
}

const AcDbLayerTableRecord* DisplayRecorder::layerOf(const AcDbEntity& entity) const {
  if (!drawing_) return nullptr;
  return drawing_->peek<AcDbLayerTableRecord>(entity.layerId().isNull() ? drawing_->layer("0")
                                                                        : entity.layerId());
}

const AcDbLinetypeTableRecord* DisplayRecorder::linetypeOf(const AcDbEntity& entity) const {
  if (!drawing_) return nullptr;
  const auto* own = drawing_->peek<AcDbLinetypeTableRecord>(entity.linetypeId());
  if (own && !sameName(own->getName(), "ByLayer")) return own;
  const auto* layer = layerOf(entity);
  return layer ? drawing_->peek<AcDbLinetypeTableRecord>(layer->linetypeId()) : nullptr;
}

int DisplayRecorder::patternNamed(const std::string& name, const std::vector<double>& dashes) {
  if (dashes.empty()) return 0;
  const auto [place, added] = known_.emplace(name, static_cast<int>(list_.patterns.size()));
  if (added) list_.patterns.push_back({name, dashes});
  return place->second;
}

int DisplayRecorder::patternOf(const AcDbLinetypeTableRecord* linetype) {
  return linetype ? patternNamed(linetype->getName(), linetype->dashes) : 0;
}

void DisplayRecorder::setColor(int index) {
  if (index == kColorByLayer && entity_) {
    const auto* layer = layerOf(*entity_);
    index = layer ? layer->colorIndex() : kForegroundColor;
  }
  now_.color = index >= 1 && index <= 255 ? index : kForegroundColor;
}

void DisplayRecorder::setLineType(std::string_view name) {
  if (entity_ && sameName(name, "ByLayer")) {
    const auto* layer = layerOf(*entity_);
    now_.pattern =
        layer && drawing_ ? patternOf(drawing_->peek<AcDbLinetypeTableRecord>(layer->linetypeId())) : 0;
  } else if (const auto* record =
                 drawing_ ? drawing_->peek<AcDbLinetypeTableRecord>(drawing_->linetype(name)) : nullptr) {
    now_.pattern = patternOf(record);
  } else if (const auto host = hostLinetype(name)) {
    now_.pattern = patternNamed(host->name, host->dashes);
  }
}

// ---- primitives

template <class Shape>
void DisplayRecorder::add(Shape shape, bool drawable) {
  if (!drawable) {
    ++list_.dropped;
    return;
  }
  now_.shape = std::move(shape);
  entityBox_.add(extentsOf(now_));
  list_.primitives.push_back(now_);
}

void DisplayRecorder::polyline(std::span<const AcGePoint3d> points) {
  if (points.empty()) return;
  const bool good =
      std::all_of(points.begin(), points.end(), [](const AcGePoint3d& p) { return drawable(p); });
  add(DrawnPolyline{{points.begin(), points.end()}}, good);
}

void DisplayRecorder::circle(const AcGePoint3d& centre, double radius) {
  add(DrawnCircle{centre, std::abs(radius)}, drawable(centre) && drawable(radius));
}

void DisplayRecorder::circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                                  const AcGePoint3d& end) {
  add(DrawnArc{start, point, end}, drawable(start) && drawable(point) && drawable(end));
}

void DisplayRecorder::text(const AcGePoint3d& position, AcGeVector3d direction, double height,
                           std::string_view utf8) {
  if (utf8.empty()) return;
  const AcGeVector2d along = AcGeVector2d{direction.x, direction.y}.normal();
  const bool good = drawable(position) && drawable(along.x) && drawable(along.y) && drawable(height);
  add(DrawnText{position, along.length() > 0 ? along : AcGeVector2d{1, 0}, std::abs(height), shownText(utf8)},
      good);
}

}  // namespace tarnex
