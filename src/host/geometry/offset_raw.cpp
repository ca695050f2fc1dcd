// Moves spans sideways and solves the corners between them, each from nothing but its two neighbours.
// Knows no collisions between spans that aren't neighbours.
#include "host/geometry/offset_raw.h"

namespace tarnex::offsets {

namespace {

constexpr double kUnit = std::numeric_limits<double>::epsilon();
constexpr double kToleranceUnits = 16;  // roundings of a coordinate that one result adds up
constexpr double kParallel =
    1e-6;  // sine below which opposed neighbours never meet (2 million times the distance)
constexpr double kHuge = 1e60;       // mm, or a bulge: beyond it products overflow
constexpr double kCusp = 1e-9;       // sine below which a turn back is a cusp
constexpr double kUpon = 1e-12;      // sine below which two lines lie upon each other
constexpr double kSmallTurn = 1e-7;  // rad: its square is below rounding, so tan x = x

struct Moved {
  Vec normal;
  double curvature = 0;
};

Moved moved(Vec tangent, double curvature, double distance) {
  return {leftOf(tangent), curvature / (1 - curvature * distance)};
}

// Forward advance of the place q on the moved span, seen from the place abeam of the vertex.
double advance(const Moved& m, Vec q) {
  const Vec tangent{m.normal.y, -m.normal.x};
  if (m.curvature == 0) return dot(tangent, q);
  const Vec n = m.normal - q * m.curvature;
  return std::copysign(1.0, m.curvature) * std::atan2(cross(m.normal, n), dot(m.normal, n));
}

// Sine of the turn from one span to the next, above 0 to the left. Where the path turns back on itself the
// span that bends away tells which way round it went.
double turnAt(const Piece& before, const Piece& after) {
  const double sine = cross(before.t1, after.t0), bend = before.curvature + after.curvature;
  if (dot(before.t1, after.t0) > 0 || std::abs(sine) > kCusp) return sine;
  if (before.curvature == 0 && after.curvature == 0 && std::abs(sine) < kUpon) return 0;
  if (bend == 0) return sine;
  return std::copysign(std::max(std::abs(sine), std::numeric_limits<double>::min()), -bend);
}

Joint met(Vec v, Vec q, double gained, double given, bool convex) {
  return {JointKind::kMeet, convex, v + q, v + q, gained, given};
}

}  // namespace

std::optional<Source> readSource(std::span<const BulgeVertex> path, double distance) {
  if (path.empty() || !(std::abs(distance) < kHuge)) return std::nullopt;
  Source s;
  s.origin = {path[0].point.x, path[0].point.y};
  Box box{s.origin.x, s.origin.y, s.origin.x, s.origin.y};
  for (const BulgeVertex& v : path) {
    if (!(std::abs(v.point.x) < kHuge && std::abs(v.point.y) < kHuge && std::abs(v.bulge) < kHuge))
      return std::nullopt;
    box.add({v.point.x, v.point.y, v.point.x, v.point.y});
  }
  const double size = std::max({std::abs(box.x0), std::abs(box.x1), std::abs(box.y0), std::abs(box.y1)});
  s.tolerance = kToleranceUnits * kUnit * (size + std::abs(distance));
  s.spans.reserve(path.size());
  Vec at{};
  double bulge = path[0].bulge;
  for (const BulgeVertex& v : path.subspan(1)) {
    const Vec to{v.point.x - s.origin.x, v.point.y - s.origin.y};
    if (sizeOf(to - at) > s.tolerance / kToleranceUnits * 4) {
      s.spans.push_back(makePiece(at, to, bulge));
      at = to;
    }
    bulge = v.bulge;
  }
  if (s.spans.empty()) return std::nullopt;
  s.closed = s.spans.size() > 1 && sizeOf(at) <= s.tolerance;
  if (s.closed) s.spans.back() = makePiece(s.spans.back().start, {}, s.spans.back().bulge);
  return s;
}

bool vanishes(const Piece& span, double distance, double tolerance) {
  const double left = 1 - span.curvature * distance;
  return span.curvature != 0 && left <= tolerance * std::abs(span.curvature);
}

Joint jointBetween(const Piece& before, const Piece& after, double distance, double tolerance) {
  const Vec v = after.start;
  const double sine = turnAt(before, after), cosine = dot(before.t1, after.t0);
  const bool back =
      cosine < 0 && sine == 0;  // upon itself: which side is the outer one only the whole path can tell
  const bool convex = back || sine * distance < 0;
  const Vec end = v + leftOf(before.t1) * distance, start = v + leftOf(after.t0) * distance;
  const Joint unsolved{convex ? JointKind::kRound : JointKind::kApart, convex, end, start, 0, 0};
  if (vanishes(before, distance, tolerance) || vanishes(after, distance, tolerance)) return unsolved;
  const Moved a = moved(before.t1, before.curvature, distance),
              b = moved(after.t0, after.curvature, distance);
  const double steepest = std::max(std::abs(a.curvature), std::abs(b.curvature));
  // Along the tangents, up to where they meet: the distance by the tangent of half the turn.
  const double shift = distance * (cosine > 0 ? sine / (1 + cosine) : (1 - cosine) / sine);
  const bool opposed = cosine < 0 && std::abs(sine) < kParallel;
  // Lines meet on the bisector; arcs whose corner is too flat for their curvature to tell do so as well.
  if (!opposed && (steepest == 0 || (cosine > 0 && steepest * shift * shift < kUnit * std::abs(distance)))) {
    const Vec q = (a.normal + b.normal) * (distance / 2) + (after.t0 - before.t1) * (shift / 2);
    return met(v, q, -shift * (before.curvature == 0 ? 1 : std::abs(a.curvature)),
               shift * (after.curvature == 0 ? 1 : std::abs(b.curvature)), convex);
  }
  if (steepest > 0) {
    // Seen from where the more curved one lies abeam of the vertex: a circle far smaller than the distance
    // keeps its digits there.
    const bool fromA = std::abs(a.curvature) >= std::abs(b.curvature);
    const Vec apart = (b.normal - a.normal) * distance;
    const TwoPlaces places = meet(locusOf(fromA ? Vec{} : -apart, a.normal, a.curvature),
                                  locusOf(fromA ? apart : Vec{}, b.normal, b.curvature));
    if (places.count == 2 && places.real) {
      const Vec q = places.at[sine > 0 ? 0 : 1];
      const Vec onA = fromA ? q : q + apart, onB = fromA ? q - apart : q;
      const double gained = advance(a, onA), given = advance(b, onB);
      const bool sound = convex ? gained >= 0 && given <= 0 : gained <= 0 && given >= 0;
      if (sound) return met(fromA ? end : start, q, gained, given, convex);
    }
  }
  return unsolved;
}

Joint firstJoint(const Piece& span, double distance) {
  const Vec at = span.start + leftOf(span.t0) * distance;
  return {JointKind::kEnd, false, at, at, 0, 0};
}

Joint lastJoint(const Piece& span, double distance) {
  const Vec at = span.end + leftOf(span.t1) * distance;
  return {JointKind::kEnd, false, at, at, 0, 0};
}

std::optional<BulgeVertex> rawPiece(const Piece& span, const Joint& from, const Joint& to, double distance,
                                    double tolerance) {
  const double least = 8 * tolerance;
  const double change = to.gained - from.given;
  const BulgeVertex at{{from.start.x, from.start.y}, span.bulge};
  if (span.curvature == 0) {
    if (!(sizeOf(span.end - span.start) + change > least)) return std::nullopt;
    return at;
  }
  const double radius = (1 - span.curvature * distance) / std::abs(span.curvature);
  const double turn = span.bulge > 0 ? 1 : -1;
  if (std::abs(change) < kSmallTurn && std::abs(span.bulge) < 1 && std::abs(span.bulge) > kSmallTurn) {
    if (!(sizeOf(to.end - from.start) > least)) return std::nullopt;
    return BulgeVertex{at.point, span.bulge + turn * (1 + span.bulge * span.bulge) * change / 4};
  }
  const double quarter = std::abs(std::atan(span.bulge)) + change / 4;
  if (!(4 * quarter * radius > least) || !(quarter < kPi / 2 - kSmallTurn)) return std::nullopt;
  return BulgeVertex{at.point, turn * std::tan(quarter)};
}

double roundBulge(const Joint& j, Vec v, double distance) {
  const Vec a = j.end - v, b = j.start - v;
  const double angle = std::abs(std::atan2(cross(a, b), dot(a, b)));
  return -std::copysign(std::tan(angle / 4), distance);
}

}  // namespace tarnex::offsets
