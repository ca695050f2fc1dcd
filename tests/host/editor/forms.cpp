// Forms asked as prompts, and values set ahead.
#include <gmock/gmock.h>

#include "session.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;

Form sample() {
  return {"SetDlg",
          "Path settings",
          {{"dOffset", "Wire offset", FieldKind::kReal, 0.08, 0, 5, {}},
           {"nArcs", "Arcs of a circle", FieldKind::kInteger, 2LL, 2, 8, {}},
           {"bHole", "Small holes", FieldKind::kYesNo, 0LL, 0, 1, {}},
           {"nSide", "Side", FieldKind::kChoice, 1LL, -1, 1, {{1LL, "Hole"}, {-1LL, "Outer"}}},
           {"sName", "Name", FieldKind::kText, std::string("old"), 0, 8, {}}}};
}

struct Frame : Session {
  Form form = sample();
  bool show() {
    out.clear();
    return ed.acedGetAcadFrame().show(form);
  }
  FieldValue value(const char* name) { return form.field(name)->value; }
};

TEST(Forms, AskEveryValueAgainUntilItFits) {
  Frame f;
  f.answers({"0.12", "9", "2.5", "8", "yes", "sideways", "outer", "much too long", "a name"});
  ASSERT_TRUE(f.show());
  EXPECT_EQ(f.value("dOffset"), FieldValue(0.12));
  EXPECT_EQ(f.value("nArcs"), FieldValue(8LL));
  EXPECT_EQ(f.value("bHole"), FieldValue(1LL));
  EXPECT_EQ(f.value("nSide"), FieldValue(-1LL));
  EXPECT_EQ(f.value("sName"), FieldValue(std::string("a name")));
  EXPECT_THAT(f.out, HasSubstr("dOffset  Wire offset <0.08>: 0.12\n"));
  EXPECT_THAT(f.out, HasSubstr("\"9\" is outside 2 to 8.\n"));
  EXPECT_THAT(f.out, HasSubstr("\"2.5\" is no whole number.\n"));
  EXPECT_THAT(f.out, HasSubstr("    -1  Outer\n"));
  EXPECT_THAT(f.out, HasSubstr("\"much too long\" is longer than 8 bytes.\n"));
}

TEST(Forms, EnterKeepsAndEqualsKeepsTheRest) {
  Frame f;
  f.answers({"", "bHole=y", "dOffset=7", "4", "="});
  ASSERT_TRUE(f.show());
  EXPECT_EQ(f.value("dOffset"), FieldValue(0.08));
  EXPECT_THAT(f.out, HasSubstr("dOffset: \"7\" is outside 0 to 5."));
  EXPECT_EQ(f.value("nArcs"), FieldValue(4LL));
  EXPECT_EQ(f.value("bHole"), FieldValue(1LL));
  EXPECT_EQ(f.value("nSide"), FieldValue(1LL));
}

TEST(Forms, CancelledOnesLeaveTheirValues) {
  Frame f;
  f.answers({"0.3", "^C"});
  EXPECT_FALSE(f.show());
  EXPECT_EQ(f.value("dOffset"), FieldValue(0.08));
  EXPECT_FALSE(f.show());  // nobody there to confirm
}

TEST(Forms, WithoutDialogsWhatStandsAndWhatWasSetAhead) {
  Frame f;
  ASSERT_TRUE(f.ed.acedSetVar("CMDDIA", 0LL));
  f.run({"SET dOffset 0.11", "set nSide Outer", "SET sName a b c"});
  ASSERT_TRUE(f.show());
  EXPECT_EQ(f.out, "");
  EXPECT_EQ(f.value("dOffset"), FieldValue(0.11));
  EXPECT_EQ(f.value("nArcs"), FieldValue(2LL));
  EXPECT_EQ(f.value("nSide"), FieldValue(-1LL));
  EXPECT_EQ(f.value("sName"), FieldValue(std::string("a b c")));
  f.ed.preset("nArcs", "1");
  EXPECT_FALSE(f.show());
  EXPECT_EQ(f.out, "SetDlg: nArcs: \"1\" is outside 2 to 8.\n");
  EXPECT_TRUE(f.ed.anyCommandFailed());
}

TEST(Forms, ValuesSetAheadAreTheStandingOnesOfAForm) {
  Frame f;
  f.ed.preset("nArcs", "6");
  f.answers({"", "", "="});
  ASSERT_TRUE(f.show());
  EXPECT_EQ(f.value("nArcs"), FieldValue(6LL));
}

TEST(Forms, ApplicationsHearOfValuesSetAhead) {
  Session s;
  std::string heard;
  s.ed.setHooks.push_back([&](const std::string& name, const std::string& value, std::string& error) {
    if (name != "dOffset") return false;
    heard = value;
    if (value == "x") error = "is no number";
    return true;
  });
  s.run({"SET dOffset 0.2", "SET other 1"});
  EXPECT_EQ(heard, "0.2");
  EXPECT_EQ(s.ed.presetOf("dOffset"), "0.2");
  EXPECT_EQ(s.ed.presetOf("other"), "1");
  EXPECT_EQ(s.status, 0);
  EXPECT_THAT(s.run({"SET dOffset x"}), HasSubstr("dOffset: is no number"));
  EXPECT_EQ(s.ed.presetOf("dOffset"), "0.2");
  EXPECT_EQ(s.status, 1);
}

}  // namespace
}  // namespace tarnex
