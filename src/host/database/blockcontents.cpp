// Adding up block definitions and unfolding references, without recursion.
// Knows the graph of blocks; no display and no file.
#include "host/database/blockcontents.h"

#include <algorithm>
#include <limits>

#include "host/database/state.h"

namespace tarnex {

namespace {

constexpr std::uint64_t kMany = std::numeric_limits<std::uint64_t>::max();

std::uint64_t times(std::uint64_t a, std::uint64_t b) {
  return b != 0 && a > kMany / b ? kMany : a * b;
}
std::uint64_t plus(std::uint64_t a, std::uint64_t b) {
  return a > kMany - b ? kMany : a + b;
}

// A quarter turn by sine and cosine is off by some 1e-16.
bool keepsBoxes(const AcGeMatrix3d& m) {
  const double straight = std::abs(m(0, 0)) + std::abs(m(1, 1)),
               crossed = std::abs(m(0, 1)) + std::abs(m(1, 0));
  return std::min(straight, crossed) <= 1e-14 * std::max(straight, crossed);
}

Extents2d imageOfBox(const Extents2d& box, const AcGeMatrix3d& m) {
  Extents2d image;
  if (box.empty()) return image;
  for (const double x : {box.low.x, box.high.x})
    for (const double y : {box.low.y, box.high.y}) image.add(m.apply(AcGePoint2d{x, y}));
  return image;
}

// The boxes of the array's corner cells, given that of the first.
Extents2d overCells(const Extents2d& first, const AcDbBlockReference& reference) {
  Extents2d all = first;
  if (first.empty() || cellsOf(reference) == 1) return all;
  const AcGePoint2d base = reference.blockTransform().apply(AcGePoint2d{});
  for (const int row : {0, std::max(reference.rows, 1) - 1})
    for (const int column : {0, std::max(reference.columns, 1) - 1}) {
      const AcGeVector2d by = reference.blockTransform(row, column).apply(AcGePoint2d{}) - base;
      all.add(Extents2d{first.low + by, first.high + by});
    }
  return all;
}

bool hasFinite(const AcGeMatrix3d& m) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 4; ++c)
      if (!std::isfinite(m(r, c))) return false;
  return true;
}

PartLook lookOf(const AcDbEntity& e) {
  return {e.layerId(), e.linetypeId(), e.colorIndex()};
}

}  // namespace

std::uint64_t cellsOf(const AcDbBlockReference& reference) {
  return static_cast<std::uint64_t>(std::max(reference.rows, 1)) *
         static_cast<std::uint64_t>(std::max(reference.columns, 1));
}

std::vector<Curve> imageOf(const Curve& c, const AcGeMatrix3d& m) {
  std::vector<Curve> images;
  if (!isValid(c) || !hasFinite(m)) return images;
  if (auto whole = transformed(c, m)) {
    images.push_back(std::move(*whole));
    return images;
  }
  if (!std::holds_alternative<PolylineCurve>(c)) return images;
  for (const Curve& span : exploded(c))
    if (auto image = transformed(span, m)) images.push_back(std::move(*image));
  return images;
}

PartLook lookWithin(const AcDbDatabase& database, const AcDbEntity& part, const PartLook& reference) {
  PartLook look = lookOf(part);
  if (look.layer.isNull() || look.layer == database.layer("0")) look.layer = reference.layer;
  if (look.color == kColorByBlock) look.color = reference.color;
  if (!look.linetype.isNull() && look.linetype == database.linetype("ByBlock"))
    look.linetype = reference.linetype;
  return look;
}

BlockContents& BlockContents::of(const AcDbDatabase& database) {
  return database.state_->contents;
}

