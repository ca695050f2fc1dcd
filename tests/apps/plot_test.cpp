// `tarnex plot`: what it writes, how large, and what it refuses.
#include <gmock/gmock.h>

#include "host/display/plot.h"
#include "programtest.h"

namespace tarnex {
namespace {

using testing::HasSubstr;
using testing::Not;

class Plot : public ProgramTest {
 protected:
  Plot() { drawing("ring.dxf", circle(10, 20, 5) + line(0, 20, 20, 20, "AXIS")); }

  // Of a PNG, from its header.
  std::pair<int, int> pixels(const std::string& name) {
    const std::string png = read(name);
    if (png.size() < 24) return {0, 0};
    const auto number = [&](std::size_t at) {
      int v = 0;
      for (std::size_t i = 0; i < 4; ++i) v = v << 8 | static_cast<unsigned char>(png[at + i]);
      return v;
    };
    return {number(16), number(20)};
  }
};

TEST_F(Plot, IsTrueToScale) {
  // The ring is 10 mm tall and the axis 20 mm long: 100 by 50 mm at 5:1, with margins of 5 mm.
  Ran ran = sh("tarnex plot ring.dxf -o ring.svg --scale 5:1");
  ASSERT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(read("ring.svg"), HasSubstr("width=\"110.000mm\" height=\"60.000mm\" viewBox=\"0 0 22 12\""));
  EXPECT_THAT(ran.out, HasSubstr("110.0 x 60.0 mm at 5:1"));
  // Half size in the middle of a page of 50 by 40: (50 - 10) / 2 = 20 mm of paper to its left.
  ran = sh("tarnex plot ring.dxf -o ring.svg --scale 1:2 --size 50x40");
  ASSERT_EQ(ran.code, 0) << ran.out;
  EXPECT_THAT(read("ring.svg"), HasSubstr("width=\"50.000mm\" height=\"40.000mm\" viewBox=\"0 0 100 80\""));
  EXPECT_THAT(read("ring.svg"), HasSubstr("M45 40a5 5 0 0 0 10 0"));  // the ring begins 5 mm later
  // A page that is too small is written all the same, and the user told.
  ran = sh("tarnex plot ring.dxf -o ring.svg --scale 5 --size 50x40");
  EXPECT_EQ(ran.code, 0);
  EXPECT_THAT(ran.out, HasSubstr("the page is too small"));
}

TEST_F(Plot, ShowsTheWindowAndTheLayersAskedFor) {
  ASSERT_EQ(sh("tarnex plot ring.dxf -o a.svg --window 20,30,0,10 --scale 1").code, 0);
  EXPECT_THAT(read("a.svg"), HasSubstr("viewBox=\"0 0 30 30\""));
  ASSERT_EQ(sh("tarnex plot ring.dxf -o b.svg --window -10,-10,0,0").code, 0);  // nothing but ground
  EXPECT_THAT(read("b.svg"), Not(HasSubstr("<path")));
  ASSERT_EQ(sh("tarnex plot ring.dxf -o c.svg --layers axis --scale 1").code, 0);
  EXPECT_THAT(read("c.svg"), Not(HasSubstr(" 0 0 0 ")));  // no arc
  EXPECT_EQ(sh("tarnex plot ring.dxf -o d.svg --skip-layers AXIS,0").code, 1);
  const Ran ran = sh("tarnex plot ring.dxf -o e.svg --skip-layers axle");
  EXPECT_EQ(ran.code, 0);
  EXPECT_THAT(ran.out, HasSubstr("there is no layer \"axle\""));
}

TEST_F(Plot, ShowsPathsAsTheSettingsSay) {
  ASSERT_EQ(sh("tarnex 3b plate.dxf -o plate.3b --save paths.dxf --set dOffset=0.1").code, 0);
  ASSERT_EQ(sh("tarnex plot paths.dxf -o with.svg --set bShowTool=1").code, 0);
  ASSERT_EQ(sh("tarnex plot paths.dxf -o less.svg --set bShowTool=0 --set bShowNull=0 --dark").code, 0);
  // Seven wire centre paths are dashed, beside what both pictures have.
  EXPECT_GE(count(read("with.svg"), "stroke-dasharray"), count(read("less.svg"), "stroke-dasharray") + 7);
  EXPECT_THAT(read("with.svg"), HasSubstr(">1</text>"));
  EXPECT_THAT(read("less.svg"), HasSubstr("fill=\"" + hexColor(groundColor(Ground::dark)) + '"'));
  ASSERT_EQ(sh("tarnex plot paths.dxf -o iso.svg --view iso").code, 0);
  ASSERT_EQ(sh("tarnex plot paths.dxf -o eye.svg --view -5,-5,5").code, 0);
  EXPECT_EQ(read("iso.svg"), read("eye.svg"));
  EXPECT_NE(read("iso.svg"), read("with.svg"));
}

TEST_F(Plot, WritesPdfAndPng) {
  if (!canPlot(PlotFormat::pdf)) {
    EXPECT_EQ(sh("tarnex plot ring.dxf -o ring.pdf").code, 1);
    return;
  }
  ASSERT_EQ(sh("tarnex plot ring.dxf -o ring.png --size 300x200").code, 0);
  EXPECT_EQ(pixels("ring.png"), std::pair(300, 200));
  ASSERT_EQ(sh("tarnex plot ring.dxf -o ring.png --scale 5:1 --dpi 254").code, 0);
  EXPECT_EQ(pixels("ring.png"), std::pair(1100, 600));
  // A4 in points, across since the drawing is.
  ASSERT_EQ(sh("tarnex plot ring.dxf -o ring.pdf --size A4 && cp ring.pdf first.pdf").code, 0);
  EXPECT_THAT(read("ring.pdf"), HasSubstr("/MediaBox [ 0 0 841.889764 595.275591 ]"));
  ASSERT_EQ(sh("tarnex plot ring.dxf -o ring.pdf --size 297x210").code, 0);
  EXPECT_EQ(read("ring.pdf"), read("first.pdf"));
  ASSERT_EQ(sh("tarnex 3b plate.dxf -o plate.3b --plot plate.pdf").code, 0);
  EXPECT_TRUE(read("plate.pdf").starts_with("%PDF-"));
}

TEST_F(Plot, RefusesWhatMeansNothing) {
  write("old.svg", "old");
  const struct {
    const char* options;
    int code;
    const char* says;
  } cases[] = {
      {"-o ring.dwf", 2, "ring.dwf: the name of a plot ends in .svg, .pdf or .png"},
      {"-o old.svg --window 1,2,3", 2, "--window 1,2,3: is to be x1,y1,x2,y2 in mm"},
      {"-o old.svg --window 1,2,1,3", 2, "the corners are to differ"},
      {"-o old.svg --size 12", 2, "--size 12: is to be WxH in mm"},
      {"-o old.svg --size 0x10", 2, "each from 1 to 5000"},
      {"-o old.png --size 30001x10", 2, "in pixels, each from 1 to 30000"},
      {"-o old.svg --size a9", 2, "or a0 to a4"},
      {"-o old.svg --scale 5:0", 2, "--scale 5:0: is to be such as 5:1"},
      {"-o old.svg --scale nan", 2, "--scale nan: is to be"},
      {"-o old.svg --scale 1000:1", 2, "the plot would be 20010 x 10010 mm, more than 5000"},
      {"-o old.svg --view 0,0,0", 2, "--view 0,0,0: is to be top, iso or x,y,z"},
      {"-o old.svg --view side", 2, "--view side: is to be"},
      {"-o old.svg --set dTextHeight", 2, "--set dTextHeight: is to be KEY=VALUE"},
      {"-o old.svg --set bNothing=1", 2, "--set bNothing=1:"},
      {"-o old.svg --line-width 0", 2, "--line-width: is to be from 0.01 to 10 mm"},
      {"-o missing/ring.svg", 1, "missing/ring.svg: No such file or directory"},
  };
  for (const auto& c : cases) {
    const Ran ran = sh(std::string("tarnex plot ring.dxf ") + c.options);
    EXPECT_EQ(ran.code, c.code) << c.options;
    EXPECT_THAT(ran.out, HasSubstr(c.says)) << c.options;
  }
  EXPECT_EQ(sh("tarnex plot none.dxf -o old.svg").code, 3);
  EXPECT_EQ(read("old.svg"), "old");
  const Ran job = sh("tarnex 3b plate.dxf -o plate.3b --plot plate.gif");
  EXPECT_EQ(job.code, 2);
  EXPECT_FALSE(there("plate.3b"));
}

}  // namespace
}  // namespace tarnex
