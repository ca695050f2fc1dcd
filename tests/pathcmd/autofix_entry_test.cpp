// Auto fix at the entry, and the command over windows.
// Vertices are worked out by hand; the working stands beside them.
#include "pathcmd/autofixtest.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class AutoFixEntry : public AutoFixTest {
 protected:
  static constexpr double kHalf = kQuarter;  // a half circle's two arcs are quarters
  CToolPath& circle(AcGePoint2d thread, int nDirection, int nSide) {
    auto made = std::make_unique<CToolPath>();
    EXPECT_TRUE(made->initCircle({thread, {10, 0}, nSide, nDirection, 0.08, 0}, {0, 0}, 10, 2));
    addPath(*module, std::move(made), {}, kColorByLayer, nullptr);
    closePath();
    return hold(state().PathList.back());
  }
  // Depth 0.2 and width 0.4 are half a circle of radius 0.2.
  void expectPocket(CToolPath& path, FixKind kind, const Walked& wanted) {
    EXPECT_TRUE(fixEntry(path, sizes(kind)));
    EXPECT_TRUE(sameWalk(&path, wanted));
    EXPECT_TRUE(path.hasFlag(kAutoFixed));
    closePath();
  }
};

TEST_F(AutoFixEntry, PocketsOnALine) {
  const Walked round{{{5, 4}, 0},  {{5, -0.2}, kHalf}, {{5.2, 0}, 0},     {{10, 0}, 0},  {{10, 10}, 0},
                     {{0, 10}, 0}, {{0, 0}, 0},        {{4.8, 0}, kHalf}, {{5, -0.2}, 0}};
  const Walked boxed{{{5, 4}, 0},   {{5, -0.2}, 0},   {{5.2, -0.2}, 0}, {{5.2, 0}, 0},
                     {{10, 0}, 0},  {{10, 10}, 0},    {{0, 10}, 0},     {{0, 0}, 0},
                     {{4.8, 0}, 0}, {{4.8, -0.2}, 0}, {{5, -0.2}, 0}};
  expectPocket(square(), FixKind::kRoundPocket, round);
  expectPocket(square(), FixKind::kSquarePocket, boxed);
  const auto image = [&]() -> CToolPath& { return enter(mirrored(kSquare), {-5, 4}, {-5, 0}, -1); };
  expectPocket(image(), FixKind::kRoundPocket, mirrored(round));
  expectPocket(image(), FixKind::kSquarePocket, mirrored(boxed));
  // Outer shape, entered from below: the pocket lies inside, and its arcs turn the other way.
  expectPocket(enter(kSquare, {5, -4}, {5, 0}), FixKind::kRoundPocket,
               {{{5, -4}, 0},
                {{5, 0.2}, -kHalf},
                {{5.2, 0}, 0},
                {{10, 0}, 0},
                {{10, 10}, 0},
                {{0, 10}, 0},
                {{0, 0}, 0},
                {{4.8, 0}, -kHalf},
                {{5, 0.2}, 0}});
}

// Width 0.6 and depth 0.1: radius 0.05 + 0.36/0.8 = 0.5, of which 0.3 is the sine of the angle to the tip.
TEST_F(AutoFixEntry, AShallowPocketIsAPartOfACircle) {
  AutoFixSettings record = sizes(FixKind::kRoundPocket);
  record.dEntryDepth = 0.1;
  record.dEntryWidth = 0.6;
  CToolPath& path = square();
  EXPECT_TRUE(fixEntry(path, record));
  EXPECT_NEAR(path.getBulgeAt(1), std::tan(std::asin(0.6) / 4), 1e-12);
  EXPECT_NEAR(path.getPointAt(1).distanceTo({5, -0.1}), 0, 1e-12);
  EXPECT_NEAR(path.getPointAt(2).distanceTo({5.3, 0}), 0, 1e-12);
}

