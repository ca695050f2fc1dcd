// Polylines with bulges: what they answer, span by span.
// Knows no other curves than its spans.
#include <algorithm>

#include "host/geometry/kernel.h"

namespace tarnex::kernel {

namespace {

struct SpanPlace {
  std::size_t index;
  double fraction;
};

const BulgeVertex& vertexAfter(const PolylineCurve& c, std::size_t i) {
  return c.vertices[i + 1 < c.vertices.size() ? i + 1 : 0];
}

// Where a parameter lies; the end of an open polyline is the end of its last span. There is at least one
// span.
SpanPlace placeOf(const PolylineCurve& c, double param) {
  const auto spans = static_cast<double>(c.spanCount());
  if (c.closed) param = std::clamp(param, 0.0, spans);
  if (c.closed && param == spans) return {0, 0};
  const double index = std::clamp(std::floor(param), 0.0, spans - 1);
  return {static_cast<std::size_t>(index), param - index};
}

double spanLengthAt(const PolylineCurve& c, std::size_t i) {
  const BulgeVertex& v = c.vertices[i];
  const AcGeVector2d chord = vertexAfter(c, i).point - v.point;
  const double size = std::sqrt(chord.dotProduct(chord));
  if (v.bulge == 0) return size;
  const double b = std::abs(v.bulge);
  if (b < 1e-8) return size;  // the arc is longer by a factor of 1 + b² 2/3, less than rounding
  return size * (1 / b + b) * std::atan(b);
}

AcGePoint2d onlyPoint(const PolylineCurve& c) {
  return c.vertices.empty() ? AcGePoint2d{} : c.vertices.front().point;
}

double partialBulge(double bulge, double part) {
  return part == 1 ? bulge : std::tan(std::atan(bulge) * part);
}

}  // namespace

Element elementOf(const PolylineCurve& c, std::size_t i, bool extend) {
  const BulgeVertex& v = c.vertices[i];
  Element e = spanElement(v.point, vertexAfter(c, i).point, v.bulge);
  if (extend && !c.closed) {
    e.openStart = i == 0;
    e.openEnd = i + 1 == c.spanCount();
  }
  return e;
}

bool valid(const PolylineCurve& c) {
  return !c.vertices.empty() &&
         std::ranges::all_of(c.vertices, [](const BulgeVertex& v) { return sane(v.point) && sane(v.bulge); });
}

bool closed(const PolylineCurve& c) {
  return c.closed;
}
double paramFrom(const PolylineCurve&) {
  return 0;
}
double paramTo(const PolylineCurve& c) {
  return static_cast<double>(c.spanCount());
}

AcGePoint2d at(const PolylineCurve& c, double param) {
  if (c.spanCount() == 0 || std::isnan(param)) return onlyPoint(c);
  const SpanPlace place = placeOf(c, param);
  return pointAt(elementOf(c, place.index, false), place.fraction);
}

AcGeVector2d slope(const PolylineCurve& c, double param) {
  if (c.spanCount() == 0 || std::isnan(param)) return {};
  const SpanPlace place = placeOf(c, param);
  const Element e = elementOf(c, place.index, false);
  return directionAt(e, place.fraction) * e.length;
}

Extents2d box(const PolylineCurve& c) {
  Extents2d box;
  for (const BulgeVertex& v : c.vertices) box.add(v.point);
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const BulgeVertex& v = c.vertices[i];
    if (v.bulge == 0) continue;
    // No point of the arc lies farther from the chord's middle than this.
    const AcGePoint2d end = vertexAfter(c, i).point;
    const double reach = v.point.distanceTo(end) / 2 * std::max(1.0, std::abs(v.bulge));
    Extents2d disc;
    disc.add(midpoint(v.point, end));
    if (!box.contains(disc.grown(reach))) box.add(extentsOf(elementOf(c, i, false)));
  }
  return box;
}

