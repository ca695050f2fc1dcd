// The truth test of ISO programs on sound programs: of the writers for all shipped posts, and written by
// hand. Knows jobs and programs as text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "frame/drawingvars.h"
#include "isojobs.h"

namespace tarnex::truth::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SoundIso : public IsoJobs {
 protected:
  // One figure of each kind, in several passes.
  void allKinds() {
    hole(rectangle({0, 0}, 20, 20), {1, 0.5, 5}, style(0, 3));
    outer(rectangle({60, 0}, 20, 20), {1, 0.5, 5}, style(1, 3));
    circle({100, 0}, 6, job.styles[0], -1);
    edit(outer(rectangle({140, 0}, 20, 20), {0, 0.5, 5}, job.styles[1]),
         [](CToolPath& p) { p.setFlag(kPunchJob, true); });
    open({{{{180, 0}, 0}, {{190, 0}, 0.5}, {{195, 5}, 0}, {{195, 15}, 0}}, false}, {177, 0}, 1, style(2, 4));
    edit(hole(rectangle({220, 0}, 20, 20), {1, 0.5, 5}, job.styles[0]), [](CToolPath& p) {
      p.setGuide({{{{225, 0}, 0}, {{225, 5}, 0.4}, {{215, 5}, 0}, {{215, -5}, 0}, {{225, 0}, 0}}, false});
    });
  }
  void edit(AcDbObjectId id, const std::function<void(CToolPath&)>& change) {
    change(*drawing().open<CToolPath>(id, OpenMode::kForWrite));
  }
  // A square hole of 20 about (0,0), entered at (10,0) from (6,0), in one pass without overcut.
  void squareHole() {
    module->settings.dOvercutLen = 0;
    hole(rectangle({0, 0}, 20, 20), {1, 0.5, 4}, style(0, 1));
  }
  static std::string around(const std::string& contour) {
    return "H100=0.200\nG92X6.Y0.\nM60\nC01\nG01X9.5Y0.\nG41H100G01X10.Y0.\n" + contour +
           "G40G01X9.Y0.\nM50\nM02\n";
  }
};

TEST_F(SoundIso, ProgramsOfTheShippedPostsHold) {
  for (const char* name : kShippedPosts)
    for (const int cut : {CutType::kByFigure, CutType::kByPass}) {
      SCOPED_TRACE(std::string(name) + (cut ? " by pass" : " by figure"));
      post = shippedPost(name);
      job.nCutType = cut;
      clear();
      allKinds();
      module->settings.dOvercutLen = post.word[0] == "G90" ? 0.3 : 0;
      const std::string text = program();
      const IsoReport r = check(text);
      ASSERT_TRUE(r.ok) << told(r) << text;
      std::vector<int> passes;
      for (const auto& f : r.figures) passes.push_back(f.passes);
      // An outer shape has its tab's pass, a punch's tab two more.
      EXPECT_THAT(passes, ElementsAre(3, 4, 3, 6, 4, 3));
      // Three times 80 mm and 0.3 mm of overcut each.
      EXPECT_NEAR(r.figures[0].cut, 240 + 3 * module->settings.dOvercutLen, 1e-6);
    }
}

TEST_F(SoundIso, TheOriginIsThatOfTheDrawing) {
  squareHole();
  drawing().ucsorg = {-3, 2, 0};
  const std::string text = program();
  EXPECT_THAT(text, HasSubstr("G92X9.Y-2."));
  EXPECT_TRUE(check(text).ok);
  drawing().ucsorg = {0, 0, 0};
  EXPECT_FALSE(check(text).ok);
}

TEST_F(SoundIso, CornersMayHaveTheirRelief) {
  squareHole();
  // An arc of 0.2 mm through (10,10): its centre (9.858579, 9.858579), it leaves the sides at 9.717157.
  const std::string program = around(
      "G01X10.Y9.717\nG03X10.Y10.I-0.141J0.142\nG03X9.717Y10.I-0.141J-0.141\n"
      "G01X-10.Y10.\nG01X-10.Y-10.\nG01X10.Y-10.\nG01X10.Y0.\n");
  EXPECT_FALSE(check(program).ok) << "none is asked for";
  module->settings.dIsoFixB = 0.2;
  const IsoReport r = check(program);
  EXPECT_TRUE(r.ok) << told(r);
  EXPECT_EQ(r.figures.at(0).relieved, 1);
  // Into the waste instead: about (10.141421, 9.858579), on the other side of the side.
  EXPECT_FALSE(
      check(around("G01X10.Y9.717\nG02X10.Y10.I0.141J0.142\nG01X-10.Y10.\nG01X-10.Y-10.\nG01X10.Y-10.\n"
                   "G01X10.Y0.\n"))
          .ok);
}

