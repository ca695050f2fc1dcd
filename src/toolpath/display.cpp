// How a path draws itself: contour, wire centre path, direction, number, tapers, marks, links. Where the wire runs and
// which value is set when, it doesn't know; it shows what stands.
#include "toolpath/display.h"

#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"
#include "frame/drawingvars.h"
#include "frame/settings.h"
#include "host/database/worlddraw.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr char kContinuous[] = "CONTINUOUS", kDashed[] = "Acad_iso02W100", kWideDashed[] = "Acad_iso03W100";

// Fixed colours.
enum Color {
  kRed = 1, kYellow = 2, kGreen = 3, kCyan = 4, kMagenta = 6, kSideColor = 132, kExtraColor = 140, kSegTaperColor = 181,
  kUpperColor = 240
};

// Selection markers; those of runs are the first of their run.
enum Marker {
  kContourMark = 0, kGuideMarks = 0, kUpperMarks = 100, kRulingMarks = 200, kToolMarks = 300, kShaftMark = 502,
  kBarbLeftMark = 503, kBarbRightMark = 504, kCoordMark = 505, kLinkMark = 506, kCodeMarks = 520, kPauseMark = 1000,
  kOvercutMark = 1001, kBreakMark = 1002, kUpperBreakMark = 1003, kLabelMark = 5001, kTaperMark = 5002
};

constexpr double kSideMark = 0.4;        // mm beside the contour: side marks and segment taper marks
constexpr double kPauseRadius = 0.2;     // mm
constexpr double kCrossHalf = 0.5;       // mm
constexpr double kCodeHeight = 0.3;      // of the text height
constexpr double kBarbLength = 1.0 / 3;  // of the arrow
constexpr double kBarbTurn = 0.08333333333333333;  // of half a turn
constexpr int kMostDecimals = 15;        // more say nothing of a double

// Of a four-axis path's marks: the vertex belongs to the lower contour, the upper point to the upper one.
constexpr int kLowerMatch = 1, kUpperMatch = 2;

const WireCutSettings& defaultSettings() {
  static const WireCutSettings kDefaults("");
  return kDefaults;
}

const PathDisplay& displayOf(const AcGiWorldDraw& draw) {
  static const PathDisplay kNone;
  const auto* given = static_cast<const PathDisplay*>(draw.applicationContext());
  return given ? *given : kNone;
}

AcGePoint2d spanMiddle(AcGePoint2d a, AcGePoint2d b, double bulge) {
  return midpoint(a, b) - (b - a).perpVector() * (bulge / 2);
}

}  // namespace

// One drawing of one path: the steps in the order in which they are seen, each with what it leaves in force.
class PathDrawing {
 public:
  PathDrawing(const CToolPath& path, AcGiWorldDraw& draw)
      : path_(path), draw_(draw), display_(displayOf(draw)),
        settings_(display_.settings ? *display_.settings : defaultSettings()),
        offset_(path.dOffset_ - path.nSide_ * path.dClearance_) {
    for (const BulgeVertex& v : path.polyline().vertices) {
      lower_.vertices.push_back(v.point);
      lower_.bulges.push_back(v.bulge);
    }
  }

  void run() {
    contour();
    realContour();
    styleSide();
    wireCentre();
    if (path_.bHasStyle_) isoMarks();
    draw_.setLineType(kContinuous);
    if (lower_.vertices.size() < 2) return;  // nothing that the rest could stand at
    tapers();
    upperContour();
    labels();
    if (!display_.bOrderMode) {
      if (settings_.bShowArrow) arrow();
      if (settings_.nCoordDecimals > 0) coordinates();
    }
    transitChains();
    moveFromPrevious();
    codeInsertions();
  }

 private:
  struct Span {
    AcGePoint2d a, b;
    double bulge = 0;
  };
  static Span spanOf(const PathCurve& c, std::size_t i) { return {c.vertices[i], c.vertices[i + 1], c.bulges[i]}; }
  static std::size_t spansOf(const PathCurve& c) { return c.vertices.empty() ? 0 : c.vertices.size() - 1; }
  [[nodiscard]] AcGePoint2d thread() const { return lower_.vertices[0]; }
  [[nodiscard]] AcGePoint2d entry() const { return lower_.vertices[1]; }
  [[nodiscard]] bool shows(int flag) const { return !path_.bHasStyle_ && !display_.bOrderMode && flag != 0; }
  [[nodiscard]] double turn() const { return path_.nDirection_ * path_.nSide_; }

