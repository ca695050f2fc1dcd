// The entry points of the dialog library, as they are found by name.
// Knows the settings file and the form frame; commands and drawings are nothing to it.
#pragma once

#include <string>

#include "host/editor/form.h"
#include "machining/joblayout.h"

// Each shows one form over `WireCut.set` of the frame's install folder (AutoFixDlg: over `AutoFix.set`). A
// confirmed form is checked; values outside their range, and a file that can't be written, are told through
// the frame and count as not confirmed: the file is then as it was. The file must hold the values to start
// from before the call, and has the user's after it.
extern "C" {

// Mode 0: settings of automatic path making. Mode 1: those of slow-wire jobs and of how their figures are
// entered and left. Not 0: confirmed.
// The fit clearance isn't asked for: reading the file drops it, so that what was typed would be lost. It is
// set on paths that stand.
[[gnu::visibility("default")]] int SetDlg(tarnex::DialogFrame* frame, int mode);

// The kind of a die job, as the value `nDieKind`: 1 contours, 3 roughing; and what its paths are made with.
// Settings of roughing: `dRoughD` the step between turns, `dRoughB` what it leaves on the contour beyond that
// step, `dRoughC` the radius of a start hole, whose turns are left out (mm); `nRoughA` 1 lets the turns run
// to and fro; turns run as `nDirection` says and in a circle have `nCircleArcs` arcs. Not 0: confirmed.
[[gnu::visibility("default")]] int SetDlgDie(tarnex::DialogFrame* frame, int* kind);

// The kind of a punch job, as the value `nPunchKind`: 1 contours, 4 outer shapes whose break the user picks.
// Not 0: confirmed.
[[gnu::visibility("default")]] int SetDlgPunch(tarnex::DialogFrame* frame, int* kind);

// Settings of paths whose threading and entry points the user gives. Not 0: confirmed.
[[gnu::visibility("default")]] int SetMDlg(tarnex::DialogFrame* frame);

// The machine and the options of a 3B program. `machine` comes in with the name that stands (empty: none) and
// goes out with the chosen one, which also becomes `sMachineKZS` when that field holds its whole name. A name
// that stands but isn't in the machine file stays a choice. 1: confirmed, 0: cancelled.
[[gnu::visibility("default")]] int PKZSDlg(tarnex::DialogFrame* frame, std::string* machine);

// What duplicate removal takes away. Not 0: confirmed.
[[gnu::visibility("default")]] int DupDlg(tarnex::DialogFrame* frame);

// What paths show, all of it: the nine values of VornDlg, the path numbers and their colour, and the decimals
// of the coordinates at the threading point. Lengths that belong to the program (overcut, pause) are drawn
// too, but asked for with the program. Not 0: confirmed.
[[gnu::visibility("default")]] int SetDlgView(tarnex::DialogFrame* frame);

// What paths show and a drawing keeps: text height, arrow, wire path, real contour and moves, with their
// colours. 0: confirmed, other than in all the others; 1: cancelled.
[[gnu::visibility("default")]] int VornDlg(tarnex::DialogFrame* frame);

// The kind of auto fix and its sizes, in `AutoFix.set`. What the file lacks stands at its default; the file
// stays as it is until the form is confirmed. Not 0: confirmed.
[[gnu::visibility("default")]] int AutoFixDlg(tarnex::DialogFrame* frame);

// The slow-wire job and its process styles: `job` comes in with what stands and goes out with what was
// confirmed. `bKnown`: the drawing names a machine already. The job first, with what is to be done next;
// where that is to edit a style, the style and then its passes. A style behind the last in use is a new one.
// The result says what is to be done: 0 give paths the style, 1 write the program, 2 clear and 3 set the mark
// of paths, 4 the style was edited, 5 cost note, 6 report; -1: cancelled, or a value isn't possible, and
// `job` is as it was. Choice 7 takes the job from a source (TOML): what it names, over what stands and over
// the form; the result is then 4.
[[gnu::visibility("default")]] int ProStyleDlg(tarnex::DialogFrame* frame, tarnex::JobLayout* job,
                                               int bKnown);
}
