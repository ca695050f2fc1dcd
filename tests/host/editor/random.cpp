// Relations that hold for any input: windows against sampled curves, trimmed curves, sessions of random
// answers.
#include <gmock/gmock.h>

#include <random>

#include "host/editor/boxtest.h"
#include "host/platform/system.h"
#include "session.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;

int rounds(int usual) {
  return environment("TARNEX_LONG") ? usual * 100 : usual;
}

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine_); }
  AcGePoint2d point(double size) { return {real(-size, size), real(-size, size)}; }

  std::unique_ptr<AcDbCurve> curve() {
    const int kind = below(5);
    const AcGePoint3d c = solid(point(10));
    if (kind == 0) return std::make_unique<AcDbLine>(c, solid(point(10)));
    if (kind == 1) return std::make_unique<AcDbArc>(c, real(0.1, 8), real(0, 6), real(0, 6));
    if (kind == 2) return std::make_unique<AcDbCircle>(c, real(0.1, 8));
    if (kind == 3)
      return std::make_unique<AcDbEllipse>(c, point(8) - AcGePoint2d{}, real(0.1, 1), real(0, 3),
                                           real(3.1, 6));
    PolylineCurve p;
    for (int i = 0; i < 5; ++i) p.vertices.push_back({point(10), below(2) ? real(-1, 1) : 0});
    p.closed = below(2) == 0;
    return std::make_unique<AcDbPolyline>(std::move(p));
  }

 private:
  std::mt19937 engine_;
};

double distanceToBox(const Extents2d& box, AcGePoint2d p) {
  return std::hypot(std::max({box.low.x - p.x, 0.0, p.x - box.high.x}),
                    std::max({box.low.y - p.y, 0.0, p.y - box.high.y}));
}

TEST(RandomWindows, AgreeWithPointsAlongTheCurve) {
  Dice dice(20261);
  int crossed = 0, apart = 0;
  for (int round = 0; round < rounds(300); ++round) {
    const auto entity = dice.curve();
    const Extents2d box = boxOf(dice.point(10), dice.point(10));
    const Curve c = entity->geometry();
    const double whole = length(c), step = whole / 200;
    bool within = true, met = false;
    double nearest = 1e9;
    for (int i = 0; i <= 200; ++i) {
      const auto p = pointAtDist(c, std::min(whole, i * step)).value_or(endPoint(c));
      within = within && box.contains(p);
      met = met || box.contains(p);
      nearest = std::min(nearest, distanceToBox(box, p));
    }
    const bool touched = touchesBox(*entity, box);
    EXPECT_TRUE(touched || !met) << round;
    // Between two samples a curve is at most half a step away.
    EXPECT_TRUE(!touched || nearest <= step / 2 + 1e-9) << round;
    EXPECT_TRUE(within || !insideBox(*entity, box)) << round;
    ++(touched ? crossed : apart);
  }
  EXPECT_GT(crossed, rounds(300) / 4);
  EXPECT_GT(apart, rounds(300) / 10);
}

