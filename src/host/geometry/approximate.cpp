// An ellipse as arcs, and a NURBS through points.
// Knows no tolerances of the trade; the drawing's own conversions are above it.
#include <algorithm>

#include "host/geometry/kernel.h"

namespace tarnex {

namespace {

// ---- an ellipse as arcs

constexpr double kFit = 0.001 * 0.95;  // of the minor half axis; the rest is for places between the samples
constexpr int kMostBiarcs = 500;       // in a quarter; ratios below a millionth come near it

// The quarter of an ellipse about the origin with half axes a (along x) and b, as biarcs.
class QuarterEllipse {
 public:
  QuarterEllipse(double a, double b) : a_(a), b_(b) {}

  // Vertices from the major towards the minor axis end, without the last. As few biarcs as the fit allows,
  // and then as good as that number allows.
  std::vector<BulgeVertex> arcs() {
    double low = 0, high = kFit;
    const std::size_t count = cover(high).size();
    for (int i = 0; i < 8; ++i) {
      const double fit = (low + high) / 2;
      (cover(fit).size() > count ? low : high) = fit;
    }
    std::vector<BulgeVertex> vertices;
    for (const Biarc& b : cover(high)) {
      vertices.push_back({b.first.start, b.first.bulge});
      vertices.push_back({b.second.start, b.second.bulge});
    }
    return vertices;
  }

 private:
  struct Arc {
    AcGePoint2d start, end;
    double bulge;
  };
  struct Biarc {
    Arc first, second;
  };

  [[nodiscard]] AcGePoint2d at(double t) const { return {a_ * std::cos(t), b_ * std::sin(t)}; }
  [[nodiscard]] AcGeVector2d tangent(double t) const {
    return AcGeVector2d{-a_ * std::sin(t), b_ * std::cos(t)}.normal();
  }

  // The two arcs with the tangents of both ends whose tangent lengths are equal.
  [[nodiscard]] Biarc biarc(double from, double to) const {
    const AcGePoint2d p = at(from), q = at(to);
    const AcGeVector2d t = tangent(from), s = tangent(to), v = q - p;
    // |v - d (t + s)| = 2 d, the middle of the joining tangent being the joint.
    const AcGeVector2d both = t + s;
    const double square = 2 * (1 - t.dotProduct(s)), along = v.dotProduct(both), size = v.dotProduct(v);
    const double d = size / (along + std::sqrt(along * along + square * size));
    const AcGePoint2d joint = midpoint(p + t * d, q - s * d);
    return {{p, joint, bulgeBetween(t, joint - p)}, {joint, q, bulgeBetween(q - joint, s)}};
  }

  // Half the sweep lies between a chord and the tangent at its end.
  static double bulgeBetween(AcGeVector2d from, AcGeVector2d to) {
    return std::tan(std::atan2(from.crossProduct(to), from.dotProduct(to)) / 2);
  }

  [[nodiscard]] bool fits(double from, double to, double fit) const {
    constexpr int kSamples = 16;
    const Biarc arcs = biarc(from, to);
    if (!(arcs.first.bulge > 0 && arcs.second.bulge > 0)) return false;  // an S, however flat, is no ellipse
    const auto first = kernel::spanElement(arcs.first.start, arcs.first.end, arcs.first.bulge);
    const auto second = kernel::spanElement(arcs.second.start, arcs.second.end, arcs.second.bulge);
    for (int i = 1; i < kSamples; ++i) {
      const AcGePoint2d p = at(from + (to - from) * i / kSamples);
      const auto& arc = kernel::fractionAt(first, p) <= 1 ? first : second;
      if (std::abs(kernel::signedDistance(arc, p)) > fit * b_) return false;
    }
    return true;
  }

  // Biarcs each of which reaches as far as the fit allows.
  [[nodiscard]] std::vector<Biarc> cover(double fit) const {
    std::vector<Biarc> list;
    double from = 0;
    while (from < kPi / 2) {
      double to = kPi / 2;
      if (list.size() < kMostBiarcs && !fits(from, to, fit)) {
        double low = from;
        for (int i = 0; i < 30; ++i) {
          const double middle = (low + to) / 2;
          (fits(from, middle, fit) ? low : to) = middle;
        }
        to = low > from ? low : to;
      }
      list.push_back(biarc(from, to));
      from = to;
    }
    return list;
  }

