// Drawing a path: contour, wire centre path, marks of the program, tapers, upper contour.
// Knows the order of what is seen; labels, arrow and links are drawn elsewhere.
#include "toolpath/pathdrawing.h"

#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr double kSideMark = 0.4;     // mm beside the contour: side marks and segment taper marks
constexpr double kPauseRadius = 0.2;  // mm

const WireCutSettings& defaultSettings() {
  static const WireCutSettings kDefaults("");
  return kDefaults;
}

const PathDisplay& displayOf(const AcGiWorldDraw& draw) {
  static const PathDisplay kNone;
  const auto* given = static_cast<const PathDisplay*>(draw.applicationContext());
  return given ? *given : kNone;
}

AcGePoint2d spanMiddle(AcGePoint2d a, AcGePoint2d b, double bulge) {
  return midpoint(a, b) - (b - a).perpVector() * (bulge / 2);
}

}  // namespace

PathDrawing::PathDrawing(const CToolPath& path, AcGiWorldDraw& draw)
    : path_(path),
      draw_(draw),
      display_(displayOf(draw)),
      settings_(display_.settings ? *display_.settings : defaultSettings()),
      offset_(path.dOffset_ - path.nSide_ * path.dClearance_),
      lower_(path.polyline().vertices) {}

void PathDrawing::run() {
  contour();
  realContour();
  styleSide();
  wireCentre();
  if (path_.bHasStyle_) isoMarks();
  draw_.setLineType(kContinuous);
  if (lower_.size() < 2) return;  // nothing that the rest could stand at
  tapers();
  upperContour();
  labels();
  if (!display_.bOrderMode) {
    if (settings_.bShowArrow) arrow();
    if (settings_.nCoordDecimals > 0) coordinates();
  }
  transitChains();
  moveFromPrevious();
  codeInsertions();
}

void PathDrawing::line(AcGePoint3d a, AcGePoint3d b, int marker) {
  draw_.setSelectionMarker(marker);
  const AcGePoint3d ends[] = {a, b};
  draw_.polyline(ends);
}

void PathDrawing::segment(const Span& s, int marker, double z) {
  if (s.bulge == 0) {
    line(solid(s.a, z), solid(s.b, z), marker);
    return;
  }
  draw_.setSelectionMarker(marker);
  draw_.circularArc(solid(s.a, z), solid(spanMiddle(s.a, s.b, s.bulge), z), solid(s.b, z));
}

void PathDrawing::contourSegments(const PathCurve& c) {
  for (std::size_t i = 1; i < spansOf(c); ++i) segment(spanOf(c, i), kContourMark);
}

void PathDrawing::contour() {
  const bool own = path_.bHasStyle_ || path_.dOffset_ != 0;
  draw_.setColor(own ? path_.nColor_ : settings_.nColorTool);
  path_.AcDbPolyline::worldDraw(draw_);
}

void PathDrawing::realContour() {
  if (!shows(settings_.bShowReal) || path_.dClearance_ == 0 || !path_.bClosed()) return;
  const OffsetPath real = path_.computeOffset(path_.nDirection_, -path_.dClearance_);
  if (real.vertices.empty()) return;
  draw_.setLineType(kContinuous);
  draw_.setColor(settings_.nColorReal);
  contourSegments(real);
}

void PathDrawing::styleSide() {
  if (!path_.bHasStyle_ || path_.style_->dValueC == 0) return;
  const OffsetPath beside = path_.computeOffset(1, path_.style_->dValueC > 0 ? kSideMark : -kSideMark);
  if (beside.vertices.empty()) return;
  draw_.setLineType(kDashed);
  draw_.setColor(kSideColor);
  contourSegments(beside);
}

void PathDrawing::wireCentre() {
  if (!path_.bHasStyle_ && (!shows(settings_.bShowTool) || offset_ == 0)) return;
  tool_ = path_.computeOffset(path_.nSide_, path_.nDirection_ * offset_);
  if (path_.bHasStyle_ || tool_.vertices.empty()) return;
  draw_.setLineType(kDashed);
  draw_.setColor(settings_.nColorTool);
  for (std::size_t i = 0; i < spansOf(tool_); ++i)
    segment(spanOf(tool_, i), kToolMarks + static_cast<int>(i));
}

