// How a list of primitives comes onto a page: the part of the drawing that is shown, its scale, and the walk
// that hands the shapes to whoever puts them down. Knows the view; file formats are the painters'.
#pragma once

#include <optional>
#include <span>

#include "host/display/displaylist.h"
#include "host/display/projection.h"

namespace tarnex {

struct PageOptions {
  Projection view;
  // The picture is as large as fits into this, mm on paper (A4 across less its margins); 0 by 0: true to
  // scale, 1:1.
  double width = 277, height = 190;
  bool wholePage = false;           // the page is that large, with the picture in its middle
  double scale = 0;                 // mm on paper per mm of drawing; 0: as large as fits
  double margin = 5;                // mm on paper, around the window
  std::optional<Extents2d> window;  // of the drawing in plan, mm; without it all that is drawn
};

// What is shown is measured in the picture: in the plan view those are the drawing's own coordinates.
struct Page {
  Extents2d shown;               // what the page holds, margins too
  double scale = 1;              // mm on paper per mm of drawing
  double width = 0, height = 0;  // mm on paper
  bool cut = false;  // a page of a given size is too small at the given scale: the middle is shown
};

// Without `wholePage` a page keeps the window's shape: nothing is stretched, nothing is wasted. An empty list
// gives a page of 100 by 100 mm of drawing about the origin; sizes that aren't finite or below 0 count as 0,
// the margin takes at most a quarter of the page on each side.
[[nodiscard]] Page layoutPage(const Extents2d& drawn, const PageOptions& options);
[[nodiscard]] Page layoutPage(const DisplayList& list, PageOptions options);  // as its view shows it

// A circular arc by three of its points, start and end exact. Centre and angles cost more than the rest and
// are worked out when asked for.
struct PaintedArc {
  AcGePoint2d start, through, end;
  AcGeVector2d half;  // cosine and sine of half the sweep, both times any length
  double radius = 0;
  [[nodiscard]] AcGePoint2d centre() const;
  [[nodiscard]] ArcCurve curve() const {
    const AcGePoint2d about = centre();
    return {about, radius, (start - about).angle(), 2 * std::atan2(half.y, half.x)};
  }
};

// Points, centres and axes are those of the picture, y upward.
class Painter {
 public:
  virtual ~Painter() = default;
  // Holds for the shapes that follow.
  virtual void pen(int color, int pattern) = 0;
  virtual void polyline(std::span<const AcGePoint2d> points) = 0;  // at least 1
  virtual void circle(AcGePoint2d centre, double radius) = 0;
  virtual void arc(const PaintedArc& arc) = 0;
  virtual void ellipse(const EllipseCurve& curve) = 0;  // an arc of it or the whole
  virtual void text(const DrawnText& text) = 0;
};

// In the order drawn, but for labels (texts with a selection marker): they come last, so that no line runs
// through what is to be read. A label that would cover an earlier one moves to a place near by, see Labels;
// the list keeps its place. Primitives that lie wholly outside of `shown` are left out.
void paint(const DisplayList& list, const Projection& view, const Extents2d& shown, Painter& painter);
// The same in parts, for painters that work side by side: what isn't a label of the primitives from `first`
// up to `last`, and all labels.
void paintShapes(const DisplayList& list, const Projection& view, const Extents2d& shown, std::size_t first,
                 std::size_t last, Painter& painter);
void paintLabels(const DisplayList& list, const Projection& view, const Extents2d& shown, Painter& painter);

}  // namespace tarnex