  void line(AcGePoint3d a, AcGePoint3d b, int marker) {
    draw_.setSelectionMarker(marker);
    const AcGePoint3d ends[] = {a, b};
    draw_.polyline(ends);
  }
  void line(AcGePoint2d a, AcGePoint2d b, int marker) { line(solid(a), solid(b), marker); }
  void segment(const Span& s, int marker, double z = 0) {
    if (s.bulge == 0) {
      line(solid(s.a, z), solid(s.b, z), marker);
      return;
    }
    draw_.setSelectionMarker(marker);
    draw_.circularArc(solid(s.a, z), solid(spanMiddle(s.a, s.b, s.bulge), z), solid(s.b, z));
  }
  // The contour's segments, without the lead-in.
  void contourSegments(const PathCurve& c) {
    for (std::size_t i = 1; i < spansOf(c); ++i) segment(spanOf(c, i), kContourMark);
  }
  void text(AcGePoint2d at, double height, std::string_view utf8) {
    draw_.text(solid(at), {1, 0, 0}, height, utf8);
  }
  void cross(AcGePoint2d p) {
    draw_.setSelectionMarker(kLinkMark);
    const AcGePoint3d flat[] = {{p.x - kCrossHalf, p.y, 0}, {p.x + kCrossHalf, p.y, 0}};
    const AcGePoint3d tall[] = {{p.x, p.y - kCrossHalf, 0}, {p.x, p.y + kCrossHalf, 0}};
    draw_.polyline(flat);
    draw_.polyline(tall);
  }

  void contour() {
    const bool own = path_.bHasStyle_ || path_.dOffset_ != 0;
    draw_.setColor(own ? path_.nColor_ : settings_.nColorTool);
    path_.AcDbPolyline::worldDraw(draw_);
  }

  void realContour() {
    if (!shows(settings_.bShowReal) || path_.dClearance_ == 0 || !path_.bClosed()) return;
    const OffsetPath real = path_.computeOffset(path_.nDirection_, -path_.dClearance_);
    if (real.vertices.empty()) return;
    draw_.setLineType(kContinuous);
    draw_.setColor(settings_.nColorReal);
    contourSegments(real);
  }

  void styleSide() {
    if (!path_.bHasStyle_ || path_.style_.dValueC == 0) return;
    const OffsetPath beside = path_.computeOffset(1, path_.style_.dValueC > 0 ? kSideMark : -kSideMark);
    if (beside.vertices.empty()) return;
    draw_.setLineType(kDashed);
    draw_.setColor(kSideColor);
    contourSegments(beside);
  }

  void wireCentre() {
    if (!path_.bHasStyle_ && (!shows(settings_.bShowTool) || offset_ == 0)) return;
    tool_ = path_.computeOffset(path_.nSide_, path_.nDirection_ * offset_);
    if (path_.bHasStyle_ || tool_.vertices.empty()) return;
    draw_.setLineType(kDashed);
    draw_.setColor(settings_.nColorTool);
    for (std::size_t i = 0; i < spansOf(tool_); ++i) segment(spanOf(tool_, i), kToolMarks + static_cast<int>(i));
  }

  void isoMarks();
  void pauseRing();
  void overcut();
  void tapers();
  void pathTaper();
  void segmentTaper(std::size_t i);
  void upperContour();
  void labels();
  void arrow();
  void coordinates();
  void transitChains();
  void moveFromPrevious();
  void codeInsertions();

  const CToolPath& path_;
  AcGiWorldDraw& draw_;
  const PathDisplay& display_;
  const WireCutSettings& settings_;
  const double offset_;  // drawn contour to wire centre, mm
  PathCurve lower_, tool_;
};

// The lengths of overcut and exit belong to the settings here; keeping them in the path as well is the writers'
// matter, since a drawing changes nothing.
void PathDrawing::isoMarks() {
  pauseRing();
  if (path_.nSide_ == kInnerHole) {
    overcut();
    if (!path_.hasFlag(kOpenPath)) return;
    draw_.setColor(kMagenta);
    line(path_.ptBreak_, path_.ptBreakExit_, kBreakMark);
    return;
  }
  if (path_.nBreakSeg_ < 0) return;
  line(path_.ptBreak_, path_.ptBreakExit_, kBreakMark);
  if (path_.hasFlag(kFourAxis)) line(path_.ptBreakUpper_, path_.ptBreakUpperExit_, kUpperBreakMark);
}

