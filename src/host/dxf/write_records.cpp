// Extended data and applications' records written.
// Knows items of chains; nothing of what a record holds.
#include <algorithm>

#include "host/dxf/reader.h"
#include "host/dxf/records.h"
#include "host/dxf/writer.h"

namespace tarnex {

// One item of a chain; a point as its three tags.
void DxfWriter::item(TagWriter& w, const ResBuf& item) const {
  if (const auto* p = std::get_if<AcGePoint3d>(&item.value)) return w.point(item.code, p->x, p->y, p->z);
  const TagKind kind = kindOfCode(item.code);
  if (const auto* text8 = std::get_if<std::string>(&item.value)) {
    if (kind != TagKind::kChunk) return w.text(item.code, text(*text8));
    for (std::size_t i = 0; i < text8->size() || i == 0; i += kChunk)
      w.chunk(item.code, std::string_view(*text8).substr(i, kChunk));
    return;
  }
  const auto* real = std::get_if<double>(&item.value);
  const double number = real ? *real : static_cast<double>(std::get<long long>(item.value));
  if (kind == TagKind::kReal) return w.real(item.code, number);
  w.integer(item.code, real ? static_cast<long long>(*real) : std::get<long long>(item.value));
}

void DxfWriter::extendedData(TagWriter& w, const std::string& application, const ResBufChain& chain) {
  w.text(1001, text(application));
  for (const ResBuf& i : chain) item(w, i);
}

void DxfWriter::extendedData(TagWriter& w, const AcDbObject& o) {
  for (const std::string& application : o.xDataApplications())
    extendedData(w, application, o.xData(application));
}

// The record of an application's entity; nothing for the host's own classes.
std::optional<DxfWriter::Record> DxfWriter::recordOf(const AcDbEntity& e) const {
  const AcRxClass& c = e.isA();
  if (c.appName.empty() || !e.isKindOf(AcDbPolyline::desc())) return std::nullopt;
  AcDbDwgFiler filer;
  if (e.dwgOutFields(filer) != ErrorStatus::eOk) return std::nullopt;
  const auto placed = placedRecords_.find(e.objectId().index);
  return Record{c.appName, c.name, filer.bytes(),
                placed == placedRecords_.end() ? 0 : placed->second.xrecord};
}

// The record in extended data: what of its bytes is to stand here, or the xrecord that holds it.
void DxfWriter::recordData(TagWriter& w, const Record& r, std::string_view bytes) const {
  w.text(1001, text(r.application));
  w.text(1000, text(r.className));
  w.integer(1071, static_cast<long long>(r.bytes.size()));
  w.integer(1071, static_cast<std::int32_t>(recordCheck(r.bytes)));
  if (r.xrecord)
    w.handle(1005, r.xrecord);
  else
    recordChunks(w, bytes);
}

void DxfWriter::extensionGroup(TagWriter& w, const PlacedRecord& p) const {
  if (!p.newDictionary) return;
  w.text(102, "{ACAD_XDICTIONARY");
  w.handle(360, p.newDictionary);
  w.text(102, "}");
}

const DxfObject* DxfWriter::objectOfHandle(std::uint64_t handle) const {
  const auto it = objectByHandle_.find(handle);
  return handle == 0 || it == objectByHandle_.end() ? nullptr : it->second;
}

// A record that is too long for extended data goes into an xrecord in the entity's extension dictionary. One
// that had an xrecord in the file keeps it.
void DxfWriter::placeRecord(const AcDbEntity& e) {
  if (!doc_.isModern() || e.isA().appName.empty()) return;
  const std::optional<Record> record = recordOf(e);
  const bool inFile = isFileObject(e);
  const auto had = inFile ? doc_.recordOf.find(e.objectId().index) : doc_.recordOf.end();
  if (!record || (had == doc_.recordOf.end() && record->bytes.size() <= kLargestExtendedRecord)) return;
  std::string chunks;
  TagWriter c = tags(chunks);
  for (std::string_view b = record->bytes; !b.empty(); b.remove_prefix(std::min(b.size(), kChunk)))
    c.chunk(310, b.substr(0, kChunk));
  if (had != doc_.recordOf.end()) {
    if (const DxfObject* o = objectOfHandle(had->second)) {
      placedRecords_[e.objectId().index] = {had->second, 0};
      return replaceChunks(*o, chunks);
    }
  }
  placedRecords_[e.objectId().index] = newXrecord(e, record->application, chunks);
}

// A new xrecord, in the entity's extension dictionary if the file has one, else in a new one.
DxfWriter::PlacedRecord DxfWriter::newXrecord(const AcDbEntity& e, const std::string& application,
                                              const std::string& chunks) {
  PlacedRecord placed{freshHandle(), 0};
  const std::string entry = style().one(3, application) + handleTag(360, placed.xrecord);
  std::uint64_t owner = 0;
  TagWriter w = tags(newObjects_);
  if (const DxfObject* dictionary = isFileObject(e) ? objectOfHandle(extensionDictionaryOf(e)) : nullptr) {
    owner = dictionary->handle;
    edit(static_cast<std::size_t>(dictionary->place.offset) + dictionary->place.length, 0, entry, -1);
  } else {
    owner = placed.newDictionary = freshHandle();
    w.text(0, "DICTIONARY");
    w.handle(5, owner);
    w.handle(330, fileHandleOfEntity(e));
    w.text(100, "AcDbDictionary");
    if (doc_.version >= 1015) {
      w.integer(280, 1);
      w.integer(281, 1);
    }
    w.raw(entry);
  }
  w.text(0, "XRECORD");
  w.handle(5, placed.xrecord);
  w.handle(330, owner);
  w.text(100, "AcDbXrecord");
  if (doc_.version >= 1015) w.integer(280, 1);
  w.raw(chunks);
  return placed;
}

void DxfWriter::replaceChunks(const DxfObject& xrecord, const std::string& chunks) {
  const auto begin = static_cast<std::size_t>(xrecord.place.offset);
  TagPatch patch(doc_.reader(), begin, begin + xrecord.place.length);
  bool first = true;
  for (auto at = patch.find(310); at; at = patch.find(310, *at + 1)) {
    patch.replace(*at, first ? chunks : std::string());
    first = false;
  }
  if (first) patch.insertBehind(patch.ownEnd() - 1, chunks);
  std::string out;
  patch.appendTo(out);
  edit(begin, xrecord.place.length, std::move(out));
}

// The xrecord of an erased entity goes with it, and the extension dictionary that held nothing else.
void DxfWriter::dropRecord(AcDbObjectId id) {
  const auto had = doc_.recordOf.find(id.index);
  const DxfObject* record = had == doc_.recordOf.end() ? nullptr : objectOfHandle(had->second);
  if (!record) return;
  edit(static_cast<std::size_t>(record->place.offset), record->place.length, {});
  TagReader r = doc_.reader(static_cast<std::size_t>(record->place.offset));
  std::uint64_t owner = 0;
  if (r.next())
    while (!owner && r.next() && r.code() != 0)
      if (r.code() == 330) owner = r.handle();
  const DxfObject* dictionary = objectOfHandle(owner);
  if (!dictionary) return;
  const auto begin = static_cast<std::size_t>(dictionary->place.offset);
  TagPatch patch(doc_.reader(), begin, begin + dictionary->place.length);
  const auto name = patch.find(3);
  if (!name || patch.find(3, *name + 1)) return;
  edit(begin, dictionary->place.length, {});
}

std::string DxfWriter::handleTag(int code, std::uint64_t handle) const {
  std::string out;
  tags(out).handle(code, handle);
  return out;
}

void DxfWriter::recordChunks(TagWriter& w, std::string_view bytes) const {
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), kChunk)))
    w.chunk(1004, bytes.substr(0, kChunk));
}

}  // namespace tarnex
