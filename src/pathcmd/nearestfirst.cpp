// A k-d tree whose nodes know a place before which no member below stands. A scan changes at the places that
// are nearer than all before them: the last of these is the first of the nearest, the one before it the first
// of the nearest among the places before that, and so on. A few looks find them from the back, where they
// stand far apart; at the front, where scans bring what is far, they are dense, and the places are walked.
// Knows points and lengths.
#include "pathcmd/nearestfirst.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tarnex {

namespace {

constexpr std::uint32_t kLeafSlots = 8;
constexpr std::size_t kLookCost = 1024;  // places that are walked in the time of a look

// Never above the computed distance from p to any point of the box, not by the last bit: difference, product,
// sum and root all keep the order of what goes in. Where squares leave the range of numbers, distances aren't
// roots, and the bound makes no claim.
double leastDistance(const Extents2d& box, AcGePoint2d p) {
  constexpr double kSmall = 1e-130, kLarge = 1e130;
  const double x = std::max({box.low.x - p.x, p.x - box.high.x, 0.0});
  const double y = std::max({box.low.y - p.y, p.y - box.high.y, 0.0});
  const double distance = planeLength(x, y);
  return distance > kSmall ? std::min(distance, kLarge) : 0;
}

bool isFinite(const NearestFirst::Member& m) {
  return std::isfinite(m.at.x) && std::isfinite(m.at.y) && std::isfinite(m.length);
}

// A square that no smaller distance than `best` exceeds, rounding included.
double squareLimit(double best) {
  constexpr double kSlack = 1 + 1e-12, kLeast = 1e-250, kMost = 1e100;
  return best < kMost ? std::max(best * best * kSlack, kLeast) : std::numeric_limits<double>::infinity();
}

}  // namespace

NearestFirst::NearestFirst(const std::vector<Member>& row, double sameLength)
    : slot_(row.size()), sameLength_(sameLength) {
  std::vector<Slot> nowhere;
  for (const Member& m : row) {
    (isFinite(m) ? slots_ : nowhere).push_back({m, static_cast<Index>(x_.size())});
    x_.push_back(m.at.x);
    y_.push_back(m.at.y);
    length_.push_back(m.length);
  }
  if (!slots_.empty()) build(0, static_cast<Index>(slots_.size()));
  for (const auto* slots : {&slots_, &nowhere})
    for (const Slot& slot : *slots) {
      slot_[slot.origin] = static_cast<Index>(origin_.size());
      origin_.push_back(slot.origin);
    }
  place_ = origin_;
}

void NearestFirst::build(Index begin, Index end) {
  Node node;
  node.shortest = node.longest = slots_[begin].member.length;
  node.firstPlace = node.right = kNone;
  node.begin = begin;
  node.end = end;
  for (Index s = begin; s < end; ++s) {
    const auto& [member, origin] = slots_[s];
    node.box.add(member.at);
    node.shortest = std::min(node.shortest, member.length);
    node.longest = std::max(node.longest, member.length);
    node.firstPlace = std::min(node.firstPlace, origin);
  }
  const std::size_t at = nodes_.size();
  nodes_.push_back(node);
  if (end - begin <= kLeafSlots) return;
  const Index middle = divide(node);
  build(begin, middle);
  nodes_[at].right = static_cast<Index>(nodes_.size());
  build(middle, end);
}

// By length until all are about as long, then across the longer side of the box.
NearestFirst::Index NearestFirst::divide(const Node& node) {
  const auto begin = slots_.begin() + node.begin, end = slots_.begin() + node.end;
  if (node.longest - node.shortest > sameLength_) {
    const double half = node.shortest / 2 + node.longest / 2;
    const auto at = std::partition(begin, end, [half](const Slot& s) { return s.member.length <= half; });
    if (at != begin && at != end) return static_cast<Index>(at - slots_.begin());
  }
  const bool wide = node.box.high.x - node.box.low.x > node.box.high.y - node.box.low.y;
  const auto middle = begin + (end - begin) / 2;
  std::nth_element(begin, middle, end, [wide](const Slot& a, const Slot& b) {
    return wide ? a.member.at.x < b.member.at.x : a.member.at.y < b.member.at.y;
  });
  return static_cast<Index>(middle - slots_.begin());
}

