// From a drawing to an ISO program in one line, as typed by a user; programs worked out by hand.
// Knows the program from outside; what a post's rows say stands beside what is expected.
#include "apps/isoprogramtest.h"

namespace tarnex {

namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

class JobIso : public IsoProgramTest {};

// The plate is entered below the middle of its first line, (10,0), 3 mm out; the wire goes round it counter-
// clockwise, so the waste is on its right: G42. The tab is the last 5 mm before the entry: the first pass
// leaves at (5,0), half a lead-in down. The hole is threaded at its centre, entered at angle 0, and left half
// its radius back. Its stop lies 0.5 mm before the end, 0.25 rad: 2 cos and 2 sin of it are 1.938 and 0.495.
const std::string kHole =
    "G92X10.Y10.\nM60\nC01\n"
    "G41H001G01X12.Y10.\n"
    "G03X8.Y10.I-2.J0.\n"
    "G03X11.938Y9.505I2.J0.\nM01\n"
    "G03X12.Y10.I-1.938J0.495\n"
    "G40G01X11.Y10.\n";
const std::string kToPlate = "M50\nG00X10.Y-3.\nM60\n";
const std::string kPlateFirst =
    "C01\n"
    "G42H011G01X10.Y0.\n"
    "G01X20.Y0.\nG01X20.Y20.\nG01X0.Y20.\nG01X0.Y0.\n"
    "G01X5.Y0.\n"
    "G40G01X5.Y-1.5\n";
const std::string kEnd = "M50\nM02\n%\n";

TEST_F(JobIso, FigureByFigureTheTrimPassRunsBackAndTheTabIsCutFromTheEntry) {
  const Ran ran = sh("tarnex iso square.dxf -o s.nc --job two.toml" + kPlain);
  ASSERT_EQ(ran.code, 0) << ran.out;
  // One trim pass runs backward and ends at the entry; the tab then begins there, with the first record
  // again, and stops half a millimetre before the part is free.
  // A hole without later passes ends where it began.
  EXPECT_EQ(body("s.nc"), kHole + "G00X10.Y10.\n" + kToPlate + kPlateFirst +
                              "C02\n"
                              "G41H012G01X5.Y0.\n"
                              "G01X0.Y0.\nG01X0.Y20.\nG01X20.Y20.\nG01X20.Y0.\n"
                              "G01X10.Y0.\n"
                              "G40G01X10.Y-3.\n"
                              "C01\n"
                              "G41H011G01X10.Y0.\n"
                              "G01X5.5Y0.\nM01\nG01X5.Y0.\n"
                              "G40G01X5.Y-1.5\n" +
                              kEnd);
  EXPECT_THAT(ran.out, HasSubstr("2 contours (1 outer, 1 holes), 2 figures, 4 passes"));
  EXPECT_THAT(ran.out, HasSubstr("figures by style: HOLE: 1, PART: 1"));
  // The head lists what is in use: two conditions, the number that every job has, and three offsets.
  const std::string all = read("s.nc");
  for (const char* line : {"\nC01=", "\nC02=", "\nH000=0.010\n", "\nH001=0.180\nH011=0.200\nH012=0.140\nG40"})
    EXPECT_EQ(count(all, line), 1) << line << all;
}

TEST_F(JobIso, PassByPassTheTrimPassRunsForwardAndTheTabIsCutOnFromTheBreak) {
  const Ran ran = sh("tarnex iso square.dxf -o s.nc --by pass --json --job two.toml" + kPlain);
  ASSERT_EQ(ran.code, 0) << ran.out;
  EXPECT_EQ(body("s.nc"), kHole + kToPlate + kPlateFirst + kToPlate +
                              "C02\n"
                              "G42H012G01X10.Y0.\n"
                              "G01X20.Y0.\nG01X20.Y20.\nG01X0.Y20.\nG01X0.Y0.\n"
                              "G01X5.Y0.\n"
                              "G40G01X5.Y-1.5\n"
                              "C01\n"
                              "G42H011G01X5.Y0.\n"
                              "G01X9.5Y0.\nM01\nG01X10.Y0.\n"
                              "G40G01X10.Y-3.\n" +
                              kEnd);
  // First record: the hole's lead 2, circle 4 pi and way out 1; the plate's lead 3, 75 of its 80 mm, 1.5
  // away; the tab's 1.5 + 5 + 3. Second: 3 + 75 + 1.5.
  EXPECT_THAT(ran.out, ContainsRegex("\"cutLengthPerPass\": .\n *104.56637061[0-9]*,\n *79.5\n"));
  EXPECT_THAT(ran.out, HasSubstr("\"cut\": \"pass\""));
  EXPECT_THAT(ran.out, HasSubstr("\"styles\": {\n    \"HOLE\": 1,\n    \"PART\": 1\n  }"));
}

TEST_F(JobIso, TheScriptGivesTheSameBytesAndLeavesTheUsersJobAlone) {
  ASSERT_EQ(
      sh("tarnex run nothing.scr && tarnex job import two.toml && cp install/MZS/ISO.LYT standing.lyt").code,
      0);
  ASSERT_TRUE(there("standing.lyt"));
  const std::string lines[] = {
      "plate.dxf -o p.nc --set dCutoffLen=0.3",
      "plate.dxf -o p.nc --machine MicronInc/MicronInc --by pass --job two.toml",
      "punch.dxf -o p.nc --job two.toml --machine DecimalSub/DecimalSub --set nDbf=1",
      "punch.dxf -o p.nc --machine sixdigit/sixdigit --gap 0.01 --save saved.dxf",
  };
  for (const auto& line : lines) {
    const Ran ran = sh("tarnex iso " + line +
                       " --show-script > job.scr && mv p.nc first.nc && "
                       "tarnex run job.scr && cmp first.nc p.nc && cmp standing.lyt install/MZS/ISO.LYT && "
                       "tarnex iso " +
                       line + " --show-script | cmp - job.scr");
    EXPECT_EQ(ran.code, 0) << line << "\n" << ran.out;
    EXPECT_GT(read("p.nc").size(), 300u) << line;
  }
}

TEST_F(JobIso, ASavedDrawingGivesTheSameProgramThroughGG) {
  ASSERT_EQ(sh("tarnex iso square.dxf -o s.nc --save saved.dxf --job two.toml" + kPlain).code, 0);
  const std::string first = read("s.nc");
  // The install folder's job is another; the drawing brings its own.
  write("again.scr", "open saved.dxf\nsetvar CMDDIA 0\nSET dCutoffLen 0.5\nGG\n\n\n" + folder +
                         "/again.nc\n"
                         "saveas " +
                         folder + "/again.dxf\n");
  Ran ran =
      sh("tarnex job show > before.toml; tarnex run again.scr && cmp s.nc again.nc && "
         "tarnex job show > after.toml && ! cmp -s before.toml after.toml");
  EXPECT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(read("after.toml"), HasSubstr("name = \"PART\""));
  // What GG left in the job's file and in the drawing is one job: each alone gives it.
  ran = sh("tarnex iso square.dxf -o file.nc" + kPlain);
  EXPECT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(ran.out, HasSubstr("by the job's first style, HOLE"));
  ran = sh("tarnex job import other.toml && tarnex iso again.dxf -o bykeys.nc" + kPlain +
           " && cmp s.nc bykeys.nc");
  EXPECT_EQ(ran.code, 0) << "styled paths keep their styles: " << ran.out;
  EXPECT_THAT(ran.out, HasSubstr("figures by style: HOLE: 1, PART: 1"));
}

// The last span before the entry is 3 mm: 5 mm back lies round the corner's quarter circle of 1 mm, 5 - 3 -
// pi/2 = 0.429 mm along the next line, which begins at (14,-4).
TEST_F(JobIso, ATabLongerThanTheSpanBeforeTheEntryGoesRoundTheCorner) {
  const Ran ran = sh("tarnex iso punch.dxf -o p.nc --job two.toml");
  ASSERT_EQ(ran.code, 0) << ran.out;
  const std::string program = read("p.nc");
  EXPECT_THAT(program, HasSubstr("G02X4.5Y-4.I0.5J0.\nG01X13.571Y-4.\nG40G01X13.571Y-5.5\n"));
  EXPECT_THAT(ran.out, HasSubstr("parts come loose without a stop"));
  EXPECT_THAT(ran.out, Not(HasSubstr("lies on an arc")));
  // With a stop half a millimetre before either end of the tab the break makes room for it: 14 - 0.5 - 0.2.
  EXPECT_EQ(sh("tarnex iso punch.dxf -o p.nc --job two.toml --set dCutoffLen=0.5").code, 0);
  EXPECT_THAT(read("p.nc"), HasSubstr("G02X4.5Y-4.I0.5J0.\nG01X13.3Y-4.\nG40G01X13.3Y-5.5\n"));
}

TEST_F(JobIso, AMachineThatNeedsAStopGetsOne) {
  const Ran ran = sh("tarnex iso punch.dxf -o p.nc --job two.toml --machine SixDigit/SixDigit --save s.dxf");
  EXPECT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(ran.out, HasSubstr("this machine needs a stop before a part is free"));
  EXPECT_THAT(ran.out, Not(HasSubstr("parts come loose")));
  EXPECT_THAT(ran.out, Not(HasSubstr("warnings")));
  EXPECT_EQ(count(read("p.nc"), "M01\n"), 1);
  EXPECT_EQ(sh("tarnex iso s.dxf -o again.nc --machine SixDigit/SixDigit && cmp p.nc again.nc").code, 0);
}

}  // namespace

}  // namespace tarnex
