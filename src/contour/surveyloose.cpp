// Branch points and doubled curves among loose curves, found by sorting keys: the cost is that of a sort.
// It only looks.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "contour/geometrylibrary.h"
#include "contour/survey.h"

namespace tarnex {

namespace {

// Cells are moved off the round values that drawings are full of, so that one place doesn't fall into two
// cells.
constexpr double kCell = 0.004, kCellShift = 0.00137;  // mm

std::int64_t cellOf(double v) {
  return static_cast<std::int64_t>(std::clamp(std::floor((v + kCellShift) / kCell), -9e15, 9e15));
}

struct Keyed {
  std::int64_t a, b;
  std::uint32_t index;
  bool operator<(const Keyed& o) const { return a != o.a ? a < o.a : b != o.b ? b < o.b : index < o.index; }
  [[nodiscard]] bool sameCell(const Keyed& o) const { return a == o.a && b == o.b; }
};

struct LooseCurve {
  AcDbObjectId id;
  AcGePoint2d start, end, middle;
  double length;
  bool line;
};

std::optional<LooseCurve> looseCurve(const AcDbDatabase& drawing, AcDbObjectId id) {
  if (const auto* line = drawing.peek<AcDbLine>(id)) {
    const AcGePoint2d s = line->getStartPoint().flat(), e = line->getEndPoint().flat();
    return LooseCurve{id, s, e, midpoint(s, e), s.distanceTo(e), true};
  }
  if (const auto* arc = drawing.peek<AcDbArc>(id)) {
    const double sweep = normalizedAngle(arc->endAngle() - arc->startAngle());
    const AcGePoint2d c = arc->center().flat();
    return LooseCurve{id,
                      acutPolar(c, arc->startAngle(), arc->radius()),
                      acutPolar(c, arc->endAngle(), arc->radius()),
                      acutPolar(c, arc->startAngle() + sweep / 2, arc->radius()),
                      sweep * arc->radius(),
                      false};
  }
  return std::nullopt;
}

std::vector<BranchPoint> branchPoints(const std::vector<LooseCurve>& curves) {
  std::vector<Keyed> keys;
  for (std::uint32_t i = 0; i < curves.size(); ++i)
    for (AcGePoint2d p : {curves[i].start, curves[i].end}) keys.push_back({cellOf(p.x), cellOf(p.y), i});
  std::sort(keys.begin(), keys.end());
  std::vector<BranchPoint> branches;
  for (std::size_t i = 0; i < keys.size();) {
    std::size_t j = i;
    while (j < keys.size() && keys[j].sameCell(keys[i])) ++j;
    if (j - i > 2) {
      const auto& c = curves[keys[i].index];
      const bool atStart = cellOf(c.start.x) == keys[i].a && cellOf(c.start.y) == keys[i].b;
      branches.push_back({atStart ? c.start : c.end, static_cast<int>(j - i)});
    }
    i = j;
  }
  return branches;
}

// The same ends, length and middle, in either direction.
bool sameCurve(const LooseCurve& a, const LooseCurve& b) {
  const auto same = [](AcGePoint2d p, AcGePoint2d q) { return p.distanceTo(q) <= kSamePoint; };
  return a.line == b.line && same(a.middle, b.middle) &&
         ((same(a.start, b.start) && same(a.end, b.end)) || (same(a.start, b.end) && same(a.end, b.start)));
}

// Lines on one carrier: by direction and distance from the origin.
Keyed carrierOf(const LooseCurve& c, std::uint32_t index) {
  AcGeVector2d d = (c.end - c.start).normal();
  if (d.x < 0 || (d.x == 0 && d.y < 0)) d = -d;
  const double across = d.crossProduct(c.middle - AcGePoint2d{});
  return {cellOf(std::atan2(d.y, d.x) * 1000), cellOf(across), index};
}

struct Stretch {
  double from, to;  // mm along the carrier
};
Stretch stretchOf(const LooseCurve& c, AcGeVector2d along) {
  const double a = along.dotProduct(c.start - AcGePoint2d{}), b = along.dotProduct(c.end - AcGePoint2d{});
  return {std::min(a, b), std::max(a, b)};
}

// Neighbours on one carrier that overlap by more than a point.
void overlapsOnCarrier(const std::vector<LooseCurve>& curves, std::vector<std::uint32_t>& group,
                       std::vector<DoubledCurve>& doubled) {
  AcGeVector2d along = (curves[group[0]].end - curves[group[0]].start).normal();
  std::sort(group.begin(), group.end(), [&](std::uint32_t a, std::uint32_t b) {
    return stretchOf(curves[a], along).from < stretchOf(curves[b], along).from;
  });
  std::uint32_t reaching = group[0];
  for (std::size_t k = 1; k < group.size(); ++k) {
    const Stretch before = stretchOf(curves[reaching], along), now = stretchOf(curves[group[k]], along);
    const double overlap = std::min(before.to, now.to) - now.from;
    if (overlap > kSamePoint) {
      const double middle = now.from + overlap / 2;
      doubled.push_back(
          {curves[reaching].id, curves[group[k]].id,
           closestPoint(LineCurve{curves[group[k]].start, curves[group[k]].end},
                        curves[group[k]].start +
                            along * (middle - along.dotProduct(curves[group[k]].start - AcGePoint2d{})))
               .point});
    }
    if (now.to > before.to) reaching = group[k];
  }
}

std::vector<DoubledCurve> doubledCurves(const std::vector<LooseCurve>& curves) {
  std::vector<DoubledCurve> doubled;
  std::vector<Keyed> lines, others;
  for (std::uint32_t i = 0; i < curves.size(); ++i) {
    if (curves[i].line && curves[i].length > kSamePoint)
      lines.push_back(carrierOf(curves[i], i));
    else
      others.push_back({cellOf(curves[i].middle.x), cellOf(curves[i].middle.y), i});
  }
  std::sort(lines.begin(), lines.end());
  std::vector<std::uint32_t> group;
  for (std::size_t i = 0; i < lines.size();) {
    group.clear();
    std::size_t j = i;
    while (j < lines.size() && lines[j].sameCell(lines[i])) group.push_back(lines[j++].index);
    if (group.size() > 1) overlapsOnCarrier(curves, group, doubled);
    i = j;
  }
  std::sort(others.begin(), others.end());
  for (std::size_t i = 0; i + 1 < others.size(); ++i)
    if (others[i].sameCell(others[i + 1]) && sameCurve(curves[others[i].index], curves[others[i + 1].index]))
      doubled.push_back(
          {curves[others[i].index].id, curves[others[i + 1].index].id, curves[others[i].index].middle});
  return doubled;
}

}  // namespace

LooseSurvey surveyLoose(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& entities) {
  std::vector<LooseCurve> curves;
  curves.reserve(entities.size());
  for (AcDbObjectId id : entities)
    if (const auto curve = looseCurve(drawing, id)) curves.push_back(*curve);
  return {branchPoints(curves), doubledCurves(curves)};
}

}  // namespace tarnex
