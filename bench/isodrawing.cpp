// Slow-wire figures by number.
// Knows no time but the writer's.
#include "isodrawing.h"

#include <cmath>
#include <cstdio>
#include <numbers>

#include "figures.h"
#include "frame/folders.h"
#include "outputiso/postslots.h"
#include "outputiso/program.h"
#include "toolpath/toolpath.h"

namespace tarnex::bench {

namespace {

constexpr int kSpans = 12, kInRow = 100;
constexpr double kPitch = 20, kRadius = 7.77;  // mm

AcGePoint2d centreOf(int number) {
  return {kPitch * (number % kInRow), kPitch * (number / kInRow)};
}

AcGePoint2d corner(AcGePoint2d centre, int i) {
  const double a = 2 * std::numbers::pi * i / kSpans;
  return {centre.x + kRadius * std::cos(a), centre.y + kRadius * std::sin(a)};
}

AcGePoint2d between(AcGePoint2d a, AcGePoint2d b, double share) {
  return {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
}

ProcessStyle styleOf(int passes) {
  ProcessStyle style;
  style.sName = "BENCH";
  style.nPassLast = passes - 1;
  for (std::size_t i = 0; i < style.passes.size(); ++i) {
    const std::string digit(1, static_cast<char>('0' + (i + 1) % 10));
    style.passes[i] = {"10" + digit, 0.2 - 0.01 * static_cast<double>(i), "00" + digit, "-", 0};
  }
  return style;
}

}  // namespace

IsoDrawing::IsoDrawing(int figures)
    : install_(installFolder()), session_(std::make_unique<StringSink>(), install_.path()) {
  session_.editor.setDatabase(std::make_unique<AcDbDatabase>());
  session_.run({"setvar CMDDIA 0"});
  auto& settings = module().settings;
  settings.dCutoffLen = 0.5;                  // mm: fits the tabs
  settings.dIsoFixA = settings.dIsoFixB = 0;  // corners as drawn: relief is geometry, not writing
  for (int i = 0; i < figures; ++i) addFigure(i);
  job_.nStyleCount = 1;
  passes(4);
}

void IsoDrawing::addFigure(int number) {
  const AcGePoint2d centre = centreOf(number);
  const int side = number % 2 == 0 ? kInnerHole : kOuterShape;
  PolylineCurve contour{{}, true};
  for (int i = 0; i < kSpans; ++i) contour.vertices.push_back({corner(centre, i), i % 2 == 0 ? 0.0 : 0.2});
  const AcGePoint2d entry = between(corner(centre, 0), corner(centre, 1), 0.5);
  const AcGePoint2d thread = between(centre, entry, side == kInnerHole ? 0.5 : 1.2);
  auto path = std::make_unique<CToolPath>();
  if (!path->initContour({thread, entry, side, kCounterClockwise, 0, 0}, contour, 0))
    std::printf("figure %d can't be made\n", number);
  path->setPathNo(number + 1);
  if (side == kOuterShape) {
    PathBreak tab;
    tab.nBreakSeg = static_cast<int>(path->numVerts()) - 2;  // the span that comes back to the entry
    tab.ptBreak = between(corner(centre, 0), entry, 0.2);
    tab.ptBreakExit = between(centre, tab.ptBreak, 1.1);
    path->setBreakPoint(tab);
  }
  AcDbDatabase& drawing = session_.drawing();
  ids_.push_back(drawing.appendAcDbEntity(drawing.modelSpace(), std::move(path)));
}

void IsoDrawing::passes(int count) {
  job_.styles[0] = styleOf(count);
  for (const AcDbObjectId id : ids_)
    session_.drawing().open<CToolPath>(id, OpenMode::kForWrite)->setProcessStyle(job_.styles[0]);
}

void IsoDrawing::choose(const std::string& machine, int cutType) {
  IsoPost& post = iso();
  post = {};
  const auto reading = readPost(postPath(install_.path(), machine, machine), post.post);
  if (!reading.read) std::printf("%s\n", reading.problem.c_str());
  post.post.paramOn[PostParam::kLineNumbers] = 1;
  job_.sMachine = job_.sPostPath = machine;
  job_.nCutType = cutType;
}

double IsoDrawing::write(const std::string& path) {
  bool written = false;
  const double seconds = secondsOf([&] { written = writeIsoFile(module(), {iso(), job_, ids_, path}); });
  if (!written) std::printf("%s wasn't written\n", path.c_str());
  return written ? seconds : 0;
}

}  // namespace tarnex::bench
