// What the tests of outer figures share: a figure with a break, written whole through a tracing post. The
// rows that begin a pass, and the one that ends the tab, tell compensation and condition too: "<11 G41C1 ".
// Knows the writers' declarations.
#pragma once

#include <string>
#include <vector>

#include "frame/settings.h"
#include "outputiso/figurewriter.h"
#include "tracingpost.h"

namespace tarnex {

struct OuterFigure {
  OutputLists lists;
  AcGePoint2d ptBreak, ptBreakExit;
  int nBreakSeg = -1, nDirection = kCounterClockwise, nFlags = 0;
  ProcessStyle style = tracedStyle(0);
  double leadPiece = 1, stop = 0.5;  // mm
  int nLeaderType = 0, nCutType = CutType::kByFigure;
  int figureIndex = 0;
  bool bReturn = false;
};

inline OutputLists listsOf(std::vector<AcGePoint2d> vertices, std::vector<double> bulges = {},
                           std::vector<double> taper = {}) {
  OutputLists lists;
  bulges.resize(vertices.size());
  taper.resize(vertices.size());
  lists.vertices = std::move(vertices);
  lists.bulges = std::move(bulges);
  lists.taper = std::move(taper);
  return lists;
}

// A square of 10, entered in the middle of its lower side, whose tab is the last 2 mm of it: span 5.
inline OuterFigure square(int later) {
  OuterFigure f;
  f.lists = listsOf({{5, -3}, {5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}});
  f.ptBreak = {3, 0};
  f.ptBreakExit = {3, -2};
  f.style = tracedStyle(later);
  return f;
}

// The same with a tab from the left side on, around a corner: spans 4 and 5.
inline OuterFigure cornerTab(int later) {
  OuterFigure f = square(later);
  f.ptBreak = {0, 4};
  f.ptBreakExit = {-2, 4};
  return f;
}

inline IsoPost outerPost(int family, SlotTexts params = {}, SlotTexts words = {}) {
  IsoPost iso = tracingPost(family, params, words);
  const auto tell = [&iso](int r) { iso.post.blockRow[static_cast<std::size_t>(3 * r)] += "V1V3 "; };
  for (int r : {11, 19, 21, 24}) tell(40 + r);
  for (int r : {15, 22, 24, 27}) tell(120 + r);
  return iso;
}

struct OuterProgram {
  std::string first, later;
  IsoFigureRun run;
  AcGePoint2d firstEnd;  // of the wire, behind the first pass
  FigureWritten firstResult = FigureWritten::kDone, laterResult = FigureWritten::kDone;
};

inline OuterProgram writeOuter(const OuterFigure& f, IsoPost iso) {
  CToolPath path;
  // Any closed contour: side, direction and flags of the path count here, the lists are the figure's.
  EXPECT_TRUE(path.initContour({{5, -3}, {5, 0}, kOuterShape, f.nDirection, 0, 0},
                               {{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, true}, 0));
  path.setFlag(f.nFlags, true);
  path.setProcessStyle(f.style);
  PathBreak at;
  at.nBreakSeg = f.nBreakSeg;
  at.ptBreak = f.ptBreak;
  at.ptBreakExit = f.ptBreakExit;
  path.setBreakPoint(at);
  WireCutSettings settings("");
  settings.dIsoOvercut = f.leadPiece;
  settings.dCutoffLen = f.stop;
  iso.rowBase = f.nCutType == CutType::kByPass ? 120 : 40;
  std::string out;
  const FigureContext context{iso, settings, out, f.nLeaderType, f.nCutType, "no path"};
  OuterProgram program;
  program.run = IsoFigureRun(path, f.lists);
  const FigureJob job{context, path, program.run};
  program.firstResult = writeOuterFirst(job, f.figureIndex, f.bReturn);
  program.first = std::exchange(out, {});
  program.firstEnd = program.run.ptWireEnd;
  program.laterResult = writeOuterLater(job, f.bReturn);
  program.later = out;
  return program;
}

}  // namespace tarnex
