// Contours by chance: made into paths, written, and judged against the numbers that they were drawn with.
// A hundred in the suite, a thousand with TARNEX_LONG=1.
#include <random>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "exchange/truth.h"
#include "frame/environment.h"
#include "host/editor/session.h"
#include "module/application.h"
#include "output3b/programwriter.h"
#include "pathcmd/makepath.h"
#include "pathcmd/wiresurvey.h"

namespace tarnex {

namespace {

class ContoursByChance : public InFolder {
 protected:
  ContoursByChance() {
    surround("TARNEX_SHIPPED", TARNEX_BINARY_DIR "/install");
    app.acrxEntryPoint(AppMessage::kInitAppMsg);
    (void)session.ed.acedSetVar("CMDDIA", 0LL);
  }
  double between(double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); }
  int whole(int a, int b) { return std::uniform_int_distribution<int>(a, b)(random); }

  // Stars round a point, convex and concave; slivers; some spans arcs.
  PolylineCurve contour() {
    PolylineCurve c;
    c.closed = true;
    const int n = whole(3, 12), kind = whole(0, 3);
    const AcGePoint2d middle{between(-200, 200), between(-200, 200)};
    const double size = between(3, 60), turn = between(0, 6), thin = kind == 3 ? between(0.005, 0.1) : 1;
    for (int k = 0; k < n; ++k) {
      const double r = kind == 0 ? size : between(0.3, 1) * size;
      const double a = turn + 2 * kPi * (k + between(-0.3, 0.3)) / n;
      const AcGeVector2d out{r * std::cos(a), r * std::sin(a) * thin};
      const double bulge = kind == 1 || whole(0, 2) > 0 ? 0 : between(-0.4, 0.4);
      c.vertices.push_back({middle + out, bulge});
    }
    return c;
  }
  // Spans meet in their common vertices alone.
  static bool simple(const PolylineCurve& c) {
    const std::size_t n = c.vertices.size();
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = i + 1; j < n; ++j)
        for (AcGePoint2d hit : intersect(spanCurve(c, i), spanCurve(c, j), Extend::kOnBothOperands)) {
          const bool follows = j == i + 1 && hit.distanceTo(c.vertices[j].point) < 1e-6;
          const bool closes = i == 0 && j == n - 1 && hit.distanceTo(c.vertices[0].point) < 1e-6;
          if (!follows && !closes) return false;
        }
    return std::abs(signedArea(c.vertices)) > 0.01;
  }
  // A wire of this size goes round all of it from one threading point.
  bool canBeCut(const PolylineCurve& c, const CToolPath& path, bool hole, double offset) {
    const OffsetFate fate = fateUnderOffset(c, hole, offset);
    EXPECT_EQ(vanishesUnderOffset(c, hole, offset), fate.vanished);
    if (fate.vanished || fate.pieces > 1) return false;
    // Nor is a passage that a wire a quarter thicker would not fit through: there pieces come and go.
    const OffsetFate thicker = fateUnderOffset(c, hole, offset * 1.25);
    if (thicker.vanished || thicker.pieces > 1) return false;
    if (!(closestPoint(c, path.getPointAt(0)).distance > offset + 0.002)) return false;
    // What the user is warned of isn't cut.
    const auto warnings =
        surveyWires(app.module().drawing(), app.module().state<PathState>().PathList).warnings;
    warned += warnings.empty() ? 0 : 1;
    return warnings.empty();
  }

  std::mt19937 random{3};
  int warned = 0;
  Session session;
  Application app{session.ed, {folder, 1}};
};

TEST_F(ContoursByChance, AreCutTrue) {
  const int wanted = environment("TARNEX_LONG") ? 1000 : 100;
  auto& s = app.module().settings;
  int cut = 0, drawn = 0, outer = 0;
  for (; cut < wanted && drawn < wanted * 8; ++drawn) {
    const PolylineCurve c = contour();
    if (!simple(c)) continue;
    s.dOffset = std::exp(between(std::log(0.01), std::log(5)));
    s.nSide = whole(0, 1) ? 1 : -1;
    s.nDirection = whole(0, 1) ? 1 : -1;
    s.dLeadLen = s.dOffset + between(0.5, 4);
    s.bOvercut = s.bCutoffPause = s.bAutoFix = 0;
    app.module().saveSettings();
    session.run({"new"});  // and with it the list of paths
    const AcDbObjectId id = session.add(std::make_unique<AcDbPolyline>(c));
    if (!makePath(app.module(), {MakeMode::kBatch, id, {}, 0, nullptr})) continue;
    const auto* path = session.last<CToolPath>();
    ASSERT_TRUE(path);
    if (!canBeCut(c, *path, s.nSide == kInnerHole, s.dOffset)) continue;
    truth::Figure f;
    f.number = 1;
    f.contour = c;
    f.compensation = s.dOffset;
    f.side = s.nSide == kInnerHole ? truth::Side::kInside : truth::Side::kOutside;
    f.direction = s.nDirection > 0 ? truth::Direction::kCounterClockwise : truth::Direction::kClockwise;
    f.threading = path->getPointAt(0);
    app.module().state<LastProgram3b>() = {};
    const std::string said = session.run({"BB", ""});
    waitForStarted(app.module());  // the editor saves what it was given
    const std::string& file = app.module().state<LastProgram3b>().path;
    const auto text = readFile(file);
    EXPECT_TRUE(text) << said << s.dOffset;
    if (!text) continue;
    const truth::Report report = truth::check(*text.value, {f});
    std::string shown;
    for (const auto& l : truth::describe(report)) shown += l + "\n";
    for (const auto& v : c.vertices)
      shown +=
          std::to_string(v.point.x) + " " + std::to_string(v.point.y) + " " + std::to_string(v.bulge) + "\n";
    EXPECT_TRUE(report.ok) << "contour " << drawn << " offset " << s.dOffset << " side " << s.nSide
                           << " direction " << s.nDirection << "\n"
                           << shown << *text.value;
    ++cut;
    outer += s.nSide == kOuterShape;
  }
  EXPECT_EQ(cut, wanted) << "of " << drawn;
  EXPECT_GT(outer, wanted / 5);
  EXPECT_GT(wanted - outer, wanted / 5);
  EXPECT_LT(warned, wanted / 4);
  std::printf("%d contours cut of %d drawn, %d outer, %d with warnings\n", cut, drawn, outer, warned);
}

}  // namespace

}  // namespace tarnex
