// Writing a drawing file: which places of the file change, and the stream of old and new bytes.
// Knows the order of a file; what the changes look like is in the other files of the writer.
#include <algorithm>

#include "host/dxf/reader.h"
#include "host/dxf/writer.h"

namespace tarnex {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;  // bytes handed to the sink at once
constexpr int kLastOrder = 1000;                        // ends of sections come behind what goes into them

}  // namespace

DxfWriter::DxfWriter(const AcDbDatabase& db, const DxfDocument& doc, const DxfSink& sink)
    : db_(db), doc_(doc), sink_(sink) {
  nextHandle_ = std::max<std::uint64_t>(db.nextHandle(), doc.lastHandle + 1);
  for (const DxfObject& o : doc.objects) {
    objectByHandle_.emplace(o.handle, &o);
    if (!o.place.id.isNull()) objectPlace_.emplace(o.place.id.index, &o);
  }
  for (const DxfHeaderVariable& v : doc.header) headerPlace_.insert_or_assign(v.name, &v);
  for (const DxfBlock& b : doc.blocks) blockPlace_.emplace(b.id.index, &b);
  for (const DxfTableEntry& e : doc.tableEntries)
    tableNames_.insert(doc.tables[e.table].name + "/" + capitals(e.name));
}

void DxfWriter::run() {
  plan();
  std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) {
    return a.at != b.at ? a.at < b.at : a.order < b.order;
  });
  stream();
}

void DxfWriter::edit(std::size_t at, std::size_t length, std::string text, int order) {
  Edit e;
  e.at = at;
  e.length = length;
  e.text = std::move(text);
  e.order = order;
  edits_.push_back(std::move(e));
}

const DxfSection* DxfWriter::section(std::string_view name) const {
  const auto it = std::find_if(doc_.sections.rbegin(), doc_.sections.rend(),
                               [&](const DxfSection& s) { return s.name == name; });
  return it == doc_.sections.rend() ? nullptr : &*it;
}

// At the end of the section, which is made when the file has none.
void DxfWriter::intoSection(const std::string& name, std::string content, int order) {
  if (content.empty()) return;
  if (const DxfSection* s = section(name)) return edit(s->end, 0, std::move(content), order);
  TagWriter w = tags(newSections_);
  w.text(0, "SECTION");
  w.text(2, name);
  w.raw(content);
  w.text(0, "ENDSEC");
}

// Order matters: entities tell which applications and handles are needed, tables and header come after them.
void DxfWriter::plan() {
  planEntities();
  planBlocks();
  planObjects();
  planTables();
  planHeader();
  planSections();
  planEnds();
}

const DxfPlace* DxfWriter::placeOf(SourceRef source) const {
  if (source.length == 0) return nullptr;
  const auto it = std::lower_bound(doc_.entities.begin(), doc_.entities.end(), source.offset,
                                   [](const DxfPlace& p, std::uint64_t offset) { return p.offset < offset; });
  const bool found = it != doc_.entities.end() && it->offset == source.offset && it->length == source.length;
  return found ? &*it : nullptr;
}

bool DxfWriter::isFileObject(const AcDbObject& o) const {
  const DxfPlace* place = placeOf(o.source());
  return place && place->id == o.objectId();
}

// A copy from another drawing may bring a place that means something else here.
bool DxfWriter::hasTemplate(const AcDbEntity& e) const {
  const DxfPlace* place = placeOf(e.source());
  if (!place) return false;
  TagReader r = doc_.reader(static_cast<std::size_t>(place->offset));
  if (!r.next() || r.code() != 0) return false;
  return r.is(e.dxfName()) || e.isKindOf(AcDbPolyline::desc()) || e.isKindOf(AcDb2dPolyline::desc()) ||
         e.isKindOf(AcDbProxyEntity::desc());
}

void DxfWriter::planEntities() {
  for (const DxfPlace& p : doc_.entities) {
    const auto* e = db_.peek<AcDbEntity>(p.id);
    if (e && !e->changedSinceRead()) continue;
    Edit edit;
    edit.at = static_cast<std::size_t>(p.offset);
    edit.length = p.length;
    edit.changed = e;
    edits_.push_back(std::move(edit));
    if (e)
      need(*e);
    else
      dropRecord(p.id);
  }
}

// Applications whose data stands in the entity's own tags, registered or not.
std::vector<std::string> DxfWriter::applicationsInFile(const AcDbEntity& e) const {
  std::vector<std::string> names;
  const SourceRef source = e.source();
  if (source.length == 0 || e.xDataApplications().empty()) return names;
  TagReader r = doc_.reader(static_cast<std::size_t>(source.offset));
  while (r.next() && r.offset() <= source.offset + source.length)
    if (r.code() == 1001) names.push_back(doc_.codec.decode(r.word()));
  return names;
}

