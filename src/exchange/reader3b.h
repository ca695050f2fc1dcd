// The judge's reader of 3B programs: text in, blocks with their line numbers out, and what one block moves.
// Knows the format as a controller takes it; no contours, and nothing of how programs are written here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/plane.h"

namespace tarnex::truth {

// The counts and words of one move, as they stand in the block. Counts are whole micrometres, never negative.
struct Move3b {
  std::int64_t bx = 0, by = 0, bj = 0;
  char axis = 'X';                         // counting axis, 'X' or 'Y'
  char kind = 'L';                         // 'L' line, 'N' counter-clockwise arc, 'S' clockwise arc
  int quadrant = 1;                        // 1 to 4
  std::optional<std::int64_t> taperCount;  // the fourth count of a block with a taper mark
  int taperWord = 0;                       // 1 "D" in front of the word, 2 "DD", 0 neither
  std::optional<Point> printed;  // coordinates behind the ';': start of the block, mm, program frame
};

enum class LineKind { kMove, kCode, kPause, kComment, kUnreadable };

struct Line3b {
  LineKind kind = LineKind::kComment;
  int line = 0;             // 1 is the first
  std::int64_t number = 0;  // block number; 0 where the line has none
  Move3b move;              // kMove
  std::string text;         // kCode and kPause: what stands behind the number; kUnreadable: what is wrong
};

struct ProgramLines {
  std::vector<Line3b> lines;        // comments and empty lines are left out
  std::optional<Point> startPoint;  // of the "Start Point" comment, mm, program frame
};

// Reads any text. Lines end with LF or CR LF; letters of words may be small; blanks between words may be
// missing. A numbered line that is no move becomes kCode when `codes` holds its text, and so does a move
// whose text stands there (it keeps its move); any other becomes kUnreadable.
[[nodiscard]] ProgramLines readProgram(std::string_view text, const std::vector<std::string>& codes = {});

// Counts above this are refused: no controller counts farther, and 2 km of plate will do.
inline constexpr std::int64_t kLargestCount = 2'147'483'647;

}  // namespace tarnex::truth
