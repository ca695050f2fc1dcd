// Keeps the chains of the raw offset that a wire can walk, joins them and checks the result.
// Knows nothing of how strands are made and cut.
#include "host/geometry/offset_trim.h"

#include <algorithm>

#include "host/geometry/offset_cover.h"
#include "host/geometry/offset_start.h"
#include "host/geometry/offset_strands.h"

namespace tarnex::offsets {

namespace {

constexpr double kSnaps[] = {8, 64, 512};  // tolerances within which places are one
constexpr double kFinerSnaps[] = {2,
                                  0.5};  // of the arithmetic's own rounding, for throats of about that width
constexpr double kRoundings = 16;        // of one coordinate that a result adds up
constexpr double kSlack = 12;            // tolerances by which a result may be too near to its path
constexpr double kNarrow = 8;            // snaps within which a refusal is a narrow one
constexpr double kProbe = 2;             // snaps: what is narrower than this is no ground to walk on

struct Measures {
  double distance = 0, tolerance = 0, snap = 0;  // mm
  bool touches = false;  // the path touches itself, so that being far from it doesn't tell the side
};

class Trimming {
 public:
  Trimming(const Cover& cover, const Arrangement& a, const Measures& m)
      : cover_(cover),
        a_(a),
        distance_(m.distance),
        tolerance_(m.tolerance),
        snap_(m.snap),
        alwaysAskSide_(m.touches),
        closed_(cover.source().closed) {}

  std::optional<std::vector<PolylineCurve>> run() {
    if (!keepFree()) return std::nullopt;
    dropDoubles();
    std::vector<PolylineCurve> curves;
    if (!join(curves) || !sound(curves)) return std::nullopt;
    return curves;
  }

 private:
  using Walk = std::vector<Edge>;

  [[nodiscard]] const Edge& longest(const Chain& c) const {
    std::size_t best = c.first;
    double size = 0;
    for (std::size_t i = c.first; i < c.first + c.count; ++i) {
      const Vec chord = a_.edges[i].piece.end - a_.edges[i].piece.start;
      if (dot(chord, chord) > size) size = dot(chord, chord), best = i;
    }
    return a_.edges[best];
  }

  // Asked at two places, so that a chance contact at one of them is noticed; nothing when places differ.
  [[nodiscard]] std::optional<bool> isFree(const Chain& c) const {
    const Edge& e = longest(c);
    if (c.count == 1 && sizeOf(e.piece.end - e.piece.start) <= snap_ && c.from == c.to) return false;
    const bool free = isFreeAt(e, 0.381);
    if (free != isFreeAt(e, 0.724)) return std::nullopt;
    if (!free && (narrowlyRefused(e, 0.381) || narrowlyRefused(e, 0.724)) && freeSomewhere(c))
      return std::nullopt;
    return free;
  }

  // Asked a little beyond the edge, away from the path: chains that lie upon each other there see each other.
  [[nodiscard]] Vec probe(const Edge& e, double part) const {
    const Vec m = pointAt(e.piece, part);
    return m + normalAt(e.piece, m) * std::copysign(kProbe * snap_, distance_);
  }

  [[nodiscard]] bool isFreeAt(const Edge& e, double part) const {
    const Vec p = probe(e, part);
    const std::size_t span = a_.strands[e.strand].span;
    if (span != kNoSpan && cover_.nearNeighbours(p, span, 0)) return false;
    if (!cover_.farEnough(p, 0) || !cover_.offMitres(p)) return false;
    if (!closed_) return true;
    const bool ownGround = span != kNoSpan && abeam(cover_.source().spans[span], pointAt(e.piece, part));
    return (ownGround && !alwaysAskSide_) || cover_.insidePath(p) == inwards();
  }

  // Refused by so little that it may be a throat, narrow but open, on the way between wider ground.
  [[nodiscard]] bool narrowlyRefused(const Edge& e, double part) const {
    const Vec p = probe(e, part);
    const std::size_t span = a_.strands[e.strand].span;
    if (span != kNoSpan && cover_.nearNeighbours(p, span, kNarrow * snap_)) return false;
    return cover_.farEnough(p, kNarrow * snap_);
  }

  [[nodiscard]] bool freeSomewhere(const Chain& c) const {
    for (std::size_t i = c.first; i < c.first + c.count; ++i) {
      const Edge& e = a_.edges[i];
      if (sizeOf(e.piece.end - e.piece.start) <= kNarrow * snap_) continue;
      for (const double part : {0.04, 0.17, 0.29, 0.47, 0.61, 0.83, 0.96})
        if (isFreeAt(e, part)) return true;
    }
    return false;
  }

