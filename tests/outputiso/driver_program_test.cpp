// Programs as files: the head's lists, offset numbers, the moves between figures, and what is left alone when
// something is cancelled or can't be. Knows programs as text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "contour/hosthelpers.h"
#include "outputiso/driver.h"
#include "support/modulefixture.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class IsoProgram : public ModuleFixture {
 protected:
  IsoProgram() {
    texts({{37, "not written"},
           {295, "no paths"},
           {1848, "NO FILE %s"},
           {1849, "NO CELL %s %g"},
           {20260, "four axes %d"},
           {20261, "style %s lacks C%s"},
           {20262, "no %s %g %g, nearest %s %g %g"},
           {20263, "unread %s"},
           {20264, "path %d strange %s"},
           {20265, "path %d negative"},
           {20266, "%s: %d lines, %d figures"},
           {20267, "path %d has no stop"},
           {20268, "lossy"},
           {20269, "twice %s"},
           {20270, "path %d breakless"},
           {20271, "path %d no room for %g"},
           {20272, "path %d freed"},
           {20273, "path %d keeps its tab"},
           {20274, "path %d arc at %.3f,%.3f"},
           {20277, "path %d unlisted %s"},
           {20278, "path %d: %s is %s, listed %s"},
           {20276, "%d relieved %g %g"},
           {20275, "path %d at %.3f,%.3f: %.3f below %.3f"}});
    write("Brenlow.exe", "#!/bin/sh\nexit 0\n");
    std::filesystem::permissions(folder + "/Brenlow.exe", std::filesystem::perms::owner_all);
    write("MZS/Main.dat", "[Matrial]\n1=CU\n2=SKD11\n[Rad]\n1=0.2\n2=0.25\n[Thick]\n1=5\n2=20\n");
    write("MZS/SODICK/cond.ini",
          "[Main]\nVer=2\n[SKD11-0.2-5]\n1=WIRE\n2=C000=START\n3=C001=ONE\n4=C002=TWO\nCORNERCODE=CC 7\n"
          "[CU-0.2-5]\n1=FIRST\n2=C000=S\n3=C001=CU\n");
    drawing().dwgName = "Part.dxf";
    module->loadSettings();  // from here on they are of the present version
    module->settings.dIsoFixA = module->settings.dIsoFixB = 0;
    module->saveSettings();
    post().nWordCount = 40;
    post().paramOn[0] = 1;
    post().headerText = "%$SPRK$G90$";
    post().param[9] = "G00";
    post().param[10] = "3";
    post().param[11] = "nc";
    post().param[12] = "1";
    post().word[0] = "G90";
    post().word[2] = "H";
    post().word[3] = "C";
    post().conditionFile[0] = "cond";
    auto& style = job().styles[0];
    style.sName = "S1";
    style.nPassLast = 1;
    style.dValueA = 0.01;
    style.passes[0] = {"101", 0.15, "001", "-", 0};
    style.passes[1] = {"102", 0.12, "002", "-", 0};
    style.passes[2] = {"103", 0.11, "003", "-", 0};
  }
  ~IsoProgram() override { waitForStarted(*module); }

  MachinePost& post() { return module->state<IsoPost>().post; }
  JobLayout& job() { return module->state<JobLayout>(); }
  const LastProgramIso& last() { return module->state<LastProgramIso>(); }

  // A contour of 10 by 10 at (x,0), entered in the middle of its right side from 5 mm away.
  AcDbObjectId square(double x, int number, int side, const ProcessStyle& style) {
    auto path = std::make_unique<CToolPath>();
    const PolylineCurve c{{{{x, 0}, 0}, {{x + 10, 0}, 0}, {{x + 10, 10}, 0}, {{x, 10}, 0}}, true};
    EXPECT_TRUE(path->initContour({{x + 10 - 5 * side, 5}, {x + 10, 5}, side, 1, 0, 0}, c, 1));
    path->setPathNo(number);
    path->setProcessStyle(style);
    if (side == kOuterShape) {  // a tab of 3 mm below the entry
      PathBreak at;
      at.nBreakSeg = static_cast<int>(path->numVerts()) - 2;
      at.ptBreak = {x + 10, 2};
      at.ptBreakExit = {x + 11, 2};
      path->setBreakPoint(at);
    }
    return session.add(std::move(path));
  }
  AcDbObjectId hole(double x, int number) { return square(x, number, kInnerHole, job().styles[0]); }
  const CToolPath& path(AcDbObjectId id) { return *drawing().peek<CToolPath>(id); }

  std::string program() {
    session.answers({"", "", folder + "/out.nc"});
    return writeIsoProgram(*module) ? read("out.nc") : "(none)";
  }
  // The program's head up to the line behind the lists.
  std::string head() {
    const std::string text = program();
    return text.substr(0, text.find("G90\n"));
  }
  // Every row prints its number ahead of the motion.
  void trace() {
    for (int r = 1; r <= 150; ++r)
      post().blockRow[static_cast<std::size_t>(3 * r)] = "<" + std::to_string(r) + ">";
  }
  // Those lines of the program that carry one of these rows.
  std::vector<std::string> linesOf(const std::vector<int>& rows) {
    std::vector<std::string> lines;
    std::istringstream in(program());
    for (std::string line; std::getline(in, line);)
      for (int r : rows)
        if (line.starts_with("<" + std::to_string(r) + ">")) lines.push_back(line);
    return lines;
  }
};

