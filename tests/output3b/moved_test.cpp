// Paths that were moved, turned, mirrored, scaled or copied, by their programs: 3B blocks are steps, so they
// stay, turn by quarters, or are judged against the contour where it lies now.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <set>

#include "exchange/truth.h"
#include "output3b/contourwriter.h"

namespace tarnex {
namespace {

using Path = std::unique_ptr<CToolPath>;

// Contours on even micrometres, so that no count lies half way between two.
class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}

  Path path() {
    CToolPath::Making making;
    making.nDirection = upTo(1) ? kCounterClockwise : kClockwise;
    making.nSide = upTo(1) ? kInnerHole : kOuterShape;
    making.dOffset = 0.1 + 0.01 * upTo(5);
    making.dClearance = upTo(2) ? 0 : 0.02;
    auto made = upTo(4) == 0 ? circle(making) : plate(making);
    made->setPathNo(1);
    if (upTo(2) == 0) made->setTaper(1 + 0.5 * upTo(3));
    const int vertices = made->numVerts();
    for (int i = upTo(2); i > 0; --i) {
      const int at = 1 + upTo(vertices - 3);
      const AcGePoint2d a = made->getPointAt(at), b = made->getPointAt(at + 1);
      if (made->getBulgeAt(at) == 0) (void)made->setSegmentTaper(midpoint(a, b), 0.5 + upTo(4));
    }
    for (int i = upTo(3); i > 0; --i) made->setCodeAt(2 + upTo(vertices - 4), upTo(1) ? "M81" : "M80|G04X1");
    return made;
  }

 private:
  int upTo(int highest) { return std::uniform_int_distribution(0, highest)(random_); }
  double mm(int low, int high) {
    return 0.002 * std::uniform_int_distribution(low * 500, high * 500)(random_);
  }

  // From the entry towards the wire's side.
  static AcGePoint2d threadAt(AcGePoint2d entry, AcGeVector2d inward, int side) {
    return entry + inward * (side == kInnerHole ? 3.0 : -3.0);
  }

  Path circle(CToolPath::Making making) {
    const AcGePoint2d centre{mm(-50, 50), mm(-50, 50)};
    const double radius = mm(8, 20), angle = 0.001 * upTo(6000);
    making.entry = acutPolar(centre, angle, radius);
    making.thread = threadAt(making.entry, (centre - making.entry).normal(), making.nSide);
    auto made = std::make_unique<CToolPath>();
    EXPECT_TRUE(made->initCircle(making, centre, radius, 2 + upTo(4)));
    return made;
  }

  // A rectangle with a corner round, a corner cut and a bow in one side.
  Path plate(CToolPath::Making making) {
    const double x = mm(-50, 50), y = mm(-50, 50), w = mm(20, 40), h = mm(20, 40), r = mm(2, 6), c = mm(2, 6);
    const double quarter = std::tan(kPi / 8);
    PolylineCurve contour{{{{x, y}, 0.1 * upTo(3)},
                           {{x + w, y}, 0},
                           {{x + w, y + h - r}, quarter},
                           {{x + w - r, y + h}, 0},
                           {{x + c, y + h}, 0},
                           {{x, y + h - c}, 0}},
                          true};
    making.entry = {x + w, y + 8};
    making.thread = threadAt(making.entry, {-1, 0}, making.nSide);
    int span = 1;
    if (making.nDirection == kClockwise) {
      PolylineCurve back;
      back.closed = true;
      for (std::size_t i = 6; i-- > 0;)
        back.vertices.push_back({contour.vertices[i].point, -contour.vertices[(i + 5) % 6].bulge});
      contour = back;
      span = 3;  // vertices 5 4 3 2 1 0: from (w, h - r) down to (w, 0)
    }
    auto made = std::make_unique<CToolPath>();
    EXPECT_TRUE(made->initContour(making, contour, span));
    return made;
  }

  std::mt19937 random_;
};

struct Options : WireCutSettings {
  Options() : WireCutSettings("") {
    bCutoffPause = bOvercut = nOvercutMode = bOvercutTangent = bAutoFix = bPrintCoords = 0;
  }
};

std::string programOf(const CToolPath& path) {
  const Options settings;
  const Contour3bContext context{
      settings, {}, "D", {}, [](std::string_view) {}, [](int) {
                                   return std::string("no wire path"); }};
  Program3b program;
  write3B(path, context, program);
  return program.text;
}

