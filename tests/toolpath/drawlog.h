// A drawing that writes down what is drawn, one line per primitive with what was in force, for tests to
// compare.
#pragma once

#include <string>
#include <vector>

#include "frame/settings.h"
#include "host/database/worlddraw.h"
#include "toolpath/display.h"

namespace tarnex {

// "marker colour linetype: line 0,0 10,5"; line types as "-", "--" and "- -", numbers to four decimals, z as
// third coordinate where it isn't 0.
class DrawLog final : public AcGiWorldDraw {
 public:
  explicit DrawLog(const PathDisplay* display = nullptr) : display_(display) {}
  void setColor(int index) override { color_ = index; }
  void setLineType(std::string_view name) override;
  void setSelectionMarker(int marker) override { marker_ = marker; }
  void polyline(std::span<const AcGePoint3d> points) override;
  void circle(const AcGePoint3d& centre, double radius) override;
  void circularArc(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end) override;
  void text(const AcGePoint3d& position, AcGeVector3d direction, double height,
            std::string_view utf8) override;
  const void* applicationContext() const override { return display_; }

  std::vector<std::string> lines;

 private:
  void add(const std::string& shape);
  const PathDisplay* display_;
  int marker_ = -1, color_ = 256;
  std::string linetype_ = "as it is";
};

std::vector<std::string> drawn(const CToolPath& path, const PathDisplay* display = nullptr);

// The square from (0,0) to (20,20), counter-clockwise, entered at (20,10) from its middle; wire offset 1.
std::unique_ptr<CToolPath> squareHole();
// The same clockwise, entered at (0,10) from (-5,10), as an outer shape.
std::unique_ptr<CToolPath> squarePunch();
// A circle about (0,0) of radius 10 in quarters, entered at (10,0) from its centre; wire offset 1.
std::unique_ptr<CToolPath> roundHole(int direction);

// What only other commands set: read into a path as its stored record.
struct StoredPath {
  std::vector<BulgeVertex> vertices = {};
  int nFlags = 1, nSide = 1, nDirection = 1, nPathNo = 0;
  double dOffset = 0, dHeight = 0;
  PathCurve upper = {};
  std::vector<double> aSyncMark = {};
  bool bHasStyle = false, bClosed = true;
  AcGePoint2d ptBreak = {}, ptBreakExit = {}, ptBreakUpper = {}, ptBreakUpperExit = {};
  int nBreakSeg = -1;
  double dBreakBulgeA = 0, dBreakBulgeB = 0;
};
std::unique_ptr<CToolPath> stored(const StoredPath& fields);

}  // namespace tarnex