TEST_F(IsoProgram, HeadOfTheFamilyWithCornerCodes) {
  hole(0, 1);
  // 0.15 and 0.12 less the fit of a hole, 0.01.
  EXPECT_THAT(program(),
              StartsWith("%\nWIRE\nC000=START\nC001=ONE\nC002=TWO\nH000=0.010\nH101=0.140\nH102=0.110\n"
                         "G90\n( FIG-1  1ST ALL CIRCUMFERENCE)\nCC 7\n"));
  EXPECT_THAT(last().warnings, IsEmpty());
  post().param[4] = "1";
  EXPECT_EQ(head(), "%\nWIRE\nC000=START\nC001=ONE\nC002=TWO\nH000=10\nH101=140\nH102=110\n");
  post().headerText = "$$%$";  // no place for lists, and no comment of a first figure
  EXPECT_THAT(program(), AllOf(StartsWith("%\n"), Not(HasSubstr("FIG-1")), Not(HasSubstr("H000"))));
}

TEST_F(IsoProgram, HeadsOfTheOtherFamilies) {
  hole(0, 1);
  square(30, 2, kOuterShape, job().styles[0]);  // the side is that of the first path with the style
  post().nFamily = 1;
  EXPECT_EQ(head(), "%\nFIRST\nC001=CU\nH101=0.140\nH102=0.110\n");
  EXPECT_THAT(last().warnings, ElementsAre("style S1 lacks C002"));
  post().nFamily = 3;
  EXPECT_EQ(head(), "%\n(//NO CELL SKD11 5)\nH101=0.140\nH102=0.110\n");
}

TEST_F(IsoProgram, ConditionsThatAreNotThereAreToldInTheProgramAndAtItsEnd) {
  hole(0, 1);
  job().dThick = 6;
  EXPECT_EQ(head(), "%\n(//NO CELL SKD11 6)\nH000=0.010\nH101=0.140\nH102=0.110\n");
  EXPECT_THAT(last().warnings, ElementsAre("no SKD11 0.2 6, nearest SKD11 0.2 5"));
  EXPECT_THAT(read("out.nc"), Not(HasSubstr("FIG-1")));
  job().nDbf = 1;  // the post has no second file
  EXPECT_THAT(head(), StartsWith("%\n(//NO FILE cond)\nH000=0.010\n"));
  EXPECT_THAT(last().warnings, ElementsAre("unread MZS\\SODICK\\.ini"));
}

TEST_F(IsoProgram, AConditionOfTwoPassesIsListedOnceAndOneWithoutALineIsTold) {
  auto& s = job().styles[0];
  s.nPassLast = 2;
  s.passes[1].sSub1 = "001";
  s.passes[2].sSub1 = "9";
  job().nStyleCount = 2;
  job().styles[1].sName = "UNUSED";
  hole(0, 1);
  ProcessStyle other = s;
  other.dValueA = 0.02;  // not the job's style any more
  square(30, 2, kInnerHole, other);
  EXPECT_EQ(head(), "%\nWIRE\nC000=START\nC001=ONE\nH000=0.010\nH101=0.140\nH102=0.110\nH103=0.100\n");
  EXPECT_THAT(last().warnings, ElementsAre("style S1 lacks C9", "path 2 strange S1"));
}

TEST_F(IsoProgram, AnOffsetNumberOfTwoValuesIsTold) {
  job().styles[0].passes[1].sCode = "101";
  hole(0, 1);
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, ElementsAre("twice H101"));
  job().styles[0].passes[1].dValue1 = 0.15;  // one value twice
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, IsEmpty());
}

