// The bytes of a message catalogue (`.tgf`): numbered texts, scrambled, behind an index.
// Knows no code page and no files: texts are byte strings in whatever page their language has.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

// A lookup takes 127 bytes at most, the end byte among them, so that no text may be longer than this.
constexpr std::size_t kLongestTgfText = 126;
constexpr std::size_t kTgfTextBytes = 127;

struct TgfText {
  std::int32_t id = 0;
  std::string text;  // as shown, not scrambled; in the catalogue's code page
};

// Why a text can't stand in a catalogue; nothing when it can. Refused: more than kLongestTgfText bytes, and
// the bytes 0x00 and 0xFF, since either would be taken for the end of the text.
[[nodiscard]] std::optional<std::string> tgfTextFault(std::string_view text);

// The file's bytes; one index record per text, in the order given, doubled numbers included. Nothing when
// tgfTextFault has something to say about one of them.
[[nodiscard]] std::optional<std::string> writeTgf(const std::vector<TgfText>& texts);

// The text of the first record with this number; empty when there is none. Counts and offsets are taken for
// what they are worth: records that the file doesn't hold don't count, a text outside the file is empty, one
// that runs into the file's end ends there.
[[nodiscard]] std::string lookUpTgf(std::string_view file, std::int32_t id);

// One record of the index: the number of a text, and where in the file its first byte lies.
struct TgfRecord {
  std::int32_t id = 0, offset = 0;
};
// Every record that the header claims and the file holds, in file order. A lookup sees only the first of a
// number.
[[nodiscard]] std::vector<TgfRecord> readTgfIndex(std::string_view file);
// The text at this place of the file; empty when the place lies outside.
[[nodiscard]] std::string tgfTextAt(std::string_view file, std::int32_t offset);

// The same answers as lookUpTgf without a walk per question. Holds no text, only where each lies.
class TgfIndex {
 public:
  TgfIndex() = default;
  explicit TgfIndex(std::string_view file);
  // `file` holds the bytes that the index was made from.
  [[nodiscard]] std::string lookUp(std::string_view file, std::int32_t id) const;

 private:
  std::vector<TgfRecord> records_;  // by number, each once
};

}  // namespace tarnex
