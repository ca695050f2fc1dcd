// The replay: which vectors, in which order and colour, with which waits and reports; and that nothing of it
// stays behind.
#include "exchange/simulation.h"

#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "pathcmd/paths.h"
#include "support/modulefixture.h"

namespace tarnex {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using Events = std::vector<std::string>;

// What a watcher sees, as lines: "link 0,0 3,4", "cut ...", "wait 40", "wiped", "hidden", "shown".
class Log : public ScreenWatcher {
 public:
  void vectorDrawn(const TemporaryVector& v) override {
    events.push_back(formatted("%s %g,%g %g,%g", v.color == kLinkColor ? "link" : "cut", v.from.x, v.from.y,
                               v.to.x, v.to.y));
  }
  void waits(int ms) override {
    events.push_back("wait " + std::to_string(ms));
    if (--interruptAt == 0) throw CommandInterrupted{};
  }
  void wiped() override { events.emplace_back("wiped"); }
  void visibilityChanged(AcDbObjectId, bool visible) override {
    events.emplace_back(visible ? "shown" : "hidden");
  }
  Events events;
  int interruptAt = 0;  // the wait at which the user breaks in; 0 none
};

class Simulation : public ModuleFixture {
 protected:
  Simulation() {
    texts({{305, "run or step? "},
           {178, "delay? "},
           {306, "line %g; "},
           {307, "arc %g; "},
           {20250, "path %d of %d"}});
    session.ed.addCommand({"APP", "SIM", "SIM", 0, [this] { SIM(*module); }, ""});
    session.ed.screenWatchers.push_back(log);
    session.ed.setPaced(false);
  }
  AcDbObjectId path(std::vector<BulgeVertex> vertices) {
    list().push_back(addPolyline(session, std::move(vertices)));
    return list().back();
  }
  std::vector<AcDbObjectId>& list() { return module->state<PathState>().PathList; }
  // SIM on these answers; the events.
  Events sim(std::vector<std::string> answers) {
    log->events.clear();
    answers.insert(answers.begin(), "SIM");
    session.run(std::move(answers));
    return log->events;
  }
  void expectNothingLeft() {
    EXPECT_TRUE(session.ed.temporaryVectors().empty());
    for (AcDbObjectId id : list()) EXPECT_TRUE(drawing().isShown(*drawing().peek<AcDbEntity>(id)));
    EXPECT_EQ(session.ed.intVar("CMDECHO"), 1);
    EXPECT_FALSE(drawing().modifiedSinceSave());
  }
  const std::shared_ptr<Log> log = std::make_shared<Log>();
};

TEST_F(Simulation, WalksFromFirstVertexToFirstVertex) {
  path({{{0, 0}, 0}, {{3, 4}, 0}, {{3, 8}, 0}});
  path({{{10, 0}, 0}});  // one vertex: the move to it and nothing cut
  DrawingVars vars(drawing());
  vars.setPoint("STARTPOINT", {-1, 0, 0});
  vars.setPoint("ENDPOINT", {9, 9, 0});
  drawing().markSaved();
  EXPECT_THAT(sim({"", "", ""}), ElementsAre("hidden", "hidden", "link -1,0 0,0", "wait 40", "cut 0,0 3,4",
                                             "wait 40", "cut 3,4 3,8", "wait 40", "link 0,0 10,0", "wait 40",
                                             "link 10,0 9,9", "wait 40", "wiped", "shown", "shown"));
  EXPECT_EQ(session.status, 0);
  EXPECT_THAT(session.out, HasSubstr("Press ENTER to continue... "));
  expectNothingLeft();
}

TEST_F(Simulation, WithoutStartAndEndPointsAndWithoutPaths) {
  EXPECT_THAT(sim({"", "7", ""}), ElementsAre());
  EXPECT_THAT(session.out, HasSubstr("Press ENTER"));
  path({{{1, 1}, 0}, {{2, 1}, 0}});
  EXPECT_THAT(sim({"", "7", ""}), ElementsAre("hidden", "cut 1,1 2,1", "wait 7", "wiped", "shown"));
  list().clear();
  DrawingVars(drawing()).setPoint("ENDPOINT", {5, 0, 0});
  EXPECT_THAT(sim({"", "-3", ""}), ElementsAre("link 0,0 5,0", "wait 0", "wiped"));
}

TEST_F(Simulation, PathsThatCannotBeOpenedAreSkipped) {
  list().push_back(session.line({0, 0}, {1, 1}));  // no polyline
  path({{{10, 0}, 0}, {{11, 0}, 0}});
  // The second is no first path: its move comes from (0,0).
  EXPECT_THAT(sim({"", "", ""}), ElementsAre("hidden", "hidden", "link 0,0 10,0", "wait 40", "cut 10,0 11,0",
                                             "wait 40", "wiped", "shown", "shown"));
}

TEST_F(Simulation, StepByStepReportsEachSpan) {
  // A half circle over a chord of 20: radius 10.
  path({{{0, 0}, 0}, {{3, 4}, 1}, {{23, 4}, 0}, {{23, 5}, 0}});
  path({{{50, 0}, 0}, {{51, 0}, 0}});
  drawing().markSaved();
  const Events events = sim({"S", "30", "", "1,1", "Q", ""});
  EXPECT_THAT(session.out, HasSubstr("line 5; "));
  EXPECT_THAT(session.out, HasSubstr("arc 10; "));
  EXPECT_THAT(session.out, HasSubstr("line 1; "));
  EXPECT_EQ(session.status, 0);
  // No wait after a step; after Q the next path's move and its span are waited for.
  EXPECT_EQ(std::count(events.begin(), events.end(), "wait 30"), 2);
  EXPECT_THAT(events, ::testing::IsSupersetOf({"cut 23,4 23,5", "link 0,0 50,0", "cut 50,0 51,0"}));
  expectNothingLeft();
}

TEST_F(Simulation, CancelAtAStepEndsWithoutThePause) {
  path({{{0, 0}, 0}, {{1, 0}, 0}, {{2, 0}, 0}});
  path({{{5, 0}, 0}, {{6, 0}, 0}});
  DrawingVars(drawing()).setPoint("ENDPOINT", {9, 9, 0});
  drawing().markSaved();
  EXPECT_THAT(sim({"S", "", "", "^C"}),
              ElementsAre("hidden", "hidden", "cut 0,0 1,0", "cut 1,0 2,0", "wiped", "shown", "shown"));
  EXPECT_THAT(session.out, Not(HasSubstr("Press ENTER")));
  expectNothingLeft();
}

TEST_F(Simulation, OnlyEnterAndTheKeywordStartIt) {
  path({{{0, 0}, 0}, {{1, 0}, 0}});
  for (const char* answer : {"^C", "3", "2.5", "4,4"}) EXPECT_THAT(sim({answer}), ElementsAre()) << answer;
}

TEST_F(Simulation, AnInterruptShowsThePathsAgain) {
  path({{{0, 0}, 0}, {{1, 0}, 0}, {{2, 0}, 0}});
  drawing().markSaved();
  log->interruptAt = 1;
  EXPECT_THAT(sim({"", "1000"}), ElementsAre("hidden", "cut 0,0 1,0", "wait 1000", "wiped", "shown"));
  EXPECT_THAT(session.out, HasSubstr("*Cancel*"));
  expectNothingLeft();
}

TEST_F(Simulation, LeavesNoStepAndForgetsNone) {
  session.run({"LINE", "0,0", "1,1", ""});
  const AcDbObjectId line = session.ed.acdbEntLast();
  path({{{0, 0}, 0}, {{1, 0}, 0}});
  session.run({"LINE", "5,5", "6,6", "", "u"});
  sim({"", "", ""});
  session.run({"redo"});
  EXPECT_EQ(session.all().size(), 3u) << "the line that was taken back comes again";
  session.run({"u", "SIM", "", "", "", "u"});
  EXPECT_FALSE(stands(line)) << "SIM is no step of its own";
}

TEST(SimulationVectors, WhatTheHostDeclinesWipes) {
  Session session;
  EXPECT_TRUE(drawVector(session.ed, {0, 0, 0}, {1, 0, 0}, kCutColor));
  EXPECT_FALSE(drawVector(session.ed, {0, 0, 0}, {INFINITY, 0, 0}, kCutColor));
  EXPECT_TRUE(session.ed.temporaryVectors().empty());
}

// Steps of acos(0.99) = 8.1096 degrees; counts are sweep / step, rounded up.
TEST(SimulationVectors, ChordsKeepTheirStepAndEndAtTheEnd) {
  struct Case {
    double from, sweep;  // degrees
    std::size_t chords;
  };
  const Case cases[] = {
      {0, 90, 12},      // 11.10
      {90, -90, 12},    // 11.10, from +y to +x
      {350, 20, 3},     // 2.47, over 0 upward
      {10, -20, 3},     // 2.47, over 0 downward: the end angle is the greater number
      {30, 270, 34},    // 33.29
      {200, -350, 44},  // 43.16
      {45, 5, 1},       // shorter than a step
      {0, -5, 1},
  };
  const double radius = 7, step = std::acos(0.99);
  const AcGePoint2d centre{3, -2};
  for (const Case& c : cases) {
    const double a = c.from * kPi / 180, d = c.sweep > 0 ? 1 : -1;
    const AcGePoint2d start = acutPolar(centre, a, radius),
                      end = acutPolar(centre, a + c.sweep * kPi / 180, radius);
    const auto points = chordsOfArc(start, end, bulgeOfDegrees(c.sweep));
    ASSERT_EQ(points.size(), c.chords + 1) << c.from << " " << c.sweep;
    EXPECT_NEAR(points.back().distanceTo(end), 0, 1e-9);
    for (std::size_t k = 0; k + 1 < points.size(); ++k)
      EXPECT_NEAR(points[k].distanceTo(acutPolar(centre, a + d * step * static_cast<double>(k), radius)), 0,
                  1e-9)
          << c.from << " " << c.sweep << " chord " << k;
  }
}

}  // namespace

}  // namespace tarnex
