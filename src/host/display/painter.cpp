// Laying out a page, and walking the list.
// Knows no file format.
#include "host/display/painter.h"

#include <algorithm>

#include "host/display/shape.h"

namespace tarnex {

namespace {

constexpr double kEmptyDrawing = 100;    // mm that a page without content shows
constexpr double kSmallestShown = 1e-6;  // mm; below it there is nothing to see but rounding
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

// Keeps the labels of one entity apart.
class Labels {
 public:
  DrawnText placed(const Primitive& p, const DrawnText& text) {
    if (p.marker < 0) return text;
    if (p.owner != owner_ || p.owner.isNull()) taken_.clear();
    owner_ = p.owner;
    DrawnText moved = text;
    Primitive probe;
    for (int turn = 0; turn <= kMostMoves; ++turn) {
      const int lines = (turn % 2 ? -1 : 1) * ((turn + 1) / 2);  // 0, below, above, two below ...
      const AcGeVector2d by = text.direction.perpVector() * (lines * kLineStep * text.height);
      moved.position = text.position + AcGeVector3d{by.x, by.y, 0};
      probe.shape = moved;
      const Extents2d box = extentsOf(probe);
      if (std::any_of(taken_.begin(), taken_.end(),
                      [&](const Extents2d& other) { return other.overlaps(box); }))
        continue;
      taken_.push_back(box);
      return moved;
    }
    return text;
  }

 private:
  static constexpr int kMostMoves = 8;
  static constexpr double kLineStep = 1.4;  // of the height
  AcDbObjectId owner_;
  std::vector<Extents2d> taken_;
};

struct Dispatch {
  Painter& painter;
  Labels& labels;
  const Primitive& primitive;
  void operator()(const DrawnPolyline& s) const { painter.polyline(s.points); }
  void operator()(const DrawnCircle& s) const { painter.circle(s.centre.flat(), s.radius); }
  void operator()(const DrawnArc& s) const {
    if (const auto arc = arcThrough(s)) {
      if (s.start.flat() == s.end.flat())
        painter.circle(arc->centre, arc->radius);
      else
        painter.arc(*arc, s.start.flat(), s.end.flat());
    } else {
      const AcGePoint3d points[] = {s.start, s.point, s.end};
      painter.polyline(points);
    }
  }
  void operator()(const DrawnText& s) const { painter.text(labels.placed(primitive, s)); }
};

}  // namespace

Page layoutPage(const Extents2d& drawn, const PageOptions& options) {
  const Extents2d box = shownPart(drawn, options);
  const double w = box.high.x - box.low.x, h = box.high.y - box.low.y;
  const double width = sane(options.width), height = sane(options.height);
  Page page;
  double margin = sane(options.margin);
  if (width > 0 && height > 0) {
    margin = std::min({margin, width / 4, height / 4});
    page.scale = std::min((width - 2 * margin) / w, (height - 2 * margin) / h);
  } else {
    margin = std::min(margin, std::max(w, h) / 2);
  }
  page.shown = box.grown(margin / page.scale);
  page.width = w * page.scale + 2 * margin;
  page.height = h * page.scale + 2 * margin;
  return page;
}

void paint(const DisplayList& list, const Extents2d& shown, Painter& painter) {
  Labels labels;
  int color = 0, pattern = -1;
  for (const Primitive& p : list.primitives) {
    if (!extentsOf(p).overlaps(shown)) continue;
    if (p.color != color || p.pattern != pattern) painter.pen(p.color, p.pattern);
    color = p.color;
    pattern = p.pattern;
    std::visit(Dispatch{painter, labels, p}, p.shape);
  }
}

}  // namespace tarnex
