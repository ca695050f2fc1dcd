// One cut of the wire around one contour, as an entity of the drawing: the polyline with its lead-in, and
// everything needed to turn it into an NC program later. Knows contours, records and compensation; commands
// and NC formats are above it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/database/entities.h"
#include "machining/processstyle.h"

namespace tarnex {

struct WireCutSettings;

// Bits of nFlags.
enum PathFlag {
  kContourPath = 1,
  kOpenPath = 2,
  kFourAxis = 8,
  kGuideCurve = 16,
  kPunchJob = 32,
  kIsoMark64 = 64,
  kAllCornersR = 128,
  kAutoFixed = 256,
};

// Sides and directions as the program counts them.
inline constexpr int kInnerHole = 1, kOuterShape = -1;
inline constexpr int kCounterClockwise = 1, kClockwise = -1;

// An empty layer over the host's polyline: the application's own class between it and the real entity.
class CToolPathBase : public AcDbPolyline {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;

 protected:
  CToolPathBase() = default;
  CToolPathBase(const CToolPathBase&) = default;
};

// A second contour's source, or the first one's: a polyline (x, y, bulge per vertex) or a circle.
struct PathContour {
  bool bCircle = false;
  double dRadius = 0;  // mm
  AcGePoint2d ptCenter;
  bool bClosed = true;
  std::vector<AcGePoint3d> aContour;  // the third coordinate is the bulge
  bool operator==(const PathContour&) const = default;
};

// A curve that accompanies the path's vertices: bulges[i] belongs to the segment from vertices[i] to
// vertices[i + 1].
struct PathCurve {
  std::vector<AcGePoint2d> vertices;
  std::vector<double> bulges;
  bool operator==(const PathCurve&) const = default;
};

struct OffsetPath : PathCurve {
  bool ownMethod = false;  // the host's offset wasn't taken (catalogue message 134 with the path's number)
  int pieces = 1;          // curves that the host's offset gave; only the first is the path
};

// What the marks of the program on a styled path come to; an unstyled path leaves what stands.
struct DisplayedOvercut {
  double dOvercutLen = 0, dOvercutExit = 0;  // of the path, mm
  double settingsExit = 0;                   // dOvercutExit of the settings, mm
  struct Line {
    AcGePoint2d from, to;
  };
  std::optional<Line> exit;  // from the end of the overcut away from the contour
};

inline constexpr const char* kCornerMark = "R";  // code text at the start of a corner's arc
inline constexpr AcGePoint2d kNoBreak{-99999.0, 99999.0};

// Where a program leaves the contour and how it moves away. The upper half counts on a four-axis path alone.
struct PathBreak {
  int nBreakSeg = -1;  // segment from this vertex on, -1 for no break
  AcGePoint2d ptBreak = kNoBreak, ptBreakExit;
  double dBreakBulgeA = 0, dBreakBulgeB = 0;  // of the segment's parts before and behind the point
  AcGePoint2d ptBreakUpper, ptBreakUpperExit;
  double dBreakUpperBulgeA = 0, dBreakUpperBulgeB = 0;
  bool operator==(const PathBreak&) const = default;
};

// Lists that the ISO writers work from.
struct OutputLists : PathCurve {
  std::vector<double> taper;
  std::vector<int> pathVertex;  // the path's vertex that each one is; -1 for those that corner relief added
  int relievedCorners = 0;
};

// The corner relief routine: given a closed polyline of the drawing, two lengths (mm) and nSide, it leaves
// one new polyline as the newest entity and one flag per vertex of it, not 0 for vertices that it added.
// False: not available.
using CornerRelief = std::function<bool(AcDbObjectId polyline, double lengthA, double lengthB, int nSide,
                                        std::vector<int>& flags)>;

inline constexpr double kMarkedBulge = 0.000001;  // a straight span that an out-and-back step left
[[nodiscard]] constexpr bool isArcBulge(double bulge) {
  return bulge != 0 && bulge != kMarkedBulge;
}

class CToolPath : public CToolPathBase {
 public:
  CToolPath() { upperContour_.bClosed = false; }
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override {
    return std::unique_ptr<AcDbObject>(new CToolPath(*this));
  }

  // ---- record
  static constexpr int kFormatVersion = 213;
  ErrorStatus dwgOutFields(AcDbDwgFiler& filer) const override;
  ErrorStatus dwgInFields(AcDbDwgFiler& filer) override;  // every version up to 213; above: eMakeMeProxy

