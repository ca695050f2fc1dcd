// Drawing a path: number, arrow, coordinates, links to where the wire comes from and goes, code insertions.
// Knows where each stands; the contours are drawn before.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "host/platform/format.h"
#include "toolpath/pathdrawing.h"

namespace tarnex {

namespace {

constexpr double kCrossHalf = 0.5;                 // mm
constexpr double kCodeHeight = 0.3;                // of the text height
constexpr double kBarbLength = 1.0 / 3;            // of the arrow
constexpr double kBarbTurn = 0.08333333333333333;  // of half a turn
constexpr int kMostDecimals = 15;                  // more say nothing of a double

}  // namespace

void PathDrawing::text(AcGePoint2d at, double height, std::string_view utf8) {
  draw_.text(solid(at), {1, 0, 0}, height, utf8);
}

void PathDrawing::cross(AcGePoint2d p) {
  draw_.setSelectionMarker(kLinkMark);
  const AcGePoint3d flat[] = {{p.x - kCrossHalf, p.y, 0}, {p.x + kCrossHalf, p.y, 0}};
  const AcGePoint3d tall[] = {{p.x, p.y - kCrossHalf, 0}, {p.x, p.y + kCrossHalf, 0}};
  draw_.polyline(flat);
  draw_.polyline(tall);
}

void PathDrawing::labels() {
  if (path_.hasFlag(kIsoMark64)) {
    draw_.setColor(kExtraColor);
    line(thread(), entry(), kContourMark);
  }
  if (display_.bOrderMode || (settings_.bShowNumber && path_.nPathNo_ >= 1)) {
    draw_.setSelectionMarker(kLabelMark);
    draw_.setColor(settings_.nColorNumber);
    text(entry(), settings_.dTextHeight, formatted("%d", path_.nPathNo_));
  }
  if (path_.hasFlag(kAllCornersR)) {
    draw_.setSelectionMarker(kLabelMark);
    draw_.setColor(kGreen);
    text(thread(), settings_.dTextHeight, "R");
  }
}

// Beside the contour at the entry point, on the wire's side, in cutting direction.
void PathDrawing::arrow() {
  if (lowerSpans() < 2) return;
  const Span first = lowerSpan(1);
  const double length = settings_.dArrowLen;
  AcGePoint2d base, tip;
  if (first.bulge == 0) {
    const double ahead = acutAngle(first.a, first.b);
    base = acutPolar(first.a, ahead + turn() * kPi / 2, offset_);
    tip = acutPolar(base, ahead, length);
  } else {
    const AcGePoint2d centre = bulgeToCircle(first.a, first.b, first.bulge).centre;
    const double out =
        path_.nDirection_ * first.bulge > 0 ? acutAngle(centre, first.a) : acutAngle(first.a, centre);
    base = acutPolar(first.a, out, -path_.nSide_ * offset_);
    tip = acutPolar(base, out + path_.nDirection_ * kPi / 2, length);
  }
  draw_.setColor(path_.nDirection_ == kCounterClockwise ? kRed : kCyan);
  line(base, tip, kShaftMark);
  const double back = acutAngle(tip, base), barb = kPi * kBarbTurn;
  line(acutPolar(tip, back + barb, length * kBarbLength), tip, kBarbLeftMark);
  line(acutPolar(tip, back - barb, length * kBarbLength), tip, kBarbRightMark);
}

void PathDrawing::coordinates() {
  const int decimals = std::min<int>(settings_.nCoordDecimals, kMostDecimals);
  draw_.setSelectionMarker(kCoordMark);
  draw_.setColor(kCyan);
  text(thread(), settings_.dTextHeight,
       formatted("(%.*f , %.*f )", decimals, thread().x - display_.ptOrigin.x, decimals,
                 thread().y - display_.ptOrigin.y));
}

void PathDrawing::transitChains() {
  const bool first = path_.nPathNo_ == 1, last = path_.nPathNo_ == display_.pathCount;
  if (!first && !last) return;
  draw_.setLineType(kWideDashed);
  draw_.setColor(settings_.nColorNull);
  if (first && !display_.startChain.empty()) {
    const auto& chain = display_.startChain;
    for (std::size_t i = 0; i < chain.size(); ++i) {
      cross(chain[i]);
      if (i > 0) line(chain[i - 1], chain[i], kLinkMark);
    }
    line(chain.back(), thread(), kLinkMark);
  }
  if (last && !display_.endChain.empty()) {
    AcGePoint2d from = path_.getEndPoint(false);
    for (std::size_t j = 0; j < display_.endChain.size(); ++j) {
      const AcGePoint2d to = display_.endChain[j];
      if (j == 0) line(from, to, kLinkMark);
      cross(to);
      if (j > 0) line(from, to, kLinkMark);
      from = to;
    }
  }
}

// A path read from a file doesn't know yet where the wire came from: no line then.
void PathDrawing::moveFromPrevious() {
  if (display_.bOrderMode || !settings_.bShowNull || path_.nPathNo_ <= 1) return;
  if (path_.ptPrevEnd_ == CToolPath().ptPrevEnd_) return;
  draw_.setLineType(kWideDashed);
  draw_.setColor(settings_.nColorNull);
  line(path_.ptPrevEnd_, thread(), kLinkMark);
}

void PathDrawing::codeInsertions() {
  const int vertices = static_cast<int>(lower_.size());
  for (std::size_t i = 0; i < path_.aCodeVertex_.size() && i < path_.aCodeText_.size(); ++i) {
    const int at = path_.aCodeVertex_[i];
    if (at < 0 || at >= vertices) continue;  // a point of an old record that no vertex matched
    draw_.setSelectionMarker(kCodeMarks + static_cast<int>(i));
    draw_.setColor(kRed);
    text(lower_[static_cast<std::size_t>(at)].point, kCodeHeight * settings_.dTextHeight,
         path_.aCodeText_[i]);
  }
}

}  // namespace tarnex
