// The commands at the prompt: what each answer does.
// Answers are those that a user would type.
#include "pathcmd/pathtest.h"

namespace tarnex {

namespace {

class PathCommands : public PathTest {
 protected:
  std::string h(AcDbObjectId id) { return session.handle(id); }
  // A text's leading line end is left out where a line has just ended.
  [[nodiscard]] static bool says(const std::string& out, const std::string& words) {
    return out.find(words.substr(words[0] == '\n' ? 1 : 0)) != std::string::npos;
  }
};

// ---- BP

TEST_F(PathCommands, BpTakesPicksAWindowAndUndo) {
  settings().nSnapMode = 0;
  settings().bFixedLeadAngle = 0;
  addSquare(session);
  session.circle({20, 5}, 4);
  const AcDbObjectId far = session.circle({200, 5}, 4);
  const std::string out = run(&BP, {"4,0", "-30,-30", "100,100", "U", ""});
  EXPECT_TRUE(says(out, module->message(31, {1LL})));
  EXPECT_TRUE(says(out, module->message(31, {2LL})));
  EXPECT_TRUE(says(out, module->message(31, {3LL})));
  ASSERT_EQ(state().PathList.size(), 1u);
  EXPECT_TRUE(stands(far));
  EXPECT_TRUE(says(run(&BP, {"-30,-30", h(far), ""}), module->message(31, {3LL})))
      << "named in a window's place";
  EXPECT_EQ(state().PathList.size(), 2u);
  settings().nSnapMode = 1;
  settings().nSide = -1;
  EXPECT_TRUE(says(run(&BP, {""}), module->message(29, {3LL}) + "MID of "));
}

TEST_F(PathCommands, BpWalksEqualCirclesFromNearestToNearest) {
  settings().bFixedLeadAngle = 0;
  const int at[] = {3, 7, 0, 9, 1, 5, 2, 8, 4, 6};
  for (int order : {1, 0}) {
    settings().nPathOrder = order;
    for (int i : at) session.circle({i * i * 10.0, order * 100.0}, 4);
    run(&BP, {"-30,-900", "2000,900", ""});
    // Each next one is the nearest of those left.
    const auto& list = state().PathList;
    ASSERT_EQ(list.size(), order ? 10u : 20u);
    for (std::size_t i = 0; i + 1 < list.size(); ++i)
      for (std::size_t j = i + 2; j < list.size(); ++j)
        EXPECT_LE(path(i)->getPointAt(0).distanceTo(path(i + 1)->getPointAt(0)),
                  path(i)->getPointAt(0).distanceTo(path(j)->getPointAt(0)));
  }
}

TEST_F(PathCommands, BpUsesASmallCircleAsThreadingHoleOfWhatHoldsIt) {
  settings().bSmallHole = 1;
  const AcDbObjectId hole = session.circle({3, 2}, 1);
  addSquare(session);
  run(&BP, {"-30,-30", "100,100", ""});
  ASSERT_EQ(state().PathList.size(), 1u);
  EXPECT_TRUE(stands(hole));
  EXPECT_TRUE(leadsFrom(path(), {3, 2}, {3, 0}));
}

// ---- BM

TEST_F(PathCommands, BmTellsTheSideByTheThreadingPoint) {
  settings().nPathOrder = 0;
  AcDbObjectId id = addSquare(session);
  EXPECT_TRUE(says(run(&BM, {"5,4", "5,0", ""}), "--------内孔"));
  ASSERT_EQ(state().PathList.size(), 1u);
  EXPECT_EQ(path()->nSide(), 1);
  EXPECT_TRUE(leadsFrom(path(), {5, 4}, {5, 0}));
  addContour(session, {{{20, 0}, 0}, {{30, 0}, 0}, {{25, 9}, 0}});
  EXPECT_TRUE(says(run(&BM, {"25,-5", "25,0", ""}), "------外形"));
  ASSERT_EQ(state().PathList.size(), 2u);
  EXPECT_EQ(path(1)->nSide(), -1);
  id = addContour(session, {{{40, 0}, 0}, {{50, 0}, 0}, {{45, 9}, 0}});
  EXPECT_TRUE(says(run(&BM, {"45,0", "43,0", ""}), module->message(46)));
  EXPECT_EQ(state().PathList.size(), 2u);
  EXPECT_TRUE(stands(id));
  session.circle({70, 0}, 5);
  run(&BM, {"77,0", "75,0", ""});
  ASSERT_EQ(state().PathList.size(), 3u);
  EXPECT_EQ(path(2)->nSide(), -1);
}

TEST_F(PathCommands, BmByBaseUndoAndWrongEntries) {
  addSquare(session);
  // Nothing at 50,50; then the entry; then the path goes again and comes back by base and offset.
  const std::string out = run(&BM, {"5,4", "50,50", "5,0", "U", "B", "1,1", "4,3", "*10,6", ""});
  EXPECT_TRUE(says(out, module->message(50)));
  ASSERT_EQ(state().PathList.size(), 1u);
  EXPECT_TRUE(leadsFrom(path(), {5, 4}, {10, 6}));
  addContour(session, {{{40, 0}, 0}, {{50, 0}, 0}, {{45, 9}, 0}}, false);
  EXPECT_TRUE(says(run(&BM, {"45,3", "45,0", ""}), module->message(74)));
  EXPECT_EQ(state().PathList.size(), 1u);
}

// ---- CS

class ByPicking : public PathCommands {
 protected:
  ByPicking() {
    for (double x : {0.0, 40.0, 20.0, 60.0}) ids.push_back(circlePath({x, 0}, 3 - x / 30));
  }
  // Which of the four paths stand where, from 1, after the answers; and the numbers agree with it.
  std::vector<int> order(std::vector<std::string> answers) {
    run(&CS, std::move(answers));
    std::vector<int> places;
    for (std::size_t i = 0; i < state().PathList.size(); ++i) {
      EXPECT_EQ(path(i)->nPathNo(), static_cast<int>(i) + 1);
      for (std::size_t k = 0; k < ids.size(); ++k)
        if (ids[k] == state().PathList[i]) places.push_back(static_cast<int>(k) + 1);
    }
    EXPECT_FALSE(module->bOrderMode);
    return places;
  }
  std::string p(int k) { return h(ids[static_cast<std::size_t>(k - 1)]); }
  std::vector<AcDbObjectId> ids;
};

using ::testing::ElementsAre;

TEST_F(ByPicking, InTheOrderPicked) {
  EXPECT_THAT(order({p(1), p(4), ""}), ElementsAre(1, 4, 3, 2));
  EXPECT_THAT(order({p(2), p(3), p(4), p(1), ""}), ElementsAre(2, 3, 4, 1));
  const AcDbObjectId line = session.line({0, 50}, {5, 50});
  EXPECT_TRUE(says(run(&CS, {h(line), ""}), module->message(54)));
}

TEST_F(ByPicking, UndoGivesBothTheirPlaces) {
  EXPECT_THAT(order({p(3), "U", ""}), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(order({p(3), p(4), "U", "U", "U", ""}), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(order({p(3), p(4), "U", p(1), ""}), ElementsAre(3, 1, 2, 4));
}

TEST_F(ByPicking, BeginOrderSwapAndLength) {
  EXPECT_THAT(order({"B", p(2), p(4), ""}), ElementsAre(1, 2, 4, 3));
  EXPECT_THAT(order({"O", p(1), ""}), ElementsAre(1, 3, 2, 4));  // by place: 0 20 40 60
  EXPECT_THAT(order({"W", p(1), p(1), p(4), p(3), p(2), "", ""}), ElementsAre(4, 2, 3, 1));
  EXPECT_THAT(order({"Z", ""}), ElementsAre(4, 2, 3, 1));  // the farther right, the smaller
}

TEST_F(ByPicking, AnInterruptLeavesTheOrderMode) {
  catchInterrupts();
  ASSERT_EQ(runProcess({"/bin/sh", "-c", "kill -INT $PPID"}), 0);
  EXPECT_THROW(run(&CS, {p(1), ""}), CommandInterrupted);
  EXPECT_FALSE(module->bOrderMode);
}

// ---- AJ, AJ1

TEST_F(PathCommands, AjClosesGapsUpToItsTolerance) {
  const auto corner = [&] {
    for (AcDbObjectId id : session.all()) drawing().open<AcDbEntity>(id, OpenMode::kForWrite)->erase();
    session.line({0, 0}, {10, 0});
    session.line({10, 0.15}, {10, 10});
  };
  corner();
  std::string out = run(&AJ, {"all", "", "0.1"});
  // One end of each, whichever its walk begins at.
  EXPECT_TRUE(says(out, "Open point at:(0.000000,0.000000)") !=
              says(out, "Open point at:(10.000000,0.000000)"))
      << out;
  EXPECT_TRUE(says(out, "Open point at:(10.000000,0.150000)") !=
              says(out, "Open point at:(10.000000,10.000000)"));
  EXPECT_TRUE(says(out, module->message(282, {2LL, 0LL})));
  corner();
  out = run(&AJ, {"all", "", "0.2"});
  EXPECT_TRUE(says(out, module->message(282, {1LL, 0LL})));
  ASSERT_EQ(session.all().size(), 1u);
  const auto* joined = session.last<AcDbPolyline>();
  ASSERT_TRUE(joined);
  ASSERT_EQ(joined->numVerts(), 3u);
  EXPECT_LT(joined->getPointAt(1).distanceTo({10, 0}), 1e-9);
  // Enter keeps what was shown; it is remembered.
  corner();
  out = run(&AJ, {"all", "", ""});
  EXPECT_TRUE(says(out, "(0.2): "));
  EXPECT_EQ(session.all().size(), 1u);
  corner();
  run(&AJ, {"all", "", "^C"});
  EXPECT_EQ(session.all().size(), 2u);
}

TEST_F(PathCommands, Aj1JoinsWhatTouchesOneCurve) {
  session.line({0, 0}, {10, 0});
  session.line({10, 10}, {0, 0});
  const AcDbObjectId seed = session.line({10, 0}, {10, 10});
  const AcDbObjectId apart = session.line({10.002, 0}, {20, 0});
  EXPECT_FALSE(says(run(&AJ1, {h(seed)}), "Open point"));
  EXPECT_TRUE(stands(apart));
  ASSERT_EQ(session.all().size(), 2u);
  bool closed = false;
  for (AcDbObjectId id : session.all())
    if (const auto* polyline = session.entity<AcDbPolyline>(id)) closed = polyline->isClosed();
  EXPECT_TRUE(closed);
}

}  // namespace

}  // namespace tarnex
