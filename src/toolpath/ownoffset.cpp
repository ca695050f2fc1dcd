// The system's own method of the offset.
// Knows one segment and the one before it; no loop is cut away.
#include "toolpath/ownoffset.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "host/geometry/offset.h"

namespace tarnex {

namespace {

constexpr double kVanished = 0.001;     // mm, an arc of this radius or less is gone
constexpr double kSameHeading = 0.001;  // rad, a straight segment goes on in the direction of the last
constexpr double kConcentric = 0.01;    // mm in x and in y between two centres
constexpr double kWholeCircle = 0.01;   // rad of a quarter sweep from a quarter of the full turn
constexpr AcGePoint2d kNoCentre{-99999.0, -99999.0};

bool isCentre(AcGePoint2d c) {
  return c.x != kNoCentre.x;
}
double signOf(double bulge) {
  return bulge < 0 ? -1.0 : 1.0;
}

// One offset element: a line, or an arc that runs counter-clockwise from `startAngle` to `endAngle` as the
// host's do.
struct Element {
  bool arc = false;
  AcGePoint2d s, t;  // host start and end
  AcGePoint2d centre;
  double radius = 0, startAngle = 0, endAngle = 0;

  static Element line(AcGePoint2d from, AcGePoint2d to) {
    Element e;
    e.s = from;
    e.t = to;
    return e;
  }
  static Element arcAbout(AcGePoint2d c, double r, double from, double to) {
    Element e;
    e.arc = true;
    e.centre = c;
    e.radius = r;
    e.setAngles(from, to);
    return e;
  }
  void setAngles(double from, double to) {
    startAngle = from;
    endAngle = to;
    s = acutPolar(centre, from, radius);
    t = acutPolar(centre, to, radius);
  }
  [[nodiscard]] Curve curve() const {
    if (!arc) return LineCurve{s, t};
    return ArcCurve{centre, radius, startAngle, normalizedAngle(endAngle - startAngle)};
  }
};

class OwnOffset {
 public:
  explicit OwnOffset(const OwnOffsetInput& input) : in_(input), v_(input.path) {}

  PathCurve run() {
    out_.vertices.push_back(v_[0].point);
    out_.bulges.push_back(0);
    centres_.push_back(kNoCentre);
    previous_ = Element::line(v_[0].point, v_[1].point);
    heading_ = acutAngle(v_[0].point, v_[1].point);
    for (std::size_t i = 1; i + 1 < v_.size(); ++i) segment(i);
    if (in_.closed)
      close();
    else
      end();
    recomputeBulges();
    out_.bulges.resize(out_.vertices.size() - 1);
    out_.bulges.push_back(0);
    return std::move(out_);
  }

 private:
  void segment(std::size_t i) {
    joined_ = false;
    const double b = v_[i].bulge;
    const auto element = b == 0 ? straight(i) : arc(i);
    if (!element) return;
    out_.bulges.push_back(b);
    if (!joined_) corner(i, *element);
    previous_ = *element;
  }

  std::optional<Element> straight(std::size_t i) {
    const AcGePoint2d p = v_[i].point, q = v_[i + 1].point;
    const double a = acutAngle(p, q), normal = a + in_.side * kPi * 0.5;
    start_ = acutPolar(p, normal, in_.distance);
    centres_.push_back(kNoCentre);
    const double turn = std::abs(a - heading_);
    if (std::min(turn, 2 * kPi - turn) < kSameHeading) {
      out_.vertices.push_back(start_);
      joined_ = true;
    }
    heading_ = a;
    return Element::line(start_, acutPolar(q, normal, in_.distance));
  }

  std::optional<Element> arc(std::size_t i) {
    const AcGePoint2d p = v_[i].point, q = v_[i + 1].point;
    const auto circle = bulgeToCircle(p, q, v_[i].bulge);
    const double g = v_[i].bulge > 0 ? 1 : -1;
    const double radius = circle.radius - g * in_.side * in_.distance;
    if (!(radius > kVanished)) return std::nullopt;
    const double from = acutAngle(circle.centre, p), to = acutAngle(circle.centre, q);
    const AcGePoint2d before = centres_.back();
    centres_.push_back(circle.centre);
    start_ = acutPolar(circle.centre, from, radius);
    heading_ = to + g * kPi * 0.5;
    if (heading_ > 2 * kPi) heading_ -= 2 * kPi;
    if (heading_ < 0) heading_ += 2 * kPi;
    if (isCentre(before) && std::abs(before.x - circle.centre.x) <= kConcentric &&
        std::abs(before.y - circle.centre.y) <= kConcentric) {
      out_.vertices.push_back(start_);
      joined_ = true;
    }
    return g > 0 ? Element::arcAbout(circle.centre, radius, from, to)
                 : Element::arcAbout(circle.centre, radius, to, from);
  }

