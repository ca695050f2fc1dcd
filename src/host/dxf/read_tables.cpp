// The TABLES section: layers, linetypes and block records into the drawing, the other tables by name and
// place. Knows table entries; entities and block contents are read elsewhere.
#include <algorithm>
#include <cmath>

#include "host/dxf/reader.h"

namespace tarnex {
namespace {

constexpr int kFrozen = 1, kLocked = 4;

template <class Record>
std::unique_ptr<Record> named(const std::string& name, SourceRef place) {
  auto record = std::make_unique<Record>();
  record->setName(name);
  record->setSource(place);
  return record;
}

}  // namespace

void DxfReader::tables() {
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    if (tags_.is("TABLE")) {
      table();
    } else if (tags_.is("ENDSEC") || tags_.is("SECTION") || tags_.is("EOF")) {
      return tags_.stepBack();
    }
  }
}

void DxfReader::table() {
  DxfTable t;
  while (nextOrResync() && tags_.code() != 0) {
    if (tags_.code() == 2 && t.name.empty())
      t.name = capitals(tags_.word());
    else if (tags_.code() == 5)
      handleSeen(t.handle = tags_.handle());
    else if (tags_.code() == 70 && t.countAt == kNowhere)
      t.countAt = tags_.tagOffset();
  }
  const std::size_t index = doc_.tables.size();
  doc_.tables.push_back(t);
  tags_.stepBack();
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    const std::string_view type = tags_.word();
    const bool over = type == "ENDTAB";
    if (over || type == "TABLE" || type == "ENDSEC" || type == "SECTION" || type == "EOF") {
      doc_.tables[index].end = tags_.tagOffset();
      doc_.tables[index].closed = over;
      if (!over) {
        note(tags_.tagOffset(), "the table " + t.name + " has no end");
        tags_.stepBack();
      }
      return;
    }
    ++doc_.tables[index].entries;
    Entry e = tableEntry();
    const AcDbObjectId id = take(t.name, e);
    doc_.tableEntries.push_back({index, e.name, e.handle, e.place, id});
  }
  doc_.tables[index].end = doc_.bytes.size();
}

// From the entry's "0" tag to before the next.
DxfReader::Entry DxfReader::tableEntry() {
  Entry e;
  e.place.offset = tags_.tagOffset();
  while (tags_.next()) {
    const int code = tags_.code();
    if (code == 0) {
      tags_.stepBack();
      break;
    }
    if (code > 1000) {
      if (!e.xdataAt) e.xdataAt = tags_.tagOffset();
      continue;
    }
    if (code == 102 && tags_.word().substr(0, 1) == "{") {
      while (tags_.next() && tags_.code() != 102 && tags_.code() != 0) {
      }
      if (tags_.code() == 0) tags_.stepBack();
      continue;
    }
    tableEntryValue(e);
  }
  e.place.length = static_cast<std::uint32_t>(tags_.offset() - e.place.offset);
  return e;
}

void DxfReader::tableEntryValue(Entry& e) {
  switch (tags_.code()) {
    case 2:
      if (e.name.empty()) e.name = doc_.codec.decode(tags_.word());
      break;
    case 3:
      e.description = doc_.codec.decode(tags_.word());
      break;
    case 5:
    case 105:
      if (!e.handle) handleSeen(e.handle = tags_.handle());
      break;
    case 6:
      e.lineType = doc_.codec.decode(tags_.word());
      break;
    case 49:
      e.dashes.push_back(tags_.real().value_or(0) * doc_.factor);
      break;
    case 62:
      e.color = static_cast<int>(std::clamp(tags_.integer(7), -32767LL, 32767LL));
      break;
    case 70:
      e.flags = static_cast<int>(tags_.integer());
      break;
    case 290:
      e.plottable = tags_.integer(1) != 0;
      break;
    default:
      break;
  }
}

AcDbObjectId DxfReader::take(const std::string& table, Entry& e) {
  const auto offset = static_cast<std::size_t>(e.place.offset);
  if (table != "LAYER" && table != "LTYPE" && table != "BLOCK_RECORD") return {};
  if (e.name.empty()) {
    note(offset, "an entry without name in the table " + table);
    return {};
  }
  const AcDbObjectId there = table == "LAYER"   ? db_.layer(e.name)
                             : table == "LTYPE" ? db_.linetype(e.name)
                                                : db_.block(e.name);
  if (const auto* record = db_.peek<AcDbSymbolTableRecord>(there); record && record->source().length != 0) {
    note(offset, "\"" + e.name + "\" stands twice in the table " + table + ", the first one counts");
    return {};
  }
  if (table == "LAYER") return takeLayer(e);
  if (table == "BLOCK_RECORD") {
    auto record = named<AcDbBlockTableRecord>(e.name, e.place);
    const AcDbObjectId id = db_.addBlock(std::move(record), usableHandle(e.handle, offset));
    doc_.handleOf[id.index] = e.handle;
    return id;
  }
  auto record = named<AcDbLinetypeTableRecord>(e.name, e.place);
  record->description = e.description;
  if (std::all_of(e.dashes.begin(), e.dashes.end(), [](double d) { return std::abs(d) < kLargestNumber; }))
    record->dashes = e.dashes;
  return db_.addLinetype(std::move(record), usableHandle(e.handle, offset));
}

AcDbObjectId DxfReader::takeLayer(Entry& e) {
  auto record = named<AcDbLayerTableRecord>(e.name, e.place);
  record->setIsOff(e.color < 0);
  const int color = std::abs(e.color);
  record->setColorIndex(color >= 1 && color <= 255 ? color : 7);
  record->setIsFrozen((e.flags & kFrozen) != 0);
  record->setIsLocked((e.flags & kLocked) != 0);
  record->setIsPlottable(e.plottable);
  record->setLinetype(e.lineType.empty() ? AcDbObjectId{} : db_.linetype(e.lineType));
  if (e.xdataAt)
    for (auto& [application, chain] : readExtendedData(doc_.reader(), e.xdataAt, doc_.codec))
      record->setXData(application, std::move(chain));
  return db_.addLayer(std::move(record), usableHandle(e.handle, static_cast<std::size_t>(e.place.offset)));
}

void DxfReader::setCurrentProperties() {
  const std::string layer = headerText("$CLAYER");
  if (!layer.empty()) db_.currentLayer = db_.layer(layer);
  if (const auto color = headerInteger("$CECOLOR"); color && *color >= 0 && *color <= 256)
    db_.currentColor = static_cast<int>(*color);
}

}  // namespace tarnex
