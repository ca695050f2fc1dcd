// Programs of slow-wire jobs as files: the whole writer with the shipped posts, figure by figure and pass by
// pass, at 1,000 and 10,000 figures of four passes (--large: 100,000), beside a peer that formats the same
// bytes; what it takes of memory; and the table of conditions. Prints figures, no judgement.
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "conditions.h"
#include "figures.h"
#include "host/platform/files.h"
#include "host/platform/usage.h"
#include "isodrawing.h"
#include "machining/joblayout.h"
#include "outputiso/program.h"
#include "plainprogram.h"

namespace tarnex::bench {

namespace {

struct Setup {
  const char* machine;
  int cutType;
};
constexpr Setup kSetups[] = {{"SODICK", CutType::kByFigure},     {"SODICK", CutType::kByPass},
                             {"DecimalSub", CutType::kByFigure}, {"DecimalSub", CutType::kByPass},
                             {"SixDigit", CutType::kByFigure},   {"SixDigit", CutType::kByPass}};

double megabytes(std::size_t bytes) {
  return static_cast<double>(bytes) / 1048576;
}

// What each program adds to the most that was held before it; the second and fourth have ten times the
// blocks.
void memory(IsoDrawing& drawing, const std::string& path) {
  std::printf("  drawing %.1f MB;", megabytes(peakMemory()));
  for (const int cutType : {CutType::kByFigure, CutType::kByPass}) {
    std::printf("%s", cutType == CutType::kByPass ? "; by pass" : " by figure");
    for (const int passes : {1, 10}) {
      drawing.passes(passes);
      drawing.choose("DecimalSub", cutType);
      const std::size_t held = peakMemory();
      (void)drawing.write(path);
      std::printf("%s %d passes add %.1f MB", passes == 1 ? "" : ",", passes, megabytes(peakMemory() - held));
    }
  }
  std::printf("\n");
  drawing.passes(4);
}

double measure(IsoDrawing& drawing, const Setup& setup, const std::string& folder, double before) {
  constexpr int kRuns = 5;
  const std::string path = folder + "/program.iso", peers = folder + "/peer.iso";
  drawing.choose(setup.machine, setup.cutType);
  std::vector<double> times, peerTimes;
  times.push_back(drawing.write(path));
  const std::string program = readFile(path).value.value_or("");
  const PlainProgram peer(program);
  for (int run = 0; run < kRuns; ++run) {
    if (run > 0) times.push_back(drawing.write(path));
    peerTimes.push_back(peer.write(peers));
  }
  const auto lines = static_cast<double>(drawing.module().state<LastProgramIso>().lines);
  const double seconds = median(times), peerSeconds = median(peerTimes);
  std::printf("  %-11s %-9s %9.0f %7.1f %9.2f %9.2f %8.2f %8.2f", setup.machine,
              setup.cutType == CutType::kByPass ? "by pass" : "by figure", lines,
              static_cast<double>(program.size()) / 1e6, seconds * 1000, lines / seconds / 1e6,
              peerSeconds * 1000, seconds / peerSeconds);
  if (before > 0) std::printf(" %8.1f", seconds / before);
  std::printf("%s\n", readFile(peers).value == program ? "" : "  the peer's bytes differ");
  return seconds;
}

int run(bool large) {
  printConditionTable();
  const std::string folder = temporaryFolder("tarnex-bench");
  std::vector<double> before(std::size(kSetups), 0.0);
  for (const int figures : {1000, 10000, 100000}) {
    if (figures == 100000 && !large) break;
    std::printf("\n%d figures\n", figures);
    IsoDrawing drawing(figures);
    memory(drawing, folder + "/program.iso");
    std::printf("  %21s %9s %7s %9s %9s %8s %8s %8s\n", "", "lines", "MB", "ms", "Mline/s", "fmt, ms",
                "times", "growth");
    for (std::size_t i = 0; i < std::size(kSetups); ++i)
      before[i] = measure(drawing, kSetups[i], folder, before[i]);
    std::fflush(stdout);
  }
  (void)removeTree(folder);
  return 0;
}

}  // namespace

}  // namespace tarnex::bench

int main(int argc, char** argv) {
  return tarnex::bench::run(argc > 1 && std::strcmp(argv[1], "--large") == 0);
}
