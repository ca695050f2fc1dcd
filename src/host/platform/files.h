// Files and folders: whole-file reading, writing that leaves the old or the new and never half, and paths
// written with `\` under the install folder.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

struct FileError {
  std::string path, cause;  // cause: the system's words, such as "No space left on device"
  [[nodiscard]] std::string text() const { return path + ": " + cause; }
};

// A result or the reason why there is none.
template <class T>
struct FileResult {
  std::optional<T> value;
  FileError error;
  explicit operator bool() const { return value.has_value(); }
  T& operator*() { return *value; }
  T* operator->() { return &*value; }
};

[[nodiscard]] FileResult<std::string> readFile(const std::string& path);
// Temporary file in the same folder, flushed to disk (but for files in the system's temporary folder),
// renamed over `path`: nothing on success, else the error, and the old file stays intact. Keeps the old
// file's mode bits; follows a symbolic link; a device or pipe is written straight. A write-protected file is
// refused. A killed program may leave a file ".NAME.<16 hex digits>.tmp" behind.
[[nodiscard]] std::optional<FileError> writeFileAtomically(const std::string& path, std::string_view bytes);
// The same in pieces, for output that should not stand in memory as a whole.
class AtomicFile {
 public:
  explicit AtomicFile(std::string path);
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  ~AtomicFile();                       // without commit(): the old file stays, nothing is left behind
  void write(std::string_view bytes);  // buffered; a failure is remembered for commit()
  [[nodiscard]] std::optional<FileError> commit();
  [[nodiscard]] const std::optional<FileError>& failure() const { return failure_; }

 private:
  void flush();
  std::string path_, temporary_, buffer_;
  int fd_ = -1;
  std::optional<FileError> failure_;
};

[[nodiscard]] bool fileExists(const std::string& path);
[[nodiscard]] bool isFolder(const std::string& path);
[[nodiscard]] std::optional<FileError> makeFolders(const std::string& path);
[[nodiscard]] std::optional<FileError> copyTree(const std::string& from,
                                                const std::string& to);  // files kept if there
[[nodiscard]] std::optional<FileError> removeTree(
    const std::string& path);  // a folder with all in it; missing is fine
[[nodiscard]] std::optional<FileError> removeFile(const std::string& path);  // a missing file is not an error
// Names in a folder, sorted bytewise, without "." and "..".
[[nodiscard]] std::vector<std::string> folderEntries(const std::string& path);
[[nodiscard]] std::string currentFolder();
[[nodiscard]] std::string absolutePath(const std::string& path);
[[nodiscard]] std::string executableFolder();
[[nodiscard]] std::string temporaryFolder(std::string_view prefix);  // a new private folder

// A path of the system ("C:\..." never occurs; `\` and `/` both part) as one of this machine. Where the exact
// name is missing, each part is looked for whatever its case; a part that isn't there at all stays as
// written.
[[nodiscard]] std::string realPath(std::string_view systemPath);
// The last part of a path parted by `\` or `/`.
[[nodiscard]] std::string fileNameOf(std::string_view path);

}  // namespace tarnex
