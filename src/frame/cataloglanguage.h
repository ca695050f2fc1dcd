// The languages of the message catalogue: their numbers, file names and code pages.
// Knows nothing of how a language is chosen.
#pragma once

#include <string>

namespace tarnex {

struct CatalogLanguage {
  int number;
  const char* stem;       // of the file name, without ".tgf"
  const char* readPage;   // wide enough for every catalogue that was ever made
  const char* writePage;  // what every controller and old program can show
};

inline constexpr CatalogLanguage kCatalogLanguages[] = {
    {1, "VornEn", "CP1252", "CP1252"},
    {2, "VornGb", "GB18030", "GB2312"},
    {3, "VornBig5", "BIG5", "BIG5"},
};

// Language 2 Simplified and 3 Traditional Chinese; every other number is English.
[[nodiscard]] constexpr const CatalogLanguage& catalogLanguage(int number) {
  return kCatalogLanguages[number == 2 ? 1 : number == 3 ? 2 : 0];
}
[[nodiscard]] inline std::string catalogFileName(int number) {
  return std::string(catalogLanguage(number).stem) + ".tgf";
}

}  // namespace tarnex
