// The binding to the roughing routine.
// Knows how to load and call it; what it does, the module knows.
#include "toolpath/roughbinding.h"

#include "frame/folders.h"
#include "frame/module.h"
#include "host/platform/files.h"
#include "toolpath/cornerrelief.h"

namespace tarnex {

namespace {

using Routine = void (*)(AcDbDatabase*, unsigned, int, double, double, int, double, double, int);

}  // namespace

AcDbObjectId roughContour(Module& module, AcDbObjectId contour, const Roughing& a) {
  const auto library = LoadedModule::load(realPath(dataFile(module.installFolder, "Quillet.arx")));
  const auto routine = library ? reinterpret_cast<Routine>(library->entry("lxquillet1")) : nullptr;
  if (!routine) return {};
  AcDbDatabase& drawing = module.drawing();
  const AcDbObjectId before = newestEntity(drawing);
  routine(&drawing, contour.index, a.circleArcs, a.sharpest, a.step, a.direction, a.allowance, a.startHole,
          a.alternate);
  const AcDbObjectId guide = newestEntity(drawing);
  return guide > before && drawing.peek<AcDbPolyline>(guide) ? guide : AcDbObjectId{};
}

}  // namespace tarnex
