// A view that follows a drawing shows what a new list of it would, whatever was edited.
#include "host/display/displayview.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace tarnex {
namespace {

bool same(const DrawnShape& a, const DrawnShape& b) {
  if (a.index() != b.index()) return false;
  if (const auto* p = std::get_if<DrawnPolyline>(&a))
    return std::ranges::equal(p->points, std::get<DrawnPolyline>(b).points);
  if (const auto* c = std::get_if<DrawnCircle>(&a)) {
    const auto& d = std::get<DrawnCircle>(b);
    return c->centre == d.centre && c->radius == d.radius;
  }
  if (const auto* c = std::get_if<DrawnArc>(&a)) {
    const auto& d = std::get<DrawnArc>(b);
    return c->start == d.start && c->point == d.point && c->end == d.end;
  }
  const auto &t = std::get<DrawnText>(a), &u = std::get<DrawnText>(b);
  return t.position == u.position && t.direction == u.direction && t.height == u.height && t.utf8 == u.utf8;
}

void expectSame(const DisplayList& seen, const DisplayList& expected) {
  ASSERT_EQ(seen.primitives.size(), expected.primitives.size());
  for (std::size_t i = 0; i < seen.primitives.size(); ++i) {
    const Primitive &a = seen.primitives[i], &b = expected.primitives[i];
    ASSERT_TRUE(a.owner == b.owner && a.marker == b.marker && a.color == b.color) << i;
    const LinePattern &p = seen.patterns.at(a.pattern), &q = expected.patterns.at(b.pattern);
    ASSERT_TRUE(p.name == q.name && p.dashes == q.dashes) << i << ' ' << p.name << ' ' << q.name;
    ASSERT_TRUE(same(seen.shapeOf(a), expected.shapeOf(b))) << i;
  }
  EXPECT_EQ(seen.extents, expected.extents);
  EXPECT_EQ(seen.patternScale, expected.patternScale);
  EXPECT_EQ(seen.dropped, expected.dropped);
}

// A drawing with layers, a block and its references, and one who edits it at random.
class Editing {
 public:
  explicit Editing(unsigned seed) : random_(seed) {
    for (const char* name : {"A", "B", "C"}) {
      auto layer = std::make_unique<AcDbLayerTableRecord>();
      layer->setName(name);
      layers_.push_back(drawing.addLayer(std::move(layer)));
    }
    auto block = std::make_unique<AcDbBlockTableRecord>();
    block->setName("PART");
    block_ = drawing.addBlock(std::move(block));
    inBlock_ = drawing.appendAcDbEntity(block_, std::make_unique<AcDbCircle>(AcGePoint3d{1, 1, 0}, 2));
    for (int i = 0; i < 20; ++i) append();
    drawing.forgetUndo();
  }

  void step() {
    const int kind = upTo(13);
    if (kind == 0) {
      (void)drawing.undo();
    } else if (kind == 1) {
      (void)drawing.redo();
    } else {
      drawing.startUndoMark("edit");
      for (int i = upTo(3); i >= 0; --i) edit(kind);
      drawing.endUndoMark();
    }
  }

  AcDbDatabase drawing;

 private:
  int upTo(int highest) { return std::uniform_int_distribution(0, highest)(random_); }
  double number() { return upTo(100) * 0.37; }
  AcDbObjectId anyLayer() { return layers_[static_cast<std::size_t>(upTo(2))]; }

  void append() {
    std::unique_ptr<AcDbEntity> made;
    const AcGePoint3d p{number(), number(), 0};
    if (const int kind = upTo(4); kind == 0)
      made = std::make_unique<AcDbCircle>(p, 1 + number());
    else if (kind == 1)
      made =
          std::make_unique<AcDbPolyline>(PolylineCurve{{{{p.x, 0}, 0.5}, {{9, p.y}, 0}, {{0, 0}, -1}}, true});
    else if (kind == 2)
      made = std::make_unique<AcDbText>(p, "%%c12", 2.5);
    else if (kind == 3)
      made = std::make_unique<AcDbBlockReference>(block_, p);
    else
      made = std::make_unique<AcDbCircle>(p, upTo(1) == 0 ? 1e13 : 2);  // some are beyond what is drawn
    made->setLayer(anyLayer());
    drawing.appendAcDbEntity(drawing.modelSpace(), std::move(made));
  }

