// The frame of a 3B program: header, moves between paths, pauses, the file and its hand-over.
// Knows programs as text; one path's blocks are tested beside it.
#include "output3b/programwriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contour/hosthelpers.h"
#include "frame/drawingvars.h"
#include "support/bytes.h"
#include "support/modulefixture.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Program : public ModuleFixture {
 protected:
  Program() {
    surround("SOURCE_DATE_EPOCH", "1700000000");  // 2023-11-14 22:13:20 UTC
    texts({{4, "L%d %s L%d %s"},
           {37, "not written"},
           {5000, "Tarnex"},
           {5012, "= head ="},
           {5013, "= foot ="},
           {5014, "3B"}});
    write("Brenlow.exe", "#!/bin/sh\nexit 0\n");
    std::filesystem::permissions(folder + "/Brenlow.exe", std::filesystem::perms::owner_all);
    auto& s = module->settings;
    s.bAutoFix = s.bOvercut = s.bCutoffPause = s.bPrintCoords = s.bAskFileName = 0;
    drawing().dwgName = "part.dwg";
  }
  ~Program() override { waitForStarted(*module); }
  // A hole of 10 by 10 at (x,0), threaded at its middle and entered from there to the right; no wire offset.
  AcDbObjectId hole(double x, int number) {
    auto path = std::make_unique<CToolPath>();
    const PolylineCurve c{{{{x, 0}, 0}, {{x + 10, 0}, 0}, {{x + 10, 10}, 0}, {{x, 10}, 0}}, true};
    EXPECT_TRUE(path->initContour({{x + 5, 5}, {x + 10, 5}, 1, 1, 0, 0}, c, 1));
    path->setPathNo(number);
    return session.add(std::move(path));
  }
  // The program that all paths make, below the line of the start point; the whole of it is in `text`.
  std::string program(const std::string& file = "part.3b", const std::string& machine = "") {
    session.answers({""});
    if (!write3BProgram(*module, machine)) return "(none)";
    text = read(file);
    const auto start = text.find("Start Point");
    const auto end = start == std::string::npos ? start : text.find('\n', start);
    return end == std::string::npos ? text : text.substr(end);
  }
  void startPoint(int k, AcGePoint2d p) {
    DrawingVars(drawing()).setPoint("STARTPOINT" + std::to_string(k), solid(p));
  }
  void endPoint(int k, AcGePoint2d p) {
    DrawingVars(drawing()).setPoint("ENDPOINT" + std::to_string(k), solid(p));
  }
  std::string text;
};

// The seven blocks of a hole, the first with this number.
std::string holeBlocks(int number) {
  std::string s;
  for (const char* move : {"  5000 GX  L1", "  5000 GY  L2", " 10000 GX  L3", " 10000 GY  L4",
                           " 10000 GX  L1", "  5000 GY  L2", "  5000 GX  L3"}) {
    char line[64];
    std::snprintf(line, sizeof line, "\nN%4d: B      0 B      0 B %s ;", number++, move);
    s += line;
  }
  return s;
}

const std::string kPause = "\nN    : D", kStop = "\nN    : DD";

TEST_F(Program, OnePathWithItsHeader) {
  hole(0, 1);
  EXPECT_EQ(program(), holeBlocks(1) + kStop);
  EXPECT_THAT(text, StartsWith("//= head =\n//    22:13 2023-11-14\n//    Tarnex 3B  Name: part.3b\n//    "
                               "DWG=part.dwg\n//= foot =\n"
                               "//    Start Point  =       5. ,       5. ;     X    ,     Y\nN   1: "));
  EXPECT_EQ(module->state<LastProgram3b>().blocks, 7);
  EXPECT_EQ(module->settings.sLastNcFile, "part.3b");
  const std::string first = text;
  (void)program();
  EXPECT_EQ(text, first);  // byte for byte again
}

TEST_F(Program, LinksBetweenPathsGoFromThreadToThread) {
  hole(0, 1);
  hole(30, 2);
  const std::string link = "\nN   8: B      0 B      0 B  30000 GX  L1 ;";
  EXPECT_EQ(program(), holeBlocks(1) + kPause + link + kPause + holeBlocks(9) + kStop);
  module->settings.bPrintCoords = 1;
  EXPECT_THAT(program(), HasSubstr(kPause + "\n\n//L1 30. L2 0." + link + "   5.0000 ,   5.0000" + kPause));
}

TEST_F(Program, ATravelToTheLeftAndDownSaysSo) {
  hole(30, 1);
  hole(0, 2);
  drawing()
      .open<CToolPath>(session.ed.acdbEntLast(), OpenMode::kForWrite)
      ->transformBy(AcGeMatrix3d::translation({0, -2.5, 0}));
  drawing().ucsorg = {1, 2, 0};
  module->settings.bPrintCoords = 1;
  EXPECT_THAT(
      program(),
      HasSubstr("\n\n//L3 30. L4 2.5\nN   8: B  30000 B   2500 B  30000 GX  L3 ;  34.0000 ,   3.0000"));
  EXPECT_THAT(text, HasSubstr("Start Point  =      34. ,       3. ;"));
}

