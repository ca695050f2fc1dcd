// The dialog library's forms, as commands call them: with prompts, without, and refused.
// Loads the library of this build.
#include "modules/moduletest.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;

class Forms : public ModuleTest {
 protected:
  template <class... Args>
  int call(const char* entry, Args... args) {
    session.out.clear();
    return DialogLibrary(*module).call(entry, -1, args...);
  }
  void dialogs(bool on) { ASSERT_TRUE(session.ed.acedSetVar("CMDDIA", on ? 1LL : 0LL)); }
  [[nodiscard]] WireCutSettings stored() {
    WireCutSettings s(module->installFolder);
    (void)s.load();
    return s;
  }
  void store(const std::string& field, const std::string& value) {
    WireCutSettings s = stored();
    std::string error;
    EXPECT_TRUE(s.setFromText(field, value, error) && s.save()) << error;
  }
};

TEST_F(Forms, WithoutPromptsTakeWhatStandsAndWhatWasSetAhead) {
  dialogs(false);
  store("dLeadLen", "4.5");
  session.ed.preset("dOffset", "0.11");
  session.ed.preset("nSide", "-1");
  session.ed.preset("bSmallHole", "yes");
  EXPECT_EQ(call("SetDlg", 0), 1) << session.out;
  EXPECT_EQ(stored().dLeadLen, 4.5);
  EXPECT_EQ(stored().dOffset, 0.11);
  EXPECT_EQ(stored().nSide, -1);
  EXPECT_EQ(stored().bSmallHole, 1);
  EXPECT_EQ(call("SetMDlg"), 1) << session.out;
  session.ed.preset("dDupTol", "0.01");
  session.ed.preset("bFoldCurves", "off");
  EXPECT_EQ(call("DupDlg"), 1) << session.out;
  EXPECT_EQ(stored().dDupTol, 0.01);
  EXPECT_EQ(stored().bFoldCurves, 0);
  EXPECT_FALSE(session.ed.anyCommandFailed());
}

TEST_F(Forms, WithPromptsAskForEachField) {
  dialogs(true);
  // Direction clockwise, four arcs, the offset asked again after an answer that it can't take, order kept.
  session.answers({"-1", "4", "-0.1", "0.2", ""});
  EXPECT_EQ(call("SetMDlg"), 1) << session.out;
  EXPECT_THAT(session.out, HasSubstr("Settings of manual paths"));
  EXPECT_THAT(session.out, HasSubstr("Wire offset, mm"));
  EXPECT_EQ(stored().nDirection, -1);
  EXPECT_EQ(stored().nCircleArcs, 4);
  EXPECT_EQ(stored().dOffset, 0.2);
  EXPECT_EQ(stored().nPathOrder, 1);
  session.answers({"1", "^C"});
  EXPECT_EQ(call("SetMDlg"), 0);
  EXPECT_EQ(stored().nDirection, -1);
  session.answers({"dDupTol=0.5", "="});
  EXPECT_EQ(call("DupDlg"), 1) << session.out;
  EXPECT_EQ(stored().dDupTol, 0.5);
}

TEST_F(Forms, RefuseWhatIsOutOfRangeAndLeaveTheFile) {
  dialogs(false);
  const struct {
    const char *field, *value, *told;
  } cases[] = {{"dOffset", "10.001", "dOffset (Wire offset, mm) must lie between 0 and 10."},
               {"dOffset", "-0.001", "dOffset (Wire offset, mm) must lie between 0 and 10."},
               {"nCircleArcs", "1", "nCircleArcs (Arcs that make up a circle) must lie between 2 and 360."},
               {"dLeadLen", "0", "dLeadLen (Lead-in length, mm) must lie between 0.01 and 1000."},
               {"nSide", "0", "nSide (Kind of contour) must be one of: 1, -1"}};
  for (const auto& c : cases) {
    const auto before = stored().textOf(c.field).value_or("");
    store(c.field, c.value);
    const std::string file = read("WireCut.set");
    EXPECT_EQ(call("SetDlg", 0), 0) << c.field;
    EXPECT_THAT(session.out, HasSubstr(c.told));
    EXPECT_EQ(read("WireCut.set"), file) << c.field;
    store(c.field, before);
  }
  EXPECT_TRUE(session.ed.anyCommandFailed());
  EXPECT_EQ(call("SetDlg", 0), 1) << session.out;
  session.ed.preset("dOffset", "50");  // the frame itself refuses what is set ahead
  EXPECT_EQ(call("SetDlg", 0), 0);
  EXPECT_EQ(stored().dOffset, 0.08);
}

