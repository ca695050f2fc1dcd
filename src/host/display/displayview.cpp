// Following a drawing's changes.
// Knows which entities were touched; how they draw themselves, they know.
#include "host/display/displayview.h"

#include <algorithm>
#include <functional>

namespace tarnex {

namespace {

constexpr std::size_t kLeastWaste = 10'000;  // primitives that may lie about unused before the list is tidied

class Mixer {
 public:
  template <class Value>
  void add(const Value& value) {
    mixed_ = (mixed_ ^ std::hash<Value>{}(value)) * 0x9E3779B97F4A7C15U;
    mixed_ ^= mixed_ >> 32;
  }
  [[nodiscard]] std::uint64_t mixed() const { return mixed_; }

 private:
  std::uint64_t mixed_ = 0;
};

// A number that differs when layers or line types look different; the feed of changes knows entities alone.
std::uint64_t looksOf(const AcDbDatabase& drawing) {
  Mixer all;
  for (const AcDbObjectId id : drawing.layers())
    if (const auto* layer = drawing.peek<AcDbLayerTableRecord>(id)) {
      all.add(id.index);
      all.add(layer->getName());
      all.add(layer->colorIndex());
      all.add(layer->linetypeId().index);
      all.add((layer->isOff() ? 4 : 0) + (layer->isFrozen() ? 2 : 0) + (layer->isPlottable() ? 1 : 0));
    }
  for (const AcDbObjectId id : drawing.linetypes())
    if (const auto* linetype = drawing.peek<AcDbLinetypeTableRecord>(id)) {
      all.add(id.index);
      all.add(linetype->getName());
      for (const double dash : linetype->dashes) all.add(dash);
    }
  return all.mixed();
}

}  // namespace

DisplayView::DisplayView(const AcDbDatabase& drawing, DisplayOptions options)
    : drawing_(drawing), options_(std::move(options)) {}

void DisplayView::setOptions(DisplayOptions options) {
  options_ = std::move(options);
  redrawAll();
}

void DisplayView::redraw(AcDbObjectId entity) {
  asked_.push_back(entity);
}

std::size_t DisplayView::update() {
  std::vector<AcDbObjectId> changed;
  const std::uint64_t looks = looksOf(drawing_), stamp = drawing_.changeStamp();
  const bool partly = reachesBack_ && looks == looks_ && drawing_.changesSince(stamp_, changed);
  stamp_ = stamp;
  looks_ = looks;
  reachesBack_ = true;
  shapes_.patternScale = patternScaleOf(drawing_);
  if (!partly) {
    asked_.clear();
    rebuild();
    return pieces_.size();
  }
  changed.insert(changed.end(), asked_.begin(), asked_.end());
  asked_.clear();
  std::sort(changed.begin(), changed.end());
  changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
  if (changed.empty()) return 0;
  DisplayRecorder recorder(shapes_, &drawing_, options_.applicationContext);
  for (const AcDbObjectId id : changed) redraw(recorder, id);
  tidyUp();
  return changed.size();
}

void DisplayView::rebuild() {
  const double scale = shapes_.patternScale;
  shapes_ = {};
  shapes_.patternScale = scale;
  pieces_.clear();
  standing_ = 0;
  DisplayRecorder recorder(shapes_, &drawing_, options_.applicationContext);
  const auto ids = drawing_.modelSpaceEntities();
  pieces_.reserve(ids.size());
  reserveFor(shapes_, drawing_, ids, options_);
  for (const AcDbObjectId id : ids) redraw(recorder, id);
}

// Ids grow in drawing order, so a new entity mostly goes to the end; one that was taken away and came back
// finds its piece again.
void DisplayView::redraw(DisplayRecorder& recorder, AcDbObjectId id) {
  const auto* entity = drawing_.peek<AcDbEntity>(id);
  const bool listed =
      entity && entity->ownerId() == drawing_.modelSpace() && isListed(drawing_, *entity, options_);
  auto piece = pieces_.end();
  if (!pieces_.empty() && !(pieces_.back().entity < id))
    piece = std::lower_bound(pieces_.begin(), pieces_.end(), id,
                             [](const Piece& p, AcDbObjectId other) { return p.entity < other; });
  if (piece == pieces_.end() || piece->entity != id) {
    if (!listed) return;
    piece = pieces_.insert(piece, Piece{id, 0, 0, {}, 0});
  }
  standing_ -= piece->count;
  *piece = {id, static_cast<std::uint32_t>(shapes_.primitives.size()), 0, {}, 0};
  if (!listed) return;
  const std::size_t dropped = shapes_.dropped;
  piece->extents = recorder.record(*entity);
  piece->count = static_cast<std::uint32_t>(shapes_.primitives.size()) - piece->first;
  piece->dropped = shapes_.dropped - dropped;
  standing_ += piece->count;
}

void DisplayView::copyInto(DisplayList& list, std::vector<Piece>* moved) const {
  list.patterns = shapes_.patterns;
  list.patternScale = shapes_.patternScale;
  list.reserveAs(shapes_);
  for (const Piece& piece : pieces_) {
    const auto first = static_cast<std::uint32_t>(list.primitives.size());
    for (std::uint32_t i = 0; i < piece.count; ++i) {
      const Primitive& p = shapes_.primitives[piece.first + i];
      list.add(p, shapes_.shapeOf(p));
    }
    list.dropped += piece.dropped;
    if (!moved || !drawing_.peek<AcDbEntity>(piece.entity)) continue;
    moved->push_back(piece);
    moved->back().first = first;
  }
}

// Leaves behind what no piece has, once it is more than what they have.
void DisplayView::tidyUp() {
  if (shapes_.primitives.size() <= 2 * standing_ + kLeastWaste) return;
  DisplayList tidy;
  std::vector<Piece> moved;
  copyInto(tidy, &moved);
  shapes_ = std::move(tidy);
  pieces_ = std::move(moved);
}

DisplayList DisplayView::list() const {
  DisplayList list;
  copyInto(list, nullptr);
  list.extents = extents();
  return list;
}

Extents2d DisplayView::extents() const {
  Extents2d all;
  for (const Piece& piece : pieces_) all.add(piece.extents);
  return all;
}

}  // namespace tarnex
