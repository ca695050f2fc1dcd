// The main job: what a 3B program adds to the road of all jobs.
// Knows which commands in which order; what they do, the rooms know.
#include "apps/tarnex/job3b.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "output3b/programwriter.h"
#include "output3b/segment.h"
#include "pathcmd/paths.h"
#include "pathcmd/wiresurvey.h"

namespace tarnex {

namespace {

class Job3b : public DrawingJob {
 public:
  Job3b(const std::string& drawing, const Job3bOptions& options, Job3bResult& result)
      : DrawingJob(drawing, options, result), result_(result) {
    result_.program = programFileOf(drawing, options, "3b");
  }

 private:
  bool chooseOwnSettings() override {
    if (options_.machine.empty() || session_.run({"SET machine " + options_.machine})) return true;
    return fail(kFailed, "a setting was refused: " + lastWords());
  }

  std::string obstacle(const SurveyedContour& c) override {
    const double offset = session_.module().settings.dOffset;
    if (!(c.area > kNegligibleArea)) return "encloses nothing";
    if (std::max(c.box.high.x - c.box.low.x, c.box.high.y - c.box.low.y) > kLargestExtent)
      return "larger than the counts of a block";
    // A wire outside a contour always goes round it.
    if (isHole(c) && vanishesUnderOffset(c.shape, true, offset))
      return formatted("too small for a wire offset of %.3f mm", offset);
    return {};
  }

  void makePathsOf(const Contours& holes, const Contours& outer) override {
    steps_.makePaths({"BP", kInnerHole, {}, {}}, holes);
    steps_.makePaths({"BP", kOuterShape, {}, {}}, outer);
  }

  bool writeProgram() override {
    if (const auto failure = makeFolders(absolutePath(options_.outDir.empty() ? "." : options_.outDir)))
      return fail(kFailed, failure->text());
    session_.run({"SET bAskFileName 1", "BB", "", absolutePath(result_.program)});
    const std::string words = lastWords();
    putSettingsBack({"nSide", "dOpenTol", "bAskFileName"});
    waitForStarted(session_.module());
    if (!programStands()) return fail(kFailed, "the program was not written: " + words);
    const auto& program = session_.module().state<LastProgram3b>();
    result_.blocks = program.blocks;
    result_.program = program.path;
    return true;
  }

  bool programStands() override { return !session_.module().state<LastProgram3b>().path.empty(); }

  void survey() override {
    const auto& list = session_.module().state<PathState>().PathList;
    const WireSurvey wires = surveyWires(session_.drawing(), list, session_.module().state<WirePaths>());
    result_.cutLength = wires.cutLength;
    for (const auto& warning : wires.warnings) result_.warnings.push_back(sentenceOf(warning));
  }

  Job3bResult& result_;
};

}  // namespace

Job3bResult runJob3b(const std::string& drawing, const Job3bOptions& options) {
  Job3bResult result;
  Job3b(drawing, options, result).run();
  return result;
}

}  // namespace tarnex
