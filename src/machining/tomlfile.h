// TOML as a tree of plain values, and texts in TOML's spelling.
// Knows the format; what a key means is its readers' business.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarnex {

struct TomlValue {
  using Table = std::vector<std::pair<std::string, TomlValue>>;  // in the order of their lines
  using List = std::vector<TomlValue>;
  std::variant<bool, long long, double, std::string, List, Table> is = false;
  int line = 0;

  [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&is); }
  [[nodiscard]] const long long* whole() const { return std::get_if<long long>(&is); }
  [[nodiscard]] std::optional<double> real() const;  // a whole number too
  [[nodiscard]] const bool* yes() const { return std::get_if<bool>(&is); }
  [[nodiscard]] const List* list() const { return std::get_if<List>(&is); }
  [[nodiscard]] const Table* table() const { return std::get_if<Table>(&is); }
  [[nodiscard]] const TomlValue* find(std::string_view key) const;  // of a table
};

struct TomlError {
  int line = 0;
  std::string cause;
};

// The tree, or the first place where the text isn't TOML. Dates become texts.
[[nodiscard]] std::variant<TomlValue, TomlError> parseToml(std::string_view text);

// A text as TOML spells it, in quotes.
[[nodiscard]] std::string tomlText(std::string_view text);
// The shortest spelling that reads back as the same number; it has a point or an exponent.
[[nodiscard]] std::string tomlReal(double v);

}  // namespace tarnex
