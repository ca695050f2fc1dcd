// The SVG writer: path data, texts, dashes, colours and the page, worked out by hand; arcs read back by the
// rules of the format.
#include "host/display/svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "displaylists.h"
#include "host/display/svgpath.h"
#include "svgreader.h"

namespace tarnex {
namespace {

using testing::HasSubstr;
using testing::Not;

// The square from (0,0) to (100,100) at 1:1, no margin: x stays, y on the page is 100 - y, micrometres are
// written.
SvgOptions trueScale() {
  SvgOptions options;
  options.width = options.height = options.margin = 0;
  options.window = Extents2d{{0, 0}, {100, 100}};
  return options;
}

std::string pathData(std::initializer_list<Shape> shapes) {
  return firstPathData(svgText(listOf(shapes), trueScale()));
}

Points line(Points points) {
  return points;
}

TEST(SvgPath, LinesAndCircles) {
  EXPECT_EQ(pathData({line({{0, 0, 0}, {10, 5, 7}})}), "M0 100l10-5");  // z plays no part
  EXPECT_EQ(pathData({line({{0.5, 0, 0}, {10, 0, 0}, {10, 0.25, 0}})}), "M.5 100h9.5v-.25");
  EXPECT_EQ(pathData({line({{0, 0, 0}, {10, 0, 0}, {0, 10, 0}, {0, 0, 0}})}), "M0 100h10l-10-10v10z");
  EXPECT_EQ(pathData({line({{5, 5, 0}, {5, 5, 0}})}), "M5 95h0");  // a dot
  EXPECT_EQ(pathData({DrawnCircle{{20, 30, 0}, 7.5}}), "M12.5 70a7.5 7.5 0 0 0 15 0a7.5 7.5 0 0 0-15 0z");
  EXPECT_EQ(pathData({DrawnCircle{{20, 30, 0}, 1e-9}}), "M20 70h0");
  // Steps between rounded points: 3 times 1/3 comes out at 1.
  EXPECT_EQ(pathData({line({{0, 0, 0}, {1. / 3, 0, 0}, {2. / 3, 0, 0}, {1, 0, 0}})}),
            "M0 100h.333h.334h.333");
  // What goes on where the last shape ended is one line; what doesn't is a new one.
  EXPECT_EQ(pathData({line({{0, 0, 0}, {10, 0, 0}}), line({{10, 0, 0}, {10, 10, 0}}),
                      line({{9, 9, 0}, {8, 9, 0}})}),
            "M0 100h10v-10m-1 1h-1");
}

TEST(SvgPath, CountsReadBackInTheirFewestLetters) {
  const auto written = [](long long count, int decimals) {
    std::string text = "x";  // appended
    appendCount(text, count, decimals);
    return text.substr(1);
  };
  EXPECT_EQ(written(0, 3), "0");
  EXPECT_EQ(written(-70, 3), "-.07");
  EXPECT_EQ(written(100'000, 3), "100");
  EXPECT_EQ(written(999'999, 3), "999.999");
  EXPECT_EQ(written(1'000'050, 3), "1000.05");
  EXPECT_EQ(written(-12, 0), "-12");
  EXPECT_EQ(written(1'000'000'001, 9), "1.000000001");
  EXPECT_EQ(written(4'000'000'000'000'001, 9), "4000000.000000001");
  std::mt19937_64 random(20261125);
  for (int i = 0; i < 20'000; ++i) {
    const int decimals = i % 10;
    const auto count = static_cast<long long>(random() >> (12 + i % 50)) * (i % 3 ? 1 : -1);
    const std::string text = written(count, decimals);
    EXPECT_EQ(std::llround(std::strtold(text.c_str(), nullptr) * std::pow(10.0L, decimals)), count) << text;
    if (text.find('.') == text.npos) continue;
    EXPECT_TRUE(text.back() != '0' && text.back() != '.') << text;
    EXPECT_NE(text.substr(0, 2), "0.");
    EXPECT_NE(text.substr(0, 3), "-0.");
  }
}

TEST(SvgPath, ArcsKeepTheirWayRound) {
  const double s = 10 * std::sqrt(0.5);
  const AcGePoint3d right{10, 0, 0}, slant{s, s, 0}, top{0, 10, 0};
  // Counter-clockwise on the page, where y runs downward: sweep flag 0.
  EXPECT_EQ(pathData({DrawnArc{right, slant, top}}), "M10 100a10 10 0 0 0-10-10");
  EXPECT_EQ(pathData({DrawnArc{top, slant, right}}), "M0 90a10 10 0 0 1 10 10");
  // Half a turn about (50,50) over the top, in two quarters.
  EXPECT_EQ(pathData({DrawnArc{{90, 50, 0}, {50, 90, 0}, {10, 50, 0}}}),
            "M90 50a40 40 0 0 0-40-40a40 40 0 0 0-40 40");
  // Three quarters clockwise from the right, under and up to the top, in three.
  EXPECT_EQ(pathData({DrawnArc{{90, 50, 0}, {10, 50, 0}, {50, 90, 0}}}),
            "M90 50a40 40 0 0 1-40 40a40 40 0 0 1-40-40a40 40 0 0 1 40-40");
  // Start and end in one place, and three points on a line.
  EXPECT_EQ(pathData({DrawnArc{{10, 50, 0}, {90, 50, 0}, {10, 50, 0}}}),
            "M10 50a40 40 0 0 0 80 0a40 40 0 0 0-80 0z");
  EXPECT_EQ(pathData({DrawnArc{{0, 0, 0}, {1, 1, 0}, {3, 3, 0}}}), "M0 100l1-1l2-2");
  // 0.4 µm high: a line. 10 µm high over 100 mm, sweep 0.0008: a parabola, its control point twice as high.
  EXPECT_EQ(pathData({DrawnArc{{0, 0, 0}, {50, 0.0004, 0}, {100, 0, 0}}}), "M0 100h100");
  EXPECT_EQ(pathData({DrawnArc{{0, 0, 0}, {50, 0.01, 0}, {100, 0, 0}}}), "M0 100q50-.02 100 0");
  EXPECT_EQ(pathData({DrawnArc{{100, 0, 0}, {50, 0.01, 0}, {0, 0, 0}}}), "M100 100q-50-.02-100 0");
}

// Random arcs, read back by the format's own rule for end points, radius and flags: start, end, and the point
// through which the arc was given lie on what a viewer draws, whatever the rounding.
TEST(SvgPath, ArcsReadBackRunThroughTheirPoint) {
  std::mt19937 random(20260301);
  std::uniform_real_distribution<double> angle(0, 2 * kPi), where(30, 70), share(0.05, 0.95);
  std::uniform_real_distribution<double> logRadius(-1, 1.4);
  for (int i = 0; i < 3000; ++i) {
    const AcGePoint2d centre{where(random), where(random)};
    const double radius = std::pow(10, logRadius(random)), from = angle(random);
    // Every third arc near half or whole turns, where rounding hurts most.
    const double sweep =
        (i % 3 ? angle(random) : kPi * (i % 2 + 1) - 0.01 * share(random)) * (i % 5 ? 1 : -1);
    if (std::abs(sweep) * radius < 0.1) continue;
    const auto at = [&](double f) { return acutPolar(centre, from + f * sweep, radius); };
    const AcGePoint2d through = at(share(random));
    const auto drawn = readPath(pathData({DrawnArc{solid(at(0)), solid(through), solid(at(1))}}));
    ASSERT_FALSE(drawn.empty());
    const auto flipped = [](AcGePoint2d p) { return AcGePoint2d{p.x, 100 - p.y}; };
    EXPECT_LT(drawn.front().distanceTo(flipped(at(0))), 0.001) << i;
    EXPECT_LT(drawn.back().distanceTo(flipped(at(1))), 0.001) << i;
    EXPECT_LT(distanceToChain(drawn, flipped(through)), 0.004)
        << i << " radius " << radius << " sweep " << sweep;
  }
}

TEST(SvgPath, ProjectedArcsRunThroughTheirPoints) {
  // A viewer's line passes where the arc's own points are seen, in any view and both ways round.
  for (const AcGeVector3d& eye : {AcGeVector3d{-1, -1, 1}, {3, -2, 0.4}, {1, 2, -1}, {0, -1, 0}})
    for (const double sweep : {0.3, -2.5, 4.7, -6.2, 2 * kPi}) {
      const AcGePoint2d centre{20, -10};
      const auto at = [&](double share) { return solid(acutPolar(centre, 1 + share * sweep, 30), 5); };
      SvgOptions options = trueScale();
      options.margin = 200;
      options.view = *Projection::from(eye);
      const DisplayList list = listOf({DrawnArc{at(0), at(0.5), sweep < 6.25 ? at(1) : at(0)}});
      const Page page = layoutPage(list, options);
      const auto line = readPath(firstPathData(svgText(list, options)));
      ASSERT_FALSE(line.empty());
      for (int i = 0; i <= 8; ++i) {
        const AcGePoint2d p = options.view.at(at(i / 8.0));
        const AcGePoint2d onPage{p.x - page.shown.low.x, page.shown.high.y - p.y};
        EXPECT_LT(distanceToChain(line, onPage), 0.003) << sweep << ' ' << i;
      }
      EXPECT_EQ(line.size() < 100, eye.z == 0) << "an arc seen on edge is a line, another stays an arc";
    }
}

TEST(Svg, TextsStandUprightAndEscaped) {
  DisplayList list = listOf({DrawnText{{10, 20, 0}, {1, 0}, 3.6, "<a & b> \x01\xff 内孔"}});
  // Capitals are 0.72 of the font's size: 3.6 / 0.72 = 5.
  const std::string svg = svgText(list, trueScale());
  EXPECT_THAT(
      svg,
      HasSubstr("<text fill=\"#000\" font-size=\"5\" x=\"10\" y=\"80\">&lt;a &amp; b&gt;  \xEF\xBF\xBD 内孔"
                "</text>"));
  // Turned 30 degrees to the left: that is -30 with y downward.
  const double half = 0.5, tall = std::sqrt(0.75);
  list = listOf({DrawnText{{10, 20, 0}, {tall, half}, 3.6, "A"}});
  EXPECT_THAT(svgText(list, trueScale()), HasSubstr("x=\"10\" y=\"80\" transform=\"rotate(-30 10 80)\">A<"));
  // Too small for a micrometre: not there.
  EXPECT_THAT(svgText(listOf({DrawnText{{1, 1, 0}, {1, 0}, 1e-6, "A"}}), trueScale()),
              Not(HasSubstr("<text")));
}

// Where the texts of a picture stand: its coordinates as written, in the order of the file.
std::vector<std::pair<std::string, std::string>> textPlaces(const std::string& svg) {
  std::vector<std::pair<std::string, std::string>> places;
  for (std::size_t at = 0; (at = svg.find("<text ", at)) != std::string::npos; ++at) {
    const std::size_t x = svg.find(" x=\"", at) + 4, y = svg.find(" y=\"", at) + 4;
    places.emplace_back(svg.substr(x, svg.find('"', x) - x), svg.substr(y, svg.find('"', y) - y));
  }
  return places;
}

TEST(Svg, LabelsFindRoomBesideTheirPlace) {
  const DrawnText label{{50, 20, 0}, {1, 0}, 5, "AB"};
  DisplayList list = listOf({label, label, label, label, label, label});
  for (std::size_t i = 0; i < 5; ++i) {
    list.primitives[i].marker = 500;
    list.primitives[i].owner = AcDbObjectId{static_cast<std::uint32_t>(i + 1)};  // also of different entities
  }
  // The drawing's own text, without a marker, comes first and stays. Then the labels: in their place, a line
  // of 1.4 * 5 below, to the left of the point (two letters of 0.8 * 5 and 0.3 * 5 of air), left and below, a
  // line above.
  using Places = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(textPlaces(svgText(list, trueScale())),
            (Places{{"50", "80"}, {"50", "80"}, {"50", "87"}, {"40.5", "80"}, {"40.5", "87"}, {"50", "73"}}));
}

TEST(Svg, LabelsStayWhereTheyAreDrawnWhenNoRoomIsNear) {
  const DrawnText label{{50, 20, 0}, {1, 0}, 5, "AB"};
  DisplayList list =
      listOf({label, label, label, label, label, label, label, label, label, label, label, label});
  for (Primitive& p : list.primitives) p.marker = 500;
  const auto places = textPlaces(svgText(list, trueScale()));
  ASSERT_EQ(places.size(), 12u);
  for (std::size_t i = 0; i < 10; ++i)
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(places[i], places[j]);
  for (const std::size_t i : {10, 11}) EXPECT_EQ(places[i], places[0]);
}

TEST(Svg, DashesAreThoseOfTheLineType) {
  const double nan = std::nan("");
  const struct {
    std::vector<double> dashes;
    double scale;
    const char* written;  // empty: continuous
  } cases[] = {
      {{12, -3}, 1, "12 3"},
      {{12, -3}, 0.5, "6 1.5"},
      {{12, -3, 0, -3}, 1, "12 3 0 3"},
      {{-3, 12}, 1, "12 3"},
      {{6, 6, -3}, 1, "12 3"},
      {{-1, 0, -2}, 1, "0 3"},
      {{5}, 1, ""},
      {{-5}, 1, ""},
      {{}, 1, ""},
      {{12, nan}, 1, ""},
      {{12, -3}, 0.01, ""},  // 0.15 mm on paper: nothing but grey
      {{12, -3}, 1e300, ""},
      {{0.3, -0.25}, 1, ".3 .25"},
      {std::vector<double>(1000, 1.0), 1, ""},
  };
  for (const auto& c : cases) {
    DisplayList list = listOf({line({{0, 0, 0}, {10, 0, 0}})});
    list.patterns.push_back({"X", c.dashes});
    list.patternScale = c.scale;
    list.primitives[0].pattern = 1;
    const std::string svg = svgText(list, trueScale());
    const std::string wanted =
        c.written[0] ? " stroke-dasharray=\"" + std::string(c.written) + "\" d=" : "\"#000\" d=";
    EXPECT_THAT(svg, HasSubstr(wanted)) << testing::PrintToString(c.dashes);
  }
}

TEST(Svg, OnePathPerRunOfAColourInDrawingOrder) {
  DisplayList list =
      listOf({line({{0, 0, 0}, {1, 0, 0}}), line({{0, 2, 0}, {1, 2, 0}}), line({{0, 4, 0}, {1, 4, 0}}),
              DrawnText{{0, 0, 0}, {1, 0}, 1, "T"}, line({{0, 6, 0}, {1, 6, 0}}),
              line({{0, 500, 0}, {1, 500, 0}})});  // the last one lies outside
  list.primitives[1].color = list.primitives[2].color = list.primitives[3].color = list.primitives[4].color =
      1;
  const std::string svg = svgText(list, trueScale());
  const std::size_t black = svg.find("<path stroke=\"#000\" d=\"M0 100h1\"/>"),
                    red = svg.find("<path stroke=\"#f00\" d=\"M0 98h1m-1-2h1\"/>"),
                    text = svg.find("<text fill=\"#f00\""),
                    last = svg.find("<path stroke=\"#f00\" d=\"M0 94h1\"/>");
  ASSERT_NE(last, std::string::npos) << svg;
  EXPECT_LT(black, red);
  EXPECT_LT(red, text);
  EXPECT_LT(text, last);
  EXPECT_EQ(svg.find("<path", last + 1), std::string::npos);
}

TEST(Svg, FileHoldsTheSameAndAFailureLeavesTheOldOne) {
  const DisplayList list = listOf({DrawnCircle{{0, 0, 0}, 5}});
  const std::string folder = temporaryFolder("tarnex-svg"), path = folder + "/plot.svg";
  EXPECT_FALSE(writeSvg(path, list));
  EXPECT_EQ(*readFile(path), svgText(list));
  EXPECT_TRUE(writeSvg(folder + "/missing/plot.svg", list));
  EXPECT_EQ(folderEntries(folder), std::vector<std::string>{"plot.svg"});
  std::filesystem::remove_all(folder);
}

TEST(Svg, HostileNumbersStillGiveAPicture) {
  SvgOptions options;
  options.lineWidth = std::nan("");
  options.margin = std::numeric_limits<double>::infinity();
  options.width = -5;
  DisplayList list = listOf({line({{1e12, -1e12, 0}, {-1e12, 1e12, 0}}), DrawnCircle{{-1e12, 0, 0}, 1e12},
                             DrawnArc{{0, 0, 0}, {1e-300, 1e-300, 0}, {1e-300, 0, 0}},
                             DrawnArc{{1e12, 0, 0}, {1e12, 1e-4, 0}, {1e12, 3e-4, 0}}});
  for (const auto& window :
       {std::optional<Extents2d>{}, std::optional(Extents2d{{0, 0}, {1e-300, 0}}),
        std::optional(Extents2d{{0, 0}, {std::numeric_limits<double>::infinity(), 1}})}) {
    options.window = window;
    const std::string svg = svgText(list, options);
    for (const char* bad : {"nan", "inf", "e+1"}) EXPECT_THAT(svg, Not(HasSubstr(bad)));
    EXPECT_THAT(svg, HasSubstr("</svg>"));
  }
}

}  // namespace
}  // namespace tarnex
