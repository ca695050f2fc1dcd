// The object that commands share.
// Knows settings, catalogue and host; no room's own state.
#include "frame/module.h"

#include "frame/drawingvars.h"

namespace tarnex {

Module::Module(AcEditor& hostEditor, std::string installFolderPath, int languageNumber)
    : editor(hostEditor),
      installFolder(std::move(installFolderPath)),
      language(languageNumber),
      settings(installFolder) {}

void Module::saveSettings() {
  std::string cause;
  if (!settings.save(&cause)) editor.messageBox(message(3) + "\n" + cause, MB_OK);
}

void Module::loadSettings() {
  std::string cause;
  if (!settings.load(&cause) && !cause.empty()) editor.print("\n" + cause + "\n");
}

void USERVAR(Module& module) {
  for (const auto& line : DrawingVars(module.drawing()).listAll()) module.editor.print(line);
}

}  // namespace tarnex