void PathDrawing::pauseRing() {
  const std::size_t spans = spansOf(tool_);
  if (!(settings_.dCutoffLen > 0) || path_.hasFlag(kOpenPath) || spans == 0) return;
  const Span last = spanOf(tool_, spans - 1);
  const auto at = pointAlongSpan(last.b, last.a, -last.bulge, settings_.dCutoffLen);
  if (!at) return;
  draw_.setColor(kRed);
  draw_.setSelectionMarker(kPauseMark);
  draw_.circle(solid(at->point), kPauseRadius);
}

void PathDrawing::overcut() {
  const double length = path_.bClosed() || path_.bCircle() ? settings_.dOvercutLen : 0;
  if (!(length > 0) || spansOf(tool_) < 2) return;
  const Span first = spanOf(tool_, 1);
  const auto at = pointAlongSpan(first.a, first.b, first.bulge, length);
  if (!at) return;
  draw_.setColor(kYellow);
  double exit = settings_.dOvercutExit;
  if (exit <= 0) exit = tool_.vertices[0].distanceTo(tool_.vertices[1]) / 2;
  AcGeVector2d way;
  if (first.bulge == 0) {
    way = AcGeMatrix3d::rotation(kPi * turn() * 0.5, {}).apply(first.b - first.a);
  } else {
    const AcGePoint2d centre = bulgeToCircle(first.a, first.b, first.bulge).centre;
    way = (centre - at->point) * (turn() * (first.bulge >= 0 ? 1 : -1));
  }
  line(at->point, at->point + way.normal() * exit, kOvercutMark);
}

void PathDrawing::tapers() {
  if (!path_.bHasStyle_ && path_.dTaper_ != 0) pathTaper();
  if (path_.dTaper_ != 0) return;
  draw_.setLineType(kDashed);
  draw_.setColor(kSegTaperColor);
  const std::size_t count = std::min(spansOf(lower_), path_.aSegTaper_.size());
  for (std::size_t i = 1; i < count; ++i)
    if (path_.aSegTaper_[i] != 0) segmentTaper(i);
}

// The number in a ring about the threading point; a single letter gets the room of two.
void PathDrawing::pathTaper() {
  const std::string number = formatted("%g", path_.dTaper_);
  const double letters = number.size() == 1 ? 2 : static_cast<double>(number.size());
  const double h = settings_.dTextHeight, w = letters * h * 0.5;
  draw_.setSelectionMarker(kTaperMark);
  draw_.setColor(kRed);
  text({thread().x - w + h / 2, thread().y - h / 2}, h, number);
  draw_.setSelectionMarker(kShaftMark);
  draw_.setColor(kYellow);
  draw_.circle(solid(thread()), w);
}

void PathDrawing::segmentTaper(std::size_t i) {
  const Span s = spanOf(lower_, i);
  const double taper = path_.aSegTaper_[i], by = taper > 0 ? kSideMark : -kSideMark;
  Span copy = s;
  AcGePoint2d middle;
  if (s.bulge == 0) {
    const double left = acutAngle(s.a, s.b) + kPi / 2;
    copy.a = acutPolar(s.a, left, by);
    copy.b = acutPolar(s.b, left, by);
    middle = midpoint(copy.a, copy.b);
  } else {
    const SpanCircle circle = bulgeToCircle(s.a, s.b, s.bulge);
    const double from = acutAngle(circle.centre, s.a);
    copy.a = acutPolar(circle.centre, from, circle.radius + by);
    copy.b = acutPolar(circle.centre, acutAngle(circle.centre, s.b), circle.radius + by);
    middle = acutPolar(circle.centre, from + 2 * std::atan(s.bulge), circle.radius);
  }
  segment(copy, kRulingMarks + static_cast<int>(i));
  draw_.setSelectionMarker(kTaperMark);
  text(middle, settings_.dTextHeight, formatted("%g", taper));
}

void PathDrawing::upperContour() {
  const PathCurve& upper = path_.upper_;
  if (path_.hasFlag(kFourAxis)) {
    for (std::size_t i = 0; i < spansOf(upper); ++i) {
      draw_.setColor(kUpperColor);
      segment(spanOf(upper, i), kUpperMarks + static_cast<int>(i), path_.dHeight_);
      if (display_.bShowMatchLines || i >= lower_.vertices.size()) continue;
      draw_.setColor(kYellow);
      line(solid(lower_.vertices[i]), solid(upper.vertices[i], path_.dHeight_), kRulingMarks + static_cast<int>(i));
    }
  } else if (path_.hasFlag(kGuideCurve)) {
    draw_.setColor(kUpperColor);
    for (std::size_t i = 0; i < spansOf(upper); ++i) segment(spanOf(upper, i), kGuideMarks + static_cast<int>(i));
  }
}

