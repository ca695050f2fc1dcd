// All intersections of two curves: which pieces may meet, and one ordered list from what the pairs give.
// Knows pieces, not how two of them meet.
#include <algorithm>
#include <bit>

#include "host/geometry/pieces.h"
#include "host/geometry/spantree.h"

namespace tarnex::kernel {

SpanTree::SpanTree(std::vector<Extents2d> boxes) {
  if (boxes.empty()) return;
  leaves_ = std::bit_ceil(boxes.size());
  nodes_.resize(2 * leaves_);
  std::ranges::copy(boxes, nodes_.begin() + static_cast<long>(leaves_));
  for (std::size_t i = leaves_ - 1; i > 0; --i) {
    nodes_[i] = nodes_[2 * i];
    nodes_[i].add(nodes_[2 * i + 1]);
  }
}

namespace {

constexpr std::size_t kFewPieces = 64;  // up to here comparing every box is quicker than a tree

std::vector<Extents2d> boxesOf(const Pieces& pieces, double grow) {
  std::vector<Extents2d> boxes(pieces.count());
  for (std::size_t i = 0; i < boxes.size(); ++i) boxes[i] = pieces.box(i).grown(grow);
  return boxes;
}

// No part of `box` comes within `tolerance` of the line or circle under the element.
bool clearOf(const Element& e, const Extents2d& box, double tolerance) {
  const AcGePoint2d middle = midpoint(box.low, box.high);
  if (!sane(middle) || !(e.length > 0)) return false;
  const AcGeVector2d diagonal = box.high - box.low;
  return std::abs(signedDistance(e, middle)) > std::sqrt(diagonal.dotProduct(diagonal)) / 2 + tolerance;
}

Meetings meetAll(const Pieces& a, const Pieces& b, double tolerance) {
  Meetings found;
  Piece placeA, placeB;
  if (a.count() == 1 && b.count() == 1) {
    meet(a.piece(0, placeA), b.piece(0, placeB), tolerance, 0, found);
    return found;
  }
  const std::vector<Extents2d> boxes = boxesOf(b, tolerance);
  const bool few = b.count() <= kFewPieces || a.count() == 1;
  const SpanTree tree(few ? std::vector<Extents2d>{} : boxes);
  for (std::size_t i = 0; i < a.count(); ++i) {
    const Extents2d box = a.box(i);
    const Piece* piece = nullptr;
    const auto pair = [&](std::size_t j) {
      if (!piece) piece = &a.piece(i, placeA);
      const auto* e = std::get_if<Element>(piece);
      if (e && clearOf(*e, boxes[j], tolerance)) return;
      meet(*piece, b.piece(j, placeB), tolerance, static_cast<double>(i), found);
    };
    if (!few) {
      tree.search(box, pair);
      continue;
    }
    for (std::size_t j = 0; j < boxes.size(); ++j) {
      if (boxes[j].overlaps(box)) pair(j);
    }
  }
  return found;
}

bool samePlace(const Touch& a, const Touch& b, double tolerance) {
  return a.point.distanceTo(b.point) <= tolerance;
}

// Stretches of neighbouring pieces become one; around a closed curve also over its start.
std::vector<Stretch> joined(std::vector<Stretch> list, double tolerance) {
  std::ranges::sort(list, {}, [](const Stretch& s) { return s.from.key; });
  std::vector<Stretch> out;
  for (const Stretch& s : list) {
    const bool follows =
        !out.empty() && (s.from.key <= out.back().to.key || (s.from.key < out.back().to.key + 1e-6 &&
                                                             samePlace(s.from, out.back().to, tolerance)));
    if (!follows) {
      out.push_back(s);
    } else if (s.to.key > out.back().to.key) {
      out.back().to = s.to;
    }
  }
  return out;
}

// Curves of 1 mm radius that touch stay within the tolerance for about so long, mm: a shorter stretch is a
// contact that happens to lie where pieces join.
double shortestStretch(double tolerance) {
  return std::sqrt(tolerance);
}

// Ends of the stretches. A curve that coincides all the way round has none.
void addEnds(std::vector<Stretch> list, const Pieces& a, double tolerance, std::vector<Touch>& out) {
  list = joined(std::move(list), tolerance);
  if (list.empty()) return;
  const double turn = a.turn(), half = turn > 0 ? turn / 2 : 1;
  const bool overStart = turn > 0 && list.back().to.key >= list.front().from.key + turn - 1e-6 &&
                         samePlace(list.front().from, list.back().to, tolerance);
  const auto add = [&](Touch end) {
    if (a.closed() && end.key > turn) end.key -= turn;  // of a stretch over the start of a circle
    out.push_back(end);
  };
  for (std::size_t i = 0; i < list.size(); ++i) {
    const bool contact = list[i].to.key - list[i].from.key < half &&
                         samePlace(list[i].from, list[i].to, shortestStretch(tolerance));
    if (!overStart || i > 0) add(list[i].from);
    if (contact) continue;
    if (!overStart || i + 1 < list.size()) add(list[i].to);
  }
}

// Of touches at one place the first along a stays. `list` is in order of its keys.
std::vector<AcGePoint2d> eachOnce(const std::vector<Touch>& list, double tolerance) {
  std::vector<std::size_t> byX(list.size());
  for (std::size_t i = 0; i < byX.size(); ++i) byX[i] = i;
  std::ranges::stable_sort(byX, {}, [&](std::size_t i) { return list[i].point.x; });
  std::vector<bool> dropped(list.size());
  for (std::size_t i = 0; i < byX.size(); ++i) {
    if (dropped[byX[i]]) continue;
    for (std::size_t j = i + 1; j < byX.size(); ++j) {
      const Touch &p = list[byX[i]], &q = list[byX[j]];
      if (q.point.x - p.point.x > tolerance) break;
      if (!dropped[byX[j]] && samePlace(p, q, tolerance)) dropped[std::max(byX[i], byX[j])] = true;
      if (dropped[byX[i]]) break;
    }
  }
  std::vector<AcGePoint2d> points;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!dropped[i]) points.push_back(list[i].point);
  }
  return points;
}

