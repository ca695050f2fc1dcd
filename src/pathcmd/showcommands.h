// What paths show: the display values of a drawing, and the commands that ask for them.
// Knows settings, drawing variables and the dialog library; not what is drawn with them.
#pragma once

#include "frame/module.h"

namespace tarnex {

// The nine display values that a drawing can hold under VORN_SHOW_ and the field's name: text height, arrow,
// wire path, real contour, moves between paths. Reading takes those that it holds into the settings; the
// others stay. Writing puts all nine into the drawing; where they stand there already nothing changes.
void readDisplayValues(Module& module);
void writeDisplayValues(Module& module);

// Commands. Both begin with what the drawing holds, and a value confirmed goes into the settings and into the
// drawing, which shows itself with it from then on, whatever the settings of another machine say.
// A wire path that is switched off stays off in the drawing until it is switched on there; the settings
// themselves turn it on again at every load.
void SV(Module& module);    // all display options
void Vorn(Module& module);  // those that the drawing keeps; also asked for when the application starts

}  // namespace tarnex
