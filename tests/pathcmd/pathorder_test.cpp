// The list of paths followed by its changes is the one that reading the whole drawing gives, whatever came
// between; and following costs what has changed. The rule stands here as it is told: an exchange sort by
// number, then numbers and ends from the first path on.
#include <cstdlib>
#include <random>

#include "pathcmd/edittest.h"

namespace tarnex {

namespace {

struct Wanted {
  std::vector<AcDbObjectId> list;
  std::vector<int> numbers;
  std::vector<AcGePoint2d> before;
  AcGePoint2d lastEnd = kNoLastEnd;
};

class Following : public EditTest {
 protected:
  Wanted told(bool write) {
    Wanted w;
    std::vector<std::pair<int, AcDbObjectId>> found;
    for (AcDbObjectId id : session.all())
      if (const auto* p = pathOf(id)) found.emplace_back(p->nPathNo(), id);
    for (std::size_t i = 0; i < found.size(); ++i)
      for (std::size_t j = i + 1; j < found.size(); ++j)
        if (found[j].first < found[i].first) std::swap(found[i], found[j]);
    for (const auto& [number, id] : found) {
      const auto* layer = drawing().peek<AcDbLayerTableRecord>(pathOf(id)->layerId());
      const bool locked = layer && layer->isLocked();
      w.list.push_back(id);
      w.numbers.push_back(write && !locked ? static_cast<int>(w.list.size()) : number);
      w.before.push_back(w.lastEnd);
      w.lastEnd = pathOf(id)->getEndPoint(true);
    }
    return w;
  }

  void expectFollowed(bool write, int step) {
    const Wanted w = told(write);
    write ? rebuildPathList(*module) : followPaths(*module);
    ASSERT_EQ(state().PathList, w.list) << step;
    ASSERT_EQ(numbers(w.list), w.numbers) << step;
    for (std::size_t i = 0; i < w.list.size(); ++i) ASSERT_EQ(path(i)->getPrevEnd(), w.before[i]) << step;
    ASSERT_EQ(state().lastEnd, w.lastEnd) << step;
    ASSERT_EQ(state().nextPathNo, static_cast<int>(w.list.size()) + 1) << step;
  }

  // ---- random work

  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
  AcDbObjectId any() {
    std::vector<AcDbObjectId> paths;
    for (AcDbObjectId id : session.all())
      if (pathOf(id)) paths.push_back(id);
    return paths.empty() ? AcDbObjectId{}
                         : paths[static_cast<std::size_t>(number(static_cast<int>(paths.size())))];
  }
  template <class F>
  void change(F f) {
    if (auto p = drawing().open<CToolPath>(any(), OpenMode::kForWrite)) f(*p);
  }
  void act() {
    switch (number(11)) {
      case 0:
      case 1:
        squarePath({number(20) * 30.0, number(20) * 30.0});
        break;
      case 2:
        change([](CToolPath& p) { p.erase(); });
        break;
      case 3:
        change([&](CToolPath& p) { p.setPathNo(number(12)); });
        break;
      case 4:
        change([&](CToolPath& p) { p.transformBy(AcGeMatrix3d::translation({number(5) * 1.0, 3, 0})); });
        break;
      case 5:
        change([](CToolPath& p) { (void)p.flipSide(); });
        break;
      case 6:
        if (const auto* p = pathOf(any()))  // as the host copies: with its number
          session.add(std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(p->clone().release())));
        break;
      case 7:
        session.line({0, 0}, {1, 1});
        break;
      case 8:
        change([&](CToolPath& p) { p.setLayer(locked_); });
        break;
      case 9:
        if (auto layer = drawing().open<AcDbLayerTableRecord>(locked_, OpenMode::kForWrite))
          layer->setIsLocked(!layer->isLocked());
        break;
      default:
        renumberAll(drawing(), state());
        break;
    }
  }

