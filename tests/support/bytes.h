// A record put together byte by byte, little-endian, without the program's own filer.
// Knows no record.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "host/geometry/values.h"

namespace tarnex {

struct Bytes {
  std::string s;

  Bytes& bits(std::uint64_t v, int count) {
    for (int i = 0; i < count; ++i) s += static_cast<char>(v >> (8 * i) & 0xFF);
    return *this;
  }
  Bytes& i16(int v) { return bits(static_cast<std::uint64_t>(v), 2); }
  Bytes& i32(int v) { return bits(static_cast<std::uint64_t>(v), 4); }
  Bytes& flag(bool v) { return bits(v ? 1 : 0, 1); }
  Bytes& real(double v) {
    std::uint64_t raw = 0;
    std::memcpy(&raw, &v, 8);
    return bits(raw, 8);
  }
  Bytes& p2(AcGePoint2d p) { return real(p.x).real(p.y); }
  Bytes& p3(AcGePoint3d p) { return real(p.x).real(p.y).real(p.z); }
  Bytes& text(const std::string& t) {
    i16(static_cast<int>(t.size()));
    s += t;
    return *this;
  }
};

}  // namespace tarnex
