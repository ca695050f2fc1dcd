// How fast contours become wire paths, and wire paths blocks.
// Knows the offset, a path's compensation and the block encoder.
#include "compensation.h"

#include <cstdio>
#include <memory>

#include "figures.h"
#include "host/geometry/offset.h"
#include "output3b/contourwriter.h"
#include "output3b/segment.h"
#include "plates.h"
#include "toolpath/toolpath.h"

namespace tarnex::bench {

namespace {

constexpr int kRuns = 7;

template <class What>
double medianOf(What what) {
  std::vector<double> times;
  for (int i = 0; i < kRuns; ++i) times.push_back(secondsOf(what));
  return median(times);
}

std::size_t verticesOf(const std::vector<Outline>& outlines) {
  std::size_t count = 0;
  for (const auto& o : outlines) count += o.size() - 1;
  return count;
}

void printRate(const char* what, double distance, double rate) {
  std::printf("  %-34s %+8.2f mm %8.2f million vertices a second\n", what, distance, rate / 1e6);
}

void printOffset(const char* what, const std::vector<Outline>& outlines, double distance) {
  std::size_t curves = 0;
  const double seconds = medianOf([&] {
    for (const auto& o : outlines)
      if (const auto result = offsetCurves(o, distance)) curves += result->size();
  });
  printRate(what, distance, double(verticesOf(outlines)) / seconds);
  if (curves == 0 && distance < 1) std::printf("    every contour was declined\n");
}

// The contours as paths that are entered 2 mm beside the middle of their second span, a straight one.
std::vector<std::unique_ptr<CToolPath>> pathsOf(const std::vector<Outline>& outlines) {
  std::vector<std::unique_ptr<CToolPath>> paths;
  for (const auto& o : outlines) {
    const AcGePoint2d entry = midpoint(o[1].point, o[2].point);
    const AcGeVector2d along = (o[2].point - o[1].point).normal();
    const AcGePoint2d thread{entry.x + 2 * along.y, entry.y - 2 * along.x};
    auto path = std::make_unique<CToolPath>();
    if (path->initContour({thread, entry, kOuterShape, kCounterClockwise, 0, 0},
                          {{o.begin(), o.end() - 1}, true}, 1))
      paths.push_back(std::move(path));
  }
  return paths;
}

using Paths = std::vector<std::unique_ptr<CToolPath>>;

void printComputeOffset(const Paths& paths, std::size_t vertices, double distance) {
  std::size_t made = 0;
  const double seconds = medianOf([&] {
    for (const auto& path : paths) made += path->computeOffset(kCounterClockwise, distance).vertices.size();
  });
  printRate(made > 0 ? "offsetCurves within computeOffset" : "nothing", distance, double(vertices) / seconds);
}

void printBlocks(const Paths& paths) {
  std::vector<OffsetPath> wires;
  for (const auto& path : paths) wires.push_back(path->computeOffset(kCounterClockwise, -0.15));
  long blocks = 0;
  std::size_t bytes = 0;
  const double seconds = medianOf([&] {
    Program3b program;
    std::string block;
    for (const auto& wire : wires)
      for (std::size_t i = 0; i + 1 < wire.vertices.size(); ++i) {
        encodeSegment(block, wire.vertices[i], wire.vertices[i + 1], wire.bulges[i]);
        if (!block.empty()) program.block(block);
      }
    blocks = program.lineNo - 1;
    bytes = program.text.size();
  });
  std::printf("  %-34s %ld blocks, %.1f MB: %.2f million blocks a second\n", "block encoding", blocks,
              double(bytes) / 1e6, double(blocks) / seconds / 1e6);
}

}  // namespace

void printCompensation(std::size_t contours, std::size_t vertices) {
  const auto outlines = plates(contours);
  std::printf("\ncompensation of %zu contours, %zu vertices\n", contours, verticesOf(outlines));
  for (double distance : {0.15, -0.15, 2.5, -2.5}) printOffset("offsetCurves", outlines, distance);
  const Paths paths = pathsOf(outlines);
  for (double distance : {0.15, -0.15, 2.5, -2.5}) printComputeOffset(paths, verticesOf(outlines), distance);
  const std::vector<Outline> gears{gear(vertices, 2.0)};
  for (double distance : {0.15, -0.15}) printOffset("one contour of many vertices", gears, distance);
  printBlocks(paths);
}

}  // namespace tarnex::bench
