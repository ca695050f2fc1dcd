// The raw offset as strands, cut wherever two of them meet, and gathered into chains that meet nothing
// between their ends. Internal to the offset.
#pragma once

#include <optional>
#include <vector>

#include "host/geometry/offset_raw.h"

namespace tarnex::offsets {

constexpr std::size_t kNoSpan = static_cast<std::size_t>(-1);

// The offset of one span (or a corner's rounding) between its joints.
struct Strand {
  Piece piece;
  std::size_t span = kNoSpan;
  bool linked = false;  // the next strand begins where this one ends
  bool cutter = false;  // only cuts others: the far side and the end caps of an open path
};

// Part of one strand.
struct Edge {
  Piece piece;
  std::size_t strand = 0;
};

// A walk that meets no strand but at its ends; all of it can be walked or none.
struct Chain {
  std::size_t first = 0, count = 0;  // edges, one after the other
  std::size_t from = 0, to = 0;      // nodes
};

struct Arrangement {
  std::vector<Strand> strands;
  std::vector<Edge> edges;
  std::vector<Chain> chains;
  std::vector<Vec> nodes;
};

// Strands of the raw offset; nothing when an arc would have to wind round itself. Inner corners that leave a
// neighbour no length are opened.
std::optional<std::vector<Strand>> rawStrands(const Source& s, std::vector<Joint>& joints, double distance);
// Places nearer than `snap` mm are one node.
Arrangement arrange(std::vector<Strand> strands, bool closed, double tolerance, double snap);

}  // namespace tarnex::offsets