// On a circle of radius 10 the pocket's ends lie where the half width 0.2 is the sine; their chord is √(100 -
// 0.04) from the centre, the tip 0.2 beyond or, for a wire from outside, before it.
TEST_F(AutoFixEntry, PocketsOnAnArc) {
  const double g = std::asin(0.02), chord = std::sqrt(100 - 0.04), rest = std::tan((kPi - g) / 4);
  const AcGePoint2d up{10 * std::cos(g), 0.2}, down{10 * std::cos(g), -0.2};
  const Walked round{{{0, 0}, 0},   {{chord + 0.2, 0}, kHalf}, {up, rest}, {{-10, 0}, rest},
                     {down, kHalf}, {{chord + 0.2, 0}, 0}};
  const Walked boxed{
      {{0, 0}, 0}, {{chord + 0.2, 0}, 0},    {{chord + 0.2, 0.2}, 0}, {up, rest}, {{-10, 0}, rest},
      {down, 0},   {{chord + 0.2, -0.2}, 0}, {{chord + 0.2, 0}, 0}};
  expectPocket(circle({0, 0}, 1, kInnerHole), FixKind::kRoundPocket, round);
  expectPocket(circle({0, 0}, 1, kInnerHole), FixKind::kSquarePocket, boxed);
  const auto upsideDown = [](Walked walk) {
    for (auto& v : walk) v = {{v.point.x, 0 - v.point.y}, 0 - v.bulge};
    return walk;
  };
  expectPocket(circle({0, 0}, -1, kInnerHole), FixKind::kRoundPocket, upsideDown(round));
  expectPocket(circle({0, 0}, -1, kInnerHole), FixKind::kSquarePocket, upsideDown(boxed));
  const Walked outer{{{14, 0}, 0},   {{chord - 0.2, 0}, -kHalf}, {up, rest}, {{-10, 0}, rest},
                     {down, -kHalf}, {{chord - 0.2, 0}, 0}};
  expectPocket(circle({14, 0}, 1, kOuterShape), FixKind::kRoundPocket, outer);
  expectPocket(circle({14, 0}, -1, kOuterShape), FixKind::kRoundPocket, upsideDown(outer));
}

TEST_F(AutoFixEntry, WhatHasNoRoomStays) {
  const auto fits = [&](double depth, double width) {
    AutoFixSettings record = sizes(FixKind::kRoundPocket);
    record.dEntryDepth = depth;
    record.dEntryWidth = width;
    return isPocket(record);
  };
  EXPECT_TRUE(fits(0.2, 0.4));
  EXPECT_TRUE(fits(0.3, 0.6));
  EXPECT_TRUE(fits(0.7, 1.4));
  EXPECT_FALSE(fits(0.3, 0.4));
  EXPECT_FALSE(fits(0.2001, 0.4));
  AutoFixSettings record = sizes(FixKind::kRoundPocket);
  record.dEntryWidth = 10;  // half of it is all of the way to the corner
  CToolPath& path = square();
  const PolylineCurve old = path.polyline();
  EXPECT_FALSE(fixEntry(path, record));
  EXPECT_EQ(path.polyline(), old);
  EXPECT_FALSE(path.hasFlag(kAutoFixed));
  record.dEntryWidth = 9.99;
  EXPECT_TRUE(fixEntry(path, record));
  closePath();
  CToolPath& round = circle({0, 0}, 1, kInnerHole);
  record.dEntryWidth = 0.0199;  // 0.000995 rad of the circle
  record.dEntryDepth = 0.001;
  EXPECT_FALSE(fixEntry(round, record));
  record.dEntryWidth = 20;  // the circle's diameter
  EXPECT_FALSE(fixEntry(round, record));
  record.dEntryWidth = 0.0201;
  EXPECT_TRUE(fixEntry(round, record));
}

TEST_F(AutoFixEntry, TapersStayWithTheContour) {
  CToolPath& path = square();
  path.setSegmentTaperAt(1, 1);
  path.setSegmentTaperAt(5, 2);
  path.setCodeAt(6, "end");
  EXPECT_TRUE(fixEntry(path, sizes(FixKind::kSquarePocket)));
  EXPECT_EQ(path.aSegTaper(), (std::vector<double>{0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0}));
  EXPECT_EQ(path.getCodeAt(10), "end");
}

// ---- the command

class AutoFixCommand : public AutoFixTest {
 protected:
  std::string fix(int kind, std::vector<std::string> answers) {
    closePath();
    session.ed.preset("nKind", std::to_string(kind));
    return run(&AF, std::move(answers));
  }
  [[nodiscard]] std::size_t vertices(std::size_t i) { return path(i)->polyline().vertices.size(); }
};

TEST_F(AutoFixCommand, WalksTheWindowsUntilOneIsEmpty) {
  square();
  enter({{{20, 0}, 0}, {{30, 0}, 0}, {{30, 10}, 0}, {{20, 10}, 0}}, {25, 4}, {25, 0});
  EXPECT_THAT(fix(2, {"9,-1", "11,11", "31,11", "29,9", ""}), HasSubstr(module->message(261)));
  EXPECT_EQ(vertices(0), 9u);  // both right corners, told in either order of the window's corners
  EXPECT_EQ(vertices(1), 8u);
  EXPECT_THAT(fix(2, {"9,-1", "11,11", "50,50", "51,51", "9,9", "11,11"}), Not(HasSubstr("9,9 is")));
  EXPECT_EQ(vertices(0), 9u) << "roundings are smooth";
  EXPECT_THAT(fix(4, {"^C"}), HasSubstr(module->message(302)));
  EXPECT_THAT(fix(2, {"9,-1", "11,11", ""}), HasSubstr("\n2:qie\n3:qie\n4:qie\n5:qie"));
}

