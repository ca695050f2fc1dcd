// The binding to the dialog library and its sibling: loaded for one call, unloaded right after it.
// Knows how to call; what an entry point edits, the library and the command know.
#pragma once

#include <string>

#include "frame/module.h"

namespace tarnex {

class DialogLibrary {
 public:
  explicit DialogLibrary(Module& module);

  // Calls an entry point of Harbec with the host's frame and `args`. A library or an entry that isn't there
  // is told in a message box and the result is `notConfirmed`.
  template <class... Args>
  int call(const char* entry, int notConfirmed, Args... args) {
    auto library = load();
    if (!library) return notConfirmed;
    auto* function = reinterpret_cast<int (*)(DialogFrame*, Args...)>(find(*library, entry));
    return function ? function(&module_.editor.acedGetAcadFrame(), args...) : notConfirmed;
  }

 private:
  std::optional<LoadedModule> load();
  void* find(const LoadedModule& library, const char* entry);
  Module& module_;
  std::string path_;
};

}  // namespace tarnex
