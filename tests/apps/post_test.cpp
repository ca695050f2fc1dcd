// `tarnex post`, `tarnex job` and `tarnex conditions` as a user types them: what they say and their exit
// codes. Knows the shipped posts by their names.
#include <gmock/gmock.h>

#include "programtest.h"

namespace tarnex {
namespace {

using testing::HasSubstr;

class PostTest : public ProgramTest {};

TEST_F(PostTest, ListsShowsCompilesAndComparesAlike) {
  const auto list = sh("tarnex post list");
  EXPECT_EQ(list.code, 0);
  for (const char* machine : {"SODICK/SODICK ", "FirstCell/FirstCell ", "MicronInc/MicronInc ",
                              "DecimalSub/DecimalSub ", "SixDigit/SixDigit "})
    EXPECT_THAT(list.out, HasSubstr(machine));
  EXPECT_EQ(sh("tarnex post show SixDigit > a.toml && tarnex post compile a.toml -o a.pc && "
               "tarnex post decompile a.pc -o b.toml && cmp a.toml b.toml && tarnex post check a.pc")
                .code,
            0);
  // A post of one's own is there once it lies in a folder under MZS.
  EXPECT_THAT(sh("mkdir -p install/MZS/Mine && cp a.pc install/MZS/Mine/Wire.pc && tarnex post list").out,
              HasSubstr("Mine/Wire "));
  EXPECT_EQ(sh("tarnex post compile a.toml --as New/Wire && cmp a.pc install/MZS/New/Wire.pc").code, 0);
  EXPECT_EQ(sh("tarnex post compile a.toml --as ../New/Wire").code, 2);
}

TEST_F(PostTest, FaultsNameThePlaceAndWriteNothing) {
  write("bad.toml", "[parameters]\nrapid = \"G000000000\"\n");
  const auto bad = sh("tarnex post compile bad.toml -o bad.pc");
  EXPECT_EQ(bad.code, 1);
  EXPECT_EQ(bad.out, "bad.toml:2: parameters.rapid: \"G000000000\" has 10 bytes, at most 9\n");
  EXPECT_FALSE(there("bad.pc"));
  EXPECT_EQ(sh("tarnex post check none.toml").code, 3);
  EXPECT_EQ(sh("tarnex post show None/None").code, 3);
  EXPECT_EQ(sh("tarnex post show ../a/b").code, 2);
  const auto cut =
      sh("tarnex post show SODICK > s.toml; tarnex post compile s.toml -o s.pc; head -c 20000 s.pc > cut.pc; "
         "tarnex post check cut.pc");
  EXPECT_EQ(cut.code, 1);
  EXPECT_THAT(cut.out, HasSubstr("cut.pc: 20000 of 35480 bytes, missing is part of the block rows"));
}

TEST_F(PostTest, AJobGoesOutAndComesBack) {
  EXPECT_EQ(sh("tarnex job export a.toml && tarnex job import a.toml && tarnex job show > b.toml && cmp "
               "a.toml b.toml")
                .code,
            0);
  EXPECT_TRUE(there("install/MZS/ISO.LYT"));
  write("more.toml", "thickness = 40.0\nmachine = \"None\"\n");
  const auto import = sh("tarnex job import more.toml");
  EXPECT_EQ(import.code, 0);
  EXPECT_THAT(import.out, HasSubstr("there is no such machine"));
  write("bad.toml", "thickness = 99.0\nmaterial = \"twenty bytes of text\"\n");
  EXPECT_EQ(sh("tarnex job import bad.toml").code, 1);
  EXPECT_THAT(sh("tarnex job show").out, HasSubstr("thickness = 40.0"));  // as it was
}

TEST_F(PostTest, Conditions) {
  const auto cell = sh("tarnex conditions show skd11 0.2 40");
  EXPECT_EQ(cell.code, 0);
  EXPECT_THAT(cell.out, HasSubstr("[SKD11-0.2-40]\n"));
  EXPECT_THAT(cell.out, HasSubstr("\nC01="));
  const auto none = sh("tarnex conditions show SKD11 0.2 38");
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.out, "no thickness 38; the nearest is 40\n");
  EXPECT_EQ(sh("tarnex conditions show SKD11 thin 40").code, 2);
  EXPECT_EQ(sh("tarnex conditions check").code, 0);
  EXPECT_THAT(sh("tarnex conditions list --machine SixDigit --dbf 1").out, HasSubstr("plain.ini: Ver 1"));
}

}  // namespace
}  // namespace tarnex
