// The truth test: a finished 3B program against the drawn contours. The wire comes nowhere nearer to a
// contour than the compensation, and runs at just the compensation wherever a wire of that size can reach.
// Shares nothing with the writers; knows no drawing and no path entity, only figures as given here.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex::truth {

// Which side of the contour the wire runs on. Inside and outside are of a closed contour, left and right of
// the given order of an open one's vertices; kEither leaves it open.
enum class Side { kInside, kOutside, kLeft, kRight, kEither };
// Of the walk: turn of a closed one; along or against the given order of an open contour's vertices.
enum class Direction { kCounterClockwise, kClockwise, kAlong, kAgainst, kEither };

struct CircleFigure {
  AcGePoint2d centre;
  double radius = 0;  // mm
};

// What hangs on a path's contour and must stand in its program at the right blocks. Vertices are counted
// along the path: 0 the threading point, 1 the entry point, and behind the contour's last vertex, on a closed
// one, the entry point again.
struct PathMarks {
  double taper = 0;            // of the whole path, degrees
  std::vector<double> tapers;  // of the span that starts at each vertex, degrees; may be shorter
  struct Code {
    int vertex = 0;
    std::vector<std::string> blocks;
  };
  std::vector<Code> codes;  // several at one vertex in the order in which they are written
  // The wire goes out from the corner at the vertex and straight back.
  struct Step {
    int vertex = 0;
    AcGeVector2d way;          // mm
    double out = 0, back = 0;  // tapers of its two spans, degrees
  };
  std::vector<Step> steps;  // in cutting order
};

// One contour as it was drawn, and how it is to be cut. Lengths in mm, coordinates of the drawing.
struct Figure {
  int number = 0;                      // as findings name it
  PolylineCurve contour;               // without its lead-in; `closed`, or first and last vertex apart
  std::optional<CircleFigure> circle;  // takes the contour's place
  double compensation = 0;             // of the wire's centre from the contour, 0 or more
  Side side = Side::kInside;
  Direction direction = Direction::kEither;
  std::optional<AcGePoint2d> threading;  // T; none in a plain drawing
  // Given: the contour runs in cutting order from the entry point, and tapers, code texts, steps at corners,
  // pause and overcut are judged block by block, not only let pass.
  std::optional<PathMarks> marks;
  std::string remark;  // told as a note
};

// What explains blocks that are no part of the compensated contour. As it stands: none of them.
struct Expected {
  AcGePoint2d origin;  // of the program's frame in the drawing: coordinates in the text plus this
  std::string pauseText = "D", stopText = "DD";  // of the machine; an empty pause text lets any pass
  double overcut = 0;                            // mm past the entry point; 0 none
  bool overcutTangent = false;                   // along the tangent, where it may come nearer to the contour
  int overcutMode = 0;                           // 1: the wire comes back to the entry point before it leaves
  double pauseBefore = 0;                        // mm from the pause to the end of the contour; 0 none
  double dFix = 0;                               // of the corner compensation; 0 none
  // The corner relief routine was at hand when the program was written: taper marks stand as it leaves them.
  bool relieved = false;
  double minStep = 0;     // mm; shorter steps at corners are left out
  double markedStep = 0;  // out-and-back steps up to this length, mm, are explained wherever they are
  std::vector<std::string> codes;        // code texts of vertices, each as one block holds it
  std::vector<AcGePoint2d> startPoints;  // in front of the first path, from where the machine stands
  std::vector<AcGePoint2d> endPoints;    // moves behind the last path
  // The figures stand in cutting order, and between two paths the wire goes straight from one to the other.
  bool inOrder = false;
  bool allFigures = true;  // a figure that the program doesn't cut is a fault
};