// What is left lies on what was there, ends at an edge or an old end, and the picked point is gone.
TEST(RandomTrims, LeaveTheCurveUpToTheEdges) {
  Dice dice(20262);
  int trimmed = 0;
  for (int round = 0; round < rounds(400); ++round) {
    Session s;
    auto entity = dice.curve();
    const Curve before = entity->geometry();
    const auto self = s.add(std::move(entity));
    const auto edge = s.line(dice.point(12), dice.point(12));
    const Curve edgeLine = s.entity<AcDbLine>(edge)->geometry();
    const auto pick = pointAtDist(before, dice.real(0, 1) * length(before)).value_or(startPoint(before));
    s.ed.addCommand({"QV", "CUT", "", 0,
                     [&] {
                       (void)s.ed.acedCommand({std::string("trim"), edge, std::string(""),
                                               EntityPick{self, solid(pick)}, std::string("")});
                     },
                     ""});
    s.run({"CUT"});
    double left = 0;
    for (const auto id : s.all()) {
      if (id == edge) continue;
      const Curve c = s.entity<AcDbCurve>(id)->geometry();
      left += length(c);
      for (const double f : {0.0, 0.3, 0.7, 1.0}) {
        const auto p = pointAtDist(c, f * length(c)).value_or(endPoint(c));
        EXPECT_LE(closestPoint(before, p).distance, 1e-6) << round;
      }
      if (isClosed(c)) continue;
      for (const auto end : {startPoint(c), endPoint(c)})
        EXPECT_LE(std::min({closestPoint(edgeLine, end).distance, end.distanceTo(startPoint(before)),
                            end.distanceTo(endPoint(before))}),
                  1e-6)
            << round;
    }
    if (left > length(before) - 1e-9) continue;  // no cut there
    ++trimmed;
    if (closestPoint(edgeLine, pick).distance < 1e-3) continue;
    bool gone = true;
    for (const auto id : s.all())
      if (id != edge && !std::holds_alternative<PolylineCurve>(before))  // a polyline may cross itself
        gone = gone && closestPoint(s.entity<AcDbCurve>(id)->geometry(), pick).distance > 1e-6;
    EXPECT_TRUE(gone) << round;
    s.run({"u"});
    EXPECT_EQ(s.all().size(), 2u);
    EXPECT_EQ(s.entity<AcDbCurve>(self)->geometry(), before) << round;
  }
  EXPECT_GT(trimmed, rounds(400) / 5);
}

// Whatever is answered, nothing breaks, and every command can be taken back and done again.
TEST(RandomSessions, AreUndoneCompletely) {
  static const char* const kWords[] = {
      "line", "circle",    "arc",    "pline",    "ellipse",     "point", "text",     "explode",
      "move", "copy",      "rotate", "mirror",   "scale",       "erase", "trim",     "layer",
      "list", "setvar",    "set",    "help",     "ucs",         "zoom",  "vpoint",   "regen",
      "0,0",  "10,0",      "@5,5",   "5,5",      "*3,3",        "@4<30", "0,10",     "-7,2",
      "",     "",          "",       "all",      "last",        "p",     "w",        "c",
      "r",    "a",         "d",      "3p",       "cl",          "u",     "y",        "m",
      "lo",   "off",       "*",      "&8",       "&9*5,0",      "&A",    "&B &C",    "&FFFF",
      "1",    "0.5",       "-2",     "90",       "1e308,1e308", "nan",   "PELLIPSE", "OSMODE",
      "643",  "mid",       "end",    "2x",       "'zoom",       "'line", "\"",       "\"a b\"",
      "^C",   "\x1b",      "?",      "=",        "@",           "*",     "&",        "1,2,3,4",
      "redo", "new layer", "\\",     "\xff\xfe", ";",           "%n%s"};
  Dice dice(20263);
  std::size_t most = 0;
  for (int round = 0; round < rounds(60); ++round) {
    Session s;
    std::vector<std::string> lines;
    for (int i = 0; i < 80; ++i) {
      std::string line = kWords[dice.below(std::size(kWords))];
      while (dice.below(3) == 0) line += std::string(" ") + kWords[dice.below(std::size(kWords))];
      lines.push_back(std::move(line));
    }
    const auto shown = ::testing::PrintToString(lines);
    s.run(lines);
    for (int i = 0; i < 80; ++i) s.run({"redo"});  // what the session itself took back
    const auto standing = s.all();
    most = std::max(most, standing.size());
    for (int i = 0; i < 200; ++i) s.run({"u"});
    EXPECT_THAT(s.run({"u"}), HasSubstr("Nothing to undo")) << shown;
    EXPECT_TRUE(s.all().empty()) << shown;
    for (int i = 0; i < 200; ++i) s.run({"redo"});
    EXPECT_EQ(s.all(), standing) << shown;
  }
  EXPECT_GT(most, 5u);
}

}  // namespace
}  // namespace tarnex
