// Seeing and editing, measured on drawings of 1,000 and 10,000 paths (--large: 100,000): the display list, an
// edit of one path, a plot, undo. Times are medians of processor time. Prints figures, no judgement.
#include <cstdio>
#include <cstring>
#include <memory>

#include "apps/tarnex/jobsteps.h"
#include "figures.h"
#include "frame/folders.h"
#include "host/display/displayview.h"
#include "host/display/svg.h"
#include "host/platform/files.h"
#include "host/platform/usage.h"
#include "pathcmd/paths.h"
#include "plates.h"
#include "toolpath/toolpath.h"

namespace tarnex::bench {

namespace {

template <class What>
double medianOf(int runs, What what) {
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) times.push_back(secondsOf(what));
  return median(times);
}

// A drawing of so many paths, made by the commands that a user would type; wire path, arrow and number are
// shown.
class PathDrawing {
 public:
  explicit PathDrawing(std::size_t count)
      : install_(installFolder()), session_(std::make_unique<StringSink>(), install_.path()) {
    auto drawing = std::make_unique<AcDbDatabase>();
    for (const Outline& o : plates(count))
      drawing->appendAcDbEntity(drawing->modelSpace(), std::make_unique<AcDbPolyline>(
                                                           PolylineCurve{{o.begin(), o.end() - 1}, true}));
    session_.editor.setDatabase(std::move(drawing));
    session_.run({"setvar CMDDIA 0", "SET dOffset 0.1", "SET bShowTool 1"});
    JobSteps steps(session_);
    const ContourSurvey found = steps.survey({});
    std::vector<const SurveyedContour*> holes, outer;
    for (const auto& c : found.contours) (c.depth % 2 == 1 ? holes : outer).push_back(&c);
    making_ = secondsOf([&] {
      steps.makePaths({"BP", kInnerHole, {}, {}}, holes);
      steps.makePaths({"BP", kOuterShape, {}, {}}, outer);
    });
  }

  AcDbDatabase& drawing() { return session_.drawing(); }
  PathDisplay display() { return pathDisplay(session_.module()); }
  [[nodiscard]] double making() const { return making_; }
  double undoing() {
    const double seconds = secondsOf([&] { session_.run({"u", "u"}); });
    if (drawing().peek<CToolPath>(drawing().modelSpaceEntities().front()) == nullptr) return seconds;
    std::printf("  the paths are still there\n");
    return 0;
  }
  void move(AcDbObjectId path) {
    char handle[32];
    std::snprintf(handle, sizeof handle, "&%llX",
                  static_cast<unsigned long long>(drawing().peek<CToolPath>(path)->handle()));
    session_.run({"move", handle, "", "0,0", "0.5,0"});
  }
  double redoing() {
    return secondsOf([&] { session_.run({"redo", "redo"}); });
  }

