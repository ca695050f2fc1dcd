// What a drawing shows: which entities, in which order, with which colour and line pattern.
#include "host/display/displaylist.h"

#include <gtest/gtest.h>

#include <random>

#include "host/display/shape.h"

namespace tarnex {
namespace {

// An entity that draws what a test tells it to.
class Marked : public AcDbLine {
 public:
  explicit Marked(std::function<void(AcGiWorldDraw&)> draws)
      : AcDbLine({0, 0, 0}, {1, 0, 0}), draws_(std::move(draws)) {}
  void worldDraw(AcGiWorldDraw& draw) const override { draws_(draw); }

 private:
  std::function<void(AcGiWorldDraw&)> draws_;
};

void stroke(AcGiWorldDraw& draw) {
  const AcGePoint3d ends[] = {{0, 0, 0}, {1, 0, 0}};
  draw.polyline(ends);
}

AcDbObjectId addLine(AcDbDatabase& drawing, double y, AcDbObjectId layer = {}, int color = kColorByLayer) {
  auto line = std::make_unique<AcDbLine>(AcGePoint3d{0, y, 0}, AcGePoint3d{10, y, 0});
  line->setLayer(layer);
  line->setColorIndex(color);
  return drawing.appendAcDbEntity(drawing.modelSpace(), std::move(line));
}

AcDbObjectId addLayer(AcDbDatabase& drawing, const char* name, int color) {
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName(name);
  layer->setColorIndex(color);
  return drawing.addLayer(std::move(layer));
}

std::vector<int> colors(const DisplayList& list) {
  std::vector<int> all;
  for (const Primitive& p : list.primitives) all.push_back(p.color);
  return all;
}

TEST(DisplayList, ShownEntitiesInDrawingOrderWithTheirColours) {
  AcDbDatabase drawing;
  const auto red = addLayer(drawing, "RED", 1), off = addLayer(drawing, "OFF", 2),
             note = addLayer(drawing, "NOTE", 3);
  drawing.open<AcDbLayerTableRecord>(off, OpenMode::kForWrite)->setIsOff(true);
  drawing.open<AcDbLayerTableRecord>(note, OpenMode::kForWrite)->setIsPlottable(false);
  const auto first = addLine(drawing, 0, red);
  addLine(drawing, 100, off);
  const auto own = addLine(drawing, 2, red, 5);
  addLine(drawing, 3, note);
  addLine(drawing, 4, {}, kColorByBlock);
  const auto erased = addLine(drawing, 200);
  drawing.open<AcDbLine>(erased, OpenMode::kForWrite)->erase();

  const DisplayList all = buildDisplayList(drawing);
  EXPECT_EQ(colors(all), (std::vector{1, 5, 3, 7}));
  EXPECT_EQ(all.primitives[0].owner, first);
  EXPECT_EQ(all.primitives[1].owner, own);
  EXPECT_EQ(all.extents, (Extents2d{{0, 0}, {10, 4}}));  // without what isn't shown

  DisplayOptions plot;
  plot.plottableOnly = true;
  EXPECT_EQ(colors(buildDisplayList(drawing, plot)), (std::vector{1, 5, 7}));
  plot.wantsLayer = [](const std::string& layer) { return layer != "RED"; };
  EXPECT_EQ(colors(buildDisplayList(drawing, plot)), (std::vector{7}));
}

TEST(DisplayList, WhatAnEntitySetsHoldsUntilItSetsAnotherOrEnds) {
  AcDbDatabase drawing;
  const auto green = addLayer(drawing, "GREEN", 3);
  const std::size_t linetypes = drawing.linetypes().size();
  const std::uint64_t stamp = drawing.changeStamp();
  Marked entity([](AcGiWorldDraw& draw) {
    stroke(draw);  // as the entity is: layer colour, continuous, marker -1
    draw.setColor(6);
    draw.setLineType("ACAD_ISO02W100");  // not in the drawing, but of the host's set
    draw.setSelectionMarker(12);
    stroke(draw);
    draw.setLineType("no such line");  // the one in force stays
    draw.setColor(kColorByLayer);
    stroke(draw);
    draw.setColor(kColorByBlock);
    draw.setLineType("ByLayer");
    stroke(draw);
    draw.setColor(999);
    draw.setLineType("Acad_iso03W100");
    stroke(draw);
  });
  entity.setLayer(green);
  DisplayList list;
  DisplayRecorder recorder(list, &drawing);
  recorder.record(entity);
  recorder.record(entity);
  ASSERT_EQ(list.primitives.size(), 10u);
  EXPECT_EQ(colors(list), (std::vector{3, 6, 3, 7, 7, 3, 6, 3, 7, 7}));
  const auto dashes = [&](int i) {
    return list.patterns[static_cast<std::size_t>(list.primitives[i].pattern)].dashes;
  };
  EXPECT_TRUE(dashes(0).empty());
  EXPECT_EQ(dashes(1), (std::vector<double>{12, -3}));
  EXPECT_EQ(dashes(2), dashes(1));
  EXPECT_TRUE(dashes(3).empty());
  EXPECT_EQ(dashes(4), (std::vector<double>{12, -18}));
  EXPECT_TRUE(dashes(5).empty());  // the next entity starts anew
  EXPECT_EQ(list.patterns.size(), 3u);
  EXPECT_EQ(list.primitives[0].marker, -1);
  EXPECT_EQ(list.primitives[2].marker, 12);
  EXPECT_EQ(list.primitives[5].marker, -1);
  // Looking changes nothing.
  EXPECT_EQ(drawing.linetypes().size(), linetypes);
  EXPECT_EQ(drawing.changeStamp(), stamp);
}

TEST(DisplayList, LineTypeOfTheEntityBeforeThatOfTheLayerAndTheScaleOfTheDrawing) {
  AcDbDatabase drawing;
  const auto layer = addLayer(drawing, "AXES", 1);
  drawing.open<AcDbLayerTableRecord>(layer, OpenMode::kForWrite)
      ->setLinetype(drawing.loadLineTypeFile("Center"));
  addLine(drawing, 0, layer);
  const auto hidden = addLine(drawing, 1, layer);
  drawing.open<AcDbLine>(hidden, OpenMode::kForWrite)->setLinetype(drawing.loadLineTypeFile("Hidden"));
  drawing.headerVariables["$LTSCALE"] = {40, 2.5};
  const DisplayList list = buildDisplayList(drawing);
  EXPECT_EQ(list.patterns[static_cast<std::size_t>(list.primitives[0].pattern)].name, "Center");
  EXPECT_EQ(list.patterns[static_cast<std::size_t>(list.primitives[1].pattern)].name, "Hidden");
  EXPECT_EQ(list.patternScale, 2.5);
  drawing.headerVariables["$LTSCALE"] = {40, -1.0};
  EXPECT_EQ(buildDisplayList(drawing).patternScale, 1);
}

TEST(DisplayList, NumbersThatCannotBeDrawnAreLeftOutAndCounted) {
  const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
  Marked entity([&](AcGiWorldDraw& draw) {
    const AcGePoint3d broken[] = {{0, 0, 0}, {nan, 1, 0}}, far[] = {{0, 0, 0}, {1e300, 0, 0}};
    draw.polyline(broken);
    draw.polyline(far);
    draw.polyline({});  // nothing at all
    draw.circle({0, 0, 0}, inf);
    draw.circle({0, -inf, 0}, 1);
    draw.circularArc({0, 0, 0}, {1, nan, 0}, {2, 0, 0});
    draw.text({0, 0, 0}, {1, 0, 0}, nan, "x");
    draw.circle({5, 5, 0}, -2);  // a radius is a length
    draw.text({0, 0, 0}, {0, 0, 0}, 1, "y");
  });
  DisplayList list;
  DisplayRecorder(list, nullptr).record(entity);
  EXPECT_EQ(list.dropped, 6u);
  ASSERT_EQ(list.primitives.size(), 2u);
  EXPECT_EQ(std::get<DrawnCircle>(list.shapeOf(list.primitives[0])).radius, 2);
  EXPECT_EQ(std::get<DrawnText>(list.shapeOf(list.primitives[1])).direction, (AcGeVector2d{1, 0}));
  EXPECT_EQ(list.extents, (Extents2d{{0, 0}, {7, 7}}));
}

TEST(DisplayList, ARayCountsWithItsStartInTheExtents) {
  AcDbDatabase drawing;
  drawing.appendAcDbEntity(drawing.modelSpace(),
                           std::make_unique<AcDbRay>(AcGePoint3d{3, 4, 0}, AcGeVector2d{1, 0}));
  addLine(drawing, 0);
  const DisplayList list = buildDisplayList(drawing);
  EXPECT_EQ(list.primitives.size(), 2u);
  EXPECT_EQ(list.extents, (Extents2d{{0, 0}, {10, 4}}));
}

// Entities of a large drawing are looked at beforehand, to make room for all.
TEST(DisplayList, EveryEntityOfALargeDrawingOnceInItsOrder) {
  AcDbDatabase drawing;
  const int count = 3000;
  for (int i = 0; i < count; ++i) addLine(drawing, i % 100 == 7 ? std::nan("") : i);
  const DisplayList list = buildDisplayList(drawing);
  ASSERT_EQ(list.primitives.size(), 2970u);
  EXPECT_EQ(list.dropped, 30u);
  double before = -1;
  for (const Primitive& p : list.primitives) {
    const double y = std::get<DrawnPolyline>(list.shapeOf(p)).points[1].y;
    ASSERT_GT(y, before);
    before = y;
  }
  EXPECT_EQ(list.extents, (Extents2d{{0, 0}, {10, 2999}}));
}

TEST(DisplayList, TheApplicationsContextReachesTheEntity) {
  const int given = 1;
  const void* seen = nullptr;
  Marked entity([&](AcGiWorldDraw& draw) { seen = draw.applicationContext(); });
  DisplayList list;
  DisplayRecorder(list, nullptr, &given).record(entity);
  EXPECT_EQ(seen, &given);
}

TEST(Shape, CodesOfTextsBecomeTheirCharacters) {
  const struct {
    const char *written, *shown;
  } cases[] = {{"%%c20%%p0.02", "⌀20±0.02"}, {"45%%D", "45°"},   {"100%%%", "100%"}, {"%%uunder%%u", "under"},
               {"%%065%%0667", "AB7"},       {"50%", "50%"},     {"%%", "%%"},       {"%%x", "%%x"},
               {"%%007", "%%007"},           {"%%999", "%%999"}, {"a%%c", "a⌀"}};
  for (const auto& c : cases) EXPECT_EQ(shownText(c.written), c.shown) << c.written;
}

TEST(Shape, ArcsThroughThreePoints) {
  const double s = std::sqrt(0.5);
  // Quarter about (5, 5), radius 10, counter-clockwise from the right, and the other way round.
  const AcGePoint3d right{15, 5, 0}, slant{5 + 10 * s, 5 + 10 * s, 0}, top{5, 15, 0};
  const auto quarter = arcThrough({right, slant, top}), back = arcThrough({top, slant, right});
  ASSERT_TRUE(quarter && back);
  EXPECT_NEAR(quarter->centre.x, 5, 1e-12);
  EXPECT_NEAR(quarter->centre.y, 5, 1e-12);
  EXPECT_NEAR(quarter->radius, 10, 1e-12);
  EXPECT_NEAR(quarter->startAngle, 0, 1e-12);
  EXPECT_NEAR(quarter->sweep, kPi / 2, 1e-12);
  EXPECT_NEAR(back->sweep, -kPi / 2, 1e-12);
  // The middle point may lie anywhere: here 30 degrees into an arc of 300.
  const auto point = [](double degrees) { return solid(acutPolar({0, 0}, degrees * kPi / 180, 2)); };
  EXPECT_NEAR(arcThrough({point(10), point(40), point(310)})->sweep, 300 * kPi / 180, 1e-12);
  EXPECT_NEAR(arcThrough({point(310), point(40), point(10)})->sweep, -300 * kPi / 180, 1e-12);
  // A bulge of 1e-6 over 1 mm: sweep 4e-6, radius 1 / 4e-6.
  const auto hair = arcThrough({{0, 0, 0}, {0.5, -0.5e-6, 0}, {1, 0, 0}});
  ASSERT_TRUE(hair);
  EXPECT_NEAR(hair->sweep, 4e-6, 1e-15);
  EXPECT_NEAR(hair->radius, 250000, 1e-3);
  EXPECT_FALSE(arcThrough({{0, 0, 0}, {1, 1, 0}, {3, 3, 0}}));
  EXPECT_FALSE(arcThrough({{1, 1, 0}, {1, 1, 0}, {1, 1, 0}}));
  const auto full = arcThrough({{0, 0, 0}, {4, 0, 0}, {0, 0, 0}});
  ASSERT_TRUE(full);
  EXPECT_EQ(full->centre, (AcGePoint2d{2, 0}));
  EXPECT_NEAR(full->sweep, 2 * kPi, 1e-12);
}

// The box of an arc is found without its angles; the kernel's own box of the same arc is the judge.
TEST(Shape, BoxesOfArcs) {
  std::mt19937 random(5);
  const auto number = [&](double low, double high) {
    return std::uniform_real_distribution<>(low, high)(random);
  };
  for (int i = 0; i < 2000; ++i) {
    const AcGePoint2d centre{number(-50, 50), number(-50, 50)};
    const double radius = number(0.1, 40), from = number(-4, 4), sweep = number(-6.2, 6.2);
    const auto at = [&](double part) { return solid(acutPolar(centre, from + part * sweep, radius)); };
    const Extents2d box = extentsOf(DrawnArc{at(0), at(number(0.1, 0.9)), at(1)});
    const Extents2d exact = extents(Curve{ArcCurve{centre, radius, from, sweep}});
    ASSERT_LT(box.low.distanceTo(exact.low) + box.high.distanceTo(exact.high), 1e-6) << i;
  }
  // Start and end at one place: the whole circle.
  EXPECT_EQ(extentsOf(DrawnArc{{0, 0, 0}, {4, 0, 0}, {0, 0, 0}}), (Extents2d{{0, -2}, {4, 2}}));
}

}  // namespace
}  // namespace tarnex
