// The writer of animated SVG pictures.
// Knows elements and times; path data is made by SvgPath, the bar by its own script.
#include "host/display/animation.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "host/display/animationbar.h"
#include "host/display/shape.h"
#include "host/display/svgpath.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

using Sink = std::function<void(std::string_view)>;

constexpr double kHold = 1.5;                 // seconds that the finished picture stands
constexpr double kShortestRound = 0.5;        // seconds; an animation without time is shown so long
constexpr double kFrame = 1.0 / 30;           // seconds; what happens within one isn't told apart by the eye
constexpr double kMostPlaces = 6000;          // of the dot; beyond it those are left out that come soonest
const double kDotTurn = kPi / 24;             // radians that the dot goes straight on an arc
constexpr std::size_t kLongestPath = 30'000;  // letters; readers of XML set limits to an attribute
constexpr std::size_t kMostSteps = 400;   // of a line that grows: a browser works out all of it each frame
constexpr std::size_t kManyStill = 2000;  // curves
constexpr int kTimeDecimals = 7;          // of a share of the round
constexpr double kDotRadius = 0.9;        // mm on paper
constexpr int kWireColor = 1;
constexpr double kSameSpeed = 1e-6;  // share; steps of one speed are one step in time
constexpr int kChords = 96;          // of an ellipse or NURBS in the still drawing

void appendShare(std::string& out, double share) {
  appendCount(out, std::llround(std::clamp(share, 0.0, 1.0) * 1e7), kTimeDecimals);
}

// "0;.25;1" beside "...": values and the moments at which they hold, as SVG wants them.
class Track {
 public:
  explicit Track(double round) : round_(round) {}
  void at(double seconds, std::string_view value) {
    if (!values_.empty()) values_ += ';', times_ += ';';
    values_ += value;
    appendShare(times_, seconds / round_);
  }
  [[nodiscard]] std::string attributes() const {
    return "values=\"" + values_ + "\" keyTimes=\"" + times_ + '"';
  }
  [[nodiscard]] bool empty() const { return values_.empty(); }

 private:
  double round_;
  std::string values_, times_;
};

std::string escaped(std::string_view utf8) {
  std::string out;
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t c = nextCodePoint(utf8, at);
    if (c == '&' || c == '<')
      out += c == '&' ? "&amp;" : "&lt;";
    else
      appendUtf8(out, c < 0x20 || c == 0x7F ? U' ' : c >= 0xFFFE && c <= 0xFFFF ? 0xFFFD : c);
  }
  return out;
}

double lengthOf(const AnimatedStep& step, AcGePoint2d from) {
  return step.arc ? std::abs(step.arc->sweep) * step.arc->radius : from.distanceTo(step.end);
}

double secondsOf(const AnimatedLine& line) {
  double seconds = 0;
  for (const auto& step : line.steps) seconds += step.seconds;
  return seconds;
}

double lengthOf(const AnimatedLine& line) {
  double length = 0;
  AcGePoint2d at = line.start;
  for (const auto& step : line.steps) {
    length += lengthOf(step, at);
    at = step.end;
  }
  return length;
}

Extents2d extentsOf(const Animation& animation) {
  Extents2d all;
  for (const auto& curve : animation.still) all.add(extents(curve));
  for (const auto& line : animation.lines) {
    all.add(line.start);
    for (const auto& step : line.steps) step.arc ? all.add(extents(Curve(*step.arc))) : all.add(step.end);
  }
  return all;
}

// How much of the line stands at which moment: from 1 (nothing) to 0 (all), the offset of a dash as long as
// the line.
void growth(const AnimatedLine& line, Track& track) {
  const double whole = lengthOf(line);
  double time = line.begin, length = 0, speed = -1;
  std::string pending = "1";
  AcGePoint2d at = line.start;
  track.at(0, "1.5");
  for (const auto& step : line.steps) {
    const double way = lengthOf(step, at);
    const double newSpeed = step.seconds > 0 ? way / step.seconds : INFINITY;
    if (!(std::abs(newSpeed - speed) <= kSameSpeed * speed)) track.at(time, pending);
    speed = newSpeed;
    at = step.end;
    time += step.seconds;
    length += way;
    pending.clear();
    appendShare(pending, whole > 0 ? 1 - length / whole : 0);
  }
  track.at(time, "0");
}