 private:
  JobFolder install_;
  Session session_;
  double making_ = 0;
};

struct Figures {
  double list = 0, edit = 0, move = 0, svg = 0, undo = 0;
};

void printGrowth(double now, double before) {
  if (before > 0) std::printf("  growth %.1f", now / before);
  std::printf("\n");
}

void listing(PathDrawing& paths, std::size_t count, Figures& now, const Figures& before) {
  const PathDisplay display = paths.display();
  DisplayOptions options;
  options.applicationContext = &display;
  std::size_t primitives = 0;
  now.list = medianOf(7, [&] { primitives = buildDisplayList(paths.drawing(), options).primitives.size(); });
  std::printf("  display list            %9.2f ms  %zu primitives, %.2f million spans a second",
              now.list * 1e3, primitives, double(count * kSpansOfPlate) / now.list / 1e6);
  printGrowth(now.list, before.list);
}

// One path changes and is seen changed: the edit as a step of undo and the view's update, every time another
// path.
void editing(PathDrawing& paths, Figures& now, const Figures& before) {
  const PathDisplay display = paths.display();
  DisplayOptions options;
  options.applicationContext = &display;
  AcDbDatabase& drawing = paths.drawing();
  DisplayView view(drawing, options);
  (void)view.update();
  std::vector<AcDbObjectId> ids = drawing.modelSpaceEntities();
  std::erase_if(ids, [&](AcDbObjectId id) { return drawing.peek<CToolPath>(id) == nullptr; });
  std::size_t next = 0;
  const auto another = [&] { return ids[(next += 37) % ids.size()]; };
  now.edit = medianOf(301, [&] {
    drawing.startUndoMark("taper");
    drawing.open<CToolPath>(another(), OpenMode::kForWrite)->setTaper(0.5 + double(next % 7));
    drawing.endUndoMark();
    (void)view.update();
  });
  now.move = medianOf(301, [&] {
    paths.move(another());
    (void)view.update();
  });
  std::printf("  edit of one path        %9.4f ms  1/%.0f of the list", now.edit * 1e3, now.list / now.edit);
  printGrowth(now.edit, before.edit);
  std::printf("  command move, one path  %9.4f ms  1/%.0f of the list", now.move * 1e3, now.list / now.move);
  printGrowth(now.move, before.move);
  for (int i = 0; i < 602; ++i) (void)drawing.undo();
}

struct Writing {
  std::vector<double> clock, processor;
  template <class What>
  void add(What what) {
    const double start = steadySeconds();
    processor.push_back(secondsOf(what));
    clock.push_back(steadySeconds() - start);
  }
};

// Against handing the finished text to the same writer of files, which numbers and shapes cost nothing. By
// the clock, in turns, so that what else the machine and its disk do counts on both sides; in the working
// folder, since files of the temporary one aren't flushed.
void plotting(PathDrawing& paths, Figures& now, const Figures& before) {
  const PathDisplay display = paths.display();
  DisplayOptions options;
  options.applicationContext = &display;
  const DisplayList list = buildDisplayList(paths.drawing(), options);
  const std::string path = "bench_display.svg", text = svgText(list);
  Writing plot, bytes;
  for (int i = 0; i < 15; ++i) {
    plot.add([&] { (void)writeSvg(path, list); });
    bytes.add([&] { (void)writeFileAtomically(path, text); });
  }
  now.svg = median(plot.processor);
  const double clock = median(plot.clock), floor = median(bytes.clock);
  std::printf(
      "  plot to SVG             %9.2f ms  %.1f MB; by the clock %.2f ms, %.1f times writing its bytes "
      "(%.2f; %.2f of the processor)",
      now.svg * 1e3, double(text.size()) / 1e6, clock * 1e3, clock / floor, floor * 1e3,
      median(bytes.processor) * 1e3);
  printGrowth(now.svg, before.svg);
  (void)std::remove(path.c_str());
}

void undoing(PathDrawing& paths, Figures& now, const Figures& before) {
  now.undo = paths.undoing();
  const double redo = paths.redoing();
  std::printf("  undo of the making      %9.2f ms  making %.2f ms, undo %.2f and redo %.2f times that",
              now.undo * 1e3, paths.making() * 1e3, now.undo / paths.making(), redo / paths.making());
  printGrowth(now.undo, before.undo);
}

int run(bool large) {
  Figures before;
  for (const std::size_t count : {1000, 10000, 100000}) {
    if (count == 100000 && !large) break;
    std::printf("\n%zu paths, %zu spans\n", count, count * kSpansOfPlate);
    PathDrawing paths(count);
    Figures now;
    listing(paths, count, now, before);
    editing(paths, now, before);
    plotting(paths, now, before);
    undoing(paths, now, before);
    before = now;
    std::fflush(stdout);
  }
  return 0;
}

}  // namespace

}  // namespace tarnex::bench

int main(int argc, char** argv) {
  return tarnex::bench::run(argc > 1 && std::strcmp(argv[1], "--large") == 0);
}
