// Records with a byte layout: one table of rows that constructor defaults, reading, migration and writing all
// walk. Knows no particular record. Bytes are little-endian whatever the machine is.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace tarnex {

// Many values of one record that lie one behind the other in the file, each in a field of the row's size.
template <class Record, class T>
struct RecordItems {
  std::span<T> (*of)(Record&);
  std::span<const T> (*read)(const Record&);
};

template <auto Member>
struct ArrayMember;
template <class Record, class T, std::size_t N, std::array<T, N> Record::*Member>
struct ArrayMember<Member> {
  static constexpr std::size_t kCount = N;
  template <std::size_t From, std::size_t Count>
  static constexpr RecordItems<Record, T> items() {
    static_assert(From + Count <= N);
    return {[](Record& r) { return std::span<T>(r.*Member).subspan(From, Count); },
            [](const Record& r) { return std::span<const T>(r.*Member).subspan(From, Count); }};
  }
};

// An array member in a row's place, or some of its items.
template <auto Member, std::size_t From = 0, std::size_t Count = ArrayMember<Member>::kCount - From>
inline constexpr auto itemsOf = ArrayMember<Member>::template items<From, Count>();

// A text in a fixed field: at most `size` - 1 bytes are kept, the rest of the field is zeros.
template <class Record>
struct RecordRow {
  std::uint32_t offset;
  std::variant<std::int32_t Record::*, double Record::*, std::string Record::*,
               RecordItems<Record, std::int32_t>, RecordItems<Record, double>,
               RecordItems<Record, std::string>>
      member;
  std::uint32_t size;  // bytes of one field: 4, 8, or the length of a text field
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

// Text of a value, and back; false: the text isn't of its kind, `error` names the field and says so.
[[nodiscard]] std::string valueText(std::int32_t v);
[[nodiscard]] std::string valueText(double v);
[[nodiscard]] std::string valueText(const std::string& v);
[[nodiscard]] bool parseValue(std::string_view field, std::string_view text, std::int32_t& v,
                              std::string& error);
[[nodiscard]] bool parseValue(std::string_view field, std::string_view text, double& v, std::string& error);
[[nodiscard]] std::string noSuchField(std::string_view field);
[[nodiscard]] std::string longerThan(std::string_view field, std::uint32_t bytes);

inline void readField(const unsigned char* at, std::size_t, std::int32_t& v) {
  v = readInt32(at);
}
inline void readField(const unsigned char* at, std::size_t, double& v) {
  v = readDouble(at);
}
inline void readField(const unsigned char* at, std::size_t size, std::string& v) {
  v = readText(at, size);
}
inline void writeField(unsigned char* at, std::size_t, std::int32_t v) {
  writeInt32(at, v);
}
inline void writeField(unsigned char* at, std::size_t, double v) {
  writeDouble(at, v);
}
inline void writeField(unsigned char* at, std::size_t size, const std::string& v) {
  writeText(at, size, v);
}

// The values that a row is about, one or many.
template <class Record, class T>
std::span<T> valuesOf(Record& record, T Record::*member) {
  return {&(record.*member), 1};
}
template <class Record, class T>
std::span<const T> valuesOf(const Record& record, T Record::*member) {
  return {&(record.*member), 1};
}
template <class Record, class T>
std::span<T> valuesOf(Record& record, const RecordItems<Record, T>& items) {
  return items.of(record);
}
template <class Record, class T>
std::span<const T> valuesOf(const Record& record, const RecordItems<Record, T>& items) {
  return items.read(record);
}

template <class Record>
void assignInitial(Record& record, const RecordRow<Record>& row,
                   const std::variant<std::int32_t, double, const char*>& value) {
  std::visit(
      [&](const auto& member) {
        for (auto& v : valuesOf(record, member)) {
          using T = std::remove_reference_t<decltype(v)>;
          using Held = std::conditional_t<std::is_same_v<T, std::string>, const char*, T>;
          v = std::get<Held>(value);
        }
      },
      row.member);
}

template <class Record>
void construct(Record& record, std::span<const RecordRow<Record>> rows) {
  for (const auto& row : rows) assignInitial(record, row, row.initial);
}

// Takes the fields that lie wholly within the bytes; the others stay.
template <class Record>
void decode(Record& record, std::span<const RecordRow<Record>> rows, std::string_view bytes) {
  const auto* raw = reinterpret_cast<const unsigned char*>(bytes.data());
  for (const auto& row : rows)
    std::visit(
        [&](const auto& member) {
          std::size_t at = row.offset;
          for (auto& v : valuesOf(record, member)) {
            if (at + row.size > bytes.size()) return;
            readField(raw + at, row.size, v);
            at += row.size;
          }
        },
        row.member);
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
  for (const auto& row : rows)
    std::visit(
        [&](const auto& member) {
          unsigned char* at = image + row.offset;
          for (const auto& v : valuesOf(record, member)) {
            writeField(at, row.size, v);
            at += row.size;
          }
        },
        row.member);
}

template <class Record>
const RecordRow<Record>* rowNamed(std::span<const RecordRow<Record>> rows, std::string_view field) {
  for (const auto& row : rows)
    if (field == row.name) return &row;
  return nullptr;
}

// One field by its name, as text ("0.11", "1"). Nothing: there is no such field, or it is an array.
template <class Record>
std::optional<std::string> textOfField(const Record& record, std::span<const RecordRow<Record>> rows,
                                       std::string_view field) {
  const auto* row = rowNamed(rows, field);
  if (!row) return std::nullopt;
  return std::visit(
      [&](const auto& member) -> std::optional<std::string> {
        const auto values = valuesOf(record, member);
        if (values.size() != 1) return std::nullopt;
        return valueText(values.front());
      },
      row->member);
}

// False: no such field (the version at offset 0 is nobody's to set), or the text isn't of its kind; `error`
// says which.
template <class Record>
bool setFieldFromText(Record& record, std::span<const RecordRow<Record>> rows, std::string_view field,
                      std::string_view text, std::string& error) {
  const auto* row = rowNamed(rows, field);
  if (!row || row->offset == 0) {
    error = noSuchField(field);
    return false;
  }
  if (auto* i = std::get_if<std::int32_t Record::*>(&row->member))
    return parseValue(field, text, record.**i, error);
  if (auto* d = std::get_if<double Record::*>(&row->member))
    return parseValue(field, text, record.**d, error);
  if (text.size() >= row->size) {
    error = longerThan(field, row->size - 1);
    return false;
  }
  auto* s = std::get_if<std::string Record::*>(&row->member);
  if (!s) {
    error = noSuchField(field);  // an array: its items have no names
    return false;
  }
  record.** s = std::string(text);
  return true;
}

}  // namespace tarnex
