// The truth test on programs of edited paths that aren't what the drawing asks for: marks, code texts,
// pauses, overcuts, steps, transit points and order planted wrong, each found and named.
#include <gmock/gmock.h>

#include <functional>

#include "contour/geometrylibrary.h"
#include "exchange/truth_paths.h"
#include "frame/drawingvars.h"
#include "maker3b.h"
#include "output3b/programwriter.h"
#include "rows3b.h"
#include "support/modulefixture.h"
#include "toolpath/toolpath.h"

namespace tarnex::truth::test {
namespace {

using ::testing::Contains;
using ::testing::Field;

// Where " B  count G. DD" of a mark begins and how long it is.
std::pair<std::size_t, std::size_t> markIn(const std::string& row) {
  std::size_t at = 6;
  for (int i = 0; i < 4; ++i) at = row.find('B', at + 1);
  return {at, row.find('G') - at};
}

class Planted : public ModuleFixture {
 protected:
  Planted() {
    WireCutSettings& s = module->settings;
    s.bAskFileName = 0;
    s.bCutoffPause = s.bOvercut = s.bAutoFix = 1;
    s.dCutoffLen = 0.5, s.dOvercutLen = 0.4, s.dAutoFixLen = 0.18, s.dMinStep = 0.006;
    write("Quillet.arx", "none");  // goes before any other: corners are compensated block by block
    drawing().dwgName = "part.dwg";
  }
  // An L of 30 by 20 at (x, 0), entered in the middle of its lower edge; span 3 tapered, "R" at vertex 5, a
  // step of 0.3 mm upwards at vertex 6.
  AcDbObjectId addPath(double x, int number, int nSide, int nDirection, bool edited) {
    PolylineCurve c{{}, true};
    for (const P& p : notched({x, 0}, 30, 20, 0)) c.vertices.push_back({{p.x, p.y}, 0});
    int span = 0;
    if (nDirection == kClockwise) reversePolyline(c);
    for (int i = 0; i < 6; ++i)
      if (c.vertices[i].point.y < -9 && c.vertices[(i + 1) % 6].point.y < -9) span = i;
    auto path = std::make_unique<CToolPath>();
    EXPECT_TRUE(path->initContour({{x, -10 + nSide * 3.0}, {x, -10}, nSide, nDirection, 0.1, 0}, c, span));
    path->setPathNo(number);
    if (edited) {
      const AcGePoint2d a = path->getPointAt(3), b = path->getPointAt(4), corner = path->getPointAt(6);
      EXPECT_TRUE(path->setSegmentTaper(midpoint(a, b), 1.5));
      path->setCodeAt(5, "R");
      path->addVertexAt(6, corner + AcGeVector2d{0, 0.3}, kMarkedBulge);
      path->addVertexAt(6, corner, kMarkedBulge);
    }
    return session.add(std::move(path));
  }
  void draw(int nSide, int nDirection) {
    DrawingVars vars(drawing());
    vars.setPoint("STARTPOINT0", {-40, -20, 0});
    vars.setPoint("STARTPOINT1", {-40, -50, 0});
    vars.setPoint("ENDPOINT0", {150, -40, 0});
    first = addPath(0, 1, nSide, nDirection, true);
    second = addPath(60, 2, nSide, nDirection, false);
  }
  std::string program() {
    session.answers({""});
    return write3BProgram(*module, "") ? read("part.3b") : "(none) " + session.out;
  }
  [[nodiscard]] Report judged(const std::string& text) {
    return check(text, figuresOfPaths(drawing()), expectedOfPaths(drawing(), module->settings));
  }
  template <class Change>
  void change(AcDbObjectId id, Change by) {
    auto path = drawing().open<CToolPath>(id, OpenMode::kForWrite);
    ASSERT_TRUE(path);
    by(*path);
  }
  AcDbObjectId first, second;
};

struct Fault {
  const char* name;
  FindingKind kind;
  std::function<void(Rows&)> plant;
};

// A row's mark goes to another row.
void moveMark(Rows& r, std::size_t from, std::size_t to) {
  const auto [at, n] = markIn(r.rows[from]);
  const std::string mark = r.rows[from].substr(at, n);
  r.rows[from].erase(at, n);
  const auto word = r.rows[from].find("D ");
  r.rows[from].erase(word, 2);
  r.rows[to].insert(r.rows[to].find('G'), mark);
  r.rows[to].insert(r.rows[to].find('L'), "D ");
}

const std::vector<Fault>& textFaults() {
  static const std::vector<Fault> faults{
      {"taper mark one block early", FindingKind::kTaper,
       [](Rows& r) { moveMark(r, r.find("D L"), r.find("D L") - 1); }},
      {"taper mark missing", FindingKind::kTaper,
       [](Rows& r) {
         std::string& row = r.rows[r.find("D L")];
         const auto [at, n] = markIn(row);
         row.erase(at, n);
         row.erase(row.find("D L"), 2);
       }},
      {"wrong taper word", FindingKind::kTaper,
       [](Rows& r) {
         std::string& row = r.rows[r.find("D L")];
         row.replace(row.find("D L"), 1, "DD");
       }},
      {"wrong taper count", FindingKind::kTaper,
       [](Rows& r) {
         std::string& row = r.rows[r.find("D L")];
         row.replace(row.find('G') - 2, 1, row[row.find('G') - 2] == '5' ? "4" : "5");
       }},
      {"code text missing", FindingKind::kCode, [](Rows& r) { r.erase(r.find(": R")); }},
      {"code text one block late", FindingKind::kCode,
       [](Rows& r) {
         const std::size_t i = r.find(": R");
         std::size_t next = i + 1;
         while (r.rows[next].back() != ';') ++next;
         const std::string row = r.rows[i];
         r.insert(next + 1, row);
         r.erase(i);
       }},
      {"code text twice", FindingKind::kCode,
       [](Rows& r) { r.insert(r.find(": R"), r.rows[r.find(": R")]); }},
      {"pause missing", FindingKind::kPause, [](Rows& r) { r.erase(r.pauseBeforeEnd()); }},
      {"pause one block early", FindingKind::kPause,
       [](Rows& r) {
         const std::size_t i = r.pauseBeforeEnd();
         std::swap(r.rows[i], r.rows[i - 1]);
       }},
      {"step missing", FindingKind::kStep, [](Rows& r) { r.erase(r.step(), 2); }},
      {"step twice", FindingKind::kStep,
       [](Rows& r) {
         const std::size_t i = r.step();
         r.insert(i, r.rows[i + 1]), r.insert(i, r.rows[i + 1]);
       }},
      {"step the other way", FindingKind::kStep,
       [](Rows& r) { std::swap(r.rows[r.step()], r.rows[r.step() + 1]); }},
      {"second round", FindingKind::kRepeated,
       [](Rows& r) {  // of the second path: behind its lead-in up to where the pause splits its last edge
         std::size_t from = 0;
         for (std::size_t i = 0; i < r.rows.size(); ++i)
           if (r.rows[i].find("60000 GX") != std::string::npos) from = i + 3;
         const std::size_t to = r.find("500 GX", from);
         std::vector<std::string> round(r.rows.begin() + static_cast<std::ptrdiff_t>(from),
                                        r.rows.begin() + static_cast<std::ptrdiff_t>(to));
         std::erase(round, "N    : D");
         for (const std::string& row : {std::string("N   0: B      0 B      0 B    500 GX  ") +
                                        round.back().substr(round.back().size() - 4)})
           round.push_back(row);
         r.rows.insert(r.rows.begin() + static_cast<std::ptrdiff_t>(from), round.begin(), round.end());
       }},
  };
  return faults;
}

TEST_F(Planted, InTheTextAreFound) {
  for (const int nSide : {kInnerHole, kOuterShape})
    for (const int nDirection : {kCounterClockwise, kClockwise})
      for (const int mode : {0, 1}) {
        session.ed.setDatabase(std::make_unique<AcDbDatabase>());
        drawing().dwgName = "part.dwg";
        module->settings.nOvercutMode = mode;
        module->settings.bOvercut = 1;
        draw(nSide, nDirection);
        const std::string good = program();
        const Report clean = judged(good);
        ASSERT_TRUE(clean.ok) << lines(clean) << good;
        ASSERT_EQ(clean.notes, 0u) << lines(clean) << good;
        for (const Fault& fault : textFaults()) {
          if (fault.kind == FindingKind::kRepeated && nSide == kInnerHole)
            continue;  // its overcut is in the way
          Rows rows(good);
          fault.plant(rows);
          const Report r = judged(rows.text());
          EXPECT_THAT(r.findings, Contains(Field(&Finding::kind, fault.kind)))
              << fault.name << " " << nSide << nDirection << mode << "\n"
              << lines(r) << rows.text();
          EXPECT_LE(r.faults, 4u) << fault.name << "\n" << lines(r) << rows.text();
        }
      }
}

// The program of a drawing that has changed since.
TEST_F(Planted, ChangesOfTheDrawingAreFound) {
  struct Change {
    const char* name;
    FindingKind kind;
    std::function<void(Planted&)> by;
  };
  auto path = [this](auto by) { return [this, by](Planted&) { change(first, by); }; };
  auto setting = [this](auto by) { return [this, by](Planted&) { by(module->settings); }; };
  auto point = [this](const char* key, AcGePoint3d p) {
    return [this, key, p](Planted&) { DrawingVars(drawing()).setPoint(key, p); };
  };
  const Change changes[] = {
      {"code one vertex on", FindingKind::kCode,
       path([](CToolPath& p) { p.removeCodeAt(5), p.setCodeAt(4, "R"); })},
      {"another code", FindingKind::kCode, path([](CToolPath& p) { p.setCodeAt(2, "R"); })},
      {"taper one span on", FindingKind::kTaper, path([](CToolPath& p) {
         p.setTaper(0);
         (void)p.setSegmentTaper(midpoint(p.getPointAt(4), p.getPointAt(5)), 1.5);
       })},
      {"taper of the whole path", FindingKind::kTaper, path([](CToolPath& p) { p.setTaper(1.5); })},
      {"step taken out", FindingKind::kStep,
       path([](CToolPath& p) { p.removeVertexAt(6), p.removeVertexAt(6); })},
      {"step turned", FindingKind::kStep, path([](CToolPath& p) {
         p.setPointAt(7, p.getPointAt(6) + AcGeVector2d{0.01, 0.3});
       })},
      {"edge shifted by 20 um", FindingKind::kTooFar, path([](CToolPath& p) {
         for (int i : {3, 4}) p.setPointAt(i, p.getPointAt(i) + AcGeVector2d{0.02, 0});
       })},
      {"flipped", FindingKind::kSide, path([](CToolPath& p) { (void)p.flipSide(); })},
      {"reversed", FindingKind::kDirection, path([](CToolPath& p) { (void)p.reverse(); })},
      {"pause 20 um on", FindingKind::kPause, setting([](WireCutSettings& s) { s.dCutoffLen += 0.02; })},
      {"no pause", FindingKind::kPause, setting([](WireCutSettings& s) { s.bCutoffPause = 0; })},
      {"overcut 10 um longer", FindingKind::kOvercut,
       setting([](WireCutSettings& s) { s.dOvercutLen += 0.01; })},
      {"overcut and back", FindingKind::kOvercut, setting([](WireCutSettings& s) { s.nOvercutMode = 1; })},
      {"no overcut", FindingKind::kOvercut, setting([](WireCutSettings& s) { s.bOvercut = 0; })},
      {"other corners", FindingKind::kStep, setting([](WireCutSettings& s) { s.dAutoFixLen = 0.2; })},
      {"transit left out", FindingKind::kTransit, point("STARTPOINT0", {-30, -20, 0})},
      {"other start", FindingKind::kTransit, point("STARTPOINT2", {-30, -20, 0})},
      {"end left out", FindingKind::kTransit, point("ENDPOINT1", {0, 0, 0})},
      {"order", FindingKind::kOrder,
       [this](Planted&) { change(first, [](CToolPath& p) { p.setPathNo(3); }); }},
  };
  const WireCutSettings settings = module->settings;
  for (const Change& c : changes) {
    session.ed.setDatabase(std::make_unique<AcDbDatabase>());
    drawing().dwgName = "part.dwg";
    module->settings = settings;
    draw(kInnerHole, kCounterClockwise);
    const std::string text = program();
    ASSERT_TRUE(judged(text).ok);
    c.by(*this);
    const Report r = judged(text);
    EXPECT_FALSE(r.ok) << c.name;
    EXPECT_THAT(r.findings, Contains(Field(&Finding::kind, c.kind))) << c.name << "\n" << lines(r) << text;
  }
}

}  // namespace
}  // namespace tarnex::truth::test
