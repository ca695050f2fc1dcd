// `tarnex post try` as a post's author uses it: the first program, a change of the post, a failure.
// Knows the shipped posts and the samples.
#include <gmock/gmock.h>

#include "programtest.h"

namespace tarnex {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class PostTryTest : public ProgramTest {
 protected:
  PostTryTest() {
    EXPECT_EQ(sh("mkdir -p install/MZS/Mine && tarnex post show DecimalSub > mine.toml && " + kCompile).code,
              0);
  }
  const std::string kCompile = "tarnex post compile mine.toml -o install/MZS/Mine/Wire.pc";
  const std::string kKept = "install/TRY/Mine/Wire/plate.iso";
};

TEST_F(PostTryTest, FirstTheProgramThenWhatHasChanged) {
  const auto first = sh("tarnex post try Mine/Wire 2>/dev/null");
  EXPECT_EQ(first.code, 0);
  EXPECT_THAT(first.out, StartsWith("%\n(2001-09- 9 01:46:40)\n"));
  EXPECT_THAT(first.out, HasSubstr("Mine/Wire, plate.dxf: the first program, "));
  const std::string program = read(kKept);
  EXPECT_THAT(first.out, StartsWith(program));
  EXPECT_EQ(sh("cd install && ls TRY/Mine/Wire").out, "plate.iso\n");

  // A day later: the head's date is another, and that is no change.
  EXPECT_EQ(sh("SOURCE_DATE_EPOCH=1000090000 tarnex post try Mine/Wire 2>/dev/null").out,
            "Mine/Wire, plate.dxf: no change\n");

  // Another word in the footer: the last but one line but the closing %.
  ASSERT_THAT(program, EndsWith("M50\nM02\n%\n"));
  EXPECT_EQ(sh("sed -i 's/\"M02\\$\"/\"M30$\"/' mine.toml && " + kCompile).code, 0);
  const auto changed = sh("tarnex post try Mine/Wire 2>/dev/null");
  EXPECT_EQ(changed.code, 0);
  EXPECT_THAT(changed.out, StartsWith("--- last try\n+++ this try\n@@ -"));
  EXPECT_THAT(changed.out,
              EndsWith(" M50\n-M02\n+M30\n %\nMine/Wire, plate.dxf: 1 line changed (1 removed, 1 added)\n"));
  EXPECT_EQ(sh("tarnex post try Mine/Wire 2>/dev/null").out, "Mine/Wire, plate.dxf: no change\n");
}

TEST_F(PostTryTest, APostThatCannotWriteKeepsTheLastProgram) {
  EXPECT_EQ(sh("tarnex post try Mine/Wire").code, 0);
  const std::string program = read(kKept);
  EXPECT_EQ(sh("tarnex post try Mine/Wire none.dxf").code, 3);
  EXPECT_EQ(sh("tarnex post try Mine").code, 2);  // there is no Mine/Mine
  EXPECT_EQ(sh("tarnex post try ../a/b").code, 2);
  drawing("empty.dxf", "");
  const auto empty = sh("tarnex post try Mine/Wire empty.dxf");
  EXPECT_EQ(empty.code, 1);
  EXPECT_THAT(empty.out, HasSubstr("nothing to cut"));
  EXPECT_EQ(sh("rm install/MZS/Mine/Wire.pc && tarnex post try Mine/Wire").code, 2);
  EXPECT_EQ(read(kKept), program);
  EXPECT_EQ(sh("ls install/TRY/Mine/Wire").out, "plate.iso\n");
}

// Drawings of one name in two folders are two drawings, and neither is the sample.
TEST_F(PostTryTest, EachDrawingHasItsOwnLastProgram) {
  EXPECT_EQ(sh("mkdir a b && cp plate.dxf a/p.dxf && cp punch.dxf b/p.dxf").code, 0);
  EXPECT_THAT(sh("tarnex post try Mine/Wire a/p.dxf").out, HasSubstr("p.dxf: the first program"));
  EXPECT_THAT(sh("tarnex post try Mine/Wire b/p.dxf").out, HasSubstr("p.dxf: the first program"));
  EXPECT_THAT(sh("cd a && tarnex post try Mine/Wire p.dxf").out, HasSubstr("p.dxf: no change"));
  EXPECT_THAT(sh("tarnex post try DecimalSub a/p.dxf").out, HasSubstr("p.dxf: the first program"));
  const auto json = sh("tarnex post try Mine/Wire a/p.dxf --json");
  EXPECT_EQ(json.code, 0);
  EXPECT_THAT(json.out, HasSubstr("\"first\": false"));
  EXPECT_THAT(json.out, HasSubstr("\"changed\": 0"));
  EXPECT_THAT(json.out, HasSubstr("\"program\": \"%\\n(2001"));
  EXPECT_THAT(sh("tarnex post try Mine/Wire none.dxf --json 2>/dev/null").out, HasSubstr("\"ok\": false"));
}

}  // namespace
}  // namespace tarnex
