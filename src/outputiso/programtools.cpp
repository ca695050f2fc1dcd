// `NC` and `TCF`: the sibling programs.
// Knows how they are started.
#include "outputiso/programtools.h"

#include "contour/hosthelpers.h"
#include "host/platform/files.h"

namespace tarnex {

void NC(Module& module) {
  handOverToEditor(module, "");
}

void TCF(Module& module) {
  (void)StartedProcess::start({realPath(module.installFolder + "\\Hestrel.exe")});
}

}  // namespace tarnex