std::vector<AcDbObjectId> BlockContents::children(AcDbObjectId block) const {
  std::vector<AcDbObjectId> ids;
  const auto* record = database_.peek<AcDbBlockTableRecord>(block);
  if (!record) return ids;
  for (const AcDbObjectId id : record->entities())
    if (const auto* nested = database_.peek<AcDbBlockReference>(id))
      ids.push_back(nested->blockTableRecord());
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

// From the block's own entities and what is known of the blocks that they insert.
BlockContents::Info BlockContents::summed(AcDbObjectId block) const {
  Info sum;
  const auto* record = database_.peek<AcDbBlockTableRecord>(block);
  if (!record) return sum;
  for (const AcDbObjectId id : record->entities()) {
    const auto* entity = database_.peek<AcDbEntity>(id);
    if (!entity || entity->isInvisible()) continue;
    if (!entity->isKindOf(AcDbBlockReference::desc())) {
      sum.box.add(entity->getGeomExtents());
      sum.parts = plus(sum.parts, 1);
      continue;
    }
    const auto& nested = static_cast<const AcDbBlockReference&>(*entity);
    const auto known = known_.find(nested.blockTableRecord().index);
    if (known == known_.end()) continue;
    const AcGeMatrix3d m = nested.blockTransform();
    if (!hasFinite(m)) continue;
    sum.box.add(overCells(imageOfBox(known->second.box, m), nested));
    sum.parts = plus(sum.parts, times(known->second.parts, cellsOf(nested)));
    sum.tight = sum.tight && known->second.tight && keepsBoxes(m);
    sum.withinItself = sum.withinItself || known->second.withinItself;
  }
  return sum;
}

const BlockContents::Info& BlockContents::info(AcDbObjectId block) {
  if (const auto it = known_.find(block.index); it != known_.end()) return it->second;
  struct Frame {
    AcDbObjectId block;
    std::vector<AcDbObjectId> children;
    std::size_t next = 0;
    bool withinItself = false;
  };
  std::vector<Frame> path;
  std::unordered_map<std::uint32_t, bool> onPath;
  const auto enter = [&](AcDbObjectId id) {
    path.push_back({id, children(id), 0, false});
    onPath[id.index] = true;
  };
  enter(block);
  while (!path.empty()) {
    Frame& top = path.back();
    if (top.next < top.children.size()) {
      const AcDbObjectId child = top.children[top.next++];
      if (onPath[child.index])
        top.withinItself = true;
      else if (!known_.contains(child.index))
        enter(child);
      continue;
    }
    Info sum = summed(top.block);
    sum.withinItself = sum.withinItself || top.withinItself;
    known_[top.block.index] = sum;
    onPath[top.block.index] = false;
    path.pop_back();
  }
  return known_.at(block.index);
}

bool BlockContents::unfold(const AcDbBlockReference& reference, std::uint64_t limit,
                           const std::function<void(const Part&)>& visit) {
  struct Frame {
    const AcDbBlockReference* reference;
    const std::vector<AcDbObjectId>* entities;
    AcGeMatrix3d outer, toWorld;
    PartLook look;
    int row = 0, column = 0;
    std::size_t next = 0;
  };
  std::vector<Frame> path;
  std::uint64_t visited = 0, entered = 0;
  const auto enter = [&](const AcDbBlockReference& nested, const AcGeMatrix3d& outer, const PartLook& look) {
    const Info& content = info(nested.blockTableRecord());
    const auto* record = database_.peek<AcDbBlockTableRecord>(nested.blockTableRecord());
    if (!record || content.parts == 0 || content.withinItself) return;
    const AcGeMatrix3d toWorld = outer * nested.blockTransform();
    if (!hasFinite(toWorld)) return;
    path.push_back({&nested, &record->entities(), outer, toWorld, look});
    ++entered;
  };
  enter(reference, AcGeMatrix3d(), lookOf(reference));
  while (!path.empty()) {
    Frame& top = path.back();
    if (top.next == top.entities->size()) {
      if (++top.column >= top.reference->columns) top.column = 0, ++top.row;
      if (top.row >= top.reference->rows) {
        path.pop_back();
        continue;
      }
      top.next = 0;
      top.toWorld = top.outer * top.reference->blockTransform(top.row, top.column);
      ++entered;
      continue;
    }
    const auto* entity = database_.peek<AcDbEntity>((*top.entities)[top.next++]);
    if (!entity || entity->isInvisible()) continue;
    if (visited >= limit || entered / 4 > limit) return false;
    const PartLook look = lookWithin(database_, *entity, top.look);
    if (entity->isKindOf(AcDbBlockReference::desc())) {
      enter(static_cast<const AcDbBlockReference&>(*entity), AcGeMatrix3d(top.toWorld), look);
    } else {
      ++visited;
      visit({entity, top.toWorld, look});
    }
  }
  return true;
}

Extents2d BlockContents::extentsOf(const AcDbBlockReference& reference) {
  const Info content = info(reference.blockTableRecord());
  const AcGeMatrix3d m = reference.blockTransform();
  Extents2d box;
  if (content.withinItself || content.parts == 0 || !hasFinite(m)) return box;
  const bool exactly = content.tight && keepsBoxes(m);
  if (exactly || times(content.parts, cellsOf(reference)) > AcDbBlockReference::kExactParts)
    return overCells(imageOfBox(content.box, m), reference);
  unfold(reference, AcDbBlockReference::kExactParts, [&](const Part& part) {
    const std::vector<Curve> curves = part.entity->outline();
    if (curves.empty()) box.add(imageOfBox(part.entity->getGeomExtents(), part.toWorld));
    for (const Curve& c : curves)
      for (const Curve& image : imageOf(c, part.toWorld)) box.add(extents(image));
  });
  return box;
}

}  // namespace tarnex
