// What whoever cuts a slow-wire program has to know of its figures: what was left out, where no stop stands,
// where the wire can't follow the contour. Knows figures and their runs; who is told, the program decides.
#pragma once

#include <string>
#include <vector>

#include "outputiso/figurewriter.h"
#include "outputiso/messages.h"

namespace tarnex {

enum class FigureTrouble {
  kFourAxis,          // nothing has been written
  kBreakless,         // an outer figure whose break lies on no span: nothing has been written
  kNegativePasses,    // the later passes have been left out
  kNoStop,            // family 5 can't leave a tab without a stop
  kStopTooLong,       // the stop distance, `limit`, is longer than the span that it ends
  kFreedInFirstPass,  // the first pass has met no break: it has cut the part free
  kTabFromOutside,  // pass by pass without trim passes: no block goes onto the tab, a piece of it stays uncut
  kBreakOnArc,      // the tab ends on an arc
  kRadiusBelowOffset,  // `value` at `at` is the smallest radius that the wire runs inside of, `limit` the
                       // largest offset of a pass
};

struct FigureNote {
  int nPathNo = 0;
  FigureTrouble trouble = FigureTrouble::kFourAxis;
  double value = 0, limit = 0;  // mm
  AcGePoint2d at{};
};

// Of a figure whose passes are all written.
[[nodiscard]] std::vector<FigureNote> notesOf(const FigureJob& job);
// A sentence in the user's language.
[[nodiscard]] std::string sentenceOf(const FigureNote& note, const MessageText& message);

}  // namespace tarnex
