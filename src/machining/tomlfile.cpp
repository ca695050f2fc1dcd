// The one place that knows the TOML library.
// Knows no key.
#include "machining/tomlfile.h"

#include <algorithm>
#include <sstream>

#include "host/platform/format.h"

// The library asserts, or lets the compiler assume, what a damaged text breaks ("[!]"); behind each such
// place stands the test that tells the fault, so neither may happen.
#undef NDEBUG
#define TOML_ASSERT(expr) static_assert(true)
#define TOML_ENABLE_FORMATTERS 1
#define TOML_EXCEPTIONS 0
#define TOML_MAX_NESTED_VALUES 32
#include <toml++/toml.h>

namespace tarnex {

namespace {

TomlValue plain(const toml::node& node);

TomlValue::Table plainTable(const toml::table& table) {
  TomlValue::Table fields;
  for (const auto& [key, value] : table) {
    TomlValue v = plain(value);
    v.line = static_cast<int>(key.source().begin.line);
    fields.emplace_back(std::string(key.str()), std::move(v));
  }
  std::ranges::stable_sort(fields, {}, [](const auto& f) { return f.second.line; });
  return fields;
}

TomlValue plain(const toml::node& node) {
  TomlValue v;
  v.line = static_cast<int>(node.source().begin.line);
  if (const auto* table = node.as_table()) v.is = plainTable(*table);
  if (const auto* array = node.as_array()) {
    TomlValue::List list;
    for (const auto& item : *array) list.push_back(plain(item));
    v.is = std::move(list);
  }
  if (const auto* text = node.as_string()) v.is = text->get();
  if (const auto* whole = node.as_integer()) v.is = static_cast<long long>(whole->get());
  if (const auto* real = node.as_floating_point()) v.is = real->get();
  if (const auto* yes = node.as_boolean()) v.is = yes->get();
  if (node.is_date() || node.is_time() || node.is_date_time()) {
    std::ostringstream text;
    node.visit([&](const auto& n) { text << n; });
    v.is = text.str();
  }
  return v;
}

}  // namespace

std::optional<double> TomlValue::real() const {
  if (const auto* d = std::get_if<double>(&is)) return *d;
  if (const auto* n = whole()) return static_cast<double>(*n);
  return std::nullopt;
}

const TomlValue* TomlValue::find(std::string_view key) const {
  if (const auto* fields = table())
    for (const auto& [name, value] : *fields)
      if (name == key) return &value;
  return nullptr;
}

namespace {

// The library and the tree go as deep as keys nest. Where that could be deeper than the stack, the line.
std::optional<int> tooDeep(std::string_view text) {
  constexpr long kMostDots = 200;
  for (int line = 1; !text.empty(); ++line) {
    const auto end = std::min(text.find('\n'), text.size() - 1);
    if (std::ranges::count(text.substr(0, end), '.') > kMostDots) return line;
    text.remove_prefix(end + 1);
  }
  return std::nullopt;
}

constexpr std::size_t kMostBytes = 4'000'000;

}  // namespace

std::variant<TomlValue, TomlError> parseToml(std::string_view text) {
  if (text.size() > kMostBytes) return TomlError{1, "longer than 4 MB"};
  if (const auto line = tooDeep(text)) return TomlError{*line, "more than 200 points in a line"};
  const auto parsed = toml::parse(text);
  if (parsed) return plain(parsed.table());
  const auto& error = parsed.error();
  return TomlError{static_cast<int>(error.source().begin.line), std::string(error.description())};
}

std::string tomlText(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\')
      out += {'\\', c};
    else if (c == '\n')
      out += "\\n";
    else if (c == '\r')
      out += "\\r";
    else if (c == '\t')
      out += "\\t";
    else if (byte < 0x20 || byte == 0x7f)
      out += formatted("\\u%04X", byte);
    else
      out += c;
  }
  return out + "\"";
}

std::string tomlReal(double v) {
  std::string text = shortestNumber(v);
  return text.find_first_of(".en") == std::string::npos ? text + ".0" : text;
}

}  // namespace tarnex