TEST_F(Forms, SayWhatCantBeDone) {
  dialogs(false);
  write("taken", "");
  start(folder + "/taken", 1);
  EXPECT_EQ(call("DupDlg"), 0);
  EXPECT_THAT(session.out, HasSubstr("The settings file WireCut.set can't be written."));
}

TEST_F(Forms, ProgramOptionsNameTheMachine) {
  dialogs(false);
  std::string machine;
  session.ed.preset("bAutoFix", "1");
  EXPECT_EQ(call("PKZSDlg", &machine), 1) << session.out;
  EXPECT_EQ(machine, "Vorn");  // the first of the shipped file
  EXPECT_EQ(stored().sMachineKZS, "Vorn");
  EXPECT_EQ(stored().bAutoFix, 1);
  machine = "An older drawing's machine";
  EXPECT_EQ(call("PKZSDlg", &machine), 1) << session.out;
  EXPECT_EQ(machine, "An older drawing's machine");
  EXPECT_EQ(stored().sMachineKZS, "Vorn");  // too long for its field
  session.ed.preset("machine", "m00-m02");
  EXPECT_EQ(call("PKZSDlg", &machine), 1) << session.out;
  EXPECT_EQ(machine, "M00-M02");
  EXPECT_EQ(stored().sMachineKZS, "M00-M02");
  session.ed.preset("machine", "none of these");
  EXPECT_EQ(call("PKZSDlg", &machine), 0);
  EXPECT_EQ(machine, "M00-M02");
  session.ed.preset("machine", "Mine");
  write("KZS/KZSGb.ini", "[MAIN]\n1=Mine\n");  // the user's file of another language
  start(folder, 2);
  EXPECT_EQ(call("PKZSDlg", &machine), 1) << session.out;
  EXPECT_EQ(machine, "Mine");
}

// The kind isn't a setting: it starts anew each time, and only the kinds that are built are choices.
TEST_F(Forms, JobsGiveTheirKindAndKeepTheirSettings) {
  dialogs(false);
  int kind = 0;
  session.ed.preset("dGapValue", "3.5");
  session.ed.preset("nSide", "-1");
  EXPECT_EQ(call("SetDlgDie", &kind), 1) << session.out;
  EXPECT_EQ(kind, 1);
  EXPECT_EQ(stored().dGapValue, 3.5);
  EXPECT_EQ(stored().nSide, -1);
  session.ed.preset("nDieKind", "3");
  session.ed.preset("nPunchKind", "4");
  EXPECT_EQ(call("SetDlgDie", &kind), 1) << session.out;
  EXPECT_EQ(kind, 3);
  EXPECT_EQ(call("SetDlgPunch", &kind), 1) << session.out;
  EXPECT_EQ(kind, 4);
  session.ed.preset("nDieKind", "2");  // upper and lower contour
  kind = 77;
  EXPECT_EQ(call("SetDlgDie", &kind), 0);
  EXPECT_EQ(kind, 77);
  session.ed.preset("nDieKind", "1");
  for (const auto& [name, value] : {std::pair("dGapValue", "0"), std::pair("dRoughD", "0.009")}) {
    session.ed.preset(name, value);
    EXPECT_EQ(call("SetDlgDie", &kind), 0) << name;
    session.ed.preset(name, "1");
  }
  dialogs(true);
  session.answers({"^C"});
  EXPECT_EQ(call("SetDlgPunch", &kind), 0);
  session.answers({"dIsoFixB=0.25", "="});
  EXPECT_EQ(call("SetDlg", 1), 1) << session.out;
  EXPECT_EQ(stored().dIsoFixB, 0.25);
}

TEST_F(Forms, WhatPathsShow) {
  dialogs(false);
  session.ed.preset("dArrowLen", "2.5");
  session.ed.preset("bShowTool", "off");
  session.ed.preset("nColorNumber", "4");
  EXPECT_EQ(call("VornDlg"), 0) << session.out;  // confirmed, the other way round
  EXPECT_EQ(stored().dArrowLen, 2.5);
  EXPECT_EQ(stored().storedShowTool(), 0);  // every load turns it on, but the file holds what was chosen
  EXPECT_EQ(stored().nColorNumber, 1);
  EXPECT_NE(call("SetDlgView"), 0) << session.out;
  EXPECT_EQ(stored().nColorNumber, 4);
  EXPECT_EQ(stored().storedShowTool(), 0);
  // The switch shows what stands in the file, though the settings that were read say otherwise.
  dialogs(true);
  session.answers({"=", "^C", "^C"});
  EXPECT_EQ(call("VornDlg"), 0);
  EXPECT_EQ(stored().storedShowTool(), 0);
  const std::string file = read("WireCut.set");
  EXPECT_EQ(call("VornDlg"), 1);
  EXPECT_EQ(call("SetDlgView"), 0);
  dialogs(false);
  for (const auto& [name, value] : {std::pair("dTextHeight", "0"), std::pair("nColorReal", "-1")}) {
    session.ed.preset(name, value);
    EXPECT_EQ(call("VornDlg"), 1) << name;
    EXPECT_EQ(call("SetDlgView"), 0) << name;
  }
  EXPECT_EQ(read("WireCut.set"), file);
}