void NearestFirst::retire(std::size_t from) {
  const std::size_t first = front_;
  front_ = std::max(front_, std::min(from, size()));
  for (std::size_t place = first; place < front_; ++place) place_[slot_[place]] = kNone;
}

// The nodes above keep an earlier first place until a look comes by.
void NearestFirst::stand(Index slot, std::size_t place) {
  slot_[place] = slot;
  place_[slot] = place < front_ ? kNone : static_cast<Index>(place);
}

void NearestFirst::comeForward(Index slot, std::size_t place) {
  stand(slot, place);
  if (slot >= slots_.size() || place < front_) return;
  for (Index at = 0;;) {
    Node& node = nodes_[at];
    node.firstPlace = std::min(node.firstPlace, place_[slot]);
    if (node.right == kNone) return;
    at = slot < nodes_[node.right].begin ? at + 1 : node.right;
  }
}

void NearestFirst::changePlaces(std::size_t to, std::size_t place) {
  std::swap(x_[to], x_[place]);
  std::swap(y_[to], y_[place]);
  std::swap(length_[to], length_[place]);
  const Index slot = slot_[to];
  slot_[to] = slot_[place];
  stand(slot, place);
}

// Whether a member below may be nearer than what was found, or as near and at an earlier place.
bool NearestFirst::canWin(const Node& node, double bound, const Look& look) const {
  if (node.firstPlace >= look.before || bound > look.distance) return false;
  if (bound == look.distance && node.firstPlace >= look.place) return false;
  const double length = look.scan.length;
  return !(node.shortest - length > sameLength_ || length - node.longest > sameLength_);
}

void NearestFirst::lookAtSlots(Node& leaf, Look& look) const {
  leaf.firstPlace = kNone;
  for (Index s = leaf.begin; s < leaf.end; ++s) {
    const Index place = place_[s];
    leaf.firstPlace = std::min(leaf.firstPlace, place);
    const Member& member = slots_[s].member;
    if (place >= look.before || isOtherLength(member.length, look.scan.length)) continue;
    const double distance = look.scan.p.distanceTo(member.at);
    if (distance > look.distance || (distance == look.distance && place >= look.place)) continue;
    look.tied = distance == look.distance;
    look.distance = distance;
    look.slot = s;
    if (look.place != kNone) look.place = place;
  }
}

void NearestFirst::lookBelow(Index at, Look& look) {
  Node& node = nodes_[at];
  if (node.right == kNone) return lookAtSlots(node, look);
  Index near = at + 1, far = node.right;
  double toNear = leastDistance(nodes_[near].box, look.scan.p);
  double toFar = leastDistance(nodes_[far].box, look.scan.p);
  if (toFar < toNear || (toFar == toNear && nodes_[far].firstPlace < nodes_[near].firstPlace)) {
    std::swap(near, far);
    std::swap(toNear, toFar);
  }
  if (canWin(nodes_[near], toNear, look)) lookBelow(near, look);
  if (canWin(nodes_[far], toFar, look)) lookBelow(far, look);
  node.firstPlace = std::min(nodes_[near].firstPlace, nodes_[far].firstPlace);
}

// Looks while they save more walking than they cost. Gives the place before which is to be walked.
std::size_t NearestFirst::lookFromBehind(const Scan& scan) {
  behind_.clear();
  std::size_t end = size();
  for (std::size_t looks = 0; end > scan.from + kLookCost; ++looks) {
    constexpr std::size_t kOnTrial = 4;
    if (looks > kOnTrial && (looks - kOnTrial) * kLookCost > size() - end) break;
    Look look{scan, static_cast<Index>(end), scan.best, 0};
    if (!nodes_.empty()) lookBelow(0, look);
    if (!(look.distance < scan.best)) return scan.from;
    behind_.push_back(look.place);
    end = look.place;
  }
  return end;
}

