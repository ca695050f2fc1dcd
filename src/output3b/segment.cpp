// One span as the text of one 3B block.
// Knows the span and the program's origin; numbering and pauses are above it.
#include "output3b/segment.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

#include "contour/geometrylibrary.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

// Counts beyond this are no machine's; they keep a hostile drawing from overflowing.
constexpr double kMostCount = 2147483647.0;

long long wholeCount(double count) {
  return static_cast<long long>(std::clamp(count, -kMostCount, kMostCount));
}

// Counts below one step, and negative zeros, are zero.
double cleared(double count) {
  return std::abs(count) < 1.0 ? 0.0 : count;
}

struct Block {
  long long bx = 0, by = 0, bj = 0;
  const char* axis = "GX";
  const char* word = "L1";
};

void appendPadded(std::string& text, long long v, std::size_t width) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, v).ptr;
  const auto length = static_cast<std::size_t>(end - digits);
  if (length < width) text.append(width - length, ' ');
  text.append(digits, length);
}

// "B %6d B %6d B %6d %s %3s ;"
void print(std::string& text, const Block& b) {
  text += "B ";
  appendPadded(text, b.bx, 6);
  text += " B ";
  appendPadded(text, b.by, 6);
  text += " B ";
  appendPadded(text, b.bj, 6);
  text += ' ';
  text += b.axis;
  const std::string_view word = b.word;
  text.append(word.size() < 3 ? 4 - word.size() : 1, ' ');
  text += word;
  text += " ;";
}

Block lineBlock(AcGePoint2d start, AcGePoint2d end) {
  const double dx = cleared(round1000(end.x - start.x)), dy = cleared(round1000(end.y - start.y));
  const long long x = wholeCount(std::abs(dx)), y = wholeCount(std::abs(dy));
  Block b;
  if (x == y)
    b.axis = dx * dy > 0 ? "GY" : "GX";
  else
    b.axis = x > y ? "GX" : "GY";
  b.bj = std::max(x, y);
  if (dx != 0.0 && dy != 0.0) {
    b.bx = x;
    b.by = y;
  }
  if (dx > 0 && dy >= 0)
    b.word = "L1";
  else if (dx <= 0 && dy > 0)
    b.word = "L2";
  else if (dx < 0 && dy <= 0)
    b.word = "L3";
  else
    b.word = "L4";
  return b;
}

// The arc while its block is worked out: angles in radians and in degrees to a thousandth.
struct ArcState {
  AcGePoint2d centre, start, end;
  double radius, a0, a1, d0, d1;
  double sweep;  // radians, above 0
  bool counterClockwise;
};

double degreesToThousandth(double radians) {
  return round1000(radians * 180 / kPi) * 0.001;
}

void snapEnds(ArcState& s) {
  constexpr double kSnap = 0.01;  // degrees
  for (int quarter = 1; quarter <= 3; ++quarter)
    if (std::abs(s.d0 - 90.0 * quarter) <= kSnap) {
      s.d0 = 90.0 * quarter;
      s.a0 = quarter * kPi / 2;
    }
  if (s.counterClockwise) {
    if (std::abs(s.d0 - 360) <= kSnap) s.d0 = s.a0 = 0;
    if (s.d1 <= 0.001) s.a1 = 2 * kPi;
  } else {
    if (s.d0 <= 0) {
      s.d0 = 360;
      s.a0 = 2 * kPi;
    }
    if (std::abs(s.d1 - 360) <= 0.001) s.a1 = 0;
  }
}

// An end that is snapped must not pass the other one: a tiny arc would become the whole circle.
void snapUnlessTurned(ArcState& s) {
  const double a0 = s.a0, a1 = s.a1;
  snapEnds(s);
  double walked = s.counterClockwise ? s.a1 - s.a0 : s.a0 - s.a1;
  if (walked < 0) walked += 2 * kPi;
  if (std::abs(walked - s.sweep) <= kPi) return;
  s.a0 = a0;
  s.a1 = a1;
}

// First quadrant limit on the way and the word of the quadrant that the arc starts in.
struct Quadrant {
  double limit;
  const char* word;
};

