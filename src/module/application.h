// The application as its host sees it: what happens at start-up, unload, and when drawings come and go.
// Holds no machining logic.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "frame/module.h"

namespace tarnex {

enum class AppMessage { kInitAppMsg = 1, kUnloadAppMsg = 2, kLoadDwgMsg = 3, kUnloadDwgMsg = 4 };
inline constexpr int kRetOK = 0;

class Application {
 public:
  // `installFolder` and `language`: instead of those that the registry names.
  struct Overrides {
    std::string installFolder;
    std::optional<int> language;
  };
  explicit Application(AcEditor& editor, Overrides overrides = {});
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // The one entry of the host; always kRetOK, messages that mean nothing to us do nothing.
  int acrxEntryPoint(AppMessage message);
  // Made at kInitAppMsg, gone at kUnloadAppMsg.
  [[nodiscard]] Module& module() { return *module_; }

 private:
  void start();
  void unload();
  void registerCommands();
  void openCatalogue();
  void hookDrawings();
  void askDisplay();

  AcEditor& editor_;
  Overrides overrides_;
  std::shared_ptr<Module> module_;  // what the host keeps of us looks whether it is still there
};

// What the control keys send to the host as if typed; nothing for every other character.
[[nodiscard]] std::optional<std::string> textOfControlKey(int character);

}  // namespace tarnex