// The scan over the places before `end`. Most are told apart by their squares.
void NearestFirst::walk(const Scan& scan, std::size_t end) {
  const AcGePoint2d p = scan.p;
  const double *x = x_.data(), *y = y_.data();
  double best = scan.best, limit = squareLimit(best);
  for (std::size_t place = scan.from; place < end; ++place) {
    const double dx = x[place] - p.x, dy = y[place] - p.y;
    if (dx * dx + dy * dy > limit) continue;
    const double distance = p.distanceTo({x[place], y[place]});
    if (!(distance < best) || slot_[place] >= slots_.size() || isOtherLength(length_[place], scan.length))
      continue;
    best = distance;
    limit = squareLimit(best);
    changePlaces(scan.to, place);
  }
}

void NearestFirst::run(const Scan& scan) {
  retire(scan.from);
  if (!std::isfinite(scan.p.x) || !std::isfinite(scan.p.y)) return;  // nothing is nearer than nothing
  const Index gaveWay = slot_[scan.to];
  walk(scan, lookFromBehind(scan));
  for (auto place = behind_.rbegin(); place != behind_.rend(); ++place) changePlaces(scan.to, *place);
  comeForward(slot_[scan.to], scan.to);
  if (place_[gaveWay] != kNone) comeForward(gaveWay, place_[gaveWay]);
}

// The scan for a member before `place`, which stands at p.
NearestFirst::Scan NearestFirst::scanAt(std::size_t place, AcGePoint2d p) const {
  const bool step = isOtherLength(length_[place], length_[place - 1]);
  return {place, place, p, step ? std::numeric_limits<double>::infinity() : kFarAway,
          step ? length_[place] : length_[place - 1]};
}

void NearestFirst::runAll() {
  if (runAllByLooks()) return;
  place_ = origin_;
  findFirstPlaces();
  for (std::size_t place = 1; place < size(); ++place) run(scanAt(place, at(place - 1).at));
}

// Whether every two are either as long as each other or apart with all between them.
bool NearestFirst::lengthsFallApart() const {
  std::size_t first = 0;
  for (std::size_t k = 1; k < size(); ++k) {
    if (!isOtherLength(length_[k], length_[first])) continue;
    if (!isOtherLength(length_[k], length_[k - 1])) return false;
    first = k;
  }
  return true;
}

// Where the nearest is always one alone it doesn't matter how the others stand. False where it does.
bool NearestFirst::runAllByLooks() {
  if (slots_.size() < size() || slots_.empty() || !lengthsFallApart()) return false;
  std::vector<Index> order{slot_[0]};
  place_[slot_[0]] = kNone;
  while (order.size() < size()) {
    const Scan scan = scanAt(order.size(), slots_[order.back()].member.at);
    Look look{scan, kNone, scan.best, kNone};
    lookBelow(0, look);
    if (look.slot == kNone || look.tied) return false;
    order.push_back(look.slot);
    place_[look.slot] = kNone;
  }
  front_ = size();
  slot_ = std::move(order);
  for (std::size_t place = 0; place < size(); ++place) {
    const Member& member = slots_[slot_[place]].member;
    x_[place] = member.at.x;
    y_[place] = member.at.y;
    length_[place] = member.length;
  }
  return true;
}

// Children stand behind their node.
void NearestFirst::findFirstPlaces() {
  for (std::size_t at = nodes_.size(); at-- > 0;) {
    Node& node = nodes_[at];
    node.firstPlace = node.right == kNone
                          ? *std::min_element(place_.begin() + node.begin, place_.begin() + node.end)
                          : std::min(nodes_[at + 1].firstPlace, nodes_[node.right].firstPlace);
  }
}

}  // namespace tarnex
