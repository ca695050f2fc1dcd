// PDF and PNG: pixels at places worked out by hand, the page's size, the words in a PDF, the same bytes
// twice.
#ifdef TARNEX_HAS_CAIRO

#include <cairo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "displaylists.h"
#include "host/display/plot.h"

namespace tarnex {
namespace {

using testing::HasSubstr;

// 10 pixels per mm: the drawing's (x, y) is the pixel (10 x, 10 (height - y)).
PlotOptions tenPixelsPerMm(Extents2d window) {
  PlotOptions options;
  options.width = options.height = options.margin = 0;
  options.window = window;
  options.dpi = 254;
  options.lineWidth = 0.4;  // 4 pixels: the middle of a line has its own colour
  return options;
}

class Picture {
 public:
  Picture(const DisplayList& list, const PlotOptions& options) {
    bytes_ = plotBytes(PlotFormat::png, list, options).value_or("");
    surface_ = cairo_image_surface_create_from_png_stream(
        [](void* self, unsigned char* out, unsigned int count) {
          auto& picture = *static_cast<Picture*>(self);
          if (picture.at_ + count > picture.bytes_.size()) return CAIRO_STATUS_READ_ERROR;
          picture.bytes_.copy(reinterpret_cast<char*>(out), count, picture.at_);
          picture.at_ += count;
          return CAIRO_STATUS_SUCCESS;
        },
        this);
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  ~Picture() { cairo_surface_destroy(surface_); }

  [[nodiscard]] int width() const { return cairo_image_surface_get_width(surface_); }
  [[nodiscard]] int height() const { return cairo_image_surface_get_height(surface_); }
  [[nodiscard]] std::string at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width() || y >= height()) return "outside";
    const unsigned char* p =
        cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_) + 4 * x;
    return hexColor({p[2], p[1], p[0]});
  }

 private:
  std::string bytes_;
  std::size_t at_ = 0;
  cairo_surface_t* surface_;
};

TEST(Png, LinesArcsAndDashesLieWhereTheyAreDrawn) {
  DisplayList list = listOf({
      Points{{1, 1, 0}, {9, 1, 0}},               // red
      DrawnArc{{8, 5, 0}, {5, 8, 0}, {2, 5, 0}},  // blue: the upper half about (5,5)
      Points{{0, 9.5, 0}, {10, 9.5, 0}},          // black, 2 mm and gaps of 1 mm
      DrawnCircle{{5, 4, 0}, 1},                  // green
      DrawnArc{{1, 2, 0}, {1, 3, 0}, {1, 4, 0}},  // straight after all
  });
  list.patterns.push_back({"DASH", {2, -1}});
  list.primitives[0].color = 1;
  list.primitives[1].color = 5;
  list.primitives[2].pattern = 1;
  list.primitives[3].color = 3;
  PlotOptions options = tenPixelsPerMm({{0, 0}, {10, 10}});
  const Picture picture(list, options);
  ASSERT_EQ(picture.width(), 100);
  ASSERT_EQ(picture.height(), 100);
  EXPECT_EQ(picture.at(0, 99), "#fff");
  EXPECT_EQ(picture.at(50, 90), "#f00");  // (5, 1)
  EXPECT_EQ(picture.at(50, 94), "#fff");  // half a mm beside it
  EXPECT_EQ(picture.at(93, 90), "#fff");  // its end at (9, 1) is rounded off 0.2 mm later
  EXPECT_EQ(picture.at(50, 20), "#00f");  // the top of the arc
  EXPECT_EQ(picture.at(50, 79), "#fff");  // the lower half of its circle isn't there
  // On the arc at 45 degrees: 5 + 3 cos 45 = 7.121.
  EXPECT_EQ(picture.at(71, 28), "#00f");
  const std::string green = hexColor(shownColor(3, Ground::light));
  for (const auto& [x, y] : {std::pair{50, 50}, {50, 70}, {40, 60}, {60, 60}})
    EXPECT_EQ(picture.at(x, y), green) << x << ' ' << y;
  EXPECT_EQ(picture.at(50, 60), "#fff");
  EXPECT_EQ(picture.at(10, 70), "#000");
  // Dashes from 0 to 2, 3 to 5, 6 to 8 mm, each with round ends of 0.2 mm: gaps about 2.5, 5.5 and 8.5.
  for (const int x : {10, 40, 70, 95}) EXPECT_EQ(picture.at(x, 5), "#000") << x;
  for (const int x : {25, 55, 85}) EXPECT_EQ(picture.at(x, 5), "#fff") << x;

  options.ground = Ground::dark;
  const Picture dark(list, options);
  EXPECT_EQ(dark.at(0, 99), hexColor(groundColor(Ground::dark)));
  EXPECT_EQ(dark.at(10, 70), "#fff");
}