void PathDrawing::labels() {
  if (path_.hasFlag(kIsoMark64)) {
    draw_.setColor(kExtraColor);
    line(thread(), entry(), kContourMark);
  }
  if (display_.bOrderMode || (settings_.bShowNumber && path_.nPathNo_ >= 1)) {
    draw_.setSelectionMarker(kLabelMark);
    draw_.setColor(settings_.nColorNumber);
    text(entry(), settings_.dTextHeight, formatted("%d", path_.nPathNo_));
  }
  if (path_.hasFlag(kAllCornersR)) {
    draw_.setSelectionMarker(kLabelMark);
    draw_.setColor(kGreen);
    text(thread(), settings_.dTextHeight, "R");
  }
}

// Beside the contour at the entry point, on the wire's side, in cutting direction.
void PathDrawing::arrow() {
  if (spansOf(lower_) < 2) return;
  const Span first = spanOf(lower_, 1);
  const double length = settings_.dArrowLen;
  AcGePoint2d base, tip;
  if (first.bulge == 0) {
    const double ahead = acutAngle(first.a, first.b);
    base = acutPolar(first.a, ahead + turn() * kPi / 2, offset_);
    tip = acutPolar(base, ahead, length);
  } else {
    const AcGePoint2d centre = bulgeToCircle(first.a, first.b, first.bulge).centre;
    const double out = path_.nDirection_ * first.bulge > 0 ? acutAngle(centre, first.a) : acutAngle(first.a, centre);
    base = acutPolar(first.a, out, -path_.nSide_ * offset_);
    tip = acutPolar(base, out + path_.nDirection_ * kPi / 2, length);
  }
  draw_.setColor(path_.nDirection_ == kCounterClockwise ? kRed : kCyan);
  line(base, tip, kShaftMark);
  const double back = acutAngle(tip, base), barb = kPi * kBarbTurn;
  line(acutPolar(tip, back + barb, length * kBarbLength), tip, kBarbLeftMark);
  line(acutPolar(tip, back - barb, length * kBarbLength), tip, kBarbRightMark);
}

void PathDrawing::coordinates() {
  const int decimals = std::min<int>(settings_.nCoordDecimals, kMostDecimals);
  draw_.setSelectionMarker(kCoordMark);
  draw_.setColor(kCyan);
  text(thread(), settings_.dTextHeight,
       formatted("(%.*f , %.*f )", decimals, thread().x - display_.ptOrigin.x, decimals,
                 thread().y - display_.ptOrigin.y));
}

void PathDrawing::transitChains() {
  const bool first = path_.nPathNo_ == 1, last = path_.nPathNo_ == display_.pathCount;
  if (!first && !last) return;
  draw_.setLineType(kWideDashed);
  draw_.setColor(settings_.nColorNull);
  if (first && !display_.startChain.empty()) {
    const auto& chain = display_.startChain;
    for (std::size_t i = 0; i < chain.size(); ++i) {
      cross(chain[i]);
      if (i > 0) line(chain[i - 1], chain[i], kLinkMark);
    }
    line(chain.back(), thread(), kLinkMark);
  }
  if (last && !display_.endChain.empty()) {
    AcGePoint2d from = path_.getEndPoint(false);
    for (std::size_t j = 0; j < display_.endChain.size(); ++j) {
      const AcGePoint2d to = display_.endChain[j];
      if (j == 0) line(from, to, kLinkMark);
      cross(to);
      if (j > 0) line(from, to, kLinkMark);
      from = to;
    }
  }
}

// A path read from a file doesn't know yet where the wire came from: no line then.
void PathDrawing::moveFromPrevious() {
  if (display_.bOrderMode || !settings_.bShowNull || path_.nPathNo_ <= 1) return;
  if (path_.ptPrevEnd_ == CToolPath().ptPrevEnd_) return;
  draw_.setLineType(kWideDashed);
  draw_.setColor(settings_.nColorNull);
  line(path_.ptPrevEnd_, thread(), kLinkMark);
}

