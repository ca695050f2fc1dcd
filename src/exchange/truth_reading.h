// A path of the program read against what it ought to hold: which step cuts which span of the contour, which
// steps go out from a corner and back, where the contour ends and the overcut begins.
// Knows one path; what is wrong with it is told next door.
#pragma once

#include <optional>
#include <vector>

#include "exchange/outline.h"

namespace tarnex::truth {

// One span of the contour as the wire cuts it. A pause may split the last one into two cuts.
struct Cut {
  std::size_t step = 0;  // of the path
  std::size_t span = 0;  // of the outline; of a turn about a corner the span in front of it
};

// Pairs of steps out and back behind cut `cut`, in front of the next.
struct Excursion {
  std::size_t cut = 0;
  std::size_t step = 0;  // the way out; the way back follows it
};

class PathReading {
 public:
  // Gives excursions and an overcut along the tangent their roles. Without marks nothing is read.
  explicit PathReading(Measuring& m);
  // Finds the span of each cut; the side must be known by now.
  void matchSpans(const Measuring& m);

  std::vector<Cut> cuts;  // of the contour itself, in order
  std::vector<Excursion> excursions;
  std::optional<std::size_t> runOn;  // the step that overcuts, if it is one of its own
  std::optional<std::size_t> back;   // the step back to the entry point
  Vec wantedOvercut{0, 0};           // from the entry point to its end
  double overcutSlack = 0;           // mm that the end may be off, since headings are known from counts
  bool maybeOvercut = false;         // its length is so near to the first span's that it may be left out
  bool inLine = false;               // the last cut runs on past the entry point

  // Vertices of the path between two cuts; of the last cut also those up to the closing one.
  struct Vertices {
    std::size_t first = 1, last = 0;
  };
  [[nodiscard]] Vertices behind(std::size_t cut, const Outline& o) const;

 private:
  void findOvercut(Measuring& m, std::vector<std::size_t>& steps);
};

// How well the heading of a step at a corner is known from its counts, rad.
[[nodiscard]] double headingDoubt(const Step& s);

void judgeMarks(Measuring& m, PathReading& reading);      // all that follows
void judgeEnd(Measuring& m, const PathReading& reading);  // pause and overcut
// Whether the corner behind each cut is compensated, by a step that may be too short to be written. Counts
// can't always tell.
enum class Compensated { kNo, kMaybe, kYes };
struct CornerSteps {
  std::vector<Compensated> behind;
};
[[nodiscard]] CornerSteps judgeSteps(Measuring& m, const PathReading& reading);
void judgeTapers(Measuring& m, const PathReading& reading, const CornerSteps& corners);
void judgeCodes(Measuring& m, const PathReading& reading);

}  // namespace tarnex::truth
