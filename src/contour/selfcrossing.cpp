// Where contours cross, touch or run along themselves or each other.
// Pairs of spans come from a box tree; what two spans share is the curve kernel's answer and a few distances.
#include "contour/selfcrossing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_set>

#include "contour/geometrylibrary.h"
#include "host/database/boxtree.h"

namespace tarnex {

namespace {

// Nearer along a polyline is one place: micro-spans and rounded ends lie that close by nature.
constexpr double kApartAlong = 4 * kSamePoint;  // mm
// Neighbours that cross again must enclose something between; near a tangent joint rounding makes hits.
constexpr double kThinnestLens = kSamePoint / 100;  // mm
// Drawings that men make stay far below these; what goes beyond is cut short and said.
constexpr std::size_t kMostPairs = 20'000'000, kMostContacts = 100'000;

struct Span {
  AcGePoint2d start, end;
  double bulge = 0;
  std::uint32_t contour = 0;
  bool lastOfOpen = false;
  double from = 0, length = 0;  // mm along its contour
  [[nodiscard]] double to() const { return from + length; }
  [[nodiscard]] Curve curve() const { return spanCurve(start, end, bulge); }
};

struct Contact {
  std::uint32_t first, second;
  double along;  // mm, on the first
  AcGePoint2d at;
  bool operator<(const Contact& o) const {
    return first != o.first ? first < o.first : second != o.second ? second < o.second : along < o.along;
  }
};

// Corners of a shape that holds the span: the chord with the arc's height, or for more than half a circle
// the square about it.
std::array<AcGePoint2d, 4> hullOf(const Span& s) {
  const AcGeVector2d chord = s.end - s.start;
  if (s.bulge == 0) return {s.start, s.end, s.start, s.end};
  if (std::abs(s.bulge) <= 1) {
    const AcGeVector2d height = chord.perpVector() * (-s.bulge / 2);  // a positive bulge lies to the right
    return {s.start, s.end, s.start + height, s.end + height};
  }
  const AcGePoint2d m = midpoint(s.start, s.end);
  const double reach = chord.length() / 2 * std::abs(s.bulge);
  return {m + AcGeVector2d{reach, reach}, m + AcGeVector2d{-reach, reach}, m + AcGeVector2d{reach, -reach},
          m + AcGeVector2d{-reach, -reach}};
}

// A turn of the axes in which boxes hold the spans tightly: rows of slanting lines would all overlap.
struct Frame {
  double c = 1, s = 0;
  [[nodiscard]] Extents2d boxOf(const Span& span) const {
    Extents2d box;
    for (AcGePoint2d p : hullOf(span)) box.add(AcGePoint2d{c * p.x + s * p.y, c * p.y - s * p.x});
    return box;
  }
};

Frame tightestFrame(const std::vector<Span>& spans) {
  constexpr int kTurns = 12;  // of 7.5 degrees
  Frame best;
  double least = std::numeric_limits<double>::infinity();
  for (int i = 0; i < kTurns; ++i) {
    const double angle = kPi / 2 * i / kTurns;
    const Frame frame{std::cos(angle), std::sin(angle)};
    double area = 0;
    for (const Span& span : spans) {
      const Extents2d box = frame.boxOf(span);
      area += (box.high.x - box.low.x) * (box.high.y - box.low.y);
    }
    if (!(area < least * (1 - 1e-6))) continue;
    least = area;
    best = frame;
  }
  return best;
}

// All of b lies clear of the endless line under a.
bool clearOfLine(const Span& a, const Span& b) {
  if (a.bulge != 0) return false;
  const AcGeVector2d normal = (a.end - a.start).normal().perpVector();
  double low = std::numeric_limits<double>::infinity(), high = -low;
  for (AcGePoint2d p : hullOf(b)) {
    const double side = normal.dotProduct(p - a.start);
    low = std::min(low, side);
    high = std::max(high, side);
  }
  return low > 2 * kSamePoint || high < -2 * kSamePoint;
}

// Where two spans that don't meet come nearest to each other with both tangents parallel: a line and a
// circle at the foot of the centre, two circles on the line through their centres.
void nearestApproach(const Span& a, const Span& b, std::vector<AcGePoint2d>& points) {
  if (a.bulge == 0 && b.bulge == 0) return;
  if (a.bulge == 0) return nearestApproach(b, a, points);
  const SpanCircle circle = bulgeToCircle(a.start, a.end, a.bulge);
  AcGeVector2d towards;
  if (b.bulge == 0)
    towards = (b.end - b.start).normal().perpVector();
  else
    towards = (bulgeToCircle(b.start, b.end, b.bulge).centre - circle.centre).normal();
  const Curve ca = a.curve(), cb = b.curve();
  for (double side : {circle.radius, -circle.radius}) {
    const AcGePoint2d p = circle.centre + towards * side;
    if (closestPoint(ca, p).distance <= kSamePoint && closestPoint(cb, p).distance <= kSamePoint)
      points.push_back(p);
  }
}

class Search {
 public:
  explicit Search(std::span<const PolylineCurve> contours) {
    lengths_.resize(contours.size());
    closed_.resize(contours.size());
    for (std::uint32_t i = 0; i < contours.size(); ++i)
      if (isValid(contours[i])) addSpans(contours[i], i);
  }

