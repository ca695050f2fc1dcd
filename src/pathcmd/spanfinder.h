// Contour spans of many paths, found by where they run.
// Knows paths as they stand while it lives; not what is asked of the spans.
#pragma once

#include <cstdint>
#include <vector>

#include "host/database/boxtree.h"
#include "toolpath/toolpath.h"

namespace tarnex {

// A span with what it belongs to.
struct OwnedSpan {
  AcGePoint2d start, end;
  double bulge = 0;
  std::uint32_t path = 0;  // index of the path
};

// Holds the span; of an arc a little more.
[[nodiscard]] Extents2d boxOf(const OwnedSpan& s);

struct BoxedSpan {
  Extents2d box;
  OwnedSpan span;
};

// Spans lie in the index by stretches of their contours: neighbours mostly are asked for together, and the
// index stays a small part of the paths.
class SpanFinder {
 public:
  void build(std::vector<const CToolPath*> paths);

  // Replaces `found` by the spans of other paths than `except` whose boxes touch `box`, from bottom to top:
  // which of them is told first doesn't hang on where contours begin. False when there are more than `most`;
  // `found` is of no use then.
  [[nodiscard]] bool find(const Extents2d& box, std::uint32_t except, std::size_t most,
                          std::vector<BoxedSpan>& found);

 private:
  struct Stretch {
    std::uint32_t path;
    std::uint32_t first, end;  // vertices at which its spans begin
  };
  [[nodiscard]] OwnedSpan spanOf(std::uint32_t path, std::size_t vertex) const;

  std::vector<const CToolPath*> paths_;
  std::vector<Stretch> stretches_;
  BoxTree tree_;
  std::vector<std::uint32_t> touched_;
};

}  // namespace tarnex