// What a form shows, seen by a frame of another kind.
class Recorder : public DialogFrame {
 public:
  explicit Recorder(std::string install) : install_(std::move(install)) {}
  bool show(Form& form) override {
    seen = form;
    return true;
  }
  std::string text(int number) const override { return "text " + std::to_string(number); }
  std::string installFolder() const override { return install_; }
  void alert(const std::string& message) override { alerts += message; }
  Form seen;
  std::string alerts;

 private:
  std::string install_;
};

TEST_F(Forms, FitTheSettingsThatTheyStandFor) {
  auto library = LoadedModule::load(realPath(dialogLibraryPath(folder)));
  ASSERT_TRUE(library);
  std::string machine;
  int kind = 0;
  Recorder frame(folder);
  const auto entry = [&](const char* name, auto* type) {
    return reinterpret_cast<decltype(type)>(library->entry(name));
  };
  using Plain = int(DialogFrame*);
  using WithMode = int(DialogFrame*, int);
  using WithName = int(DialogFrame*, std::string*);
  using WithKind = int(DialogFrame*, int*);
  const std::vector<std::pair<std::size_t, std::function<int()>>> forms = {
      {13, [&] { return entry("SetDlg", static_cast<WithMode*>(nullptr))(&frame, 0); }},
      {19, [&] { return entry("SetDlg", static_cast<WithMode*>(nullptr))(&frame, 1); }},
      {18, [&] { return entry("SetDlgDie", static_cast<WithKind*>(nullptr))(&frame, &kind); }},
      {14, [&] { return entry("SetDlgPunch", static_cast<WithKind*>(nullptr))(&frame, &kind); }},
      {4, [&] { return entry("SetMDlg", static_cast<Plain*>(nullptr))(&frame); }},
      {12, [&] { return entry("PKZSDlg", static_cast<WithName*>(nullptr))(&frame, &machine); }},
      {9, [&] { return entry("VornDlg", static_cast<Plain*>(nullptr))(&frame) == 0 ? 1 : 0; }},
      {12, [&] { return entry("SetDlgView", static_cast<Plain*>(nullptr))(&frame); }},
      {4, [&] { return entry("DupDlg", static_cast<Plain*>(nullptr))(&frame); }}};
  for (const auto& [count, form] : forms) {
    EXPECT_EQ(form(), 1) << frame.alerts;  // what stands in fresh settings is within range
    EXPECT_EQ(frame.seen.fields.size(), count);
    for (const auto& field : frame.seen.fields) {
      const auto value = stored().textOf(field.name);
      EXPECT_TRUE(value || field.name == "machine" || field.name.ends_with("Kind")) << field.name;
      EXPECT_THAT(field.caption, ::testing::StartsWith("text 20")) << field.name;
      EXPECT_EQ(field.kind == FieldKind::kChoice, !field.choices.empty()) << field.name;
    }
  }
}

// The user's own module goes before the shipped one, and can be replaced while the program runs.
TEST_F(Forms, AModuleOfTheInstallFolderTakesTheShippedOnesPlace) {
  dialogs(false);
  EXPECT_EQ(call("DupDlg"), 1) << session.out;
  std::filesystem::copy_file(TARNEX_BINARY_DIR "/install/Quillet.arx", folder + "/Harbec.DLL");
  EXPECT_EQ(call("DupDlg"), -1);
  EXPECT_THAT(session.out, HasSubstr("无法执行 DupDlg"));
  std::filesystem::copy_file(TARNEX_BINARY_DIR "/install/Harbec.DLL", folder + "/Harbec.DLL",
                             std::filesystem::copy_options::overwrite_existing);
  EXPECT_EQ(call("DupDlg"), 1) << session.out;
}

}  // namespace
}  // namespace tarnex
