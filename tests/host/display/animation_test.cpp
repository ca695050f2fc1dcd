// The animated picture: path data and times of a tiny case worked out by hand, and what must hold for any.
#include "host/display/animation.h"

#include <gmock/gmock.h>

#include "host/platform/format.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

AnimationOptions trueScale() {
  AnimationOptions options;
  options.width = options.height = options.margin = 0;
  return options;
}

int count(const std::string& text, const std::string& what) {
  int n = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += what.size()) ++n;
  return n;
}

// Ten to the right in a second, five upward in another: the page is 10 by 5, and a round takes 2 s and the
// 1.5 s that the finished picture stands. After the first step a third of the line is missing.
TEST(Animation, ATinyCaseByHand) {
  Animation a;
  a.lines.push_back({3, 0, {0, 0}, {{{10, 0}, {}, 1}, {{10, 5}, {}, 1}}});
  const std::string text = animationText(a, trueScale());
  EXPECT_THAT(text, HasSubstr("viewBox=\"0 0 10.000 5.000\""));
  EXPECT_THAT(text, HasSubstr("pathLength=\"1\" d=\"M0 5h10v-5\""));
  EXPECT_THAT(text,
              HasSubstr("attributeName=\"stroke-dashoffset\" values=\"1.5;1;.3333333;0;0\" "
                        "keyTimes=\"0;0;.2857143;.5714286;1\" dur=\"3.5s\" repeatCount=\"indefinite\""));
  EXPECT_THAT(text, HasSubstr("type=\"translate\" values=\"0,5;10,5;10,0;10,0;10,0\" "
                              "keyTimes=\"0;.2857143;.5714286;.5714286;1\""));
  EXPECT_THAT(text, HasSubstr("round = 3.500000, last = 2.000000"));
}

// Equal speed is one stretch in time, and an arc stays an arc. The half circle about (0,0) from (2,0) to
// (-2,0) is 2π long, the line behind it 2: at 1 mm/s a round takes 2π + 2 + 1.5 s.
TEST(Animation, ArcsStayArcsAndEqualSpeedIsOneStretch) {
  Animation a;
  a.lines.push_back({3, 0, {2, 0}, {{{-2, 0}, ArcCurve{{0, 0}, 2, 0, kPi}, 2 * kPi}, {{-4, 0}, {}, 2}}});
  const std::string text = animationText(a, trueScale());
  // The page reaches from -4 to 2 and up to 2; an arc longer than a third of a turn comes in two pieces.
  EXPECT_THAT(text, HasSubstr("d=\"M6 2a2 2 0 0 0-2-2a2 2 0 0 0-2 2h-2\""));
  EXPECT_THAT(text, HasSubstr("values=\"1.5;1;0;0\" keyTimes=\"0;0;" +
                              formatted("%.7f", (2 * kPi + 2) / (2 * kPi + 3.5)).substr(1)));
}

TEST(Animation, LinesWithinAFrameComeTogether) {
  Animation a;
  for (int i = 0; i < 1000; ++i) {
    const double x = i, begin = i * 0.002;
    a.lines.push_back({i % 2 ? 2 : 3, begin, {x, 0}, {{{x + 1, 1}, {}, 0.002}}});
  }
  const std::string text = animationText(a, trueScale());
  // 2 s at 30 frames a second, two colours.
  EXPECT_LE(count(text, "<animate "), 124);
  EXPECT_GE(count(text, "<animate "), 100);
  EXPECT_THAT(text, Not(HasSubstr("pathLength")));
}

// What browsers ask of values and keyTimes, else they don't play: as many of each, from 0, never falling, at
// most 1; and lines that begin one after the other.
TEST(Animation, TimesAscendWhateverIsDrawn) {
  Animation a;
  double time = 0;
  for (int i = 0; i < 3000; ++i) {
    AnimatedLine line{i % 3 + 1, time, {i * 0.1, 0}, {}};
    for (int k = 0; k <= i % 5; ++k) {
      line.steps.push_back({{i * 0.1 + k, (i * 7 + k * 3) % 11 * 1.0}, {}, i % 4 == 0 ? 0 : 0.01 * (i % 9)});
      time += line.steps.back().seconds;
    }
    a.lines.push_back(line);
  }
  const std::string text = animationText(a, {});
  const auto attribute = [&](std::string_view name, std::size_t from) {
    const auto begin = text.find(name, from) + name.size();
    return text.substr(begin, text.find('"', begin) - begin);
  };
  int seen = 0;
  for (std::size_t from = 0; (from = text.find(" values=\"", from)) != std::string::npos; ++from, ++seen) {
    const std::string values = attribute(" values=\"", from), times = attribute(" keyTimes=\"", from);
    ASSERT_EQ(count(values, ";"), count(times, ";"));
    double before = 0;
    for (std::size_t at = 0; at < times.size();) {
      const auto semicolon = std::min(times.find(';', at), times.size());
      const double t = std::stod(times.substr(at, semicolon - at));
      ASSERT_EQ(at == 0 && t != 0, false) << times;
      ASSERT_GE(t, before) << times;
      ASSERT_LE(t, 1) << times;
      before = t;
      at = semicolon + 1;
    }
    ASSERT_TRUE(before == 1 || values.find("hidden") != std::string::npos) << times;
  }
  EXPECT_GT(seen, 1000);
}

TEST(Animation, AnythingMakesAPicture) {
  EXPECT_THAT(animationText({}, {}), HasSubstr("</svg>"));
  Animation a;
  a.still = {LineCurve{{0, 0}, {1, 1}}, ArcCurve{{0, 0}, 1, 0, 2 * kPi},
             EllipseCurve{{0, 0}, {3, 0}, 0.5, 0, 2 * kPi}, PolylineCurve{{{{0, 0}, 1}, {{1, 0}, 0}}, true}};
  a.lines.push_back({3, 0, {0, 0}, {}});                 // nothing in it
  a.lines.push_back({3, 0, {5, 5}, {{{5, 5}, {}, 0}}});  // no length, no time
  AnimationOptions options;
  options.title = "a < b & c\x01\xff";
  options.ground = Ground::dark;
  const std::string text = animationText(a, options);
  EXPECT_THAT(text, HasSubstr("<title>a &lt; b &amp; c \xEF\xBF\xBD</title>"));
  EXPECT_THAT(text, Not(HasSubstr("nan")));
  EXPECT_THAT(text, Not(HasSubstr("http://www.w3.org/1999")));
  EXPECT_EQ(count(text, "http"), 1) << "the namespace alone: nothing is fetched";
}

}  // namespace

}  // namespace tarnex
