// File stamps from what the system keeps about a file.
// Knows nothing of what files hold.
#include "host/platform/filestamp.h"

#include <sys/stat.h>

namespace tarnex {

namespace {

std::int64_t nanoseconds(const timespec& t) {
  return std::int64_t{t.tv_sec} * 1'000'000'000 + t.tv_nsec;
}

}  // namespace

std::optional<FileStamp> fileStamp(const std::string& path) {
  struct stat s {};
  if (::stat(path.c_str(), &s) != 0) return {};
  return FileStamp{s.st_dev, s.st_ino, s.st_size, nanoseconds(s.st_mtim), nanoseconds(s.st_ctim)};
}

}  // namespace tarnex