  // ---- host operations
  // Draws from the fields alone and changes none; what a drawing is to leave behind, refreshFromDisplay
  // takes.
  void worldDraw(AcGiWorldDraw& draw) const override;
  void list(std::vector<std::string>& lines) const override;
  ErrorStatus transformBy(const AcGeMatrix3d& m) override;
  void getOsnapPoints(OsnapMode mode, AcGePoint3d pick, AcGePoint3d last,
                      std::vector<AcGePoint3d>& out) const override;
  void getGripPoints(std::vector<AcGePoint3d>& out) const override;
  ErrorStatus moveGripPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) override;
  ErrorStatus moveStretchPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) override;
  // Keeps segment tapers, code insertions and the break in step; the upper contour of a four-axis path has to
  // be matched anew.
  void addVertexAt(int index, AcGePoint2d p, double bulge);
  // After vertices were moved: a break that no longer lies on the path goes to the path's nearest point
  // behind the lead-in, its exit along with it; the bulges of its halves become those of the span that it
  // lies on.
  void settleBreak();

  // ---- persisted fields
  [[nodiscard]] int nPathNo() const { return nPathNo_; }
  [[nodiscard]] int nSide() const { return nSide_; }            // kInnerHole or kOuterShape
  [[nodiscard]] int nDirection() const { return nDirection_; }  // kCounterClockwise or kClockwise
  [[nodiscard]] double dTaper() const { return dTaper_; }       // of the whole path, degrees
  [[nodiscard]] const std::vector<double>& aSegTaper() const {
    return aSegTaper_;
  }  // one per vertex, degrees
  [[nodiscard]] const PathContour& contour() const { return contour_; }
  [[nodiscard]] bool bCircle() const { return contour_.bCircle; }
  [[nodiscard]] bool bClosed() const { return contour_.bClosed; }
  [[nodiscard]] int flags() const { return nFlags_; }
  [[nodiscard]] bool hasFlag(PathFlag f) const { return (nFlags_ & f) != 0; }
  [[nodiscard]] double dClearance() const { return dClearance_; }  // drawn contour to real part contour, mm
  [[nodiscard]] double dOffset() const { return dOffset_; }        // wire radius plus spark gap, mm
  [[nodiscard]] const PathCurve& upper() const { return upper_; }
  [[nodiscard]] const PathContour& upperContour() const { return upperContour_; }
  [[nodiscard]] double dHeight() const { return dHeight_; }
  [[nodiscard]] int nColor() const { return nColor_; }
  [[nodiscard]] bool bHasStyle() const { return bHasStyle_; }
  [[nodiscard]] AcGePoint2d ptBreak() const { return ptBreak_; }
  [[nodiscard]] AcGePoint2d ptBreakExit() const { return ptBreakExit_; }
  [[nodiscard]] int nBreakSeg() const { return nBreakSeg_; }
  [[nodiscard]] PathBreak breakPoint() const;
  void setBreakPoint(const PathBreak& at);
  // Past the closing point, and of the move that leaves it, mm; as refreshFromDisplay left them.
  [[nodiscard]] double dOvercutLen() const { return dOvercutLen_; }
  [[nodiscard]] double dOvercutExit() const { return dOvercutExit_; }

  void setPathNo(int number);
  void setProcessStyle(const ProcessStyle& style);
  [[nodiscard]] ProcessStyle getProcessStyle() const;
  [[nodiscard]] int passCount() const { return style_->nPassLast; }
  [[nodiscard]] bool hasFirstPass() const { return style_->passes[0].sCode != "00"; }
  void setColor(int color);
  void setFlag(int mask, bool on);
  void setOffset(double mm);
  [[nodiscard]] bool setClearance(
      double mm);  // false for an open path, nothing changed: catalogue message 18
  void setHeight(double mm);
  void setTaper(double degrees);  // clears the segment tapers
  // Taper of the segment under the point; false when no segment lies there.
  [[nodiscard]] bool setSegmentTaper(AcGePoint2d pick, double degrees);
  // The same for the segment that starts at a vertex; no such vertex: nothing happens.
  void setSegmentTaperAt(int vertex, double degrees);
  [[nodiscard]] bool hasSegTaper() const;
  // Where the wire stood before the path: follows from its place in the order, so it is neither stored nor
  // undone, and may be set on a path that isn't open. Displays are told of a change.
  void setPrevEnd(AcGePoint2d p) const;
  [[nodiscard]] AcGePoint2d getPrevEnd() const { return ptPrevEnd_; }
  // Where the wire stands after the path.
  using AcDbPolyline::getEndPoint;
  [[nodiscard]] AcGePoint2d getEndPoint(bool bTool) const;
  [[nodiscard]] double contourLength() const;  // mm
  [[nodiscard]] std::string getCodeAt(int vertex) const;
  void setCodeAt(int vertex, std::string text);
  void removeCodeAt(int vertex);
  enum class CornerMark { kDone, kNoSegment, kStraight, kNextIsArc, kPreviousIsArc };
  // Gives the corner arc under the point the code text "R", or takes its text away; the mark for all corners
  // goes as well. The arc must stand between two straight spans. A text that stands there already is left.
  // Anything but kDone: no code has changed.
  [[nodiscard]] CornerMark markCorner(AcGePoint2d pick, bool on);
  [[nodiscard]] const std::vector<int>& aCodeVertex() const { return aCodeVertex_; }
  [[nodiscard]] const std::vector<std::string>& aCodeText() const { return aCodeText_; }

  // The source entities as the path keeps them, on the path's layer, colour by layer: to be added to the
  // drawing.
  [[nodiscard]] std::vector<std::unique_ptr<AcDbEntity>> restoredContour() const;
  // Takes a polyline as guide curve.
  void setGuide(const PolylineCurve& guide);

  // ---- making
  struct Making {
    AcGePoint2d thread, entry;  // T and Q
    int nSide = 1, nDirection = 1;
    double dOffset = 0, dClearance = 0;  // mm
  };
  // False where T and Q are one point: a path has a lead-in.
  // A circle as `arcs` arcs (at least two) from the entry's direction on; false for fewer than one arc or no
  // radius.
  [[nodiscard]] bool initCircle(const Making& making, AcGePoint2d centre, double radius, int arcs);
  // A contour entered on its span `spanIndex`, which is split at Q.
  [[nodiscard]] bool initContour(const Making& making, const PolylineCurve& contour, int spanIndex);
  // An open curve from its first vertex to its last, T before it. Vertices within 0.001 mm of the one before
  // are left out, also the first one when T lies there: the curve keeps its shape. A job leaves its last
  // vertex sideways, to the side of nDirection.
  struct OpenMaking {
    AcGePoint2d thread;       // T
    int nDirection = 1;       // 1 the wire is left of travel, -1 right
    double dOffset = 0;       // mm
    bool job = false;         // slow wire: with a style, and a break at the end
    double dOvercutExit = 0;  // of a job, mm; 0 or less: half the lead-in
  };
  // False: fewer than two places are left, or more vertices than can be stored.
  [[nodiscard]] bool initOpen(const OpenMaking& making, const PolylineCurve& curve);

  // ---- compensation
  //
  // The polyline beside the path, left of travel where side * distance is above 0. Vertex 0 is the threading
  // point.
  [[nodiscard]] OffsetPath computeOffset(int side, double distance) const;
  [[nodiscard]] OffsetPath wireCentrePath() const;  // by dOffset and dClearance
  // mm from the path to the wire's centre, above 0 left of travel.
  [[nodiscard]] double wireOffsetToTheLeft() const {
    return nSide_ * nDirection_ * (dOffset_ - nSide_ * dClearance_);
  }
  [[nodiscard]] OffsetPath realContour() const;  // by dClearance alone
  // The overcut that a drawing with these settings shows: its length on a path that closes, on the inner
  // side; elsewhere the exit from the break point. Settings without an exit length (0 or less) get half the
  // wire's way in as theirs, from the first path that needs it.
  [[nodiscard]] DisplayedOvercut displayedOvercut(const WireCutSettings& settings) const;
  // Takes over what displayedOvercut tells, as if the path had just been drawn: for writers, who work with
  // these lengths. In drawing order, since the first path may set the exit of all.
  void refreshFromDisplay(WireCutSettings& settings);
  // False on an open path, nothing changed: catalogue messages 19 and 20. What belongs to vertices and spans
  // follows them: tapers, codes (the threading point keeps its own, a corner's mark stays with its arc), the
  // break, and the upper contour of a
  // four-axis path. A break leaves for the side that the path is entered from.
  [[nodiscard]] bool reverse();
  [[nodiscard]] bool flipSide();
  // `relief` may be empty: the lists are then copies of the polyline.
  [[nodiscard]] OutputLists prepareOutput(const WireCutSettings& settings, const CornerRelief& relief) const;

 protected:
  CToolPath(const CToolPath&) = default;

 private:
  void take(const Making& making);
  void leaveSideways(double exit);  // the break of an open job, at its last vertex
  void moveBreakFor(int index, AcGePoint2d p);
  [[nodiscard]] bool isCorner(int i) const;  // an arc between two straight spans
  void reverseCodes(int n);                  // before the vertices
  void reverseBreak(int n);
  void reverseUpper(std::size_t n);
  [[nodiscard]] DisplayedOvercut overcutOn(const PathCurve& wire, const WireCutSettings& settings) const;
  friend class PathRecord;
  friend class PathDrawing;
  int nPathNo_ = 0, nSide_ = 0, nDirection_ = 0;
  double dTaper_ = 0;
  std::vector<double> aSegTaper_;
  PathContour contour_, upperContour_;
  int nFlags_ = kContourPath;
  double dClearance_ = 0, dOffset_ = 0;
  PathCurve upper_;
  std::vector<AcGePoint2d> aSyncVert_;
  std::vector<double> aSyncMark_;
  double dHeight_ = 0;
  int nColor_ = kColorByLayer;
  bool bHasStyle_ = false;
  SharedStyle style_;  // its nCode doesn't count: it follows the colour, which differs from path to path
  int nCode_ = 700;
  AcGePoint2d ptBreak_ = kNoBreak, ptBreakExit_;
  int nBreakSeg_ = -1;
  double dBreakBulgeA_ = 0, dBreakBulgeB_ = 0;
  AcGePoint2d ptBreakUpper_, ptBreakUpperExit_;
  double dBreakUpperBulgeA_ = 0, dBreakUpperBulgeB_ = 0;
  double dOvercutLen_ = 0, dOvercutExit_ = 0;
  std::vector<int> aCodeVertex_;
  std::vector<std::string> aCodeText_;
  mutable AcGePoint2d ptPrevEnd_{-9999, 9999};
};

}  // namespace tarnex
