// How many vertices a second the offset takes: many small plates, and one contour of very many vertices.
// Prints no judgement; the counters are the figures.
#include <benchmark/benchmark.h>

#include <vector>

#include "host/geometry/offset.h"
#include "plates.h"

namespace {

using namespace tarnex;
using namespace tarnex::bench;

void offsetAll(benchmark::State& state, const std::vector<Outline>& outlines, double distance) {
  std::size_t vertices = 0, declined = 0, curves = 0;
  for (const auto& o : outlines) vertices += o.size() - 1;
  for (auto _ : state) {
    declined = curves = 0;
    for (const Outline& o : outlines) {
      const auto result = offsetCurves(o, distance);
      if (result)
        curves += result->size();
      else
        ++declined;
    }
    benchmark::DoNotOptimize(curves);
  }
  state.counters["vertices/s"] =
      benchmark::Counter(double(vertices) * double(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["declined"] = double(declined);
  state.counters["curves"] = double(curves);
}

void Plates(benchmark::State& state) {
  static const auto outlines = plates(10000);
  offsetAll(state, outlines, double(state.range(0)) / 1000);
}
BENCHMARK(Plates)->Arg(150)->Arg(-150)->Arg(2500)->Arg(-2500)->Unit(benchmark::kMillisecond);

void Gear(benchmark::State& state) {
  offsetAll(state, {gear(static_cast<std::size_t>(state.range(0)), 2.0)}, double(state.range(1)) / 1000);
}
BENCHMARK(Gear)
    ->Args({4000, -150})
    ->Args({400000, -150})
    ->Args({400000, 150})
    ->Args({4000, -600})
    ->Args({400000, -600})
    ->Args({400000, 600})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
