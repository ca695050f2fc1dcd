// `fx` and `WZ`: marks that come and go, codes at vertices.
// Marks are looked at while the prompt waits.
#include "pathcmd/pathtest.h"
#include "pathcmd/smallcommands.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Answers that are made when they are asked for.
class AskedFor : public InputSource {
 public:
  using Step = std::function<std::string()>;
  explicit AskedFor(std::vector<Step> steps) : steps_(std::move(steps)) {}
  std::optional<std::string> next(const PromptShown&) override {
    if (at_ >= steps_.size()) return std::nullopt;
    return steps_[at_++]();
  }

 private:
  std::vector<Step> steps_;
  std::size_t at_ = 0;
};

class Small : public PathTest {
 protected:
  Small() {
    session.ed.setView({5, 5}, 40);  // marks are 40 * 0.025 = 1 mm large
    for (const auto& [name, command] : {std::pair("fx", &fx), std::pair("WZ", &WZ)})
      session.ed.addCommand(
          {"QV", name, name, ACRX_CMD_TRANSPARENT, [this, command] { command(*module); }, ""});
  }
  std::string runAsked(std::vector<AskedFor::Step> steps) {
    session.out.clear();
    session.ed.pushInput(std::make_shared<AskedFor>(std::move(steps)));
    session.status = session.ed.runLoop();
    return session.out;
  }
  static AskedFor::Step say(std::string line) {
    return [line] { return line; };
  }
  // What was added to the drawing since `before` entities: "circle 0,0 1", "10,0 9.134,0.5".
  [[nodiscard]] std::vector<std::string> marks(std::size_t before) {
    std::vector<std::string> shown;
    const auto text = [](double v) { return formatted("%g", std::round(v * 1000) / 1000 + 0.0); };
    for (const AcDbObjectId id : session.all()) {
      if (before > 0) {
        --before;
        continue;
      }
      const auto* entity = drawing().peek<AcDbEntity>(id);
      EXPECT_EQ(entity->colorIndex(), 256);
      if (const auto* circle = drawing().peek<AcDbCircle>(id)) {
        shown.push_back("circle " + text(circle->center().x) + "," + text(circle->center().y) + " " +
                        text(circle->radius()));
      } else if (const auto* line = drawing().peek<AcDbLine>(id)) {
        const auto a = line->getStartPoint(), b = line->getEndPoint();
        shown.push_back(text(a.x) + "," + text(a.y) + " " + text(b.x) + "," + text(b.y));
      }
    }
    return shown;
  }

  // T (5,5), Q (5,0), (10,0), (10,10), (0,10), (0,0), Q: vertices 0 to 6.
  AcDbObjectId squarePath() {
    auto made = std::make_unique<CToolPath>();
    const PolylineCurve square{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{0, 10}, 0}}, true};
    EXPECT_TRUE(made->initContour({{5, 5}, {5, 0}, 1, 1, 0.1, 0}, square, 0));
    addPath(*module, std::move(made), {}, kColorByLayer, nullptr);
    return state().PathList.back();
  }
  [[nodiscard]] std::vector<std::string> codes(std::size_t of = 0) {
    std::vector<std::string> list;
    for (int i = 0; i < path(of)->numVerts(); ++i)
      if (!path(of)->getCodeAt(i).empty()) list.push_back(std::to_string(i) + " " + path(of)->getCodeAt(i));
    return list;
  }
};

TEST_F(Small, DirectionMarksStandUntilTheNextAnswer) {
  addSquare(session);
  // A half circle from (20,0) to (30,0) about (25,0), counter-clockwise: it leaves downwards and comes up.
  addContour(session, {{{20, 0}, 1}, {{30, 0}, 0}}, false);
  drawing().markSaved();
  drawing().forgetUndo();
  const auto handle = drawing().nextHandle();
  std::vector<std::string> square, half, afterMiss;
  const auto out = runAsked({say("fx"), say("5,0"),
                             [&] {
                               square = marks(2);
                               return "25,-5";
                             },
                             [&] {
                               half = marks(2);
                               return "50,50";
                             },
                             [&] {
                               afterMiss = marks(2);
                               return "";
                             }});
  // At (10,0) the way is 0 degrees: heads at 150 and -150, cos 150 = -0.866. And so on, a quarter turn each.
  EXPECT_THAT(square, ElementsAre("circle 0,0 1", "10,0 9.134,0.5", "10,0 9.134,-0.5", "10,10 9.5,9.134",
                                  "10,10 10.5,9.134", "0,10 0.866,9.5", "0,10 0.866,10.5", "0,0 0.5,0.866",
                                  "0,0 -0.5,0.866"));
  // Open: a cross, cos 45 = 0.707. The arc ends upwards: 90 + 150 and 90 - 150 degrees.
  EXPECT_THAT(half, ElementsAre("circle 20,0 1", "20.707,0.707 19.293,-0.707", "19.293,0.707 20.707,-0.707",
                                "30,0 29.5,-0.866", "30,0 30.5,-0.866"));
  EXPECT_THAT(afterMiss, IsEmpty());
  EXPECT_THAT(out, HasSubstr("Closed, counter-clockwise, 4 segments, from 0.000, 0.000"));
  EXPECT_THAT(out, HasSubstr("Open, 1 segments, from 20.000, 0.000"));
  EXPECT_EQ(session.all().size(), 2u);
  EXPECT_EQ(session.status, 0);
  // Nothing was there: nothing to undo or to save, and no handle is used up.
  EXPECT_FALSE(drawing().undo());
  EXPECT_FALSE(drawing().modifiedSinceSave());
  EXPECT_EQ(drawing().nextHandle(), handle);
}