void PathDrawing::isoMarks() {
  pauseRing();
  if (path_.nSide_ == kInnerHole) {
    overcut();
    if (!path_.hasFlag(kOpenPath)) return;
    draw_.setColor(kMagenta);
    line(path_.ptBreak_, path_.ptBreakExit_, kBreakMark);
    return;
  }
  if (path_.nBreakSeg_ < 0) return;
  line(path_.ptBreak_, path_.ptBreakExit_, kBreakMark);
  if (path_.hasFlag(kFourAxis)) line(path_.ptBreakUpper_, path_.ptBreakUpperExit_, kUpperBreakMark);
}

void PathDrawing::pauseRing() {
  const std::size_t spans = spansOf(tool_);
  if (!(settings_.dCutoffLen > 0) || path_.hasFlag(kOpenPath) || spans == 0) return;
  const Span last = spanOf(tool_, spans - 1);
  const auto at = pointAlongSpan(last.b, last.a, -last.bulge, settings_.dCutoffLen);
  if (!at) return;
  draw_.setColor(kRed);
  draw_.setSelectionMarker(kPauseMark);
  draw_.circle(solid(at->point), kPauseRadius);
}

void PathDrawing::overcut() {
  const auto exit = path_.overcutOn(tool_, settings_).exit;
  if (!exit) return;
  draw_.setColor(kYellow);
  line(exit->from, exit->to, kOvercutMark);
}

void PathDrawing::tapers() {
  if (!path_.bHasStyle_ && path_.dTaper_ != 0) pathTaper();
  if (path_.dTaper_ != 0) return;
  draw_.setLineType(kDashed);
  draw_.setColor(kSegTaperColor);
  const std::size_t count = std::min(lowerSpans(), path_.aSegTaper_.size());
  for (std::size_t i = 1; i < count; ++i)
    if (path_.aSegTaper_[i] != 0) segmentTaper(i);
}

// The number in a ring about the threading point; a single letter gets the room of two.
void PathDrawing::pathTaper() {
  const std::string number = formatted("%g", path_.dTaper_);
  const double letters = number.size() == 1 ? 2 : static_cast<double>(number.size());
  const double h = settings_.dTextHeight, w = letters * h * 0.5;
  draw_.setSelectionMarker(kTaperMark);
  draw_.setColor(kRed);
  text({thread().x - w + h / 2, thread().y - h / 2}, h, number);
  draw_.setSelectionMarker(kShaftMark);
  draw_.setColor(kYellow);
  draw_.circle(solid(thread()), w);
}

void PathDrawing::segmentTaper(std::size_t i) {
  const Span s = lowerSpan(i);
  const double taper = path_.aSegTaper_[i], by = taper > 0 ? kSideMark : -kSideMark;
  Span copy = s;
  AcGePoint2d middle;
  if (s.bulge == 0) {
    const double left = acutAngle(s.a, s.b) + kPi / 2;
    copy.a = acutPolar(s.a, left, by);
    copy.b = acutPolar(s.b, left, by);
    middle = midpoint(copy.a, copy.b);
  } else {
    const SpanCircle circle = bulgeToCircle(s.a, s.b, s.bulge);
    const double from = acutAngle(circle.centre, s.a);
    copy.a = acutPolar(circle.centre, from, circle.radius + by);
    copy.b = acutPolar(circle.centre, acutAngle(circle.centre, s.b), circle.radius + by);
    middle = acutPolar(circle.centre, from + 2 * std::atan(s.bulge), circle.radius);
  }
  segment(copy, kRulingMarks + static_cast<int>(i));
  draw_.setSelectionMarker(kTaperMark);
  text(middle, settings_.dTextHeight, formatted("%g", taper));
}

void PathDrawing::upperContour() {
  const PathCurve& upper = path_.upper_;
  if (path_.hasFlag(kFourAxis)) {
    for (std::size_t i = 0; i < spansOf(upper); ++i) {
      draw_.setColor(kUpperColor);
      segment(spanOf(upper, i), kUpperMarks + static_cast<int>(i), path_.dHeight_);
      if (display_.bShowMatchLines || i >= lower_.size()) continue;
      draw_.setColor(kYellow);
      line(solid(lower_[i].point), solid(upper.vertices[i], path_.dHeight_),
           kRulingMarks + static_cast<int>(i));
    }
  } else if (path_.hasFlag(kGuideCurve)) {
    draw_.setColor(kUpperColor);
    for (std::size_t i = 0; i < spansOf(upper); ++i)
      segment(spanOf(upper, i), kGuideMarks + static_cast<int>(i));
  }
}

}  // namespace tarnex
