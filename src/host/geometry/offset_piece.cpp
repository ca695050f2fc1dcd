// Arithmetic on the offset's lines and arcs.
// Knows no corners, no sides and no contours.
#include "host/geometry/offset_piece.h"

namespace tarnex::offsets {

constexpr double kShortArc =
    0.1;  // rad: within it the chord's length tells the sweep better than its direction

Piece makePiece(Vec start, Vec end, double bulge) {
  const Vec chord = end - start;
  const double length = sizeOf(chord);
  const Vec c = chord * (1 / length);
  if (bulge == 0) return {start, end, c, c, 0, 0};
  const double f = 1 / (1 + bulge * bulge);
  const double cosHalf = (1 - bulge * bulge) * f, sinHalf = 2 * bulge * f;
  return {start,
          end,
          {c.x * cosHalf + c.y * sinHalf, c.y * cosHalf - c.x * sinHalf},
          {c.x * cosHalf - c.y * sinHalf, c.y * cosHalf + c.x * sinHalf},
          bulge,
          2 * sinHalf / length};
}

Piece reversed(const Piece& p) {
  return {p.end, p.start, -p.t1, -p.t0, -p.bulge, -p.curvature};
}

Box boxOf(Vec start, Vec end, double bulge) {
  Box b{std::min(start.x, end.x), std::min(start.y, end.y), std::max(start.x, end.x),
        std::max(start.y, end.y)};
  if (bulge == 0) return b;
  const Vec chord = end - start;
  const Vec rise = leftOf(chord) * (-bulge / 2);  // from the chord's middle to the arc's
  if (std::abs(bulge) <= 1) {                     // within the chord's parallelogram up to the rise
    const Vec p = start + rise, q = end + rise;
    b.add({std::min(p.x, q.x), std::min(p.y, q.y), std::max(p.x, q.x), std::max(p.y, q.y)});
    return b;
  }
  const double radius = sizeOf(chord) * (std::abs(bulge) + 1 / std::abs(bulge)) / 4;
  const Vec top = (start + end) * 0.5 + rise;
  const Vec centre = top - rise * (radius / sizeOf(rise));
  return {centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius};
}

double lengthOf(const Piece& p) {
  return p.bulge == 0 ? sizeOf(p.end - p.start) : std::abs(sweepOf(p) / p.curvature);
}

Vec normalAt(const Piece& p, Vec q) {
  const Vec n = leftOf(p.t0);
  if (p.curvature == 0) return n;
  const Vec g = n - (q - p.start) * p.curvature;
  const double size = sizeOf(g);
  return size > 0 ? g * (1 / size) : n;
}

double leftDistance(const Piece& p, Vec q) {
  const Vec r = q - p.start, n = leftOf(p.t0);
  const double g = dot(n, r) - p.curvature / 2 * dot(r, r);
  return 2 * g / (1 + sizeOf(n - r * p.curvature));  // the size is 1 on the circle, 0 at its centre
}

bool abeam(const Piece& p, Vec q) {
  if (p.curvature == 0) return dot(p.t0, q - p.start) >= 0 && dot(p.t0, q - p.end) <= 0;
  const double turn = p.bulge > 0 ? 1 : -1;
  const Vec n = leftOf(p.t0) - (q - p.start) * p.curvature;
  const double afterStart = turn * cross(leftOf(p.t0), n), beforeEnd = turn * cross(n, leftOf(p.t1));
  return std::abs(p.bulge) <= 1 ? afterStart >= 0 && beforeEnd >= 0 : afterStart >= 0 || beforeEnd >= 0;
}

double distanceTo(const Piece& p, Vec q) {
  if (abeam(p, q)) return std::abs(leftDistance(p, q));
  const Vec a = q - p.start, b = q - p.end;
  return std::sqrt(std::min(dot(a, a), dot(b, b)));
}

Vec nearestOn(const Piece& p, Vec q) {
  if (abeam(p, q)) return q - normalAt(p, q) * leftDistance(p, q);
  const Vec a = q - p.start, b = q - p.end;
  return dot(a, a) <= dot(b, b) ? p.start : p.end;
}

namespace {

// Half the sweep, in [0, pi], from where an arc of curvature k has tangent t to where the chord r ends.
double halfSweep(Vec t, double k, Vec r) {
  const double half =
      std::atan2((k > 0 ? 1 : -1) * cross(t, r), dot(t, r));  // the chord lies so far off the tangent
  const double byLength = std::asin(std::min(1.0, sizeOf(r) * std::abs(k) / 2));
  if (std::abs(half) < kShortArc) return byLength;
  if (std::abs(half) > kPi - kShortArc) return kPi - byLength;
  return half < 0 ? half + kPi : half;
}

}  // namespace

double placeOf(const Piece& p, Vec q) {
  if (p.curvature == 0) return dot(p.t0, q - p.start);
  return 2 * halfSweep(p.t0, p.curvature, q - p.start);
}

Vec pointAt(const Piece& p, double part) {
  if (p.curvature == 0) return p.start + (p.end - p.start) * part;
  const double half = part * sweepOf(p) / 2, s = std::sin(half), c = std::cos(half);
  return p.start + (p.t0 * c + leftOf(p.t0) * s) * (2 * s / p.curvature);
}

Piece partOf(const Piece& p, Vec from, Vec to) {
  if (p.curvature == 0) return {from, to, p.t0, p.t0, 0, 0};
  const auto tangentAt = [&p](Vec q) {
    const Vec n = normalAt(p, q);
    return Vec{n.y, -n.x};
  };
  Piece part{from, to, tangentAt(from), tangentAt(to), 0, p.curvature};
  part.bulge = std::copysign(std::tan(halfSweep(part.t0, p.curvature, to - from) / 2), p.bulge);
  return part;
}

void Meetings::add(Vec q, double tolerance) {
  for (int i = 0; i < count; ++i)
    if (sizeOf(at[static_cast<std::size_t>(i)] - q) <= tolerance) return;
  if (count < static_cast<int>(at.size())) at[static_cast<std::size_t>(count++)] = q;
}

Meetings meetings(const Piece& a, const Piece& b, double tolerance) {
  Meetings found;
  for (const Vec end : {b.start, b.end})
    if (distanceTo(a, end) <= tolerance) found.add(end, tolerance);
  for (const Vec end : {a.start, a.end})
    if (distanceTo(b, end) <= tolerance) found.add(end, tolerance);
  // Seen from an end of the more curved one, so that small circles keep their digits.
  const Vec origin = std::abs(b.curvature) > std::abs(a.curvature) ? b.start : a.start;
  const TwoPlaces places = meet(locusOf(a.start - origin, leftOf(a.t0), a.curvature),
                                locusOf(b.start - origin, leftOf(b.t0), b.curvature));
  for (int i = 0; i < places.count; ++i) {
    const Vec q = origin + places.at[static_cast<std::size_t>(i)];
    if (distanceTo(a, q) <= tolerance && distanceTo(b, q) <= tolerance) found.add(q, tolerance);
  }
  return found;
}

std::optional<Vec> meetAgain(const Piece& before, const Piece& after, double tolerance) {
  const double k1 = before.curvature, k2 = after.curvature;
  if (k1 == 0 && k2 == 0) return std::nullopt;
  const Vec n1 = leftOf(before.t1), n2 = leftOf(after.t0);
  const Vec across =
      leftOf(n1 * k2 - n2 * k1);  // the common chord's direction, with the corner at its one end
  const double size2 = dot(across, across);
  if (!(size2 > 0)) return std::nullopt;
  const double along = std::abs(k1) > std::abs(k2) ? 2 * dot(n1, across) / k1 : 2 * dot(n2, across) / k2;
  const Vec chord = across * (along / size2);
  if (k1 == 0 && dot(before.t1, chord) > 0) return std::nullopt;
  if (k2 == 0 && dot(after.t0, chord) < 0) return std::nullopt;
  const Vec q = after.start + chord;
  if (distanceTo(before, q) > tolerance || distanceTo(after, q) > tolerance) return std::nullopt;
  return q;
}

Locus locusOf(Vec point, Vec leftNormal, double curvature) {
  return {leftNormal + point * curvature, -dot(leftNormal, point) - curvature / 2 * dot(point, point),
          curvature};
}

namespace {

// The place on `a` (curved) and on the line w·q = h, w a unit vector, where a's normal has `along` (signed)
// along the left of w. Both loci of a pencil meet upon this line.
Vec onRadicalLine(const Locus& a, Vec w, double h, double along) {
  const Vec v = leftOf(w);
  const double b = dot(a.u, v);
  const double g = a.c + h * dot(a.u, w) - a.k * h * h / 2;
  const double s = b * along > 0 ? -2 * g / (b + along) : (b - along) / a.k;
  return w * h + v * s;
}

}  // namespace

TwoPlaces meet(const Locus& a, const Locus& b) {
  TwoPlaces places;
  if (a.k == 0 && b.k == 0) {
    const double det = cross(a.u, b.u);
    if (det == 0) return places;
    places.at[0] = {(-a.c * b.u.y + b.c * a.u.y) / det, (-b.c * a.u.x + a.c * b.u.x) / det};
    places.count = 1;
    places.real = true;
    return places;
  }
  const bool swap = std::abs(b.k) > std::abs(a.k);
  const Locus &first = swap ? b : a, &second = swap ? a : b;
  const Vec w = first.u * second.k - second.u * first.k;
  const double size = sizeOf(w);
  if (!(size > 0)) return places;
  const Vec unit = w * (1 / size);
  const double h = (first.k * second.c - second.k * first.c) / size;
  const double cosine = dot(first.u, unit) - first.k * h;
  const double sine2 = std::max(0.0, (1 - cosine) * (1 + cosine));  // below 0: where they come nearest
  const double left = std::copysign(std::sqrt(sine2), swap ? -first.k : first.k);
  places.at = {onRadicalLine(first, unit, h, left), onRadicalLine(first, unit, h, -left)};
  places.count = 2;
  places.real = std::abs(cosine) <= 1;
  return places;
}

}  // namespace tarnex::offsets