TEST(Png, DashesRunOnOverTheVerticesOfOneContour) {
  // 3 mm of dash start 1 mm before the corner: it is drawn up to 2 mm behind it.
  DisplayList list = listOf({Points{{1, 1, 0}, {6, 1, 0}}, Points{{6, 1, 0}, {6, 9, 0}}});
  list.patterns.push_back({"DASH", {3, -1}});
  for (Primitive& p : list.primitives) p.pattern = 1;
  const Picture picture(list, tenPixelsPerMm({{0, 0}, {10, 10}}));
  EXPECT_EQ(picture.at(45, 90), "#fff");  // the gap from 4 to 5
  EXPECT_EQ(picture.at(60, 90), "#000");
  EXPECT_EQ(picture.at(60, 75), "#000");
  EXPECT_EQ(picture.at(60, 65), "#fff");  // the gap from y 3 to 4
}

TEST(Png, TextIsAsTallAsDrawn) {
  // An "H" from (2,2), 5 mm tall: its left post begins near x 2, and nothing stands above y 7 or below y 2.
  const DisplayList list =
      listOf({DrawnText{{2, 2, 0}, {1, 0}, 5, "H"}, DrawnText{{8, 2, 0}, {0, 1}, 3, "H"}});
  const Picture picture(list, tenPixelsPerMm({{0, 0}, {10, 10}}));
  const auto inked = [&](int x0, int x1, int y) {
    for (int x = x0; x < x1; ++x)
      if (picture.at(x, y) == "#000") return true;
    return false;
  };
  EXPECT_TRUE(inked(20, 60, 31) && inked(20, 60, 78)) << "just below its top, just above its base line";
  EXPECT_FALSE(inked(0, 60, 28) || inked(0, 60, 81));
  // Turned by a quarter its base line is x = 8, and it lies to the left of it.
  EXPECT_TRUE(inked(51, 60, 70) || inked(51, 79, 75));
  EXPECT_FALSE(inked(82, 100, 70));
}

TEST(Png, WhatRunsFarOutOfThePageIsStillRight) {
  // Circles of a million metres through (5,5) and (5,2), a line of that length, an ellipse seen from the
  // side.
  const double far = 1e9;
  DisplayList list = listOf({DrawnCircle{{5, 5 - far, 0}, far}, Points{{-far, 8, 0}, {far, 8, 0}},
                             DrawnArc{{5 - far, 2 - far, 0}, {5, 2, 0}, {5 + far, 2 - far, 0}}});
  const Picture picture(list, tenPixelsPerMm({{0, 0}, {10, 10}}));
  for (const int x : {1, 50, 98})
    for (const int y : {20, 50, 80}) {
      EXPECT_EQ(picture.at(x, y), "#000") << x << ' ' << y;
      EXPECT_EQ(picture.at(x, y + 5), "#fff") << x << ' ' << y;
    }
}

TEST(Png, ASizeIsAPageOfThatSize) {
  const DisplayList list = listOf({Points{{0, 0, 0}, {10, 10, 0}}});
  PlotOptions options;
  options.width = 40;
  options.height = 20;
  options.margin = 0;
  options.dpi = 254;
  EXPECT_EQ(Picture(list, options).width(), 200) << "the picture's shape";
  options.wholePage = true;
  EXPECT_EQ(Picture(list, options).width(), 400);
  options.scale = 0.5;  // 5 mm in the middle of 40 by 20: from (17.5, 7.5)
  const Picture picture(list, options);
  EXPECT_EQ(picture.width(), 400);
  EXPECT_EQ(picture.height(), 200);
  EXPECT_EQ(picture.at(177, 122), "#000");
  EXPECT_EQ(picture.at(170, 129), "#fff");
}

TEST(Pdf, HasTheSizeInPointsAndTheSameBytesEachTime) {
  unsetenv("SOURCE_DATE_EPOCH");
  DisplayList list =
      listOf({DrawnArc{{8, 5, 0}, {5, 8, 0}, {2, 5, 0}}, DrawnText{{1, 1, 0}, {1, 0}, 1, "No 17"}});
  PlotOptions options;
  options.width = 254;
  options.height = 127;
  options.wholePage = true;
  const auto pdf = plotBytes(PlotFormat::pdf, list, options);
  ASSERT_TRUE(pdf);
  EXPECT_TRUE(pdf->starts_with("%PDF-"));
  EXPECT_THAT(*pdf, HasSubstr("/MediaBox [ 0 0 720 360 ]"));  // 254 mm are 10 inches
  EXPECT_EQ(*plotBytes(PlotFormat::pdf, list, options), *pdf);
}

TEST(Pdf, AFailureLeavesTheOldFile) {
  const DisplayList list = listOf({DrawnCircle{{0, 0, 0}, 5}});
  const std::string folder = temporaryFolder("tarnex-plot"), path = folder + "/plot.Png";
  EXPECT_FALSE(writePlot(path, list));
  EXPECT_EQ(*readFile(path), *plotBytes(PlotFormat::png, list));
  PlotOptions tooLarge;
  tooLarge.dpi = 1e6;
  EXPECT_TRUE(writePlot(path, list, tooLarge));
  EXPECT_TRUE(writePlot(folder + "/missing/plot.pdf", list));
  EXPECT_TRUE(writePlot(folder + "/plot.dwf", list));
  EXPECT_EQ(*readFile(path), *plotBytes(PlotFormat::png, list));
  EXPECT_EQ(folderEntries(folder), std::vector<std::string>{"plot.Png"});
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace tarnex

#endif
