// The OBJECTS section written: dictionaries and xrecords that the program made, changed or removed.
// Knows named dictionaries; in files without OBJECTS they go into a block.
#include <algorithm>

#include "host/dxf/plain_dictionaries.h"
#include "host/dxf/reader.h"
#include "host/dxf/writer.h"

namespace tarnex {

void DxfWriter::planObjects() {
  if (!doc_.isModern()) return planPlainDictionaries();
  const auto* root = db_.peek<AcDbDictionary>(db_.namedObjectsDictionary());
  if (doc_.rootDictionary == kNowhere && root && !root->entries().empty()) newObject(newObjects_, *root, 0);
  for (const DxfObject& o : doc_.objects) {
    if (o.place.id.isNull()) continue;
    const auto* object = db_.peek<AcDbObject>(o.place.id);
    if (!object)
      edit(static_cast<std::size_t>(o.place.offset), o.place.length, {});
    else if (object->isKindOf(AcDbDictionary::desc()))
      planDictionary(o, static_cast<const AcDbDictionary&>(*object));
    else if (object->isKindOf(AcDbXrecord::desc()) && object->changedSinceRead())
      planXrecord(o, static_cast<const AcDbXrecord&>(*object));
  }
  intoSection("OBJECTS", std::move(newObjects_));
}

// Entries that the drawing never took over (objects that aren't in the file) stay.
void DxfWriter::planDictionary(const DxfObject& o, const AcDbDictionary& d) {
  const auto begin = static_cast<std::size_t>(o.place.offset);
  TagPatch patch(doc_.reader(), begin, begin + o.place.length);
  std::unordered_map<std::string, const AcDbObject*>
      standing;  // what the drawing has and the file not yet, by key
  for (const auto& entry : d.entries())
    if (const auto* object = db_.peek<AcDbObject>(entry.id)) standing.emplace(entry.key, object);
  std::size_t last = patch.ownEnd() - 1, key = 0;
  int link = 350;
  bool changed = false;
  for (std::size_t i = 0; i < patch.ownEnd(); ++i) {
    const int code = patch.tag(i).code;
    if (!patch.isGeometry(i)) continue;
    if (code == 3) key = i;
    if ((code != 350 && code != 360) || key == 0) continue;
    link = code;
    last = i;
    const auto it = standing.find(doc_.codec.decode(patch.at(key).word()));
    const bool same = patchEntry(patch, key, i, it == standing.end() ? nullptr : it->second, o.handle);
    changed = changed || !same;
    if (it != standing.end()) standing.erase(it);
    key = 0;
  }
  for (const auto& entry : d.entries()) {
    const auto it = standing.find(entry.key);
    if (it == standing.end()) continue;
    patch.insertBehind(last, style().one(3, entry.key) + handleTag(link, fileHandle(*it->second)));
    newObject(newObjects_, *it->second, o.handle);
    standing.erase(it);
    changed = true;
  }
  if (!changed) return;
  std::string out;
  patch.appendTo(out);
  edit(begin, o.place.length, std::move(out));
}

// One entry of the file: key and link to what the drawing has there now (null: nothing). True when it stays
// as it is.
bool DxfWriter::patchEntry(TagPatch& patch, std::size_t key, std::size_t link, const AcDbObject* now,
                           std::uint64_t owner) {
  const std::uint64_t before = patch.at(link).handle();
  const DxfObject* place = objectOfHandle(before);
  if (!now) {
    const bool wasOurs = place && !place->place.id.isNull();
    if (wasOurs) patch.drop(key), patch.drop(link);
    return !wasOurs;
  }
  if (fileHandle(*now) == before) return true;
  patch.replace(link, handleTag(patch.tag(link).code, fileHandle(*now)));
  newObject(newObjects_, *now, owner);
  return false;
}

void DxfWriter::planXrecord(const DxfObject& o, const AcDbXrecord& x) {
  const auto begin = static_cast<std::size_t>(o.place.offset);
  TagReader r = doc_.reader(begin);
  if (!r.next() || readXrecord(r, doc_.codec) == x.rbChain()) return;
  TagPatch patch(doc_.reader(), begin, begin + o.place.length);
  std::size_t marker = 0, last = 0;
  for (std::size_t i = 0; i < patch.ownEnd(); ++i) {
    if (marker) {
      if (i == marker + 1 && patch.tag(i).code == 280)
        last = i;
      else
        patch.drop(i);
    } else if (patch.tag(i).code == 100 && patch.at(i).is("AcDbXrecord")) {
      marker = last = i;
    }
  }
  std::string items;
  TagWriter w = tags(items);
  for (const ResBuf& i : x.rbChain()) item(w, i);
  patch.insertBehind(last, items);
  std::string out;
  patch.appendTo(out);
  edit(begin, o.place.length, std::move(out));
}

// A dictionary with all that is in it, or an xrecord; objects of other kinds are always in the file.
void DxfWriter::newObject(std::string& out, const AcDbObject& o, std::uint64_t owner) {
  TagWriter w = tags(out);
  const bool dictionary = o.isKindOf(AcDbDictionary::desc());
  if (!dictionary && !o.isKindOf(AcDbXrecord::desc())) return;
  if (objectPlace_.count(o.objectId().index)) return;  // stands in the file and was moved to another key
  const std::uint64_t handle = fileHandle(o);
  w.text(0, dictionary ? "DICTIONARY" : "XRECORD");
  w.handle(5, handle);
  w.handle(330, owner);
  w.text(100, dictionary ? "AcDbDictionary" : "AcDbXrecord");
  if (!dictionary) {
    if (doc_.version >= 1015) w.integer(280, 1);
    for (const ResBuf& i : static_cast<const AcDbXrecord&>(o).rbChain()) item(w, i);
    return;
  }
  if (doc_.version >= 1015) w.integer(281, 1);
  std::string inner;
  for (const auto& entry : static_cast<const AcDbDictionary&>(o).entries()) {
    const auto* object = db_.peek<AcDbObject>(entry.id);
    if (!object) continue;
    w.text(3, text(entry.key));
    w.handle(350, fileHandle(*object));
    newObject(inner, *object, handle);
  }
  out += inner;
}

// The block that stands for dictionaries is written anew when one of its entries changed.
void DxfWriter::planPlainDictionaries() {
  std::vector<ResBufChain> now, before;
  const auto* root = db_.peek<AcDbDictionary>(db_.namedObjectsDictionary());
  for (const auto& [name, id] : root->entries()) {
    const auto* dictionary = db_.peek<AcDbDictionary>(id);
    if (!dictionary) continue;
    for (const auto& [key, record] : dictionary->entries())
      if (const auto* x = db_.peek<AcDbXrecord>(record))
        now.push_back(dataOfPlainEntry({name, key, x->rbChain()}));
  }
  const AcDbObjectId blockId = db_.block(kPlainDictionaries);
  if (const auto* block = db_.peek<AcDbBlockTableRecord>(blockId))
    for (const AcDbObjectId id : block->entities())
      if (const auto* point = db_.peek<AcDbPoint>(id)) before.push_back(point->xData(kPlainApplication));
  if (now == before) return;
  std::string out;
  TagWriter w = tags(out);
  const auto head = [&](const char* type) {
    w.text(0, type);
    if (usesHandles()) w.handle(5, freshHandle());
    w.text(8, "0");
  };
  head("BLOCK");
  w.text(2, kPlainDictionaries);
  w.integer(70, 0);
  w.point(10, 0, 0, 0);
  w.text(3, kPlainDictionaries);
  for (const ResBufChain& chain : now) {
    head("POINT");
    w.point(10, 0, 0, 0);
    extendedData(w, kPlainApplication, chain);
  }
  head("ENDBLK");
  needApplication(kPlainApplication);
  const auto place = blockPlace_.find(blockId.index);
  if (!blockId.isNull() && place != blockPlace_.end())
    edit(place->second->begin, place->second->end - place->second->begin, std::move(out), -1);
  else
    intoSection("BLOCKS", std::move(out));
}

}  // namespace tarnex