TEST_F(Program, PathsThatMeetHaveAPauseAndNoLink) {
  hole(0, 1);
  hole(0.0009, 2);
  EXPECT_EQ(program(), holeBlocks(1) + kPause + holeBlocks(8) + kStop);
}

TEST_F(Program, AnOpenPathHandsOnItsRealEnd) {
  Bytes b;
  b.i32(213).i32(1).i32(1).i32(1).real(0).flag(false).real(0).i32(2).p2({0, 0}).real(0).p2({3, 0}).real(0);
  b.i16(0).flag(false).flag(false).i32(2).real(0).real(0).i16(0).i16(256).text("S");
  b.real(0).real(0).real(0).real(0).i16(-1).i16(700).flag(false);
  b.p2({}).p2({}).real(0).real(0).real(0).i16(-1).real(0).real(0).real(0).real(0).p2({}).p2({}).i16(0);
  auto open = std::make_unique<CToolPath>();
  AcDbDwgFiler in(b.s);
  ASSERT_EQ(open->dwgInFields(in), ErrorStatus::eOk);
  session.add(std::move(open));
  hole(8, 2);
  EXPECT_EQ(program(), "\nN   1: B      0 B      0 B   3000 GX  L1 ;" + kPause +
                           "\nN   2: B  10000 B   5000 B  10000 GX  L1 ;" + kPause + holeBlocks(3) + kStop);
}

TEST_F(Program, AStartChainIsWalkedDownAsFarAsItGoes) {
  hole(0, 1);
  startPoint(1, {5, 9});
  startPoint(0, {5, 7});
  EXPECT_EQ(program(), "\nN   1: B      0 B      0 B   2000 GY  L4 ;" + kPause +
                           "\nN   2: B      0 B      0 B   2000 GY  L4 ;" + kPause + holeBlocks(3) + kStop);
  EXPECT_THAT(text, HasSubstr("Start Point  =       5. ,       9. ;"));
  // Point 3 without point 2: straight to the path.
  startPoint(3, {-4, 5});
  EXPECT_EQ(program(), "\nN   1: B      0 B      0 B   9000 GX  L1 ;" + kPause + holeBlocks(2) + kStop);
  EXPECT_THAT(text, HasSubstr("Start Point  =      -4. ,       5. ;"));
}

TEST_F(Program, AnEndChainFollowsTheLastPath) {
  hole(0, 1);
  endPoint(0, {5, 25});
  endPoint(1, {0, 25});
  endPoint(3, {0, 0});
  EXPECT_EQ(program(), holeBlocks(1) + kPause + "\nN   8: B      0 B      0 B  20000 GY  L2 ;" + kPause +
                           "\nN   9: B      0 B      0 B   5000 GX  L3 ;" + kStop);
}

TEST_F(Program, TheMachineGivesItsOwnWords) {
  hole(0, 1);
  hole(0, 2);
  write("KZS/KZSEn.ini", "[Main]\n1=One\n2=Two\n[Pause]\n2=M00\n[Stop]\n2=M02\n");
  EXPECT_EQ(program("part.3b", "Two"), holeBlocks(1) + "\nN    : M00" + holeBlocks(8) + "\nN    : M02");
  EXPECT_EQ(program("part.3b", "two"), holeBlocks(1) + kPause + holeBlocks(8) + kStop);
}

TEST_F(Program, TheFileIsNamedAfterTheDrawing) {
  hole(0, 1);
  for (auto [drawn, file] :
       {std::pair{"plate.v2.dxf", "plate.v2.3b"}, {"plate", "plate.3b"}, {".hidden", ".hidden.3b"}}) {
    drawing().dwgName = drawn;
    EXPECT_NE(program(file), "(none)");
    EXPECT_THAT(text, HasSubstr(std::string("Name: ") + file + "\n")) << drawn;
  }
}

TEST_F(Program, ANameThatIsAskedForStartsFromTheLastOne) {
  hole(0, 1);
  std::filesystem::create_directories(folder + "/v1.2");
  module->settings.bAskFileName = 1;
  module->settings.sLastNcFile = folder + "/v1.2/shaft";  // the dot of the folder is none of the name
  session.answers({"", ""});
  ASSERT_TRUE(write3BProgram(*module, ""));
  EXPECT_THAT(read("v1.2/shaft.3B"), HasSubstr("Name: shaft.3B"));
  session.answers({"", "^C"});
  EXPECT_FALSE(write3BProgram(*module, ""));
}

TEST_F(Program, WhatCannotBeWrittenFailsTheCommand) {
  hole(0, 1);
  write("part.3b/old", "a folder of that name");
  session.ed.addCommand(
      {"TEST", "WRITE", "WRITE", ACRX_CMD_MODAL, [&] { EXPECT_FALSE(write3BProgram(*module, "")); }, ""});
  session.run({"WRITE", ""});
  EXPECT_EQ(session.status, 1);
  EXPECT_THAT(session.out, HasSubstr("not written\n" + folder + "/part.3b"));
  EXPECT_EQ(read("part.3b/old"), "a folder of that name");
  EXPECT_EQ(module->state<LastProgram3b>().path, "");
}

TEST_F(Program, WithoutPathsThereIsNone) {
  EXPECT_EQ(program(), "(none)");
  EXPECT_EQ(read("part.3b"), "(no file)");
}

}  // namespace
}  // namespace tarnex
