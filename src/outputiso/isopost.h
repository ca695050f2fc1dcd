// A slow-wire program while it is being written: the loaded post, what its words print, and the text of
// numbers, moves, blocks and templates. Knows neither figures' geometry nor passes' order nor files: writers
// decide what is written and ask for every word here.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "host/geometry/values.h"
#include "machining/machinepost.h"
#include "machining/processstyle.h"
#include "outputiso/numbers.h"

namespace tarnex {

// Families whose controls want more than the post's own words can say.
inline constexpr int kFamilyCornerWords = 0;  // an arc corner of a tapered contour is a word in its block
inline constexpr int kFamilySignedUnits = 5;  // six digits with a sign, conditions with a T word, P01 and P11

// What the words print of the figure being written.
struct IsoFigure {
  int nFigureNo = 0;  // in the program, from 1
  int nDirection = 1, nSide = 1, nFlags = 0;
  AcGePoint2d ptFigureStart;  // threading point, drawing coordinates
  ProcessStyle styleNow;
};

// One motion in drawing coordinates, mm; bulge exactly 0 is a line. Rapid moves are lines.
struct IsoMove {
  AcGePoint2d from, to;
  double bulge = 0;
  bool bRapid = false;
};

// Taper (degrees) of the span that is written next and of its neighbours, in the order of cutting.
struct IsoTaper {
  double current = 0, previous = 0;
  bool bAllCorners = false;  // every arc without taper is a corner
  double bulge = 0;          // of the span
  double next = 0;
};

// The texts of a block row that go into one block; a row may be split over two.
enum RowParts { kRowBefore = 1, kRowInside = 2, kRowAfter = 4, kWholeRow = 7 };
inline constexpr int kNoRow = -1;

// Holes of one kind of style and outer shapes of another are cut from the other side.
[[nodiscard]] bool sidesSwap(const ProcessStyle& style, int nSide);

struct IsoPost {
  MachinePost post;  // words 1, 5 and 20 are written here by setPass

  // ---- state of the program. Writers set dTaperNow and rowBase, and nModalG behind a rapid block of their
  // own.
  AcGePoint2d ptOriginCopy;  // program origin when the program began; every coordinate is less this
  bool bIntegerUnits = false, bIncremental = true;
  int nModalG = -1;                  // last code written: 0 rapid, 1 line, 2 and 3 arcs; -1 none
  AcGePoint2d ptLast, ptLastCentre;  // last X and Y, I and J, as they were printed
  // Where a connecting move has left the wire since ptLast was printed, program coordinates: modal output
  // leaves a word out only where both agree with it.
  std::optional<AcGePoint2d> ptConnected;
  double dPathLength = 0;                         // cut so far, mm; rapid moves within a figure count
  std::array<double, kMostPasses> aPassLength{};  // of it what each pass record has cut, mm
  double dTaperNow = 0;                           // degrees
  int nPass = 0, nPassDir = 1;  // 0 is the first pass; 1 forward, -1 backward along the path
  int rowBase = 0;              // added to the numbers of block rows
  int nTaperSign = 0;           // 0: tapers are printed without sign. Outlives the program
  IsoFigure figure;

  // Once per program, when the post has been loaded and before anything is asked. Numbers take the post's
  // style from here on, so that a program's head doesn't depend on the program before it.
  void resetProgram();
  // Once per figure.
  void setPath(IsoFigure next);
  // Before each pass: the words for compensation and taper follow path, style and direction. A pass beyond
  // the style's records works with the last of them.
  void setPass(int pass, int passDir);

  // The offset of the present pass's record, mm; a hole's fit makes it smaller, an outer shape's larger.
  [[nodiscard]] double passOffsetNow() const;
  [[nodiscard]] const PassRecord& passRecord() const;
  [[nodiscard]] double passTaper() const;  // degrees; of the first pass where all take its taper
  // The post marks every block of a first pass instead of printing V8.
  [[nodiscard]] bool marksBlocks() const;

  // ---- numbers and motion
  [[nodiscard]] NumberStyle numberStyle() const;
  [[nodiscard]] std::string formatNumber(double mm) const;
  // X and Y of a connecting move, in program coordinates. Its length is added to dPathLength.
  [[nodiscard]] std::string moveWords(AcGePoint2d to, AcGePoint2d from);
  // Motion words of a span; empty where nothing changes in modal output. `style` is the path's.
  [[nodiscard]] std::string segmentWords(const IsoMove& move, const ProcessStyle& style);
  // Lines ahead of a span whose taper changes, each with its line feed; mostly "".
  [[nodiscard]] std::string taperChange(const IsoTaper& taper);
  // Word behind a corner's motion, its radius in mm; mostly "".
  [[nodiscard]] std::string cornerWord(const IsoTaper& taper, double radius) const;

  // ---- templates
  // One block: `motion` within the texts of a row, ended by exactly one `sep`, "\n" or "". What goes inside
  // the row stands behind the first three letters of the motion.
  [[nodiscard]] std::string block(std::string_view motion, int row, std::string_view sep, int parts) const;
  // The same behind what stands in `out`.
  void appendBlock(std::string& out, std::string_view motion, int row, std::string_view sep, int parts) const;
  // Words, offset positions and line breaks of a template filled in; never fails.
  [[nodiscard]] std::string expand(std::string_view text, std::string_view sep) const;
  // The program's head (0) or end (1), where the post has it switched on.
  [[nodiscard]] std::string textBlock(int which, std::string_view sep) const;
};

}  // namespace tarnex