// Notes what a new or changed entity will ask for: applications, and at most how many handles.
void DxfWriter::need(const AcDbEntity& e) {
  const std::vector<std::string> there = applicationsInFile(e);
  for (const std::string& application : e.xDataApplications())
    if (std::find(there.begin(), there.end(), application) == there.end()) needApplication(application);
  if (!e.isA().appName.empty()) needApplication(e.isA().appName);
  newHandles_ = newHandles_ || !isFileObject(e) || !e.isA().appName.empty();
  placeRecord(e);
  handlesToCome_ += 8 + e.source().length / 8;
  if (e.isKindOf(AcDbPolyline::desc()))
    handlesToCome_ += static_cast<const AcDbPolyline&>(e).polyline().vertices.size();
  else if (!doc_.isModern())
    handlesToCome_ += kMostOldVertices;
}

// New entities go to the end of their block, those of model and paper space to the end of ENTITIES.
void DxfWriter::planBlocks() {
  std::vector<const AcDbEntity*> free;
  std::string definitions;
  for (const AcDbObjectId id : db_.blocks()) {
    const auto& block = *db_.peek<AcDbBlockTableRecord>(id);
    std::vector<const AcDbEntity*> added;
    for (const AcDbObjectId entity : block.entities()) {
      const auto* e = db_.peek<AcDbEntity>(entity);
      if (!e || isFileObject(*e)) continue;
      added.push_back(e);
      need(*e);
    }
    const bool space = id == db_.modelSpace() || id == db_.paperSpace();
    const auto place = blockPlace_.find(id.index);
    if (space) {
      free.insert(free.end(), added.begin(), added.end());
    } else if (place != blockPlace_.end()) {
      if (added.empty()) continue;
      Edit edit;
      edit.at = place->second->bodyEnd;
      edit.added = std::move(added);
      edits_.push_back(std::move(edit));
    } else if (isNewBlock(block)) {
      blockDefinition(definitions, block);
    }
  }
  intoSection("BLOCKS", std::move(definitions));
  if (free.empty()) return;
  Edit edit;
  edit.added = std::move(free);
  if (const DxfSection* s = section("ENTITIES")) {
    edit.at = s->end;
    edits_.push_back(std::move(edit));
  } else {
    std::string content;
    for (const AcDbEntity* e : edit.added) newEntity(content, *e);
    intoSection("ENTITIES", std::move(content));
  }
}

void DxfWriter::planSections() {
  if (newTables_.empty()) return;
  if (const DxfSection* there = section("TABLES")) return edit(there->end, 0, std::move(newTables_));
  std::string all;
  TagWriter w = tags(all);
  w.text(0, "SECTION");
  w.text(2, "TABLES");
  w.raw(newTables_);
  w.text(0, "ENDSEC");
  std::size_t at = doc_.encoding.start;  // in front of whatever uses them
  for (const DxfSection& s : doc_.sections)
    if (s.name == "HEADER" || s.name == "CLASSES") at = std::max(at, behindSection(s.end));
  edit(at, 0, std::move(all), kLastOrder + 1);
}

// Offset behind the "0 ENDSEC" that stands at `end`, or `end` itself.
std::size_t DxfWriter::behindSection(std::size_t end) const {
  TagReader r = doc_.reader(end);
  return r.next() && r.code() == 0 && r.is("ENDSEC") ? r.offset() : end;
}

// What a damaged or cut off file lacks at its ends, and the new sections before the end of the file.
void DxfWriter::planEnds() {
  const std::size_t size = doc_.bytes.size();
  const auto mark = [this](std::string_view word) {
    std::string out;
    tags(out).text(0, word);
    return out;
  };
  const std::size_t end = doc_.eofAt != kNowhere ? doc_.eofAt : doc_.cutAt != kNowhere ? doc_.cutAt : size;
  if (doc_.cutAt != kNowhere) edit(doc_.cutAt, size - doc_.cutAt, {}, -1);
  if (end == size && !doc_.bytes.empty() && doc_.encoding.form == TagForm::kAscii &&
      doc_.bytes.back() != '\n' && doc_.bytes.back() != '\r')
    edit(size, 0, std::string(doc_.encoding.lineEnd), -1);
  for (const DxfBlock& b : doc_.blocks)
    if (b.end == b.bodyEnd) edit(b.end, 0, mark("ENDBLK"), kLastOrder - 2);
  for (const DxfTable& t : doc_.tables)
    if (!t.closed) edit(t.end, 0, mark("ENDTAB"), kLastOrder - 1);
  for (const DxfSection& s : doc_.sections)
    if (!s.closed) edit(s.end, 0, mark("ENDSEC"), kLastOrder);
  if (!newSections_.empty()) edit(end, 0, std::move(newSections_), kLastOrder + 2);
  if (doc_.eofAt == kNowhere) edit(end, 0, mark("EOF"), kLastOrder + 3);
}