TEST_F(SoundIso, ACornerWithARadiusIsRounded) {
  module->settings.dOvercutLen = 0;
  hole({{0, 0},
        {{{{-10, -10}, 0}, {{10, -10}, 0}, {{10, 5}, 0.41421356237309503}, {{5, 10}, 0}, {{-10, 10}, 0}},
         true}},
       {1, 2.0 / 3, 4, true}, style(0, 1));
  const std::string rest = "G01X-10.Y10.\nG01X-10.Y-10.\nG01X10.Y-10.\nG01X10.Y0.\n";
  EXPECT_TRUE(check(around("G01X10.Y10.R5.R5.\n" + rest)).ok)
      << told(check(around("G01X10.Y10.R5.R5.\n" + rest)));
  EXPECT_FALSE(check(around("G01X10.Y10.R4.R4.\n" + rest)).ok);
  EXPECT_FALSE(check(around("G01X10.Y10.\n" + rest)).ok);
}

TEST_F(SoundIso, FiguresThatCannotBeJudgedAreNamed) {
  squareHole();
  const std::string text = program();
  edit(hole(rectangle({60, 0}, 20, 20), {1, 0.5, 4}, job.styles[0]),
       [](CToolPath& p) { p.setFlag(kFourAxis, true); });
  IsoReport r = check(text);
  EXPECT_TRUE(r.ok);
  EXPECT_THAT(told(r), HasSubstr("note: figure 2: four axes; it is left out of this test"));
  edit(outer(rectangle({120, 0}, 20, 20), {1, 0.5, 4}, job.styles[0]),
       [](CToolPath& p) { p.setBreakPoint({}); });
  r = check(text);
  EXPECT_THAT(told(r), HasSubstr("fault: figure 3: it is an outer shape without a break"));
  // A path that is left out by its style is none of the program.
  ProcessStyle base = job.styles[0];
  base.passes[0].sCode = "00";
  hole(rectangle({180, 0}, 20, 20), {1, 0.5, 4}, base);
  EXPECT_EQ(check(text).figures.size(), 3u);
}

TEST_F(SoundIso, AFigureThatIsLeftOutIsAFault) {
  squareHole();
  const std::string text = program();
  hole(rectangle({60, 0}, 20, 20), {1, 0.5, 4}, job.styles[0]);
  const IsoReport r = check(text);
  EXPECT_EQ(r.faults, 1u);
  EXPECT_THAT(told(r), HasSubstr("fault: figure 2: isn't cut; it is threaded at (66.0000, 0.0000)"));
}

TEST_F(SoundIso, ALeadThroughAnotherFigureIsAFault) {
  outer(rectangle({0, 0}, 20, 20), {1, 0.5, 30}, style(0, 1));  // from (40,0) to (10,0)
  ASSERT_TRUE(checkProgram().ok);
  hole(rectangle({25, 0}, 10, 10), {1, 0.5, 4}, style(1, 1));
  EXPECT_THAT(
      told(checkProgram()),
      HasSubstr(
          "figure 1: the way to or from the contour crosses the contour of figure 2 at (30.0000, 0.0000)"));
}

TEST_F(SoundIso, TheOrderIsJudgedWhereTheJobCutsByNumber) {
  module->settings.dOvercutLen = 0;
  const auto first = hole(rectangle({0, 0}, 20, 20), {1, 0.5, 4}, style(0, 1));
  hole(rectangle({60, 0}, 20, 20), {1, 0.5, 4}, job.styles[0]);
  const std::string text = program();
  edit(first, [](CToolPath& p) { p.setPathNo(3); });
  EXPECT_TRUE(check(text).ok);
  DrawingVars(drawing()).setInt("ISO_SORTMODE", SortMode::kByNumber);
  EXPECT_THAT(told(check(text)), HasSubstr("figure 2: comes behind figure 3; the job cuts by number"));
}

