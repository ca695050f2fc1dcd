// Writing that leaves the old file or the new one: temporary file beside it, flushed, renamed.
// Knows nothing of what the bytes mean.
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "host/platform/files.h"

namespace tarnex {
namespace {

constexpr std::size_t kBuffer = 1 << 18;
constexpr int kMostLinks = 40;

FileError failureOf(const std::string& path, int code) {
  return {path, std::strerror(code)};
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == path.npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// What a symbolic link names in the end, also when nothing stands there yet.
std::string behindLinks(std::string path) {
  for (int i = 0; i < kMostLinks; ++i) {
    char room[4096];
    const ssize_t count = readlink(path.c_str(), room, sizeof room);
    if (count <= 0 || count == static_cast<ssize_t>(sizeof room)) break;
    std::string target(room, count);
    if (target[0] != '/') target.insert(0, folderOf(path) + "/");
    path = std::move(target);
  }
  return path;
}

// 64 random bits as text, so that nobody can lay a file or link under the name beforehand.
std::string randomName() {
  unsigned char bytes[8];
  if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) return {};
  std::string name;
  for (unsigned char byte : bytes) {
    name += "0123456789abcdef"[byte >> 4];
    name += "0123456789abcdef"[byte & 15];
  }
  return name;
}

std::string temporaryBeside(const std::string& path) {
  const std::string random = randomName();
  if (random.empty()) return {};
  constexpr std::size_t kMostOfName = 200;  // names end at 255 bytes
  return folderOf(path) + "/." + std::string(fileNameOf(path)).substr(0, kMostOfName) + "." + random + ".tmp";
}

int writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(count);
  }
  return 0;
}

// The rename lasts over a power cut only when the folder is on disk too. Some file systems can't do it; that
// is no failure of the file.
int flushFolder(const std::string& path) {
  const int fd = open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return errno == EACCES ? 0 : errno;  // a folder may be open for writing and closed for reading
  const int code = fsync(fd) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
  close(fd);
  return code;
}

// Owner and mode of the file that is to be replaced. Another owner can be given by the administrator alone;
// whoever else may write the file owns the new one.
int takeOver(int fd, const struct stat& old) {
  mode_t mode = old.st_mode & 07777;
  if (fchown(fd, old.st_uid, old.st_gid) != 0 && fchown(fd, static_cast<uid_t>(-1), old.st_gid) != 0)
    mode &= 0777;
  return fchmod(fd, mode) == 0 ? 0 : errno;
}

// What lies in the system's folder for temporary files is nobody's work: it need not outlast a power cut.
bool isTemporary(const std::string& path) {
  std::error_code error;
  const auto base = std::filesystem::temp_directory_path(error);
  if (error) return false;
  const auto whole = std::filesystem::absolute(path, error).lexically_normal();
  const auto rest = whole.lexically_relative(base);
  return !error && !rest.empty() && *rest.begin() != ".." && *rest.begin() != ".";
}

}  // namespace

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)) {
  struct stat old {};
  const bool there = stat(path_.c_str(), &old) == 0;
  int code = 0;
  if (there && !S_ISREG(old.st_mode)) {
    fd_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (fd_ < 0) code = errno;
  } else if (there && access(path_.c_str(), W_OK) != 0) {
    code = errno;
  } else {
    path_ = behindLinks(path_);
    temporary_ = temporaryBeside(path_);
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    fd_ = temporary_.empty() ? -1 : open(temporary_.c_str(), flags, there ? 0600 : 0666);
    if (fd_ < 0) {
      code = errno;
      temporary_.clear();
    } else if (there) {
      code = takeOver(fd_, old);
    }
  }
  if (code != 0) failure_ = failureOf(path_, code);
}

AtomicFile::~AtomicFile() {
  if (fd_ >= 0) close(fd_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void AtomicFile::write(std::string_view bytes) {
  if (failure_ || fd_ < 0) return;
  if (bytes.size() < kBuffer) {
    buffer_ += bytes;
    if (buffer_.size() >= kBuffer) flush();
    return;
  }
  flush();  // a large piece goes out as it is
  if (failure_) return;
  if (const int code = writeAll(fd_, bytes); code != 0) failure_ = failureOf(path_, code);
}

void AtomicFile::flush() {
  if (failure_ || fd_ < 0) return;
  if (const int code = writeAll(fd_, buffer_); code != 0) failure_ = failureOf(path_, code);
  buffer_.clear();
}

std::optional<FileError> AtomicFile::commit() {
  flush();
  if (fd_ < 0 && !failure_) failure_ = FileError{path_, "already closed"};
  const bool lasting = !isTemporary(path_);
  if (!failure_ && !temporary_.empty() && lasting && fsync(fd_) != 0) failure_ = failureOf(path_, errno);
  if (fd_ >= 0 && close(fd_) != 0 && !failure_) failure_ = failureOf(path_, errno);
  fd_ = -1;
  if (!failure_ && !temporary_.empty()) {
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) {
      failure_ = failureOf(path_, errno);
    } else {
      temporary_.clear();
      if (const int code = lasting ? flushFolder(path_) : 0; code != 0) failure_ = failureOf(path_, code);
    }
  }
  if (!temporary_.empty()) unlink(temporary_.c_str());
  temporary_.clear();
  return failure_;
}

std::optional<FileError> writeFileAtomically(const std::string& path, std::string_view bytes) {
  AtomicFile file(path);
  file.write(bytes);
  return file.commit();
}

}  // namespace tarnex
