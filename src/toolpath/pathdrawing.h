// One drawing of one path: what its steps share. For the files that draw a path; others call worldDraw.
// Knows the path's fields and the display values; not who looks.
#pragma once

#include <string_view>

#include "frame/settings.h"
#include "host/database/worlddraw.h"
#include "toolpath/display.h"

namespace tarnex {

// The steps in the order in which they are seen, each with the colour and line type that it leaves in force.
class PathDrawing {
 public:
  PathDrawing(const CToolPath& path, AcGiWorldDraw& draw);
  void run();

 private:
  // Fixed colours.
  enum Color {
    kRed = 1,
    kYellow = 2,
    kGreen = 3,
    kCyan = 4,
    kMagenta = 6,
    kSideColor = 132,
    kExtraColor = 140,
    kSegTaperColor = 181,
    kUpperColor = 240
  };

  // Selection markers; those of runs are the first of their run.
  enum Marker {
    kContourMark = 0,
    kGuideMarks = 0,
    kUpperMarks = 100,
    kRulingMarks = 200,
    kToolMarks = 300,
    kShaftMark = 502,
    kBarbLeftMark = 503,
    kBarbRightMark = 504,
    kCoordMark = 505,
    kLinkMark = 506,
    kCodeMarks = 520,
    kPauseMark = 1000,
    kOvercutMark = 1001,
    kBreakMark = 1002,
    kUpperBreakMark = 1003,
    kLabelMark = 5001,
    kTaperMark = 5002
  };

  static constexpr char kContinuous[] = "CONTINUOUS", kDashed[] = "Acad_iso02W100",
                        kWideDashed[] = "Acad_iso03W100";

  struct Span {
    AcGePoint2d a, b;
    double bulge = 0;
  };
  static Span spanOf(const PathCurve& c, std::size_t i) {
    return {c.vertices[i], c.vertices[i + 1], c.bulges[i]};
  }
  static std::size_t spansOf(const PathCurve& c) { return c.vertices.empty() ? 0 : c.vertices.size() - 1; }
  [[nodiscard]] Span lowerSpan(std::size_t i) const {
    return {lower_[i].point, lower_[i + 1].point, lower_[i].bulge};
  }
  [[nodiscard]] std::size_t lowerSpans() const { return lower_.empty() ? 0 : lower_.size() - 1; }
  [[nodiscard]] AcGePoint2d thread() const { return lower_[0].point; }
  [[nodiscard]] AcGePoint2d entry() const { return lower_[1].point; }
  [[nodiscard]] bool shows(int flag) const { return !path_.bHasStyle_ && !display_.bOrderMode && flag != 0; }
  [[nodiscard]] double turn() const { return path_.nDirection_ * path_.nSide_; }

  void line(AcGePoint3d a, AcGePoint3d b, int marker);
  void line(AcGePoint2d a, AcGePoint2d b, int marker) { line(solid(a), solid(b), marker); }
  void segment(const Span& s, int marker, double z = 0);
  void contourSegments(const PathCurve& c);  // without the lead-in
  void text(AcGePoint2d at, double height, std::string_view utf8);
  void cross(AcGePoint2d p);

  void contour();
  void realContour();
  void styleSide();
  void wireCentre();
  void isoMarks();
  void pauseRing();
  void overcut();
  void tapers();
  void pathTaper();
  void segmentTaper(std::size_t i);
  void upperContour();
  void labels();
  void arrow();
  void coordinates();
  void transitChains();
  void moveFromPrevious();
  void codeInsertions();

  const CToolPath& path_;
  AcGiWorldDraw& draw_;
  const PathDisplay& display_;
  const WireCutSettings& settings_;
  const double offset_;  // drawn contour to wire centre, mm
  const std::vector<BulgeVertex>& lower_;
  PathCurve tool_;
};

}  // namespace tarnex
