// What the truth test is to hold a program of paths against, read off the drawing.
// Knows path entities, settings and drawing variables; nothing of how programs are written.
#pragma once

#include <vector>

#include "exchange/truth.h"
#include "frame/settings.h"
#include "host/database/database.h"

namespace tarnex {

class CToolPath;

// The path as it stands, with all that hangs on it. Where the path isn't its source contour any more (edges
// shifted, corners fixed) the figure's remark says how far it has left it.
[[nodiscard]] truth::Figure figureOfPath(const CToolPath& path);
// One figure per path of the drawing, by path number.
[[nodiscard]] std::vector<truth::Figure> figuresOfPaths(const AcDbDatabase& drawing);

// What may and must stand in a program beside the compensated contours: from the settings, and from the
// drawing's own variables, which go before them. The texts of pause and stop are those of `truth::Expected`.
[[nodiscard]] truth::Expected expectedOfPaths(AcDbDatabase& drawing, const WireCutSettings& settings);

}  // namespace tarnex
