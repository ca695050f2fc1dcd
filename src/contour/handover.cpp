// The hand-over of an NC text to the editor.
// The text is never only in one place that can go: the file is emptied only when the shared area holds all of
// it, and a copy beside the file stays until the editor has written it.
#include <cstring>

#include "contour/hosthelpers.h"
#include "frame/folders.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

bool putIntoArea(const std::optional<SharedTextArea>& area, const std::string& text) {
  if (!area || text.size() + 1 > SharedTextArea::kSize || text.find('\0') != std::string::npos) return false;
  std::memcpy(area->data(), text.c_str(), text.size() + 1);
  return true;
}

// An editor that is still at work may not have read its text yet; it keeps the area that it was handed.
void takeFreshArea(Module& module) {
  bool taken = false;
  for (auto& editor : module.started) taken = editor.process.running() || taken;
  if (taken && module.textArea) module.textArea = SharedTextArea::create("VornlineWEDM");
}

std::string editorProgram(const Module& module) {
  const std::string own = realPath(module.installFolder + "\\Brenlow.exe");
  return fileExists(own) ? own : executableFolder() + "/brenlow";
}

}  // namespace

void handOverToEditor(Module& module, const std::string& path) {
  std::vector<std::string> command{editorProgram(module)};
  if (!path.empty()) {
    command.push_back(path);
    takeFreshArea(module);
    if (module.textArea) module.textArea->data()[0] = '\0';
    const auto file = readFile(path);
    if (!file || !putIntoArea(module.textArea, *file.value))
      module.editor.print("\n" + module.message(20200, {std::string_view(path)}) + "\n");
  }
  if (auto editor = StartedProcess::start(command, module.textArea ? &*module.textArea : nullptr))
    module.started.push_back({std::move(*editor), path});
  else
    module.editor.print("\n" + module.message(20201, {std::string_view(command.front())}) + "\n");
}

void waitForEditorsOf(Module& module, const std::string& path) {
  for (auto& editor : module.started)
    if (editor.path == path) (void)editor.process.wait();
}

void waitForStarted(Module& module) {
  for (auto& editor : module.started) (void)editor.process.wait();
  module.started.clear();
}

}  // namespace tarnex
