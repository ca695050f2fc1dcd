// `tarnex catalog`: message catalogues from their text sources and back.
// Knows files; the formats are the frame's.
#include "apps/tarnex/catalogs.h"

#include <cstdio>

#include "apps/tarnex/job3b.h"
#include "frame/catalogcheck.h"
#include "frame/cataloglanguage.h"
#include "frame/catalogsource.h"
#include "frame/folders.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

int tell(const std::vector<SourceFault>& faults) {
  for (const auto& fault : faults) std::fprintf(stderr, "%s\n", fault.text().c_str());
  return faults.empty() ? kDone : kFailed;
}

std::optional<CatalogSet> soundSet(const std::string& sources) {
  std::vector<SourceFault> faults;
  CatalogSet set = loadCatalogSet(sources, faults);
  const auto more = checkCatalogs(set);
  faults.insert(faults.end(), more.begin(), more.end());
  if (tell(faults) != kDone) return std::nullopt;
  return set;
}

}  // namespace

int buildCatalogs(const std::string& sources, const std::string& into) {
  const auto set = soundSet(sources);
  if (!set) return kFailed;
  if (const auto failure = makeFolders(into)) {
    std::fprintf(stderr, "%s\n", failure->text().c_str());
    return kFailed;
  }
  for (const auto& language : set->languages) {
    std::vector<SourceFault> faults;
    const std::string bytes = buildCatalog(language, faults);
    if (tell(faults) != kDone) return kFailed;
    const std::string path = into + "/" + std::string(catalogFileName(language.language));
    if (const auto failure = writeFileAtomically(path, bytes)) {
      std::fprintf(stderr, "%s\n", failure->text().c_str());
      return kFailed;
    }
    std::printf("%s: %zu texts\n", path.c_str(), language.entries.size());
  }
  return kDone;
}

int checkCatalogSources(const std::string& sources) {
  const auto set = soundSet(sources);
  if (!set) return kFailed;
  std::printf("%s: %zu numbers, %zu languages, nothing amiss\n", sources.c_str(),
              set->arguments.entries.size(), set->languages.size());
  return kDone;
}

int listCatalog(const std::string& file, int languageNumber) {
  const std::string path = file.empty() ? realPath(messageFilePath(installFolder(), languageNumber)) : file;
  const auto bytes = readFile(path);
  if (!bytes) {
    std::fprintf(stderr, "%s\n", bytes.error.text().c_str());
    return kUnreadable;
  }
  std::fputs(decompileCatalog(*bytes.value, languageNumber).c_str(), stdout);
  return kDone;
}

}  // namespace tarnex