// Places on an arc between its ends, so many that the dot keeps to it.
template <class Pass>
void passArc(const ArcCurve& arc, double begin, double seconds, const Pass& pass) {
  const int pieces = static_cast<int>(std::ceil(std::abs(arc.sweep) / kDotTurn));
  for (int i = 1; i < pieces; ++i) {
    const double share = static_cast<double>(i) / pieces;
    pass(begin + seconds * share, acutPolar(arc.centre, arc.startAngle + arc.sweep * share, arc.radius));
  }
}

class AnimationWriter {
 public:
  AnimationWriter(const Animation& animation, const AnimationOptions& options, const Sink& sink)
      : animation_(animation),
        options_(options),
        sink_(sink),
        page_(layoutPage(extentsOf(animation), options)),
        last_(std::max(animation.seconds(), kShortestRound)),
        round_(last_ + kHold) {}

  void write() {
    begin();
    still();
    sink_("<g stroke-width=\"" + mm(pen()) + "\" stroke-dasharray=\"1 2\" stroke-dashoffset=\"1.5\">\n");
    for (const auto& line : animation_.lines) secondsOf(line) < kFrame ? shortLine(line) : longLine(line);
    flushGroups();
    sink_("</g>\n</g>\n");
    dot();
    bar();
    sink_("</svg>\n");
  }

 private:
  // Short lines of one colour that come within one frame.
  struct Group {
    int color = 0;
    double begin = 0;
    SvgPath path;
  };

  [[nodiscard]] double pen() const {
    return std::isfinite(options_.lineWidth) ? std::clamp(options_.lineWidth, 0.01, 10.0) : 0.4;
  }
  [[nodiscard]] static std::string mm(double v) { return shortestNumber(std::round(v * 1e5) / 1e5); }
  [[nodiscard]] std::string duration() const {
    return formatted(" dur=\"%.6gs\" repeatCount=\"indefinite\"", round_);
  }
  [[nodiscard]] std::string colorOf(int index) const { return hexColor(shownColor(index, options_.ground)); }
  [[nodiscard]] std::string place(AcGePoint2d p) const {
    const GridPoint g = grid_.at(onPaper(p));
    std::string text;
    appendCount(text, g.x, grid_.decimals);
    text += ',';
    appendCount(text, g.y, grid_.decimals);
    return text;
  }

  // From the upper left corner, mm on paper, y still upward.
  [[nodiscard]] AcGePoint2d onPaper(AcGePoint2d p) const {
    return {(p.x - page_.shown.low.x) * page_.scale, (p.y - page_.shown.high.y) * page_.scale};
  }
  [[nodiscard]] ArcCurve onPaper(const ArcCurve& a) const {
    return {onPaper(a.centre), a.radius * page_.scale, a.startAngle, a.sweep};
  }

  void begin();
  void still();
  void walk(const Curve& curve, SvgPath& path) const;
  void walk(const AnimatedLine& line, SvgPath& path) const;
  void longLine(const AnimatedLine& line);
  void growing(const AnimatedLine& line);
  void shortLine(const AnimatedLine& line);
  void element(const std::string& attributes, const SvgPath& path, const std::string& animate);
  void flush(Group& group);
  void flushGroups();
  [[nodiscard]] double dotStep() const;
  void dot();
  void bar();

  const Animation& animation_;
  const AnimationOptions& options_;
  const Sink& sink_;
  const Page page_;
  const Grid grid_{{0, 0}, 2};  // of the paper
  const double last_, round_;   // seconds until all stands, and of one round
  std::vector<Group> groups_;   // one of a colour
};