enum class Grade { kFault, kNote };  // a fault makes the verdict "not ok"
enum class FindingKind {
  kUnreadable,     // a line that is no block, pause or comment
  kContradiction,  // counts and words of a block that don't fit together
  kNumbering,      // block numbers that don't run on
  kStopMissing,
  kStart,       // the program's start isn't where the first path needs it
  kLink,        // a move between paths that leads elsewhere
  kUnknownCut,  // blocks that belong to no figure
  kNotCut,      // a figure without blocks
  kTooNear,     // the wire nearer to the contour than the compensation
  kTooFar,      // farther, where the compensation can be kept
  kUncovered,   // a stretch of the contour without wire beside it
  kSide,
  kDirection,
  kLeadIn,       // lead-in or return crosses its contour
  kClosing,      // the path doesn't come back to its threading point
  kUnexplained,  // an extra move that no option explains
  kCoordinates,  // printed coordinates that aren't where the wire stands
  kAxisWord,     // an arc that only the axis rule of its word reads right
  kTaper,        // a taper mark that is missing, wrong, or on another block
  kCode,         // a code text that is missing, at another vertex, or of no vertex
  kPause,        // the pause before the end of the contour
  kOvercut,
  kStep,      // a step out from a corner and back that is missing, wrong, or not asked for
  kRepeated,  // the wire runs along its own way a second time
  kTransit,   // a point between the machine's start, the paths and the end that is left out or too many
  kOrder,
  kRemark,
};

struct Finding {
  FindingKind kind = FindingKind::kUnreadable;
  Grade grade = Grade::kFault;
  int figure = 0;          // 0: none
  std::int64_t block = 0;  // 0: none
  int line = 0;            // of the text; 0: none
  AcGePoint2d at;          // mm, drawing
  std::string text;        // one sentence with places and values
};

// A largest value and where it was met.
struct Worst {
  double value = 0;  // mm
  AcGePoint2d at;
  std::int64_t block = 0;  // 0: nothing met
};

struct PathReport {
  int figure = 0;
  std::size_t blocks = 0;  // numbered ones
  std::int64_t firstBlock = 0, lastBlock = 0;
  Worst shortfall;            // compensation less distance, largest; below 0 never
  Worst excess;               // distance less compensation where it can be kept, largest
  double uncovered = 0;       // mm of contour that a wire could reach and none does
  double unreachable = 0;     // mm of contour that no wire of this size reaches from the path; a note
  double closingError = 0;    // mm from where the path began to where it ends; of an open one 0
  double placing = 0;         // mm from T to where the program put the wire
  double rounding = 0;        // mm that rounding of the path's blocks may add up to
  Side side = Side::kEither;  // found
  Direction direction = Direction::kEither;
};

struct Report {
  bool ok = false;
  std::size_t blocks = 0;             // numbered lines
  std::vector<PathReport> paths;      // in program order
  std::vector<Finding> findings;      // in program order, at most kFindingsKept
  std::size_t faults = 0, notes = 0;  // also those beyond
  double worstArcRounding = 0;        // mm; the largest that one arc's recovered end added
};

inline constexpr std::size_t kFindingsKept = 200;
// Deviation that is none, mm: coordinates are drawn and offsets are made to this.
inline constexpr double kAllowance = 0.001;

// Where a figure's wire region falls apart, the parts that the path can't come to are told in a note, not as
// a fault. A code text that is itself a move ("B0B0B1GXL1") moves the wire like any block. Checks any text
// against any figures; never throws but for lack of memory. When no figure has a threading point the drawing
// is plain: each path is matched to the contour beside which it runs, `side` kEither means outside at even
// nesting depth and inside at odd, and where a path lies is held against the rounding since the program's
// start. A figure whose numbers aren't finite, or with fewer than two points, is reported as a fault and left
// out.
[[nodiscard]] Report check(std::string_view program, const std::vector<Figure>& figures,
                           const Expected& expected = {});

// The report in lines without line ends: the verdict, one line per path, one per finding.
[[nodiscard]] std::vector<std::string> describe(const Report& report);

[[nodiscard]] const char* nameOf(FindingKind kind);  // for machine-readable reports: "too-near", ...

}  // namespace tarnex::truth
