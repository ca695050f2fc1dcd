// Asks of a place whether the offset may run there: distance to the path, the corners' mitres, the side of
// the path. Knows no pieces of the offset.
#include "host/geometry/offset_cover.h"

namespace tarnex::offsets {

namespace {

std::vector<Box> boxesOf(const std::vector<Piece>& pieces) {
  std::vector<Box> boxes;
  boxes.reserve(pieces.size());
  for (const Piece& p : pieces) boxes.push_back(boxOf(p));
  return boxes;
}

// What one piece adds to the winding number of its walk about q: its chord's crossing of the ray to the
// right, and a turn where q lies between chord and arc.
int windingOf(const Piece& p, Vec q) {
  int w = 0;
  const double side = cross(p.end - p.start, q - p.start);
  if ((p.start.y <= q.y) != (p.end.y <= q.y)) {
    if (p.start.y <= q.y && side > 0) ++w;
    if (p.start.y > q.y && side < 0) --w;
  }
  if (p.curvature == 0) return w;
  // A counter-clockwise arc lies right of its chord. The chord itself goes with the left side, as above.
  const bool beyondChord = p.bulge > 0 ? side <= 0 : side > 0;
  const Vec r = q - p.start;
  const double inCircle = dot(leftOf(p.t0), r) * p.curvature - p.curvature * p.curvature / 2 * dot(r, r);
  if (beyondChord && inCircle > 0) w += p.bulge > 0 ? 1 : -1;
  return w;
}

// The extension of a moved span from `from` to `to`, both on it.
Piece extension(const Piece& span, Vec from, Vec to, Vec tangent) {
  if (span.curvature == 0) return makePiece(from, to, 0);
  const Vec chord = to - from;  // lies half the sweep off the tangent
  return makePiece(from, to, std::tan(std::atan2(cross(tangent, chord), dot(tangent, chord)) / 2));
}

constexpr double kFlatCrossing = 1e-6;  // sine below which curves are taken to touch
constexpr double kBack = -0.999;        // cosine of a corner that all but turns back
constexpr double kSameEnd = 8;          // tolerances

bool crossAt(const Piece& a, const Piece& b, Vec q, double near) {
  for (const Vec end : {a.start, a.end, b.start, b.end})
    if (sizeOf(q - end) <= near) return false;
  return std::abs(cross(normalAt(a, q), normalAt(b, q))) > kFlatCrossing;
}

}  // namespace

Cover::Cover(const Source& s, const std::vector<Joint>& joints, double distance)
    : s_(s), joints_(joints), distance_(distance), spans_(boxesOf(s.spans)), mitreBoxes_({}) {
  std::vector<Box> boxes;
  for (std::size_t i = s.closed ? 0 : 1; i < s.spans.size(); ++i) {
    if (!hasMitre(i)) continue;
    const auto rim = mitreAt(i);
    Box box = boxOf(rim[0]);
    for (const Piece& p : rim) box.add(boxOf(p));
    boxes.push_back(box);
    mitres_.push_back(i);
  }
  mitreBoxes_ = BoxTree(std::move(boxes));
}

// One that reaches beyond the distance by more than rounding.
bool Cover::hasMitre(std::size_t joint) const {
  const Joint& j = joints_[joint];
  if (j.kind != JointKind::kMeet || !j.convex) return false;
  const Piece &after = s_.spans[joint], &before = s_.spans[joint > 0 ? joint - 1 : s_.spans.size() - 1];
  const Vec q = j.end - after.start;
  return sizeOf(q) > std::abs(distance_) + s_.tolerance &&
         sizeOf(q - leftOf(before.t1) * distance_) > s_.tolerance &&
         sizeOf(q - leftOf(after.t0) * distance_) > s_.tolerance;
}

std::array<Piece, 4> Cover::mitreAt(std::size_t joint) const {
  const Piece &after = s_.spans[joint], &before = s_.spans[joint > 0 ? joint - 1 : s_.spans.size() - 1];
  const Vec v = after.start, tip = joints_[joint].end;
  const Vec e = v + leftOf(before.t1) * distance_, b = v + leftOf(after.t0) * distance_;
  return {makePiece(v, e, 0), extension(before, e, tip, before.t1),
          reversed(extension(after, b, tip, -after.t0)), makePiece(b, v, 0)};
}

bool Cover::farEnough(Vec p, double slack) const {
  const double least = std::abs(distance_) - slack;
  return spans_.eachIn(Box{p.x, p.y, p.x, p.y}.grown(least),
                       [&](std::size_t i) { return distanceTo(s_.spans[i], p) >= least; });
}

bool Cover::nearNeighbours(Vec p, std::size_t span, double slack) const {
  for (std::size_t i = span > 1 ? span - 2 : 0; i < std::min(span + 3, s_.spans.size()); ++i)
    if (distanceTo(s_.spans[i], p) < std::abs(distance_) - slack) return true;
  return false;
}

bool Cover::offMitres(Vec p) const {
  return mitreBoxes_.eachIn({p.x, p.y, p.x, p.y}, [&](std::size_t i) {
    int w = 0;
    for (const Piece& rim : mitreAt(mitres_[i])) w += windingOf(rim, p);
    return w == 0;
  });
}

bool Cover::insidePath(Vec p) const {
  int w = 0;
  const double far = std::numeric_limits<double>::infinity();
  spans_.eachIn({-far, p.y, far, p.y}, [&](std::size_t i) {
    w += windingOf(s_.spans[i], p);
    return true;
  });
  return w != 0;
}

Contact Cover::pathWithItself() const {
  const double near = kSameEnd * s_.tolerance;
  Contact contact = Contact::kNone;
  const auto note = [&](const Piece& a, const Piece& b, Vec q) {
    contact = crossAt(a, b, q, near) ? Contact::kCrosses : Contact::kTouches;
  };
  spans_.eachPair([&](std::size_t i, std::size_t j) {
    const bool follows = s_.next(i) == j, precedes = s_.next(j) == i;
    if (follows && precedes) return true;
    const Piece &a = s_.spans[precedes ? j : i], &b = s_.spans[precedes ? i : j];
    if (follows || precedes) {
      if (dot(a.t1, b.t0) < kBack) contact = Contact::kTouches;
      const auto q = meetAgain(a, b, s_.tolerance);
      if (q && sizeOf(*q - b.start) > near) note(a, b, *q);
    } else {
      const Meetings m = meetings(a, b, s_.tolerance);
      for (int k = 0; k < m.count && contact != Contact::kCrosses; ++k)
        note(a, b, m.at[static_cast<std::size_t>(k)]);
    }
    return contact != Contact::kCrosses;
  });
  return contact;
}

}  // namespace tarnex::offsets