TEST_F(IsoProgram, NumbersThatTheProgramGivesOutStandInTableAndPaths) {
  post().param[6] = post().param[7] = post().param[22] = "1";
  post().blockRow[3 * 2] = post().blockRow[3 * 42] = "V2";
  job().nStyleCount = 2;
  job().styles[1] = job().styles[0];
  job().styles[1].sName = "S2";
  job().styles[1].nPassLast = 0;
  const auto a = square(0, 1, kOuterShape, job().styles[1]), b = hole(30, 2), c = hole(60, 3);
  // Style by style: two passes of S1 and its tab record (offset 0.11 and the fit of an outer shape), then S2.
  EXPECT_EQ(head(),
            "%\nWIRE\nC000=START\nC001=ONE\nC002=TWO\nH000=0.010\nH001=0.140\nH002=0.110\nH003=0.120\nH004=0."
            "160\n");
  for (auto id : {b, c}) {
    const auto style = path(id).getProcessStyle();
    EXPECT_EQ(style.passes[0].sCode + style.passes[1].sCode + style.passes[2].sCode, "001002003");
  }
  EXPECT_EQ(path(a).getProcessStyle().passes[0].sCode, "004");
  EXPECT_EQ(job().styles[0].passes[0].sCode, "101");
  EXPECT_THAT(read("out.nc"), AllOf(HasSubstr("H004G01"), HasSubstr("H001G01")));
  const std::string first = read("out.nc");
  EXPECT_EQ(program(), first) << "numbers given out once are given out again";
}

TEST_F(IsoProgram, PathsOnALockedLayerAreWrittenWithTheirNumbersAndStayAsTheyAre) {
  post().param[6] = post().param[7] = "1";
  post().blockRow[3 * 2] = "V2";
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName("SHUT");
  layer->setIsLocked(true);
  const auto shut = drawing().addLayer(std::move(layer));
  const auto id = hole(0, 1);
  drawing().open<CToolPath>(id, OpenMode::kForWrite)->setLayer(shut);
  EXPECT_THAT(program(), HasSubstr("H001G01"));
  EXPECT_EQ(path(id).getProcessStyle().passes[0].sCode, "101");
}

TEST_F(IsoProgram, ConnectionsFigureByFigure) {
  trace();
  hole(0, 1);
  square(30, 2, kOuterShape, job().styles[0]);
  hole(60, 3);
  drawing().ucsorg = {1, 2, 0};
  // From a hole row 21, from an outer shape row 29 of the outer rows, 40 on. Threads at (45,5) and (65,5).
  EXPECT_THAT(linesOf({21, 69}), ElementsAre("<21>G00X44.Y3.", "<69>G00X64.Y3."));
  post().param[13] = "1";
  EXPECT_THAT(linesOf({21, 69}), ElementsAre("<21>G00X44.Y3.", "<69>G00X64.Y3.", "<21>G00X4.Y3."));
  EXPECT_EQ(last().figures, 3);
  EXPECT_EQ(last().passes, 2 + 3 + 2);  // the outer shape has its tab
}

TEST_F(IsoProgram, ConnectionsPassByPass) {
  trace();
  job().nCutType = CutType::kByPass;
  post().param[13] = "1";
  ProcessStyle one = job().styles[0];
  one.nPassLast = 0;
  square(0, 1, kInnerHole, one);    // no later pass: the wire doesn't come back
  square(30, 2, kOuterShape, one);  // but for a tab
  hole(60, 3);
  // Rows 13 and 11 on 80 and 120; the way back row 23 on 80.
  EXPECT_THAT(linesOf({93, 131, 103}),
              ElementsAre("<93>G00X45.Y5.", "<131>G00X65.Y5.",  // first passes: 1, 2, 3
                          "<93>G00X45.Y5.", "<131>G00X65.Y5.",  // then 2 and 3
                          "<103>G00X5.Y5."));
  EXPECT_EQ(last().figures, 3);
}

// 0.15 and 0.12 with a fit of 0.01: a hole's wire runs 0.14 and 0.11 beside it, a part's 0.16 and 0.13.
TEST_F(IsoProgram, NumbersThatTheHeadDoesNotDefineAsThePathNeedsThem) {
  post().param[6] = "1";
  hole(0, 1);
  const auto part = square(30, 2, kOuterShape, job().styles[0]);
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings,
              ElementsAre("path 2: 101 is 0.160, listed 0.140", "path 2: 102 is 0.130, listed 0.110"));
  // The tab's own record is none of the passes that the head lists.
  job().styles[0].dValueA = 0;
  for (const auto& p : {part, drawing().modelSpaceEntities().front()})
    drawing().open<CToolPath>(p, OpenMode::kForWrite)->setProcessStyle(job().styles[0]);
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, IsEmpty());
  post().param[22] = "-1";
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, ElementsAre("path 2 unlisted 103"));
  // Numbers that a program before has given out.
  post().param[22] = "0";
  auto other = job().styles[0];
  other.passes[1].sCode = "9";
  drawing().open<CToolPath>(part, OpenMode::kForWrite)->setProcessStyle(other);
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, ElementsAre("path 2 unlisted 9"));
}

