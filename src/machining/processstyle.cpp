// The process style's defaults.
// Knows the values alone.
#include "machining/processstyle.h"

#include "host/platform/format.h"

namespace tarnex {

ProcessStyle::ProcessStyle() {
  for (int i = 0; i < kMostPasses; ++i) {
    auto& pass = passes[static_cast<std::size_t>(i)];
    pass.sCode = formatted("%03d", i);
    pass.sSub1 = pass.sSub2 = formatted("%02d", i);
  }
}

}  // namespace tarnex
