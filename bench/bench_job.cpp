// The road of one job, measured step by step on drawings of 100 to 10,000 contours (--large: 100,000), in
// multiples of the floor and with the growth from size to size. Times are medians of processor time; by the
// clock other programs count too, and waiting for the disk. Prints figures, no judgement.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>

#include "apps/tarnex/job3b.h"
#include "apps/tarnex/jobsteps.h"
#include "compensation.h"
#include "contour/geometrylibrary.h"
#include "figures.h"
#include "floor.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/platform/files.h"
#include "host/platform/system.h"
#include "host/platform/usage.h"
#include "lookups.h"
#include "pathcmd/paths.h"
#include "plates.h"
#include "toolpath/toolpath.h"

namespace tarnex::bench {

void Steps::print(double floor, const Steps& before) const {
  std::printf("  %-34s %10s %8s %8s\n", "", "ms", "floors", "growth");
  for (const auto& [name, times] : all_) {
    const double seconds = median(times), earlier = before.secondsOf(name);
    std::printf("  %-34s %10.2f %8.2f", name.c_str(), seconds * 1000, seconds / floor);
    if (earlier > 0) std::printf(" %8.1f", seconds / earlier);
    std::printf("\n");
  }
}

namespace {

constexpr const char* kFloor = "floor";

class JobBench {
 public:
  explicit JobBench(std::size_t contours) : contours_(contours), folder_(temporaryFolder("tarnex-bench")) {
    drawing_ = folder_ + "/plates.dxf";
    options_.output = folder_ + "/plates.3b";
    const std::string text = looseDrawing(plates(contours));
    bytes_ = text.size();
    (void)writeFileAtomically(drawing_, text);
  }
  JobBench(const JobBench&) = delete;
  JobBench& operator=(const JobBench&) = delete;
  ~JobBench() { (void)removeTree(folder_); }

  void run(int times) {
    for (int i = 0; i < times; ++i) {
      wholeJob();
      if (i == 0) peak_ = peakMemory();
      const Floor floor = readingFloor(drawing_);
      entities_ = floor.entities;
      steps_.add(kFloor, floor.seconds);
      writingBack();
      staged();
    }
  }

  void print(const Steps& before) const {
    std::printf("\n%zu contours, %zu entities, %.1f MB\n", contours_, entities_, double(bytes_) / 1e6);
    steps_.print(floor(), before);
    std::printf("  peak memory %.1f MB: 2.5 times the file and %.0f bytes an entity\n", double(peak_) / 1e6,
                (double(peak_) - 2.5 * double(bytes_)) / double(entities_));
    printLookUps(job());
  }

  const Steps& steps() const { return steps_; }

 private:
  double floor() const { return steps_.secondsOf(kFloor); }
  double job() const { return steps_.secondsOf("whole job, file to file"); }

  void wholeJob() {
    Job3bResult result;
    const double start = steadySeconds();
    steps_.add("whole job, file to file", secondsOf([&] { result = runJob3b(drawing_, options_); }));
    steps_.add("the same by the clock", steadySeconds() - start);
    if (result.exitCode != kDone) std::printf("the job failed: %s\n", result.failure.c_str());
    for (const auto& [name, seconds] : result.seconds) steps_.add("  of it, by the clock, " + name, seconds);
  }

  void writingBack() {
    DrawingLoad load;
    steps_.add("reading without loss", secondsOf([&] { load = loadDrawing(drawing_, nullptr); }));
    if (!load.drawing) return;
    steps_.add("writing back", secondsOf([&] { (void)saveDrawing(*load.drawing, folder_ + "/back.dxf"); }));
  }

  // The job's steps one by one, without what it looks at for its report.
  void staged() {
    const JobFolder install(installFolder());
    Session session(std::make_unique<StringSink>(), install.path());
    session.editor.setDatabase(loadDrawing(drawing_, &session.editor.classes()).drawing);
    JobSteps steps(session);
    session.run({"setvar CMDDIA 0"});
    LooseSurvey loose;
    steps_.add("loose curves surveyed",
               secondsOf([&] { loose = surveyLoose(session.drawing(), steps.shown()); }));
    steps_.add("chaining", secondsOf([&] { steps.joinLooseCurves(loose, {}); }));
    const ContourSurvey found = steps.survey(loose);
    std::vector<const SurveyedContour*> holes, outer;
    for (const auto& c : found.contours) (c.depth % 2 == 1 ? holes : outer).push_back(&c);
    steps_.add("path making", secondsOf([&] {
                 steps.makePaths({"BP", kInnerHole, {}, {}}, holes);
                 steps.makePaths({"BP", kOuterShape, {}, {}}, outer);
               }));
    ordering(session);
    steps_.add("program writing", secondsOf([&] {
                 session.run({"SET bAskFileName 1", "BB", "", options_.output});
               }));
  }

  // On paths in random order, as a drawing may hold them.
  void ordering(Session& session) {
    auto& state = session.module().state<PathState>();
    const auto made = state.PathList;
    auto shuffled = made;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(3));
    const int last = static_cast<int>(made.size()) - 1;
    state.PathList = shuffled;
    steps_.add("ordering by length", secondsOf([&] { sortByLength(session.drawing(), state); }));
    state.PathList = shuffled;
    steps_.add("ordering to the nearest", secondsOf([&] { sortNearest(session.drawing(), state, 0, last); }));
    state.PathList = made;
    renumberAll(session.drawing(), state);
  }

  std::size_t contours_, bytes_ = 0, entities_ = 0, peak_ = 0;
  std::string folder_, drawing_;
  Job3bOptions options_;
  Steps steps_;
};

int run(bool large) {
  std::vector<std::size_t> sizes{100, 1000, 10000};
  if (large) sizes.push_back(100000);
  Steps before;
  for (std::size_t contours : sizes) {
    JobBench bench(contours);
    bench.run(contours < 100000 ? 5 : 1);
    bench.print(before);
    before = bench.steps();
    std::fflush(stdout);
  }
  printCompensation(10000, 400000);
  return 0;
}

}  // namespace

}  // namespace tarnex::bench

int main(int argc, char** argv) {
  return tarnex::bench::run(argc > 1 && std::strcmp(argv[1], "--large") == 0);
}