  double a_, b_;
};

// ---- a NURBS through points

// Slopes at the points of a piecewise cubic, per mm of chord, so that the second derivative is continuous.
class Interpolation {
 public:
  Interpolation(std::vector<AcGePoint2d> points, bool periodic) : p_(std::move(points)), periodic_(periodic) {
    t_.push_back(0);
    for (std::size_t i = 1; i < p_.size(); ++i) t_.push_back(t_.back() + p_[i - 1].distanceTo(p_[i]));
  }

  NurbsCurve through(std::optional<AcGeVector2d> start, std::optional<AcGeVector2d> end) {
    periodic_ ? solvePeriodic() : solveOpen(start, end);
    return curve();
  }

 private:
  struct Equation {  // below m[i-1] + mid m[i] + above m[i+1] = right
    double below = 0, mid = 1, above = 0;
    AcGeVector2d right;
  };

  [[nodiscard]] double step(std::size_t i) const { return t_[i + 1] - t_[i]; }
  [[nodiscard]] AcGeVector2d chord(std::size_t i) const { return (p_[i + 1] - p_[i]) * (1 / step(i)); }

  // Equal second derivatives of the stretches `before` and `after` where they join.
  [[nodiscard]] Equation inner(std::size_t before, std::size_t after) const {
    const double h = step(before), k = step(after);
    return {k, 2 * (h + k), h, (chord(before) * k + chord(after) * h) * 3};
  }

  void solveOpen(std::optional<AcGeVector2d> start, std::optional<AcGeVector2d> end) {
    const std::size_t n = p_.size();
    std::vector<Equation> rows(n);
    rows.front() = start ? Equation{0, 1, 0, start->normal()} : Equation{0, 2, 1, chord(0) * 3};
    rows.back() = end ? Equation{0, 1, 0, end->normal()} : Equation{1, 2, 0, chord(n - 2) * 3};
    for (std::size_t i = 1; i + 1 < n; ++i) rows[i] = inner(i - 1, i);
    m_ = solved(std::move(rows));
  }

  // The last point is the first. The two corner entries of the cyclic system come in by a second solution.
  void solvePeriodic() {
    const std::size_t n = p_.size() - 1;
    std::vector<Equation> rows(n);
    for (std::size_t i = 0; i < n; ++i) rows[i] = inner(i == 0 ? n - 1 : i - 1, i);
    const double corner = rows.front().below, other = rows.back().above, shift = -rows.front().mid;
    std::vector<Equation> second = rows;
    for (Equation& e : second) e.right = {};
    second.front().right = {shift, 0};
    second.back().right = {other, 0};
    for (auto* system : {&rows, &second}) {
      system->front().mid -= shift;
      system->back().mid -= corner * other / shift;
    }
    m_ = solved(std::move(rows));
    const std::vector<AcGeVector2d> z = solved(std::move(second));
    const AcGeVector2d part =
        (m_.front() + m_.back() * (corner / shift)) * (1 / (1 + z.front().x + z.back().x * corner / shift));
    for (std::size_t i = 0; i < n; ++i) m_[i] = m_[i] - part * z[i].x;
    m_.push_back(m_.front());
  }

  static std::vector<AcGeVector2d> solved(std::vector<Equation> rows) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const double f = rows[i].below / rows[i - 1].mid;
      rows[i].mid -= f * rows[i - 1].above;
      rows[i].right = rows[i].right - rows[i - 1].right * f;
    }
    std::vector<AcGeVector2d> m(rows.size());
    for (std::size_t i = rows.size(); i-- > 0;) {
      const AcGeVector2d after = i + 1 < rows.size() ? m[i + 1] * rows[i].above : AcGeVector2d{};
      m[i] = (rows[i].right - after) * (1 / rows[i].mid);
    }
    return m;
  }

