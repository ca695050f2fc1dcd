// Tapers by XD, CX and XD0: which segment gets what, what a typed value may be, and what is remembered.
// The paths are squares of 20: T, Q (20,10), (20,20), (0,20), (0,0), (20,0), Q.
#include "pathcmd/edittest.h"

namespace tarnex {

namespace {

using Tapers = std::vector<double>;

class TaperTest : public EditTest {
 protected:
  TaperTest() { settings().dLastTaper = 1; }
  [[nodiscard]] double remembered() {
    module->loadSettings();
    return settings().dLastTaper;
  }
};

TEST_F(TaperTest, XdSetsSegmentsAndRemembersTheValue) {
  const AcDbObjectId id = squarePath({0, 0}), line = session.line({0, 90}, {9, 90});
  std::string out =
      type({"XD", "20,15", "2.5", "7,20", at(line, "3,90"), "300,300", "-3", at(id, "0,5"), ""});
  EXPECT_EQ(pathOf(id)->aSegTaper(), (Tapers{0, 1, 2.5, -3, 0, 0, 0}));
  EXPECT_EQ(pathOf(id)->dTaper(), 0);
  EXPECT_EQ(times(out, module->message(68, {1.0})), 2);
  EXPECT_EQ(times(out, module->message(68, {2.5})), 4);
  EXPECT_EQ(times(out, module->message(68, {-3.0})), 2);
  EXPECT_EQ(times(out, module->message(54)), 1);
  EXPECT_EQ(remembered(), -3);
  // A segment's taper takes the place of the whole path's; it isn't kept where it is the same.
  drawing().open<CToolPath>(id, OpenMode::kForWrite)->setTaper(4);
  type({"XD", "20,5", "^C"});  // Q is passed twice: the last segment ends there
  EXPECT_EQ(pathOf(id)->dTaper(), 0);
  EXPECT_EQ(pathOf(id)->aSegTaper(), (Tapers{0, 0, 0, 0, 0, -3, 0}));
}

TEST_F(TaperTest, AValueOutOfRangeIsRefusedAndTheOldOneStays) {
  const AcDbObjectId id = squarePath({0, 0});
  const std::string huge(400, '9');
  const std::string out =
      type({"XD", "90", "-90", huge, huge + ".0", "1e5", "nan", "89.9", "-89.9", "20,15", ""});
  EXPECT_EQ(times(out, module->message(20211, {1.0})), 4);
  EXPECT_EQ(times(out, "指令关键字不正确"), 2);
  EXPECT_EQ(pathOf(id)->aSegTaper()[1], -89.9);
}

TEST_F(TaperTest, ThePickMayLieBesideThePathAndInTheUsersSystem) {
  const AcDbObjectId id = squarePath({100, 100});
  session.ed.setView({110, 110}, 60);
  session.run({"UCS", "O", "100,100"});
  // Answers of this prompt are in the world; 0.4 beside the left side.
  type({"XD", "5", "99.8,105", ""});
  EXPECT_EQ(pathOf(id)->aSegTaper(), (Tapers{0, 0, 0, 5, 0, 0, 0}));
}

TEST_F(TaperTest, CxSetsWholePathsSegmentsOrClears) {
  const AcDbObjectId a = squarePath({0, 0}), b = squarePath({50, 0});
  std::string out = type({"CX", "1.5", at(a, "20,15"), "P", at(b, "70,15"), "A", "2", at(b, "70,15"), ""});
  EXPECT_EQ(pathOf(a)->dTaper(), 1.5);
  EXPECT_EQ(pathOf(b)->dTaper(), 2);
  EXPECT_FALSE(pathOf(b)->hasSegTaper()) << "the whole path's taper clears the segments'";
  EXPECT_TRUE(says(out, module->message(62, {1.0})));
  EXPECT_EQ(times(out, module->message(63, {1.5})), 2);
  EXPECT_EQ(times(out, module->message(62, {2.0})), 2);
  EXPECT_EQ(remembered(), 2);
  // C asks for a selection and the loop goes on.
  out = type({"CX", "p", at(a, "0,5"), "c", session.handle(b), "", at(a, "7,20"), ""});
  EXPECT_EQ(pathOf(b)->dTaper(), 0);
  EXPECT_EQ(pathOf(a)->aSegTaper(), (Tapers{0, 0, 2, 2, 0, 0, 0}));
  EXPECT_EQ(pathOf(a)->dTaper(), 0);
}

TEST_F(TaperTest, Xd0ClearsWhatIsSelectedAndTouchesNothingElse) {
  const AcDbObjectId a = squarePath({0, 0}), b = squarePath({50, 0}), plain = squarePath({100, 0});
  session.line({0, 90}, {9, 90});
  drawing().open<CToolPath>(a, OpenMode::kForWrite)->setTaper(3);
  ASSERT_TRUE(drawing().open<CToolPath>(b, OpenMode::kForWrite)->setSegmentTaper({70, 15}, 3));
  type({"XD0", "^C"});
  EXPECT_EQ(pathOf(a)->dTaper(), 3);
  const auto stamp = drawing().changeStamp();
  module->saveSettings();
  session.run({"XD0", "all", ""});
  std::vector<AcDbObjectId> changed;
  ASSERT_TRUE(drawing().changesSince(stamp, changed));
  EXPECT_THAT(changed, ::testing::ElementsAre(a, b));
  EXPECT_EQ(pathOf(a)->dTaper(), 0);
  EXPECT_FALSE(pathOf(b)->hasSegTaper());
  EXPECT_TRUE(stands(plain));
}

}  // namespace

}  // namespace tarnex
