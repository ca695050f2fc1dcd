// Message catalogues as text: what translators edit, and the way from it to a `.tgf` file and back.
// Knows the form of the text files and the code pages; which numbers there must be, catalogcheck.h knows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/cataloglanguage.h"

namespace tarnex {

// A mistake in a source, in one sentence; line 0 is the file as a whole.
struct SourceFault {
  std::string file;
  int line = 0;
  std::string what;
  [[nodiscard]] std::string text() const;  // "VornGb.txt:12: ..."
};

// One line of a language's file:   29  i  "\nPath %d: "
// Kinds are letters in the order of the arguments: i integer, f real, s string; "-" stands for none.
struct CatalogEntry {
  int id = 0;
  std::string kinds;  // "" for none
  std::string text;   // UTF-8, without the escapes \n \t \" \\ of the source
  int line = 0;
};

struct CatalogSource {
  std::string file;
  int language = 1;
  std::vector<CatalogEntry> entries;  // in file order
};

// One line of arguments.txt:   29  i  U  BP: main prompt, outer shape; number of the next path
struct CatalogArgument {
  int id = 0;
  std::string kinds;
  std::vector<std::string> keywords;  // that the text must offer in brackets; "-" stands for none, else "U,B"
  std::string note;
  int line = 0;
};

struct CatalogArguments {
  std::string file;
  std::vector<CatalogArgument> entries;
};

// Lines that can't be read are left out and reported. Empty lines and lines that begin with '#' are comments.
[[nodiscard]] CatalogSource parseCatalogSource(std::string_view text, const std::string& file, int language,
                                               std::vector<SourceFault>& faults);
[[nodiscard]] CatalogArguments parseCatalogArguments(std::string_view text, const std::string& file,
                                                     std::vector<SourceFault>& faults);

// Everything under one folder: arguments.txt, VornEn.txt, VornGb.txt, VornBig5.txt.
struct CatalogSet {
  CatalogArguments arguments;
  std::vector<CatalogSource> languages;  // in the order of kCatalogLanguages
};
[[nodiscard]] CatalogSet loadCatalogSet(const std::string& folder, std::vector<SourceFault>& faults);

// The `.tgf` file of a source. A text that can't be stored as it stands is left out and reported.
[[nodiscard]] std::string buildCatalog(const CatalogSource& source, std::vector<SourceFault>& faults);
// The text source of a `.tgf` file: every text that a lookup reaches, by number. Kinds are read off the
// texts, '?' for one whose conversions can't be told. Sources in, built and decompiled give the same entries.
[[nodiscard]] std::string decompileCatalog(std::string_view tgf, int language);

// One line of a language's file, without its line end.
[[nodiscard]] std::string catalogLine(const CatalogEntry& entry);

}  // namespace tarnex
