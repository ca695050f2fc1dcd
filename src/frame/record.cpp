// Little-endian items of fixed-size records.
// Knows no record.
#include "frame/record.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "host/platform/format.h"

namespace tarnex {

namespace {

std::uint64_t readBytes(const unsigned char* at, int count) {
  std::uint64_t v = 0;
  for (int i = count - 1; i >= 0; --i) v = v << 8 | at[i];
  return v;
}

void writeBytes(unsigned char* at, int count, std::uint64_t v) {
  for (int i = 0; i < count; ++i, v >>= 8) at[i] = static_cast<unsigned char>(v & 0xff);
}

}  // namespace

std::int32_t readInt32(const unsigned char* at) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(readBytes(at, 4)));
}

double readDouble(const unsigned char* at) {
  return std::bit_cast<double>(readBytes(at, 8));
}

std::string readText(const unsigned char* at, std::size_t size) {
  const unsigned char* end = std::find(at, at + size, '\0');
  return std::string(reinterpret_cast<const char*>(at), static_cast<std::size_t>(end - at));
}

void writeInt32(unsigned char* at, std::int32_t v) {
  writeBytes(at, 4, static_cast<std::uint32_t>(v));
}

void writeDouble(unsigned char* at, double v) {
  writeBytes(at, 8, std::bit_cast<std::uint64_t>(v));
}

void writeText(unsigned char* at, std::size_t size, std::string_view text) {
  std::size_t keep = std::min(text.size(), size - 1);
  if (keep < text.size())
    while (keep > 0 && (static_cast<unsigned char>(text[keep]) & 0xC0) == 0x80) --keep;
  std::memset(at, 0, size);
  std::memcpy(at, text.data(), keep);
}

std::string valueText(std::int32_t v) {
  return std::to_string(v);
}

std::string valueText(double v) {
  return shortestNumber(v);
}

std::string valueText(const std::string& v) {
  return v;
}

bool parseValue(std::string_view field, std::string_view text, std::int32_t& v, std::string& error) {
  long long n = 0;
  if (parseInteger(text, n) && n >= INT32_MIN && n <= INT32_MAX) {
    v = static_cast<std::int32_t>(n);
    return true;
  }
  error =
      formatted("%s: \"%s\" is not a whole number", std::string(field).c_str(), std::string(text).c_str());
  return false;
}

bool parseValue(std::string_view field, std::string_view text, double& v, std::string& error) {
  double n = 0;
  if (parseNumber(text, n) && std::isfinite(n)) {
    v = n;
    return true;
  }
  error = formatted("%s: \"%s\" is not a number", std::string(field).c_str(), std::string(text).c_str());
  return false;
}

std::string noSuchField(std::string_view field) {
  return formatted("%s: there is no such setting", std::string(field).c_str());
}

std::string longerThan(std::string_view field, std::uint32_t bytes) {
  return formatted("%s: longer than %u bytes", std::string(field).c_str(), bytes);
}

}  // namespace tarnex