void AnimationWriter::begin() {
  sink_("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
        formatted("%.3fmm\" height=\"%.3fmm\" viewBox=\"0 0 %.3f %.3f\">\n", page_.width, page_.height,
                  page_.width, page_.height));
  sink_("<title>" + escaped(options_.title) + "</title>\n");
  sink_(
      formatted("<desc>Scale %.6g : 1 from the drawing's point (%.3f, %.3f); one round takes %.3f s</desc>\n",
                page_.scale, page_.shown.low.x, page_.shown.high.y, round_));
  sink_("<rect width=\"100%\" height=\"100%\" fill=\"" + hexColor(groundColor(options_.ground)) +
        "\"/>\n<g fill=\"none\" stroke-linejoin=\"round\">\n");
}

void AnimationWriter::still() {
  SvgPath path(grid_);
  const auto flush = [&] {
    if (path.data().empty()) return;
    sink_("<path d=\"");
    sink_(path.data());
    sink_("\"/>\n");
    path.clear();
  };
  // A large one as a layer of its own, which a browser doesn't draw anew in every frame.
  const char* layer = animation_.still.size() > kManyStill ? " style=\"will-change:transform\"" : "";
  sink_(std::string("<g") + layer + " stroke=\"" + colorOf(kForegroundColor) +
        "\" stroke-opacity=\".3\" stroke-width=\"" + mm(pen() / 2) + "\">\n");
  for (const auto& curve : animation_.still) {
    walk(curve, path);
    if (path.data().size() > kLongestPath) flush();
  }
  flush();
  sink_("</g>\n");
}

void AnimationWriter::walk(const Curve& curve, SvgPath& path) const {
  if (!isValid(curve) || std::holds_alternative<RayCurve>(curve)) return;
  path.moveTo(onPaper(startPoint(curve)));
  if (const auto* polyline = std::get_if<PolylineCurve>(&curve)) {
    const auto& v = polyline->vertices;
    for (std::size_t i = 0; i < polyline->spanCount(); ++i) {
      const AcGePoint2d to = v[(i + 1) % v.size()].point;
      const Curve span = spanCurve(v[i].point, to, v[i].bulge);
      if (const auto* arc = std::get_if<ArcCurve>(&span))
        path.arcTo(onPaper(*arc), onPaper(to));
      else
        path.lineTo(onPaper(to));
    }
  } else if (const auto* arc = std::get_if<ArcCurve>(&curve)) {
    path.arcTo(onPaper(*arc), onPaper(endPoint(curve)));
  } else if (std::holds_alternative<LineCurve>(curve)) {
    path.lineTo(onPaper(endPoint(curve)));
  } else {
    const double from = startParam(curve), to = endParam(curve);
    for (int i = 1; i <= kChords; ++i)
      path.lineTo(onPaper(pointAtParam(curve, from + (to - from) * i / kChords)));
  }
  path.finishShape();
}

void AnimationWriter::walk(const AnimatedLine& line, SvgPath& path) const {
  path.moveTo(onPaper(line.start));
  for (const auto& step : line.steps)
    step.arc ? path.arcTo(onPaper(*step.arc), onPaper(step.end)) : path.lineTo(onPaper(step.end));
}

void AnimationWriter::element(const std::string& attributes, const SvgPath& path,
                              const std::string& animate) {
  sink_("<path " + attributes + " d=\"" + std::string(path.data()) + "\"><animate " + animate + duration() +
        "/></path>\n");
}

void AnimationWriter::longLine(const AnimatedLine& line) {
  flushGroups();
  AnimatedLine part{line.color, line.begin, line.start, {}};
  for (const auto& step : line.steps) {
    part.steps.push_back(step);
    if (part.steps.size() < kMostSteps) continue;
    growing(part);
    part = {line.color, part.begin + secondsOf(part), step.end, {}};
  }
  if (!part.steps.empty()) growing(part);
}