  [[nodiscard]] bool inwards() const {
    if (!orientation_) {
      std::vector<BulgeVertex> walk;
      for (const Piece& p : cover_.source().spans) walk.push_back({{p.start.x, p.start.y}, p.bulge});
      orientation_ = signedArea(walk) > 0 ? 1 : -1;
    }
    return *orientation_ * distance_ > 0;
  }

  bool keepFree() {
    for (std::size_t i = 0; i < a_.chains.size(); ++i) {
      const auto free = isFree(a_.chains[i]);
      if (!free) return false;
      if (*free) kept_.push_back(i);
    }
    return true;
  }

  // Of chains that lie upon each other between the same nodes one stays.
  void dropDoubles() {
    const auto ends = [this](std::size_t i) { return std::pair{a_.chains[i].from, a_.chains[i].to}; };
    std::stable_sort(kept_.begin(), kept_.end(), [&](auto i, auto j) { return ends(i) < ends(j); });
    std::vector<std::size_t> single;
    for (const std::size_t i : kept_) {
      bool doubled = false;
      for (std::size_t k = single.size(); k-- > 0 && ends(single[k]) == ends(i) && !doubled;)
        doubled = lieUponEachOther(a_.chains[single[k]], a_.chains[i]);
      if (!doubled) single.push_back(i);
    }
    kept_ = std::move(single);
  }

  [[nodiscard]] bool lieUponEachOther(const Chain& a, const Chain& b) const {
    const Vec m = pointAt(longest(a).piece, 0.5);
    for (std::size_t i = b.first; i < b.first + b.count; ++i)
      if (distanceTo(a_.edges[i].piece, m) <= 2 * snap_) return true;
    return false;
  }

  // Of the chains that leave `node`, not yet used, the one that turns most to the free side.
  [[nodiscard]] std::size_t onwards(std::size_t node, Vec arriving) const {
    const auto first =
        std::lower_bound(kept_.begin(), kept_.end(), node,
                         [this](std::size_t i, std::size_t n) { return a_.chains[i].from < n; });
    std::size_t best = kNoSpan;
    double most = 0;
    for (auto it = first; it != kept_.end() && a_.chains[*it].from == node; ++it) {
      if (used_[*it]) continue;
      const Vec leaving = a_.edges[a_.chains[*it].first].piece.t0;
      const double turn =
          std::atan2(cross(arriving, leaving), dot(arriving, leaving)) * (distance_ > 0 ? 1 : -1);
      if (best == kNoSpan || turn > most) best = *it, most = turn;
    }
    return best;
  }

  [[nodiscard]] const Edge& lastEdge(const Chain& c) const { return a_.edges[c.first + c.count - 1]; }

  bool join(std::vector<PolylineCurve>& curves) {
    used_.assign(a_.chains.size(), false);
    if (!closed_) {  // walks that begin where nothing arrives come first
      std::vector<char> arrives(a_.nodes.size(), false);
      for (const std::size_t i : kept_) arrives[a_.chains[i].to] = true;
      for (const std::size_t i : kept_)
        if (!arrives[a_.chains[i].from] && !used_[i]) curves.push_back(curveOf(walkFrom(i), false));
    }
    for (const std::size_t i : kept_) {
      if (used_[i]) continue;
      const Walk w = walkFrom(i);
      const bool ring = lastNode_ == a_.chains[i].from;
      if (!ring && closed_) return false;
      if (ring && worthless(w)) continue;
      curves.push_back(curveOf(w, ring));
    }
    return true;
  }

  Walk walkFrom(std::size_t start) {
    Walk w;
    w.reserve(a_.chains[start].count);
    for (std::size_t i = start; i != kNoSpan;) {
      used_[i] = true;
      const Chain& c = a_.chains[i];
      if (!cover_.farEnough(a_.edges[c.first].piece.start, kSlack * tolerance_)) near_ = true;
      for (std::size_t k = c.first; k < c.first + c.count; ++k) append(w, a_.edges[k]);
      lastNode_ = c.to;
      if (lastNode_ == a_.chains[start].from) break;
      i = onwards(lastNode_, lastEdge(c).piece.t1);
    }
    return w;
  }

  // Edges of one strand that follow each other become one again.
  void append(Walk& w, const Edge& e) const {
    if (!w.empty() && w.back().strand == e.strand && sizeOf(w.back().piece.end - e.piece.start) <= snap_) {
      const Piece& s = a_.strands[e.strand].piece;
      w.back().piece = partOf(s, w.back().piece.start, e.piece.end);
    } else {
      w.push_back(e);
    }
  }

  // Two-sided nothing: a ring that encloses no more than rounding.
  [[nodiscard]] bool worthless(const Walk& w) const {
    double length = 0;
    for (const Edge& e : w) length += lengthOf(e.piece);
    return std::abs(areaOf(w)) <= length * snap_;
  }

