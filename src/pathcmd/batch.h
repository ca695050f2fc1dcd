// What commands that work on many entities have in common: the meter, and where their paths begin.
// Knows the settings file; what is done with each entity is the caller's.
#pragma once

#include "frame/module.h"

namespace tarnex {

// Index of the last path that stood before a batch, when the next number was `nextPathNo`.
[[nodiscard]] inline int lastBefore(int nextPathNo) {
  return nextPathNo <= 1 ? 0 : nextPathNo - 2;
}

// Counts a batch in the status bar; also where an interrupt is looked for. The settings file is as after a
// single path. `each` gets an id.
template <class Each>
void metered(Module& module, const SelectionSet& set, Each each) {
  module.editor.acedSetStatusBarProgressMeter(module.message(45), 0, static_cast<long>(set.size()));
  for (std::size_t i = 0; i < set.size(); ++i) {
    module.editor.acedSetStatusBarProgressMeterPos(static_cast<long>(i));
    each(set[i]);
  }
  module.editor.acedRestoreStatusBar();
  module.saveSettings();
  module.loadSettings();
}

}  // namespace tarnex
