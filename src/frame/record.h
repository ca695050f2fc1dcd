// Records with a byte layout: one table of rows that constructor defaults, reading, migration and writing all
// walk. Knows no particular record. Bytes are little-endian whatever the machine is.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace tarnex {

// A text in a fixed field: at most `size` - 1 bytes are kept, the rest of the field is zeros.
template <class Record>
struct RecordRow {
  std::uint32_t offset;
  std::variant<std::int32_t Record::*, double Record::*, std::string Record::*> member;
  std::uint32_t size;  // bytes of the field: 4, 8, or the length of a text field
  const char* name;
  std::variant<std::int32_t, double, const char*> initial;  // what the constructor gives
  int since = 0;  // files of an older version: `migrated` takes the field's place; 0 never
  std::variant<std::int32_t, double, const char*> migrated{};
};

[[nodiscard]] std::int32_t readInt32(const unsigned char* at);
[[nodiscard]] double readDouble(const unsigned char* at);
[[nodiscard]] std::string readText(const unsigned char* at,
                                   std::size_t size);  // up to its zero or the field's end
void writeInt32(unsigned char* at, std::int32_t v);
void writeDouble(unsigned char* at, double v);
void writeText(unsigned char* at, std::size_t size, std::string_view text);  // cut at a whole UTF-8 character

template <class Record>
void assignInitial(Record& record, const RecordRow<Record>& row,
                   const std::variant<std::int32_t, double, const char*>& value) {
  if (auto* i = std::get_if<std::int32_t Record::*>(&row.member)) record.** i = std::get<std::int32_t>(value);
  if (auto* d = std::get_if<double Record::*>(&row.member)) record.** d = std::get<double>(value);
  if (auto* s = std::get_if<std::string Record::*>(&row.member)) record.** s = std::get<const char*>(value);
}

template <class Record>
void construct(Record& record, std::span<const RecordRow<Record>> rows) {
  for (const auto& row : rows) assignInitial(record, row, row.initial);
}

// Takes the rows that lie wholly within the bytes; the others stay.
template <class Record>
void decode(Record& record, std::span<const RecordRow<Record>> rows, std::string_view bytes) {
  const auto* raw = reinterpret_cast<const unsigned char*>(bytes.data());
  for (const auto& row : rows) {
    if (row.offset + row.size > bytes.size()) continue;
    const unsigned char* at = raw + row.offset;
    if (auto* i = std::get_if<std::int32_t Record::*>(&row.member)) record.** i = readInt32(at);
    if (auto* d = std::get_if<double Record::*>(&row.member)) record.** d = readDouble(at);
    if (auto* s = std::get_if<std::string Record::*>(&row.member)) record.** s = readText(at, row.size);
  }
}

// Sets the fields that versions above `version` introduced.
template <class Record>
void migrate(Record& record, std::span<const RecordRow<Record>> rows, int version) {
  for (const auto& row : rows)
    if (row.since != 0 && version < row.since) assignInitial(record, row, row.migrated);
}

// Writes every row into `image`, which is large enough; bytes between the rows stay as they are.
template <class Record>
void encode(const Record& record, std::span<const RecordRow<Record>> rows, unsigned char* image) {
  for (const auto& row : rows) {
    unsigned char* at = image + row.offset;
    if (auto* i = std::get_if<std::int32_t Record::*>(&row.member)) writeInt32(at, record.**i);
    if (auto* d = std::get_if<double Record::*>(&row.member)) writeDouble(at, record.**d);
    if (auto* s = std::get_if<std::string Record::*>(&row.member)) writeText(at, row.size, record.**s);
  }
}

}  // namespace tarnex
