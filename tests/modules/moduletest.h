// A session with the modules of this build as shipped content, and an install folder of its own.
// Knows no test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "frame/dialoglibrary.h"
#include "frame/environment.h"
#include "frame/folders.h"
#include "host/editor/session.h"

namespace tarnex {

class ModuleTest : public InFolder {
 protected:
  ModuleTest() {
    surround("TARNEX_SHIPPED", TARNEX_BINARY_DIR "/install");
    start(folder, 1);
  }
  // A module of an install folder and a language, with its texts.
  void start(const std::string& install, int language) {
    module.emplace(session.ed, install, language);
    EXPECT_FALSE(module->catalog.open(messageFilePath(install, language), language));
    session.ed.setFrameTexts([this](int number) { return module->message(number); },
                             [this] { return module->installFolder; }, language);
  }
  [[nodiscard]] AcDbDatabase& drawing() { return session.ed.database(); }

  Session session;
  std::optional<Module> module;
};

}  // namespace tarnex
