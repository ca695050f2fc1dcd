// Selection sets and filters on drawings made by hand.
#include <gmock/gmock.h>

#include "host/editor/filter.h"
#include "session.h"

namespace tarnex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Three lines a, b, c at heights 0, 10, 20 from x 0 to 30, and a circle d of radius 5 about (50, 10).
struct Plate : Session {
  AcDbObjectId a = line({0, 0}, {30, 0}), b = line({0, 10}, {30, 10}), c = line({0, 20}, {30, 20}),
               d = circle({50, 10}, 5);
  Plate() { ed.setView({25, 10}, 30); }  // the pick box reaches about 0.1 mm
  SelectionSet gather(std::vector<std::string> lines) {
    answers(std::move(lines));
    return ed.acedSSGet("").value;
  }
  AcDbObjectId layer(const char* name) {
    auto record = std::make_unique<AcDbLayerTableRecord>();
    record->setName(name);
    return ed.database().addLayer(std::move(record));
  }
  template <class Change>
  void change(AcDbObjectId id, Change change) {
    change(*ed.database().open<AcDbEntity>(id, OpenMode::kForWrite));
  }
};

TEST(Selection, WhatAUserGathers) {
  Plate p;
  EXPECT_THAT(p.gather({"10,10", "10,0.05", "10,0", ""}),
              ElementsAre(p.b, p.a));  // picked one by one, each once
  EXPECT_THAT(p.gather({"w", "-1,-1", "31,11", ""}), ElementsAre(p.a, p.b));
  EXPECT_THAT(p.gather({"c -1,-1 1,25", ""}), ElementsAre(p.a, p.b, p.c));
  EXPECT_THAT(p.gather({"-1,5", "31,25", ""}), ElementsAre(p.b, p.c));       // nothing there: a window
  EXPECT_THAT(p.gather({"46,25", "-1,5", ""}), ElementsAre(p.b, p.c, p.d));  // right to left: crossing
  EXPECT_THAT(p.gather({"all", "r", "10,10", "a", "last", ""}), ElementsAre(p.a, p.c, p.d));
  EXPECT_THAT(p.gather({"p", ""}), ElementsAre(p.a, p.c, p.d));
  EXPECT_THAT(p.gather({p.handle(p.c) + " " + p.handle(p.a), ""}), ElementsAre(p.c, p.a));
  ASSERT_TRUE(p.ed.acedSetVar("OSMODE", 2LL));
  EXPECT_THAT(p.gather({"29,20", ""}), ElementsAre(p.c));  // no snap to a middle when picking
  p.answers({"all", "^C", ""});
  EXPECT_EQ(p.ed.acedSSGet("").reply, Reply::RTCAN);
  EXPECT_EQ(p.ed.acedSSGet("").reply, Reply::RTERROR);  // Enter at once
}

TEST(Selection, WindowsAreExact) {
  Plate p;
  const auto in = [&](const char* mode, AcGePoint3d first, AcGePoint3d second) {
    return p.ed.acedSSGet(mode, {first, second, {}, "", ""}).value;
  };
  EXPECT_THAT(in("W", {45, 5, 0}, {55, 15, 0}), ElementsAre(p.d));  // the circle's box touches from inside
  EXPECT_THAT(in("W", {45.001, 5, 0}, {55, 15, 0}), IsEmpty());
  EXPECT_THAT(in("C", {47, 7, 0}, {53, 13, 0}), IsEmpty());     // within the circle, its line isn't met
  EXPECT_THAT(in("C", {40, 0, 0}, {46.4, 6.4, 0}), IsEmpty());  // boxes overlap, the arc bends away:
  EXPECT_THAT(in("C", {40, 0, 0}, {46.5, 6.5, 0}), ElementsAre(p.d));     // it passes 50-5/√2 = 46.4645
  EXPECT_THAT(in("C", {30, 20, 0}, {35, 25, 0}), ElementsAre(p.c));       // a corner on its end
  EXPECT_THAT(in("C", {10, -5, 0}, {10, 15, 0}), ElementsAre(p.a, p.b));  // a window without width
  EXPECT_THAT(in("C", {10, 10, 0}, {10, 10, 0}), ElementsAre(p.b));
}

