// The search for a threading point inside a contour: a scan of twenty stations, not a medial axis.
// Knows the polyline alone.
#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"

namespace tarnex {

namespace {

// A span as scan lines cross it. An arc lies on one side of its chord.
struct ScanSpan {
  AcGePoint2d start, end;
  bool arc = false;
  double side = 0;  // of the arc: 1 left of the chord, -1 right
  SpanCircle circle;
  double radiusSquare = 0;
};

std::vector<ScanSpan> scanSpans(const PolylineCurve& c) {
  std::vector<ScanSpan> spans;
  spans.reserve(c.spanCount());
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const auto& a = c.vertices[i];
    const AcGePoint2d end = c.vertices[(i + 1) % c.vertices.size()].point;
    if (a.point == end) continue;
    ScanSpan s{a.point, end, a.bulge != 0, a.bulge > 0 ? -1.0 : 1.0, {}, 0};
    if (s.arc) s.circle = bulgeToCircle(a.point, end, a.bulge);
    s.radiusSquare = s.circle.radius * s.circle.radius;
    spans.push_back(s);
  }
  return spans;
}

// What the scan has found so far.
struct Scan {
  const PolylineCurve& contour;
  Curve curve;  // the contour once more, for the kernel
  std::vector<ScanSpan> spans;
  Extents2d box;
  ThreadPoint found;
  double best = 0;
  bool refined = false;
  std::vector<double> up, across;
  std::size_t nearestSpan = 0;

  // Where the contour meets the line x = at (or y = at), as the other coordinate, ascending, each place once.
  template <bool kVertical>
  void hits(double at, std::vector<double>& out) const {
    out.clear();
    const auto along = [](AcGePoint2d p) { return kVertical ? p.x : p.y; };
    const auto other = [](AcGePoint2d p) { return kVertical ? p.y : p.x; };
    for (const ScanSpan& s : spans) {
      const double d0 = along(s.start) - at, d1 = along(s.end) - at;
      if (!s.arc) {
        if (d0 == 0) out.push_back(other(s.start));
        if (d1 == 0) out.push_back(other(s.end));
        if ((d0 < 0 && d1 > 0) || (d0 > 0 && d1 < 0))
          out.push_back(other(s.start) + (other(s.end) - other(s.start)) * (d0 / (d0 - d1)));
        continue;
      }
      const double off = at - along(s.circle.centre), square = s.radiusSquare - off * off;
      if (square < 0) continue;
      const double half = std::sqrt(square);
      for (double v : {other(s.circle.centre) - half, other(s.circle.centre) + half}) {
        const AcGePoint2d p = kVertical ? AcGePoint2d{at, v} : AcGePoint2d{v, at};
        const double beside = (s.end - s.start).crossProduct(p - s.start) * s.side;
        if (beside >= -roundoff(s.radiusSquare)) out.push_back(v);
      }
    }
    std::sort(out.begin(), out.end());
    const double same = roundoff(std::max({std::abs(box.low.x), std::abs(box.low.y), std::abs(box.high.x),
                                           std::abs(box.high.y)})) *
                        16;
    out.erase(std::unique(out.begin(), out.end(), [&](double a, double b) { return b - a <= same; }),
              out.end());
  }

  // To the contour, where that is more than `enough`; else some value that isn't. The span that was nearest
  // last time mostly settles it.
  double distance(AcGePoint2d p, double enough) {
    double nearest = std::numeric_limits<double>::infinity();
    const std::size_t from = nearestSpan;
    for (std::size_t i = 0; i < spans.size() && nearest > enough * enough; ++i) {
      const std::size_t k = from + i < spans.size() ? from + i : from + i - spans.size();
      const double square = squaredDistance(spans[k], p);
      if (!(square < nearest)) continue;
      nearest = square;
      nearestSpan = k;
    }
    return std::sqrt(nearest);
  }

  static double square(AcGeVector2d v) { return v.dotProduct(v); }

