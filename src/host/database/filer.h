// The object filer: the sequence of typed items in which an object is stored.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/database/status.h"
#include "host/geometry/values.h"

namespace tarnex {

enum class FilerType { kFileFiler = 0, kCopyFiler = 1, kUndoFiler = 2, kWblockCloneFiler = 9 };

// Items as little-endian bytes: int16 2, int32 4, boolean 1 (0 or 1), double 8 (IEEE 754), point2d 16,
// point3d 24, string: int16 length and that many bytes (UTF-8, at most 32767; a longer one is cut between
// characters), hard pointer id: the handle as 8 bytes. Reading past the end gives zeros and empty strings and
// makes filerStatus() eEndOfFile.
class AcDbDwgFiler {
 public:
  explicit AcDbDwgFiler(FilerType type = FilerType::kFileFiler) : type_(type) {}          // for writing
  explicit AcDbDwgFiler(std::string_view bytes, FilerType type = FilerType::kFileFiler);  // for reading

  [[nodiscard]] FilerType filerType() const { return type_; }
  [[nodiscard]] ErrorStatus filerStatus() const { return status_; }
  void setFilerStatus(ErrorStatus s) { status_ = s; }

  void writeInt16(std::int16_t v);
  void writeInt32(std::int32_t v);
  void writeBoolean(bool v);
  void writeDouble(double v);
  void writePoint2d(AcGePoint2d p);
  void writePoint3d(const AcGePoint3d& p);
  void writeString(std::string_view s);
  void writeHardPointerId(std::uint64_t handle);
  [[nodiscard]] const std::string& bytes() const { return out_; }

  [[nodiscard]] std::int16_t readInt16();
  [[nodiscard]] std::int32_t readInt32();
  [[nodiscard]] bool readBoolean();
  [[nodiscard]] double readDouble();
  [[nodiscard]] AcGePoint2d readPoint2d();
  [[nodiscard]] AcGePoint3d readPoint3d();
  [[nodiscard]] std::string readString();
  [[nodiscard]] std::uint64_t readHardPointerId();
  [[nodiscard]] std::size_t remaining() const { return in_.size() - at_; }

 private:
  std::uint64_t readBits(std::size_t bytes);

  FilerType type_;
  ErrorStatus status_ = ErrorStatus::eOk;
  std::string out_;
  std::string_view in_;
  std::size_t at_ = 0;
};

}  // namespace tarnex
