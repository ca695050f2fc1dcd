// Branch points and doubled curves among loose curves, found by sorting keys: the cost is that of a sort.
// It only looks.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numeric>

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

// Stable, digit by digit: the cells of a drawing span few bits.
void sortByPart(std::vector<Keyed>& keys, std::int64_t Keyed::*part) {
  constexpr int kDigit = 11;  // bits; the counts of one digit stay in the nearest cache
  if (keys.empty()) return;
  const auto [low, high] = std::ranges::minmax(keys, {}, part);
  const auto above = [&, base = static_cast<std::uint64_t>(low.*part)](const Keyed& k) {
    return static_cast<std::uint64_t>(k.*part) - base;
  };
  std::vector<Keyed> sorted(keys.size());
  for (int shift = 0; shift < 64 && above(high) >> shift != 0; shift += kDigit) {
    const auto digit = [&](const Keyed& k) { return above(k) >> shift & ((1u << kDigit) - 1); };
    std::array<std::size_t, 1u << kDigit> to{};
    for (const Keyed& k : keys) ++to[digit(k)];
    std::exclusive_scan(to.begin(), to.end(), to.begin(), std::size_t{0});
    for (const Keyed& k : keys) sorted[to[digit(k)]++] = k;
    keys.swap(sorted);
  }
}

// By cell, within one by index. The keys come with ascending indices.
void sortByCell(std::vector<Keyed>& keys) {
  sortByPart(keys, &Keyed::b);
  sortByPart(keys, &Keyed::a);
}

struct LooseCurve {
  AcDbObjectId id;
  AcGePoint2d start, end, middle;
  double length;
  bool line;
};

// Any other open curve that may join a chain: only its ends count.
std::optional<LooseCurve> otherOpenCurve(const AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* curve = drawing.peek<AcDbCurve>(id);
  if (!curve || curve->isClosed()) return std::nullopt;
  const bool chainable = &curve->isA() == &AcDbPolyline::desc() || curve->isKindOf(AcDb2dPolyline::desc()) ||
                         curve->isKindOf(AcDbSpline::desc()) || curve->isKindOf(AcDbEllipse::desc());
  if (!chainable) return std::nullopt;
  const AcGePoint2d s = curve->getStartPoint().flat(), e = curve->getEndPoint().flat();
  return LooseCurve{
      id, s, e, curve->getPointAtDist(curve->length() / 2).value_or(solid(s)).flat(), curve->length(), false};
}

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
  return otherOpenCurve(drawing, id);
}

// One end of a curve in the order of its cell.
std::vector<Keyed> endKeys(const std::vector<LooseCurve>& curves) {
  std::vector<Keyed> keys;
  keys.reserve(curves.size() * 2);
  for (std::uint32_t i = 0; i < curves.size(); ++i)
    for (AcGePoint2d p : {curves[i].start, curves[i].end}) keys.push_back({cellOf(p.x), cellOf(p.y), i});
  sortByCell(keys);
  return keys;
}

// Curves that hang together, and what each group's ends are like.
class Components {
 public:
  explicit Components(std::size_t count) : parent_(count), free_(count), branched_(count) {
    for (std::uint32_t i = 0; i < count; ++i) parent_[i] = i;
  }
  std::uint32_t of(std::uint32_t i) {
    while (parent_[i] != i) i = parent_[i] = parent_[parent_[i]];
    return i;
  }
  void join(std::uint32_t a, std::uint32_t b) {
    a = of(a);
    b = of(b);
    if (a == b) return;
    parent_[b] = a;
    free_[a] += free_[b];
    branched_[a] = branched_[a] || branched_[b];
  }
  void addFreeEnds(std::uint32_t i, int ends) { free_[of(i)] += ends; }
  void markBranched(std::uint32_t i) { branched_[of(i)] = true; }
  // No branch, and ends that nothing meets: no closed contour can come of it.
  bool plainOpen(std::uint32_t i) { return free_[of(i)] > 0 && !branched_[of(i)]; }

 private:
  std::vector<std::uint32_t> parent_;
  std::vector<int> free_;
  std::vector<bool> branched_;
};

struct FreeEnd {
  std::uint32_t curve;
  AcGePoint2d at;
};

AcGePoint2d endInCell(const LooseCurve& c, const Keyed& key) {
  const bool atStart = cellOf(c.start.x) == key.a && cellOf(c.start.y) == key.b;
  return atStart ? c.start : c.end;
}

// Walks the places where ends meet: branch points, components, and ends that meet nothing.
void walkEnds(const std::vector<LooseCurve>& curves, Components& components, std::vector<FreeEnd>& freeEnds,
              std::vector<BranchPoint>& branches) {
  const auto keys = endKeys(curves);
  for (std::size_t i = 0; i < keys.size();) {
    std::size_t j = i;
    for (; j < keys.size() && keys[j].sameCell(keys[i]); ++j) components.join(keys[i].index, keys[j].index);
    if (j - i == 1) freeEnds.push_back({keys[i].index, endInCell(curves[keys[i].index], keys[i])});
    if (j - i > 2) {
      branches.push_back(
          {endInCell(curves[keys[i].index], keys[i]), static_cast<int>(j - i), curves[keys[i].index].id});
      components.markBranched(keys[i].index);
    }
    i = j;
  }
}

