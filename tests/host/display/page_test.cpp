// The page, and the colours on its ground.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/display/colors.h"
#include "host/display/painter.h"

namespace tarnex {
namespace {

constexpr double kNear = 1e-9;

TEST(Page, FitsThePictureAndKeepsItsShape) {
  // 200 by 50 into 277 by 190 with margins of 5: the width binds, (277 - 10) / 200 = 1.335.
  Page page = layoutPage({{100, 100}, {300, 150}}, {});
  EXPECT_NEAR(page.scale, 1.335, kNear);
  EXPECT_NEAR(page.width, 277, kNear);
  EXPECT_NEAR(page.height, 50 * 1.335 + 10, kNear);
  EXPECT_NEAR(page.shown.low.x, 100 - 5 / 1.335, kNear);
  EXPECT_NEAR(page.shown.high.y, 150 + 5 / 1.335, kNear);
  // A window takes the drawing's place; 1:1 makes the page as large as the window with its margins.
  PageOptions options;
  options.window = Extents2d{{0, 0}, {40, 30}};
  options.width = 0;
  page = layoutPage({{100, 100}, {300, 150}}, options);
  EXPECT_EQ(page.scale, 1);
  EXPECT_EQ(page.width, 50);
  EXPECT_EQ(page.height, 40);
  EXPECT_EQ(page.shown, (Extents2d{{-5, -5}, {45, 35}}));
}

TEST(Page, HasASizeWhateverItShows) {
  const double inf = std::numeric_limits<double>::infinity();
  const Extents2d cases[] = {
      {}, {{5, 5}, {5, 5}}, {{0, 0}, {100, 0}}, {{-inf, 0}, {inf, 1}}, {{0, 0}, {1e12, 1e-12}}};
  for (const Extents2d& drawn : cases)
    for (const double margin : {0.0, 5.0, 1000.0}) {
      PageOptions options;
      options.margin = margin;
      const Page page = layoutPage(drawn, options);
      EXPECT_GT(page.width, 1);
      EXPECT_GT(page.height, 1);
      EXPECT_LE(page.width, options.width + kNear);
      EXPECT_LE(page.height, options.height + kNear);
      EXPECT_TRUE(std::isfinite(page.scale) && page.scale > 0);
      const bool whole = !drawn.empty() && std::isfinite(drawn.low.x);
      EXPECT_TRUE(!whole || page.shown.contains(drawn));
    }
}

TEST(Colors, OfTheIndices) {
  const struct {
    int index;
    const char* hex;
  } cases[] = {{1, "#f00"},     {2, "#ff0"},      {3, "#0f0"},     {4, "#0ff"},      {5, "#00f"},
               {6, "#f0f"},     {7, "#fff"},      {8, "#808080"},  {9, "#c0c0c0"},   {10, "#f00"},
               {11, "#ff7f7f"}, {12, "#c00"},     {20, "#ff3f00"}, {30, "#ff7f00"},  {40, "#ffbf00"},
               {50, "#ff0"},    {70, "#7fff00"},  {90, "#0f0"},    {132, "#0cc"},    {140, "#00bfff"},
               {170, "#00f"},   {181, "#9f7fff"}, {210, "#f0f"},   {240, "#ff003f"}, {249, "#4c262f"},
               {250, "#333"},   {255, "#fff"},    {0, "#fff"},     {256, "#fff"},    {-4, "#fff"}};
  for (const auto& c : cases) EXPECT_EQ(hexColor(indexedColor(c.index)), c.hex) << c.index;
}

// Relative luminance by its usual approximation with a plain power.
double light(Rgb c) {
  const auto part = [](int v) { return std::pow(v / 255.0, 2.2); };
  return 0.2126 * part(c.r) + 0.7152 * part(c.g) + 0.0722 * part(c.b);
}

TEST(Colors, EveryLineCanBeSeenOnItsGround) {
  EXPECT_EQ(hexColor(shownColor(7, Ground::light)), "#000");
  EXPECT_EQ(hexColor(shownColor(7, Ground::dark)), "#fff");
  EXPECT_EQ(hexColor(shownColor(1, Ground::light)), "#f00");  // seen as it is
  EXPECT_EQ(hexColor(shownColor(2, Ground::dark)), "#ff0");
  for (int i = 1; i <= 255; ++i)
    for (const Ground ground : {Ground::light, Ground::dark}) {
      const double a = light(shownColor(i, ground)), b = light(groundColor(ground));
      EXPECT_GT((std::max(a, b) + 0.05) / (std::min(a, b) + 0.05), 2.0) << i;
    }
}

}  // namespace
}  // namespace tarnex
