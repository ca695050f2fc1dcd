// The truth test on wrong programs: ten kinds of fault, planted at random places of random programs, are each
// found.
#include <gmock/gmock.h>

#include <functional>

#include "maker3b.h"
#include "rows3b.h"

namespace tarnex::truth::test {
namespace {

using ::testing::Contains;
using ::testing::Field;

bool any(const std::string&) {
  return true;
}
bool arc(const std::string& row) {
  return row.find('R') != std::string::npos;
}
long countOf(const std::string& row, int which) {  // 0 Bx, 1 By, 2 Bj
  std::size_t at = 6;
  for (int i = 0; i <= which; ++i) at = row.find('B', at) + 1;
  return std::stol(row.substr(at));
}

struct Fault {
  const char* name;
  std::function<bool(Rows&, std::mt19937&)> plant;  // false: this program has no place for it
};

bool change(Rows& r, std::size_t row, const char* from, const char* to) {
  const auto at = row == 0 ? std::string::npos : r.rows[row].find(from);
  if (at == std::string::npos) return false;
  r.rows[row].replace(at, std::string(from).size(), to);
  return true;
}

const std::vector<Fault>& textFaults() {
  static const std::vector<Fault> faults{
      {"wrong quadrant",
       [](Rows& r, std::mt19937& rng) {
         char& digit = r.rows[r.pick(rng, any)].end()[-3];
         digit = static_cast<char>('1' + (digit - '1' + 1 + static_cast<int>(rng() % 3)) % 4);
         return true;
       }},
      {"dropped block",
       [](Rows& r, std::mt19937& rng) {
         r.rows.erase(r.rows.begin() + static_cast<std::ptrdiff_t>(r.pick(rng, any)));
         return true;
       }},
      {"doubled block",
       [](Rows& r, std::mt19937& rng) {
         const std::size_t i = r.pick(rng, any);
         r.rows.insert(r.rows.begin() + static_cast<std::ptrdiff_t>(i), std::string(r.rows[i]));
         return true;
       }},
      {"wrong count axis",
       [](Rows& r, std::mt19937& rng) {  // but for lines at 45 degrees, which either axis counts
         const std::size_t i = r.pick(rng, [](const std::string& row) {
           const long x = countOf(row, 0), y = countOf(row, 1);
           return arc(row) || x != y || x == 0;
         });
         return change(r, i, "GX", "GY") || change(r, i, "GY", "GX");
       }},
      {"swapped NR and SR",
       [](Rows& r, std::mt19937& rng) {
         const std::size_t i = r.pick(rng, arc);
         return change(r, i, "NR", "SR") || change(r, i, "SR", "NR");
       }},
      {"missing return",
       [](Rows& r, std::mt19937& rng) {
         std::vector<std::size_t> ends;  // the block before a pause, but not a move between paths
         for (std::size_t i = 1; i + 1 < r.rows.size(); ++i)
           if (r.isBlock(i) && r.isBlock(i - 1) && !r.isBlock(i + 1)) ends.push_back(i);
         r.rows.erase(r.rows.begin() + static_cast<std::ptrdiff_t>(ends[rng() % ends.size()]));
         return true;
       }},
      {"start point 20 µm off",
       [](Rows& r, std::mt19937&) {
         const auto at = r.rows[1].find('=');
         char b[32];
         std::snprintf(b, sizeof b, "= %8.3f", std::stod(r.rows[1].substr(at + 1)) + 0.02);
         r.rows[1].replace(at, r.rows[1].find(',') - at, b);
         return true;
       }},
  };
  return faults;
}

TEST(TruthFaults, PlantedInTheTextAreFound) {
  std::mt19937 rng(77);
  for (const Fault& fault : textFaults()) {
    int planted = 0;
    for (int i = 0; i < 60; ++i) {
      std::vector<Sample> samples;
      for (int k = 0; k < 3; ++k) samples.push_back(randomSample(rng, {100.0 * k, 7.0}));
      Rows rows(programOf(samples));
      if (!fault.plant(rows, rng)) continue;
      ++planted;
      auto figures = figuresOf(samples);
      const Report r = check(rows.text(), figures);
      ASSERT_FALSE(r.ok) << fault.name << " " << i << "\n" << lines(r) << rows.text();
      ASSERT_THAT(r.findings, Contains(Field(&Finding::grade, Grade::kFault)));
      // One fault doesn't drag the other paths with it.
      ASSERT_LE(r.faults, 8u) << fault.name << " " << i << "\n" << lines(r) << rows.text();
      ASSERT_EQ(r.paths.size(), 3u) << fault.name << " " << i << "\n" << lines(r) << rows.text();
      for (Figure& f : figures) f.threading.reset();
      ASSERT_FALSE(check(rows.text(), figures).ok) << fault.name << " in a plain drawing\n" << rows.text();
    }
    EXPECT_GE(planted, 30) << fault.name;
  }
}

// Wires made for another compensation or side than the figure asks for.
TEST(TruthFaults, WrongCompensationIsFound) {
  struct Case {
    const char* name;
    double c;  // of the wire; the figure asks for 0.2
    bool flipSide;
    FindingKind kind;
  };
  const Case cases[] = {{"5 µm too far", 0.205, false, FindingKind::kTooFar},
                        {"5 µm too near", 0.195, false, FindingKind::kTooNear},
                        {"sign of the compensation", -0.2, false, FindingKind::kSide},
                        {"other side", 0.2, true, FindingKind::kSide}};
  for (const Case& c : cases) {
    for (int shape = 0; shape < 12; ++shape) {
      const Kind kind{shape % 2 == 0, shape % 3 == 0, c.c};
      Sample s = shape < 4   ? polygonSample(notched({50, 60}, 30, 20, 0.3 * shape), kind)
                 : shape < 8 ? roundedSample({50, 60}, 30, 20, 0.5 + 0.5 * shape, 0.3 * shape, kind)
                             : circleSample({50, 60}, 4.0 + shape, shape, kind);
      std::vector<Sample> one{s};
      const std::string program = programOf(one);
      one[0].figure.compensation = 0.2;
      if (c.flipSide) one[0].figure.side = kind.outside ? Side::kInside : Side::kOutside;
      const Report r = check(program, figuresOf(one));
      ASSERT_THAT(r.findings, Contains(Field(&Finding::kind, c.kind))) << c.name << " " << shape << "\n"
                                                                       << lines(r);
    }
  }
}

// Eight micrometres in the middle of 800 blocks, whose roundings alone may add up to 280 before it: how far
// the wire has drifted across its way is known from what it runs beside, so the jump stands out.
TEST(TruthFaults, SmallFaultsInLongPathsAreFound) {
  std::vector<Sample> one{polygonSample(regular({3, 4}, 40, 800, 0.1), {true, false, 0.15})};
  const std::string good = programOf(one);
  const Report clean = check(good, figuresOf(one));
  ASSERT_TRUE(clean.ok) << lines(clean);
  EXPECT_LT(clean.paths[0].rounding, 0.1);
  for (const std::size_t row : {200u, 305u, 410u, 515u, 620u, 725u}) {
    Rows rows(good);
    char b[96];
    const std::string& r = rows.rows[row];
    const long x = countOf(r, 0) + 8, y = countOf(r, 1) - 8;
    std::snprintf(b, sizeof b, "B %6ld B %6ld B %6ld G%c  %s", x, y, std::max(x, y), x > y ? 'X' : 'Y',
                  r.substr(r.size() - 4).c_str());
    rows.rows[row] = r.substr(0, 7) + b;
    const Report found = check(rows.text(), figuresOf(one));
    ASSERT_FALSE(found.ok) << row << rows.rows[row];
    EXPECT_LE(std::abs(found.findings[0].block - static_cast<long>(row - 1)), 2) << lines(found);
  }
}

TEST(TruthFaults, FindingsSayWhereAndHowMuch) {
  std::vector<Sample> one{polygonSample(rectangle({0, 0}, 10, 10, 0), {false, false, 0.1})};
  Rows rows(programOf(one));
  ASSERT_TRUE(
      change(rows, 4, "9800", "9750"));  // the second edge ends 50 µm short, the third runs 0.15 mm inside
  const Report r = check(rows.text(), figuresOf(one));
  ASSERT_FALSE(r.ok);
  ASSERT_THAT(r.findings, Contains(Field(&Finding::kind, FindingKind::kTooFar)));
  const Finding& far = r.findings[0];
  EXPECT_EQ(far.block, 4) << lines(r);
  EXPECT_THAT(
      far.text,
      ::testing::HasSubstr("0.0500 mm farther from the contour of figure 1 than the compensation of 0.1000"));
  EXPECT_NEAR(r.paths[0].closingError, 0.05, 1e-9);
}

TEST(TruthFaults, LinesThatAreWrong) {
  std::vector<Sample> samples{circleSample({0, 0}, 5, 0, {false, false, 0.1}),
                              circleSample({20, 0}, 5, 0, {false, false, 0.1})};
  const std::string good = programOf(samples);
  const auto figures = figuresOf(samples);
  struct Case {
    const char* from;
    const char* to;
    FindingKind kind;
  };
  const Case cases[] = {
      {"\nN    : DD", "\nN    : D", FindingKind::kStopMissing},
      {"\nN   3: ", "\nN   4: ", FindingKind::kNumbering},
      {"N   2: B", "N   2: Q", FindingKind::kUnreadable},
      {"N   5: B      0 B      0 B  20000", "N   5: B      0 B      0 B  20010", FindingKind::kLink},
      {"Start Point", "Point", FindingKind::kStart},
      {"NR1 ;", "NR1 ;   4.9100 ,   0.0000", FindingKind::kCoordinates}};
  for (const Case& c : cases) {
    std::string bad = good;
    const auto at = bad.find(c.from);
    ASSERT_NE(at, std::string::npos) << c.from << "\n" << good;
    bad.replace(at, std::string(c.from).size(), c.to);
    const Report r = check(bad, figures);
    EXPECT_THAT(r.findings, Contains(Field(&Finding::kind, c.kind))) << c.to << "\n" << lines(r);
  }
  Report r = check(good, {figures[0]});
  EXPECT_THAT(r.findings, Contains(Field(&Finding::kind, FindingKind::kUnknownCut))) << lines(r);
  auto more = figures;
  more.insert(more.begin() + 1, circleSample({40, 0}, 5, 0, {false, false, 0.1}).figure);
  r = check(good, more);
  EXPECT_EQ(r.faults, 1u) << lines(r);
  EXPECT_EQ(r.findings[0].kind, FindingKind::kNotCut);
}

// A lead-in from outside the hole, straight through its edge.
TEST(TruthFaults, LeadInAcrossTheContour) {
  std::vector<Sample> one{circleSample({0, 0}, 5, 0, {false, false, 0.1})};
  one[0].figure.threading = AcGePoint2d{8, 0};
  const Report r = check(programOf(one), figuresOf(one));
  EXPECT_THAT(r.findings, Contains(Field(&Finding::kind, FindingKind::kLeadIn))) << lines(r);
}

}  // namespace
}  // namespace tarnex::truth::test
