// Bytes of a record put down by hand, apart from the code that reads them.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

namespace tarnex {

inline void putInt(std::string& file, std::size_t at, std::int32_t v) {
  for (int i = 0; i < 4; ++i) file[at + i] = static_cast<char>(static_cast<std::uint32_t>(v) >> 8 * i);
}

inline void putText(std::string& file, std::size_t at, std::string_view text) {
  file.replace(at, text.size(), text);
}

// Sign, exponent and fraction of binary64, lowest byte first.
inline void putDouble(std::string& file, std::size_t at, double v) {
  int exponent = 0;
  const double half = std::frexp(std::abs(v), &exponent);  // 0.5 <= half < 1
  std::uint64_t bits = 0;
  if (v != 0)
    bits = static_cast<std::uint64_t>(std::ldexp(half, 53)) - (1ULL << 52) +
           (static_cast<std::uint64_t>(exponent + 1022) << 52);
  if (v < 0) bits |= 1ULL << 63;
  for (int i = 0; i < 8; ++i) file[at + i] = static_cast<char>(bits >> 8 * i);
}

inline int rounds(int usual) {
  return std::getenv("TARNEX_LONG") ? usual * 100 : usual;
}

// A few bytes changed, cut off or doubled.
inline std::string damaged(std::string bytes, std::mt19937& random) {
  const auto below = [&](std::size_t n) { return n == 0 ? 0 : random() % n; };
  for (auto n = 1 + below(8); n > 0; --n) switch (below(4)) {
      case 0:
        if (!bytes.empty()) bytes[below(bytes.size())] = static_cast<char>(random());
        break;
      case 1:
        bytes.resize(below(bytes.size() + 1));
        break;
      case 2: {
        const auto from = below(bytes.size());
        bytes.insert(below(bytes.size() + 1), bytes.substr(from, below(200)));
        break;
      }
      default:
        if (!bytes.empty()) bytes.replace(below(bytes.size()), 1, 1 + below(40), static_cast<char>(random()));
    }
  return bytes;
}

}  // namespace tarnex
