// The message catalogue: the user's texts by number, in the language of the installation.
// Knows the file and its code page; what a number is for, its users know.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "frame/cataloglanguage.h"
#include "frame/tgf.h"
#include "host/platform/filestamp.h"
#include "host/platform/format.h"

namespace tarnex {

// One open catalogue. Texts come from the file as it is when they are asked for: a file that changes under
// the program is read anew, one that vanishes or can't be read any more goes on answering with what was read
// last.
class MessageCatalog {
 public:
  // Opens the catalogue at `path` (parted by `\` or `/`), after closing the one that was open. On failure the
  // text to show in a message box with the information icon; every text is empty then. A path of any length
  // is taken.
  [[nodiscard]] std::optional<std::string> open(const std::string& path, int language);
  void close();
  [[nodiscard]] bool isOpen() const { return isOpen_; }

  // The text in UTF-8; empty when no catalogue is open or it lacks the number.
  [[nodiscard]] std::string getMessage(int id);
  // The text with its conversions filled in; as it stands when they don't match the arguments in number and
  // kind.
  [[nodiscard]] std::string format(int id, std::initializer_list<FormatArg> args);

 private:
  bool readAgain();
  void readIfChanged();

  bool isOpen_ = false;
  std::string path_;
  int language_ = 1;
  std::optional<FileStamp> stamp_;
  std::string bytes_;
  TgfIndex index_;
  std::unordered_map<int, std::string> decoded_;  // texts asked for since the file was read
};

}  // namespace tarnex
