// Copying between drawings by the names of layers, line types and blocks.
// Knows no command and no file.
#include "host/editor/blockimport.h"

#include <utility>
#include <vector>

namespace tarnex {

namespace {

class Import {
 public:
  Import(AcDbDatabase& into, const AcDbDatabase& from) : into_(into), from_(from) {}
  BlockImport run(const std::string& name);

 private:
  AcDbObjectId newBlock(const std::string& name, AcDbObjectId source);
  AcDbObjectId blockFor(AcDbObjectId source);
  AcDbObjectId layerFor(AcDbObjectId source);
  AcDbObjectId linetypeFor(AcDbObjectId source);
  std::unique_ptr<AcDbEntity> copyOf(const AcDbEntity& entity);

  AcDbDatabase& into_;
  const AcDbDatabase& from_;
  std::vector<std::pair<AcDbObjectId, AcDbObjectId>> toFill_;  // source block, new block
  AcDbObjectId made_;
  std::size_t leftOut_ = 0;
};

template <class T>
std::unique_ptr<T> cloneOf(const T& record) {
  std::unique_ptr<T> copy(static_cast<T*>(record.clone().release()));
  copy->setSource({});  // its bytes are the other drawing's
  return copy;
}

AcDbObjectId Import::newBlock(const std::string& name, AcDbObjectId source) {
  auto record = std::make_unique<AcDbBlockTableRecord>();
  record->setName(name);
  if (const auto* old = from_.peek<AcDbBlockTableRecord>(source)) record->origin = old->origin;
  const auto id = into_.addBlock(std::move(record));
  toFill_.emplace_back(source, id);
  return id;
}

AcDbObjectId Import::blockFor(AcDbObjectId source) {
  const auto* block = from_.peek<AcDbBlockTableRecord>(source);
  if (!block) return {};
  auto name = block->getName();
  // The new block itself may bear the name of one that it holds.
  for (auto there = into_.block(name); !there.isNull(); there = into_.block(name)) {
    if (there != made_) return there;
    name += "$1";
  }
  return newBlock(name, source);
}

AcDbObjectId Import::linetypeFor(AcDbObjectId source) {
  const auto* linetype = from_.peek<AcDbLinetypeTableRecord>(source);
  if (!linetype) return {};
  const auto there = into_.linetype(linetype->getName());
  return there.isNull() ? into_.addLinetype(cloneOf(*linetype)) : there;
}

AcDbObjectId Import::layerFor(AcDbObjectId source) {
  const auto* layer = from_.peek<AcDbLayerTableRecord>(source);
  if (!layer) return {};
  if (const auto there = into_.layer(layer->getName()); !there.isNull()) return there;
  auto copy = cloneOf(*layer);
  copy->setLinetype(linetypeFor(layer->linetypeId()));
  return into_.addLayer(std::move(copy));
}

std::unique_ptr<AcDbEntity> Import::copyOf(const AcDbEntity& entity) {
  std::unique_ptr<AcDbEntity> copy;
  if (const auto* old = dynamic_cast<const AcDbBlockReference*>(&entity)) {
    auto reference = std::make_unique<AcDbBlockReference>(blockFor(old->blockTableRecord()), old->position());
    reference->scaleX = old->scaleX, reference->scaleY = old->scaleY, reference->scaleZ = old->scaleZ;
    reference->rotation = old->rotation, reference->mirroredPlane = old->mirroredPlane;
    reference->columns = old->columns, reference->rows = old->rows;
    reference->columnSpacing = old->columnSpacing, reference->rowSpacing = old->rowSpacing;
    reference->setColorIndex(old->colorIndex());
    reference->setInvisible(old->isInvisible());
    copy = std::move(reference);
  } else {
    copy = cloneOf(entity);
  }
  copy->setLayer(layerFor(entity.layerId()));
  copy->setLinetype(linetypeFor(entity.linetypeId()));
  return copy;
}

BlockImport Import::run(const std::string& name) {
  made_ = newBlock(name, from_.modelSpace());
  while (!toFill_.empty()) {
    const auto [source, target] = toFill_.back();
    toFill_.pop_back();
    const auto* old = from_.peek<AcDbBlockTableRecord>(source);
    if (!old) continue;
    for (const auto id : old->entities()) {
      const auto* entity = from_.peek<AcDbEntity>(id);
      if (!entity) continue;
      if (entity->isKindOf(AcDbKeptEntity::desc()))
        ++leftOut_;
      else
        into_.appendAcDbEntity(target, copyOf(*entity));
    }
  }
  return {made_, leftOut_};
}

}  // namespace

BlockImport importAsBlock(AcDbDatabase& into, const AcDbDatabase& from, const std::string& name) {
  return Import(into, from).run(name);
}

}  // namespace tarnex
