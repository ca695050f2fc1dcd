// How many vertices a second the offset takes: many small plates, and one contour of very many vertices.
// Prints no judgement; the counters are the figures.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "host/geometry/offset.h"

namespace {

using namespace tarnex;
using Outline = std::vector<BulgeVertex>;

// Every corner of the closed polygon becomes a tangent arc of radius r; the first vertex is repeated at the
// end.
Outline rounded(const std::vector<AcGePoint2d>& p, double r) {
  Outline o;
  const std::size_t n = p.size();
  for (std::size_t i = 0; i < n; ++i) {
    const AcGePoint2d b = p[i];
    const AcGeVector2d u = (p[(i + n - 1) % n] - b).normal(), v = (p[(i + 1) % n] - b).normal();
    const double angle = std::acos(u.dotProduct(v)), back = r / std::tan(angle / 2);
    const double side = u.crossProduct(v) < 0 ? 1 : -1;
    o.push_back({b + u * back, side * std::tan((kPi - angle) / 4)});
    o.push_back({b + v * back, 0});
  }
  o.push_back({o.front().point, 0});
  return o;
}

// L-shaped plates and rounded hexagons, 12 spans each.
std::vector<Outline> plates(std::size_t count) {
  std::mt19937 random(1);
  const auto number = [&random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  std::vector<Outline> all;
  for (std::size_t i = 0; all.size() < count; ++i) {
    const double x = 60.0 * double(i % 71), y = 60.0 * double(i / 71), w = number(35, 50), h = number(35, 50);
    all.push_back(rounded({{x, y},
                           {x + w, y},
                           {x + w, y + h * .55},
                           {x + w * .5, y + h * .55},
                           {x + w * .5, y + h},
                           {x, y + h}},
                          number(1, 3)));
    const double radius = number(4, 7), turn = number(0, 1);
    std::vector<AcGePoint2d> hexagon;
    for (int k = 0; k < 6; ++k)
      hexagon.push_back({x + w * .27 + radius * std::cos(turn + k * kPi / 3),
                         y + h * .28 + radius * std::sin(turn + k * kPi / 3)});
    all.push_back(rounded(hexagon, number(.3, .8)));
  }
  return all;
}

// A gear of `vertices` vertices: straight flanks, arcs at root and head.
Outline gear(std::size_t vertices, double pitch) {
  const std::size_t teeth = vertices / 4;
  const double radius = pitch * double(teeth) / (2 * kPi);
  Outline o;
  for (std::size_t i = 0; i < teeth; ++i) {
    const auto at = [&](double part, double r) {
      const double w = 2 * kPi * (double(i) + part) / double(teeth);
      return AcGePoint2d{r * std::cos(w), r * std::sin(w)};
    };
    o.push_back({at(0.00, radius), -0.4});
    o.push_back({at(0.40, radius), 0});
    o.push_back({at(0.52, radius + pitch), 0.3});
    o.push_back({at(0.88, radius + pitch), 0});
  }
  o.push_back(o.front());
  return o;
}

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
