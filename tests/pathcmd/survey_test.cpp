// What is told of wires before a machine finds out, on shapes drawn for it.
// The offset is 0.08 throughout.
#include "pathcmd/pathtest.h"
#include "pathcmd/wiresurvey.h"

namespace tarnex {

namespace {

class Wires : public PathTest {
 protected:
  void cut(const PolylineCurve& contour, AcGePoint2d thread, AcGePoint2d entry, int side) {
    auto made = std::make_unique<CToolPath>();
    const auto at = findSpanAt(contour, entry);
    ASSERT_TRUE(at);
    ASSERT_TRUE(
        made->initContour({thread, entry, side, polylineOrientation(contour), 0.08, 0}, contour, at->index));
    addPath(*module, std::move(made), {}, kColorByLayer, nullptr);
  }
  // "kind path other" of every warning.
  std::vector<std::string> told() {
    survey = surveyWires(drawing(), state().PathList);
    std::vector<std::string> list;
    for (const auto& w : survey.warnings)
      list.push_back(std::to_string(static_cast<int>(w.trouble)) + " " + std::to_string(w.path) + " " +
                     std::to_string(w.other));
    return list;
  }
  static std::string warning(WireTrouble t, int path, int other = 0) {
    return std::to_string(static_cast<int>(t)) + " " + std::to_string(path) + " " + std::to_string(other);
  }
  static PolylineCurve box(double x, double y, double width, double height) {
    return {{{{x, y}, 0}, {{x + width, y}, 0}, {{x + width, y + height}, 0}, {{x, y + height}, 0}}, true};
  }
  WireSurvey survey;
};

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Wires, ASoundSquareIsSilentAndMeasured) {
  cut(box(0, 0, 10, 10), {5, -3}, {5, 0}, kOuterShape);
  EXPECT_THAT(told(), IsEmpty());
  // Lead-in and return 2.92 mm each, four sides of 10.16 mm: outer corners are sharp.
  EXPECT_NEAR(survey.cutLength, 2 * 2.92 + 4 * 10.16, 1e-6);
}

TEST_F(Wires, ARadiusBelowTheOffset) {
  // A corner of 0.05 mm: too small for the wire inside, none of its business outside.
  PolylineCurve c = box(0, 0, 10, 10);
  c.vertices[1] = {{9.95, 0}, std::tan(kPi / 8)};
  c.vertices.insert(c.vertices.begin() + 2, {{10, 0.05}, 0});
  cut(c, {5, -3}, {5, 0}, kOuterShape);
  EXPECT_THAT(told(), IsEmpty());
  undoLastPath(drawing(), state());
  for (const bool turned : {false, true}) {
    if (turned) reversePolyline(c);
    cut(c, {5, 3}, {5, 0}, kInnerHole);
    ASSERT_THAT(told(), ElementsAre(warning(WireTrouble::kRadiusBelowOffset, 1)));
    EXPECT_NEAR(survey.warnings[0].value, 0.05, 1e-9);
    EXPECT_NEAR(survey.warnings[0].limit, 0.08, 1e-9);
    EXPECT_LT(survey.warnings[0].at.distanceTo({10, 0}), 0.06);
    undoLastPath(drawing(), state());
  }
}

TEST_F(Wires, WhatVanishesAndWhatFallsApart) {
  cut(box(0, 0, 5, 0.15), {2, 0.07}, {2, 0}, kInnerHole);
  EXPECT_THAT(told(), Contains(warning(WireTrouble::kVanished, 1)));
  undoLastPath(drawing(), state());
  // Two rooms of 4 by 4 and a neck of 0.15 between them.
  const PolylineCurve rooms{{{{0, 0}, 0},
                             {{4, 0}, 0},
                             {{4, 2}, 0},
                             {{6, 2}, 0},
                             {{6, 0}, 0},
                             {{10, 0}, 0},
                             {{10, 4}, 0},
                             {{6, 4}, 0},
                             {{6, 2.15}, 0},
                             {{4, 2.15}, 0},
                             {{4, 4}, 0},
                             {{0, 4}, 0}},
                            true};
  cut(rooms, {2, 1}, {2, 0}, kInnerHole);
  ASSERT_THAT(told(), Contains(warning(WireTrouble::kFallsApart, 1)));
  for (const auto& w : survey.warnings)
    if (w.trouble == WireTrouble::kFallsApart) {
      EXPECT_EQ(w.value, 2);
    }
}

TEST_F(Wires, ANeighbourWithinReach) {
  cut(box(0, 0, 10, 10), {5, -3}, {5, 0}, kOuterShape);
  cut(box(10.12, 2, 5, 5), {12, -3}, {12, 2}, kOuterShape);
  ASSERT_THAT(told(), ElementsAre(warning(WireTrouble::kCutsNeighbour, 1, 2),
                                  warning(WireTrouble::kCutsNeighbour, 2, 1)));
  EXPECT_NEAR(survey.warnings[0].value, 0.04, 1e-9);
  undoLastPath(drawing(), state());
  cut(box(10.17, 2, 5, 5), {12, -3}, {12, 2}, kOuterShape);
  EXPECT_THAT(told(), IsEmpty());
}

// The side that leans towards the first contour has 90 spans; its last vertex alone comes near.
TEST_F(Wires, ANeighbourOfManySpans) {
  cut(box(0, 0, 10, 10), {5, -3}, {5, 0}, kOuterShape);
  PolylineCurve leaning{{{{40, 0}, 0}, {{40, 9}, 0}}, true};
  for (int k = 90; k >= 0; --k) leaning.vertices.push_back({{10.12 + 0.2 * (90 - k), 0.1 * k}, 0});
  cut(leaning, {43, 5}, {40, 5}, kOuterShape);
  ASSERT_THAT(told(), ElementsAre(warning(WireTrouble::kCutsNeighbour, 1, 2),
                                  warning(WireTrouble::kCutsNeighbour, 2, 1)));
  EXPECT_NEAR(survey.warnings[0].value, 0.04, 1e-9);  // from x = 10.08 to the vertex at 10.12
}

TEST_F(Wires, KnownWirePathsFollowTheirPaths) {
  cut(box(0, 0, 10, 10), {5, -3}, {5, 0}, kOuterShape);
  const AcDbObjectId id = state().PathList[0];
  WirePaths known;
  const auto corner = [&] {
    known.follow(drawing());
    return known.of(*drawing().peek<CToolPath>(id)).vertices[2];
  };
  EXPECT_NEAR(corner().distanceTo({10.08, -0.08}), 0, 1e-9);
  drawing().open<CToolPath>(id, OpenMode::kForWrite)->setOffset(0.2);
  EXPECT_NEAR(corner().distanceTo({10.2, -0.2}), 0, 1e-9);
  // Round the square at 0.2 mm, lead-in and return 2.8 mm each: the survey takes what is known.
  EXPECT_NEAR(surveyWires(drawing(), {id}, known).cutLength, 2 * 2.8 + 4 * 10.4, 1e-6);
}

TEST_F(Wires, ALeadInThroughAContour) {
  cut(box(0, 0, 10, 10), {5, -6}, {5, 0}, kOuterShape);
  cut(box(4, -4, 2, 2), {2, -3}, {4, -3}, kOuterShape);
  ASSERT_THAT(told(), ElementsAre(warning(WireTrouble::kLeadInCrosses, 1, 2)));
  undoLastPath(drawing(), state());
  undoLastPath(drawing(), state());
  cut(box(0, 0, 10, 10), {5, 13}, {5, 0}, kOuterShape);
  EXPECT_THAT(told(), Contains(warning(WireTrouble::kLeadInCrosses, 1, 1)));
}

}  // namespace

}  // namespace tarnex
