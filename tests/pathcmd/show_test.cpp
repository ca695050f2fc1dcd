// What paths show: the forms' values in settings and drawing, and which of them wins.
// Knows the commands alone; how the forms look is the dialog library's test.
#include "frame/drawingvars.h"
#include "pathcmd/pathtest.h"
#include "pathcmd/showcommands.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// The nine values as the table of drawing variables names them.
constexpr const char* kReals[] = {"VORN_SHOW_dTextHeight", "VORN_SHOW_dArrowLen"};
constexpr const char* kWholes[] = {"VORN_SHOW_bShowArrow", "VORN_SHOW_bShowTool",  "VORN_SHOW_nColorTool",
                                   "VORN_SHOW_bShowReal",  "VORN_SHOW_nColorReal", "VORN_SHOW_bShowNull",
                                   "VORN_SHOW_nColorNull"};

class Show : public PathTest {
 protected:
  [[nodiscard]] DrawingVars vars() { return DrawingVars(drawing()); }
  [[nodiscard]] std::vector<double> kept() {
    std::vector<double> values;
    for (const char* key : kReals) values.push_back(vars().getDouble(key).value_or(-99));
    for (const char* key : kWholes) values.push_back(vars().getInt(key).value_or(-99));
    return values;
  }
  void step(void (*command)(Module&)) {
    drawing().startUndoMark("step");
    command(*module);
    drawing().endUndoMark();
  }
  static std::vector<double> nothing() { return std::vector<double>(9, -99); }
};

TEST_F(Show, AConfirmedFormStandsInSettingsAndDrawing) {
  circlePath({0, 0}, 5);
  const std::pair<const char*, const char*> chosen[] = {
      {"dTextHeight", "2.5"}, {"dArrowLen", "4"},  {"bShowArrow", "0"},
      {"bShowTool", "0"},     {"nColorTool", "2"}, {"bShowReal", "1"},
      {"nColorReal", "5"},    {"bShowNull", "1"},  {"nColorNull", "256"}};
  for (const auto& [name, value] : chosen) session.ed.preset(name, value);
  session.ed.preset("bShowNumber", "0");
  const std::vector<double> wanted{2.5, 4, 0, 0, 2, 1, 5, 1, 256};
  run(Vorn, {});
  EXPECT_EQ(kept(), wanted);
  EXPECT_EQ(settings().bShowTool, 0);    // though every load of the settings turns it on
  EXPECT_EQ(settings().bShowNumber, 1);  // none of the nine
  EXPECT_EQ(pathDisplay(*module).settings->nColorReal, 5);
  run(SV, {});
  EXPECT_EQ(kept(), wanted);
  EXPECT_EQ(settings().bShowNumber, 0);
  EXPECT_FALSE(vars().exists("VORN_SHOW_bShowNumber"));
  // A second time nothing changes, so there is nothing to undo.
  step(Vorn);
  EXPECT_FALSE(drawing().undo());
}

TEST_F(Show, TheDrawingsValuesComeFirst) {
  vars().setDouble("VORN_SHOW_dTextHeight", 1.5);
  vars().setInt("VORN_SHOW_bShowTool", 0);
  settings().dTextHeight = 9;
  settings().dArrowLen = 7;
  run(Vorn, {});  // confirms what stands
  EXPECT_EQ(kept(), (std::vector<double>{1.5, 7, 1, 0, 3, 0, 0, 0, 6}));
  WireCutSettings file(module->installFolder);
  (void)file.load();
  EXPECT_EQ(file.dTextHeight, 1.5);
  // A list that is read anew takes them again.
  settings().dTextHeight = 9;
  TTT(*module);
  EXPECT_EQ(settings().dTextHeight, 1.5);
}

TEST_F(Show, OneStepOfUndo) {
  step(Vorn);
  session.ed.preset("nColorNull", "30");
  step(Vorn);
  EXPECT_EQ(kept().back(), 30);
  ASSERT_TRUE(drawing().undo());
  EXPECT_EQ(kept().back(), 6);
  ASSERT_TRUE(drawing().undo());
  EXPECT_EQ(kept(), nothing());
  EXPECT_FALSE(drawing().undo());
}

TEST_F(Show, CancelledOrOutOfRangeNothingChanges) {
  for (auto* command : {&SV, &Vorn}) {
    (void)session.ed.acedSetVar("CMDDIA", 1LL);
    EXPECT_THAT(run(command, {"5", "^C"}), HasSubstr("Text height, mm"));
    EXPECT_EQ(kept(), nothing());
    EXPECT_EQ(settings().dTextHeight, 3);
    (void)session.ed.acedSetVar("CMDDIA", 0LL);
    settings().nColorTool = 257;
    EXPECT_THAT(run(command, {}), HasSubstr("must lie between 0 and 256"));
    EXPECT_EQ(kept(), nothing());
    settings().nColorTool = 3;
  }
}

TEST_F(Show, ALibraryWithoutTheFormCountsAsCancelled) {
  std::filesystem::copy_file(TARNEX_BINARY_DIR "/install/Quillet.arx", folder + "/Harbec.DLL");
  EXPECT_THAT(run(Vorn, {}), HasSubstr("VornDlg"));
  EXPECT_THAT(run(SV, {}), HasSubstr("SetDlgView"));
  EXPECT_EQ(kept(), nothing());
  std::filesystem::remove(folder + "/Harbec.DLL");
  EXPECT_THAT(run(Vorn, {}), Not(HasSubstr("VornDlg")));
  EXPECT_NE(kept(), nothing());
}

}  // namespace
}  // namespace tarnex
