// Splines and ellipses become polylines that a wire can follow.
// Knows the two conversions; who joins their results is above it.
#pragma once

#include "frame/module.h"

namespace tarnex {

// A polyline of chords within 0.01 mm of the spline (ten stations a chord), on the spline's layer and with
// its colour, in model space. Null when the spline has no control point. The spline is left to the caller. A
// try past the spline's end takes the end itself, so the last vertex is always the end of the spline.
[[nodiscard]] AcDbObjectId splineToPolyline(AcEditor& editor, const AcDbSpline& spline);

// The arc polyline that the host draws for the ellipse, trimmed to the part that it covers, on its layer and
// with its colour; the ellipse is erased. Null when the host made none; the ellipse is then still there.
[[nodiscard]] AcDbObjectId ellipseToPolyline(AcEditor& editor, AcDbObjectId ellipse);

void s2p(Module& module);  // splines of a selection
void e2p(Module& module);  // ellipses of a selection

}  // namespace tarnex