TEST_F(Small, DirectionOfWhatIsNoPolyline) {
  const auto circle = session.circle({0, 0}, 5);
  const auto out = session.run({"fx", "5,0", "@", session.handle(circle), "12", "", "u"});
  EXPECT_THAT(out, HasSubstr("That is not a polyline."));
  EXPECT_EQ(session.all().size(), 1u);
}

TEST_F(Small, AnInterruptTakesTheMarksAlong) {
  addSquare(session);
  session.ed.addCommand({"QV", "LINEAROUND", "", 0,
                         [this] {
                           session.line({50, 50}, {60, 60});
                           (void)session.ed.acedGetPoint("Point: ");
                           session.line({70, 50}, {80, 60});
                         },
                         ""});
  drawing().forgetUndo();
  std::size_t whileMarked = 0;
  runAsked({say("fx"), say("5,0"), [&]() -> std::string {
              whileMarked = session.all().size();
              throw CommandInterrupted{};
            }});
  EXPECT_EQ(whileMarked, 10u);
  EXPECT_EQ(session.all().size(), 1u);
  EXPECT_FALSE(drawing().undo());
  // Inside another command: its own work stays, as one step.
  runAsked({say("LINEAROUND"), say("'fx"), say("5,0"), say(""), say("1,1")});
  EXPECT_EQ(session.all().size(), 3u);
  ASSERT_TRUE(drawing().undo());
  EXPECT_EQ(session.all().size(), 1u);
  ASSERT_TRUE(drawing().redo());
  EXPECT_EQ(session.all().size(), 3u);
}

TEST_F(Small, ACodeGoesToTheNearerEndOfThePickedSpan) {
  squarePath();
  const struct {
    const char* pick;
    const char* code;
  } cases[] = {{"6,0", "1 X"}, {"9,0", "2 X"}, {"10,2", "2 X"},
               {"0,1", "5 X"}, {"4,0", "6 X"}, {"5,4", "0 X"}};
  for (const auto& c : cases) {
    session.run({"WZ", "  X\t ", c.pick, ""});
    EXPECT_THAT(codes(), ElementsAre(c.code)) << c.pick;
    session.run({"u"});
    EXPECT_THAT(codes(), IsEmpty()) << c.pick;
  }
  EXPECT_EQ(settings().sLastCode, "X");
}

TEST_F(Small, WhatCountsAsACode) {
  squarePath();
  EXPECT_THAT(session.run({"WZ", "", "6,0", ""}), HasSubstr("Code for the vertices <B0B0B1GXL1>:"));
  EXPECT_THAT(codes(), ElementsAre("1 B0B0B1GXL1"));
  session.run({"WZ", "M00 P1", "9,0", ""});
  EXPECT_THAT(codes(), ElementsAre("1 B0B0B1GXL1", "2 M00 P1"));
  // Blanks are a text that comes to nothing: the command ends, so that the pick isn't asked for.
  session.run({"WZ", "   ", "TTT"});
  EXPECT_EQ(settings().sLastCode, "M00 P1");
  session.run({"WZ", "^C"});
  EXPECT_EQ(settings().sLastCode, "M00 P1");
  const std::string longest(127, 'A');
  EXPECT_THAT(session.run({"WZ", longest + "B"}), HasSubstr("A code takes at most 127 bytes"));
  EXPECT_EQ(session.status, 1);
  EXPECT_EQ(settings().sLastCode, "M00 P1");
  session.run({"WZ", longest, "10,2", ""});
  EXPECT_THAT(codes(), ElementsAre("1 B0B0B1GXL1", "2 " + longest));
  module->loadSettings();
  EXPECT_EQ(settings().sLastCode, longest);
}

TEST_F(Small, WindowsSetAndAfterTheKeywordClear) {
  squarePath();
  const auto circle = session.circle({12, 5}, 1);
  (void)circle;
  // Both limits count: (10,0) and (10,10) lie on the window's edge. The circle inside is passed over.
  const auto out = session.run({"WZ", "M1", "14,10", "10,0", ""});
  EXPECT_THAT(codes(), ElementsAre("2 M1", "3 M1"));
  EXPECT_THAT(out, HasSubstr("An entity that is not a path was passed over."));
  // C asks for its own window and holds for later ones; a pick sets all the same; no corner goes back.
  session.run({"WZ", "M2", "C", "", "C", "20,-5", "9,5", "6,0", "20,20", "9,9", ""});
  EXPECT_THAT(codes(), ElementsAre("1 M2"));
  // The entry point is the path's vertex 1 and its last one.
  session.run({"WZ", "M3", "4,-2", "6,1", ""});
  EXPECT_THAT(codes(), ElementsAre("1 M3", "6 M3"));
  const std::string handle = session.handle(state().PathList[0]);
  session.run({"WZ", "M4", "C", "30,30", handle, ""});
  EXPECT_THAT(codes(), IsEmpty());
}

TEST_F(Small, NoPathNoCode) {
  const auto id = squarePath();
  session.circle({30, 0}, 5);
  EXPECT_THAT(session.run({"WZ", "M1", "35,0", ""}),
              HasSubstr("An entity that is not a path was passed over."));
  auto locked = std::make_unique<AcDbLayerTableRecord>();
  locked->setName("LOCKED");
  locked->setIsLocked(true);
  const auto layer = drawing().addLayer(std::move(locked));
  drawing().open<CToolPath>(id, OpenMode::kForWrite)->setLayer(layer);
  EXPECT_THAT(session.run({"WZ", "M1", "6,0", ""}), HasSubstr("lies on a locked layer"));
  EXPECT_THAT(codes(), IsEmpty());
}

}  // namespace
}  // namespace tarnex
