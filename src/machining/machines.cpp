// The posts that a user can choose from.
// Knows no record.
#include "machining/machines.h"

#include <algorithm>

#include "frame/catalog.h"
#include "frame/folders.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

std::string lowered(std::string_view given) {
  std::string text(given);
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

void addFrom(const std::string& install, std::vector<MachineName>& all) {
  if (install.empty()) return;
  const std::string root = realPath(install + "\\MZS");
  for (const auto& folder : folderEntries(root))
    if (isFolder(root + "/" + folder))
      for (const auto& file : folderEntries(root + "/" + folder))
        if (file.size() > 3 && lowered(file.substr(file.size() - 3)) == ".pc")
          all.push_back({folder, file.substr(0, file.size() - 3)});
}

}  // namespace

std::vector<MachineName> machinesOf(std::string_view installFolder) {
  std::vector<MachineName> all;
  addFrom(std::string(installFolder), all);
  addFrom(shippedFolder(), all);
  const auto key = [](const MachineName& m) { return lowered(m.text()); };
  std::ranges::stable_sort(all, {}, key);
  const auto [first, last] = std::ranges::unique(all, {}, key);
  all.erase(first, last);
  return all;
}

bool parseMachine(std::string_view text, MachineName& to, std::string& error) {
  const auto bar = text.find_first_of("/\\");
  MachineName name{std::string(text.substr(0, bar)),
                   std::string(bar == text.npos ? text : text.substr(bar + 1))};
  for (const auto* part : {&name.folder, &name.name})
    if (part->empty() || *part == "." || *part == ".." || part->find_first_of("/\\") != std::string::npos) {
      error = "\"" + std::string(text) + "\" names no machine; write FOLDER/NAME";
      return false;
    }
  to = std::move(name);
  return true;
}

MachineFamily familyOfText(std::string_view text) {
  const auto bar = text.find('|');
  if (bar == text.npos || bar == 0) return {std::string(text), {}};
  return {std::string(text.substr(0, bar)), std::string(text.substr(bar + 1))};
}

std::optional<int> familyOfFolder(MessageCatalog& catalog, std::string_view folder) {
  for (int i = 0; i < kFamilies; ++i) {
    const std::string text = catalog.getMessage(kFirstFamilyText + i);
    if (text.empty()) break;
    const auto family = familyOfText(text);
    if (!family.folder.empty() && lowered(family.folder) == lowered(folder)) return i;
  }
  return std::nullopt;
}

}  // namespace tarnex
