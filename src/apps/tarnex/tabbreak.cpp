// Where a tab begins.
// Knows one path; prompts are the job's.
#include "apps/tarnex/tabbreak.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "contour/geometrylibrary.h"
#include "toolpath/breakpoint.h"

namespace tarnex {

namespace {

constexpr double kOffCorner = 0.2;  // mm that a break keeps from a corner, where the span has them

struct Span {
  AcGePoint2d start, end;
  double bulge;
  double from, to;  // mm back from the entry point to its end, to its start
  [[nodiscard]] double length() const { return to - from; }
};

// From the entry point backward.
std::vector<Span> spansBack(const CToolPath& path) {
  const auto& v = path.polyline().vertices;
  std::vector<Span> spans;
  double at = 0;
  for (std::size_t i = v.size() - 1; i-- > 1;) {
    const double bulge = isArcBulge(v[i].bulge) ? v[i].bulge : 0;
    const AcGePoint2d start = v[i].point, end = v[i + 1].point;
    if (start == end) continue;
    const double length = spanLength(start, end, bulge);
    spans.push_back({start, end, bulge, at, at + length});
    at += length;
  }
  return spans;
}

AcGePoint2d pointOf(const Span& s, double back) {
  const double part = std::clamp((back - s.from) / s.length(), 0.0, 1.0);
  if (s.bulge == 0) return s.end + (s.start - s.end) * part;
  const AcGePoint2d centre = bulgeToCircle(s.start, s.end, s.bulge).centre;
  return AcGeMatrix3d::rotation(-4 * std::atan(s.bulge) * part, centre).apply(s.end);
}

// The exit move ends no nearer to the contour than it is long.
bool isClear(const CToolPath& path, AcGePoint2d p, double exit) {
  const auto found = breakAt(path, p, exit);
  if (!found) return false;
  PolylineCurve contour = path.polyline();
  contour.vertices.erase(contour.vertices.begin());
  const double way = found->ptBreakExit.distanceTo(p);
  return closestPoint(contour, found->ptBreakExit).distance > way - kSamePoint;
}

}  // namespace

AcGePoint2d tabBreakOf(const CToolPath& path, const TabWish& wish) {
  const auto spans = spansBack(path);
  if (spans.empty()) return path.getPointAt(0);
  const double whole = spans.back().to, wanted = std::min(wish.length, whole / 3);
  std::vector<std::pair<double, AcGePoint2d>> straight;  // by how far from what is wanted
  for (const Span& s : spans) {
    if (s.bulge != 0 || s.to < wanted / 2 || s.from > std::min(2 * wanted, whole / 2)) continue;
    const double margin = std::min(kOffCorner, s.length() / 3);
    const double nearest = s.from + std::clamp(wish.stop + margin, margin, s.length() - margin);
    for (double back : {wanted, nearest, s.to - margin}) {
      back = std::clamp(back, nearest, s.to - margin);
      if (back >= wanted / 2 && back <= std::min(2 * wanted, whole / 2))
        straight.emplace_back(std::abs(back - wanted), pointOf(s, back));
    }
  }
  std::ranges::stable_sort(straight, {}, &std::pair<double, AcGePoint2d>::first);
  for (const auto& [off, p] : straight)
    if (isClear(path, p, wish.exit)) return p;
  if (!straight.empty()) return straight.front().second;
  const auto there = std::ranges::find_if(spans, [&](const Span& s) { return s.to >= wanted; });
  return pointOf(there == spans.end() ? spans.back() : *there, wanted);
}

}  // namespace tarnex