  void editLayer(int kind) {
    auto layer = drawing.open<AcDbLayerTableRecord>(anyLayer(), OpenMode::kForWrite);
    if (kind == 3) layer->setColorIndex(1 + upTo(5));
    if (kind == 4) layer->setIsOff(!layer->isOff());
    if (kind == 5) layer->setLinetype(drawing.loadLineTypeFile(upTo(1) ? "Center" : "Hidden"));
  }

  void edit(int kind) {
    if (kind >= 3 && kind <= 5) return editLayer(kind);
    if (kind == 6) drawing.headerVariables["$LTSCALE"] = {40, 1.0 + upTo(3)};
    if (kind == 7)
      (void)drawing.open<AcDbCircle>(inBlock_, OpenMode::kForWrite)
          ->transformBy(AcGeMatrix3d::translation({number(), 0, 0}));
    const auto ids = drawing.modelSpaceEntities();
    if (kind == 8 || ids.empty()) return append();
    auto entity = drawing.open<AcDbEntity>(ids[static_cast<std::size_t>(upTo(int(ids.size()) - 1))],
                                           OpenMode::kForWrite);
    if (!entity) return;
    if (kind == 9) (void)entity->transformBy(AcGeMatrix3d::rotation(number(), {1, 2}));
    if (kind == 10) (void)entity->erase();
    if (kind == 11) entity->setLayer(anyLayer());
    if (kind == 12) entity->setLinetype(drawing.loadLineTypeFile("Dashed"));
    if (kind == 13) entity->setInvisible(!entity->isInvisible());
  }

  std::mt19937 random_;
  std::vector<AcDbObjectId> layers_;
  AcDbObjectId block_, inBlock_;
};

TEST(DisplayView, ShowsWhatANewListWouldAfterAnyEdits) {
  const unsigned runs = std::getenv("TARNEX_LONG") ? 500 : 12;
  for (unsigned seed = 1; seed <= runs; ++seed) {
    SCOPED_TRACE(seed);
    Editing user(seed);
    DisplayOptions options;
    if (seed % 3 == 0) options.wantsLayer = [](const std::string& layer) { return layer != "B"; };
    DisplayView view(user.drawing, options);
    for (int i = 0; i < 120; ++i) {
      user.step();
      if (i % 4 == 3) continue;  // several steps at once
      view.update();
      expectSame(view.list(), buildDisplayList(user.drawing, options));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(DisplayView, DrawsNoMoreThanWhatHasChanged) {
  Editing user(7);
  AcDbDatabase& drawing = user.drawing;
  DisplayView view(drawing);
  const auto ids = drawing.modelSpaceEntities();
  EXPECT_EQ(view.update(), ids.size());
  EXPECT_EQ(view.update(), 0u);
  (void)drawing.open<AcDbEntity>(ids[5], OpenMode::kForWrite)->erase();
  EXPECT_EQ(view.update(), 1u);
  // What the feed doesn't tell, its owner does.
  drawing.open<AcDbEntity>(ids[6])->setVisibility(Visibility::kInvisible);
  EXPECT_EQ(view.update(), 0u);
  view.redraw(ids[6]);
  EXPECT_EQ(view.update(), 1u);
  expectSame(view.list(), buildDisplayList(drawing));
  view.redrawAll();
  EXPECT_EQ(view.update(), ids.size() - 2);
  // More changes than the feed holds.
  for (int i = 0; i < 200'000; ++i) {
    auto entity = drawing.open<AcDbEntity>(ids[7], OpenMode::kForWrite);
    entity->setColorIndex(1 + i % 2);
  }
  EXPECT_EQ(view.update(), ids.size() - 2);
}

// Thousands of edits of one entity leave no more behind than the list is long.
TEST(DisplayView, TheListIsTidiedUp) {
  AcDbDatabase drawing;
  const auto id =
      drawing.appendAcDbEntity(drawing.modelSpace(), std::make_unique<AcDbCircle>(AcGePoint3d{}, 1));
  const auto dashed = drawing.loadLineTypeFile("Dashed");
  DisplayView view(drawing);
  for (int i = 0; i < 25'000; ++i) {
    {
      auto circle = drawing.open<AcDbCircle>(id, OpenMode::kForWrite);
      circle->setRadius(1 + i % 7);
      circle->setLinetype(dashed);
    }
    view.update();
  }
  EXPECT_LE(view.shapes().primitives.size(), 10'003u);
  EXPECT_EQ(view.shapes().patterns.size(), 2u);
  expectSame(view.list(), buildDisplayList(drawing));
}

}  // namespace
}  // namespace tarnex
