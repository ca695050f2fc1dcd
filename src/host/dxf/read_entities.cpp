// BLOCKS and ENTITIES: every entity to its block, with layer, colour, handle and place in the file.
// Knows the database; what an entity's tags mean is the parser's business.
#include <algorithm>

#include "host/dxf/reader.h"

namespace tarnex {
namespace {

bool endsEntities(std::string_view type) {
  return type == "ENDSEC" || type == "ENDBLK" || type == "EOF" || type == "SECTION" || type == "BLOCK";
}

}  // namespace

void DxfReader::blocks() {
  for (auto& pair : endlessReferences(tags_)) refused_.insert(pair);
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    const std::string_view type = tags_.word();
    if (type == "BLOCK")
      block();
    else if (type == "ENDSEC" || type == "SECTION" || type == "EOF")
      return tags_.stepBack();
  }
}

void DxfReader::block() {
  DxfBlock b;
  b.begin = tags_.tagOffset();
  b.id = blockHead();
  block_ = b.id;
  entities(b.id, false);
  b.bodyEnd = b.end = tags_.offset();
  if (tags_.next() && tags_.is("ENDBLK")) {
    while (tags_.next() && tags_.code() != 0)
      if (tags_.code() == 5) handleSeen(tags_.handle());
    tags_.stepBack();
    b.end = tags_.offset();
  } else {
    note(b.bodyEnd, "the block " + doc_.codec.decode(blockName_) + " has no end");
    tags_.stepBack();
  }
  doc_.blocks.push_back(b);
  blockName_ = {};
}

// The BLOCK entity itself; the block may be there from its record or from a reference.
AcDbObjectId DxfReader::blockHead() {
  AcGePoint3d origin;
  blockName_ = {};
  while (nextOrResync() && tags_.code() != 0) {
    switch (tags_.code()) {
      case 2:
        if (blockName_.empty()) blockName_ = tags_.word();
        break;
      case 5:
        handleSeen(tags_.handle());
        break;
      case 10:
        origin.x = tags_.real().value_or(0) * doc_.factor;
        break;
      case 20:
        origin.y = tags_.real().value_or(0) * doc_.factor;
        break;
      case 30:
        origin.z = tags_.real().value_or(0) * doc_.factor;
        break;
      default:
        break;
    }
  }
  tags_.stepBack();
  std::string name = doc_.codec.decode(blockName_);
  if (capitals(name) == "$MODEL_SPACE" || capitals(name) == "$PAPER_SPACE") name.front() = '*';
  const AcDbObjectId known = db_.block(name);
  if (auto there = db_.open<AcDbBlockTableRecord>(known, OpenMode::kForWrite)) {
    there->origin = origin;
    return known;
  }
  ensureSeed();
  auto record = std::make_unique<AcDbBlockTableRecord>();
  record->setName(name);
  record->origin = origin;
  return db_.addBlock(std::move(record));
}

void DxfReader::entities(AcDbObjectId owner, bool byPaperFlag) {
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    if (endsEntities(tags_.word())) return tags_.stepBack();
    entity(owner, byPaperFlag);
    if (doc_.cutAt != kNowhere) return;
  }
}

// With the "0 TYPE" tag as the present one.
void DxfReader::entity(AcDbObjectId owner, bool byPaperFlag) {
  const std::size_t begin = tags_.tagOffset();
  anything_ = true;
  std::unique_ptr<AcDbEntity> e = parser_.parse();
  const EntityHead& head = parser_.head();
  handleSeen(head.lastHandle);
  if (!e) return leaveOut(begin);
  if (!head.remark.empty()) note(begin, std::string(head.type) + ": " + head.remark);
  if (byPaperFlag && head.paper) owner = db_.paperSpace();
  if (head.xdataAt) e = withRecord(std::move(e), begin);
  const auto kind = static_cast<std::size_t>(parser_.kind());
  if (parser_.kind() == EntityKind::kOther || parser_.kind() == EntityKind::kSolid3d) {
    ++report_.entities[std::string(head.type)];
    if (owner == db_.modelSpace()) ++report_.modelSpace[std::string(head.type)];
  } else {
    ++kindCounts_[kind];
    modelCounts_[kind] += owner == db_.modelSpace();
  }
  take(std::move(e), owner, begin);
}

void DxfReader::leaveOut(std::size_t begin) {
  const EntityHead& head = parser_.head();
  ++report_.leftOut;
  if (!head.cut)
    return note(begin, std::string(head.type) + " without " + std::string(head.missing) + ", left out");
  if (tags_.damaged()) {
    const std::size_t from = tags_.tagOffset();
    note(from, std::string(head.type) + ": a group code was expected, the entity is left out");
    if (tags_.resynchronise()) return;
  }
  note(begin, std::string(head.type) + ": the file breaks off within it, left out");
  doc_.cutAt = begin;
}