// Free ends in cells as wide as the gap: partners lie in the same or a neighbouring one.
class EndCells {
 public:
  EndCells(const std::vector<FreeEnd>& ends, double gap)
      : ends_(ends), gap_(gap), width_(std::max(gap, 1e-6)) {
    for (std::uint32_t i = 0; i < ends.size(); ++i)
      keys_.push_back({cell(ends[i].at.x), cell(ends[i].at.y), i});
    sortByCell(keys_);
  }

  template <class Each>
  void partnersOf(std::uint32_t i, const Each& each) const {
    const std::int64_t x = cell(ends_[i].at.x), y = cell(ends_[i].at.y);
    for (std::int64_t cx = x - 1; cx <= x + 1; ++cx) {
      auto at = std::lower_bound(keys_.begin(), keys_.end(), Keyed{cx, y - 1, 0});
      for (; at != keys_.end() && at->a == cx && at->b <= y + 1; ++at)
        if (at->index > i && ends_[i].at.distanceTo(ends_[at->index].at) <= gap_) each(at->index);
    }
  }

 private:
  [[nodiscard]] std::int64_t cell(double v) const {
    return static_cast<std::int64_t>(std::clamp(std::floor(v / width_), -9e15, 9e15));
  }
  const std::vector<FreeEnd>& ends_;
  double gap_, width_;
  std::vector<Keyed> keys_;
};

// Free ends that come within the gap of another free end are joined after all.
void joinAcrossGaps(std::vector<FreeEnd>& ends, double gap, Components& components) {
  const EndCells cells(ends, gap);
  std::vector<int> partners(ends.size());
  for (std::uint32_t i = 0; i < ends.size(); ++i)
    cells.partnersOf(i, [&](std::uint32_t j) {
      components.join(ends[i].curve, ends[j].curve);
      ++partners[i];
      ++partners[j];
    });
  std::vector<FreeEnd> left;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    if (partners[i] == 0) left.push_back(ends[i]);
    if (partners[i] > 1) components.markBranched(ends[i].curve);
  }
  ends = std::move(left);
}

void splitByChains(const std::vector<LooseCurve>& curves, Components& components,
                   const std::vector<FreeEnd>& ends, LooseSurvey& survey) {
  std::map<std::uint32_t, OpenChain> open;
  for (std::uint32_t i = 0; i < curves.size(); ++i) {
    if (!components.plainOpen(i)) {
      survey.joinable.push_back(curves[i].id);
      continue;
    }
    survey.notJoined.push_back(curves[i].id);
    OpenChain& chain = open[components.of(i)];
    if (chain.id.isNull()) chain.id = curves[i].id;
    chain.length += curves[i].length;
  }
  std::map<std::uint32_t, int> seen;
  for (const FreeEnd& end : ends) {
    const auto chain = open.find(components.of(end.curve));
    if (chain == open.end()) continue;
    (seen[chain->first]++ == 0 ? chain->second.from : chain->second.to) = end.at;
  }
  for (auto& [component, chain] : open) {
    chain.gap = chain.from.distanceTo(chain.to);
    survey.open.push_back(chain);
  }
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
  sortByCell(lines);
  std::vector<std::uint32_t> group;
  for (std::size_t i = 0; i < lines.size();) {
    group.clear();
    std::size_t j = i;
    while (j < lines.size() && lines[j].sameCell(lines[i])) group.push_back(lines[j++].index);
    if (group.size() > 1) overlapsOnCarrier(curves, group, doubled);
    i = j;
  }
  sortByCell(others);
  for (std::size_t i = 0; i + 1 < others.size(); ++i)
    if (others[i].sameCell(others[i + 1]) && sameCurve(curves[others[i].index], curves[others[i + 1].index]))
      doubled.push_back(
          {curves[others[i].index].id, curves[others[i + 1].index].id, curves[others[i].index].middle});
  return doubled;
}

}  // namespace

LooseSurvey surveyLoose(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& entities, double gap) {
  std::vector<LooseCurve> curves;
  curves.reserve(entities.size());
  for (AcDbObjectId id : entities)
    if (const auto curve = looseCurve(drawing, id)) curves.push_back(*curve);
  LooseSurvey survey;
  Components components(curves.size());
  std::vector<FreeEnd> freeEnds;
  walkEnds(curves, components, freeEnds, survey.branches);
  joinAcrossGaps(freeEnds, gap, components);
  for (const FreeEnd& end : freeEnds) components.addFreeEnds(end.curve, 1);
  splitByChains(curves, components, freeEnds, survey);
  survey.doubled = doubledCurves(curves);
  return survey;
}

}  // namespace tarnex