  std::mt19937 random_{11};
  AcDbObjectId locked_;
};

TEST_F(Following, IsReadingTheWholeDrawingWhateverCameBetween) {
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName("LOCKED");
  locked_ = drawing().addLayer(std::move(layer));
  const int steps = std::getenv("TARNEX_LONG") ? 20000 : 600;
  for (int step = 0; step < steps; ++step) {
    const int kind = number(6);
    if (kind == 0) {
      drawing().undo();
    } else if (kind == 1) {
      drawing().redo();
    } else {
      drawing().startUndoMark("step");
      for (int i = number(3); i >= 0; --i) act();
      if (number(2)) {
        expectFollowed(true, step);
        if (HasFatalFailure()) return;
      }
      kind == 2 ? drawing().rollBack() : drawing().endUndoMark();
    }
    if (number(4) == 0) continue;
    expectFollowed(false, step);
    if (HasFatalFailure()) return;
    if (state().PathList.size() > 12)  // many paths hide what few show
      while (state().PathList.size() > 4) undoLastPath(drawing(), state());
  }
}

TEST_F(Following, AnotherDrawingInTheSamePlaceIsReadAfresh) {
  squarePath({0, 0});
  rebuildPathList(*module);
  session.ed.setDatabase(std::make_unique<AcDbDatabase>());
  session.line({0, 0}, {1, 1});
  const AcDbObjectId id = squarePath({50, 0});
  for (int i = 0; i < 20; ++i) session.line({0, 0}, {1, 1});  // changes enough to reach back to any stamp
  rebuildPathList(*module);
  EXPECT_EQ(state().PathList, std::vector<AcDbObjectId>{id});
  EXPECT_EQ(state().nextPathNo, 2);
  EXPECT_EQ(path()->getPrevEnd(), kNoLastEnd);
}

TEST_F(Following, UndoWritesNothingSoRedoIsThere) {
  const AcDbObjectId first = squarePath({0, 0}), second = squarePath({50, 0});
  session.run({"ERASE", session.handle(first), "", "LINE", "0,0", "5,5", "", "u"});
  EXPECT_EQ(pathOf(second)->nPathNo(), 2);
  EXPECT_EQ(state().PathList, std::vector<AcDbObjectId>{second});
  const auto count = session.all().size();
  EXPECT_TRUE(session.run({"redo"}).find("Nothing") == std::string::npos);
  EXPECT_EQ(session.all().size(), count + 1);
}

// What an edit costs is told by what it touches: neighbours at most, in a drawing of any size.
TEST_F(Following, AnEditTouchesThePathAndItsNeighbour) {
  std::vector<AcDbObjectId> ids;
  for (int i = 0; i < 300; ++i) ids.push_back(squarePath({i % 20 * 30.0, i / 20 * 30.0}));
  rebuildPathList(*module);
  const auto touched = [&](std::vector<std::string> lines) {
    const auto stamp = drawing().changeStamp();
    module->saveSettings();
    session.run(std::move(lines));
    std::vector<AcDbObjectId> changed;
    EXPECT_TRUE(drawing().changesSince(stamp, changed));
    return changed;
  };
  using ::testing::ElementsAre;
  const AcDbObjectId id = ids[150], next = ids[151];
  const std::string pick = session.handle(id);
  EXPECT_THAT(touched({"XD", pick, ""}), ElementsAre(id));
  EXPECT_THAT(touched({"CX", pick, ""}), ElementsAre(id));
  EXPECT_THAT(touched({"CD", pick, ""}), ElementsAre(id));
  EXPECT_THAT(touched({"CM", pick, ""}), ElementsAre(id, next));
  EXPECT_THAT(touched({"u"}), ElementsAre(id, next));
  EXPECT_THAT(touched({"redo"}), ElementsAre(id, next));
  EXPECT_THAT(touched({"CS", ""}), ElementsAre());
  // The last one leaves: its contour comes, and no number changes.
  const auto changed = touched({"QQ", session.handle(ids[299]), "", ""});
  EXPECT_THAT(changed, ElementsAre(ids[299], session.ed.acdbEntLast()));
  rebuildPathList(*module);
  EXPECT_EQ(state().PathList.size(), 299u);
}

}  // namespace

}  // namespace tarnex
