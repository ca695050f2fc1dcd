// Prompts: what each takes, hands back and refuses.
#include <gmock/gmock.h>

#include "session.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Prompts, PointsFollowTheUserCoordinateSystemAndTheLastPoint) {
  Session s;
  auto& db = s.ed.database();
  db.ucsorg = {100, 0, 0};
  db.ucsXDir = {0, 1, 0};  // turned by 90 degrees
  db.ucsYDir = {-1, 0, 0};
  s.answers({"1,2", "@3,0", "*100,7", "@2<90"});
  EXPECT_EQ(s.ed.acedGetPoint("").value, (AcGePoint3d{1, 2, 0}));
  EXPECT_EQ(s.ed.acedGetPoint("").value, (AcGePoint3d{4, 2, 0}));
  EXPECT_EQ(s.ed.acedGetPoint("").value,
            (AcGePoint3d{7, 0, 0}));  // 7 up in the world is 7 along the turned x
  const AcGePoint3d base{10, 10, 0};
  EXPECT_NEAR(s.ed.acedGetPoint("", &base).value.distanceTo({10, 12, 0}), 0,
              1e-12);                                    // @ counts from the base
  EXPECT_EQ(s.ed.acedGetPoint("").reply, Reply::RTCAN);  // no answer left
}

TEST(Prompts, FlagsAndKeywords) {
  Session s;
  s.answers({"", "x", "0", "-1", "2.5"});
  s.ed.acedInitGet(1 + 2 + 4, "");
  EXPECT_EQ(s.ed.acedGetReal("Size: ").value, 2.5);
  EXPECT_THAT(s.out, HasSubstr("must not be zero"));
  EXPECT_THAT(s.out, HasSubstr("must not be negative"));
  s.answers({"", "un", "foo", "12"});
  s.ed.acedInitGet(0, "UNdo");
  EXPECT_EQ(s.ed.acedGetInt("").reply, Reply::RTNONE);
  s.ed.acedInitGet(0, "UNdo");
  EXPECT_EQ(s.ed.acedGetInt("").reply, Reply::RTKWORD);
  EXPECT_EQ(s.ed.acedGetInput(), "UNdo");
  s.ed.acedInitGet(128, "UNdo");
  EXPECT_EQ(s.ed.acedGetPoint("").reply, Reply::RTKWORD);
  EXPECT_EQ(s.ed.acedGetInput(), "foo");
  EXPECT_EQ(s.ed.acedGetInt("").value, 12);  // the flags held for one prompt
}

TEST(Prompts, TheDragPromptTellsPointsTextsAndEntitiesApart) {
  Session s;
  const auto id = s.line({0, 0}, {10, 0});
  s.answers({"12,5", "-2.5", "1-2", s.handle(id), "&FFFF", s.handle(id) + "*3,0", "^C"});
  const auto ask = [&] {
    s.ed.acedInitGet(128, "S N");
    return s.ed.acedDragGen({}, "", true);
  };
  EXPECT_EQ(ask().value, (AcGePoint3d{12, 5, 0}));
  EXPECT_FALSE(s.ed.draggedPick());
  EXPECT_EQ(ask().reply, Reply::RTKWORD);
  EXPECT_EQ(s.ed.acedGetInput(), "-2.5");
  EXPECT_EQ(ask().reply, Reply::RTKWORD);
  EXPECT_EQ(s.ed.acedGetInput(), "1-2");
  EXPECT_EQ(ask().value, (AcGePoint3d{5, 0, 0}));  // the middle of what the handle names
  EXPECT_EQ(s.ed.draggedPick()->entity, id);
  EXPECT_EQ(ask().value, (AcGePoint3d{3, 0, 0}));  // there is no FFFF; the next answer counts
  EXPECT_THAT(s.out, HasSubstr("has the handle FFFF"));
  EXPECT_EQ(ask().reply, Reply::RTCAN);
  EXPECT_FALSE(s.ed.draggedPick());
}

TEST(Prompts, WordsOfOneLineAreAnswersAndTextsTakeTheRest) {
  Session s;
  s.answers({"3 4,5 a text  of words", "", "x y"});
  EXPECT_EQ(s.ed.acedGetReal("").value, 3);
  EXPECT_EQ(s.ed.acedGetPoint("").value, (AcGePoint3d{4, 5, 0}));
  EXPECT_EQ(s.ed.acedGetString(true, "").value, "a text  of words");
  const auto empty = s.ed.acedGetString(true, "");
  EXPECT_EQ(empty.reply, Reply::RTNORM);
  EXPECT_EQ(empty.value, "");
  EXPECT_EQ(s.ed.acedGetString(false, "").value, "x");
}

TEST(Prompts, DistancesAndAnglesByPointsToo) {
  Session s;
  const AcGePoint3d base{1, 1, 0};
  s.answers({"4,5", "0,0", "3,4", "90", "1,5"});
  EXPECT_EQ(s.ed.acedGetDist("", &base).value, 5);  // 3 across, 4 up
  EXPECT_EQ(s.ed.acedGetDist("").value, 5);
  EXPECT_DOUBLE_EQ(s.ed.acedGetAngle("").value, kPi / 2);
  EXPECT_DOUBLE_EQ(s.ed.acedGetAngle("", &base).value, kPi / 2);
}

TEST(Prompts, OutputReadsAsASession) {
  Session s;
  EXPECT_EQ(s.run({"circle", "1,2", "3"}),
            "Command: circle\nSpecify center point for circle or [3P/2P]: 1,2\n"
            "Specify radius of circle or [Diameter]: 3\n");
}

