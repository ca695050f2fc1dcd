// The OBJECTS section: where every object stands, and dictionaries and xrecords as far as the named objects
// dictionary leads to them. Knows no other kind of object.
#include "host/dxf/reader.h"

namespace tarnex {

void DxfReader::objects() {
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    const std::string_view type = tags_.word();
    if (type == "ENDSEC" || type == "SECTION" || type == "EOF") return tags_.stepBack();
    DxfObject o;
    o.place.offset = tags_.tagOffset();
    if (doc_.rootDictionary == kNowhere && type == "DICTIONARY") doc_.rootDictionary = doc_.objects.size();
    bool ended = false;
    while (tags_.next()) {
      if (tags_.code() == 0) {
        tags_.stepBack();
        ended = true;
        break;
      }
      if (tags_.code() == 5 && !o.handle) o.handle = tags_.handle();
    }
    if (!ended && !tags_.damaged()) {
      doc_.cutAt = static_cast<std::size_t>(o.place.offset);
      note(doc_.cutAt, "the file breaks off within an object, left out");
      if (doc_.rootDictionary == doc_.objects.size()) doc_.rootDictionary = kNowhere;
      return;
    }
    handleSeen(o.handle);
    o.place.length = static_cast<std::uint32_t>(tags_.offset() - o.place.offset);
    objectByHandle_.emplace(o.handle, doc_.objects.size());
    doc_.objects.push_back(o);
  }
}

std::size_t DxfReader::objectOf(std::uint64_t handle) const {
  const auto it = objectByHandle_.find(handle);
  return handle == 0 || it == objectByHandle_.end() ? kNowhere : it->second;
}

// Where the xrecord of that handle stands, also before OBJECTS has been read.
std::size_t DxfReader::offsetOfObject(std::uint64_t handle) {
  if (!xrecordsSought_) {
    xrecordsSought_ = true;
    TagReader all = doc_.reader();
    for (;;) {
      while (all.next()) {
        if (all.code() != 0 || !all.is("XRECORD")) continue;
        const std::size_t at = all.tagOffset();
        while (all.next() && all.code() != 5 && all.code() != 0) {
        }
        if (all.code() == 5)
          xrecordAt_.emplace(all.handle(), at);
        else
          all.stepBack();
      }
      if (!all.damaged() || !all.resynchronise()) break;
    }
  }
  const auto it = xrecordAt_.find(handle);
  return it == xrecordAt_.end() ? kNowhere : it->second;
}

// From the root on, each dictionary once.
void DxfReader::dictionaries() {
  if (doc_.rootDictionary == kNowhere) return readPlainDictionaries();
  const AcDbObjectId root = db_.namedObjectsDictionary();
  DxfObject& o = doc_.objects[doc_.rootDictionary];
  o.place.id = root;
  doc_.handleOf[root.index] = o.handle;
  std::vector<Pending> open{{root, doc_.rootDictionary}};
  while (!open.empty()) {
    const Pending p = open.back();
    open.pop_back();
    dictionaryEntries(p, open);
  }
}

void DxfReader::dictionaryEntries(const Pending& p, std::vector<Pending>& more) {
  TagReader tags = doc_.reader(static_cast<std::size_t>(doc_.objects[p.object].place.offset));
  if (!tags.next()) return;
  std::string key;
  std::vector<std::pair<std::string, AcDbObjectId>> bound;
  while (tags.next() && tags.code() != 0 && tags.code() < 1000) {
    if (tags.code() == 102) {
      while (tags.next() && tags.code() != 102 && tags.code() != 0) {
      }
      if (tags.code() == 0) break;
    } else if (tags.code() == 3) {
      key = doc_.codec.decode(tags.word());
    } else if ((tags.code() == 350 || tags.code() == 360) && !key.empty()) {
      const AcDbObjectId id = dictionaryEntry(tags.handle(), p.dictionary, more);
      if (!id.isNull()) bound.emplace_back(std::move(key), id);
      key.clear();
    }
  }
  auto dictionary = db_.open<AcDbDictionary>(p.dictionary, OpenMode::kForWrite);
  if (!dictionary) return;
  for (auto& [name, id] : bound) dictionary->bind(name, id);
}

// The object as one of the drawing; null when it isn't in the file or was met before.
AcDbObjectId DxfReader::dictionaryEntry(std::uint64_t handle, AcDbObjectId owner,
                                        std::vector<Pending>& more) {
  const std::size_t index = objectOf(handle);
  if (index == kNowhere || !doc_.objects[index].place.id.isNull()) return {};
  DxfObject& o = doc_.objects[index];
  const auto at = static_cast<std::size_t>(o.place.offset);
  TagReader tags = doc_.reader(at);
  if (!tags.next()) return {};
  std::unique_ptr<AcDbObject> made;
  const bool dictionary = tags.is("DICTIONARY");
  if (dictionary) {
    made = std::make_unique<AcDbDictionary>();
  } else if (tags.is("XRECORD")) {
    auto record = std::make_unique<AcDbXrecord>();
    record->setFromRbChain(readXrecord(tags, doc_.codec));
    made = std::move(record);
  } else {
    made = std::make_unique<AcDbKeptObject>();
  }
  made->setSource({o.place.offset, o.place.length});
  o.place.id = db_.add(std::move(made), owner, usableHandle(o.handle, at));
  if (dictionary) {
    doc_.handleOf[o.place.id.index] = o.handle;
    more.push_back({o.place.id, index});
  }
  return o.place.id;
}

// With the "0 XRECORD" as the present tag: what follows its subclass marker, without the cloning flag.
ResBufChain readXrecord(TagReader tags, const TextCodec& codec) {
  ResBufChain chain;
  bool inside = false;
  while (tags.next() && tags.code() != 0 && tags.code() < 1000) {
    if (!inside) {
      if (tags.code() == 102 && tags.word().substr(0, 1) == "{")
        while (tags.next() && tags.code() != 102 && tags.code() != 0) {
        }
      inside = tags.code() == 100 && tags.is("AcDbXrecord");
      continue;
    }
    if (tags.code() == 280 && chain.empty()) continue;
    chain.push_back(readItem(tags, codec));
  }
  return chain;
}

}  // namespace tarnex
