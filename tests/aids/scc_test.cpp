// The command `scc` with its dialog: what goes, what stays, what is told.
// Loads the dialog library of this build.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "aids/duplicates.h"
#include "modules/moduletest.h"

namespace tarnex {
namespace {

class Scc : public ModuleTest {
 protected:
  Scc() {
    EXPECT_TRUE(session.ed.acedSetVar("CMDDIA", 0LL));
    module->loadSettings();  // as at start-up
    auto& s = module->settings;
    s.bDupPoint = s.bDupCurve = s.bFoldCurves = 1;
    s.dDupTol = 0.5;
    module->saveSettings();
    session.add(std::make_unique<AcDbPoint>(AcGePoint3d{1, 1, 0}));
    session.line({0, 0}, {0.49, 0});
    limit = session.line({0, 5}, {0.5, 5});
    session.circle({9, 9}, 0.07);  // 0.44 round
    circle = session.circle({9, 9}, 0.08);
    polyline =
        session.add(std::make_unique<AcDbPolyline>(PolylineCurve{{{{0, 5}, 0}, {{0.5, 5}, 0}}, false}));
    doubled = session.line({0.5, 5}, {0, 5});
  }
  std::string run() {
    session.out.clear();
    session.answers({"all", ""});
    scc(*module);
    return session.out;
  }
  AcDbObjectId limit, circle, polyline, doubled;
};

TEST_F(Scc, ErasesWhatIsSmallFoldsWhatIsDoubledAndCounts) {
  const std::string out = run();
  EXPECT_EQ(session.all(), (std::vector{limit, circle, polyline}));
  EXPECT_THAT(out, testing::EndsWith("}" + module->message(274, {4LL})));
}

TEST_F(Scc, EachOptionOnItsOwn) {
  module->settings.bDupPoint = module->settings.bFoldCurves = 0;
  module->saveSettings();
  const std::string out = run();
  EXPECT_EQ(session.all().size(), 5u);  // the point, and the line drawn twice, stay
  EXPECT_THAT(out, testing::Not(testing::HasSubstr(module->message(274, {2LL}))));
  module->settings.bDupPoint = 1;
  module->settings.bDupCurve = 0;
  module->saveSettings();
  session.line({7, 7}, {7.1, 7});
  run();
  EXPECT_EQ(session.all().size(), 5u);  // the point is gone, the new short line stays
}

}  // namespace
}  // namespace tarnex
