// One figure of a slow-wire program while it is written: what lasts from its first pass to its last, and what
// the writers of inner, open and outer figures share. Knows one path and the post's rows by number; the order
// of figures, the moves between them and files are the driver's.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "machining/joblayout.h"
#include "outputiso/isopost.h"
#include "toolpath/toolpath.h"

namespace tarnex {

// What every figure of a program is written with.
struct FigureContext {
  IsoPost& iso;
  const WireCutSettings& settings;
  std::string& out;  // blocks are put behind what stands; whoever owns it may empty it between two calls
  int nLeaderType = 0;
  int nCutType = CutType::kByFigure;
  std::string sNoPath;  // catalogue message 2
};

// A path in the program. Made anew from the output lists for each program; with passes of all figures in
// turn it waits for the later passes, and the path may be closed meanwhile. The path itself is never changed.
struct IsoFigureRun {
  IsoFigureRun() = default;
  IsoFigureRun(const CToolPath& path, OutputLists outputLists);

  OutputLists lists;      // vertex 0 the threading point, vertex 1 the entry point
  int nFigureNo = 0;      // in the program, from 1
  AcGePoint2d ptWireEnd;  // where the wire stands when the writers are done

  // Break point: the end of an inner figure's overcut, its entry point when there is none; as picked on open
  // and outer figures. An open path without one ends at its last vertex.
  AcGePoint2d ptBreak, ptBreakExit;
  int nBreakSeg = -1;                         // outer figures: span of the break, as stored until it is found
  double dBreakBulgeA = 0, dBreakBulgeB = 0;  // outer figures: of that span's two parts
  AcGePoint2d ptLeadEnd;                      // outer figures: end of the rapid part of the lead
  bool bStoppedAtBreak = false;  // outer figures: false where the first pass has cut the part free
  bool bNoStopText = false;      // kNoStopText stands in the program
  bool bStopTooLong = false;     // a stop distance is set, but it is longer than the span that it ends
  double dOvercutLen = 0, dOvercutExit = 0;  // mm

  // Inner figures.
  double dLeadBulge = 0;                          // of lead arcs
  bool bLeadArc = false, bExitArc = false;        // the first pass came, left on an arc
  AcGePoint2d ptLeadSplit, ptLeadArc;             // where compensation comes on; start of the lead-in arc
  AcGePoint2d ptExitArcA, ptExitArcB;             // corners of the lead-out
  double dOvercutBulgeA = 0, dOvercutBulgeB = 0;  // span 1 before and behind ptBreak
  AcGePoint2d ptReEntry, ptReEntryExit;           // where later passes enter, and retreat to
};

struct FigureJob {
  const FigureContext& context;
  const CToolPath& path;
  IsoFigureRun& run;
};

enum class FigureWritten {
  kDone,
  kNoPath,    // fewer than three vertices: catalogue message 2 stands in the program instead
  kFourAxis,  // nothing was written and nothing changed: such a figure takes no number either
  kBreakless  // an outer figure without any break: likewise
};

// The writers, each for both cut types; the driver has set rowBase. `figureIndex` counts from 0. A first
// writer writes the start block too; the later writer comes next for the figure, at once or when all figures
// have had their first pass. `bReturn`: back to the threading point after every pass.
//
// Inner figures, and the open ones among them (kOpenPath).
FigureWritten writeInnerFirst(const FigureJob& job, int figureIndex, bool bReturn);
FigureWritten writeInnerLater(const FigureJob& job, bool bReturn);
// Called by the two above, behind their start.
FigureWritten writeOpenFirst(const FigureJob& job, int figureIndex);
FigureWritten writeOpenLater(const FigureJob& job);
// Outer figures. The first pass has no use for `bReturn`; in cut type 0 it is false for the later ones.
// Pass by pass the later passes begin at the threading point; where the tab is all that is left, its moves
// count from the entry point without a block that goes there. Figure by figure they begin where the first
// pass has ended.
FigureWritten writeOuterFirst(const FigureJob& job, int figureIndex, bool bReturn);
FigureWritten writeOuterLater(const FigureJob& job, bool bReturn);
// An outer figure that would be refused as kBreakless.
[[nodiscard]] bool isBreakless(const FigureJob& job);

// Rows that all kinds of figures have alike, relative to rowBase.
struct FigureRow {
  static constexpr int kProgramStart = 1, kLeadRapid = 2, kLeadCompensated = 3;
};

inline constexpr const char* kFirstBlockWord = "G44";  // kFamilySignedUnits: first block of a pass
// kFamilySignedUnits: a tab can't be left without a stop; such a program must not be used, and the supplier
// is to be asked. The address is a reserved one, so that no program sends a user to a stranger.
inline constexpr const char* kNoStopText =
    "阿奇程序特殊情况，请不要使用此程序，联系开发商"
    "www.tarnex.example\n";
inline constexpr int kRowUpToMotion = kRowBefore | kRowInside;

// Words behind those of a line; the first of them give it their memory.
inline void join(std::string& line, std::string&& words) {
  if (line.empty())
    line = std::move(words);
  else
    line += words;
}

// The pieces that writers are made of. V, B, T: vertices, bulges and tapers of the output lists.
class FigureWriter {
 public:
  explicit FigureWriter(const FigureJob& job);
  // Why the figure can't be written; the message of an empty one is in the program then.
  [[nodiscard]] std::optional<FigureWritten> refusal();

