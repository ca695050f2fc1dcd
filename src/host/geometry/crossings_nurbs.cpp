// Points that two Bézier pieces share: halving with fat lines until the pieces can meet once, then Newton's
// method. Knows no other pairs.
#include <algorithm>

#include "host/geometry/pieces.h"

namespace tarnex::kernel {

namespace {

// A piece with its derivatives, about a common origin.
struct Jet {
  Homogeneous value, first, second;
};

struct Local {
  AcGeVector2d point, first, second;
};

Bernstein raisedDerivative(const Bernstein& f) {
  return f.size() < 2 ? Bernstein{0.0} : derivativeOf(f);
}

Homogeneous derivativeOf(const Homogeneous& h) {
  return {raisedDerivative(h.x), raisedDerivative(h.y), raisedDerivative(h.w)};
}

Jet jetOf(const Bezier& b, AcGePoint2d origin) {
  Jet jet;
  jet.value = homogeneous(b, origin);
  jet.first = derivativeOf(jet.value);
  jet.second = derivativeOf(jet.first);
  return jet;
}

Local evaluate(const Jet& j, double u) {
  const double w = valueAt(j.value.w, u), w1 = valueAt(j.first.w, u), w2 = valueAt(j.second.w, u);
  const auto vector = [u](const Homogeneous& h) { return AcGeVector2d{valueAt(h.x, u), valueAt(h.y, u)}; };
  Local at;
  at.point = vector(j.value) * (1 / w);
  at.first = (vector(j.first) - at.point * w1) * (1 / w);
  at.second = (vector(j.second) - at.first * (2 * w1) - at.point * w2) * (1 / w);
  return at;
}

// Part of a piece: its control points as vectors from the origin, and where it lies on the piece.
struct Part {
  Homogeneous form;
  double from, to;
  std::vector<AcGeVector2d> control;
};

Part partOf(Homogeneous form, double from, double to) {
  Part p{std::move(form), from, to, {}};
  for (std::size_t i = 0; i < p.form.w.size(); ++i) {
    p.control.push_back({p.form.x[i] / p.form.w[i], p.form.y[i] / p.form.w[i]});
  }
  return p;
}

// De Casteljau at u: `f` keeps the right part, the left one is returned.
Bernstein cut(Bernstein& f, double u) {
  Bernstein left;
  const std::size_t n = f.size();
  for (std::size_t level = 0; level < n; ++level) {
    left.push_back(f[0]);
    for (std::size_t i = 0; i + 1 < n - level; ++i) f[i] += u * (f[i + 1] - f[i]);
  }
  return left;
}

std::pair<Part, Part> halves(const Part& p, double at) {
  const double u = (at - p.from) / (p.to - p.from);
  Homogeneous right = p.form;
  Homogeneous left{cut(right.x, u), cut(right.y, u), cut(right.w, u)};
  return {partOf(std::move(left), p.from, at), partOf(std::move(right), at, p.to)};
}

// The other part lies wholly beside the strip about this part's chord.
bool besideFatLine(const Part& a, const Part& b, double tolerance) {
  AcGeVector2d axis = (a.control.back() - a.control.front()).normal();
  if (axis == AcGeVector2d{}) axis = {1, 0};
  double lowA = 0, highA = 0, lowB = 1e300, highB = -1e300;
  for (const AcGeVector2d& p : a.control) {
    const double d = axis.crossProduct(p - a.control.front());
    lowA = std::min(lowA, d);
    highA = std::max(highA, d);
  }
  for (const AcGeVector2d& p : b.control) {
    const double d = axis.crossProduct(p - a.control.front());
    lowB = std::min(lowB, d);
    highB = std::max(highB, d);
  }
  return lowB > highA + tolerance || highB < lowA - tolerance;
}

bool boxesApart(const Part& a, const Part& b, double tolerance) {
  Extents2d boxA, boxB;
  for (const AcGeVector2d& p : a.control) boxA.add(AcGePoint2d{p.x, p.y});
  for (const AcGeVector2d& p : b.control) boxB.add(AcGePoint2d{p.x, p.y});
  return !boxA.grown(tolerance).overlaps(boxB);
}

// Directions that the part takes: within `spread` radians of `axis`.
struct Cone {
  AcGeVector2d axis;
  double spread = 0;
};

Cone coneOf(const Part& p) {
  Cone cone{(p.control.back() - p.control.front()).normal(), 0};
  for (std::size_t i = 0; i + 1 < p.control.size(); ++i) {
    const AcGeVector2d edge = p.control[i + 1] - p.control[i];
    if (!(edge == AcGeVector2d{})) cone.spread = std::max(cone.spread, cone.axis.angleTo(edge));
  }
  return cone;
}

struct Pair {
  double u, v;  // parameters on both pieces
};

class Search {
 public:
  Search(const Bezier& a, const Bezier& b, double tolerance)
      : origin_(a.control.front()), a_(jetOf(a, origin_)), b_(jetOf(b, origin_)), tolerance_(tolerance) {}