// A square of 10 entered from 5 mm away, back to its centre behind each pass; no overcut.
TEST_F(IsoProgram, WhatEachPassRecordHasCut) {
  module->settings.dOvercutLen = 0;
  module->saveSettings();
  hole(0, 1);
  hole(1000, 2);
  ASSERT_NE(program(), "(none)");
  EXPECT_NEAR(last().cutLength[0], 2 * (5 + 40 + 5), 1e-6);
  EXPECT_NEAR(last().cutLength[1], 2 * (5 + 40 + 5), 1e-6);
  EXPECT_EQ(last().cutLength[2], 0);
}

TEST_F(IsoProgram, WhatAnOperatorMustKnowOfItsFigures) {
  auto& one = job().styles[0];
  one.nPassLast = 0;
  module->settings.dCutoffLen = 4;  // the tab is 3 mm long, from the third path's break it is sqrt(13)
  module->saveSettings();
  hole(0, 1);
  square(30, 2, kOuterShape, one);
  const auto third = square(60, 3, kOuterShape, one);
  const auto breakAt = [&](AcDbObjectId id, double x, double y, int span) {
    PathBreak at;
    at.ptBreak = {x, y};
    at.ptBreakExit = {x + 1, y};
    at.nBreakSeg = span;
    drawing().open<CToolPath>(id, OpenMode::kForWrite)->setBreakPoint(at);
  };
  breakAt(third, 72, 2, 5);  // 2 mm beside its contour, on a span that it was on once
  breakAt(square(90, 4, kOuterShape, one), 102, 2, -1);
  const std::string text = program();
  EXPECT_EQ(last().figures, 3);  // nothing of the fourth
  EXPECT_THAT(text, Not(HasSubstr("X95.")));
  EXPECT_THAT(last().warnings, ElementsAre("path 2 no room for 4", "path 3 no room for 4", "path 3 freed",
                                           "path 4 breakless"));
  job().nCutType = CutType::kByPass;
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, ElementsAre("path 4 breakless", "path 2 no room for 4", "path 2 keeps its tab",
                                           "path 3 no room for 4", "path 3 freed", "path 3 keeps its tab"));
}

// Inside a ring of 0.1 mm no wire with an offset of 0.14 (0.15 less the fit) runs; round it any does.
TEST_F(IsoProgram, RadiiThatTheWireCannotFollow) {
  const auto ring = [&](double x, int number, int side) {
    auto path = std::make_unique<CToolPath>();
    const PolylineCurve c{{{{x - 0.1, 0}, 1}, {{x + 0.1, 0}, 1}}, true};
    EXPECT_TRUE(path->initContour({{x, 0.1 - side * 0.05}, {x, 0.1}, side, 1, 0, 0}, c, 1));
    path->setPathNo(number);
    path->setProcessStyle(job().styles[0]);
    PathBreak at;
    at.ptBreak = {x - 0.1, 0};
    at.ptBreakExit = {x - 0.2, 0};
    at.nBreakSeg = 2;
    if (side == kOuterShape) path->setBreakPoint(at);
    session.add(std::move(path));
  };
  ring(0, 1, kInnerHole);
  ring(10, 2, kOuterShape);
  ASSERT_NE(program(), "(none)");
  ASSERT_EQ(last().warnings.size(), 2u) << testing::PrintToString(last().warnings);
  EXPECT_THAT(last().warnings[0], testing::EndsWith("0.100 below 0.140"));
  EXPECT_EQ(last().warnings[1], "path 2 arc at 9.900,0.000");
}

TEST_F(IsoProgram, FourAxisPathsAreNamedAndLeftOut) {
  hole(0, 1);
  ASSERT_NE(program(), "(none)");
  const std::string alone = read("out.nc");
  drawing().open<CToolPath>(hole(30, 2), OpenMode::kForWrite)->setFlag(kFourAxis, true);
  EXPECT_EQ(program(), alone);
  EXPECT_THAT(session.out, HasSubstr("four axes 2"));
}