void DxfWriter::stream() {
  std::size_t at = 0;
  const std::string_view bytes = doc_.bytes;
  for (Edit& e : edits_) {
    if (e.at < at && e.length > 0) continue;  // within something that was replaced as a whole
    if (e.at > at) {
      flush(true);
      for (; e.at - at > kPiece; at += kPiece) sink_(bytes.substr(at, kPiece));
      out_ += bytes.substr(at, e.at - at);
      at = e.at;
    }
    emit(e);
    at = std::max(at, e.at + e.length);
  }
  flush(true);
  if (at < bytes.size()) sink_(bytes.substr(at));
}

void DxfWriter::emit(Edit& e) {
  out_ += e.text;
  if (e.changed)
    patchedEntity(
        out_, {*e.changed, {e.at, static_cast<std::uint32_t>(e.length), e.changed->objectId()}, false, 0});
  for (const AcDbEntity* added : e.added) {
    newEntity(out_, *added);
    flush();
  }
  flush();
}

void DxfWriter::flush(bool all) {
  if (out_.empty() || (!all && out_.size() < kPiece)) return;
  sink_(out_);
  out_.clear();
}

// The handle that the object has or gets in the file.
std::uint64_t DxfWriter::fileHandle(const AcDbObject& o) {
  const std::uint32_t index = o.objectId().index;
  if (const auto it = doc_.handleOf.find(index); it != doc_.handleOf.end() && it->second) return it->second;
  if (const auto it = objectPlace_.find(index); it != objectPlace_.end()) return it->second->handle;
  if (const auto it = givenHandles_.find(index); it != givenHandles_.end()) return it->second;
  // Handles of the empty drawing or of a damaged file may stand for something else in the file.
  newHandles_ = true;
  const std::uint64_t handle = o.handle() > doc_.lastHandle ? o.handle() : freshHandle();
  givenHandles_.emplace(index, handle);
  return handle;
}

std::uint64_t DxfWriter::ownerHandle(AcDbObjectId block) {
  if (const auto it = doc_.handleOf.find(block.index); it != doc_.handleOf.end()) return it->second;
  const auto* record = db_.peek<AcDbBlockTableRecord>(block);
  const bool space = block == db_.modelSpace() || block == db_.paperSpace();
  return record && !space ? fileHandle(*record) : 0;
}

namespace {

// An empty drawing's file, read, with the ids of `db` in the places of its own.
std::unique_ptr<DxfDocument> emptyDocument(const AcDbDatabase& db) {
  AcDbDatabase empty;
  DxfReport report;
  const auto failure = readDxf(empty, emptyDrawing(db.nextHandle(), db.drawingExtents()), {}, report);
  if (failure) return nullptr;
  std::unique_ptr<DxfDocument> doc(static_cast<DxfDocument*>(empty.source.release()));
  std::unordered_map<std::uint32_t, std::uint64_t> handles;
  const auto handleOf = [&](AcDbObjectId id) {
    const auto it = doc->handleOf.find(id.index);
    return it == doc->handleOf.end() ? 0 : it->second;
  };
  for (DxfTableEntry& e : doc->tableEntries) {
    const std::string& table = doc->tables[e.table].name;
    e.id = table == "LAYER"          ? db.layer(e.name)
           : table == "LTYPE"        ? db.linetype(e.name)
           : table == "BLOCK_RECORD" ? db.block(e.name)
                                     : AcDbObjectId{};
    if (table == "BLOCK_RECORD" && !e.id.isNull()) handles[e.id.index] = e.handle;
  }
  for (DxfBlock& b : doc->blocks) {
    const auto* record = empty.peek<AcDbBlockTableRecord>(b.id);
    b.id = record ? db.block(record->getName()) : AcDbObjectId{};
  }
  handles[db.namedObjectsDictionary().index] = handleOf(empty.namedObjectsDictionary());
  for (DxfObject& o : doc->objects)
    o.place.id = o.place.id == empty.namedObjectsDictionary() ? db.namedObjectsDictionary() : AcDbObjectId{};
  doc->handleOf = std::move(handles);
  return doc;
}

}  // namespace

void writeDxf(const AcDbDatabase& db, const DxfSink& sink) {
  if (const auto* doc = dynamic_cast<const DxfDocument*>(db.source.get()))
    return DxfWriter(db, *doc, sink).run();
  if (const auto doc = emptyDocument(db)) DxfWriter(db, *doc, sink).run();
}

std::string dxfText(const AcDbDatabase& db) {
  std::string out;
  writeDxf(db, [&out](std::string_view piece) { out += piece; });
  return out;
}

}  // namespace tarnex
