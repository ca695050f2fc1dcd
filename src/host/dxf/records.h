// Records of applications' entities: how the bytes of an object filer lie in extended data or in an xrecord.
// Knows no class and no geometry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/dxf/tags.h"
#include "host/dxf/text_codec.h"

namespace tarnex {

// In extended data, under the application's name: 1000 class name, 1071 length of the record in bytes, 1071
// its check (FNV-1a, 32 bits), then either the record in 1004 chunks of at most 127 bytes, or 1005 the handle
// of an xrecord in the entity's extension dictionary that holds it in 310 chunks. In a drawing of the oldest
// kinds, chunks that the polyline has no room for stand under the same application on its vertices.
struct StoredRecord {
  std::string application, className;
  std::uint32_t length = 0, check = 0;
  std::string bytes;          // complete or not
  std::uint64_t xrecord = 0;  // handle, 0: in the extended data
  [[nodiscard]] bool whole() const;
};
[[nodiscard]] std::uint32_t recordCheck(std::string_view bytes);

// The record in the extended data between `begin` (the entity's first 1001 tag) and `end` (behind the entity
// and its children); nothing when there is none of this form.
[[nodiscard]] std::optional<StoredRecord> findRecord(TagReader tags, std::size_t begin, std::size_t end,
                                                     const TextCodec& codec);
// The 310 chunks of the object at `offset`.
[[nodiscard]] std::string xrecordBytes(TagReader tags, std::size_t offset);

inline constexpr std::size_t kChunk = 127;                               // bytes in one chunk
inline constexpr std::size_t kRecordPerVertex = std::size_t{12} * 1024;  // bytes of a record on one VERTEX

}  // namespace tarnex
