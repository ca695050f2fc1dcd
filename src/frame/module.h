// The one object on which everything hangs that commands share. Only commands take it; every operation below
// takes just what it uses. Two can live in one process, on two threads.
#pragma once

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <typeindex>
#include <unordered_map>
#include <vector>

#include "frame/catalog.h"
#include "frame/settings.h"
#include "host/editor/editor.h"
#include "host/platform/system.h"

namespace tarnex {

class Module {
 public:
  Module(AcEditor& hostEditor, std::string installFolderPath, int languageNumber);

  AcEditor& editor;
  const std::string installFolder;  // a path of the system, without a separator at its end
  const int language;
  WireCutSettings settings;
  MessageCatalog catalog;
  AcGePoint3d ptOrigin;          // program origin, world; writers subtract x and y
  bool bOrderMode = false;       // the order command runs: the display shows numbers alone
  bool bShowMatchLines = false;  // the match line tool runs
  bool bLastDocClosed = false;
  std::optional<SharedTextArea> textArea;
  // An NC editor that was started, and the file that it was handed; empty for none.
  struct StartedEditor {
    StartedProcess process;
    std::string path;
  };
  std::vector<StartedEditor> started;  // waited for at the program's end

  [[nodiscard]] AcDbDatabase& drawing() { return editor.database(); }
  // A catalogue text, with its arguments filled in.
  [[nodiscard]] std::string message(int id) { return catalog.getMessage(id); }
  [[nodiscard]] std::string message(int id, std::initializer_list<FormatArg> args) {
    return catalog.format(id, args);
  }
  // Saves the settings; a failure shows catalogue message 3 and the cause.
  void saveSettings();
  void loadSettings();

  // State of one room, made on first use.
  template <class T>
  T& state() {
    auto& slot = states_[std::type_index(typeid(T))];
    if (!slot) slot = std::make_shared<T>();
    return *static_cast<T*>(slot.get());
  }

 private:
  std::unordered_map<std::type_index, std::shared_ptr<void>> states_;
};

// `USERVAR`: lists the keys and values of MY_INFO_DICT.
void USERVAR(Module& module);

}  // namespace tarnex
