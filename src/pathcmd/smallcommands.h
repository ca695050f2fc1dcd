// Small commands at polylines and paths: which way they run, and codes at their vertices.
// Knows prompts and entities; what a program makes of a code is the writers' matter.
#pragma once

#include "frame/module.h"

namespace tarnex {

// Shows the direction of picked polylines: a circle at vertex 0, a cross over it where the polyline is open,
// an arrow head at the end of each span. The marks are entities of the current layer; they stand until the
// next answer, and undo knows nothing of them. A line of text tells the same where no screen shows the marks.
void fx(Module& module);

// Attaches a text to vertices of paths, for the program to carry there: by a pick the vertex nearer to it on
// its span, by a window all vertices inside, by handles in the place of the window's second corner all
// vertices of those paths. After the keyword C windows take codes away. A text of more than 127 bytes, which
// the settings can't hold, is refused, and the command fails.
void WZ(Module& module);

}  // namespace tarnex
