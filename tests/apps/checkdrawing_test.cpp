// `tarnex check` of drawings: each fault drawn by hand, found at its place, ringed under its number.
// Knows the program as a user runs it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/programtest.h"

namespace tarnex {
namespace {

using Json = nlohmann::json;

class CheckDrawing : public ProgramTest {
 protected:
  struct Vertex {
    double x, y, bulge = 0;
  };
  static std::string closed(const std::vector<Vertex>& vertices, const std::string& layer = "0") {
    std::string text =
        "0\nLWPOLYLINE\n8\n" + layer + "\n90\n" + std::to_string(vertices.size()) + "\n70\n1\n";
    for (const auto& v : vertices)
      text += "10\n" + number(v.x) + "\n20\n" + number(v.y) + "\n42\n" + number(v.bulge) + "\n";
    return text;
  }
  static std::string box(double x, double y, double w, double h) {
    return closed({{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}});
  }
  Json marksOf(const std::string& entities, const std::string& options, int code) {
    drawing("d.dxf", entities);
    const Ran ran = sh("tarnex check d.dxf --json --offset 0.1 " + options);
    EXPECT_EQ(ran.code, code) << ran.out;
    const Json j = Json::parse(ran.out, nullptr, false);
    return j.is_object() ? j["marks"] : Json::array();
  }
};

TEST_F(CheckDrawing, EachFaultAtItsPlace) {
  struct Row {
    const char* kind;
    std::string entities;
    double x, y;
  };
  const std::string sides = line(0, 0, 20, 0) + line(20, 0, 20, 20) + line(20, 20, 0, 20);
  const Row rows[] = {
      // The last side stops 0.03 mm before the corner.
      {"gap", sides + line(0, 20, 0, 0.03), 0, 0.015},
      {"open chain", sides + line(0, 20, 0, 9), 0, 0},
      {"branch point", sides + line(0, 20, 0, 0) + line(20, 20, 30, 30), 20, 20},
      {"doubled curve", sides + line(0, 20, 0, 0) + line(0, 20, 0, 0), 0, 10},
      {"doubled curve", circle(5, 5, 3) + circle(5, 5, 3), 8, 5},
      {"self-crossing", closed({{0, 0}, {10, 10}, {10, 0}, {0, 10}}), 5, 5},
      // The circle about (20,5) of radius 2 cuts x = 20 at 5 ± 2.
      {"crossing contours", box(0, 0, 20, 20) + circle(20, 5, 2), 20, 3},
      {"no shape", closed({{0, 0}, {0.03, 0}, {0, 0.03}}), 0, 0},
      {"vanishes", box(0, 0, 20, 20) + circle(10, 10, 0.09), 10.09, 10},
      // The wire outside runs inside of the dent's arc: a half circle of 0.05 mm into the top.
      {"radius below offset", closed({{0, 0}, {20, 0}, {20, 20}, {10.05, 20, -1}, {9.95, 20}, {0, 20}}),
       10.05, 20},
      // 0.05 mm lie between: the wire along the first one's right side crosses the second one's lower side.
      {"wire overlap", box(0, 0, 20, 20) + box(20.05, 0, 20, 20), 20.1, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.kind);
    const Json marks = marksOf(row.entities, "", 1);
    bool found = false;
    std::string kinds;
    for (const auto& m : marks) {
      kinds += m["kind"].get<std::string>() + m["at"].dump() + " ";
      for (const auto& p : m["places"])
        found = found || (m["kind"] == row.kind && std::abs(p[0].get<double>() - row.x) < 0.002 &&
                          std::abs(p[1].get<double>() - row.y) < 0.002);
    }
    EXPECT_TRUE(found) << kinds;
  }
}

TEST_F(CheckDrawing, SoundDrawingsAndTheirPathsHaveNoMarks) {
  const std::string sound = box(0, 0, 60, 40) + circle(20, 20, 5) +
                            closed({{40, 15}, {45, 15, 1}, {45, 25}, {40, 25, 1}}) + line(80, 0, 90, 0) +
                            line(90, 0, 90, 10) + line(90, 10, 80, 0);
  EXPECT_TRUE(marksOf(sound, "", 0).empty());
  // A gap of 0.03 mm is none where ends that far apart are to be joined.
  const std::string gap = line(0, 0, 20, 0) + line(20, 0, 20, 20) + line(20, 20, 0, 0.03);
  EXPECT_EQ(marksOf(gap, "", 1).size(), 1u);
  EXPECT_TRUE(marksOf(gap, "--gap 0.05", 0).empty());
  ASSERT_EQ(sh("tarnex 3b d.dxf --gap 0.05 -o d.3b --save paths.dxf").code, 0);
  const Ran after = sh("tarnex check paths.dxf");
  EXPECT_EQ(after.code, 0) << after.out;
  EXPECT_NE(after.out.find("1 path,"), std::string::npos) << after.out;
}

// In a drawing with paths their own offsets count, whatever the settings say.
TEST_F(CheckDrawing, PathsAreJudgedWithTheirOwnOffset) {
  drawing("two.dxf", box(0, 0, 20, 20) + box(20.5, 0, 20, 20));
  ASSERT_EQ(sh("tarnex 3b two.dxf --set dOffset=0.6 --save wide.dxf -o w.3b").code, 0);
  ASSERT_EQ(sh("tarnex 3b two.dxf --set dOffset=0.1 --save thin.dxf -o t.3b").code, 0);
  EXPECT_NE(sh("tarnex check wide.dxf").out.find("wire overlap"), std::string::npos);
  EXPECT_EQ(sh("tarnex check thin.dxf").out.find("wire overlap"), std::string::npos);
}

TEST_F(CheckDrawing, NumbersOfTheListAreInThePlot) {
  std::string entities = circle(5, 5, 3) + circle(5, 5, 3) + box(20, 0, 10, 10) + circle(30, 5, 2);
  for (int i = 0; i < 5; ++i) entities += line(50.0 + 10 * i, 0, 55.0 + 10 * i, 7 + i);
  const Json marks = marksOf(entities, "--plot marks.svg", 1);
  ASSERT_GE(marks.size(), 7u);
  const std::string svg = read("marks.svg");
  for (std::size_t i = 0; i < marks.size(); ++i) {
    EXPECT_EQ(marks[i]["number"], i + 1);
    EXPECT_EQ(count(svg, ">" + std::to_string(i + 1) + "</text>"), 1) << i + 1;
  }
  EXPECT_EQ(sh("tarnex check d.dxf --plot marks.gif").code, 2);
  EXPECT_EQ(sh("tarnex check d.dxf --plot nowhere/marks.svg").code, 1);
}

TEST_F(CheckDrawing, ManyAlikeAreOneMark) {
  std::string entities = box(0, -50, 60, 40);
  for (int i = 0; i < 500; ++i) entities += line(i, 0, i + 5, 5, "HATCH");
  const Json marks = marksOf(entities, "", 1);
  ASSERT_EQ(marks.size(), 1u);
  EXPECT_EQ(marks[0]["count"], 500);
  EXPECT_EQ(marks[0]["layer"], "HATCH");
  EXPECT_TRUE(marksOf(entities, "--skip-layers HATCH", 0).empty());
}

TEST_F(CheckDrawing, WhichCheckIsMeant) {
  write("program.txt", "B 0 B 0 B 1000 GX L1 ;\n");
  write("renamed.txt", read("plate.dxf"));
  EXPECT_EQ(sh("tarnex check program.txt").code, 2);
  EXPECT_EQ(sh("tarnex check missing.dxf").code, 3);
  write("broken.dxf", "no drawing\n");
  EXPECT_EQ(sh("tarnex check broken.dxf").code, 3);
  EXPECT_NE(sh("tarnex check renamed.txt").code, 2);
  drawing("empty.dxf", "");
  const Ran empty = sh("tarnex check empty.dxf");
  EXPECT_EQ(empty.code, 1);
  EXPECT_NE(empty.out.find("nothing to cut"), std::string::npos) << empty.out;
}

// A drawing made to take long, or of numbers that are none, is answered soon (the shell waits a minute).
TEST_F(CheckDrawing, HostileDrawingsEnd) {
  std::string fan, rings, doubled;
  for (int i = 0; i < 4000; ++i) {
    const double a = 3.14159265 * i / 4000;
    fan += line(-100 * std::cos(a), -100 * std::sin(a), 100 * std::cos(a), 100 * std::sin(a));
    fan += line(300, 0, 300 + 100 * std::cos(a), 100 * std::sin(a));
    if (i < 300) rings += circle(i * 0.01, 0, 50);
    if (i < 1000) doubled += circle(1, 1, 5) + line(30, 0, 40, 0);
  }
  EXPECT_EQ(marksOf(fan, "", 1).size(), 2u);  // open chains, one branch
  EXPECT_EQ(marksOf(rings, "", 1).size(), 1u);
  const Json over = marksOf(doubled, "", 1);
  ASSERT_EQ(over.size(), 2u);
  for (const auto& m : over) EXPECT_EQ(m["most"], 1000);
  for (const char* bad : {"nan", "1e300", "-1e300", "inf"})
    marksOf(std::string("0\nCIRCLE\n8\n0\n10\n") + bad + "\n20\n0\n40\n1\n0\nLINE\n8\n0\n10\n0\n20\n" + bad +
                "\n11\n1\n21\n1\n" + closed({{0, 0, 1e9}, {1, 1}, {5, 5}}),
            "--plot bad.svg", 1);
}

}  // namespace
}  // namespace tarnex
