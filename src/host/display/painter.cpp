// Laying out a page, and walking the list.
// Knows no file format.
#include "host/display/painter.h"

#include <algorithm>

#include "host/display/labels.h"
#include "host/display/shape.h"

namespace tarnex {

namespace {

constexpr double kEmptyDrawing = 100;    // mm that a page without content shows
constexpr double kSmallestShown = 1e-6;  // mm; below it there is nothing to see but rounding
constexpr double kScaleRounding = 1e-9;  // of a scale that just fits
constexpr double kFlattest = 0.01;       // of the longer side; a lone line still gets a page that can be seen

double sane(double mm) {
  return std::isfinite(mm) && mm > 0 ? mm : 0;
}

bool finite(const Extents2d& e) {
  return std::isfinite(e.low.x) && std::isfinite(e.low.y) && std::isfinite(e.high.x) &&
         std::isfinite(e.high.y);
}

// The box with at least `side` of width and height, about its middle.
Extents2d atLeast(const Extents2d& box, double side) {
  const AcGePoint2d middle = midpoint(box.low, box.high);
  const double w = std::max(box.high.x - box.low.x, side) / 2, h = std::max(box.high.y - box.low.y, side) / 2;
  return {{middle.x - w, middle.y - h}, {middle.x + w, middle.y + h}};
}

Extents2d shownPart(const Extents2d& drawn, const PageOptions& options) {
  Extents2d box = options.window.value_or(drawn);
  if (box.empty() || !finite(box)) {
    box = {};
    box.add(AcGePoint2d{0, 0});
    return box.grown(kEmptyDrawing / 2);
  }
  const double longer = std::max(box.high.x - box.low.x, box.high.y - box.low.y);
  return atLeast(box, std::max(longer * kFlattest, kSmallestShown));
}

// Of three points on a line the radius is no number or without end. A chord is twice the radius times the
// sine of half the sweep, which here is `half.y` over its length.
PaintedArc paintedArc(const DrawnArc& s) {
  PaintedArc arc{s.start.flat(), s.point.flat(), s.end.flat(), {}, 0};
  const AcGeVector2d a = arc.through - arc.start, c = arc.end - arc.through, chord = arc.end - arc.start;
  arc.half = {a.dotProduct(c), a.crossProduct(c)};
  arc.radius =
      std::sqrt(chord.dotProduct(chord) * arc.half.dotProduct(arc.half)) / (2 * std::abs(arc.half.y));
  return arc;
}

// Hands each shape over as the view shows it.
class Walk {
 public:
  Walk(const Projection& view, Painter& painter) : view_(view), painter_(painter), plan_(view.isPlan()) {}

  void operator()(const DrawnPolyline& s) {
    points_.clear();
    if (plan_)
      for (const AcGePoint3d& p : s.points) points_.push_back(p.flat());
    else
      for (const AcGePoint3d& p : s.points) points_.push_back(view_.at(p));
    painter_.polyline(points_);
  }
  void operator()(const DrawnCircle& s) {
    if (plan_)
      painter_.circle(s.centre.flat(), s.radius);
    else
      bent({s.centre.flat(), s.radius, 0, 2 * kPi}, {s.centre.flat(), s.centre.z, {}});
  }
  void operator()(const DrawnArc& s) {
    if (plan_ && s.start.flat() != s.end.flat()) {
      const PaintedArc arc = paintedArc(s);
      if (arc.radius > 0 && arc.radius <= kFarthestDrawn) return painter_.arc(arc);
    } else if (const auto arc = arcThrough(s)) {
      return plan_ ? painter_.circle(arc->centre, arc->radius) : bent(*arc, planeThrough(s));
    }
    const AcGePoint3d points[] = {s.start, s.point, s.end};
    (*this)(DrawnPolyline{points});
  }
  void operator()(const DrawnText& s) { painter_.text(seenText(view_, s)); }

