// Answers of the message catalogue, from the file's bytes kept in memory for as long as the file stays the
// same. Knows neither prompts nor message boxes: a failure to open is handed back as the text to show.
#include "frame/catalog.h"

#include <utility>

#include "host/platform/codepage.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

// These can't come from a catalogue, since it is the catalogue that is missing.
std::string openFailure(const std::string& path, int language) {
  if (language == 2) return "无法开启文件:\n" + path + "\n\n详细情况请联系软件供应商.";
  if (language == 3) return "無法開啟文件:\n" + path + "\n\n詳細情況請聯系軟件供應商.";
  return "Cann't open file: \n" + path + "\n\nPlease connect us.";
}

}  // namespace

std::optional<std::string> MessageCatalog::open(const std::string& path, int language) {
  close();
  path_ = realPath(path);
  language_ = language;
  isOpen_ = readAgain();
  if (isOpen_) return {};
  close();
  return openFailure(path, language);
}

void MessageCatalog::close() {
  *this = MessageCatalog();
}

// The stamp is taken before the bytes: a file that changes in between is then read once too often, never too
// seldom.
bool MessageCatalog::readAgain() {
  const auto stamp = fileStamp(path_);
  auto read = readFile(path_);
  if (!read) return false;
  stamp_ = stamp;
  bytes_ = std::move(*read);
  index_ = TgfIndex(bytes_);
  decoded_.clear();
  return true;
}

void MessageCatalog::readIfChanged() {
  const auto now = fileStamp(path_);
  if (now && now != stamp_) readAgain();
}

std::string MessageCatalog::getMessage(int id) {
  if (!isOpen_) return {};
  readIfChanged();
  const auto known = decoded_.find(id);
  if (known != decoded_.end()) return known->second;
  const std::string stored = index_.lookUp(bytes_, id);
  return stored.empty()
             ? stored
             : decoded_.emplace(id, toUtf8(stored, catalogLanguage(language_).readPage)).first->second;
}

std::string MessageCatalog::format(int id, std::initializer_list<FormatArg> args) {
  return formatChecked(getMessage(id), args);
}

}  // namespace tarnex
