// Splines of the file: control points, knots, weights and fit points into a curve of the kernel.
// Knows the tags of one entity and repairs counts that lie; evaluates nothing.
#include <algorithm>
#include <cmath>

#include "host/dxf/entity_parser.h"

namespace tarnex {
namespace {

constexpr int kSplineClosed = 1, kSplinePeriodic = 2;
constexpr int kLargestDegree = 25;
constexpr double kPlanar = 1e-9;  // z differences of a plane spline in relation to its coordinates

// One control point of a spline with its weight multiplied in.
struct Weighted {
  double x, y, w;
};

// Knot insertion (Boehm): one more knot at u, the shape stays.
void insertKnot(int degree, std::vector<Weighted>& control, std::vector<double>& knots, double u) {
  const auto p = static_cast<std::size_t>(degree);
  const auto n = control.size();
  std::size_t k = p;
  while (k + 1 < n && knots[k + 1] <= u) ++k;
  std::vector<Weighted> out;
  out.reserve(n + 1);
  for (std::size_t i = 0; i <= n; ++i) {
    if (i + p <= k) {
      out.push_back(control[i]);
    } else if (i > k) {
      out.push_back(control[i - 1]);
    } else {
      const double span = knots[i + p] - knots[i];
      const double a = span > 0 ? (u - knots[i]) / span : 0;
      const Weighted &q = control[i], &r = control[i - 1];
      out.push_back({a * q.x + (1 - a) * r.x, a * q.y + (1 - a) * r.y, a * q.w + (1 - a) * r.w});
    }
  }
  control = std::move(out);
  knots.insert(knots.begin() + static_cast<std::ptrdiff_t>(k) + 1, u);
}

// A spline whose knots don't start and end in full multiplicity (periodic ones) as the same curve with such
// ends.
void clampEnds(NurbsCurve& c) {
  const auto p = static_cast<std::size_t>(c.degree);
  const double from = c.knots[p], to = c.knots[c.control.size()];
  if (!(from < to)) return;
  if (c.knots.front() == from && c.knots.back() == to) return;
  std::vector<Weighted> control;
  for (std::size_t i = 0; i < c.control.size(); ++i) {
    const double w = c.weights.empty() ? 1 : c.weights[i];
    control.push_back({c.control[i].x * w, c.control[i].y * w, w});
  }
  for (const double u : {from, to})
    for (auto m = std::count(c.knots.begin(), c.knots.end(), u); m < c.degree; ++m)
      insertKnot(c.degree, control, c.knots, u);
  const auto first =
      static_cast<std::size_t>(std::upper_bound(c.knots.begin(), c.knots.end(), from) - c.knots.begin()) -
      1;  // last knot at `from`
  const auto last = static_cast<std::size_t>(std::lower_bound(c.knots.begin(), c.knots.end(), to) -
                                             c.knots.begin());  // first knot at `to`
  const std::size_t begin = first - p, count = last - first + p;
  std::vector<double> knots(p + 1, from);
  for (std::size_t i = first + 1; i < last; ++i) knots.push_back(c.knots[i]);
  knots.insert(knots.end(), p + 1, to);
  c.control.clear();
  const bool rational = !c.weights.empty();
  c.weights.clear();
  for (std::size_t i = begin; i < begin + count && i < control.size(); ++i) {
    c.control.push_back({control[i].x / control[i].w, control[i].y / control[i].w});
    if (rational) c.weights.push_back(control[i].w);
  }
  c.knots = std::move(knots);
}

// Evenly spaced knots with full multiplicity at the ends.
std::vector<double> evenKnots(std::size_t control, int degree) {
  std::vector<double> knots(static_cast<std::size_t>(degree) + 1, 0.0);
  const std::size_t inner = control - static_cast<std::size_t>(degree) - 1;
  for (std::size_t i = 1; i <= inner; ++i) knots.push_back(static_cast<double>(i));
  knots.insert(knots.end(), static_cast<std::size_t>(degree) + 1, static_cast<double>(inner + 1));
  return knots;
}

// Why the curve can't be used; "" when it can, perhaps after a repair that `remark` tells.
std::string check(NurbsCurve& c, std::string& remark) {
  const std::size_t n = c.control.size();
  if (c.degree < 1 || c.degree > kLargestDegree)
    return "spline of degree " + std::to_string(c.degree) + ", it isn't used";
  if (n < static_cast<std::size_t>(c.degree) + 1) return "spline with too few control points, it isn't used";
  if (!c.weights.empty() && c.weights.size() != n) {
    remark =
        std::to_string(c.weights.size()) + " weights for " + std::to_string(n) + " control points, left out";
    c.weights.clear();
  }
  for (const double w : c.weights)
    if (!(w > 0)) return "spline with a weight of zero or less, it isn't used";
  if (c.knots.size() != n + static_cast<std::size_t>(c.degree) + 1) {
    remark = std::to_string(c.knots.size()) + " knots for " + std::to_string(n) +
             " control points, replaced by even ones";
    c.knots = evenKnots(n, c.degree);
  }
  if (!std::is_sorted(c.knots.begin(), c.knots.end())) return "spline whose knots go back, it isn't used";
  if (!(c.knots[static_cast<std::size_t>(c.degree)] < c.knots[n]))
    return "spline without a knot range, it isn't used";
  clampEnds(c);
  if (!isValid(Curve(c))) return "spline that can't be evaluated, it isn't used";
  return {};
}

}  // namespace

// What the tags say, before any of it is judged.
struct EntityParser::SplineTags {
  NurbsCurve curve;  // without control points
  std::vector<AcGePoint3d> control, fit;
  AcGeVector2d tangents[2];
  int flags = 0;
};

bool EntityParser::splinePoint(SplineTags& s) {
  const int code = tags_.code();
  std::vector<AcGePoint3d>& list = code % 10 == 0 ? s.control : s.fit;
  switch (code) {
    case 10:
    case 11:
      list.push_back({length(), 0, 0});
      return true;
    case 20:
    case 21:
      if (!list.empty()) list.back().y = length();
      return true;
    case 30:
    case 31:
      if (!list.empty()) list.back().z = length();
      return true;
    case 12:
    case 13:
      s.tangents[code - 12].x = number();
      return true;
    case 22:
    case 23:
      s.tangents[code - 22].y = number();
      return true;
    default:
      return false;
  }
}

std::unique_ptr<AcDbEntity> EntityParser::spline() {
  SplineTags s;
  while (body()) {
    if (splinePoint(s)) continue;
    switch (tags_.code()) {
      case 70:
        s.flags = static_cast<int>(tags_.integer());
        break;
      case 71:
        s.curve.degree = static_cast<int>(std::clamp(tags_.integer(), -1LL, 999LL));
        break;
      case 40:
        s.curve.knots.push_back(number());
        break;
      case 41:
        s.curve.weights.push_back(number());
        break;
      default:
        break;
    }
  }
  if (head_.cut || head_.notUsable) return nullptr;
  const std::vector<AcGePoint3d>& given = s.control.empty() ? s.fit : s.control;
  if (given.empty()) return missing("control points and fit points");
  double size = 0;
  for (const AcGePoint3d& p : given) {
    keptExtents_.add(p.flat());
    size = std::max({size, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
  }
  const bool plane = std::all_of(given.begin(), given.end(), [&](const AcGePoint3d& p) {
    return std::abs(p.z - given.front().z) <= kPlanar * size;
  });
  if (plane) return planeSpline(s, given.front().z);
  auto e = std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);
  e->setThreeDimensional(true);
  return e;
}

std::unique_ptr<AcDbEntity> EntityParser::planeSpline(SplineTags& s, double elevation) {
  std::vector<AcGePoint2d> points;
  for (const AcGePoint3d& p : s.fit) points.push_back(p.flat());
  for (const AcGePoint3d& p : s.control) s.curve.control.push_back(p.flat());
  std::string problem;
  if (s.control.empty()) {
    std::vector<AcGePoint2d> round = points;
    const bool closed = (s.flags & (kSplineClosed | kSplinePeriodic)) != 0;
    if (closed && !(round.front() == round.back())) round.push_back(round.front());
    const auto given = [](AcGeVector2d v) { return v.length() > 0 ? std::optional(v) : std::nullopt; };
    std::optional<NurbsCurve> through = nurbsThrough(round, given(s.tangents[0]), given(s.tangents[1]));
    if (through)
      s.curve = std::move(*through);
    else
      problem = "spline through fewer than two different points, it isn't used";
  } else {
    problem = check(s.curve, head_.remark);
  }
  if (problem.empty()) return std::make_unique<AcDbSpline>(std::move(s.curve), std::move(points), elevation);
  head_.remark = problem;
  return std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);
}

}  // namespace tarnex
