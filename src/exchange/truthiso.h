// The truth test of ISO programs: every pass of the program against the contour that it is to cut, its words
// against the style that the path carries.
// Shares nothing with the writers; knows no drawing and no path entity, only figures as given here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/plane.h"
#include "exchange/readeriso.h"
#include "exchange/truth.h"
#include "exchange/walkiso.h"
#include "machining/processstyle.h"

namespace tarnex::truth {

enum class IsoKind { kHole, kOuter, kOpen };

// One path as it stands. Lengths in mm, coordinates of the drawing; tapers in degrees.
struct IsoFigure {
  int number = 0;  // as findings name it
  IsoKind kind = IsoKind::kHole;
  Point threading;
  std::vector<Stroke> spans;  // from the entry point on, in the path's direction; a closed contour ends there
  std::vector<double> tapers;  // of each span
  ProcessStyle style;
  int turn = 1;          // of the path: 1 counter-clockwise, -1 clockwise; of an open cut as its record says
  int wire = 1;          // the wire lies left (1) or right (-1) of the path, on the waste
  bool swapped = false;  // the style's kind asks for the other side
  std::optional<Point> breakAt;  // outer: where the tab begins; open: where the wire leaves
  bool punch = false;            // an outer shape whose tab is trimmed too
  bool marked = false;           // for leads and overcuts of its own
  bool circle = false;
  std::vector<Stroke> guide;  // run ahead of the first pass
  bool fourAxis = false;      // named and left out
  double ownTaper = 0;        // of the path as a whole, which ISO programs don't have
  std::string refusal;        // why it can't be judged; empty: it can
};

struct IsoExpected {
  IsoWalkFrom walk;           // `from` is left to the test
  double overcut = 0;         // mm past the entry point of a hole; 0 none
  bool markedOvercut = true;  // marked figures have one too
  // Radii of the arcs that corner relief may put in place of a corner, mm: between two straight spans, and at
  // an arc; 0 none.
  double reliefStraight = 0, reliefArc = 0;
  bool byNumber = false;  // the figures' first passes stand in the order of their numbers
};

enum class IsoFault {
  kUnreadable,
  kNumbering,
  kStart,       // the wire starts where no figure is threaded
  kConnection,  // a rapid move that leads to no threading point
  kNotCut,      // a figure without a pass, or with fewer than its style has
  kTooMany,     // a pass more
  kArc,         // two ends, two radii
  kOffContour,  // a block of a pass that leaves the contour
  kUncut,       // a stretch that a pass should have cut
  kRepeated,    // cut twice in one pass
  kOvercut,
  kTab,           // cut too early, or not closed
  kCompensation,  // wrong side, on too late or off too early
  kOffset,
  kCondition,
  kTaper,
  kLead,   // a way onto or off the contour that cuts into what stays
  kRapid,  // crosses a contour with the wire in
  kWire,   // cuts without a wire, or never cut between figures
  kGuide,
  kReturn,  // not back at the threading point between two passes
  kOrder,
  kRemark,
};
[[nodiscard]] const char* nameOf(IsoFault kind);  // "off-contour", ...

struct IsoFinding {
  IsoFault kind = IsoFault::kUnreadable;
  Grade grade = Grade::kFault;
  int figure = 0;    // 0: none
  int line = 0;      // 0: none
  Point at;          // mm, drawing
  std::string text;  // one sentence with line, places and values
};

struct IsoFigureReport {
  int figure = 0;
  int passes = 0, expected = 0;  // with the tab's
  int firstLine = 0, lastLine = 0;
  double cut = 0;    // mm along the contour, all passes
  double worst = 0;  // mm that a block's end lies beside its contour, largest
  int worstLine = 0;
  int relieved = 0;  // corners with an arc of relief, all passes
  double drift = 0;  // mm that roundings of incremental blocks have added up to, largest
};

struct IsoReport {
  bool ok = false;
  int lines = 0;
  std::size_t moves = 0;
  std::vector<IsoFigureReport> figures;  // by number
  std::vector<IsoFinding> findings;      // by line, at most kFindingsKept
  std::size_t faults = 0, notes = 0;     // also those beyond
  double worstRadius = 0;                // mm between the radii of an arc's ends, largest
  double tolerance = 0;                  // mm that a block's end may lie beside its contour
};

// How far the end of a block may lie from where it ought to be, mm: x and y are printed to `unit`. An
// incremental block is measured from where the last one ought to have ended, so that roundings don't add up
// in what is judged; what they add up to on the machine is reported as drift.
[[nodiscard]] inline double isoTolerance(const IsoDialect& dialect) {
  return std::hypot(dialect.unit, dialect.unit) + 1e-6;
}

// Checks any text against any figures; never throws but for lack of memory.
[[nodiscard]] IsoReport checkIso(std::string_view program, const IsoDialect& dialect,
                                 const std::vector<IsoFigure>& figures, const IsoExpected& expected);

// The report in lines without line ends: the verdict, one line per figure, one per finding.
[[nodiscard]] std::vector<std::string> describe(const IsoReport& report);

}  // namespace tarnex::truth