TEST(Selection, HiddenThingsAreLeftOutButForTheWholeDrawing) {
  Plate p;
  const auto hidden = p.layer("HIDDEN"), locked = p.layer("LOCKED");
  p.ed.database().open<AcDbLayerTableRecord>(hidden, OpenMode::kForWrite)->setIsOff(true);
  p.ed.database().open<AcDbLayerTableRecord>(locked, OpenMode::kForWrite)->setIsLocked(true);
  p.change(p.a, [&](AcDbEntity& e) { e.setLayer(hidden); });
  p.change(p.c, [&](AcDbEntity& e) { e.setInvisible(true); });
  p.ed.database().appendAcDbEntity(p.ed.database().paperSpace(), std::make_unique<AcDbPoint>(AcGePoint3d{}));
  {
    auto e = p.ed.database().open<AcDbEntity>(p.b, OpenMode::kForWrite);
    e->setLayer(locked);
  }
  EXPECT_THAT(p.ed.acedSSGet("A").value, ElementsAre(p.b, p.d));
  EXPECT_THAT(p.ed.acedSSGet("X").value, ElementsAre(p.a, p.b, p.c, p.d));
  EXPECT_THAT(p.gather({"all", ""}), ElementsAre(p.b, p.d));
  EXPECT_THAT(p.ed.acedSSGet("C", {AcGePoint3d{0, -1, 0}, AcGePoint3d{60, 30, 0}, {}, "", ""}).value,
              ElementsAre(p.b, p.d));
  EXPECT_THAT(p.ed.entitiesAtPickBox({10, 0, 0}), IsEmpty());
  EXPECT_THAT(p.ed.acedSSGet("L").value, ElementsAre(p.d));
}

TEST(Selection, NearestFirstAtAPoint) {
  Plate p;
  const auto near = p.line({0, 0.04}, {30, 0.04});
  EXPECT_THAT(p.ed.entitiesAtPickBox({10, 0.03, 0}), ElementsAre(near, p.a));
  p.answers({"10,0.03", "100,100", p.handle(p.d), "last", ""});
  EXPECT_EQ(p.ed.acedEntSel("").value.entity, near);
  EXPECT_EQ(p.ed.acedEntSel("").reply, Reply::RTERROR);
  EXPECT_EQ(p.ed.acedEntSel("").value.entity, p.d);
  EXPECT_EQ(p.ed.acedEntSel("").value.entity, near);
  EXPECT_EQ(p.ed.acedEntSel("").reply, Reply::RTNONE);
  EXPECT_EQ(p.ed.acedEntSel("").reply, Reply::RTCAN);
}

TEST(Selection, AWindowMayBeAListOfHandles) {
  Plate p;
  p.answers({p.handle(p.d) + " " + p.handle(p.a), "5,5"});
  EXPECT_TRUE(p.ed.acedGetCorner({0, 0, 0}, ""));
  ASSERT_TRUE(p.ed.namedInsteadOfCorner());
  EXPECT_THAT(*p.ed.namedInsteadOfCorner(), ElementsAre(p.d, p.a));
  EXPECT_EQ(p.ed.acedGetCorner({0, 0, 0}, "").value, (AcGePoint3d{5, 5, 0}));
  EXPECT_FALSE(p.ed.namedInsteadOfCorner());
}

TEST(Selection, RaysAreFoundAllAlong) {
  Plate p;
  const auto ray = p.add(std::make_unique<AcDbRay>(AcGePoint3d{-100, 5, 0}, AcGeVector2d{1, 0}));
  EXPECT_THAT(p.gather({"10,5", ""}), ElementsAre(ray));
  EXPECT_THAT(p.gather({"c", "-1,-1", "31,25", ""}), ElementsAre(p.a, p.b, p.c, ray));
  EXPECT_THAT(p.gather({"w", "-200,-1", "31,25", ""}), ElementsAre(p.a, p.b, p.c));
  p.run({"move " + p.handle(ray), "", "0,0 0,1"});
  EXPECT_THAT(p.ed.entitiesAtPickBox({10, 5, 0}), IsEmpty());
  EXPECT_THAT(p.ed.entitiesAtPickBox({10, 6, 0}), ElementsAre(ray));
  p.run({"u", "erase " + p.handle(ray), ""});
  EXPECT_THAT(p.ed.entitiesAtPickBox({10, 5, 0}), IsEmpty());
  p.run({"u"});
  EXPECT_THAT(p.ed.entitiesAtPickBox({10, 5, 0}), ElementsAre(ray));
}

