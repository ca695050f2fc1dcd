// The walk along the turns.
// Knows rings; how far apart they lie was decided before.
#include "quillet/guide.h"

#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"

namespace tarnex {

namespace {

constexpr double kRoundoff = 1e-9;  // mm, and of a span

double headingOf(const BulgeVertex& from, AcGePoint2d to, bool atEnd) {
  return acutAngle(from.point, to) + (atEnd ? 2 : -2) * std::atan(from.bulge);
}

class GuideWalk {
 public:
  GuideWalk(const std::vector<Turn>& turns, const GuideRules& rules) : turns_(turns), rules_(rules) {}

  PolylineCurve run() {
    const std::vector<int> chain = mainChain();
    for (std::size_t k = chain.size(); k-- > 0;) {
      const Turn& turn = turnAt(chain[k]);
      if (inStartHole(turn)) continue;
      const AcGePoint2d joint = jointOf(turn);
      moveTo(joint);
      walk(turn, joint, k + 1 < chain.size() ? chain[k + 1] : -1);
    }
    return {std::move(guide_), false};
  }

 private:
  struct Detour {
    double param;  // beyond the start, in spans
    AcGePoint2d from, to;
    int turn;
  };

  [[nodiscard]] const Turn& turnAt(int i) const { return turns_[static_cast<std::size_t>(i)]; }

  // The turns around the inner point, from the outermost.
  std::vector<int> mainChain() const {
    std::vector<int> chain{0};
    for (bool deeper = true; deeper;) {
      deeper = false;
      for (int child : turnAt(chain.back()).inside)
        if (insideClosedWalk(turnAt(child).ring.vertices, rules_.inside)) {
          chain.push_back(child);
          deeper = true;
          break;
        }
    }
    return chain;
  }

  bool inStartHole(const Turn& turn) const {
    const std::size_t n = turn.ring.vertices.size();
    for (std::size_t half = 0; half < 2 * n; ++half)
      if (pointAtParam(turn.curve, static_cast<double>(half) / 2).distanceTo(rules_.inside) >
          rules_.startHole)
        return false;
    return true;
  }

  // Where the line of joints first meets the turn.
  AcGePoint2d jointOf(const Turn& turn) const {
    const auto hits = intersect(turn.curve, LineCurve{rules_.beside, rules_.inside}, Extend::kOnBothOperands);
    if (hits.empty()) return closestPoint(turn.curve, rules_.beside).point;
    return *std::min_element(hits.begin(), hits.end(), [&](AcGePoint2d a, AcGePoint2d b) {
      return a.distanceTo(rules_.beside) < b.distanceTo(rules_.beside);
    });
  }

  int directionOf(const Turn& turn) const {
    return rules_.alternate && turn.depth % 2 != 0 ? -rules_.direction : rules_.direction;
  }

  // Once around from p, with a detour to each turn inside but `done`.
  void walk(const Turn& turn, AcGePoint2d p, int done) {
    PolylineCurve ring = turn.ring;
    if (directionOf(turn) < 0) reversePolyline(ring);
    const Curve curve = ring;
    const double n = static_cast<double>(ring.vertices.size());
    const double start = closestPoint(curve, p).param;
    std::vector<Detour> detours;
    for (int child : turn.inside) {
      if (child == done || inStartHole(turnAt(child))) continue;
      const AcGePoint2d to = turnAt(child).ring.vertices.front().point;
      const Closest from = closestPoint(curve, to);
      const double ahead = std::fmod(from.param - start + n, n);
      detours.push_back({ahead, from.point, to, child});
    }
    std::sort(detours.begin(), detours.end(),
              [](const Detour& a, const Detour& b) { return a.param < b.param; });
    double at = 0;
    for (const Detour& detour : detours) {
      follow(turn, ring, curve, {start + at, start + detour.param});
      moveTo(detour.to);
      walk(turnAt(detour.turn), detour.to, -1);
      moveTo(detour.from);
      at = detour.param;
    }
    follow(turn, ring, curve, {start + at, start + n});
  }

  struct Stretch {
    double from, to;  // spans
  };
  void follow(const Turn& turn, const PolylineCurve& ring, const Curve& curve, Stretch s) {
    const std::size_t n = ring.vertices.size();
    for (double u = s.from; u < s.to - kRoundoff;) {
      const double span = std::floor(u + kRoundoff), end = std::min(span + 1, s.to);
      const auto i = static_cast<std::size_t>(span) % n;
      const double bulge = ring.vertices[i].bulge;
      const AcGePoint2d p = pointAtParam(curve, std::fmod(end, static_cast<double>(n)));
      if (guide_.back().point.distanceTo(p) > kRoundoff) {
        guide_.back().bulge = bulge == 0 ? 0 : std::tan(std::atan(bulge) * (end - u));
        guide_.push_back({p, 0});
      }
      if (end == span + 1) spurAt(turn, ring, (i + 1) % n);
      u = end;
    }
  }

  // Out to the turn around and back, where the corner is so sharp that the wire wouldn't reach into it.
  void spurAt(const Turn& turn, const PolylineCurve& ring, std::size_t i) {
    if (turn.parent < 0 || !turn.wholeStep) return;
    const std::size_t n = ring.vertices.size();
    const BulgeVertex &before = ring.vertices[(i + n - 1) % n], &here = ring.vertices[i];
    const double in = headingOf(before, here.point, true);
    const double out = headingOf(here, ring.vertices[(i + 1) % n].point, false);
    const double turned = std::abs(std::remainder(out - in, 2 * kPi));
    if (turned <= kPi - rules_.sharpest || turned >= kPi - kRoundoff) return;
    const double side = directionOf(turn) > 0 ? -kPi / 2 : kPi / 2;
    const AcGeVector2d outwards{std::cos(in + side) + std::cos(out + side),
                                std::sin(in + side) + std::sin(out + side)};
    const Curve& around = turnAt(turn.parent).curve;
    const double reach = 2 * closestPoint(around, here.point).distance / std::cos(turned / 2);
    const LineCurve ray{here.point, here.point + outwards.normal() * reach};
    const auto hits = intersect(around, ray, Extend::kOnBothOperands);
    if (hits.empty()) return;
    const AcGePoint2d tip = *std::min_element(hits.begin(), hits.end(), [&](AcGePoint2d a, AcGePoint2d b) {
      return a.distanceTo(here.point) < b.distanceTo(here.point);
    });
    moveTo(tip);
    moveTo(here.point);
  }

  void moveTo(AcGePoint2d p) {
    if (!guide_.empty() && guide_.back().point.distanceTo(p) <= kRoundoff) return;
    guide_.push_back({p, 0});
  }

  const std::vector<Turn>& turns_;
  const GuideRules& rules_;
  std::vector<BulgeVertex> guide_;
};

}  // namespace

PolylineCurve guideAlong(const std::vector<Turn>& turns, const GuideRules& rules) {
  return GuideWalk(turns, rules).run();
}

}  // namespace tarnex
