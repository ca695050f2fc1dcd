// Marks as rings and numbers over a drawing's display list.
// Knows primitives and a page; what is wrong, it doesn't.
#pragma once

#include <span>

#include "apps/tarnex/marks.h"
#include "host/display/displaylist.h"
#include "host/display/painter.h"

namespace tarnex {

// Adds a ring about each place and the mark's number beside the first one, in a colour that the list doesn't
// use, sized so that they are read on that page. Where a mark has too many places for rings, one frame goes
// round them. Numbers of one place stand in one text; a
// text that would cover another moves aside when the list is painted.
void addMarks(DisplayList& list, std::span<const Mark> marks, const PageOptions& page);

}  // namespace tarnex
