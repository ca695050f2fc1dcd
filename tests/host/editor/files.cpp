// Commands on files, with real ones in a folder of their own.
#include <gmock/gmock.h>

#include "host/platform/files.h"
#include "session.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

struct Files : ::testing::Test {
  Session s;
  const std::string folder = temporaryFolder("tarnex-editor-");
  std::vector<std::string> written;
  ~Files() override {
    for (const auto& name : folderEntries(folder)) (void)removeFile(folder + "/" + name);
    (void)removeFile(folder);
  }
  std::string path(const std::string& name) { return folder + "/" + name; }
  void write(const std::string& name, const std::string& text) {
    ASSERT_FALSE(writeFileAtomically(path(name), text));
  }
};

TEST_F(Files, SavedAndOpenedAgain) {
  s.run({"circle 1,2 3", "line 0,0 10,0", ""});
  EXPECT_TRUE(s.ed.database().modifiedSinceSave());
  EXPECT_THAT(s.run({"saveas " + path("my plate")}), HasSubstr("Saved as " + path("my plate.dxf")));
  EXPECT_FALSE(s.ed.database().modifiedSinceSave());
  int loaded = 0;
  s.ed.drawingLoaded.push_back([&] { ++loaded; });
  s.run({"new"});
  EXPECT_TRUE(s.all().empty());
  s.run({"open " + path("my plate.dxf")});
  EXPECT_EQ(loaded, 2);
  ASSERT_EQ(s.all().size(), 2u) << s.out;
  EXPECT_EQ(s.entity<AcDbCircle>(s.all()[0])->radius(), 3);
  EXPECT_EQ(std::get<std::string>(*s.ed.acedGetVar("DWGNAME")), "my plate.dxf");
  EXPECT_EQ(std::get<std::string>(*s.ed.acedGetVar("DWGPREFIX")), folder + "/");
  EXPECT_EQ(s.ed.realVar("VIEWSIZE"), 12 * 0.75);  // from -2 to 10 wide, 5 high
  s.run({"erase all", "", "save"});
  s.run({"open " + path("my plate")});
  EXPECT_TRUE(s.all().empty());
  EXPECT_EQ(s.status, 0);
}

TEST_F(Files, WhatCantBeReadKeepsTheDrawing) {
  s.run({"point 1,1"});
  write("broken.dxf", "this is\nno drawing\n");
  EXPECT_THAT(s.run({"open " + path("broken.dxf")}), HasSubstr(path("broken.dxf") + ":"));
  EXPECT_THAT(s.run({"open " + path("none.dxf")}), HasSubstr("none.dxf: "));
  EXPECT_EQ(s.all().size(), 1u);
  EXPECT_EQ(s.status, 1);
}

TEST_F(Files, WhatCantBeWrittenIsTold) {
  s.run({"point 1,1"});
  EXPECT_THAT(s.run({"saveas " + path("missing/plate.dxf")}), HasSubstr("Not saved: "));
  EXPECT_TRUE(s.ed.database().modifiedSinceSave());
  EXPECT_EQ(s.status, 1);
}

TEST_F(Files, ADwgIsNamedAsSuch) {
  write("other.dxf", "AC1018" + std::string(100, '\0'));
  EXPECT_THAT(s.run({"open " + path("other.dxf")}), HasSubstr("this is a DWG drawing (AC1018)"));
}

TEST_F(Files, ScriptsNestAndTellTheirOwnLines) {
  write("inner.scr", "point 1,1\nbogus\n");
  write("outer.scr", "script " + path("inner") + "\npoint 2,2\nmore bogus\n");
  const auto out = s.run({"script " + path("outer.scr"), "point 3,3"});
  EXPECT_THAT(out, HasSubstr("inner.scr:2: Unknown command \"bogus\""));
  EXPECT_THAT(out, HasSubstr("outer.scr:3: Unknown command \"more\""));
  EXPECT_EQ(s.all().size(), 3u);
  EXPECT_THAT(s.run({"script " + path("none")}), HasSubstr("none.scr: "));
  write("self.scr", "script " + path("self") + "\n");
  EXPECT_THAT(s.run({"script " + path("self")}), HasSubstr("Scripts call one another too deep"));
}

TEST_F(Files, InsertedBlocksAndDrawings) {
  s.run({"layer m FRAME", "", "line 0,0 10,0", "", "text 1,1 2 0 title", "saveas " + path("A4.dxf"), "new"});
  s.ed.addCommand({"QV", "TK", "", 0,
                   [&] {
                     s.ed.acedCommand({std::string("-insert"), path("A4.DWG"), std::string("\\"),
                                       std::string("2"), std::string("1"), std::string("0")});
                   },
                   ""});
  s.run({"TK", "100,50"});
  const auto* reference = s.last<AcDbBlockReference>();
  ASSERT_TRUE(reference) << s.out;
  const Extents2d box = reference->getGeomExtents();
  EXPECT_NEAR(box.low.distanceTo({100, 50}), 0, 1e-9);
  EXPECT_NEAR(box.high.x, 120, 1e-9);
  EXPECT_FALSE(s.ed.database().layer("FRAME").isNull());
  s.run({"-insert A4 0,0", "", "", "90", "saveas " + path("both.dxf"), "open " + path("both.dxf"),
         "explode all", ""});
  EXPECT_EQ(s.all().size(), 4u) << s.out;
  // A drawing that holds a block of its own file's name.
  EXPECT_THAT(s.run({"-insert " + path("both.dxf"), "0,0", "", "", "", "saveas " + path("A4.dxf"), "new",
                     "-insert " + path("A4.dxf"), "0,0", "", "", "", "explode all", ""}),
              Not(HasSubstr("can't")));
  EXPECT_THAT(s.run({"-insert nothing"}), HasSubstr("neither a block nor a drawing file \"nothing\""));
}

TEST_F(Files, APersonIsAskedBeforeChangesAreDropped) {
  struct Person : QueueInput {
    using QueueInput::QueueInput;
    bool showsPrompt() const override { return true; }
  };
  s.ed.pushInput(
      std::make_shared<Person>(std::vector<std::string>{"point 1,1", "quit", "n", "point 2,2", "new", "y"}));
  s.ed.runLoop();
  EXPECT_TRUE(s.all().empty());
  s.run({"point 1,1", "quit", "point 2,2"});
  EXPECT_EQ(s.all().size(), 1u);
}

}  // namespace
}  // namespace tarnex
