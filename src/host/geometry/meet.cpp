// Where two pieces meet: touches, and the stretches along which they coincide.
// Knows one pair at a time.
#include <algorithm>

#include "host/geometry/pieces.h"

namespace tarnex::kernel {

namespace {

struct Candidate {
  double fraction;  // on a
  AcGePoint2d point;
  bool bound;           // an end of a or b
  bool linked = false;  // a and b coincide from here to the next candidate
};
using Candidates = std::vector<Candidate>;

void addOnce(Candidates& list, const Candidate& c, double tolerance) {
  const auto same = [&](const Candidate& other) { return other.point.distanceTo(c.point) <= tolerance; };
  if (std::ranges::none_of(list, same)) list.push_back(c);
}

// The ends of each that lie on the other.
Candidates boundsInCommon(const Piece& a, const Piece& b, double tolerance) {
  Candidates list;
  for (const int end : {0, 1}) {
    if (!isBound(a, end)) continue;
    const AcGePoint2d p = pointAt(a, end);
    if (fractionOn(b, p, tolerance)) addOnce(list, {static_cast<double>(end), p, true}, tolerance);
  }
  for (const int end : {0, 1}) {
    if (!isBound(b, end)) continue;
    const AcGePoint2d p = pointAt(b, end);
    if (const auto fraction = fractionOn(a, p, tolerance)) addOnce(list, {*fraction, p, true}, tolerance);
  }
  return list;
}

std::vector<AcGePoint2d> crossings(const Piece& a, const Piece& b, double tolerance) {
  const auto *ea = std::get_if<Element>(&a), *eb = std::get_if<Element>(&b);
  if (ea && eb) return crossings(*ea, *eb, tolerance);
  const auto bezierOf = [](const Piece& p) -> const Bezier& {
    const auto* arc = std::get_if<EllipseArc>(&p);
    return arc ? arc->bezier : std::get<Bezier>(p);
  };
  if (eb) return crossings(bezierOf(a), *eb, tolerance);
  if (ea) return crossings(bezierOf(b), *ea, tolerance);
  if (const auto* arc = std::get_if<EllipseArc>(&b)) return crossings(bezierOf(a), arc->ellipse, tolerance);
  if (const auto* arc = std::get_if<EllipseArc>(&a)) return crossings(bezierOf(b), arc->ellipse, tolerance);
  return crossings(bezierOf(a), bezierOf(b), tolerance);
}

// Whether a and b coincide between two fractions of a.
bool coincide(const Piece& a, const Piece& b, double from, double to, double tolerance) {
  for (const double part :
       {0.5, 0.3, 0.8}) {  // three: curves of higher order can meet in the middle by chance
    if (!fractionOn(b, pointAt(a, from + (to - from) * part), 2 * tolerance)) return false;
  }
  return true;
}

// Ascending along a, each with what it has in common with the next. On a whole circle the run that lies over
// its seam is brought together beyond one turn.
Candidates inRuns(const Piece& a, const Piece& b, Candidates list, double tolerance) {
  std::ranges::sort(list, {}, &Candidate::fraction);
  const std::size_t n = list.size();
  const double turn = turnOf(a);
  for (std::size_t i = 0; i < n; ++i) {
    const bool last = i + 1 == n;
    const double next = last ? list[0].fraction + turn : list[i + 1].fraction;
    list[i].linked = (!last || turn > 0) && coincide(a, b, list[i].fraction, next, tolerance);
  }
  if (list.back().linked) {
    auto first = std::ranges::find(list, false, &Candidate::linked);
    first = first == list.end() ? list.begin() : first + 1;
    for (auto c = list.begin(); c != first; ++c) c->fraction += turn;
    std::ranges::rotate(list, first);
  }
  list.back().linked = false;
  return list;
}

// Bounded at both ends a run is a stretch; otherwise it is one contact, however long it stays within
// tolerance.
void report(std::span<const Candidate> run, const Piece& a, double firstKey, Meetings& out) {
  const Candidate *first = nullptr, *last = nullptr;
  for (const Candidate& c : run) {
    if (!c.bound) continue;
    if (!first) first = &c;
    last = &c;
  }
  const auto touch = [firstKey](const Candidate& c) { return Touch{firstKey + c.fraction, c.point}; };
  if (first != last) {
    out.stretches.push_back({touch(*first), touch(*last)});
  } else if (first || run.size() == 1) {
    out.touches.push_back(touch(first ? *first : run.front()));
  } else {
    const double middle = (run.front().fraction + run.back().fraction) / 2;
    out.touches.push_back({firstKey + middle, pointAt(a, middle)});
  }
}

void reportAll(const Candidates& list, const Piece& a, double firstKey, Meetings& out) {
  for (std::size_t i = 0, from = 0; i < list.size(); ++i) {
    if (list[i].linked) continue;
    report(std::span(list).subspan(from, i + 1 - from), a, firstKey, out);
    from = i + 1;
  }
}

}  // namespace

void meet(const Piece& a, const Piece& b, double tolerance, double firstKey, Meetings& out) {
  Candidates list = boundsInCommon(a, b, tolerance);
  if (list.size() > 1) {
    // Curves that coincide along a stretch have no crossings besides.
    const Candidates runs = inRuns(a, b, list, tolerance);
    if (std::ranges::any_of(runs, &Candidate::linked)) return reportAll(runs, a, firstKey, out);
  }
  for (const AcGePoint2d p : crossings(a, b, tolerance)) {
    const auto onA = fractionOn(a, p, 4 * tolerance);
    if (onA && fractionOn(b, p, 4 * tolerance)) addOnce(list, {*onA, p, false}, 2 * tolerance);
  }
  if (list.size() == 1) return report(list, a, firstKey, out);
  if (!list.empty()) reportAll(inRuns(a, b, std::move(list), tolerance), a, firstKey, out);
}

}  // namespace tarnex::kernel
