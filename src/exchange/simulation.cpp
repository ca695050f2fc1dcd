// `SIM`: the replay of the paths.
// Knows their polylines, the prompts and the editor's vectors.
#include "exchange/simulation.h"

#include <cmath>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "frame/drawingvars.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

constexpr int kUsualDelay = 40;                         // ms after each span
constexpr double kChordCosine = 0.99;                   // of the angle that one chord spans
const double kChordStep = std::acos(kChordCosine);      // radians
const int kMostChords = int(2 * kPi / kChordStep) + 1;  // of one arc
enum Text { kAskMode = 305, kAskDelay = 178, kLineShown = 306, kArcShown = 307, kPathOf = 20250 };
enum class Mode { kThrough, kStepByStep };

// Hidden for as long as it lives; those that can't be opened for writing stay as they are.
class PathsHidden {
 public:
  PathsHidden(AcEditor& editor, const std::vector<AcDbObjectId>& ids) : editor_(editor), ids_(ids) {
    for (AcDbObjectId id : ids_) editor_.setVisibility(id, false);
  }
  ~PathsHidden() {
    for (AcDbObjectId id : ids_) editor_.setVisibility(id, true);
  }
  PathsHidden(const PathsHidden&) = delete;
  PathsHidden& operator=(const PathsHidden&) = delete;

 private:
  AcEditor& editor_;
  const std::vector<AcDbObjectId>& ids_;
};

// Takes the vectors and the meter off the screen also where the user breaks in.
class ScreenCleared {
 public:
  explicit ScreenCleared(AcEditor& editor) : editor_(editor) {}
  ~ScreenCleared() {
    editor_.acedRestoreStatusBar();
    editor_.acedRedraw();
  }
  ScreenCleared(const ScreenCleared&) = delete;
  ScreenCleared& operator=(const ScreenCleared&) = delete;

 private:
  AcEditor& editor_;
};

class Replay {
 public:
  Replay(Module& module, Mode mode)
      : module_(module),
        editor_(module.editor),
        vars_(module.drawing()),
        paths_(module.state<PathState>().PathList),
        mode_(mode) {}
  void run();

 private:
  void path(std::size_t p);
  void linkTo(std::size_t p, AcGePoint2d start);
  void span(const BulgeVertex& from, AcGePoint2d to);
  void step(const BulgeVertex& from, AcGePoint2d to);
  void pulse() { editor_.acedCommand(pulse_); }

  Module& module_;
  AcEditor& editor_;
  const DrawingVars vars_;
  const std::vector<AcDbObjectId> paths_;  // a copy: a transparent command may rebuild the list
  // The host's line command, begun and ended: it makes the host show what has been drawn.
  const std::vector<CommandArg> pulse_{std::string("line"), std::string("0,0"), std::string()};
  Mode mode_;
  int delayMs_ = kUsualDelay;
  bool stopFlag_ = false;
  AcGePoint2d lastPoint_;
};

void Replay::run() {
  const PathsHidden hidden(editor_, paths_);
  const ScreenCleared cleared(editor_);
  editor_.print("\n");
  if (const auto delay = editor_.acedGetInt(module_.message(kAskDelay))) delayMs_ = delay.value;
  CommandSetting setting(editor_);
  setting.cmdEcho(0);
  for (std::size_t p = 0; p < paths_.size() && !stopFlag_; ++p) path(p);
  editor_.acedRestoreStatusBar();
  if (!stopFlag_) {
    if (const auto end = vars_.getPoint("ENDPOINT")) {
      drawVector(editor_, solid(lastPoint_), *end, kLinkColor);
      pulse();
      editor_.Sleep(delayMs_);
    }
    waitForEnter(editor_);
  }
  editor_.acedCommand({std::string("redraw")});
}

