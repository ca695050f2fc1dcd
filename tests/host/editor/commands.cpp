// The command stack: names, undo steps, interrupts, commands run by commands, variables.
#include <gmock/gmock.h>

#include <stdexcept>

#include "session.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

void addCommand(Session& s, const char* global, const char* local, std::function<void()> run, int flags = 0) {
  s.ed.addCommand({"QV", global, local, flags, std::move(run), "a test's"});
}

TEST(Commands, NamesAsTypedGoBeforeNamesIgnoringCase) {
  Session s;
  std::string ran;
  addCommand(s, "GG", "GG", [&] { ran += "iso "; });
  addCommand(s, "gg", "cc", [&] { ran += "layers "; });
  addCommand(s, "Line", "Line", [&] { ran += "own-line "; });
  s.run({"GG", "gg", "Gg", "CC", "cc", "_gg", "'gg", "LiNe", "line 0,0 1,1", "", "LINE 0,0 1,1", ""});
  // "line" and "LINE": the host's is spelled LINE, so that goes there as typed; any other spelling to the
  // application.
  EXPECT_EQ(ran, "iso layers iso layers layers layers layers own-line own-line ");
  EXPECT_EQ(s.all().size(), 1u);
  s.ed.removeGroup("QV");
  EXPECT_FALSE(s.ed.findCommand("gg"));
  EXPECT_TRUE(s.ed.findCommand("line"));
}

TEST(Commands, OnesWithoutFunctionSaySo) {
  Session s;
  s.ed.addCommand({"QV", "SIM", "SIM", 0, {}, ""});
  EXPECT_THAT(s.run({"SIM"}), HasSubstr("SIM is not built yet.\n"));
  EXPECT_EQ(s.status, 1);
  EXPECT_FALSE(s.ed.database().modifiedSinceSave());
}

TEST(Commands, EachIsOneStepOfUndo) {
  Session s;
  int told = 0;
  s.ed.afterUndo.push_back([&] { ++told; });
  s.run({"line 0,0 10,0 10,10", "", "circle 5,5 1", "erase all", ""});
  EXPECT_TRUE(s.all().empty());
  s.run({"u"});
  EXPECT_EQ(s.all().size(), 3u);
  s.run({"u", "u"});
  EXPECT_TRUE(s.all().empty());
  EXPECT_THAT(s.run({"u"}), HasSubstr("Nothing to undo"));
  s.run({"redo"});
  EXPECT_EQ(s.all().size(), 2u);
  EXPECT_EQ(told, 4);
  EXPECT_EQ(s.status, 0);
}

TEST(Commands, ACommandThatBreaksOffIsUndone) {
  Session s;
  addCommand(s, "BREAK", "", [&] {
    s.circle({1, 1}, 1);
    throw std::runtime_error("one taper per vertex");
  });
  EXPECT_THAT(s.run({"BREAK", "point 1,1"}),
              HasSubstr("BREAK broke off and was undone: one taper per vertex"));
  EXPECT_EQ(s.all().size(), 1u);
  EXPECT_EQ(s.status, 1);
}

TEST(Commands, RunByCommandsWithReadyAnswers) {
  Session s;
  std::vector<Reply> replies;
  AcGePoint3d exact{1.0 / 3, -2.0 / 7, 0};
  addCommand(s, "OUTER", "", [&] {
    (void)s.ed.acedSetVar("CMDECHO", 0LL);
    (void)s.ed.acedSetVar("OSMODE", 512LL);
    s.ed.database().ucsorg = {50, 50, 0};
    replies.push_back(s.ed.acedCommand({std::string("circle"), exact, 2.5}));
    const auto circle = s.ed.acdbEntLast();
    replies.push_back(s.ed.acedCommand({std::string("line"), std::string("0,0"), std::string("")}));
    replies.push_back(s.ed.acedCommand(
        {std::string("move"), circle, std::string(""), std::string("0,0"), std::string("\\")}));
    replies.push_back(s.ed.acedCommand({std::string("circle"), exact}));  // an answer is missing
    replies.push_back(
        s.ed.acedCommand({std::string("scale"), circle, std::string(""), exact, std::string("x")}));
    replies.push_back(s.ed.acedCommand({std::string("nonsense")}));
  });
  const auto out = s.run({"OUTER", "10,0"});
  EXPECT_THAT(replies, ElementsAre(Reply::RTNORM, Reply::RTNORM, Reply::RTNORM, Reply::RTERROR,
                                   Reply::RTERROR, Reply::RTERROR));
  ASSERT_EQ(s.all().size(), 1u);
  EXPECT_NEAR(s.last<AcDbCircle>()->center().distanceTo({exact.x + 10, exact.y, 0}), 0, 1e-12);
  EXPECT_EQ(out, "Command: OUTER\nSpecify second point or <use first point as displacement>: 10,0\n");
  EXPECT_EQ(s.status, 0);  // what a program's commands answered is the program's to judge
  s.run({"u"});
  EXPECT_TRUE(s.all().empty());
}

