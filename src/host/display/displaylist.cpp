// Recording what entities draw.
// Knows layers and line types; how a primitive looks on paper, the painters know.
#include "host/display/displaylist.h"

#include <algorithm>
#include <array>
#include <limits>

#include "host/database/linetypes.h"
#include "host/display/shape.h"
#include "host/platform/memory.h"

namespace tarnex {

namespace {

// One entity in so many of a large drawing tells how much room all of them take.
constexpr std::size_t kLarge = 1024, kSampleShare = 64, kMostSampled = 256;
constexpr double kSpareRoom = 1.1;                            // a sample is no count
constexpr std::size_t kMostReserved = std::size_t{1} << 30;   // bytes; a sample may hold the one huge entity
constexpr int kContinuous = 0, kByLayer = -1, kUnknown = -2;  // beside indices of patterns

bool drawable(double v) {
  return std::abs(v) <= kFarthestDrawn;
}  // false for what is no number
bool drawable(const AcGePoint3d& p) {
  return drawable(p.x) && drawable(p.y) && drawable(p.z);
}

// Millions of small things: the system's pages, met one by one, would cost as much as recording them.
template <class T>
void makeRoom(std::vector<T>& room, double count) {
  constexpr std::size_t kMost = kMostReserved / sizeof(T);
  const double held = std::min(count, static_cast<double>(kMost));
  const auto wanted = static_cast<std::size_t>(std::ceil(held));
  if (wanted <= room.capacity()) return;
  room.reserve(wanted);
  expectFilled(room.data() + room.size(), (room.capacity() - room.size()) * sizeof(T));
}

bool sameName(std::string_view a, std::string_view b) {
  const auto low = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return low(x) == low(y); });
}

}  // namespace

// ---- the list

DrawnShape DisplayList::shapeOf(const Primitive& p) const {
  return visit(p, [](const auto& shape) { return DrawnShape{shape}; });
}

void DisplayList::put(Primitive& look, ShapeKind kind, std::span<const AcGePoint3d> points) {
  look.kind = kind;
  look.first = static_cast<std::uint32_t>(points_.size());
  look.count = static_cast<std::uint32_t>(points.size());
  for (const AcGePoint3d& p : points) points_.push_back(p);  // mostly two or three
  primitives.push_back(look);
}

void DisplayList::add(Primitive look, const DrawnPolyline& s) {
  put(look, ShapeKind::kPolyline, s.points);
}
void DisplayList::add(Primitive look, const DrawnCircle& s) {
  put(look, ShapeKind::kCircle, std::array{s.centre, AcGePoint3d{s.radius, 0, 0}});
}
void DisplayList::add(Primitive look, const DrawnArc& s) {
  put(look, ShapeKind::kArc, std::array{s.start, s.point, s.end});
}
void DisplayList::add(Primitive look, const DrawnText& s) {
  look.kind = ShapeKind::kText;
  look.first = static_cast<std::uint32_t>(texts_.size());
  look.count = 1;
  texts_.push_back({s.position, s.direction, s.height, letters_.size(), s.utf8.size()});
  letters_ += s.utf8;
  primitives.push_back(look);
}
void DisplayList::add(const Primitive& look, const DrawnShape& shape) {
  std::visit([&](const auto& s) { add(look, s); }, shape);
}

void DisplayList::reserveAs(const DisplayList& other, double times) {
  makeRoom(primitives, times * static_cast<double>(other.primitives.size()));
  makeRoom(points_, times * static_cast<double>(other.points_.size()));
  makeRoom(texts_, times * static_cast<double>(other.texts_.size()));
  const double letters = times * static_cast<double>(other.letters_.size());
  letters_.reserve(static_cast<std::size_t>(std::min(letters, static_cast<double>(kMostReserved))));
}

double patternScaleOf(const AcDbDatabase& drawing) {
  const auto found = drawing.headerVariables.find("$LTSCALE");
  const auto* value =
      found == drawing.headerVariables.end() ? nullptr : std::get_if<double>(&found->second.value);
  return value && *value > 0 && std::isfinite(*value) ? *value : 1;
}

bool isListed(const AcDbDatabase& drawing, const AcDbEntity& entity, const DisplayOptions& options) {
  if (!drawing.isShown(entity)) return false;
  if (!options.wantsLayer && !options.plottableOnly) return true;
  const auto* layer = drawing.peek<AcDbLayerTableRecord>(entity.layerId());
  if (options.wantsLayer && !options.wantsLayer(layer ? layer->getName() : "0")) return false;
  return !options.plottableOnly || !layer || layer->isPlottable();
}

// From all over the drawing, since kinds come in runs: first what was drawn, then the paths on it. The step
// varies, since kinds also come in turn.
void reserveFor(DisplayList& list, const AcDbDatabase& drawing, std::span<const AcDbObjectId> entities,
                const DisplayOptions& options) {
  if (entities.size() < kLarge) return;
  const std::size_t count = std::min(entities.size() / kSampleShare, kMostSampled);
  const std::size_t step = entities.size() / count;
  DisplayList sample;
  DisplayRecorder recorder(sample, &drawing, options.applicationContext);
  for (std::size_t i = 0; i < count; ++i) {
    const auto* entity = drawing.peek<AcDbEntity>(entities[i * step + i % step]);
    if (entity && isListed(drawing, *entity, options)) recorder.record(*entity);
  }
  list.reserveAs(sample, kSpareRoom * static_cast<double>(step));
}

