// The working lists of one path for a 3B program: where the wire's centre goes, with the end of the contour
// placed. Knows compensation and settings; how blocks are written stands in contourwriter.
#pragma once

#include <vector>

#include "output3b/contourwriter.h"

namespace tarnex {

// One entry per vertex of the path as it will be cut.
struct ContourLists {
  std::vector<AcGePoint2d> p;
  std::vector<double> bulge;  // of the segment that starts here
  std::vector<double> taper;  // of that segment, degrees
  // The path's vertices that this one comes from: several where the offset dropped some, none for added ones.
  struct Sources {
    int first = 0, last = -1;
  };
  std::vector<Sources> sources;
  int nSeg = 0;       // segments to write
  int nPauseAt = -1;  // the pause falls after the block before this one
  bool overcutDone = false;
  double dFix = 0;  // radius of corner compensation, 0 none

  [[nodiscard]] int size() const { return static_cast<int>(p.size()); }
  [[nodiscard]] Sources sourcesOf(int i) const {
    return static_cast<std::size_t>(i) < sources.size() ? sources[static_cast<std::size_t>(i)] : Sources{};
  }
  void insert(int i, AcGePoint2d point, double b, double t);
  void append(AcGePoint2d point, double b, double t) { insert(size(), point, b, t); }
};

[[nodiscard]] ContourLists contourLists(const CToolPath& path, const Contour3bContext& context);
// Pause before the end and overcut, on a contour that closes.
void placeEnd(const CToolPath& path, const WireCutSettings& settings, ContourLists& lists);

}  // namespace tarnex