  ContactSurvey run() {
    const Frame frame = tightestFrame(spans_);
    std::vector<BoxTree::Item> boxes;
    boxes.reserve(spans_.size());
    for (std::uint32_t i = 0; i < spans_.size(); ++i)
      boxes.push_back({frame.boxOf(spans_[i]).grown(kSamePoint), i});
    BoxTree tree;
    tree.build(boxes);
    std::vector<std::uint32_t> near;
    std::size_t pairs = 0;
    bool complete = true;
    for (std::uint32_t i = 0; i < spans_.size(); ++i) {
      near.clear();
      tree.query(boxes[i].box, near);
      for (std::uint32_t k : near)
        if (k > i) meet(spans_[i], spans_[k]);
      pairs += near.size();
      complete = i + 1 == spans_.size() || (pairs < kMostPairs && found_.size() < kMostContacts);
      if (!complete) break;
    }
    return {eachOnce(), complete};
  }

 private:
  void addSpans(const PolylineCurve& c, std::uint32_t contour) {
    double along = 0;
    const auto& v = c.vertices;
    const std::size_t count = c.spanCount();
    for (std::size_t i = 0; i < count; ++i) {
      Span s{v[i].point, v[(i + 1) % v.size()].point, v[i].bulge, contour, false, along, 0};
      s.length = s.start == s.end ? 0 : spanLength(s.start, s.end, s.bulge);
      s.lastOfOpen = !c.closed && i + 1 == count;
      along += s.length;
      if (s.length > 0 && std::isfinite(s.length)) spans_.push_back(s);
    }
    lengths_[contour] = along;
    closed_[contour] = c.closed || v.front().point.distanceTo(v.back().point) <= kSamePoint;
  }

  // mm between two places on one contour, the shorter way round.
  [[nodiscard]] double apart(std::uint32_t contour, double a, double b) const {
    const double d = std::abs(a - b);
    return closed_[contour] ? std::min(d, std::abs(lengths_[contour] - d)) : d;
  }

  // a comes before b on their contour.
  [[nodiscard]] bool neighbours(const Span& a, const Span& b) const {
    return a.contour == b.contour && (apart(a.contour, a.to(), b.from) <= kApartAlong ||
                                      apart(a.contour, b.to(), a.from) <= kApartAlong);
  }

  void meet(const Span& a, const Span& b) {
    if (clearOfLine(a, b) || clearOfLine(b, a)) return;
    points_.clear();
    const bool beside = neighbours(a, b);
    if (beside)
      meetNeighbour(a, b);
    else
      meetOther(a, b);
    const Curve ca = a.curve(), cb = b.curve();
    bool any = false;
    for (AcGePoint2d p : points_) any = offer(a, ca, b, cb, p) || any;
    if (!beside || any) return;
    // There and back again has no vertex that lies elsewhere on the other.
    for (const Curve& c : {ca, cb}) offer(a, ca, b, cb, pointAtParam(c, (startParam(c) + endParam(c)) / 2));
  }

