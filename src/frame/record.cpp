// Little-endian items of fixed-size records.
// Knows no record.
#include "frame/record.h"

#include <algorithm>
#include <bit>

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

}  // namespace tarnex