TEST_F(IsoProgram, ATabWithoutAStopIsToldWhereTheFamilyNeedsOne) {
  post().nFamily = 5;
  hole(0, 1);
  square(30, 2, kOuterShape, job().styles[0]);
  module->settings.dCutoffLen = 0.5;
  module->saveSettings();
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, IsEmpty());
  module->settings.dCutoffLen = 0;
  module->saveSettings();
  ASSERT_NE(program(), "(none)");
  EXPECT_THAT(last().warnings, ElementsAre("lossy", "path 2 has no stop"));  // an English program
}

TEST_F(IsoProgram, HeightLinesOfTaperedJobs) {
  hole(0, 1);
  post().param[30] = post().param[33] = "1";
  post().param[31] = "Z";
  post().param[32] = "W";
  job().dThickProg = 1.5;
  job().dThickAux = 20;
  EXPECT_THAT(program(), Not(HasSubstr("Z1.5")));
  auto open = drawing().open<CToolPath>(session.ed.acdbEntLast(), OpenMode::kForWrite);
  open->setSegmentTaperAt(1, 2);
  open.close();
  EXPECT_THAT(program(), HasSubstr("CC 7\nZ1.5\nW20.\n"));
}

TEST_F(IsoProgram, ACancelledChoiceLeavesAllAsItWas) {
  const auto id = hole(0, 1);
  post().param[7] = "1";
  write("out.nc", "old");
  const std::string standing = module->settings.sLastNcFile;
  const std::string settings = read("WireCut.set");
  bool chosen = false;
  for (const auto& answers : std::vector<std::vector<std::string>>{{"^C"}, {"", "^C"}, {"", "", "^C"}}) {
    session.answers(answers);
    EXPECT_FALSE(writeIsoProgram(*module, [&] { chosen = true; }));
  }
  EXPECT_FALSE(chosen);
  EXPECT_EQ(read("out.nc"), "old");
  EXPECT_EQ(module->settings.sLastNcFile, standing);
  EXPECT_EQ(read("WireCut.set"), settings);
  EXPECT_EQ(path(id).getProcessStyle().passes[0].sCode, "101");
}

TEST_F(IsoProgram, AFileThatCantBeWrittenLeavesTheDrawing) {
  const auto id = hole(0, 1);
  post().param[7] = "1";
  write("out.nc/old", "a folder of that name");
  EXPECT_EQ(program(), "(none)");
  EXPECT_THAT(session.out, HasSubstr("not written"));
  EXPECT_EQ(read("out.nc/old"), "a folder of that name");
  EXPECT_EQ(path(id).getProcessStyle().passes[0].sCode, "101");
}

TEST_F(IsoProgram, TheNameAndTheOriginThatAreOffered) {
  hole(1000, 1);  // out of the snap's reach
  std::filesystem::create_directories(folder + "/nc");
  module->settings.sLastNcFile = folder + "/nc/older.iso";
  session.answers({"", "1,2", ""});
  drawing().ucsorg = {1, 0, 7};
  ASSERT_TRUE(writeIsoProgram(*module));
  EXPECT_EQ(last().path, folder + "/nc/part.nc");
  EXPECT_EQ(module->ptOrigin.x, 2);  // the point is added to the origin that was offered
  EXPECT_EQ(module->ptOrigin.y, 2);
  EXPECT_THAT(read("nc/part.nc"), HasSubstr("X1003.Y3."));  // thread (1005,5) less the origin
}

TEST_F(IsoProgram, TheNameCanBecomeATextOfTheDrawing) {
  hole(0, 1);
  module->settings.bOfferFileText = 1;
  module->settings.dTextHeight = 4;
  module->saveSettings();
  session.answers({"", "", folder + "/out.nc", "3,4"});
  ASSERT_TRUE(writeIsoProgram(*module));
  const auto* text = drawing().peek<AcDbText>(session.ed.acdbEntLast());
  ASSERT_TRUE(text);
  EXPECT_EQ(text->textString(), "out.nc");
  EXPECT_EQ(text->height(), 4);
  EXPECT_EQ(text->position().x, 3);
  EXPECT_EQ(text->position().y, 4);
  session.answers({"", "", folder + "/out.nc", ""});
  ASSERT_TRUE(writeIsoProgram(*module));
  EXPECT_EQ(drawing().peek<AcDbText>(session.ed.acdbEntLast()), text) << "the second one is gone";
}

}  // namespace
}  // namespace tarnex
