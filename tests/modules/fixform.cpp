// The form of auto fix: over a file of its own, with prompts, without, and refused.
// Loads the library of this build.
#include "frame/autofix.h"
#include "modules/moduletest.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;

class FixForm : public ModuleTest {
 protected:
  int call() {
    session.out.clear();
    return DialogLibrary(*module).call("AutoFixDlg", -1);
  }
  void dialogs(bool on) { ASSERT_TRUE(session.ed.acedSetVar("CMDDIA", on ? 1LL : 0LL)); }
  [[nodiscard]] AutoFixSettings stored() { return AutoFixLoad(folder); }
};

TEST_F(FixForm, TakesWhatStandsAndWhatWasSetAhead) {
  dialogs(false);
  EXPECT_EQ(call(), 1) << session.out;
  AutoFixSettings fresh(folder);
  ASSERT_TRUE(fresh.load());
  EXPECT_EQ(fresh.nKind, 1);
  EXPECT_EQ(read("AutoFix.set").size(), 112u);
  session.ed.preset("nKind", "Round pocket at the entry");  // by its caption
  session.ed.preset("dEntryDepth", "0.15");
  EXPECT_EQ(call(), 1) << session.out;
  EXPECT_EQ(stored().nKind, 4);
  EXPECT_EQ(stored().dEntryDepth, 0.15);
  EXPECT_EQ(stored().dNotchDepth, 0.5);
  EXPECT_EQ(read("WireCut.set"), "(no file)") << "another form's file";
}

TEST_F(FixForm, AsksForKindAndSizes) {
  dialogs(true);
  session.answers({"6", "dSpikeLen=0.3", "dSpikeAngle=-90", "="});
  EXPECT_EQ(call(), 1) << session.out;
  EXPECT_THAT(session.out, HasSubstr("Auto fix"));
  EXPECT_THAT(session.out, HasSubstr("    7  Ear at corners"));
  EXPECT_THAT(session.out, HasSubstr("dRound1  Kind 1: radius at corners against the path, mm <0.2>"));
  EXPECT_EQ(stored().nKind, 6);
  EXPECT_EQ(stored().dSpikeLen, 0.3);
  EXPECT_EQ(stored().dSpikeAngle, -90);
  const std::string file = read("AutoFix.set");
  session.answers({"8", "2", "0.7", "^C"});  // there are seven kinds
  EXPECT_EQ(call(), 0);
  EXPECT_EQ(read("AutoFix.set"), file);
}

TEST_F(FixForm, RefusesWhatIsOutOfRangeAndLeavesTheFile) {
  dialogs(false);
  const struct {
    std::size_t at;
    const char* bytes;  // eight, or four for the kind
    const char* told;
  } cases[] = {
      {4, "\x63\0\0\0", "nKind (Kind of fix) must be one of: 1, 2, 3, 4, 5, 6, 7"},
      {8, "\0\0\0\0\0\0\xF8\x7F", "dRound1 (Kind 1: radius at corners against the path, mm) must lie"},
      {88, "\0\0\0\0\0\0\0\0", "dSpikeLen (Kind 6: length of the spike, mm) must lie between 0.001 and 100."},
      {96, "\0\0\0\0\0\x90\x76\x40", "dSpikeAngle (Kind 6: direction of the spike, degrees) must lie"}};
  for (const auto& c : cases) {
    ASSERT_TRUE(AutoFixSettings(folder).save());
    std::string file = read("AutoFix.set");
    file.replace(0, 4, std::string("\x67\0\0\0", 4));
    file.replace(c.at, c.at == 4 ? 4 : 8, std::string(c.bytes, c.at == 4 ? 4 : 8));
    write("AutoFix.set", file);
    EXPECT_EQ(call(), 0) << c.told;
    EXPECT_THAT(session.out, HasSubstr(c.told));
    EXPECT_EQ(read("AutoFix.set"), file);
  }
  session.ed.preset("dSpikeAngle", "30");  // what is set ahead takes the wrong value's place
  EXPECT_EQ(call(), 1) << session.out;
  EXPECT_EQ(stored().dSpikeAngle, 30);
}

TEST_F(FixForm, SaysThatTheFileCantBeWritten) {
  dialogs(false);
  write("taken", "");
  start(folder + "/taken", 1);
  EXPECT_EQ(call(), 0);
  EXPECT_THAT(session.out, HasSubstr("The file AutoFix.set can't be written; nothing has been changed."));
}

TEST_F(FixForm, SpeaksEachLanguage) {
  dialogs(true);
  for (const auto& [language, word] : {std::pair(2, "拐角尖刺"), {3, "轉角尖刺"}}) {
    start(folder, language);
    session.answers({"="});
    EXPECT_EQ(call(), 1) << session.out;
    EXPECT_THAT(session.out, HasSubstr(word));
  }
}

}  // namespace
}  // namespace tarnex
