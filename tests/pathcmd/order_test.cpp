// The list of paths: numbers, and the orders that a program can want.
// The scans that define an order stand here as they are told, word by word.
#include <random>
#include <set>
#include <tuple>

#include "frame/drawingvars.h"
#include "machining/joblayout.h"
#include "pathcmd/pathtest.h"

namespace tarnex {

namespace {

struct Measured {
  AcDbObjectId id;
  AcGePoint2d start;
  double length;
};

class PathOrder : public PathTest {
 protected:
  std::vector<Measured> measured(const std::vector<AcDbObjectId>& ids) {
    std::vector<Measured> list;
    for (AcDbObjectId id : ids) {
      const auto* p = drawing().peek<CToolPath>(id);
      list.push_back({id, p->getPointAt(0), p->contourLength()});
    }
    return list;
  }
  static std::vector<AcDbObjectId> idsOf(const std::vector<Measured>& list) {
    std::vector<AcDbObjectId> ids;
    for (const auto& m : list) ids.push_back(m.id);
    return ids;
  }
  // Circles on a coarse grid, of few radii: equal distances and lengths are met all the time.
  void scatter(std::mt19937& random, int count) {
    std::uniform_int_distribution<int> place(0, 6), size(1, 4);
    for (int i = 0; i < count; ++i)
      circlePath({place(random) * 10.0, place(random) * 10.0}, size(random) + (i % 3 == 0 ? 0.0001 : 0));
  }
  void clear() {
    for (AcDbObjectId id : session.all()) drawing().open<AcDbEntity>(id, OpenMode::kForWrite)->erase();
    rebuildPathList(*module);
  }
  void expectNumbered() {
    AcGePoint2d end = kNoLastEnd;
    for (std::size_t i = 0; i < state().PathList.size(); ++i) {
      ASSERT_EQ(path(i)->nPathNo(), static_cast<int>(i) + 1);
      ASSERT_EQ(path(i)->getPrevEnd(), end);
      end = path(i)->getEndPoint(true);
    }
    EXPECT_EQ(state().lastEnd, end);
    EXPECT_EQ(state().nextPathNo, static_cast<int>(state().PathList.size()) + 1);
  }
};

std::vector<Measured> nearestScan(std::vector<Measured> v, int first, int last) {
  for (int i = first; i <= last - 1; ++i) {
    const AcGePoint2d p = v[i].start;
    double best = 99999.0;
    for (int j = i + 1; j <= last; ++j)
      if (p.distanceTo(v[j].start) < best) {
        best = p.distanceTo(v[j].start);
        std::swap(v[i + 1], v[j]);
      }
  }
  return v;
}

std::vector<Measured> lengthScan(std::vector<Measured> v) {
  const int n = static_cast<int>(v.size());
  for (int i = 0; i < n; ++i)
    for (int j = i + 1; j < n; ++j)
      if (v[j].length < v[i].length) std::swap(v[i], v[j]);
  for (int i = 0; i <= n - 2; ++i) {
    const AcGePoint2d p = v[i].start;
    double length = v[i].length;
    if (std::abs(v[i + 1].length - length) > 0.001) {
      length = v[i + 1].length;
      double best = p.distanceTo(v[i + 1].start);
      for (int j = i + 2; j < n; ++j)
        if (std::abs(v[j].length - length) <= 0.001 && p.distanceTo(v[j].start) < best) {
          best = p.distanceTo(v[j].start);
          std::swap(v[i + 1], v[j]);
        }
    }
    double best = 99999.0;
    for (int j = i + 1; j < n; ++j)
      if (std::abs(v[j].length - length) <= 0.001 && p.distanceTo(v[j].start) < best) {
        best = p.distanceTo(v[j].start);
        std::swap(v[i + 1], v[j]);
      }
  }
  return v;
}

TEST_F(PathOrder, NearestAndLengthAreWhatTheScansGive) {
  std::mt19937 random(20);
  for (int round = 0; round < 25; ++round) {
    scatter(random, 3 + round * 2);
    const int last = static_cast<int>(state().PathList.size()) - 1, first = round % 3;
    const auto nearest = idsOf(nearestScan(measured(state().PathList), first, last));
    sortNearest(drawing(), state(), first, last);
    ASSERT_EQ(state().PathList, nearest) << round;
    expectNumbered();
    const auto byLength = idsOf(lengthScan(measured(state().PathList)));
    sortByLength(drawing(), state());
    ASSERT_EQ(state().PathList, byLength) << round;
    expectNumbered();
    clear();
  }
}

TEST_F(PathOrder, NearestStopsAtItsLastPath) {
  circlePath({0, 0}, 1);
  circlePath({50, 0}, 1);
  circlePath({20, 0}, 1);
  const AcDbObjectId outside = circlePath({1, 0}, 1);
  sortNearest(drawing(), state(), 0, 2);
  EXPECT_EQ(state().PathList[3], outside);
  EXPECT_EQ(path(1)->getPointAt(0).x, 20);
  sortNearest(drawing(), state(), -5, 99);  // held inside the list
  EXPECT_EQ(state().PathList[1], outside);
  state().PathList.clear();
  sortNearest(drawing(), state(), 0, -1);
  sortByLength(drawing(), state());
  EXPECT_EQ(state().nextPathNo, 1);
}

TEST_F(PathOrder, RebuildingReadsNumbersAndDisplayValues) {
  std::vector<AcDbObjectId> ids;
  for (int i = 0; i < 4; ++i) ids.push_back(circlePath({i * 10.0, 0}, 1));
  session.line({0, 0}, {5, 5});
  const int numbers[] = {7, 3, 3, 2};
  for (int i = 0; i < 4; ++i) drawing().open<CToolPath>(ids[i], OpenMode::kForWrite)->setPathNo(numbers[i]);
  DrawingVars vars(drawing());
  vars.setDouble("VORN_SHOW_dTextHeight", 4.5);
  vars.setInt("VORN_SHOW_nColorTool", 5);
  state().PathList = {ids[0]};
  const double arrow = settings().dArrowLen;
  run(&TTT, {});
  // The exchange sort: 7 3 3 2, 3 7 3 2, 2 7 3 3, 2 3 7 3, 2 3 3 7. The second of equals came to the front.
  EXPECT_EQ(state().PathList, (std::vector<AcDbObjectId>{ids[3], ids[2], ids[1], ids[0]}));
  expectNumbered();
  EXPECT_EQ(settings().dTextHeight, 4.5);
  EXPECT_EQ(settings().nColorTool, 5);
  EXPECT_EQ(settings().dArrowLen, arrow);
}

TEST_F(PathOrder, InsideComesFirstElseNothingMoves) {
  std::mt19937 random(7);
  for (int round = 0; round < 12; ++round) {
    // Rings about grid points: each lies in the larger ones of its place.
    std::uniform_int_distribution<int> place(0, 3), size(1, 9);
    std::set<std::tuple<int, int, int>> taken;
    for (int i = 0; i < 20; ++i) {
      const int x = place(random), y = place(random), r = size(random);
      if (taken.insert({x, y, r}).second) circlePath({x * 20.0, y * 20.0}, r);
    }
    std::shuffle(state().PathList.begin(), state().PathList.end(), random);
    const auto before = state().PathList;
    const auto sorted = insideFirst(drawing(), before);
    ASSERT_THAT(sorted, ::testing::UnorderedElementsAreArray(before));
    const auto lies = [&](AcDbObjectId in, AcDbObjectId out) {
      const auto &a = drawing().peek<CToolPath>(in)->contour(),
                 &b = drawing().peek<CToolPath>(out)->contour();
      return a.ptCenter == b.ptCenter && a.dRadius < b.dRadius;
    };
    bool wrong = false;
    for (std::size_t i = 0; i < sorted.size(); ++i)
      for (std::size_t j = i + 1; j < sorted.size(); ++j) {
        ASSERT_FALSE(lies(sorted[j], sorted[i])) << "cut out before what lies inside it";
        wrong = wrong || lies(before[j], before[i]);
      }
    if (!wrong) {
      EXPECT_EQ(sorted, before);
    }
    EXPECT_EQ(insideFirst(drawing(), sorted), sorted);
    clear();
  }
}

// Contours of two arcs: all of their inside lies beyond the box of their vertices.
TEST_F(PathOrder, InsideComesFirstBeyondTheVertices) {
  for (double bulge : {0.5, 1.0, 2.0}) {
    auto lens = std::make_unique<CToolPath>();
    const CToolPath::Making making{{-1, 0}, {0, 0}, -1, 1, 0.08, 0};
    ASSERT_TRUE(lens->initContour(making, {{{{0, 0}, bulge}, {{10, 0}, bulge}}, true}, 0));
    addPath(*module, std::move(lens), {}, kColorByLayer, nullptr);
    circlePath({5, 5 * bulge - 1}, 0.5);  // the arcs reach 5 * bulge off their chord
    circlePath({5, 5 * bulge + 1}, 0.5);  // outside
    const auto order = state().PathList;
    EXPECT_EQ(insideFirst(drawing(), order), (std::vector{order[1], order[0], order[2]})) << bulge;
    clear();
  }
}

class ChooseForProgram : public PathOrder {
 protected:
  ChooseForProgram() {
    const double x[] = {0, 40, 10, 30, 20};
    for (double at : x) ids.push_back(circlePath({at, 0}, 1));
    ProcessStyle noFirst;
    noFirst.passes[0].sCode = "00";
    drawing().open<CToolPath>(ids[1], OpenMode::kForWrite)->setProcessStyle(noFirst);
  }
  std::vector<int> chosen(std::vector<std::string> answers) {
    session.answers(std::move(answers));
    const auto got = selectProgramPaths(*module);
    return got ? numbers(*got) : std::vector<int>{-1};
  }
  std::vector<AcDbObjectId> ids;
};

TEST_F(ChooseForProgram, EveryAnswer) {
  using ::testing::ElementsAre;
  EXPECT_THAT(chosen({""}), ElementsAre(1, 3, 4, 5));
  EXPECT_THAT(
      chosen({"S", session.handle(ids[3]) + " " + session.handle(ids[1]) + " " + session.handle(ids[0]), ""}),
      ElementsAre(1, 4));
  // A range asks for no first pass.
  EXPECT_THAT(chosen({"N", "2", "4"}), ElementsAre(2, 3, 4));
  EXPECT_THAT(chosen({"N", "", ""}), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(chosen({"N", "2.9", "3.2"}), ElementsAre(2, 3));
  EXPECT_THAT(chosen({"N", "4", "99"}), ElementsAre(4, 5));
  EXPECT_THAT(chosen({"N", "0", "1"}), ElementsAre(1));
  // A picked path counts as it stands, so the first one from there on is the next.
  EXPECT_THAT(chosen({"N", session.handle(ids[1]), session.handle(ids[3])}), ElementsAre(3, 4, 5));
  EXPECT_THAT(chosen({"^C"}), ElementsAre(-1));
  EXPECT_THAT(chosen({"S", ""}), ElementsAre(-1));
  EXPECT_NE(session.out.find(module->message(64, {5LL})), std::string::npos);
}

TEST_F(ChooseForProgram, SortModes) {
  using ::testing::ElementsAre;
  auto& job = module->state<JobLayout>();
  job.nSortMode = SortMode::kNearestNext;
  // x by number: 0 40 10 30 20. From 0: place 0 itself changes with each nearer one, 40 then 10; then from 0
  // again (now at place 1) and so on, the last stays. Worked with the scan as told:
  //   i 0, P 0: j 1 (40) swaps -> 40 0 10 30; j 2 (10) is nearer than 40 -> 10 0 40 30; j 3 (30) isn't.
  //   i 1, P 0: j 2 (40) swaps -> 10 40 0 30; j 3 (30) is nearer than 40 -> 10 30 0 40.
  //   i 2, P 0: j 3 (40) swaps -> 10 30 40 0.
  EXPECT_THAT(chosen({"N", "", ""}), ElementsAre(3, 4, 2, 1, 5));
  EXPECT_THAT(chosen({"N", "1", "2"}), ElementsAre(1, 2));
  job.nSortMode = SortMode::kByStyle;
  for (std::size_t i = 0; i < job.styles.size(); ++i) job.styles[i].sName = "S" + std::to_string(i);
  const char* names[] = {"S1", "S0", "other", "S0", "S1"};
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ProcessStyle style;
    style.sName = names[i];
    drawing().open<CToolPath>(ids[i], OpenMode::kForWrite)->setProcessStyle(style);
  }
  // S0: 2 swaps with 1 (2 1 3 4 5), 4 with 1 (2 4 3 1 5). S1: 1 with 3 (2 4 1 3 5), 5 with 3 (2 4 1 5 3).
  EXPECT_THAT(chosen({"N", "", ""}), ElementsAre(2, 4, 1, 5, 3));
  job.nSortMode = SortMode::kByNumber;
  EXPECT_THAT(chosen({"N", "", ""}), ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(PathOrder, NoPathsAreTold) {
  session.answers({""});
  EXPECT_FALSE(selectProgramPaths(*module));
  EXPECT_NE(session.out.find(module->message(295)), std::string::npos);
}

}  // namespace

}  // namespace tarnex