DisplayList buildDisplayList(const AcDbDatabase& drawing, const DisplayOptions& options) {
  DisplayList list;
  list.patternScale = patternScaleOf(drawing);
  DisplayRecorder recorder(list, &drawing, options.applicationContext);
  const auto ids = drawing.modelSpaceEntities();
  reserveFor(list, drawing, ids, options);
  for (const AcDbObjectId id : ids) {
    const auto* entity = drawing.peek<AcDbEntity>(id);
    if (entity && isListed(drawing, *entity, options)) recorder.record(*entity);
  }
  return list;
}

// ---- what is in force

DisplayRecorder::DisplayRecorder(DisplayList& list, const AcDbDatabase* drawing, const void* context)
    : list_(list), drawing_(drawing), context_(context) {
  for (std::size_t i = 1; i < list.patterns.size(); ++i)
    patternNames_.emplace(list.patterns[i].name, static_cast<int>(i));
}

Extents2d DisplayRecorder::record(const AcDbEntity& entity) {
  layer_ = &layerOf(entity);
  now_ = {};
  now_.owner = entity.objectId();
  setColor(entity.colorIndex());
  now_.pattern = static_cast<std::uint16_t>(patternOf(entity.linetypeId(), layer_->pattern));
  entityBox_ = {};
  entity.worldDraw(*this);
  if (entity.isKindOf(AcDbRay::desc())) entityBox_ = entity.getGeomExtents();
  list_.extents.add(entityBox_);
  layer_ = nullptr;
  return entityBox_;
}

const DisplayRecorder::LayerLook& DisplayRecorder::layerOf(const AcDbEntity& entity) {
  const auto [place, added] = layers_.try_emplace(entity.layerId().index);
  LayerLook& look = place->second;
  if (!added || !drawing_) return look;
  const auto* layer = drawing_->peek<AcDbLayerTableRecord>(entity.layerId().isNull() ? drawing_->layer("0")
                                                                                     : entity.layerId());
  if (!layer) return look;
  look.color = layer->colorIndex();
  if (const auto* linetype = drawing_->peek<AcDbLinetypeTableRecord>(layer->linetypeId()))
    look.pattern = patternNamed(linetype->getName(), linetype->dashes);
  return look;
}

int DisplayRecorder::patternNamed(const std::string& name, const std::vector<double>& dashes) {
  if (dashes.empty()) return kContinuous;
  const auto [place, added] = patternNames_.emplace(name, static_cast<int>(list_.patterns.size()));
  if (!added) return place->second;
  if (place->second > std::numeric_limits<std::uint16_t>::max()) return place->second = kContinuous;
  list_.patterns.push_back({name, dashes});
  return place->second;
}

// The line type's pattern; `otherwise` for none, or one that is by layer.
int DisplayRecorder::patternOf(AcDbObjectId linetype, int otherwise) {
  if (!drawing_ || linetype.isNull()) return otherwise;
  const auto [place, added] = linetypes_.emplace(linetype.index, kByLayer);
  if (added) {
    const auto* record = drawing_->peek<AcDbLinetypeTableRecord>(linetype);
    if (record && !sameName(record->getName(), "ByLayer"))
      place->second = patternNamed(record->getName(), record->dashes);
  }
  return place->second == kByLayer ? otherwise : place->second;
}

void DisplayRecorder::setColor(int index) {
  if (index == kColorByLayer && layer_) index = layer_->color;
  now_.color = static_cast<std::uint8_t>(index >= 1 && index <= 255 ? index : kForegroundColor);
}

void DisplayRecorder::setLineType(std::string_view name) {
  auto known = std::find_if(asked_.begin(), asked_.end(), [&](const auto& a) { return a.first == name; });
  if (known == asked_.end()) known = asked_.insert(known, {std::string(name), lookUp(name)});
  if (known->second == kUnknown) return;
  const int pattern = known->second == kByLayer ? layer_ ? layer_->pattern : kContinuous : known->second;
  now_.pattern = static_cast<std::uint16_t>(pattern);
}

int DisplayRecorder::lookUp(std::string_view name) {
  if (sameName(name, "ByLayer")) return kByLayer;
  if (drawing_)
    if (const auto* record = drawing_->peek<AcDbLinetypeTableRecord>(drawing_->linetype(name)))
      return patternNamed(record->getName(), record->dashes);
  const auto host = hostLinetype(name);
  return host ? patternNamed(host->name, host->dashes) : kUnknown;
}

// ---- primitives

template <class Shape>
void DisplayRecorder::add(const Shape& shape, bool drawable) {
  if (!drawable) {
    ++list_.dropped;
    return;
  }
  entityBox_.add(extentsOf(shape));
  list_.add(now_, shape);
}

void DisplayRecorder::polyline(std::span<const AcGePoint3d> points) {
  if (points.empty()) return;
  add(DrawnPolyline{points},
      std::all_of(points.begin(), points.end(), [](const AcGePoint3d& p) { return drawable(p); }));
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
  const bool coded = utf8.find("%%") != std::string_view::npos;
  const std::string shown = coded ? shownText(utf8) : std::string();
  add(DrawnText{position, along.length() > 0 ? along : AcGeVector2d{1, 0}, std::abs(height),
                coded ? std::string_view(shown) : utf8},
      good);
}

}  // namespace tarnex
