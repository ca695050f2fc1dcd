// The object filer over bytes in memory.
// Knows item kinds and their bytes; not which items an object has.
#include "host/database/filer.h"

#include <algorithm>
#include <bit>

namespace tarnex {

namespace {

constexpr std::size_t kLongestString = 32767;  // bytes; the length is an int16

void appendLittleEndian(std::string& out, std::uint64_t bits, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>((bits >> (8 * i)) & 0xFF));
}

// The first `size` bytes or fewer, never half a UTF-8 character.
std::string_view cutUtf8(std::string_view s, std::size_t size) {
  if (s.size() <= size) return s;
  while (size > 0 && (static_cast<unsigned char>(s[size]) & 0xC0) == 0x80) --size;
  return s.substr(0, size);
}

}  // namespace

AcDbDwgFiler::AcDbDwgFiler(std::string_view bytes, FilerType type) : type_(type), in_(bytes) {}

void AcDbDwgFiler::writeInt16(std::int16_t v) {
  appendLittleEndian(out_, static_cast<std::uint16_t>(v), 2);
}
void AcDbDwgFiler::writeInt32(std::int32_t v) {
  appendLittleEndian(out_, static_cast<std::uint32_t>(v), 4);
}
void AcDbDwgFiler::writeBoolean(bool v) {
  out_.push_back(v ? '\1' : '\0');
}
void AcDbDwgFiler::writeDouble(double v) {
  appendLittleEndian(out_, std::bit_cast<std::uint64_t>(v), 8);
}
void AcDbDwgFiler::writePoint2d(AcGePoint2d p) {
  writeDouble(p.x);
  writeDouble(p.y);
}
void AcDbDwgFiler::writePoint3d(const AcGePoint3d& p) {
  writePoint2d(p.flat());
  writeDouble(p.z);
}
void AcDbDwgFiler::writeString(std::string_view s) {
  const std::string_view kept = cutUtf8(s, kLongestString);
  writeInt16(static_cast<std::int16_t>(kept.size()));
  out_.append(kept);
}
void AcDbDwgFiler::writeHardPointerId(std::uint64_t handle) {
  appendLittleEndian(out_, handle, 8);
}

std::uint64_t AcDbDwgFiler::readBits(std::size_t bytes) {
  if (remaining() < bytes) {
    status_ = ErrorStatus::eEndOfFile;
    at_ = in_.size();
    return 0;
  }
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < bytes; ++i)
    bits |= static_cast<std::uint64_t>(static_cast<unsigned char>(in_[at_ + i])) << (8 * i);
  at_ += bytes;
  return bits;
}

std::int16_t AcDbDwgFiler::readInt16() {
  return static_cast<std::int16_t>(readBits(2));
}
std::int32_t AcDbDwgFiler::readInt32() {
  return static_cast<std::int32_t>(readBits(4));
}
bool AcDbDwgFiler::readBoolean() {
  return readBits(1) != 0;
}
double AcDbDwgFiler::readDouble() {
  return std::bit_cast<double>(readBits(8));
}
AcGePoint2d AcDbDwgFiler::readPoint2d() {
  const double x = readDouble();
  return {x, readDouble()};
}
AcGePoint3d AcDbDwgFiler::readPoint3d() {
  const AcGePoint2d flat = readPoint2d();
  return solid(flat, readDouble());
}
std::string AcDbDwgFiler::readString() {
  const int length = readInt16();
  if (length < 0 || static_cast<std::size_t>(length) > remaining()) {
    status_ = ErrorStatus::eEndOfFile;
    at_ = in_.size();
    return {};
  }
  std::string s(in_.substr(at_, static_cast<std::size_t>(length)));
  at_ += s.size();
  return s;
}
std::uint64_t AcDbDwgFiler::readHardPointerId() {
  return readBits(8);
}

}  // namespace tarnex