TEST(Prompts, ScriptErrorsNameFileAndLineAndTheRestGoesOn) {
  Session s;
  const auto out =
      s.runScript("job.scr", "; a comment\r\ncircle\r\nhere\r\n1,2\r\n3\r\nfrobnicate\r\n\r\npoint 5,5\r\n");
  EXPECT_THAT(out, HasSubstr("job.scr:3: \"here\" is no point"));
  EXPECT_THAT(out, HasSubstr("job.scr:6: Unknown command \"frobnicate\""));
  EXPECT_EQ(s.all().size(), 2u);
  EXPECT_EQ(s.status, 1);
}

TEST(Prompts, WordsThatNobodyAskedForAreAFailure) {
  Session s;
  EXPECT_THAT(s.run({"point 1,1 2,2"}), HasSubstr("point did not ask for \"2,2\""));
  EXPECT_EQ(s.status, 1);
}

TEST(Prompts, TheJournalIsAScriptThatDoesTheSame) {
  Session s;
  std::string journal;
  s.ed.journal = [&](std::string_view line) { journal += std::string(line) + "\n"; };
  s.run({"line 0,0 10,0", "@0,5", "", "text 1,1 2 0 two words", "layer m \"two words\"", "", "move last", "",
         "0,0 5,5"});
  Session replay;
  replay.runScript("journal.scr", journal);
  EXPECT_EQ(replay.status, 0) << replay.out;
  ASSERT_EQ(replay.all().size(), 3u);
  EXPECT_EQ(replay.last<AcDbText>()->textString(), "two words");
  EXPECT_FALSE(replay.ed.database().layer("two words").isNull());
  EXPECT_EQ(replay.last<AcDbText>()->position(), (AcGePoint3d{6, 6, 0}));
}

TEST(Prompts, TransparentCommandsRunInBetween) {
  Session s;
  s.line({0, 0}, {100, 100});
  const auto out = s.run({"circle", "'zoom e", "'erase", "50,50", "1"});
  EXPECT_THAT(out, HasSubstr("ERASE can't run inside another command"));
  EXPECT_EQ(s.ed.realVar("VIEWSIZE"), 100);
  ASSERT_TRUE(s.last<AcDbCircle>());
  s.run({"u"});
  EXPECT_EQ(s.all().size(), 1u);
}

TEST(Prompts, YesAndNo) {
  Session s;
  s.answers({"maybe", "y", "no"});
  EXPECT_TRUE(s.ed.askYesNo("Convert?"));
  EXPECT_FALSE(s.ed.askYesNo("Convert?"));
  EXPECT_FALSE(s.ed.askYesNo("Convert?"));  // nobody there: not confirmed
  EXPECT_THAT(s.out, HasSubstr("\"maybe\" is none of the choices"));
}

// ---- object snap

TEST(Snap, SingleModesReachBeyondTheTarget) {
  Session s;
  s.line({0, 0}, {100, 0});
  s.circle({50, 50}, 20);
  s.line({0, 90}, {100, 90});
  s.ed.setView({50, 50}, 100);  // the target reaches 10 * 100 / 300 = 3.33 mm
  EXPECT_EQ(s.ed.acedOsnap({20, 1, 0}, "mid")->flat(), (AcGePoint2d{50, 0}));
  EXPECT_EQ(s.ed.acedOsnap({20, 1, 0}, "end")->flat(), (AcGePoint2d{0, 0}));
  EXPECT_EQ(s.ed.acedOsnap({20, 1, 0}, "near")->flat(), (AcGePoint2d{20, 0}));
  EXPECT_EQ(s.ed.acedOsnap({50, 71, 0}, "cen")->flat(), (AcGePoint2d{50, 50}));
  EXPECT_NEAR(s.ed.acedOsnap({69, 55, 0}, "quad")->distanceTo({70, 50, 0}), 0, 1e-9);
  EXPECT_FALSE(s.ed.acedOsnap({20, 4, 0}, "near"));
  EXPECT_FALSE(s.ed.acedOsnap({20, 1, 0}, "int"));
  EXPECT_FALSE(s.ed.acedOsnap({20, 1, 0}, "nonsense"));
}

TEST(Snap, RunningModesMovePicksButNoExactPoints) {
  Session s;
  s.line({0, 0}, {100, 0});
  s.ed.setView({50, 50}, 100);
  ASSERT_TRUE(s.ed.acedSetVar("OSMODE", 643LL));  // end, mid, perp, near
  s.answers({"98,2", "30,2", "30,0", "*98,2", "30,20", "mid", "20,1"});
  const AcGePoint3d base{70, 50, 0};
  EXPECT_EQ(s.ed.acedGetPoint("", &base).value.flat(), (AcGePoint2d{100, 0}));
  EXPECT_EQ(s.ed.acedGetPoint("", &base).value.flat(), (AcGePoint2d{30, 0}));  // no end within reach: near
  EXPECT_EQ(s.ed.acedGetPoint("", &base).value.flat(), (AcGePoint2d{30, 0}));
  EXPECT_EQ(s.ed.acedGetPoint("", &base).value.flat(), (AcGePoint2d{98, 2}));
  EXPECT_EQ(s.ed.acedGetPoint("", &base).value.flat(), (AcGePoint2d{30, 20}));
  EXPECT_EQ(s.ed.acedGetPoint("", &base).value.flat(), (AcGePoint2d{50, 0}));  // asked for by name, once
}

}  // namespace
}  // namespace tarnex