  void corner(std::size_t i, const Element& next) {
    const double b = v_[i].bulge, before = v_[i - 1].bulge;
    auto points = intersect(previous_.curve(), next.curve(), Extend::kExtendBoth);
    if (points.empty()) {
      roundedCorner(i, next, before, b);
      return;
    }
    if (points.size() == 1)
      out_.vertices.push_back(points[0]);
    else if (b == 0 || before == 0)
      out_.vertices.push_back(nearerToStart(points));
    else
      out_.vertices.push_back(weighOnArc(points));
  }

  // The two elements pass each other: an arc about the source vertex joins them.
  void roundedCorner(std::size_t i, const Element& next, double before, double b) {
    out_.vertices.push_back(previous_.arc && before < 0 ? previous_.s : previous_.t);
    out_.vertices.push_back(b >= 0 ? next.s : next.t);
    out_.bulges.insert(out_.bulges.end() - 1, -static_cast<double>(in_.roundingSide));
    centres_.insert(centres_.end() - 1, v_[i].point);
  }

  AcGePoint2d nearerToStart(const std::vector<AcGePoint2d>& points) const {
    return points[1].distanceTo(start_) < points[0].distanceTo(start_) ? points[1] : points[0];
  }

  AcGePoint2d weighOnArc(const std::vector<AcGePoint2d>& points) {
    if (previous_.arc) {
      const double reach = 1.5 * in_.arcReach / previous_.radius;
      previous_.setAngles(previous_.startAngle - reach, previous_.endAngle + reach);
    }
    const Curve e = previous_.curve();
    const auto d0 = distAtPoint(e, points[0]), d1 = distAtPoint(e, points[1]);
    if (d0 && d1) return *d1 < *d0 ? points[1] : points[0];
    if (d0) return points[0];
    if (d1) return points[1];
    return nearerToStart(points);
  }

  void close() {
    if (out_.vertices.size() < 2) return;
    out_.vertices.push_back(out_.vertices[1]);
    const std::size_t n = v_.size();
    const BulgeVertex &first = v_[1], &second = v_[2], &last = v_[n - 2];
    if (first.bulge != 0 && last.bulge != 0) return;
    const AcGeVector2d out = first.point - second.point, in = last.point - v_[n - 1].point;
    if (!(out.angleTo(in) > kSameHeading)) return;
    const std::vector<BulgeVertex> around{first, {second.point, 0}, last, {first.point, 0}};
    const auto curves = offsetCurves(around, in_.side * in_.distance);
    if (!curves || curves->empty() || curves->front().vertices.empty()) return;
    out_.vertices[1] = out_.vertices.back() = curves->front().vertices.front().point;
  }

  void end() {
    const std::size_t n = v_.size();
    const AcGePoint2d p = v_[n - 2].point, q = v_[n - 1].point;
    const double b = v_[n - 2].bulge, a = in_.side * in_.distance;
    if (b == 0) {
      out_.vertices.push_back(acutPolar(q, acutAngle(p, q) + in_.side * kPi * 0.5, in_.distance));
      return;
    }
    const auto circle = bulgeToCircle(p, q, b);
    out_.vertices.push_back(
        acutPolar(circle.centre, acutAngle(circle.centre, q), circle.radius - signOf(b) * a));
  }

  // Every arc has new end points.
  void recomputeBulges() {
    const std::size_t count = std::min({out_.bulges.size(), centres_.size(), out_.vertices.size() - 1});
    for (std::size_t i = 1; i < count; ++i) {
      double& b = out_.bulges[i];
      if (b == 0 || !isCentre(centres_[i])) continue;
      const double g = b > 0 ? 1 : -1;
      const AcGePoint2d m = centres_[i];
      double x = g * (acutAngle(m, out_.vertices[i + 1]) - acutAngle(m, out_.vertices[i]));
      if (x < 0) x += 2 * kPi;
      const double q = std::abs(x) * 0.25;
      b = std::abs(q - kPi / 2) < kWholeCircle ? g : g * std::tan(q);
    }
  }

  const OwnOffsetInput& in_;
  const std::vector<BulgeVertex>& v_;
  PathCurve out_;
  std::vector<AcGePoint2d> centres_;  // of the arc that starts at each output vertex
  Element previous_;
  double heading_ = 0;
  AcGePoint2d start_;  // travel start of the new element before its corner is solved
  bool joined_ = false;
};

}  // namespace

PathCurve ownOffset(const OwnOffsetInput& input) {
  return OwnOffset(input).run();
}

}  // namespace tarnex
