// Whole-file reading, folders, and the system's paths as paths of this machine.
// Knows no file format.
#include "host/platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

namespace tarnex {
namespace {

constexpr std::size_t kMostFromPipe = std::size_t{1} << 31;  // a device may have no end
constexpr int kDeepestTree = 64;                             // links may make a folder hold itself

FileError failureOf(const std::string& path, int code) {
  return {path, std::strerror(code)};
}

FileResult<std::string> failed(const std::string& path, int code) {
  return {std::nullopt, failureOf(path, code)};
}

struct Descriptor {
  explicit Descriptor(const std::string& path) : fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd >= 0) close(fd);
  }
  int fd;
};

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

// The entry of `folder` that is `part` but for case; `part` itself when there is none.
std::string partWhateverCase(const std::string& folder, std::string_view part) {
  const std::string exact = folder + std::string(part);
  if (part.empty() || fileExists(exact)) return std::string(part);
  for (const std::string& name : folderEntries(folder.empty() ? "." : folder))
    if (sameName(name, part)) return name;
  return std::string(part);
}

std::optional<FileError> copyFile(const std::string& from, const std::string& to) {
  if (fileExists(to)) return std::nullopt;
  const auto bytes = readFile(from);
  if (!bytes) return bytes.error;
  if (auto error = writeFileAtomically(to, *bytes.value)) return error;
  struct stat info {};
  if (stat(from.c_str(), &info) == 0 && (info.st_mode & 0111) != 0)
    chmod(to.c_str(), (info.st_mode & 0777) | 0600);
  return std::nullopt;
}

std::optional<FileError> copyTree(const std::string& from, const std::string& to, int depth) {
  if (depth > kDeepestTree) return failureOf(from, ELOOP);
  if (!isFolder(from)) return fileExists(from) ? copyFile(from, to) : failureOf(from, ENOENT);
  if (auto error = makeFolders(to)) return error;
  for (const std::string& name : folderEntries(from)) {
    const std::string part = '/' + name;
    if (auto error = copyTree(from + part, to + part, depth + 1)) return error;
  }
  return std::nullopt;
}

}  // namespace

FileResult<std::string> readFile(const std::string& path) {
  const Descriptor file(path);
  if (file.fd < 0) return failed(path, errno);
  struct stat info {};
  if (fstat(file.fd, &info) != 0) return failed(path, errno);
  if (S_ISDIR(info.st_mode)) return failed(path, EISDIR);
  std::string bytes;
  std::size_t filled = 0;
  // One byte more than the size, so that the end is met without growing; a file that grows is followed.
  bytes.resize(S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size) + 1 : 1 << 16);
  for (;;) {
    const ssize_t count = read(file.fd, bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return failed(path, errno);
    if (count == 0) break;
    filled += count;
    if (!S_ISREG(info.st_mode) && filled > kMostFromPipe) return failed(path, EFBIG);
    if (filled == bytes.size()) bytes.resize(bytes.size() + std::max<std::size_t>(bytes.size() / 2, 1 << 16));
  }
  bytes.resize(filled);
  return {std::move(bytes), {}};
}

bool fileExists(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

bool isFolder(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::optional<FileError> makeFolders(const std::string& path) {
  if (isFolder(path)) return std::nullopt;
  std::error_code error;
  fs::create_directories(path, error);
  if (!error && isFolder(path)) return std::nullopt;
  return failureOf(path, error ? error.value() : ENOTDIR);
}

std::optional<FileError> copyTree(const std::string& from, const std::string& to) {
  return copyTree(from, to, 0);
}

std::optional<FileError> removeTree(const std::string& path) {
  std::error_code error;
  std::filesystem::remove_all(path, error);
  if (error) return FileError{path, error.message()};
  return std::nullopt;
}

std::optional<FileError> removeFile(const std::string& path) {
  if (unlink(path.c_str()) == 0 || errno == ENOENT) return std::nullopt;
  return failureOf(path, errno);
}

std::vector<std::string> folderEntries(const std::string& path) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator at(path, error), end; !error && at != end; at.increment(error))
    names.push_back(at->path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string currentFolder() {
  std::error_code error;
  return fs::current_path(error).string();
}

std::string absolutePath(const std::string& path) {
  if (!path.empty() && path[0] == '/') return path;
  std::string_view rest = path;
  while (rest.substr(0, 2) == "./") rest.remove_prefix(2);
  std::string whole = currentFolder();
  if (rest.empty() || rest == ".") return whole;
  if (whole != "/") whole += '/';
  return whole.append(rest);
}

std::string executableFolder() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path().string();
}

std::string temporaryFolder(std::string_view prefix) {
  std::error_code error;
  std::string path = (fs::temp_directory_path(error) / (std::string(prefix) + "XXXXXX")).string();
  return mkdtemp(path.data()) ? path : std::string();
}

std::string realPath(std::string_view systemPath) {
  std::string path(systemPath);
  std::replace(path.begin(), path.end(), '\\', '/');
  if (fileExists(path)) return path;
  std::string found;
  for (std::size_t at = 0; at <= path.size();) {
    const std::size_t end = std::min(path.find('/', at), path.size());
    found += partWhateverCase(found, std::string_view(path).substr(at, end - at));
    if (end < path.size()) found += '/';
    at = end + 1;
  }
  return found;
}

std::string fileNameOf(std::string_view path) {
  const std::size_t sign = path.find_last_of("\\/");
  return std::string(sign == path.npos ? path : path.substr(sign + 1));
}

}  // namespace tarnex
