// `tarnex check` of ISO programs as typed by a user: sound ones of both samples, planted faults, and what
// isn't there. Knows the program from outside.
#include "apps/isoprogramtest.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class CheckIso : public IsoProgramTest {
 protected:
  // The square and its hole, with their paths in paths.dxf.
  void makeProgram(const std::string& options = {}) {
    const Ran ran = sh("tarnex iso square.dxf -o s.nc --job two.toml --save paths.dxf" + kPlain + options);
    ASSERT_EQ(ran.code, 0) << ran.out;
  }
  void plant(const std::string& was, const std::string& is) {
    std::string text = read("s.nc");
    const auto at = text.find(was);
    ASSERT_NE(at, std::string::npos) << text;
    write("bad.nc", text.replace(at, was.size(), is));
  }
};

TEST_F(CheckIso, SamplesHold) {
  for (const std::string sample : {"plate", "punch"})
    for (const std::string machine : {"SODICK", "DecimalSub", "MicronInc"})
      for (const std::string by : {"figure", "pass"}) {
        const std::string post = machine + "/" + machine;
        ASSERT_EQ(sh("tarnex iso " + sample + ".dxf -o p.nc --job two.toml --save p.dxf --machine " + post +
                     " --by " + by)
                      .code,
                  0);
        const Ran ran = sh("tarnex check p.nc --drawing p.dxf --machine " + post);
        EXPECT_EQ(ran.code, 0) << sample << " " << post << " " << by << "\n" << ran.out;
        EXPECT_THAT(ran.out, StartsWith("ok: ")) << post;
      }
}

TEST_F(CheckIso, AFaultHasItsLineAndItsPlace) {
  makeProgram();
  EXPECT_EQ(sh("tarnex check s.nc --drawing paths.dxf --machine SODICK/SODICK").code, 0);
  plant("G01X0.Y20.\n", "G01X0.Y21.\n");
  const Ran ran = sh("tarnex check bad.nc --drawing paths.dxf --machine SODICK/SODICK");
  EXPECT_EQ(ran.code, 1);
  EXPECT_THAT(ran.out,
              HasSubstr("figure 2: pass 1 leaves the contour at (20.0000, 20.0000) for (0.0000, 21.0000), "
                        "1.0000 mm beside it; it goes on to (0.0000, 20.0000)"));
  const Ran json = sh("tarnex check bad.nc --drawing paths.dxf --machine SODICK/SODICK --json");
  EXPECT_EQ(json.code, 1);
  for (const char* part : {"\"ok\": false", "\"kind\": \"off-contour\"", "\"figure\": 2", "\"passes\": 3"})
    EXPECT_THAT(json.out, HasSubstr(part));
}

// Without --machine an ISO program is known by its words, and the drawing's job names the machine.
TEST_F(CheckIso, TheDrawingKnowsTheMachine) {
  makeProgram(" --machine DecimalSub/DecimalSub");
  const Ran ran = sh("tarnex check s.nc --drawing paths.dxf");
  EXPECT_EQ(ran.code, 0) << ran.out;
  EXPECT_EQ(sh("tarnex check s.nc --drawing paths.dxf --machine SODICK/SODICK").code, 1) << "another centre";
  EXPECT_THAT(sh("tarnex check s.nc --drawing paths.dxf --machine No/Such").out,
              HasSubstr("there is no such post"));
  EXPECT_EQ(sh("tarnex check s.nc --drawing paths.dxf --machine No/Such").code, 3);
  EXPECT_EQ(sh("tarnex check s.nc --drawing square.dxf --machine SODICK/SODICK").code, 1) << "no paths";
}

TEST_F(CheckIso, TheWireAndTheOriginAreAsTheUserSays) {
  makeProgram();
  std::string text = read("s.nc");
  for (auto [was, is] : {std::pair{"M60", "M20"}, {"M60", "M20"}, {"M50", "M21"}, {"M50", "M21"}})
    text.replace(text.find(was), 3, is);
  write("own.nc", text);
  const std::string check = "tarnex check own.nc --drawing paths.dxf --machine SODICK/SODICK";
  EXPECT_THAT(sh(check).out, HasSubstr("a rapid move with the wire in crosses the contour"));
  EXPECT_EQ(sh(check + " --thread M20 --cut M21").code, 0) << sh(check + " --thread M20 --cut M21").out;
  EXPECT_THAT(sh(check + " --thread M20 --cut M21 --origin 1,0").out,
              HasSubstr("the wire stands at (11.0000, 10.0000), where no figure is threaded"));
}

TEST_F(CheckIso, A3BProgramStaysOne) {
  ASSERT_EQ(sh("tarnex 3b plate.dxf -o plate.3b --save plate-paths.dxf").code, 0);
  EXPECT_EQ(sh("tarnex check plate.3b --drawing plate-paths.dxf").code, 0);
}

}  // namespace

}  // namespace tarnex
