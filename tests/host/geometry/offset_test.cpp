// Offsets against a reckoning of their own: random outlines and combs at many sizes and places, both ways and
// sides. Knows the contract of the offset only.
#include "host/geometry/offset.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/geometry/offset_reckoning.h"

namespace tarnex {
namespace {

using reckoning::Outline;

constexpr double kScales[] = {0.001, 0.01, 1, 100, 1000};
constexpr double kShifts[] = {0, 1000, 100000};

bool longRun() {
  return std::getenv("TARNEX_LONG") != nullptr;
}

double sizeOf(const Outline& path) {
  double size = 0;
  for (const BulgeVertex& v : path) size = std::max({size, std::abs(v.point.x), std::abs(v.point.y)});
  return size;
}

// What is wrong with `curves` as the offset of the closed `path`, or nothing. `expected` was reckoned at
// `scale` 1.
std::string fault(const Outline& path, double distance, const std::vector<PolylineCurve>& curves,
                  const reckoning::Expected& expected, double scale) {
  const double noise = 300 * std::numeric_limits<double>::epsilon() * sizeOf(path);
  const bool ccw = reckoning::signedArea({Outline(path.begin(), path.end() - 1), true}) > 0;
  double area = 0, rim = 0;
  for (const PolylineCurve& c : curves) {
    if (!c.closed || c.vertices.size() < 2) return "not closed";
    area += reckoning::signedArea(c) * (ccw ? 1 : -1);
    const auto points = reckoning::samples(c, 5);
    for (std::size_t i = 0; i < points.size(); ++i) {
      rim += points[i].distanceTo(points[(i + 1) % points.size()]);
      const double is = reckoning::distanceTo(path, points[i]);
      if (!(is >= std::abs(distance) * (1 - 1e-9) - noise))
        return "distance " + std::to_string(is / std::abs(distance)) + " of what it should be";
    }
  }
  const double tolerance = expected.tolerance * scale * scale + rim * noise;
  if (!(std::abs(area - expected.area * scale * scale) <= tolerance))
    return "area " + std::to_string(area / scale / scale) + " for " + std::to_string(expected.area) + " +- " +
           std::to_string(tolerance / scale / scale);
  return {};
}

struct Tally {
  long calls = 0, declined = 0, wrong = 0;
  std::string first;
};

// One outline at every size and place.
void tryEverywhere(const Outline& outline, double distance, Tally& tally, const std::string& name) {
  const auto expected = reckoning::expectedOffset(outline, distance);
  for (const double scale : kScales)
    for (const double shift : kShifts) {
      const Outline path = reckoning::changed(outline, scale, {shift, -0.7 * shift});
      const auto curves = offsetCurves(path, distance * scale);
      ++tally.calls;
      if (!curves) {
        ++tally.declined;
        if (std::getenv("TARNEX_TALK") != nullptr)
          std::printf("declined %s scale %g shift %g distance %.17g\n", name.c_str(), scale, shift, distance);
        continue;
      }
      const std::string what = fault(path, distance * scale, *curves, expected, scale);
      if (what.empty()) continue;
      if (tally.wrong++ == 0)
        tally.first = name + " scale " + std::to_string(scale) + " shift " + std::to_string(shift) +
                      " distance " + std::to_string(distance) + ": " + what;
      if (std::getenv("TARNEX_TALK") != nullptr)
        std::printf("wrong %s scale %g shift %g distance %.17g: %s\n", name.c_str(), scale, shift, distance,
                    what.c_str());
    }
}

void report(const char* what, const Tally& t) {
  std::printf("%s: %ld offsets, %ld declined (%.4f %%), %ld wrong\n", what, t.calls, t.declined,
              100.0 * double(t.declined) / double(std::max(1L, t.calls)), t.wrong);
}

TEST(Offset, RandomOutlinesAgreeWithTheReckoning) {
  const int count = longRun() ? 20000 : 20;
  Tally tally;
  for (int i = 0; i < count; ++i) {
    std::mt19937 random(static_cast<unsigned>(i));
    const Outline outline = reckoning::randomOutline(random);
    const double d = 5 * std::pow(10, std::uniform_real_distribution<double>(-3, -0.3)(random));
    tryEverywhere(outline, d, tally, "outline " + std::to_string(i));
    tryEverywhere(outline, -d, tally, "outline " + std::to_string(i));
  }
  report("random outlines", tally);
  EXPECT_EQ(tally.wrong, 0) << tally.first;
  EXPECT_LE(double(tally.declined), 0.001 * double(tally.calls));
}

TEST(Offset, CombsWhoseSlotsAndRadiiVanishExactly) {
  Tally tally;
  for (const double d : {1.0, 0.15})
    for (int bottom = 0; bottom < 3; ++bottom)
      for (const bool clockwise : {false, true})
        for (const double distance : {d, -d, 2 * d, -2 * d, 3 * d, 0.5 * d, -0.5 * d})
          tryEverywhere(reckoning::comb(5, d, bottom, clockwise), distance, tally,
                        "comb " + std::to_string(d) + " bottom " + std::to_string(bottom) +
                            (clockwise ? " cw" : " ccw"));
  report("combs", tally);
  for (const double from : {0.0, 0.3, 1.2, 2.9})
    for (const bool clockwise : {false, true})
      for (const double distance : {0.15, -0.15, 0.3, -0.3, 0.37, 0.075})
        tryEverywhere(reckoning::arcSlot(0.15, from, clockwise), distance, tally,
                      "arc slot " + std::to_string(from));
  report("combs and arc slots", tally);
  EXPECT_EQ(tally.wrong, 0) << tally.first;
  EXPECT_EQ(tally.declined, 0);
}

TEST(Offset, GridOutlinesWhereManyThingsVanishAtOnce) {
  const int count = longRun() ? 5000 : 45;
  Tally tally;
  for (int i = 0; i < count; ++i) {
    std::mt19937 random(static_cast<unsigned>(i));
    Outline outline = reckoning::gridOutline(random);
    if (i % 3 > 0) outline = reckoning::turned(outline, double(random() % 1000) / 300);  // now almost at once
    if (i % 3 > 1) outline = reckoning::roundedTo(outline, std::pow(10, -3.0 - double(random() % 8)));
    const double d = 0.25 * double(1 + random() % 6);
    tryEverywhere(outline, d, tally, "grid " + std::to_string(i));
    tryEverywhere(outline, -d, tally, "grid " + std::to_string(i));
  }
  report("grid outlines", tally);
  EXPECT_EQ(tally.wrong, 0) << tally.first;
  EXPECT_LE(double(tally.declined), 0.001 * double(tally.calls));
}

}  // namespace
}  // namespace tarnex