  static double areaOf(const Walk& w) {
    std::vector<BulgeVertex> walk;
    walk.reserve(w.size());
    for (const Edge& e : w) walk.push_back({{e.piece.start.x, e.piece.start.y}, e.piece.bulge});
    return signedArea(walk);
  }

  PolylineCurve curveOf(Walk w, bool ring) const {
    if (ring && w.size() > 1 && w.front().strand == w.back().strand &&
        sizeOf(w.back().piece.end - w.front().piece.start) <= snap_) {
      w.front().piece = partOf(a_.strands[w.front().strand].piece, w.back().piece.start, w.front().piece.end);
      w.pop_back();
    }
    PolylineCurve c;
    c.closed = ring;
    c.vertices.reserve(w.size() + 1);
    for (const Edge& e : w) c.vertices.push_back({{e.piece.start.x, e.piece.start.y}, e.piece.bulge});
    if (!ring) c.vertices.push_back({{w.back().piece.end.x, w.back().piece.end.y}, 0});
    return c;
  }

  [[nodiscard]] bool sound(const std::vector<PolylineCurve>& curves) const {
    if (near_) return false;
    int along = 0, against = 0;
    for (const PolylineCurve& c : curves) {
      if (!farEverywhere(c)) return false;
      if (!c.closed) continue;
      if (c.vertices.size() < 2) return false;
      (signedArea(c.vertices) * distance_ * (inwards() ? 1 : -1) > 0 ? along : against)++;
    }
    if (!closed_) return true;
    return inwards() ? against == 0 : along == 1;
  }

  [[nodiscard]] bool farEverywhere(const PolylineCurve& c) const {
    for (std::size_t i = 0; i < c.spanCount(); ++i) {
      const BulgeVertex &v = c.vertices[i], &w = c.vertices[i + 1 < c.vertices.size() ? i + 1 : 0];
      const Vec from{v.point.x, v.point.y}, to{w.point.x, w.point.y};
      if (!std::isfinite(from.x + from.y + v.bulge)) return false;
      const Vec m = (from + to) * 0.5 - leftOf(to - from) * (v.bulge / 2);
      if (!cover_.farEnough(m, kSlack * tolerance_)) return false;
    }
    return true;
  }

  const Cover& cover_;
  const Arrangement& a_;
  double distance_, tolerance_, snap_;
  bool alwaysAskSide_, closed_;
  mutable std::optional<int> orientation_;
  std::vector<std::size_t> kept_;  // chains, sorted by their first node
  std::vector<char> used_;
  std::size_t lastNode_ = 0;
  bool near_ = false;  // a node of the result is too near to the path
};

// How far from its own origin the offset reaches, mm; mitres may run far beyond the path.
double reach(const Source& s, const std::vector<Joint>& joints, double distance) {
  double most = std::abs(distance);
  for (const Joint& j : joints) most = std::max({most, std::abs(j.end.x), std::abs(j.end.y)});
  for (const Piece& p : s.spans) most = std::max({most, std::abs(p.start.x), std::abs(p.start.y)});
  return most;
}

// Places nearer than one of these are taken as one, mm. First what the drawing's own coordinates round to, so
// that what closes exactly does so; then what the arithmetic rounds to, for detail finer than that; then
// coarser ones.
std::vector<double> snapsToTry(double tolerance, double fine) {
  std::vector<double> snaps{kSnaps[0] * tolerance};
  if (fine < tolerance / 4) snaps.push_back(kSnaps[0] * fine);
  for (const double part : kFinerSnaps) snaps.push_back(part * fine);
  snaps.push_back(kSnaps[1] * tolerance);
  snaps.push_back(kSnaps[2] * tolerance);
  return snaps;
}

}  // namespace

std::optional<std::vector<PolylineCurve>> trimmedOffset(const Source& s, const std::vector<Joint>& joints,
                                                        double distance) {
  const Cover cover(s, joints, distance);
  const Contact contact = cover.pathWithItself();
  if (s.closed && contact == Contact::kCrosses) return std::nullopt;  // it has no inside that could be told
  std::vector<Joint> opened = joints;
  const auto strands = rawStrands(s, opened, distance);
  if (!strands) return std::nullopt;
  const double fine = kRoundings * std::numeric_limits<double>::epsilon() * reach(s, joints, distance);
  const double tolerance = std::max(s.tolerance, fine);
  for (const double snap : snapsToTry(tolerance, fine)) {
    const Arrangement a = arrange(*strands, s.closed, snap / 4, snap);
    auto curves = Trimming(cover, a, {distance, tolerance, snap, contact != Contact::kNone}).run();
    if (!curves) continue;
    beginNearStart(*curves, joints[0].end, snap);
    return curves;
  }
  return std::nullopt;
}

}  // namespace tarnex::offsets
