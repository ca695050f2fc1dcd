// Records of applications' entities: how the bytes of an object filer lie in extended data or in an xrecord.
// Knows no class and no geometry.
#include "host/dxf/records.h"

namespace tarnex {

std::uint32_t recordCheck(std::string_view bytes) {
  std::uint32_t h = 2166136261u;
  for (const char c : bytes) h = (h ^ static_cast<unsigned char>(c)) * 16777619u;
  return h;
}

bool StoredRecord::whole() const {
  return bytes.size() == length && recordCheck(bytes) == check;
}

std::optional<StoredRecord> findRecord(TagReader tags, std::size_t begin, std::size_t end,
                                       const TextCodec& codec) {
  StoredRecord r;
  std::string_view application;  // of the tags that run, as it stands
  std::string_view recordOf;     // the one whose record was found
  int items = 0;                 // of the record's head: name, length, check
  tags.seek(begin);
  while (tags.next() && tags.tagOffset() < end) {
    const int code = tags.code();
    if (code == 0) application = {};
    if (code == 1001) {
      application = tags.word();
      if (items < 3) items = 0;
      continue;
    }
    if (application.empty() || (items == 3 && application != recordOf)) continue;
    if (items == 0 && code == 1000) {
      r.className = codec.decode(tags.word());
      recordOf = application;
      items = 1;
    } else if (items == 1 && code == 1071) {
      r.length = static_cast<std::uint32_t>(tags.integer());
      items = 2;
    } else if (items == 2 && code == 1071) {
      r.check = static_cast<std::uint32_t>(tags.integer());
      items = 3;
    } else if (items == 3 && code == 1004) {
      r.bytes += tags.chunk();
    } else if (items == 3 && code == 1005) {
      r.xrecord = tags.handle();
    } else if (items < 3) {
      items = -1;  // another form: this application's data is no record
    }
  }
  if (items != 3) return std::nullopt;
  r.application = codec.decode(recordOf);
  return r;
}

std::string xrecordBytes(TagReader tags, std::size_t offset) {
  std::string bytes;
  tags.seek(offset);
  if (!tags.next()) return bytes;
  while (tags.next() && tags.code() != 0)
    if (tags.code() == 310) bytes += tags.chunk();
  return bytes;
}

}  // namespace tarnex
