// Cuts the raw offset where it meets itself.
// Knows nothing of the path that it came from; which chains a wire can walk is asked elsewhere.
#include "host/geometry/offset_strands.h"

#include <algorithm>
#include <utility>

#include "host/geometry/offset_tree.h"

namespace tarnex::offsets {

namespace {

constexpr Vec kSkew{0.8310, 0.5563};
constexpr double kBack = -0.999;  // cosine of a corner that all but turns back

Vec vec(const BulgeVertex& v) {
  return {v.point.x, v.point.y};
}

// A joint at an inner corner goes back to where both neighbours lie abeam of the vertex.
void open(const Source& s, std::vector<Joint>& joints, std::size_t at, double distance) {
  Joint& j = joints[at];
  if (j.kind != JointKind::kMeet || j.convex) return;
  const std::size_t n = s.spans.size();
  const Piece &before = s.spans[(at + n - 1) % n], &after = s.spans[at % n];
  const Vec v = after.start;
  j = {JointKind::kApart, false, v + leftOf(before.t1) * distance, v + leftOf(after.t0) * distance, 0, 0};
}

std::size_t jointAfter(const Source& s, std::size_t span) {
  return s.closed ? s.next(span) : span + 1;
}

void openShortOnes(const Source& s, std::vector<Joint>& joints, double distance) {
  for (std::size_t i = 0; i < s.spans.size(); ++i) {
    const std::size_t next = jointAfter(s, i);
    if (vanishes(s.spans[i], distance, s.tolerance)) continue;
    if (rawPiece(s.spans[i], joints[i], joints[next], distance, s.tolerance)) continue;
    open(s, joints, i, distance);
    open(s, joints, next, distance);
  }
}

// The other side of an open path, and the caps about its ends.
void addCutters(const Source& s, double distance, std::vector<Strand>& strands) {
  for (const Piece& p : s.spans) {
    if (vanishes(p, -distance, s.tolerance)) continue;
    const Vec from = p.start - leftOf(p.t0) * distance, to = p.end - leftOf(p.t1) * distance;
    if (sizeOf(to - from) > s.tolerance)
      strands.push_back({makePiece(from, to, p.bulge), kNoSpan, false, true});
  }
  const auto addCircle = [&](Vec v) {
    const Vec east{std::abs(distance), 0};
    strands.push_back({makePiece(v + east, v - east, 1), kNoSpan, false, true});
    strands.push_back({makePiece(v - east, v + east, 1), kNoSpan, false, true});
  };
  addCircle(s.spans.front().start);
  for (const Piece& p : s.spans) addCircle(p.end);
}

struct Cut {
  std::size_t strand;
  double place;
  Vec at;
};

class Cutting {
 public:
  Cutting(std::vector<Strand> strands, bool closed, double tolerance, double snap)
      : strands_(std::move(strands)), closed_(closed), tolerance_(tolerance), snap_(snap) {}

  Arrangement run() {
    cutAtStart_.assign(strands_.size(), false), cutAtEnd_ = cutAtStart_;
    std::vector<Box> boxes;
    boxes.reserve(strands_.size());
    for (const Strand& s : strands_) boxes.push_back(boxOf(s.piece).grown(tolerance_));
    BoxTree(std::move(boxes)).eachPair([this](std::size_t i, std::size_t j) {
      cutPair(i, j);
      return true;
    });
    std::sort(cuts_.begin(), cuts_.end(), [](const Cut& a, const Cut& b) {
      return a.strand != b.strand ? a.strand < b.strand : a.place < b.place;
    });
    Arrangement a;
    chainUp(a);
    a.strands = std::move(strands_);
    nameNodes(a);
    return a;
  }

 private:
  [[nodiscard]] bool follows(std::size_t i, std::size_t j) const {
    return strands_[i].linked && (j == i + 1 || (closed_ && j == 0 && i + 1 == strands_.size()));
  }

  void cutPair(std::size_t i, std::size_t j) {
    const Strand &a = strands_[i], &b = strands_[j];
    if (a.cutter && b.cutter) return;
    if (strands_.size() > 2 && (follows(i, j) || follows(j, i))) {
      const Piece &before = follows(i, j) ? a.piece : b.piece, &after = follows(i, j) ? b.piece : a.piece;
      if (dot(before.t1, after.t0) > kBack) {  // else they may lie upon each other
        const auto q = meetAgain(before, after, tolerance_);
        if (q && sizeOf(*q - after.start) > snap_) cut(i, *q), cut(j, *q);
        return;
      }
    }
    const Meetings m = meetings(a.piece, b.piece, tolerance_);
    for (int k = 0; k < m.count; ++k) {
      const Vec q = m.at[static_cast<std::size_t>(k)];
      if (follows(i, j) && sizeOf(q - a.piece.end) <= snap_) continue;
      if (follows(j, i) && sizeOf(q - a.piece.start) <= snap_) continue;
      cut(i, q);
      cut(j, q);
    }
  }

  void cut(std::size_t i, Vec q) {
    const Piece& p = strands_[i].piece;
    if (strands_[i].cutter) return;
    if (sizeOf(q - p.start) <= snap_)
      cutAtStart_[i] = true;
    else if (sizeOf(q - p.end) <= snap_)
      cutAtEnd_[i] = true;
    else
      cuts_.push_back({i, placeOf(p, q), q});
  }

