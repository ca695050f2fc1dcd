// What keeps loose curves from closing: gaps, free ends, branch points, curves over each other.
// Knows what the surveys tell; joins nothing.
#include "apps/tarnex/markopen.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "contour/geometrylibrary.h"
#include "host/database/boxtree.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

std::string layerOf(const AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* entity = drawing.peek<AcDbEntity>(id);
  return entity ? drawing.layerName(entity->layerId()) : std::string{};
}

// Places counted in cells of a few micrometres.
class PlaceCounts {
 public:
  int& at(AcGePoint2d p) { return cells_[{cell(p.x), cell(p.y)}]; }
  [[nodiscard]] int around(AcGePoint2d p) const {
    int sum = 0;
    for (std::int64_t x = cell(p.x) - 1; x <= cell(p.x) + 1; ++x)
      for (std::int64_t y = cell(p.y) - 1; y <= cell(p.y) + 1; ++y)
        if (const auto found = cells_.find({x, y}); found != cells_.end()) sum += found->second;
    return sum;
  }

 private:
  static std::int64_t cell(double v) {
    return static_cast<std::int64_t>(std::clamp(std::floor(v / (2 * kSamePoint)), -9e15, 9e15));
  }
  std::map<std::pair<std::int64_t, std::int64_t>, int> cells_;
};

struct FreeEnd {
  std::size_t chain = 0;
  AcGePoint2d at;
  std::size_t partner = 0;  // index of the nearest other end; its own: none near
  double distance = 0;      // mm, to the partner
  double second = 0;        // mm, to the one that is nearest after it
};

constexpr double kWidestGap = 2;       // mm; farther apart nobody meant them to meet
constexpr double kGapShare = 0.2;      // of the shorter chain
constexpr double kClearlyNearest = 2;  // times farther is the next one; in rows of ends nobody meant a pair
constexpr double kFar = std::numeric_limits<double>::infinity();
constexpr std::size_t kMostLooks = 20'000'000;

double widestGap(const OpenChain& a, const OpenChain& b) {
  return std::min(kWidestGap, kGapShare * std::min(a.length, b.length));
}

std::vector<FreeEnd> freeEnds(const std::vector<OpenChain>& open) {
  std::vector<FreeEnd> ends;
  for (std::size_t i = 0; i < open.size(); ++i)
    for (AcGePoint2d p : {open[i].from, open[i].to}) ends.push_back({i, p, ends.size(), kFar, kFar});
  return ends;
}

void offer(const std::vector<OpenChain>& open, std::vector<FreeEnd>& ends, std::size_t i, std::size_t k) {
  FreeEnd& end = ends[i];
  const double d = end.at.distanceTo(ends[k].at);
  if (d > kClearlyNearest * widestGap(open[end.chain], open[ends[k].chain])) return;
  const bool nearer = d < end.distance || (d == end.distance && k < end.partner);
  if (!nearer) {
    end.second = std::min(end.second, d);
    return;
  }
  end.second = end.distance;
  end.distance = d;
  end.partner = k;
}

bool isGap(const std::vector<OpenChain>& open, const std::vector<FreeEnd>& ends, std::size_t i) {
  const FreeEnd &end = ends[i], &other = ends[end.partner];
  return end.partner != i && other.partner == i &&
         end.distance <= widestGap(open[end.chain], open[other.chain]) &&
         kClearlyNearest * end.distance <= std::min(end.second, other.second);
}

void findPartners(const std::vector<OpenChain>& open, std::vector<FreeEnd>& ends) {
  std::vector<BoxTree::Item> items;
  for (std::uint32_t i = 0; i < ends.size(); ++i) items.push_back({{ends[i].at, ends[i].at}, i});
  BoxTree tree;
  tree.build(std::move(items));
  std::vector<std::uint32_t> near;
  std::size_t looks = 0;
  for (std::size_t i = 0; i < ends.size() && looks < kMostLooks; ++i) {
    near.clear();
    tree.query(Extents2d{ends[i].at, ends[i].at}.grown(kClearlyNearest * kWidestGap), near);
    looks += near.size();
    for (std::size_t k : near)
      if (k != i) offer(open, ends, i, k);
  }
}

}  // namespace

std::vector<LineCurve> findLooseMarks(const AcDbDatabase& drawing, const LooseSurvey& loose,
                                      std::vector<Finding>& findings) {
  PlaceCounts over, ends;
  std::vector<LineCurve> doubled;
  for (const auto& d : loose.doubled) {
    ++over.at(d.at);
    const auto* second = drawing.peek<AcDbCurve>(d.second);
    if (!second) continue;
    doubled.push_back({second->getStartPoint().flat(), second->getEndPoint().flat()});
    ++ends.at(doubled.back().start);
    ++ends.at(doubled.back().end);
  }
  for (const auto& d : loose.doubled) {
    int& count = over.at(d.at);
    if (count == 0) continue;
    findings.push_back({MarkKind::kDoubled,
                        layerOf(drawing, d.first),
                        {d.at},
                        count + 1.0,
                        0,
                        count == 1 ? std::string("two curves lie over each other")
                                   : formatted("%d curves lie over each other", count + 1)});
    count = 0;
  }
  for (const auto& b : loose.branches)
    if (b.ends - ends.around(b.at) > 2)
      findings.push_back({MarkKind::kBranch,
                          layerOf(drawing, b.id),
                          {b.at},
                          static_cast<double>(b.ends),
                          0,
                          formatted("%d curve ends meet: which way a contour goes on is a choice", b.ends)});
  return doubled;
}

void findOpenMarks(const AcDbDatabase& drawing, std::vector<OpenChain> open,
                   const std::vector<LineCurve>& doubled, std::vector<Finding>& findings) {
  PlaceCounts middles, doubledEnds;
  for (const LineCurve& d : doubled) {
    ++middles.at(midpoint(d.start, d.end));
    ++doubledEnds.at(d.start);
    ++doubledEnds.at(d.end);
  }
  std::erase_if(open, [&](const OpenChain& c) {
    return middles.around(midpoint(c.from, c.to)) > 0 && doubledEnds.around(c.from) > 0 &&
           doubledEnds.around(c.to) > 0;
  });
  std::vector<FreeEnd> ends = freeEnds(open);
  findPartners(open, ends);
  std::vector<std::vector<AcGePoint2d>> left(open.size());
  for (std::size_t i = 0; i < ends.size(); ++i) {
    const std::size_t k = ends[i].partner;
    if (!isGap(open, ends, i)) {
      left[ends[i].chain].push_back(ends[i].at);
      continue;
    }
    if (k < i) continue;
    findings.push_back({MarkKind::kGap,
                        layerOf(drawing, open[ends[i].chain].id),
                        {midpoint(ends[i].at, ends[k].at)},
                        ends[i].distance,
                        0,
                        formatted("ends at %.3f,%.3f and %.3f,%.3f are %.4f mm apart", ends[i].at.x,
                                  ends[i].at.y, ends[k].at.x, ends[k].at.y, ends[i].distance)});
  }
  for (std::size_t i = 0; i < open.size(); ++i) {
    if (left[i].empty()) continue;
    const OpenChain& c = open[i];
    findings.push_back({MarkKind::kOpenChain, layerOf(drawing, c.id), left[i], c.length, 0,
                        formatted("open from %.3f,%.3f to %.3f,%.3f, %.3f mm long: not cut", c.from.x,
                                  c.from.y, c.to.x, c.to.y, c.length)});
  }
}

}  // namespace tarnex
