// Loadable modules and the text area that a started program can read.
// Knows neither what a module offers nor what the text is.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {
namespace {

char* mapped(int fd) {
  void* at = mmap(nullptr, SharedTextArea::kSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  return at == MAP_FAILED ? nullptr : static_cast<char*>(at);
}

}  // namespace

std::optional<LoadedModule> LoadedModule::load(const std::string& path, std::string* cause) {
  // Without a slash the loader would search its own folders.
  void* handle = dlopen(absolutePath(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle) return LoadedModule(handle);
  const char* reason = dlerror();
  if (cause) *cause = reason ? reason : path;
  return std::nullopt;
}

LoadedModule::LoadedModule(LoadedModule&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

LoadedModule& LoadedModule::operator=(LoadedModule&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

LoadedModule::~LoadedModule() {
  if (handle_) dlclose(handle_);
}

void* LoadedModule::entry(const char* name) const {
  return handle_ ? dlsym(handle_, name) : nullptr;
}

std::optional<SharedTextArea> SharedTextArea::create(std::string_view name) {
  SharedTextArea area;
  area.fd_ = memfd_create(std::string(name).substr(0, 200).c_str(), MFD_CLOEXEC);
  // Taken now: a page that can't be had later would end the program at a mere write.
  if (area.fd_ < 0 || posix_fallocate(area.fd_, 0, kSize) != 0) return std::nullopt;
  area.data_ = mapped(area.fd_);
  if (!area.data_) return std::nullopt;
  return area;
}

std::optional<SharedTextArea> SharedTextArea::openFromEnvironment() {
  const auto path = environment("TARNEX_TEXT_AREA");
  if (!path || path->empty()) return std::nullopt;
  SharedTextArea area;
  area.fd_ = open(path->c_str(), O_RDWR | O_CLOEXEC);
  struct stat info {};
  if (area.fd_ < 0 || fstat(area.fd_, &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  if (info.st_size < static_cast<off_t>(kSize)) return std::nullopt;
  area.data_ = mapped(area.fd_);
  if (!area.data_) return std::nullopt;
  return area;
}

SharedTextArea::SharedTextArea(SharedTextArea&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), fd_(std::exchange(other.fd_, -1)) {}

SharedTextArea& SharedTextArea::operator=(SharedTextArea&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(fd_, other.fd_);
  return *this;
}

SharedTextArea::~SharedTextArea() {
  if (data_) munmap(data_, kSize);
  if (fd_ >= 0) close(fd_);
}

}  // namespace tarnex