  std::vector<AcGePoint2d> run() {
    descend(partOf(a_.value, 0, 1), partOf(b_.value, 0, 1));
    return std::move(found_);
  }

 private:
  static constexpr int kBudget = 4000;       // pairs; a dozen or two is usual
  static constexpr double kSmallest = 1e-9;  // of the parameter; there a pair is decided by its distance
  static constexpr double kNarrow = 0.25;    // radians; parts that bend less are followed side by side
  static constexpr int kSteps = 16;          // along such a part

  // Signed distance of A(u) from B, and its foot's parameter.
  struct Gap {
    double u = 0, v = 0, size = 0;
    bool valid = false;  // the foot lies on the part or near it
  };

  void descend(const Part& a, const Part& b) {
    if (++visited_ > kBudget) return;
    if (boxesApart(a, b, tolerance_) || besideFatLine(a, b, tolerance_) || besideFatLine(b, a, tolerance_))
      return;
    const Cone ca = coneOf(a), cb = coneOf(b);
    const double between = std::min(ca.axis.angleTo(cb.axis), kPi - ca.axis.angleTo(cb.axis));
    const bool once = ca.spread + cb.spread < between;  // no common direction: at most one crossing
    const bool small = a.to - a.from < kSmallest && b.to - b.from < kSmallest;
    if (once || small) {
      if (const auto at = crossing(a, b)) return accept(*at);
      if (small) return;
    } else if (ca.spread < kNarrow && cb.spread < kNarrow) {
      return follow(a, b);
    }
    split(a, b);
  }

  void split(const Part& a, const Part& b) {
    const auto size = [](const Part& p) {
      double sum = 0;
      for (std::size_t i = 1; i < p.control.size(); ++i) sum += (p.control[i] - p.control[i - 1]).length();
      return sum;
    };
    const bool canA = a.to - a.from > kSmallest, canB = b.to - b.from > kSmallest;
    if (canA && (!canB || size(a) >= size(b))) {
      const auto [left, right] = halves(a, (a.from + a.to) / 2);
      descend(left, b);
      descend(right, b);
    } else {
      const auto [low, high] = halves(b, (b.from + b.to) / 2);
      descend(a, low);
      descend(a, high);
    }
  }

  // Newton's method from the middle of both parts.
  [[nodiscard]] std::optional<Pair> crossing(const Part& a, const Part& b) const {
    Pair at{(a.from + a.to) / 2, (b.from + b.to) / 2};
    const double slackA = 0.01 * (a.to - a.from), slackB = 0.01 * (b.to - b.from);
    for (int i = 0; i < 20; ++i) {
      const Local p = evaluate(a_, at.u), q = evaluate(b_, at.v);
      const AcGeVector2d apart = p.point - q.point;
      const double det = q.first.crossProduct(p.first);
      if (det == 0) break;
      const double du = q.first.crossProduct(apart) / det, dv = p.first.crossProduct(apart) / det;
      at = {std::clamp(at.u - du, a.from - slackA, a.to + slackA),
            std::clamp(at.v - dv, b.from - slackB, b.to + slackB)};
      if (!(std::abs(du) + std::abs(dv) > 1e-15)) break;
    }
    at = {std::clamp(at.u, 0.0, 1.0), std::clamp(at.v, 0.0, 1.0)};
    const AcGeVector2d apart = evaluate(a_, at.u).point - evaluate(b_, at.v).point;
    if (!(apart.length() <= tolerance_)) return std::nullopt;
    return at;
  }