 protected:
  [[nodiscard]] int n() const { return static_cast<int>(run_.lists.vertices.size()); }
  [[nodiscard]] AcGePoint2d V(int i) const { return run_.lists.vertices[static_cast<std::size_t>(i)]; }
  [[nodiscard]] double B(int i) const { return run_.lists.bulges[static_cast<std::size_t>(i)]; }
  [[nodiscard]] double T(int i) const { return run_.lists.taper[static_cast<std::size_t>(i)]; }
  [[nodiscard]] IsoMove span(int i) const { return {V(i), V(i + 1), B(i)}; }
  [[nodiscard]] bool bAll() const { return path_.hasFlag(kAllCornersR); }
  // The first contour span is written ahead of the lead.
  [[nodiscard]] bool spanAhead() const { return iso_.post.nFamily == kFamilySignedUnits; }
  [[nodiscard]] bool byPass() const { return context_.nCutType == CutType::kByPass; }
  [[nodiscard]] int turn() const { return path_.nSide() * path_.nDirection(); }
  [[nodiscard]] int laterPasses() const;  // of the style, held inside its table

  void setPath();  // the post prints this figure's words from here on

  // ---- text
  std::string seg(const IsoMove& move);  // motion words; the wire stands at its end
  std::string seg(AcGePoint2d p, AcGePoint2d q) { return seg(IsoMove{p, q}); }
  void row(std::string_view motion, int r, int parts = kWholeRow);
  void raw(std::string_view text) { context_.out += text; }

  // ---- start and lead
  // Row 1 with the threading point for the program's first figure, else an empty block of `laterRow`.
  void startBlock(int figureIndex, int laterRow);
  struct LeadSplit {
    AcGePoint2d point;  // where compensation comes on
    double length = 0;  // mm from there to the entry point
  };
  [[nodiscard]] std::optional<LeadSplit> leadSplit() const;
  // A lead in one block, with the codes of both lead rows.
  void unsplitLead();

  // ---- contour
  // Tapers around span i, cut forward; and from vertex i back to i - 1.
  [[nodiscard]] IsoTaper forwardTaper(int i) const;
  [[nodiscard]] IsoTaper backwardTaper(int i) const;
  // Taper lines, motion and corner word of a span or a piece of one.
  std::string spanLine(const IsoMove& piece, const IsoTaper& taper);
  // A span cut in two at the stop distance before its end; nothing without a stop distance or where it
  // is longer than the span.
  struct StopPoint {
    IsoMove upTo, rest;
  };
  [[nodiscard]] std::optional<StopPoint> stopPoint(const IsoMove& span) const;
  [[nodiscard]] bool wantsStop() const;

  const FigureContext& context_;
  IsoPost& iso_;
  const CToolPath& path_;
  IsoFigureRun& run_;
};

}  // namespace tarnex
