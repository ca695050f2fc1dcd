// `tarnex catalog`: message catalogues from their text sources and back.
// Knows files; the formats are the frame's.
#pragma once

#include <string>

namespace tarnex {

int buildCatalogs(const std::string& sources, const std::string& into);
int checkCatalogSources(const std::string& sources);
int listCatalog(const std::string& file, int language);  // a .tgf file as its text source

}  // namespace tarnex
