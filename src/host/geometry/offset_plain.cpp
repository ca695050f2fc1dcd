// The quick road: most contours are offset by far less than their smallest feature, and there the raw offset
// is the answer. That is proven, not hoped: when every piece of a simple path keeps its direction and the raw
// offset is simple too, its winding number is that of the path plus the strips swept between both, so it
// bounds what no strip covers. Knows no trimming.
#include "host/geometry/offset_plain.h"

#include "host/geometry/offset_tree.h"

namespace tarnex::offsets {

namespace {

constexpr std::size_t kFewPieces = 24;  // up to here comparing all with all is quicker than a tree
constexpr double kOneCorner =
    1e-6;  // of the pieces' length: meetings so near to the shared corner are the corner
constexpr double kFlatTurn = 1e-7;  // rad
constexpr double kWideBulge = 0.6;  // an arc that may turn back to its neighbour

struct RawRing {
  std::vector<BulgeVertex> vertices;
  std::vector<std::size_t> spanOf;  // kNone at rounding arcs
  std::vector<Box> boxes;           // of the strip between a span and its offset
};
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

Vec placeOfVertex(const BulgeVertex& v) {
  return {v.point.x, v.point.y};
}

class PlainProof {
 public:
  PlainProof(const Source& s, const RawRing& ring) : s_(s), ring_(ring) {}

  [[nodiscard]] bool holds() const {
    const auto clear = [this](std::size_t i, std::size_t j) { return isClear(i, j); };
    const std::size_t n = ring_.boxes.size();
    if (n > kFewPieces) return BoxTree(ring_.boxes).eachPair(clear);
    for (std::size_t i = 0; i + 1 < n; ++i)
      for (std::size_t j = i + 1; j < n; ++j)
        if (ring_.boxes[i].meets(ring_.boxes[j]) && !isClear(i, j)) return false;
    return true;
  }

 private:
  [[nodiscard]] Piece rawAt(std::size_t i) const {
    const BulgeVertex& v = ring_.vertices[i];
    const BulgeVertex& w = ring_.vertices[i + 1 < ring_.vertices.size() ? i + 1 : 0];
    return makePiece(placeOfVertex(v), placeOfVertex(w), v.bulge);
  }

  // The boxes of strips i and j, i < j, meet; their curves don't.
  [[nodiscard]] bool isClear(std::size_t i, std::size_t j) const {
    const std::size_t a = ring_.spanOf[i], b = ring_.spanOf[j], n = ring_.boxes.size();
    if (j == i + 1) return neighboursClear(i, j);
    if (s_.closed && i == 0 && j == n - 1) return neighboursClear(j, i);
    if (!s_.closed) return false;  // an open path must not come near its other side either
    if (meetings(rawAt(i), rawAt(j), s_.tolerance).count > 0) return false;
    if (a == kNone || b == kNone || a + 1 == b || s_.next(b) == a) return true;
    return meetings(s_.spans[a], s_.spans[b], s_.tolerance).count == 0;
  }

  [[nodiscard]] bool neighboursClear(std::size_t i, std::size_t j) const {
    const std::size_t a = ring_.spanOf[i], b = ring_.spanOf[j];
    if (a == kNone || b == kNone) return meetOnlyThere(rawAt(i), rawAt(j));
    const Piece &before = s_.spans[a], &after = s_.spans[b];
    if (before.curvature == 0 && after.curvature == 0) return true;
    if (!s_.closed && std::max(std::abs(before.bulge), std::abs(after.bulge)) > kWideBulge) return false;
    if (dot(before.t1, after.t0) > 0 && std::abs(cross(before.t1, after.t0)) < kFlatTurn) return true;
    return meetOnlyThere(rawAt(i), rawAt(j)) && meetOnlyThere(before, after);
  }

  [[nodiscard]] bool meetOnlyThere(const Piece& before, const Piece& after) const {
    const double near = kOneCorner * (sizeOf(before.end - before.start) + sizeOf(after.end - after.start));
    const auto q = meetAgain(before, after, s_.tolerance);
    if (!q || sizeOf(*q - after.start) <= near + s_.tolerance) return true;
    return ring_.boxes.size() == 2 && s_.closed && sizeOf(*q - before.start) <= near;
  }

  const Source& s_;
  const RawRing& ring_;
};

// Nothing when a piece has lost its length.
std::optional<RawRing> rawRing(const Source& s, const std::vector<Joint>& joints, double distance) {
  RawRing ring;
  const std::size_t n = s.spans.size();
  ring.vertices.reserve(n + 2), ring.spanOf.reserve(n + 2), ring.boxes.reserve(n + 2);
  const auto addRound = [&](const Joint& j, Vec v) {
    const double bulge = roundBulge(j, v, distance);
    ring.vertices.push_back({{j.end.x, j.end.y}, bulge});
    ring.spanOf.push_back(kNone);
    ring.boxes.push_back(boxOf(j.end, j.start, bulge).grown(s.tolerance));
  };
  for (std::size_t i = 0; i < n; ++i) {
    const Joint &from = joints[i], &to = joints[s.closed ? s.next(i) : i + 1];
    const Piece& span = s.spans[i];
    const auto piece = rawPiece(span, from, to, distance, s.tolerance);
    if (!piece || !std::isfinite(piece->point.x + piece->point.y + piece->bulge)) return std::nullopt;
    ring.vertices.push_back(*piece);
    ring.spanOf.push_back(i);
    Box strip = boxOf(from.start, to.end, piece->bulge);
    strip.add(boxOf(span));
    ring.boxes.push_back(strip.grown(s.closed ? s.tolerance : s.tolerance + std::abs(distance) / 2));
    if (to.kind == JointKind::kRound) addRound(to, span.end);
  }
  if (!s.closed) ring.vertices.push_back({{joints.back().end.x, joints.back().end.y}, 0});
  return ring;
}

// A closed ring that starts with the offset of the first span's far side of a rounded corner is turned, so
// that it starts where the corner's rounding starts.
bool roundsAtStart(const Source& s, const std::vector<Joint>& joints) {
  return s.closed && joints[0].kind == JointKind::kRound;
}

}  // namespace

std::vector<Joint> solveJoints(const Source& s, double distance) {
  const std::size_t n = s.spans.size();
  std::vector<Joint> joints;
  joints.reserve(n + 1);
  joints.push_back(s.closed ? jointBetween(s.spans[n - 1], s.spans[0], distance, s.tolerance)
                            : firstJoint(s.spans[0], distance));
  for (std::size_t i = 1; i < n; ++i)
    joints.push_back(jointBetween(s.spans[i - 1], s.spans[i], distance, s.tolerance));
  if (!s.closed) joints.push_back(lastJoint(s.spans[n - 1], distance));
  return joints;
}

std::optional<PolylineCurve> plainOffset(const Source& s, const std::vector<Joint>& joints, double distance) {
  for (const Joint& j : joints)
    if (j.kind == JointKind::kApart) return std::nullopt;
  auto ring = rawRing(s, joints, distance);
  if (!ring || !PlainProof(s, *ring).holds()) return std::nullopt;
  if (roundsAtStart(s, joints))
    std::rotate(ring->vertices.begin(), ring->vertices.end() - 1, ring->vertices.end());
  return PolylineCurve{std::move(ring->vertices), s.closed};
}

}  // namespace tarnex::offsets
