// The one prompt of the system, the helpers around commands, and the hand-over to an editor that is a script.
// Knows the host's prompts; no command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "support/modulefixture.h"

namespace tarnex {
namespace {

using testing::HasSubstr;

class Input : public ModuleFixture {
 protected:
  UserInput ask(std::vector<std::string> lines, PickMode mode = PickMode::kEntityPickBox,
                const char* keywords = "") {
    session.out.clear();
    session.answers(std::move(lines));
    return getUserInput(session.ed, "\nWhat: ", mode, keywords);
  }
};

TEST_F(Input, NumbersEnterAndCancel) {
  struct Row {
    const char* text;
    InputKind kind;
    int whole;
    double real;
  };
  for (const Row& r : {Row{"12", InputKind::kInteger, 12, 0}, Row{"-7", InputKind::kInteger, -7, 0},
                       Row{"-2.5", InputKind::kReal, 0, -2.5}, Row{".", InputKind::kReal, 0, 0},
                       Row{"99999999999", InputKind::kInteger, INT32_MAX, 0},
                       Row{"", InputKind::kEnter, 0, 0}, Row{"^C", InputKind::kCancel, 0, 0}}) {
    const auto got = ask({r.text});
    EXPECT_EQ(got.kind, r.kind) << r.text;
    EXPECT_EQ(got.intValue, r.whole) << r.text;
    EXPECT_EQ(got.realValue, r.real) << r.text;
  }
}

TEST_F(Input, OtherTextsAreRefusedAndAskedAgain) {
  const auto got = ask({"1-2", "1e5", "4"});
  EXPECT_EQ(got.kind, InputKind::kInteger);
  EXPECT_EQ(got.intValue, 4);
  const std::string refusal = " ***指令关键字不正确, 请重新输入!";
  const auto first = session.out.find(refusal);
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(session.out.find(refusal, first + 1), std::string::npos);
}

TEST_F(Input, KeywordsGiveTheirIndex) {
  EXPECT_EQ(ask({"u"}, PickMode::kPointOnly, "U B").keyword, 0);
  const auto b = ask({"B"}, PickMode::kPointOnly, " U  B ");
  EXPECT_EQ(b.kind, InputKind::kKeyword);
  EXPECT_EQ(b.keyword, 1);
  // Six letters count, and sixteen words.
  EXPECT_EQ(ask({"LONGES"}, PickMode::kPointOnly, "A LONGESTWORD").keyword, 1);
  const char* many = "A B C D E F G H I J K L M N O P Q";
  EXPECT_EQ(ask({"P"}, PickMode::kPointOnly, many).keyword, 15);
  EXPECT_EQ(ask({"Q", ""}, PickMode::kPointOnly, many).kind, InputKind::kEnter);
}

TEST_F(Input, AClickIsAPointOrWhatStandsThere) {
  const AcDbObjectId line = session.line({0, 0}, {100, 0});
  const auto onNothing = ask({"50,40"});
  EXPECT_EQ(onNothing.kind, InputKind::kPoint);
  EXPECT_EQ(onNothing.pointKind, 1);
  EXPECT_EQ(onNothing.point, (AcGePoint3d{50, 40, 0}));
  const auto onLine = ask({"30,0.05"});
  EXPECT_EQ(onLine.kind, InputKind::kEntity);
  EXPECT_EQ(onLine.entity, line);
  EXPECT_EQ(onLine.entityKind, -1);
  EXPECT_EQ(onLine.spanKind, 0);
  EXPECT_EQ(onLine.point, (AcGePoint3d{30, 0, 0}));
  EXPECT_EQ(ask({"30,0"}, PickMode::kPointOnly).kind, InputKind::kPoint);
}

TEST_F(Input, PicksOnPolylinesTellTheSpan) {
  addPolyline(session, {{{0, 0}, 0}, {{100, 0}, 1}, {{100, 60}, 0}});
  EXPECT_EQ(ask({"50,0"}).spanKind, 2);
  const auto arc = ask({"130.05,30"});  // about (100,30), radius 30
  EXPECT_EQ(arc.spanKind, 3);
  EXPECT_NEAR(arc.point.x, 130, 1e-9);
  const PolylineCurve c{{{{0, 0}, 0}, {{100, 0}, 1}, {{100, 60}, 0}, {{0, 60}, 0}}, true};
  EXPECT_EQ(spanAt(c, {50, 0.1}), 0);
  EXPECT_EQ(spanAt(c, {130, 30}), 1);
  EXPECT_EQ(spanAt(c, {0, 30}), 3);   // the closing span
  EXPECT_EQ(spanAt(c, {50, 30}), 0);  // none takes it
  EXPECT_EQ(spanAt(c, {130.02, 30}), 0);
}

TEST_F(Input, CoordinatesAndSnapArePutBack) {
  setUcsOrigin(session.ed, AcGePoint3d{5, 6, 0});
  (void)session.ed.acedSetVar("OSMODE", 35LL);
  EXPECT_EQ(ask({"50,40"}).point, (AcGePoint3d{50, 40, 0}));  // the world's
  EXPECT_EQ(drawing().ucsorg, (AcGePoint3d{5, 6, 0}));
  EXPECT_EQ(session.ed.intVar("OSMODE"), 35);
}

// ---- helpers

TEST_F(Input, VariablesGiveTheirOldValue) {
  (void)session.ed.acedSetVar("OSMODE", 7LL);
  EXPECT_EQ(setOsmode(session.ed, kLeaveAsIs), 7);
  EXPECT_EQ(setOsmode(session.ed, 0), 7);
  EXPECT_EQ(setOsmode(session.ed, 7), 0);
  EXPECT_EQ(setCmdEcho(session.ed, 1), 1);
  EXPECT_EQ(setCmdEcho(session.ed, kLeaveAsIs), 1);
  EXPECT_EQ(setCmdEcho(session.ed, 0), 1);
  EXPECT_EQ(session.ed.intVar("CMDECHO"), 0);
  EXPECT_EQ(setPellipse(session.ed, 1), 0);
  EXPECT_EQ(setPellipse(session.ed, -1), 1);
  EXPECT_EQ(setPellipse(session.ed, 0), 1);
  const double height = setTextSize(session.ed, 3.5);
  EXPECT_EQ(setTextSize(session.ed, -9999.0), 3.5);
  EXPECT_EQ(setTextSize(session.ed, height), 3.5);
  EXPECT_EQ(setSnapFlag(drawing(), 2), 0);
  EXPECT_EQ(setSnapFlag(drawing(), kLeaveAsIs), 2);
  EXPECT_EQ(setSelMask(drawing(), 3), 0);
  EXPECT_EQ(setSelMask(drawing(), 1), 3);
  session.ed.setView({0, 0}, 200);
  EXPECT_DOUBLE_EQ(viewUnit(session.ed), 5);
}

TEST_F(Input, TheOriginMovesAndComesBack) {
  EXPECT_EQ(setUcsOrigin(session.ed, std::nullopt), (AcGePoint3d{}));
  EXPECT_EQ(setUcsOrigin(session.ed, AcGePoint3d{3, 4, 0}), (AcGePoint3d{}));
  EXPECT_EQ(setUcsOrigin(session.ed, std::nullopt), (AcGePoint3d{3, 4, 0}));
  drawing().ucsXDir = {0, 1, 0};
  drawing().ucsYDir = {-1, 0, 0};
  EXPECT_EQ(setUcsOrigin(session.ed, AcGePoint3d{3, 4, 0}), (AcGePoint3d{3, 4, 0}));
  EXPECT_EQ(drawing().ucsXDir, (AcGeVector3d{1, 0, 0}));  // a rotation isn't kept
}

TEST_F(Input, TheDirectionOfAWindowDecidesWhatItTakes) {
  const AcDbObjectId inside = session.line({1, 1}, {9, 9});
  const AcDbObjectId across = session.line({5, 5}, {50, 5});
  session.answers({"10,10"});
  EXPECT_EQ(windowSelect(session.ed, {0, 0, 0}), SelectionSet{inside});
  session.answers({"0,0"});
  EXPECT_EQ(windowSelect(session.ed, {10, 10, 0}), (SelectionSet{inside, across}));
  session.answers({"^C"});
  EXPECT_TRUE(windowSelect(session.ed, {10, 10, 0}).empty());
}

TEST_F(Input, ThePickBoxFollowsTheView) {
  (void)session.ed.acedSetVar("PICKBOX", 3LL);
  session.ed.setView({0, 0}, 100);
  // 3 * 100 / 150 / 2 = 1 mm, at the angles 0.7333 and 3.9269.
  const auto box = pickBoxCorners(session.ed, {10, 20, 0});
  EXPECT_NEAR(box.high.x, 10 + std::cos(0.7333), 1e-9);
  EXPECT_NEAR(box.high.y, 20 + std::sin(0.7333), 1e-9);
  EXPECT_NEAR(box.low.x, 10 + std::cos(3.9269), 1e-9);
  EXPECT_NEAR(box.low.y, 20 + std::sin(3.9269), 1e-9);
}

TEST_F(Input, MacrosReachTheCommandLine) {
  std::vector<std::string> typed;
  for (const char* name : {"FIRST", "SECOND"})
    session.ed.addCommand(
        {"TEST", name, name, ACRX_CMD_MODAL, [&typed, name] { typed.push_back(name); }, ""});
  runMacro(session.ed, "^C^CFIRST;\nSECOND");
  session.ed.runLoop();
  EXPECT_EQ(typed, (std::vector<std::string>{"FIRST", "SECOND"}));
  EXPECT_FALSE(session.ed.anyCommandFailed()) << session.out;
  EXPECT_EQ(session.ed.intVar("CMDECHO"), 1);
  runMacro(session.ed, "^P^XFIRST");
  session.ed.runLoop();
  EXPECT_EQ(typed.size(), 3u);
  EXPECT_EQ(session.ed.intVar("CMDECHO"), 0);
}

TEST_F(Input, ErasingAListMindsNoLocks) {
  auto record = std::make_unique<AcDbLayerTableRecord>();
  record->setName("SHUT");
  const AcDbObjectId layer = drawing().addLayer(std::move(record));
  auto line = std::make_unique<AcDbLine>(AcGePoint3d{}, AcGePoint3d{1, 0, 0});
  line->setLayer(layer);
  SelectionSet list{session.add(std::move(line)), session.line({0, 0}, {5, 5})};
  drawing().open<AcDbLayerTableRecord>(layer, OpenMode::kForWrite)->setIsLocked(true);
  eraseList(drawing(), list);
  EXPECT_TRUE(list.empty());
  EXPECT_TRUE(session.all().empty());
  EXPECT_TRUE(drawing().peek<AcDbLayerTableRecord>(layer)->isLocked());
}

// ---- the hand-over

class HandOver : public Input {
 protected:
  // An editor that writes down what it was handed.
  void editorIs(const std::string& script) {
    write("Brenlow.exe", "#!/bin/sh\n" + script);
    std::filesystem::permissions(folder + "/Brenlow.exe", std::filesystem::perms::owner_all);
    module->textArea = SharedTextArea::create("test");
    ASSERT_TRUE(module->textArea);
  }
  std::string note() {
    return "printf '%s' \"$1\" > '" + folder +
           "/name'\nhead -z -n 1 < \"$TARNEX_TEXT_AREA\" | tr -d '\\0' > '" + folder + "/text'\n";
  }
};

TEST_F(HandOver, TheEditorGetsNameAndText) {
  editorIs(note());
  write("part.3b", "//program\nN   1: B");
  handOverToEditor(*module, folder + "/part.3b");
  waitForStarted(*module);
  EXPECT_EQ(read("name"), folder + "/part.3b");
  EXPECT_EQ(read("text"), "//program\nN   1: B");
  EXPECT_EQ(read("part.3b"), "//program\nN   1: B");
}

TEST_F(HandOver, WhatDoesNotFitStaysInTheFileAndTheUserIsTold) {
  editorIs(note());
  texts({{20200, "too long"}});
  const std::string longest(SharedTextArea::kSize - 1, 'x');
  write("fits.3b", longest);
  handOverToEditor(*module, folder + "/fits.3b");
  waitForStarted(*module);
  EXPECT_EQ(read("text"), longest);
  EXPECT_EQ(session.out, "");
  write("long.3b", longest + "y");
  handOverToEditor(*module, folder + "/long.3b");
  waitForStarted(*module);
  EXPECT_EQ(read("text"), "");
  EXPECT_EQ(read("long.3b").size(), longest.size() + 1);
  EXPECT_THAT(session.out, HasSubstr("too long"));
}

TEST_F(HandOver, AnEditorAtWorkKeepsItsText) {
  editorIs("while [ ! -e '" + folder +
           "/go' ]; do sleep 0.01; done\nhead -z -n 1 < \"$TARNEX_TEXT_AREA\" | tr -d '\\0' > \"$1.seen\"\n");
  write("a.3b", "first");
  write("b.3b", "second");
  handOverToEditor(*module, folder + "/a.3b");
  handOverToEditor(*module, folder + "/b.3b");
  write("go", "");
  waitForStarted(*module);
  EXPECT_EQ(read("a.3b.seen"), "first");
  EXPECT_EQ(read("b.3b.seen"), "second");
}

TEST_F(HandOver, AnEmptyNameOnlyStartsTheEditor) {
  editorIs("echo $# > '" + folder + "/count'\n");
  handOverToEditor(*module, "");
  waitForStarted(*module);
  EXPECT_EQ(read("count"), "0\n");
}

TEST_F(HandOver, AnEditorThatCannotStartIsTold) {
  texts({{20201, "no editor"}});
  write("Brenlow.exe", "no program");
  write("part.3b", "text");
  handOverToEditor(*module, folder + "/part.3b");
  EXPECT_THAT(session.out, HasSubstr("no editor"));
  EXPECT_EQ(read("part.3b"), "text");
}

}  // namespace
}  // namespace tarnex