 private:
  void bent(const ArcCurve& arc, const ArcPlane& plane) {
    if (const auto ellipse = seenArc(view_, arc, plane))
      painter_.ellipse(*ellipse);
    else
      painter_.polyline(seenOnEdge(view_, arc, plane));
  }

  const Projection& view_;
  Painter& painter_;
  const bool plan_;
  std::vector<AcGePoint2d> points_;
};

class Pens {
 public:
  explicit Pens(Painter& painter) : painter_(painter) {}
  void take(const Primitive& p) {
    if (p.color != color_ || p.pattern != pattern_) painter_.pen(p.color, p.pattern);
    color_ = p.color;
    pattern_ = p.pattern;
  }

 private:
  Painter& painter_;
  int color_ = 0, pattern_ = -1;
};

bool isLabel(const Primitive& p) {
  return p.kind == ShapeKind::kText && p.marker >= 0;
}

}  // namespace

AcGePoint2d PaintedArc::centre() const {
  const auto circle = circleThrough({solid(start), solid(through), solid(end)});
  return circle ? start + circle->toCentre : through;
}

Page layoutPage(const Extents2d& drawn, const PageOptions& options) {
  const Extents2d box = shownPart(drawn, options);
  const double w = box.high.x - box.low.x, h = box.high.y - box.low.y;
  const double width = sane(options.width), height = sane(options.height);
  const bool sized = width > 0 && height > 0;
  Page page;
  page.scale = sane(options.scale);
  double margin = sane(options.margin);
  if (sized) {
    margin = std::min({margin, width / 4, height / 4});
    const double fits = std::min((width - 2 * margin) / w, (height - 2 * margin) / h);
    page.cut = options.wholePage && page.scale > fits * (1 + kScaleRounding);
    if (page.scale == 0) page.scale = fits;
  } else {
    if (page.scale == 0) page.scale = 1;
    margin = std::min(margin, std::max(w, h) * page.scale / 2);
  }
  page.width = w * page.scale + 2 * margin;
  page.height = h * page.scale + 2 * margin;
  page.shown = box.grown(margin / page.scale);
  if (sized && options.wholePage) {
    page.width = width;
    page.height = height;
    const AcGeVector2d half{width / page.scale / 2, height / page.scale / 2};
    const AcGePoint2d middle = midpoint(box.low, box.high);
    page.shown = {middle - half, middle + half};
  }
  return page;
}

Page layoutPage(const DisplayList& list, PageOptions options) {
  if (options.window) options.window = seenWindow(options.view, list, *options.window);
  return layoutPage(seenExtents(options.view, list), options);
}

void paint(const DisplayList& list, const Projection& view, const Extents2d& shown, Painter& painter) {
  paintShapes(list, view, shown, 0, list.primitives.size(), painter);
  paintLabels(list, view, shown, painter);
}

void paintShapes(const DisplayList& list, const Projection& view, const Extents2d& shown, std::size_t first,
                 std::size_t last, Painter& painter) {
  const bool plan = view.isPlan(), all = plan && shown.contains(list.extents);
  Walk walk(view, painter);
  Pens pens(painter);
  const auto isSeen = [&](const auto& shape) {
    return (plan ? extentsOf(shape) : seenExtents(view, DrawnShape{shape})).overlaps(shown);
  };
  for (std::size_t i = first; i < last; ++i) {
    const Primitive& p = list.primitives[i];
    if (isLabel(p)) continue;
    if (!all && !list.visit(p, isSeen)) continue;
    pens.take(p);
    list.visit(p, walk);
  }
}

void paintLabels(const DisplayList& list, const Projection& view, const Extents2d& shown, Painter& painter) {
  Pens pens(painter);
  Labels places;
  for (const Primitive& p : list.primitives) {
    if (!isLabel(p)) continue;
    const DrawnText text = seenText(view, std::get<DrawnText>(list.shapeOf(p)));
    if (!extentsOf(DrawnShape{text}).overlaps(shown)) continue;
    pens.take(p);
    painter.text(places.placed(text));
  }
}

}  // namespace tarnex
