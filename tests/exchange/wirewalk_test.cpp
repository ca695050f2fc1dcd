// The wire's way through a program, from blocks written by hand.
#include "exchange/wirewalk.h"

#include <gmock/gmock.h>

namespace tarnex {

namespace {

// A hole: in, a full circle of radius 2 in two halves, out; a move of 5 along x; a line that isn't
// understood.
constexpr char kProgram[] =
    "// a comment\n"
    "N   1: B   2000 B      0 B   2000 GX  L1 ;\n"
    "N   2: B   2000 B      0 B   4000 GY NR1 ;\n"  // from (2,0) to (-2,0) counts y up and down
    "N   3: B   2000 B      0 B   4000 GY NR3 ;\n"
    "N   4: B   2000 B      0 B   2000 GX  L3 ;\n"
    "N    : D\n"
    "N   5: B   5000 B      0 B   5000 GX  L1 ;\n"
    "N    : D\n"
    "N   6: M05\n"
    "N   7: B      0 B   1000 B   1000 GY  L2 ;\n"
    "N   8: B      0 B   1000 B   1000 GY  L4 ;\n"
    "N    : DD\n";

TEST(WireWalk, FollowsBlocksFromZero) {
  const WireWalk walk = walkProgram(kProgram);
  ASSERT_EQ(walk.moves.size(), 7u);
  const AcGePoint2d ends[] = {{2, 0}, {-2, 0}, {2, 0}, {0, 0}, {5, 0}, {5, 1}, {5, 0}};
  AcGePoint2d at{0, 0};
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_NEAR(walk.moves[i].stroke.start.distanceTo(at), 0, 1e-9) << i;
    at = ends[i];
    EXPECT_NEAR(walk.moves[i].stroke.end.distanceTo(at), 0, 1e-9) << i;
    EXPECT_EQ(walk.moves[i].link, i == 4) << i;
  }
  EXPECT_TRUE(walk.moves[1].stroke.arc);
  EXPECT_NEAR(walk.cutLength, 2 + 4 * kPi + 2 + 1 + 1, 1e-9);
  EXPECT_NEAR(walk.linkLength, 5, 1e-9);
  ASSERT_EQ(walk.skipped.size(), 1u);
  EXPECT_THAT(walk.skipped[0], ::testing::StartsWith("line 9: "));
}

TEST(WireWalk, NothingThatMoves) {
  EXPECT_TRUE(walkProgram("").moves.empty());
  EXPECT_TRUE(walkProgram("// words\nN : D\n").moves.empty());
}

}  // namespace

}  // namespace tarnex