// A quarter to the left: x becomes y, the word goes to the next quadrant. Marks and code texts stay.
std::string quarterTurned(const std::string& program) {
  std::string out;
  for (std::size_t at = 0, end = 0; at < program.size(); at = end) {
    end = std::min(program.find('\n', at + 1), program.size());
    std::string line = program.substr(at, end - at);
    const std::size_t x = line.find("B "), y = line.find("B ", x + 1), g = line.find(" G");
    if (x != std::string::npos && g != std::string::npos && y != std::string::npos) {
      const std::string counts = line.substr(x, y - x);
      const std::size_t j = line.find("B ", y + 1);
      line = line.substr(0, x) + line.substr(y, j - y) + counts + line.substr(j);
      line[g + 2] = line[g + 2] == 'X' ? 'Y' : 'X';
      const std::size_t digit = line.find_first_of("1234", g + 3);
      line[digit] = static_cast<char>('1' + (line[digit] - '0') % 4);
    }
    out += line;
  }
  return out;
}

truth::Figure figureOf(const CToolPath& path) {
  truth::Figure f;
  f.number = 1;
  const auto& v = path.polyline().vertices;
  f.contour = {{v.begin() + 1, v.end() - 1}, true};
  f.compensation = path.dOffset() - path.nSide() * path.dClearance();
  f.side = path.nSide() == kInnerHole ? truth::Side::kInside : truth::Side::kOutside;
  f.direction = path.nDirection() == kCounterClockwise ? truth::Direction::kCounterClockwise
                                                       : truth::Direction::kClockwise;
  f.threading = v[0].point;
  return f;
}

// Without code texts, which the judge would have to be told one by one.
void expectTrue(const CToolPath& path) {
  const AcGePoint2d t = path.getPointAt(0);
  char head[100];
  std::snprintf(head, sizeof head, "//    Start Point  = %8.3f , %8.3f ;     X    ,     Y", t.x, t.y);
  truth::Expected expected;
  expected.codes = {"M81", "M80", "G04X1"};
  const auto report = truth::check(head + programOf(path) + "\nN    : DD", {figureOf(path)}, expected);
  std::string told;
  for (const auto& line : truth::describe(report)) told += line + "\n";
  EXPECT_TRUE(report.ok) << told << programOf(path);
}

unsigned runs() {
  return std::getenv("TARNEX_LONG") ? 5000 : 60;
}

TEST(MovedPaths, MovesAndCopiesKeepTheProgram) {
  for (unsigned seed = 1; seed <= runs(); ++seed) {
    SCOPED_TRACE(seed);
    const Path path = Maker(seed).path();
    const std::string before = programOf(*path);
    ASSERT_GE(std::count(before.begin(), before.end(), '\n'), 4);
    expectTrue(*path);
    const auto copy = path->clone();
    EXPECT_EQ(programOf(static_cast<const CToolPath&>(*copy)), before);
    ASSERT_EQ(path->transformBy(AcGeMatrix3d::translation({120 - 7.0 * seed, 33, 0})), ErrorStatus::eOk);
    EXPECT_EQ(programOf(*path), before);
    ASSERT_EQ(path->transformBy(AcGeMatrix3d::rotation(kPi / 2, {10, 4})), ErrorStatus::eOk);
    EXPECT_EQ(programOf(*path), quarterTurned(before));
    EXPECT_EQ(programOf(static_cast<const CToolPath&>(*copy)), before);  // nothing shared
  }
}

TEST(MovedPaths, MirroredTurnedAndScaledPathsStillCutTheirContour) {
  for (unsigned seed = 1; seed <= runs(); ++seed) {
    SCOPED_TRACE(seed);
    const Path path = Maker(seed).path();
    const double tapers = path->dTaper();
    const auto segments = path->aSegTaper();
    for (const auto& m :
         {AcGeMatrix3d::mirroring({3, 1}, {5, 2.0 + seed}), AcGeMatrix3d::rotation(0.3 * seed, {9, -4}),
          AcGeMatrix3d::scaling(2, {1, 2}), AcGeMatrix3d::mirroring({0, 0}, {0, 1})}) {
      ASSERT_EQ(path->transformBy(m), ErrorStatus::eOk);
      expectTrue(*path);
    }
    // Tapers stand at their spans, and the source that the path would give back is its contour.
    EXPECT_EQ(path->dTaper(), tapers);
    EXPECT_EQ(path->aSegTaper(), segments);
    const auto sources = path->restoredContour();
    ASSERT_EQ(sources.size(), 1u);
    const auto& source = static_cast<const AcDbCurve&>(*sources[0]);
    for (int i = 1; i < path->numVerts(); ++i) {
      const AcGePoint3d p = solid(path->getPointAt(i));
      EXPECT_LT(acutDistance(source.getClosestPointTo(p), p), 1e-6) << i;
    }
    EXPECT_NEAR(source.length(), path->contourLength(), 1e-6);
  }
}

}  // namespace
}  // namespace tarnex
