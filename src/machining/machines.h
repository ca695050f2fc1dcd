// Which slow-wire machines there are: the posts in the folders under MZS, and the families that folders
// belong to. Knows folders and the catalogue; no record.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

class MessageCatalog;

struct MachineName {
  std::string folder, name;
  bool operator==(const MachineName&) const = default;
  [[nodiscard]] std::string text() const { return folder + "/" + name; }
};

// The posts of the install folder, and shipped ones that it lacks, by folder and name.
[[nodiscard]] std::vector<MachineName> machinesOf(std::string_view installFolder);
// "FOLDER/NAME", also with `\`; folder and name are the same where there is no bar. Neither may lead
// elsewhere: false for a part that is empty or has "..", and `error` says so.
[[nodiscard]] bool parseMachine(std::string_view text, MachineName& to, std::string& error);

// The machine families that the catalogue names, by their numbers.
struct MachineFamily {
  std::string label, folder;
};
inline constexpr int kFamilies = 10, kFirstFamilyText = 1800;
// What the catalogue says of a family: "LABEL|FOLDER". The folder is empty without a bar behind the first
// character.
[[nodiscard]] MachineFamily familyOfText(std::string_view text);
// The family whose folder this is, ignoring case. The first empty text ends the search.
[[nodiscard]] std::optional<int> familyOfFolder(MessageCatalog& catalog, std::string_view folder);

}  // namespace tarnex
