// Transit points: where they are stored, what the prompts show, and which paths learn of them.
// Points are the drawing's variables STARTPOINTk and ENDPOINTk.
#include "frame/drawingvars.h"
#include "pathcmd/edittest.h"

namespace tarnex {

namespace {

using ::testing::ElementsAre;

class Transit : public EditTest {
 protected:
  std::vector<AcGePoint3d> points(const std::string& name) {
    std::vector<AcGePoint3d> list;
    while (const auto p = DrawingVars(drawing()).getPoint(name + std::to_string(list.size())))
      list.push_back(*p);
    return list;
  }
  std::vector<AcDbObjectId> touchedBy(const std::vector<std::string>& lines) {
    const auto stamp = drawing().changeStamp();
    session.run(lines);
    std::vector<AcDbObjectId> changed;
    EXPECT_TRUE(drawing().changesSince(stamp, changed));
    return changed;
  }
};

TEST_F(Transit, PointsAreStoredInOrderAndShown) {
  std::string out = type({"QD", "10,20", "@5,-1", ""});
  EXPECT_THAT(points("STARTPOINT"), ElementsAre(AcGePoint3d{10, 20, 0}, AcGePoint3d{15, 19, 0}));
  const std::string text = module->message(179);
  EXPECT_TRUE(says(out, "\n" + text + "1(0,0): "));
  EXPECT_TRUE(says(out, "\n" + text + "2(10,20): "));
  EXPECT_TRUE(says(out, "\n" + text + "3(15,19): "));
  EXPECT_TRUE(says(out, "(15,19)"));
  EXPECT_TRUE(state().PathList.empty());
  // They go on where they stood, from the last one; those behind are others.
  out = type({"QD", "@1,1", "^C"});
  EXPECT_TRUE(says(out, "\n" + text + "3(15,19): "));
  EXPECT_EQ(points("STARTPOINT").size(), 3u);
  out = type({"ZD", "-4,0.25", ""});
  EXPECT_TRUE(says(out, "\n" + module->message(180) + "1(0,0): "));
  EXPECT_TRUE(says(out, "(-4,0.25)"));
  EXPECT_THAT(points("ENDPOINT"), ElementsAre(AcGePoint3d{-4, 0.25, 0}));
}

TEST_F(Transit, TypedPointsCountFromTheUsersOriginPointsOfTheWorldDoNot) {
  session.run({"UCS", "O", "5,6"});
  std::string out = type({"QD", "10,20", "*30,40", ""});
  EXPECT_THAT(points("STARTPOINT"), ElementsAre(AcGePoint3d{15, 26, 0}, AcGePoint3d{30, 40, 0}));
  EXPECT_TRUE(says(out, "2(10,20): "));
  EXPECT_TRUE(says(out, "3(25,34): "));
  EXPECT_EQ(drawing().ucsorg, (AcGePoint3d{5, 6, 0}));
}

TEST_F(Transit, TheFirstPathStartsFromThePointAndTheLinksStay) {
  const AcDbObjectId a = squarePath({0, 0}), b = squarePath({50, 0}), c = squarePath({100, 0});
  EXPECT_THAT(touchedBy({"QD", "-5,-5", ""}), ElementsAre(a));
  EXPECT_EQ(pathOf(a)->getPrevEnd(), (AcGePoint2d{-5, -5}));
  EXPECT_THAT(touchedBy({"ZD", "200,0", ""}), ElementsAre(c)) << "it draws the chain";
  EXPECT_EQ(pathOf(c)->getPrevEnd(), (AcGePoint2d{60, 10})) << "not its own end";
  EXPECT_EQ(pathOf(b)->getPrevEnd(), (AcGePoint2d{10, 10}));
  EXPECT_EQ(state().lastEnd, (AcGePoint2d{110, 10}));
  EXPECT_THAT(numbers(state().PathList), ElementsAre(1, 2, 3));
  EXPECT_THAT(touchedBy({"QZ"}), ElementsAre(a, c));
  EXPECT_EQ(pathOf(a)->getPrevEnd(), kNoLastEnd);
  EXPECT_EQ(state().lastEnd, (AcGePoint2d{110, 10}));
}

TEST_F(Transit, QzTakesEachChainUpToItsFirstGap) {
  DrawingVars vars(drawing());
  for (int k : {0, 1, 2, 4}) vars.setPoint("STARTPOINT" + std::to_string(k), {1.0 * k, 0, 0});
  vars.setPoint("ENDPOINT0", {7, 7, 0});
  type({"QZ"});
  EXPECT_TRUE(points("STARTPOINT").empty());
  EXPECT_TRUE(points("ENDPOINT").empty());
  EXPECT_TRUE(vars.exists("STARTPOINT4"));
  vars.remove("STARTPOINT4");
  type({"QZ"});
}

TEST_F(Transit, NoMoreStartPointsThanAreDrawn) {
  DrawingVars vars(drawing());
  for (int k = 0; k < 100; ++k) vars.setPoint("STARTPOINT" + std::to_string(k), {1.0 * k, 0, 0});
  const std::string out = session.run({"QD", "7,7"});
  EXPECT_TRUE(says(out, module->message(20212, {101LL})));
  EXPECT_EQ(points("STARTPOINT").size(), 101u);
}

}  // namespace

}  // namespace tarnex
