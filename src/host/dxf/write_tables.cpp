// The TABLES section and block definitions written: new and changed layers, linetypes, application names,
// blocks. Knows table entries; entities are written elsewhere.
#include <algorithm>
#include <cmath>

#include "host/dxf/reader.h"
#include "host/dxf/writer.h"

namespace tarnex {
namespace {

constexpr int kFrozen = 1, kLocked = 4;

int flagsOf(const AcDbLayerTableRecord& layer) {
  return (layer.isFrozen() ? kFrozen : 0) | (layer.isLocked() ? kLocked : 0);
}
int colorOf(const AcDbLayerTableRecord& layer) {
  return layer.isOff() ? -layer.colorIndex() : layer.colorIndex();
}

}  // namespace

void DxfWriter::planTables() {
  planLayers();
  planLineTypes();
  planApplications();
  planBlockRecords();
}

void DxfWriter::needApplication(const std::string& name) {
  if (std::find(applications_.begin(), applications_.end(), name) == applications_.end())
    applications_.push_back(name);
}

bool DxfWriter::inTable(const char* table, const std::string& name) const {
  return tableNames_.count(std::string(table) + "/" + capitals(name)) != 0;
}

// Entries at the end of a table, with its count mended; the table is made when the file has none.
void DxfWriter::intoTable(const std::string& name, const std::string& entries, long count) {
  if (count == 0) return;
  const DxfTable* table = doc_.table(name);
  if (!table) return newTable(name, entries, count);
  edit(table->end, 0, entries);
  if (table->countAt == kNowhere) return;
  TagReader r = doc_.reader(table->countAt);
  if (!r.next() || r.integer() >= table->entries + count) return;
  edit(table->countAt, r.offset() - table->countAt,
       style().one(70, static_cast<long long>(table->entries + count)));
}

void DxfWriter::newTable(const std::string& name, const std::string& entries, long count) {
  TagWriter w = tags(newTables_);
  w.text(0, "TABLE");
  w.text(2, name);
  if (doc_.isModern()) {
    w.handle(5, freshHandle());
    w.handle(330, 0);
    w.text(100, "AcDbSymbolTable");
  }
  w.integer(70, count);
  w.raw(entries);
  w.text(0, "ENDTAB");
}

void DxfWriter::entryHead(TagWriter& w, const char* type, const char* marker, std::uint64_t handle) {
  w.text(0, type);
  if (usesHandles()) w.handle(5, handle);
  if (!doc_.isModern()) return;
  const DxfTable* table = doc_.table(type);
  if (table && table->handle) w.handle(330, table->handle);
  w.text(100, "AcDbSymbolTableRecord");
  w.text(100, marker);
}

void DxfWriter::planLayers() {
  for (const DxfTableEntry& e : doc_.tableEntries) {
    if (doc_.tables[e.table].name != "LAYER" || e.id.isNull()) continue;
    if (const auto* layer = db_.peek<AcDbLayerTableRecord>(e.id))
      patchLayer(e, *layer);
    else
      edit(static_cast<std::size_t>(e.place.offset), e.place.length, {});
  }
  std::string entries;
  long count = 0;
  for (const AcDbObjectId id : db_.layers()) {
    const auto& layer = *db_.peek<AcDbLayerTableRecord>(id);
    if (inTable("LAYER", layer.getName())) continue;
    const bool implied =
        std::find(doc_.impliedLayers.begin(), doc_.impliedLayers.end(), id) != doc_.impliedLayers.end();
    const bool plain = layer.source().length == 0 && id == db_.layer("0");
    if ((implied || plain) && !layer.changedSinceRead()) continue;
    layerEntry(entries, layer);
    ++count;
  }
  intoTable("LAYER", entries, count);
}

void DxfWriter::patchLayer(const DxfTableEntry& entry, const AcDbLayerTableRecord& layer) {
  const auto begin = static_cast<std::size_t>(entry.place.offset);
  TagPatch patch(doc_.reader(), begin, begin + entry.place.length);
  bool changed = false;
  const auto bring = [&](int code, long long now, long long absent, long long mask) {
    const auto at = patch.find(code);
    const long long before = at ? patch.at(*at).integer(absent) : absent;
    if ((before & mask) == (now & mask)) return;
    const long long value = (before & ~mask) | (now & mask);
    if (at)
      patch.replace(*at, style().one(code, value));
    else
      patch.insertBehind(patch.find(2).value_or(0), style().one(code, value));
    changed = true;
  };
  bring(70, flagsOf(layer), 0, kFrozen | kLocked);
  const auto colorAt = patch.find(62);
  const long long colorBefore = colorAt ? patch.at(*colorAt).integer(7) : 7;
  const bool odd = std::abs(colorBefore) < 1 || std::abs(colorBefore) > 255;  // read as 7
  if (!(odd && colorOf(layer) == (colorBefore < 0 ? -7 : 7))) bring(62, colorOf(layer), 7, -1);
  if (changed && colorAt && std::abs(colorBefore) != std::abs(colorOf(layer)))
    for (const int trueColor : {420, 430})
      if (const auto at = patch.find(trueColor)) patch.drop(*at);
  if (doc_.version >= 1015) bring(290, layer.isPlottable() ? 1 : 0, 1, 1);
  const auto lineAt = patch.find(6);
  const std::string lineBefore = lineAt ? doc_.codec.decode(patch.at(*lineAt).word()) : std::string();
  const auto* line = db_.peek<AcDbLinetypeTableRecord>(layer.linetypeId());
  if (line && capitals(line->getName()) != capitals(lineBefore.empty() ? "CONTINUOUS" : lineBefore)) {
    if (lineAt)
      patch.replace(*lineAt, style().one(6, line->getName()));
    else
      patch.insertBehind(patch.find(2).value_or(0), style().one(6, line->getName()));
    changed = true;
  }
  if (capitals(layer.getName()) != capitals(entry.name)) {
    if (const auto at = patch.find(2)) patch.replace(*at, style().one(2, layer.getName()));
    changed = true;
  }
  if (!changed) return;
  std::string out;
  patch.appendTo(out);
  edit(begin, entry.place.length, std::move(out));
}

// The plot style of another layer: files of AC1015 and later have one on each.
std::uint64_t DxfWriter::plotStyleHandle() const {
  for (const DxfTableEntry& e : doc_.tableEntries) {
    if (doc_.tables[e.table].name != "LAYER") continue;
    TagReader r = doc_.reader(static_cast<std::size_t>(e.place.offset));
    if (!r.next()) return 0;
    while (r.next() && r.code() != 0)
      if (r.code() == 390) return r.handle();
  }
  return 0;
}

void DxfWriter::layerEntry(std::string& out, const AcDbLayerTableRecord& layer) {
  TagWriter w = tags(out);
  entryHead(w, "LAYER", "AcDbLayerTableRecord", usesHandles() ? fileHandle(layer) : 0);
  w.text(2, text(layer.getName()));
  w.integer(70, flagsOf(layer));
  w.integer(62, colorOf(layer));
  const auto* line = db_.peek<AcDbLinetypeTableRecord>(layer.linetypeId());
  w.text(6, line ? text(line->getName()) : "CONTINUOUS");
  if (doc_.version >= 1015) {
    if (!layer.isPlottable()) w.integer(290, 0);
    w.integer(370, -3);  // line weight: default
    if (const std::uint64_t style = plotStyleHandle()) w.handle(390, style);
  }
  for (const std::string& application : layer.xDataApplications()) needApplication(application);
  extendedData(w, layer);
}

void DxfWriter::planLineTypes() {
  std::string entries;
  long count = 0;
  for (const AcDbObjectId id : db_.linetypes()) {
    const auto& line = *db_.peek<AcDbLinetypeTableRecord>(id);
    if (inTable("LTYPE", line.getName())) continue;
    const bool implied = std::find(doc_.impliedLineTypes.begin(), doc_.impliedLineTypes.end(), id) !=
                         doc_.impliedLineTypes.end();
    const std::string name = capitals(line.getName());
    if (implied || name == "BYLAYER" || name == "BYBLOCK" || name == "CONTINUOUS") continue;
    lineTypeEntry(entries, line);
    ++count;
  }
  intoTable("LTYPE", entries, count);
}

void DxfWriter::lineTypeEntry(std::string& out, const AcDbLinetypeTableRecord& line) {
  TagWriter w = tags(out);
  const FileSpace space{doc_.factor, false};
  entryHead(w, "LTYPE", "AcDbLinetypeTableRecord", usesHandles() ? fileHandle(line) : 0);
  w.text(2, text(line.getName()));
  w.integer(70, 0);
  w.text(3, text(line.description));
  w.integer(72, 65);
  w.integer(73, static_cast<long long>(line.dashes.size()));
  double total = 0;
  for (const double d : line.dashes) total += std::abs(d);
  w.real(40, space.length(total));
  for (const double d : line.dashes) {
    w.real(49, space.length(d));
    if (doc_.isModern()) w.integer(74, 0);
  }
}

void DxfWriter::planApplications() {
  std::string entries;
  long count = 0;
  for (const std::string& name : applications_) {
    if (inTable("APPID", name)) continue;
    TagWriter w = tags(entries);
    entryHead(w, "APPID", "AcDbRegAppTableRecord", usesHandles() ? freshHandle() : 0);
    w.text(2, text(name));
    w.integer(70, 0);
    ++count;
  }
  intoTable("APPID", entries, count);
}

// Records of new blocks; files before R13 have none.
void DxfWriter::planBlockRecords() {
  if (!doc_.isModern()) return;
  std::string entries;
  long count = 0;
  for (const AcDbObjectId id : db_.blocks()) {
    const auto& block = *db_.peek<AcDbBlockTableRecord>(id);
    if (id == db_.modelSpace() || id == db_.paperSpace() || inTable("BLOCK_RECORD", block.getName()))
      continue;
    if (!isNewBlock(block)) continue;
    TagWriter w = tags(entries);
    entryHead(w, "BLOCK_RECORD", "AcDbBlockTableRecord", fileHandle(block));
    w.text(2, text(block.getName()));
    if (doc_.version >= 1015) w.handle(340, 0);
    ++count;
  }
  intoTable("BLOCK_RECORD", entries, count);
}

// A block that the file doesn't define and that isn't merely named by a reference in it.
bool DxfWriter::isNewBlock(const AcDbBlockTableRecord& block) const {
  if (blockPlace_.count(block.objectId().index)) return false;
  return std::any_of(block.entities().begin(), block.entities().end(),
                     [this](AcDbObjectId id) { return db_.peek<AcDbEntity>(id) != nullptr; }) ||
         std::find(doc_.impliedBlocks.begin(), doc_.impliedBlocks.end(), block.objectId()) ==
             doc_.impliedBlocks.end();
}

void DxfWriter::blockDefinition(std::string& out, const AcDbBlockTableRecord& block) {
  TagWriter w = tags(out);
  const FileSpace space{doc_.factor, false};
  const auto head = [&](const char* type, const char* marker) {
    w.text(0, type);
    if (usesHandles()) w.handle(5, freshHandle());
    if (doc_.isModern()) {
      w.handle(330, ownerHandle(block.objectId()));
      w.text(100, "AcDbEntity");
    }
    w.text(8, "0");
    if (doc_.isModern()) w.text(100, marker);
  };
  head("BLOCK", "AcDbBlockBegin");
  w.text(2, text(block.getName()));
  w.integer(70, block.getName().substr(0, 1) == "*" ? 1 : 0);
  w.point(10, space.length(block.origin.x), space.length(block.origin.y), space.length(block.origin.z));
  w.text(3, text(block.getName()));
  if (doc_.isModern()) w.text(1, "");
  for (const AcDbObjectId id : block.entities())
    if (const auto* e = db_.peek<AcDbEntity>(id)) newEntity(out, *e);
  head("ENDBLK", "AcDbBlockEnd");
}

}  // namespace tarnex
