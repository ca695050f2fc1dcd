// The mark by which a changed file is known without reading it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnex {

// Two equal stamps: the file under this path is the same one, with the same content. A file replaced by
// renaming another over it has another `file`; one written in place has another time or size. Not told apart:
// two contents of one size, written in place within one tick of the file system's clock (some milliseconds).
struct FileStamp {
  std::uint64_t device = 0, file = 0;
  std::int64_t size = 0;
  std::int64_t modified = 0, changed = 0;  // nanoseconds since 1970
  bool operator==(const FileStamp&) const = default;
};

// Nothing when there is no such file or it can't be asked about.
[[nodiscard]] std::optional<FileStamp> fileStamp(const std::string& path);

}  // namespace tarnex
