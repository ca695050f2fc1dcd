// The binding to the corner relief routine.
// Knows how to load and call it; what it does, the module knows.
#include "toolpath/reliefbinding.h"

#include "frame/folders.h"
#include "frame/module.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

using Routine = int (*)(AcDbDatabase*, unsigned, double, double, int, std::vector<int>*);

}  // namespace

CornerRelief bindCornerRelief(Module& module, ReliefOf what) {
  auto library = LoadedModule::load(realPath(dataFile(module.installFolder, "Quillet.arx")));
  if (!library) return {};
  const auto routine =
      reinterpret_cast<Routine>(library->entry(what == ReliefOf::kWireCentre ? "lxcorner1" : "lxcorner2"));
  if (!routine) return {};
  auto kept = std::make_shared<LoadedModule>(std::move(*library));
  AcEditor& editor = module.editor;
  return [kept, routine, &editor](AcDbObjectId id, double a, double b, int nSide, std::vector<int>& flags) {
    AcDbDatabase& drawing = editor.database();
    return routine(&drawing, id.index, a, b, nSide, &flags) != 0;
  };
}

}  // namespace tarnex
