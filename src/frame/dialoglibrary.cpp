// The binding to the dialog library.
// Knows how to load and call; nothing of what is edited.
#include "frame/dialoglibrary.h"

#include "frame/folders.h"
#include "host/platform/files.h"

namespace tarnex {

DialogLibrary::DialogLibrary(Module& module)
    : module_(module), path_(dialogLibraryPath(module.installFolder)) {}

std::optional<LoadedModule> DialogLibrary::load() {
  auto library = LoadedModule::load(realPath(path_));
  if (!library) {
    const char* pattern =
        module_.language == 3 ? "無法加載文件%s, 詳情請洽開發商!" : "无法加载文件%s, 详情请洽开发商!";
    module_.editor.messageBox(formatChecked(pattern, {std::string_view(path_)}), MB_ICONSTOP);
    module_.editor.commandFailed();
  }
  return library;
}

void* DialogLibrary::find(const LoadedModule& library, const char* entry) {
  void* function = library.entry(entry);
  if (!function) {
    const char* pattern =
        module_.language == 3 ? "無法執行 %s, 詳情請洽開發商!" : "无法执行 %s, 详情请洽开发商!";
    module_.editor.messageBox(formatChecked(pattern, {std::string_view(entry)}), MB_ICONSTOP);
    module_.editor.commandFailed();
  }
  return function;
}

}  // namespace tarnex