TEST(Selection, TheDrawingWalkedEntityByEntity) {
  Plate p;
  p.ed.database().open<AcDbEntity>(p.b, OpenMode::kForWrite)->erase();
  p.ed.database().open<AcDbEntity>(p.d, OpenMode::kForWrite)->erase();
  SelectionSet walked;
  for (auto id = p.ed.acdbEntNext({}); !id.isNull(); id = p.ed.acdbEntNext(id)) walked.push_back(id);
  EXPECT_THAT(walked, ElementsAre(p.a, p.c));
  EXPECT_EQ(p.ed.acdbEntNext(p.b), p.c);
  EXPECT_EQ(p.ed.acdbEntLast(), p.c);
}

// ---- filters

TEST(Filters, Wildcards) {
  struct Case {
    const char *text, *pattern;
    bool fits;
  };
  const Case cases[] = {{"LINE", "ARC,LINE", true},    {"LINE", "line", true},
                        {"LWPOLYLINE", "LINE", false}, {"CUT-1", "CUT*", true},
                        {"CUT", "CUT*", true},         {"CUT", "CUT?", false},
                        {"CUTS", "CUT?", true},        {"aXbXc", "a*b*c", true},
                        {"aXbX", "a*b*c", false},      {"", "", true},
                        {"LINE", "", false},           {"", "*", true},
                        {"a*b", "a`*b", true},         {"axb", "a`*b", false},
                        {"a,b", "x,a`,b", true}};
  for (const auto& c : cases)
    EXPECT_EQ(matchesWildcard(c.text, c.pattern), c.fits) << c.text << " " << c.pattern;
  const std::string many(5000, 'a');
  EXPECT_FALSE(matchesWildcard(many, "*a*a*a*a*a*a*a*a*b"));  // and soon
}

TEST(Filters, ConditionsAndGroups) {
  Plate p;
  const auto cut = p.layer("Cut_1");
  p.change(p.b, [&](AcDbEntity& e) { e.setLayer(cut); });
  p.change(p.c, [&](AcDbEntity& e) { e.setColorIndex(1); });
  const auto with = [&](ResBufChain filter) {
    return p.ed.acedSSGet("X", {{}, {}, std::move(filter), "", ""}).value;
  };
  const auto op = [](const char* word) { return ResBuf{-4, std::string(word)}; };
  const ResBuf lines{0, std::string("LINE")}, circles{0, std::string("circle")}, red{62, 1LL},
      byLayer{62, 256LL}, onCut{8, std::string("CUT*")};
  EXPECT_THAT(with({lines}), ElementsAre(p.a, p.b, p.c));
  EXPECT_THAT(with({lines, byLayer}), ElementsAre(p.a, p.b));
  EXPECT_THAT(with({onCut}), ElementsAre(p.b));
  EXPECT_THAT(
      with({op("<and"), op("<or"), circles, red, op("or>"), op("<not"), onCut, op("not>"), op("and>")}),
      ElementsAre(p.c, p.d));
  EXPECT_THAT(with({op("<xor"), lines, red, op("xor>")}), ElementsAre(p.a, p.b));  // c is both
  EXPECT_THAT(with({op("<or"), op("or>")}), IsEmpty());
  EXPECT_THAT(with({{0, std::string()}}), IsEmpty());
  for (const auto& broken :
       {ResBufChain{op("<or"), lines}, {lines, op("and>")}, {op("<nand"), op("nand>")}, {{999, 1LL}}})
    EXPECT_THAT(with(broken), IsEmpty());
  p.answers({"all", ""});
  EXPECT_THAT(p.ed.acedSSGet("", {{}, {}, {circles}, "", ""}).value, ElementsAre(p.d));
}

}  // namespace
}  // namespace tarnex
