// The colour table and contrast.
// Knows no entities.
#include "host/display/colors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarnex {

namespace {

constexpr Rgb kNamed[] = {{255, 0, 0},   {255, 255, 0},   {0, 255, 0},     {0, 255, 255},  {0, 0, 255},
                          {255, 0, 255}, {255, 255, 255}, {128, 128, 128}, {192, 192, 192}};
constexpr Rgb kGreys[] = {{51, 51, 51},    {91, 91, 91},    {132, 132, 132},
                          {173, 173, 173}, {214, 214, 214}, {255, 255, 255}};
// Brightness in 255ths, and the same at half the saturation.
constexpr int kBright[] = {255, 204, 153, 127, 76};
constexpr int kGround[] = {127, 102, 76, 63, 38};

constexpr double kSeen = 2.2;   // contrast ratio that a thin line needs
constexpr double kStep = 0.04;  // of the way to black or white

// How much of a primary colour a hue holds, 0 to 4 (quarters): each is full over a third of the circle, with
// ramps of four steps of 15 degrees on both sides.
constexpr int quarters(int hue, int centre) {
  const int apart = std::min((hue - centre + 24) % 24, (centre - hue + 24) % 24);
  return std::clamp(8 - apart, 0, 4);
}

constexpr Rgb hueColor(int index) {
  const int hue = (index - 10) / 10, row = (index % 10) / 2;
  const int top = kBright[row], low = index % 2 ? kGround[row] : 0;
  const auto part = [&](int centre) {
    return static_cast<std::uint8_t>(low + (top - low) * quarters(hue, centre) / 4);
  };
  return {part(0), part(8), part(16)};
}
static_assert(hueColor(30) == Rgb{255, 127, 0} && hueColor(50) == Rgb{255, 255, 0});

double linear(std::uint8_t v) {
  const double s = v / 255.0;
  return s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
}
double luminance(Rgb c) {
  return 0.2126 * linear(c.r) + 0.7152 * linear(c.g) + 0.0722 * linear(c.b);
}

double contrast(Rgb a, Rgb b) {
  const double la = luminance(a), lb = luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

Rgb toward(Rgb c, int end, double share) {
  const auto mix = [&](std::uint8_t v) {
    return static_cast<std::uint8_t>(std::lround(v + (end - v) * share));
  };
  return {mix(c.r), mix(c.g), mix(c.b)};
}

}  // namespace

Rgb indexedColor(int index) {
  if (index >= 1 && index <= 9) return kNamed[index - 1];
  if (index >= 10 && index <= 249) return hueColor(index);
  if (index >= 250 && index <= 255) return kGreys[index - 250];
  return kNamed[6];
}

Rgb groundColor(Ground ground) {
  return ground == Ground::light ? Rgb{255, 255, 255} : Rgb{24, 28, 34};
}

Rgb shownColor(int index, Ground ground) {
  const bool light = ground == Ground::light;
  const Rgb own = indexedColor(index), behind = groundColor(ground);
  if (own == kNamed[6] && index < 250) return light ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
  Rgb shown = own;
  for (double share = kStep; contrast(shown, behind) < kSeen && share < 1; share += kStep)
    shown = toward(own, light ? 0 : 255, share);
  return shown;
}

std::string hexColor(Rgb c) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "#";
  const bool brief = c.r % 17 == 0 && c.g % 17 == 0 && c.b % 17 == 0;
  for (const std::uint8_t v : {c.r, c.g, c.b}) {
    text += kDigits[v >> 4];
    if (!brief) text += kDigits[v & 15];
  }
  return text;
}

}  // namespace tarnex