void AnimationWriter::growing(const AnimatedLine& line) {
  SvgPath path(grid_);
  walk(line, path);
  Track track(round_);
  growth(line, track);
  track.at(round_, "0");
  element("stroke=\"" + colorOf(line.color) + "\" pathLength=\"1\"", path,
          "attributeName=\"stroke-dashoffset\" " + track.attributes());
}

void AnimationWriter::shortLine(const AnimatedLine& line) {
  auto group =
      std::find_if(groups_.begin(), groups_.end(), [&](const Group& g) { return g.color == line.color; });
  if (group == groups_.end()) {
    groups_.push_back({line.color, line.begin, SvgPath(grid_)});
    group = groups_.end() - 1;
  }
  if (line.begin - group->begin >= kFrame || group->path.data().size() > kLongestPath) flush(*group);
  if (group->path.data().empty()) group->begin = line.begin;
  walk(line, group->path);
}

void AnimationWriter::flush(Group& group) {
  if (group.path.data().empty()) return;
  Track track(round_);
  track.at(0, "hidden");
  track.at(group.begin, "visible");
  // Without dashes, which a browser would work out for every line of the group in every frame.
  element("stroke=\"" + colorOf(group.color) + "\" stroke-dasharray=\"none\" visibility=\"hidden\"",
          group.path, "attributeName=\"visibility\" calcMode=\"discrete\" " + track.attributes());
  group.path.clear();
}

void AnimationWriter::flushGroups() {
  for (auto& group : groups_) flush(group);
}

// Least time between two places of the dot, seconds.
double AnimationWriter::dotStep() const {
  double steps = 0;
  for (const auto& line : animation_.lines) steps += static_cast<double>(line.steps.size());
  return steps > kMostPlaces ? animation_.seconds() / kMostPlaces : 0;
}

// Where the wire stands at which moment.
void AnimationWriter::dot() {
  if (animation_.lines.empty()) return;
  Track track(round_);
  double kept = 0;  // moment of the last place
  AcGePoint2d at = animation_.lines.front().start;
  const auto stand = [&](double time, AcGePoint2d p) {
    at = p;
    kept = time;
    track.at(time, place(p));
  };
  const double least = dotStep();
  const auto pass = [&](double time, AcGePoint2d p) { time - kept < least ? void(at = p) : stand(time, p); };
  stand(0, at);
  for (const auto& line : animation_.lines) {
    if (at != line.start && secondsOf(line) >= least) {
      stand(line.begin, at);
      stand(line.begin, line.start);
    }
    double time = line.begin;
    for (const auto& step : line.steps) {
      if (step.arc) passArc(*step.arc, time, step.seconds, pass);
      time += step.seconds;
      pass(time, step.end);
    }
  }
  stand(animation_.seconds(), at);
  stand(round_, at);
  sink_("<circle fill=\"" + colorOf(kWireColor) + "\" r=\"" + mm(kDotRadius) + "\" transform=\"translate(" +
        place(animation_.lines.front().start) +
        ")\"><animateTransform attributeName=\"transform\" type=\"translate\" " + track.attributes() +
        duration() + "/></circle>\n");
}

void AnimationWriter::bar() {
  sink_("<script><![CDATA[\n" +
        barScript({round_, last_, options_.clockRate, hexColor(groundColor(options_.ground)),
                   colorOf(kForegroundColor)}) +
        "]]></script>\n");
}

}  // namespace

double Animation::seconds() const {
  return lines.empty() ? 0 : lines.back().begin + secondsOf(lines.back());
}

std::string animationText(const Animation& animation, const AnimationOptions& options) {
  std::string text;
  AnimationWriter(animation, options, [&](std::string_view piece) { text += piece; }).write();
  return text;
}

std::optional<FileError> writeAnimation(const std::string& path, const Animation& animation,
                                        const AnimationOptions& options) {
  AtomicFile file(path);
  AnimationWriter(animation, options, [&](std::string_view piece) { file.write(piece); }).write();
  return file.commit();
}

}  // namespace tarnex