TEST_F(SoundIso, AProgramWithoutWireWordsIsThreadedAllAlong) {
  squareHole();
  std::string text = program();
  for (const char* word : {"M60\n", "M50\n"}) text.erase(text.find(word), 4);
  EXPECT_THAT(told(check(text)),
              HasSubstr("note: no word of the program threads the wire (M60) or cuts it (M50)"));
  EXPECT_TRUE(check(text).ok);
  hole(rectangle({60, 0}, 20, 20), {1, 0.5, 4}, job.styles[0]);
  text = program();
  for (const char* word : {"M60\n", "M60\n", "M50\n", "M50\n"}) text.erase(text.find(word), 4);
  const IsoReport r = check(text);
  EXPECT_EQ(r.faults, 1u) << told(r);
  EXPECT_THAT(
      told(r),
      HasSubstr("a rapid move with the wire in crosses the contour of figure 1 at (10.0000, 0.0000)"));
}

TEST(IsoReader, ReadsNumbersOfEachStyle) {
  MachinePost post;
  post.param[10] = "3";
  const auto mm = [&](int family, const char* text) { return isoNumber(IsoDialect(post, family), text); };
  EXPECT_DOUBLE_EQ(mm(2, "-12.5").mm, -12.5);
  EXPECT_DOUBLE_EQ(mm(2, "0.").mm, 0);
  for (const char* text : {"12", "", "-", "1.2.3", "+000100"}) EXPECT_FALSE(mm(2, text).ok) << text;
  EXPECT_DOUBLE_EQ(mm(5, "-012500").mm, -12.5);
  for (const char* text : {"012500", "+12500", "+12.5"}) EXPECT_FALSE(mm(5, text).ok) << text;
  post.param[4] = "1";
  EXPECT_DOUBLE_EQ(mm(2, "-250").mm, -0.25);
  EXPECT_FALSE(mm(2, "0.25").ok);
}

TEST(IsoReader, KnowsCommentsDefinitionsAndLineEnds) {
  MachinePost post;
  post.paramOn[8] = post.paramOn[3] = 1;
  post.lineFormat = "N%d ";
  post.param[3] = ";";
  const IsoText text =
      readIso("%;\r\nN1 (a=b (c) G01);\nN2 C01=ON 5;\n/N3 g01X1.(x)Y2.;\nN4 ;\n", IsoDialect(post, 2));
  EXPECT_EQ(text.lines, 5);
  ASSERT_EQ(text.blocks.size(), 1u);
  EXPECT_EQ(text.blocks[0].line, 4);
  std::vector<std::string> keys;
  for (const auto& w : text.blocks[0].words) keys.push_back(w.key);
  EXPECT_THAT(keys, ElementsAre("G1", "X1", "Y2"));
  ASSERT_EQ(text.definitions.size(), 1u);
  EXPECT_EQ(text.definitions[0].key, "C01");
  ASSERT_EQ(text.complaints.size(), 1u) << "the first line has no number";
  EXPECT_EQ(text.complaints[0].line, 1);
}

TEST(IsoReader, ReadsAnythingToItsEnd) {
  MachinePost post;
  post.param[10] = "3";
  post.word[0] = "G90";
  std::mt19937 rng(20541);
  const std::string letters = "GXYIJMNRHC0123456789.+-()=%/\n \xC3$?";
  for (int k = 0; k < 300; ++k) {
    std::string program;
    for (int i = 0; i < 200; ++i)
      program += letters[std::uniform_int_distribution<std::size_t>(0, letters.size() - 1)(rng)];
    post.nFamily = k % 6;
    IsoFigure f;
    f.number = 1;
    f.threading = {0, 0};
    f.spans = {arcStroke({0, 0}, {5, 0}, 3.141592653589793), arcStroke({0, 0}, {-5, 0}, 3.141592653589793)};
    f.tapers = {0, 0};
    const IsoReport r = checkIso(program, IsoDialect(post, post.nFamily), {f}, {});
    EXPECT_FALSE(r.ok);
    EXPECT_FALSE(describe(r).empty());
  }
}

}  // namespace
}  // namespace tarnex::truth::test
