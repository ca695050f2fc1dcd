// The break point of a path: the place where an ISO program leaves the contour, with its exit move, on the
// lower and on the upper contour. Knows the path and the host's prompts; no catalogue and no settings.
#pragma once

#include <optional>
#include <string>

#include "host/editor/editor.h"
#include "toolpath/toolpath.h"

namespace tarnex {

struct BreakPrompt {
  std::string text;         // the prompt; it stands on a line of its own
  double dOvercutExit = 0;  // length of the exit move, mm; 0 or less: half the lead-in, as the path is drawn
};

// The break at a point of the path, where it stands, leaving for the side that the wire is on. Nothing: the
// point lies on no segment (as isPointOnSpan tells), or the line of the exit meets no part of the upper
// segment. Of two meetings the one nearer to the break counts.
[[nodiscard]] std::optional<PathBreak> breakAt(const CToolPath& path, AcGePoint2d p, double dOvercutExit);

// The break on the last segment, `length` mm (along it) before the entry point: so much stays uncut until the
// end of the job. A length of the whole segment lies at its start. Nothing: the segment is shorter, or the
// upper contour has no partner there.
[[nodiscard]] std::optional<PathBreak> breakFromEnd(const CToolPath& path, double length,
                                                    double dOvercutExit);

// Asks for the break point until a pick gives one, with the object snap on "near". The path is open for write
// and goes down to read while the user is asked. False: cancelled, or the path can't be changed any more
// (erased, or its layer locked, meanwhile); nothing has been changed then.
[[nodiscard]] bool pickBreakPoint(AcEditor& editor, Opened<CToolPath>& path, const BreakPrompt& prompt);

// The same by length, as breakFromEnd tells; where that gives nothing the user picks. False: the pick was
// given up, nothing has been changed.
[[nodiscard]] bool placeBreakFromEnd(AcEditor& editor, Opened<CToolPath>& path, double length,
                                     const BreakPrompt& prompt);

}  // namespace tarnex
