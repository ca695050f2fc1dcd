// `tarnex sim`: an animated picture of a drawing's paths or of a program.
// Knows where vectors and moves come from; the picture is the display's.
#include "apps/tarnex/sim.h"

#include <cstdio>

#include "apps/tarnex/job3b.h"
#include "exchange/simulation.h"
#include "exchange/wirewalk.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/editor/screenrecorder.h"
#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

constexpr double kUsualSpeed = 60;   // mm/min
constexpr double kLinkFactor = 10;   // moves between paths are so much faster than cutting
constexpr double kLongestShow = 60;  // seconds that anybody watches
constexpr std::size_t kLinesTold = 5;

int failed(const std::string& sentence, int code) {
  std::fprintf(stderr, "%s\n", sentence.c_str());
  return code;
}

std::string timeText(double seconds) {
  const auto s = static_cast<long long>(std::llround(seconds));
  return s < 60     ? formatted("%.1f s", seconds)
         : s < 3600 ? formatted("%lld:%02lld min", s / 60, s % 60)
                    : formatted("%lld:%02lld:%02lld h", s / 3600, s / 60 % 60, s % 60);
}

// Plays it in a minute at most, unless the time was asked for; the clock tells the time that it takes.
int show(Animation animation, const SimOptions& options, const std::string& what) {
  AnimationOptions look;
  look.width = options.width;
  look.height = options.height;
  look.ground = options.dark ? Ground::dark : Ground::light;
  look.title = what;
  const double takes = animation.seconds();
  if (takes > kLongestShow && !options.realTime && !options.delay) {
    look.clockRate = takes / kLongestShow;
    for (auto& line : animation.lines) {
      line.begin /= look.clockRate;
      for (auto& step : line.steps) step.seconds /= look.clockRate;
    }
  }
  if (const auto error = writeAnimation(options.output, animation, look))
    return failed(error->text(), kFailed);
  std::string times = timeText(takes);
  if (look.clockRate > 1) times += ", shown in " + timeText(animation.seconds());
  std::printf("%s: %s, %s\n", options.output.c_str(), what.c_str(), times.c_str());
  return kDone;
}

std::vector<Curve> shownCurves(const AcDbDatabase& drawing) {
  std::vector<Curve> curves;
  for (AcDbObjectId id : drawing.modelSpaceEntities()) {
    const auto* entity = drawing.peek<AcDbEntity>(id);
    if (!entity || !drawing.isShown(*entity)) continue;
    for (auto& curve : entity->outline()) curves.push_back(std::move(curve));
  }
  return curves;
}

int simDrawing(const SimOptions& options) {
  const JobFolder folder(installFolder());
  Session session(std::make_unique<StringSink>(), folder.path());
  auto load = loadDrawing(options.input, &session.editor.classes());
  if (!load.drawing) return failed(load.failure, kUnreadable);
  session.editor.setDatabase(std::move(load.drawing));
  const std::size_t paths = session.module().state<PathState>().PathList.size();
  if (paths == 0)
    return failed(options.input + ": holds no paths; tarnex 3b --save makes a drawing with paths", kFailed);
  const auto recorder = std::make_shared<ScreenRecorder>();
  session.editor.screenWatchers.push_back(recorder);
  session.editor.setPaced(false);
  const std::string delay = options.delay ? std::to_string(*options.delay) : "";
  if (!session.run({"SIM", "", delay, ""}))
    return failed(options.input + ": the replay was interrupted", kFailed);
  Animation animation = recorder->animation();
  animation.still = shownCurves(session.drawing());
  return show(std::move(animation), options,
              fileNameOf(options.input) + formatted(": %zu path%s", paths, paths == 1 ? "" : "s"));
}

Animation animationOf(const WireWalk& walk, double speed) {
  Animation animation;
  double time = 0;
  for (const auto& move : walk.moves) {
    const truth::Stroke& s = move.stroke;
    std::optional<ArcCurve> arc;
    if (s.arc) arc = ArcCurve{s.centre, s.radius, s.from, s.sweep};
    if (arc)
      animation.still.emplace_back(*arc);
    else if (!move.link)
      animation.still.emplace_back(LineCurve{s.start, s.end});
    const int color = move.link ? kLinkColor : kCutColor;
    if (animation.lines.empty() || animation.lines.back().color != color)
      animation.lines.push_back({color, time, s.start, {}});
    const double seconds = truth::lengthOf(s) / (speed * (move.link ? kLinkFactor : 1)) * 60;
    animation.lines.back().steps.push_back({s.end, arc, seconds});
    time += seconds;
  }
  return animation;
}

int simProgram(const SimOptions& options) {
  const auto bytes = readFile(options.input);
  if (!bytes) return failed(bytes.error.text(), kUnreadable);
  const WireWalk walk = walkProgram(toUtf8(*bytes.value, isUtf8(*bytes.value) ? "UTF-8" : "GB18030"));
  for (std::size_t i = 0; i < std::min(walk.skipped.size(), kLinesTold); ++i)
    std::fprintf(stderr, "%s: %s\n", options.input.c_str(), walk.skipped[i].c_str());
  if (walk.skipped.size() > kLinesTold)
    std::fprintf(stderr, "%s: %zu lines in all are passed over\n", options.input.c_str(),
                 walk.skipped.size());
  if (walk.moves.empty())
    return failed(options.input + ": holds no block that moves the wire",
                  walk.skipped.empty() ? kFailed : kUnreadable);
  const double speed = options.speed.value_or(kUsualSpeed);
  return show(
      animationOf(walk, speed), options,
      fileNameOf(options.input) + formatted(": %zu blocks, %.1f mm cut at %s mm/min", walk.moves.size(),
                                            walk.cutLength, shortestNumber(speed).c_str()));
}

bool isProgram(const std::string& name) {
  return name.size() > 3 && (name.ends_with(".3b") || name.ends_with(".3B"));
}

}  // namespace

int runSim(const SimOptions& options) {
  const bool program = isProgram(options.input);
  if (program && options.delay) return failed("--delay is for drawings; a program takes --speed", kUsage);
  if (!program && options.speed) return failed("--speed is for programs; a drawing takes --delay", kUsage);
  return program ? simProgram(options) : simDrawing(options);
}

}  // namespace tarnex