void PathDrawing::codeInsertions() {
  const int vertices = static_cast<int>(lower_.vertices.size());
  for (std::size_t i = 0; i < path_.aCodeVertex_.size() && i < path_.aCodeText_.size(); ++i) {
    const int at = path_.aCodeVertex_[i];
    if (at < 0 || at >= vertices) continue;  // a point of an old record that no vertex matched
    draw_.setSelectionMarker(kCodeMarks + static_cast<int>(i));
    draw_.setColor(kRed);
    text(lower_.vertices[static_cast<std::size_t>(at)], kCodeHeight * settings_.dTextHeight, path_.aCodeText_[i]);
  }
}

// ---- the entity's operations -----------------------------------------------------------------------------------

void CToolPath::worldDraw(AcGiWorldDraw& draw) const { PathDrawing(*this, draw).run(); }

void CToolPath::getOsnapPoints(OsnapMode mode, AcGePoint3d pick, AcGePoint3d last,
                               std::vector<AcGePoint3d>& out) const {
  if (!hasFlag(kFourAxis) || mode != OsnapMode::kOsModeEnd) {
    CToolPathBase::getOsnapPoints(mode, pick, last, out);
    return;
  }
  const auto marked = [&](std::size_t i, int match) {
    return i < aSyncMark_.size() && (static_cast<int>(aSyncMark_[i]) & match) != 0;
  };
  for (std::size_t i = 0; i < polyline().vertices.size(); ++i)
    if (marked(i, kLowerMatch)) out.push_back(solid(polyline().vertices[i].point));
  for (std::size_t i = 1; i < upper_.vertices.size(); ++i)
    if (marked(i, kUpperMatch)) out.push_back(solid(upper_.vertices[i], dHeight_));
}

void CToolPath::getGripPoints(std::vector<AcGePoint3d>& out) const {
  CToolPathBase::getGripPoints(out);
  if (!hasFlag(kFourAxis)) return;
  for (const AcGePoint2d p : upper_.vertices) out.push_back(solid(p));
}

// The two contours of a four-axis path are matched vertex by vertex; its grips stay where they are.
ErrorStatus CToolPath::moveGripPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) {
  return hasFlag(kFourAxis) ? ErrorStatus::eOk : CToolPathBase::moveGripPointsAt(indices, offset);
}
ErrorStatus CToolPath::moveStretchPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) {
  return hasFlag(kFourAxis) ? ErrorStatus::eOk : CToolPathBase::moveStretchPointsAt(indices, offset);
}

// Without a catalogue within reach; commands that have one print pathListLines instead.
void CToolPath::list(std::vector<std::string>& lines) const {
  AcDbEntity::list(lines);
  const auto plain = [](int id, std::initializer_list<FormatArg> args) -> std::string {
    const char* pattern = id == 539   ? "  Path number: %d"
                          : id == 541 ? "  Fit clearance: %g"
                          : id == 542 ? "  Wire offset: %g"
                                      : "  Lengths are in millimetres.";
    return formatChecked(pattern, args);
  };
  for (std::string& line : pathListLines(*this, plain)) lines.push_back(std::move(line));
}

std::vector<std::string> pathListLines(const CToolPath& path, const PathText& text) {
  std::vector<std::string> lines{text(539, {static_cast<long long>(path.nPathNo())}), text(541, {path.dClearance()}),
                                 text(542, {path.dOffset()}), text(540, {})};
  for (std::string& line : lines) {
    const std::size_t first = line.find_first_not_of("\r\n");
    line = first == std::string::npos ? std::string() : line.substr(first, line.find_last_not_of("\r\n") - first + 1);
  }
  return lines;
}

void readTransitChains(AcDbDatabase& drawing, PathDisplay& display) {
  constexpr int kHighestStart = 100;
  const DrawingVars vars(drawing);
  const auto point = [&](const char* key, int k) { return vars.getPoint(key + std::to_string(k)); };
  display.startChain.clear();
  display.endChain.clear();
  int k = kHighestStart;
  while (k >= 0 && !point("STARTPOINT", k)) --k;
  for (; k >= 0; --k) {
    const auto p = point("STARTPOINT", k);
    if (!p) break;
    display.startChain.push_back(p->flat());
  }
  for (int j = 0;; ++j) {
    const auto p = point("ENDPOINT", j);
    if (!p) break;
    display.endChain.push_back(p->flat());
  }
}

}  // namespace tarnex
