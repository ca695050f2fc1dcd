// Named dictionaries in files of the kinds that have no OBJECTS section: kept as points with extended data in
// a block that nothing refers to. Knows that block; other dictionaries are read and written as objects.
#include "host/dxf/plain_dictionaries.h"

#include "host/dxf/reader.h"

namespace tarnex {

void DxfReader::readPlainDictionaries() {
  const auto* block = db_.peek<AcDbBlockTableRecord>(db_.block(kPlainDictionaries));
  if (!block) return;
  for (const AcDbObjectId id : block->entities()) {
    const auto* point = db_.peek<AcDbPoint>(id);
    if (!point) continue;
    std::optional<PlainEntry> entry = plainEntryOf(point->xData(kPlainApplication));
    if (!entry) continue;
    AcDbObjectId dictionary;
    auto root = db_.open<AcDbDictionary>(db_.namedObjectsDictionary(), OpenMode::kForWrite);
    if (root && root->getAt(entry->dictionary, dictionary) != ErrorStatus::eOk)
      root->setAt(entry->dictionary, std::make_unique<AcDbDictionary>(), dictionary);
    root.close();
    auto opened = db_.open<AcDbDictionary>(dictionary, OpenMode::kForWrite);
    if (!opened) continue;
    auto record = std::make_unique<AcDbXrecord>();
    record->setFromRbChain(std::move(entry->chain));
    AcDbObjectId made;
    opened->setAt(entry->key, std::move(record), made);
  }
}

// 1000 dictionary, 1000 key, then for each item 1070 its group code and the value: 1000 texts of at most 250
// bytes with 1070 their number before them, 1040 reals, 1071 integers, 1010 points, 1004 binary chunks with
// their number before them.
std::optional<PlainEntry> plainEntryOf(const ResBufChain& data) {
  std::size_t at = 0;
  const auto take = [&]<class T>(T& value) {
    const T* v = at < data.size() ? std::get_if<T>(&data[at].value) : nullptr;
    if (v) value = *v, ++at;
    return v != nullptr;
  };
  PlainEntry e;
  if (!take(e.dictionary) || !take(e.key)) return std::nullopt;
  while (at < data.size()) {
    ResBuf item;
    long long code = 0, pieces = 0, whole = 0;
    double real = 0;
    AcGePoint3d point;
    if (!take(code)) return std::nullopt;
    item.code = static_cast<int>(code);
    const bool isPieces = at < data.size() && data[at].code == 1070;
    if (isPieces && take(pieces)) {
      std::string text, piece;
      while (pieces-- > 0 && take(piece)) text += piece;
      item.value = text;
    } else if (take(real)) {
      item.value = real;
    } else if (take(point)) {
      item.value = point;
    } else if (take(whole)) {
      item.value = whole;
    } else {
      return std::nullopt;
    }
    e.chain.push_back(std::move(item));
  }
  return e;
}

ResBufChain dataOfPlainEntry(const PlainEntry& e) {
  constexpr std::size_t kPiece = 250;  // bytes; extended data has at most 255 in a text
  ResBufChain data;
  const auto add = [&data](int code, auto value) {
    ResBuf& item = data.emplace_back();
    item.code = code;
    item.value = std::move(value);
  };
  add(1000, e.dictionary);
  add(1000, e.key);
  for (const ResBuf& item : e.chain) {
    add(1070, static_cast<long long>(item.code));
    if (const auto* text = std::get_if<std::string>(&item.value)) {
      const bool binary = item.code >= 310 && item.code <= 319;
      const std::size_t piece = binary ? 127 : kPiece;
      std::vector<std::string> pieces;
      for (std::size_t i = 0; i < text->size();) {
        std::size_t n = std::min(piece, text->size() - i);
        while (!binary && n > 1 && i + n < text->size() &&
               (static_cast<unsigned char>((*text)[i + n]) & 0xC0) == 0x80)
          --n;
        pieces.push_back(text->substr(i, n));
        i += n;
      }
      add(1070, static_cast<long long>(pieces.size()));
      for (std::string& p : pieces) add(binary ? 1004 : 1000, std::move(p));
    } else if (const auto* real = std::get_if<double>(&item.value)) {
      add(1040, *real);
    } else if (const auto* whole = std::get_if<long long>(&item.value)) {
      add(1071, *whole);
    } else {
      add(1010, item.value);
    }
  }
  return data;
}

}  // namespace tarnex
