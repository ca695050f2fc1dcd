// The way of the wire through a program.
// Knows blocks and pauses.
#include "exchange/wirewalk.h"

#include "exchange/reader3b.h"
#include "exchange/walk3b.h"

namespace tarnex {

namespace {

// What has been walked since the last pause is a link when it is a lone line.
void endSection(WireWalk& walk, std::size_t& begin) {
  const std::size_t moves = walk.moves.size() - begin;
  if (moves == 1 && !walk.moves.back().stroke.arc) walk.moves.back().link = true;
  begin = walk.moves.size();
}

}  // namespace

WireWalk walkProgram(std::string_view program) {
  WireWalk walk;
  truth::Point here{0, 0};
  std::size_t begin = 0;
  for (const auto& line : truth::readProgram(program).lines) {
    if (line.kind == truth::LineKind::kPause) endSection(walk, begin);
    if (line.kind == truth::LineKind::kUnreadable)
      walk.skipped.push_back("line " + std::to_string(line.line) + ": " + line.text);
    if (line.kind != truth::LineKind::kMove) continue;
    const truth::Walked walked = truth::walkMove(line.move);
    walk.moves.push_back({truth::moved(walked.stroke, here - truth::Point{0, 0}), false});
    here = walk.moves.back().stroke.end;
  }
  endSection(walk, begin);
  for (const auto& move : walk.moves)
    (move.link ? walk.linkLength : walk.cutLength) += truth::lengthOf(move.stroke);
  return walk;
}

}  // namespace tarnex
