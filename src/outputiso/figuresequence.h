// The figures of a slow-wire program one after another: the order of passes, the moves between figures, the
// way back. Knows paths and their writers; head, end and file are the driver's.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "outputiso/figuretrouble.h"
#include "outputiso/figurewriter.h"

namespace tarnex {

struct FigureSequence {
  AcDbDatabase& drawing;
  const std::vector<AcDbObjectId>& ids;  // in cutting order
  FigureContext& context;                // the settings may be those that drawing the paths changed
  const CornerRelief& relief;            // of drawn contours; may be empty
  // Stand for paths that can't be changed, on locked layers: with the values that they would have.
  const std::map<AcDbObjectId, std::unique_ptr<CToolPath>>& standIns;
  std::function<void(long position)> meter;
  std::function<void()> meterDone;
  // After each figure and pass: the text in context.out may be taken away.
  std::function<void()> drain;
};

struct FiguresWritten {
  int figures = 0;
  int passes = 0;  // first, later and tab passes
  long relievedCorners = 0;
  std::vector<FigureNote> notes;
};

// Every figure with all its passes before the next.
FiguresWritten writeFiguresByFigure(const FigureSequence& sequence);
// The first passes of all figures, then their later ones.
FiguresWritten writeFiguresByPass(const FigureSequence& sequence);

}  // namespace tarnex
