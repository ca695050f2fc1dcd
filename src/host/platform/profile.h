// Profile files: "[section]" and "key=value" lines, as settings and machine files have them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

// One parsed file. Sections and keys compare without regard to case (ASCII); of doubled keys the first
// counts, of doubled sections all count in file order. Blanks around keys and values are cut, one pair of
// quotes round a value too. Lines that are neither are skipped; ';' opens a comment line. A byte order mark
// is skipped; UTF-16 behind one becomes UTF-8.
class Profile {
 public:
  struct Entry {
    std::string section, key, value;
  };

  static Profile parse(std::string_view bytes);
  static Profile load(const std::string& path);  // a file that can't be read gives an empty profile

  // The value as it stands, nothing for a missing key. Valid until the profile changes.
  [[nodiscard]] std::optional<std::string_view> find(std::string_view section, std::string_view key) const;
  // Leading integer of the value (sign, decimal digits), 0 for a text without one, `fallback` for a missing
  // key. What an int can't hold becomes the nearest that it can.
  [[nodiscard]] int intOf(std::string_view section, std::string_view key, int fallback) const;
  // The value cut to `limit` - 1 bytes, the fallback when the key is missing.
  [[nodiscard]] std::string stringOf(std::string_view section, std::string_view key,
                                     std::string_view fallback, std::size_t limit = 128) const;
  // All of them in file order, for readers of large files: the look-ups here walk this list.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
  // Keys of a section in file order.
  [[nodiscard]] std::vector<std::string> keysOf(std::string_view section) const;
  // Replaces the first of that name, else adds it at the end of the section. Line ends in a value become
  // blanks.
  void set(std::string_view section, std::string_view key, std::string_view value);
  [[nodiscard]] std::string text() const;  // with line feeds; comments are not kept

 private:
  std::vector<Entry> entries_;
};

}  // namespace tarnex
