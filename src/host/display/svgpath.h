// Path data of SVG: coordinates on a grid, so that steps from point to point add up exactly, in as few
// letters as can be. Knows numbers and path commands; colours and elements are the writer's. For this folder
// only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

struct GridPoint {
  long long x = 0, y = 0;  // steps of the grid from the upper left corner, y downward
  bool operator==(const GridPoint&) const = default;
};

struct Grid {
  AcGePoint2d corner;                              // upper left, drawing mm
  int decimals = 3;                                // a step is 10^-decimals mm, 0 to 9
  [[nodiscard]] double steps() const;              // per mm
  [[nodiscard]] long long count(double mm) const;  // rounded; held within what a double counts exactly
  [[nodiscard]] GridPoint at(AcGePoint2d p) const { return {count(p.x - corner.x), count(corner.y - p.y)}; }
};

// Appends a count of grid steps as mm: "12", "-.5", "3.25".
void appendCount(std::string& out, long long count, int decimals);

class SvgPath {
 public:
  explicit SvgPath(Grid grid) : grid_(grid) {}
  // A shape that starts where the last one ended goes on in its line, so that dashes run through.
  void moveTo(AcGePoint2d p);
  void lineTo(AcGePoint2d p);
  // From where the path stands to `end` on the arc's circle.
  void arcTo(const ArcCurve& arc, AcGePoint2d end);
  // The same for an arc of up to a third of a turn, by the cosine and sine of half its sweep (both times any
  // length). False, and nothing is written, when it is longer or so shallow that it takes more thought.
  bool shortArcTo(double radius, AcGeVector2d half, AcGePoint2d end);
  void circle(AcGePoint2d centre, double radius);
  void ellipse(const EllipseCurve& curve);  // an arc of it or the whole
  void finishShape();  // closes the line where it came back to its start; what drew nothing becomes a dot
  [[nodiscard]] std::string_view data() const { return {room_.data(), used_}; }  // until the next change
  void clear();

  static constexpr std::size_t kLongestCommand = 256;  // letters

 private:
  [[nodiscard]] char* roomForCommand() {
    if (used_ + kLongestCommand > room_.size()) room_.resize(2 * (room_.size() + kLongestCommand));
    return room_.data() + used_;
  }
  void endCommand(const char* end) { used_ = static_cast<std::size_t>(end - room_.data()); }
  void stepTo(GridPoint p);
  void arcStep(double radius, bool clockwise, GridPoint to);
  void arcPiece(const ArcCurve& piece, AcGePoint2d from, AcGePoint2d to);

  Grid grid_;
  std::vector<char> room_;  // the data stands at its beginning
  std::size_t used_ = 0;
  GridPoint start_, at_;
  AcGePoint2d exactAt_;
  int steps_ = 0;      // of the running line
  bool open_ = false;  // a line is running
};

}  // namespace tarnex
