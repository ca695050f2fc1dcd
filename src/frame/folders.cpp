// Where the system's data lies, and which language it speaks.
// Knows the registry's stand-in and the environment; no record and no catalogue text.
#include "frame/folders.h"

#include "frame/cataloglanguage.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

std::string upToSeparator(std::string path) {
  while (path.size() > 1 && (path.back() == '\\' || path.back() == '/')) path.pop_back();
  return path;
}

// The parts that a user edits are copied; catalogues and modules are found in the shipped folder, so that a
// newer program brings its own.
constexpr const char* kEditable[] = {"KZS", "MZS", "TK"};

}  // namespace

std::string productFolder(std::string_view name, std::string_view fallback) {
  const std::string product(name.empty() ? fallback : name);
  if (product.empty()) return executableFolder();
  if (product == kProductName)
    if (const auto chosen = environment("TARNEX_INSTALL"); chosen && !chosen->empty())
      return upToSeparator(*chosen);
  if (const auto path = registryValue("Software\\KESTRIX\\" + product, "Path"); path && !path->empty())
    return upToSeparator(*path);
  return userDataFolder() + "/" + product;
}

std::string shippedFolder() {
  if (const auto chosen = environment("TARNEX_SHIPPED"); chosen && isFolder(*chosen)) return *chosen;
  for (const char* beside : {"/../share/tarnex", "/../install"}) {
    const std::string folder = executableFolder() + beside;
    if (isFolder(folder)) return absolutePath(folder);
  }
  return {};
}

std::string installFolder(std::string* problem) {
  const std::string folder = productFolder(kProductName, {});
  const std::string shipped = shippedFolder();
  auto failure = makeFolders(realPath(folder));
  for (const char* part : kEditable) {
    if (failure || shipped.empty()) break;
    const std::string from = shipped + "/" + part, to = realPath(folder) + "/" + part;
    if (isFolder(from) && !isFolder(realPath(folder + "\\" + part))) failure = copyTree(from, to);
  }
  if (failure && problem) *problem = failure->text();
  return folder;
}

std::string dataFile(std::string_view install, std::string_view name) {
  const std::string own = std::string(install) + "\\" + std::string(name);
  if (fileExists(realPath(own))) return own;
  const std::string shipped = shippedFolder();
  if (!shipped.empty() && fileExists(realPath(shipped + "\\" + std::string(name))))
    return shipped + "\\" + std::string(name);
  return own;
}

int languageOfLocale(std::string_view locale) {
  if (locale.substr(0, 5) == "zh_CN") return 2;
  if (locale.substr(0, 5) == "zh_TW") return 3;
  return 1;
}

int language() {
  auto chosen = environment("TARNEX_LANGUAGE");
  if (!chosen) chosen = registryValue("Software\\KESTRIX", "Language");
  long long number = 0;
  if (chosen && parseInteger(*chosen, number) && number != 0) return static_cast<int>(number);
  return languageOfLocale(systemLocale());
}

std::string messageFilePath(std::string_view install, int languageNumber) {
  return dataFile(install, catalogFileName(languageNumber));
}

std::string dialogLibraryPath(std::string_view install) {
  return dataFile(install, "Harbec.DLL");
}

}  // namespace tarnex
