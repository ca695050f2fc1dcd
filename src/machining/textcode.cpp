// Code pages of records.
// Knows code pages alone.
#include "machining/textcode.h"

#include <algorithm>

#include "host/platform/codepage.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool comesBack(const std::string& bytes, const std::string& code) {
  bool damaged = false, lossy = false;
  const std::string text = toUtf8(bytes, code, &damaged);
  return !damaged && fromUtf8(text, code, &lossy) == bytes && !lossy;
}

}  // namespace

std::string textCodeOf(std::span<const std::string* const> texts) {
  const auto all = [&](auto holds) { return std::ranges::all_of(texts, [&](auto* t) { return holds(*t); }); };
  if (all([](const std::string& t) { return isUtf8(t); })) return "UTF-8";
  if (all([](const std::string& t) { return isAscii(t) || comesBack(t, "GB18030"); })) return "GB18030";
  return "ISO-8859-1";
}

std::string textFromBytes(std::string_view bytes, const std::string& code) {
  return code == "UTF-8" || isAscii(bytes) ? std::string(bytes) : toUtf8(bytes, code);
}

std::string bytesFromText(std::string_view text, const std::string& code, bool* lossy) {
  if (lossy) *lossy = false;
  return code == "UTF-8" || isAscii(text) ? std::string(text) : fromUtf8(text, code, lossy);
}

std::string textFault(std::string_view text, std::size_t limit, const std::string& code) {
  bool lossy = false;
  const std::string bytes = bytesFromText(text, code, &lossy);
  if (lossy) return "has a character that " + code + " lacks";
  if (bytes.find('\0') != std::string::npos) return "has a zero byte in it";
  if (bytes.size() > limit) return formatted("has %zu bytes, at most %zu", bytes.size(), limit);
  return {};
}

}  // namespace tarnex