Quadrant quadrantOfStart(const ArcState& s) {
  Quadrant q{};
  if (s.counterClockwise)
    q = s.d0 < 90    ? Quadrant{kPi / 2, "NR1"}
        : s.d0 < 180 ? Quadrant{kPi, "NR2"}
        : s.d0 < 270 ? Quadrant{3 * kPi / 2, "NR3"}
                     : Quadrant{2 * kPi, "NR4"};
  else
    q = s.d0 <= 90 && s.d0 > 0 ? Quadrant{0, "SR1"}
        : s.d0 <= 180          ? Quadrant{kPi / 2, "SR2"}
        : s.d0 <= 270          ? Quadrant{kPi, "SR3"}
                               : Quadrant{3 * kPi / 2, "SR4"};
  // On an axis the word is that of the quadrant ahead; the limit stays.
  constexpr double kOnAxis = 0.1;  // degrees
  constexpr const char* kAhead[2][5] = {{"SR4", "SR1", "SR2", "SR3", "SR4"},
                                        {"NR1", "NR2", "NR3", "NR4", "NR1"}};
  for (int quarter = 0; quarter <= 4; ++quarter)
    if (std::abs(s.d0 - 90.0 * quarter) <= kOnAxis) {
      q.word = kAhead[s.counterClockwise ? 1 : 0][quarter];
      break;
    }
  return q;
}

bool limitOnArc(const ArcState& s, double q) {
  const double from = s.counterClockwise ? s.a0 : s.a1, to = s.counterClockwise ? s.a1 : s.a0;
  if (to > from) return from < q && q < to;
  return to < from && (from < q || q < to);
}

// Extents along both axes, summed over the quadrants that the arc crosses.
AcGeVector2d summedExtents(const ArcState& s, double limit) {
  AcGeVector2d sum;
  AcGePoint2d at = s.start;
  for (int round = 1; round <= 5; ++round) {
    const bool last = round == 5 || !limitOnArc(s, limit);
    const AcGePoint2d next = last ? s.end : acutPolar(s.centre, limit, s.radius);
    sum = {sum.x + std::abs(at.x - next.x), sum.y + std::abs(at.y - next.y)};
    if (last) break;
    at = next;
    if (s.counterClockwise) {
      limit += kPi / 2;
      if (limit >= 2 * kPi) limit -= 2 * kPi;
    } else {
      limit -= kPi / 2;
      if (limit < 0) limit += 2 * kPi;
    }
  }
  return sum;
}

Block arcBlock(AcGePoint2d start, AcGePoint2d end, double bulge) {
  const auto circle = bulgeToCircle(start, end, bulge);
  ArcState s{circle.centre,
             start,
             end,
             circle.radius,
             acutAngle(circle.centre, start),
             acutAngle(circle.centre, end),
             0,
             0,
             4 * std::atan(std::abs(bulge)),
             bulge > 0};
  s.d0 = degreesToThousandth(s.a0);
  s.d1 = degreesToThousandth(s.a1);
  Block b;
  b.bx = wholeCount(cleared(std::abs(round1000(start.x - s.centre.x))));
  b.by = wholeCount(cleared(std::abs(round1000(start.y - s.centre.y))));
  const bool alongX = std::abs(end.y - s.centre.y) > std::abs(end.x - s.centre.x);
  b.axis = alongX ? "GX" : "GY";
  snapUnlessTurned(s);
  const Quadrant q = quadrantOfStart(s);
  b.word = q.word;
  const AcGeVector2d sum = summedExtents(s, q.limit);
  b.bj = wholeCount(round1000(alongX ? sum.x : sum.y));
  return b;
}

}  // namespace

std::string formatFixed3(double v) {
  const double r = std::floor(1000 * v + 0.5) / 1000;
  if (r == 0.0) return "0.";
  if (r <= std::floor(v)) return formatted("%.0f.", v);
  std::string text = formatted("%.3f", v);
  while (text.back() == '0') text.pop_back();
  return text;
}

void encodeSegment(std::string& block, AcGePoint2d start, AcGePoint2d end, double bulge,
                   const AcGePoint2d* origin) {
  block.clear();
  const double chord = start.distanceTo(end);
  if (!(chord >= kSamePoint)) return;
  // An arc whose centre no count reaches is as good as straight.
  if (chord * (1 + bulge * bulge) > 4 * std::abs(bulge) * kLargestExtent) bulge = 0.0;
  print(block, bulge == 0.0 ? lineBlock(start, end) : arcBlock(start, end, bulge));
  if (!origin) return;
  block += formatted(" %8.4f , %8.4f", start.x - origin->x, start.y - origin->y);
  if (bulge != 0.0) block += formatted(" R=%g %g", end.x, end.y);
}

std::string encodeSegment(AcGePoint2d start, AcGePoint2d end, double bulge, const AcGePoint2d* origin) {
  std::string block;
  encodeSegment(block, start, end, bulge, origin);
  return block;
}

}  // namespace tarnex
