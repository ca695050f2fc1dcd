// How a list of primitives comes onto a page: the part of the drawing that is shown, its scale, and the walk
// that hands the shapes to whoever puts them down. Knows plan view; file formats are the painters'.
#pragma once

#include <optional>
#include <span>

#include "host/display/displaylist.h"

namespace tarnex {

struct PageOptions {
  // The picture is as large as fits into this, mm on paper (A4 across less its margins); 0 by 0: true to
  // scale, 1:1.
  double width = 277, height = 190;
  double margin = 5;                // mm on paper, around the window
  std::optional<Extents2d> window;  // of the drawing, mm; without it all that is drawn
};

struct Page {
  Extents2d shown;               // part of the drawing that the page holds, margins too
  double scale = 1;              // mm on paper per mm of drawing
  double width = 0, height = 0;  // mm on paper
};

// A page keeps the window's shape: nothing is stretched, nothing is wasted. An empty list gives a page of 100
// by 100 mm of drawing about the origin; sizes that aren't finite or below 0 count as 0, the margin takes at
// most a quarter of the page on each side.
[[nodiscard]] Page layoutPage(const Extents2d& drawn, const PageOptions& options);

class Painter {
 public:
  virtual ~Painter() = default;
  // Holds for the shapes that follow.
  virtual void pen(int color, int pattern) = 0;
  virtual void polyline(std::span<const AcGePoint3d> points) = 0;
  virtual void circle(AcGePoint2d centre, double radius) = 0;
  // From start to end on the circle of `arc`; the end points are exact.
  virtual void arc(const ArcCurve& arc, AcGePoint2d start, AcGePoint2d end) = 0;
  virtual void text(const DrawnText& text) = 0;
};

// In the order drawn; primitives that lie wholly outside of `shown` are left out. A label (a text with a
// selection marker) that would cover an earlier label of its entity is moved by lines below or above it; the
// list keeps its place.
void paint(const DisplayList& list, const Extents2d& shown, Painter& painter);

}  // namespace tarnex