TEST(Commands, EchoShowsWhatAProgramAnswers) {
  Session s;
  addCommand(s, "OUTER", "", [&] {
    s.ed.acedCommand({std::string("ucs"), std::string("o"), AcGePoint3d{1, 2, 0}});
  });
  EXPECT_THAT(s.run({"OUTER"}),
              HasSubstr("[Origin/Z/World] <World>: o\nSpecify new origin point <0,0,0>: *1,2,0\n"));
  EXPECT_EQ(s.ed.database().ucsorg, (AcGePoint3d{1, 2, 0}));
}

TEST(Commands, SentTextIsTypedAfterTheRunningCommand) {
  Session s;
  addCommand(s, "BAR", "", [&] {
    s.ed.sendText("(command)(princ) ");
    s.ed.sendText("'zoom 2x point 3,");
    s.ed.sendText("4 ");
    s.answers({"7"});
    EXPECT_EQ(s.ed.acedGetReal("").value, 7);
  });
  s.ed.setView({0, 0}, 80);
  s.run({"BAR"});
  EXPECT_EQ(s.ed.realVar("VIEWSIZE"), 40);
  ASSERT_TRUE(s.last<AcDbPoint>());
  EXPECT_EQ(s.last<AcDbPoint>()->position(), (AcGePoint3d{3, 4, 0}));
}

TEST(Commands, EnterRepeatsForAPersonAndNotInAScript) {
  struct Person : QueueInput {
    using QueueInput::QueueInput;
    bool showsPrompt() const override { return true; }
  };
  Session s;
  int runs = 0;
  addCommand(s, "WORK", "", [&] { ++runs; });
  s.run({"WORK", "", ""});
  EXPECT_EQ(runs, 1);
  s.ed.pushInput(std::make_shared<Person>(std::vector<std::string>{"WORK", "", ""}));
  s.ed.runLoop();
  EXPECT_EQ(runs, 4);
}

// ---- variables

TEST(Variables, KindsRangesAndReadOnly) {
  Session s;
  EXPECT_TRUE(s.ed.acedSetVar("osmode", 643LL));
  EXPECT_EQ(s.ed.intVar("OSMODE"), 643);
  EXPECT_TRUE(s.ed.acedSetVar("TEXTSIZE", 3LL));  // a whole number serves for a real one
  EXPECT_EQ(s.ed.realVar("TEXTSIZE"), 3.0);
  const std::pair<const char*, SysVar> refused[] = {{"OSMODE", 0.5},
                                                    {"OSMODE", -1LL},
                                                    {"CMDDIA", 2LL},
                                                    {"TEXTSIZE", 0.0},
                                                    {"HANDSEED", 1LL},
                                                    {"UCSORG", AcGePoint3d{}},
                                                    {"NOSUCH", 1LL},
                                                    {"CLAYER", std::string("none such")},
                                                    {"CECOLOR", std::string("257")},
                                                    {"VIEWSIZE", 0.0},
                                                    {"OSMODE", std::string("1")}};
  for (const auto& [name, value] : refused) EXPECT_FALSE(s.ed.acedSetVar(name, value)) << name;
  EXPECT_EQ(s.ed.intVar("OSMODE"), 643);
}

TEST(Variables, SetByCommandAndByName) {
  Session s;
  s.run({"setvar osmode 5", "PICKBOX 7", "CECOLOR 3", "point 0,0", "TEXTSIZE", ""});
  EXPECT_EQ(s.ed.intVar("OSMODE"), 5);
  EXPECT_EQ(s.ed.intVar("PICKBOX"), 7);
  EXPECT_EQ(s.last<AcDbPoint>()->colorIndex(), 3);
  EXPECT_EQ(s.status, 0);
  EXPECT_THAT(s.run({"setvar pickbox 51"}), HasSubstr("PICKBOX can't be \"51\""));
  EXPECT_THAT(s.run({"HANDSEED"}), HasSubstr("(read-only)"));
  EXPECT_EQ(s.status, 1);
}

TEST(Variables, TheViewHoldsAllThatIsDrawn) {
  Session s;
  s.line({0, 0}, {10, 30});
  s.ed.zoomExtents();
  EXPECT_EQ(s.ed.realVar("VIEWSIZE"), 30);
  EXPECT_EQ(s.ed.viewCentre(), (AcGePoint2d{5, 15}));
  s.run({"line 0,0 200,0", "", "zoom", "a"});
  EXPECT_EQ(s.ed.realVar("VIEWSIZE"), 150);  // 200 wide on a screen of 4 to 3
  s.run({"zoom 0,0 8,20", "zoom 0.5x"});
  EXPECT_EQ(s.ed.realVar("VIEWSIZE"), 40);
  EXPECT_THAT(s.run({"zoom 0x"}), HasSubstr("\"0x\" is no factor"));
  Session dot;
  dot.run({"point 1,1", "zoom e"});
  EXPECT_EQ(dot.ed.realVar("VIEWSIZE"), 1e-6);
}

}  // namespace
}  // namespace tarnex