void DxfReader::take(std::unique_ptr<AcDbEntity> e, AcDbObjectId owner, std::size_t begin) {
  const EntityHead& head = parser_.head();
  const auto length = static_cast<std::uint32_t>(tags_.offset() - begin);
  e->setSource({begin, length});
  if (!head.layer.empty()) e->setLayer(layerOf(head.layer));
  if (!head.lineType.empty()) e->setLinetype(lineTypeOf(head.lineType));
  if (head.color != kColorByLayer)
    e->setColorIndex(head.color >= 0 && head.color <= 257 ? head.color : kColorByLayer);
  if (head.invisible) e->setInvisible(true);
  if (head.hasHandle && (!head.handle || head.handle > kLargestHandle))
    note(begin, std::string(head.type) + ": its handle is empty or none");
  doc_.hasHandles = doc_.hasHandles || head.handle != 0;
  const AcDbObjectId id = db_.appendAcDbEntity(owner, std::move(e), usableHandle(head.handle, begin));
  doc_.entities.push_back({begin, length, id});
  if (recordPlace_) doc_.recordOf[id.index] = std::exchange(recordPlace_, 0);
}

// Extended data, and the object that an application's record holds in the shown polyline's place.
std::unique_ptr<AcDbEntity> DxfReader::withRecord(std::unique_ptr<AcDbEntity> shown, std::size_t begin) {
  for (auto& [application, chain] : readExtendedData(doc_.reader(), parser_.head().xdataAt, doc_.codec))
    shown->setXData(application, std::move(chain));
  if (!shown->isKindOf(AcDbPolyline::desc()) && !shown->isKindOf(AcDb2dPolyline::desc())) return shown;
  return readRecord(std::move(shown), begin, tags_.offset());
}

AcDbObjectId DxfReader::blockOf(std::string_view rawName) {
  if (!blockName_.empty() && refused_.count({capitals(blockName_), capitals(rawName)})) {
    note(tags_.tagOffset(), "block \"" + doc_.codec.decode(rawName) + "\" in \"" +
                                doc_.codec.decode(blockName_) +
                                "\": it lies within itself or too deep, the reference isn't followed");
    return {};
  }
  const std::string name = doc_.codec.decode(rawName);
  const AcDbObjectId there = db_.block(name);
  if (!there.isNull()) return there;
  ensureSeed();
  auto record = std::make_unique<AcDbBlockTableRecord>();  // filled when its definition comes
  record->setName(name);
  doc_.impliedBlocks.push_back(db_.addBlock(std::move(record)));
  return doc_.impliedBlocks.back();
}

AcDbObjectId DxfReader::layerOf(std::string_view rawName) {
  if (lastLayerKnown_ && rawName == lastLayer_) return lastLayerId_;
  const auto it = layerIds_.find(rawName);
  AcDbObjectId id;
  if (it != layerIds_.end()) {
    id = it->second;
  } else {
    const std::string name = doc_.codec.decode(rawName);
    id = db_.layer(name);
    if (id.isNull()) {
      ensureSeed();
      auto record = std::make_unique<AcDbLayerTableRecord>();
      record->setName(name);
      id = db_.addLayer(std::move(record));
      doc_.impliedLayers.push_back(id);
    }
    layerIds_.emplace(rawName, id);
  }
  lastLayer_ = rawName;
  lastLayerId_ = id;
  lastLayerKnown_ = true;
  return id;
}

AcDbObjectId DxfReader::lineTypeOf(std::string_view rawName) {
  const auto it = lineTypeIds_.find(rawName);
  if (it != lineTypeIds_.end()) return it->second;
  const std::string name = doc_.codec.decode(rawName);
  AcDbObjectId id;
  if (capitals(name) != "BYLAYER") {
    id = db_.linetype(name);
    if (id.isNull()) {
      ensureSeed();
      auto record = std::make_unique<AcDbLinetypeTableRecord>();
      record->setName(name);
      id = db_.addLinetype(std::move(record));
      doc_.impliedLineTypes.push_back(id);
    }
  }
  lineTypeIds_.emplace(rawName, id);
  return id;
}

void DxfReader::handleSeen(std::uint64_t handle) {
  if (handle <= kLargestHandle) doc_.lastHandle = std::max(doc_.lastHandle, handle);
}

// The handle to ask the drawing for: 0 when the file has none or it is taken.
std::uint64_t DxfReader::usableHandle(std::uint64_t wanted, std::size_t offset) {
  if (wanted == 0 || wanted > kLargestHandle) {
    ensureSeed();
    return 0;
  }
  const AcDbObjectId holder = db_.idOfHandle(wanted);
  if (holder.isNull()) return wanted;
  const auto* object = db_.peek<AcDbObject>(holder);
  if (object->source().length == 0) return wanted;  // came with the empty drawing and yields
  note(offset, "a handle stands twice in the file");
  ensureSeed();
  return 0;
}

// Handles of our own must not be those of objects that come later in the file.
void DxfReader::ensureSeed() {
  if (seedKnown_) return;
  seedKnown_ = true;
  TagReader all = doc_.reader();
  std::uint64_t last = 0;
  for (;;) {
    while (all.next()) {
      if (all.code() != 5 && all.code() != 105) continue;
      const std::uint64_t h = all.handle();
      if (h < kLargestHandle) last = std::max(last, h);
    }
    if (!all.damaged() || !all.resynchronise()) break;
  }
  db_.reserveHandlesTo(last);
}

}  // namespace tarnex