// Read and closed before anything is asked.
void Replay::path(std::size_t p) {
  PolylineCurve walk;
  if (const auto entity = module_.drawing().open<AcDbPolyline>(paths_[p])) walk = entity->polyline();
  if (walk.vertices.empty()) return;
  const auto& v = walk.vertices;
  linkTo(p, v[0].point);
  const bool metered = mode_ == Mode::kThrough;  // step by step the reports tell where it stands
  if (metered)
    editor_.acedSetStatusBarProgressMeter(
        module_.message(kPathOf, {static_cast<long long>(p + 1), static_cast<long long>(paths_.size())}), 0,
        static_cast<long>(v.size() - 1));
  for (std::size_t i = 0; i + 1 < v.size() && !stopFlag_; ++i) {
    span(v[i], v[i + 1].point);
    if (metered) editor_.acedSetStatusBarProgressMeterPos(static_cast<long>(i + 1));
  }
  lastPoint_ = v[0].point;
}

void Replay::linkTo(std::size_t p, AcGePoint2d start) {
  std::optional<AcGePoint3d> from = solid(lastPoint_);
  if (p == 0) from = vars_.getPoint("STARTPOINT");
  if (!from) return;
  drawVector(editor_, *from, solid(start), kLinkColor);
  pulse();
  editor_.Sleep(delayMs_);
}

void Replay::span(const BulgeVertex& from, AcGePoint2d to) {
  if (from.bulge == 0) {
    drawVector(editor_, solid(from.point), solid(to), kCutColor);
  } else {
    const auto points = chordsOfArc(from.point, to, from.bulge);
    for (std::size_t k = 0; k + 1 < points.size(); ++k)
      drawVector(editor_, solid(points[k]), solid(points[k + 1]), kCutColor);
  }
  pulse();
  if (mode_ == Mode::kStepByStep)
    step(from, to);
  else
    editor_.Sleep(delayMs_);
}

void Replay::step(const BulgeVertex& from, AcGePoint2d to) {
  editor_.print("\n");
  editor_.print(from.bulge == 0
                    ? module_.message(kLineShown, {from.point.distanceTo(to)})
                    : module_.message(kArcShown, {bulgeToCircle(from.point, to, from.bulge).radius}));
  const auto input = getUserInput(editor_, "", PickMode::kEntityPickBox, "Q");
  if (input.kind == InputKind::kCancel) stopFlag_ = true;
  if (input.kind == InputKind::kKeyword && input.keyword == 0) mode_ = Mode::kThrough;
}

// Both angles and `e` from 0 to 2π.
bool liesInside(double e, double a, double b, double direction) {
  if (a == b) return false;
  if (direction > 0) return a < b ? a <= e && e <= b : e >= a || e <= b;
  return b < a ? b <= e && e <= a : e <= a || e >= b;
}

}  // namespace

bool drawVector(AcEditor& editor, const AcGePoint3d& from, const AcGePoint3d& to, int color) {
  if (editor.acedGrDraw(from, to, color, false) == Reply::RTNORM) return true;
  editor.acedRedraw();
  return false;
}

std::vector<AcGePoint2d> chordsOfArc(AcGePoint2d a, AcGePoint2d b, double bulge) {
  const auto circle = bulgeToCircle(a, b, bulge);
  const double from = acutAngle(circle.centre, a), to = acutAngle(circle.centre, b);
  const double direction = bulge > 0 ? 1 : -1;
  std::vector<AcGePoint2d> points{acutPolar(circle.centre, from, circle.radius)};
  bool last = false;
  for (int k = 0; k < kMostChords && !last; ++k) {
    double e = (k + 1) * direction * kChordStep + from;
    if (e < 0) e += 2 * kPi;
    if (e > 2 * kPi) e -= 2 * kPi;
    last = !liesInside(e, from, to, direction);
    points.push_back(acutPolar(circle.centre, last ? to : e, circle.radius));
  }
  return points;
}

void SIM(Module& module) {
  AcEditor& editor = module.editor;
  editor.acedGetAcadFrame().focus();
  editor.print("\n");
  const auto input = getUserInput(editor, module.message(kAskMode), PickMode::kEntityPickBox, "S");
  if (input.kind == InputKind::kEnter)
    Replay(module, Mode::kThrough).run();
  else if (input.kind == InputKind::kKeyword && input.keyword == 0)
    Replay(module, Mode::kStepByStep).run();
}

}  // namespace tarnex