TEST_F(AutoFixCommand, WindowsAreInTheUsersCoordinates) {
  square();
  drawing().ucsorg = {100, 50, 0};
  fix(2, {"-91,-51", "-89,-49", ""});
  EXPECT_EQ(vertices(0), 8u);
  EXPECT_NEAR(path()->getPointAt(2).distanceTo({9.6, 0}), 0, 1e-9);
}

TEST_F(AutoFixCommand, PassesOverWhatIsNoPath) {
  square();
  const AcDbObjectId line = session.line({8, -1}, {12, 3});
  const std::string out = fix(7, {"9,-1", "11,11", ""});
  EXPECT_THAT(out, HasSubstr("\n" + module->message(157)));
  EXPECT_EQ(vertices(0), 11u);
  EXPECT_THAT(fix(7, {"-99,-99", session.handle(line), ""}), HasSubstr(module->message(157)));
}

TEST_F(AutoFixCommand, SpikesAreLabelled) {
  settings().dTextHeight = 2;
  square();
  fix(6, {"9,-1", "11,1", ""});
  const auto* text = session.last<AcDbText>();
  ASSERT_TRUE(text);
  EXPECT_EQ(text->textString(), "45 deg  0.2 mm");
  EXPECT_NEAR(text->position().distanceTo({10 + std::sqrt(0.02), std::sqrt(0.02), 0}), 0, 1e-9);
  EXPECT_EQ(text->height(), 2);
  EXPECT_EQ(text->colorIndex(), 3);
  const std::size_t count = session.all().size();
  EXPECT_THAT(fix(6, {"9,-1", "11,1", ""}), Not(HasSubstr("meets itself")));
  EXPECT_EQ(session.all().size(), count);
}

TEST_F(AutoFixCommand, PocketsTakePathsWholeAndOnce) {
  square();
  const auto source = path()->contour();
  session.ed.preset("dEntryDepth", "0.3");
  EXPECT_THAT(fix(4, {"9,9", "11,11", ""}), HasSubstr("\nFailed!"));
  EXPECT_EQ(vertices(0), 7u);
  session.ed.preset("dEntryDepth", "0.2");
  EXPECT_THAT(fix(4, {"9,9", "11,11", ""}), Not(HasSubstr("Failed")));
  EXPECT_EQ(vertices(0), 9u);
  EXPECT_EQ(path()->contour(), source);
  EXPECT_THAT(fix(5, {"9,9", "11,11", ""}), HasSubstr(module->message(20223, {1LL})));
  EXPECT_EQ(vertices(0), 9u);
}

// An ear of 5 mm at the inner corner runs through the lower side at (6, 0) and out at the right one, at (10,
// 4). Every ear passes its own corner twice.
TEST_F(AutoFixCommand, TellsWhereAPathMeetsItself) {
  enter(kL, {5, 2}, {5, 0});
  session.ed.preset("dEarLen", "5");
  std::string out = fix(7, {"5,3", "7,5", ""});
  EXPECT_THAT(out, HasSubstr("Path 1 now meets itself at 6,0;"));
  EXPECT_THAT(out, HasSubstr("Path 1 now meets itself at 10,4;"));
  EXPECT_GT(out.find("at 6,4;"), out.find("at 10,4;")) << "what was to be expected comes last";
  session.ed.preset("dEarLen", "0.2");
  out = fix(7, {"9,9", "11,11", ""});
  EXPECT_THAT(out, HasSubstr("Path 1 now meets itself at 10,10;"));
  EXPECT_THAT(out, Not(HasSubstr("at 6,"))) << "what met before is no news";
}

TEST_F(AutoFixCommand, ASpikeThroughAnotherSideIsTold) {
  enter(kL, {5, 2}, {5, 0});
  session.ed.preset("dSpikeLen", "6");
  session.ed.preset("dSpikeAngle", "-90");
  EXPECT_THAT(fix(6, {"5,3", "7,5", ""}), HasSubstr("Path 1 now meets itself at 6,0;"));
}

TEST_F(AutoFixCommand, ACutOffFileIsToldOnceAndMended) {
  square();
  write("AutoFix.set",
        std::string("\x67\0\0\0\2\0\0\0", 8) + std::string(8, '\0'));  // dRound1 0, then nothing
  const std::string out = run(&AF, {"9,-1", "11,11", ""});
  EXPECT_THAT(out, HasSubstr("AutoFix.set: holds 16 of 112 bytes; the missing values keep their defaults"));
  EXPECT_EQ(read("AutoFix.set").size(), 112u);
  closePath();
  EXPECT_THAT(run(&AF, {"^C"}), Not(HasSubstr("112 bytes")));
}

}  // namespace

}  // namespace tarnex
