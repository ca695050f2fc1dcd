// Turns closed curves to begin where their path begins.
// Knows nothing of how they were made.
#include "host/geometry/offset_start.h"

#include <algorithm>

namespace tarnex::offsets {

namespace {

Vec vec(const BulgeVertex& v) {
  return {v.point.x, v.point.y};
}

Piece pieceAt(const PolylineCurve& c, std::size_t i) {
  const BulgeVertex& v = c.vertices[i];
  return makePiece(vec(v), vec(c.vertices[i + 1 < c.vertices.size() ? i + 1 : 0]), v.bulge);
}

struct Nearest {
  std::size_t span = 0;
  Vec at;
  double distance = std::numeric_limits<double>::infinity();
};

// A vertex rather than another place as near.
Nearest nearest(const PolylineCurve& c, Vec p, double snap) {
  Nearest best;
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const Vec from = vec(c.vertices[i]), to = vec(c.vertices[i + 1 < c.vertices.size() ? i + 1 : 0]);
    const double reach = 2 * sizeOf(to - from) * std::max(1.0, std::abs(c.vertices[i].bulge));
    if (sizeOf(p - from) - reach > best.distance) continue;
    const double is = distanceTo(pieceAt(c, i), p);
    if (is < best.distance) best = {i, {}, is};
  }
  const Piece piece = pieceAt(c, best.span);
  best.at = nearestOn(piece, p);
  if (sizeOf(piece.start - p) <= best.distance + snap)
    best.at = piece.start;
  else if (sizeOf(piece.end - p) <= best.distance + snap)
    best.at = piece.end;
  return best;
}

void beginAt(PolylineCurve& c, const Nearest& place, double snap) {
  const Piece piece = pieceAt(c, place.span);
  std::size_t first = place.span;
  if (sizeOf(place.at - piece.end) <= snap) {
    first = (place.span + 1) % c.vertices.size();
  } else if (sizeOf(place.at - piece.start) > snap) {
    first = place.span + 1;
    c.vertices[place.span].bulge = partOf(piece, piece.start, place.at).bulge;
    c.vertices.insert(c.vertices.begin() + static_cast<std::ptrdiff_t>(first),
                      {{place.at.x, place.at.y}, partOf(piece, place.at, piece.end).bulge});
  }
  std::rotate(c.vertices.begin(), c.vertices.begin() + static_cast<std::ptrdiff_t>(first), c.vertices.end());
}

}  // namespace

void beginNearStart(std::vector<PolylineCurve>& curves, Vec ideal, double snap) {
  std::vector<std::pair<double, std::size_t>> order;
  for (std::size_t i = 0; i < curves.size(); ++i) {
    PolylineCurve& c = curves[i];
    Nearest place = nearest(c, ideal, snap);
    const bool passes = place.distance <= snap;
    if (!passes) place = nearest(c, {}, snap);
    if (c.closed) beginAt(c, place, snap);
    order.emplace_back(passes ? 0 : place.distance, i);
  }
  std::stable_sort(order.begin(), order.end());
  std::vector<PolylineCurve> sorted;
  sorted.reserve(curves.size());
  for (const auto& entry : order) sorted.push_back(std::move(curves[entry.second]));
  curves = std::move(sorted);
}

}  // namespace tarnex::offsets