  // The foot of A(u) on B by Newton's method from v.
  [[nodiscard]] Gap gapAt(double u, double v, const Part& b) const {
    const AcGeVector2d p = evaluate(a_, u).point;
    const double low = b.from - (b.to - b.from) / 2, high = b.to + (b.to - b.from) / 2;
    for (int i = 0; i < 12; ++i) {
      const Local q = evaluate(b_, v);
      const AcGeVector2d apart = q.point - p;
      double bend = q.first.dotProduct(q.first) + apart.dotProduct(q.second);
      if (!(bend > 0)) bend = q.first.dotProduct(q.first);
      const double step = apart.dotProduct(q.first) / bend;
      v = std::clamp(v - step, low, high);
      if (!(std::abs(step) > 1e-15)) break;
    }
    const Local q = evaluate(b_, v);
    return {u, v, q.first.normal().crossProduct(p - q.point), v > low && v < high};
  }

  // Parts that run side by side: the distance along A changes sign at a crossing and has a least value at a
  // contact.
  void follow(const Part& a, const Part& b) {
    const bool opposed = coneOf(a).axis.dotProduct(coneOf(b).axis) < 0;
    std::vector<Gap> gaps;
    for (int i = 0; i <= kSteps; ++i) {
      const double part = double(i) / kSteps, guess = opposed ? 1 - part : part;
      gaps.push_back(gapAt(a.from + (a.to - a.from) * part, b.from + (b.to - b.from) * guess, b));
      if (std::abs(gaps.back().size) <= tolerance_) acceptOn(b, gaps.back());
    }
    for (std::size_t i = 1; i < gaps.size(); ++i) {
      if (gaps[i - 1].valid && gaps[i].valid && gaps[i - 1].size * gaps[i].size < 0) {
        acceptOn(b, signChange(gaps[i - 1], gaps[i], b));
      }
      if (i + 1 < gaps.size()) nearContact(gaps[i - 1], gaps[i], gaps[i + 1], b);
    }
  }

  [[nodiscard]] Gap signChange(Gap from, Gap to, const Part& b) const {
    for (int i = 0; i < 60; ++i) {
      // Secant, but halving every third step so that the bracket closes in any case.
      const double secant = from.u - from.size * (to.u - from.u) / (to.size - from.size);
      const double u = i % 3 == 2 || !(secant > from.u && secant < to.u) ? (from.u + to.u) / 2 : secant;
      const Gap middle = gapAt(u, (from.v + to.v) / 2, b);
      if (std::abs(middle.size) < 1e-16 || !(u > from.u && u < to.u)) return middle;
      (middle.size * from.size > 0 ? from : to) = middle;
    }
    return std::abs(from.size) < std::abs(to.size) ? from : to;
  }

  // The distance is least in the middle of three: golden section to the least one, which may lie beyond zero.
  void nearContact(Gap from, const Gap& middle, Gap to, const Part& b) {
    if (!from.valid || !middle.valid || !to.valid) return;
    const double side = middle.size < 0 ? -1 : 1;
    if (side * from.size < side * middle.size || side * to.size < side * middle.size) return;
    constexpr double kGolden = 0.6180339887498949;
    const Gap first = from, last = to;
    Gap low = gapAt(to.u - (to.u - from.u) * kGolden, middle.v, b);
    Gap high = gapAt(from.u + (to.u - from.u) * kGolden, middle.v, b);
    for (int i = 0; i < 50 && side * low.size > -tolerance_ && side * high.size > -tolerance_; ++i) {
      if (side * low.size < side * high.size) {
        to = high;
        high = low;
        low = gapAt(to.u - (to.u - from.u) * kGolden, low.v, b);
      } else {
        from = low;
        low = high;
        high = gapAt(from.u + (to.u - from.u) * kGolden, high.v, b);
      }
    }
    const Gap least = side * low.size < side * high.size ? low : high;
    if (side * least.size < -tolerance_) {
      acceptOn(b, signChange(first, least, b));
      acceptOn(b, signChange(least, last, b));
    } else if (side * least.size <= tolerance_) {
      acceptOn(b, least);
    }
  }

  void acceptOn(const Part& b, const Gap& gap) {
    constexpr double kSlack = 1e-9;  // of the parameter
    if (gap.v >= b.from - kSlack && gap.v <= b.to + kSlack) accept({gap.u, gap.v});
  }

  void accept(Pair at) { found_.push_back(origin_ + evaluate(a_, at.u).point); }

  AcGePoint2d origin_;
  Jet a_, b_;
  double tolerance_;
  int visited_ = 0;
  std::vector<AcGePoint2d> found_;
};

}  // namespace

std::vector<AcGePoint2d> crossings(const Bezier& a, const Bezier& b, double tolerance) {
  return Search(a, b, tolerance).run();
}

}  // namespace tarnex::kernel
