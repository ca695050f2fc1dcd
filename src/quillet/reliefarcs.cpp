// Corner relief of a drawn contour: an arc in place of each corner that would keep a fillet.
// Knows polylines; a control moves its wire beside what comes out.
#include "quillet/reliefarcs.h"

#include <cmath>

#include "contour/geometrylibrary.h"
#include "toolpath/cornerrelief.h"

namespace tarnex {

namespace {

// The circle passes through the corner and cuts off both spans.
struct CornerArc {
  AcGePoint2d centre, leaves, joins;
};

// Nearest crossing of the circle and a span beside the corner, no farther than the span's middle: the other
// half is the next corner's.
std::optional<AcGePoint2d> crossing(const ArcCurve& circle, const Curve& span, AcGePoint2d corner) {
  const double half = length(span) / 2;
  const double at = distAtPoint(span, corner).value_or(0);
  std::optional<AcGePoint2d> nearest;
  double best = half;
  for (AcGePoint2d p : intersect(circle, span, Extend::kOnBothOperands)) {
    const auto along = distAtPoint(span, p);
    const double way = along ? std::abs(*along - at) : half;
    if (p.distanceTo(corner) <= kSamePoint || way >= best) continue;
    best = way;
    nearest = p;
  }
  return nearest;
}

// Bulge of the part of a span from p to q, turning as the span does.
double bulgeOfPart(const BulgeVertex& from, AcGePoint2d to, AcGePoint2d p, AcGePoint2d q) {
  if (from.bulge == 0) return 0;
  const auto circle = bulgeToCircle(from.point, to, from.bulge);
  return std::tan(sweepAngle(circle.centre, p, q, from.bulge > 0 ? 1 : -1) / 4);
}

std::optional<CornerArc> arcAt(const PolylineCurve& c, std::size_t i, int turn, const ReliefRadii& radii) {
  const auto& v = c.vertices;
  const BulgeVertex &before = v[i - 1], &here = v[i], &after = v[(i + 1) % v.size()];
  // Steps that stand in the contour are relief already.
  if (before.bulge == kMarkedBulge || here.bulge == kMarkedBulge) return std::nullopt;
  const double radius = before.bulge == 0 && here.bulge == 0 ? radii.straight : radii.arc;
  const auto step = cornerStep({before, here, after.point}, turn, radius);
  if (!step || !(step->length > kSamePoint)) return std::nullopt;
  const AcGeVector2d outward = (step->tip - here.point).normal();
  const ArcCurve circle{here.point - outward * radius, radius, 0, 2 * kPi};
  const auto leaves = crossing(circle, spanCurve(before.point, here.point, before.bulge), here.point);
  const auto joins = crossing(circle, spanCurve(here.point, after.point, here.bulge), here.point);
  if (!leaves || !joins) return std::nullopt;
  return CornerArc{circle.centre, *leaves, *joins};
}

class Reliever {
 public:
  Reliever(const PolylineCurve& contour, int turn, const ReliefRadii& radii, std::vector<int>& flags)
      : contour_(contour), turn_(turn), radii_(radii), flags_(flags) {
    result_.closed = true;
  }

  PolylineCurve run() {
    const auto& v = contour_.vertices;
    add(v[0].point, v[0].bulge, 0);
    for (std::size_t i = 1; i < v.size(); ++i) {
      const auto arc = arcAt(contour_, i, turn_, radii_);
      if (!arc) {
        add(v[i].point, v[i].bulge, 0);
        continue;
      }
      const AcGePoint2d next = v[(i + 1) % v.size()].point;
      // What is left of the span before, which begins where the corner before has let it.
      auto& last = result_.vertices.back();
      last.bulge = bulgeOfPart(v[i - 1], v[i].point, last.point, arc->leaves);
      add(arc->leaves, arcBulge(arc->centre, arc->leaves, v[i].point), 1);
      add(v[i].point, arcBulge(arc->centre, v[i].point, arc->joins), 0);
      add(arc->joins, bulgeOfPart(v[i], next, arc->joins, next), 1);
    }
    return std::move(result_);
  }

 private:
  // It turns as the corner does.
  [[nodiscard]] double arcBulge(AcGePoint2d centre, AcGePoint2d from, AcGePoint2d to) const {
    return std::tan(sweepAngle(centre, from, to, turn_) / 4);
  }
  void add(AcGePoint2d p, double bulge, int flag) {
    result_.vertices.push_back({p, bulge});
    flags_.push_back(flag);
  }

  const PolylineCurve& contour_;
  const int turn_;
  const ReliefRadii radii_;
  std::vector<int>& flags_;
  PolylineCurve result_;
};

}  // namespace

PolylineCurve withReliefArcs(const PolylineCurve& contour, int turn, const ReliefRadii& radii,
                             std::vector<int>& flags) {
  return Reliever(contour, turn, radii, flags).run();
}

}  // namespace tarnex
