// The options of `tarnex plot` as typed, and what they mean.
// Knows texts and numbers; no drawing.
#include <algorithm>
#include <cmath>

#include "apps/tarnex/plot.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr double kLargestPaper = 5000;     // mm; readers of PDF end at 200 inches
constexpr double kLargestPicture = 30000;  // pixels
constexpr double kLongestScale = 1e6;
constexpr double kPictureWidth = 1600, kPictureHeight = 1200;  // pixels, of a PNG whose size isn't given
constexpr double kMmPerInch = 25.4;

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Numbers parted by `by`; empty when one of them is none.
std::vector<double> numbersIn(const std::string& text, char by) {
  std::vector<double> numbers;
  for (std::size_t at = 0;;) {
    const std::size_t end = text.find(by, at);
    double v = 0;
    if (!parseNumber(text.substr(at, end - at), v) || !std::isfinite(v)) return {};
    numbers.push_back(v);
    if (end == std::string::npos) return numbers;
    at = end + 1;
  }
}

struct Meaning {
  const PlotCommand& command;
  PlotMeaning result;

  bool fail(std::string why) {
    result.error = std::move(why);
    return false;
  }

  bool format() {
    const auto format = plotFormatOf(command.output);
    if (!format) return fail(command.output + ": the name of a plot ends in .svg, .pdf or .png");
    pixels = *format == PlotFormat::png;
    return true;
  }

  bool window() {
    if (command.window.empty()) return true;
    const auto v = numbersIn(command.window, ',');
    if (v.size() != 4) return fail("--window " + command.window + ": is to be x1,y1,x2,y2 in mm");
    Extents2d box;
    box.add(AcGePoint2d{v[0], v[1]});
    box.add(AcGePoint2d{v[2], v[3]});
    if (box.low.x == box.high.x || box.low.y == box.high.y)
      return fail("--window " + command.window + ": the corners are to differ in x and y");
    result.options.window = box;
    return true;
  }

  bool size() {
    auto& o = result.options;
    const double unit = pixels ? kMmPerInch / command.dpi : 1;  // mm
    if (command.size.empty()) {
      if (!command.scale.empty())
        o.width = o.height = 0;
      else if (pixels)
        o.width = kPictureWidth * unit, o.height = kPictureHeight * unit;
      return true;
    }
    o.wholePage = true;
    const std::string size = lower(command.size);
    if (size.size() == 2 && size[0] == 'a' && size[1] >= '0' && size[1] <= '4') {
      static constexpr double kSides[] = {1189, 841, 594, 420, 297, 210};  // of A0; each half the one before
      const auto index = static_cast<std::size_t>(size[1] - '0');
      o.width = kSides[index];
      o.height = kSides[index + 1];
      result.namedPaper = true;
      return true;
    }
    const auto v = numbersIn(size, 'x');
    const double largest = pixels ? kLargestPicture : kLargestPaper;
    if (v.size() != 2 || !(std::min(v[0], v[1]) >= 1) || !(std::max(v[0], v[1]) <= largest))
      return fail("--size " + command.size +
                  formatted(": is to be WxH in %s, each from 1 to %.0f, or a0 to a4",
                            pixels ? "pixels" : "mm", largest));
    o.width = v[0] * unit;
    o.height = v[1] * unit;
    return true;
  }

  bool scale() {
    if (command.scale.empty()) return true;
    const auto v = numbersIn(command.scale, ':');
    const double factor = v.size() == 1 ? v[0] : v.size() == 2 ? v[0] / v[1] : 0;
    if (v.empty() || v.size() > 2 || !(v[0] > 0) || !(v.back() > 0) || !(factor <= kLongestScale) ||
        !(factor >= 1 / kLongestScale))
      return fail("--scale " + command.scale + ": is to be such as 5:1 (paper to drawing) or 1:2");
    result.options.scale = factor;
    return true;
  }

  bool view() {
    const std::string view = lower(command.view);
    if (view.empty() || view == "top") return true;
    std::optional<Projection> seen;
    if (view == "iso")
      seen = Projection::isometric();
    else if (const auto v = numbersIn(view, ','); v.size() == 3)
      seen = Projection::from({v[0], v[1], v[2]});
    if (!seen)
      return fail("--view " + command.view +
                  ": is to be top, iso or x,y,z, the way from the drawing to the eye");
    result.options.view = *seen;
    return true;
  }

  bool rest() {
    if (!(command.lineWidth >= 0.01 && command.lineWidth <= 10))
      return fail("--line-width: is to be from 0.01 to 10 mm");
    if (!(command.dpi >= 10 && command.dpi <= 2400)) return fail("--dpi: is to be from 10 to 2400");
    result.options.lineWidth = command.lineWidth;
    result.options.dpi = command.dpi;
    result.options.ground = command.dark ? Ground::dark : Ground::light;
    return true;
  }

  bool pixels = false;
};

}  // namespace

PlotMeaning meaningOf(const PlotCommand& command) {
  Meaning m{command, {}};
  (void)(m.rest() && m.format() && m.window() && m.size() && m.scale() && m.view());
  return std::move(m.result);
}

}  // namespace tarnex