  // Control points are the cubics' polar forms at three neighbouring knots.
  [[nodiscard]] NurbsCurve curve() const {
    NurbsCurve c;
    c.degree = 3;
    c.knots.assign(3, 0.0);
    c.knots.insert(c.knots.end(), t_.begin(), t_.end());
    c.knots.insert(c.knots.end(), 3, t_.back());
    const std::size_t last = p_.size() - 2;
    for (std::size_t i = 0; i + 4 < c.knots.size(); ++i) {
      const std::size_t stretch = std::min(i < 3 ? 0 : i - 3, last);
      c.control.push_back(polar(stretch, {c.knots[i + 1], c.knots[i + 2], c.knots[i + 3]}));
    }
    c.control.front() = p_.front();
    c.control.back() = p_.back();
    return c;
  }

  [[nodiscard]] AcGePoint2d polar(std::size_t i, std::array<double, 3> at) const {
    const double h = step(i);
    std::array<AcGePoint2d, 4> b{p_[i], p_[i] + m_[i] * (h / 3), p_[i + 1] - m_[i + 1] * (h / 3), p_[i + 1]};
    for (std::size_t level = 0; level < 3; ++level) {
      const double u = (at[level] - t_[i]) / h;
      for (std::size_t k = 0; k + level < 3; ++k) b[k] = b[k] + (b[k + 1] - b[k]) * u;
    }
    return b[0];
  }

  std::vector<AcGePoint2d> p_;
  std::vector<double> t_;
  std::vector<AcGeVector2d> m_;
  bool periodic_;
};

}  // namespace

PolylineCurve ellipseAsArcs(AcGePoint2d centre, AcGeVector2d major, double ratio) {
  if (!isValid(EllipseCurve{centre, major, ratio, 0, 2 * kPi})) return {};
  const double a = major.length();
  const AcGeVector2d x = major * (1 / a), y = x.perpVector();
  const std::vector<BulgeVertex> quarter = QuarterEllipse(a, a * ratio).arcs();
  const std::size_t n = quarter.size();
  PolylineCurve out;
  out.closed = true;
  const auto add = [&](double px, double py, double bulge) {
    out.vertices.push_back({centre + x * px + y * py, bulge});
  };
  // The other quarters mirror the first, so the whole is symmetric to the last bit.
  const auto forward = [&](double sign) {
    for (const BulgeVertex& v : quarter) add(sign * v.point.x, sign * v.point.y, v.bulge);
  };
  const auto back = [&](double sign) {
    add(0, sign * a * ratio, quarter[n - 1].bulge);
    for (std::size_t i = n - 1; i > 0; --i)
      add(-sign * quarter[i].point.x, sign * quarter[i].point.y, quarter[i - 1].bulge);
  };
  forward(1);
  back(1);
  forward(-1);
  back(-1);
  return out;
}

std::optional<NurbsCurve> nurbsThrough(std::span<const AcGePoint2d> fitPoints,
                                       std::optional<AcGeVector2d> startTangent,
                                       std::optional<AcGeVector2d> endTangent) {
  double size = 0;
  for (const AcGePoint2d& p : fitPoints) {
    if (!kernel::sane(p)) return std::nullopt;
    size = std::max(size, kernel::sizeOf(p));
  }
  const double same = kernel::contactTolerance(size);
  std::vector<AcGePoint2d> points;
  for (const AcGePoint2d& p : fitPoints) {
    if (points.empty() || points.back().distanceTo(p) > same) points.push_back(p);
  }
  if (points.size() < 2) return std::nullopt;
  for (auto* tangent : {&startTangent, &endTangent}) {
    if (*tangent && !((*tangent)->length() > 0 && kernel::sane((*tangent)->length()))) tangent->reset();
  }
  const bool periodic =
      points.size() > 3 && points.front().distanceTo(points.back()) <= same && !startTangent && !endTangent;
  if (periodic) points.back() = points.front();
  return Interpolation(std::move(points), periodic).through(startTangent, endTangent);
}

}  // namespace tarnex
