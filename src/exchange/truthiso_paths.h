// What the truth test of ISO programs is to hold a program against, read off the drawing.
// Knows path entities, settings and drawing variables; nothing of how programs are written.
#pragma once

#include <vector>

#include "exchange/truthiso.h"
#include "frame/settings.h"
#include "host/database/database.h"

namespace tarnex {

class CToolPath;

[[nodiscard]] truth::IsoFigure isoFigureOfPath(const CToolPath& path);
// One figure for each path with a first pass, by path number: the paths that a program takes.
[[nodiscard]] std::vector<truth::IsoFigure> isoFiguresOfPaths(const AcDbDatabase& drawing);
// The program's origin is the drawing's; the order of figures is judged where the drawing's job says that it
// is by number.
[[nodiscard]] truth::IsoExpected isoExpectedOfPaths(AcDbDatabase& drawing, const WireCutSettings& settings);

}  // namespace tarnex
