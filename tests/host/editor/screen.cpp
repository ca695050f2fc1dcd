// Temporary vectors, waits, what is hidden for a while; and their recording.
#include "host/editor/screen.h"

#include <gmock/gmock.h>

#include "host/editor/screenrecorder.h"
#include "host/platform/system.h"
#include "session.h"

namespace tarnex {

namespace {

struct Screen : ::testing::Test, Session {
  Reply draw(AcGePoint3d from, AcGePoint3d to) { return ed.acedGrDraw(from, to, 3, false); }
  [[nodiscard]] std::size_t standing() const { return ed.temporaryVectors().size(); }
};

TEST_F(Screen, VectorsStandUntilTheScreenIsShownAnew) {
  line({0, 0}, {10, 10});
  for (const char* wipes : {"redraw", "regen", "zoom e", "vpoint 1,1,1", "new"}) {
    EXPECT_EQ(draw({0, 0, 0}, {1, 2, 3}), Reply::RTNORM);
    run({"line 0,0 1,1", ""});
    ASSERT_EQ(standing(), 1u);
    EXPECT_EQ(ed.temporaryVectors()[0], (TemporaryVector{{0, 0, 0}, {1, 2, 3}, 3, false}));
    run({wipes});
    EXPECT_EQ(standing(), 0u) << wipes;
  }
  for (const double v : {double(INFINITY), double(NAN)}) {
    EXPECT_EQ(draw({0, v, 0}, {1, 1, 0}), Reply::RTERROR);
    EXPECT_EQ(draw({0, 0, 0}, {1, 1, v}), Reply::RTERROR);
  }
  EXPECT_EQ(standing(), 0u);
}

TEST_F(Screen, WaitsLastWhereSomebodyLooks) {
  const auto seconds = [&](int ms) {
    const double from = steadySeconds();
    ed.Sleep(ms);
    return steadySeconds() - from;
  };
  EXPECT_GE(seconds(150), 0.15);
  EXPECT_LT(seconds(-1000), 0.5);
  ed.setPaced(false);
  EXPECT_LT(seconds(3'600'000), 0.5);
}

TEST_F(Screen, HiddenIsNoChangeOfTheDrawing) {
  const auto shown = line({0, 0}, {1, 1}), own = line({2, 2}, {3, 3});
  ed.database().open<AcDbEntity>(own, OpenMode::kForWrite)->setInvisible(true);
  ed.database().markSaved();
  const auto isShown = [&](AcDbObjectId id) { return ed.database().isShown(*entity<AcDbEntity>(id)); };
  for (const auto id : {shown, own}) EXPECT_TRUE(ed.setVisibility(id, false));
  EXPECT_FALSE(isShown(shown));
  EXPECT_FALSE(ed.acedSSGet("A"));
  for (const auto id : {shown, own}) EXPECT_TRUE(ed.setVisibility(id, true));
  EXPECT_TRUE(isShown(shown));
  EXPECT_FALSE(isShown(own)) << "invisible by its own property";
  EXPECT_FALSE(ed.database().modifiedSinceSave());
  run({"layer lock 0", ""});
  EXPECT_FALSE(ed.setVisibility(shown, false)) << "on a locked layer";
}

// A line of 5 in 40 ms, two chords of 2 and 6 in 40 ms, a link, and what no wait follows.
TEST_F(Screen, ARecordingHasTheTimesOfTheWaits) {
  ed.setPaced(false);
  const auto recorder = std::make_shared<ScreenRecorder>();
  ed.screenWatchers.push_back(recorder);
  draw({0, 0, 0}, {3, 4, 0});
  ed.Sleep(40);
  draw({3, 4 + 1e-9, 0}, {3, 6, 0});
  draw({3, 6, 0}, {9, 6, 0});
  ed.Sleep(40);
  ed.acedGrDraw({0, 0, 0}, {20, 0, 0}, 2, false);
  ed.Sleep(40);
  draw({20, 0, 0}, {21, 0, 0});
  ed.acedRedraw();
  const Animation a = recorder->animation();
  ASSERT_EQ(a.lines.size(), 3u);
  ASSERT_EQ(a.lines[0].steps.size(), 3u) << "what goes on is one line";
  const double seconds[] = {0.04, 0.01, 0.03};
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(a.lines[0].steps[i].seconds, seconds[i], 1e-9) << i;
  EXPECT_EQ(a.lines[0].color, 3);
  EXPECT_EQ(a.lines[1].color, 2);
  EXPECT_NEAR(a.lines[1].begin, 0.08, 1e-9);
  EXPECT_NEAR(a.lines[2].begin, 0.12, 1e-9);
  EXPECT_EQ(a.lines[2].steps[0].seconds, 0);
  EXPECT_NEAR(a.seconds(), 0.12, 1e-9);
}

}  // namespace

}  // namespace tarnex
