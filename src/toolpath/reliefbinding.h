// The binding to the corner relief routine of the module `Quillet.arx`.
// Knows how to load and call it; what it does, the module knows.
#pragma once

#include "toolpath/toolpath.h"

namespace tarnex {

class Module;

// Where the corners of a contour are relieved: on the way of the wire's centre by steps, or on the drawn
// contour, which a control compensates, by arcs.
enum class ReliefOf { kWireCentre, kDrawnContour };

// The routine of the user's module in the install folder, before the shipped one. It stays loaded as long as
// the result lives, and works on the drawing that the editor of `module` holds at the time of the call. Empty
// when there is no such module or it lacks the routine: everything then goes on without, and nothing is said.
// The call gives false when the routine declined.
[[nodiscard]] CornerRelief bindCornerRelief(Module& module, ReliefOf what);

}  // namespace tarnex
