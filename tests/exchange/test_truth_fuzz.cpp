// Hostile programs and figures: the judge always comes back, quickly, with a report that fits together.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

#include "maker3b.h"

namespace tarnex::truth::test {
namespace {

void expectSound(const Report& r) {
  ASSERT_EQ(r.ok, r.faults == 0);
  ASSERT_EQ(r.findings.size(), std::min(kFindingsKept, r.faults + r.notes));
  for (const Finding& f : r.findings) ASSERT_FALSE(f.text.empty());
  for (const std::string& line : describe(r)) ASSERT_EQ(line.find('\n'), std::string::npos);
}

std::string mutated(std::string text, std::mt19937& rng) {
  const char* pieces[] = {"B", "\n", "999999999999", "GX NR3", "SR1", "N", ":",
                          "0", ";",  "\nN    : D",   "\0x",    "//",  "-", "2147483647"};
  for (int n = 1 + static_cast<int>(rng() % 8); n > 0 && !text.empty(); --n) {
    const std::size_t at = rng() % text.size(), length = rng() % 30;
    switch (rng() % 6) {
      case 0:
        text[at] = static_cast<char>(rng());
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(at, pieces[rng() % std::size(pieces)]);
        break;
      case 3:
        text.insert(at, text.substr(rng() % text.size(), 200));
        break;
      case 4:
        text[at] = static_cast<char>('0' + rng() % 10);
        break;
      default:
        if (rng() % 10 == 0) text.resize(at);
    }
  }
  return text;
}

TEST(TruthFuzz, MutatedProgramsAndRandomBytes) {
  const int rounds = std::getenv("TARNEX_LONG") ? 200000 : 1500;
  std::mt19937 rng(4711);
  std::vector<Sample> samples;
  for (int k = 0; k < 4; ++k) samples.push_back(randomSample(rng, {100.0 * k, 7.0}));
  const std::string good = programOf(samples);
  const auto figures = figuresOf(samples);
  auto plain = figures;
  for (Figure& f : plain) f.threading.reset();
  Expected e;
  e.dFix = 0.18, e.overcut = 1, e.overcutTangent = true, e.markedStep = 0.1, e.codes = {"", "R"};
  for (int i = 0; i < rounds; ++i) {
    std::string text = mutated(good, rng);
    if (i % 10 == 0) {
      text.resize(rng() % 300);
      for (char& c : text) c = static_cast<char>(rng());
    }
    ASSERT_NO_FATAL_FAILURE(expectSound(check(text, i % 2 ? figures : plain, e))) << text;
  }
}

TEST(TruthFuzz, HostileSizes) {
  const auto figures = figuresOf({circleSample({0, 0}, 5, 0, {false, false, 0.1})});
  std::string blocks, pauses;
  for (int i = 0; i < 5000; ++i)
    blocks += "N1:B1B1B2147483647GXNR1\n", pauses += "N    : D\nN1:B0B0B2147483647GXL1\n";
  const std::string texts[] = {"",
                               std::string(1 << 20, 'B'),
                               std::string(1 << 20, ' ') + "N1:",
                               "N1:B" + std::string(1 << 20, '9') + "B0B0GXL1",
                               "//Start Point = 1e300 , -1e308\nN1:BBB5GXL1\nN    : DD",
                               "//Start Point = nan , inf\nN1:BBB5GXL1\nN    : DD",
                               std::string("N\0\0:\0", 5) + std::string(1000, '\0'),
                               std::string(1 << 20, '\n'),
                               blocks,
                               pauses};
  for (const std::string& t : texts) {
    ASSERT_NO_FATAL_FAILURE(expectSound(check(t, figures)));
    auto plain = figures;
    plain[0].threading.reset();
    ASSERT_NO_FATAL_FAILURE(expectSound(check(t, plain)));
    ASSERT_NO_FATAL_FAILURE(expectSound(check(t, {})));
  }
}

TEST(TruthFuzz, HostileFigures) {
  const double huge = 1e300, nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<Sample> one{circleSample({0, 0}, 5, 0, {false, false, 0.1})};
  const std::string program = programOf(one);
  std::vector<Figure> figures;
  auto add = [&](std::vector<BulgeVertex> v, double c) {
    Figure f = one[0].figure;
    f.circle.reset();
    f.contour.vertices = std::move(v);
    f.contour.closed = true;
    f.compensation = c;
    figures.push_back(f);
  };
  add({}, 0.1), add({{{1, 1}, 0}}, 0.1), add({{{1, 1}, 0}, {{1, 1}, 0}}, 0.1),
      add({{{nan, 1}, 0}, {{1, 1}, 0}}, 0.1);
  add({{{huge, 1}, 0}, {{1, 1}, 0}}, 0.1), add({{{0, 0}, 1e9}, {{1, 1}, nan}}, 0.1);
  add({{{0, 0}, 1e9}, {{1, 1}, -1e-9}, {{2, 0}, 1e30}}, 0.1), add({{{0, 0}, 1}, {{1, 1}, 1}}, huge);
  add({{{0, 0}, 1}, {{1, 1}, 1}}, -1), add({{{0, 0}, 1}, {{1, 1}, 1}}, 1e6);
  for (const double r : {0.0, -1.0, nan, huge, 1e-300}) {
    figures.push_back(one[0].figure);
    figures.back().circle->radius = r;
  }
  for (const Figure& f : figures) {
    ASSERT_NO_FATAL_FAILURE(expectSound(check(program, {f})));
    EXPECT_FALSE(check(program, {f}).ok);
    Figure plain = f;
    plain.threading.reset();
    ASSERT_NO_FATAL_FAILURE(expectSound(check(program, {plain})));
  }
  ASSERT_NO_FATAL_FAILURE(expectSound(check(program, figures)));
}

}  // namespace
}  // namespace tarnex::truth::test