// Where stretches begin or end their neighbours touch too; the stretch has said it.
void dropTouchesAtEnds(Meetings& found, double tolerance) {
  if (found.stretches.empty()) return;
  std::vector<AcGePoint2d> ends;
  for (const Stretch& s : found.stretches) ends.insert(ends.end(), {s.from.point, s.to.point});
  std::ranges::sort(ends, {}, &AcGePoint2d::x);
  std::erase_if(found.touches, [&](const Touch& t) {
    auto near = std::ranges::lower_bound(ends, t.point.x - tolerance, {}, &AcGePoint2d::x);
    for (; near != ends.end() && near->x <= t.point.x + tolerance; ++near) {
      if (near->distanceTo(t.point) <= tolerance) return true;
    }
    return false;
  });
}

std::vector<AcGePoint2d> ordered(Meetings found, const Pieces& a, double tolerance) {
  dropTouchesAtEnds(found, 4 * tolerance);
  addEnds(std::move(found.stretches), a, 4 * tolerance, found.touches);
  std::ranges::stable_sort(found.touches, {}, &Touch::key);
  return eachOnce(found.touches, 4 * tolerance);
}

}  // namespace

}  // namespace tarnex::kernel

namespace tarnex {

std::vector<AcGePoint2d> intersect(const Curve& a, const Curve& b, Extend mode) {
  if (!isValid(a) || !isValid(b)) return {};
  const kernel::Pieces first(a, mode == Extend::kExtendThis || mode == Extend::kExtendBoth);
  const kernel::Pieces second(b, mode == Extend::kExtendArg || mode == Extend::kExtendBoth);
  const double tolerance = kernel::contactTolerance(std::max(first.size(), second.size()));
  return kernel::ordered(kernel::meetAll(first, second, tolerance), first, tolerance);
}

}  // namespace tarnex