  static double squaredDistance(const ScanSpan& s, AcGePoint2d p) {
    const AcGeVector2d chord = s.end - s.start, toP = p - s.start;
    if (!s.arc) {
      const double t = std::clamp(toP.dotProduct(chord) / square(chord), 0.0, 1.0);
      return square(toP - chord * t);
    }
    const AcGeVector2d out = p - s.circle.centre;
    const double away = std::sqrt(square(out));
    if (away > 0) {
      const AcGePoint2d foot = s.circle.centre + out * (s.circle.radius / away);
      if (chord.crossProduct(foot - s.start) * s.side >= 0)
        return (away - s.circle.radius) * (away - s.circle.radius);
    }
    return std::min(square(toP), square(p - s.end));
  }

  bool nearVertex(AcGePoint2d p) const {
    for (const auto& v : contour.vertices)
      if (v.point.distanceTo(p) <= kSamePoint) return true;
    return false;
  }

  // Half the longest horizontal chord that m lies on.
  double halfChordAcross(AcGePoint2d m) {
    hits<false>(m.y, across);
    double half = 0;
    for (std::size_t k = 0; k + 1 < across.size(); k += 2)
      if (across[k] < m.x && m.x < across[k + 1]) half = std::max(half, (across[k + 1] - across[k]) / 2);
    return half;
  }

  // The middle of the horizontal chord through m, when it lies farther from the contour than m.
  void centre(AcGePoint2d& m, double& away) {
    hits<false>(m.y, across);
    for (std::size_t k = 0; k + 1 < across.size(); k += 2) {
      if (!(across[k] < m.x && m.x < across[k + 1])) continue;
      const AcGePoint2d moved{(across[k] + across[k + 1]) / 2, m.y};
      const double d = distance(moved, away);
      if (!(d > away)) continue;
      refined = true;
      m = moved;
      away = d;
      return;
    }
  }

  // `half` is half the chord that m is the middle of: no point of it is farther from the contour.
  void offer(AcGePoint2d m, double half) {
    if (refined && half <= best && !(halfChordAcross(m) > best)) return;
    // How far a point is counts where it may be the best, and until one has moved.
    double away = distance(m, refined ? best : 0);
    centre(m, away);
    if (!(away > best)) return;
    const AcGePoint2d c = closestPoint(curve, m).point;
    if (nearVertex(c)) return;
    found = {m, c};
    best = m.distanceTo(c);
  }

  void station(double x) {
    hits<true>(x, up);
    for (std::size_t k = 0; k + 1 < up.size(); k += 2)
      offer({x, (up[k] + up[k + 1]) / 2}, (up[k + 1] - up[k]) / 2);
  }
};

ThreadPoint lengthCentroid(const PolylineCurve& c) {
  SpanMoments sum;
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const auto& a = c.vertices[i];
    const auto& b = c.vertices[(i + 1) % c.vertices.size()];
    if (a.point == b.point) continue;
    const auto m = spanMoments(a.point, b.point, a.bulge);
    sum = {sum.length + m.length, sum.mx + m.mx, sum.my + m.my};
  }
  const AcGePoint2d t =
      sum.length > 0 ? AcGePoint2d{sum.mx / sum.length, sum.my / sum.length} : c.vertices.front().point;
  return {t, closestPoint(c, t).point};
}

}  // namespace

ThreadPoint findThreadPoint(const PolylineCurve& c) {
  if (c.vertices.empty()) return {};
  Scan scan{c, c, scanSpans(c), {}, {}, 0, false, {}, {}, 0};
  scan.box = extents(scan.curve);
  for (int i = 0; i < 20; ++i) scan.station(scan.box.low.x + (scan.box.high.x - scan.box.low.x) * i * 0.05);
  if (scan.refined && scan.found.thread.distanceTo(scan.found.contour) > 1.0) return scan.found;
  return lengthCentroid(c);
}

}  // namespace tarnex