  // Edges in the order of travel, and a chain wherever the walk isn't interrupted.
  void chainUp(Arrangement& a) {
    a.edges.reserve(strands_.size() + cuts_.size());
    std::size_t next = 0;
    bool joined = false;  // the edge to come goes on with the last chain
    bool ringJoined = false;
    for (std::size_t i = 0; i < strands_.size(); ++i) {
      const Strand& s = strands_[i];
      if (s.cutter) break;
      joined = joined && !cutAtStart_[i];
      Vec from = s.piece.start;
      for (; next < cuts_.size() && cuts_[next].strand == i; ++next) {
        if (sizeOf(cuts_[next].at - from) <= snap_) continue;
        append(a, {partOf(s.piece, from, cuts_[next].at), i}, joined);
        from = cuts_[next].at;
        joined = false;
      }
      append(a, {from == s.piece.start ? s.piece : partOf(s.piece, from, s.piece.end), i}, joined);
      joined = s.linked && !cutAtEnd_[i];
      ringJoined = joined && i + 1 == strands_.size();
    }
    if (closed_ && ringJoined && !cutAtStart_[0] && a.chains.size() > 1) closeRing(a);
  }

  static void append(Arrangement& a, const Edge& e, bool joined) {
    if (joined && !a.chains.empty())
      ++a.chains.back().count;
    else
      a.chains.push_back({a.edges.size(), 1, 0, 0});
    a.edges.push_back(e);
  }

  // The last chain runs on into the first one: the edges are turned so that they stand together.
  static void closeRing(Arrangement& a) {
    const std::size_t moved = a.chains.front().count;
    std::rotate(a.edges.begin(), a.edges.begin() + static_cast<std::ptrdiff_t>(moved), a.edges.end());
    a.chains.back().count += moved;
    a.chains.erase(a.chains.begin());
    for (Chain& c : a.chains) c.first -= moved;
  }

  // Ends of chains that lie within `snap_` of each other get one node.
  void nameNodes(Arrangement& a) const {
    std::vector<Vec> ends;
    ends.reserve(2 * a.chains.size());
    for (Chain& c : a.chains) {
      const Vec from = a.edges[c.first].piece.start;
      if (ends.empty() || !(ends.back() == from)) ends.push_back(from);  // most begin where the last one ends
      c.from = ends.size() - 1;
      ends.push_back(a.edges[c.first + c.count - 1].piece.end);
      c.to = ends.size() - 1;
    }
    const std::size_t n = ends.size();
    // In order along a skew direction, since drawings have many points on one vertical or horizontal line.
    std::vector<std::pair<double, std::size_t>> order(n);
    std::vector<std::size_t> group(n);
    for (std::size_t i = 0; i < n; ++i) order[i] = {dot(ends[i], kSkew), i}, group[i] = i;
    std::sort(order.begin(), order.end());
    const auto root = [&](std::size_t i) {
      while (group[i] != i) i = group[i] = group[group[i]];
      return i;
    };
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = i + 1; j < n && order[j].first - order[i].first <= snap_; ++j)
        if (sizeOf(ends[order[j].second] - ends[order[i].second]) <= snap_)
          group[root(order[j].second)] = root(order[i].second);
    std::vector<std::size_t> name(n, kNoSpan);
    const auto nodeOf = [&](std::size_t end) {
      const std::size_t r = root(end);
      if (name[r] == kNoSpan) name[r] = a.nodes.size(), a.nodes.push_back(ends[r]);
      return name[r];
    };
    for (Chain& c : a.chains) c.from = nodeOf(c.from), c.to = nodeOf(c.to);
  }

  std::vector<Strand> strands_;
  bool closed_;
  double tolerance_, snap_;
  std::vector<char> cutAtStart_, cutAtEnd_;
  std::vector<Cut> cuts_;
};

}  // namespace

std::optional<std::vector<Strand>> rawStrands(const Source& s, std::vector<Joint>& joints, double distance) {
  openShortOnes(s, joints, distance);
  std::vector<Strand> strands;
  strands.reserve(s.spans.size() + 8);
  for (std::size_t i = 0; i < s.spans.size(); ++i) {
    const Joint &from = joints[i], &to = joints[jointAfter(s, i)];
    const bool last = !s.closed && i + 1 == s.spans.size();
    const bool nextStays = !last && !vanishes(s.spans[s.next(i)], distance, s.tolerance);
    const bool rounds = to.kind == JointKind::kRound && sizeOf(to.start - to.end) > s.tolerance;
    const bool linked = rounds || (nextStays && to.kind != JointKind::kApart);
    if (vanishes(s.spans[i], distance, s.tolerance)) {
      if (!strands.empty()) strands.back().linked = false;
    } else if (const auto piece = rawPiece(s.spans[i], from, to, distance, s.tolerance)) {
      strands.push_back({makePiece(vec(*piece), to.end, piece->bulge), i, linked});
    } else if (s.spans[i].curvature != 0 && sizeOf(to.end - from.start) > 16 * s.tolerance) {
      return std::nullopt;
    } else if (!strands.empty()) {
      strands.back().linked = strands.back().linked && linked;
    }
    if (rounds)
      strands.push_back(
          {makePiece(to.end, to.start, roundBulge(to, s.spans[i].end, distance)), kNoSpan, nextStays});
  }
  if (!s.closed) addCutters(s, distance, strands);
  return strands;
}

Arrangement arrange(std::vector<Strand> strands, bool closed, double tolerance, double snap) {
  return Cutting(std::move(strands), closed, tolerance, snap).run();
}

}  // namespace tarnex::offsets