double distTo(const PolylineCurve& c, double param) {
  if (c.spanCount() == 0 || std::isnan(param)) return 0;
  const bool atEnd = param >= paramTo(c) && c.closed;
  const SpanPlace place = atEnd ? SpanPlace{c.spanCount() - 1, 1} : placeOf(c, param);
  double sum = place.fraction * spanLengthAt(c, place.index);
  for (std::size_t i = 0; i < place.index; ++i) sum += spanLengthAt(c, i);
  return sum;
}

double paramOf(const PolylineCurve& c, double distance) {
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const double size = spanLengthAt(c, i);
    if (distance < size) return static_cast<double>(i) + std::max(distance, 0.0) / size;
    distance -= size;
  }
  return paramTo(c);
}

Closest closest(const PolylineCurve& c, AcGePoint2d p, bool extend) {
  Closest best{onlyPoint(c), 0, onlyPoint(c).distanceTo(p)};
  double square = best.distance * best.distance;
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const AcGePoint2d from = c.vertices[i].point, to = vertexAfter(c, i).point;
    const bool open = extend && !c.closed && (i == 0 || i + 1 == c.spanCount());
    if (!open) {  // nothing of the span leaves the disc about its chord's middle
      const AcGeVector2d chord = to - from, off = p - midpoint(from, to);
      const double reach =
          std::max(1.0, std::abs(c.vertices[i].bulge)) / 2 * std::sqrt(chord.dotProduct(chord));
      const double away = reach + std::sqrt(square);
      if (off.dotProduct(off) > away * away * (1 + 1e-12)) continue;
    }
    const Element e = elementOf(c, i, extend);
    const double fraction = closestFraction(e, p);
    const AcGePoint2d foot = pointAt(e, fraction);
    const AcGeVector2d off = p - foot;
    if (!(off.dotProduct(off) < square)) continue;
    square = off.dotProduct(off);
    best = {foot, static_cast<double>(i) + fraction, std::sqrt(square)};
  }
  return best;
}

Curve backwards(const PolylineCurve& c) {
  PolylineCurve back;
  back.closed = c.closed;
  const std::size_t n = c.vertices.size();
  back.vertices.reserve(n);
  // New vertex i is old n-1-i; its span ran into it, so it has the bulge of the vertex before. The bulge
  // stored on an open polyline's last vertex stays there, since it belongs to the closing span.
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t old = n - 1 - i, before = old == 0 ? n - 1 : old - 1;
    back.vertices.push_back({c.vertices[old].point, 0.0 - c.vertices[before].bulge});
  }
  return back;
}

std::optional<Curve> moved(const PolylineCurve& c, const AcGeMatrix3d& m) {
  const bool keepsArcs = m.uniformScale().has_value();
  const double sign = m.determinant2d() < 0 ? -1 : 1;
  PolylineCurve image;
  image.closed = c.closed;
  image.vertices.reserve(c.vertices.size());
  for (std::size_t i = 0; i < c.vertices.size(); ++i) {
    const BulgeVertex& v = c.vertices[i];
    if (!keepsArcs && v.bulge != 0 && i < c.spanCount()) return std::nullopt;
    image.vertices.push_back({m.apply(v.point), v.bulge == 0 ? 0 : sign * v.bulge});
  }
  return image;
}

Curve piece(const PolylineCurve& c, double from, double to) {
  PolylineCurve part;
  const double spans = paramTo(c);
  if (c.spanCount() == 0) return c;
  if (c.closed && to <= from) to += spans;
  double start = from;
  while (start < to) {  // one vertex for each span touched
    const double index = std::floor(start), end = std::min(to, index + 1);
    const auto i = static_cast<std::size_t>(index) % c.spanCount();
    const AcGePoint2d point = at(c, static_cast<double>(i) + (start - index));
    part.vertices.push_back({point, partialBulge(c.vertices[i].bulge, end - start)});
    start = end;
  }
  const bool wraps = c.closed && to >= spans;
  part.vertices.push_back({at(c, wraps ? to - spans : to), 0});
  return part;
}

}  // namespace tarnex::kernel
