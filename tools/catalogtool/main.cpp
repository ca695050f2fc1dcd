// The catalogue compiler that the build runs: text sources to `.tgf` files, and back to text.
// Knows no more of the system than the catalogue's layout, so that it can be built before everything else.
#include <cstdio>
#include <string>
#include <vector>

#include "frame/catalogcheck.h"
#include "frame/catalogsource.h"
#include "host/platform/files.h"

namespace {

using namespace tarnex;

constexpr int kDone = 0, kFailed = 1, kWrongUsage = 2, kUnreadable = 3;

int usage() {
  std::fputs(
      "catalogtool check SOURCES          are the three languages complete, and do they agree\n"
      "catalogtool build SOURCES FOLDER   check, then write VornEn.tgf, VornGb.tgf, VornBig5.tgf into "
      "FOLDER\n"
      "catalogtool list FILE              the text source of a .tgf file; the language goes by the file's "
      "name\n",
      stderr);
  return kWrongUsage;
}

int report(const std::string& folder, const std::vector<SourceFault>& faults) {
  for (const SourceFault& fault : faults)
    std::fprintf(stderr, "%s/%s\n", folder.c_str(), fault.text().c_str());
  return faults.empty() ? kDone : kFailed;
}

int check(const std::string& folder, CatalogSet& set) {
  std::vector<SourceFault> faults;
  set = loadCatalogSet(folder, faults);
  if (faults.empty()) faults = checkCatalogs(set);
  return report(folder, faults);
}

int build(const std::string& sources, const std::string& folder) {
  CatalogSet set;
  if (const int code = check(sources, set); code != kDone) return code;
  if (const auto error = makeFolders(folder)) {
    std::fprintf(stderr, "%s\n", error->text().c_str());
    return kFailed;
  }
  for (const CatalogSource& source : set.languages) {
    std::vector<SourceFault> faults;
    const std::string bytes = buildCatalog(source, faults);
    if (!faults.empty()) return report(sources, faults);
    const std::string file = folder + "/" + catalogFileName(source.language);
    if (const auto error = writeFileAtomically(file, bytes)) {
      std::fprintf(stderr, "%s\n", error->text().c_str());
      return kFailed;
    }
  }
  return kDone;
}

int list(const std::string& path) {
  auto read = readFile(path);
  if (!read) {
    std::fprintf(stderr, "%s\n", read.error.text().c_str());
    return kUnreadable;
  }
  int number = 1;
  for (const CatalogLanguage& language : kCatalogLanguages)
    if (fileNameOf(path) == catalogFileName(language.number)) number = language.number;
  std::fputs(decompileCatalog(*read, number).c_str(), stdout);
  return kDone;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  CatalogSet set;
  if (words.size() == 2 && words[0] == "check") return check(words[1], set);
  if (words.size() == 3 && words[0] == "build") return build(words[1], words[2]);
  if (words.size() == 2 && words[0] == "list") return list(words[1]);
  return usage();
}
