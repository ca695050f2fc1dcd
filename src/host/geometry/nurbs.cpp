// NURBS: evaluation by de Boor's algorithm, pieces by polar forms, and what a NURBS answers.
// Knows no ellipses; shares the Bézier pieces with them.
#include <algorithm>

#include "host/geometry/kernel.h"
#include "host/geometry/smooth.h"

namespace tarnex::kernel {

namespace {

constexpr int kHighestDegree = 25;

struct Weighted {
  double x, y, w;
};
using Row = std::vector<Weighted>;

std::size_t degreeOf(const NurbsCurve& c) {
  return static_cast<std::size_t>(c.degree);
}
double weightOf(const NurbsCurve& c, std::size_t i) {
  return c.weights.empty() ? 1 : c.weights[i];
}

// What evaluation needs to stay within its arrays, whatever the numbers are.
bool sizesFit(const NurbsCurve& c) {
  return c.degree >= 1 && c.degree <= kHighestDegree && c.control.size() > degreeOf(c) &&
         c.knots.size() == c.control.size() + degreeOf(c) + 1 &&
         (c.weights.empty() || c.weights.size() == c.control.size());
}

// The knot interval, not empty, that holds u.
std::size_t intervalOf(const NurbsCurve& c, double u) {
  const auto first = c.knots.begin() + c.degree, last = c.knots.begin() + static_cast<long>(c.control.size());
  auto next = std::upper_bound(first, last, u);
  while (next - first > 1 && *next == *(next - 1)) --next;  // at the end: the last interval that isn't empty
  return static_cast<std::size_t>(next - c.knots.begin()) - 1;
}

// Control points that the interval k depends on, about `origin`.
Row controlRow(const NurbsCurve& c, std::size_t k, AcGePoint2d origin) {
  Row row;
  for (std::size_t i = k - degreeOf(c); i <= k; ++i) {
    const double w = weightOf(c, i);
    row.push_back({(c.control[i].x - origin.x) * w, (c.control[i].y - origin.y) * w, w});
  }
  return row;
}

// One step of de Boor's algorithm at u for the polynomial of interval k.
void step(const NurbsCurve& c, std::size_t k, Row& row, std::size_t level, double u) {
  const std::size_t p = degreeOf(c);
  for (std::size_t j = p; j >= level; --j) {
    const std::size_t i = k - p + j;
    const double a = (u - c.knots[i]) / (c.knots[i + p - level + 1] - c.knots[i]);
    row[j] = {row[j - 1].x + a * (row[j].x - row[j - 1].x), row[j - 1].y + a * (row[j].y - row[j - 1].y),
              row[j - 1].w + a * (row[j].w - row[j - 1].w)};
  }
}

AcGePoint2d originOf(const NurbsCurve& c, std::size_t k) {
  return c.control[k - degreeOf(c) / 2];
}

// The polar form of interval k's polynomial: `arguments` are as many as the degree.
Weighted polar(const NurbsCurve& c, std::size_t k, AcGePoint2d origin, const double* arguments) {
  Row row = controlRow(c, k, origin);
  for (std::size_t r = 1; r <= degreeOf(c); ++r) step(c, k, row, r, arguments[r - 1]);
  return row.back();
}

PointAndSlope evaluate(const NurbsCurve& c, double param) {
  const std::size_t p = degreeOf(c);
  if (!sizesFit(c)) return {};
  const double u = std::max(paramFrom(c), std::min(param, paramTo(c)));
  const std::size_t k = intervalOf(c, u);
  const AcGePoint2d origin = originOf(c, k);
  Row row = controlRow(c, k, origin);
  for (std::size_t r = 1; r < p; ++r) step(c, k, row, r, u);
  const double rate = static_cast<double>(p) / (c.knots[k + 1] - c.knots[k]);
  const Weighted before = row[p - 1], after = row[p];
  step(c, k, row, p, u);
  const Weighted v = row[p];
  const double x = v.x / v.w, y = v.y / v.w, dw = (after.w - before.w) * rate;
  return {{origin.x + x, origin.y + y},
          {((after.x - before.x) * rate - x * dw) / v.w, ((after.y - before.y) * rate - y * dw) / v.w}};
}

auto speedOf(const NurbsCurve& c) {
  return [&c](double u) {
    const AcGeVector2d d = evaluate(c, u).slope;
    return std::sqrt(d.dotProduct(d));
  };
}

double controlSize(const NurbsCurve& c) {
  double size = 0;
  for (const AcGePoint2d& p : c.control) size = std::max(size, sizeOf(p));
  return size;
}

bool knotsFit(const NurbsCurve& c) {
  const std::size_t p = degreeOf(c), n = c.control.size();
  if (!std::ranges::all_of(c.knots, [](double k) { return sane(k); })) return false;
  if (!std::ranges::is_sorted(c.knots) || !(c.knots[p] < c.knots[n])) return false;
  // An inner knot repeated more often than the degree would tear the curve.
  for (std::size_t i = p + 1; i + p < n; ++i) {
    if (c.knots[i] == c.knots[i + p] && c.knots[i] > c.knots[p] && c.knots[i] < c.knots[n]) return false;
  }
  return true;
}

}  // namespace

bool valid(const NurbsCurve& c) {
  if (!sizesFit(c)) return false;
  const auto usable = [](double w) { return w > 1 / kLargest && sane(w); };
  return std::ranges::all_of(c.control, [](AcGePoint2d p) { return sane(p); }) &&
         std::ranges::all_of(c.weights, usable) && knotsFit(c);
}

bool closed(const NurbsCurve& c) {
  return at(c, paramFrom(c)).distanceTo(at(c, paramTo(c))) <= contactTolerance(controlSize(c));
}

double paramFrom(const NurbsCurve& c) {
  return sizesFit(c) ? c.knots[degreeOf(c)] : 0;
}
double paramTo(const NurbsCurve& c) {
  return sizesFit(c) ? c.knots[c.control.size()] : 0;
}
AcGePoint2d at(const NurbsCurve& c, double param) {
  return evaluate(c, param).point;
}
AcGeVector2d slope(const NurbsCurve& c, double param) {
  return evaluate(c, param).slope;
}

std::vector<double> breaksOf(const NurbsCurve& c) {
  std::vector<double> breaks(c.knots.begin() + c.degree,
                             c.knots.begin() + static_cast<long>(c.control.size()) + 1);
  breaks.erase(std::unique(breaks.begin(), breaks.end()), breaks.end());
  return breaks;
}

std::vector<Bezier> piecesOf(const NurbsCurve& c) {
  std::vector<Bezier> pieces;
  const std::size_t p = degreeOf(c);
  std::vector<double> arguments(p);
  for (std::size_t k = p; k < c.control.size(); ++k) {
    if (!(c.knots[k] < c.knots[k + 1])) continue;
    Bezier b;
    b.from = c.knots[k];
    b.to = c.knots[k + 1];
    b.rational = !c.weights.empty();
    const AcGePoint2d origin = originOf(c, k);
    for (std::size_t i = 0; i <= p; ++i) {
      for (std::size_t r = 0; r < p; ++r) arguments[r] = r + i < p ? b.from : b.to;
      const Weighted v = polar(c, k, origin, arguments.data());
      b.control.push_back({origin.x + v.x / v.w, origin.y + v.y / v.w});
      b.weights.push_back(v.w);
    }
    // Neighbours share their joint to the last bit.
    if (!pieces.empty()) b.control.front() = pieces.back().control.back();
    pieces.push_back(std::move(b));
  }
  return pieces;
}

Extents2d box(const NurbsCurve& c) {
  Extents2d box;
  for (const Bezier& b : piecesOf(c)) addExtents(b, box);
  return box;
}

double stretchLength(const NurbsCurve& c, double from, double to) {
  return arcLength(speedOf(c), from, to);
}

double stretchParam(const NurbsCurve& c, double from, double to, double distance) {
  return paramAtLength(speedOf(c), from, to, distance);
}

double distTo(const NurbsCurve& c, double param) {
  const auto breaks = breaksOf(c);
  const double end = std::min(param, breaks.back());
  double sum = 0;
  for (std::size_t i = 0; i + 1 < breaks.size() && breaks[i] < end; ++i) {
    sum += stretchLength(c, breaks[i], std::min(end, breaks[i + 1]));
  }
  return sum;
}

double paramOf(const NurbsCurve& c, double distance) {
  const auto breaks = breaksOf(c);
  for (std::size_t i = 0; i + 1 < breaks.size(); ++i) {
    const double size = stretchLength(c, breaks[i], breaks[i + 1]);
    if (distance < size) return stretchParam(c, breaks[i], breaks[i + 1], distance);
    distance -= size;
  }
  return breaks.back();
}

Closest closest(const NurbsCurve& c, AcGePoint2d p, bool) {
  const AcGePoint2d start = at(c, paramFrom(c));
  Closest best{start, paramFrom(c), start.distanceTo(p)};
  improveClosest(piecesOf(c), p, best);
  return best;
}

Curve backwards(const NurbsCurve& c) {
  NurbsCurve back = c;
  std::ranges::reverse(back.control);
  std::ranges::reverse(back.weights);
  std::ranges::reverse(back.knots);
  const double turn = paramFrom(c) + paramTo(c);  // keeps the range of parameters
  for (double& k : back.knots) k = turn - k;
  return back;
}

std::optional<Curve> moved(const NurbsCurve& c, const AcGeMatrix3d& m) {
  NurbsCurve image = c;
  for (AcGePoint2d& p : image.control) p = m.apply(p);
  return image;
}

NurbsCurve partOf(const NurbsCurve& c, double from, double to) {
  const std::size_t p = degreeOf(c);
  NurbsCurve part;
  part.degree = c.degree;
  part.knots.assign(p + 1, from);
  for (const double k : c.knots) {
    if (k > from && k < to) part.knots.push_back(k);
  }
  part.knots.insert(part.knots.end(), p + 1, to);
  const std::size_t count = part.knots.size() - p - 1;
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t j = i;  // any interval under the control point's basis function will do
    while (!(part.knots[j] < part.knots[j + 1])) ++j;
    const std::size_t k = intervalOf(c, (part.knots[j] + part.knots[j + 1]) / 2);
    const AcGePoint2d origin = originOf(c, k);
    const Weighted v = polar(c, k, origin, part.knots.data() + i + 1);
    part.control.push_back({origin.x + v.x / v.w, origin.y + v.y / v.w});
    if (!c.weights.empty()) part.weights.push_back(v.w);
  }
  return part;
}

Curve piece(const NurbsCurve& c, double from, double to) {
  const double first = paramFrom(c), last = paramTo(c);
  if (from < to) return partOf(c, from, to);
  if (!(from < last)) return partOf(c, first, to);
  if (!(to > first)) return partOf(c, from, last);
  // Over the start: the tail, then the head with its knots moved on and its weights brought to the joint's.
  NurbsCurve whole = partOf(c, from, last);
  const NurbsCurve head = partOf(c, first, to);
  whole.knots.pop_back();
  for (std::size_t i = degreeOf(c) + 1; i < head.knots.size(); ++i) {
    whole.knots.push_back(head.knots[i] + (last - first));
  }
  whole.control.insert(whole.control.end(), head.control.begin() + 1, head.control.end());
  if (!c.weights.empty()) {
    const double factor = whole.weights.back() / head.weights.front();
    for (std::size_t i = 1; i < head.weights.size(); ++i) whole.weights.push_back(head.weights[i] * factor);
  }
  return whole;
}

}  // namespace tarnex::kernel
