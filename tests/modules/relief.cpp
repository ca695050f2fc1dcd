// Corner relief: the routine against steps worked out by hand, and what writers make of it.
// Loads the module of this build.
#include <cmath>
#include <random>

#include "contour/geometrylibrary.h"
#include "modules/moduletest.h"
#include "output3b/contourwriter.h"
#include "toolpath/cornerrelief.h"
#include "toolpath/reliefbinding.h"

namespace tarnex {
namespace {

constexpr double kMark = 0.000001;

class Relief : public ModuleTest {
 protected:
  Relief() : relief(bindCornerRelief(*module, ReliefOf::kWireCentre)) { EXPECT_TRUE(relief); }
  AcDbObjectId add(std::vector<BulgeVertex> vertices, bool closed = true) {
    return session.add(std::make_unique<AcDbPolyline>(PolylineCurve{std::move(vertices), closed}));
  }
  // The routine's polyline, worked with the lengths 0.18 at straight corners and 0.2 at those of arcs.
  PolylineCurve relieved(std::vector<BulgeVertex> vertices, int nSide) {
    flags.clear();
    EXPECT_TRUE(relief(add(std::move(vertices)), 0.18, 0.2, nSide, flags));
    return session.last<AcDbPolyline>()->polyline();
  }
  void expectVertices(const PolylineCurve& c, const std::vector<BulgeVertex>& expected) {
    EXPECT_TRUE(c.closed);
    ASSERT_EQ(c.vertices.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(c.vertices[i].point.distanceTo(expected[i].point), 0, 1e-12) << i;
      EXPECT_EQ(c.vertices[i].bulge, expected[i].bulge) << i;
    }
  }
  CornerRelief relief;
  std::vector<int> flags;
};

// At 90° the step is 0.18 / sin 45° - 0.18 long on the diagonal, so in x and in y 0.18 - 0.18 / √2.
const double kD = 0.18 * (1 - std::sqrt(0.5));

TEST_F(Relief, ASquareHoleGetsAStepAtEachCornerButItsFirst) {
  EXPECT_NEAR(kD * std::sqrt(2.0), 0.0745584, 1e-7);
  expectVertices(relieved({{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, 1),
                 {{{0, 0}, 0},
                  {{10, 0}, kMark},
                  {{10 + kD, -kD}, kMark},
                  {{10, 0}, 0},
                  {{10, 10}, kMark},
                  {{10 + kD, 10 + kD}, kMark},
                  {{10, 10}, 0},
                  {{0, 10}, kMark},
                  {{-kD, 10 + kD}, kMark},
                  {{0, 10}, 0}});
  EXPECT_EQ(flags, (std::vector{0, 0, 1, 1, 0, 1, 1, 0, 1, 1}));
  expectVertices(
      relieved({{{0, 0}, 0}, {{0, 10}, 0}, {{10, 10}, 0}, {{10, 0}, 0}}, 1),  // the other way round
      {{{0, 0}, 0},
       {{0, 10}, kMark},
       {{-kD, 10 + kD}, kMark},
       {{0, 10}, 0},
       {{10, 10}, kMark},
       {{10 + kD, 10 + kD}, kMark},
       {{10, 10}, 0},
       {{10, 0}, kMark},
       {{10 + kD, -kD}, kMark},
       {{10, 0}, 0}});
}

TEST_F(Relief, AnOuterShapeIsRelievedWhereItIsHollow) {
  const std::vector<BulgeVertex> square{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}};
  expectVertices(relieved(square, -1), square);
  EXPECT_EQ(flags, std::vector(4, 0));
  expectVertices(
      relieved({{{0, 0}, 0}, {{20, 0}, 0}, {{20, 10}, 0}, {{10, 10}, 0}, {{10, 20}, 0}, {{0, 20}, 0}}, -1),
      {{{0, 0}, 0},
       {{20, 0}, 0},
       {{20, 10}, 0},
       {{10, 10}, kMark},
       {{10 - kD, 10 - kD}, kMark},
       {{10, 10}, 0},
       {{10, 20}, 0},
       {{0, 20}, 0}});
}

TEST_F(Relief, CornersOfArcsGoByTheirTangents) {
  // Half a disc below its chord's left end: at (10,0) the line runs to +x, the arc leaves to +y.
  const double d = 0.2 * (1 - std::sqrt(0.5));
  expectVertices(relieved({{{0, 0}, 0}, {{10, 0}, 1}}, 1),
                 {{{0, 0}, 0}, {{10, 0}, kMark}, {{10 + d, -d}, kMark}, {{10, 0}, 1}});
  const std::vector<BulgeVertex> slot{{{0, 0}, 0}, {{20, 0}, 1}, {{20, 10}, 0}, {{0, 10}, 1}};  // tangent
  expectVertices(relieved(slot, 1), slot);
  const auto disc = add({{{0, 0}, 0}, {{10, 0}, 1}});
  EXPECT_TRUE(relief(disc, 0.18, 0, 1, flags));
  EXPECT_EQ(flags, (std::vector{0, 0}));  // no radius for arcs
}

TEST_F(Relief, StepsThatStandAreKeptAndNotRelievedAgain) {
  const auto once = relieved({{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{2, 11}, 0}}, 1);
  EXPECT_EQ(relieved(once.vertices, 1), once);
  EXPECT_EQ(flags, std::vector(once.vertices.size(), 0));
  // One that leads inwards makes corners to the left, as those that are relieved.
  const std::vector<BulgeVertex> inwards{{{10, 10}, kMark}, {{9, 9}, kMark}, {{10, 10}, 0}};
  expectVertices(relieved({{{0, 0}, 0}, {{10, 0}, 0}, inwards[0], inwards[1], inwards[2]}, 1),
                 {{{0, 0}, 0},
                  {{10, 0}, kMark},
                  {{10 + kD, -kD}, kMark},
                  {{10, 0}, 0},
                  inwards[0],
                  inwards[1],
                  inwards[2]});
}

TEST_F(Relief, LeavesOneEntityOnTheLayerOfTheFirstAndDeclinesWhatIsNoContour) {
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName("CUT");
  const AcDbObjectId layer = drawing().addLayer(std::move(record));
  const AcDbObjectId id = add({{{0, 0}, 0}, {{10, 0}, 0}, {{5, 9}, 0}});
  drawing().open<AcDbPolyline>(id, OpenMode::kForWrite)->setLayer(layer);
  EXPECT_TRUE(relief(id, 0.18, 0.18, 1, flags));
  EXPECT_EQ(session.all().size(), 2u);
  EXPECT_EQ(session.last<AcDbPolyline>()->layerId(), layer);
  EXPECT_EQ(session.entity<AcDbPolyline>(id)->numVerts(), 3);
  const AcDbObjectId open = add({{{0, 0}, 0}, {{10, 0}, 0}, {{5, 9}, 0}}, false);
  const AcDbObjectId flat = add({{{0, 0}, 0}, {{10, 0}, 0}});
  const AcDbObjectId line = session.line({0, 0}, {1, 1});
  const std::size_t count = session.all().size();
  for (AcDbObjectId none : {open, flat, line, AcDbObjectId{}, AcDbObjectId{99999}})
    EXPECT_FALSE(relief(none, 0.18, 0.18, 1, flags)) << none.index;
  EXPECT_EQ(session.all().size(), count);
}

TEST_F(Relief, WithoutAModuleThereIsNone) {
  std::filesystem::create_directories(folder + "/nothing");
  surround("TARNEX_SHIPPED", folder + "/nothing");
  EXPECT_FALSE(bindCornerRelief(*module, ReliefOf::kWireCentre));
  std::filesystem::copy_file(TARNEX_BINARY_DIR "/install/Harbec.DLL", folder + "/Quillet.arx");
  EXPECT_FALSE(bindCornerRelief(*module, ReliefOf::kWireCentre)) << "a module without the routine";
}

// ---- what writers make of it

class ReliefInPrograms : public Relief {
 protected:
  struct Shape {
    std::vector<BulgeVertex> vertices;
    int nSide = 1, nDirection = 1;
    double along = 0.5;  // where on the first span the path is entered, 0 to 1
  };
  const CToolPath& pathOf(const Shape& shape) {
    PolylineCurve contour{shape.vertices, true};
    if (polylineOrientation(contour) != shape.nDirection) reversePolyline(contour);
    const AcGePoint2d a = contour.vertices[0].point, b = contour.vertices[1].point;
    const AcGePoint2d entry =
        contour.vertices[0].bulge == 0
            ? AcGePoint2d{a.x + (b.x - a.x) * shape.along, a.y + (b.y - a.y) * shape.along}
            : pointAlongSpan(a, b, contour.vertices[0].bulge,
                             shape.along * spanLength(a, b, contour.vertices[0].bulge))
                  ->point;
    auto path = std::make_unique<CToolPath>();
    const double outwards = shape.nSide == 1 ? 0.9 : 1.1;
    EXPECT_TRUE(path->initContour(
        {{entry.x * outwards, entry.y * outwards}, entry, shape.nSide, shape.nDirection, 0.1, 0}, contour,
        0));
    return *session.entity<CToolPath>(session.add(std::move(path)));
  }
  std::string program(const CToolPath& path, const WireCutSettings& settings, const CornerRelief& routine) {
    const Contour3bContext context{
        settings, {0, 0}, "D", routine, [](std::string_view) {}, [](int) { return ""; }};
    Program3b out;
    write3B(path, context, out);
    return out.text;
  }
  Shape randomShape(std::mt19937& random) {
    const auto real = [&](double low, double high) {
      return low + (high - low) * (random() % 10001) / 10000.0;
    };
    const int n = 3 + static_cast<int>(random() % 10);
    Shape shape;
    for (int i = 0; i < n; ++i)
      shape.vertices.push_back({acutPolar({0, 0}, 2 * kPi * (i + real(-0.2, 0.2)) / n, real(5, 20)),
                                random() % 3 ? 0.0 : real(-0.3, 0.3)});
    shape.nSide = random() % 2 ? 1 : -1;
    shape.nDirection = random() % 2 ? 1 : -1;
    shape.along = real(0.2, 0.8);
    return shape;
  }
};

// The program's writer compensates corners by itself too; whoever does it, the blocks are the same.
TEST_F(ReliefInPrograms, ThreeBBlocksAreTheSameWithAndWithoutTheModule) {
  std::mt19937 random(47);
  const int rounds = environment("TARNEX_LONG") ? 5000 : 150;
  int withSteps = 0;
  for (int i = 0; i < rounds; ++i) {
    const CToolPath& path = pathOf(randomShape(random));
    WireCutSettings settings(folder);
    settings.dAutoFixLen = 0.18;
    const std::string plain = program(path, settings, {});
    settings.bAutoFix = 1;
    settings.bCutoffPause = static_cast<int>(random() % 2);
    settings.dCutoffLen = 0.2;
    settings.bOvercut = static_cast<int>(random() % 2);
    settings.dOvercutLen = 0.3;
    settings.nOvercutMode = static_cast<int>(random() % 2);
    settings.bOvercutTangent = static_cast<int>(random() % 2);
    const std::size_t entities = session.all().size();
    const std::string mine = program(path, settings, relief);
    EXPECT_EQ(mine, program(path, settings, {})) << "round " << i;
    EXPECT_EQ(session.all().size(), entities);
    withSteps += mine.size() > plain.size() + 100;
  }
  EXPECT_GT(withSteps, rounds / 2);
}

TEST_F(ReliefInPrograms, CodesAndThePauseBeforeTheEndStay) {
  Shape square{{{{-10, -10}, 0}, {{10, -10}, 0}, {{10, 10}, 0}, {{-10, 10}, 0}}, 1, 1, 0.5};
  const AcDbObjectId id = pathOf(square).objectId();
  drawing().open<CToolPath>(id, OpenMode::kForWrite)->setCodeAt(3, "M98");
  WireCutSettings settings(folder);
  settings.bAutoFix = 1;
  const std::string coded = program(*session.entity<CToolPath>(id), settings, relief);
  EXPECT_THAT(coded, ::testing::HasSubstr(": M98\n"));
  EXPECT_EQ(coded, program(*session.entity<CToolPath>(id), settings, {}));
  // Entered 0.14 mm behind a corner, of which compensation leaves 0.04 mm: too short for the pause to split.
  square.along = 0.007;
  settings.bCutoffPause = 1;
  settings.dCutoffLen = 0.2;
  const std::string paused = program(pathOf(square), settings, relief);
  const auto pause = paused.find("\nN    : D");
  ASSERT_NE(pause, std::string::npos);
  EXPECT_EQ(paused.find("\nN    : D", pause + 1), std::string::npos);
  EXPECT_GT(pause, paused.size() * 3 / 4);
}

TEST_F(ReliefInPrograms, OutputListsHoldTheStepsAsStraightSpans) {
  const CToolPath& path =
      pathOf({{{{-10, -10}, 0}, {{10, -10}, 0}, {{10, 10}, 0}, {{-10, 10}, 0}}, 1, 1, 0.5});
  WireCutSettings settings(folder);
  settings.dIsoFixA = 0;
  settings.dIsoFixB = 0.2;
  const std::size_t entities = session.all().size();
  const auto lists = path.prepareOutput(settings, relief);
  EXPECT_EQ(session.all().size(), entities);
  // Threading point, entry, three vertices for each corner, the entry again.
  ASSERT_EQ(lists.vertices.size(), 15u);
  EXPECT_EQ(lists.bulges, std::vector(15, 0.0));
  EXPECT_EQ(lists.taper, std::vector(15, 0.0));
  const double d = 0.2 * (1 - std::sqrt(0.5));
  EXPECT_EQ(lists.vertices[1], (AcGePoint2d{0, -10}));
  EXPECT_EQ(lists.vertices[2], (AcGePoint2d{10, -10}));
  EXPECT_NEAR(lists.vertices[3].distanceTo({10 + d, -10 - d}), 0, 1e-12);
  EXPECT_EQ(lists.vertices[4], (AcGePoint2d{10, -10}));
  EXPECT_EQ(lists.vertices[14], lists.vertices[1]);
  settings.dIsoFixB = 0;
  EXPECT_EQ(path.prepareOutput(settings, relief).vertices.size(), 7u);
}

// A routine that breaks its promise must cost neither the path nor what the user drew last.
TEST_F(ReliefInPrograms, ARoutineThatLeavesNothingChangesNothing) {
  const CToolPath& path =
      pathOf({{{{-10, -10}, 0}, {{10, -10}, 0}, {{10, 10}, 0}, {{-10, 10}, 0}}, 1, 1, 0.5});
  WireCutSettings settings(folder);
  settings.bAutoFix = 1;
  settings.dIsoFixA = settings.dIsoFixB = 0.2;
  add({{{0, 0}, 0}, {{5, 0}, 0}, {{5, 5}, 0}});
  const auto before = session.all();
  for (const bool answer : {false, true}) {
    const CornerRelief broken = [answer](AcDbObjectId, double, double, int, std::vector<int>&) {
      return answer;
    };
    EXPECT_EQ(program(path, settings, broken), program(path, settings, {}));
    EXPECT_EQ(path.prepareOutput(settings, broken).vertices.size(), 7u);
    EXPECT_EQ(session.all(), before);
  }
}

}  // namespace
}  // namespace tarnex
