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

SharedStyle::SharedStyle() {
  static const auto defaults = std::make_shared<const ProcessStyle>();
  style_ = defaults;
}

void SharedStyle::set(const ProcessStyle& style) {
  if (!(*style_ == style)) style_ = std::make_shared<const ProcessStyle>(style);
}

}  // namespace tarnex
