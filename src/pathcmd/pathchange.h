// What commands that change a path's vertices have in common: how many there may be, and where the changed
// path meets itself. Knows contours; what changed them is the commands' matter.
#pragma once

#include "frame/module.h"
#include "toolpath/toolpath.h"

namespace tarnex {

inline constexpr int kMostPathVertices = 32767;  // counts are stored in 16 bits

// Places where the contour that a path cuts crosses or touches itself, without its lead-in; out-and-back
// steps meet themselves by nature and count only where they meet anything else.
[[nodiscard]] std::vector<AcGePoint2d> pathContacts(const PolylineCurve& path);

// Those of `now` that weren't there before, within 2 µm.
[[nodiscard]] std::vector<AcGePoint2d> newContacts(std::vector<AcGePoint2d> before,
                                                   const std::vector<AcGePoint2d>& now);

// The change is left out, since the path can't take more vertices.
void tellFull(Module& module, int pathNo);
// A path with an upper contour, vertex by vertex its own, is left as it is: tells so. False: it has none.
[[nodiscard]] bool refusesFourAxis(Module& module, const CToolPath& path);
// Tells the new contacts of a path: the first five with their places, the rest by their count.
void tellContacts(Module& module, int pathNo, const std::vector<AcGePoint2d>& contacts);

}  // namespace tarnex
