// Curves taken apart, and what is asked of a piece whatever its kind.
// Knows no pairs.
#include "host/geometry/pieces.h"

#include "host/geometry/kernel.h"

namespace tarnex::kernel {

namespace {

constexpr double kNowhere = std::numeric_limits<double>::infinity();

double angleOf(const EllipseArc& arc, double fraction) {
  return arc.bezier.from + (arc.bezier.to - arc.bezier.from) * fraction;
}

std::optional<double> on(const Element& e, AcGePoint2d p, double tolerance) {
  if (!(std::abs(signedDistance(e, p)) <= tolerance)) return std::nullopt;
  const bool atStart = !e.openStart && p.distanceTo(e.start) <= tolerance;
  if (atStart) return 0;
  if (!e.openEnd && p.distanceTo(e.end) <= tolerance) return e.wholeCircle() && !e.openStart ? 0 : 1;
  if (!(e.length > 0)) return std::nullopt;
  const double fraction = unwound(e, fractionAt(e, p));
  if (!reaches(e, fraction, 0)) return std::nullopt;
  return fraction;
}

std::optional<double> on(const Bezier& b, AcGePoint2d p, double tolerance) {
  if (!hullOf(b).grown(tolerance).contains(p)) return std::nullopt;
  Closest best{{}, 0, kNowhere};
  improveClosest({&b, 1}, p, best);
  if (!(best.distance <= tolerance)) return std::nullopt;
  return (best.param - b.from) / (b.to - b.from);
}

std::optional<double> on(const EllipseArc& arc, AcGePoint2d p, double tolerance) {
  if (!hullOf(arc.bezier).grown(tolerance).contains(p)) return std::nullopt;
  const EllipseCurve& c = arc.ellipse;
  const double from = arc.bezier.from, to = arc.bezier.to, middle = (from + to) / 2;
  const AcGeVector2d q = p - c.centre;
  double t = std::atan2(c.major.crossProduct(q) / c.ratio, c.major.dotProduct(q));
  t = middle + std::remainder(t - middle, 2 * kPi);
  for (int i = 0; i < 2; ++i) {  // a point near the ellipse is near its foot already
    const AcGeVector2d along = slope(c, t);
    const double square = along.dotProduct(along);
    if (square > 0) t += (p - at(c, t)).dotProduct(along) / square;
  }
  t = std::clamp(t, std::min(from, to), std::max(from, to));
  if (!(at(c, t).distanceTo(p) <= tolerance)) return std::nullopt;
  return (t - from) / (to - from);
}

}  // namespace

AcGePoint2d pointAt(const Piece& piece, double fraction) {
  if (const auto* e = std::get_if<Element>(&piece)) return pointAt(*e, fraction);
  const auto* arc = std::get_if<EllipseArc>(&piece);
  const Bezier& b = arc ? arc->bezier : std::get<Bezier>(piece);
  if (fraction == 0) return b.control.front();
  if (fraction == 1) return b.control.back();
  return arc ? at(arc->ellipse, angleOf(*arc, fraction)) : evaluate(b, fraction).point;
}

std::optional<double> fractionOn(const Piece& piece, AcGePoint2d p, double tolerance) {
  if (const auto* e = std::get_if<Element>(&piece)) return on(*e, p, tolerance);
  if (const auto* arc = std::get_if<EllipseArc>(&piece)) return on(*arc, p, tolerance);
  return on(std::get<Bezier>(piece), p, tolerance);
}

bool isBound(const Piece& piece, int fraction) {
  const auto* e = std::get_if<Element>(&piece);
  if (!e) return true;
  if (e->wholeCircle() && !e->openStart && !e->openEnd) return false;
  return !(fraction == 0 ? e->openStart : e->openEnd);
}

double turnOf(const Piece& piece) {
  const auto* e = std::get_if<Element>(&piece);
  return e && e->wholeCircle() ? kPi / e->halfSweep : 0;
}

Pieces::Pieces(const Curve& curve, bool extend) : extend_(extend) {
  closed_ = isClosed(curve);
  if (const auto* line = std::get_if<LineCurve>(&curve)) {
    Element e = lineElement(line->start, line->end);
    e.openStart = e.openEnd = extend;
    pieces_.push_back(e);
  } else if (const auto* ray = std::get_if<RayCurve>(&curve)) {
    Element e = rayElement(*ray);
    e.openStart = extend;
    pieces_.push_back(e);
  } else if (const auto* arc = std::get_if<ArcCurve>(&curve)) {
    Element e = arcElement(*arc);
    e.openStart = e.openEnd = extend && !closed_;
    pieces_.push_back(e);
  } else if (const auto* ellipse = std::get_if<EllipseCurve>(&curve)) {
    const EllipseCurve whole = extend ? wholeOf(*ellipse) : *ellipse;
    closed_ = closed_ || extend;
    for (Bezier& b : piecesOf(whole)) pieces_.push_back(EllipseArc{whole, std::move(b)});
  } else if (const auto* nurbs = std::get_if<NurbsCurve>(&curve)) {
    for (Bezier& b : piecesOf(*nurbs)) pieces_.push_back(std::move(b));
  } else {
    polyline_ = std::get_if<PolylineCurve>(&curve);
  }
}

std::size_t Pieces::count() const {
  return polyline_ ? polyline_->spanCount() : pieces_.size();
}

double Pieces::size() const {
  double size = 0;
  if (polyline_) {
    for (const BulgeVertex& v : polyline_->vertices) size = std::max(size, sizeOf(v.point));
  }
  for (const Piece& p : pieces_) {
    if (const auto* e = std::get_if<Element>(&p)) {
      size = std::max(size, sizeOf(*e));
    } else {
      const auto* arc = std::get_if<EllipseArc>(&p);
      for (const AcGePoint2d& q : (arc ? arc->bezier : std::get<Bezier>(p)).control)
        size = std::max(size, sizeOf(q));
    }
  }
  return size;
}

Extents2d Pieces::box(std::size_t i) const {
  Extents2d box;
  if (polyline_) {
    if (extend_ && !closed_ && (i == 0 || i + 1 == count()))
      return {{-kNowhere, -kNowhere}, {kNowhere, kNowhere}};
    const BulgeVertex& v = polyline_->vertices[i];
    const AcGePoint2d end = polyline_->vertices[i + 1 < polyline_->vertices.size() ? i + 1 : 0].point;
    box.add(v.point);
    box.add(end);
    if (v.bulge == 0) return box;
    // The arc keeps to a disc about the chord's middle.
    const AcGePoint2d middle = midpoint(v.point, end);
    const AcGeVector2d chord = end - v.point;
    const double reach = std::sqrt(chord.dotProduct(chord)) / 2 * std::max(1.0, std::abs(v.bulge));
    return Extents2d{middle, middle}.grown(reach);
  }
  const auto* e = std::get_if<Element>(&pieces_[i]);
  if (e && (e->openStart || e->openEnd)) return {{-kNowhere, -kNowhere}, {kNowhere, kNowhere}};
  if (e) return extentsOf(*e);
  const auto* arc = std::get_if<EllipseArc>(&pieces_[i]);
  return hullOf(arc ? arc->bezier : std::get<Bezier>(pieces_[i]));
}

const Piece& Pieces::piece(std::size_t i, Piece& place) const {
  if (!polyline_) return pieces_[i];
  place = elementOf(*polyline_, i, extend_);
  return place;
}

double Pieces::turn() const {
  if (closed_) return static_cast<double>(count());
  Piece place;
  return count() == 1 ? turnOf(piece(0, place)) : 0;
}

}  // namespace tarnex::kernel
