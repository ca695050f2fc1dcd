// `scc`: stray points, tiny curves and curves drawn twice are cleaned out of a selection.
// Knows lines, arcs and circles; polylines take no part.
#pragma once

#include "frame/module.h"

namespace tarnex {

// Folds overlapping lines, arcs and circles of the list into one each; adds to `erasedCount` for every entity
// erased.
void foldCurves(AcEditor& editor, const SelectionSet& work, int& erasedCount);

void scc(Module& module);

}  // namespace tarnex