  bool offer(const Span& a, const Curve& ca, const Span& b, const Curve& cb, AcGePoint2d p) {
    const Closest onA = closestPoint(ca, p), onB = closestPoint(cb, p);
    if (!(onA.distance <= kSamePoint && onB.distance <= kSamePoint)) return false;
    const double alongA = a.from + distAtParam(ca, onA.param), alongB = b.from + distAtParam(cb, onB.param);
    if (a.contour == b.contour && apart(a.contour, alongA, alongB) <= kApartAlong) return false;
    if (a.contour == b.contour)
      found_.push_back({a.contour, b.contour, std::min(alongA, alongB), p});
    else if (a.contour < b.contour)
      found_.push_back({a.contour, b.contour, alongA, p});
    else
      found_.push_back({b.contour, a.contour, alongB, p});
    return true;
  }

  void meetOther(const Span& a, const Span& b) {
    points_ = intersect(a.curve(), b.curve(), Extend::kOnBothOperands);
    if (points_.empty()) nearestApproach(a, b, points_);
    // A vertex is the start of one span; the last one of an open polyline is an end alone.
    points_.insert(points_.end(), {a.start, b.start});
    if (a.lastOfOpen) points_.push_back(a.end);
    if (b.lastOfOpen) points_.push_back(b.end);
  }

  void meetNeighbour(const Span& a, const Span& b) {
    points_.insert(points_.end(), {a.start, a.end, b.start, b.end});
    if (a.bulge == 0 && b.bulge == 0) return;
    for (AcGePoint2d p : intersect(a.curve(), b.curve(), Extend::kOnBothOperands))
      if (std::max(heightOver(a, p), heightOver(b, p)) > kThinnestLens) points_.push_back(p);
  }

  // Height of the span's arc over the chord from its nearer end to p.
  static double heightOver(const Span& s, AcGePoint2d p) {
    if (s.bulge == 0) return 0;
    const double chord = std::min(p.distanceTo(s.start), p.distanceTo(s.end));
    return chord * chord / (8 * bulgeToCircle(s.start, s.end, s.bulge).radius);
  }

  std::vector<ContourContact> eachOnce() {
    std::stable_sort(found_.begin(), found_.end());
    std::vector<ContourContact> contacts;
    std::unordered_set<std::uint64_t> taken;
    for (std::size_t i = 0; i < found_.size(); ++i) {
      const Contact& c = found_[i];
      if (i > 0 && (c.first != found_[i - 1].first || c.second != found_[i - 1].second)) taken.clear();
      if (takePlace(taken, c.at)) contacts.push_back({c.first, c.second, c.at});
    }
    return contacts;
  }

  // False when the place or one beside it is taken already.
  static bool takePlace(std::unordered_set<std::uint64_t>& taken, AcGePoint2d p) {
    const double cell = 2 * kSamePoint;
    const auto number = [cell](double v) {
      return static_cast<std::int64_t>(std::clamp(std::floor(v / cell), -9e15, 9e15));
    };
    const auto key = [](std::int64_t x, std::int64_t y) {
      return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ull +
             static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4Full;
    };
    const std::int64_t x = number(p.x), y = number(p.y);
    for (std::int64_t dx = -1; dx <= 1; ++dx)
      for (std::int64_t dy = -1; dy <= 1; ++dy)
        if (taken.count(key(x + dx, y + dy)) != 0) return false;
    taken.insert(key(x, y));
    return true;
  }

  std::vector<Span> spans_;
  std::vector<double> lengths_;
  std::vector<bool> closed_;
  std::vector<AcGePoint2d> points_;
  std::vector<Contact> found_;
};

}  // namespace

ContactSurvey contourContacts(std::span<const PolylineCurve> contours) {
  return Search(contours).run();
}

std::vector<AcGePoint2d> selfCrossings(const PolylineCurve& c) {
  std::vector<AcGePoint2d> places;
  for (const auto& contact : contourContacts({&c, 1}).contacts) places.push_back(contact.at);
  return places;
}

}  // namespace tarnex
